#pragma once

#include <cstdint>

#include "coder/descriptor/IntegerArrayElement.hpp"
#include "coder/descriptor/RecordMembers.hpp"
#include "coder/descriptor/StringListElement.hpp"

// The fields and sequences of a ToAsyncQueueBlock record, in column order: see
// coder/descriptor/RecordMembers.hpp for the members each one declares.
#define CODER_DESCRIPTOR_TO_ASYNC_QUEUE_BLOCK(VALUE, OPTIONAL, REFERENCE, SEQUENCE) \
    VALUE(IsFixedPoint, bool)                                                       \
    VALUE(IsEnum, bool)                                                             \
    VALUE(DataTypeId, int32_t)                                                      \
    VALUE(DataTypeSize, int32_t)                                                    \
    VALUE(FxpNumericType, int32_t)                                                  \
    VALUE(FxpSignedness, uint32_t)                                                  \
    VALUE(FxpWordLength, int32_t)                                                   \
    VALUE(FxpFractionLength, int32_t)                                               \
    VALUE(FxpSlopeAdjFactor, double)                                                \
    VALUE(FxpFixedExponent, int32_t)                                                \
    VALUE(FxpBias, double)                                                          \
    VALUE(EnumClassName, ustring)                                                   \
    VALUE(EnumClassification, ustring)                                              \
    VALUE(IsComplex, bool)                                                          \
    VALUE(IsDiscrete, bool)                                                         \
    VALUE(IsVirtualBus, bool)                                                       \
    VALUE(IsNVBus, bool)                                                            \
    VALUE(IsVarDims, bool)                                                          \
    VALUE(BlockPath, ustring)                                                       \
    VALUE(BlockSID, ustring)                                                        \
    VALUE(PortNumber, int32_t)                                                      \
    VALUE(SignalName, ustring)                                                      \
    VALUE(ActSrcBlockPath, ustring)                                                 \
    VALUE(ActSrcBlockSID, ustring)                                                  \
    VALUE(ActSrcPortNumber, int32_t)                                                \
    VALUE(ActSrcDWorkName, ustring)                                                 \
    VALUE(ActSrcStartElement, int32_t)                                              \
    VALUE(SignalSourceUUID, ustring)                                                \
    VALUE(SignalSourceUUIDasInteger, int64_t)                                       \
    VALUE(UniqueId, uint32_t)                                                       \
    VALUE(Tid, int32_t)                                                             \
    VALUE(NVBusOffset, int64_t)                                                     \
    VALUE(IsLiveStreaming, bool)                                                    \
    VALUE(IsDeferredStreaming, bool)                                                \
    SEQUENCE(LeafElements, ToAsyncQueueBlock)                                       \
    SEQUENCE(EnumLabels, StringListElement)                                         \
    SEQUENCE(EnumValues, IntegerArrayElement)                                       \
    SEQUENCE(Dimensions, IntegerArrayElement)

namespace coder::descriptor {

// A signal sent to an asynchronous queue. A bus keeps its leaves nested in
// LeafElements.
class VELHOST_API ToAsyncQueueBlock : public Object {
    CODER_DESCRIPTOR_RECORD(CODER_DESCRIPTOR_TO_ASYNC_QUEUE_BLOCK)
};

class VELHOST_API ToAsyncQueueBlockCreator : public Creator {
    CODER_DESCRIPTOR_CREATOR(ToAsyncQueueBlock, CODER_DESCRIPTOR_TO_ASYNC_QUEUE_BLOCK)
};

} // namespace coder::descriptor
