// The generic descriptor Object, its Sequences and the Creator that writes
// records (coder/descriptor/Object.hpp, Sequence.hpp and Creator.hpp).
#include "coder/descriptor/Object.hpp"

#include <cmath>
#include <gtest/gtest.h>
#include <optional>
#include <string>

#include "DescriptorModels.hpp"
#include "DiagnosticTesting.hpp"
#include "StoreRows.hpp"
#include "TempDir.hpp"
#include "coder/descriptor/Descriptors.hpp"
#include "coder/descriptor/Dump.hpp"

namespace {

using coder::Repository;
using coder::RepositoryOptions;
using coder::Transaction;
using namespace coder::descriptor;
using testing_support::diagnosticOf;
using testing_support::diagnosticWithArgumentsOf;
using testing_support::TempDir;

TEST(Sequence, ReadsBackInOrderBySizePositionAndIteration) {
    TempDir dir;
    Repository repository(dir / "s.strata");
    Transaction transaction(repository);
    GraphicalSystem system = GraphicalSystemCreator(repository).createGraphicalSystem();
    GraphicalSystem other = GraphicalSystemCreator(repository).createGraphicalSystem();
    GraphicalBlockCreator creator(repository);
    // Appends to two owners interleaved, so that positions are kept per owner.
    for (const char16_t* name : {u"a", u"b", u"c"}) {
        creator.setName(name);
        system.getGraphicalBlocks().append(creator.createGraphicalBlock());
        other.getGraphicalBlocks().append(creator.createGraphicalBlock());
    }
    // Another handle onto the same record appends after what is there.
    objectAs<GraphicalSystem>(Object(system)).getGraphicalBlocks().append(creator.createGraphicalBlock());

    auto blocks = system.getGraphicalBlocks();
    ASSERT_EQ(4u, blocks.size());
    std::u16string names;
    for (GraphicalBlock block : blocks) names += block.getName() + u",";
    EXPECT_EQ(u"a,b,c,c,", names);
    EXPECT_EQ(u"b", blocks[1].getName());
    EXPECT_EQ(3u, other.getGraphicalBlocks().size());
    EXPECT_EQ("coder:descriptor:IndexOutOfRange(4, 4, GraphicalBlocks)",
              diagnosticWithArgumentsOf([&] { blocks.at(4); }));
    transaction.commit();
}

TEST(Object, ReleasedAndClosedObjectsRaiseInsteadOfCrashing) {
    TempDir dir;
    std::optional<Repository> repository(std::in_place, dir / "s.strata");
    repository->beginTransaction();
    Model model = ModelCreator(*repository).createModel();
    Model copy = model;
    copy.release();
    EXPECT_TRUE(copy.isNull());
    EXPECT_EQ("coder:descriptor:NullObject", diagnosticOf([&] { copy.getModelName(); }));
    EXPECT_EQ("coder:descriptor:NullObject", diagnosticOf([&] { model.getSystems().append(System()); }));
    // Releasing never deletes stored data.
    EXPECT_EQ(u"", model.getModelName());
    repository->commitTransaction();

    auto systems = model.getSystems();
    repository.reset();
    EXPECT_EQ("coder:descriptor:Closed", diagnosticOf([&] { model.getModelName(); }));
    EXPECT_EQ("coder:descriptor:Closed", diagnosticOf([&] { systems.size(); }));
}

TEST(Object, RecordsOfAnotherRepositoryOrKindAreRefused) {
    TempDir dir;
    Repository first(dir / "a.strata");
    Repository second(dir / "b.strata");
    Transaction t1(first);
    Transaction t2(second);
    Model model = ModelCreator(first).createModel();
    System foreign = SystemCreator(second).createSystem();
    EXPECT_EQ("coder:descriptor:WrongRepository", diagnosticOf([&] { model.getSystems().append(foreign); }));
    EXPECT_EQ("coder:descriptor:WrongRepository", diagnosticOf([&] {
                  model.setBlockHierarchyMap(BlockHierarchyMapCreator(second).createBlockHierarchyMap());
              }));
    EXPECT_EQ(0u, model.getSystems().size());

    Object generic = SystemCreator(first).createSystem();
    EXPECT_EQ("coder:descriptor:WrongKind(Port, System)",
              diagnosticWithArgumentsOf([&] { objectAs<Port>(generic); }));
}

TEST(Creator, ValuesThatCannotBeStoredWriteNothing) {
    TempDir dir;
    Repository repository(dir / "s.strata");
    Transaction transaction(repository);
    ModelCreator creator(repository);
    const std::u16string loneSurrogate(1, char16_t(0xD800));
    EXPECT_EQ("i18n:InvalidText", diagnosticOf([&] { creator.setModelName(loneSurrogate); }));
    ToAsyncQueueBlockCreator queue(repository);
    EXPECT_EQ("coder:descriptor:OutOfRange(ToAsyncQueueBlock, FxpBias, NaN)",
              diagnosticWithArgumentsOf([&] { queue.setFxpBias(std::nan("")); }));
    EXPECT_EQ("coder:descriptor:NoModel", diagnosticOf([&] { RepositoryHelper::getModel(repository); }));
    EXPECT_EQ(u"", creator.createModel().getModelName());
}

// A store edited by another program: values of the wrong type and missing
// rows are reported when read.
TEST(Object, DamagedValuesAreReportedWhenRead) {
    TempDir dir;
    const auto path = dir / "s.strata";
    testing_support::storeModel(path, u"damaged", 3);
    // STRICT tables refuse wrong types; a table rebuilt without STRICT does not.
    const char* damage =
        "PRAGMA writable_schema = OFF;"
        "ALTER TABLE GraphicalBlock RENAME TO Old;"
        "CREATE TABLE GraphicalBlock (id INTEGER PRIMARY KEY, GraphicalName, Name, SID, Type, Description,"
        " ReferencedModelName, IsProtectedModelBlock, Virtual, NumFcnCallOutputPorts, ParentSystemSID);"
        "INSERT INTO GraphicalBlock SELECT * FROM Old; DROP TABLE Old;"
        "UPDATE GraphicalBlock SET NumFcnCallOutputPorts = 'many' WHERE id = 1;"
        "UPDATE GraphicalBlock SET IsProtectedModelBlock = 7 WHERE id = 3;"
        "DELETE FROM GraphicalSystem_GraphicalBlocks WHERE position = 1;"
        "DELETE FROM BlockHierarchyMap;";
    testing_support::execSql(path, damage);

    Repository repository(path, {RepositoryOptions::Access::ReadOnly});
    // A record without fields is still found missing.
    EXPECT_EQ("coder:descriptor:MissingRecord", diagnosticOf([&] { dumpText(repository); }));
    GraphicalSystem root =
        RepositoryHelper::getModel(repository).getBlockHierarchyMap().getGraphicalSystems().at(0);
    EXPECT_EQ("coder:descriptor:BrokenSequence", diagnosticOf([&] { root.getGraphicalBlocks().size(); }));
    EXPECT_FALSE(repository.checkIntegrity().empty());

    Object first = std::get<Object>(root.getSequenceElement(0, 0));
    EXPECT_EQ("coder:descriptor:WrongType(" + path.string() + ", GraphicalBlock, NumFcnCallOutputPorts)",
              diagnosticWithArgumentsOf([&] { objectAs<GraphicalBlock>(first).getNumFcnCallOutputPorts(); }));
    EXPECT_EQ("coder:descriptor:WrongType(" + path.string() + ", GraphicalBlock, IsProtectedModelBlock)",
              diagnosticWithArgumentsOf([&] {
                  objectAs<GraphicalBlock>(std::get<Object>(root.getSequenceElement(0, 2))).getName();
              }));
}

} // namespace
