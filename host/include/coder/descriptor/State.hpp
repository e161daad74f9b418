#pragma once

#include <cstdint>

#include "coder/descriptor/Object.hpp"

namespace coder::descriptor {

// A continuous state or derivative of a block.
class VELHOST_API State : public Object {
public:
    static const RecordKind& kind();

    Sequence<IntegerArrayElement> getDimensions() const;
};

class VELHOST_API StateCreator : public Creator {
public:
    explicit StateCreator(Repository& repository);

    State createState();
};

} // namespace coder::descriptor
