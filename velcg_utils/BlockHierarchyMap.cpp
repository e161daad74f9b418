#include "velcg/BlockHierarchyMap.hpp"

#include <cassert>

#include "OwnedList.hpp"
#include "Serialization.hpp"
#include "coder/descriptor/BlockHierarchyMap.hpp"
#include "velcg/GraphicalBlock.hpp"
#include "velcg/GraphicalSubsystem.hpp"
#include "velcg/ModelDiagnostics.hpp"

namespace VelCG {

BlockHierarchyMap::~BlockHierarchyMap() {
    endScriptAccess();
    clearSubsystems();
}

const char* BlockHierarchyMap::getFullyQualifiedKorbTypeName() const { return "VelCG.BlockHierarchyMap"; }

GraphicalSubsystem* BlockHierarchyMap::addGraphicalSubsystem(std::unique_ptr<GraphicalSubsystem> subsystem) {
    GraphicalSubsystem* added = subsystem.get();
    detail::appendOwned(subsystems_, std::move(subsystem), "A graphical subsystem");
    added->setBlockHierarchyMap(this);
    reducedBlocks_.clear();
    return added;
}

const std::vector<GraphicalSubsystem*>& BlockHierarchyMap::getSubsystems() const { return subsystems_; }

void BlockHierarchyMap::setSubsystems(const std::vector<GraphicalSubsystem*>& subsystems) {
    detail::checkReplacement(subsystems_, subsystems, "A subsystem of the block hierarchy map");
    detail::replaceOwned(subsystems_, subsystems);
    reducedBlocks_.clear();
    for (GraphicalSubsystem* subsystem : subsystems_) subsystem->setBlockHierarchyMap(this);
}

void BlockHierarchyMap::finalize() {
    // The children of all subsystems together take the places after the
    // root; check that they exist before linking any, so that a refused map
    // is left as it was.
    std::size_t children = 0;
    for (const GraphicalSubsystem* subsystem : subsystems_)
        children += subsystem->getSubsystemBlocks().size();
    if (children > 0 && children >= subsystems_.size())
        throwIndexOutOfRange("the subsystems of the block hierarchy map", static_cast<std::int64_t>(children),
                             subsystems_.size());
    std::size_t next = 1;
    for (GraphicalSubsystem* subsystem : subsystems_) {
        assert(next + subsystem->getSubsystemBlocks().size() <= subsystems_.size() &&
               "the children were counted before linking");
        subsystem->finalize(next);
        next += subsystem->getSubsystemBlocks().size();
    }
}

GraphicalBlock* BlockHierarchyMap::getBlockGivenIndices(std::size_t subsystemIndex,
                                                        std::size_t blockIndex) const {
    if (subsystemIndex >= subsystems_.size()) return nullptr;
    const auto& blocks = subsystems_[subsystemIndex]->getBlocks();
    return blockIndex < blocks.size() ? blocks[blockIndex] : nullptr;
}

const std::vector<GraphicalBlock*>& BlockHierarchyMap::getReducedBlocks() const {
    if (const auto* kept = reducedBlocks_.get()) return *kept;
    // Collected aside: a block whose query fails must not leave a partial
    // list in the cache, where later calls would take it as complete.
    // Sized for every block, then trimmed to the reduced ones, so that a
    // large list is allocated once and keeps no slack.
    std::size_t blocks = 0;
    for (const GraphicalSubsystem* subsystem : subsystems_) blocks += subsystem->getBlocks().size();
    std::vector<GraphicalBlock*> reduced;
    reduced.reserve(blocks);
    for (const GraphicalSubsystem* subsystem : subsystems_)
        for (GraphicalBlock* block : subsystem->getBlocks())
            if (block->isReduced()) reduced.push_back(block);
    if (reduced.empty()) {
        static const std::vector<GraphicalBlock*> none;
        return none;
    }
    if (reduced.size() < reduced.capacity()) reduced.shrink_to_fit();
    return reducedBlocks_.keep(std::move(reduced));
}

void BlockHierarchyMap::clearSubsystems() {
    reducedBlocks_.clear();
    detail::deleteAll(subsystems_);
}

coder::descriptor::BlockHierarchyMap BlockHierarchyMap::serialize(coder::Repository& repository) const {
    coder::descriptor::BlockHierarchyMapCreator creator(repository);
    coder::descriptor::BlockHierarchyMap map = creator.createBlockHierarchyMap();
    const auto systems = map.getGraphicalSystems();
    for (const GraphicalSubsystem* subsystem : getSubsystems())
        systems.append(
            detail::nonNull(subsystem, "A subsystem of the block hierarchy map").serialize(repository));
    return map;
}

} // namespace VelCG
