#include "velcg/ChildCoderGroupMgr.hpp"

#include <stdexcept>

#include "vel/diag/Diagnostic.hpp"
#include "velcg/CoderDataGroup.hpp"
#include "velcg/ModelDiagnostics.hpp"

namespace VelCG {

ChildCoderGroupMgr::ChildCoderGroupMgr() = default;
ChildCoderGroupMgr::~ChildCoderGroupMgr() = default;

void ChildCoderGroupMgr::setChildCoderGroup(vel::i18n::ustring childModel,
                                            std::unique_ptr<CoderDataGroup> group) {
    if (!group) throwNullArgument("A child coder data group");
    auto model = groupsByChildModel_.find(childModel);
    if (model == groupsByChildModel_.end()) {
        // Build the inner map whole before inserting it, so that no model is
        // ever recorded without its map.
        auto groups = std::make_unique<GroupMap>();
        const std::string name = group->name();
        groups->emplace(name, std::move(group));
        groupsByChildModel_.emplace(std::move(childModel), std::move(groups));
        return;
    }
    // Replace: the earlier group of that name is destroyed. The slot is
    // found or made first, so a failure leaves the earlier group in place.
    (*model->second)[group->name()] = std::move(group);
}

const CoderDataGroup* ChildCoderGroupMgr::getChildCoderGroup(vel::i18n::ustring childModel,
                                                             const std::string& groupName) const {
    auto model = groupsByChildModel_.find(childModel);
    if (model == groupsByChildModel_.end()) return nullptr;
    auto group = model->second->find(groupName);
    return group == model->second->end() ? nullptr : group->second.get();
}

std::vector<std::string> ChildCoderGroupMgr::getChildCoderGroupNames(
    const vel::i18n::ustring& childModel) const {
    std::vector<std::string> names;
    auto model = groupsByChildModel_.find(childModel);
    if (model == groupsByChildModel_.end()) return names;
    for (const auto& entry : *model->second) names.push_back(entry.second->name());
    return names;
}

std::vector<vel::i18n::ustring> ChildCoderGroupMgr::getChildModelNames() const {
    std::vector<vel::i18n::ustring> names;
    names.reserve(groupsByChildModel_.size());
    for (const auto& entry : groupsByChildModel_) names.push_back(entry.first);
    return names;
}

std::string ChildCoderGroupMgr::getChildSelfGroupName(const vel::i18n::ustring& childModel) const {
    auto model = groupsByChildModel_.find(childModel);
    if (model == groupsByChildModel_.end()) return {};
    for (const auto& entry : *model->second)
        if (entry.second->isSelfGroup()) return entry.second->name();
    return {};
}

void ChildCoderGroupMgr::addVariableForChildGroup(vel::i18n::ustring childModel, const std::string& groupName,
                                                  const std::string& varName, int compiledModelBlockIndex) {
    const CoderDataGroup* group = getChildCoderGroup(childModel, groupName);
    if (!group)
        vel::diag::throwErrorText(messages::Model::UnknownChildCoderGroup,
                                  "Child model '" + vel::i18n::toUtf8(childModel) +
                                      "' has no coder data group '" + groupName + "'.");
    ChildCoderGroupVarInfo info(group->getRootGroupTypeName(), varName, compiledModelBlockIndex);
    auto& infos = varInfoByGroup_[groupName];
    infos.reserve(infos.size() + 1); // the final append cannot fail
    // The first variable recorded for a group under a block is kept. The
    // block's map is built before it is inserted, so that no block is ever
    // recorded without one.
    auto block = varNamesByBlock_.find(compiledModelBlockIndex);
    if (block == varNamesByBlock_.end()) {
        auto names = std::make_unique<VarNameMap>();
        names->emplace(groupName, varName);
        varNamesByBlock_.emplace(compiledModelBlockIndex, std::move(names));
    } else {
        block->second->emplace(groupName, varName);
    }
    infos.push_back(std::move(info));
}

std::string ChildCoderGroupMgr::getChildCoderGroupVarName(const std::string& groupName,
                                                          int compiledModelBlockIndex) const {
    auto block = varNamesByBlock_.find(compiledModelBlockIndex);
    if (block == varNamesByBlock_.end()) return {};
    auto var = block->second->find(groupName);
    if (var == block->second->end()) throw std::out_of_range("invalid unordered_map<K, T> key");
    return var->second;
}

std::vector<std::string> ChildCoderGroupMgr::getVariableGroupNames() const {
    std::vector<std::string> names;
    names.reserve(varInfoByGroup_.size());
    for (const auto& entry : varInfoByGroup_) names.push_back(entry.first);
    return names;
}

const std::vector<ChildCoderGroupVarInfo>* ChildCoderGroupMgr::getVarInfoForGroup(
    const std::string& groupName) const {
    auto it = varInfoByGroup_.find(groupName);
    return it == varInfoByGroup_.end() ? nullptr : &it->second;
}

} // namespace VelCG
