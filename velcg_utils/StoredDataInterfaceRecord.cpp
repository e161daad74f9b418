#include "velcg/StoredDataInterfaceRecord.hpp"

namespace VelCG {

StoredDataInterfaceRecord::~StoredDataInterfaceRecord() = default;

} // namespace VelCG
