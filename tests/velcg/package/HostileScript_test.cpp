// A script that passes anything anywhere: every property and method of every
// class of the package, given every kind of wrong host value, must either
// work or answer with a diagnostic, and the model must still be destroyed
// cleanly afterwards.

#include <gtest/gtest.h>
#include <string>
#include <typeinfo>
#include <vector>

#include "DiagnosticTesting.hpp"
#include "EveryKindModel.hpp"
#include "HostileValues.hpp"
#include "PackageTesting.hpp"
#include "TempDir.hpp"
#include "korb/Client.hpp"
#include "korb/HostTraits.hpp"
#include "korb/ObjectSystem.hpp"
#include "vel/diag/Diagnostic.hpp"
#include "vel/mi/HandleClass.hpp"
#include "velcg/ModelDiagnostics.hpp"
#include "velcg/PlexoModule.hpp"

using vel::mi::Handle;
using vel::mi::HandleClass;
using vel::mi::HandleRef;

namespace {

// The every-kind model and repository.
struct World {
    testing_support::EveryKindModel m;
    testing_support::EveryKindRepository r;

    std::vector<Handle*> objects() { return testing_support::everyObject(m, r); }
};

using testing_support::cellOf;
using Hostile = testing_support::HostileValue;

// A value each parameter type accepts, so that a wrong value at one position
// is converted even when the positions before it come first.
tuvArrayPtr plausible(const std::string& hostType) {
    if (hostType == korb::kLogicalScalar) return tuvArray::logical(false);
    if (hostType == korb::kInt32Scalar || hostType == korb::kUInt32Scalar || hostType == korb::kInt64Scalar ||
        hostType == korb::kDoubleScalar)
        return tuvArray::int32(1);
    if (hostType == korb::kChar || hostType == korb::kCharVector) return tuvArray::fromUtf8("x");
    if (hostType == korb::kInt32Vector) return tuvArray::int32Vector({1});
    if (hostType == korb::kCell) return cellOf({tuvArray::fromUtf8("x")});
    return tuvArray::empty();
}

// One host value per object of world, named by whose, class and position.
std::vector<Hostile> objectValues(World& world, const std::string& whose) {
    std::vector<Hostile> values;
    const auto objects = world.objects();
    for (std::size_t i = 0; i < objects.size(); ++i)
        values.push_back(
            {whose + " " + objects[i]->getFullyQualifiedKorbTypeName() + " #" + std::to_string(i),
             tuvArray::objects({objects[i]->makeRef()})});
    return values;
}

// Host values of one object of every kind, all destroyed.
std::vector<Hostile> destroyedObjects() {
    World world;
    return objectValues(world, "destroyed");
}

class HostileScript : public ::testing::Test {
protected:
    static void SetUpTestSuite() { PlexoInitialize_velcg(); }

    // The hostile values, and handles of every object of this world, of
    // another model's objects and of destroyed ones.
    std::vector<Hostile> hostileValues(World& own, World& other, const std::vector<Hostile>& dead) const {
        std::vector<Hostile> values =
            testing_support::hostileValues(own.m.block->makeRef(), dead.front().value->handles().front());
        for (const auto& more : {objectValues(own, "own"), objectValues(other, "other model's"), dead})
            values.insert(values.end(), more.begin(), more.end());
        return values;
    }

    // One class's walk: its subject, the values to pass, what went wrong and
    // the objects the script reached.
    struct Visit {
        const HandleClass& cls;
        HandleRef subject;
        std::vector<Hostile> values;
        std::vector<std::string>& failures;
        std::vector<HandleRef> reached;

        // Runs op: working or raising a diagnostic with an identifier and a
        // catalogue message is fine; anything else is recorded under what.
        template <class F>
        void attempt(const std::string& what, F&& op) {
            try {
                op();
            } catch (const vel::diag::Exception& e) {
                const std::string& id = e.identifier();
                const std::string& message = e.diagnostic().message();
                if (id.find(':') == std::string::npos || message.empty() ||
                    message.rfind("Message " + id, 0) == 0)
                    failures.push_back(where(what) +
                                       ": diagnostic without identifier or catalogue message: " + e.what());
            } catch (const std::exception& e) {
                failures.push_back(where(what) + ": " + typeid(e).name() + ": " + e.what());
            } catch (...) {
                failures.push_back(where(what) + ": an exception that is not a diagnostic");
            }
        }
        // Renders a result (touching all of it) and keeps the objects it holds.
        void reach(const tuvArrayPtr& result) {
            ASSERT_TRUE(result);
            result->describe();
            if (result->classId() == tuvClass::Object)
                reached.insert(reached.end(), result->handles().begin(), result->handles().end());
        }
        std::string where(const std::string& what) const { return cls.getQualifiedName() + "." + what; }
    };

    // Walks every class of the package, each in a world of its own, with
    // walk(visit); answers what went wrong, one line each.
    template <class Walk>
    std::string walkEveryClass(Walk walk) const {
        // A script may write into the working directory (a code descriptor
        // serialized into the directory ""): the walk gets one of its own.
        const testing_support::TempDir directory;
        const auto previous = std::filesystem::current_path();
        std::filesystem::current_path(directory.path());
        // What the model reports instead of raising (a failed background
        // serialization, when the model goes) must be a diagnostic as well.
        std::vector<std::string> failures;
        struct Reporter {
            VelCG::DiagnosticReporter previous;
            ~Reporter() { VelCG::setDiagnosticReporter(previous); }
        } reporter{VelCG::setDiagnosticReporter([&](const vel::diag::Diagnostic& d) {
            if (d.identifier().empty() || d.message().empty())
                failures.push_back("report without identifier");
        })};
        World other;
        const auto dead = destroyedObjects();
        const auto classes = client.getClasses("VelCG");
        EXPECT_FALSE(classes.empty());
        for (const HandleClass* cls : classes) {
            std::vector<HandleRef> reached;
            {
                World world;
                const auto objects = world.objects();
                const std::size_t i = testing_support::subjectOf(client, *cls, objects);
                if (i == objects.size()) {
                    failures.push_back(cls->getQualifiedName() + ": no object of the class to walk");
                    continue;
                }
                Visit visit{*cls, objects[i]->makeRef(), hostileValues(world, other, dead), failures, {}};
                walk(visit);
                reached = std::move(visit.reached);
                for (Handle* h : world.objects()) reached.push_back(h->makeRef());
            }
            // Once the world is gone no object a script reached may live on.
            for (const HandleRef& ref : reached)
                if (ref)
                    failures.push_back(cls->getQualifiedName() + ": an object of class " +
                                       ref.get()->getFullyQualifiedKorbTypeName() + " outlives its model");
        }
        std::filesystem::current_path(previous);
        // Scripts write only the files they name: here the code descriptor
        // of the directory "".
        for (const auto& entry : std::filesystem::recursive_directory_iterator(directory.path()))
            if (entry.path().filename() != VelCG::CGModel::kCodeDescriptorFileName)
                failures.push_back("the walk wrote " + entry.path().string());
        std::string out;
        for (const std::string& f : failures) out += f + "\n";
        return out;
    }

    korb::Client& client = korb::ObjectSystem::instance().getPublicClient();
};

} // namespace

TEST_F(HostileScript, EveryPropertyReadsAndTakesOrRefusesEveryKindOfValue) {
    const std::string failures = walkEveryClass([&](Visit& visit) {
        for (const korb::PropertyInfo& p : client.describeProperties(visit.cls)) {
            visit.attempt(p.name + " read", [&] { visit.reach(client.getProperty(visit.subject, p.name)); });
            for (const Hostile& v : visit.values) {
                visit.attempt(p.name + " = " + v.label,
                              [&] { client.setProperty(visit.subject, p.name, *v.value); });
                if (!p.readOnly)
                    visit.attempt(p.name + " read after = " + v.label,
                                  [&] { visit.reach(client.getProperty(visit.subject, p.name)); });
            }
        }
    });
    EXPECT_EQ("", failures);
}

TEST_F(HostileScript, EveryMethodTakesOrRefusesEveryArgumentCountAndKindOfValue) {
    const std::string failures = walkEveryClass([&](Visit& visit) {
        for (const korb::MethodInfo& m : client.describeMethods(visit.cls)) {
            const auto call = [&](const std::string& what, const std::vector<tuvArrayPtr>& args) {
                visit.attempt(m.name + what,
                              [&] { visit.reach(client.callMethod(visit.subject, m.name, args)); });
            };
            const std::size_t arity = m.argumentTypes.size();
            std::vector<tuvArrayPtr> args;
            for (std::size_t count = 0; count <= arity + 2; ++count) {
                call(" with " + std::to_string(count) + " arguments", args);
                args.push_back(plausible(count < arity ? m.argumentTypes[count] : korb::kAny));
            }
            args.resize(arity);
            for (std::size_t position = 0; position < arity; ++position) {
                std::vector<tuvArrayPtr> wrong = args;
                const std::string at = " argument " + std::to_string(position + 1) + " = ";
                wrong[position] = nullptr;
                call(at + "null array", wrong);
                for (const Hostile& v : visit.values) {
                    wrong[position] = v.value;
                    call(at + v.label, wrong);
                }
            }
        }
    });
    EXPECT_EQ("", failures);
}

// The object a script names must be one live, known object: anything else
// answers before any member runs.
TEST_F(HostileScript, MembersOfDestroyedMissingOrUnknownObjectsAnswerWithTheirDiagnostic) {
    using testing_support::diagnosticOf;
    World world;
    testing_support::NamedObject stranger("Nowhere.Thing");
    const auto dead = destroyedObjects();
    const HandleRef live = world.m.block->makeRef();
    struct Target {
        std::string label;
        tuvArrayPtr object;
        std::string expected;
    };
    std::vector<Target> targets{
        {"null handle", tuvArray::objects({HandleRef()}), "Korb:InvalidHandle"},
        {"empty handle array", tuvArray::objects({}), "Korb:InvalidHandle"},
        {"two handles", tuvArray::objects({live, live}), "Korb:InvalidHandle"},
        {"empty", tuvArray::empty(), "Korb:InvalidHandle"},
        {"char", tuvArray::fromUtf8("VelCG.GraphicalBlock"), "Korb:InvalidHandle"},
        {"object of no registered class", tuvArray::objects({stranger.makeRef()}), "Korb:UnknownClass"},
    };
    for (const Hostile& d : dead) targets.push_back({d.label, d.value, "Korb:InvalidHandle"});
    std::string failures;
    for (const HandleClass* cls : client.getClasses("VelCG")) {
        for (const Target& t : targets) {
            const auto expect = [&](const std::string& member, const std::string& got) {
                if (got != t.expected)
                    failures += cls->getQualifiedName() + "." + member + " of " + t.label + ": " + got + "\n";
            };
            for (const korb::PropertyInfo& p : client.describeProperties(*cls)) {
                expect(p.name, diagnosticOf([&] { client.getProperty(*t.object, p.name); }));
                expect(p.name + "=",
                       diagnosticOf([&] { client.setProperty(*t.object, p.name, *tuvArray::empty()); }));
            }
            for (const korb::MethodInfo& m : client.describeMethods(*cls))
                expect(m.name + "()", diagnosticOf([&] { client.callMethod(*t.object, m.name); }));
        }
    }
    // Member names no class declares.
    for (const std::string& name : {std::string(), std::string("x\0y", 3), std::string("Name ")}) {
        if (diagnosticOf([&] { client.getProperty(live, name); }) != "Korb:UnknownProperty")
            failures += "read of unknown property '" + name + "'\n";
        if (diagnosticOf([&] { client.callMethod(live, name); }) != "Korb:UnknownMethod")
            failures += "call of unknown method '" + name + "'\n";
    }
    EXPECT_EQ("", failures);
}
