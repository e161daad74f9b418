#include "velcg/ModelParameter.hpp"

#include "CG/DataInterface.hpp"
#include "velcg/ModelDiagnostics.hpp"

namespace VelCG {

ModelParameterImpl::~ModelParameterImpl() = default;

ModelParameter::ModelParameter(ModelParameterImpl* impl) : impl_(impl) {
    if (!impl_) throwNullArgument("The implementation of a model parameter");
}

ModelParameter::~ModelParameter() { delete impl_; }

tuvArrayPtr ModelParameter::getDataInterfaceAsTuvArray() const {
    return CG::DataInterface::toTuvArray(getDataInterface());
}

ModelParameterKorb::~ModelParameterKorb() = default;

const char* ModelParameterKorb::getFullyQualifiedKorbTypeName() const { return "VelCG.ModelParameter"; }

} // namespace VelCG
