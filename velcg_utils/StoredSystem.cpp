#include "velcg/StoredSystem.hpp"

namespace VelCG {

StoredSystem::~StoredSystem() = default;

} // namespace VelCG
