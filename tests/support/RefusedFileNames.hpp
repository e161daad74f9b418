#pragma once

// File names that data must not choose (see velcg/PlainFileName.hpp).

#include <string>
#include <utility>
#include <vector>

namespace testing_support {

// The name, and the start of the reason it is refused for.
inline const std::vector<std::pair<std::string, const char*>>& refusedFileNames() {
    static const std::vector<std::pair<std::string, const char*>> names = {
        {"", "it is empty"},
        {".", "it names a directory"},
        {"..", "it names a directory"},
        {"../escaped.h", "it contains a path separator ('/')"},
        {"/tmp/x/abs_escaped.h", "it contains a path separator ('/')"},
        {"..\\escaped.h", "it contains a path separator ('\\')"},
        {"C:x.c", "it starts with a drive letter"},
        {"c:\\x.c", "it starts with a drive letter"},
        {std::string("a\0b.c", 5), "it contains a NUL character"},
        {"tab\there.c", "it contains a control character"},
        {"x.c:stream", "it contains ':'"},
        {"what?.c", "it contains '?'"},
        {"dot.", "it ends with '.'"},
        {"space ", "it ends with ' '"},
        {std::string(256, 'a'), "it is longer than 255 bytes"},
        {"CON", "it is a device name"},
        {"prn.h", "it is a device name"},
        {"Aux.c.bak", "it is a device name"},
        {"nul", "it is a device name"},
        {"com1", "it is a device name"},
        {"COM9.c", "it is a device name"},
        {"lpt1.txt", "it is a device name"},
        {"LpT9", "it is a device name"},
        {"con .c", "it is a device name"},
        {"COM\xC2\xB9.c", "it is a device name"},
    };
    return names;
}

} // namespace testing_support
