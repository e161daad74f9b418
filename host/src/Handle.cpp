#include "vel/mi/Handle.hpp"

#include <cstddef>
#include <mutex>
#include <new>
#include <thread>
#include <utility>

#include "vel/diag/Diagnostic.hpp"
#include "vel/tuvArray.hpp"

#if defined(__SANITIZE_ADDRESS__)
#define VEL_ANCHOR_POOL 0
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define VEL_ANCHOR_POOL 0
#endif
#endif
#ifndef VEL_ANCHOR_POOL
#define VEL_ANCHOR_POOL 1
#endif

namespace vel::mi {

namespace {

#if VEL_ANCHOR_POOL
// A script that first reads a large model makes an anchor for each object it
// meets, hundreds of thousands of them: anchors come from blocks of a pool
// rather than from an allocation each. A thread keeps the anchors it frees
// for the ones it makes next and gives what it kept back to the pool when it
// ends; blocks are never freed, so the pool stays as large as the most
// anchors alive at once. (AddressSanitizer builds allocate each anchor on its
// own, so that it checks their use.)
struct FreeAnchor {
    FreeAnchor* next;
};

struct AnchorPool {
    static constexpr std::size_t kBlockBytes = 64 * 1024;
    std::mutex mutex;
    FreeAnchor* free = nullptr;
};

// Never destroyed: anchors may be freed while static objects are destroyed.
AnchorPool& anchorPool() {
    static auto* pool = new AnchorPool();
    return *pool;
}

// Trivially destructible, so that reaching it costs no initialization check
// (see the accesses' thread state in Lifetime.cpp for the model).
struct ThreadAnchors {
    FreeAnchor* free;
    char* next;
    char* end;
    bool kept; // the keeper below gives them back when the thread ends
};
#if defined(__GNUC__) && !defined(_WIN32)
thread_local ThreadAnchors threadAnchors
    __attribute__((tls_model("initial-exec"))){nullptr, nullptr, nullptr, false};
#else
thread_local ThreadAnchors threadAnchors{nullptr, nullptr, nullptr, false};
#endif

void pushAll(FreeAnchor*& list, FreeAnchor* first, FreeAnchor* last) {
    last->next = list;
    list = first;
}

struct AnchorKeeper {
    std::size_t size = 0; // of every anchor this thread cut from a block
    ~AnchorKeeper() {
        ThreadAnchors& t = threadAnchors;
        // What is left of the thread's block, cut into anchors.
        for (; size && static_cast<std::size_t>(t.end - t.next) >= size; t.next += size) {
            auto* node = reinterpret_cast<FreeAnchor*>(t.next);
            node->next = t.free;
            t.free = node;
        }
        if (!t.free) return;
        FreeAnchor* last = t.free;
        while (last->next) last = last->next;
        AnchorPool& pool = anchorPool();
        const std::lock_guard<std::mutex> lock(pool.mutex);
        pushAll(pool.free, t.free, last);
        t.free = nullptr;
    }
};
thread_local AnchorKeeper anchorKeeper;

// Arms the keeper, whose destructor then runs when the thread ends.
void keepThreadAnchors(ThreadAnchors& t, std::size_t size) {
    if (t.kept) return;
    t.kept = true;
    anchorKeeper.size = size;
}

void* allocateAnchor(std::size_t size) {
    ThreadAnchors& t = threadAnchors;
    if (FreeAnchor* node = t.free) {
        t.free = node->next;
        return node;
    }
    if (static_cast<std::size_t>(t.end - t.next) < size) {
        keepThreadAnchors(t, size);
        AnchorPool& pool = anchorPool();
        {
            const std::lock_guard<std::mutex> lock(pool.mutex);
            t.free = std::exchange(pool.free, nullptr);
        }
        if (FreeAnchor* node = t.free) {
            t.free = node->next;
            return node;
        }
        t.next = static_cast<char*>(::operator new(AnchorPool::kBlockBytes));
        t.end = t.next + AnchorPool::kBlockBytes;
    }
    void* p = t.next;
    t.next += size;
    return p;
}

void freeAnchor(void* p, std::size_t size) {
    ThreadAnchors& t = threadAnchors;
    keepThreadAnchors(t, size);
    auto* node = static_cast<FreeAnchor*>(p);
    node->next = t.free;
    t.free = node;
}

// The allocator of anchors and their shared counts. std::allocate_shared
// rebinds it to the one type it allocates, so that every anchor of the pool
// has the same size: that of the type rounded to its own alignment (and to
// a free-list node's), not to the heap's, so that the 40 bytes of an anchor
// with its counts take 40 rather than 48.
template <class T>
struct AnchorAllocator {
    using value_type = T;
    static constexpr std::size_t kAlign = alignof(T) > alignof(FreeAnchor) ? alignof(T) : alignof(FreeAnchor);
    static constexpr std::size_t kSize = (sizeof(T) + kAlign - 1) / kAlign * kAlign;
    static_assert(sizeof(FreeAnchor) <= kSize && kAlign <= alignof(std::max_align_t));
    AnchorAllocator() = default;
    template <class U>
    AnchorAllocator(const AnchorAllocator<U>&) {}
    T* allocate(std::size_t n) {
        return n == 1 ? static_cast<T*>(allocateAnchor(kSize)) : std::allocator<T>().allocate(n);
    }
    void deallocate(T* p, std::size_t n) {
        if (n == 1)
            freeAnchor(p, kSize);
        else
            std::allocator<T>().deallocate(p, n);
    }
    template <class U>
    bool operator==(const AnchorAllocator<U>&) const {
        return true;
    }
    template <class U>
    bool operator!=(const AnchorAllocator<U>&) const {
        return false;
    }
};

std::shared_ptr<detail::Anchor> makeAnchor(Handle* object) {
    return std::allocate_shared<detail::Anchor>(AnchorAllocator<detail::Anchor>(), object);
}
#else
std::shared_ptr<detail::Anchor> makeAnchor(Handle* object) {
    return std::make_shared<detail::Anchor>(object);
}
#endif

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
                anchor_ = makeAnchor(const_cast<Handle*>(this));
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
