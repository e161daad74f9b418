// Every class of the package as scripts see it, rendered as one listing and
// compared with VelCGPackage_listing.txt beside this file: each class in
// registration order with its description and superclass, then the members
// it declares itself. A property shows its host type, "rw" when scripts may
// write it, its value in the every-kind model, in a default-constructed
// object where the class has one ("fresh"), and what it reads after a script
// wrote another value ("->"); a method shows its argument and result types
// and the answer to a call with the arguments shown. A value that raises
// shows as "!identifier".

#include <gtest/gtest.h>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "EveryKindModel.hpp"
#include "ExpectedFile.hpp"
#include "RenderValue.hpp"
#include "korb/Client.hpp"
#include "korb/ObjectSystem.hpp"
#include "vel/feature/Feature.hpp"
#include "velcg/Features.hpp"
#include "velcg/PlexoModule.hpp"

using namespace VelCG;
using testing_support::render;

namespace {

// The every-kind model with the members it leaves at their defaults set too,
// so that no two properties of a class that could be mixed up read alike.
struct PopulatedModel : testing_support::EveryKindModel {
    PopulatedModel() {
        group->setNonReusedName("model_State_nr");
        group->setHasElement("yes");
        group->setTypeTag("tag");
        input->setSizeVarGroupIndex(2);
        model.setModelReferenceTargetType("SIM");
        model.setIsQuayTarget(true);
        model.setIsGeneratingToSharedLocation(true);
        model.setFilePackagingFormat(FilePackagingFormat::CompactWithDataFile);
        model.setNumModelReferenceBlocks(3);
        model.addFunctionForSystem("f", system);
        system->setBriskSystemCode(2);
        auto& gain = dynamic_cast<StoredGraphicalBlock&>(*block->getImpl());
        gain.setReferencedModelName(L"ref");
        gain.setIsProtectedModelBlock(true);
        gain.setNumFcnCallOutputPorts(2);
        auto* mp = dynamic_cast<ModelParameter*>(modelParameter);
        dynamic_cast<StoredModelParameter&>(*mp->getImpl()).setIsWorkspaceVar(true);
    }
};

// Default-constructed objects of the classes that have a default.
struct FreshObjects {
    CGModel model;
    System system;
    VelCGType type;
    CGTypeMember member;
    VarGroup group;
    VelType velType;
    ExternalInput input;
    Port port;
    Region region;
};

// Another value of a property's host type, for a script to write: flags
// flip, numbers move past what a narrower type would hold, texts and lists
// grow by a non-ASCII element. Null for objects, whose writes have tests of
// their own.
tuvArrayPtr another(const std::string& type, const tuvArray& v) {
    if (type == "logical scalar") return tuvArray::logical(!v.logicalValue());
    if (type == "int32 scalar") return tuvArray::int32(v.int32Value() + 100000);
    if (type == "uint32 scalar") return tuvArray::uint32(v.uint32Value() + 3000000000u);
    if (type == "int64 scalar") return tuvArray::int64(v.int64Value() + 3000000000);
    if (type == "double scalar") return tuvArray::float64(v.doubleValue() + 0.25);
    if (type == "char") return tuvArray::fromUtf8(v.toUtf8() + "\xc3\xa9");
    if (type == "int32 vector") {
        std::vector<std::int32_t> values(v.int32Data().begin(), v.int32Data().end());
        values.push_back(7);
        return tuvArray::int32Vector(values);
    }
    if (type == "cell") {
        auto cell = tuvArray::cell(1, v.numel() + 1);
        for (std::size_t i = 0; i < v.numel(); ++i) cell->setCell(i, v.getCell(i));
        cell->setCell(v.numel(), tuvArray::fromUtf8("\xc3\xa9"));
        return cell;
    }
    return nullptr;
}

tuvArrayPtr argumentOf(const std::string& type) {
    if (type == "char") return tuvArray::fromUtf8("f");
    if (type == "logical scalar") return tuvArray::logical(true);
    return tuvArray::float64(1);
}

template <class F>
std::string renderOf(F&& read) {
    try {
        return render(*read());
    } catch (const vel::diag::Exception& e) {
        return "!" + e.identifier();
    }
}

std::string listing() {
    korb::Client& client = korb::ObjectSystem::instance().getPublicClient();
    // The serialization methods are called with nothing to write; their
    // effect is checked in CGModelSerialize_test.cpp.
    vel::feature::ScopedValue noSerialization(VELFEAT_VelCGDirectEmitSerialize, 0);
    // The members are read and called on one world and written on another,
    // so that calls answer for the world as built.
    PopulatedModel m, wm;
    testing_support::EveryKindRepository r, wr;
    FreshObjects f;
    std::map<std::string, vel::mi::Handle*> fresh;
    for (vel::mi::Handle* h : std::initializer_list<vel::mi::Handle*>{
             &f.model, &f.system, &f.type, &f.member, &f.group, &f.velType, &f.input, &f.port, &f.region})
        fresh[h->getFullyQualifiedKorbTypeName()] = h;
    const auto objects = testing_support::everyObject(m, r);
    const auto writable = testing_support::everyObject(wm, wr);

    std::ostringstream out;
    for (const vel::mi::HandleClass* cls : client.getClasses("VelCG")) {
        const std::string name = cls->getQualifiedName();
        out << name << " | " << cls->getDescription() << " | " << cls->getSuperclassName()
            << (cls->isAbstract() ? " | abstract" : "") << "\n";
        const std::size_t i = testing_support::subjectOf(client, *cls, objects);
        if (i == objects.size()) {
            out << "  (no object of the class)\n";
            continue;
        }
        const auto ref = objects[i]->makeRef(), writeRef = writable[i]->makeRef();
        for (const korb::PropertyInfo& p : client.describeProperties(*cls)) {
            if (p.definedBy != name) continue;
            out << "  " << p.name << " : " << p.hostType << (p.oneObject ? " (one)" : "")
                << (p.readOnly ? "" : " rw") << " = "
                << renderOf([&] { return client.getProperty(ref, p.name); });
            if (fresh.count(name))
                out << " (fresh "
                    << renderOf([&] { return client.getProperty(fresh[name]->makeRef(), p.name); }) << ")";
            if (const tuvArrayPtr written =
                    p.readOnly ? nullptr : another(p.setterType, *client.getProperty(ref, p.name))) {
                client.setProperty(writeRef, p.name, *written);
                out << " -> " << renderOf([&] { return client.getProperty(writeRef, p.name); });
            }
            out << "\n";
        }
        for (const korb::MethodInfo& method : client.describeMethods(*cls)) {
            if (method.definedBy != name) continue;
            std::vector<tuvArrayPtr> args;
            out << "  " << method.name << "(";
            for (const std::string& type : method.argumentTypes) {
                args.push_back(argumentOf(type));
                out << (args.size() > 1 ? ", " : "") << type << " " << render(*args.back());
            }
            out << ")" << (method.resultType.empty() ? "" : " -> " + method.resultType)
                << (method.returnsOneObject ? " (one)" : "") << " = "
                << renderOf([&] { return client.callMethod(ref, method.name, args); }) << "\n";
        }
    }
    // What scripts wrote reached the native objects.
    EXPECT_EQ(L"/shared\u00e9", wm.model.getSharedCodeManagerPath());
    EXPECT_TRUE(wm.queue->getIsDiscrete()) << "\"isDiscete\" writes isDiscrete";
    const auto found =
        client.callMethod(m.model.makeRef(), "getSystemForFunction", {tuvArray::fromUtf8("f")});
    EXPECT_EQ(m.system, found->handles()[0].get()) << "the system found is the model's own";
    return out.str();
}

TEST(VelCGPackage, EveryClassAsScriptsSeeIt) {
    PlexoInitialize_velcg();
    EXPECT_MATCHES_FILE(listing(), __FILE__, "VelCGPackage_listing.txt");
}

} // namespace
