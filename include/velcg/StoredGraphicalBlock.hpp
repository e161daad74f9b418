#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "velcg/Export.hpp"
#include "velcg/GraphicalBlockIF.hpp"

namespace VelCG {

namespace detail {
class PackedText;
} // namespace detail

// A GraphicalBlockIF that answers every query from stored, settable
// fields, for tools that build a model without a modelling environment.
//
// Ownership: the block owns the ports, parameters, states and data-interface
// records added to it and deletes them when it is destroyed (that is, when
// the GraphicalBlock facade that owns it is destroyed). The model pointer is
// not owned.
//
// The lists other than the data ports are created on the first add; until
// then their getters return a shared empty list, so a reference taken before
// that add does not show the element.
class VELCG_API StoredGraphicalBlock : public GraphicalBlockIF {
public:
    StoredGraphicalBlock();
    explicit StoredGraphicalBlock(std::wstring name);
    ~StoredGraphicalBlock() override;
    StoredGraphicalBlock(const StoredGraphicalBlock&) = delete;
    StoredGraphicalBlock& operator=(const StoredGraphicalBlock&) = delete;

    std::wstring getName() override;
    std::wstring getVelName() override;
    std::wstring getSID() const override;
    std::wstring getCompactSID() const override;
    std::wstring getBlockPath() override;
    std::wstring getType() const override;
    std::wstring getDescription() const override;
    std::wstring getReferencedModelName() const override;
    bool getIsProtectedModelBlock() const override { return flags_ & kProtectedModelBlock; }
    BlockVirtuality getVirtual() override { return virtuality_; }
    const std::vector<Port*>& getDataInputPorts() const override { return dataInputPorts_; }
    const std::vector<Port*>& getDataOutputPorts() const override { return dataOutputPorts_; }
    const std::vector<Port*>& getControlInputPorts() const override;
    int getNumFcnCallOutputPorts() const override;
    const std::vector<Parameter*>& getParameters() const override;
    const std::vector<State*>& getContinuousStates() const override;
    const std::vector<State*>& getDerivatives() const override;
    const std::vector<DataInterfaceRecord*>& getDiscreteStates() const override;
    const std::vector<DataInterfaceRecord*>& getDWorks() const override;
    bool isReduced() const override { return flags_ & kReduced; }
    // Nothing to initialize: every answer is stored.
    void initializeCodegenInfo() override {}
    std::string getRLSCommentName() const override;
    // The number of data output ports added.
    int getNumDataOutputPorts() const override { return static_cast<int>(dataOutputPorts_.size()); }
    bool isInport() const override { return flags_ & kInport; }
    bool isOutport() const override { return flags_ & kOutport; }
    bool isSubsystem() const override { return flags_ & kSubsystem; }
    bool isDataStoreMemory() const override { return flags_ & kDataStoreMemory; }
    const CGModel* getCGModel() const override { return model_; }

    void setName(const std::wstring& value);
    void setVelName(const std::wstring& value);
    void setSID(const std::wstring& value);
    void setCompactSID(const std::wstring& value);
    void setBlockPath(const std::wstring& value);
    void setType(const std::wstring& value);
    void setDescription(const std::wstring& value);
    void setReferencedModelName(const std::wstring& value);
    void setIsProtectedModelBlock(bool value) { setFlag(kProtectedModelBlock, value); }
    void setVirtual(BlockVirtuality value) { virtuality_ = value; }
    void setNumFcnCallOutputPorts(int value);
    void setIsReduced(bool value) { setFlag(kReduced, value); }
    void setRLSCommentName(const std::string& value);
    void setIsInport(bool value) { setFlag(kInport, value); }
    void setIsOutport(bool value) { setFlag(kOutport, value); }
    void setIsSubsystem(bool value) { setFlag(kSubsystem, value); }
    void setIsDataStoreMemory(bool value) { setFlag(kDataStoreMemory, value); }
    void setCGModel(const CGModel* model) { model_ = model; }

    // The wide text fields, by their setters' names.
    enum class TextField : std::uint8_t {
        Name,
        VelName,
        SID,
        CompactSID,
        BlockPath,
        Type,
        Description,
        ReferencedModelName,
    };
    struct TextValue {
        TextField field;
        // UTF-8.
        std::string_view text;
    };
    // Sets the fields of `values` at once, in one allocation, as their
    // setters would one by one (a field given twice takes the last text):
    // for tools that build many blocks. Raises "i18n:InvalidText" for text
    // that is not UTF-8, and then sets nothing.
    void setTexts(const TextValue* values, std::size_t count);

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
    // The lists that most blocks leave empty, and the function-call output
    // count, which most leave at zero: kept aside, created on first use.
    struct Rare;
    Rare& rare();
    void setText(std::size_t field, const std::wstring& value);

    enum Flag : std::uint8_t {
        kProtectedModelBlock = 1,
        kReduced = 2,
        kInport = 4,
        kOutport = 8,
        kSubsystem = 16,
        kDataStoreMemory = 32,
    };
    void setFlag(Flag flag, bool value) {
        flags_ = static_cast<std::uint8_t>(value ? flags_ | flag : flags_ & ~flag);
    }

    // The data ports, which nearly every block has, stay inline.
    std::vector<Port*> dataInputPorts_;
    std::vector<Port*> dataOutputPorts_;
    // The names, SIDs, path, type, description and comment name, all in one
    // block (null while all are empty).
    detail::PackedText* text_ = nullptr;
    std::unique_ptr<Rare> rare_;
    const CGModel* model_ = nullptr;
    BlockVirtuality virtuality_ = BlockVirtuality::NonVirtual;
    std::uint8_t flags_ = 0;
};

} // namespace VelCG
