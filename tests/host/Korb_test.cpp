#include <gtest/gtest.h>

#include "DiagnosticTesting.hpp"
#include "korb/ClassInfo.hpp"
#include "korb/Client.hpp"
#include "korb/ObjectSystem.hpp"
#include "korb/PackageInfo.hpp"
#include "vel/diag/Diagnostic.hpp"

namespace {

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
};

class Gadget : public Widget {
public:
    const char* getFullyQualifiedKorbTypeName() const override { return "KorbTest.Gadget"; }
    const std::string& getKind() const { return kind_; }
    const std::string& getLabel() const { return kind_; } // hides Widget's "Label"

private:
    std::string kind_ = "gadget";
};

class Unregistered : public vel::mi::Handle {
public:
    const char* getFullyQualifiedKorbTypeName() const override { return "KorbTest.Nobody"; }
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
            c.property("Children", getter(&Widget::getChildren), setter(&Widget::setChildren));
            c.property("Peer", getter(&Widget::getPeer));
            c.method("greet", method(&Widget::greet));
            c.method("bump", method(&Widget::bump));
        }));
        system.registerClass(ClassInfo::make("Gadget", "A gadget", [](ClassInfo& c) {
            c.superclass("KorbTest.Widget");
            c.property("Kind", getter(&Gadget::getKind));
            c.property("Label", getterFn<Gadget>([](const Gadget& g) { return "G:" + g.getLabel(); }));
        }));
    }
};

class KorbTest : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        auto& sys = korb::ObjectSystem::instance();
        if (!sys.findPackage("KorbTest")) sys.addPackage(std::make_unique<TestPackage>());
    }
    korb::Client& client = korb::ObjectSystem::instance().getPublicClient();
};

using testing_support::diagnosticOf;

TEST_F(KorbTest, ReadsEveryValueKindWithItsHostType) {
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
    }
    EXPECT_EQ(u"m/\u00e9", client.getProperty(ref, "Path")->charData());
    EXPECT_EQ((std::vector<int>{2, 3}), client.getProperty(ref, "Dims")->int32Data());
    auto tags = client.getProperty(ref, "Tags");
    ASSERT_EQ(2u, tags->rows());
    EXPECT_EQ("b", tags->getCell(1)->toUtf8());
    EXPECT_TRUE(client.getProperty(ref, "Peer")->isEmpty());
}

TEST_F(KorbTest, WritesRoundTripAndCallHooksInOrder) {
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
    client.setProperty(ref, "Children", *tuvArray::objects({child.makeRef()}));

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

TEST_F(KorbTest, RejectsBadNamesTypesAndObjectsWithDiagnostics) {
    Widget w;
    auto ref = w.makeRef();
    struct Row {
        const char* what;
        std::function<void()> call;
        const char* id;
    } rows[] = {
        {"unknown property", [&] { client.getProperty(ref, "Nope"); }, "Korb:UnknownProperty"},
        {"unknown method", [&] { client.callMethod(ref, "nope"); }, "Korb:UnknownMethod"},
        {"read-only", [&] { client.setProperty(ref, "Id", *tuvArray::uint32(1)); }, "Korb:ReadOnlyProperty"},
        {"string for bool", [&] { client.setProperty(ref, "Enabled", *tuvArray::fromUtf8("yes")); },
         "Korb:InvalidPropertyValue"},
        {"2 for bool", [&] { client.setProperty(ref, "Enabled", *tuvArray::float64(2)); },
         "Korb:InvalidPropertyValue"},
        {"fraction for int", [&] { client.setProperty(ref, "Count", *tuvArray::float64(1.5)); },
         "Korb:InvalidPropertyValue"},
        {"int out of range", [&] { client.setProperty(ref, "Count", *tuvArray::float64(3e9)); },
         "Korb:InvalidPropertyValue"},
        {"number for string", [&] { client.setProperty(ref, "Label", *tuvArray::int32(1)); },
         "Korb:InvalidPropertyValue"},
        {"string for list", [&] { client.setProperty(ref, "Tags", *tuvArray::fromUtf8("a")); },
         "Korb:InvalidPropertyValue"},
        {"wrong arg count", [&] { client.callMethod(ref, "greet", {tuvArray::fromUtf8("x")}); },
         "Korb:WrongNumberOfArguments"},
        {"wrong arg type",
         [&] {
             client.callMethod(ref, "greet", {tuvArray::int32(1), tuvArray::int32(1)});
         },
         "Korb:TypeMismatch"},
        {"null reference", [&] { client.getProperty(vel::mi::HandleRef(), "Count"); }, "Korb:InvalidHandle"},
        {"not an object", [&] { client.getProperty(*tuvArray::int32(1), "Count"); }, "Korb:InvalidHandle"},
        {"unregistered class",
         [&] {
             Unregistered u;
             client.getProperty(u.makeRef(), "X");
         },
         "Korb:UnknownClass"},
    };
    for (const auto& r : rows) EXPECT_EQ(r.id, diagnosticOf(r.call)) << r.what;
    EXPECT_EQ(0, w.getCount()) << "a rejected write must leave the object unchanged";
    EXPECT_FALSE(w.getEnabled());
}

TEST_F(KorbTest, DestroyedAndLockedObjectsAreRefused) {
    vel::mi::HandleRef ref;
    tuvArrayPtr held;
    {
        Widget w;
        ref = w.makeRef();
        held = client.wrap(w);
        w.lock();
        w.lock();
        w.unlock();
        EXPECT_EQ("Korb:ObjectLocked",
                  diagnosticOf([&] { client.setProperty(ref, "Count", *tuvArray::int32(1)); }));
        w.unlock();
        client.setProperty(ref, "Count", *tuvArray::int32(1));
        EXPECT_EQ("MI:HandleNotLocked", diagnosticOf([&] { w.unlock(); }));
    }
    EXPECT_FALSE(ref);
    EXPECT_EQ("Korb:InvalidHandle", diagnosticOf([&] { client.getProperty(ref, "Count"); }));
    EXPECT_EQ("Korb:InvalidHandle", diagnosticOf([&] { client.getProperty(*held, "Count"); }));
    Widget parent;
    EXPECT_EQ("Korb:InvalidPropertyValue",
              diagnosticOf([&] { client.setProperty(parent.makeRef(), "Children", *held); }));
}

TEST_F(KorbTest, SubclassesAnswerInheritedMembersAndHideOverridden) {
    Gadget g;
    auto ref = g.makeRef();
    EXPECT_TRUE(client.isA(g, "KorbTest.Widget"));
    EXPECT_TRUE(client.isA(g, "plexo.mixin.Heterogeneous"));
    EXPECT_FALSE(client.isA(Widget(), "KorbTest.Gadget"));
    EXPECT_EQ("gadget", client.getProperty(ref, "Kind")->toUtf8());
    EXPECT_EQ("G:gadget", client.getProperty(ref, "Label")->toUtf8());
    EXPECT_TRUE(client.isReadOnly(g, "Label"));
    client.setProperty(ref, "Count", *tuvArray::int32(5));
    EXPECT_EQ(5, g.getCount());
    EXPECT_EQ("hi x;hi x;",
              client.callMethod(ref, "greet", {tuvArray::fromUtf8("x"), tuvArray::int32(2)})->toUtf8());
    EXPECT_TRUE(client.callMethod(ref, "bump")->isEmpty());
    EXPECT_EQ(6, g.getCount());

    auto names = client.getPropertyNames(g);
    ASSERT_EQ(12u, names.size());
    EXPECT_EQ("Enabled", names.front());
    EXPECT_EQ("Kind", names.back());
    EXPECT_EQ((std::vector<std::string>{"greet", "bump"}), client.getMethodNames(g));
}

TEST_F(KorbTest, RegistryKeepsOrderAndRefusesDuplicatesAndOrphans) {
    auto& sys = korb::ObjectSystem::instance();
    auto classes = sys.getPackageClasses("KorbTest");
    ASSERT_EQ(2u, classes.size());
    EXPECT_EQ("KorbTest.Widget", classes[0]->getQualifiedName());
    EXPECT_EQ("A gadget", classes[1]->getDescription());
    EXPECT_EQ("Korb:DuplicatePackage",
              diagnosticOf([&] { sys.addPackage(std::make_unique<TestPackage>()); }));

    struct Orphan : korb::PackageInfo {
        const char* getName() const override { return "KorbOrphan"; }
        void registerClasses(korb::ObjectSystem& s) override {
            s.registerClass(korb::ClassInfo::make("A", "a", nullptr));
            s.registerClass(
                korb::ClassInfo::make("B", "b", [](korb::ClassInfo& c) { c.superclass("KorbOrphan.Z"); }));
        }
    };
    EXPECT_EQ("Korb:UnknownSuperclass", diagnosticOf([&] { sys.addPackage(std::make_unique<Orphan>()); }));
    EXPECT_EQ(nullptr, sys.findPackage("KorbOrphan")) << "a failed package is not half-registered";
    EXPECT_EQ(nullptr, sys.findClass("KorbOrphan.A"));
    EXPECT_EQ("Korb:NotRegistering",
              diagnosticOf([&] { sys.registerClass(korb::ClassInfo::make("Late", "late", nullptr)); }));
    EXPECT_EQ("Korb:DuplicateMember", diagnosticOf([&] {
                  korb::ObjectSystem local;
                  struct Dup : korb::PackageInfo {
                      const char* getName() const override { return "Dup"; }
                      void registerClasses(korb::ObjectSystem& s) override {
                          s.registerClass(korb::ClassInfo::make("D", "d", [](korb::ClassInfo& c) {
                              c.property("X", korb::getter(&Widget::getCount));
                              c.method("X", korb::method(&Widget::bump));
                          }));
                      }
                  };
                  local.addPackage(std::make_unique<Dup>());
              }));
}

} // namespace
