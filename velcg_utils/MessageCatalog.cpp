// The library's message catalogue: every template its diagnostics format,
// one catalogue per raising class (and one for the Python module), all in
// one table with what a template author does about each message a template
// can meet. The table is handed to the host catalogue once, when the library
// is loaded; the host catalogue is never destroyed, so the texts stay
// available to diagnostics raised during static destruction.

#include "vel/diag/MessageCatalog.hpp"

#include <map>
#include <string>

#include "MessageEntries.hpp"
#include "Messages.hpp"
#include "brisk/Messages.hpp"
#include "korb/Messages.hpp"

namespace VelCG::messages_detail {

namespace {
constexpr bool kWarning = true;
constexpr bool kError = false;
} // namespace

const std::vector<MessageEntry>& messageEntries() {
    static const std::vector<MessageEntry> entries = {
        {messages::Binding::IgnoredWrite,
         "The value written to property '{3}' of {1} '{2}' was ignored: writes to it have no effect.",
         "Drop the write: the property only reads.", kWarning},

        {messages::CustomContents::NullContent,
         "Cannot add a null string to custom section '{2}' of file '{1}'.", nullptr, kError},
        {messages::CustomContents::TextAfterNul,
         "{3} byte(s) of the content added to custom section '{2}' of file '{1}' followed an embedded NUL "
         "and "
         "were dropped.",
         "Remove the NUL character from the text, or split the text there.", kWarning},
        {messages::CustomContents::PlacedNotRetrieved,
         "Custom section '{2}' of file '{1}' was placed but never retrieved: its {3} byte(s) were not "
         "written.",
         "A template that marks a custom section in use (setCustomTokenInUse) places its text itself: take "
         "it "
         "with getCustomSectionContent and add it where it belongs.",
         kWarning},
        {messages::CustomContents::NoBuiltinSection,
         "Custom section '{2}' of file '{1}' belongs to the {3} section, which the file does not have: its "
         "{4} "
         "byte(s) were not written.",
         "Declare the custom section for a section the file's kind has (see the file kinds above), or place "
         "its text yourself.",
         kWarning},
        {messages::CustomContents::NotWritten,
         "Custom section '{2}' of file '{1}' was neither retrieved nor appended to the {3} section: its {4} "
         "byte(s) were not written.",
         "Documentation custom sections are never appended: retrieve the text with getCustomSectionContent "
         "and place it.",
         kWarning},

        // {2} and {4} say which run: "run <token>", "no first pass run",
        // "model '<name>' of run <token>", "no model", ...
        {messages::Model::DescriptorOfAnotherRun,
         "The second serialization pass of model '{1}' ({2}) wrote nothing to the code descriptor '{3}': it "
         "holds {4}, not the description this model's first pass stored. Run both passes again.",
         nullptr, kError},

        {messages::FileRepScrivBridge::InvalidFileIndex,
         "File index {1} is out of range: the repository holds {2} file(s).",
         "File indices run from 0 to numberOfFiles - 1, in the order of the repository's FileList.", kError},
        {messages::FileRepScrivBridge::UnknownAttribute,
         "'{1}' is not the name of a {2} file attribute{3}. The {2} attributes are {4}.",
         "Use one of the names listed (names are case-sensitive); the table of attributes above gives each "
         "one's type.",
         kError},
        {messages::FileRepScrivBridge::ReadOnlyAttribute,
         "File attribute '{1}' is read-only: scripts read it with {2} and cannot set it.",
         "Drop the write; the file's name is fixed when the file is created.", kError},
        {messages::FileRepScrivBridge::SectionNotSettable,
         "'{1}' is a file section, not a settable attribute: add text to it with addSectionContent.",
         "Add the text with addSectionContent.", kError},
        {messages::FileRepScrivBridge::WrongValueType, "File attribute '{1}' takes {2}, not {3}.",
         "Pass a bool for a boolean attribute and a str for the others.", kError},
        {messages::FileRepScrivBridge::WrongAttributeType,
         "File attribute '{1}' is a {2}, not a {3}: read it with {4}.", "Read it with the operation named.",
         kError},
        {messages::FileRepScrivBridge::UnknownSection,
         "'{1}' is not the name of a file section{2}. The section names are {3}.",
         "Use one of the section names listed (case-sensitive); \"Types\" names the Typedefs section only "
         "when declaring custom sections.",
         kError},
        {messages::FileRepScrivBridge::InvalidBuiltinSection,
         "'{1}' is not the name of a built-in file section{2}. Custom sections can be declared for {3}.",
         "Comes with the error Brisk:codeGen:CustomContentInvalidBuiltin: use one of the names listed.",
         kWarning},
        {messages::FileRepScrivBridge::NullArgument, "The {1} passed to the file bridge is null.", nullptr,
         kError},
        {messages::FileRepScrivBridge::WriteFailed, "Cannot write section '{2}' of file '{1}': {3}.",
         "The system's reason says why: a full disk, a file size limit, a file opened for reading.", kError},
        {messages::FileRepScrivBridge::FileWriteFailed, "Cannot write the file '{1}': {2}.",
         "Check that the directory exists and is writable; the reason says what failed.", kError},
        {messages::FileRepScrivBridge::NotAPlainFileName,
         "The file '{1}' is not written: its name is not a plain file name: {2}.",
         "Give the file a plain name (no folders, '..' or drive letters) when the repository makes it.",
         kError},

        {messages::FileSection::NullContent,
         "Section content must be a character string, not a null pointer.", nullptr, kError},
        {messages::FileSection::NullFragment, "A null fragment cannot be added to a file section.", nullptr,
         kError},
        {messages::FileSection::NullStream, "Cannot write a file section: the output stream is null.",
         nullptr, kError},
        {messages::FileSection::WriteFailed,
         "Writing {1} byte(s) of a file section to the output stream failed: {2}.",
         "The system's reason says why; free space or raise the limit.", kError},
        {messages::FileSection::InvalidFragmentIndex,
         "Fragment index {1} is out of range for a section of {2} fragment(s).", nullptr, kError},
        {messages::FileSection::TextAfterNul,
         "{1} of the {2} byte(s) added to a file section followed an embedded NUL and were dropped.",
         "Remove the NUL character from the text; add bytes that must hold one through the bridge, which "
         "keeps them.",
         kWarning},

        {messages::FunctionsSection::InvalidFunctionIndex,
         "{1} index {2} is out of range: the section has {3} of them.",
         "Functions count from 1 to getNumberOfFunctions().", kError},

        // {1} is the source name (a file path) and {2} the place in the
        // document as a JSON pointer, unless said otherwise.
        {messages::ModelDescription::MalformedJson, "{1}:{2}:{3}: not valid JSON: {4}.", nullptr, kError},
        {messages::ModelDescription::NotADescription,
         "{1}: not a model description: {2} (a model description is an object whose \"format\" is "
         "\"velcg-model-description\").",
         nullptr, kError},
        {messages::ModelDescription::UnsupportedVersion,
         "{1}: {2}: format version {3} is not supported; this reader knows version {4}.", nullptr, kError},
        {messages::ModelDescription::MissingField, "{1}: {2}: the required field is missing.", nullptr,
         kError},
        {messages::ModelDescription::WrongType, "{1}: {2}: expected {3}, found {4}.", nullptr, kError},
        {messages::ModelDescription::UnknownField, "{1}: {2}: unknown field \"{3}\"{4}.", nullptr, kError},
        {messages::ModelDescription::DuplicateField,
         "{1}: {2}: the field appears more than once in its object.", nullptr, kError},
        {messages::ModelDescription::DanglingReference,
         "{1}: {2}: {3} names nothing in {4}, which has {5} entries.", nullptr, kError},
        {messages::ModelDescription::Cycle, "{1}: {2}: cycle: {3}.", nullptr, kError},
        {messages::ModelDescription::UnknownEnumerator, "{1}: {2}: \"{3}\" is not one of {4}.", nullptr,
         kError},
        {messages::ModelDescription::InvalidValue, "{1}: {2}: {3}.", nullptr, kError},
        {messages::ModelDescription::NotAPlainFileName, "{1}: {2}: {3} is not a plain file name: {4}.",
         "A file name names one file inside the output directory: no folders, '..' or drive letters.",
         kError},
        {messages::ModelDescription::SameFileName,
         "{1}: {2}: {3} names the same file as {4} at {5} (file names are compared ignoring case).",
         "Rename one of the two: on Windows and macOS they would be one file.", kError},
        // {1} is the path of the file.
        {messages::ModelDescription::ReadFailed, "Cannot read the model description \"{1}\": {2}.", nullptr,
         kError},
        {messages::ModelDescription::WriteFailed, "Cannot write the model description \"{1}\": {2}.", nullptr,
         kError},
        // {1} is the place the writer was at.
        {messages::ModelDescription::NotDescribable, "The model cannot be described: {1}: {2}.", nullptr,
         kError},

        {messages::VelCGFile::NullBuilder, "Cannot create the file '{1}' without a content builder.", nullptr,
         kError},
        {messages::VelCGFile::NullStream,
         "Cannot write section '{2}' of file '{1}': the output stream is null.", nullptr, kError},
        {messages::VelCGFile::WrittenEmpty,
         "File '{1}' was written empty: no text was added to any of its sections (set its attribute "
         "\"Filter\" to true to leave it unwritten).",
         "Fill the file's sections, or set \"Filter\" to true so that it is not written. A template that "
         "writes a file's bytes itself between the sections sets \"IsEmpty\" to false.",
         kWarning},

        {messages::VelCGFileContent::InvalidSlot,
         "Cannot place a section in slot {1} of a file's section table: {2}.", nullptr, kError},
        {messages::VelCGFileContent::MissingSection,
         "{1} byte(s) added to the {2} section of file '{3}' were dropped: a {4} has no {2} section (its "
         "sections are {5}).",
         "Add the text to a section the file has, or create a file of a kind that has the section (a generic "
         "file has every section).",
         kWarning},

        {messages::Python::NotARepository,
         "The script bridge needs a file repository (velcg.VelCGFileRepository), not {1}.",
         "Pass the global `repository` (or another velcg.VelCGFileRepository) to velcg.bridge.", kError},
        {messages::Python::NotAHandleCapsule,
         "A velcg.Object is made from a capsule named 'vel.mi.Handle', not '{1}'.",
         "Objects come from velcg itself: read them from the model and the repository.", kError},
        {messages::Python::InvalidArgument, "The argument of {1} must be {2}, not {3}.",
         "Pass a value of the type named.", kError},
        {messages::Python::NotABinaryFile,
         "Section '{1}' can only be written to a file opened in binary mode, not to {2}.",
         "Open the file with open(path, \"wb\") (or use io.BytesIO).", kError},
        {messages::Python::CannotReadTemplate, "Cannot read the template '{1}': {2}.", nullptr, kError},
        {messages::Python::TemplateFailed, "The template '{1}' raised an exception:\n{2}",
         "The Python traceback that follows names the line of the template that raised.", kError},
        {messages::Python::CannotStart, "The Python interpreter cannot start with {1}.",
         "Unset VIRTUAL_ENV, or point it at a virtual environment made from the Python velcg was built with.",
         kError},
        {messages::Python::Finalized,
         "The Python interpreter of this process has been shut down; templates can no longer run.", nullptr,
         kError},

        // Messages of the host that templates meet.
        {korb::messages::InvalidHandle, nullptr,
         "The native object was destroyed; do not keep objects of one run for the next.", kError},
        {korb::messages::UnknownProperty, nullptr,
         "Check the name against the class (dir(obj), or the stub velcg.pyi); it is a "
         "velcg.UnknownMemberError, "
         "which is also an AttributeError.",
         kError},
        {korb::messages::UnknownMethod, nullptr, "Check the name against the class, as for properties.",
         kError},
        {korb::messages::ReadOnlyProperty, nullptr, "Drop the write: the property can only be read.", kError},
        {korb::messages::InvalidPropertyValue, nullptr,
         "Write a value of the property's Python type (bool, int in range, str, ...); values are not "
         "converted.",
         kError},
        {korb::messages::InvalidMethodArgument, nullptr, "Pass an argument of the type the method takes.",
         kError},
        {korb::messages::WrongNumberOfArguments, nullptr, "Pass the arguments the method takes.", kError},
        {brisk::messages::CustomContentPreviousAssociation, nullptr,
         "A custom section belongs to one built-in section: use another name for the second one.", kError},
        {brisk::messages::CustomContentSectionDoesNotExist, nullptr,
         "Declare the custom section with addCustomSection before adding content to it.", kError},
        {brisk::messages::CustomContentSectionAlreadyRetrieved, nullptr,
         "Take a custom section's text once; keep it in a variable to use it twice.", kError},
        {brisk::messages::CustomContentInvalidBuiltin, nullptr,
         "Name a built-in section: a section name, or \"Types\" for Typedefs (the warning "
         "VelCG:FileRepScrivBridge:InvalidBuiltinSection lists them).",
         kError},
    };
    return entries;
}

namespace {

// Registers the table when the library is loaded, before any of its code
// can raise a diagnostic.
[[maybe_unused]] const bool kCatalogsRegistered = [] {
    std::map<std::string, std::map<std::string, std::string>> catalogs;
    for (const MessageEntry& entry : messageEntries()) {
        if (!entry.text) continue;
        const std::string identifier = entry.identifier;
        const std::size_t colon = identifier.rfind(':');
        catalogs[identifier.substr(0, colon)][identifier.substr(colon + 1)] = entry.text;
    }
    vel::diag::MessageCatalog& host = vel::diag::MessageCatalog::instance();
    for (const auto& [catalog, templates] : catalogs) host.addCatalog(catalog, templates);
    return true;
}();

} // namespace

} // namespace VelCG::messages_detail
