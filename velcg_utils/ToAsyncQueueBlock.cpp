#include "velcg/ToAsyncQueueBlock.hpp"

#include <algorithm>

#include "OwnedList.hpp"
#include "velcg/ModelDiagnostics.hpp"

namespace VelCG {

ToAsyncQueueBlock::ToAsyncQueueBlock(GraphicalBlockIF* impl) : GraphicalBlock(impl) {}

ToAsyncQueueBlock::~ToAsyncQueueBlock() {
    for (ToAsyncQueueBlock* leaf : leafElements_) delete leaf;
}

const char* ToAsyncQueueBlock::getFullyQualifiedKorbTypeName() const { return "VelCG.ToAsyncQueueBlock"; }

bool ToAsyncQueueBlock::holds(const ToAsyncQueueBlock* record) const {
    for (const ToAsyncQueueBlock* leaf : leafElements_)
        if (leaf == record || leaf->holds(record)) return true;
    return false;
}

void ToAsyncQueueBlock::checkLeaf(const ToAsyncQueueBlock* leaf) const {
    if (!leaf) throwNullArgument("A leaf element");
    // A record that is, or holds, this one would make the bus own itself and
    // be deleted twice.
    if (leaf == this || leaf->holds(this))
        throwInvalidOwnership(
            "An async-queue block cannot be a leaf element of itself or of its own leaves.");
}

void ToAsyncQueueBlock::addLeafElement(ToAsyncQueueBlock* leaf) {
    checkLeaf(leaf);
    if (std::find(leafElements_.begin(), leafElements_.end(), leaf) != leafElements_.end())
        throwInvalidOwnership("The async-queue block already owns this leaf element.");
    leafElements_.push_back(leaf);
}

void ToAsyncQueueBlock::setLeafElements(const std::vector<ToAsyncQueueBlock*>& leaves) {
    // Current leaves may be kept; those left out are deleted.
    detail::checkReplacement(leafElements_, leaves, "A leaf element", true);
    for (const ToAsyncQueueBlock* leaf : leaves) checkLeaf(leaf);
    detail::replaceOwned(leafElements_, leaves);
}

} // namespace VelCG
