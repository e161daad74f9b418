#pragma once

#include <string>

#include "velcg/Export.hpp"
#include "velcg/System.hpp"

namespace VelCG {

// A System answering its identity queries (name, system type, root, atomic,
// called by a block, reusable library subsystem) from stored fields, for
// tools that build a model without a code generator of their own.
class VELCG_API StoredSystem : public System {
public:
    StoredSystem() = default;
    explicit StoredSystem(std::string name) : name_(std::move(name)) {}
    ~StoredSystem() override;

    std::string getSystemType() const override { return systemType_; }
    bool isRootSystem() const override { return isRootSystem_; }
    bool isAtomic() const override { return isAtomic_; }
    std::string getName() const override { return name_; }
    bool isCalledByBlock() const override { return isCalledByBlock_; }
    bool isReusableLibrarySubsystem() const override { return isReusableLibrarySubsystem_; }

    void setSystemType(const std::string& value) { systemType_ = value; }
    void setIsRootSystem(bool value) { isRootSystem_ = value; }
    void setIsAtomic(bool value) { isAtomic_ = value; }
    void setName(const std::string& value) { name_ = value; }
    void setIsCalledByBlock(bool value) { isCalledByBlock_ = value; }
    void setIsReusableLibrarySubsystem(bool value) { isReusableLibrarySubsystem_ = value; }

private:
    std::string name_;
    std::string systemType_;
    bool isRootSystem_ = false;
    bool isAtomic_ = false;
    bool isCalledByBlock_ = false;
    bool isReusableLibrarySubsystem_ = false;
};

} // namespace VelCG
