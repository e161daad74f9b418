#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "velcg/Export.hpp"

namespace vel::mi {
class Handle;
}

namespace VelCG {

// Runs template scripts written in Python inside the code generator's
// process (library velcg_python). The interpreter starts with the first
// template, once per process, and is released by shutdown() or, failing
// that, when the process exits; it is not started again afterwards.
// Templates see the module "velcg" built in, and the objects they are given
// as globals:
//
//   VelCG::PythonRuntime::Globals globals;
//   globals.add("model", model).add("repository", repository).add("outputDirectory", "gen");
//   VelCG::PythonRuntime::runTemplate("templates/module.py", globals);
//
// Failures are diagnostics:
//   "VelCG:Python:CannotReadTemplate"  the file cannot be read (path, reason)
//   "VelCG:Python:TemplateFailed"      the template raised (path, the Python
//                                      traceback and exception text)
//   "VelCG:Python:Finalized"           the interpreter has been shut down
// Templates may be run from any thread, one at a time per interpreter lock.
class VELCG_PYTHON_API PythonRuntime {
public:
    // Names and values a template finds among its globals. Objects are
    // passed by reference and are not owned. They, and every object reached
    // through them, serve the template only while it runs: afterwards (or
    // once the object begins to die) any use, from any thread the template
    // left running, raises velcg.Error ("Korb:InvalidHandle").
    class VELCG_PYTHON_API Globals {
    public:
        Globals();
        Globals(const Globals&);
        Globals(Globals&&) noexcept;
        Globals& operator=(const Globals&);
        Globals& operator=(Globals&&) noexcept;
        ~Globals();

        Globals& add(std::string name, vel::mi::Handle& object);
        Globals& add(std::string name, std::string text);
        Globals& add(std::string name, const char* text) { return add(std::move(name), std::string(text)); }
        Globals& add(std::string name, std::int64_t number);
        // A value given as JSON text (null for empty text), as json.loads
        // makes it.
        Globals& addJson(std::string name, std::string json);
        // A dict of text keys and text values.
        Globals& add(std::string name, std::vector<std::pair<std::string, std::string>> dictionary);

    private:
        friend class PythonRuntime;
        struct Entry; // defined by the runtime
        Globals& push(Entry entry);
        std::vector<Entry> entries_;
    };

    // Runs the Python file at path as a script ("__main__"-like globals plus
    // `globals`); its directory is on sys.path while it runs.
    static void runTemplate(const std::string& path, const Globals& globals);
    // The same, recording in `dependencies` what the template's output may
    // depend on, for a build system: the files of the modules it imported
    // from outside the standard library and the files it opened for
    // reading, as absolute paths, sorted, each once, the template itself
    // excluded. Recorded also when the template raises.
    static void runTemplate(const std::string& path, const Globals& globals,
                            std::vector<std::string>& dependencies);
    // The same for a template held in memory; fileName names it in tracebacks.
    static void runTemplateText(const std::string& source, const std::string& fileName,
                                const Globals& globals);

    // Starts the interpreter and loads the module velcg now rather than
    // with the first template, so that a caller can overlap the start with
    // work on other threads. Call it on the thread that runs the templates
    // (the interpreter's main thread is the one that starts it). Does
    // nothing once started; raises as runTemplate does when the interpreter
    // cannot start or has been shut down.
    static void start();
    static bool isRunning();
    // Releases the interpreter. Later templates raise "VelCG:Python:Finalized".
    static void shutdown();

private:
    static void run(const std::string& source, const std::string& fileName, const std::string& directory,
                    const Globals& globals, std::vector<std::string>* dependencies);
};

} // namespace VelCG
