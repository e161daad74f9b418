#include <gtest/gtest.h>

#include "korb/ObjectSystem.hpp"
#include "vel/mi/HandleClass.hpp"
#include "velcg/PlexoModule.hpp"

namespace {

// Renders the package's class table, one line per class in registration
// order: qualified name | description | superclass | abstract flag.
std::string classTable() {
    std::string out;
    for (const auto* c : korb::ObjectSystem::instance().getPackageClasses("VelCG"))
        out += c->getQualifiedName() + " | " + c->getDescription() + " | " + c->getSuperclassName() +
               (c->isAbstract() ? " | abstract" : "") + "\n";
    return out;
}

TEST(VelCGPackage, RegistersEveryClassInOrderWithItsDescriptionAndSuperclass) {
    PlexoInitialize_velcg();
    EXPECT_EQ(
        "VelCG.FileSection | Base file section | plexo.mixin.Heterogeneous\n"
        "VelCG.FunctionsSection | FunctionsSection | VelCG.FileSection\n"
        "VelCG.IncludesSection | Includes section | VelCG.FileSection\n"
        "VelCG.VelCGFile | Basic File Object | plexo.mixin.Heterogeneous | abstract\n"
        "VelCG.VelCGModuleFile | File section object | VelCG.VelCGFile\n"
        "VelCG.VelCGDataTypesFile | Data types file object | VelCG.VelCGFile\n"
        "VelCG.VelCGGenericFile | Generic file object | VelCG.VelCGFile\n"
        "VelCG.VelCGFileRepository | File Repository Object | plexo.mixin.Heterogeneous\n"
        "VelCG.System | VelCG System object | plexo.mixin.Heterogeneous\n"
        "VelCG.VelCGType | VelCG Type | plexo.mixin.Heterogeneous\n"
        "VelCG.CGTypeMember | VelCGType member | plexo.mixin.Heterogeneous\n"
        "VelCG.CGModel | CGModel object | plexo.mixin.Heterogeneous\n"
        "VelCG.VarGroup | VelCG VarGroup | plexo.mixin.Heterogeneous\n"
        "VelCG.VelType | VelType | plexo.mixin.Heterogeneous\n"
        "VelCG.ExternalInput | VelCG ExternalInput | plexo.mixin.Heterogeneous\n"
        "VelCG.BlockHierarchyMap | BHM object | plexo.mixin.Heterogeneous\n"
        "VelCG.GraphicalSubsystem | Graph obj | plexo.mixin.Heterogeneous\n"
        "VelCG.GraphicalBlock | VelCG Graphical block object | plexo.mixin.Heterogeneous\n"
        "VelCG.Port | VelCG Port object | plexo.mixin.Heterogeneous\n"
        "VelCG.Region | VelCG Region object | plexo.mixin.Heterogeneous\n"
        "VelCG.Parameter | VelCG Parameter object | plexo.mixin.Heterogeneous\n"
        "VelCG.State | VelCG State object | plexo.mixin.Heterogeneous\n"
        "VelCG.ModelParameter | VelCG Model Parameter object | plexo.mixin.Heterogeneous\n"
        "VelCG.ToAsyncQueueBlock | VelCG ToAsyncQueue block object | VelCG.GraphicalBlock\n"
        "VelCG.DataInterfaceRecord | VelCG  DataInterfaceRecord object | plexo.mixin.Heterogeneous\n",
        classTable());
}

} // namespace
