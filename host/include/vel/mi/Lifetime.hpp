#pragma once

#include <atomic>
#include <memory>

#include "vel/HostExport.hpp"

namespace vel::mi {

class Handle;
class HandleRef;

// The span in which a set of references may reach their objects. Every
// HandleRef belongs to one lifetime: a reference made while an Access is
// open on the thread (the objects a getter returns, say) belongs to the
// lifetime of the access's reference, any other to the object's own
// lifetime, which ends when the object begins to die (see
// Handle::endScriptAccess). So when a model dies, every reference that
// scripts reached through it dies first, before any of its elements is
// freed. A script runtime makes a lifetime for each run and ends it when the
// run returns, so that threads a script left running reach nothing after.
//
// Thread-safe.
class VELHOST_API Lifetime {
public:
    Lifetime() = default;
    ~Lifetime();
    Lifetime(const Lifetime&) = delete;
    Lifetime& operator=(const Lifetime&) = delete;

    static std::shared_ptr<Lifetime> make() { return std::make_shared<Lifetime>(); }

    bool hasEnded() const { return ended_.load(std::memory_order_seq_cst); }

    // Ends this lifetime and every lifetime that depends on it: their
    // references read as dead from now on, on every thread. Returns once no
    // Access opened before the call is open on another thread any more, so
    // that what the references reached may be destroyed. Ending twice does
    // nothing more.
    void end() noexcept;

    // Makes `dependent` end when this lifetime ends (at once when it has).
    void addDependent(const std::shared_ptr<Lifetime>& dependent);

private:
    friend class Handle;
    // Ends this lifetime and its dependents without waiting for accesses.
    void markEnded() noexcept;

    std::atomic<bool> ended_{false};
    std::atomic<bool> hasDependents_{false};
};

// Native code's use of an object reached through a reference. While an
// access is open, no object whose reference read as live on this thread
// since the access opened can be freed (its destruction waits, see
// Handle::endScriptAccess), and references made on the thread belong to the
// lifetime of the access's reference. Accesses nest.
//
// An access costs one atomic store on entry and one on exit. Keep it short,
// and never wait inside it for anything that a thread destroying objects may
// hold (a script interpreter's lock, say): that thread waits for the access.
class VELHOST_API Access {
public:
    // REQUIRES: ref outlives the access.
    explicit Access(const HandleRef& ref) noexcept;
    ~Access();
    Access(const Access&) = delete;
    Access& operator=(const Access&) = delete;

    // The object, or null when the reference is dead: its object has begun
    // to die or its lifetime has ended (or it is a default reference).
    Handle* object() const { return object_; }

private:
    const std::shared_ptr<Lifetime>* outer_;
    Handle* object_;
};

namespace detail {
// The lifetime of the thread's innermost open access; null outside any.
VELHOST_API const std::shared_ptr<Lifetime>* currentAccessLifetime() noexcept;
// Returns once no Access that was open on another thread at the call is
// still open. The caller's own open accesses are not waited for.
VELHOST_API void waitForAccesses() noexcept;
} // namespace detail

} // namespace vel::mi
