#pragma once

#include <cstdint>

#include "coder/descriptor/BlockHierarchyMap.hpp"
#include "coder/descriptor/CoderGroup.hpp"
#include "coder/descriptor/ExternalInput.hpp"
#include "coder/descriptor/IOMap.hpp"
#include "coder/descriptor/Object.hpp"
#include "coder/descriptor/System.hpp"
#include "coder/descriptor/ToAsyncQueueBlock.hpp"

namespace coder::descriptor {

// The description of one model: the root of a store. A store holds one
// model; ModelCreator::createModel replaces any description stored before.
class VELHOST_API Model : public Object {
public:
    static const RecordKind& kind();

    ustring getModelName() const;
    ustring getKordelVersion() const;
    ustring getSharedCodeManagerPath() const;
    // Null when not set.
    BlockHierarchyMap getBlockHierarchyMap() const;
    // Writes at once; needs an open transaction.
    void setBlockHierarchyMap(const BlockHierarchyMap& value);
    // Null when not set.
    IOMap getFPCInfo() const;
    // Writes at once; needs an open transaction.
    void setFPCInfo(const IOMap& value);

    Sequence<System> getSystems() const;
    Sequence<ExternalInput> getExternalInputs() const;
    Sequence<ToAsyncQueueBlock> getTAQBlocks() const;
    Sequence<CoderGroup> getCoderGroups() const;
};

class VELHOST_API ModelCreator : public Creator {
public:
    explicit ModelCreator(Repository& repository);

    void setModelName(const ustring& value);
    void setKordelVersion(const ustring& value);
    void setSharedCodeManagerPath(const ustring& value);

    // Replaces, in the open transaction, every record stored before.
    Model createModel();
};

} // namespace coder::descriptor
