#include "Generate.hpp"

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "Messages.hpp"
#include "Module.hpp"
#include "Objects.hpp"
#include "vel/diag/Diagnostic.hpp"
#include "velcg/Generation.hpp"
#include "velcg/ModelDescription.hpp"
#include "velcg/VelCGFileRepository.hpp"

namespace VelCG::python {

namespace {

// A loaded description: its model and a repository holding its files, for
// a test to look at, until generate() consumes the model.
struct Description {
    std::string path;
    std::optional<ModelDescription> description;
    std::unique_ptr<VelCGFileRepository> repository;

    ModelDescription& get() {
        if (!description)
            vel::diag::throwErrorText(messages::Python::DescriptionUsed,
                                      "The description '" + path +
                                          "' has been generated already; load it again to generate again.");
        return *description;
    }
};

// A str or os.PathLike argument as text.
std::string pathText(const py::object& path) {
    return py::str(py::module_::import("os").attr("fspath")(path)).cast<std::string>();
}

std::shared_ptr<Description> load(const std::string& path) {
    auto loaded = std::make_shared<Description>();
    loaded->path = path;
    loaded->description = ModelDescription::load(path);
    loaded->repository = std::make_unique<VelCGFileRepository>();
    loaded->description->createFiles(*loaded->repository);
    return loaded;
}

py::object templateData(const std::string& json) {
    return json.empty() ? py::object(py::none()) : py::module_::import("json").attr("loads")(json);
}

// Runs the template file with the globals velcg-gen gives it, its
// directory first on sys.path while it runs.
void runTemplate(const std::string& path, py::dict globals) {
    py::module_ os = py::module_::import("os");
    py::object directory = os.attr("path").attr("dirname")(os.attr("path").attr("abspath")(path));
    py::list sysPath = py::module_::import("sys").attr("path");
    sysPath.insert(0, directory);
    try {
        py::object io = py::module_::import("io");
        py::object source = io.attr("open_code")(path).attr("read")();
        globals["__builtins__"] = py::module_::import("builtins");
        globals["__name__"] = "__main__";
        globals["__file__"] = path;
        py::object code = py::module_::import("builtins").attr("compile")(source, path, "exec");
        py::module_::import("builtins").attr("exec")(code, globals);
    } catch (...) {
        sysPath.attr("remove")(directory);
        throw;
    }
    sysPath.attr("remove")(directory);
}

py::dict generate(py::object description, const py::object& templateFile, const py::object& outputDirectory,
                  const py::object& options, bool check) {
    std::shared_ptr<Description> given = py::isinstance<Description>(description)
                                             ? description.cast<std::shared_ptr<Description>>()
                                             : load(pathText(description));
    const std::string templatePath = pathText(templateFile);
    py::dict optionsDict;
    if (!options.is_none()) {
        if (!py::isinstance<py::dict>(options)) throw py::type_error("options must be a dict of str to str");
        for (auto [key, value] : options.cast<py::dict>()) {
            if (!py::isinstance<py::str>(key) || !py::isinstance<py::str>(value))
                throw py::type_error("options maps str to str, like velcg-gen's -D KEY=VALUE");
            optionsDict[key] = value;
        }
    }
    Generation::Settings settings;
    settings.outputDirectory = std::filesystem::u8path(pathText(outputDirectory));
    settings.check = check;
    ModelDescription& model = given->get();
    const std::string data = model.templateData;
    std::unique_ptr<Generation> run;
    {
        // The lock may wait for another run: other Python threads go on.
        ModelDescription taken = std::move(model);
        given->description.reset();
        given->repository.reset();
        py::gil_scoped_release release;
        run = std::make_unique<Generation>(std::move(taken), settings);
    }
    py::dict globals;
    globals["model"] = wrap(run->model().makeRef());
    globals["repository"] = wrap(run->repository().makeRef());
    globals["outputDirectory"] = run->stagingDirectory().u8string();
    globals["options"] = optionsDict;
    globals["data"] = templateData(data);
    runTemplate(templatePath, globals);
    globals.clear();
    Generation::Result result;
    {
        py::gil_scoped_release release;
        result = run->finish();
        run.reset();
    }
    py::dict out;
    py::list written, unchanged, removed;
    for (const OutputDirectory::Change& c : result.changes) {
        switch (c.kind) {
            case OutputDirectory::Change::Kind::Added:
            case OutputDirectory::Change::Kind::Changed:
                written.append(c.name);
                break;
            case OutputDirectory::Change::Kind::Unchanged:
                unchanged.append(c.name);
                break;
            case OutputDirectory::Change::Kind::Removed:
                removed.append(c.name);
                break;
        }
    }
    out["written"] = written;
    out["unchanged"] = unchanged;
    out["removed"] = removed;
    out["level"] = result.level;
    out["blocks"] = result.blocks;
    return out;
}

} // namespace

void defineGenerate(py::module_& module) {
    py::class_<Description, std::shared_ptr<Description>>(
        module, "Description",
        "A model description loaded by velcg.load: its model and a repository holding its files.")
        .def_property_readonly(
            "model", [](Description& d) { return wrap(d.get().model->makeRef()); }, "The velcg.CGModel.")
        .def_property_readonly(
            "repository",
            [](Description& d) {
                d.get();
                return wrap(d.repository->makeRef());
            },
            "A velcg.VelCGFileRepository holding the described files.")
        .def_property_readonly(
            "data", [](Description& d) { return templateData(d.get().templateData); },
            "The description's \"templateData\" (None when it has none).")
        .def_property_readonly(
            "path", [](const Description& d) { return d.path; }, "The file it was loaded from.");

    module.def(
        "load", [](const py::object& path) { return load(pathText(path)); }, py::arg("path"),
        "Loads a model description (JSON) into a velcg.Description. Bad input raises velcg.Error "
        "with a \"VelCG:ModelDescription:...\" identifier.");
    module.def("generate", &generate, py::arg("description"), py::arg("template"),
               py::arg("output_directory"), py::arg("options") = py::none(), py::arg("check") = false,
               "Runs a template on a described model as velcg-gen does, and returns what changed:\n"
               "{'written': [...], 'unchanged': [...], 'removed': [...], 'level': int, 'blocks': int}.\n\n"
               "description -- a path, or a velcg.Description (used up: load it again to generate again)\n"
               "template -- the template's path; it gets the globals model, repository, outputDirectory,\n"
               "    options and data\n"
               "output_directory -- changed only as a whole and only where bytes change\n"
               "options -- a dict of str to str, as velcg-gen's -D KEY=VALUE\n"
               "check -- compare only: 'written' and 'removed' name what would change");
}

} // namespace VelCG::python
