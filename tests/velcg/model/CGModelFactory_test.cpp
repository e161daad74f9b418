#include "velcg/CGModelFactory.hpp"

#include <gtest/gtest.h>
#include <type_traits>

#include "CG/DataInterface.hpp"
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

TEST(CGModelFactory, EachCallGivesANewFactoryCreatingScriptVisibleElements) {
    std::unique_ptr<CGModelFactory> a(GetCGModelFactory());
    std::unique_ptr<CGModelFactory> b(GetCGModelFactory());
    EXPECT_NE(a.get(), b.get());
    b.reset();

    std::unique_ptr<Parameter> p(a->createParameter(new StoredParameter(L"K")));
    std::unique_ptr<ModelParameter> mp(a->createModelParameter(new StoredModelParameter(L"M")));
    std::unique_ptr<DataInterfaceRecord> r(a->createDataInterfaceRecord(new StoredDataInterfaceRecord()));
    const struct {
        vel::mi::Handle* handle;
        const char* type;
    } rows[] = {{dynamic_cast<vel::mi::Handle*>(p.get()), "VelCG.Parameter"},
                {dynamic_cast<vel::mi::Handle*>(mp.get()), "VelCG.ModelParameter"},
                {dynamic_cast<vel::mi::Handle*>(r.get()), "VelCG.DataInterfaceRecord"}};
    for (const auto& row : rows) {
        ASSERT_NE(nullptr, row.handle) << row.type;
        EXPECT_STREQ(row.type, row.handle->getFullyQualifiedKorbTypeName());
    }
    EXPECT_EQ(L"K", p->getName());
    EXPECT_EQ(L"M", mp->getName());
}

TEST(CGModelFactory, ElementsOwnTheirImplementation) {
    CountedRecord::live = 0;
    std::unique_ptr<CGModelFactory> factory(GetCGModelFactory());
    auto* impl = new CountedRecord();
    DataInterfaceRecord* record = factory->createDataInterfaceRecord(impl);
    EXPECT_EQ(impl, record->getImpl());
    EXPECT_EQ(1, CountedRecord::live);
    delete record;
    EXPECT_EQ(0, CountedRecord::live);
    EXPECT_THROW(Parameter(nullptr), vel::diag::Exception);
    EXPECT_THROW(ModelParameterKorb(nullptr), vel::diag::Exception);
}

TEST(CGModelFactory, DataInterfacesAreHeldByReference) {
    CG::DataInterface* di =
        CG::DataInterface::create({"model_Params.K", "StructElement", "model_Params", "double", "K"});
    {
        auto* impl = new StoredModelParameter(L"K");
        impl->setDataInterface(di);
        ModelParameter mp(impl);
        DataInterfaceRecord withInterface(new StoredDataInterfaceRecord(di));
        DataInterfaceRecord without(new StoredDataInterfaceRecord());
        EXPECT_EQ(3, di->getRefCount());
        EXPECT_TRUE(withInterface.hasDataInterface());
        EXPECT_FALSE(without.hasDataInterface());
        EXPECT_EQ("coder.DataInterface", mp.getDataInterfaceAsTuvArray()->className());
        EXPECT_EQ("coder.DataInterface", withInterface.getDataInterfaceAsTuvArray()->className());
        EXPECT_TRUE(without.getDataInterfaceAsTuvArray()->isEmpty());
    }
    EXPECT_EQ(1, di->getRefCount());
    di->release();
}

} // namespace
