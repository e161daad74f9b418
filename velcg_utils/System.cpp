#include "velcg/System.hpp"

namespace VelCG {

System::~System() = default;

const char* System::getFullyQualifiedKorbTypeName() const { return "VelCG.System"; }

std::string System::getSystemType() const { return {}; }
bool System::isRootSystem() const { return false; }
bool System::isAtomic() const { return false; }
std::string System::getName() const { return {}; }
bool System::isCalledByBlock() const { return false; }
bool System::isReusableLibrarySubsystem() const { return false; }

} // namespace VelCG
