#include "velcg/Parameter.hpp"

#include "velcg/ModelDiagnostics.hpp"

namespace VelCG {

ParameterImpl::~ParameterImpl() = default;

Parameter::Parameter(ParameterImpl* impl) : impl_(impl) {
    if (!impl_) throwNullArgument("The implementation of a parameter");
}

Parameter::~Parameter() { delete impl_; }

ParameterKorb::~ParameterKorb() = default;

const char* ParameterKorb::getFullyQualifiedKorbTypeName() const { return "VelCG.Parameter"; }

} // namespace VelCG
