#include "korb/PackageInfo.hpp"

#include "korb/Client.hpp"
#include "korb/ObjectSystem.hpp"

namespace korb {

PackageInfo::~PackageInfo() = default;

void PackageInfo::terminate(Client& client) { client.getObjectSystem().removeClasses(getName()); }

} // namespace korb
