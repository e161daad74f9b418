// velcg_descriptor run as a process on stores written here: whole outputs,
// exit statuses, and files left as they were.
#include <fcntl.h>
#include <functional>
#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <spawn.h>
#include <string>
#include <sys/wait.h>
#include <vector>

#include <sqlite3.h>

#include "TempDir.hpp"
#include "coder/descriptor/Descriptors.hpp"
#include "coder/descriptor/Dump.hpp"

extern char** environ;

namespace {

using coder::Repository;
using coder::Transaction;
using namespace coder::descriptor;
using testing_support::fileBytes;
using testing_support::TempDir;
using testing_support::writeBytes;

struct ToolRun {
    int status = -1; // the exit status, or -1 when the tool did not exit normally
    std::string out;
    std::string err;
};

// Runs the tool with the given arguments, its standard output and error
// captured in files of dir.
ToolRun runTool(const TempDir& dir, const std::vector<std::string>& args) {
    const std::string outPath = (dir / "stdout").string();
    const std::string errPath = (dir / "stderr").string();
    std::vector<std::string> argStrings = {VELCG_DESCRIPTOR_TOOL};
    argStrings.insert(argStrings.end(), args.begin(), args.end());
    std::vector<char*> argv;
    for (std::string& arg : argStrings) argv.push_back(arg.data());
    argv.push_back(nullptr);

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 1, outPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    posix_spawn_file_actions_addopen(&actions, 2, errPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    pid_t pid = 0;
    const int spawned = posix_spawn(&pid, argv[0], &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    ToolRun run;
    if (spawned != 0) {
        ADD_FAILURE() << "cannot start " << argv[0];
        return run;
    }
    int status = 0;
    waitpid(pid, &status, 0);
    if (WIFEXITED(status)) run.status = WEXITSTATUS(status);
    run.out = fileBytes(outPath);
    run.err = fileBytes(errPath);
    return run;
}

std::string replaceAll(std::string text, const std::string& from, const std::string& to) {
    for (auto at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size()))
        text.replace(at, from.size(), to);
    return text;
}

// Runs SQL on a file directly, past the store.
void execSql(const std::filesystem::path& path, const std::string& sql) {
    sqlite3* db = nullptr;
    ASSERT_EQ(SQLITE_OK, sqlite3_open_v2(path.c_str(), &db, SQLITE_OPEN_READWRITE, nullptr));
    char* error = nullptr;
    const int rc = sqlite3_exec(db, sql.c_str(), nullptr, nullptr, &error);
    const std::string message = error ? error : "";
    sqlite3_free(error);
    sqlite3_close(db);
    ASSERT_EQ(SQLITE_OK, rc) << message;
}

// A small model: every record kind, references set and unset, a reference
// cycle, value lists, absent and present optional fields, and a text with a
// quote, control characters and non-ASCII UTF-8 (two and four bytes).
void writeSmallModel(Repository& repository) {
    Transaction transaction(repository);
    ModelCreator modelCreator(repository);
    modelCreator.setModelName(u"demo");
    modelCreator.setKordelVersion(u"1.0");
    Model model = modelCreator.createModel();

    BlockHierarchyMap map = BlockHierarchyMapCreator(repository).createBlockHierarchyMap();
    model.setBlockHierarchyMap(map);
    GraphicalSystemCreator systemCreator(repository);
    systemCreator.setName(u"demo");
    systemCreator.setGraphicalName(u"demo");
    GraphicalSystem root = systemCreator.createGraphicalSystem();
    map.getGraphicalSystems().append(root);

    GraphicalBlockCreator gainCreator(repository);
    gainCreator.setGraphicalName(u"Gain \"K\" \u00b5\U0001D11E");
    gainCreator.setName(u"Gain");
    gainCreator.setSID(u"demo:1");
    gainCreator.setType(u"Gain");
    gainCreator.setDescription(u"line\tone\nline two\\");
    gainCreator.setNumFcnCallOutputPorts(-1);
    GraphicalBlock gain = gainCreator.createGraphicalBlock();
    root.getGraphicalBlocks().append(gain);

    DataInterfaceCreator dataInterface(repository);
    dataInterface.setIdentifier(u"demo_signals.u");
    dataInterface.setImplementation(u"StructElement");
    dataInterface.setOwner(u"demo_signals");
    dataInterface.setTypeName(u"double");
    dataInterface.setGraphicalName(u"u");
    PortCreator portCreator(repository);
    portCreator.setGraphicalName(u"Out1");
    portCreator.setConnected(true);
    Port output = portCreator.createPort();
    portCreator.setGraphicalName(u"In1");
    portCreator.setSignalLabel(u"u");
    portCreator.setTestPoint(true);
    Port input = portCreator.createPort();
    input.setGraphicalSource(output);
    input.getDataInterfaces().append(dataInterface.createDataInterface());
    dataInterface.setIdentifier(u"demo_signals.v");
    input.getDataInterfaces().append(dataInterface.createDataInterface());
    gain.getDataInputPorts().append(input);
    gain.getDataOutputPorts().append(output);
    Port trigger = PortCreator(repository).createPort();
    trigger.setGraphicalSource(trigger);
    gain.getControlInputPorts().append(trigger);

    State state = StateCreator(repository).createState();
    state.getDimensions().append(IntegerArrayElement(2));
    state.getDimensions().append(IntegerArrayElement(3));
    gain.getContinuousStates().append(state);

    ModelParameterCreator parameterCreator(repository);
    parameterCreator.setName(u"K");
    parameterCreator.setTunable(true);
    ModelParameter k = parameterCreator.createModelParameter();
    k.getGraphicalReferencesSID().append(StringListElement(u"demo:1"));
    k.getGraphicalReferencesSID().append(StringListElement(u"demo:\"2\""));
    BlockParameterCreator blockParameter(repository);
    blockParameter.setName(u"Gain");
    BlockParameter gainParameter = blockParameter.createBlockParameter();
    gainParameter.getModelParameters().append(k);
    gain.getBlockParameters().append(gainParameter);

    GraphicalBlockCreator callerCreator(repository);
    callerCreator.setName(u"Step");
    callerCreator.setParentSystemSID(u"demo:0");
    GraphicalBlock caller = callerCreator.createGraphicalBlock();
    root.getGraphicalBlocks().append(caller);

    SystemCreator system(repository);
    system.setIdentifier(u"s1");
    system.setName(u"Step");
    System step = system.createSystem();
    step.getGraphicalCallSites().append(caller);
    model.getSystems().append(step);

    IOMap io = IOMapCreator(repository).createIOMap();
    io.getInportIndices().append(IntegerArrayElement(0));
    io.getInportIndices().append(IntegerArrayElement(2));
    io.getOutportIndicies().append(IntegerArrayElement(1));
    model.setFPCInfo(io);

    ExternalInputCreator input1(repository);
    input1.setIdentifier(u"In1");
    input1.setCGTypeIndex(-1);
    input1.setHasVarDims(true);
    model.getExternalInputs().append(input1.createExternalInput());

    ToAsyncQueueBlockCreator queue(repository);
    queue.setIsEnum(true);
    queue.setFxpSignedness(std::numeric_limits<std::uint32_t>::max());
    queue.setFxpSlopeAdjFactor(0.25);
    queue.setFxpBias(-std::numeric_limits<double>::infinity());
    queue.setSignalSourceUUIDasInteger(std::numeric_limits<std::int64_t>::min());
    ToAsyncQueueBlock queued = queue.createToAsyncQueueBlock();
    queued.getEnumLabels().append(StringListElement(u"Off"));
    queued.getEnumValues().append(IntegerArrayElement(-1));
    model.getTAQBlocks().append(queued);

    CoderGroupCreator group(repository);
    group.setName(u"Fast");
    group.setGroupSize(2);
    model.getCoderGroups().append(group.createCoderGroup());

    // No record refers to a region; it is stored but not part of the dump.
    RegionCreator region(repository);
    region.setSource(u"unused");
    RegionCreator(repository).createRegion().getDimensions().append(IntegerArrayElement(1));
    transaction.commit();
}

const char* const kExpectedJson = R"expected({
  "kind": "Model",
  "ModelName": "demo",
  "KordelVersion": "1.0",
  "SharedCodeManagerPath": "",
  "BlockHierarchyMap": {
    "kind": "BlockHierarchyMap",
    "GraphicalSystems": [
      {
        "kind": "GraphicalSystem",
        "Name": "demo",
        "GraphicalName": "demo",
        "SubsystemType": null,
        "MaskType": "",
        "GraphicalBlocks": [
          {
            "kind": "GraphicalBlock",
            "GraphicalName": "Gain \"K\" µ𝄞",
            "Name": "Gain",
            "SID": "demo:1",
            "Type": "Gain",
            "Description": "line\tone\nline two\\",
            "ReferencedModelName": "",
            "IsProtectedModelBlock": false,
            "Virtual": "",
            "NumFcnCallOutputPorts": -1,
            "ParentSystemSID": null,
            "DataInputPorts": [
              {
                "kind": "Port",
                "GraphicalName": "In1",
                "SignalLabel": "u",
                "Connected": true,
                "TestPoint": true,
                "GraphicalSource": {
                  "kind": "Port",
                  "GraphicalName": "Out1",
                  "SignalLabel": "",
                  "Connected": true,
                  "TestPoint": false,
                  "GraphicalSource": null,
                  "DataInterfaces": []
                },
                "DataInterfaces": [
                  {
                    "kind": "DataInterface",
                    "Identifier": "demo_signals.u",
                    "Implementation": "StructElement",
                    "Owner": "demo_signals",
                    "TypeName": "double",
                    "GraphicalName": "u"
                  },
                  {
                    "kind": "DataInterface",
                    "Identifier": "demo_signals.v",
                    "Implementation": "StructElement",
                    "Owner": "demo_signals",
                    "TypeName": "double",
                    "GraphicalName": "u"
                  }
                ]
              }
            ],
            "DataOutputPorts": [
              {
                "kind": "Port",
                "GraphicalName": "Out1",
                "SignalLabel": "",
                "Connected": true,
                "TestPoint": false,
                "GraphicalSource": null,
                "DataInterfaces": []
              }
            ],
            "ControlInputPorts": [
              {
                "kind": "Port",
                "GraphicalName": "",
                "SignalLabel": "",
                "Connected": false,
                "TestPoint": false,
                "GraphicalSource": {
                  "kind": "Port",
                  "cycle": true
                },
                "DataInterfaces": []
              }
            ],
            "ContinuousStates": [
              {
                "kind": "State",
                "Dimensions": [
                  2,
                  3
                ]
              }
            ],
            "Derivatives": [],
            "DWorks": [],
            "DiscreteStates": [],
            "BlockParameters": [
              {
                "kind": "BlockParameter",
                "Name": "Gain",
                "ModelParameters": [
                  {
                    "kind": "ModelParameter",
                    "Name": "K",
                    "OriginalName": "",
                    "Alias": false,
                    "Tunable": true,
                    "WorkspaceVariable": false,
                    "WorkspaceVariableName": "",
                    "GraphicalSourceSID": null,
                    "GraphicalReferencesSID": [
                      "demo:1",
                      "demo:\"2\""
                    ]
                  }
                ]
              }
            ]
          },
          {
            "kind": "GraphicalBlock",
            "GraphicalName": "",
            "Name": "Step",
            "SID": "",
            "Type": "",
            "Description": "",
            "ReferencedModelName": "",
            "IsProtectedModelBlock": false,
            "Virtual": "",
            "NumFcnCallOutputPorts": 0,
            "ParentSystemSID": "demo:0",
            "DataInputPorts": [],
            "DataOutputPorts": [],
            "ControlInputPorts": [],
            "ContinuousStates": [],
            "Derivatives": [],
            "DWorks": [],
            "DiscreteStates": [],
            "BlockParameters": []
          }
        ]
      }
    ]
  },
  "FPCInfo": {
    "kind": "IOMap",
    "InportIndices": [
      0,
      2
    ],
    "OutportIndicies": [
      1
    ]
  },
  "Systems": [
    {
      "kind": "System",
      "Identifier": "s1",
      "Name": "Step",
      "GraphicalCallSites": [
        {
          "kind": "GraphicalBlock",
          "GraphicalName": "",
          "Name": "Step",
          "SID": "",
          "Type": "",
          "Description": "",
          "ReferencedModelName": "",
          "IsProtectedModelBlock": false,
          "Virtual": "",
          "NumFcnCallOutputPorts": 0,
          "ParentSystemSID": "demo:0",
          "DataInputPorts": [],
          "DataOutputPorts": [],
          "ControlInputPorts": [],
          "ContinuousStates": [],
          "Derivatives": [],
          "DWorks": [],
          "DiscreteStates": [],
          "BlockParameters": []
        }
      ]
    }
  ],
  "ExternalInputs": [
    {
      "kind": "ExternalInput",
      "CGTypeIndex": -1,
      "StorageClass": "",
      "RequiresGlobalAccess": false,
      "Identifier": "In1",
      "VarGroupIndex": 0,
      "VarGroupMemberIndex": 0,
      "HasVarDims": true,
      "CanonicalDimSizeDWorkIndex": 0,
      "HasCanonicalDimSizeDWorkIndex": false,
      "SizeVarGroupIndex": 0,
      "SizeVarGroupMemberIndex": 0,
      "DimSizeDWork": 0,
      "Padding": 0
    }
  ],
  "TAQBlocks": [
    {
      "kind": "ToAsyncQueueBlock",
      "IsFixedPoint": false,
      "IsEnum": true,
      "DataTypeId": 0,
      "DataTypeSize": 0,
      "FxpNumericType": 0,
      "FxpSignedness": 4294967295,
      "FxpWordLength": 0,
      "FxpFractionLength": 0,
      "FxpSlopeAdjFactor": 0.25,
      "FxpFixedExponent": 0,
      "FxpBias": "-Infinity",
      "EnumClassName": "",
      "EnumClassification": "",
      "IsComplex": false,
      "IsDiscrete": false,
      "IsVirtualBus": false,
      "IsNVBus": false,
      "IsVarDims": false,
      "BlockPath": "",
      "BlockSID": "",
      "PortNumber": 0,
      "SignalName": "",
      "ActSrcBlockPath": "",
      "ActSrcBlockSID": "",
      "ActSrcPortNumber": 0,
      "ActSrcDWorkName": "",
      "ActSrcStartElement": 0,
      "SignalSourceUUID": "",
      "SignalSourceUUIDasInteger": -9223372036854775808,
      "UniqueId": 0,
      "Tid": 0,
      "NVBusOffset": 0,
      "IsLiveStreaming": false,
      "IsDeferredStreaming": false,
      "LeafElements": [],
      "EnumLabels": [
        "Off"
      ],
      "EnumValues": [
        -1
      ],
      "Dimensions": []
    }
  ],
  "CoderGroups": [
    {
      "kind": "CoderGroup",
      "Name": "Fast",
      "RootTypeName": "",
      "StructureTypeNameRule": "",
      "StructureInstanceNameRule": "",
      "SelfStructureTypeNameRule": "",
      "StructureReferenceNameRule": "",
      "SelfStructureReferenceNameRule": "",
      "StructureArgumentNameRule": "",
      "SelfStructureArgumentNameRule": "",
      "HeaderFileRule": "",
      "SelfStructureInstanceNameRule": "",
      "GroupSize": 2,
      "AsStructure": ""
    }
  ]
}
)expected";

const char* const kUsage =
    "usage: velcg_descriptor dump [--json] FILE\n"
    "       velcg_descriptor check FILE\n"
    "       velcg_descriptor --help\n";

// A model whose first block's input port has a chain of `length` sources.
void writeSourceChain(Repository& repository, int length) {
    Transaction transaction(repository);
    Model model = ModelCreator(repository).createModel();
    BlockHierarchyMap map = BlockHierarchyMapCreator(repository).createBlockHierarchyMap();
    model.setBlockHierarchyMap(map);
    GraphicalSystem root = GraphicalSystemCreator(repository).createGraphicalSystem();
    map.getGraphicalSystems().append(root);
    GraphicalBlock block = GraphicalBlockCreator(repository).createGraphicalBlock();
    root.getGraphicalBlocks().append(block);
    PortCreator portCreator(repository);
    Port port = portCreator.createPort();
    block.getDataInputPorts().append(port);
    for (int i = 1; i < length; ++i) {
        Port source = portCreator.createPort();
        port.setGraphicalSource(source);
        port = source;
    }
    transaction.commit();
}

class DescriptorTool : public ::testing::Test {
protected:
    DescriptorTool() {
        Repository repository(store_);
        writeSmallModel(repository);
    }

    // The tool's arguments with "{F}" standing for file.
    ToolRun run(std::vector<std::string> args, const std::filesystem::path& file) {
        for (std::string& arg : args) arg = replaceAll(arg, "{F}", file.string());
        return runTool(dir_, args);
    }

    TempDir dir_;
    const std::filesystem::path store_ = dir_ / "codedescriptor.strata";
};

// Both dumps print the whole model, also after the model was written a
// second time into the same file, and leave the file as it was.
TEST_F(DescriptorTool, DumpPrintsTheWholeModel) {
    struct Case {
        std::vector<std::string> args;
        std::string expected;
    };
    // The text form is the store's own dumpText, whose layout its tests
    // pin; the tool must print exactly that.
    const std::string expectedText = [&] {
        Repository repository(store_, {coder::RepositoryOptions::Access::ReadOnly});
        return dumpText(repository);
    }();
    ASSERT_EQ(0u, expectedText.rfind("Model\n  ModelName: \"demo\"\n", 0));
    const Case cases[] = {
        {{"dump", "{F}"}, expectedText},
        {{"dump", "--json", "{F}"}, kExpectedJson},
        {{"dump", "{F}", "--json"}, kExpectedJson},
    };
    for (int writes : {1, 2}) {
        if (writes == 2) {
            Repository repository(store_);
            writeSmallModel(repository);
        }
        const std::string before = fileBytes(store_);
        for (const Case& c : cases) {
            SCOPED_TRACE(std::to_string(writes) + " write(s), " + c.args[1]);
            const ToolRun result = run(c.args, store_);
            EXPECT_EQ(c.expected, result.out);
            EXPECT_EQ("", result.err);
            EXPECT_EQ(0, result.status);
        }
        EXPECT_EQ(before, fileBytes(store_));
    }
}

TEST_F(DescriptorTool, CheckPassesASoundStore) {
    const std::string before = fileBytes(store_);
    const ToolRun result = run({"check", "{F}"}, store_);
    EXPECT_EQ(store_.string() + ": ok\n", result.out);
    EXPECT_EQ("", result.err);
    EXPECT_EQ(0, result.status);
    EXPECT_EQ(before, fileBytes(store_));
}

// Files that are not sound stores: the command names the problem on
// standard error, prints nothing else, exits with 1 and leaves the file as
// it was (a missing file is not created).
TEST_F(DescriptorTool, BadFilesGiveAReadableError) {
    using std::filesystem::path;
    const std::string good = fileBytes(store_);
    const std::size_t pages = good.size() / 4096;
    ASSERT_EQ(good.size(), pages * 4096);
    const auto copyWith = [&good](const std::string& sql) {
        return [&good, sql](const path& file) {
            writeBytes(file, good);
            execSql(file, sql);
        };
    };
    const auto noModel = [](const path& file) { Repository repository(file); };
    const auto deepChain = [](const path& file) {
        Repository repository(file);
        writeSourceChain(repository, 600);
    };
    const std::string notAStore =
        "{F}: error: '{F}' is not a code descriptor store; it was left unchanged. "
        "[coder:Repository:NotAStore]\n";
    const std::string noModelError =
        "{F}: error: The code descriptor '{F}' holds no model. [coder:descriptor:NoModel]\n";
    const std::string gapError =
        "{F}: error: The code descriptor '{F}' is damaged: the positions of Port.DataInterfaces of record 2 "
        "are "
        "not 0, 1, 2, ... [coder:descriptor:BrokenSequence]\n";
    const std::string tooDeep =
        "{F}: error: The records nest more than 512 levels deep. [coder:descriptor:TooDeep]\n";
    // Removes the first of the two data interfaces of the port "In1".
    const std::string gapSql =
        "DELETE FROM Port_DataInterfaces WHERE position = 0 AND owner = "
        "(SELECT id FROM Port WHERE GraphicalName = 'In1')";

    struct Case {
        const char* name;
        std::function<void(const path&)> make;
        std::vector<std::string> args;
        std::string expected; // standard error; "{F}" stands for the file
    };
    const Case cases[] = {
        {"random bytes",
         [](const path& file) {
             std::mt19937 random(7);
             std::string bytes(8192, '\0');
             for (char& byte : bytes) byte = static_cast<char>(random());
             writeBytes(file, bytes);
         },
         {"check", "{F}"},
         notAStore},
        {"empty file", [](const path& file) { writeBytes(file, ""); }, {"dump", "{F}"}, notAStore},
        {"another SQLite database",
         [](const path& file) {
             writeBytes(file, "");
             execSql(file, "CREATE TABLE Model (id INTEGER PRIMARY KEY)");
         },
         {"check", "{F}"},
         notAStore},
        {"cut at a page boundary",
         [&good](const path& file) { writeBytes(file, good.substr(0, good.size() / 2 / 4096 * 4096)); },
         {"check", "{F}"},
         "{F}: error: The code descriptor '{F}' is damaged: database disk image is malformed "
         "[coder:Repository:Corrupt]\n"},
        {"one byte short",
         [&good](const path& file) { writeBytes(file, good.substr(0, good.size() - 1)); },
         {"check", "{F}"},
         "{F}: error: The code descriptor '{F}' is damaged: the file is " + std::to_string(good.size() - 1) +
             " bytes long, but holds " + std::to_string(pages) +
             " pages of 4096 bytes [coder:Repository:Corrupt]\n"},
        {"newer format",
         copyWith("PRAGMA user_version = 2"),
         {"check", "{F}"},
         "{F}: error: The code descriptor '{F}' has format version 2, newer than version 1 that this program "
         "reads; it was left unchanged. [coder:Repository:NewerFormat]\n"},
        {"gap in positions",
         copyWith(gapSql),
         {"check", "{F}"},
         "{F}: error: table 'Port_DataInterfaces': owner 2 has positions other than 0, 1, 2, ...\n"},
        {"gap in positions", copyWith(gapSql), {"dump", "{F}"}, gapError},
        {"gap in positions", copyWith(gapSql), {"dump", "--json", "{F}"}, gapError},
        {"missing record",
         copyWith("DELETE FROM DataInterface WHERE Identifier = 'demo_signals.v'"),
         {"dump", "--json", "{F}"},
         "{F}: error: The code descriptor '{F}' has no DataInterface record 2. "
         "[coder:descriptor:MissingRecord]\n"},
        {"missing file",
         [](const path&) {},
         {"check", "{F}"},
         "{F}: error: Cannot open the code descriptor '{F}': unable to open database file "
         "[coder:Repository:CannotOpen]\n"},
        {"no model", noModel, {"check", "{F}"}, noModelError},
        {"no model", noModel, {"dump", "{F}"}, noModelError},
        {"no model", noModel, {"dump", "--json", "{F}"}, noModelError},
        {"sources nested too deep", deepChain, {"check", "{F}"}, tooDeep},
        {"sources nested too deep", deepChain, {"dump", "{F}"}, tooDeep},
        {"sources nested too deep", deepChain, {"dump", "--json", "{F}"}, tooDeep},
    };
    int index = 0;
    for (const Case& c : cases) {
        const path file = dir_ / ("bad" + std::to_string(index++) + ".strata");
        c.make(file);
        SCOPED_TRACE(std::string(c.name) + ": " + c.args[0] + " " + c.args[1]);
        const bool existed = std::filesystem::exists(file);
        const std::string before = fileBytes(file);
        const ToolRun result = run(c.args, file);
        EXPECT_EQ(replaceAll(c.expected, "{F}", file.string()), result.err);
        EXPECT_EQ("", result.out);
        EXPECT_EQ(1, result.status);
        EXPECT_EQ(existed, std::filesystem::exists(file));
        EXPECT_EQ(before, fileBytes(file));
    }
}

TEST_F(DescriptorTool, UsageErrorsExitWithTwo) {
    const std::string help = std::string(kUsage) +
                             "\n"
                             "Reads a code descriptor store; the file is opened for reading only.\n"
                             "\n"
                             "  dump FILE         the stored model as an indented text tree\n"
                             "  dump --json FILE  the stored model as JSON: each record an object with its\n"
                             "                    \"kind\", its fields and its sequences by name\n"
                             "  check FILE        verifies the format version, the file's integrity, every\n"
                             "                    reference and position, and that the model reads back;\n"
                             "                    prints \"FILE: ok\"\n"
                             "\n"
                             "Exit status: 0 done, 1 the file cannot be read or is unsound, 2 bad usage.\n";
    struct Case {
        std::vector<std::string> args;
        int status;
        std::string out;
        std::string err;
    };
    const Case cases[] = {
        {{"--help"}, 0, help, ""},
        {{"dump", "--help"}, 0, help, ""},
        {{}, 2, "", kUsage},
        {{"dump"}, 2, "", kUsage},
        {{"dump", "{F}", "{F}"}, 2, "", kUsage},
        {{"dump", "--xml", "{F}"}, 2, "", kUsage},
        {{"check", "--json", "{F}"}, 2, "", kUsage},
        {{"list", "{F}"}, 2, "", kUsage},
        {{"--json", "dump", "{F}"}, 2, "", kUsage},
    };
    for (const Case& c : cases) {
        std::string shown;
        for (const std::string& arg : c.args) shown += " " + arg;
        SCOPED_TRACE("velcg_descriptor" + shown);
        const ToolRun result = run(c.args, store_);
        EXPECT_EQ(c.out, result.out);
        EXPECT_EQ(c.err, result.err);
        EXPECT_EQ(c.status, result.status);
    }
}

// A file name that starts with a dash is read after "--".
TEST_F(DescriptorTool, FileNamesMayStartWithADash) {
    const std::filesystem::path dashed = dir_ / "-model.strata";
    std::filesystem::copy_file(store_, dashed);
    const std::filesystem::path cwd = std::filesystem::current_path();
    std::filesystem::current_path(dir_.path());
    const ToolRun result = runTool(dir_, {"check", "--", "-model.strata"});
    std::filesystem::current_path(cwd);
    EXPECT_EQ("-model.strata: ok\n", result.out);
    EXPECT_EQ("", result.err);
    EXPECT_EQ(0, result.status);
}

} // namespace
