#pragma once

#include <string>

#include "velcg/CoderDataGroup.hpp"
#include "velcg/Export.hpp"

namespace VelCG {

// A coder data group of a referenced (child) model, as the parent model
// knows it. It belongs to no model and is never written to the generator's
// model file.
class VELCG_API ChildCoderDataGroup : public CoderDataGroup {
public:
    explicit ChildCoderDataGroup(const std::string& name) : CoderDataGroup(name, nullptr) {}
    ~ChildCoderDataGroup() override;

    // Does nothing.
    void WriteToBriskFile() const override;
};

} // namespace VelCG
