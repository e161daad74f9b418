#include "velcg/CGTypeMember.hpp"

namespace VelCG {

CGTypeMember::~CGTypeMember() = default;

const char* CGTypeMember::getFullyQualifiedKorbTypeName() const { return "VelCG.CGTypeMember"; }

} // namespace VelCG
