// The transform key track.
#include "canim.h"

#include <algorithm>

#include "anim/keyarray.h"
#include "ciofields.h"
#include "corearray.h"
#include "io/fieldcodec.h"
#include "runtime/check.h"

namespace {

constexpr unsigned int kKeyRecordBytes = 44;

float Lerp(float previous, float next, double u) {
    return static_cast<float>(previous + (static_cast<double>(next) - previous) * u);
}

cpoint3 Lerp(const cpoint3& previous, const cpoint3& next, double u) {
    return cpoint3(Lerp(previous.x, next.x, u), Lerp(previous.y, next.y, u),
                   Lerp(previous.z, next.z, u));
}

// Position and scale linear, rotation spherical, at the fraction of the way to `next` where t
// lies (computed in double precision), written straight into `key` (see InterpolateKeys).
void Blend(const ckey& previous, const ckey& next, int t, ckey& key) {
    const double u = keyarray::Fraction(t, previous.time, next.time);
    key.position = Lerp(previous.position, next.position, u);
    key.rotation = Slerp(previous.rotation, next.rotation, static_cast<float>(u));
    key.scale = Lerp(previous.scale, next.scale, u);
}

int WriteKey(cio_save& out, const ckey& key) {
    return WritePiece(out, kKeyRecordBytes, [&key](FieldEncoder field) {
        field(key.time)(key.position)(Normalize(key.rotation))(key.scale);
    });
}

int ReadKey(cio_load& in, ckey& key) {
    if (!ReadPiece(in, kKeyRecordBytes, [&key](FieldDecoder field) {
            field(key.time)(key.position)(key.rotation)(key.scale);
        }))
        return 0;
    key.rotation.Normalize();
    return 1;
}

void ReportEndKey(int found, bool first) {
    CORE_CHECK(found, keyarray::EndKeyText(first));
}

}  // namespace

int FindKeyEntry(int t, int count, const ckey* keys) {
    return keyarray::FindEntry(t, count, keys);
}

int FindKeyByEntry(int t, int count, const ckey* keys) {
    return keyarray::FindByEntry(t, count, keys);
}

canim::canim(const canim& other) {
    Copy(other);
}

canim& canim::operator=(const canim& other) {
    if (this != &other) Copy(other);
    return *this;
}

canim::~canim() {
    Clear();
}

void canim::Clear() {
    keyarray::FreeKeys(keyarray::Store(keys, nkeys, nalloc));
    UpdateKeyTimes();
}

int canim::Copy(const canim& other) {
    if (this == &other) return 1;
    Clear();
    if (other.nkeys == 0) return 1;
    if (!keyarray::ResizeKeys(keyarray::Store(keys, nkeys, nalloc), other.nkeys, 1, array_assert))
        return 0;
    std::copy(other.keys, other.keys + other.nkeys, keys);
    UpdateKeyTimes();
    return 1;
}

int canim::SetNumKeys(int n, int discard) {
    if (!keyarray::ResizeKeys(keyarray::Store(keys, nkeys, nalloc), n, discard, array_assert))
        return 0;
    UpdateKeyTimes();
    return 1;
}

int canim::SetKey(const ckey& key) {
    // Most nodes hold only their key at time 0: an empty track makes room for one key, and
    // animated ones double from there.
    if (!keyarray::PutKey(keyarray::Store(keys, nkeys, nalloc), key, 1, array_assert)) return 0;
    UpdateKeyTimes();
    return 1;
}

int canim::SetKey(int t, const cpoint3& position, const cquat& rotation, const cpoint3& scale) {
    return SetKey(ckey(t, position, rotation, scale));
}

int canim::KeyExists(int t) const {
    return FindKeyByEntry(t, nkeys, keys) >= 0 ? 1 : 0;
}

int canim::GetKey(int t, ckey& key) const {
    return GetKeyAt(FindKeyByEntry(t, nkeys, keys), key);
}

int canim::GetInterpolateKey(int t, ckey& key) const {
    return keyarray::InterpolateKeys(t, nkeys, keys, firstkeytime, lastkeytime, key, Blend,
                                     ReportEndKey);
}

int canim::RemoveKey(int t) {
    return RemoveKeyAt(FindKeyByEntry(t, nkeys, keys));
}

int canim::RemoveKeysSeg(int t0, int t1) {
    int i0 = 0, i1 = -1;
    keyarray::IndicesBetween(std::min(t0, t1), std::max(t0, t1), nkeys, keys, i0, i1);
    return i0 <= i1 ? RemoveKeysSegAt(i0, i1) : 0;
}

int canim::SetKeyAt(int i, const ckey& key, int checkTime) {
    if (i < 0 || i >= nkeys || (checkTime && key.time != keys[i].time)) return 0;
    keys[i] = key;
    UpdateKeyTimes();
    return 1;
}

int canim::GetKeyAt(int i, ckey& key) const {
    if (i < 0 || i >= nkeys) return 0;
    key = keys[i];
    return 1;
}

int canim::RemoveKeyAt(int i) {
    return RemoveKeysSegAt(i, i);
}

int canim::RemoveKeysSegAt(int i0, int i1) {
    if (i0 > i1) std::swap(i0, i1);
    if (i0 < 0 || i1 >= nkeys) return 0;
    keyarray::RemoveKeys(keyarray::Store(keys, nkeys, nalloc), i0, i1, array_assert);
    UpdateKeyTimes();
    return 1;
}

int canim::Load(cio_load& in, unsigned long /*version*/) {
    // The head's key times repeat those of the end keys, which are taken instead.
    keyarray::TrackHead head;
    const int ok = keyarray::LoadKeys(in, keyarray::Store(keys, nkeys, nalloc), head,
                                      kKeyRecordBytes, ReadKey, array_assert);
    UpdateKeyTimes();
    return ok;
}

int canim::Save(cio_save& out) const {
    return keyarray::SaveKeys(out, keys, {nkeys, firstkeytime, lastkeytime}, WriteKey);
}

void canim::UpdateKeyTimes() {
    firstkeytime = nkeys > 0 ? keys[0].time : 0;
    lastkeytime = nkeys > 0 ? keys[nkeys - 1].time : 0;
}
