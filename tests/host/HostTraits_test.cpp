#include "korb/HostTraits.hpp"

#include <cstdint>
#include <functional>
#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <vector>

#include "HostileValues.hpp"
#include "vel/diag/Diagnostic.hpp"

namespace {

using testing_support::cellOf;

class Node : public vel::mi::Handle {
public:
    const char* getFullyQualifiedKorbTypeName() const override { return "Test.Node"; }
};

class Other : public vel::mi::Handle {
public:
    const char* getFullyQualifiedKorbTypeName() const override { return "Test.Other"; }
};

std::string show(bool v) { return v ? "true" : "false"; }
std::string show(double v) {
    std::ostringstream os;
    os << v;
    return os.str();
}
std::string show(std::int64_t v) { return std::to_string(v); }
std::string show(std::int32_t v) { return std::to_string(v); }
std::string show(std::uint32_t v) { return std::to_string(v); }
std::string show(const std::string& v) { return "'" + v + "'"; }
std::string show(const std::wstring& v) { return "L'" + std::string(v.begin(), v.end()) + "'"; }
std::string show(const Node* v) { return v ? "node" : "null"; }
template <class T>
std::string show(const std::vector<T>& v) {
    std::string out = "[";
    for (std::size_t i = 0; i < v.size(); ++i) out += (i ? ", " : "") + show(v[i]);
    return out + "]";
}

// The native value fromArray gives, or the identifier of the diagnostic it
// raises.
template <class T>
std::function<std::string()> from(tuvArrayPtr a) {
    return [a] {
        try {
            return show(korb::HostTraits<T>::fromArray(*a));
        } catch (const vel::diag::Exception& e) {
            return e.identifier();
        }
    };
}

const std::u16string kLoneSurrogate = {u'a', char16_t(0xD800)};

// The message of a mismatch shows in Client_test.cpp.
TEST(HostTraits, FromArrayAcceptsExactlyTheValuesThatFitTheNativeType) {
    Node node;
    Other other;
    tuvArrayPtr destroyed;
    {
        Node gone;
        destroyed = tuvArray::objects({gone.makeRef()});
    }
    struct Row {
        const char* what;
        std::function<std::string()> convert;
        const char* expected;
    } rows[] = {
        {"logical to bool", from<bool>(tuvArray::logical(true)), "true"},
        {"0 to bool", from<bool>(tuvArray::float64(0)), "false"},
        {"1 to bool", from<bool>(tuvArray::int32(1)), "true"},
        {"2 to bool", from<bool>(tuvArray::float64(2)), "Korb:TypeMismatch"},
        {"text to bool", from<bool>(tuvArray::fromUtf8("yes")), "Korb:TypeMismatch"},
        {"integral double to int32", from<std::int32_t>(tuvArray::float64(42)), "42"},
        {"fraction to int32", from<std::int32_t>(tuvArray::float64(1.5)), "Korb:TypeMismatch"},
        {"3e9 to int32", from<std::int32_t>(tuvArray::float64(3e9)), "Korb:TypeMismatch"},
        {"int64 beyond int32", from<std::int32_t>(tuvArray::int64(INT64_MAX)), "Korb:TypeMismatch"},
        {"vector to int32", from<std::int32_t>(tuvArray::int32Vector({1, 2})), "Korb:TypeMismatch"},
        {"-1 to uint32", from<std::uint32_t>(tuvArray::float64(-1)), "Korb:TypeMismatch"},
        {"int64 max to int64", from<std::int64_t>(tuvArray::int64(INT64_MAX)), "9223372036854775807"},
        {"2^63 to int64", from<std::int64_t>(tuvArray::float64(9223372036854775808.0)), "Korb:TypeMismatch"},
        {"int32 to double", from<double>(tuvArray::int32(3)), "3"},
        {"text to double", from<double>(tuvArray::fromUtf8("3")), "Korb:TypeMismatch"},
        {"text to string", from<std::string>(tuvArray::fromUtf8("x\xc3\xa9")), "'x\xc3\xa9'"},
        {"empty value to string", from<std::string>(tuvArray::empty()), "''"},
        {"number to string", from<std::string>(tuvArray::int32(1)), "Korb:TypeMismatch"},
        {"broken text to string", from<std::string>(tuvArray::chars(kLoneSurrogate)), "i18n:InvalidText"},
        {"broken text to wide string", from<std::wstring>(tuvArray::chars(kLoneSurrogate)),
         "i18n:InvalidText"},
        {"doubles to int32 vector", from<std::vector<std::int32_t>>(tuvArray::doubleVector({4, 5})),
         "[4, 5]"},
        {"fraction in int32 vector", from<std::vector<std::int32_t>>(tuvArray::doubleVector({1.5})),
         "Korb:TypeMismatch"},
        {"empty cell to int32 vector", from<std::vector<std::int32_t>>(tuvArray::cell(0)), "[]"},
        {"cell to string list",
         from<std::vector<std::string>>(cellOf({tuvArray::fromUtf8("p"), tuvArray::empty()})), "['p', '']"},
        {"text to string list", from<std::vector<std::string>>(tuvArray::fromUtf8("a")), "Korb:TypeMismatch"},
        {"number in string list", from<std::vector<std::string>>(cellOf({tuvArray::int32(1)})),
         "Korb:TypeMismatch"},
        {"object", from<Node*>(tuvArray::objects({node.makeRef()})), "node"},
        {"empty value to object", from<Node*>(tuvArray::empty()), "null"},
        {"two objects to one", from<Node*>(tuvArray::objects({node.makeRef(), node.makeRef()})),
         "Korb:TypeMismatch"},
        {"object of another class", from<Node*>(tuvArray::objects({other.makeRef()})), "Korb:TypeMismatch"},
        {"destroyed object", from<Node*>(destroyed), "Korb:InvalidHandle"},
        {"objects to list", from<std::vector<Node*>>(tuvArray::objects({node.makeRef(), node.makeRef()})),
         "[node, node]"},
        {"destroyed object in list", from<std::vector<Node*>>(destroyed), "Korb:InvalidHandle"},
        {"number to object list", from<std::vector<Node*>>(tuvArray::int32(1)), "Korb:TypeMismatch"},
    };
    for (const auto& r : rows) EXPECT_EQ(r.expected, r.convert()) << r.what;
}

} // namespace
