#pragma once

#include <string>

#include "vel/mi/Handle.hpp"
#include "velcg/Export.hpp"

namespace VelCG {

// One member of a structured code-generation type; owned by its VelCGType.
class VELCG_API CGTypeMember : public vel::mi::Handle {
public:
    CGTypeMember() = default;
    CGTypeMember(std::string name, int cgTypeIndex, int alignment = -1)
        : name_(std::move(name)), cgTypeIndex_(cgTypeIndex), alignment_(alignment) {}
    ~CGTypeMember() override;

    const char* getFullyQualifiedKorbTypeName() const override;

    const std::string& getName() const { return name_; }
    void setName(const std::string& name) { name_ = name; }
    // Index of the member's type in the model's code-generation type list.
    int getCGTypeIndex() const { return cgTypeIndex_; }
    void setCGTypeIndex(int index) { cgTypeIndex_ = index; }
    // -1 when unspecified.
    int getAlignment() const { return alignment_; }
    void setAlignment(int alignment) { alignment_ = alignment; }

private:
    std::string name_;
    int cgTypeIndex_ = 0;
    int alignment_ = -1;
};

} // namespace VelCG
