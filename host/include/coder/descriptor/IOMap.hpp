#pragma once

#include <cstdint>

#include "coder/descriptor/Object.hpp"

namespace coder::descriptor {

// A function prototype's overwritable input/output pairs: element i of
// InportIndices and of OutportIndicies form one pair.
class VELHOST_API IOMap : public Object {
public:
    static const RecordKind& kind();

    Sequence<IntegerArrayElement> getInportIndices() const;
    Sequence<IntegerArrayElement> getOutportIndicies() const;
};

class VELHOST_API IOMapCreator : public Creator {
public:
    explicit IOMapCreator(Repository& repository);

    IOMap createIOMap();
};

} // namespace coder::descriptor
