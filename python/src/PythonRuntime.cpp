#include "velcg/PythonRuntime.hpp"

#include <cstdlib>
#include <fstream>
#include <memory>
#include <mutex>
#include <pybind11/embed.h>
#include <sstream>

#include <boost/filesystem.hpp>

#include "Module.hpp"
#include "vel/diag/Diagnostic.hpp"
#include "vel/mi/Handle.hpp"
#include "vel/mi/Lifetime.hpp"

// The module is built in, so `import velcg` in a template finds this copy.
PYBIND11_EMBEDDED_MODULE(velcg, module) { VelCG::python::defineModule(module); }

namespace VelCG {

namespace py = pybind11;

namespace {

enum class State { NotStarted, Running, Finalized };

struct Interpreter {
    std::mutex mutex; // guards state and the start and end of the interpreter
    State state = State::NotStarted;
};

Interpreter& interpreter() {
    static auto* instance = new Interpreter();
    return *instance;
}

// Starts the interpreter on first use; it then waits with the interpreter
// lock released, so that any thread can run a template.
void ensureStarted() {
    Interpreter& in = interpreter();
    std::lock_guard<std::mutex> lock(in.mutex);
    if (in.state == State::Finalized) vel::diag::throwError("VelCG:Python:Finalized", {});
    if (in.state == State::Running) return;
    // Signal handlers stay with the host process.
    py::initialize_interpreter(/*init_signal_handlers=*/false);
    // pybind11 sets up its shared state on first use without a lock of its
    // own, and every template's GIL acquisition reads it: set it up here,
    // under the mutex that each run passes through first.
    py::detail::get_internals();
    PyEval_SaveThread();
    in.state = State::Running;
    std::atexit(&PythonRuntime::shutdown);
}

std::string tracebackText(const py::error_already_set& error) {
    try {
        py::object format = py::module_::import("traceback").attr("format_exception");
        // An error raised before any Python frame ran (a syntax error from
        // compile) has no traceback; format_exception takes None for it.
        py::object trace = error.trace() ? error.trace() : py::none();
        py::object lines = format(error.type(), error.value(), trace);
        return py::str("").attr("join")(lines).cast<std::string>();
    } catch (const py::error_already_set&) {
        return error.what();
    }
}

void run(const std::string& source, const std::string& fileName, const std::string& directory,
         const PythonRuntime::Globals& given) {
    ensureStarted();
    py::gil_scoped_acquire gil;
    // The objects the template reaches belong to this run: when it returns,
    // threads it left running get "Korb:InvalidHandle" from them, and so
    // does anything it kept. A global that dies first ends the run's reach too.
    const auto reach = vel::mi::Lifetime::make();
    struct EndReach {
        const std::shared_ptr<vel::mi::Lifetime>& reach;
        // With the interpreter lock held no other Python thread is inside
        // an access, so ending waits for nothing but native threads.
        ~EndReach() { reach->end(); }
    } endReach{reach};
    py::dict globals;
    py::list path;
    bool pathAdded = false;
    try {
        globals["__builtins__"] = py::module_::import("builtins");
        globals["__name__"] = "__main__";
        globals["__file__"] = fileName;
        for (const auto& entry : given.entries()) {
            switch (entry.kind) {
                case PythonRuntime::Globals::Entry::Kind::Object:
                    entry.object->getOwnLifetime()->addDependent(reach);
                    globals[entry.name.c_str()] = python::wrap(entry.object->makeRef(reach));
                    break;
                case PythonRuntime::Globals::Entry::Kind::Text:
                    globals[entry.name.c_str()] = py::str(entry.text);
                    break;
                case PythonRuntime::Globals::Entry::Kind::Number:
                    globals[entry.name.c_str()] = py::int_(entry.number);
                    break;
            }
        }
        if (!directory.empty()) {
            path = py::module_::import("sys").attr("path");
            path.insert(0, py::str(directory));
            pathAdded = true;
        }
        py::object code =
            py::module_::import("builtins").attr("compile")(py::bytes(source), fileName, "exec");
        py::module_::import("builtins").attr("exec")(code, globals);
    } catch (py::error_already_set& e) {
        std::string text = tracebackText(e);
        e.restore();
        PyErr_Clear();
        if (pathAdded) path.attr("remove")(py::str(directory));
        globals.clear();
        vel::diag::throwError("VelCG:Python:TemplateFailed", {fileName, text});
    }
    if (pathAdded) path.attr("remove")(py::str(directory));
    // Objects the template left in its globals are released now, not at exit.
    globals.clear();
}

} // namespace

PythonRuntime::Globals& PythonRuntime::Globals::add(std::string name, vel::mi::Handle& object) {
    Entry e;
    e.name = std::move(name);
    e.kind = Entry::Kind::Object;
    e.object = &object;
    entries_.push_back(std::move(e));
    return *this;
}

PythonRuntime::Globals& PythonRuntime::Globals::add(std::string name, std::string text) {
    Entry e;
    e.name = std::move(name);
    e.kind = Entry::Kind::Text;
    e.text = std::move(text);
    entries_.push_back(std::move(e));
    return *this;
}

PythonRuntime::Globals& PythonRuntime::Globals::add(std::string name, std::int64_t number) {
    Entry e;
    e.name = std::move(name);
    e.kind = Entry::Kind::Number;
    e.number = number;
    entries_.push_back(std::move(e));
    return *this;
}

void PythonRuntime::runTemplate(const std::string& path, const Globals& globals) {
    std::ifstream in(path, std::ios::binary);
    if (!in) vel::diag::throwError("VelCG:Python:CannotReadTemplate", {path, "it cannot be opened"});
    std::ostringstream source;
    source << in.rdbuf();
    if (in.bad()) vel::diag::throwError("VelCG:Python:CannotReadTemplate", {path, "reading it failed"});
    const std::string directory = boost::filesystem::absolute(path).parent_path().string();
    run(source.str(), path, directory, globals);
}

void PythonRuntime::runTemplateText(const std::string& source, const std::string& fileName,
                                    const Globals& globals) {
    run(source, fileName, std::string(), globals);
}

bool PythonRuntime::isRunning() {
    Interpreter& in = interpreter();
    std::lock_guard<std::mutex> lock(in.mutex);
    return in.state == State::Running;
}

void PythonRuntime::shutdown() {
    Interpreter& in = interpreter();
    std::lock_guard<std::mutex> lock(in.mutex);
    if (in.state != State::Running) {
        in.state = State::Finalized;
        return;
    }
    // The interpreter ends on the calling thread with that thread's own
    // thread state: the thread that started it may have ended since, and its
    // state cannot be taken over. Never released: nothing is left to release
    // it to.
    PyGILState_Ensure();
    python::releaseModule();
    py::finalize_interpreter();
    in.state = State::Finalized;
}

} // namespace VelCG
