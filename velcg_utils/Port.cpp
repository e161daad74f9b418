#include "velcg/Port.hpp"

#include "OwnedList.hpp"
#include "velcg/BlockHierarchyMap.hpp"
#include "velcg/CGModel.hpp"
#include "velcg/GraphicalBlock.hpp"
#include "velcg/GraphicalSubsystem.hpp"
#include "velcg/ModelDiagnostics.hpp"
#include "velcg/Region.hpp"

namespace VelCG {

Port::~Port() {
    for (Region* region : regions_) delete region;
}

const char* Port::getFullyQualifiedKorbTypeName() const { return "VelCG.Port"; }

std::wstring Port::getVelName() const { return {}; }
bool Port::getConnected() const { return false; }

void Port::addRegion(std::unique_ptr<Region> region) {
    detail::appendOwned(regions_, std::move(region), "A region");
}

void Port::setGrSrcPortIdx(int subsystemIdx, int blockIdx, int portIdx) {
    srcSubsystemIdx_ = subsystemIdx;
    srcBlockIdx_ = blockIdx;
    srcPortIdx_ = portIdx;
}

const Port* Port::getGraphicalSource() const {
    if (graphicalSource_) return graphicalSource_;
    if (!model_ || srcSubsystemIdx_ == -1) return nullptr;

    const auto& subsystems = model_->getBlockHierarchyMap()->getSubsystems();
    if (srcSubsystemIdx_ < 0 || static_cast<std::size_t>(srcSubsystemIdx_) >= subsystems.size())
        throwIndexOutOfRange("the subsystems of the block hierarchy map", srcSubsystemIdx_,
                             subsystems.size());
    const auto& blocks = subsystems[static_cast<std::size_t>(srcSubsystemIdx_)]->getBlocks();
    if (srcBlockIdx_ < 0 || static_cast<std::size_t>(srcBlockIdx_) >= blocks.size())
        throwIndexOutOfRange("the blocks of subsystem " + std::to_string(srcSubsystemIdx_), srcBlockIdx_,
                             blocks.size());
    const auto& outputs = blocks[static_cast<std::size_t>(srcBlockIdx_)]->getDataOutputPorts();
    // An index past the outputs is no source (not cached, so a later call
    // retries once the block has its ports).
    if (srcPortIdx_ >= 0 && srcPortIdx_ < static_cast<int>(outputs.size()))
        graphicalSource_ = outputs[static_cast<std::size_t>(srcPortIdx_)];
    return graphicalSource_;
}

void Port::setConnected(bool) {}
void Port::setGraphicalSource(const Port*) {}
void Port::setRegions(const std::vector<Region*>&) {}
void Port::setVelName(const std::wstring&) {}

} // namespace VelCG
