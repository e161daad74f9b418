#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "velcg/Export.hpp"

namespace VelCG {

// A file name that comes from data (a model description, a script) is a
// plain name inside an output directory, never a path of its own. A plain
// name is one path component that every platform the generated code may be
// built on writes as itself:
//   - not empty, not "." or "..", at most 255 bytes;
//   - no separator of either platform ('/', '\'), no NUL or other control
//     character, none of < > : " | ? * (so no absolute path, drive letter or
//     stream name);
//   - not ending in '.' or ' ', which Windows drops;
//   - not a device name of Windows: CON, PRN, AUX, NUL, COM0 to COM9, LPT0
//     to LPT9 and COM or LPT with a superscript 1, 2 or 3, in any case, with
//     or without an extension ("nul.txt", "Com1 .h").
// Returns why `name` (UTF-8) is not plain, as the end of a sentence ("it
// contains a path separator ('/')"), or nothing when it is plain.
VELCG_API std::optional<std::string> plainFileNameProblem(std::string_view name);

// The name as a file system that ignores case compares it (Unicode case
// folding, then normalization form C, as Windows and macOS treat names): two
// names with one key are one file there. Bytes that are not UTF-8 are their
// own key.
VELCG_API std::string fileNameFoldKey(std::string_view name);

} // namespace VelCG
