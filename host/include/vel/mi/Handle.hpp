#pragma once

#include <atomic>
#include <cstdint>
#include <memory>

#include "vel/HostExport.hpp"
#include "vel/mi/Lifetime.hpp"

class tuvArray;

namespace vel::mi {

class Handle;

namespace detail {
// What the references to one object share: the object, until it begins to
// die, the lifetime of references made from it directly, and the slot of
// the script object made for them (see HandleRef::scriptObjectSlot).
struct Anchor {
    explicit Anchor(Handle* h) : object(h) {}
    std::atomic<Handle*> object;
    Lifetime own;
    std::atomic<void*> scriptObject{nullptr};
};
} // namespace detail

// A script-side reference to a native handle object. It does not own the
// object: once the object begins to die, or the lifetime the reference
// belongs to ends (see Lifetime), it reads as null, so that a host script
// that kept a reference gets a diagnostic instead of touching freed memory.
class VELHOST_API HandleRef {
public:
    HandleRef() = default;

    // Null when the reference is dead (or for a default reference). Use the
    // object only inside an Access on this reference, or where no other
    // thread can destroy it.
    Handle* get() const {
        if (!anchor_ || lifetime_->hasEnded()) return nullptr;
        return anchor_->object.load(std::memory_order_seq_cst);
    }
    explicit operator bool() const { return get() != nullptr; }

    // Two references are equal when they were taken from the same object.
    bool sameObject(const HandleRef& other) const { return anchor_ == other.anchor_; }
    // Equal for references to the same object and stable for the life of
    // any reference to it, dead or alive: a key for hashing references.
    const void* identity() const { return anchor_.get(); }
    // Null for a default reference.
    const std::shared_ptr<Lifetime>& lifetime() const { return lifetime_; }

    // A slot in which the script runtime of the process keeps the script
    // object (the wrapper) it made for a reference to this object, so that
    // reading the object again gives the same script object. Shared by
    // every reference to the object and living as long as any of them, dead
    // ones included; null until the runtime fills it. The runtime uses it
    // under a lock of its own, checks that what it finds is its own object
    // made for a reference of the lifetime it needs, and empties it when
    // that object goes. Null for a default reference.
    std::atomic<void*>* scriptObjectSlot() const { return anchor_ ? &anchor_->scriptObject : nullptr; }

private:
    friend class Handle;
    HandleRef(std::shared_ptr<detail::Anchor> anchor, std::shared_ptr<Lifetime> lifetime)
        : anchor_(std::move(anchor)), lifetime_(std::move(lifetime)) {}
    std::shared_ptr<detail::Anchor> anchor_;
    std::shared_ptr<Lifetime> lifetime_;
};

// Base of every native class that host scripts can reach through the object
// system. A handle's identity is the object itself: copying a handle object
// copies its data, never its identity or its lock state.
//
// Not thread-safe, except for references: a handle is built and changed on
// one thread at a time, but references to it may be made and used on any
// thread, and its destruction waits for their accesses (endScriptAccess).
class VELHOST_API Handle {
public:
    Handle() = default;
    Handle(const Handle&) noexcept {}
    Handle& operator=(const Handle&) noexcept { return *this; }
    virtual ~Handle();

    // The object-system class of this object, "Package.Class". The text must
    // stay unchanged at that address for as long as the class is registered
    // (a string literal, typically): the object system remembers classes by
    // the pointer.
    virtual const char* getFullyQualifiedKorbTypeName() const = 0;

    // The object as a host value: a 1-by-1 array holding a reference to it.
    virtual std::shared_ptr<tuvArray> toPlexo();

    // Called by the object-system client around every property write made
    // by a script. The defaults do nothing.
    virtual void preSetPropFcn(const char* propertyName);
    virtual void postSetPropFcn(const char* propertyName);

    // Whether the object is stored with the model file when the host saves
    // the model. Code-generation objects live for one build: false.
    virtual bool isSaveToModelFile() const;

    // A locked object refuses property writes from scripts. Locks nest: the
    // object is writable again after as many unlocks as locks.
    virtual void lock();
    virtual void unlock();
    bool isLocked() const { return lockCount_ > 0; }

    // A non-owning reference for host values; see HandleRef. It belongs to
    // the lifetime of the thread's open Access, or else to the object's own.
    HandleRef makeRef() const;
    HandleRef makeRef(std::shared_ptr<Lifetime> lifetime) const;
    // The lifetime of the references made from this object outside any
    // access; it ends when endScriptAccess is called.
    std::shared_ptr<Lifetime> getOwnLifetime() const;
    // The slot of HandleRef::scriptObjectSlot, without making a reference;
    // null while no reference to the object was ever made.
    std::atomic<void*>* scriptObjectSlot() const {
        return anchorState_.load(std::memory_order_acquire) == kAnchored ? &anchor_->scriptObject : nullptr;
    }

    // Makes every reference to this object dead, ends its own lifetime and
    // waits for the accesses in flight (see Access), after which the object
    // may be freed. An owner calls it on an element before deleting it, and
    // as the first step of its own destructor, so that nothing it frees is
    // reached meanwhile; ~Handle calls it for every other object. Calling it
    // again does nothing; without a reference ever made it costs one
    // atomic operation.
    void endScriptAccess() noexcept;

private:
    // The anchor of this object's references, made by the first reference.
    std::shared_ptr<detail::Anchor> anchor() const;

    enum AnchorState : std::uint8_t { kNoAnchor, kMakingAnchor, kAnchored, kEnded };

    // Written once, before anchorState_ turns kAnchored.
    mutable std::shared_ptr<detail::Anchor> anchor_;
    int lockCount_ = 0;
    mutable std::atomic<std::uint8_t> anchorState_{kNoAnchor};
};

} // namespace vel::mi
