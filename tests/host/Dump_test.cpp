#include "coder/descriptor/Dump.hpp"

#include <cstdint>
#include <gtest/gtest.h>
#include <limits>

#include "ExpectedFile.hpp"
#include "TempDir.hpp"
#include "coder/descriptor/Descriptors.hpp"

namespace {

using coder::Repository;
using coder::RepositoryOptions;
using coder::Transaction;
using namespace coder::descriptor;
using testing_support::TempDir;

// Writes a model with text, logical, integer (to the 64-bit limits) and real
// fields, set and unset references, nested records and sequences of records
// and of scalars, empty and not. That every field of every record kind is
// stored is checked with the models serialized in the model tests.
void writeModel(Repository& repository) {
    ModelCreator modelCreator(repository);
    modelCreator.setModelName(u"d\"e\\mo\u00e9");
    modelCreator.setKordelVersion(u"4.2");
    Model model = modelCreator.createModel();

    IOMap io = IOMapCreator(repository).createIOMap();
    io.getInportIndices().append(IntegerArrayElement(0));
    io.getInportIndices().append(IntegerArrayElement(-1));
    model.setFPCInfo(io);

    GraphicalBlockCreator blockCreator(repository);
    blockCreator.setName(u"Gain");
    blockCreator.setDescription(u"line one\nline \"two\"");
    blockCreator.setIsProtectedModelBlock(true);
    blockCreator.setNumFcnCallOutputPorts(2);
    GraphicalBlock block = blockCreator.createGraphicalBlock();
    PortCreator portCreator(repository);
    portCreator.setConnected(true);
    Port source = portCreator.createPort();
    Port input = PortCreator(repository).createPort();
    input.setGraphicalSource(source);
    block.getDataInputPorts().append(input);
    System system = SystemCreator(repository).createSystem();
    system.getGraphicalCallSites().append(block);
    model.getSystems().append(system);

    ToAsyncQueueBlockCreator queueCreator(repository);
    queueCreator.setIsFixedPoint(true);
    queueCreator.setDataTypeId(-3);
    queueCreator.setFxpSignedness(std::numeric_limits<std::uint32_t>::max());
    queueCreator.setFxpSlopeAdjFactor(1.25);
    queueCreator.setFxpBias(-0.5);
    queueCreator.setSignalName(u"bus");
    queueCreator.setSignalSourceUUIDasInteger(std::numeric_limits<std::int64_t>::min());
    queueCreator.setNVBusOffset(std::numeric_limits<std::int64_t>::max());
    ToAsyncQueueBlock queue = queueCreator.createToAsyncQueueBlock();
    queue.getEnumLabels().append(StringListElement(u"Off"));
    queue.getEnumLabels().append(StringListElement(u"On"));
    model.getTAQBlocks().append(queue);
}

TEST(Dump, AStoredModelReadsBackAfterReopeningWithEveryValueShape) {
    TempDir dir;
    const auto path = dir / "codedescriptor.strata";
    {
        Repository repository(path);
        Transaction transaction(repository);
        writeModel(repository);
        transaction.commit();
    }
    Repository repository(path, {RepositoryOptions::Access::ReadOnly});
    EXPECT_MATCHES_FILE(dumpText(repository), __FILE__, "Dump_every_value_shape.txt");
    EXPECT_TRUE(repository.checkIntegrity().empty());
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
