#pragma once

// Diagnostics raised by the model classes for arguments that would otherwise
// reach memory they do not own: an index past the end of a list, an element
// used before it belongs to a model, an ownership transfer that would free an
// object still in use. Each is thrown as the host exception.

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>

#include "velcg/Export.hpp"

namespace vel::diag {
class Diagnostic;
}

namespace VelCG {

// The identifiers of the model classes' diagnostics, catalogue
// "VelCG:Model". They are public: callers match on them. Apart from
// DescriptorOfAnotherRun, whose template is in the library's catalogue, each
// is raised with a text of its own that names the element.
namespace messages::Model {
inline constexpr char IndexOutOfRange[] = "VelCG:Model:IndexOutOfRange";
inline constexpr char NoModel[] = "VelCG:Model:NoModel";
inline constexpr char NullArgument[] = "VelCG:Model:NullArgument";
inline constexpr char InvalidOwnership[] = "VelCG:Model:InvalidOwnership";
inline constexpr char DuplicateName[] = "VelCG:Model:DuplicateName";
inline constexpr char CyclicType[] = "VelCG:Model:CyclicType";
inline constexpr char CyclicSource[] = "VelCG:Model:CyclicSource";
inline constexpr char SerializationFailed[] = "VelCG:Model:SerializationFailed";
inline constexpr char DescriptorOfAnotherRun[] = "VelCG:Model:DescriptorOfAnotherRun";
inline constexpr char UnknownChildCoderGroup[] = "VelCG:Model:UnknownChildCoderGroup";
} // namespace messages::Model

// "Index 5 is out of range for <what> (3 elements)."
[[noreturn]] VELCG_API void throwIndexOutOfRange(const std::string& what, std::int64_t index,
                                                 std::size_t size);
// "<what> does not belong to a model."
[[noreturn]] VELCG_API void throwNoModel(const std::string& what);
// "<what> must not be null."
[[noreturn]] VELCG_API void throwNullArgument(const std::string& what);
[[noreturn]] VELCG_API void throwInvalidOwnership(const std::string& text);

// Receives the diagnostics that cannot be thrown because they arise where
// nothing may throw (a destructor). The default reporter writes
// "warning: <identifier>: <message>" to standard error.
using DiagnosticReporter = std::function<void(const vel::diag::Diagnostic&)>;

// Installs reporter for the whole process (an empty one restores the
// default) and returns the reporter it replaces. Thread-safe.
VELCG_API DiagnosticReporter setDiagnosticReporter(DiagnosticReporter reporter);

// Hands the diagnostic to the current reporter, on the calling thread and
// outside any lock, so a reporter may itself call setDiagnosticReporter.
// Never throws: an exception from the reporter is dropped.
VELCG_API void reportDiagnostic(const vel::diag::Diagnostic& diagnostic) noexcept;

} // namespace VelCG
