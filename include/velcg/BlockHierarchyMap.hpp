#pragma once

#include <cstddef>
#include <memory>
#include <vector>

#include "vel/mi/Handle.hpp"
#include "velcg/CachedAnswer.hpp"
#include "velcg/Export.hpp"

namespace coder {
class Repository;
namespace descriptor {
class BlockHierarchyMap;
} // namespace descriptor
} // namespace coder

namespace VelCG {

class GraphicalBlock;
class GraphicalSubsystem;

// The graphical subsystems of the model, root first, in breadth-first order
// (the root, then the children of subsystem 0, then those of subsystem 1,
// ..., each subsystem's children in the order of its subsystem blocks).
// Owns the subsystems. Filled while the model is compiled, then finalized
// once.
class VELCG_API BlockHierarchyMap : public vel::mi::Handle {
public:
    BlockHierarchyMap() = default;
    ~BlockHierarchyMap() override;
    BlockHierarchyMap(const BlockHierarchyMap&) = delete;
    BlockHierarchyMap& operator=(const BlockHierarchyMap&) = delete;

    const char* getFullyQualifiedKorbTypeName() const override;

    // Points the subsystem at this map, takes ownership and empties the
    // reduced-blocks cache. Returns the subsystem. A null subsystem is refused.
    GraphicalSubsystem* addGraphicalSubsystem(std::unique_ptr<GraphicalSubsystem> subsystem);

    virtual const std::vector<GraphicalSubsystem*>& getSubsystems() const;
    // Deletes the current subsystems and takes ownership of the given ones.
    // A list sharing a subsystem with the current one, holding a null or the
    // same subsystem twice is refused with a diagnostic before anything
    // changes.
    virtual void setSubsystems(const std::vector<GraphicalSubsystem*>& subsystems);

    // Links every subsystem to its children: subsystem i gets the K_i
    // subsystems that follow those of subsystems 0..i-1, starting at 1.
    void finalize();

    // Block b of subsystem s, or null when either index is past the end.
    GraphicalBlock* getBlockGivenIndices(std::size_t subsystemIndex, std::size_t blockIndex) const;

    // Every block whose isReduced() is true, subsystem by subsystem. Cached
    // while non-empty; adding a subsystem empties the cache. Safe on two
    // threads at once (see CachedAnswer).
    const std::vector<GraphicalBlock*>& getReducedBlocks() const;

    // Writes the map and each of its subsystems, in order, into the store.
    // REQUIRES: a transaction is open on repository. A null subsystem raises
    // "VelCG:Model:NullArgument".
    coder::descriptor::BlockHierarchyMap serialize(coder::Repository& repository) const;

private:
    void clearSubsystems();

    std::vector<GraphicalSubsystem*> subsystems_;
    CachedAnswer<std::vector<GraphicalBlock*>> reducedBlocks_;
};

} // namespace VelCG
