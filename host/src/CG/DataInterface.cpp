#include "CG/DataInterface.hpp"

#include <atomic>

#include "HostReference.hpp"
#include "korb/HostTraits.hpp"
#include "vel/tuvArray.hpp"

namespace CG {

namespace {
std::atomic<long> liveDataInterfaces{0};
} // namespace

DataInterface::DataInterface(Description description) : description_(std::move(description)) {
    ++liveDataInterfaces;
}
DataInterface::~DataInterface() { --liveDataInterfaces; }

DataInterface* DataInterface::create(Description description) {
    return new DataInterface(std::move(description));
}

void DataInterface::addRef() const { refs_.fetch_add(1, std::memory_order_relaxed); }

void DataInterface::release() const {
    if (refs_.fetch_sub(1, std::memory_order_acq_rel) == 1) delete this;
}

std::shared_ptr<tuvArray> DataInterface::toTuvArray(const DataInterface* dataInterface) {
    if (!dataInterface) return tuvArray::empty();
    return tuvArray::opaque("coder.DataInterface", detail::holdReference(dataInterface));
}

const DataInterface* DataInterface::fromTuvArray(const tuvArray& value) {
    if (value.isEmpty() && value.classId() == tuvClass::Double) return nullptr;
    if (value.classId() != tuvClass::Opaque || value.className() != "coder.DataInterface" ||
        !value.isScalar())
        korb::detail::typeMismatch("coder.DataInterface", value);
    return static_cast<const DataInterface*>(value.opaquePayload().get());
}

long DataInterface::liveCount() { return liveDataInterfaces.load(); }

} // namespace CG
