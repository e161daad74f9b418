#pragma once

#include <string>

#include "velcg/Export.hpp"
#include "velcg/GraphicalSubsystem.hpp"

namespace VelCG {

// A GraphicalSubsystem answering its name, modelling-environment name, type
// and mask type from stored values, for tools that build a model without a
// modelling environment.
class VELCG_API StoredGraphicalSubsystem : public GraphicalSubsystem {
public:
    StoredGraphicalSubsystem() = default;
    StoredGraphicalSubsystem(std::wstring name, GraphicalSubsystemType type);
    ~StoredGraphicalSubsystem() override;

    std::wstring getName() const override { return name_; }
    std::wstring getVelName() const override { return velName_; }
    GraphicalSubsystemType getType() const override { return type_; }
    std::wstring getMaskType() const override { return maskType_; }

    void setName(const std::wstring& value) { name_ = value; }
    void setVelName(const std::wstring& value) { velName_ = value; }
    void setType(GraphicalSubsystemType value) { type_ = value; }
    void setMaskType(const std::wstring& value) { maskType_ = value; }

private:
    std::wstring name_;
    std::wstring velName_;
    GraphicalSubsystemType type_ = GraphicalSubsystemType::Unknown;
    std::wstring maskType_;
};

} // namespace VelCG
