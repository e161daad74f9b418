#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <mutex>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "vel/mi/HandleClass.hpp"

namespace korb {

class ObjectSystem;

namespace detail {

// Names to members, built once, then looked up by any string without
// allocating: open addressing over a power-of-two table at most half full.
// The names are views of the members' own names.
template <class Member>
class NameIndex {
public:
    // Members in lookup order: of two with one name, the first wins.
    explicit NameIndex(const std::vector<const Member*>& members) {
        std::size_t size = 4;
        while (size < 2 * members.size()) size *= 2;
        slots_.resize(size);
        mask_ = size - 1;
        for (const Member* m : members) {
            const Key key = keyOf(m->name);
            Slot& slot = slots_[position(key, m->name)];
            if (!slot.member) slot = {key, m};
        }
    }

    const Member* find(std::string_view name) const { return slots_[position(keyOf(name), name)].member; }

private:
    // A name as two words that, with its length, are the whole name up to
    // 16 characters (overlapping loads of its first and last bytes), so
    // that most names compare without a loop.
    struct Key {
        std::uint64_t head = 0;
        std::uint64_t tail = 0;
        std::size_t size = 0;
        bool operator==(const Key& o) const { return head == o.head && tail == o.tail && size == o.size; }
    };
    struct Slot {
        Key key;
        const Member* member = nullptr;
    };

    template <class Word>
    static std::uint64_t load(const char* p) {
        Word w;
        std::memcpy(&w, p, sizeof w);
        return w;
    }

    static Key keyOf(std::string_view s) {
        const char* p = s.data();
        const std::size_t n = s.size();
        Key k;
        k.size = n;
        if (n >= 8) {
            k.head = load<std::uint64_t>(p);
            k.tail = load<std::uint64_t>(p + n - 8);
        } else if (n >= 4) {
            k.head = load<std::uint32_t>(p) | load<std::uint32_t>(p + n - 4) << 32;
        } else if (n > 0) {
            auto byte = [&](std::size_t i) { return std::uint64_t(static_cast<unsigned char>(p[i])); };
            k.head = byte(0) | byte(n / 2) << 8 | byte(n - 1) << 16;
        }
        return k;
    }

    static std::size_t hash(const Key& k) {
        const std::uint64_t h = (k.head ^ (k.tail * 0xC2B2AE3D27D4EB4Full) ^ k.size) * 0x9E3779B97F4A7C15ull;
        return static_cast<std::size_t>(h >> 32);
    }

    // The slot holding name, or the empty slot where it would go.
    std::size_t position(const Key& key, std::string_view name) const {
        for (std::size_t i = hash(key) & mask_;; i = (i + 1) & mask_) {
            const Slot& slot = slots_[i];
            if (!slot.member) return i;
            if (slot.key == key && (key.size <= 16 || std::string_view(slot.member->name) == name)) return i;
        }
    }

    std::vector<Slot> slots_;
    std::size_t mask_ = 0;
};

// A registered class with every member it answers, its own and inherited,
// the most derived declaration of each name winning; resolved when the
// class is registered and again whenever the registry loses classes.
struct ClassEntry {
    const vel::mi::HandleClass* cls;
    NameIndex<vel::mi::HandleClass::Property> properties;
    NameIndex<vel::mi::HandleClass::Method> methods;
    // False when the superclass chain stops at a class that is not
    // registered, so that registering it later resolves the entry again.
    bool complete;
    // The guard of the most derived class in the chain that has one.
    vel::mi::HandleClass::AccessGuard guard;
    // Runs the guard before a use of an object of the class; `reading` for
    // a property read or a call of a method that only reads.
    void enter(bool reading) const {
        if (reading && guard.readersProceed) return;
        if (guard.busy && guard.busy->load(std::memory_order_acquire) != 0) guard.wait();
    }
};

// Class entries by type-name pointer: the slot a pointer hashes to holds
// the last pointer found there with its entry. Read without a lock from any
// thread; filled under a mutex. Each pointer has one node, kept until the
// registry changes (which happens on no other thread at the same time), so
// two pointers taking turns in one slot do not add nodes.
class TypeNameCache {
public:
    const ClassEntry* find(const char* typeName) const {
        const Node* node = slots_[slotOf(typeName)].load(std::memory_order_acquire);
        return node && node->typeName == typeName ? node->entry : nullptr;
    }

    void remember(const char* typeName, const ClassEntry* entry) {
        std::lock_guard lock(mutex_);
        const Node& node = nodes_.try_emplace(typeName, Node{typeName, entry}).first->second;
        slots_[slotOf(typeName)].store(&node, std::memory_order_release);
    }

    void clear() {
        std::lock_guard lock(mutex_);
        for (auto& slot : slots_) slot.store(nullptr, std::memory_order_relaxed);
        nodes_.clear();
    }

private:
    struct Node {
        const char* typeName;
        const ClassEntry* entry;
    };
    static constexpr std::size_t kSlots = 256;

    static std::size_t slotOf(const char* typeName) {
        const auto p = reinterpret_cast<std::uintptr_t>(typeName);
        return static_cast<std::size_t>((p >> 3) ^ (p >> 11)) % kSlots;
    }

    std::array<std::atomic<const Node*>, kSlots> slots_{};
    std::mutex mutex_;
    // Node addresses stay put while the map grows.
    std::unordered_map<const char*, Node> nodes_;
};

} // namespace detail
} // namespace korb
