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

// A small class hierarchy covering every value kind the binders convert.
class Widget : public vel::mi::Handle {
public:
    const char* getFullyQualifiedKorbTypeName() const override { return "KorbTest.Widget"; }

    bool getEnabled() const { return enabled_; }
    void setEnabled(bool v) { enabled_ = v; }
    int getCount() const { return count_; }
    void setCount(int v) { count_ = v; }
    unsigned getId() const { return 7u; }
    std::int64_t getBig() const { return big_; }
    void setBig(const std::int64_t& v) { big_ = v; }
    double getGain() const { return gain_; }
    void setGain(double v) { gain_ = v; }
    const std::string& getLabel() const { return label_; }
    void setLabel(const std::string& v) { label_ = v; }
    const std::wstring& getPath() const { return path_; }
    void setPath(const std::wstring& v) { path_ = v; }
    const std::vector<int>& getDims() const { return dims_; }
    void setDims(const std::vector<int>& v) { dims_ = v; }
    const std::vector<std::string>& getTags() const { return tags_; }
    void setTags(const std::vector<std::string>& v) { tags_ = v; }
    const std::vector<Widget*>& getChildren() const { return children_; }
    void setChildren(const std::vector<Widget*>& v) { children_ = v; }
    Widget* getPeer() const { return peer_; }

    std::string greet(const std::string& who, int times) const {
        std::string s;
        for (int i = 0; i < times; ++i) s += "hi " + who + ";";
        return s;
    }
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
    std::int64_t big_ = 0;
    double gain_ = 1.5;
    std::string label_ = "w";
    std::wstring path_ = L"m/\u00e9";
    std::vector<int> dims_{2, 3};
    std::vector<std::string> tags_{"a", "b"};
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

class Unregistered : public vel::mi::Handle {
public:
    const char* getFullyQualifiedKorbTypeName() const override { return "KorbTest.Nobody"; }
};

// Claims a registered class without being of its native type.
class Impostor : public vel::mi::Handle {
public:
    const char* getFullyQualifiedKorbTypeName() const override { return "KorbTest.Widget"; }
};

class TestPackage : public korb::PackageInfo {
public:
    const char* getName() const override { return "KorbTest"; }
    void registerClasses(korb::ObjectSystem& system) override {
        using namespace korb;
        system.registerClass(ClassInfo::make("Widget", "A widget", [](ClassInfo& c) {
            c.superclass(kHeterogeneous);
            c.property("Enabled", getter(&Widget::getEnabled), setter(&Widget::setEnabled));
            c.property("Count", getter(&Widget::getCount), setter(&Widget::setCount));
            c.property("Id", getter(&Widget::getId));
            c.property("Big", getter(&Widget::getBig), setter(&Widget::setBig));
            c.property("Gain", getter(&Widget::getGain), setter(&Widget::setGain));
            c.property("Label", getter(&Widget::getLabel), setter(&Widget::setLabel));
            c.property("Path", getter(&Widget::getPath), setter(&Widget::setPath));
            c.property("Dims", getter(&Widget::getDims), setter(&Widget::setDims));
            c.property("Tags", getter(&Widget::getTags), setter(&Widget::setTags));
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
};

class ClientTest : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        auto& sys = korb::ObjectSystem::instance();
        if (!sys.findPackage("KorbTest")) sys.addPackage(std::make_unique<TestPackage>());
    }
    korb::Client& client = korb::ObjectSystem::instance().getPublicClient();
};

using testing_support::diagnosticOf;
using testing_support::diagnosticWithArgumentsOf;

const std::u16string kLoneSurrogate = {u'a', char16_t(0xD800)};

TEST_F(ClientTest, ReadsEveryValueKindWithItsHostType) {
    Widget w;
    auto ref = w.makeRef();
    struct Row {
        const char* prop;
        const char* hostType;
        tuvClass cls;
    } rows[] = {
        {"Enabled", "logical scalar", tuvClass::Logical},
        {"Count", "int32 scalar", tuvClass::Int32},
        {"Id", "uint32 scalar", tuvClass::UInt32},
        {"Big", "int64 scalar", tuvClass::Int64},
        {"Gain", "double scalar", tuvClass::Double},
        {"Label", "char", tuvClass::Char},
        {"Path", "char", tuvClass::Char},
        {"Dims", "int32 vector", tuvClass::Int32},
        {"Tags", "cell", tuvClass::Cell},
        {"Children", "any", tuvClass::Object},
    };
    for (const auto& r : rows) {
        korb::Value v = client.getPropertyValue(ref, r.prop);
        EXPECT_EQ(r.hostType, v.hostType) << r.prop;
        EXPECT_EQ(r.cls, v.data->classId()) << r.prop;
        EXPECT_EQ(r.hostType, client.getPropertyType(w, r.prop)) << r.prop;
    }
    EXPECT_EQ(u"m/\u00e9", client.getProperty(ref, "Path")->charData());
    EXPECT_EQ((std::vector<int>{2, 3}), client.getProperty(ref, "Dims")->int32Data());
    auto tags = client.getProperty(ref, "Tags");
    ASSERT_EQ(2u, tags->rows());
    EXPECT_EQ("b", tags->getCell(1)->toUtf8());
    EXPECT_TRUE(client.getProperty(ref, "Peer")->isEmpty());
}

TEST_F(ClientTest, WritesRoundTripAndCallHooksInOrder) {
    Widget w, child;
    auto ref = w.makeRef();
    client.setProperty(ref, "Enabled", *tuvArray::logical(true));
    client.setProperty(ref, "Count", *tuvArray::float64(42)); // integral double accepted
    client.setProperty(ref, "Big", *tuvArray::int64(INT64_MAX));
    client.setProperty(ref, "Gain", *tuvArray::int32(3));
    client.setProperty(ref, "Label", *tuvArray::fromUtf8("x\xc3\xa9"));
    client.setProperty(ref, "Dims", *tuvArray::doubleVector({4, 5, 6}));
    auto tags = tuvArray::cell(1, 2);
    tags->setCell(0, tuvArray::fromUtf8("p"));
    tags->setCell(1, tuvArray::fromUtf8("q"));
    client.setProperty(ref, "Tags", *tags);
    client.setProperty(*client.wrap(w), "Children", *tuvArray::objects({child.makeRef()}));

    EXPECT_TRUE(w.getEnabled());
    EXPECT_EQ(42, w.getCount());
    EXPECT_EQ(INT64_MAX, w.getBig());
    EXPECT_EQ(3.0, w.getGain());
    EXPECT_EQ("x\xc3\xa9", w.getLabel());
    EXPECT_EQ((std::vector<int>{4, 5, 6}), w.getDims());
    EXPECT_EQ((std::vector<std::string>{"p", "q"}), w.getTags());
    ASSERT_EQ(1u, w.getChildren().size());
    EXPECT_EQ(&child, w.getChildren()[0]);
    EXPECT_EQ(0u, w.log_.find("pre:Enabled;post:Enabled;pre:Count;post:Count;"));

    // Reading the children back yields a handle to the same object.
    auto kids = client.getProperty(ref, "Children");
    EXPECT_EQ(&child, kids->handles().at(0).get());
}

TEST_F(ClientTest, UnknownNamesAndObjectsAreRefusedWithWhatWasAsked) {
    Widget w;
    auto ref = w.makeRef();
    struct Row {
        const char* what;
        std::function<void()> call;
        const char* diagnostic;
    } rows[] = {
        {"unknown property", [&] { client.getProperty(ref, "Nope"); },
         "Korb:UnknownProperty(Nope, KorbTest.Widget)"},
        {"unknown method", [&] { client.callMethod(ref, "nope"); },
         "Korb:UnknownMethod(nope, KorbTest.Widget)"},
        {"read-only", [&] { client.setProperty(ref, "Id", *tuvArray::uint32(1)); },
         "Korb:ReadOnlyProperty(Id, KorbTest.Widget)"},
        {"wrong argument count", [&] { client.callMethod(ref, "greet", {tuvArray::fromUtf8("x")}); },
         "Korb:WrongNumberOfArguments(2, 1)"},
        {"null reference", [&] { client.getProperty(vel::mi::HandleRef(), "Count"); },
         "Korb:InvalidHandle()"},
        {"not an object", [&] { client.getProperty(*tuvArray::int32(1), "Count"); }, "Korb:InvalidHandle()"},
        {"two objects",
         [&] {
             client.getProperty(*tuvArray::objects({ref, ref}), "Count");
         },
         "Korb:InvalidHandle()"},
        {"unregistered class",
         [&] {
             Unregistered u;
             client.getProperty(u.makeRef(), "X");
         },
         "Korb:UnknownClass(KorbTest.Nobody)"},
    };
    for (const auto& r : rows) EXPECT_EQ(r.diagnostic, diagnosticWithArgumentsOf(r.call)) << r.what;
}

TEST_F(ClientTest, AValueThatCannotBeConvertedNamesThePropertyAndClass) {
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
        {"Label", tuvArray::int32(1),
         "Korb:InvalidPropertyValue(Label, KorbTest.Widget, Expected a value of type 'char', but got int32 "
         "1.)"},
        {"Label", tuvArray::chars(kLoneSurrogate),
         "Korb:InvalidPropertyValue(Label, KorbTest.Widget, The text is not valid UTF-16.)"},
        {"Count", tuvArray::chars(kLoneSurrogate),
         "Korb:InvalidPropertyValue(Count, KorbTest.Widget, "
         "Expected a value of type 'int32 scalar', but got 1x2 char array that is not valid Unicode.)"},
        {"Children", destroyed,
         "Korb:InvalidPropertyValue(Children, KorbTest.Widget, Invalid or deleted object.)"},
    };
    for (const auto& r : rows) {
        Widget w;
        EXPECT_EQ(r.diagnostic,
                  diagnosticWithArgumentsOf([&] { client.setProperty(w.makeRef(), r.property, *r.value); }))
            << r.property;
        EXPECT_EQ(0, w.getCount()) << "a rejected write leaves the object unchanged";
        EXPECT_EQ("w", w.getLabel());
        EXPECT_EQ(std::string("pre:") + r.property + ";", w.log_) << "no post-set hook after a failed write";
    }
}

TEST_F(ClientTest, AnArgumentThatCannotBeConvertedNamesTheMethodClassAndPosition) {
    struct Row {
        const char* what;
        std::vector<tuvArrayPtr> args;
        const char* diagnostic;
    } rows[] = {
        {"first",
         {tuvArray::int32(1), tuvArray::int32(1)},
         "Korb:InvalidMethodArgument(greet, KorbTest.Gadget, 1, "
         "Expected a value of type 'char', but got int32 1.)"},
        {"second",
         {tuvArray::fromUtf8("x"), tuvArray::float64(1.5)},
         "Korb:InvalidMethodArgument(greet, KorbTest.Gadget, 2, "
         "Expected a value of type 'int32 scalar', but got double 1.5.)"},
        {"not valid Unicode",
         {tuvArray::chars(kLoneSurrogate), tuvArray::int32(1)},
         "Korb:InvalidMethodArgument(greet, KorbTest.Gadget, 1, The text is not valid UTF-16.)"},
        {"null",
         {tuvArray::fromUtf8("x"), nullptr},
         "Korb:InvalidMethodArgument(greet, KorbTest.Gadget, 2, "
         "Expected a value of type 'any', but got a null array.)"},
    };
    Gadget g; // the class named is the object's, not the one declaring the method
    for (const auto& r : rows)
        EXPECT_EQ(r.diagnostic,
                  diagnosticWithArgumentsOf([&] { client.callMethod(g.makeRef(), "greet", r.args); }))
            << r.what;
}

TEST_F(ClientTest, DiagnosticsOfTheNativeCodeAndOfTheBindingsPassUnchanged) {
    Widget w;
    Impostor impostor;
    struct Row {
        const char* what;
        std::function<void()> call;
        const char* diagnostic;
    } rows[] = {
        {"raised by the method", [&] { client.callMethod(w.makeRef(), "fail"); },
         "Korb:TypeMismatch(native, native)"},
        {"object of another native class", [&] { client.getProperty(impostor.makeRef(), "Count"); },
         "Korb:WrongClass"},
        {"native object that is not a handle", [&] { client.getProperty(w.makeRef(), "Plain"); },
         "Korb:NotAHandle"},
    };
    for (const auto& r : rows) {
        std::string raised = diagnosticWithArgumentsOf(r.call);
        EXPECT_EQ(0u, raised.find(r.diagnostic)) << r.what << ": " << raised;
    }
}

TEST_F(ClientTest, DestroyedAndLockedObjectsAreRefused) {
    vel::mi::HandleRef ref;
    tuvArrayPtr held;
    {
        Widget w;
        ref = w.makeRef();
        held = client.wrap(w);
        w.lock();
        w.lock();
        w.unlock();
        EXPECT_EQ("Korb:ObjectLocked(Count, KorbTest.Widget)",
                  diagnosticWithArgumentsOf([&] { client.setProperty(ref, "Count", *tuvArray::int32(1)); }));
        w.unlock();
        client.setProperty(ref, "Count", *tuvArray::int32(1));
        EXPECT_EQ(1, w.getCount());
        EXPECT_EQ("MI:HandleNotLocked", diagnosticOf([&] { w.unlock(); }));
    }
    EXPECT_FALSE(ref);
    EXPECT_EQ("Korb:InvalidHandle", diagnosticOf([&] { client.getProperty(ref, "Count"); }));
    EXPECT_EQ("Korb:InvalidHandle", diagnosticOf([&] { client.getProperty(*held, "Count"); }));
    EXPECT_EQ("Korb:InvalidHandle", diagnosticOf([&] { client.callMethod(*held, "bump"); }));
}

TEST_F(ClientTest, SubclassesAnswerInheritedMembersAndHideOverridden) {
    Gadget g;
    auto ref = g.makeRef();
    EXPECT_TRUE(client.isA(g, "KorbTest.Widget"));
    EXPECT_TRUE(client.isA(g, "plexo.mixin.Heterogeneous"));
    EXPECT_FALSE(client.isA(Widget(), "KorbTest.Gadget"));
    EXPECT_EQ("gadget", client.getProperty(ref, "Kind")->toUtf8());
    EXPECT_EQ("G:gadget", client.getProperty(ref, "Label")->toUtf8());
    EXPECT_TRUE(client.isReadOnly(g, "Label"));
    EXPECT_FALSE(client.isReadOnly(Widget(), "Label"));
    client.setProperty(ref, "Count", *tuvArray::int32(5));
    EXPECT_EQ(5, g.getCount());
    EXPECT_EQ("hi x;hi x;",
              client.callMethod(ref, "greet", {tuvArray::fromUtf8("x"), tuvArray::int32(2)})->toUtf8());
    EXPECT_TRUE(client.callMethod(*client.wrap(g), "bump")->isEmpty());
    EXPECT_EQ(6, g.getCount());

    auto names = client.getPropertyNames(g);
    ASSERT_EQ(13u, names.size());
    EXPECT_EQ("Enabled", names.front());
    EXPECT_EQ("Kind", names.back());
    EXPECT_TRUE(client.hasProperty(g, "Kind"));
    EXPECT_FALSE(client.hasProperty(Widget(), "Kind"));
    EXPECT_EQ((std::vector<std::string>{"greet", "bump", "fail"}), client.getMethodNames(g));
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
                  "Id:uint32 scalar/ro/@KorbTest.Widget",
                  "Big:int64 scalar/rw:int64 scalar/@KorbTest.Widget",
                  "Gain:double scalar/rw:double scalar/@KorbTest.Widget",
                  "Label:char/ro/@KorbTest.Gadget",
                  "Path:char/rw:char/@KorbTest.Widget",
                  "Dims:int32 vector/rw:int32 vector/@KorbTest.Widget",
                  "Tags:cell/rw:cell/@KorbTest.Widget",
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
    EXPECT_EQ(gizmo->findOwnProperty("Count"), client.findProperty(*gizmo, "Count"));
    EXPECT_EQ(client.findClass("KorbTest.Gadget")->findOwnProperty("Label"),
              client.findProperty(*gizmo, "Label"));
    EXPECT_EQ(client.findClass("KorbTest.Widget")->findOwnMethod("greet"),
              client.findMethod(*gizmo, "greet"));
    EXPECT_EQ(nullptr, client.findProperty(*gizmo, "Nope"));
    EXPECT_EQ(nullptr, client.findProperty(*gizmo, "greet")) << "a method is not a property";
    EXPECT_EQ(nullptr, client.findMethod(*gizmo, "Kind")) << "a property is not a method";
}

TEST_F(ClientTest, SuperclassesAndElementClassesAreFoundByName) {
    std::vector<std::string> chain;
    for (const auto* c = client.findClass("KorbTest.Gizmo"); c; c = client.getSuperclass(*c))
        chain.push_back(c->getQualifiedName());
    EXPECT_EQ((std::vector<std::string>{"KorbTest.Gizmo", "KorbTest.Gadget", "KorbTest.Widget",
                                        korb::kHeterogeneous}),
              chain);

    const auto classes = client.getClasses("KorbTest");
    ASSERT_EQ(3u, classes.size());
    EXPECT_EQ("KorbTest.Gizmo", classes[2]->getQualifiedName()) << "registration order";
    EXPECT_TRUE(client.getClasses("NoSuchPackage").empty());

    Gadget g;
    EXPECT_EQ("KorbTest.Widget", client.getElementClass(g, "Children")) << "inherited";
    EXPECT_EQ("", client.getElementClass(g, "Kind"));
    EXPECT_EQ("Korb:UnknownProperty(Nope, KorbTest.Gadget)",
              diagnosticWithArgumentsOf([&] { client.getElementClass(g, "Nope"); }));
    EXPECT_EQ("Korb:UnknownProperty(greet, KorbTest.Gadget)",
              diagnosticWithArgumentsOf([&] { client.getElementClass(g, "greet"); }));
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

class Guarded : public vel::mi::Handle {
public:
    explicit Guarded(const char* type) : type_(type) {}
    const char* getFullyQualifiedKorbTypeName() const override { return type_; }
    int getValue() const {
        guardLog() += "get;";
        return value_;
    }
    void setValue(int v) {
        guardLog() += "set;";
        value_ = v;
    }
    int twice(int x) {
        guardLog() += "call;";
        return 2 * x;
    }

private:
    const char* type_;
    int value_ = 0;
};

TEST_F(ClientTest, AccessGuardsRunBeforeEveryReadWriteAndCallTheMostDerivedWinning) {
    using namespace korb;
    auto& sys = ObjectSystem::instance();
    if (!sys.findPackage("GuardTest"))
        sys.addPackage(std::make_unique<testing_support::FunctionPackage>("GuardTest", [](ObjectSystem& s) {
            auto base = ClassInfo::make("Base", "guarded", [](ClassInfo& c) {
                c.property("Value", getter(&Guarded::getValue), setter(&Guarded::setValue));
                c.method("twice", method(&Guarded::twice));
            });
            base->setAccessGuard({&guardBusy, [] { guardLog() += "A;"; }});
            s.registerClass(std::move(base));
            s.registerClass(ClassInfo::make("Mid", "inherits the guard",
                                            [](ClassInfo& c) { c.superclass("GuardTest.Base"); }));
            auto top = ClassInfo::make("Top", "a guard of its own",
                                       [](ClassInfo& c) { c.superclass("GuardTest.Mid"); });
            top->setAccessGuard({&guardBusy, [] { guardLog() += "B;"; }});
            s.registerClass(std::move(top));
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
}

} // namespace
