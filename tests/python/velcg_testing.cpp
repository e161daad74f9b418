// The test-only extension module "velcg_testing": builds the model and the
// file repository of EveryKindModel.hpp and hands them to pytest as objects
// of the module velcg, together with the host's description of each class.
#include <memory>
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>
#include <stdexcept>
#include <string>

#include "EveryKindModel.hpp"
#include "korb/Client.hpp"
#include "korb/ObjectSystem.hpp"
#include "vel/diag/Diagnostic.hpp"

namespace py = pybind11;

namespace {

korb::Client& client() { return korb::ObjectSystem::instance().getPublicClient(); }

py::module_ velcgModule() {
    // Importing velcg registers the package, so its classes are known.
    return py::module_::import("velcg");
}

// The velcg object for a native object, of the Python class named after its
// object-system class.
py::object wrap(vel::mi::Handle& object) {
    py::module_ velcg = velcgModule();
    const std::string& name = client().classOf(object).getQualifiedName();
    return velcg.attr(name.substr(name.rfind('.') + 1).c_str())(
        py::capsule(static_cast<void*>(&object), "vel.mi.Handle"));
}

// The model and the repository, alive until close() or until the fixture is
// collected; the velcg objects taken from them do not keep them alive.
class Fixture {
public:
    Fixture() {
        velcgModule();
        model_ = std::make_unique<testing_support::EveryKindModel>();
        files_ = std::make_unique<testing_support::EveryKindRepository>();
    }

    py::object model() { return wrap(live().model); }
    py::object repository() { return wrap(liveFiles().repository); }

    // The named parts of the model and the repository.
    py::dict objects() {
        testing_support::EveryKindModel& m = live();
        testing_support::EveryKindRepository& f = liveFiles();
        py::dict out;
        const std::pair<const char*, vel::mi::Handle*> parts[] = {
            {"system", m.system},
            {"cgType", m.cgType},
            {"member", m.member},
            {"group", m.group},
            {"velType", m.velType},
            {"input", m.input},
            {"map", m.model.getBlockHierarchyMap()},
            {"root", m.root},
            {"child", m.child},
            {"inport", m.inport},
            {"block", m.block},
            {"subsystemBlock", m.subsystemBlock},
            {"outport", m.outport},
            {"inner", m.inner},
            {"inPort", m.inPort},
            {"outPort", m.outPort},
            {"region", m.region},
            {"parameter", m.parameter},
            {"modelParameter", m.modelParameter},
            {"state", m.state},
            {"discreteState", m.discreteState},
            {"dWork", m.dWork},
            {"queue", m.queue},
            {"leaf1", m.leaves.at(0)},
            {"leaf2", m.leaves.at(1)},
            {"header", &f.header},
            {"source", &f.source},
            {"types", &f.types},
            {"generic", &f.generic},
        };
        for (const auto& [name, object] : parts) out[name] = wrap(*object);
        return out;
    }

    // A region whose source is not valid UTF-8 and a block whose name holds
    // a lone surrogate: text that reading must refuse.
    py::tuple brokenText() {
        live();
        if (!broken_) {
            broken_ = std::make_unique<BrokenText>();
            broken_->region.setSource("bad\xff");
        }
        return py::make_tuple(wrap(broken_->region), wrap(broken_->block));
    }

    // Destroys the model and the repository.
    void close() {
        broken_.reset();
        files_.reset();
        model_.reset();
    }

private:
    testing_support::EveryKindModel& live() {
        if (!model_) throw std::logic_error("the fixture is closed");
        return *model_;
    }
    testing_support::EveryKindRepository& liveFiles() {
        if (!files_) throw std::logic_error("the fixture is closed");
        return *files_;
    }

    struct BrokenText {
        VelCG::Region region;
        VelCG::GraphicalBlock block{new VelCG::StoredGraphicalBlock(std::wstring(1, wchar_t(0xD800)))};
    };
    std::unique_ptr<testing_support::EveryKindModel> model_;
    std::unique_ptr<testing_support::EveryKindRepository> files_;
    std::unique_ptr<BrokenText> broken_;
};

// The host warnings raised on this thread while it lives (it must be
// released on the thread that made it).
class Warnings {
public:
    py::list identifiers() const {
        py::list out;
        for (const vel::diag::Diagnostic& d : collector_.warnings()) out.append(d.identifier());
        return out;
    }

private:
    vel::diag::WarningCollector collector_;
};

// What the host says of a class: its superclass and its members, in lookup
// order, with their host types.
py::dict describeClass(const std::string& qualifiedName) {
    velcgModule();
    const vel::mi::HandleClass* cls = client().findClass(qualifiedName);
    if (!cls) throw py::key_error(qualifiedName);
    const vel::mi::HandleClass* super = client().getSuperclass(*cls);
    py::list properties, methods;
    for (const korb::PropertyInfo& p : client().describeProperties(*cls)) {
        py::dict d;
        d["name"] = p.name;
        d["hostType"] = p.hostType;
        d["readOnly"] = p.readOnly;
        d["setterType"] = p.setterType;
        d["elementClass"] = p.elementClass;
        d["oneObject"] = p.oneObject;
        properties.append(d);
    }
    for (const korb::MethodInfo& m : client().describeMethods(*cls)) {
        py::dict d;
        d["name"] = m.name;
        d["argumentTypes"] = m.argumentTypes;
        d["resultType"] = m.resultType;
        d["returnsOneObject"] = m.returnsOneObject;
        methods.append(d);
    }
    py::dict out;
    out["superclass"] = super ? py::object(py::str(super->getQualifiedName())) : py::object(py::none());
    out["abstract"] = cls->isAbstract();
    out["properties"] = properties;
    out["methods"] = methods;
    return out;
}

} // namespace

PYBIND11_MODULE(velcg_testing, module) {
    module.doc() = "A model and a file repository of every kind, for the tests of the module velcg.";
    py::class_<Fixture>(module, "Fixture")
        .def(py::init<>())
        .def_property_readonly("model", &Fixture::model)
        .def_property_readonly("repository", &Fixture::repository)
        .def("objects", &Fixture::objects)
        .def("brokenText", &Fixture::brokenText)
        .def("close", &Fixture::close);
    py::class_<Warnings>(module, "Warnings").def(py::init<>()).def("identifiers", &Warnings::identifiers);
    module.def("describeClass", &describeClass, py::arg("qualifiedName"));
    module.def("classNames", [] {
        velcgModule();
        py::list names;
        for (const vel::mi::HandleClass* cls : client().getClasses("VelCG"))
            names.append(cls->getQualifiedName());
        return names;
    });
}
