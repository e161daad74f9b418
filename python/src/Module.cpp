#include "Module.hpp"

#include <pybind11/eval.h>
#include <stdexcept>
#include <string>
#include <utility>

#include "Bridge.hpp"
#include "Generate.hpp"
#include "ModuleState.hpp"
#include "Objects.hpp"
#include "korb/Client.hpp"
#include "korb/Messages.hpp"
#include "korb/ObjectSystem.hpp"
#include "vel/diag/Diagnostic.hpp"
#include "velcg/PlexoModule.hpp"
#include "velcg/TemplateReference.hpp"

namespace VelCG::python {

namespace {

// velcg.Error and its subclass for unknown members, which is also an
// AttributeError so that hasattr() and getattr() with a default work.
const char* const kErrorClasses = R"(
class Error(Exception):
    """A diagnostic of velcg or its host.

    identifier -- the message identifier, such as "Korb:InvalidHandle"
    arguments  -- the ordered arguments of the message, as strings
    message    -- the readable message
    """

    def __init__(self, identifier, message, arguments=()):
        super().__init__(f"{identifier}: {message}")
        self.identifier = identifier
        self.message = message
        self.arguments = list(arguments)


class UnknownMemberError(Error, AttributeError):
    """A name that is neither a property nor a method of the object's class."""
)";

void raisePython(const vel::diag::Exception& e) {
    const ModuleState* state = ModuleState::current();
    // A thread that outlived the module (one the interpreter has not yet
    // stopped while it ends) gets the message without its class.
    if (!state) {
        PyErr_SetString(PyExc_RuntimeError, e.what());
        return;
    }
    const std::string& id = e.identifier();
    const bool unknownMember = id == korb::messages::UnknownProperty || id == korb::messages::UnknownMethod;
    py::object type = unknownMember ? state->unknownMemberClass : state->errorClass;
    py::list arguments;
    for (const std::string& a : e.arguments())
        arguments.append(py::bytes(a).attr("decode")("utf-8", "replace"));
    py::object error =
        type(id, py::bytes(e.diagnostic().message()).attr("decode")("utf-8", "replace"), arguments);
    PyErr_SetObject(type.ptr(), error.ptr());
}

} // namespace

korb::Client& client() {
    static korb::Client& publicClient = korb::ObjectSystem::instance().getPublicClient();
    return publicClient;
}

const char* classDoc(const char* className) {
    for (const reference::ModuleClass& c : reference::moduleClasses())
        if (c.name == className) return c.summary.c_str();
    throw std::logic_error(std::string("velcg.") + className + " is not documented");
}

const char* operationDoc(const char* className, const char* name) {
    const reference::Operation* op = reference::findOperation(className, name);
    if (!op) throw std::logic_error(std::string(className) + "." + name + " is not documented");
    return op->summary.c_str();
}

void releaseModule() { delete std::exchange(ModuleState::current_, nullptr); }

void defineModule(py::module_& module) {
    // The classes scripts see are those of the package; loading the module
    // loads the library the way the host does.
    PlexoInitialize_velcg();
    delete std::exchange(ModuleState::current_, new ModuleState());
    ModuleState& state = *ModuleState::current_;

    module.doc() = classDoc("");
    py::dict scope;
    scope["__name__"] = "velcg";
    scope["__builtins__"] = py::module_::import("builtins");
    py::exec(kErrorClasses, scope);
    state.errorClass = scope["Error"];
    state.unknownMemberClass = scope["UnknownMemberError"];
    module.attr("Error") = state.errorClass;
    module.attr("UnknownMemberError") = state.unknownMemberClass;

    py::register_exception_translator([](std::exception_ptr p) {
        try {
            if (p) std::rethrow_exception(p);
        } catch (const vel::diag::Exception& e) {
            raisePython(e);
        }
    });

    defineObjects(module);
    defineBridge(module);
    defineGenerate(module);
    state.defined = true;
}

} // namespace VelCG::python
