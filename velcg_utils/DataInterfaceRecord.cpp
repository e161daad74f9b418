#include "velcg/DataInterfaceRecord.hpp"

#include "CG/DataInterface.hpp"
#include "velcg/ModelDiagnostics.hpp"

namespace VelCG {

DataInterfaceRecordImpl::~DataInterfaceRecordImpl() = default;

DataInterfaceRecord::DataInterfaceRecord(DataInterfaceRecordImpl* impl) : impl_(impl) {
    if (!impl_) throwNullArgument("The implementation of a data-interface record");
}

DataInterfaceRecord::~DataInterfaceRecord() = default;

tuvArrayPtr DataInterfaceRecord::getDataInterfaceAsTuvArray() const {
    return CG::DataInterface::toTuvArray(getDataInterface());
}

DataInterfaceRecordKorb::~DataInterfaceRecordKorb() = default;

const char* DataInterfaceRecordKorb::getFullyQualifiedKorbTypeName() const {
    return "VelCG.DataInterfaceRecord";
}

} // namespace VelCG
