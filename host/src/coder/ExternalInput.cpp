#include "coder/descriptor/ExternalInput.hpp"

#include <cstdint>

#include "coder/Repository.hpp"

namespace coder::descriptor {

namespace {
enum Field : std::size_t {
    kCGTypeIndex,
    kStorageClass,
    kRequiresGlobalAccess,
    kIdentifier,
    kVarGroupIndex,
    kVarGroupMemberIndex,
    kHasVarDims,
    kCanonicalDimSizeDWorkIndex,
    kHasCanonicalDimSizeDWorkIndex,
    kSizeVarGroupIndex,
    kSizeVarGroupMemberIndex,
    kDimSizeDWork,
    kPadding
};
} // namespace

const RecordKind& ExternalInput::kind() {
    static const RecordKind kind{
        "ExternalInput",
        {
            {"CGTypeIndex", FieldType::Integer, false, nullptr, INT32_MIN, INT32_MAX},
            {"StorageClass", FieldType::Text, false, nullptr, 0, 0},
            {"RequiresGlobalAccess", FieldType::Boolean, false, nullptr, 0, 0},
            {"Identifier", FieldType::Text, false, nullptr, 0, 0},
            {"VarGroupIndex", FieldType::Integer, false, nullptr, INT32_MIN, INT32_MAX},
            {"VarGroupMemberIndex", FieldType::Integer, false, nullptr, INT32_MIN, INT32_MAX},
            {"HasVarDims", FieldType::Boolean, false, nullptr, 0, 0},
            {"CanonicalDimSizeDWorkIndex", FieldType::Integer, false, nullptr, INT32_MIN, INT32_MAX},
            {"HasCanonicalDimSizeDWorkIndex", FieldType::Boolean, false, nullptr, 0, 0},
            {"SizeVarGroupIndex", FieldType::Integer, false, nullptr, INT32_MIN, INT32_MAX},
            {"SizeVarGroupMemberIndex", FieldType::Integer, false, nullptr, INT32_MIN, INT32_MAX},
            {"DimSizeDWork", FieldType::Integer, false, nullptr, INT32_MIN, INT32_MAX},
            {"Padding", FieldType::Integer, false, nullptr, INT32_MIN, INT32_MAX},
        },
        {},
    };
    return kind;
}

std::int32_t ExternalInput::getCGTypeIndex() const {
    return static_cast<std::int32_t>(integer(kCGTypeIndex));
}
ustring ExternalInput::getStorageClass() const { return text(kStorageClass); }
bool ExternalInput::getRequiresGlobalAccess() const { return boolean(kRequiresGlobalAccess); }
ustring ExternalInput::getIdentifier() const { return text(kIdentifier); }
std::int32_t ExternalInput::getVarGroupIndex() const {
    return static_cast<std::int32_t>(integer(kVarGroupIndex));
}
std::int32_t ExternalInput::getVarGroupMemberIndex() const {
    return static_cast<std::int32_t>(integer(kVarGroupMemberIndex));
}
bool ExternalInput::getHasVarDims() const { return boolean(kHasVarDims); }
std::int32_t ExternalInput::getCanonicalDimSizeDWorkIndex() const {
    return static_cast<std::int32_t>(integer(kCanonicalDimSizeDWorkIndex));
}
bool ExternalInput::getHasCanonicalDimSizeDWorkIndex() const {
    return boolean(kHasCanonicalDimSizeDWorkIndex);
}
std::int32_t ExternalInput::getSizeVarGroupIndex() const {
    return static_cast<std::int32_t>(integer(kSizeVarGroupIndex));
}
std::int32_t ExternalInput::getSizeVarGroupMemberIndex() const {
    return static_cast<std::int32_t>(integer(kSizeVarGroupMemberIndex));
}
std::int32_t ExternalInput::getDimSizeDWork() const {
    return static_cast<std::int32_t>(integer(kDimSizeDWork));
}
std::int32_t ExternalInput::getPadding() const { return static_cast<std::int32_t>(integer(kPadding)); }

ExternalInputCreator::ExternalInputCreator(Repository& repository)
    : Creator(repository, ExternalInput::kind()) {}

void ExternalInputCreator::setCGTypeIndex(std::int32_t value) { setInteger(kCGTypeIndex, value); }
void ExternalInputCreator::setStorageClass(const ustring& value) { setText(kStorageClass, value); }
void ExternalInputCreator::setRequiresGlobalAccess(bool value) { setBoolean(kRequiresGlobalAccess, value); }
void ExternalInputCreator::setIdentifier(const ustring& value) { setText(kIdentifier, value); }
void ExternalInputCreator::setVarGroupIndex(std::int32_t value) { setInteger(kVarGroupIndex, value); }
void ExternalInputCreator::setVarGroupMemberIndex(std::int32_t value) {
    setInteger(kVarGroupMemberIndex, value);
}
void ExternalInputCreator::setHasVarDims(bool value) { setBoolean(kHasVarDims, value); }
void ExternalInputCreator::setCanonicalDimSizeDWorkIndex(std::int32_t value) {
    setInteger(kCanonicalDimSizeDWorkIndex, value);
}
void ExternalInputCreator::setHasCanonicalDimSizeDWorkIndex(bool value) {
    setBoolean(kHasCanonicalDimSizeDWorkIndex, value);
}
void ExternalInputCreator::setSizeVarGroupIndex(std::int32_t value) { setInteger(kSizeVarGroupIndex, value); }
void ExternalInputCreator::setSizeVarGroupMemberIndex(std::int32_t value) {
    setInteger(kSizeVarGroupMemberIndex, value);
}
void ExternalInputCreator::setDimSizeDWork(std::int32_t value) { setInteger(kDimSizeDWork, value); }
void ExternalInputCreator::setPadding(std::int32_t value) { setInteger(kPadding, value); }

ExternalInput ExternalInputCreator::createExternalInput() { return objectAs<ExternalInput>(create()); }

} // namespace coder::descriptor
