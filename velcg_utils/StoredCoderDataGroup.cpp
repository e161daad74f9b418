#include "velcg/StoredCoderDataGroup.hpp"

namespace VelCG {

StoredCoderDataGroup::~StoredCoderDataGroup() = default;

void StoredCoderDataGroup::WriteToBriskFile() const {}

} // namespace VelCG
