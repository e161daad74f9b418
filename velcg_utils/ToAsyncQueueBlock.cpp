#include "velcg/ToAsyncQueueBlock.hpp"

#include <algorithm>
#include <unordered_set>

#include "velcg/ModelDiagnostics.hpp"

namespace VelCG {

ToAsyncQueueBlock::ToAsyncQueueBlock(GraphicalBlockIF* impl) : GraphicalBlock(impl) {}

ToAsyncQueueBlock::~ToAsyncQueueBlock() {
    for (ToAsyncQueueBlock* leaf : leafElements_) delete leaf;
}

const char* ToAsyncQueueBlock::getFullyQualifiedKorbTypeName() const { return "VelCG.ToAsyncQueueBlock"; }

void ToAsyncQueueBlock::checkLeaf(const ToAsyncQueueBlock* leaf) const {
    if (!leaf) throwNullArgument("A leaf element");
    if (leaf == this) throwInvalidOwnership("An async-queue block cannot be a leaf element of itself.");
}

void ToAsyncQueueBlock::addLeafElement(ToAsyncQueueBlock* leaf) {
    checkLeaf(leaf);
    if (std::find(leafElements_.begin(), leafElements_.end(), leaf) != leafElements_.end())
        throwInvalidOwnership("The async-queue block already owns this leaf element.");
    leafElements_.push_back(leaf);
}

void ToAsyncQueueBlock::setLeafElements(const std::vector<ToAsyncQueueBlock*>& leaves) {
    std::unordered_set<const ToAsyncQueueBlock*> kept;
    for (const ToAsyncQueueBlock* leaf : leaves) {
        checkLeaf(leaf);
        if (!kept.insert(leaf).second) throwInvalidOwnership("The same leaf element is given twice.");
    }
    for (ToAsyncQueueBlock* leaf : leafElements_)
        if (!kept.count(leaf)) delete leaf;
    leafElements_ = leaves;
}

} // namespace VelCG
