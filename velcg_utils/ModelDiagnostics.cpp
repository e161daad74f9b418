#include "velcg/ModelDiagnostics.hpp"

#include "vel/diag/Diagnostic.hpp"

namespace VelCG {

void throwIndexOutOfRange(const std::string& what, std::int64_t index, std::size_t size) {
    vel::diag::throwErrorText(kIndexOutOfRangeId, "Index " + std::to_string(index) + " is out of range for " +
                                                      what + " (" + std::to_string(size) + " elements).");
}

void throwNoModel(const std::string& what) {
    vel::diag::throwErrorText(kNoModelId, what + " does not belong to a model.");
}

void throwNullArgument(const std::string& what) {
    vel::diag::throwErrorText(kNullArgumentId, what + " must not be null.");
}

void throwInvalidOwnership(const std::string& text) { vel::diag::throwErrorText(kInvalidOwnershipId, text); }

} // namespace VelCG
