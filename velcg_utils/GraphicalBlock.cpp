#include "velcg/GraphicalBlock.hpp"

#include "velcg/DataInterfaceRecord.hpp"
#include "velcg/ModelDiagnostics.hpp"
#include "velcg/Parameter.hpp"

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

GraphicalBlock::~GraphicalBlock() { delete impl_; }

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

} // namespace VelCG
