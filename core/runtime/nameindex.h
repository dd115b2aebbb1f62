// Internal: names numbered in the order they were added, found by their text.
//
// Loading a project looks up each of its node names two or three times. A map from views to
// values spends most of that time waiting for memory: its slots are wide, and confirming a
// match reads the name where its owner keeps it. This index copies the names back to back and
// keeps a table of 8-byte slots (a hash tag beside an entry number), so a lookup reads one slot
// and, when the tag matches, one short stretch of the copied text.
#ifndef ORVANE_CORE_RUNTIME_NAMEINDEX_H
#define ORVANE_CORE_RUNTIME_NAMEINDEX_H

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string_view>
#include <vector>

#include "runtime/prefetch.h"

class NameIndex {
public:
    // `expected` names fit without growing.
    explicit NameIndex(size_t expected = 0) {
        starts.reserve(expected + 1);
        starts.push_back(0);
        text.reserve(expected * 8);
        slots.assign(CapacityFor(expected), 0);
    }

    // Adds `name` as entry Count(). Returns the first entry bearing the name, which is the new
    // entry when no earlier one bears it.
    int Add(std::string_view name) { return Add(name, Hash(name)); }
    // The same with the name's Hash, for a caller that has it already.
    int Add(std::string_view name, std::uint64_t hash) {
        const int entry = Count();
        text.insert(text.end(), name.begin(), name.end());
        starts.push_back(text.size());
        if (2 * (used + 1) > slots.size()) Grow();
        std::uint64_t& slot = SlotFor(name, hash);
        if (slot != 0) return Entry(slot);
        slot = Tag(hash) | (static_cast<std::uint64_t>(entry) + 1);
        ++used;
        return entry;
    }

    // The hash that Prefetch and Find take, for a caller that looks ahead.
    static std::uint64_t Hash(std::string_view name) { return std::hash<std::string_view>{}(name); }

    // Starts bringing in the slot where the name of `hash` would be added or found, so that an
    // Add or Find of it a little later does not wait for memory.
    void Prefetch(std::uint64_t hash) const {
        ::PrefetchForWrite(&slots[static_cast<size_t>(hash) & (slots.size() - 1)]);
    }

    // The first entry bearing `name` (whose hash is `hash`), or -1.
    int Find(std::string_view name, std::uint64_t hash) const {
        const std::uint64_t slot = const_cast<NameIndex*>(this)->SlotFor(name, hash);
        return slot != 0 ? Entry(slot) : -1;
    }
    int Find(std::string_view name) const { return Find(name, Hash(name)); }

    int Count() const { return static_cast<int>(starts.size()) - 1; }

    std::string_view NameAt(int entry) const {
        const auto at = static_cast<size_t>(entry);
        return std::string_view(text.data() + starts[at], starts[at + 1] - starts[at]);
    }

private:
    static constexpr std::uint64_t kEntryMask = 0xFFFFFFFFull;

    static size_t CapacityFor(size_t count) {
        size_t capacity = 16;
        while (capacity < 2 * count) capacity *= 2;
        return capacity;
    }
    // The high half of a slot: hash bits that the slot's position does not already fix.
    static std::uint64_t Tag(std::uint64_t hash) { return hash & ~kEntryMask; }
    static int Entry(std::uint64_t slot) { return static_cast<int>((slot & kEntryMask) - 1); }

    // The slot of the first entry bearing `name`, or the empty slot where it would go.
    std::uint64_t& SlotFor(std::string_view name, std::uint64_t hash) {
        const size_t mask = slots.size() - 1;
        for (size_t i = static_cast<size_t>(hash) & mask;; i = (i + 1) & mask) {
            std::uint64_t& slot = slots[i];
            if (slot == 0 || ((slot & ~kEntryMask) == Tag(hash) && NameAt(Entry(slot)) == name))
                return slot;
        }
    }

    void Grow() {
        std::vector<std::uint64_t> old(2 * slots.size(), 0);
        old.swap(slots);
        for (std::uint64_t slot : old)
            if (slot != 0) SlotFor(NameAt(Entry(slot)), Hash(NameAt(Entry(slot)))) = slot;
    }

    std::vector<char> text;      // every name, back to back
    std::vector<size_t> starts;  // entry i is text[starts[i], starts[i + 1])
    std::vector<std::uint64_t>
        slots;  // Tag(hash) | (entry + 1) of each name's first entry; 0 is empty
    size_t used = 0;
};

#endif
