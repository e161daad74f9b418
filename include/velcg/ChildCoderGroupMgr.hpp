#pragma once

#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "vel/i18n/Text.hpp"
#include "velcg/ChildCoderGroupVarInfo.hpp"
#include "velcg/Export.hpp"

namespace VelCG {

class CoderDataGroup;

// The parent model's record of its child models' coder data groups and of
// the variables that carry them. Owns every group.
//
// Variables are keyed by group name alone (not by child model): two child
// models with a group of the same name share those entries, as group names
// are unique across the generated code.
class VELCG_API ChildCoderGroupMgr {
public:
    ChildCoderGroupMgr();
    ~ChildCoderGroupMgr();
    ChildCoderGroupMgr(const ChildCoderGroupMgr&) = delete;
    ChildCoderGroupMgr& operator=(const ChildCoderGroupMgr&) = delete;

    // Stores the group under its name for the child model, replacing (and
    // destroying) an earlier group of that name. A null group is refused.
    void setChildCoderGroup(vel::i18n::ustring childModel, std::unique_ptr<CoderDataGroup> group);
    // Null when the model or the group is unknown.
    const CoderDataGroup* getChildCoderGroup(vel::i18n::ustring childModel,
                                             const std::string& groupName) const;
    // Empty for an unknown model; otherwise in the manager's iteration order.
    std::vector<std::string> getChildCoderGroupNames(const vel::i18n::ustring& childModel) const;
    // The child models that have groups, in the manager's iteration order.
    std::vector<vel::i18n::ustring> getChildModelNames() const;
    // The first self group of the child model, or an empty string.
    std::string getChildSelfGroupName(const vel::i18n::ustring& childModel) const;

    // Records a variable carrying the child group for a model-reference
    // block. The group must have been set: an unknown model or group raises
    // "VelCG:Model:UnknownChildCoderGroup". Under one block the first
    // variable recorded for a group is kept; every call appends a record to
    // the group's variable list.
    void addVariableForChildGroup(vel::i18n::ustring childModel, const std::string& groupName,
                                  const std::string& varName, int compiledModelBlockIndex);
    // Empty for an unknown block; std::out_of_range ("invalid
    // unordered_map<K, T> key") for a known block without that group.
    std::string getChildCoderGroupVarName(const std::string& groupName, int compiledModelBlockIndex) const;
    // The group names that have variables, in the manager's iteration order.
    std::vector<std::string> getVariableGroupNames() const;
    // Null for an unknown group; valid until the next addition for it.
    const std::vector<ChildCoderGroupVarInfo>* getVarInfoForGroup(const std::string& groupName) const;

private:
    using GroupMap = std::unordered_map<std::string, std::unique_ptr<CoderDataGroup>>;
    using VarNameMap = std::unordered_map<std::string, std::string>;

    std::unordered_map<vel::i18n::ustring, std::unique_ptr<GroupMap>> groupsByChildModel_;
    std::unordered_map<int, std::unique_ptr<VarNameMap>> varNamesByBlock_;
    std::unordered_map<std::string, std::vector<ChildCoderGroupVarInfo>> varInfoByGroup_;
};

} // namespace VelCG
