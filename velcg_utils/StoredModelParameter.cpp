#include "velcg/StoredModelParameter.hpp"

namespace VelCG {

StoredModelParameter::~StoredModelParameter() = default;

} // namespace VelCG
