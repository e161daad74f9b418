#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "vel/mi/Handle.hpp"
#include "velcg/Export.hpp"

namespace coder {
class Repository;
namespace descriptor {
class GraphicalSystem;
} // namespace descriptor
} // namespace coder

namespace VelCG {

class BlockHierarchyMap;
class GraphicalBlock;

enum class GraphicalSubsystemType : std::int32_t {
    Root = 0,
    Virtual = 1,
    Atomic = 2,
    Enabled = 3,
    Trigger = 4,
    EnableTrigger = 5,
    FcnCall = 6,
    Action = 7,
    Iterator = 8,
    Unknown = 9,
};

// One subsystem of the block diagram. Owns its blocks and sorts them by
// kind as they are added; after BlockHierarchyMap::finalize it also knows
// its child subsystems. A base class: the modelling environment answers the
// name, type and mask queries (StoredGraphicalSubsystem answers them from
// stored values).
class VELCG_API GraphicalSubsystem : public vel::mi::Handle {
public:
    GraphicalSubsystem() = default;
    ~GraphicalSubsystem() override;
    GraphicalSubsystem(const GraphicalSubsystem&) = delete;
    GraphicalSubsystem& operator=(const GraphicalSubsystem&) = delete;

    const char* getFullyQualifiedKorbTypeName() const override;

    // "root" ... "unknown"; empty for values outside the enumeration.
    static const char* getStringForSubsystemType(GraphicalSubsystemType type);

    virtual std::wstring getName() const;
    virtual std::wstring getVelName() const;
    virtual GraphicalSubsystemType getType() const;
    virtual std::wstring getMaskType() const;
    virtual const std::vector<GraphicalBlock*>& getBlocks() const;
    virtual const std::string& getMangledPathName() const;
    virtual const std::string& getMangledSubsystemPathName() const;

    void setMangledPathName(const std::string& name) { mangledPathName_ = name; }

    // Sets the block's parent to this subsystem, takes ownership and files
    // the block in the first matching kind list (inport, outport, subsystem,
    // data store memory, tested in that order). Returns the block.
    GraphicalBlock* addGraphicalBlock(std::unique_ptr<GraphicalBlock> block);

    // Appends the map's subsystems firstChildIndex .. firstChildIndex+K-1,
    // K the number of subsystem blocks, to the child subsystems. Raises
    // "VelCG:Model:NoModel" without a map and "VelCG:Model:IndexOutOfRange"
    // when the map does not hold them (nothing is appended then).
    void finalize(std::size_t firstChildIndex);

    // The block representing this subsystem in the map, or null (no map,
    // or an index pair that names no block, such as the initial (-1, -1)).
    GraphicalBlock* getSubsystemBlock() const;

    const std::vector<GraphicalBlock*>& getInputPortBlocks() const { return inputPortBlocks_; }
    const std::vector<GraphicalBlock*>& getOutputPortBlocks() const { return outputPortBlocks_; }
    const std::vector<GraphicalBlock*>& getDataStoreBlocks() const { return dataStoreBlocks_; }
    const std::vector<GraphicalBlock*>& getSubsystemBlocks() const { return subsystemBlocks_; }
    const std::vector<GraphicalSubsystem*>& getChildSubsystems() const { return childSubsystems_; }
    const std::pair<int, int>& getSubsystemBlockIndex() const { return subsystemBlockIndex_; }
    void setSubsystemBlockIndex(const std::pair<int, int>& index) { subsystemBlockIndex_ = index; }
    const std::wstring& getSID() const { return sid_; }
    void setSID(const std::wstring& sid) { sid_ = sid; }
    int getNVOwnerSysIdx() const { return nvOwnerSysIdx_; }
    void setNVOwnerSysIdx(int index) { nvOwnerSysIdx_ = index; }
    int getVelContextSysNum() const { return velContextSysNum_; }
    void setVelContextSysNum(int number) { velContextSysNum_ = number; }
    const BlockHierarchyMap* getBlockHierarchyMap() const { return map_; }
    void setBlockHierarchyMap(const BlockHierarchyMap* map) { map_ = map; }

    // Writes the subsystem (names, type string when the type has one, mask
    // type) and then each of its blocks, in order, into the store.
    // REQUIRES: a transaction is open on repository. A null block raises
    // "VelCG:Model:NullArgument".
    coder::descriptor::GraphicalSystem serialize(coder::Repository& repository) const;

private:
    void clearBlocks();

    std::vector<GraphicalBlock*> blocks_;
    std::string mangledPathName_;
    std::pair<int, int> subsystemBlockIndex_{-1, -1};
    std::vector<GraphicalBlock*> inputPortBlocks_;
    std::vector<GraphicalBlock*> outputPortBlocks_;
    std::vector<GraphicalBlock*> dataStoreBlocks_;
    std::vector<GraphicalBlock*> subsystemBlocks_;
    std::vector<GraphicalSubsystem*> childSubsystems_;
    int velContextSysNum_ = 0;
    int nvOwnerSysIdx_ = -1;
    std::wstring sid_;
    const BlockHierarchyMap* map_ = nullptr;
};

} // namespace VelCG
