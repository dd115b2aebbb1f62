// Internal: asking for memory ahead of a random read, where the compiler offers it.
#ifndef ORVANE_CORE_RUNTIME_PREFETCH_H
#define ORVANE_CORE_RUNTIME_PREFETCH_H

#include <cstdint>

// How many places ahead a pass over every node of a large scene asks for the memory an item
// will need: far enough to hide a trip to memory, near enough to find it still in the cache.
constexpr int kPrefetchAhead = 8;

// Starts bringing the cache line at `p` in; the read (or, with Write, the write) that follows
// later does not wait for memory. Only a hint: nothing is read and any address is allowed.
inline void Prefetch(const void* p) {
#if defined(__GNUC__)
    __builtin_prefetch(p);
#else
    static_cast<void>(p);
#endif
}

inline void PrefetchForWrite(const void* p) {
#if defined(__GNUC__)
    __builtin_prefetch(p, 1);
#else
    static_cast<void>(p);
#endif
}

// Starts bringing in every cache line that the `bytes` bytes at `p` touch: a whole object
// that is about to be read field by field.
inline void PrefetchBytes(const void* p, unsigned long bytes) {
    constexpr std::uintptr_t kLine = 64;
    const auto start = reinterpret_cast<std::uintptr_t>(p);
    for (std::uintptr_t line = start & ~(kLine - 1); line < start + bytes; line += kLine)
        Prefetch(reinterpret_cast<const void*>(line));
}

#endif
