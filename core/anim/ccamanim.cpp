// The camera's field-of-view track: ccamkey and ccamanim over cparamanim.
#include "anim/paramtrack.h"
#include "ciofields.h"
#include "cparamanim.h"
#include "runtime/check.h"

int ccamkey::Save(cio_save& out) const {
    return WriteInt32(out, time) && WriteFloat(out, fov);
}

int ccamkey::Load(cio_load& in, unsigned long /*version*/) {
    return ReadInt32(in, time) && ReadFloat(in, fov);
}

ccamkey ccamkey::Interpolate(const ccamkey& previous, const ccamkey& next, float f) {
    return ccamkey(previous.time, previous.fov + (next.fov - previous.fov) * f);
}

// Reports name this file, whichever header the failing check is written in.
template <>
void cparamanim<ccamkey>::Check(int ok, char const* text, int line) {
    if (!ok) MyAssertFailedLine(text, CORE_SOURCE_NAME, line);
}

template class cparamanim<ccamkey>;

int ccamanim::SetKey(int t, float fov) {
    return Set(ccamkey(t, fov));
}

int FindKeyEntry(int t, int count, const ccamkey* keys) {
    return keyarray::FindEntry(t, count, keys);
}

int FindKeyByEntry(int t, int count, const ccamkey* keys) {
    return keyarray::FindByEntry(t, count, keys);
}
