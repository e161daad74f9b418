#include "velcg/StoredParameter.hpp"

namespace VelCG {

StoredParameter::~StoredParameter() = default;

} // namespace VelCG
