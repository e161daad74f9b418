#include "vel/mi/Handle.hpp"

#include "vel/diag/Diagnostic.hpp"
#include "vel/tuvArray.hpp"

namespace vel::mi {

Handle::~Handle() {
    // Every HandleRef taken from this object now reads as null.
    if (anchor_) *anchor_ = nullptr;
}

std::shared_ptr<tuvArray> Handle::toPlexo() { return tuvArray::objects({makeRef()}); }

void Handle::preSetPropFcn(const char*) {}
void Handle::postSetPropFcn(const char*) {}
bool Handle::isSaveToModelFile() const { return false; }

void Handle::lock() { ++lockCount_; }

void Handle::unlock() {
    if (lockCount_ == 0)
        diag::throwErrorText("MI:HandleNotLocked", "Cannot unlock an object that is not locked.");
    --lockCount_;
}

HandleRef Handle::makeRef() const {
    if (!anchor_) anchor_ = std::make_shared<Handle*>(const_cast<Handle*>(this));
    return HandleRef(anchor_);
}

} // namespace vel::mi
