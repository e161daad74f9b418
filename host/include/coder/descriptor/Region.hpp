#pragma once

#include <cstdint>

#include "coder/descriptor/Object.hpp"

namespace coder::descriptor {

// One contiguous piece of the signal at a port.
class VELHOST_API Region : public Object {
public:
    static const RecordKind& kind();

    ustring getGroundLabel() const;
    ustring getSource() const;

    Sequence<IntegerArrayElement> getDimensions() const;
};

class VELHOST_API RegionCreator : public Creator {
public:
    explicit RegionCreator(Repository& repository);

    void setGroundLabel(const ustring& value);
    void setSource(const ustring& value);

    Region createRegion();
};

} // namespace coder::descriptor
