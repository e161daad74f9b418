#pragma once

#include <cstdint>
#include <string>

#include "velcg/CachedAnswer.hpp"
#include "velcg/Export.hpp"
#include "velcg/VarGroup.hpp"

namespace coder {
class Repository;
namespace descriptor {
class CoderGroup;
} // namespace descriptor
} // namespace coder

namespace VelCG {

class CGModel;

// Model data of one kind gathered into a generated structure, with a naming
// rule for every identifier the generator emits for it. The rules are
// templates of literal text and "$" tokens that the code generator expands;
// this library only stores them.
//
// Abstract: the code generator derives its own group class and writes the
// group to its model file in WriteToBriskFile.
class VELCG_API CoderDataGroup {
public:
    enum class AsStructure : std::int32_t { InParent = 0, InSelf = 1, Standalone = 2, None = 3 };
    enum class DataInit : std::int32_t { Dynamic = 0, Static = 1, None = 2 };
    // Zero means instance-specific data; any other value shared data.
    enum class DataInstantiation : std::int32_t { InstanceSpecific = 0, Shared = 1 };

    // model is not owned; null for a group read back from a child model.
    CoderDataGroup(const std::string& name, const CGModel* model);
    CoderDataGroup(const CoderDataGroup&) = default;
    CoderDataGroup& operator=(const CoderDataGroup&) = default;
    virtual ~CoderDataGroup();

    virtual void WriteToBriskFile() const = 0;

    // The string forms of the enumerations; empty outside them.
    static const char* getAsStructureString(AsStructure value);
    static const char* getDataInitString(DataInit value);

    const std::string& name() const { return name_; }
    const std::string& getMemorySection() const { return memorySection_; }
    void setMemorySection(const std::string& v) { memorySection_ = v; }
    const std::string& getDataScope() const { return dataScope_; }
    void setDataScope(const std::string& v) { dataScope_ = v; }
    const std::string& getDescription() const { return description_; }
    void setDescription(const std::string& v) { description_ = v; }
    const std::string& getIdentification() const { return identification_; }
    void setIdentification(const std::string& v) { identification_ = v; }
    const std::string& getHeaderFileRule() const { return headerFileRule_; }
    void setHeaderFileRule(const std::string& v) { headerFileRule_ = v; }
    const std::string& getStructureTypeNameRule() const { return structureTypeNameRule_; }
    void setStructureTypeNameRule(const std::string& v) { structureTypeNameRule_ = v; }
    const std::string& getStructureInstanceNameRule() const { return structureInstanceNameRule_; }
    void setStructureInstanceNameRule(const std::string& v) { structureInstanceNameRule_ = v; }
    const std::string& getSelfStructureTypeNameRule() const { return selfStructureTypeNameRule_; }
    void setSelfStructureTypeNameRule(const std::string& v) { selfStructureTypeNameRule_ = v; }
    const std::string& getSelfStructureInstanceNameRule() const { return selfStructureInstanceNameRule_; }
    void setSelfStructureInstanceNameRule(const std::string& v) { selfStructureInstanceNameRule_ = v; }
    const std::string& getStructureReferenceNameRule() const { return structureReferenceNameRule_; }
    void setStructureReferenceNameRule(const std::string& v) { structureReferenceNameRule_ = v; }
    const std::string& getSelfStructureReferenceNameRule() const { return selfStructureReferenceNameRule_; }
    void setSelfStructureReferenceNameRule(const std::string& v) { selfStructureReferenceNameRule_ = v; }
    const std::string& getStructureArgumentNameRule() const { return structureArgumentNameRule_; }
    void setStructureArgumentNameRule(const std::string& v) { structureArgumentNameRule_ = v; }
    const std::string& getSelfStructureArgumentNameRule() const { return selfStructureArgumentNameRule_; }
    void setSelfStructureArgumentNameRule(const std::string& v) { selfStructureArgumentNameRule_ = v; }
    const std::string& getParameterAccessMacroNameRule() const { return parameterAccessMacroNameRule_; }
    void setParameterAccessMacroNameRule(const std::string& v) { parameterAccessMacroNameRule_ = v; }
    // Position in the owner's list; -1 until placed.
    int getGroupIndex() const { return groupIndex_; }
    void setGroupIndex(int v) { groupIndex_ = v; }
    AsStructure getAsStructure() const { return asStructure_; }
    void setAsStructure(AsStructure v) { asStructure_ = v; }
    DataInstantiation getDataInstantiation() const { return dataInstantiation_; }
    void setDataInstantiation(DataInstantiation v) { dataInstantiation_ = v; }
    DataInit getDataInit() const { return dataInit_; }
    void setDataInit(DataInit v) { dataInit_ = v; }
    bool getEmbedIntoSelf() const { return embedIntoSelf_; }
    void setEmbedIntoSelf(bool v) { embedIntoSelf_ = v; }
    bool getDefaultGroup() const { return defaultGroup_; }
    void setDefaultGroup(bool v) { defaultGroup_ = v; }
    bool getSynthesized() const { return synthesized_; }
    void setSynthesized(bool v) { synthesized_ = v; }
    bool getIsMemorySectionConst() const { return isMemorySectionConst_; }
    void setIsMemorySectionConst(bool v) { isMemorySectionConst_ = v; }
    bool getIsMemorySectionVolatile() const { return isMemorySectionVolatile_; }
    void setIsMemorySectionVolatile(bool v) { isMemorySectionVolatile_ = v; }
    void setRootGroupTypeName(const std::string& v);
    bool isSelfGroup() const { return selfGroup_; }
    void setSelfGroup(bool v) { selfGroup_ = v; }
    const CGModel* getCGModel() const { return model_; }

    bool getInstanceSpecific() const { return dataInstantiation_ == DataInstantiation::InstanceSpecific; }
    // True only for exactly "Exported".
    bool isDataScopeExported() const { return dataScope_ == "Exported"; }
    // Every coder data group is filed as hierarchical coder data.
    bool HasHierarchicalVarGroup() const { return true; }
    VarGroupEnum getVargroupCategory() const { return VarGroupEnum::HierarchicalCoderData; }

    // The type name of the group's root structure, cached once found: the
    // name of the code-generation type of the last variable group of the
    // root system that belongs to this group. The stored name as it is when
    // it is already set, when asStructure is None, or when there is no
    // model. A variable group naming a type that does not exist raises
    // "VelCG:Model:IndexOutOfRange". Safe on two threads at once (see
    // CachedAnswer).
    const std::string& getRootGroupTypeName() const;

    // Writes the group into the store: name, root type name, the naming
    // rules except the parameter access macro rule, the group size (1 for a
    // self group, else 0) and the as-structure string. REQUIRES: a
    // transaction is open on repository. Failures of getRootGroupTypeName
    // pass through.
    coder::descriptor::CoderGroup serialize(coder::Repository& repository) const;

private:
    std::string name_;
    std::string memorySection_;
    std::string dataScope_;
    std::string description_;
    std::string identification_;
    std::string headerFileRule_ = "$R.h";
    std::string structureTypeNameRule_ = "$R$N$G$M";
    std::string structureInstanceNameRule_ = "$G$N$M";
    std::string selfStructureTypeNameRule_ = "$R_IMPL$M";
    std::string selfStructureInstanceNameRule_ = "$N$M";
    std::string structureReferenceNameRule_ = "$N$G_ref$M";
    std::string selfStructureReferenceNameRule_ = "$N_ref$M";
    std::string structureArgumentNameRule_ = "$R$G_arg$M";
    std::string selfStructureArgumentNameRule_ = "self$M";
    std::string parameterAccessMacroNameRule_ = "$R$U$N";
    int groupIndex_ = -1;
    AsStructure asStructure_ = AsStructure::InParent;
    DataInstantiation dataInstantiation_ = DataInstantiation::InstanceSpecific;
    DataInit dataInit_ = DataInit::Dynamic;
    bool embedIntoSelf_ = false;
    bool defaultGroup_ = false;
    bool synthesized_ = false;
    bool isMemorySectionConst_ = false;
    bool isMemorySectionVolatile_ = false;
    const CGModel* model_;
    // Set, or found and kept; never empty.
    CachedAnswer<std::string> rootGroupTypeName_;
    bool selfGroup_ = false;
};

} // namespace VelCG
