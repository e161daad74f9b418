#include "coder/descriptor/Sequence.hpp"

#include "Store.hpp"
#include "coder/Messages.hpp"
#include "vel/diag/Diagnostic.hpp"

namespace coder::descriptor {

namespace {
// A value list's element, as FieldValue holds it.
void checkValue(const FieldValue& value, const SequenceInfo& sequence) {
    const bool fits = sequence.valueType == FieldType::Integer ? std::holds_alternative<std::int64_t>(value)
                                                               : std::holds_alternative<ustring>(value);
    if (!fits)
        vel::diag::throwError(coder::messages::descriptor::WrongKind,
                              {sequence.name, "a value of another type"});
}
} // namespace

namespace detail {

std::size_t SequenceRef::size() const {
    store->requireOpen();
    return store->sequenceSize(*owner, index, ownerId);
}

Object SequenceRef::objectAt(std::size_t position) const {
    store->requireOpen();
    FieldValue value = store->sequenceElement(*owner, index, ownerId, position);
    return std::get<Object>(std::move(value));
}

void SequenceRef::appendObject(const Object& element) const {
    store->requireOpen();
    const SequenceInfo& info = owner->sequences[index];
    if (element.isNull()) vel::diag::throwError(coder::messages::descriptor::NullObject, {});
    if (element.store_ != store)
        vel::diag::throwError(coder::messages::descriptor::WrongRepository, {owner->name, info.name});
    if (!info.element || element.kind_ != &info.element()) Object::raiseWrongKind(element, info.element());
    store->append(*owner, index, ownerId, FieldValue(element));
}

FieldValue SequenceRef::valueAt(std::size_t position) const {
    store->requireOpen();
    return store->sequenceElement(*owner, index, ownerId, position);
}

void SequenceRef::appendValue(const FieldValue& value) const {
    store->requireOpen();
    checkValue(value, owner->sequences[index]);
    store->append(*owner, index, ownerId, value);
}

} // namespace detail

} // namespace coder::descriptor
