#include "coder/descriptor/Object.hpp"

#include <cmath>

#include "Store.hpp"
#include "coder/Repository.hpp"
#include "vel/diag/Diagnostic.hpp"

namespace coder::descriptor {

namespace {
// A value list's element, as FieldValue holds it.
void checkValue(const FieldValue& value, const SequenceInfo& sequence) {
    const bool fits = sequence.valueType == FieldType::Integer ? std::holds_alternative<std::int64_t>(value)
                                                               : std::holds_alternative<ustring>(value);
    if (!fits)
        vel::diag::throwError("coder:descriptor:WrongKind", {sequence.name, "a value of another type"});
}
} // namespace

coder::detail::Store& Object::checkedStore() const {
    if (isNull()) vel::diag::throwError("coder:descriptor:NullObject", {});
    store_->requireOpen();
    return *store_;
}

void Object::raiseWrongKind(const Object& object, const RecordKind& expected) {
    vel::diag::throwError("coder:descriptor:WrongKind", {expected.name, object.getKind()->name});
}

std::int64_t Object::getId() const {
    if (isNull()) vel::diag::throwError("coder:descriptor:NullObject", {});
    return id_;
}

std::vector<FieldValue> Object::getFields() const { return checkedStore().readRow(*kind_, id_); }

FieldValue Object::getField(std::size_t field) const {
    auto row = checkedStore().readRow(*kind_, id_);
    if (field >= row.size())
        vel::diag::throwError("coder:descriptor:IndexOutOfRange",
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
    if (target.isNull()) vel::diag::throwError("coder:descriptor:NullObject", {});
    if (target.store_ != store_)
        vel::diag::throwError("coder:descriptor:WrongRepository", {kind_->name, info.name});
    if (target.kind_ != &info.target()) raiseWrongKind(target, info.target());
    store.setReference(*kind_, field, id_, target.id_);
}

detail::SequenceRef Object::sequence(std::size_t index) const {
    checkedStore();
    if (index >= kind_->sequences.size())
        vel::diag::throwError("coder:descriptor:IndexOutOfRange",
                              {std::to_string(index), std::to_string(kind_->sequences.size()), kind_->name});
    return detail::SequenceRef{store_, kind_, id_, index};
}

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
    if (element.isNull()) vel::diag::throwError("coder:descriptor:NullObject", {});
    if (element.store_ != store)
        vel::diag::throwError("coder:descriptor:WrongRepository", {owner->name, info.name});
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

Creator::Creator(Repository& repository, const RecordKind& kind) : store_(repository.store()), kind_(kind) {
    store_->requireOpen();
    values_.reserve(kind.fields.size());
    for (const FieldInfo& field : kind.fields) {
        if (field.optional || field.type == FieldType::Reference)
            values_.emplace_back();
        else if (field.type == FieldType::Real)
            values_.emplace_back(0.0);
        else if (field.type == FieldType::Text)
            values_.emplace_back(std::string());
        else
            values_.emplace_back(std::int64_t{0});
    }
}

Creator::~Creator() = default;

void Creator::setBoolean(std::size_t field, bool value) { values_.at(field) = std::int64_t{value ? 1 : 0}; }

void Creator::setInteger(std::size_t field, std::int64_t value) {
    const FieldInfo& info = kind_.fields.at(field);
    if (value < info.min || value > info.max)
        vel::diag::throwError("coder:descriptor:OutOfRange", {kind_.name, info.name, std::to_string(value)});
    values_[field] = value;
}

void Creator::setReal(std::size_t field, double value) {
    // SQLite would store NaN as NULL, which reads back as no value at all.
    if (std::isnan(value))
        vel::diag::throwError("coder:descriptor:OutOfRange",
                              {kind_.name, kind_.fields.at(field).name, "NaN"});
    values_.at(field) = value;
}

void Creator::setText(std::size_t field, const ustring& value) {
    values_.at(field) = vel::i18n::toUtf8(value);
}

void Creator::removeAllRecords() { store_->clear(); }

Object Creator::create() {
    const std::int64_t id = store_->insert(kind_, values_);
    return Object(store_, &kind_, id);
}

} // namespace coder::descriptor
