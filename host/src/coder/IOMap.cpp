#include "coder/descriptor/IOMap.hpp"

#include <cstdint>

#include "coder/Repository.hpp"

namespace coder::descriptor {

namespace {
enum List : std::size_t { kInportIndicesList, kOutportIndiciesList };
} // namespace

const RecordKind& IOMap::kind() {
    static const RecordKind kind{
        "IOMap",
        {},
        {
            {"InportIndices", nullptr, FieldType::Integer},
            {"OutportIndicies", nullptr, FieldType::Integer},
        },
    };
    return kind;
}

Sequence<IntegerArrayElement> IOMap::getInportIndices() const {
    return Sequence<IntegerArrayElement>(sequence(kInportIndicesList));
}
Sequence<IntegerArrayElement> IOMap::getOutportIndicies() const {
    return Sequence<IntegerArrayElement>(sequence(kOutportIndiciesList));
}

IOMapCreator::IOMapCreator(Repository& repository) : Creator(repository, IOMap::kind()) {}

IOMap IOMapCreator::createIOMap() { return objectAs<IOMap>(create()); }

} // namespace coder::descriptor
