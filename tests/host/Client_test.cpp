#include "korb/Client.hpp"

#include <atomic>
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

#include "DiagnosticTesting.hpp"
#include "PackageTesting.hpp"
#include "korb/ClassInfo.hpp"
#include "korb/ObjectSystem.hpp"
#include "korb/PackageInfo.hpp"
#include "vel/diag/Diagnostic.hpp"
#include "vel/mi/Handle.hpp"
#include "vel/mi/HandleClass.hpp"

namespace {

// A polymorphic native class that is not a handle: scripts cannot hold it.
class Plain {
public:
    virtual ~Plain() = default;
};

// An object of any class, named with a literal, whose address the object
// system keeps.
class Guarded : public vel::mi::Handle {
public:
    explicit Guarded(const char* type) : type_(type) {}
    const char* getFullyQualifiedKorbTypeName() const override { return type_; }
    const char* type_;
};

// A small class hierarchy with scalar, text, object and non-handle members;
// the conversions themselves are checked with the host traits.
class Widget : public vel::mi::Handle {
public:
    const char* getFullyQualifiedKorbTypeName() const override { return "KorbTest.Widget"; }

    bool getEnabled() const { return enabled_; }
    void setEnabled(bool v) { enabled_ = v; }
    int getCount() const { return count_; }
    void setCount(int v) { count_ = v; }
    const std::string& getLabel() const { return label_; }
    void setLabel(const std::string& v) { label_ = v; }
    const std::vector<Widget*>& getChildren() const { return children_; }
    void setChildren(const std::vector<Widget*>& v) { children_ = v; }
    Widget* getPeer() const { return peer_; }

    std::string greet(const std::string& who, int times) const { return who + std::to_string(times); }
    void bump() { ++count_; }
    // Native code that raises a conversion diagnostic of its own.
    void fail() { vel::diag::throwError("Korb:TypeMismatch", {"native", "native"}); }
    Plain* getPlain() const { return &plain_; }

    void preSetPropFcn(const char* p) override { log_ += std::string("pre:") + p + ";"; }
    void postSetPropFcn(const char* p) override { log_ += std::string("post:") + p + ";"; }

    std::string log_;
    Widget* peer_ = nullptr;

private:
    bool enabled_ = false;
    int count_ = 0;
    std::string label_ = "w";
    std::vector<Widget*> children_;
    mutable Plain plain_;
};

class Gadget : public Widget {
public:
    const char* getFullyQualifiedKorbTypeName() const override { return "KorbTest.Gadget"; }
    const std::string& getKind() const { return kind_; }
    const std::string& getLabel() const { return kind_; } // hides Widget's "Label"

private:
    std::string kind_ = "gadget";
};

// Overrides an inherited property and an inherited method with declarations
// of other types.
class Gizmo : public Gadget {
public:
    const char* getFullyQualifiedKorbTypeName() const override { return "KorbTest.Gizmo"; }
};

void registerTestClasses(korb::ObjectSystem& system) {
    using namespace korb;
    system.registerClass(ClassInfo::make("Widget", "A widget", [](ClassInfo& c) {
        c.superclass(kHeterogeneous);
        c.property("Enabled", getter(&Widget::getEnabled), setter(&Widget::setEnabled));
        c.property("Count", getter(&Widget::getCount), setter(&Widget::setCount));
        c.property("Label", getter(&Widget::getLabel), setter(&Widget::setLabel));
        c.property("Children", getter(&Widget::getChildren), setter(&Widget::setChildren))
            .holds("KorbTest.Widget");
        c.property("Peer", getter(&Widget::getPeer)).holds("KorbTest.Widget");
        c.property("Plain", getter(&Widget::getPlain));
        c.method("greet", method(&Widget::greet));
        c.method("bump", method(&Widget::bump));
        c.method("fail", method(&Widget::fail));
    }));
    system.registerClass(ClassInfo::make("Gadget", "A gadget", [](ClassInfo& c) {
        c.superclass("KorbTest.Widget");
        c.property("Kind", getter(&Gadget::getKind));
        c.property("Label", getterFn<Gadget>([](const Gadget& g) { return "G:" + g.getLabel(); }));
    }));
    system.registerClass(ClassInfo::make("Gizmo", "A gizmo", [](ClassInfo& c) {
        c.superclass("KorbTest.Gadget");
        c.property("Count", getterFn<Gizmo>([](const Gizmo& g) { return std::to_string(g.getCount()); }));
        c.method("bump", methodFn<Gizmo, Widget*, int>([](Gizmo& g, int) { return g.peer_; }));
    }));
}

class ClientTest : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        auto& sys = korb::ObjectSystem::instance();
        if (!sys.findPackage("KorbTest"))
            sys.addPackage(
                std::make_unique<testing_support::FunctionPackage>("KorbTest", registerTestClasses));
    }
    korb::Client& client = korb::ObjectSystem::instance().getPublicClient();
};

using testing_support::diagnosticOf;
using testing_support::diagnosticWithArgumentsOf;

const std::u16string kLoneSurrogate = {u'a', char16_t(0xD800)};

// A value is delivered under the host type its class declares for it.
TEST_F(ClientTest, ReadsEveryValueKindWithItsHostType) {
    Widget w;
    for (const korb::PropertyInfo& p : client.describeProperties(*client.findClass("KorbTest.Widget"))) {
        if (p.name == "Plain") continue; // not a handle: refused, below
        EXPECT_EQ(p.hostType, client.getPropertyValue(w.makeRef(), p.name).hostType) << p.name;
        EXPECT_EQ(p.hostType, client.getPropertyType(w, p.name)) << p.name;
    }
    EXPECT_TRUE(client.getProperty(w.makeRef(), "Peer")->isEmpty());
}

TEST_F(ClientTest, WritesRoundTripAndCallHooksInOrder) {
    Widget w, child;
    auto ref = w.makeRef();
    client.setProperty(ref, "Enabled", *tuvArray::logical(true));
    client.setProperty(ref, "Count", *tuvArray::float64(42)); // integral double accepted
    client.setProperty(*client.wrap(w), "Children", *tuvArray::objects({child.makeRef()}));

    EXPECT_TRUE(w.getEnabled());
    EXPECT_EQ(42, w.getCount());
    ASSERT_EQ(1u, w.getChildren().size());
    EXPECT_EQ(&child, w.getChildren()[0]);
    EXPECT_EQ("pre:Enabled;post:Enabled;pre:Count;post:Count;pre:Children;post:Children;", w.log_);
    EXPECT_EQ(&child, client.getProperty(ref, "Children")->handles().at(0).get());
}

// Unknown members, read-only writes, locked objects, wrong or non-handle
// native objects and diagnostics of the native code itself.
TEST_F(ClientTest, RefusalsNameWhatWasAskedAndNativeDiagnosticsPassUnchanged) {
    Widget w, locked;
    Guarded impostor("KorbTest.Widget"); // claims a class without being of its native type
    locked.lock();
    locked.lock();
    locked.unlock();
    struct Row {
        std::function<void()> call;
        const char* diagnostic;
    } rows[] = {
        {[&] { client.callMethod(w.makeRef(), "nope"); }, "Korb:UnknownMethod(nope, KorbTest.Widget)"},
        {[&] { client.setProperty(w.makeRef(), "Peer", *tuvArray::empty()); },
         "Korb:ReadOnlyProperty(Peer, KorbTest.Widget)"},
        {[&] { client.callMethod(w.makeRef(), "fail"); }, "Korb:TypeMismatch(native, native)"},
        {[&] { client.getProperty(impostor.makeRef(), "Count"); }, "Korb:WrongClass"},
        {[&] { client.getProperty(w.makeRef(), "Plain"); }, "Korb:NotAHandle"},
        {[&] { client.setProperty(locked.makeRef(), "Count", *tuvArray::int32(1)); },
         "Korb:ObjectLocked(Count, KorbTest.Widget)"},
    };
    for (const auto& r : rows) {
        std::string raised = diagnosticWithArgumentsOf(r.call);
        EXPECT_EQ(0u, raised.find(r.diagnostic)) << raised;
    }
    locked.unlock(); // the last lock released
    client.setProperty(locked.makeRef(), "Count", *tuvArray::int32(1));
    EXPECT_EQ(1, locked.getCount());
    EXPECT_EQ("MI:HandleNotLocked", diagnosticOf([&] { locked.unlock(); }));
}

// The conversion messages themselves are checked with the host traits; here
// the client names the member and the class, and a refused write runs no
// setter and no post-set hook.
TEST_F(ClientTest, AValueOrArgumentThatCannotBeConvertedNamesTheMemberAndClass) {
    tuvArrayPtr destroyed;
    {
        Widget gone;
        destroyed = client.wrap(gone);
    }
    struct Row {
        const char* property;
        tuvArrayPtr value;
        const char* diagnostic;
    } rows[] = {
        {"Enabled", tuvArray::fromUtf8("yes"),
         "Korb:InvalidPropertyValue(Enabled, KorbTest.Widget, "
         "Expected a value of type 'logical scalar', but got 'yes'.)"},
        {"Label", tuvArray::chars(kLoneSurrogate),
         "Korb:InvalidPropertyValue(Label, KorbTest.Widget, The text is not valid UTF-16.)"},
        {"Children", destroyed,
         "Korb:InvalidPropertyValue(Children, KorbTest.Widget, Invalid or deleted object.)"},
    };
    for (const auto& r : rows) {
        Widget w;
        EXPECT_EQ(r.diagnostic,
                  diagnosticWithArgumentsOf([&] { client.setProperty(w.makeRef(), r.property, *r.value); }));
        EXPECT_EQ("w", w.getLabel());
        EXPECT_EQ(std::string("pre:") + r.property + ";", w.log_) << "no post-set hook after a failed write";
    }

    Gadget g; // the class named is the object's, not the one declaring the method
    EXPECT_EQ(
        "Korb:InvalidMethodArgument(greet, KorbTest.Gadget, 2, "
        "Expected a value of type 'int32 scalar', but got double 1.5.)",
        diagnosticWithArgumentsOf([&] {
            client.callMethod(g.makeRef(), "greet", {tuvArray::fromUtf8("x"), tuvArray::float64(1.5)});
        }));
    EXPECT_EQ(
        "Korb:InvalidMethodArgument(greet, KorbTest.Gadget, 1, The text is not valid UTF-16.)",
        diagnosticWithArgumentsOf([&] {
            client.callMethod(g.makeRef(), "greet", {tuvArray::chars(kLoneSurrogate), tuvArray::int32(1)});
        }));
}

TEST_F(ClientTest, SubclassesAnswerInheritedMembersAndHideOverridden) {
    Gadget g;
    auto ref = g.makeRef();
    EXPECT_TRUE(client.isA(g, "KorbTest.Widget"));
    EXPECT_TRUE(client.isA(g, "plexo.mixin.Heterogeneous"));
    EXPECT_FALSE(client.isA(Widget(), "KorbTest.Gadget"));
    EXPECT_EQ("G:gadget", client.getProperty(ref, "Label")->toUtf8());
    EXPECT_TRUE(client.isReadOnly(g, "Label"));
    EXPECT_FALSE(client.isReadOnly(Widget(), "Label"));

    auto names = client.getPropertyNames(g);
    ASSERT_EQ(7u, names.size());
    EXPECT_EQ("Kind", names.back());
    EXPECT_EQ((std::vector<std::string>{"greet", "bump", "fail"}), client.getMethodNames(g));

    std::vector<std::string> chain;
    for (const auto* c = client.findClass("KorbTest.Gizmo"); c; c = client.getSuperclass(*c))
        chain.push_back(c->getQualifiedName());
    EXPECT_EQ((std::vector<std::string>{"KorbTest.Gizmo", "KorbTest.Gadget", "KorbTest.Widget",
                                        korb::kHeterogeneous}),
              chain);
    EXPECT_EQ("KorbTest.Gizmo", client.getClasses("KorbTest").at(2)->getQualifiedName())
        << "registration order";

    EXPECT_EQ("KorbTest.Widget", client.getElementClass(g, "Children")) << "inherited";
    EXPECT_EQ("", client.getElementClass(g, "Kind"));
    EXPECT_EQ("Korb:UnknownProperty(greet, KorbTest.Gadget)",
              diagnosticWithArgumentsOf([&] { client.getElementClass(g, "greet"); }));
}

TEST_F(ClientTest, DescribesClassMembersAlongTheChainTheMostDerivedDeclarationWinning) {
    const auto* gizmo = client.findClass("KorbTest.Gizmo");
    ASSERT_NE(nullptr, gizmo);
    std::vector<std::string> described;
    for (const korb::PropertyInfo& p : client.describeProperties(*gizmo))
        described.push_back(p.name + ":" + p.hostType + "/" + (p.readOnly ? "ro" : "rw:" + p.setterType) +
                            "/" + p.elementClass + (p.oneObject ? "(one)" : "") + "@" + p.definedBy);
    // Inherited members keep their place; an override changes type, setter
    // and declaring class but not the position.
    EXPECT_EQ((std::vector<std::string>{
                  "Enabled:logical scalar/rw:logical scalar/@KorbTest.Widget",
                  "Count:char/ro/@KorbTest.Gizmo",
                  "Label:char/ro/@KorbTest.Gadget",
                  "Children:any/rw:any/KorbTest.Widget@KorbTest.Widget",
                  "Peer:any/ro/KorbTest.Widget(one)@KorbTest.Widget",
                  "Plain:any/ro/(one)@KorbTest.Widget",
                  "Kind:char/ro/@KorbTest.Gadget",
              }),
              described);

    std::vector<std::string> methods;
    for (const korb::MethodInfo& m : client.describeMethods(*gizmo)) {
        std::string args;
        for (const auto& a : m.argumentTypes) args += (args.empty() ? "" : ",") + a;
        methods.push_back(m.name + "(" + args + ")->" + m.resultType + (m.returnsOneObject ? "(one)" : "") +
                          "@" + m.definedBy);
    }
    EXPECT_EQ(
        (std::vector<std::string>{"greet(char,int32 scalar)->char@KorbTest.Widget",
                                  "bump(int32 scalar)->any(one)@KorbTest.Gizmo", "fail()->@KorbTest.Widget"}),
        methods);

    // Lookup by name follows the same chain.
    Gizmo g;
    g.setCount(4);
    EXPECT_EQ("4", client.getProperty(g.makeRef(), "Count")->toUtf8());
    g.peer_ = &g;
    EXPECT_EQ(&g, client.callMethod(g.makeRef(), "bump", {tuvArray::int32(1)})->handles().at(0).get());
}

// Objects of the classes "GuardTest.Base", "GuardTest.Mid" (derived from
// Base) and "GuardTest.Top" (derived from Mid), logging their member calls
// and their classes' access guards into one log. The guards wait while
// guardBusy is not zero.
std::string& guardLog() {
    static std::string log;
    return log;
}
std::atomic<int> guardBusy{0};

TEST_F(ClientTest, AccessGuardsRunBeforeEveryReadWriteAndCallTheMostDerivedWinning) {
    using namespace korb;
    auto& sys = ObjectSystem::instance();
    if (!sys.findPackage("GuardTest"))
        sys.addPackage(std::make_unique<testing_support::FunctionPackage>("GuardTest", [](ObjectSystem& s) {
            auto base = ClassInfo::make("Base", "guarded", [](ClassInfo& c) {
                c.property("Value", getterFn<Guarded>([](const Guarded&) { return guardLog() += "get;", 0; }),
                           setterFn<Guarded, int>([](Guarded&, int) { guardLog() += "set;"; }));
                c.method("twice", methodFn<Guarded, int, int>(
                                      [](Guarded&, int x) { return guardLog() += "call;", 2 * x; }));
            });
            base->setAccessGuard({&guardBusy, [] { guardLog() += "A;"; }});
            s.registerClass(std::move(base));
            s.registerClass(ClassInfo::make("Mid", "inherits the guard",
                                            [](ClassInfo& c) { c.superclass("GuardTest.Base"); }));
            auto top = ClassInfo::make("Top", "a guard of its own",
                                       [](ClassInfo& c) { c.superclass("GuardTest.Mid"); });
            top->setAccessGuard({&guardBusy, [] { guardLog() += "B;"; }});
            s.registerClass(std::move(top));
            auto reading = ClassInfo::make("Reading", "readers go ahead of its guard", [](ClassInfo& c) {
                c.superclass("GuardTest.Base");
                c.method("peek",
                         methodFn<Guarded, int>([](const Guarded&) { return guardLog() += "peek;", 1; }));
            });
            reading->setAccessGuard({&guardBusy, [] { guardLog() += "R;"; }, true});
            s.registerClass(std::move(reading));
        }));

    for (const auto& [type, guard] : std::vector<std::pair<const char*, std::string>>{
             {"GuardTest.Base", "A;"}, {"GuardTest.Mid", "A;"}, {"GuardTest.Top", "B;"}}) {
        SCOPED_TRACE(type);
        Guarded object(type);
        const auto ref = object.makeRef();
        guardBusy = 0;
        guardLog().clear();
        client.getProperty(ref, "Value");
        client.callMethod(ref, "twice", {tuvArray::int32(3)});
        EXPECT_EQ("get;call;", guardLog()) << "no waiting while nothing is busy";

        guardBusy = 1;
        guardLog().clear();
        client.getProperty(ref, "Value");
        client.getPropertyValue(ref, "Value");
        client.setProperty(ref, "Value", *tuvArray::int32(3));
        EXPECT_EQ(6, client.callMethod(ref, "twice", {tuvArray::int32(3)})->int32Value());
        EXPECT_EQ(guard + "get;" + guard + "get;" + guard + "set;" + guard + "call;", guardLog());

        // Questions about the class touch no object; refused accesses reach no member.
        guardLog().clear();
        client.getPropertyNames(object);
        client.isReadOnly(object, "Value");
        client.describeProperties(client.classOf(object));
        EXPECT_EQ("Korb:UnknownProperty", diagnosticOf([&] { client.getProperty(ref, "Nope"); }));
        EXPECT_EQ("Korb:WrongNumberOfArguments", diagnosticOf([&] { client.callMethod(ref, "twice"); }));
        EXPECT_EQ(guard, guardLog()) << "only the call with the wrong argument count passed the guard";
    }

    // A guard that lets readers proceed holds up only writes and calls of
    // methods that may write.
    Guarded object("GuardTest.Reading");
    const auto ref = object.makeRef();
    guardBusy = 1;
    guardLog().clear();
    client.getProperty(ref, "Value");
    client.callMethod(ref, "peek");
    client.setProperty(ref, "Value", *tuvArray::int32(3));
    client.callMethod(ref, "twice", {tuvArray::int32(3)});
    EXPECT_EQ("get;peek;R;set;R;call;", guardLog());
}

} // namespace
