#include "velcg/VelType.hpp"

#include <unordered_set>

#include "Messages.hpp"
#include "vel/diag/Diagnostic.hpp"
#include "velcg/CGModel.hpp"
#include "velcg/ModelDiagnostics.hpp"
#include "velcg/VelCGType.hpp"

namespace VelCG {

VelType::~VelType() = default;

const char* VelType::getFullyQualifiedKorbTypeName() const { return "VelCG.VelType"; }

const std::string& VelType::getDTName() const { return dtName_; }
bool VelType::isShared() const { return false; }
bool VelType::isUserProvided() const { return false; }
std::string VelType::getDescription() const { return dtName_; }
int VelType::getIdAliasedTo() const { return kNoID; }
int VelType::getIdAliasedThruTo() const { return kNoID; }
const std::string& VelType::getHeaderFile() const { return dtName_; }
bool VelType::isEnumType() const { return false; }
bool VelType::isStructType() const { return false; }
bool VelType::isBus() const { return false; }

bool VelType::isAliasType() const { return getIdAliasedThruTo() != getID(); }

const std::string& VelType::getName() const {
    if (const std::string* kept = name_.get()) return *kept;
    if (cgTypeIdx_ < 0)
        vel::diag::throwErrorText(messages::Type::InvalidCGType, "VelType has invalid CGType");
    if (!model_) throwNoModel("VelType '" + getDTName() + "'");
    const auto& types = model_->getVelCGTypes();
    if (static_cast<std::size_t>(cgTypeIdx_) >= types.size())
        throwIndexOutOfRange("the model's code-generation types", cgTypeIdx_, types.size());
    const std::string& name = types[static_cast<std::size_t>(cgTypeIdx_)]->getName();
    static const std::string none;
    return name.empty() ? none : name_.keep(name);
}

const std::string& VelType::getComplexName() const {
    if (const std::string* kept = complexName_.get()) return *kept;
    static const std::unordered_set<std::string> kNeverComplex = {
        "boolean", "fcn_call", "pointer", "integer", "action", "timer_uint32_pair",
    };
    if (kNeverComplex.count(getDTName()))
        vel::diag::throwErrorText(messages::Type::NoComplex, "VelType cannot be complex");
    // Built from the code-generation name, although the test above uses the
    // data-type name.
    return complexName_.keep("c" + getName());
}

} // namespace VelCG
