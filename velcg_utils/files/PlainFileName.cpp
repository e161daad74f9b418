#include "velcg/PlainFileName.hpp"

#include <algorithm>
#include <array>
#include <cstddef>
#include <locale>

#include <boost/locale/conversion.hpp>
#include <boost/locale/encoding_utf.hpp>
#include <boost/locale/generator.hpp>

namespace VelCG {

namespace {

constexpr std::size_t kMaxBytes = 255;

char asciiUpper(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }

bool equalsIgnoringAsciiCase(std::string_view a, std::string_view b) {
    return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(),
                                              [](char x, char y) { return asciiUpper(x) == asciiUpper(y); });
}

// Windows opens the device for these whatever follows the first dot, and
// ignores spaces before it.
bool isDeviceName(std::string_view name) {
    std::string_view base = name.substr(0, name.find('.'));
    while (!base.empty() && base.back() == ' ') base.remove_suffix(1);
    for (const char* device : {"CON", "PRN", "AUX", "NUL"})
        if (equalsIgnoringAsciiCase(base, device)) return true;
    if (base.size() < 4) return false;
    const std::string_view prefix = base.substr(0, 3);
    if (!equalsIgnoringAsciiCase(prefix, "COM") && !equalsIgnoringAsciiCase(prefix, "LPT")) return false;
    const std::string_view digit = base.substr(3);
    static constexpr std::array<std::string_view, 3> kSuperscripts = {"\xC2\xB9", "\xC2\xB2", "\xC2\xB3"};
    return (digit.size() == 1 && digit[0] >= '0' && digit[0] <= '9') ||
           std::find(kSuperscripts.begin(), kSuperscripts.end(), digit) != kSuperscripts.end();
}

std::string quoted(char c) { return std::string("'") + c + "'"; }

const std::locale& unicodeLocale() {
    static const std::locale locale = boost::locale::generator()("en_US.UTF-8");
    return locale;
}

} // namespace

std::optional<std::string> plainFileNameProblem(std::string_view name) {
    if (name.empty()) return "it is empty";
    if (name == "." || name == "..") return "it names a directory, not a file";
    if (name.size() > kMaxBytes) return "it is longer than " + std::to_string(kMaxBytes) + " bytes";
    if (name.size() >= 2 && name[1] == ':' &&
        ((name[0] >= 'A' && name[0] <= 'Z') || (name[0] >= 'a' && name[0] <= 'z')))
        return "it starts with a drive letter";
    for (const char c : name) {
        if (c == '/' || c == '\\') return "it contains a path separator (" + quoted(c) + ")";
        if (c == '\0') return "it contains a NUL character";
        if (static_cast<unsigned char>(c) < 0x20 || c == 0x7f) return "it contains a control character";
        if (std::string_view("<>:\"|?*").find(c) != std::string_view::npos)
            return "it contains " + quoted(c) + ", which Windows does not allow in a file name";
    }
    if (name.back() == '.' || name.back() == ' ')
        return "it ends with " + quoted(name.back()) + ", which Windows drops";
    if (isDeviceName(name)) return "it is a device name on Windows";
    return std::nullopt;
}

std::string fileNameFoldKey(std::string_view name) {
    try {
        // Case folding would replace what is not UTF-8; such bytes stay as they are.
        boost::locale::conv::utf_to_utf<char>(name.data(), name.data() + name.size(),
                                              boost::locale::conv::stop);
        const std::string folded =
            boost::locale::fold_case(name.data(), name.data() + name.size(), unicodeLocale());
        return boost::locale::normalize(folded, boost::locale::norm_nfc, unicodeLocale());
    } catch (const std::exception&) {
        return std::string(name);
    }
}

} // namespace VelCG
