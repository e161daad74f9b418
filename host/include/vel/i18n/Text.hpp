#pragma once

#include <string>
#include <string_view>

#include "vel/HostExport.hpp"

namespace vel::i18n {

// The host's Unicode string: UTF-16 code units.
using ustring = std::u16string;

// Conversions between UTF-8 narrow strings, wide strings (UTF-16 on Windows,
// UTF-32 elsewhere) and host Unicode strings. Input that is not valid in its
// encoding (a broken UTF-8 sequence, a lone surrogate) is rejected: the
// conversion raises the diagnostic "i18n:InvalidText" and produces nothing,
// so malformed names never reach generated code or the code descriptor
// silently altered. Embedded NUL characters are converted like any other.
VELHOST_API std::wstring toWide(std::string_view utf8);
VELHOST_API std::string toUtf8(std::wstring_view wide);
VELHOST_API std::string toUtf8(std::u16string_view text);
VELHOST_API ustring toUString(std::string_view utf8);
VELHOST_API ustring toUString(std::wstring_view wide);
VELHOST_API std::wstring toWide(std::u16string_view text);

} // namespace vel::i18n
