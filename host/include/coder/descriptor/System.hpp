#pragma once

#include <cstdint>

#include "coder/descriptor/GraphicalBlock.hpp"
#include "coder/descriptor/Object.hpp"

namespace coder::descriptor {

// One generated system and the blocks that call it.
class VELHOST_API System : public Object {
public:
    static const RecordKind& kind();

    ustring getIdentifier() const;
    ustring getName() const;

    Sequence<GraphicalBlock> getGraphicalCallSites() const;
};

class VELHOST_API SystemCreator : public Creator {
public:
    explicit SystemCreator(Repository& repository);

    void setIdentifier(const ustring& value);
    void setName(const ustring& value);

    System createSystem();
};

} // namespace coder::descriptor
