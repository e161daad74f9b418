#include "coder/descriptor/DataInterface.hpp"

#include "CG/DataInterface.hpp"
#include "RecordDefinition.hpp"

namespace coder::descriptor {

CODER_DESCRIPTOR_DEFINE_RECORD(DataInterface, CODER_DESCRIPTOR_DATA_INTERFACE)
CODER_DESCRIPTOR_DEFINE_CREATE(DataInterface)

void DataInterfaceCreator::setFrom(const CG::DataInterface& dataInterface) {
    const auto& d = dataInterface.getDescription();
    setIdentifier(vel::i18n::toUString(d.identifier));
    setImplementation(vel::i18n::toUString(d.implementation));
    setOwner(vel::i18n::toUString(d.owner));
    setTypeName(vel::i18n::toUString(d.typeName));
    setGraphicalName(vel::i18n::toUString(d.graphicalName));
}

} // namespace coder::descriptor
