#include "korb/ClassInfo.hpp"

#include <utility>

namespace korb {

ClassInfo::ClassInfo(std::string shortName, std::string description, Declare declare, bool isAbstract)
    : HandleClass(std::move(shortName), std::move(description)),
      declare_(std::move(declare)),
      abstract_(isAbstract) {}

std::unique_ptr<ClassInfo> ClassInfo::make(std::string shortName, std::string description, Declare declare,
                                           bool isAbstract) {
    return std::make_unique<ClassInfo>(std::move(shortName), std::move(description), std::move(declare),
                                       isAbstract);
}

void ClassInfo::registerMembers() {
    if (declare_) declare_(*this);
}

} // namespace korb
