// Internal: the sorted raw key arrays behind every key track (canim and cparamanim<K>).
//
// A key type has an int `time`, a default constructor and trivial copies. The functions work
// on an owner's fields through a KeyStore view and report nothing under their own name: every
// allocation is checked through the `report(int ok)` the owner passes, so that the report
// names the owner's source file and text.
#ifndef ORVANE_CORE_ANIM_KEYARRAY_H
#define ORVANE_CORE_ANIM_KEYARRAY_H

#include <algorithm>
#include <climits>
#include <new>
#include <type_traits>

#include "ciofields.h"
#include "corearray.h"
#include "io/fieldcodec.h"

namespace keyarray {

// The owner's array, key count and capacity.
template <class K>
struct KeyStore {
    K*& keys;
    int& count;
    int& capacity;
};

template <class K>
KeyStore<K> Store(K*& keys, int& count, int& capacity) {
    static_assert(std::is_trivially_copyable<K>::value, "keys are copied as plain values");
    return KeyStore<K>{keys, count, capacity};
}

// The start of a search for time t: the last key whose time is at most t, or an index shortly
// before it; 0 when every key is later or there are none.
template <class K>
int FindEntry(int t, int count, const K* keys) {
    // Intended: tracks keyed on every tick from 0 are answered without searching.
    if (t >= 0 && t < count && keys[t].time == t) return t;
    int position = 0;
    for (int step = count; step / 2 != 0;) {
        step /= 2;
        if (t >= keys[position + step].time) position += step;
    }
    return position;
}

// The index of the key at exactly time t, or -1.
template <class K>
int FindByEntry(int t, int count, const K* keys) {
    for (int i = FindEntry(t, count, keys); i < count && keys[i].time <= t; ++i)
        if (keys[i].time == t) return i;
    return -1;
}

// The index of the first key later than t (count when there is none).
template <class K>
int FirstLater(int t, int count, const K* keys) {
    int i = FindEntry(t, count, keys);
    while (i < count && keys[i].time <= t) ++i;
    return i;
}

// The first and last index of the keys with times in [t0, t1]; empty when first > last.
template <class K>
void IndicesBetween(int t0, int t1, int count, const K* keys, int& first, int& last) {
    first = FindEntry(t0, count, keys);
    while (first < count && keys[first].time < t0) ++first;
    last = FirstLater(t1, count, keys) - 1;
}

// Where time t falls: the number of keys at or before t, so that keys[i - 1] is the key at t
// or the last key before it and keys[i] the first key after it (where they exist). This is
// what a forward scan from FindEntry would find; it is located with a branching binary search,
// which the processor speculates through far faster than the halving search's data-dependent
// steps on long tracks. One index rather than a struct of three: a small struct returned
// through memory is written in pieces and read back whole, stalling store forwarding.
template <class K>
int KeysUpTo(int t, int count, const K* keys) {
    const K* later = std::upper_bound(keys, keys + count, t,
                                      [](int time, const K& key) { return time < key.time; });
    return static_cast<int>(later - keys);
}

// The report text of an end key missing at the first (`first`) or last key time.
inline char const* EndKeyText(bool first) {
    return first ? "GetKey(first,key)" : "GetKey(last,key)";
}

// The fraction of the way from time tp to time tn at which t lies, in double precision.
inline double Fraction(int t, int tp, int tn) {
    return (static_cast<double>(t) - tp) / (static_cast<double>(tn) - tp);
}

// The track's value at t, shared by every key type. `blend(previous, next, t, key)` writes the
// interpolated payload into `key` field by field: a key built aside and copied over would be
// stored in pieces and read back whole, which stalls the processor's store forwarding on every
// call. Each field is read before it is written, so `key` may be one of the two keys. The
// function `report(found, first)` is told whether the held first or last key was found.
template <class K, class Blend, class Report>
int InterpolateKeys(int t, int count, const K* keys, int first, int last, K& key, Blend blend,
                    Report report) {
    if (count == 0) return 0;
    if (t < first || t > last) {
        const bool before = t < first;
        const int held = FindByEntry(before ? first : last, count, keys);
        report(held >= 0, before);
        if (held >= 0) key = keys[held];
        key.time = t;
        return 1;
    }
    const int i = KeysUpTo(t, count, keys);
    if (i > 0 && keys[i - 1].time == t) {
        key = keys[i - 1];
        return 1;
    }
    // No key before t, or none after it.
    if (i == 0 || i >= count) return 0;
    blend(keys[i - 1], keys[i], t, key);
    key.time = t;
    return 1;
}

// A block from array_new with room for `n` keys; null when n < 1 or the block cannot be had.
// Unless `spare`, it holds n default keys. With `spare` the caller assigns every key it will
// use: keys are plain values, so a slot needs no default key first, and a grown track's spare
// room (up to 15 keys after its first) is never written twice.
template <class K>
K* NewKeys(int n, bool spare = false) {
    if (n < 1 || static_cast<unsigned long>(n) > ULONG_MAX / sizeof(K)) return nullptr;
    K* keys = static_cast<K*>(array_new(static_cast<unsigned long>(n) * sizeof(K)));
    if (keys && !(spare && std::is_trivially_copyable_v<K>))
        for (int i = 0; i < n; ++i) new (keys + i) K();
    return keys;
}

template <class K>
void FreeKeys(KeyStore<K> store) {
    array_delete(store.keys);
    store.keys = nullptr;
    store.count = 0;
    store.capacity = 0;
}

// Makes `block` (of `capacity` keys, the first `count` in use) the store's array.
template <class K>
void Adopt(KeyStore<K> store, K* block, int count, int capacity) {
    array_delete(store.keys);
    store.keys = block;
    store.count = count;
    store.capacity = capacity;
}

// The capacity after growing a full array of `count` keys: twice the count, `first` when
// empty.
inline int GrownCapacity(int count, int first) {
    if (count == 0) return first;
    return count > INT_MAX / 2 ? INT_MAX : 2 * count;
}

// Stores `key`: replaces the key at its time, or inserts it before the first later key,
// growing a full array first (to `firstCapacity` keys when empty). Returns 0, changing
// nothing, when it cannot grow.
template <class K, class Report>
int PutKey(KeyStore<K> store, const K& key, int firstCapacity, Report report) {
    const int same = FindByEntry(key.time, store.count, store.keys);
    if (same >= 0) {
        store.keys[same] = key;
        return 1;
    }
    const int at = FirstLater(key.time, store.count, store.keys);
    if (store.count < store.capacity) {
        std::copy_backward(store.keys + at, store.keys + store.count, store.keys + store.count + 1);
        store.keys[at] = key;
        ++store.count;
        return 1;
    }
    if (store.count == INT_MAX) return 0;
    const int capacity = GrownCapacity(store.count, firstCapacity);
    K* block = NewKeys<K>(capacity, true);
    report(block != nullptr);
    if (!block) return 0;
    std::copy(store.keys, store.keys + at, block);
    block[at] = key;
    std::copy(store.keys + at, store.keys + store.count, block + at + 1);
    Adopt(store, block, store.count + 1, capacity);
    return 1;
}

// Removes the keys at indices i0 .. i1 (valid, i0 <= i1). An emptied array is freed; the
// remaining keys move down in place while they fill at least half the capacity, else into a
// block of exactly their number. When that block cannot be had (after report(0)) they move
// down in place instead.
template <class K, class Report>
void RemoveKeys(KeyStore<K> store, int i0, int i1, Report report) {
    const int remaining = store.count - (i1 - i0 + 1);
    if (remaining == 0) return FreeKeys(store);
    if (2LL * remaining < store.capacity) {
        K* block = NewKeys<K>(remaining);
        report(block != nullptr);
        if (block) {
            std::copy(store.keys, store.keys + i0, block);
            std::copy(store.keys + i1 + 1, store.keys + store.count, block + i0);
            return Adopt(store, block, remaining, remaining);
        }
    }
    std::copy(store.keys + i1 + 1, store.keys + store.count, store.keys + i0);
    store.count = remaining;
}

// Replaces the array with exactly `n` default keys, keeping copies of the first min(count, n)
// old keys unless `discard`; n < 1 frees it. Returns 0, changing nothing, when the block
// cannot be had (after report(0)).
template <class K, class Report>
int ResizeKeys(KeyStore<K> store, int n, int discard, Report report) {
    if (n < 1) {
        FreeKeys(store);
        return 1;
    }
    K* block = NewKeys<K>(n);
    report(block != nullptr);
    if (!block) return 0;
    if (!discard) std::copy(store.keys, store.keys + std::min(store.count, n), block);
    Adopt(store, block, n, n);
    return 1;
}

// The head of a track record: key count, first and last key time.
struct TrackHead {
    int count = 0;
    int first = 0;
    int last = 0;
};

constexpr unsigned int kHeadBytes = 12;

inline int ReadHead(cio_load& in, TrackHead& head) {
    return ReadPiece(in, kHeadBytes,
                     [&head](FieldDecoder field) { field(head.count)(head.first)(head.last); });
}

inline int WriteHead(cio_save& out, const TrackHead& head) {
    return WritePiece(out, kHeadBytes,
                      [&head](FieldEncoder field) { field(head.count)(head.first)(head.last); });
}

// Reads a track record into the freed store: the head, then `head.count` keys through
// `readKey(in, key)`, each taking at most `keyBytes` bytes. The count is checked against what
// the stream holds before anything is allocated. Returns 0, leaving the store empty, for a
// missing head, a negative or impossible count, a failed allocation, a missing key or keys out
// of strictly increasing time order (every search relies on that order); on success `head`
// holds the record's head.
template <class K, class ReadKey, class Report>
int LoadKeys(cio_load& in, KeyStore<K> store, TrackHead& head, unsigned long keyBytes,
             ReadKey readKey, Report report) {
    FreeKeys(store);
    if (!ReadHead(in, head) || !StreamHolds(in, head.count, keyBytes)) return 0;
    if (head.count == 0) return 1;
    K* block = NewKeys<K>(head.count);
    report(block != nullptr);
    if (!block) return 0;
    for (int i = 0; i < head.count; ++i) {
        if (!readKey(in, block[i]) || (i > 0 && block[i].time <= block[i - 1].time)) {
            array_delete(block);
            return 0;
        }
    }
    Adopt(store, block, head.count, head.count);
    return 1;
}

// Writes the head and every key through `writeKey(out, key)`; 0 when a write fails.
template <class K, class WriteKey>
int SaveKeys(cio_save& out, const K* keys, const TrackHead& head, WriteKey writeKey) {
    if (!WriteHead(out, head)) return 0;
    for (int i = 0; i < head.count; ++i)
        if (!writeKey(out, keys[i])) return 0;
    return 1;
}

}  // namespace keyarray

#endif
