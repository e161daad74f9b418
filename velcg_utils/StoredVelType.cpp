#include "velcg/StoredVelType.hpp"

namespace VelCG {

StoredVelType::~StoredVelType() = default;

std::string StoredVelType::getDescription() const {
    return description_ ? *description_ : VelType::getDescription();
}

const std::string& StoredVelType::getHeaderFile() const {
    return headerFile_ ? *headerFile_ : VelType::getHeaderFile();
}

} // namespace VelCG
