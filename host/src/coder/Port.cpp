#include "coder/descriptor/Port.hpp"

#include <cstdint>

#include "coder/Repository.hpp"

namespace coder::descriptor {

namespace {
enum Field : std::size_t { kGraphicalName, kSignalLabel, kConnected, kTestPoint, kGraphicalSource };
enum List : std::size_t { kDataInterfacesList };
} // namespace

const RecordKind& Port::kind() {
    static const RecordKind kind{
        "Port",
        {
            {"GraphicalName", FieldType::Text, false, nullptr, 0, 0},
            {"SignalLabel", FieldType::Text, false, nullptr, 0, 0},
            {"Connected", FieldType::Boolean, false, nullptr, 0, 0},
            {"TestPoint", FieldType::Boolean, false, nullptr, 0, 0},
            {"GraphicalSource", FieldType::Reference, true, &Port::kind, 0, 0},
        },
        {
            {"DataInterfaces", &DataInterface::kind, FieldType::Reference},
        },
    };
    return kind;
}

ustring Port::getGraphicalName() const { return text(kGraphicalName); }
ustring Port::getSignalLabel() const { return text(kSignalLabel); }
bool Port::getConnected() const { return boolean(kConnected); }
bool Port::getTestPoint() const { return boolean(kTestPoint); }
Port Port::getGraphicalSource() const { return objectAs<Port>(reference(kGraphicalSource)); }
void Port::setGraphicalSource(const Port& value) { setReference(kGraphicalSource, value); }
Sequence<DataInterface> Port::getDataInterfaces() const {
    return Sequence<DataInterface>(sequence(kDataInterfacesList));
}

PortCreator::PortCreator(Repository& repository) : Creator(repository, Port::kind()) {}

void PortCreator::setGraphicalName(const ustring& value) { setText(kGraphicalName, value); }
void PortCreator::setSignalLabel(const ustring& value) { setText(kSignalLabel, value); }
void PortCreator::setConnected(bool value) { setBoolean(kConnected, value); }
void PortCreator::setTestPoint(bool value) { setBoolean(kTestPoint, value); }

Port PortCreator::createPort() { return objectAs<Port>(create()); }

} // namespace coder::descriptor
