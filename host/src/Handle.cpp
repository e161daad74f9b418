#include "vel/mi/Handle.hpp"

#include <thread>
#include <utility>

#include "vel/diag/Diagnostic.hpp"
#include "vel/tuvArray.hpp"

namespace vel::mi {

namespace {
// A reference's share of the anchor's own lifetime.
std::shared_ptr<Lifetime> ownLifetimeOf(const std::shared_ptr<detail::Anchor>& anchor) {
    return std::shared_ptr<Lifetime>(anchor, &anchor->own);
}
} // namespace

// Every HandleRef taken from this object now reads as null. An owner, or the
// derived class, has usually done this before its members went.
Handle::~Handle() { endScriptAccess(); }

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

std::shared_ptr<detail::Anchor> Handle::anchor() const {
    std::uint8_t state = anchorState_.load(std::memory_order_acquire);
    while (state != kAnchored) {
        if (state == kEnded) {
            // Too late for a live reference; one of its own, dead from the start.
            auto dead = std::make_shared<detail::Anchor>(nullptr);
            dead->own.markEnded();
            return dead;
        }
        if (state == kNoAnchor &&
            anchorState_.compare_exchange_strong(state, kMakingAnchor, std::memory_order_acquire)) {
            try {
                anchor_ = std::make_shared<detail::Anchor>(const_cast<Handle*>(this));
            } catch (...) {
                anchorState_.store(kNoAnchor, std::memory_order_release);
                throw;
            }
            anchorState_.store(kAnchored, std::memory_order_release);
            return anchor_;
        }
        // Another thread is making it.
        std::this_thread::yield();
        state = anchorState_.load(std::memory_order_acquire);
    }
    return anchor_;
}

HandleRef Handle::makeRef() const {
    std::shared_ptr<detail::Anchor> a = anchor();
    const std::shared_ptr<Lifetime>* inAccess = detail::currentAccessLifetime();
    std::shared_ptr<Lifetime> lifetime = inAccess && *inAccess ? *inAccess : ownLifetimeOf(a);
    return HandleRef(std::move(a), std::move(lifetime));
}

HandleRef Handle::makeRef(std::shared_ptr<Lifetime> lifetime) const {
    std::shared_ptr<detail::Anchor> a = anchor();
    if (!lifetime) lifetime = ownLifetimeOf(a);
    return HandleRef(std::move(a), std::move(lifetime));
}

std::shared_ptr<Lifetime> Handle::getOwnLifetime() const { return ownLifetimeOf(anchor()); }

void Handle::endScriptAccess() noexcept {
    std::uint8_t state = anchorState_.load(std::memory_order_acquire);
    while (state != kAnchored) {
        if (state == kEnded) return;
        if (state == kNoAnchor &&
            anchorState_.compare_exchange_strong(state, kEnded, std::memory_order_acq_rel))
            return; // no reference was ever made, and none will be
        std::this_thread::yield();
        state = anchorState_.load(std::memory_order_acquire);
    }
    if (!anchor_->object.exchange(nullptr, std::memory_order_seq_cst)) return;
    anchor_->own.markEnded();
    detail::waitForAccesses();
}

} // namespace vel::mi
