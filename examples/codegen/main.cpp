// The example code generator: compiles the model "gain_model" into C
// sources with a code template written in Python.
//
//   velcg_example_codegen [output-directory [template.py]]
//
// The generated files build into a program that steps the model:
//   cc -o demo gain_model.c gain_model_main.c && ./demo
// Beside them it writes the model's code descriptor, codedescriptor.strata.
#include <cstdio>
#include <exception>
#include <filesystem>

#include "ExampleModel.hpp"
#include "vel/diag/Diagnostic.hpp"
#include "vel/i18n/Text.hpp"
#include "velcg/PythonRuntime.hpp"
#include "velcg/velcg.hpp"

int main(int argc, char** argv) {
    const std::string directory = argc > 1 ? argv[1] : "generated";
    const std::string templatePath = argc > 2 ? argv[2] : VELCG_EXAMPLE_TEMPLATE;
    try {
        std::filesystem::create_directories(directory);
        PlexoInitialize_velcg();

        std::unique_ptr<VelCG::CGModel> model = example::buildGainModel();
        // The model is complete: its description is written while the files
        // are generated (on a background thread, with the switch's default).
        const std::wstring buildDirectory = vel::i18n::toWide(directory);
        model->serializeModel(buildDirectory);
        VelCG::VelCGFileRepository repository;
        repository.createModuleHeaderFile("gain_model.h", {0});
        repository.createModuleSourceFile("gain_model.c", {0});
        repository.createDataTypesFile("gain_model_types.h");
        repository.createGenericFile("gain_model_main.c");

        // The template fills every file through the script bridge and
        // writes it into the output directory.
        VelCG::PythonRuntime::Globals globals;
        // The values a description's templateData would give: three steps
        // with gain 0.5.
        globals.add("model", *model)
            .add("repository", repository)
            .add("outputDirectory", directory)
            .add("options", std::vector<std::pair<std::string, std::string>>())
            .addJson("data", R"({"steps": 3, "gain": 0.5})");
        VelCG::PythonRuntime::runTemplate(templatePath, globals);
        // The scripts have run: add the coder data groups to the description.
        model->serializeModelAfterScriv(buildDirectory);

        std::printf(
            "Model gain_model: %zu system(s), %zu code-generation types, %zu variable groups, "
            "%zu block(s)\n",
            model->getSystems().size(), model->getVelCGTypes().size(), model->getVarGroups().size(),
            model->getBlockHierarchyMap()->getSubsystems().at(0)->getBlocks().size());
        for (const VelCG::VelCGFile* file : repository.getFileList()) {
            if (!file->isWrittenToDisk()) continue;
            const std::filesystem::path path = std::filesystem::path(directory) / file->getNameAscii();
            std::printf("  wrote %-40s %6ju bytes\n", path.string().c_str(),
                        static_cast<std::uintmax_t>(std::filesystem::file_size(path)));
        }
        // Destroying the model waits for the last pass.
        model.reset();
        std::printf(
            "  wrote %s\n",
            (std::filesystem::path(directory) / VelCG::CGModel::kCodeDescriptorFileName).string().c_str());
        VelCG::PythonRuntime::shutdown();
        PlexoTerminate_velcg();
        return 0;
    } catch (const vel::diag::Exception& e) {
        std::fprintf(stderr, "velcg_example_codegen: %s\n", e.what());
    } catch (const std::exception& e) {
        std::fprintf(stderr, "velcg_example_codegen: %s\n", e.what());
    }
    return 1;
}
