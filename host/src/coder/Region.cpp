#include "coder/descriptor/Region.hpp"

#include <cstdint>

#include "coder/Repository.hpp"

namespace coder::descriptor {

namespace {
enum Field : std::size_t { kGroundLabel, kSource };
enum List : std::size_t { kDimensionsList };
} // namespace

const RecordKind& Region::kind() {
    static const RecordKind kind{
        "Region",
        {
            {"GroundLabel", FieldType::Text, false, nullptr, 0, 0},
            {"Source", FieldType::Text, false, nullptr, 0, 0},
        },
        {
            {"Dimensions", nullptr, FieldType::Integer},
        },
    };
    return kind;
}

ustring Region::getGroundLabel() const { return text(kGroundLabel); }
ustring Region::getSource() const { return text(kSource); }
Sequence<IntegerArrayElement> Region::getDimensions() const {
    return Sequence<IntegerArrayElement>(sequence(kDimensionsList));
}

RegionCreator::RegionCreator(Repository& repository) : Creator(repository, Region::kind()) {}

void RegionCreator::setGroundLabel(const ustring& value) { setText(kGroundLabel, value); }
void RegionCreator::setSource(const ustring& value) { setText(kSource, value); }

Region RegionCreator::createRegion() { return objectAs<Region>(create()); }

} // namespace coder::descriptor
