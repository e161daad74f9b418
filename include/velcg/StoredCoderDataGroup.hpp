#pragma once

#include <string>

#include "velcg/CoderDataGroup.hpp"
#include "velcg/Export.hpp"

namespace VelCG {

// A coder data group of the model itself, every field stored, for tools
// that build a model without a code generator of their own. Unlike a
// ChildCoderDataGroup it belongs to its model, so that its root group type
// name is found among the model's variable groups.
class VELCG_API StoredCoderDataGroup : public CoderDataGroup {
public:
    // model is not owned.
    StoredCoderDataGroup(const std::string& name, const CGModel* model) : CoderDataGroup(name, model) {}
    ~StoredCoderDataGroup() override;

    // Does nothing: the group was not compiled by a code generator, so there
    // is no generator model file that it would belong to.
    void WriteToBriskFile() const override;
};

} // namespace VelCG
