#include "coder/descriptor/Dump.hpp"

#include <gtest/gtest.h>

#include "DescriptorModels.hpp"
#include "ExpectedFile.hpp"
#include "TempDir.hpp"
#include "coder/descriptor/Descriptors.hpp"

namespace {

using coder::Repository;
using coder::RepositoryOptions;
using coder::Transaction;
using namespace coder::descriptor;
using testing_support::TempDir;

// Both dumps of a model with every kind of value, stored and read again.
// That every field of every record kind is stored shows in the models the
// model tests serialize.
TEST(Dump, AStoredModelReadsBackAfterReopeningWithEveryValueShape) {
    TempDir dir;
    const auto path = dir / "codedescriptor.strata";
    {
        Repository repository(path);
        testing_support::writeValueShapesModel(repository);
    }
    Repository repository(path, {RepositoryOptions::Access::ReadOnly});
    EXPECT_TRUE(repository.checkIntegrity().empty());
    EXPECT_MATCHES_FILE(dumpText(repository), __FILE__, "../support/value_shapes.dump.txt");
    EXPECT_MATCHES_FILE(dumpJson(repository), __FILE__, "../support/value_shapes.dump.json");
}

TEST(Dump, ARecordThatRefersToItsAncestorIsMarked) {
    TempDir dir;
    Repository repository(dir / "s.strata");
    Transaction transaction(repository);
    Port a = PortCreator(repository).createPort();
    Port b = PortCreator(repository).createPort();
    a.setGraphicalSource(b);
    b.setGraphicalSource(a);
    EXPECT_EQ(
        "Port\n"
        "  GraphicalName: \"\"\n"
        "  SignalLabel: \"\"\n"
        "  Connected: false\n"
        "  TestPoint: false\n"
        "  GraphicalSource: Port\n"
        "    GraphicalName: \"\"\n"
        "    SignalLabel: \"\"\n"
        "    Connected: false\n"
        "    TestPoint: false\n"
        "    GraphicalSource: Port (cycle)\n"
        "    DataInterfaces: []\n"
        "  DataInterfaces: []\n",
        dumpText(a));
}

TEST(Dump, TextsAreQuotedWithJsonEscapes) {
    EXPECT_EQ(R"("plain")", quoteText("plain"));
    EXPECT_EQ(R"("a\"b\\c\nd\te\u0001")", quoteText("a\"b\\c\nd\te\x01"));
    EXPECT_EQ("\"\xc3\xa9\"", quoteText("\xc3\xa9"));
}

} // namespace
