// The light's parameter track: clightkey and clightanim over cparamanim.
#include "anim/paramtrack.h"
#include "ciofields.h"
#include "cparamanim.h"
#include "runtime/check.h"

namespace {

// The first version whose light keys hold a range, and the first without the two ignored
// words after the strength.
constexpr unsigned long kRangeVersion = 4;
constexpr unsigned long kCompactVersion = 5;

float Lerp(float previous, float next, float f) {
    return previous + (next - previous) * f;
}

}  // namespace

unsigned long clightkey::RecordBytes(unsigned long version) {
    const unsigned long rangeBytes = version >= kRangeVersion ? 4 : 0;
    const unsigned long ignoredBytes = version >= kCompactVersion ? 0 : 8;
    return 4 + 16 + 4 + 4 + rangeBytes + 4 + ignoredBytes;
}

int clightkey::Save(cio_save& out) const {
    return WriteInt32(out, time) && WriteColor(out, color) && WriteFloat(out, hotspot) &&
           WriteFloat(out, falloff) && WriteFloat(out, range) && WriteFloat(out, strength);
}

int clightkey::Load(cio_load& in, unsigned long version) {
    if (!ReadInt32(in, time) || !ReadColor(in, color) || !ReadFloat(in, hotspot) ||
        !ReadFloat(in, falloff))
        return 0;
    if (version >= kRangeVersion && !ReadFloat(in, range)) return 0;
    if (!ReadFloat(in, strength)) return 0;
    return version >= kCompactVersion || in.Skip(8);
}

clightkey clightkey::Interpolate(const clightkey& previous, const clightkey& next, float f) {
    clightkey key = previous;
    key.color = previous.color + (next.color - previous.color) * f;
    key.hotspot = Lerp(previous.hotspot, next.hotspot, f);
    key.falloff = Lerp(previous.falloff, next.falloff, f);
    key.range = Lerp(previous.range, next.range, f);
    key.strength = Lerp(previous.strength, next.strength, f);
    return key;
}

// Reports name this file, whichever header the failing check is written in.
template <>
void cparamanim<clightkey>::Check(int ok, char const* text, int line) {
    if (!ok) MyAssertFailedLine(text, CORE_SOURCE_NAME, line);
}

template class cparamanim<clightkey>;

int clightanim::SetKey(int t, const ccolor& color, float falloff, float hotspot, float range,
                       float strength) {
    return Set(clightkey(t, color, falloff, hotspot, range, strength));
}

int FindKeyEntry(int t, int count, const clightkey* keys) {
    return keyarray::FindEntry(t, count, keys);
}

int FindKeyByEntry(int t, int count, const clightkey* keys) {
    return keyarray::FindByEntry(t, count, keys);
}
