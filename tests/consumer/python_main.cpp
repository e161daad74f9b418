// Runs a Python template through the installed runtime: the template reads
// the model through the module velcg and fills a file through the bridge.
#include <cstdio>
#include <memory>
#include <string>

#include "vel/diag/Diagnostic.hpp"
#include "velcg/PythonRuntime.hpp"
#include "velcg/velcg.hpp"

int main() {
    PlexoInitialize_velcg();
    VelCG::CGModel model;
    auto group = std::make_unique<VelCG::VarGroup>();
    group->setName("Signals");
    model.addVarGroup(std::move(group));
    VelCG::VelCGFileRepository repository;
    repository.createGenericFile("consumer.c");

    try {
        VelCG::PythonRuntime::Globals globals;
        globals.add("model", model).add("repository", repository);
        VelCG::PythonRuntime::runTemplateText(
            "import velcg\n"
            "group = model.VarGroups[0]\n"
            "velcg.bridge(repository).addSectionContent(0, 'Functions', f'/* {group.Name}: {group.Category} "
            "*/\\n')\n",
            "consumer_template.py", globals);
    } catch (const vel::diag::Exception& e) {
        std::fprintf(stderr, "velcg python consumer: %s\n", e.what());
        return 1;
    }
    const std::string text = repository.scrivBridge().getStringAttribute(0, "Functions");
    std::printf("velcg python consumer: Functions section: %s", text.c_str());
    VelCG::PythonRuntime::shutdown();
    PlexoTerminate_velcg();
    return text == "/* Signals: BlockIO */\n" ? 0 : 1;
}
