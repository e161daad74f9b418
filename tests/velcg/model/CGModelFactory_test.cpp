#include "velcg/CGModelFactory.hpp"

#include <gtest/gtest.h>
#include <type_traits>

#include "vel/diag/Diagnostic.hpp"
#include "velcg/DataInterfaceRecord.hpp"
#include "velcg/ModelDiagnostics.hpp"
#include "velcg/ModelParameter.hpp"
#include "velcg/Parameter.hpp"
#include "velcg/StoredDataInterfaceRecord.hpp"
#include "velcg/StoredModelParameter.hpp"
#include "velcg/StoredParameter.hpp"

using namespace VelCG;

namespace {

static_assert(std::is_abstract_v<CGModelFactory>);

// Each call gives a factory of its own, and each element owns its
// implementation: the model tests build and destroy whole models under the
// sanitizers, which report an element that deletes too little or twice.
// What the elements are to scripts shows in VelCGPackage_test.cpp.
TEST(CGModelFactory, ElementsWrapTheirImplementationAndRefuseNone) {
    std::unique_ptr<CGModelFactory> factory(GetCGModelFactory());
    auto* impl = new StoredDataInterfaceRecord();
    std::unique_ptr<DataInterfaceRecord> record(factory->createDataInterfaceRecord(impl));
    EXPECT_EQ(impl, record->getImpl());
    EXPECT_THROW(Parameter(nullptr), vel::diag::Exception);
    EXPECT_THROW(ModelParameterKorb(nullptr), vel::diag::Exception);
}

} // namespace
