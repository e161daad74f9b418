#include "vel/i18n/Text.hpp"

#include <boost/locale/encoding_utf.hpp>

#include "vel/diag/Diagnostic.hpp"
#include "vel/i18n/Messages.hpp"

namespace vel::i18n {

namespace {
template <class To, class From>
std::basic_string<To> convert(std::basic_string_view<From> in, const char* what) {
    try {
        return boost::locale::conv::utf_to_utf<To>(in.data(), in.data() + in.size(),
                                                   boost::locale::conv::stop);
    } catch (const boost::locale::conv::conversion_error&) {
        diag::throwErrorText(vel::i18n::messages::InvalidText,
                             std::string("The text is not valid ") + what + ".");
    }
}
} // namespace

std::wstring toWide(std::string_view utf8) { return convert<wchar_t>(utf8, "UTF-8"); }
std::string toUtf8(std::wstring_view wide) { return convert<char>(wide, "wide-character text"); }
std::string toUtf8(std::u16string_view text) { return convert<char>(text, "UTF-16"); }
ustring toUString(std::string_view utf8) { return convert<char16_t>(utf8, "UTF-8"); }
ustring toUString(std::wstring_view wide) { return convert<char16_t>(wide, "wide-character text"); }
std::wstring toWide(std::u16string_view text) { return convert<wchar_t>(text, "UTF-16"); }

} // namespace vel::i18n
