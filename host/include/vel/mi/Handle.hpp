#pragma once

#include <memory>

#include "vel/HostExport.hpp"

class tuvArray;

namespace vel::mi {

class Handle;

// A script-side reference to a native handle object. It does not own the
// object: when the object is destroyed every reference to it turns null, so a
// host script that kept a reference past the object's life gets a diagnostic
// instead of touching freed memory.
class VELHOST_API HandleRef {
public:
    HandleRef() = default;

    // Null when the object has been destroyed (or for a default reference).
    Handle* get() const { return anchor_ ? *anchor_ : nullptr; }
    explicit operator bool() const { return get() != nullptr; }

    // Two references are equal when they were taken from the same object.
    bool sameObject(const HandleRef& other) const { return anchor_ == other.anchor_; }
    // Equal for references to the same object and stable for the life of
    // any reference to it, dead or alive: a key for hashing references.
    const void* identity() const { return anchor_.get(); }

private:
    friend class Handle;
    explicit HandleRef(std::shared_ptr<Handle*> anchor) : anchor_(std::move(anchor)) {}
    std::shared_ptr<Handle*> anchor_;
};

// Base of every native class that host scripts can reach through the object
// system. A handle's identity is the object itself: copying a handle object
// copies its data, never its identity or its lock state.
//
// Not thread-safe: handles are created, scripted and destroyed on the host's
// thread.
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

    // A non-owning reference for host values; see HandleRef.
    HandleRef makeRef() const;

private:
    mutable std::shared_ptr<Handle*> anchor_;
    int lockCount_ = 0;
};

} // namespace vel::mi
