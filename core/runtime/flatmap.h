// Internal: a hash map kept in one flat array, for the scene's bulk work over every node.
//
// Loading, saving and ordering a scene look up each node's name or address once or twice;
// with 100,000 nodes a node-based map spends most of its time allocating, freeing and
// chasing its nodes. This one probes linearly, never erases, and stores keys by value: a
// std::string_view key views characters that must outlive the map.
#ifndef ORVANE_CORE_RUNTIME_FLATMAP_H
#define ORVANE_CORE_RUNTIME_FLATMAP_H

#include <cstddef>
#include <cstdint>
#include <functional>
#include <type_traits>
#include <utility>
#include <vector>

#include "runtime/prefetch.h"

template <class Key, class Value>
class FlatMap {
public:
    // `expected` keys fit without growing.
    explicit FlatMap(size_t expected = 0) { Rehash(CapacityFor(expected)); }

    // Adds `key` with `value` unless the map holds the key already. Returns the value kept for
    // the key, and whether it was added.
    std::pair<Value*, bool> Insert(const Key& key, Value value) {
        if (2 * (used + 1) > slots.size()) Rehash(2 * slots.size());
        const size_t hash = std::hash<Key>{}(key);
        Slot& slot = SlotFor(key, hash);
        if (slot.full) return {&slot.value, false};
        slot = Slot{key, std::move(value), Hash{hash}, true};
        ++used;
        return {&slot.value, true};
    }

    // Starts bringing in the slot where `key` would be added or found, so that an Insert or
    // Find of it a little later does not wait for memory.
    void Prefetch(const Key& key) const {
        ::PrefetchForWrite(&slots[Spread(std::hash<Key>{}(key)) & (slots.size() - 1)]);
    }

    // The value kept for `key`, or null.
    Value* Find(const Key& key) {
        Slot& slot = SlotFor(key, std::hash<Key>{}(key));
        return slot.full ? &slot.value : nullptr;
    }
    const Value* Find(const Key& key) const { return const_cast<FlatMap*>(this)->Find(key); }
    bool Contains(const Key& key) const { return Find(key) != nullptr; }

    size_t Size() const { return used; }

private:
    // Keys whose hash is the key itself (addresses, integers) keep no copy of it, so that
    // more slots share a cache line; other keys keep their hash to skip most comparisons.
    static constexpr bool kKeepsHash = !std::is_pointer_v<Key> && !std::is_integral_v<Key>;
    struct KeptHash {
        size_t hash = 0;
        size_t Get(const Key&) const { return hash; }
        bool Matches(size_t other) const { return hash == other; }
    };
    struct OwnHash {
        explicit OwnHash(size_t = 0) {}
        size_t Get(const Key& key) const { return std::hash<Key>{}(key); }
        bool Matches(size_t) const { return true; }
    };
    using Hash = std::conditional_t<kKeepsHash, KeptHash, OwnHash>;
    struct Slot {
        Key key{};
        Value value{};
        Hash hash{};
        bool full = false;
    };

    // A power of two at least twice `count`, so that probe runs stay short.
    static size_t CapacityFor(size_t count) {
        size_t capacity = 16;
        while (capacity < 2 * count) capacity *= 2;
        return capacity;
    }

    // The slot holding `key`, or the empty slot where it would go.
    Slot& SlotFor(const Key& key, size_t hash) {
        const size_t mask = slots.size() - 1;
        for (size_t i = Spread(hash) & mask;; i = (i + 1) & mask) {
            Slot& slot = slots[i];
            if (!slot.full || (slot.hash.Matches(hash) && slot.key == key)) return slot;
        }
    }

    // Pointers hash to themselves, whose low bits are alignment zeros: a Fibonacci multiply
    // brings every bit into the bits that pick the slot.
    static size_t Spread(size_t hash) {
        return static_cast<size_t>((std::uint64_t{hash} * 0x9E3779B97F4A7C15ull) >> 32);
    }

    void Rehash(size_t capacity) {
        std::vector<Slot> old(capacity);
        old.swap(slots);
        for (Slot& slot : old)
            if (slot.full) SlotFor(slot.key, slot.hash.Get(slot.key)) = std::move(slot);
    }

    std::vector<Slot> slots;
    size_t used = 0;
};

// A set of keys: a map whose values say nothing.
template <class Key>
class FlatSet {
public:
    explicit FlatSet(size_t expected = 0) : map(expected) {}
    // Adds `key`; returns whether it was new.
    bool Insert(const Key& key) { return map.Insert(key, true).second; }
    bool Contains(const Key& key) const { return map.Contains(key); }
    void Prefetch(const Key& key) const { map.Prefetch(key); }
    size_t Size() const { return map.Size(); }

private:
    FlatMap<Key, bool> map;
};

#endif
