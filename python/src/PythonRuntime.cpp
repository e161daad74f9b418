#include "velcg/PythonRuntime.hpp"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <mutex>
#include <pybind11/embed.h>
#include <sstream>
#include <utility>

#include "Messages.hpp"
#include "Module.hpp"
#include "Objects.hpp"
#include "PybindInternals.hpp"
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
    // The module that records what templates read, made on first use. Used
    // under the GIL; dropped before the interpreter ends.
    py::object dependencyRecorder;
};

// Never freed: shutdown runs from atexit, and threads still running at exit
// may ask for it after static destructors.
Interpreter& interpreter() {
    static auto* instance = new Interpreter();
    return *instance;
}

// The python of the virtual environment named by VIRTUAL_ENV, or "" when
// none is active (or it has no python).
std::string virtualEnvironmentPython() {
    const char* root = std::getenv("VIRTUAL_ENV");
    if (!root || !*root) return {};
#if defined(_WIN32)
    const std::filesystem::path python = std::filesystem::u8path(root) / "Scripts" / "python.exe";
#else
    const std::filesystem::path python = std::filesystem::u8path(root) / "bin" / "python3";
#endif
    std::error_code error;
    return std::filesystem::exists(python, error) ? python.string() : std::string();
}

// Starts the interpreter on first use; it then waits with the interpreter
// lock released, so that any thread can run a template.
void ensureStarted() {
    Interpreter& in = interpreter();
    std::lock_guard<std::mutex> lock(in.mutex);
    if (in.state == State::Finalized) vel::diag::throwError(messages::Python::Finalized, {});
    if (in.state == State::Running) return;
    // Signal handlers stay with the host process. Inside a virtual
    // environment (VIRTUAL_ENV, as its activate script sets it) the
    // interpreter starts as the environment's python would, so templates
    // import the environment's packages.
    PyConfig config;
    PyConfig_InitPythonConfig(&config);
    config.install_signal_handlers = 0;
    config.parse_argv = 0;
    const std::string environment = virtualEnvironmentPython();
    if (!environment.empty()) {
        const PyStatus status = PyConfig_SetBytesString(&config, &config.program_name, environment.c_str());
        if (PyStatus_Exception(status)) {
            PyConfig_Clear(&config);
            vel::diag::throwError(messages::Python::CannotStart, {"VIRTUAL_ENV=" + environment});
        }
    }
    py::initialize_interpreter(&config, 0, nullptr, /*add_program_dir_to_path=*/false);
    // pybind11 sets up its shared state on first use without a lock of its
    // own, and every template's GIL acquisition reads it: set it up here,
    // under the mutex that each run passes through first.
    python::setUpSharedState();
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

// Records the files a template reads while `recording` is a set: an audit
// hook sees every open (imports included), and the modules imported from
// outside the standard library are added when the template ends. Audit
// hooks cannot be removed, so one is installed per interpreter and does
// nothing between runs.
const char* const kDependencyRecorder = R"(
import os, sys, sysconfig

recording = None
# Modules of the interpreter's own start-up (site and what it loads) are
# nobody's dependency.
_startup = set(sys.modules)
_standard = tuple(os.path.realpath(p) + os.sep for p in {
    sysconfig.get_path("stdlib"), sysconfig.get_path("platstdlib")} if p)
_writing = os.O_WRONLY | os.O_RDWR

def _hook(event, args):
    if recording is None or event != "open":
        return
    path, mode, flags = args
    if isinstance(path, int):
        return
    if mode is None:
        if flags & _writing:
            return
    elif any(c in mode for c in "wax+"):
        return
    recording.add(os.path.abspath(os.fsdecode(path)))

sys.addaudithook(_hook)

def finish(template):
    files = set(recording)
    for name, module in list(sys.modules.items()):
        path = getattr(module, "__file__", None) if name not in _startup else None
        if isinstance(path, str):
            files.add(os.path.abspath(path))
    template = os.path.realpath(template)
    return sorted(p for p in files
                  if os.path.isfile(p) and not os.path.realpath(p).startswith(_standard)
                  and os.path.realpath(p) != template)
)";

py::object dependencyRecorder() {
    py::object& recorder = interpreter().dependencyRecorder;
    if (!recorder) {
        py::object m = py::module_::import("types").attr("ModuleType")("_velcg_dependencies");
        py::exec(kDependencyRecorder, m.attr("__dict__"));
        recorder = std::move(m);
    }
    return recorder;
}

} // namespace

struct PythonRuntime::Globals::Entry {
    enum class Kind { Object, Text, Number, Dictionary, Json };
    std::string name;
    Kind kind = Kind::Text;
    vel::mi::Handle* object = nullptr;
    std::string text;
    std::int64_t number = 0;
    std::vector<std::pair<std::string, std::string>> dictionary;
};

PythonRuntime::Globals::Globals() = default;
PythonRuntime::Globals::Globals(const Globals&) = default;
PythonRuntime::Globals::Globals(Globals&&) noexcept = default;
PythonRuntime::Globals& PythonRuntime::Globals::operator=(const Globals&) = default;
PythonRuntime::Globals& PythonRuntime::Globals::operator=(Globals&&) noexcept = default;
PythonRuntime::Globals::~Globals() = default;

PythonRuntime::Globals& PythonRuntime::Globals::push(Entry entry) {
    entries_.push_back(std::move(entry));
    return *this;
}

PythonRuntime::Globals& PythonRuntime::Globals::add(std::string name, vel::mi::Handle& object) {
    return push({std::move(name), Entry::Kind::Object, &object, {}, 0, {}});
}

PythonRuntime::Globals& PythonRuntime::Globals::add(std::string name, std::string text) {
    return push({std::move(name), Entry::Kind::Text, nullptr, std::move(text), 0, {}});
}

PythonRuntime::Globals& PythonRuntime::Globals::add(
    std::string name, std::vector<std::pair<std::string, std::string>> dictionary) {
    return push({std::move(name), Entry::Kind::Dictionary, nullptr, {}, 0, std::move(dictionary)});
}

PythonRuntime::Globals& PythonRuntime::Globals::addJson(std::string name, std::string json) {
    return push({std::move(name), Entry::Kind::Json, nullptr, std::move(json), 0, {}});
}

PythonRuntime::Globals& PythonRuntime::Globals::add(std::string name, std::int64_t number) {
    return push({std::move(name), Entry::Kind::Number, nullptr, {}, number, {}});
}

void PythonRuntime::run(const std::string& source, const std::string& fileName, const std::string& directory,
                        const Globals& given, std::vector<std::string>* dependencies) {
    using Kind = Globals::Entry::Kind;
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
    if (dependencies) dependencyRecorder().attr("recording") = py::set();
    // Stops recording however the template ends, and hands over what it read.
    auto finishRecording = [&] {
        if (!dependencies) return;
        try {
            py::object recorder = dependencyRecorder();
            dependencies->clear();
            for (py::handle file : recorder.attr("finish")(fileName))
                dependencies->push_back(file.cast<std::string>());
            recorder.attr("recording") = py::none();
        } catch (py::error_already_set& e) {
            e.discard_as_unraisable("recording the template's dependencies");
        }
    };
    py::dict globals;
    py::list path;
    bool pathAdded = false;
    try {
        globals["__builtins__"] = py::module_::import("builtins");
        globals["__name__"] = "__main__";
        globals["__file__"] = fileName;
        for (const Globals::Entry& entry : given.entries_) {
            switch (entry.kind) {
                case Kind::Object:
                    entry.object->getOwnLifetime()->addDependent(reach);
                    globals[entry.name.c_str()] = python::wrap(entry.object->makeRef(reach));
                    break;
                case Kind::Text:
                    globals[entry.name.c_str()] = py::str(entry.text);
                    break;
                case Kind::Number:
                    globals[entry.name.c_str()] = py::int_(entry.number);
                    break;
                case Kind::Json:
                    globals[entry.name.c_str()] = entry.text.empty()
                                                      ? py::object(py::none())
                                                      : py::module_::import("json").attr("loads")(entry.text);
                    break;
                case Kind::Dictionary: {
                    py::dict d;
                    for (const auto& [key, value] : entry.dictionary) d[py::str(key)] = py::str(value);
                    globals[entry.name.c_str()] = std::move(d);
                    break;
                }
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
        finishRecording();
        if (pathAdded) path.attr("remove")(py::str(directory));
        globals.clear();
        vel::diag::throwError(messages::Python::TemplateFailed, {fileName, text});
    }
    finishRecording();
    if (pathAdded) path.attr("remove")(py::str(directory));
    // Objects the template left in its globals are released now, not at exit.
    globals.clear();
}

namespace {

std::string readTemplate(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    if (!in) vel::diag::throwError(messages::Python::CannotReadTemplate, {path, "it cannot be opened"});
    std::ostringstream source;
    source << in.rdbuf();
    if (in.bad()) vel::diag::throwError(messages::Python::CannotReadTemplate, {path, "reading it failed"});
    return source.str();
}

std::string templateDirectory(const std::string& path) {
    std::error_code error;
    const std::filesystem::path absolute = std::filesystem::absolute(std::filesystem::u8path(path), error);
    return error ? std::string() : absolute.parent_path().string();
}

} // namespace

void PythonRuntime::runTemplate(const std::string& path, const Globals& globals) {
    run(readTemplate(path), path, templateDirectory(path), globals, nullptr);
}

void PythonRuntime::runTemplate(const std::string& path, const Globals& globals,
                                std::vector<std::string>& dependencies) {
    run(readTemplate(path), path, templateDirectory(path), globals, &dependencies);
}

void PythonRuntime::runTemplateText(const std::string& source, const std::string& fileName,
                                    const Globals& globals) {
    run(source, fileName, std::string(), globals, nullptr);
}

void PythonRuntime::start() {
    ensureStarted();
    py::gil_scoped_acquire gil;
    py::module_::import("velcg");
    dependencyRecorder();
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
    in.dependencyRecorder = py::object();
    python::releaseModule();
    py::finalize_interpreter();
    in.state = State::Finalized;
}

} // namespace VelCG
