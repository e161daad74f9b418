// Reading a model description that uses every element kind, writing it back,
// serializing the model read, and the example generator's description.
#include "velcg/ModelDescription.hpp"

#include <filesystem>
#include <gtest/gtest.h>
#include <sstream>

#include "DescriptorDump.hpp"
#include "DiagnosticTesting.hpp"
#include "EveryKindModel.hpp"
#include "ExampleModel.hpp"
#include "ExpectedFile.hpp"
#include "TempDir.hpp"
#include "vel/feature/Feature.hpp"
#include "velcg/BlockHierarchyMap.hpp"
#include "velcg/Features.hpp"
#include "velcg/GraphicalBlock.hpp"
#include "velcg/GraphicalSubsystem.hpp"
#include "velcg/Port.hpp"
#include "velcg/VarGroup.hpp"
#include "velcg/VelCGDataTypesFile.hpp"
#include "velcg/VelCGFileRepository.hpp"
#include "velcg/VelCGGenericFile.hpp"

using namespace VelCG;
using testing_support::diagnosticOf;
using testing_support::fileBytes;
using testing_support::TempDir;

namespace {

std::filesystem::path here() { return testing_support::besideSource(__FILE__, "").parent_path(); }
std::filesystem::path data(const std::string& name) { return here() / "data" / name; }

ModelDescription loadEveryKind() { return ModelDescription::load(data("every_kind.json").string()); }

GraphicalBlock* blockAt(const CGModel& model, std::size_t subsystem, std::size_t block) {
    return model.getBlockHierarchyMap()->getSubsystems().at(subsystem)->getBlocks().at(block);
}

} // namespace

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

// The text is written from what the model read answers (the function map,
// the children the finalized map links, references as indices), so that it
// shows the model as loaded; the serialized dumps below show the answers
// derived from it, such as the identifiers of root inputs.
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
        EXPECT_EQ(testing_support::expectedDump(data("every_kind.dump.txt"), level),
                  testing_support::dumpOf(dir / CGModel::kCodeDescriptorFileName))
            << "level " << level;
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
