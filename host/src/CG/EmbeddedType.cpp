#include "CG/EmbeddedType.hpp"

#include <atomic>

#include "CG/Type.hpp"
#include "HostReference.hpp"
#include "korb/HostTraits.hpp"
#include "vel/tuvArray.hpp"

namespace CG {

namespace {
std::atomic<long> liveEmbeddedTypes{0};
} // namespace

EmbeddedType::EmbeddedType(Type::Ptr irType) : irType_(std::move(irType)) { ++liveEmbeddedTypes; }
EmbeddedType::~EmbeddedType() { --liveEmbeddedTypes; }

EmbeddedType* EmbeddedType::createFromIRType(const Type& irType) {
    // The IR type is copied so that the embedded type does not depend on the
    // lifetime of the caller's object.
    return new EmbeddedType(std::make_shared<Type>(irType));
}

void EmbeddedType::addRef() const { refs_.fetch_add(1, std::memory_order_relaxed); }

void EmbeddedType::release() const {
    if (refs_.fetch_sub(1, std::memory_order_acq_rel) == 1) delete this;
}

std::string EmbeddedType::getName() const { return irType_->toString(); }

std::shared_ptr<tuvArray> EmbeddedType::toTuvArray(const EmbeddedType* type) {
    if (!type) return tuvArray::empty();
    return tuvArray::opaque("embedded.type", detail::holdReference(type));
}

const EmbeddedType* EmbeddedType::fromTuvArray(const tuvArray& value) {
    if (value.isEmpty() && value.classId() == tuvClass::Double) return nullptr;
    if (value.classId() != tuvClass::Opaque || value.className() != "embedded.type" || !value.isScalar())
        korb::detail::typeMismatch("embedded.type", value);
    return static_cast<const EmbeddedType*>(value.opaquePayload().get());
}

long EmbeddedType::liveCount() { return liveEmbeddedTypes.load(); }

} // namespace CG
