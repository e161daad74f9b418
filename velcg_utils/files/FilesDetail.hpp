#pragma once

// Helpers shared by the sections, fragments and files of the generated-file
// area. Internal to the library: not installed, not exported.

#include <cstdio>
#include <string>
#include <vector>

#include <boost/unordered_set.hpp>

namespace VelCG::files_detail {

// Writes the bytes of text to stream in one block: exactly its length, no
// terminator, no line end added. A null stream raises
// "VelCG:FileSection:NullStream"; a stream that takes fewer bytes raises
// "VelCG:FileSection:WriteFailed" with the system's reason.
void writeBytes(std::FILE* stream, const std::string& text);
void writeBytes(std::FILE* stream, const char* data, std::size_t size);

// The system's text for errno ("No space left on device"), for a stream call
// that failed; a general text when the call set no errno.
std::string systemErrorText();

// A list of names in order of addition with the set that de-duplicates it.
// Appends name unless the set already holds it.
inline void appendUnique(std::vector<std::string>& list, boost::unordered_set<std::string>& seen,
                         const std::string& name) {
    if (seen.insert(name).second) list.push_back(name);
}

// Replaces the list by given as it stands (duplicates kept) and reseeds the
// set from it.
inline void replaceUnique(std::vector<std::string>& list, boost::unordered_set<std::string>& seen,
                          const std::vector<std::string>& given) {
    list = given;
    seen.clear();
    seen.insert(given.begin(), given.end());
}

} // namespace VelCG::files_detail
