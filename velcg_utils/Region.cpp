#include "velcg/Region.hpp"

#include "coder/descriptor/Region.hpp"
#include "vel/i18n/Text.hpp"

namespace VelCG {

namespace {

bool isScalar(const std::vector<int>& dims) { return dims.size() == 1 && dims.front() == 1; }

} // namespace

Region::Region(const Region& other)
    : vel::mi::Handle(other),
      source_(other.source_),
      dimensions_(other.dimensions_ ? std::make_unique<std::vector<int>>(*other.dimensions_) : nullptr),
      dataInterface_(other.dataInterface_),
      offset_(other.offset_),
      functionArgumentIdx_(other.functionArgumentIdx_) {}

Region& Region::operator=(const Region& other) {
    if (this == &other) return *this;
    // Everything that can fail comes first, so a failed copy changes nothing.
    std::string source = other.source_;
    auto dimensions = other.dimensions_ ? std::make_unique<std::vector<int>>(*other.dimensions_) : nullptr;
    vel::mi::Handle::operator=(other);
    source_.swap(source);
    dimensions_ = std::move(dimensions);
    dataInterface_ = other.dataInterface_;
    offset_ = other.offset_;
    functionArgumentIdx_ = other.functionArgumentIdx_;
    return *this;
}

Region::~Region() = default;

const std::vector<int>& Region::getDimensions() const {
    static const std::vector<int> scalar{1};
    return dimensions_ ? *dimensions_ : scalar;
}

void Region::setDimensions(const std::vector<int>& dims) {
    if (dimensions_)
        *dimensions_ = dims;
    else if (!isScalar(dims))
        dimensions_ = std::make_unique<std::vector<int>>(dims);
}

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
    for (int dimension : getDimensions())
        dimensions.append(coder::descriptor::IntegerArrayElement(dimension));
    return region;
}

} // namespace VelCG
