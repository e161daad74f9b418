// Lists what the library shows to a host: the classes of the package "VelCG"
// with their properties and methods, and the feature switches.
//
//   velcg_inspect classes [--markdown]
//   velcg_inspect features
#include <cstdio>
#include <cstring>
#include <string>

#include "korb/Binders.hpp"
#include "korb/ObjectSystem.hpp"
#include "vel/feature/Feature.hpp"
#include "vel/mi/HandleClass.hpp"
#include "velcg/PlexoModule.hpp"

namespace {

int usage() {
    std::fprintf(stderr, "usage: velcg_inspect classes [--markdown]\n       velcg_inspect features\n");
    return 2;
}

void printClasses(bool markdown) {
    auto classes = korb::ObjectSystem::instance().getPackageClasses(QueryPlexoFcnTable_velcg()->packageName);
    for (const vel::mi::HandleClass* c : classes) {
        std::string super = c->getSuperclassName().empty() ? "-" : c->getSuperclassName();
        if (markdown) {
            std::printf("## %s\n\n%s. Superclass: %s.%s\n\n", c->getQualifiedName().c_str(),
                        c->getDescription().c_str(), super.c_str(), c->isAbstract() ? " Abstract." : "");
            if (!c->getProperties().empty())
                std::printf("| property | host type | access |\n|---|---|---|\n");
            for (const auto& p : c->getProperties())
                std::printf("| %s | %s | %s |\n", p.name.c_str(), p.getter->hostTypeName().c_str(),
                            p.isReadOnly() ? "read-only" : "read-write");
            if (!c->getMethods().empty()) std::printf("\n| method | arguments |\n|---|---|\n");
            for (const auto& m : c->getMethods())
                std::printf("| %s | %zu |\n", m.name.c_str(), m.binder->arity());
            std::printf("\n");
        } else {
            std::printf("%s  (%s; superclass %s%s)\n", c->getQualifiedName().c_str(),
                        c->getDescription().c_str(), super.c_str(), c->isAbstract() ? "; abstract" : "");
            for (const auto& p : c->getProperties())
                std::printf("    %-32s %-24s %s\n", p.name.c_str(), p.getter->hostTypeName().c_str(),
                            p.isReadOnly() ? "read-only" : "read-write");
            for (const auto& m : c->getMethods())
                std::printf("    %s(%zu argument%s)\n", m.name.c_str(), m.binder->arity(),
                            m.binder->arity() == 1 ? "" : "s");
        }
    }
}

void printFeatures() {
    for (const vel::feature::Feature* f : vel::feature::Registry::all())
        std::printf("%-28s value %-4d default %-4d %-24s %s\n", f->name().c_str(), f->peek(),
                    f->defaultValue(), f->group().c_str(), f->description().c_str());
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 2) return usage();
    PlexoInitialize_velcg();
    if (!std::strcmp(argv[1], "classes")) {
        bool markdown = argc > 2 && !std::strcmp(argv[2], "--markdown");
        if (argc > 2 && !markdown) return usage();
        printClasses(markdown);
    } else if (!std::strcmp(argv[1], "features") && argc == 2) {
        printFeatures();
    } else {
        return usage();
    }
    PlexoTerminate_velcg();
    return 0;
}
