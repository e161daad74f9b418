#include "velcg/ModelParameter.hpp"

#include "CG/DataInterface.hpp"
#include "Serialization.hpp"
#include "coder/descriptor/ModelParameter.hpp"
#include "vel/i18n/Text.hpp"
#include "velcg/GraphicalBlock.hpp"
#include "velcg/ModelDiagnostics.hpp"

namespace VelCG {

ModelParameterImpl::~ModelParameterImpl() = default;

ModelParameter::ModelParameter(ModelParameterImpl* impl) : impl_(impl) {
    if (!impl_) throwNullArgument("The implementation of a model parameter");
}

ModelParameter::~ModelParameter() = default;

tuvArrayPtr ModelParameter::getDataInterfaceAsTuvArray() const {
    return CG::DataInterface::toTuvArray(getDataInterface());
}

ModelParameterKorb::~ModelParameterKorb() = default;

const char* ModelParameterKorb::getFullyQualifiedKorbTypeName() const { return "VelCG.ModelParameter"; }

coder::descriptor::ModelParameter ModelParameter::serialize(coder::Repository& repository) const {
    using vel::i18n::toUString;
    coder::descriptor::ModelParameterCreator creator(repository);
    creator.setName(toUString(getName()));
    creator.setOriginalName(toUString(getOriginalName()));
    creator.setAlias(isAlias());
    creator.setTunable(isTunable());
    creator.setWorkspaceVariable(isWorkspaceVar());
    creator.setWorkspaceVariableName(toUString(getWorkspaceVarName()));
    if (const GraphicalBlock* source = getGraphicalSource())
        creator.setGraphicalSourceSID(toUString(source->getSID()));
    coder::descriptor::ModelParameter parameter = creator.createModelParameter();
    const auto references = parameter.getGraphicalReferencesSID();
    for (const GraphicalBlock* block : getGraphicalReferences())
        references.append(coder::descriptor::StringListElement(
            toUString(detail::nonNull(block, "A graphical reference of a model parameter").getSID())));
    return parameter;
}

} // namespace VelCG
