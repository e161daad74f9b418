#include <gtest/gtest.h>
#include <sstream>

#include "DiagnosticTesting.hpp"
#include "TempDir.hpp"
#include "coder/Repository.hpp"
#include "coder/descriptor/CoderGroup.hpp"
#include "vel/diag/Diagnostic.hpp"
#include "velcg/CGModel.hpp"
#include "velcg/ChildCoderDataGroup.hpp"
#include "velcg/ModelDiagnostics.hpp"
#include "velcg/StoredCoderDataGroup.hpp"
#include "velcg/System.hpp"
#include "velcg/VarGroup.hpp"
#include "velcg/VelCGType.hpp"

using namespace VelCG;
using testing_support::diagnosticOf;

namespace {

using ModelGroup = StoredCoderDataGroup;

TEST(CoderDataGroup, DefaultsAndRules) {
    ChildCoderDataGroup g("Fast");
    EXPECT_EQ("Coder Group 'Fast'", g.getIdentification());
    EXPECT_EQ(-1, g.getGroupIndex());
    // The other rules' defaults are written in CGModelSerialize_golden.txt.
    EXPECT_EQ("$R$U$N", g.getParameterAccessMacroNameRule());
    EXPECT_EQ(CoderDataGroup::AsStructure::InParent, g.getAsStructure());
    EXPECT_EQ(CoderDataGroup::DataInit::Dynamic, g.getDataInit());
    EXPECT_TRUE(g.getInstanceSpecific());
    g.setDataInstantiation(static_cast<CoderDataGroup::DataInstantiation>(5));
    EXPECT_FALSE(g.getInstanceSpecific());
    EXPECT_TRUE(g.HasHierarchicalVarGroup());
    EXPECT_STREQ("HierarchicalCoderData", VarGroup::getStringforCategory(g.getVargroupCategory()));
    EXPECT_EQ(nullptr, g.getCGModel());

    ChildCoderDataGroup copy(g);
    EXPECT_EQ("Fast", copy.name());
    EXPECT_FALSE(copy.getInstanceSpecific());
}

TEST(CoderDataGroup, StringFormsAndExportedScope) {
    using AS = CoderDataGroup::AsStructure;
    using DI = CoderDataGroup::DataInit;
    EXPECT_STREQ("None", CoderDataGroup::getAsStructureString(AS::None));
    EXPECT_STREQ("InSelf", CoderDataGroup::getAsStructureString(AS::InSelf));
    EXPECT_STREQ("", CoderDataGroup::getAsStructureString(static_cast<AS>(7)));
    EXPECT_STREQ("None", CoderDataGroup::getDataInitString(DI::None));
    EXPECT_STREQ("Static", CoderDataGroup::getDataInitString(DI::Static));
    EXPECT_STREQ("", CoderDataGroup::getDataInitString(static_cast<DI>(3)));

    ChildCoderDataGroup g("G");
    const struct {
        const char* scope;
        bool exported;
    } rows[] = {
        {"Exported", true}, {"exported", false}, {"Exported ", false}, {"", false}, {"Imported", false}};
    for (const auto& r : rows) {
        g.setDataScope(r.scope);
        EXPECT_EQ(r.exported, g.isDataScopeExported()) << "'" << r.scope << "'";
    }
}

TEST(CoderDataGroup, RootGroupTypeNameIsTheLastMatchOfTheRootSystem) {
    CGModel m;
    for (int i = 0; i < 3; ++i) m.addSystem(std::make_unique<System>());
    for (const char* name : {"A_Type", "B_Type", "C_Type"}) m.addVelCGType(std::make_unique<VelCGType>(name));
    auto group = [&](int system, int coderGroup, int type) {
        auto g = std::make_unique<VarGroup>();
        g->setSystemIndex(system);
        g->setCoderGroupIndex(coderGroup);
        g->setCGTypeIndex(type);
        m.addVarGroup(std::move(g));
    };
    group(2, 0, 0); // root system, group 0
    group(1, 0, 1); // another system
    group(2, 0, 2); // root system again: the last match wins
    group(2, 1, 1); // another coder group

    ModelGroup g("G", &m);
    EXPECT_EQ("", g.getRootGroupTypeName()) << "an unplaced group matches nothing";
    g.setGroupIndex(0);
    EXPECT_EQ("C_Type", g.getRootGroupTypeName());
    group(2, 0, 0);
    EXPECT_EQ("C_Type", g.getRootGroupTypeName()) << "cached once found";

    m.setIsModelReferenceTarget(true); // the root system is then the one before the last
    ModelGroup ref("R", &m);
    ref.setGroupIndex(0);
    EXPECT_EQ("B_Type", ref.getRootGroupTypeName());

    ModelGroup none("N", &m);
    none.setGroupIndex(0);
    none.setAsStructure(CoderDataGroup::AsStructure::None);
    EXPECT_EQ("", none.getRootGroupTypeName()) << "no search for a group that is no structure";

    // A match with a valid type, then one whose type is missing: the
    // failure leaves nothing cached, so the next call fails the same way.
    group(1, 5, 1); // system 1 is the root of this model-reference target
    group(1, 5, 9);
    ModelGroup bad("X", &m);
    bad.setGroupIndex(5);
    EXPECT_EQ(messages::Model::IndexOutOfRange, diagnosticOf([&] { bad.getRootGroupTypeName(); }));
    EXPECT_EQ(messages::Model::IndexOutOfRange, diagnosticOf([&] { bad.getRootGroupTypeName(); }));
}

// Every field of a group, one per line.
std::string fieldsOf(const CoderDataGroup& g) {
    std::ostringstream os;
    os << g.name() << "\n"
       << g.getRootGroupTypeName() << "\n"
       << g.getHeaderFileRule() << " " << g.getStructureTypeNameRule() << " "
       << g.getStructureInstanceNameRule() << " " << g.getSelfStructureTypeNameRule() << " "
       << g.getSelfStructureInstanceNameRule() << " " << g.getStructureReferenceNameRule() << " "
       << g.getSelfStructureReferenceNameRule() << " " << g.getStructureArgumentNameRule() << " "
       << g.getSelfStructureArgumentNameRule() << " " << g.getParameterAccessMacroNameRule() << "\n"
       << "as-structure " << static_cast<int>(g.getAsStructure()) << ", self " << g.isSelfGroup() << "\n"
       << g.getIdentification() << "|" << g.getMemorySection() << "|" << g.getDataScope() << "|"
       << g.getDescription() << "\n"
       << g.getGroupIndex() << " " << static_cast<int>(g.getDataInstantiation()) << " "
       << static_cast<int>(g.getDataInit()) << " " << g.getEmbedIntoSelf() << g.getDefaultGroup()
       << g.getSynthesized() << g.getIsMemorySectionConst() << g.getIsMemorySectionVolatile() << " "
       << g.getCGModel() << "\n";
    return os.str();
}

TEST(ChildCoderDataGroup, ReadBackFromTheStoreEqualsTheWrittenGroup) {
    using AS = CoderDataGroup::AsStructure;
    testing_support::TempDir dir;
    coder::Repository repository(dir / "groups.strata");
    coder::Transaction transaction(repository);
    // Only the stored fields differ from their defaults.
    for (AS as : {AS::InParent, AS::InSelf, AS::Standalone, AS::None}) {
        ModelGroup written("Gr\xc3\xbcn", nullptr);
        written.setRootGroupTypeName("root_type");
        written.setHeaderFileRule("h_$R");
        written.setStructureTypeNameRule("st_$N");
        written.setStructureInstanceNameRule("si_$N");
        written.setSelfStructureTypeNameRule("sst_$N");
        written.setSelfStructureInstanceNameRule("ssi_$N");
        written.setStructureReferenceNameRule("sr_$N");
        written.setSelfStructureReferenceNameRule("ssr_$N");
        written.setStructureArgumentNameRule("sa_$N");
        written.setSelfStructureArgumentNameRule("ssa_$N");
        written.setAsStructure(as);
        written.setSelfGroup(as == AS::InSelf);
        const ChildCoderDataGroup read(written.serialize(repository));
        EXPECT_EQ(fieldsOf(written), fieldsOf(read)) << static_cast<int>(as);
    }

    // Only the exact strings name an as-structure value; any positive size
    // is a self group.
    const struct {
        const char16_t* text;
        int size;
        AS as;
        bool self;
    } rows[] = {{u"Standalone", 3, AS::Standalone, true},
                {u"inparent", 1, AS::None, true},
                {u"InSelf ", 0, AS::None, false},
                {u"", -1, AS::None, false}};
    for (const auto& r : rows) {
        coder::descriptor::CoderGroupCreator creator(repository);
        creator.setName(u"G");
        creator.setAsStructure(r.text);
        creator.setGroupSize(r.size);
        const ChildCoderDataGroup read(creator.createCoderGroup());
        EXPECT_EQ(r.as, read.getAsStructure()) << vel::i18n::toUtf8(r.text);
        EXPECT_EQ(r.self, read.isSelfGroup()) << r.size;
    }
}

} // namespace
