#pragma once

#include <cstdint>

#include "coder/descriptor/GraphicalBlock.hpp"
#include "coder/descriptor/Object.hpp"

namespace coder::descriptor {

// One graphical subsystem and its blocks. SubsystemType is absent when the
// subsystem's type has no name.
class VELHOST_API GraphicalSystem : public Object {
public:
    static const RecordKind& kind();

    ustring getName() const;
    ustring getGraphicalName() const;
    bool hasSubsystemType() const;
    // Empty when absent.
    ustring getSubsystemType() const;
    ustring getMaskType() const;

    Sequence<GraphicalBlock> getGraphicalBlocks() const;
};

class VELHOST_API GraphicalSystemCreator : public Creator {
public:
    explicit GraphicalSystemCreator(Repository& repository);

    void setName(const ustring& value);
    void setGraphicalName(const ustring& value);
    void setSubsystemType(const ustring& value);
    void setMaskType(const ustring& value);

    GraphicalSystem createGraphicalSystem();
};

} // namespace coder::descriptor
