// Internal: the member definitions of cparamanim<K>. The source file of each key type includes
// this, defines cparamanim<K>::Check for its own report name and instantiates the template.
#ifndef ORVANE_CORE_ANIM_PARAMTRACK_H
#define ORVANE_CORE_ANIM_PARAMTRACK_H

#include <algorithm>

#include "anim/keyarray.h"
#include "corearray.h"
#include "cparamanim.h"

// The source lines under which both parameter tracks report, one per check: the reports are
// known by these numbers, wherever the checks stand in this code.
namespace paramtrack {
constexpr int kNewKeysLine = 48;
constexpr int kFirstKeyLine = 185;
constexpr int kLastKeyLine = 191;
constexpr int kNCacheLine = 274;
}  // namespace paramtrack

template <class K>
cparamanim<K>::cparamanim(const cparamanim& other) {
    Copy(other);
}

template <class K>
cparamanim<K>& cparamanim<K>::operator=(const cparamanim& other) {
    if (this != &other) Copy(other);
    return *this;
}

template <class K>
cparamanim<K>::~cparamanim() {
    Clear();
}

template <class K>
void cparamanim<K>::Clear() {
    keyarray::FreeKeys(keyarray::Store(keys, nkeys, nalloc));
    firstkeytime = 0;
    lastkeytime = 0;
}

template <class K>
int cparamanim<K>::Copy(const cparamanim& other) {
    if (this == &other) return 1;
    Clear();
    if (other.nkeys == 0) return 1;
    const auto report = [](int ok) { Check(ok, "newkeys", paramtrack::kNewKeysLine); };
    if (!keyarray::ResizeKeys(keyarray::Store(keys, nkeys, nalloc), other.nkeys, 1, report))
        return 0;
    std::copy(other.keys, other.keys + other.nkeys, keys);
    firstkeytime = other.firstkeytime;
    lastkeytime = other.lastkeytime;
    return 1;
}

template <class K>
int cparamanim<K>::SetNumKeys(int n, int discard) {
    const auto report = [](int ok) { Check(ok, "newkeys", paramtrack::kNewKeysLine); };
    if (!keyarray::ResizeKeys(keyarray::Store(keys, nkeys, nalloc), n, discard, report)) return 0;
    SpanKeyTimes();
    return 1;
}

template <class K>
int cparamanim<K>::Set(const K& key) {
    // An empty camera or light track makes room for 16 keys.
    if (!keyarray::PutKey(keyarray::Store(keys, nkeys, nalloc), key, 16, array_assert)) return 0;
    WidenKeyTimes(key.time);
    return 1;
}

template <class K>
int cparamanim<K>::KeyExists(int t) const {
    return keyarray::FindByEntry(t, nkeys, keys) >= 0 ? 1 : 0;
}

template <class K>
int cparamanim<K>::GetKey(int t, K& key) const {
    return GetKeyAt(keyarray::FindByEntry(t, nkeys, keys), key);
}

template <class K>
int cparamanim<K>::GetInterpolateKey(int t, K& key) const {
    const auto blend = [](const K& previous, const K& next, int at, K& key) {
        const double f = keyarray::Fraction(at, previous.time, next.time);
        key = K::Interpolate(previous, next, static_cast<float>(f));
    };
    const auto report = [](int found, bool first) {
        Check(found, keyarray::EndKeyText(first),
              first ? paramtrack::kFirstKeyLine : paramtrack::kLastKeyLine);
    };
    return keyarray::InterpolateKeys(t, nkeys, keys, firstkeytime, lastkeytime, key, blend, report);
}

template <class K>
int cparamanim<K>::RemoveKey(int t) {
    return RemoveKeyAt(keyarray::FindByEntry(t, nkeys, keys));
}

template <class K>
int cparamanim<K>::RemoveKeysSeg(int t0, int t1) {
    int i0 = 0, i1 = -1;
    keyarray::IndicesBetween(std::min(t0, t1), std::max(t0, t1), nkeys, keys, i0, i1);
    return i0 <= i1 ? RemoveKeysSegAt(i0, i1) : 0;
}

template <class K>
int cparamanim<K>::GetKeyAt(int i, K& key) const {
    if (i < 0 || i >= nkeys) return 0;
    key = keys[i];
    return 1;
}

template <class K>
int cparamanim<K>::SetKeyAt(int i, const K& key, int checkTime) {
    if (i < 0 || i >= nkeys || (checkTime && key.time != keys[i].time)) return 0;
    keys[i] = key;
    WidenKeyTimes(key.time);
    return 1;
}

template <class K>
int cparamanim<K>::RemoveKeyAt(int i) {
    return RemoveKeysSegAt(i, i);
}

template <class K>
int cparamanim<K>::RemoveKeysSegAt(int i0, int i1) {
    if (i0 > i1) std::swap(i0, i1);
    if (i0 < 0 || i1 >= nkeys) return 0;
    const auto report = [](int ok) { Check(ok, "NCache", paramtrack::kNCacheLine); };
    keyarray::RemoveKeys(keyarray::Store(keys, nkeys, nalloc), i0, i1, report);
    SpanKeyTimes();
    return 1;
}

template <class K>
int cparamanim<K>::Load(cio_load& in, unsigned long version) {
    const auto readKey = [version](cio_load& from, K& key) { return key.Load(from, version); };
    const auto report = [](int ok) { Check(ok, "newkeys", paramtrack::kNewKeysLine); };
    keyarray::TrackHead head;
    const int ok = keyarray::LoadKeys(in, keyarray::Store(keys, nkeys, nalloc), head,
                                      K::RecordBytes(version), readKey, report);
    firstkeytime = nkeys > 0 ? head.first : 0;
    lastkeytime = nkeys > 0 ? head.last : 0;
    return ok;
}

template <class K>
int cparamanim<K>::Save(cio_save& out) const {
    const auto writeKey = [](cio_save& to, const K& key) { return key.Save(to); };
    return keyarray::SaveKeys(out, keys, {nkeys, firstkeytime, lastkeytime}, writeKey);
}

template <class K>
void cparamanim<K>::SpanKeyTimes() {
    firstkeytime = 0;
    lastkeytime = 0;
    for (int i = 0; i < nkeys; ++i) WidenKeyTimes(keys[i].time);
}

template <class K>
void cparamanim<K>::WidenKeyTimes(int t) {
    firstkeytime = std::min(firstkeytime, t);
    lastkeytime = std::max(lastkeytime, t);
}

#endif
