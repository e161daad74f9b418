#pragma once

#include "coder/descriptor/BlockHierarchyMap.hpp"
#include "coder/descriptor/CoderGroup.hpp"
#include "coder/descriptor/ExternalInput.hpp"
#include "coder/descriptor/IOMap.hpp"
#include "coder/descriptor/RecordMembers.hpp"
#include "coder/descriptor/System.hpp"
#include "coder/descriptor/ToAsyncQueueBlock.hpp"

// The fields and sequences of a Model record, in column order: see
// coder/descriptor/RecordMembers.hpp for the members each one declares.
#define CODER_DESCRIPTOR_MODEL(VALUE, OPTIONAL, REFERENCE, SEQUENCE) \
    VALUE(ModelName, ustring)                                        \
    VALUE(KordelVersion, ustring)                                    \
    VALUE(SharedCodeManagerPath, ustring)                            \
    REFERENCE(BlockHierarchyMap, BlockHierarchyMap)                  \
    REFERENCE(FPCInfo, IOMap)                                        \
    SEQUENCE(Systems, System)                                        \
    SEQUENCE(ExternalInputs, ExternalInput)                          \
    SEQUENCE(TAQBlocks, ToAsyncQueueBlock)                           \
    SEQUENCE(CoderGroups, CoderGroup)

namespace coder::descriptor {

// The description of one model: the root of a store. A store holds one
// model: ModelCreator::createModel replaces, in the open transaction, every
// record stored before.
class VELHOST_API Model : public Object {
    CODER_DESCRIPTOR_RECORD(CODER_DESCRIPTOR_MODEL)
};

class VELHOST_API ModelCreator : public Creator {
    CODER_DESCRIPTOR_CREATOR(Model, CODER_DESCRIPTOR_MODEL)
};

} // namespace coder::descriptor
