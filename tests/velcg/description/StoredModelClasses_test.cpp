// The field-backed model classes that descriptions are read into.
#include <gtest/gtest.h>

#include "DescriptorDump.hpp"
#include "TempDir.hpp"
#include "vel/feature/Feature.hpp"
#include "velcg/Features.hpp"
#include "velcg/StoredCGModel.hpp"
#include "velcg/StoredCoderDataGroup.hpp"
#include "velcg/StoredVelType.hpp"
#include "velcg/VarGroup.hpp"
#include "velcg/VelCGType.hpp"

using namespace VelCG;
using testing_support::TempDir;

TEST(StoredVelType, AnswersLikeVelTypeUntilAFieldIsSet) {
    StoredVelType type("Speed");
    EXPECT_EQ("Speed", type.getDescription());
    EXPECT_EQ("Speed", type.getHeaderFile());
    EXPECT_FALSE(type.isAliasType()) << "both alias ids and the id are unset";
    EXPECT_FALSE(type.isShared() || type.isUserProvided() || type.isEnumType() || type.isStructType() ||
                 type.isBus());

    type.setDTName("Velocity");
    EXPECT_EQ("Velocity", type.getHeaderFile()) << "follows the data-type name while unset";
    type.setDescription("");
    type.setHeaderFile("velocity.h");
    type.setID(20);
    type.setIdAliasedThruTo(6);
    type.setIsBus(true);
    EXPECT_EQ("", type.getDescription()) << "an empty description is a description";
    EXPECT_EQ("velocity.h", type.getHeaderFile());
    EXPECT_TRUE(type.isAliasType());
    EXPECT_TRUE(type.isBus());
}

TEST(StoredCGModel, ItsNameReachesTheCodeDescriptorEvenFromABackgroundPass) {
    for (int level : {1, 2}) {
        vel::feature::ScopedValue switchValue(VELFEAT_VelCGDirectEmitSerialize, level);
        TempDir dir;
        {
            StoredCGModel model(L"plant");
            model.setKordelVersion(L"11.0");
            model.setVersion(L"1.2");
            model.serializeModel(dir.path().wstring());
            // Destroyed while a pass at level 1 may still ask for the name.
        }
        const std::string dump = testing_support::dumpOf(dir / CGModel::kCodeDescriptorFileName);
        EXPECT_NE(std::string::npos, dump.find("ModelName: \"plant\"\n  KordelVersion: \"11.0\"")) << dump;
    }
}

TEST(StoredCoderDataGroup, FindsItsRootTypeNameAmongItsModelsVariableGroups) {
    StoredCGModel model;
    model.addVelCGType(std::make_unique<VelCGType>("Inputs"));
    auto group = std::make_unique<VarGroup>();
    group->setSystemIndex(-1); // the root system of a model without systems
    group->setCGTypeIndex(0);
    group->setCoderGroupIndex(0);
    model.addVarGroup(std::move(group));
    model.appendCoderDataGroup(std::make_unique<StoredCoderDataGroup>("In", &model));

    const CoderDataGroup& placed = *model.getCoderDataGroup("In");
    EXPECT_EQ(&model, placed.getCGModel());
    EXPECT_EQ("Inputs", placed.getRootGroupTypeName());
    placed.WriteToBriskFile(); // does nothing, and does not throw
    EXPECT_EQ("Coder Group 'In'", placed.getIdentification());
}
