#pragma once

#include <atomic>
#include <utility>

namespace VelCG {

// The answer of a lazily cached query, computed on first use and kept.
// Such a query may run on two threads at once (a script reading beside a
// background serialization pass), so keeping is safe from any thread: the
// first answer kept wins, later ones are dropped and their callers get the
// first. A copy copies the answer kept. set() and clear() are writes: no
// other thread may use the object meanwhile.
template <class T>
class CachedAnswer {
public:
    CachedAnswer() = default;
    CachedAnswer(const CachedAnswer& other) : value_(other.copy()) {}
    CachedAnswer& operator=(const CachedAnswer& other) {
        if (this != &other) replace(other.copy());
        return *this;
    }
    ~CachedAnswer() { delete value_.load(std::memory_order_relaxed); }

    // Null until an answer is kept.
    const T* get() const { return value_.load(std::memory_order_acquire); }

    // Keeps answer unless one is kept already; returns the one kept, which
    // stays at its address until set() or clear().
    const T& keep(T answer) const {
        T* mine = new T(std::move(answer));
        T* kept = nullptr;
        if (value_.compare_exchange_strong(kept, mine, std::memory_order_acq_rel, std::memory_order_acquire))
            return *mine;
        delete mine;
        return *kept;
    }

    void set(T answer) { replace(new T(std::move(answer))); }
    void clear() { replace(nullptr); }

private:
    T* copy() const {
        const T* kept = get();
        return kept ? new T(*kept) : nullptr;
    }
    void replace(T* value) { delete value_.exchange(value, std::memory_order_acq_rel); }

    mutable std::atomic<T*> value_{nullptr};
};

} // namespace VelCG
