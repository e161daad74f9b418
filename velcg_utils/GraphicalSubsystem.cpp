#include "velcg/GraphicalSubsystem.hpp"

#include <algorithm>

#include "OwnedList.hpp"
#include "Serialization.hpp"
#include "coder/descriptor/GraphicalSystem.hpp"
#include "vel/i18n/Text.hpp"
#include "velcg/BlockHierarchyMap.hpp"
#include "velcg/GraphicalBlock.hpp"
#include "velcg/ModelDiagnostics.hpp"

namespace VelCG {

GraphicalSubsystem::~GraphicalSubsystem() {
    endScriptAccess();
    clearBlocks();
}

const char* GraphicalSubsystem::getFullyQualifiedKorbTypeName() const { return "VelCG.GraphicalSubsystem"; }

const char* GraphicalSubsystem::getStringForSubsystemType(GraphicalSubsystemType type) {
    switch (type) {
        case GraphicalSubsystemType::Root:
            return "root";
        case GraphicalSubsystemType::Virtual:
            return "virtual";
        case GraphicalSubsystemType::Atomic:
            return "atomic";
        case GraphicalSubsystemType::Enabled:
            return "enabled";
        case GraphicalSubsystemType::Trigger:
            return "trigger";
        case GraphicalSubsystemType::EnableTrigger:
            return "enabletrigger";
        case GraphicalSubsystemType::FcnCall:
            return "fcncall";
        case GraphicalSubsystemType::Action:
            return "action";
        case GraphicalSubsystemType::Iterator:
            return "iterator";
        case GraphicalSubsystemType::Unknown:
            return "unknown";
    }
    return "";
}

std::wstring GraphicalSubsystem::getName() const { return {}; }
std::wstring GraphicalSubsystem::getVelName() const { return {}; }
GraphicalSubsystemType GraphicalSubsystem::getType() const { return GraphicalSubsystemType::Unknown; }
std::wstring GraphicalSubsystem::getMaskType() const { return {}; }
const std::vector<GraphicalBlock*>& GraphicalSubsystem::getBlocks() const { return blocks_; }
const std::string& GraphicalSubsystem::getMangledPathName() const { return mangledPathName_; }
const std::string& GraphicalSubsystem::getMangledSubsystemPathName() const { return mangledPathName_; }

GraphicalBlock* GraphicalSubsystem::addGraphicalBlock(std::unique_ptr<GraphicalBlock> block) {
    if (!block) throwNullArgument("A graphical block");
    // Ask the kind queries before anything changes: they reach the
    // implementation object, and a failing one must leave neither a block
    // without its kind list nor a parent pointer into this subsystem. The
    // first true answer decides, in this order.
    std::vector<GraphicalBlock*>* kindList = nullptr;
    if (block->isInport())
        kindList = &inputPortBlocks_;
    else if (block->isOutport())
        kindList = &outputPortBlocks_;
    else if (block->isSubsystem())
        kindList = &subsystemBlocks_;
    else if (block->isDataStoreMemory())
        kindList = &dataStoreBlocks_;
    // Room for the kind list first, so that filing the block cannot fail
    // once it is owned; grown geometrically, as many blocks may be of one kind.
    if (kindList && kindList->size() == kindList->capacity())
        kindList->reserve(std::max<std::size_t>(4, 2 * kindList->capacity()));
    GraphicalBlock* added = detail::appendOwned(blocks_, std::move(block), "A graphical block");
    added->setParentSubsystem(this);
    if (kindList) kindList->push_back(added);
    return added;
}

void GraphicalSubsystem::finalize(std::size_t firstChildIndex) {
    if (!map_) throwNoModel("A subsystem that is not in a block hierarchy map");
    const auto& subsystems = map_->getSubsystems();
    const std::size_t count = subsystemBlocks_.size();
    if (count > 0 && (firstChildIndex >= subsystems.size() || count > subsystems.size() - firstChildIndex))
        throwIndexOutOfRange("the subsystems of the block hierarchy map",
                             static_cast<std::int64_t>(firstChildIndex + count - 1), subsystems.size());
    childSubsystems_.reserve(childSubsystems_.size() + count);
    for (std::size_t i = 0; i < count; ++i) childSubsystems_.push_back(subsystems[firstChildIndex + i]);
    // The subsystem is complete: give back the room the lists grew into.
    blocks_.shrink_to_fit();
}

GraphicalBlock* GraphicalSubsystem::getSubsystemBlock() const {
    if (!map_) return nullptr;
    // A negative index converts to a huge one and names no block.
    return map_->getBlockGivenIndices(static_cast<std::size_t>(subsystemBlockIndex_.first),
                                      static_cast<std::size_t>(subsystemBlockIndex_.second));
}

void GraphicalSubsystem::clearBlocks() {
    inputPortBlocks_.clear();
    outputPortBlocks_.clear();
    dataStoreBlocks_.clear();
    subsystemBlocks_.clear();
    childSubsystems_.clear();
    detail::deleteAll(blocks_);
}

coder::descriptor::GraphicalSystem GraphicalSubsystem::serialize(coder::Repository& repository) const {
    coder::descriptor::GraphicalSystemCreator creator(repository);
    creator.setName(vel::i18n::toUString(getName()));
    creator.setGraphicalName(vel::i18n::toUString(getVelName()));
    // A type without a name leaves the field absent rather than empty.
    const char* type = getStringForSubsystemType(getType());
    if (*type) creator.setSubsystemType(vel::i18n::toUString(type));
    creator.setMaskType(vel::i18n::toUString(getMaskType()));
    coder::descriptor::GraphicalSystem system = creator.createGraphicalSystem();
    const auto blocks = system.getGraphicalBlocks();
    for (GraphicalBlock* block : getBlocks())
        blocks.append(detail::nonNull(block, "A block of a graphical subsystem").serialize(repository));
    return system;
}

} // namespace VelCG
