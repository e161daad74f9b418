#pragma once

// The diagnostics of the model description, catalogue
// "VelCG:ModelDescription". Each is thrown as the host exception.

#include <string>
#include <vector>

#include "Messages.hpp"

namespace VelCG::description {

// Raises the diagnostic identifier (one of messages::ModelDescription) with
// the arguments of its template.
[[noreturn]] void raise(const char* identifier, std::vector<std::string> arguments);

// Whether identifier is one of messages::ModelDescription.
bool isDescriptionDiagnostic(const std::string& identifier);

} // namespace VelCG::description
