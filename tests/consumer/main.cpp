// Uses the installed library through its public headers only: builds a
// small model, reads it back through the object system, fills and renders a
// generated file through the script bridge.
#include <cstdio>
#include <memory>

#include <boost/make_shared.hpp>

#include "korb/Client.hpp"
#include "korb/ObjectSystem.hpp"
#include "velcg/velcg.hpp"

int main() {
    PlexoInitialize_velcg();
    std::size_t classes = korb::ObjectSystem::instance().getPackageClasses("VelCG").size();

    VelCG::CGModel model;
    auto group = std::make_unique<VelCG::VarGroup>();
    group->setName("Signals");
    model.addVarGroup(std::move(group));
    korb::Client& client = korb::ObjectSystem::instance().getPublicClient();
    auto groups = client.getProperty(*client.wrap(model), "VarGroups");
    std::string category =
        client.getProperty(*tuvArray::objects({groups->handles().at(0)}), "Category")->toUtf8();

    VelCG::VelCGFileRepository repository;
    repository.createGenericFile("consumer.c");
    repository.scrivBridge().addSectionContent(
        0, "Functions",
        boost::make_shared<VelCG::StringFileSectionFragment>("int answer(void) { return 42; }\n"));
    std::string text = repository.scrivBridge().getStringAttribute(0, "Functions");

    std::printf("velcg consumer: %zu classes; group category %s; Functions section: %s", classes,
                category.c_str(), text.c_str());
    PlexoTerminate_velcg();
    return classes == 25 && category == "BlockIO" && text == "int answer(void) { return 42; }\n" ? 0 : 1;
}
