#include "velcg/CoderDataGroup.hpp"

#include "coder/descriptor/CoderGroup.hpp"
#include "vel/i18n/Text.hpp"
#include "velcg/CGModel.hpp"
#include "velcg/ModelDiagnostics.hpp"
#include "velcg/VarGroup.hpp"
#include "velcg/VelCGType.hpp"

namespace VelCG {

CoderDataGroup::CoderDataGroup(const std::string& name, const CGModel* model)
    : name_(name), identification_("Coder Group '" + name + "'"), model_(model) {}

CoderDataGroup::~CoderDataGroup() = default;

const char* CoderDataGroup::getAsStructureString(AsStructure value) {
    switch (value) {
        case AsStructure::InParent:
            return "InParent";
        case AsStructure::InSelf:
            return "InSelf";
        case AsStructure::Standalone:
            return "Standalone";
        case AsStructure::None:
            return "None";
    }
    return "";
}

const char* CoderDataGroup::getDataInitString(DataInit value) {
    switch (value) {
        case DataInit::Dynamic:
            return "Dynamic";
        case DataInit::Static:
            return "Static";
        case DataInit::None:
            return "None";
    }
    return "";
}

void CoderDataGroup::setRootGroupTypeName(const std::string& v) {
    if (v.empty())
        rootGroupTypeName_.clear();
    else
        rootGroupTypeName_.set(v);
}

const std::string& CoderDataGroup::getRootGroupTypeName() const {
    static const std::string none;
    if (const std::string* kept = rootGroupTypeName_.get()) return *kept;
    if (asStructure_ == AsStructure::None || !model_) return none;
    // The root system is the last system, or the one before it in a
    // model-reference target.
    const int rootIndex =
        static_cast<int>(model_->getSystems().size()) - (model_->getIsModelReferenceTarget() ? 2 : 1);
    // Every match overwrites: with several, the last one wins. Found aside,
    // so that a failure after an earlier match caches nothing.
    const std::string* found = nullptr;
    for (const VarGroup* group : model_->getVarGroups()) {
        if (group->getSystemIndex() != rootIndex || group->getCoderGroupIndex() != groupIndex_) continue;
        const int typeIndex = group->getCGTypeIndex();
        const VelCGType* type =
            typeIndex < 0 ? nullptr : model_->getVelCGType(static_cast<unsigned>(typeIndex));
        if (!type)
            throwIndexOutOfRange("the model's code-generation types", typeIndex,
                                 model_->getVelCGTypes().size());
        found = &type->getName();
    }
    return found && !found->empty() ? rootGroupTypeName_.keep(*found) : none;
}

coder::descriptor::CoderGroup CoderDataGroup::serialize(coder::Repository& repository) const {
    using vel::i18n::toUString;
    coder::descriptor::CoderGroupCreator creator(repository);
    creator.setName(toUString(name_));
    creator.setRootTypeName(toUString(getRootGroupTypeName()));
    creator.setStructureTypeNameRule(toUString(structureTypeNameRule_));
    creator.setStructureInstanceNameRule(toUString(structureInstanceNameRule_));
    creator.setSelfStructureTypeNameRule(toUString(selfStructureTypeNameRule_));
    creator.setStructureReferenceNameRule(toUString(structureReferenceNameRule_));
    creator.setSelfStructureReferenceNameRule(toUString(selfStructureReferenceNameRule_));
    creator.setStructureArgumentNameRule(toUString(structureArgumentNameRule_));
    creator.setSelfStructureArgumentNameRule(toUString(selfStructureArgumentNameRule_));
    creator.setHeaderFileRule(toUString(headerFileRule_));
    creator.setSelfStructureInstanceNameRule(toUString(selfStructureInstanceNameRule_));
    creator.setGroupSize(selfGroup_ ? 1 : 0);
    creator.setAsStructure(toUString(getAsStructureString(asStructure_)));
    return creator.createCoderGroup();
}

} // namespace VelCG
