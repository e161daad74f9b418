// The library's message catalogue: every template its diagnostics format,
// one catalogue per raising class, all in one table. The table is handed to
// the host catalogue once, when the library is loaded; the host catalogue is
// never destroyed, so the texts stay available to diagnostics raised during
// static destruction.

#include "vel/diag/MessageCatalog.hpp"

#include <map>
#include <string>

namespace VelCG {

namespace {

// Registers the table when the library is loaded, before any of its code
// can raise a diagnostic.
[[maybe_unused]] const bool kCatalogsRegistered = [] {
    const std::map<std::string, std::map<std::string, std::string>> catalogs = {
        {"VelCG:Binding",
         {{"IgnoredWrite",
           "The value written to property '{3}' of {1} '{2}' was ignored: writes to it have no "
           "effect."}}},
        {"VelCG:CustomContents",
         {
             {"NullContent", "Cannot add a null string to custom section '{2}' of file '{1}'."},
             {"TextAfterNul",
              "{3} byte(s) of the content added to custom section '{2}' of file '{1}' followed an embedded "
              "NUL and were dropped."},
             {"PlacedNotRetrieved",
              "Custom section '{2}' of file '{1}' was placed but never retrieved: its {3} byte(s) were not "
              "written."},
             {"NoBuiltinSection",
              "Custom section '{2}' of file '{1}' belongs to the {3} section, which the file does not "
              "have: its {4} byte(s) were not written."},
             {"NotWritten",
              "Custom section '{2}' of file '{1}' was neither retrieved nor appended to the {3} "
              "section: its {4} byte(s) were not written."},
         }},
        {"VelCG:FileRepScrivBridge",
         {
             {"InvalidFileIndex", "File index {1} is out of range: the repository holds {2} file(s)."},
             {"UnknownAttribute", "'{1}' is not the name of a {2} file attribute."},
             {"UnknownSection", "'{1}' is not the name of a file section."},
             {"NullArgument", "The {1} passed to the file bridge is null."},
             {"WriteFailed", "Cannot write section '{2}' of file '{1}': {3}."},
         }},
        {"VelCG:FileSection",
         {
             {"NullContent", "Section content must be a character string, not a null pointer."},
             {"NullFragment", "A null fragment cannot be added to a file section."},
             {"NullStream", "Cannot write a file section: the output stream is null."},
             {"WriteFailed", "Writing {1} byte(s) of a file section to the output stream failed: {2}."},
             {"InvalidFragmentIndex", "Fragment index {1} is out of range for a section of {2} fragment(s)."},
             {"TextAfterNul",
              "{1} of the {2} byte(s) added to a file section followed an embedded NUL and were dropped."},
         }},
        {"VelCG:FunctionsSection",
         {{"InvalidFunctionIndex", "{1} index {2} is out of range: the section has {3} of them."}}},
        // {1} is the source name (a file path) and {2} the place in the
        // document as a JSON pointer, unless said otherwise.
        {"VelCG:ModelDescription",
         {
             {"MalformedJson", "{1}:{2}:{3}: not valid JSON: {4}."},
             {"NotADescription",
              "{1}: not a model description: {2} (a model description is an object whose \"format\" is "
              "\"velcg-model-description\")."},
             {"UnsupportedVersion",
              "{1}: {2}: format version {3} is not supported; this reader knows version {4}."},
             {"MissingField", "{1}: {2}: the required field is missing."},
             {"WrongType", "{1}: {2}: expected {3}, found {4}."},
             {"UnknownField", "{1}: {2}: unknown field \"{3}\"."},
             {"DuplicateField", "{1}: {2}: the field appears more than once in its object."},
             {"DanglingReference", "{1}: {2}: {3} names nothing in {4}, which has {5} entries."},
             {"Cycle", "{1}: {2}: cycle: {3}."},
             {"UnknownEnumerator", "{1}: {2}: \"{3}\" is not one of {4}."},
             {"InvalidValue", "{1}: {2}: {3}."},
             {"NotAPlainFileName", "{1}: {2}: {3} is not a plain file name: {4}."},
             {"SameFileName",
              "{1}: {2}: {3} names the same file as {4} at {5} (file names are compared ignoring case)."},
             // {1} is the path of the file.
             {"ReadFailed", "Cannot read the model description \"{1}\": {2}."},
             {"WriteFailed", "Cannot write the model description \"{1}\": {2}."},
             // {1} is the place the writer was at.
             {"NotDescribable", "The model cannot be described: {1}: {2}."},
         }},
        {"VelCG:VelCGFile",
         {
             {"NullBuilder", "Cannot create the file '{1}' without a content builder."},
             {"NullStream", "Cannot write section '{2}' of file '{1}': the output stream is null."},
         }},
        {"VelCG:VelCGFileContent",
         {
             {"InvalidSlot", "Cannot place a section in slot {1} of a file's section table: {2}."},
             {"MissingSection", "{1} byte(s) added to a section the file does not have were dropped."},
         }},
    };
    vel::diag::MessageCatalog& host = vel::diag::MessageCatalog::instance();
    for (const auto& [catalog, templates] : catalogs) host.addCatalog(catalog, templates);
    return true;
}();

} // namespace

} // namespace VelCG
