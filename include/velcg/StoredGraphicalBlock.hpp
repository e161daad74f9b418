#pragma once

#include <memory>
#include <string>
#include <vector>

#include "velcg/Export.hpp"
#include "velcg/GraphicalBlockIF.hpp"

namespace VelCG {

// A GraphicalBlockIF that answers every query from stored, settable
// fields, for tools that build a model without a modelling environment.
//
// Ownership: the block owns the ports, parameters, states and data-interface
// records added to it and deletes them when it is destroyed (that is, when
// the GraphicalBlock facade that owns it is destroyed). The model pointer is
// not owned.
class VELCG_API StoredGraphicalBlock : public GraphicalBlockIF {
public:
    StoredGraphicalBlock() = default;
    explicit StoredGraphicalBlock(std::wstring name);
    ~StoredGraphicalBlock() override;
    StoredGraphicalBlock(const StoredGraphicalBlock&) = delete;
    StoredGraphicalBlock& operator=(const StoredGraphicalBlock&) = delete;

    std::wstring getName() override { return name_; }
    std::wstring getVelName() override { return velName_; }
    std::wstring getSID() const override { return sid_; }
    std::wstring getCompactSID() const override { return compactSid_; }
    std::wstring getBlockPath() override { return blockPath_; }
    std::wstring getType() const override { return type_; }
    std::wstring getDescription() const override { return description_; }
    std::wstring getReferencedModelName() const override { return referencedModelName_; }
    bool getIsProtectedModelBlock() const override { return isProtectedModelBlock_; }
    BlockVirtuality getVirtual() override { return virtuality_; }
    const std::vector<Port*>& getDataInputPorts() const override { return dataInputPorts_; }
    const std::vector<Port*>& getDataOutputPorts() const override { return dataOutputPorts_; }
    const std::vector<Port*>& getControlInputPorts() const override { return controlInputPorts_; }
    int getNumFcnCallOutputPorts() const override { return numFcnCallOutputPorts_; }
    const std::vector<Parameter*>& getParameters() const override { return parameters_; }
    const std::vector<State*>& getContinuousStates() const override { return continuousStates_; }
    const std::vector<State*>& getDerivatives() const override { return derivatives_; }
    const std::vector<DataInterfaceRecord*>& getDiscreteStates() const override { return discreteStates_; }
    const std::vector<DataInterfaceRecord*>& getDWorks() const override { return dWorks_; }
    bool isReduced() const override { return isReduced_; }
    // Nothing to initialize: every answer is stored.
    void initializeCodegenInfo() override {}
    std::string getRLSCommentName() const override { return rlsCommentName_; }
    // The number of data output ports added.
    int getNumDataOutputPorts() const override { return static_cast<int>(dataOutputPorts_.size()); }
    bool isInport() const override { return isInport_; }
    bool isOutport() const override { return isOutport_; }
    bool isSubsystem() const override { return isSubsystem_; }
    bool isDataStoreMemory() const override { return isDataStoreMemory_; }
    const CGModel* getCGModel() const override { return model_; }

    void setName(const std::wstring& value) { name_ = value; }
    void setVelName(const std::wstring& value) { velName_ = value; }
    void setSID(const std::wstring& value) { sid_ = value; }
    void setCompactSID(const std::wstring& value) { compactSid_ = value; }
    void setBlockPath(const std::wstring& value) { blockPath_ = value; }
    void setType(const std::wstring& value) { type_ = value; }
    void setDescription(const std::wstring& value) { description_ = value; }
    void setReferencedModelName(const std::wstring& value) { referencedModelName_ = value; }
    void setIsProtectedModelBlock(bool value) { isProtectedModelBlock_ = value; }
    void setVirtual(BlockVirtuality value) { virtuality_ = value; }
    void setNumFcnCallOutputPorts(int value) { numFcnCallOutputPorts_ = value; }
    void setIsReduced(bool value) { isReduced_ = value; }
    void setRLSCommentName(const std::string& value) { rlsCommentName_ = value; }
    void setIsInport(bool value) { isInport_ = value; }
    void setIsOutport(bool value) { isOutport_ = value; }
    void setIsSubsystem(bool value) { isSubsystem_ = value; }
    void setIsDataStoreMemory(bool value) { isDataStoreMemory_ = value; }
    void setCGModel(const CGModel* model) { model_ = model; }

    // Each appends and takes ownership; a null element raises
    // "VelCG:Model:NullArgument". Return the element for further setup.
    Port* addDataInputPort(std::unique_ptr<Port> port);
    Port* addDataOutputPort(std::unique_ptr<Port> port);
    Port* addControlInputPort(std::unique_ptr<Port> port);
    Parameter* addParameter(std::unique_ptr<Parameter> parameter);
    State* addContinuousState(std::unique_ptr<State> state);
    State* addDerivative(std::unique_ptr<State> state);
    DataInterfaceRecord* addDiscreteState(std::unique_ptr<DataInterfaceRecord> record);
    DataInterfaceRecord* addDWork(std::unique_ptr<DataInterfaceRecord> record);

private:
    std::wstring name_;
    std::wstring velName_;
    std::wstring sid_;
    std::wstring compactSid_;
    std::wstring blockPath_;
    std::wstring type_;
    std::wstring description_;
    std::wstring referencedModelName_;
    bool isProtectedModelBlock_ = false;
    BlockVirtuality virtuality_ = BlockVirtuality::NonVirtual;
    std::vector<Port*> dataInputPorts_;
    std::vector<Port*> dataOutputPorts_;
    std::vector<Port*> controlInputPorts_;
    int numFcnCallOutputPorts_ = 0;
    std::vector<Parameter*> parameters_;
    std::vector<State*> continuousStates_;
    std::vector<State*> derivatives_;
    std::vector<DataInterfaceRecord*> discreteStates_;
    std::vector<DataInterfaceRecord*> dWorks_;
    bool isReduced_ = false;
    std::string rlsCommentName_;
    bool isInport_ = false;
    bool isOutport_ = false;
    bool isSubsystem_ = false;
    bool isDataStoreMemory_ = false;
    const CGModel* model_ = nullptr;
};

} // namespace VelCG
