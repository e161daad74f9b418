#pragma once

#include <unordered_map>

#include "velcg/Export.hpp"

namespace VelCG {

// For a function prototype: which input port may be overwritten by which
// output port (the two share storage).
class VELCG_API FPCIOMap {
public:
    // Replaces an earlier pair for the same input port.
    void setOverwritableIOPair(int inputPort, int outputPort);
    // The output port paired with inputPort, or -1 when it has none.
    int getOverwritableOutputPort(int inputPort) const;

    const std::unordered_map<int, int>& getPairs() const { return pairs_; }

private:
    std::unordered_map<int, int> pairs_;
};

} // namespace VelCG
