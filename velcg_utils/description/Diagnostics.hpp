#pragma once

// The diagnostics of the model description, catalogue
// "VelCG:ModelDescription". Each is thrown as the host exception.

#include <string>
#include <vector>

#include "Messages.hpp"

namespace VelCG::description {

// The names of the identifiers before they moved to Messages.hpp; only
// modelFields() still uses them. Remove with its last use.
namespace key {
inline constexpr const char* kMalformedJson = messages::ModelDescription::MalformedJson;
inline constexpr const char* kNotADescription = messages::ModelDescription::NotADescription;
inline constexpr const char* kUnsupportedVersion = messages::ModelDescription::UnsupportedVersion;
inline constexpr const char* kMissingField = messages::ModelDescription::MissingField;
inline constexpr const char* kWrongType = messages::ModelDescription::WrongType;
inline constexpr const char* kUnknownField = messages::ModelDescription::UnknownField;
inline constexpr const char* kDuplicateField = messages::ModelDescription::DuplicateField;
inline constexpr const char* kDanglingReference = messages::ModelDescription::DanglingReference;
inline constexpr const char* kCycle = messages::ModelDescription::Cycle;
inline constexpr const char* kUnknownEnumerator = messages::ModelDescription::UnknownEnumerator;
inline constexpr const char* kInvalidValue = messages::ModelDescription::InvalidValue;
inline constexpr const char* kNotAPlainFileName = messages::ModelDescription::NotAPlainFileName;
inline constexpr const char* kSameFileName = messages::ModelDescription::SameFileName;
inline constexpr const char* kReadFailed = messages::ModelDescription::ReadFailed;
inline constexpr const char* kWriteFailed = messages::ModelDescription::WriteFailed;
inline constexpr const char* kNotDescribable = messages::ModelDescription::NotDescribable;
} // namespace key

// Raises the diagnostic identifier (one of messages::ModelDescription) with
// the arguments of its template.
[[noreturn]] void raise(const char* identifier, std::vector<std::string> arguments);

// Whether identifier is one of messages::ModelDescription.
bool isDescriptionDiagnostic(const std::string& identifier);

} // namespace VelCG::description
