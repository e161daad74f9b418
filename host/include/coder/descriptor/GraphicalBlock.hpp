#pragma once

#include <cstdint>

#include "coder/descriptor/BlockParameter.hpp"
#include "coder/descriptor/DataInterface.hpp"
#include "coder/descriptor/Object.hpp"
#include "coder/descriptor/Port.hpp"
#include "coder/descriptor/State.hpp"

namespace coder::descriptor {

// One block of the block diagram. ParentSystemSID is absent for a block
// without a parent subsystem.
class VELHOST_API GraphicalBlock : public Object {
public:
    static const RecordKind& kind();

    ustring getGraphicalName() const;
    ustring getName() const;
    ustring getSID() const;
    ustring getType() const;
    ustring getDescription() const;
    ustring getReferencedModelName() const;
    bool getIsProtectedModelBlock() const;
    ustring getVirtual() const;
    std::int32_t getNumFcnCallOutputPorts() const;
    bool hasParentSystemSID() const;
    // Empty when absent.
    ustring getParentSystemSID() const;

    Sequence<Port> getDataInputPorts() const;
    Sequence<Port> getDataOutputPorts() const;
    Sequence<Port> getControlInputPorts() const;
    Sequence<State> getContinuousStates() const;
    Sequence<State> getDerivatives() const;
    Sequence<DataInterface> getDWorks() const;
    Sequence<DataInterface> getDiscreteStates() const;
    Sequence<BlockParameter> getBlockParameters() const;
};

class VELHOST_API GraphicalBlockCreator : public Creator {
public:
    explicit GraphicalBlockCreator(Repository& repository);

    void setGraphicalName(const ustring& value);
    void setName(const ustring& value);
    void setSID(const ustring& value);
    void setType(const ustring& value);
    void setDescription(const ustring& value);
    void setReferencedModelName(const ustring& value);
    void setIsProtectedModelBlock(bool value);
    void setVirtual(const ustring& value);
    void setNumFcnCallOutputPorts(std::int32_t value);
    void setParentSystemSID(const ustring& value);

    GraphicalBlock createGraphicalBlock();
};

} // namespace coder::descriptor
