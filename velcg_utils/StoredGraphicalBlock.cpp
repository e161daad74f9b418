#include "velcg/StoredGraphicalBlock.hpp"

#include "OwnedList.hpp"
#include "PackedText.hpp"
#include "velcg/DataInterfaceRecord.hpp"
#include "velcg/Parameter.hpp"
#include "velcg/Port.hpp"
#include "velcg/State.hpp"

namespace VelCG {

namespace {

// The fields of the block's packed text.
enum TextField : std::size_t {
    kName,
    kVelName,
    kSid,
    kCompactSid,
    kBlockPath,
    kType,
    kDescription,
    kReferencedModelName,
    kRlsCommentName,
};

// What the list getters answer for a list that was never added to.
template <class T>
const std::vector<T*>& emptyList() {
    static const std::vector<T*> empty;
    return empty;
}

} // namespace

struct StoredGraphicalBlock::Rare {
    std::vector<Port*> controlInputPorts;
    std::vector<Parameter*> parameters;
    std::vector<State*> continuousStates;
    std::vector<State*> derivatives;
    std::vector<DataInterfaceRecord*> discreteStates;
    std::vector<DataInterfaceRecord*> dWorks;
    int numFcnCallOutputPorts = 0;

    ~Rare() {
        detail::deleteAll(controlInputPorts);
        detail::deleteAll(parameters);
        detail::deleteAll(continuousStates);
        detail::deleteAll(derivatives);
        detail::deleteAll(discreteStates);
        detail::deleteAll(dWorks);
    }
};

StoredGraphicalBlock::StoredGraphicalBlock() = default;

StoredGraphicalBlock::StoredGraphicalBlock(std::wstring name) {
    // The destructor does not run for a constructor that throws.
    try {
        setText(kName, name);
        setText(kVelName, name);
    } catch (...) {
        detail::PackedText::release(text_);
        throw;
    }
}

StoredGraphicalBlock::~StoredGraphicalBlock() {
    // The lists in the order they were always deleted in: data ports first.
    detail::deleteAll(dataInputPorts_);
    detail::deleteAll(dataOutputPorts_);
    rare_.reset();
    detail::PackedText::release(text_);
}

StoredGraphicalBlock::Rare& StoredGraphicalBlock::rare() {
    if (!rare_) rare_ = std::make_unique<Rare>();
    return *rare_;
}

void StoredGraphicalBlock::setText(std::size_t field, const std::wstring& value) {
    detail::PackedText::set(text_, field, value);
}

std::wstring StoredGraphicalBlock::getName() { return detail::PackedText::wide(text_, kName); }
std::wstring StoredGraphicalBlock::getVelName() { return detail::PackedText::wide(text_, kVelName); }
std::wstring StoredGraphicalBlock::getSID() const { return detail::PackedText::wide(text_, kSid); }
std::wstring StoredGraphicalBlock::getCompactSID() const {
    return detail::PackedText::wide(text_, kCompactSid);
}
std::wstring StoredGraphicalBlock::getBlockPath() { return detail::PackedText::wide(text_, kBlockPath); }
std::wstring StoredGraphicalBlock::getType() const { return detail::PackedText::wide(text_, kType); }
std::wstring StoredGraphicalBlock::getDescription() const {
    return detail::PackedText::wide(text_, kDescription);
}
std::wstring StoredGraphicalBlock::getReferencedModelName() const {
    return detail::PackedText::wide(text_, kReferencedModelName);
}
std::string StoredGraphicalBlock::getRLSCommentName() const {
    return detail::PackedText::narrow(text_, kRlsCommentName);
}

void StoredGraphicalBlock::setName(const std::wstring& value) { setText(kName, value); }
void StoredGraphicalBlock::setVelName(const std::wstring& value) { setText(kVelName, value); }
void StoredGraphicalBlock::setSID(const std::wstring& value) { setText(kSid, value); }
void StoredGraphicalBlock::setCompactSID(const std::wstring& value) { setText(kCompactSid, value); }
void StoredGraphicalBlock::setBlockPath(const std::wstring& value) { setText(kBlockPath, value); }
void StoredGraphicalBlock::setType(const std::wstring& value) { setText(kType, value); }
void StoredGraphicalBlock::setDescription(const std::wstring& value) { setText(kDescription, value); }
void StoredGraphicalBlock::setReferencedModelName(const std::wstring& value) {
    setText(kReferencedModelName, value);
}
void StoredGraphicalBlock::setTexts(const TextValue* values, std::size_t count) {
    // Each setter's field: the enumerators follow the packed fields.
    static_assert(static_cast<std::size_t>(TextField::ReferencedModelName) == kReferencedModelName);
    constexpr std::size_t kMax = kReferencedModelName + 1;
    detail::PackedText::Utf8Value fields[kMax];
    std::size_t n = 0;
    for (std::size_t i = 0; i < count; ++i) {
        // A field given twice counts once, with its last text.
        detail::PackedText::Utf8Value value{static_cast<std::size_t>(values[i].field), values[i].text};
        std::size_t k = 0;
        while (k < n && fields[k].field != value.field) ++k;
        fields[k] = value;
        if (k == n) ++n;
    }
    detail::PackedText::setUtf8(text_, fields, n);
}

void StoredGraphicalBlock::setRLSCommentName(const std::string& value) {
    detail::PackedText::set(text_, kRlsCommentName, value);
}

const std::vector<Port*>& StoredGraphicalBlock::getControlInputPorts() const {
    return rare_ ? rare_->controlInputPorts : emptyList<Port>();
}
int StoredGraphicalBlock::getNumFcnCallOutputPorts() const {
    return rare_ ? rare_->numFcnCallOutputPorts : 0;
}
const std::vector<Parameter*>& StoredGraphicalBlock::getParameters() const {
    return rare_ ? rare_->parameters : emptyList<Parameter>();
}
const std::vector<State*>& StoredGraphicalBlock::getContinuousStates() const {
    return rare_ ? rare_->continuousStates : emptyList<State>();
}
const std::vector<State*>& StoredGraphicalBlock::getDerivatives() const {
    return rare_ ? rare_->derivatives : emptyList<State>();
}
const std::vector<DataInterfaceRecord*>& StoredGraphicalBlock::getDiscreteStates() const {
    return rare_ ? rare_->discreteStates : emptyList<DataInterfaceRecord>();
}
const std::vector<DataInterfaceRecord*>& StoredGraphicalBlock::getDWorks() const {
    return rare_ ? rare_->dWorks : emptyList<DataInterfaceRecord>();
}

void StoredGraphicalBlock::setNumFcnCallOutputPorts(int value) {
    if (value != 0 || rare_) rare().numFcnCallOutputPorts = value;
}

Port* StoredGraphicalBlock::addDataInputPort(std::unique_ptr<Port> port) {
    return detail::appendOwned(dataInputPorts_, std::move(port), "A data input port");
}
Port* StoredGraphicalBlock::addDataOutputPort(std::unique_ptr<Port> port) {
    return detail::appendOwned(dataOutputPorts_, std::move(port), "A data output port");
}
Port* StoredGraphicalBlock::addControlInputPort(std::unique_ptr<Port> port) {
    if (!port) throwNullArgument("A control input port");
    return detail::appendOwned(rare().controlInputPorts, std::move(port), "A control input port");
}
Parameter* StoredGraphicalBlock::addParameter(std::unique_ptr<Parameter> parameter) {
    if (!parameter) throwNullArgument("A block parameter");
    return detail::appendOwned(rare().parameters, std::move(parameter), "A block parameter");
}
State* StoredGraphicalBlock::addContinuousState(std::unique_ptr<State> state) {
    if (!state) throwNullArgument("A continuous state");
    return detail::appendOwned(rare().continuousStates, std::move(state), "A continuous state");
}
State* StoredGraphicalBlock::addDerivative(std::unique_ptr<State> state) {
    if (!state) throwNullArgument("A derivative");
    return detail::appendOwned(rare().derivatives, std::move(state), "A derivative");
}
DataInterfaceRecord* StoredGraphicalBlock::addDiscreteState(std::unique_ptr<DataInterfaceRecord> record) {
    if (!record) throwNullArgument("A discrete state");
    return detail::appendOwned(rare().discreteStates, std::move(record), "A discrete state");
}
DataInterfaceRecord* StoredGraphicalBlock::addDWork(std::unique_ptr<DataInterfaceRecord> record) {
    if (!record) throwNullArgument("A work vector");
    return detail::appendOwned(rare().dWorks, std::move(record), "A work vector");
}

} // namespace VelCG
