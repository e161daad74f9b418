// Reading a model description that uses every element kind, writing it back,
// serializing the model read, and the example generator's description.
#include "velcg/ModelDescription.hpp"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>

#include "CG/DataInterface.hpp"
#include "CG/EmbeddedType.hpp"
#include "CG/Type.hpp"
#include "DiagnosticTesting.hpp"
#include "EveryKindModel.hpp"
#include "ExampleModel.hpp"
#include "TempDir.hpp"
#include "coder/Repository.hpp"
#include "coder/descriptor/Dump.hpp"
#include "vel/feature/Feature.hpp"
#include "velcg/BlockHierarchyMap.hpp"
#include "velcg/CoderDataGroup.hpp"
#include "velcg/DataInterfaceRecord.hpp"
#include "velcg/ExternalInput.hpp"
#include "velcg/Features.hpp"
#include "velcg/GraphicalBlock.hpp"
#include "velcg/GraphicalSubsystem.hpp"
#include "velcg/ModelParameter.hpp"
#include "velcg/Parameter.hpp"
#include "velcg/Port.hpp"
#include "velcg/System.hpp"
#include "velcg/ToAsyncQueueBlock.hpp"
#include "velcg/VarGroup.hpp"
#include "velcg/VelCGDataTypesFile.hpp"
#include "velcg/VelCGFileRepository.hpp"
#include "velcg/VelCGGenericFile.hpp"
#include "velcg/VelCGModuleFile.hpp"
#include "velcg/VelCGType.hpp"
#include "velcg/VelType.hpp"

using namespace VelCG;
using testing_support::diagnosticOf;
using testing_support::fileBytes;
using testing_support::TempDir;

namespace {

std::filesystem::path here() { return std::filesystem::path(__FILE__).parent_path(); }
std::filesystem::path data(const std::string& name) { return here() / "data" / name; }

ModelDescription loadEveryKind() { return ModelDescription::load(data("every_kind.json").string()); }

GraphicalBlock* blockAt(const CGModel& model, std::size_t subsystem, std::size_t block) {
    return model.getBlockHierarchyMap()->getSubsystems().at(subsystem)->getBlocks().at(block);
}

// The expected descriptor dump at one level: the lines of the golden file
// whose level column names it.
std::string expectedDump(int level) {
    std::ifstream in(data("every_kind.dump.txt"));
    EXPECT_TRUE(in.good()) << "the golden dump beside the test";
    std::string line, out;
    while (std::getline(in, line))
        if (line.size() >= 3 && line[2] == '|' && line.find(static_cast<char>('0' + level)) < 2)
            out += line.substr(3) + "\n";
    return out;
}

} // namespace

TEST(ModelDescription, LoadsEveryElementKindIntoTheModel) {
    const ModelDescription d = loadEveryKind();
    const CGModel& m = *d.model;

    // Identity and build attributes answer from stored fields.
    EXPECT_EQ(L"every_kind", m.getName());
    EXPECT_EQ(L"11.0", m.getKordelVersion());
    EXPECT_TRUE(m.getIsCompactFilePackaging());
    EXPECT_TRUE(m.getCPPConfig().isCPPClassGenMode());
    ASSERT_TRUE(m.getStringMap());
    EXPECT_EQ("FixedStep", m.getStringMap()->at(1).second);

    // Systems, their functions and call sites.
    ASSERT_EQ(2u, m.getSystems().size());
    const System& sub = *m.getSystems()[1];
    EXPECT_TRUE(sub.isReusable());
    EXPECT_TRUE(sub.isReusableLibrarySubsystem());
    EXPECT_EQ(m.getSystems()[0], m.getSystemForFunction("every_kind_step"));
    EXPECT_EQ(&sub, m.getSystemForFunction("every_kind_Sub_output"));
    EXPECT_EQ(std::vector<GraphicalBlock*>{blockAt(m, 0, 2)}, sub.getGraphicalCallsites());

    // Types: stored answers, an alias, a matrix of a matrix, a complex type,
    // embedded types built from their descriptions.
    const VelType& speed = *m.getVelTypes()[2];
    EXPECT_TRUE(speed.isAliasType());
    EXPECT_EQ("speed.h", speed.getHeaderFile());
    EXPECT_EQ("Bus1", m.getVelTypes()[4]->getHeaderFile()) << "the data-type name until set";
    EXPECT_EQ("double", m.getVelCGType(4)->getContainerTypeName());
    EXPECT_EQ("cint32_t", m.getVelCGType(5)->getContainerTypeName());
    EXPECT_EQ("double[2][3]", m.getVelCGType(3)->getEmbeddedType()->getIRType().toString());
    EXPECT_EQ("void*", m.getVelCGType(7)->getEmbeddedType()->getIRType().toString());
    EXPECT_EQ(nullptr, m.getVelCGType(6)->getEmbeddedType());

    // A root input known by the member of its group's type.
    EXPECT_EQ("In2", m.getExternalInput(0)->getRecordIdentifier());
    EXPECT_EQ(1, m.getVarGroup(2)->getParentVarGroupIndex());

    // The block hierarchy map is finalized; references are resolved.
    const BlockHierarchyMap& map = *m.getBlockHierarchyMap();
    ASSERT_EQ(2u, map.getSubsystems().size());
    EXPECT_EQ(std::vector<GraphicalSubsystem*>{map.getSubsystems()[1]},
              map.getSubsystems()[0]->getChildSubsystems());
    EXPECT_EQ(blockAt(m, 0, 2), map.getSubsystems()[1]->getSubsystemBlock());
    EXPECT_EQ(std::vector<GraphicalBlock*>{blockAt(m, 1, 1)}, map.getReducedBlocks());
    EXPECT_EQ(1u, map.getSubsystems()[0]->getDataStoreBlocks().size());
    GraphicalBlock* gain = blockAt(m, 0, 1);
    EXPECT_EQ(blockAt(m, 0, 0)->getDataOutputPorts()[0], gain->getDataInputPorts()[0]->getGraphicalSource());
    EXPECT_EQ(m.getModelParameters()[1], gain->getParameters()[0]->getModelParameters()[1]);
    EXPECT_EQ(gain, m.getModelParameter(0)->getGraphicalSource());
    EXPECT_TRUE(gain->getDiscreteStates()[0] && !gain->getDiscreteStates()[0]->hasDataInterface());
    EXPECT_EQ("every_kind_DW.state", gain->getDWorks()[0]->getDataInterface()->getDescription().identifier);
    EXPECT_EQ(BlockVirtuality::PostCompileVirtual, blockAt(m, 0, 5)->getVirtual());

    // Async-queue blocks with their graphical part and nested leaves.
    ToAsyncQueueBlock& queue = *m.getTAQBlocks()[0];
    EXPECT_EQ(L"Queue", queue.getName());
    EXPECT_EQ(L"every_kind/Gain", queue.getBlockPathTAQ());
    EXPECT_EQ(1234567890123, queue.getSignalSourceUUIDasInteger());
    const ToAsyncQueueBlock& leaf = *m.getTAQBlocks()[1]->getLeafElements().at(1)->getLeafElements().at(0);
    EXPECT_EQ(L"c", leaf.getSignalName());
    EXPECT_EQ((std::vector<int>{2, 2}), leaf.getDimensions());

    // Coder data groups, the root type name of one found in the variable
    // groups; the prototype I/O map; the child coder groups.
    EXPECT_EQ(3u, m.getNumCoderDataGroups());
    EXPECT_EQ("Bus1", m.getCoderDataGroup("SubData")->getRootGroupTypeName());
    EXPECT_EQ(CoderDataGroup::DataInit::Static, m.getCoderDataGroup(0)->getDataInit());
    EXPECT_EQ(0, m.getOverwritableOutputPort(1));
    const ChildCoderGroupMgr& children = m.getChildCoderGroupManager();
    EXPECT_EQ("ChildSelf", children.getChildSelfGroupName(u"child_model"));
    EXPECT_EQ("child_P_6", children.getChildCoderGroupVarName("ChildParams", 6));
    EXPECT_EQ("child_model_self_inst", children.getChildCoderGroupVarName("ChildSelf", 5));
    EXPECT_EQ(std::vector<std::string>{"OtherGroup"}, children.getChildCoderGroupNames(u"another_child"));
}

TEST(ModelDescription, CreatesTheDescribedFilesInOrder) {
    const ModelDescription d = loadEveryKind();
    VelCGFileRepository repository;
    d.createFiles(repository);

    std::string names;
    for (const VelCGFile* file : repository.getFileList()) names += file->getNameAscii() + " ";
    EXPECT_EQ("every_kind.h every_kind.c every_kind_Sub.c every_kind_types.h main.c ", names);
    EXPECT_EQ(repository.getFileList()[0], repository.getModuleHeaderFileByIndex(1));
    EXPECT_EQ(repository.getFileList()[2], repository.getModuleSourceFileByIndex(1));
    EXPECT_NE(nullptr, dynamic_cast<VelCGDataTypesFile*>(repository.getFileList()[3]));
    EXPECT_NE(nullptr, dynamic_cast<VelCGGenericFile*>(repository.getFileList()[4]));
}

TEST(ModelDescription, WritesTheCanonicalTextAndReadsItBackUnchanged) {
    const ModelDescription d = loadEveryKind();
    const std::string text = ModelDescription::toText(*d.model, d.files);
    // Defaults left out, keys in table order, functions sorted, the I/O
    // map by input port, child models and groups by name.
    EXPECT_EQ(fileBytes(data("every_kind.expected.json")), text);

    const ModelDescription again = ModelDescription::parse(text, "again.json");
    EXPECT_EQ(text, ModelDescription::toText(*again.model, again.files));
}

TEST(ModelDescription, SerializesTheModelItReadsWithEveryRecordKind) {
    for (int level : {2, 4}) {
        vel::feature::ScopedValue switchValue(VELFEAT_VelCGDirectEmitSerialize, level);
        TempDir dir;
        {
            const ModelDescription d = loadEveryKind();
            d.model->serializeModel(dir.path().wstring());
            d.model->serializeModelAfterScriv(dir.path().wstring());
        }
        coder::RepositoryOptions options;
        options.access = coder::RepositoryOptions::Access::ReadOnly;
        coder::Repository repository(dir / CGModel::kCodeDescriptorFileName, options);
        EXPECT_EQ(expectedDump(level), coder::descriptor::dumpText(repository)) << "level " << level;
    }
}

TEST(ModelDescription, ExampleDescriptionIsTheExampleGeneratorsModel) {
    using Kind = ModelFileDescription::Kind;
    const ModelDescription d = ModelDescription::load(
        (here() / "../../../examples/gain_model/model.json").lexically_normal().string());
    const std::vector<ModelFileDescription> files = {{Kind::ModuleHeader, "gain_model.h", {0}},
                                                     {Kind::ModuleSource, "gain_model.c", {0}},
                                                     {Kind::DataTypes, "gain_model_types.h", {}},
                                                     {Kind::Generic, "gain_model_main.c", {}}};
    EXPECT_EQ(ModelDescription::toText(*example::buildGainModel(), files),
              ModelDescription::toText(*d.model, d.files));
    EXPECT_EQ(R"({"steps":5,"gain":2.0})", d.templateData);
}

TEST(ModelDescription, SavesAndLoadsFiles) {
    TempDir dir;
    const ModelDescription d = loadEveryKind();
    const std::string path = (dir / "saved.json").string();
    ModelDescription::save(*d.model, d.files, path);
    EXPECT_EQ(ModelDescription::toText(*d.model, d.files), fileBytes(path));
    EXPECT_FALSE(std::filesystem::exists(path + ".partial"));
    const ModelDescription loaded = ModelDescription::load(path);
    EXPECT_EQ(fileBytes(path), ModelDescription::toText(*loaded.model, loaded.files));

    // A file that cannot be written is left as it was.
    const std::string missingDirectory = (dir / "no" / "such.json").string();
    EXPECT_EQ("VelCG:ModelDescription:WriteFailed",
              diagnosticOf([&] { ModelDescription::save(*d.model, d.files, missingDirectory); }));
    EXPECT_EQ("VelCG:ModelDescription:ReadFailed",
              diagnosticOf([&] { ModelDescription::load(missingDirectory); }));
    EXPECT_EQ("VelCG:ModelDescription:ReadFailed",
              diagnosticOf([&] { ModelDescription::load(dir.path().string()); }));
}

TEST(ModelDescription, TheReferencePagesExampleIsAModel) {
    const std::string page = fileBytes((here() / "../../../docs/model-description.md").lexically_normal());
    const std::size_t start = page.find("```json\n");
    ASSERT_NE(std::string::npos, start);
    const std::size_t end = page.find("\n```", start + 8);
    const ModelDescription d = ModelDescription::parse(page.substr(start + 8, end - start - 8), "example");

    const CGModel& m = *d.model;
    EXPECT_EQ(blockAt(m, 0, 0)->getDataOutputPorts()[0],
              blockAt(m, 0, 1)->getDataInputPorts()[0]->getGraphicalSource());
    EXPECT_EQ("In1", m.getExternalInput(0)->getRecordIdentifier());
    EXPECT_EQ(3u, d.files.size());
}

TEST(ModelDescription, DescribesAModelBuiltByHandAsItAnswers) {
    // Plain System and VelType objects, ports without a model: the text
    // holds what the objects answer, and reads back into the same text.
    testing_support::EveryKindModel built;
    // Its variable group names group 1 as a sub-structure; a description
    // names only groups that exist.
    built.model.addVarGroup(std::make_unique<VarGroup>());
    const std::string text = ModelDescription::toText(built.model);
    const ModelDescription d = ModelDescription::parse(text, "every_kind_model");
    EXPECT_EQ(text, ModelDescription::toText(*d.model));
    EXPECT_EQ(blockAt(*d.model, 0, 0)->getDataOutputPorts()[0],
              blockAt(*d.model, 0, 1)->getDataInputPorts()[0]->getGraphicalSource());
}
