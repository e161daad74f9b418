#include "description/Diagnostics.hpp"

#include <string_view>

#include "vel/diag/Diagnostic.hpp"

namespace VelCG::description {

void raise(const char* identifier, std::vector<std::string> arguments) {
    vel::diag::throwError(identifier, std::move(arguments));
}

bool isDescriptionDiagnostic(const std::string& identifier) {
    // The catalogue part, "VelCG:ModelDescription:", shared by all of them.
    constexpr std::string_view any = messages::ModelDescription::MalformedJson;
    constexpr std::string_view catalogue = any.substr(0, any.rfind(':') + 1);
    return identifier.compare(0, catalogue.size(), catalogue) == 0;
}

} // namespace VelCG::description
