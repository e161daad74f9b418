#include "velcg/GraphicalBlockIF.hpp"

namespace VelCG {

GraphicalBlockIF::~GraphicalBlockIF() = default;

} // namespace VelCG
