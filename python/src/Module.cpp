#include "Module.hpp"

#include <map>
#include <pybind11/eval.h>
#include <string>

#include "Bridge.hpp"
#include "Objects.hpp"
#include "korb/Client.hpp"
#include "korb/ObjectSystem.hpp"
#include "vel/diag/Diagnostic.hpp"
#include "vel/diag/MessageCatalog.hpp"
#include "velcg/PlexoModule.hpp"

namespace VelCG::python {

namespace {

// The messages of the diagnostics the module raises itself.
[[maybe_unused]] const bool kCatalogRegistered = [] {
    vel::diag::MessageCatalog::instance().addCatalog(
        "VelCG:Python",
        {
            {"NotARepository",
             "The script bridge needs a file repository (velcg.VelCGFileRepository), not {1}."},
            {"NotAHandleCapsule", "A velcg.Object is made from a capsule named 'vel.mi.Handle', not '{1}'."},
            {"InvalidArgument", "The argument of {1} must be {2}, not {3}."},
            {"NotABinaryFile",
             "Section '{1}' can only be written to a file opened in binary mode, not to {2}."},
            {"CannotWrite", "Cannot write section '{1}': {2}."},
            {"CannotWriteFile", "Cannot write the file '{1}': {2}."},
            {"NotAPlainFileName",
             "The file '{1}' cannot be written into a directory: its name is not a plain file name: {2}."},
            {"CannotReadTemplate", "Cannot read the template '{1}': {2}."},
            {"TemplateFailed", "The template '{1}' raised an exception:\n{2}"},
            {"Finalized",
             "The Python interpreter of this process has been shut down; templates can no longer run."},
        });
    return true;
}();

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

py::object& errorClass() {
    static auto* type = new py::object();
    return *type;
}

py::object& unknownMemberClass() {
    static auto* type = new py::object();
    return *type;
}

void raisePython(const vel::diag::Exception& e) {
    const std::string& id = e.identifier();
    const bool unknownMember = id == "Korb:UnknownProperty" || id == "Korb:UnknownMethod";
    py::object type = unknownMember ? unknownMemberClass() : errorClass();
    py::list arguments;
    for (const std::string& a : e.arguments())
        arguments.append(py::bytes(a).attr("decode")("utf-8", "replace"));
    py::object error =
        type(id, py::bytes(e.diagnostic().message()).attr("decode")("utf-8", "replace"), arguments);
    PyErr_SetObject(type.ptr(), error.ptr());
}

} // namespace

korb::Client& client() { return korb::ObjectSystem::instance().getPublicClient(); }

py::object errorType() { return errorClass(); }

void releaseModule() {
    releaseObjects();
    errorClass() = py::object();
    unknownMemberClass() = py::object();
}

void defineModule(py::module_& module) {
    // The classes scripts see are those of the package; loading the module
    // loads the library the way the host does.
    PlexoInitialize_velcg();

    module.doc() = "Template scripts on the velcg model: objects as property bags, and the script bridge.";
    py::dict scope;
    scope["__name__"] = "velcg";
    scope["__builtins__"] = py::module_::import("builtins");
    py::exec(kErrorClasses, scope);
    errorClass() = scope["Error"];
    unknownMemberClass() = scope["UnknownMemberError"];
    module.attr("Error") = errorClass();
    module.attr("UnknownMemberError") = unknownMemberClass();

    py::register_exception_translator([](std::exception_ptr p) {
        try {
            if (p) std::rethrow_exception(p);
        } catch (const vel::diag::Exception& e) {
            raisePython(e);
        }
    });

    defineObjects(module);
    defineBridge(module);
}

} // namespace VelCG::python
