#pragma once

// The diagnostics of the model description, catalogue
// "VelCG:ModelDescription". Each is thrown as the host exception.

#include <string>
#include <vector>

namespace VelCG::description {

// Keys of the catalogue; the identifier is "VelCG:ModelDescription:<key>".
namespace key {
inline constexpr const char* kMalformedJson = "MalformedJson";
inline constexpr const char* kNotADescription = "NotADescription";
inline constexpr const char* kUnsupportedVersion = "UnsupportedVersion";
inline constexpr const char* kMissingField = "MissingField";
inline constexpr const char* kWrongType = "WrongType";
inline constexpr const char* kUnknownField = "UnknownField";
inline constexpr const char* kDuplicateField = "DuplicateField";
inline constexpr const char* kDanglingReference = "DanglingReference";
inline constexpr const char* kCycle = "Cycle";
inline constexpr const char* kUnknownEnumerator = "UnknownEnumerator";
inline constexpr const char* kInvalidValue = "InvalidValue";
inline constexpr const char* kNotAPlainFileName = "NotAPlainFileName";
inline constexpr const char* kSameFileName = "SameFileName";
inline constexpr const char* kReadFailed = "ReadFailed";
inline constexpr const char* kWriteFailed = "WriteFailed";
inline constexpr const char* kNotDescribable = "NotDescribable";
} // namespace key

// Raises "VelCG:ModelDescription:<key>" with the arguments of its template.
[[noreturn]] void raise(const char* key, std::vector<std::string> arguments);

} // namespace VelCG::description
