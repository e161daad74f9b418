#include "coder/descriptor/Object.hpp"

#include "Store.hpp"
#include "coder/Messages.hpp"
#include "coder/descriptor/Sequence.hpp"
#include "vel/diag/Diagnostic.hpp"

namespace coder::descriptor {

coder::detail::Store& Object::checkedStore() const {
    if (isNull()) vel::diag::throwError(coder::messages::descriptor::NullObject, {});
    store_->requireOpen();
    return *store_;
}

void Object::raiseWrongKind(const Object& object, const RecordKind& expected) {
    vel::diag::throwError(coder::messages::descriptor::WrongKind, {expected.name, object.getKind()->name});
}

std::int64_t Object::getId() const {
    if (isNull()) vel::diag::throwError(coder::messages::descriptor::NullObject, {});
    return id_;
}

std::vector<FieldValue> Object::getFields() const { return checkedStore().readRow(*kind_, id_); }

FieldValue Object::getField(std::size_t field) const {
    auto row = checkedStore().readRow(*kind_, id_);
    if (field >= row.size())
        vel::diag::throwError(coder::messages::descriptor::IndexOutOfRange,
                              {std::to_string(field), std::to_string(row.size()), kind_->name});
    return std::move(row[field]);
}

std::size_t Object::getSequenceSize(std::size_t index) const { return sequence(index).size(); }

FieldValue Object::getSequenceElement(std::size_t index, std::size_t position) const {
    const detail::SequenceRef ref = sequence(index);
    if (kind_->sequences[index].element) return ref.objectAt(position);
    return ref.valueAt(position);
}

bool Object::boolean(std::size_t field) const { return std::get<bool>(getField(field)); }
std::int64_t Object::integer(std::size_t field) const { return std::get<std::int64_t>(getField(field)); }
double Object::real(std::size_t field) const { return std::get<double>(getField(field)); }

ustring Object::text(std::size_t field) const {
    FieldValue value = getField(field);
    if (auto* text = std::get_if<ustring>(&value)) return std::move(*text);
    return {}; // an absent optional field
}

bool Object::has(std::size_t field) const { return !std::holds_alternative<std::monostate>(getField(field)); }

Object Object::reference(std::size_t field) const {
    FieldValue value = getField(field);
    if (auto* object = std::get_if<Object>(&value)) return std::move(*object);
    return {};
}

void Object::setReference(std::size_t field, const Object& target) {
    auto& store = checkedStore();
    const FieldInfo& info = kind_->fields.at(field);
    if (target.isNull()) vel::diag::throwError(coder::messages::descriptor::NullObject, {});
    if (target.store_ != store_)
        vel::diag::throwError(coder::messages::descriptor::WrongRepository, {kind_->name, info.name});
    if (target.kind_ != &info.target()) raiseWrongKind(target, info.target());
    store.setReference(*kind_, field, id_, target.id_);
}

detail::SequenceRef Object::sequence(std::size_t index) const {
    checkedStore();
    if (index >= kind_->sequences.size())
        vel::diag::throwError(coder::messages::descriptor::IndexOutOfRange,
                              {std::to_string(index), std::to_string(kind_->sequences.size()), kind_->name});
    return detail::SequenceRef{store_, kind_, id_, index};
}

} // namespace coder::descriptor
