#pragma once

#include <string>

#include "velcg/CoderDataGroup.hpp"
#include "velcg/Export.hpp"

namespace coder {
class Repository;
namespace descriptor {
class CoderGroup;
} // namespace descriptor
} // namespace coder

namespace VelCG {

// A coder data group of a referenced (child) model, as the parent model
// knows it. It belongs to no model and is never written to the generator's
// model file.
class VELCG_API ChildCoderDataGroup : public CoderDataGroup {
public:
    explicit ChildCoderDataGroup(const std::string& name) : CoderDataGroup(name, nullptr) {}
    // The group as a child model stored it: name, root type name, the
    // naming rules it holds, self group when its group size is positive, and
    // the as-structure value of its string ("InParent", "InSelf",
    // "Standalone"; anything else, whatever its case, is None). The other
    // fields keep their defaults. Store failures (a null group) pass through.
    explicit ChildCoderDataGroup(const coder::descriptor::CoderGroup& group);
    ~ChildCoderDataGroup() override;

    // Does nothing.
    void WriteToBriskFile() const override;
};

} // namespace VelCG
