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
        {"VelCG:CustomContents",
         {{"NullContent", "Cannot add a null string to custom section '{2}' of file '{1}'."}}},
        {"VelCG:FileRepScrivBridge",
         {
             {"InvalidFileIndex", "File index {1} is out of range: the repository holds {2} file(s)."},
             {"UnknownAttribute", "'{1}' is not the name of a {2} file attribute."},
             {"UnknownSection", "'{1}' is not the name of a file section."},
             {"NullArgument", "The {1} passed to the file bridge is null."},
         }},
        {"VelCG:FileSection",
         {
             {"NullContent", "Section content must be a character string, not a null pointer."},
             {"NullFragment", "A null fragment cannot be added to a file section."},
             {"NullStream", "Cannot write a file section: the output stream is null."},
             {"WriteFailed", "Writing {1} byte(s) of a file section to the output stream failed."},
             {"InvalidFragmentIndex", "Fragment index {1} is out of range for a section of {2} fragment(s)."},
         }},
        {"VelCG:FunctionsSection",
         {{"InvalidFunctionIndex", "{1} index {2} is out of range: the section has {3} of them."}}},
        {"VelCG:VelCGFile",
         {
             {"NullBuilder", "Cannot create the file '{1}' without a content builder."},
             {"NullStream", "Cannot write section '{2}' of file '{1}': the output stream is null."},
         }},
        {"VelCG:VelCGFileContent",
         {{"InvalidSlot", "Cannot place a section in slot {1} of a file's section table: {2}."}}},
    };
    vel::diag::MessageCatalog& host = vel::diag::MessageCatalog::instance();
    for (const auto& [catalog, templates] : catalogs) host.addCatalog(catalog, templates);
    return true;
}();

} // namespace

} // namespace VelCG
