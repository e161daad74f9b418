#include "velcg/BlockHierarchyMap.hpp"

#include <algorithm>
#include <unordered_set>

#include "velcg/GraphicalBlock.hpp"
#include "velcg/GraphicalSubsystem.hpp"
#include "velcg/ModelDiagnostics.hpp"

namespace VelCG {

BlockHierarchyMap::~BlockHierarchyMap() { clearSubsystems(); }

const char* BlockHierarchyMap::getFullyQualifiedKorbTypeName() const { return "VelCG.BlockHierarchyMap"; }

GraphicalSubsystem* BlockHierarchyMap::addGraphicalSubsystem(std::unique_ptr<GraphicalSubsystem> subsystem) {
    if (!subsystem) throwNullArgument("A graphical subsystem");
    subsystem->setBlockHierarchyMap(this);
    subsystems_.push_back(subsystem.release());
    reducedBlocks_.clear();
    return subsystems_.back();
}

const std::vector<GraphicalSubsystem*>& BlockHierarchyMap::getSubsystems() const { return subsystems_; }

void BlockHierarchyMap::setSubsystems(const std::vector<GraphicalSubsystem*>& subsystems) {
    std::unordered_set<const GraphicalSubsystem*> seen;
    for (const GraphicalSubsystem* subsystem : subsystems) {
        if (!subsystem) throwNullArgument("A graphical subsystem");
        if (!seen.insert(subsystem).second)
            throwInvalidOwnership("The same subsystem is given twice to the block hierarchy map.");
        if (std::find(subsystems_.begin(), subsystems_.end(), subsystem) != subsystems_.end())
            throwInvalidOwnership("The new subsystems of the block hierarchy map include a current one, "
                                  "which would be deleted before use.");
    }
    clearSubsystems();
    for (GraphicalSubsystem* subsystem : subsystems) {
        subsystem->setBlockHierarchyMap(this);
        subsystems_.push_back(subsystem);
    }
}

void BlockHierarchyMap::finalize() {
    std::size_t next = 1;
    for (GraphicalSubsystem* subsystem : subsystems_) {
        subsystem->finalize(next);
        next += subsystem->getSubsystemBlocks().size();
    }
}

GraphicalBlock* BlockHierarchyMap::getBlockGivenIndices(std::size_t subsystemIndex, std::size_t blockIndex) const {
    if (subsystemIndex >= subsystems_.size()) return nullptr;
    const auto& blocks = subsystems_[subsystemIndex]->getBlocks();
    return blockIndex < blocks.size() ? blocks[blockIndex] : nullptr;
}

const std::vector<GraphicalBlock*>& BlockHierarchyMap::getReducedBlocks() const {
    if (!reducedBlocks_.empty()) return reducedBlocks_;
    for (const GraphicalSubsystem* subsystem : subsystems_)
        for (GraphicalBlock* block : subsystem->getBlocks())
            if (block->isReduced()) reducedBlocks_.push_back(block);
    return reducedBlocks_;
}

void BlockHierarchyMap::clearSubsystems() {
    for (GraphicalSubsystem* subsystem : subsystems_) delete subsystem;
    subsystems_.clear();
    reducedBlocks_.clear();
}

} // namespace VelCG
