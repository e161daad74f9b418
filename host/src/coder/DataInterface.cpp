#include "coder/descriptor/DataInterface.hpp"

#include <cstdint>

#include "CG/DataInterface.hpp"
#include "coder/Repository.hpp"

namespace coder::descriptor {

namespace {
enum Field : std::size_t { kIdentifier, kImplementation, kOwner, kTypeName, kGraphicalName };
} // namespace

const RecordKind& DataInterface::kind() {
    static const RecordKind kind{
        "DataInterface",
        {
            {"Identifier", FieldType::Text, false, nullptr, 0, 0},
            {"Implementation", FieldType::Text, false, nullptr, 0, 0},
            {"Owner", FieldType::Text, false, nullptr, 0, 0},
            {"TypeName", FieldType::Text, false, nullptr, 0, 0},
            {"GraphicalName", FieldType::Text, false, nullptr, 0, 0},
        },
        {},
    };
    return kind;
}

ustring DataInterface::getIdentifier() const { return text(kIdentifier); }
ustring DataInterface::getImplementation() const { return text(kImplementation); }
ustring DataInterface::getOwner() const { return text(kOwner); }
ustring DataInterface::getTypeName() const { return text(kTypeName); }
ustring DataInterface::getGraphicalName() const { return text(kGraphicalName); }

DataInterfaceCreator::DataInterfaceCreator(Repository& repository)
    : Creator(repository, DataInterface::kind()) {}

void DataInterfaceCreator::setIdentifier(const ustring& value) { setText(kIdentifier, value); }
void DataInterfaceCreator::setImplementation(const ustring& value) { setText(kImplementation, value); }
void DataInterfaceCreator::setOwner(const ustring& value) { setText(kOwner, value); }
void DataInterfaceCreator::setTypeName(const ustring& value) { setText(kTypeName, value); }
void DataInterfaceCreator::setGraphicalName(const ustring& value) { setText(kGraphicalName, value); }

void DataInterfaceCreator::setFrom(const CG::DataInterface& dataInterface) {
    const auto& d = dataInterface.getDescription();
    setIdentifier(vel::i18n::toUString(d.identifier));
    setImplementation(vel::i18n::toUString(d.implementation));
    setOwner(vel::i18n::toUString(d.owner));
    setTypeName(vel::i18n::toUString(d.typeName));
    setGraphicalName(vel::i18n::toUString(d.graphicalName));
}

DataInterface DataInterfaceCreator::createDataInterface() { return objectAs<DataInterface>(create()); }

} // namespace coder::descriptor
