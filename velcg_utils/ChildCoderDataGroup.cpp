#include "velcg/ChildCoderDataGroup.hpp"

namespace VelCG {

ChildCoderDataGroup::~ChildCoderDataGroup() = default;

void ChildCoderDataGroup::WriteToBriskFile() const {}

} // namespace VelCG
