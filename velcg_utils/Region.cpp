#include "velcg/Region.hpp"

#include "coder/descriptor/Region.hpp"
#include "vel/i18n/Text.hpp"

namespace VelCG {

Region::~Region() = default;

const char* Region::getFullyQualifiedKorbTypeName() const { return "VelCG.Region"; }

std::string Region::getBusSelElIdx() const { return {}; }
std::string Region::getBusSelElCGTypeId() const { return {}; }
int Region::getGroundDataTypeIdx() const { return -1; }
std::wstring Region::getGroundLabel() const { return {}; }
bool Region::getGroundIsComplex() const { return false; }
bool Region::getGroundIsSynthesized() const { return false; }
void Region::setBusSelElIdx(const std::string&) {}
void Region::setBusSelElCGTypeId(const std::string&) {}
void Region::setGroundDataTypeIdx(int) {}
void Region::setGroundLabel(const std::wstring&) {}
void Region::setGroundIsComplex(bool) {}
void Region::setGroundIsSynthesized(bool) {}

void Region::setDataInterface(const CG::DataInterface* dataInterface) { dataInterface_.reset(dataInterface); }

tuvArrayPtr Region::getDataInterfaceAsTuvArray() const {
    return CG::DataInterface::toTuvArray(dataInterface_.get());
}

coder::descriptor::Region Region::serialize(coder::Repository& repository) const {
    coder::descriptor::RegionCreator creator(repository);
    creator.setGroundLabel(vel::i18n::toUString(getGroundLabel()));
    creator.setSource(vel::i18n::toUString(source_));
    coder::descriptor::Region region = creator.createRegion();
    const auto dimensions = region.getDimensions();
    for (int dimension : dimensions_) dimensions.append(coder::descriptor::IntegerArrayElement(dimension));
    return region;
}

} // namespace VelCG
