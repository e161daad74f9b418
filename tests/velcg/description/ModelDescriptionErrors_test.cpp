// Bad input to the model description reader, and models the writer cannot
// describe: each a "VelCG:ModelDescription:" diagnostic naming the place.
#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <vector>

#include "ExpectedFile.hpp"
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

} // namespace

// The cases of data/bad_descriptions.txt, rendered again from what the
// reader says of their documents.
TEST(ModelDescription, RefusesBadInputNamingThePlace) {
    std::istringstream in(
        testing_support::fileBytes(testing_support::besideSource(__FILE__, "data/bad_descriptions.txt")));
    std::string rendered, text;
    bool inCase = false;
    for (std::string line; std::getline(in, line);) {
        if (line.rfind("--> ", 0) == 0) {
            if (inCase) {
                const Outcome o = outcomeOf(text);
                rendered += "--> " + o.identifier + " (" + o.place + ")\n--> " + o.message + "\n";
            }
            inCase = false;
            continue;
        }
        rendered += line + "\n";
        if (line.rfind("=== ", 0) == 0) {
            inCase = true;
            text.clear();
        } else if (inCase) {
            text += (text.empty() ? "" : "\n") + line;
        }
    }
    EXPECT_MATCHES_FILE(rendered, __FILE__, "data/bad_descriptions.txt");

    // Documents too large or odd to keep in that file.
    std::string deepPlace = "/taqBlocks/0";
    for (int i = 0; i < 65; ++i) deepPlace += "/leafElements/0";
    const struct {
        std::string text, identifier, place;
    } generated[] = {
        {doc(R"("taqBlocks": [)" + leaves(70) + "]"), "InvalidValue", deepPlace},
        {doc(R"("stringMap": )" + std::string(100000, '[') + std::string(100000, ']')), "WrongType",
         "/stringMap/0"},
    };
    for (const auto& g : generated) {
        const Outcome outcome = outcomeOf(g.text);
        EXPECT_EQ("VelCG:ModelDescription:" + g.identifier, outcome.identifier) << g.place;
        EXPECT_EQ(g.place, outcome.place);
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
    // Two names of one file where case is ignored: data/bad_descriptions.txt.
}

TEST(ModelDescription, RefusesToDescribeWhatADescriptionCannotHold) {
    std::unique_ptr<CGModelFactory> factory(GetCGModelFactory());
    using Kind = ModelFileDescription::Kind;
    struct Failure {
        const char* what;
        std::function<void(StoredCGModel&)> build;
        const char* place;
        std::vector<ModelFileDescription> files = {};
    };
    const std::vector<Failure> failures = {
        {"a file name that is not plain",
         [](StoredCGModel&) {},
         "/files/0/name",
         {{Kind::Generic, "../x.c", {}}}},
        {"systems of a file other than a module file",
         [](StoredCGModel& m) { m.addSystem(std::make_unique<StoredSystem>()); },
         "/files/0/systems",
         {{Kind::Generic, "main.c", {0}}}},
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
            ModelDescription::toText(model, f.files);
        } catch (const vel::diag::Exception& e) {
            identifier = e.identifier();
            place = e.arguments().at(0);
        }
        EXPECT_EQ("VelCG:ModelDescription:NotDescribable", identifier) << f.what;
        EXPECT_EQ(f.place, place) << f.what;
    }
}

// Memory running out is no fault of the model: it is not reported as one.
TEST(ModelDescription, LetsOutOfMemoryPassThrough) {
    struct Exhausted : StoredCGModel {
        std::wstring getName() const override { throw std::bad_alloc(); }
    };
    EXPECT_THROW(ModelDescription::toText(Exhausted()), std::bad_alloc);
}
