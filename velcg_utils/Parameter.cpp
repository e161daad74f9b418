#include "velcg/Parameter.hpp"

#include "Serialization.hpp"
#include "coder/descriptor/BlockParameter.hpp"
#include "vel/i18n/Text.hpp"
#include "velcg/Features.hpp"
#include "velcg/ModelDiagnostics.hpp"
#include "velcg/ModelParameter.hpp"

namespace VelCG {

ParameterImpl::~ParameterImpl() = default;

Parameter::Parameter(ParameterImpl* impl) : impl_(impl) {
    if (!impl_) throwNullArgument("The implementation of a parameter");
}

Parameter::~Parameter() = default;

ParameterKorb::~ParameterKorb() = default;

const char* ParameterKorb::getFullyQualifiedKorbTypeName() const { return "VelCG.Parameter"; }

coder::descriptor::BlockParameter Parameter::serialize(coder::Repository& repository) const {
    coder::descriptor::BlockParameterCreator creator(repository);
    creator.setName(vel::i18n::toUString(getName()));
    coder::descriptor::BlockParameter parameter = creator.createBlockParameter();
    if (VELFEAT_VelCGDirectEmitSerialize.value() < 2) return parameter;
    const auto modelParameters = parameter.getModelParameters();
    for (const ModelParameter* modelParameter : getModelParameters()) {
        coder::descriptor::ModelParameter record =
            detail::nonNull(modelParameter, "A model parameter of a block parameter").serialize(repository);
        modelParameters.append(record);
        record.release();
    }
    return parameter;
}

} // namespace VelCG
