#include "velcg/CGModelFactory.hpp"

#include <memory>

#include "velcg/DataInterfaceRecord.hpp"
#include "velcg/ModelParameter.hpp"
#include "velcg/Parameter.hpp"

namespace VelCG {

CGModelFactory::~CGModelFactory() = default;

CGModelKorbFactory::~CGModelKorbFactory() = default;

namespace {

// Creates the element over impl; impl is deleted if the element cannot be
// allocated, as the element would have owned it.
template <class Element, class Impl>
Element* createOwning(Impl* impl) {
    std::unique_ptr<Impl> owned(impl);
    auto* element = new Element(owned.get());
    owned.release();
    return element;
}

} // namespace

Parameter* CGModelKorbFactory::createParameter(ParameterImpl* impl) {
    return createOwning<ParameterKorb>(impl);
}

ModelParameter* CGModelKorbFactory::createModelParameter(ModelParameterImpl* impl) {
    return createOwning<ModelParameterKorb>(impl);
}

DataInterfaceRecord* CGModelKorbFactory::createDataInterfaceRecord(DataInterfaceRecordImpl* impl) {
    return createOwning<DataInterfaceRecordKorb>(impl);
}

CGModelFactory* GetCGModelFactory() { return new CGModelKorbFactory(); }

} // namespace VelCG
