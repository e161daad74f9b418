#include "velcg/VelCGType.hpp"

#include "CG/Type.hpp"
#include "Messages.hpp"
#include "OwnedList.hpp"
#include "vel/diag/Diagnostic.hpp"
#include "velcg/CGModel.hpp"
#include "velcg/CGTypeMember.hpp"
#include "velcg/ModelDiagnostics.hpp"
#include "velcg/VelType.hpp"

namespace VelCG {

namespace {

[[noreturn]] void throwInvalidVelType() {
    vel::diag::throwErrorText(messages::Type::InvalidVelType, "No VelType For CGType");
}

template <class T>
const T* elementAt(const std::vector<T*>& list, int index, const char* what) {
    if (index < 0 || static_cast<std::size_t>(index) >= list.size())
        throwIndexOutOfRange(what, index, list.size());
    return list[static_cast<std::size_t>(index)];
}

} // namespace

VelCGType::~VelCGType() {
    endScriptAccess();
    detail::deleteAll(members_);
}

const char* VelCGType::getFullyQualifiedKorbTypeName() const { return "VelCG.VelCGType"; }

void VelCGType::addMember(std::unique_ptr<CGTypeMember> member) {
    detail::appendOwned(members_, std::move(member), "A type member");
}

void VelCGType::setMembers(const std::vector<CGTypeMember*>& members) {
    // Validate everything first: the current members are deleted, so a list
    // that still names one of them would leave dangling pointers.
    detail::checkReplacement(members_, members, "A member of type '" + name_ + "'");
    detail::replaceOwned(members_, members);
}

void VelCGType::setEmbeddedType(const CG::EmbeddedType* type) { embeddedType_.reset(type); }

void VelCGType::setEmbeddedTypeFromCGType(const CG::Type& irType) {
    // createFromIRType hands over one reference; adopt it without adding one.
    embeddedType_.reset(CG::EmbeddedType::createFromIRType(irType), false);
}

tuvArrayPtr VelCGType::getEmbeddedTypeAsTuvArray() const {
    return CG::EmbeddedType::toTuvArray(embeddedType_.get());
}

void VelCGType::setEmbeddedTypeFromTuvArray(const tuvArray&) {}

const std::string& VelCGType::getContainerTypeName() const {
    if (!name_.empty()) return name_;
    if (!model_) throwNoModel("Code-generation type");
    // Copies of the pointer lists, so that no reference into the model's
    // containers is held while the chain is followed.
    const std::vector<VelCGType*> cgTypes = model_->getVelCGTypes();
    const std::vector<VelType*> velTypes = model_->getVelTypes();

    const VelCGType* current = this;
    // A chain of matrix types longer than the list must revisit a type.
    for (std::size_t hops = 0;; ++hops) {
        if (!current->name_.empty()) return current->name_;
        if (current->constructor_ == "matrix") {
            if (hops > cgTypes.size())
                vel::diag::throwErrorText(
                    messages::Model::CyclicType,
                    "The matrix types starting at '" + name_ + "' form a cycle through their base indices.");
            current = elementAt(cgTypes, current->baseIndex_, "the model's code-generation types");
            continue;
        }
        if (current->constructor_ == "complex") {
            const VelCGType* base =
                elementAt(cgTypes, current->baseIndex_, "the model's code-generation types");
            if (base->velTypeIndex_ < 0) throwInvalidVelType();
            return elementAt(velTypes, base->velTypeIndex_, "the model's data types")->getComplexName();
        }
        if (current->velTypeIndex_ < 0) throwInvalidVelType();
        return elementAt(velTypes, current->velTypeIndex_, "the model's data types")->getName();
    }
}

} // namespace VelCG
