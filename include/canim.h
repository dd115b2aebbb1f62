// The transform key track of every node: ckey and canim.
//
// A canim holds ckeys sorted by strictly increasing time (integer ticks), at most one per
// time, each a complete local transform relative to the node's parent. Between keys the
// position and scale are interpolated linearly and the rotation spherically; outside the keyed
// range the first or last key holds. The keys live in one raw array (array_new) that grows to
// twice the key count when full (to one key when empty: most nodes hold only their key at time
// 0) and shrinks to exactly the remaining keys when a removal leaves it less than half full.
// Functions return 1 for success and 0 for failure unless stated otherwise.
#ifndef ORVANE_CANIM_H
#define ORVANE_CANIM_H

#include "cio.h"
#include "coreapi.h"
#include "cpoint.h"
#include "cquat.h"

// One transform key: time in ticks; position, rotation and scale relative to the parent.
struct ckey {
    int time = 0;
    cpoint3 position;
    cquat rotation;
    cpoint3 scale = cpoint3(1.0f, 1.0f, 1.0f);

    // Time 0, position (0, 0, 0), the identity rotation, scale (1, 1, 1).
    ckey() = default;
    ckey(int t, const cpoint3& p, const cquat& q, const cpoint3& s) { Set(t, p, q, s); }

    void Set(int t, const cpoint3& p, const cquat& q, const cpoint3& s) {
        time = t;
        position = p;
        rotation = q;
        scale = s;
    }
};

class CORE_API canim {
public:
    canim() = default;
    canim(const canim& other);
    canim& operator=(const canim& other);
    ~canim();

    // Frees the keys: no keys, no room, first and last key time 0.
    void Clear();
    // Replaces the keys with copies of `other`'s, in an array of exactly their number. Returns
    // 0, leaving the track empty, when that array cannot be allocated.
    int Copy(const canim& other);

    int NumKeys() const { return nkeys; }
    // The number of keys the array has room for.
    int Capacity() const { return nalloc; }
    // The times of the first and last key (0 for an empty track).
    int GetFirstKeyTime() const { return firstkeytime; }
    int GetLastKeyTime() const { return lastkeytime; }

    // Replaces the array with exactly `n` default keys (time 0, identity transform); when
    // `discard` is 0 the first min(NumKeys(), n) old keys are copied into it. n < 1 empties the
    // track. The keys are then filled with SetKeyAt. Returns 0, changing nothing, when the new
    // array cannot be allocated.
    int SetNumKeys(int n, int discard);

    // Stores `key`, replacing the key at its time or inserting it in time order. Returns 0,
    // changing nothing, when the array is full and cannot grow.
    int SetKey(const ckey& key);
    int SetKey(int t, const cpoint3& position, const cquat& rotation, const cpoint3& scale);

    // 1 when a key lies exactly at time t.
    int KeyExists(int t) const;
    // Copies the key at exactly time t into `key`; 0 (key untouched) when there is none.
    int GetKey(int t, ckey& key) const;
    // The transform at time t: a key at t as it is; between two keys, position and scale
    // linear and rotation spherical (Slerp) in the fraction of the way from the previous key's
    // time to the next's; before the first key or after the last, that key with time t.
    // Returns 0 (key untouched) for an empty track or when t has no key on one side.
    int GetInterpolateKey(int t, ckey& key) const;

    // Removes the key at time t; 0 when there is none.
    int RemoveKey(int t);
    // Removes every key whose time lies between t0 and t1 inclusive (in either order); 0 when
    // none does.
    int RemoveKeysSeg(int t0, int t1);

    // Overwrites the key at index i (0 .. NumKeys() - 1). With `checkTime` non-zero the key's
    // time must equal the time of the key it replaces. Keeping the keys in time order is the
    // caller's duty. Returns 0, changing nothing, for an index outside the keys or a time that
    // fails the check.
    int SetKeyAt(int i, const ckey& key, int checkTime);
    // Copies the key at index i; 0 (key untouched) for an index outside the keys.
    int GetKeyAt(int i, ckey& key) const;
    // Removes the key at index i, or the keys at indices i0 to i1 inclusive (in either order);
    // 0, changing nothing, when an index lies outside the keys.
    int RemoveKeyAt(int i);
    int RemoveKeysSegAt(int i0, int i1);

    // The record: key count, first and last key time, then per key its time, position,
    // rotation (x, y, z, w, normalised) and scale, 44 bytes. Load reads every version the same
    // way and normalises the rotations it reads; it returns 0, leaving the track empty, for a
    // negative count, a count the stream cannot hold, a missing field or keys out of time
    // order. Save returns 0 when a write fails.
    int Load(cio_load& in, unsigned long version);
    int Save(cio_save& out) const;

private:
    // Keeps the first and last key time equal to the times of the keys at both ends.
    void UpdateKeyTimes();

    ckey* keys = nullptr;
    int nkeys = 0;
    int nalloc = 0;
    int firstkeytime = 0;
    int lastkeytime = 0;
};

// The index where a search for time t over `count` keys sorted by time starts: the last key
// whose time is at most t, or an index shortly before it (0 when every key is later).
CORE_API int FindKeyEntry(int t, int count, const ckey* keys);
// The index of the key at exactly time t, or -1.
CORE_API int FindKeyByEntry(int t, int count, const ckey* keys);

#endif
