#include "velcg/System.hpp"

#include "Serialization.hpp"
#include "coder/descriptor/System.hpp"
#include "vel/i18n/Text.hpp"
#include "velcg/GraphicalBlock.hpp"

namespace VelCG {

System::~System() = default;

const char* System::getFullyQualifiedKorbTypeName() const { return "VelCG.System"; }

std::string System::getSystemType() const { return {}; }
bool System::isRootSystem() const { return false; }
bool System::isAtomic() const { return false; }
std::string System::getName() const { return {}; }
bool System::isCalledByBlock() const { return false; }
bool System::isReusableLibrarySubsystem() const { return false; }

coder::descriptor::System System::serialize(coder::Repository& repository) const {
    coder::descriptor::SystemCreator creator(repository);
    creator.setIdentifier(vel::i18n::toUString(identifier_));
    creator.setName(vel::i18n::toUString(getName()));
    coder::descriptor::System system = creator.createSystem();
    const auto callSites = system.getGraphicalCallSites();
    for (GraphicalBlock* block : graphicalCallsites_)
        callSites.append(detail::nonNull(block, "A call-site block of a system").serialize(repository));
    return system;
}

} // namespace VelCG
