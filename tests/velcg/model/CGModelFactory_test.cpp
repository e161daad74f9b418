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

struct CountedRecord : StoredDataInterfaceRecord {
    static int live;
    CountedRecord() { ++live; }
    ~CountedRecord() override { --live; }
};
int CountedRecord::live = 0;

static_assert(std::is_abstract_v<CGModelFactory>);

// What the factory's elements are to scripts, and the references they hold,
// show in VelCGPackage_test.cpp and CGModel_test.cpp with the every-kind model.
TEST(CGModelFactory, EachCallGivesANewFactoryWhoseElementsOwnTheirImplementation) {
    std::unique_ptr<CGModelFactory> other(GetCGModelFactory());
    CountedRecord::live = 0;
    std::unique_ptr<CGModelFactory> factory(GetCGModelFactory());
    EXPECT_NE(other.get(), factory.get());
    auto* impl = new CountedRecord();
    DataInterfaceRecord* record = factory->createDataInterfaceRecord(impl);
    EXPECT_EQ(impl, record->getImpl());
    EXPECT_EQ(1, CountedRecord::live);
    delete record;
    EXPECT_EQ(0, CountedRecord::live);
    EXPECT_THROW(Parameter(nullptr), vel::diag::Exception);
    EXPECT_THROW(ModelParameterKorb(nullptr), vel::diag::Exception);
}

} // namespace
