#include "velcg/GraphicalBlock.hpp"

#include "Serialization.hpp"
#include "coder/Savepoint.hpp"
#include "coder/descriptor/GraphicalBlock.hpp"
#include "vel/i18n/Text.hpp"
#include "velcg/CGModel.hpp"
#include "velcg/DataInterfaceRecord.hpp"
#include "velcg/Features.hpp"
#include "velcg/GraphicalSubsystem.hpp"
#include "velcg/ModelDiagnostics.hpp"
#include "velcg/Parameter.hpp"
#include "velcg/Port.hpp"
#include "velcg/State.hpp"

namespace VelCG {

namespace {

// The element's own host value when it is script-visible, else empty.
template <class T>
tuvArrayPtr hostValueOf(T* element) {
    if (auto* handle = dynamic_cast<vel::mi::Handle*>(element)) return handle->toPlexo();
    return tuvArray::empty();
}

} // namespace

GraphicalBlock::GraphicalBlock(GraphicalBlockIF* impl) : impl_(impl) {
    if (!impl_) throwNullArgument("The implementation of a graphical block");
}

// The implementation, a member, holds what the block owns.
GraphicalBlock::~GraphicalBlock() { endScriptAccess(); }

const char* GraphicalBlock::getFullyQualifiedKorbTypeName() const { return "VelCG.GraphicalBlock"; }

const char* GraphicalBlock::getStringForBlockVirtuality(BlockVirtuality virtuality) {
    switch (virtuality) {
        case BlockVirtuality::NonVirtual:
            return "NonVirtual";
        case BlockVirtuality::Virtual:
            return "Virtual";
        case BlockVirtuality::PostCompileVirtual:
            return "PostCompileVirtual";
    }
    return "";
}

std::wstring GraphicalBlock::getName() { return impl_->getName(); }
std::wstring GraphicalBlock::getVelName() { return impl_->getVelName(); }
std::wstring GraphicalBlock::getSID() const { return impl_->getSID(); }
std::wstring GraphicalBlock::getCompactSID() const { return impl_->getCompactSID(); }
std::wstring GraphicalBlock::getBlockPath() { return impl_->getBlockPath(); }
std::wstring GraphicalBlock::getType() const { return impl_->getType(); }
std::wstring GraphicalBlock::getDescription() const { return impl_->getDescription(); }
std::wstring GraphicalBlock::getReferencedModelName() const { return impl_->getReferencedModelName(); }
bool GraphicalBlock::getIsProtectedModelBlock() const { return impl_->getIsProtectedModelBlock(); }
BlockVirtuality GraphicalBlock::getVirtual() { return impl_->getVirtual(); }
const std::vector<Port*>& GraphicalBlock::getDataInputPorts() const { return impl_->getDataInputPorts(); }
const std::vector<Port*>& GraphicalBlock::getDataOutputPorts() const { return impl_->getDataOutputPorts(); }
const std::vector<Port*>& GraphicalBlock::getControlInputPorts() const {
    return impl_->getControlInputPorts();
}
int GraphicalBlock::getNumFcnCallOutputPorts() const { return impl_->getNumFcnCallOutputPorts(); }
const std::vector<Parameter*>& GraphicalBlock::getParameters() const { return impl_->getParameters(); }
const std::vector<State*>& GraphicalBlock::getContinuousStates() const {
    return impl_->getContinuousStates();
}
const std::vector<State*>& GraphicalBlock::getDerivatives() const { return impl_->getDerivatives(); }
const std::vector<DataInterfaceRecord*>& GraphicalBlock::getDiscreteStates() const {
    return impl_->getDiscreteStates();
}
const std::vector<DataInterfaceRecord*>& GraphicalBlock::getDWorks() const { return impl_->getDWorks(); }
bool GraphicalBlock::isReduced() const { return impl_->isReduced(); }
void GraphicalBlock::initializeCodegenInfo() { impl_->initializeCodegenInfo(); }
std::string GraphicalBlock::getRLSCommentName() const { return impl_->getRLSCommentName(); }
int GraphicalBlock::getNumDataOutputPorts() const { return impl_->getNumDataOutputPorts(); }
bool GraphicalBlock::isInport() const { return impl_->isInport(); }
bool GraphicalBlock::isOutport() const { return impl_->isOutport(); }
bool GraphicalBlock::isSubsystem() const { return impl_->isSubsystem(); }
bool GraphicalBlock::isDataStoreMemory() const { return impl_->isDataStoreMemory(); }
const CGModel* GraphicalBlock::getCGModel() const { return impl_->getCGModel(); }

tuvArrayPtr GraphicalBlock::getParametersAsTuvArray() const {
    const auto& parameters = getParameters();
    tuvArrayPtr cells = tuvArray::cell(parameters.size(), 1);
    for (std::size_t i = 0; i < parameters.size(); ++i) cells->setCell(i, hostValueOf(parameters[i]));
    return cells;
}

tuvArrayPtr GraphicalBlock::getDiscreteStatesAsTuvArray() const {
    return getDataInterfaceRecordsListAsTuvArray(getDiscreteStates());
}

tuvArrayPtr GraphicalBlock::getDWorksAsTuvArray() const {
    return getDataInterfaceRecordsListAsTuvArray(getDWorks());
}

tuvArrayPtr GraphicalBlock::getDataInterfaceRecordsListAsTuvArray(
    const std::vector<DataInterfaceRecord*>& records) {
    tuvArrayPtr cells = tuvArray::cell(records.size(), 1);
    for (std::size_t i = 0; i < records.size(); ++i) cells->setCell(i, hostValueOf(records[i]));
    return cells;
}

coder::descriptor::GraphicalBlock GraphicalBlock::serialize(coder::Repository& repository) {
    using vel::i18n::toUString;
    // A failure below takes back what was written of the block, so that a
    // caller's transaction that goes on holds no part of it.
    coder::Savepoint savepoint(repository);
    coder::descriptor::GraphicalBlockCreator creator(repository);
    creator.setGraphicalName(toUString(getVelName()));
    creator.setName(toUString(getName()));
    creator.setSID(toUString(getSID()));
    creator.setType(toUString(getType()));
    creator.setDescription(toUString(getDescription()));
    creator.setReferencedModelName(toUString(getReferencedModelName()));
    creator.setIsProtectedModelBlock(getIsProtectedModelBlock());
    creator.setVirtual(toUString(getStringForBlockVirtuality(getVirtual())));
    creator.setNumFcnCallOutputPorts(getNumFcnCallOutputPorts());
    if (parentSubsystem_) creator.setParentSystemSID(toUString(parentSubsystem_->getSID()));

    // Above level 2 only the blocks that the model records as actual sources
    // of async-queue blocks keep the data interfaces of their ports.
    const int level = VELFEAT_VelCGDirectEmitSerialize.value();
    bool withDataInterfaces = level > 1;
    if (level > 2) {
        const CGModel* model = getCGModel();
        if (model && !model->isTAQBlockActualSrc(getBlockPath())) withDataInterfaces = false;
    }

    coder::descriptor::GraphicalBlock block = creator.createGraphicalBlock();
    const auto appendPorts = [&](const std::vector<Port*>& ports,
                                 const coder::descriptor::Sequence<coder::descriptor::Port>& target,
                                 const char* what) {
        for (const Port* port : ports)
            target.append(detail::nonNull(port, what).serialize(repository, withDataInterfaces));
    };
    appendPorts(getDataInputPorts(), block.getDataInputPorts(), "A data input port of a graphical block");
    appendPorts(getDataOutputPorts(), block.getDataOutputPorts(), "A data output port of a graphical block");
    appendPorts(getControlInputPorts(), block.getControlInputPorts(),
                "A control input port of a graphical block");

    const auto appendStates = [&](const std::vector<State*>& states,
                                  const coder::descriptor::Sequence<coder::descriptor::State>& target,
                                  const char* what) {
        for (const State* state : states) target.append(detail::nonNull(state, what).serialize(repository));
    };
    appendStates(getContinuousStates(), block.getContinuousStates(),
                 "A continuous state of a graphical block");
    appendStates(getDerivatives(), block.getDerivatives(), "A derivative of a graphical block");

    const auto appendDataInterfaces =
        [&](const std::vector<DataInterfaceRecord*>& records,
            const coder::descriptor::Sequence<coder::descriptor::DataInterface>& target, const char* what) {
            for (const DataInterfaceRecord* record : records) {
                if (!detail::nonNull(record, what).hasDataInterface()) continue;
                const CG::DataInterface* dataInterface = record->getDataInterface();
                target.append(detail::serializeDataInterface(
                    repository,
                    detail::nonNull(dataInterface, "The data interface of a record that reports one")));
            }
        };
    appendDataInterfaces(getDWorks(), block.getDWorks(), "A work vector of a graphical block");
    appendDataInterfaces(getDiscreteStates(), block.getDiscreteStates(),
                         "A discrete state of a graphical block");

    const auto parameters = block.getBlockParameters();
    for (const Parameter* parameter : getParameters())
        parameters.append(
            detail::nonNull(parameter, "A parameter of a graphical block").serialize(repository));
    savepoint.release();
    return block;
}

} // namespace VelCG
