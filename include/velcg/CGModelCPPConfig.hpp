#pragma once

#include <string>

#include "velcg/Export.hpp"

namespace VelCG {

// Settings used when the model is generated as a C++ class. The accessor
// method names are fixed at construction.
class VELCG_API CGModelCPPConfig {
public:
    CGModelCPPConfig();

    bool isCPPClassGenMode() const { return isCPPClassGenMode_; }
    void setIsCPPClassGenMode(bool value) { isCPPClassGenMode_ = value; }
    bool genInternalMemberAccessMethods() const { return genInternalMemberAccessMethods_; }
    void setGenInternalMemberAccessMethods(bool value) { genInternalMemberAccessMethods_ = value; }
    bool internalMembersPubliclyVisible() const { return internalMembersPubliclyVisible_; }
    void setInternalMembersPubliclyVisible(bool value) { internalMembersPubliclyVisible_ = value; }

    const std::string& getBlockSignalsGetMethodName() const { return blockSignalsGetMethodName_; }
    const std::string& getBlockSignalsSetMethodName() const { return blockSignalsSetMethodName_; }
    const std::string& getDWorkGetMethodName() const { return dWorkGetMethodName_; }
    const std::string& getDWorkSetMethodName() const { return dWorkSetMethodName_; }

private:
    bool isCPPClassGenMode_ = false;
    bool genInternalMemberAccessMethods_ = false;
    bool internalMembersPubliclyVisible_ = false;
    std::string blockSignalsGetMethodName_;
    std::string blockSignalsSetMethodName_;
    std::string dWorkGetMethodName_;
    std::string dWorkSetMethodName_;
};

} // namespace VelCG
