#include "velcg/VarGroup.hpp"

namespace VelCG {

VarGroup::~VarGroup() = default;

const char* VarGroup::getFullyQualifiedKorbTypeName() const { return "VelCG.VarGroup"; }

const char* VarGroup::getStringforCategory(VarGroupEnum category) {
    static const char* const kNames[] = {
        "ExternalInput",
        "ExternalOutput",
        "ExternalInputSize",
        "BlockIO",
        "ConstBlockIO",
        "DWork",
        "ExternalOutputSize",
        "Parameter",
        "ConstParameter",
        "ConstParameterWithInit",
        "ContStates",
        "ContStatesDisabled",
        "ContStatesDerivative",
        "ContStatesAbsoluteTolerance",
        "ZCSV",
        "ZCEvent",
        "MachineLocalData",
        "Self",
    };
    const auto value = static_cast<std::int32_t>(category);
    if (value >= 0 && value < static_cast<std::int32_t>(sizeof kNames / sizeof kNames[0]))
        return kNames[value];
    if (category == VarGroupEnum::HierarchicalCoderData) return "HierarchicalCoderData";
    return "";
}

std::vector<std::string> getSysName(const std::string& qualifiedName) {
    std::vector<std::string> parts(2);
    const auto lt = qualifiedName.find('<');
    const auto gt = qualifiedName.find('>');
    const auto slash = qualifiedName.find('/');
    if (lt != std::string::npos) {
        if (gt == std::string::npos) return parts;
        // Signed: a '>' before the '<' gives no system part.
        if (static_cast<long long>(gt) - static_cast<long long>(lt) >= 2)
            parts[0] = qualifiedName.substr(lt + 1, gt - lt - 1);
    }
    if (gt == std::string::npos || slash == std::string::npos) return parts;
    parts[1] = qualifiedName.substr(slash + 1);
    return parts;
}

} // namespace VelCG
