#include "coder/descriptor/Dump.hpp"

#include <cstdint>
#include <gtest/gtest.h>
#include <limits>

#include "TempDir.hpp"
#include "coder/descriptor/Descriptors.hpp"

namespace {

using coder::Repository;
using coder::RepositoryOptions;
using coder::Transaction;
using namespace coder::descriptor;
using testing_support::TempDir;

GraphicalBlock writeBlock(Repository& repository, const std::u16string& name, bool withParent) {
    GraphicalBlockCreator creator(repository);
    creator.setGraphicalName(name + u" (graphical)");
    creator.setName(name);
    creator.setSID(u"m:" + name);
    creator.setType(u"Gain");
    creator.setDescription(u"line one\nline \"two\"");
    creator.setReferencedModelName(u"child");
    creator.setIsProtectedModelBlock(true);
    creator.setVirtual(u"NonVirtual");
    creator.setNumFcnCallOutputPorts(2);
    if (withParent) creator.setParentSystemSID(u"m:1");
    GraphicalBlock block = creator.createGraphicalBlock();

    DataInterfaceCreator dataInterface(repository);
    dataInterface.setIdentifier(u"m_signals.y");
    dataInterface.setImplementation(u"StructElement");
    dataInterface.setOwner(u"m_signals");
    dataInterface.setTypeName(u"double");
    dataInterface.setGraphicalName(u"Gain");

    PortCreator port(repository);
    port.setGraphicalName(u"In1");
    port.setSignalLabel(u"u\u00e9");
    port.setConnected(true);
    port.setTestPoint(true);
    Port source = port.createPort();
    Port input = port.createPort();
    input.setGraphicalSource(source);
    input.getDataInterfaces().append(dataInterface.createDataInterface());
    block.getDataInputPorts().append(input);
    block.getDataOutputPorts().append(source);
    block.getControlInputPorts().append(PortCreator(repository).createPort());

    State state = StateCreator(repository).createState();
    state.getDimensions().append(IntegerArrayElement(2));
    block.getContinuousStates().append(state);
    block.getDerivatives().append(StateCreator(repository).createState());
    block.getDWorks().append(dataInterface.createDataInterface());
    block.getDiscreteStates().append(dataInterface.createDataInterface());

    ModelParameterCreator modelParameter(repository);
    modelParameter.setName(u"K");
    modelParameter.setOriginalName(u"Gain.K");
    modelParameter.setAlias(true);
    modelParameter.setTunable(true);
    modelParameter.setWorkspaceVariable(true);
    modelParameter.setWorkspaceVariableName(u"K");
    modelParameter.setGraphicalSourceSID(u"m:2");
    ModelParameter k = modelParameter.createModelParameter();
    k.getGraphicalReferencesSID().append(StringListElement(u"m:2"));
    k.getGraphicalReferencesSID().append(StringListElement(u"m:3"));
    BlockParameterCreator blockParameter(repository);
    blockParameter.setName(u"Gain");
    BlockParameter gain = blockParameter.createBlockParameter();
    gain.getModelParameters().append(k);
    block.getBlockParameters().append(gain);
    return block;
}

ToAsyncQueueBlock writeQueueBlock(Repository& repository, const std::u16string& signal) {
    ToAsyncQueueBlockCreator creator(repository);
    creator.setIsFixedPoint(true);
    creator.setIsEnum(true);
    creator.setDataTypeId(-3);
    creator.setDataTypeSize(4);
    creator.setFxpNumericType(2);
    creator.setFxpSignedness(std::numeric_limits<std::uint32_t>::max());
    creator.setFxpWordLength(16);
    creator.setFxpFractionLength(8);
    creator.setFxpSlopeAdjFactor(1.25);
    creator.setFxpFixedExponent(-8);
    creator.setFxpBias(0.5);
    creator.setEnumClassName(u"Mode");
    creator.setEnumClassification(u"native");
    creator.setIsComplex(true);
    creator.setIsDiscrete(true);
    creator.setIsVirtualBus(true);
    creator.setIsNVBus(true);
    creator.setIsVarDims(true);
    creator.setBlockPath(u"m/Bus");
    creator.setBlockSID(u"m:7");
    creator.setPortNumber(1);
    creator.setSignalName(signal);
    creator.setActSrcBlockPath(u"m/Src");
    creator.setActSrcBlockSID(u"m:8");
    creator.setActSrcPortNumber(2);
    creator.setActSrcDWorkName(u"work");
    creator.setActSrcStartElement(3);
    creator.setSignalSourceUUID(u"0f-1e");
    creator.setSignalSourceUUIDasInteger(std::numeric_limits<std::int64_t>::min());
    creator.setUniqueId(9);
    creator.setTid(1);
    creator.setNVBusOffset(std::numeric_limits<std::int64_t>::max());
    creator.setIsLiveStreaming(true);
    creator.setIsDeferredStreaming(true);
    ToAsyncQueueBlock record = creator.createToAsyncQueueBlock();
    record.getEnumLabels().append(StringListElement(u"Off"));
    record.getEnumLabels().append(StringListElement(u"On"));
    record.getEnumValues().append(IntegerArrayElement(0));
    record.getEnumValues().append(IntegerArrayElement(1));
    record.getDimensions().append(IntegerArrayElement(1));
    record.getDimensions().append(IntegerArrayElement(4));
    return record;
}

// Writes every record kind with every field and sequence set.
void writeEverything(Repository& repository) {
    ModelCreator modelCreator(repository);
    modelCreator.setModelName(u"demo");
    modelCreator.setKordelVersion(u"4.2");
    modelCreator.setSharedCodeManagerPath(u"/shared/code");
    Model model = modelCreator.createModel();

    BlockHierarchyMap map = BlockHierarchyMapCreator(repository).createBlockHierarchyMap();
    GraphicalSystemCreator systemCreator(repository);
    systemCreator.setName(u"demo");
    systemCreator.setGraphicalName(u"demo");
    systemCreator.setSubsystemType(u"root");
    systemCreator.setMaskType(u"mask");
    GraphicalSystem root = systemCreator.createGraphicalSystem();
    GraphicalBlock block = writeBlock(repository, u"Gain", false);
    root.getGraphicalBlocks().append(block);
    map.getGraphicalSystems().append(root);
    model.setBlockHierarchyMap(map);

    SystemCreator system(repository);
    system.setIdentifier(u"s1");
    system.setName(u"Subsystem");
    System s = system.createSystem();
    s.getGraphicalCallSites().append(writeBlock(repository, u"Caller", true));
    model.getSystems().append(s);

    ExternalInputCreator input(repository);
    input.setCGTypeIndex(1);
    input.setStorageClass(u"Auto");
    input.setRequiresGlobalAccess(true);
    input.setIdentifier(u"In1");
    input.setVarGroupIndex(2);
    input.setVarGroupMemberIndex(3);
    input.setHasVarDims(true);
    input.setCanonicalDimSizeDWorkIndex(4);
    input.setHasCanonicalDimSizeDWorkIndex(true);
    input.setSizeVarGroupIndex(5);
    input.setSizeVarGroupMemberIndex(6);
    input.setDimSizeDWork(7);
    input.setPadding(8);
    model.getExternalInputs().append(input.createExternalInput());

    ToAsyncQueueBlock bus = writeQueueBlock(repository, u"bus");
    ToAsyncQueueBlock leaf = writeQueueBlock(repository, u"leaf");
    leaf.getLeafElements().append(ToAsyncQueueBlockCreator(repository).createToAsyncQueueBlock());
    bus.getLeafElements().append(leaf);
    model.getTAQBlocks().append(bus);

    IOMap io = IOMapCreator(repository).createIOMap();
    io.getInportIndices().append(IntegerArrayElement(0));
    io.getOutportIndicies().append(IntegerArrayElement(1));
    model.setFPCInfo(io);

    CoderGroupCreator group(repository);
    group.setName(u"Fast");
    group.setRootTypeName(u"demo_fast");
    group.setStructureTypeNameRule(u"$R$N$G$M");
    group.setStructureInstanceNameRule(u"$G$N$M");
    group.setSelfStructureTypeNameRule(u"$R_IMPL$M");
    group.setStructureReferenceNameRule(u"$N$G_ref$M");
    group.setSelfStructureReferenceNameRule(u"$N_ref$M");
    group.setStructureArgumentNameRule(u"$R$G_arg$M");
    group.setSelfStructureArgumentNameRule(u"self$M");
    group.setHeaderFileRule(u"$R.h");
    group.setSelfStructureInstanceNameRule(u"$N$M");
    group.setGroupSize(1);
    group.setAsStructure(u"InSelf");
    model.getCoderGroups().append(group.createCoderGroup());

    RegionCreator region(repository);
    region.setGroundLabel(u"ground");
    region.setSource(u"rtb.x");
    Region r = region.createRegion();
    r.getDimensions().append(IntegerArrayElement(3));
}

const char* const kBlockDump = R"dump(GraphicalName: "{N} (graphical)"
Name: "{N}"
SID: "m:{N}"
Type: "Gain"
Description: "line one\nline \"two\""
ReferencedModelName: "child"
IsProtectedModelBlock: true
Virtual: "NonVirtual"
NumFcnCallOutputPorts: 2
ParentSystemSID: {P}
DataInputPorts: [1]
  [0] Port
    GraphicalName: "In1"
    SignalLabel: "ué"
    Connected: true
    TestPoint: true
    GraphicalSource: Port
      GraphicalName: "In1"
      SignalLabel: "ué"
      Connected: true
      TestPoint: true
      GraphicalSource: (none)
      DataInterfaces: []
    DataInterfaces: [1]
      [0] DataInterface
        Identifier: "m_signals.y"
        Implementation: "StructElement"
        Owner: "m_signals"
        TypeName: "double"
        GraphicalName: "Gain"
DataOutputPorts: [1]
  [0] Port
    GraphicalName: "In1"
    SignalLabel: "ué"
    Connected: true
    TestPoint: true
    GraphicalSource: (none)
    DataInterfaces: []
ControlInputPorts: [1]
  [0] Port
    GraphicalName: ""
    SignalLabel: ""
    Connected: false
    TestPoint: false
    GraphicalSource: (none)
    DataInterfaces: []
ContinuousStates: [1]
  [0] State
    Dimensions: [2]
Derivatives: [1]
  [0] State
    Dimensions: []
DWorks: [1]
  [0] DataInterface
    Identifier: "m_signals.y"
    Implementation: "StructElement"
    Owner: "m_signals"
    TypeName: "double"
    GraphicalName: "Gain"
DiscreteStates: [1]
  [0] DataInterface
    Identifier: "m_signals.y"
    Implementation: "StructElement"
    Owner: "m_signals"
    TypeName: "double"
    GraphicalName: "Gain"
BlockParameters: [1]
  [0] BlockParameter
    Name: "Gain"
    ModelParameters: [1]
      [0] ModelParameter
        Name: "K"
        OriginalName: "Gain.K"
        Alias: true
        Tunable: true
        WorkspaceVariable: true
        WorkspaceVariableName: "K"
        GraphicalSourceSID: "m:2"
        GraphicalReferencesSID: ["m:2", "m:3"]
)dump";

const char* const kQueueDump = R"(IsFixedPoint: true
IsEnum: true
DataTypeId: -3
DataTypeSize: 4
FxpNumericType: 2
FxpSignedness: 4294967295
FxpWordLength: 16
FxpFractionLength: 8
FxpSlopeAdjFactor: 1.25
FxpFixedExponent: -8
FxpBias: 0.5
EnumClassName: "Mode"
EnumClassification: "native"
IsComplex: true
IsDiscrete: true
IsVirtualBus: true
IsNVBus: true
IsVarDims: true
BlockPath: "m/Bus"
BlockSID: "m:7"
PortNumber: 1
SignalName: "{S}"
ActSrcBlockPath: "m/Src"
ActSrcBlockSID: "m:8"
ActSrcPortNumber: 2
ActSrcDWorkName: "work"
ActSrcStartElement: 3
SignalSourceUUID: "0f-1e"
SignalSourceUUIDasInteger: -9223372036854775808
UniqueId: 9
Tid: 1
NVBusOffset: 9223372036854775807
IsLiveStreaming: true
IsDeferredStreaming: true
)";

// Indents every line of text by n spaces after replacing the placeholders.
std::string fill(std::string text, std::size_t n, const std::string& name, const std::string& other) {
    for (const char* placeholder : {"{N}", "{S}"})
        for (auto at = text.find(placeholder); at != std::string::npos; at = text.find(placeholder))
            text.replace(at, 3, name);
    for (auto at = text.find("{P}"); at != std::string::npos; at = text.find("{P}"))
        text.replace(at, 3, other);
    std::string out;
    std::size_t start = 0;
    while (start < text.size()) {
        const auto end = text.find('\n', start);
        out.append(n, ' ');
        out += text.substr(start, end - start + 1);
        start = end + 1;
    }
    return out;
}

std::string expectedDump() {
    const std::string defaultQueue = R"(IsFixedPoint: false
IsEnum: false
DataTypeId: 0
DataTypeSize: 0
FxpNumericType: 0
FxpSignedness: 0
FxpWordLength: 0
FxpFractionLength: 0
FxpSlopeAdjFactor: 0
FxpFixedExponent: 0
FxpBias: 0
EnumClassName: ""
EnumClassification: ""
IsComplex: false
IsDiscrete: false
IsVirtualBus: false
IsNVBus: false
IsVarDims: false
BlockPath: ""
BlockSID: ""
PortNumber: 0
SignalName: ""
ActSrcBlockPath: ""
ActSrcBlockSID: ""
ActSrcPortNumber: 0
ActSrcDWorkName: ""
ActSrcStartElement: 0
SignalSourceUUID: ""
SignalSourceUUIDasInteger: 0
UniqueId: 0
Tid: 0
NVBusOffset: 0
IsLiveStreaming: false
IsDeferredStreaming: false
LeafElements: []
EnumLabels: []
EnumValues: []
Dimensions: []
)";
    const std::string queueLists = R"(EnumLabels: ["Off", "On"]
EnumValues: [0, 1]
Dimensions: [1, 4]
)";
    return "Model\n"
           "  ModelName: \"demo\"\n"
           "  KordelVersion: \"4.2\"\n"
           "  SharedCodeManagerPath: \"/shared/code\"\n"
           "  BlockHierarchyMap: BlockHierarchyMap\n"
           "    GraphicalSystems: [1]\n"
           "      [0] GraphicalSystem\n"
           "        Name: \"demo\"\n"
           "        GraphicalName: \"demo\"\n"
           "        SubsystemType: \"root\"\n"
           "        MaskType: \"mask\"\n"
           "        GraphicalBlocks: [1]\n"
           "          [0] GraphicalBlock\n" +
           fill(kBlockDump, 12, "Gain", "(absent)") +
           "  FPCInfo: IOMap\n"
           "    InportIndices: [0]\n"
           "    OutportIndicies: [1]\n"
           "  Systems: [1]\n"
           "    [0] System\n"
           "      Identifier: \"s1\"\n"
           "      Name: \"Subsystem\"\n"
           "      GraphicalCallSites: [1]\n"
           "        [0] GraphicalBlock\n" +
           fill(kBlockDump, 10, "Caller", "\"m:1\"") +
           "  ExternalInputs: [1]\n"
           "    [0] ExternalInput\n"
           "      CGTypeIndex: 1\n"
           "      StorageClass: \"Auto\"\n"
           "      RequiresGlobalAccess: true\n"
           "      Identifier: \"In1\"\n"
           "      VarGroupIndex: 2\n"
           "      VarGroupMemberIndex: 3\n"
           "      HasVarDims: true\n"
           "      CanonicalDimSizeDWorkIndex: 4\n"
           "      HasCanonicalDimSizeDWorkIndex: true\n"
           "      SizeVarGroupIndex: 5\n"
           "      SizeVarGroupMemberIndex: 6\n"
           "      DimSizeDWork: 7\n"
           "      Padding: 8\n"
           "  TAQBlocks: [1]\n"
           "    [0] ToAsyncQueueBlock\n" +
           fill(kQueueDump, 6, "bus", "") +
           "      LeafElements: [1]\n"
           "        [0] ToAsyncQueueBlock\n" +
           fill(kQueueDump, 10, "leaf", "") +
           "          LeafElements: [1]\n"
           "            [0] ToAsyncQueueBlock\n" +
           fill(defaultQueue, 14, "", "") + fill(queueLists, 10, "", "") + fill(queueLists, 6, "", "") +
           "  CoderGroups: [1]\n"
           "    [0] CoderGroup\n"
           "      Name: \"Fast\"\n"
           "      RootTypeName: \"demo_fast\"\n"
           "      StructureTypeNameRule: \"$R$N$G$M\"\n"
           "      StructureInstanceNameRule: \"$G$N$M\"\n"
           "      SelfStructureTypeNameRule: \"$R_IMPL$M\"\n"
           "      StructureReferenceNameRule: \"$N$G_ref$M\"\n"
           "      SelfStructureReferenceNameRule: \"$N_ref$M\"\n"
           "      StructureArgumentNameRule: \"$R$G_arg$M\"\n"
           "      SelfStructureArgumentNameRule: \"self$M\"\n"
           "      HeaderFileRule: \"$R.h\"\n"
           "      SelfStructureInstanceNameRule: \"$N$M\"\n"
           "      GroupSize: 1\n"
           "      AsStructure: \"InSelf\"\n";
}

TEST(Dump, EveryRecordKindReadsBackAfterReopening) {
    TempDir dir;
    const auto path = dir / "codedescriptor.strata";
    {
        Repository repository(path);
        Transaction transaction(repository);
        writeEverything(repository);
        transaction.commit();
    }
    Repository repository(path, {RepositoryOptions::Access::ReadOnly});
    EXPECT_EQ(expectedDump(), dumpText(repository));
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
