// Uses the installed library through its public headers only.
#include <cstdio>

#include "korb/ObjectSystem.hpp"
#include "velcg/velcg.hpp"

int main() {
    PlexoInitialize_velcg();
    auto classes = korb::ObjectSystem::instance().getPackageClasses("VelCG");
    const PlexoFcnTable* table = QueryPlexoFcnTable_velcg();
    std::printf("velcg consumer: package %s with %zu classes, VelCGDirectEmitSerialize=%d\n",
                table->packageName, classes.size(), VELFEAT_VelCGDirectEmitSerialize.peek());
    PlexoTerminate_velcg();
    return classes.empty() ? 1 : 0;
}
