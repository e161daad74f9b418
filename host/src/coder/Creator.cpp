#include "coder/descriptor/Creator.hpp"

#include <cmath>

#include "Store.hpp"
#include "coder/Messages.hpp"
#include "coder/Repository.hpp"
#include "vel/diag/Diagnostic.hpp"

namespace coder::descriptor {

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
        vel::diag::throwError(coder::messages::descriptor::OutOfRange,
                              {kind_.name, info.name, std::to_string(value)});
    values_[field] = value;
}

void Creator::setReal(std::size_t field, double value) {
    // SQLite would store NaN as NULL, which reads back as no value at all.
    if (std::isnan(value))
        vel::diag::throwError(coder::messages::descriptor::OutOfRange,
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
