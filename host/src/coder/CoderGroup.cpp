#include "coder/descriptor/CoderGroup.hpp"

#include <cstdint>

#include "coder/Repository.hpp"

namespace coder::descriptor {

namespace {
enum Field : std::size_t {
    kName,
    kRootTypeName,
    kStructureTypeNameRule,
    kStructureInstanceNameRule,
    kSelfStructureTypeNameRule,
    kStructureReferenceNameRule,
    kSelfStructureReferenceNameRule,
    kStructureArgumentNameRule,
    kSelfStructureArgumentNameRule,
    kHeaderFileRule,
    kSelfStructureInstanceNameRule,
    kGroupSize,
    kAsStructure
};
} // namespace

const RecordKind& CoderGroup::kind() {
    static const RecordKind kind{
        "CoderGroup",
        {
            {"Name", FieldType::Text, false, nullptr, 0, 0},
            {"RootTypeName", FieldType::Text, false, nullptr, 0, 0},
            {"StructureTypeNameRule", FieldType::Text, false, nullptr, 0, 0},
            {"StructureInstanceNameRule", FieldType::Text, false, nullptr, 0, 0},
            {"SelfStructureTypeNameRule", FieldType::Text, false, nullptr, 0, 0},
            {"StructureReferenceNameRule", FieldType::Text, false, nullptr, 0, 0},
            {"SelfStructureReferenceNameRule", FieldType::Text, false, nullptr, 0, 0},
            {"StructureArgumentNameRule", FieldType::Text, false, nullptr, 0, 0},
            {"SelfStructureArgumentNameRule", FieldType::Text, false, nullptr, 0, 0},
            {"HeaderFileRule", FieldType::Text, false, nullptr, 0, 0},
            {"SelfStructureInstanceNameRule", FieldType::Text, false, nullptr, 0, 0},
            {"GroupSize", FieldType::Integer, false, nullptr, INT32_MIN, INT32_MAX},
            {"AsStructure", FieldType::Text, false, nullptr, 0, 0},
        },
        {},
    };
    return kind;
}

ustring CoderGroup::getName() const { return text(kName); }
ustring CoderGroup::getRootTypeName() const { return text(kRootTypeName); }
ustring CoderGroup::getStructureTypeNameRule() const { return text(kStructureTypeNameRule); }
ustring CoderGroup::getStructureInstanceNameRule() const { return text(kStructureInstanceNameRule); }
ustring CoderGroup::getSelfStructureTypeNameRule() const { return text(kSelfStructureTypeNameRule); }
ustring CoderGroup::getStructureReferenceNameRule() const { return text(kStructureReferenceNameRule); }
ustring CoderGroup::getSelfStructureReferenceNameRule() const {
    return text(kSelfStructureReferenceNameRule);
}
ustring CoderGroup::getStructureArgumentNameRule() const { return text(kStructureArgumentNameRule); }
ustring CoderGroup::getSelfStructureArgumentNameRule() const { return text(kSelfStructureArgumentNameRule); }
ustring CoderGroup::getHeaderFileRule() const { return text(kHeaderFileRule); }
ustring CoderGroup::getSelfStructureInstanceNameRule() const { return text(kSelfStructureInstanceNameRule); }
std::int32_t CoderGroup::getGroupSize() const { return static_cast<std::int32_t>(integer(kGroupSize)); }
ustring CoderGroup::getAsStructure() const { return text(kAsStructure); }

CoderGroupCreator::CoderGroupCreator(Repository& repository) : Creator(repository, CoderGroup::kind()) {}

void CoderGroupCreator::setName(const ustring& value) { setText(kName, value); }
void CoderGroupCreator::setRootTypeName(const ustring& value) { setText(kRootTypeName, value); }
void CoderGroupCreator::setStructureTypeNameRule(const ustring& value) {
    setText(kStructureTypeNameRule, value);
}
void CoderGroupCreator::setStructureInstanceNameRule(const ustring& value) {
    setText(kStructureInstanceNameRule, value);
}
void CoderGroupCreator::setSelfStructureTypeNameRule(const ustring& value) {
    setText(kSelfStructureTypeNameRule, value);
}
void CoderGroupCreator::setStructureReferenceNameRule(const ustring& value) {
    setText(kStructureReferenceNameRule, value);
}
void CoderGroupCreator::setSelfStructureReferenceNameRule(const ustring& value) {
    setText(kSelfStructureReferenceNameRule, value);
}
void CoderGroupCreator::setStructureArgumentNameRule(const ustring& value) {
    setText(kStructureArgumentNameRule, value);
}
void CoderGroupCreator::setSelfStructureArgumentNameRule(const ustring& value) {
    setText(kSelfStructureArgumentNameRule, value);
}
void CoderGroupCreator::setHeaderFileRule(const ustring& value) { setText(kHeaderFileRule, value); }
void CoderGroupCreator::setSelfStructureInstanceNameRule(const ustring& value) {
    setText(kSelfStructureInstanceNameRule, value);
}
void CoderGroupCreator::setGroupSize(std::int32_t value) { setInteger(kGroupSize, value); }
void CoderGroupCreator::setAsStructure(const ustring& value) { setText(kAsStructure, value); }

CoderGroup CoderGroupCreator::createCoderGroup() { return objectAs<CoderGroup>(create()); }

} // namespace coder::descriptor
