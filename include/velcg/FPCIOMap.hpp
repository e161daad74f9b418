#pragma once

#include <unordered_map>

#include "velcg/Export.hpp"

namespace coder {
class Repository;
namespace descriptor {
class IOMap;
} // namespace descriptor
} // namespace coder

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

    // Writes the pairs into the store as two parallel lists of input and
    // output ports, in ascending order of input port so that the same map
    // always gives the same record. REQUIRES: a transaction is open on
    // repository.
    coder::descriptor::IOMap serialize(coder::Repository& repository) const;

private:
    std::unordered_map<int, int> pairs_;
};

} // namespace VelCG
