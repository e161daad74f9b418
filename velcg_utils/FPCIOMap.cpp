#include "velcg/FPCIOMap.hpp"

namespace VelCG {

void FPCIOMap::setOverwritableIOPair(int inputPort, int outputPort) { pairs_[inputPort] = outputPort; }

int FPCIOMap::getOverwritableOutputPort(int inputPort) const {
    auto it = pairs_.find(inputPort);
    return it == pairs_.end() ? -1 : it->second;
}

} // namespace VelCG
