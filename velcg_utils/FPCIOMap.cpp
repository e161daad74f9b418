#include "velcg/FPCIOMap.hpp"

#include <map>

#include "coder/descriptor/IOMap.hpp"

namespace VelCG {

void FPCIOMap::setOverwritableIOPair(int inputPort, int outputPort) { pairs_[inputPort] = outputPort; }

int FPCIOMap::getOverwritableOutputPort(int inputPort) const {
    auto it = pairs_.find(inputPort);
    return it == pairs_.end() ? -1 : it->second;
}

coder::descriptor::IOMap FPCIOMap::serialize(coder::Repository& repository) const {
    // The hash map's order depends on its history; sorted pairs give one
    // record per map.
    const std::map<int, int> sorted(pairs_.begin(), pairs_.end());
    coder::descriptor::IOMapCreator creator(repository);
    coder::descriptor::IOMap map = creator.createIOMap();
    const auto inputs = map.getInportIndices();
    const auto outputs = map.getOutportIndicies();
    for (const auto& [input, output] : sorted) {
        inputs.append(coder::descriptor::IntegerArrayElement(input));
        outputs.append(coder::descriptor::IntegerArrayElement(output));
    }
    return map;
}

} // namespace VelCG
