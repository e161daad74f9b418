#include "velcg/ExternalInput.hpp"

#include "coder/descriptor/ExternalInput.hpp"
#include "vel/i18n/Text.hpp"
#include "velcg/CGModel.hpp"
#include "velcg/CGTypeMember.hpp"
#include "velcg/ModelDiagnostics.hpp"
#include "velcg/VarGroup.hpp"
#include "velcg/VelCGType.hpp"

namespace VelCG {

int ExternalInput::structAlignment_ = -1;

ExternalInput::~ExternalInput() = default;

const char* ExternalInput::getFullyQualifiedKorbTypeName() const { return "VelCG.ExternalInput"; }

int ExternalInput::getStructAlignment() { return structAlignment_; }
void ExternalInput::setStructAlignment(int alignment) { structAlignment_ = alignment; }

std::string ExternalInput::getRecordIdentifier() const {
    if (!model_ || varGroupIndex_ == -1) return identifier_;
    const VarGroup* group =
        varGroupIndex_ < 0 ? nullptr : model_->getVarGroup(static_cast<unsigned>(varGroupIndex_));
    if (!group)
        throwIndexOutOfRange("the model's variable groups", varGroupIndex_, model_->getVarGroups().size());
    const int typeIndex = group->getCGTypeIndex();
    const VelCGType* type = typeIndex < 0 ? nullptr : model_->getVelCGType(static_cast<unsigned>(typeIndex));
    if (!type)
        throwIndexOutOfRange("the model's code-generation types", typeIndex, model_->getVelCGTypes().size());
    const auto& members = type->getMembers();
    if (varGroupMemberIndex_ < 0 || static_cast<std::size_t>(varGroupMemberIndex_) >= members.size())
        throwIndexOutOfRange("the members of type '" + type->getName() + "'", varGroupMemberIndex_,
                             members.size());
    return members[static_cast<std::size_t>(varGroupMemberIndex_)]->getName();
}

coder::descriptor::ExternalInput ExternalInput::serialize(coder::Repository& repository) const {
    coder::descriptor::ExternalInputCreator creator(repository);
    creator.setCGTypeIndex(cgTypeIndex_);
    creator.setStorageClass(vel::i18n::toUString(storageClassString_));
    creator.setRequiresGlobalAccess(requiresGlobalAccess_);
    creator.setIdentifier(vel::i18n::toUString(getRecordIdentifier()));
    creator.setVarGroupIndex(varGroupIndex_);
    creator.setVarGroupMemberIndex(varGroupMemberIndex_);
    creator.setHasVarDims(hasVarDims_);
    creator.setCanonicalDimSizeDWorkIndex(canonicalDimSizeDWorkIndex_);
    creator.setHasCanonicalDimSizeDWorkIndex(hasCanonicalDimSizeDWorkIndex_);
    creator.setSizeVarGroupIndex(sizeVarGroupIndex_);
    creator.setSizeVarGroupMemberIndex(sizeVarGroupMemberIndex_);
    creator.setDimSizeDWork(dimSizeDWork_);
    creator.setPadding(padding_);
    return creator.createExternalInput();
}

} // namespace VelCG
