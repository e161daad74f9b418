#pragma once

#include <memory>
#include <string>
#include <vector>

#include "vel/mi/Handle.hpp"
#include "vel/tuvArray.hpp"
#include "velcg/Export.hpp"
#include "velcg/GraphicalBlockIF.hpp"

namespace coder {
class Repository;
namespace descriptor {
class GraphicalBlock;
} // namespace descriptor
} // namespace coder

namespace VelCG {

class GraphicalSubsystem;

// One block of the block diagram: a facade that forwards every query to its
// implementation object, which it owns. Blocks are owned by their
// GraphicalSubsystem.
class VELCG_API GraphicalBlock : public GraphicalBlockIF, public vel::mi::Handle {
public:
    // Takes ownership of impl; a null impl raises "VelCG:Model:NullArgument".
    explicit GraphicalBlock(GraphicalBlockIF* impl);
    ~GraphicalBlock() override;
    GraphicalBlock(const GraphicalBlock&) = delete;
    GraphicalBlock& operator=(const GraphicalBlock&) = delete;

    const char* getFullyQualifiedKorbTypeName() const override;

    // "NonVirtual", "Virtual", "PostCompileVirtual"; empty for other values.
    static const char* getStringForBlockVirtuality(BlockVirtuality virtuality);

    std::wstring getName() override;
    std::wstring getVelName() override;
    std::wstring getSID() const override;
    std::wstring getCompactSID() const override;
    std::wstring getBlockPath() override;
    std::wstring getType() const override;
    std::wstring getDescription() const override;
    std::wstring getReferencedModelName() const override;
    bool getIsProtectedModelBlock() const override;
    BlockVirtuality getVirtual() override;
    const std::vector<Port*>& getDataInputPorts() const override;
    const std::vector<Port*>& getDataOutputPorts() const override;
    const std::vector<Port*>& getControlInputPorts() const override;
    int getNumFcnCallOutputPorts() const override;
    const std::vector<Parameter*>& getParameters() const override;
    const std::vector<State*>& getContinuousStates() const override;
    const std::vector<State*>& getDerivatives() const override;
    const std::vector<DataInterfaceRecord*>& getDiscreteStates() const override;
    const std::vector<DataInterfaceRecord*>& getDWorks() const override;
    bool isReduced() const override;
    void initializeCodegenInfo() override;
    std::string getRLSCommentName() const override;
    int getNumDataOutputPorts() const override;
    bool isInport() const override;
    bool isOutport() const override;
    bool isSubsystem() const override;
    bool isDataStoreMemory() const override;
    const CGModel* getCGModel() const override;

    GraphicalBlockIF* getImpl() { return impl_.get(); }
    const GraphicalBlockIF* getImpl() const { return impl_.get(); }

    const GraphicalSubsystem* getParentSubsystem() const { return parentSubsystem_; }
    void setParentSubsystem(const GraphicalSubsystem* parent) { parentSubsystem_ = parent; }

    // N-by-1 cell arrays, cell i holding element i's own host value. An
    // element that is not script-visible (a plain Parameter or
    // DataInterfaceRecord rather than its Korb variant) leaves its cell empty.
    tuvArrayPtr getParametersAsTuvArray() const;
    tuvArrayPtr getDiscreteStatesAsTuvArray() const;
    tuvArrayPtr getDWorksAsTuvArray() const;

    // Writes the block into the store and returns the descriptor block: its
    // names and flags, its parent's SID when it has a parent, its ports,
    // states, the data interfaces of its work vectors and discrete states,
    // and its parameters.
    //
    // Ports carry their data interfaces when the VelCGDirectEmitSerialize
    // level is above 1, except that above 2 only the blocks whose path the
    // model records as an actual source of an async-queue block keep them
    // (blocks without a model keep them). The level is read once per block.
    //
    // REQUIRES: a transaction is open on repository. A null element in any
    // list, or a record that reports a data interface and gives none, raises
    // "VelCG:Model:NullArgument"; store failures pass through. A failure
    // leaves nothing of the block in the repository, and the transaction
    // open with what was written before the call (see coder::Savepoint).
    coder::descriptor::GraphicalBlock serialize(coder::Repository& repository);

private:
    static tuvArrayPtr getDataInterfaceRecordsListAsTuvArray(
        const std::vector<DataInterfaceRecord*>& records);

    std::unique_ptr<GraphicalBlockIF> impl_;
    const GraphicalSubsystem* parentSubsystem_ = nullptr;
};

} // namespace VelCG
