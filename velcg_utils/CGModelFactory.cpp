#include "velcg/CGModelFactory.hpp"

#include "velcg/DataInterfaceRecord.hpp"
#include "velcg/ModelParameter.hpp"
#include "velcg/Parameter.hpp"

namespace VelCG {

CGModelFactory::~CGModelFactory() = default;

CGModelKorbFactory::~CGModelKorbFactory() = default;

Parameter* CGModelKorbFactory::createParameter(ParameterImpl* impl) { return new ParameterKorb(impl); }

ModelParameter* CGModelKorbFactory::createModelParameter(ModelParameterImpl* impl) {
    return new ModelParameterKorb(impl);
}

DataInterfaceRecord* CGModelKorbFactory::createDataInterfaceRecord(DataInterfaceRecordImpl* impl) {
    return new DataInterfaceRecordKorb(impl);
}

CGModelFactory* GetCGModelFactory() { return new CGModelKorbFactory(); }

} // namespace VelCG
