// Fuzzes the host's text services: UTF-8 / wide / UTF-16 conversion (valid
// input must round-trip, invalid input must raise "i18n:InvalidText"),
// message formatting through the catalog, and feature switches declared,
// overridden from the environment, set and read with arbitrary names and
// values.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fuzzer/FuzzedDataProvider.h>
#include <iterator>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "vel/diag/Diagnostic.hpp"
#include "vel/diag/MessageCatalog.hpp"
#include "vel/feature/Feature.hpp"
#include "vel/i18n/Text.hpp"

namespace {

[[noreturn]] void fail(const std::string& what) {
    std::fprintf(stderr, "text fuzzer: %s\n", what.c_str());
    std::abort();
}

// Strict UTF-8: shortest form only, no surrogates, nothing above U+10FFFF.
bool validUtf8(const std::string& s) {
    std::size_t i = 0;
    while (i < s.size()) {
        const auto b = static_cast<unsigned char>(s[i]);
        std::size_t n = 0;
        std::uint32_t cp = 0;
        if (b < 0x80) {
            ++i;
            continue;
        } else if (b >= 0xC2 && b <= 0xDF) {
            n = 1;
            cp = b & 0x1Fu;
        } else if (b >= 0xE0 && b <= 0xEF) {
            n = 2;
            cp = b & 0x0Fu;
        } else if (b >= 0xF0 && b <= 0xF4) {
            n = 3;
            cp = b & 0x07u;
        } else {
            return false;
        }
        if (i + n >= s.size()) return false;
        for (std::size_t k = 1; k <= n; ++k) {
            const auto c = static_cast<unsigned char>(s[i + k]);
            if ((c & 0xC0u) != 0x80u) return false;
            cp = (cp << 6) | (c & 0x3Fu);
        }
        if ((n == 2 && cp < 0x800) || (n == 3 && cp < 0x10000) || cp > 0x10FFFF ||
            (cp >= 0xD800 && cp <= 0xDFFF))
            return false;
        i += n + 1;
    }
    return true;
}

bool validUtf16(const std::u16string& s) {
    for (std::size_t i = 0; i < s.size(); ++i) {
        const char16_t c = s[i];
        if (c >= 0xD800 && c <= 0xDBFF) {
            if (i + 1 >= s.size() || s[i + 1] < 0xDC00 || s[i + 1] > 0xDFFF) return false;
            ++i;
        } else if (c >= 0xDC00 && c <= 0xDFFF) {
            return false;
        }
    }
    return true;
}

bool validWide(const std::wstring& s) {
    if constexpr (sizeof(wchar_t) == 2) {
        return validUtf16(std::u16string(s.begin(), s.end()));
    } else {
        for (const wchar_t c : s) {
            const auto cp = static_cast<std::uint32_t>(c);
            if (cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF)) return false;
        }
        return true;
    }
}

// Runs a conversion of input whose validity is known: valid input must
// convert, invalid input must raise "i18n:InvalidText" and nothing else.
template <typename Convert>
auto convert(bool valid, const char* what, Convert&& f) -> std::optional<decltype(f())> {
    try {
        auto out = f();
        if (!valid) fail(std::string(what) + ": invalid input accepted");
        return out;
    } catch (const vel::diag::Exception& e) {
        if (e.identifier() != "i18n:InvalidText")
            fail(std::string(what) + ": unexpected diagnostic " + e.what());
        if (valid) fail(std::string(what) + ": valid input rejected: " + e.what());
    }
    return std::nullopt;
}

void fuzzUtf8(const std::string& utf8) {
    const bool valid = validUtf8(utf8);
    auto wide = convert(valid, "toWide(utf8)", [&] { return vel::i18n::toWide(utf8); });
    auto u16 = convert(valid, "toUString(utf8)", [&] { return vel::i18n::toUString(utf8); });
    if (!valid) return;
    if (vel::i18n::toUtf8(*wide) != utf8) fail("UTF-8 -> wide -> UTF-8 changed the text");
    if (vel::i18n::toUtf8(*u16) != utf8) fail("UTF-8 -> UTF-16 -> UTF-8 changed the text");
    if (vel::i18n::toUString(*wide) != *u16) fail("wide -> UTF-16 differs from UTF-8 -> UTF-16");
    if (vel::i18n::toWide(*u16) != *wide) fail("UTF-16 -> wide differs from UTF-8 -> wide");
}

void fuzzWide(const std::wstring& wide) {
    const bool valid = validWide(wide);
    auto utf8 = convert(valid, "toUtf8(wide)", [&] { return vel::i18n::toUtf8(wide); });
    auto u16 = convert(valid, "toUString(wide)", [&] { return vel::i18n::toUString(wide); });
    if (!valid) return;
    if (!validUtf8(*utf8)) fail("toUtf8(wide) produced invalid UTF-8");
    if (vel::i18n::toWide(*utf8) != wide) fail("wide -> UTF-8 -> wide changed the text");
    if (vel::i18n::toWide(*u16) != wide) fail("wide -> UTF-16 -> wide changed the text");
}

void fuzzUtf16(const std::u16string& u16) {
    const bool valid = validUtf16(u16);
    auto utf8 = convert(valid, "toUtf8(u16)", [&] { return vel::i18n::toUtf8(u16); });
    auto wide = convert(valid, "toWide(u16)", [&] { return vel::i18n::toWide(u16); });
    if (!valid) return;
    if (vel::i18n::toUString(*utf8) != u16) fail("UTF-16 -> UTF-8 -> UTF-16 changed the text");
    if (vel::i18n::toUString(*wide) != u16) fail("UTF-16 -> wide -> UTF-16 changed the text");
}

std::vector<std::string> arguments(FuzzedDataProvider& in) {
    std::vector<std::string> out(in.ConsumeIntegralInRange<std::size_t>(0, 4));
    for (auto& a : out) a = in.ConsumeRandomLengthString(32);
    return out;
}

void fuzzMessages(FuzzedDataProvider& in) {
    auto& catalog = vel::diag::MessageCatalog::instance();
    // A bounded set of keys, so that the process-wide catalog does not grow
    // from one input to the next.
    const std::string identifier = "FuzzCatalog:Key" + std::to_string(in.ConsumeIntegralInRange<int>(0, 7));
    const std::string pattern = in.ConsumeRandomLengthString(64);
    catalog.addCatalog("FuzzCatalog", {{identifier.substr(identifier.rfind(':') + 1), pattern}});
    if (catalog.lookup(identifier) != pattern) fail("lookup does not return the template just added");

    const std::vector<std::string> args = arguments(in);
    const vel::diag::Diagnostic d = vel::diag::Diagnostic::fromCatalog(identifier, args);
    if (d.identifier() != identifier || d.arguments() != args) fail("fromCatalog altered its input");
    if (d.message() != vel::diag::MessageCatalog::format(pattern, args))
        fail("message is not the formatted template");
    if (pattern.find('{') == std::string::npos && d.message() != pattern)
        fail("a template without braces changed");
    if (!args.empty() && vel::diag::MessageCatalog::format("<{1}>", args) != "<" + args[0] + ">")
        fail("{1} does not give the first argument");

    // Arbitrary identifiers, known to the catalog or not.
    const std::string anyIdentifier = in.ConsumeRandomLengthString(48);
    const vel::diag::Diagnostic any = vel::diag::Diagnostic::fromCatalog(anyIdentifier, args);
    if (any.identifier() != anyIdentifier || any.arguments() != args) fail("fromCatalog altered its input");
    try {
        any.raise();
    } catch (const vel::diag::Exception& e) {
        if (e.identifier() != anyIdentifier) fail("raise changed the identifier");
        // what() is a C string: it ends at the first NUL of the text.
        const std::string full = anyIdentifier + ": " + any.message();
        if (std::string(e.what()) != full.substr(0, full.find('\0')))
            fail("what() is not 'identifier: message'");
    }
}

// Environment overrides come from a fixed set of names and texts: the C
// library keeps every "name=value" string ever set, so arbitrary ones would
// grow the process without bound.
struct EnvCase {
    const char* text;
    enum { Value, Default, Unchecked } expect;
    int value;
};
constexpr EnvCase kEnvCases[] = {
    {"0", EnvCase::Value, 0},
    {"1", EnvCase::Value, 1},
    {"-17", EnvCase::Value, -17},
    {"2147483647", EnvCase::Value, 2147483647},
    {"-2147483648", EnvCase::Value, -2147483647 - 1},
    {"2147483648", EnvCase::Default, 0},
    {"-2147483649", EnvCase::Default, 0},
    {"99999999999999999999999", EnvCase::Default, 0},
    {"", EnvCase::Default, 0},
    {"x", EnvCase::Default, 0},
    {"12x", EnvCase::Default, 0},
    {"0x10", EnvCase::Default, 0},
    {" 7", EnvCase::Unchecked, 0},
    {"+7", EnvCase::Unchecked, 0},
};

void fuzzFeatures(FuzzedDataProvider& in) {
    std::vector<std::unique_ptr<vel::feature::Feature>> declared;
    const int count = in.ConsumeIntegralInRange<int>(1, 4);
    for (int i = 0; i < count && in.remaining_bytes() > 0; ++i) {
        const bool withEnv = in.ConsumeBool();
        // Short names so that duplicates occur.
        const std::string name = withEnv ? "FzEnv" + std::to_string(in.ConsumeIntegralInRange<int>(0, 3))
                                         : "Fz" + in.ConsumeRandomLengthString(4);
        const int defaultValue = in.ConsumeIntegral<int>();
        const std::string envName = "VEL_FEATURE_" + name;
        const EnvCase* env = nullptr;
        if (withEnv) {
            env = &kEnvCases[in.ConsumeIntegralInRange<std::size_t>(0, std::size(kEnvCases) - 1)];
            ::setenv(envName.c_str(), env->text, 1);
        }
        const bool duplicate = vel::feature::Registry::find(name) != nullptr;
        try {
            declared.push_back(std::make_unique<vel::feature::Feature>(name, "fuzzed", "fuzz", defaultValue));
            if (duplicate) fail("a duplicate feature name was accepted");
        } catch (const vel::diag::Exception& e) {
            if (!duplicate || e.identifier() != "Feature:Duplicate")
                fail(std::string("unexpected ") + e.what());
        }
        if (withEnv) ::unsetenv(envName.c_str());
        if (duplicate) continue;

        vel::feature::Feature& f = *declared.back();
        if (vel::feature::Registry::find(name) != &f) fail("the declared feature is not found by name");
        if (env && env->expect == EnvCase::Value && f.initialValue() != env->value)
            fail(std::string("the environment override '") + env->text + "' was not applied");
        if ((!env || env->expect == EnvCase::Default) && f.initialValue() != defaultValue)
            fail("the initial value is not the default");
        const int value = in.ConsumeIntegral<int>();
        {
            vel::feature::ScopedValue scoped(f, value);
            if (f.value() != value) fail("ScopedValue did not set the value");
        }
        if (f.value() != f.initialValue()) fail("ScopedValue did not restore the value");
        f.set(in.ConsumeIntegral<int>());
        f.reset();
        if (f.peek() != f.initialValue()) fail("reset did not return to the initial value");
        if (f.readCount() != 2) fail("reads were not counted");
    }
    declared.clear();
    for (vel::feature::Feature* f : vel::feature::Registry::all())
        if (f->name().rfind("Fz", 0) == 0) fail("a destroyed feature is still registered");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzedDataProvider in(data, size);
    switch (in.ConsumeIntegralInRange<int>(0, 4)) {
        case 0:
            fuzzUtf8(in.ConsumeRemainingBytesAsString());
            break;
        case 1: {
            std::wstring wide;
            // Mostly small code points, some beyond U+10FFFF or negative.
            while (in.remaining_bytes() >= sizeof(wchar_t)) {
                const int shift = in.ConsumeIntegralInRange<int>(0, 16);
                wide += static_cast<wchar_t>(in.ConsumeIntegral<std::uint32_t>() >> shift);
            }
            fuzzWide(wide);
            break;
        }
        case 2: {
            std::u16string u16;
            while (in.remaining_bytes() >= sizeof(char16_t))
                u16 += static_cast<char16_t>(in.ConsumeIntegral<std::uint16_t>());
            fuzzUtf16(u16);
            break;
        }
        case 3:
            fuzzMessages(in);
            break;
        default:
            fuzzFeatures(in);
            break;
    }
    return 0;
}
