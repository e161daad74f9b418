#include "description/Diagnostics.hpp"

#include "vel/diag/Diagnostic.hpp"

namespace VelCG::description {

void raise(const char* key, std::vector<std::string> arguments) {
    vel::diag::throwError(std::string("VelCG:ModelDescription:") + key, std::move(arguments));
}

} // namespace VelCG::description
