#include "vel/mi/Lifetime.hpp"

#include <chrono>
#include <cstdint>
#include <mutex>
#include <thread>
#include <unordered_map>
#include <vector>

#include "vel/mi/Handle.hpp"

// Accesses and destruction meet as in a read-copy-update scheme: each thread
// that ever opened an access has a slot whose sequence number is odd while
// the thread is inside one. A reader publishes its odd number, then checks
// that its reference is live; a destroyer marks the reference dead, then
// waits for every slot it saw odd to move on. All four steps are sequentially
// consistent, so either the reader sees the mark or the destroyer sees the
// reader, and the reader's exit (a release store) happens before the free.

namespace vel::mi {

namespace {

// Never freed, so that a waiter may read any slot at any time; a thread that
// ends leaves its slot to the next thread that needs one.
struct alignas(64) ReaderSlot {
    std::atomic<std::uint64_t> sequence{0};
    std::atomic<bool> taken{true};
    ReaderSlot* next = nullptr;
};

std::atomic<ReaderSlot*> allSlots{nullptr};

// Trivially destructible, so that reading it costs no initialization check.
struct ThreadAccesses {
    ReaderSlot* slot;
    unsigned depth;
    const std::shared_ptr<Lifetime>* lifetime;
};
// Every access reads it twice: in the initial-exec model that is one load
// off the thread pointer instead of a call (the library is loaded with the
// program or by an interpreter, whose static TLS reserve holds these bytes).
#if defined(__GNUC__) && !defined(_WIN32)
#define VEL_FAST_TLS __attribute__((tls_model("initial-exec")))
#else
#define VEL_FAST_TLS
#endif
thread_local ThreadAccesses current VEL_FAST_TLS{nullptr, 0, nullptr};

// Gives the thread's slot back when the thread ends.
struct SlotKeeper {
    bool armed = false;
    ~SlotKeeper() {
        if (armed && current.slot) {
            current.slot->taken.store(false, std::memory_order_release);
            current.slot = nullptr;
        }
    }
};
thread_local SlotKeeper keeper;

ReaderSlot* takeSlot() {
    keeper.armed = true;
    for (ReaderSlot* s = allSlots.load(std::memory_order_acquire); s; s = s->next) {
        bool expected = false;
        if (!s->taken.load(std::memory_order_relaxed) &&
            s->taken.compare_exchange_strong(expected, true, std::memory_order_acquire))
            return s;
    }
    auto* slot = new ReaderSlot();
    slot->next = allSlots.load(std::memory_order_relaxed);
    while (!allSlots.compare_exchange_weak(slot->next, slot, std::memory_order_seq_cst)) {
    }
    return slot;
}

// Lifetimes that end with another one, by the one they depend on. Never
// destroyed: lifetimes may end while static objects are destroyed.
struct Dependents {
    std::mutex mutex;
    std::unordered_multimap<const Lifetime*, std::weak_ptr<Lifetime>> byLifetime;
};

Dependents& dependents() {
    static auto* instance = new Dependents();
    return *instance;
}

} // namespace

Lifetime::~Lifetime() {
    // Entries under this address would otherwise pass to the next lifetime there.
    if (!hasDependents_.load(std::memory_order_acquire)) return;
    Dependents& d = dependents();
    const std::lock_guard<std::mutex> lock(d.mutex);
    d.byLifetime.erase(this);
}

void Lifetime::end() noexcept {
    markEnded();
    detail::waitForAccesses();
}

void Lifetime::markEnded() noexcept {
    if (ended_.exchange(true, std::memory_order_seq_cst)) return;
    // Pairs with addDependent: either it sees this lifetime ended, or this
    // sees that it has dependents and takes them under the lock.
    if (!hasDependents_.load(std::memory_order_seq_cst)) return;
    std::vector<std::weak_ptr<Lifetime>> ending;
    {
        Dependents& d = dependents();
        const std::lock_guard<std::mutex> lock(d.mutex);
        const auto [first, last] = d.byLifetime.equal_range(this);
        for (auto it = first; it != last; ++it) ending.push_back(std::move(it->second));
        d.byLifetime.erase(first, last);
    }
    for (const auto& weak : ending)
        if (const auto dependent = weak.lock()) dependent->markEnded();
}

void Lifetime::addDependent(const std::shared_ptr<Lifetime>& dependent) {
    {
        Dependents& d = dependents();
        const std::lock_guard<std::mutex> lock(d.mutex);
        hasDependents_.store(true, std::memory_order_seq_cst);
        if (!ended_.load(std::memory_order_seq_cst)) {
            // Entries of lifetimes that are gone or over are dropped here, so
            // that a long-lived lifetime does not collect them.
            const auto [first, last] = d.byLifetime.equal_range(this);
            for (auto it = first; it != last;) {
                const auto other = it->second.lock();
                it = other && !other->hasEnded() ? std::next(it) : d.byLifetime.erase(it);
            }
            d.byLifetime.emplace(this, dependent);
            return;
        }
    }
    dependent->markEnded();
}

Access::Access(const HandleRef& ref) noexcept : outer_(current.lifetime) {
    ThreadAccesses& t = current;
    if (t.depth++ == 0) {
        if (!t.slot) t.slot = takeSlot();
        t.slot->sequence.store(t.slot->sequence.load(std::memory_order_relaxed) + 1,
                               std::memory_order_seq_cst);
    }
    t.lifetime = &ref.lifetime();
    object_ = ref.get();
}

Access::~Access() {
    ThreadAccesses& t = current;
    t.lifetime = outer_;
    if (--t.depth == 0)
        t.slot->sequence.store(t.slot->sequence.load(std::memory_order_relaxed) + 1,
                               std::memory_order_release);
}

namespace detail {

const std::shared_ptr<Lifetime>* currentAccessLifetime() noexcept { return current.lifetime; }

void waitForAccesses() noexcept {
    const ReaderSlot* own = current.depth ? current.slot : nullptr;
    for (ReaderSlot* s = allSlots.load(std::memory_order_seq_cst); s; s = s->next) {
        if (s == own) continue;
        const std::uint64_t seen = s->sequence.load(std::memory_order_seq_cst);
        if (seen % 2 == 0) continue;
        // An access is a few native calls: yield first, then sleep, in case
        // this one runs a long method.
        for (int spins = 0; s->sequence.load(std::memory_order_acquire) == seen; ++spins) {
            if (spins < 64)
                std::this_thread::yield();
            else
                std::this_thread::sleep_for(std::chrono::microseconds(50));
        }
    }
}

} // namespace detail

} // namespace vel::mi
