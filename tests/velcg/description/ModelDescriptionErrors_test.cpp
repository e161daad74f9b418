// Bad input to the model description reader, and models the writer cannot
// describe: each a "VelCG:ModelDescription:" diagnostic naming the place.
#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "RefusedFileNames.hpp"
#include "vel/diag/Diagnostic.hpp"
#include "velcg/BlockHierarchyMap.hpp"
#include "velcg/CGModelFactory.hpp"
#include "velcg/GraphicalBlock.hpp"
#include "velcg/ModelDescription.hpp"
#include "velcg/ModelParameter.hpp"
#include "velcg/Parameter.hpp"
#include "velcg/StoredCGModel.hpp"
#include "velcg/StoredGraphicalBlock.hpp"
#include "velcg/StoredGraphicalSubsystem.hpp"
#include "velcg/StoredModelParameter.hpp"
#include "velcg/StoredParameter.hpp"
#include "velcg/StoredSystem.hpp"
#include "velcg/ToAsyncQueueBlock.hpp"
#include "velcg/VarGroup.hpp"
#include "velcg/VelCGType.hpp"

using namespace VelCG;

namespace {

// A description with the given members after its identification.
std::string doc(const std::string& members = "") {
    return R"({"format": "velcg-model-description", "formatVersion": 1)" +
           (members.empty() ? "" : ", " + members) + "}";
}

// A root subsystem holding the given blocks.
std::string blocks(const std::string& list) {
    return R"("hierarchy": {"subsystems": [{"blocks": [)" + list + "]}]}";
}

// Bus leaves nested `depth` deep.
std::string leaves(int depth) {
    std::string text = "{}";
    for (int i = 0; i < depth; ++i) text = R"({"leafElements": [)" + text + "]}";
    return text;
}

struct Outcome {
    std::string identifier;
    std::string place; // the second argument, a JSON pointer
    std::string message;
};

Outcome outcomeOf(const std::string& text) {
    try {
        ModelDescription::parse(text, "bad.json");
    } catch (const vel::diag::Exception& e) {
        return {e.identifier(), e.arguments().size() > 1 ? e.arguments()[1] : "", e.diagnostic().message()};
    }
    return {"no diagnostic", "", ""};
}

struct Case {
    const char* what;
    std::string text;
    const char* key;
    std::string place;
    // The exact message, where the case checks it.
    const char* message = nullptr;
};

const std::vector<Case>& cases() {
    static const std::vector<Case> all = {
        {"malformed JSON, with line and column",
         "{\"format\": \"velcg-model-description\",\n  \"systems\": [}", "MalformedJson", "2",
         "bad.json:2:15: not valid JSON: syntax error while parsing value - unexpected '}'; expected '[', "
         "'{', or "
         "a literal."},
        {"empty text", "", "MalformedJson", "1"},
        {"not an object", "[1, 2]", "NotADescription", "the document is not a JSON object",
         "bad.json: not a model description: the document is not a JSON object (a model description is an "
         "object "
         "whose \"format\" is \"velcg-model-description\")."},
        {"no format", R"({"name": "x"})", "NotADescription", "it has no \"format\""},
        {"another format", R"({"format": "velcg-descriptor", "formatVersion": 1})", "NotADescription",
         "its \"format\" is \"velcg-descriptor\""},
        {"no version", R"({"format": "velcg-model-description"})", "MissingField", "/formatVersion",
         "bad.json: /formatVersion: the required field is missing."},
        {"a newer version", R"({"format": "velcg-model-description", "formatVersion": 2})",
         "UnsupportedVersion", "/formatVersion",
         "bad.json: /formatVersion: format version 2 is not supported; this reader knows version 1."},
        {"a version as text", R"({"format": "velcg-model-description", "formatVersion": "1"})", "WrongType",
         "/formatVersion"},
        {"a required field missing", doc(R"("files": [{"kind": "Generic"}])"), "MissingField",
         "/files/0/name"},
        {"a required reference part missing", doc(R"("systems": [{"graphicalCallsites": [{"block": 0}]}])"),
         "MissingField", "/systems/0/graphicalCallsites/0/subsystem"},
        {"text of the wrong type", doc(R"("name": 5)"), "WrongType", "/name",
         "bad.json: /name: expected a string, found an integer."},
        {"a list of the wrong type", doc(R"("systems": {})"), "WrongType", "/systems"},
        {"an index of the wrong type", doc(R"("cgTypes": [{}], "varGroups": [{"cgTypeIndex": 0.5}])"),
         "WrongType", "/varGroups/0/cgTypeIndex"},
        {"a list element of the wrong type", doc(R"("varGroups": [{"elements": ["a", null]}])"), "WrongType",
         "/varGroups/0/elements/1"},
        {"an unknown field near a known one", doc(R"("nmae": "x")"), "UnknownField", "/nmae",
         "bad.json: /nmae: unknown field \"nmae\" (did you mean \"name\"?)."},
        {"an unknown field near none", doc(R"("colour": "x")"), "UnknownField", "/colour",
         "bad.json: /colour: unknown field \"colour\"."},
        {"an unknown nested field", doc(blocks(R"({"dataInputPorts": [{"regoins": []}]})")), "UnknownField",
         "/hierarchy/subsystems/0/blocks/0/dataInputPorts/0/regoins",
         "bad.json: /hierarchy/subsystems/0/blocks/0/dataInputPorts/0/regoins: unknown field \"regoins\" "
         "(did you mean \"regions\"?)."},
        {"an unknown field of a type's kind",
         doc(R"("cgTypes": [{"embeddedType": {"kind": "Void", "name": "v"}}])"), "UnknownField",
         "/cgTypes/0/embeddedType/name"},
        {"a field given twice", doc(R"("systems": [{"name": "a", "name": "b"}])"), "DuplicateField",
         "/systems/0/name"},
        {"a field given twice after a value of the wrong type",
         doc(R"("name": 5, "systems": [{"name": "a", "name": "b"}])"), "DuplicateField", "/systems/0/name"},
        {"a field given twice in the template data", doc(R"("templateData": {"a": [{"b": 1, "b": 2}]})"),
         "DuplicateField", "/templateData/a/0/b"},
        {"a byte-order mark and an integer beyond 64 bits, which JSON allows",
         "\xEF\xBB\xBF" + doc(R"("maxMultiWordBits": 18446744073709551616)"), "WrongType",
         "/maxMultiWordBits",
         "bad.json: /maxMultiWordBits: expected an integer, found a number with a fraction or exponent."},
        {"an integer out of range", doc(R"("maxMultiWordBits": 4294967296)"), "InvalidValue",
         "/maxMultiWordBits",
         "bad.json: /maxMultiWordBits: 4294967296 is not an integer from -2147483648 to 2147483647."},
        {"a negative count", doc(R"("numChildSFunctions": -1)"), "InvalidValue", "/numChildSFunctions"},
        {"an index past its list", doc(R"("cgTypes": [{}], "varGroups": [{"cgTypeIndex": 7}])"),
         "DanglingReference", "/varGroups/0/cgTypeIndex",
         "bad.json: /varGroups/0/cgTypeIndex: index 7 names nothing in /cgTypes, which has 1 entries."},
        {"a negative index other than -1", doc(R"("systems": [{}], "varGroups": [{"systemIndex": -2}])"),
         "DanglingReference", "/varGroups/0/systemIndex"},
        {"an index where none is not allowed", doc(R"("cgTypes": [{"members": [{"cgTypeIndex": -1}]}])"),
         "DanglingReference", "/cgTypes/0/members/0/cgTypeIndex"},
        {"a call site that is no block",
         doc(R"("systems": [{"graphicalCallsites": [{"subsystem": 0, "block": 3}]}], )" + blocks("{}")),
         "DanglingReference", "/systems/0/graphicalCallsites/0/block",
         "bad.json: /systems/0/graphicalCallsites/0/block: index 3 names nothing in "
         "/hierarchy/subsystems/0/blocks, "
         "which has 1 entries."},
        {"a graphical source port that does not exist",
         doc(blocks(
             R"({}, {"dataInputPorts": [{"graphicalSource": {"subsystem": 0, "block": 0, "port": 0}}]})")),
         "DanglingReference", "/hierarchy/subsystems/0/blocks/1/dataInputPorts/0/graphicalSource/port"},
        {"a model parameter that does not exist",
         doc(blocks(R"({"parameters": [{"modelParameters": [0]}]})")), "DanglingReference",
         "/hierarchy/subsystems/0/blocks/0/parameters/0/modelParameters/0"},
        {"a model parameter's source that does not exist",
         doc(R"("modelParameters": [{"graphicalSource": {"subsystem": 1, "block": 0}}])"),
         "DanglingReference", "/modelParameters/0/graphicalSource/subsystem"},
        {"a child group that the child model does not have",
         doc(R"("childCoderGroups": [{"childModel": "c", "groups": [{"name": "G"}],
              "variables": [{"group": "H", "name": "v", "compiledModelBlockIndex": 0}]}])"),
         "DanglingReference", "/childCoderGroups/0/variables/0/group"},
        {"a root input member that does not exist",
         doc(R"("cgTypes": [{"members": [{"cgTypeIndex": 0}]}], "varGroups": [{"cgTypeIndex": 0}],
              "externalInputs": [{"varGroupIndex": 0, "varGroupMemberIndex": 1}])"),
         "DanglingReference", "/externalInputs/0/varGroupMemberIndex"},
        {"a matrix type without a base", doc(R"("cgTypes": [{"constructor": "matrix", "baseIndex": -1}])"),
         "DanglingReference", "/cgTypes/0/baseIndex"},
        {"a file of a system that does not exist",
         doc(R"("files": [{"kind": "ModuleSource", "name": "m.c", "systems": [0]}])"), "DanglingReference",
         "/files/0/systems/0"},
        {"a subsystem listed as a child of its descendant",
         doc(R"("hierarchy": {"subsystems": [{"blocks": [{"isSubsystem": true}]}, {"childSubsystems": [0]}]})"),
         "Cycle", "/hierarchy/subsystems/1/childSubsystems/0"},
        {"subsystem blocks that make a subsystem its own child",
         doc(R"("hierarchy": {"subsystems": [{}, {"blocks": [{"isSubsystem": true}]}]})"), "Cycle",
         "/hierarchy/subsystems/1/blocks"},
        {"matrix types built from each other",
         doc(R"("cgTypes": [{"constructor": "matrix", "baseIndex": 1}, {"constructor": "matrix", "baseIndex": 0}])"),
         "Cycle", "/cgTypes/1/baseIndex",
         "bad.json: /cgTypes/1/baseIndex: cycle: matrix types built from each other: 0 -> 1 -> 0."},
        {"variable groups that are each other's parents",
         doc(R"("varGroups": [{"parentVarGroupIndex": 1}, {"parentVarGroupIndex": 0}])"), "Cycle",
         "/varGroups/1/parentVarGroupIndex"},
        {"a port that is its own graphical source",
         doc(blocks(
             R"({"dataOutputPorts": [{"graphicalSource": {"subsystem": 0, "block": 0, "port": 0}}]})")),
         "Cycle", "/hierarchy/subsystems/0/blocks/0/dataOutputPorts/0/graphicalSource"},
        {"an unknown enumerator", doc(blocks(R"({"virtual": "virtual"})")), "UnknownEnumerator",
         "/hierarchy/subsystems/0/blocks/0/virtual",
         "bad.json: /hierarchy/subsystems/0/blocks/0/virtual: \"virtual\" is not one of \"NonVirtual\", "
         "\"Virtual\" "
         "or \"PostCompileVirtual\"."},
        {"an unknown type kind", doc(R"("cgTypes": [{"embeddedType": {"kind": "Int"}}])"),
         "UnknownEnumerator", "/cgTypes/0/embeddedType/kind"},
        {"a type the type system refuses",
         doc(R"("cgTypes": [{"embeddedType": {"kind": "Float", "name": "half", "bits": 16}}])"),
         "InvalidValue", "/cgTypes/0/embeddedType",
         "bad.json: /cgTypes/0/embeddedType: A floating-point type has 32 or 64 bits."},
        {"child subsystems that the subsystem blocks contradict",
         doc(R"("hierarchy": {"subsystems": [{"childSubsystems": [], "blocks": [{"isSubsystem": true}]}, {}]})"),
         "InvalidValue", "/hierarchy/subsystems/0/childSubsystems"},
        {"subsystem blocks without their subsystems", doc(blocks(R"({"isSubsystem": true})")), "InvalidValue",
         "/hierarchy/subsystems/0/blocks"},
        {"two coder data groups of one name", doc(R"("coderDataGroups": [{"name": "G"}, {"name": "G"}])"),
         "InvalidValue", "/coderDataGroups/1/name"},
        {"a function of two systems", doc(R"("systems": [{"functions": ["f"]}, {"functions": ["g", "f"]}])"),
         "InvalidValue", "/systems/1/functions/1"},
        {"an input port paired twice",
         doc(R"("ioMap": [{"inputPort": 0, "outputPort": 0}, {"inputPort": 0, "outputPort": 1}])"),
         "InvalidValue", "/ioMap/1/inputPort"},
        {"systems of a generic file",
         doc(R"("systems": [{}], "files": [{"kind": "Generic", "name": "g.c", "systems": [0]}])"),
         "InvalidValue", "/files/0/systems"},
        {"a child model described twice",
         doc(R"("childCoderGroups": [{"childModel": "c"}, {"childModel": "c"}])"), "InvalidValue",
         "/childCoderGroups/1/childModel"},
        {"bus leaves nested too deep", doc(R"("taqBlocks": [)" + leaves(70) + "]"), "InvalidValue",
         "/taqBlocks/0" +
             [] {
                 std::string p;
                 for (int i = 0; i < 65; ++i) p += "/leafElements/0";
                 return p;
             }()},
        {"arrays nested far beyond any model",
         doc(R"("stringMap": )" + std::string(100000, '[') + std::string(100000, ']')), "WrongType",
         "/stringMap/0"},
        {"a number beyond double", doc(R"("cgTypes": [{"bias": 1e999}])"), "MalformedJson", "1",
         "bad.json:1:80: not valid JSON: number overflow parsing '1e999'."},
    };
    return all;
}

} // namespace

TEST(ModelDescription, RefusesBadInputNamingThePlace) {
    for (const Case& c : cases()) {
        const Outcome outcome = outcomeOf(c.text);
        EXPECT_EQ(std::string("VelCG:ModelDescription:") + c.key, outcome.identifier) << c.what;
        EXPECT_EQ(c.place, outcome.place) << c.what;
        if (c.message) {
            EXPECT_EQ(c.message, outcome.message) << c.what;
        }
    }
}

TEST(ModelDescription, RefusesFileNamesThatAreNotPlainNamesOfOneDirectory) {
    for (const auto& [name, reason] : testing_support::refusedFileNames()) {
        const std::string quoted = nlohmann::json(name).dump();
        const Outcome outcome = outcomeOf(doc(R"("files": [{"kind": "Generic", "name": )" + quoted + "}]"));
        EXPECT_EQ("VelCG:ModelDescription:NotAPlainFileName", outcome.identifier) << quoted;
        EXPECT_EQ("/files/0/name", outcome.place) << quoted;
        EXPECT_NE(std::string::npos, outcome.message.find(quoted + " is not a plain file name: " + reason))
            << outcome.message;
    }
    // Two names of one file where case is ignored.
    const Outcome same = outcomeOf(doc(R"("files": [{"kind": "Generic", "name": "Model.c"},
        {"kind": "Generic", "name": "main.c"}, {"kind": "DataTypes", "name": "MODEL.C"}])"));
    EXPECT_EQ("VelCG:ModelDescription:SameFileName", same.identifier);
    EXPECT_EQ(
        "bad.json: /files/2/name: \"MODEL.C\" names the same file as \"Model.c\" at /files/0/name (file "
        "names are compared ignoring case).",
        same.message);
    // Nor does the writer describe one.
    try {
        ModelDescription::toText(StoredCGModel(), {{ModelFileDescription::Kind::Generic, "../x.c", {}}});
        ADD_FAILURE() << "described";
    } catch (const vel::diag::Exception& e) {
        EXPECT_EQ("VelCG:ModelDescription:NotDescribable", e.identifier());
        EXPECT_EQ("/files/0/name", e.arguments().at(0));
    }
}

TEST(ModelDescription, RefusesToDescribeWhatADescriptionCannotHold) {
    std::unique_ptr<CGModelFactory> factory(GetCGModelFactory());
    struct Failure {
        const char* what;
        std::function<void(StoredCGModel&)> build;
        const char* place;
    };
    const std::vector<Failure> failures = {
        {"a call site outside the block hierarchy map",
         [](StoredCGModel& m) {
             auto queue = std::make_unique<ToAsyncQueueBlock>(new StoredGraphicalBlock(L"Queue"));
             auto system = std::make_unique<StoredSystem>("s");
             system->addGraphicalCallsite(queue.get());
             m.addSystem(std::move(system));
             m.addTAQBlock(std::move(queue));
         },
         "/systems/0/graphicalCallsites/0"},
        {"a function of a system outside the list",
         [](StoredCGModel& m) {
             static StoredSystem stranger("stranger");
             m.addFunctionForSystem("f", &stranger);
         },
         "/systems"},
        {"a parameter's model parameter that the model does not own",
         [&](StoredCGModel& m) {
             static std::unique_ptr<ModelParameter> stranger(
                 factory->createModelParameter(new StoredModelParameter(L"P")));
             auto impl = new StoredGraphicalBlock(L"Gain");
             impl->addParameter(std::unique_ptr<Parameter>(
                 factory->createParameter(new StoredParameter(L"K", {stranger.get()}))));
             auto subsystem =
                 std::make_unique<StoredGraphicalSubsystem>(L"root", GraphicalSubsystemType::Root);
             subsystem->addGraphicalBlock(std::make_unique<GraphicalBlock>(impl));
             m.getBlockHierarchyMap()->addGraphicalSubsystem(std::move(subsystem));
         },
         "/hierarchy/subsystems/0/blocks/0/parameters/0/modelParameters/0"},
        {"a number that is not finite",
         [](StoredCGModel& m) {
             auto type = std::make_unique<VelCGType>("t");
             type->setBias(std::numeric_limits<double>::quiet_NaN());
             m.addVelCGType(std::move(type));
         },
         "/cgTypes/0/bias"},
        {"text that is not UTF-8",
         [](StoredCGModel& m) {
             auto group = std::make_unique<VarGroup>();
             group->setName("bad\xff");
             m.addVarGroup(std::move(group));
         },
         "/varGroups/0/name"},
        {"a category without a name",
         [](StoredCGModel& m) {
             auto group = std::make_unique<VarGroup>();
             group->setCategory(static_cast<VarGroupEnum>(50));
             m.addVarGroup(std::move(group));
         },
         "/varGroups/0/category"},
    };
    for (const Failure& f : failures) {
        StoredCGModel model;
        f.build(model);
        std::string identifier = "no diagnostic", place;
        try {
            ModelDescription::toText(model);
        } catch (const vel::diag::Exception& e) {
            identifier = e.identifier();
            place = e.arguments().at(0);
        }
        EXPECT_EQ("VelCG:ModelDescription:NotDescribable", identifier) << f.what;
        EXPECT_EQ(f.place, place) << f.what;
    }
    // Files other than module files have no systems.
    StoredCGModel model;
    model.addSystem(std::make_unique<StoredSystem>());
    try {
        ModelDescription::toText(model, {{ModelFileDescription::Kind::Generic, "main.c", {0}}});
        ADD_FAILURE() << "a generic file with systems was described";
    } catch (const vel::diag::Exception& e) {
        EXPECT_EQ(
            "The model cannot be described: /files/0/systems: only module header and module source files "
            "have "
            "systems.",
            e.diagnostic().message());
    }
}

// Memory running out is no fault of the model: it is not reported as one.
TEST(ModelDescription, LetsOutOfMemoryPassThrough) {
    struct Exhausted : StoredCGModel {
        std::wstring getName() const override { throw std::bad_alloc(); }
    };
    EXPECT_THROW(ModelDescription::toText(Exhausted()), std::bad_alloc);
}
