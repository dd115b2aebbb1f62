// The parameter tracks of cameras and lights: cparamanim<K>, one design over the key type,
// with the camera's ccamkey/ccamanim and the light's clightkey/clightanim.
//
// A track holds keys sorted by strictly increasing time (integer ticks), at most one per time.
// Between keys every parameter is interpolated linearly; outside the keyed range the first or
// last key holds. The first and last key time always include time 0 (the owners keep a key
// there): they are the minimum and the maximum over 0 and the key times. Functions return 1
// for success and 0 for failure unless stated otherwise.
//
// A key type K provides an int `time`, its parameters, a default constructor, and:
//   static unsigned long RecordBytes(unsigned long version)  bytes of one key in a record
//   int Save(cio_save&) const, int Load(cio_load&, unsigned long version)  one key's record
//   static K Interpolate(const K& previous, const K& next, float f)  previous + (next -
//       previous) f for every parameter (the time is set by the track)
#ifndef ORVANE_CPARAMANIM_H
#define ORVANE_CPARAMANIM_H

#include "ccolor.h"
#include "cio.h"
#include "coreapi.h"

template <class K>
class CORE_API cparamanim {
public:
    cparamanim() = default;
    cparamanim(const cparamanim& other);
    cparamanim& operator=(const cparamanim& other);
    ~cparamanim();

    // Frees the keys and sets the key count, the capacity and both key times to 0.
    void Clear();
    // Replaces the keys with copies of `other`'s (and its key times), in an array of exactly
    // their number. Returns 0, leaving the track empty, when that array cannot be allocated.
    int Copy(const cparamanim& other);

    int NumKeys() const { return nkeys; }
    // The number of keys the array has room for.
    int Capacity() const { return nalloc; }
    // min(0, smallest key time) and max(0, largest key time), as kept by the edits.
    int GetFirstKeyTime() const { return firstkeytime; }
    int GetLastKeyTime() const { return lastkeytime; }

    // Replaces the array with exactly `n` default keys; when `discard` is 0 the first
    // min(NumKeys(), n) old keys are copied into it. n < 1 empties the track. The key times
    // are recomputed from 0 over the copied keys. Returns 0, changing nothing, when the new
    // array cannot be allocated ("newkeys" is reported).
    int SetNumKeys(int n, int discard);

    // Stores `key`, replacing the key at its time or inserting it in time order; the key
    // times widen to include its time. A full array grows to twice the key count (16 keys when
    // empty); 0 is returned, changing nothing, when it cannot grow.
    int SetKey(const K& key) { return Set(key); }

    // 1 when a key lies exactly at time t.
    int KeyExists(int t) const;
    // Copies the key at exactly time t into `key`; 0 (key untouched) when there is none.
    int GetKey(int t, K& key) const;
    // The parameters at time t: a key at t as it is; between two keys, each parameter
    // previous + (next - previous) f with f the fraction of the way from the previous key's
    // time to the next's (computed in double precision, used as a float); before the first key
    // time or after the last, the key at that time with time t ("GetKey(first,key)" or
    // "GetKey(last,key)" is reported when there is no key there, and `key` keeps its
    // parameters). Returns 0 (key untouched) for an empty track or when t has no key on one
    // side.
    int GetInterpolateKey(int t, K& key) const;

    // Removes the key at time t; 0 when there is none. An emptied track frees its array; the
    // remaining keys stay in place while they fill at least half the capacity, else they move
    // to an array of exactly their number ("NCache" is reported when it cannot be allocated,
    // and they stay in place). The key times are recomputed from 0 over the remaining keys.
    int RemoveKey(int t);
    // Removes every key whose time lies between t0 and t1 inclusive (in either order), as
    // RemoveKey does; 0 when none does.
    int RemoveKeysSeg(int t0, int t1);

    // Copies the key at index i; 0 (key untouched) for an index outside 0 .. NumKeys() - 1.
    int GetKeyAt(int i, K& key) const;
    // Overwrites the key at index i and widens the key times to include its time. With
    // `checkTime` non-zero the key's time must equal the time of the key it replaces. Keeping
    // the keys in time order is the caller's duty. Returns 0, changing nothing, for an index
    // outside the keys or a time that fails the check.
    int SetKeyAt(int i, const K& key, int checkTime);
    // Remove the key at index i, or the keys at indices i0 to i1 inclusive (in either order),
    // as RemoveKey does; 0, changing nothing, when an index lies outside the keys.
    int RemoveKeyAt(int i);
    int RemoveKeysSegAt(int i0, int i1);

    // The record: key count, first and last key time, then every key in K's record for the
    // version. Load takes the key times as they stand in the record (an empty record gives 0
    // and 0); it returns 0, leaving the track empty, for a negative count, a count the stream
    // cannot hold, a missing field or keys out of time order. Save writes the newest layout and
    // returns 0 when a write fails.
    int Load(cio_load& in, unsigned long version);
    int Save(cio_save& out) const;

protected:
    // Stores `key` as SetKey does; the typed SetKey overloads of the owners build keys for it.
    int Set(const K& key);

private:
    // The assertion report of this key type's track, under its own source file name and the
    // given line, when `ok` is 0.
    static void Check(int ok, char const* text, int line);
    // Recomputes the key times as the minimum and maximum over 0 and every key time.
    void SpanKeyTimes();
    // Widens the key times to include t.
    void WidenKeyTimes(int t);

    int firstkeytime = 0;
    int lastkeytime = 0;
    K* keys = nullptr;
    int nkeys = 0;
    int nalloc = 0;
};

// A camera key: time in ticks and the field of view in degrees.
class CORE_API ccamkey {
public:
    int time = 0;
    float fov = 53.0f;

    // Time 0, field of view 53 degrees.
    ccamkey() = default;
    ccamkey(int t, float fieldOfView) { Set(t, fieldOfView); }
    void Set(int t, float fieldOfView) {
        time = t;
        fov = fieldOfView;
    }

    // The record of one key: time (int) and field of view (float), in every version.
    static unsigned long RecordBytes(unsigned long /*version*/) { return 8; }
    int Save(cio_save& out) const;
    int Load(cio_load& in, unsigned long version);
    // The field of view previous + (next - previous) f.
    static ccamkey Interpolate(const ccamkey& previous, const ccamkey& next, float f);
};

// A light key: time in ticks, colour (r, g, b, a), hotspot and falloff (cone angles in
// degrees), range and strength.
class CORE_API clightkey {
public:
    int time = 0;
    ccolor color;
    float hotspot = 43.0f;
    float falloff = 45.0f;
    float range = 256.0f;
    float strength = 1.0f;

    // Time 0, colour (1, 1, 1, 1), hotspot 43, falloff 45, range 256, strength 1.
    clightkey() = default;
    // Intended: falloff comes before hotspot here, unlike in the fields.
    clightkey(int t, const ccolor& c, float falloffAngle, float hotspotAngle, float lightRange,
              float lightStrength) {
        Set(t, c, falloffAngle, hotspotAngle, lightRange, lightStrength);
    }
    // Intended: falloff comes before hotspot here, unlike in the fields.
    void Set(int t, const ccolor& c, float falloffAngle, float hotspotAngle, float lightRange,
             float lightStrength) {
        time = t;
        color = c;
        hotspot = hotspotAngle;
        falloff = falloffAngle;
        range = lightRange;
        strength = lightStrength;
    }

    // The record of one key: time, colour (4 floats), hotspot, falloff, range (only after
    // version 3), strength, and before version 5 two more words that are read and ignored.
    // Fields a version lacks keep their values. Save writes the newest layout.
    static unsigned long RecordBytes(unsigned long version);
    int Save(cio_save& out) const;
    int Load(cio_load& in, unsigned long version);
    // Every parameter previous + (next - previous) f, the colour channel by channel with alpha.
    static clightkey Interpolate(const clightkey& previous, const clightkey& next, float f);
};

// The tracks of both key types are compiled into the library, each reporting its failed
// checks under its own source file ("Core/ccamanim", "Core/clightanim").
template <>
void cparamanim<ccamkey>::Check(int ok, char const* text, int line);
template <>
void cparamanim<clightkey>::Check(int ok, char const* text, int line);
extern template class cparamanim<ccamkey>;
extern template class cparamanim<clightkey>;

// The field-of-view track of a camera.
class CORE_API ccamanim : public cparamanim<ccamkey> {
public:
    using cparamanim<ccamkey>::SetKey;
    // Stores the field of view `fov` (degrees) as the key at time t.
    int SetKey(int t, float fov);
};

// The colour, cone, range and strength track of a light.
class CORE_API clightanim : public cparamanim<clightkey> {
public:
    using cparamanim<clightkey>::SetKey;
    // Stores the parameters as the key at time t (falloff before hotspot, as clightkey takes
    // them).
    int SetKey(int t, const ccolor& color, float falloff, float hotspot, float range,
               float strength);
};

// The index where a search for time t over `count` keys sorted by time starts: the last key
// whose time is at most t, or an index shortly before it (0 when every key is later).
CORE_API int FindKeyEntry(int t, int count, const ccamkey* keys);
CORE_API int FindKeyEntry(int t, int count, const clightkey* keys);
// The index of the key at exactly time t, or -1.
CORE_API int FindKeyByEntry(int t, int count, const ccamkey* keys);
CORE_API int FindKeyByEntry(int t, int count, const clightkey* keys);

#endif
