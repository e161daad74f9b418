#include "coder/descriptor/GraphicalBlock.hpp"

#include <cstdint>

#include "coder/Repository.hpp"

namespace coder::descriptor {

namespace {
enum Field : std::size_t {
    kGraphicalName,
    kName,
    kSID,
    kType,
    kDescription,
    kReferencedModelName,
    kIsProtectedModelBlock,
    kVirtual,
    kNumFcnCallOutputPorts,
    kParentSystemSID
};
enum List : std::size_t {
    kDataInputPortsList,
    kDataOutputPortsList,
    kControlInputPortsList,
    kContinuousStatesList,
    kDerivativesList,
    kDWorksList,
    kDiscreteStatesList,
    kBlockParametersList
};
} // namespace

const RecordKind& GraphicalBlock::kind() {
    static const RecordKind kind{
        "GraphicalBlock",
        {
            {"GraphicalName", FieldType::Text, false, nullptr, 0, 0},
            {"Name", FieldType::Text, false, nullptr, 0, 0},
            {"SID", FieldType::Text, false, nullptr, 0, 0},
            {"Type", FieldType::Text, false, nullptr, 0, 0},
            {"Description", FieldType::Text, false, nullptr, 0, 0},
            {"ReferencedModelName", FieldType::Text, false, nullptr, 0, 0},
            {"IsProtectedModelBlock", FieldType::Boolean, false, nullptr, 0, 0},
            {"Virtual", FieldType::Text, false, nullptr, 0, 0},
            {"NumFcnCallOutputPorts", FieldType::Integer, false, nullptr, INT32_MIN, INT32_MAX},
            {"ParentSystemSID", FieldType::Text, true, nullptr, 0, 0},
        },
        {
            {"DataInputPorts", &Port::kind, FieldType::Reference},
            {"DataOutputPorts", &Port::kind, FieldType::Reference},
            {"ControlInputPorts", &Port::kind, FieldType::Reference},
            {"ContinuousStates", &State::kind, FieldType::Reference},
            {"Derivatives", &State::kind, FieldType::Reference},
            {"DWorks", &DataInterface::kind, FieldType::Reference},
            {"DiscreteStates", &DataInterface::kind, FieldType::Reference},
            {"BlockParameters", &BlockParameter::kind, FieldType::Reference},
        },
    };
    return kind;
}

ustring GraphicalBlock::getGraphicalName() const { return text(kGraphicalName); }
ustring GraphicalBlock::getName() const { return text(kName); }
ustring GraphicalBlock::getSID() const { return text(kSID); }
ustring GraphicalBlock::getType() const { return text(kType); }
ustring GraphicalBlock::getDescription() const { return text(kDescription); }
ustring GraphicalBlock::getReferencedModelName() const { return text(kReferencedModelName); }
bool GraphicalBlock::getIsProtectedModelBlock() const { return boolean(kIsProtectedModelBlock); }
ustring GraphicalBlock::getVirtual() const { return text(kVirtual); }
std::int32_t GraphicalBlock::getNumFcnCallOutputPorts() const {
    return static_cast<std::int32_t>(integer(kNumFcnCallOutputPorts));
}
bool GraphicalBlock::hasParentSystemSID() const { return has(kParentSystemSID); }
ustring GraphicalBlock::getParentSystemSID() const { return text(kParentSystemSID); }
Sequence<Port> GraphicalBlock::getDataInputPorts() const {
    return Sequence<Port>(sequence(kDataInputPortsList));
}
Sequence<Port> GraphicalBlock::getDataOutputPorts() const {
    return Sequence<Port>(sequence(kDataOutputPortsList));
}
Sequence<Port> GraphicalBlock::getControlInputPorts() const {
    return Sequence<Port>(sequence(kControlInputPortsList));
}
Sequence<State> GraphicalBlock::getContinuousStates() const {
    return Sequence<State>(sequence(kContinuousStatesList));
}
Sequence<State> GraphicalBlock::getDerivatives() const { return Sequence<State>(sequence(kDerivativesList)); }
Sequence<DataInterface> GraphicalBlock::getDWorks() const {
    return Sequence<DataInterface>(sequence(kDWorksList));
}
Sequence<DataInterface> GraphicalBlock::getDiscreteStates() const {
    return Sequence<DataInterface>(sequence(kDiscreteStatesList));
}
Sequence<BlockParameter> GraphicalBlock::getBlockParameters() const {
    return Sequence<BlockParameter>(sequence(kBlockParametersList));
}

GraphicalBlockCreator::GraphicalBlockCreator(Repository& repository)
    : Creator(repository, GraphicalBlock::kind()) {}

void GraphicalBlockCreator::setGraphicalName(const ustring& value) { setText(kGraphicalName, value); }
void GraphicalBlockCreator::setName(const ustring& value) { setText(kName, value); }
void GraphicalBlockCreator::setSID(const ustring& value) { setText(kSID, value); }
void GraphicalBlockCreator::setType(const ustring& value) { setText(kType, value); }
void GraphicalBlockCreator::setDescription(const ustring& value) { setText(kDescription, value); }
void GraphicalBlockCreator::setReferencedModelName(const ustring& value) {
    setText(kReferencedModelName, value);
}
void GraphicalBlockCreator::setIsProtectedModelBlock(bool value) {
    setBoolean(kIsProtectedModelBlock, value);
}
void GraphicalBlockCreator::setVirtual(const ustring& value) { setText(kVirtual, value); }
void GraphicalBlockCreator::setNumFcnCallOutputPorts(std::int32_t value) {
    setInteger(kNumFcnCallOutputPorts, value);
}
void GraphicalBlockCreator::setParentSystemSID(const ustring& value) { setText(kParentSystemSID, value); }

GraphicalBlock GraphicalBlockCreator::createGraphicalBlock() { return objectAs<GraphicalBlock>(create()); }

} // namespace coder::descriptor
