// Internal: the parameters a light or a camera keeps twice, as a current value (what it shows
// at the current animation time) and as keys of its parameter track (cparamanim<K>).
#ifndef ORVANE_CORE_SCENE_KEYEDPARAMS_H
#define ORVANE_CORE_SCENE_KEYEDPARAMS_H

#include "animclock.h"
#include "cparamanim.h"

namespace keyedparams {

// The track's parameters at `time`, over a key that starts with the defaults (so an empty
// track answers them).
template <class K>
K KeyAt(const cparamanim<K>& track, int time) {
    K key;
    track.GetInterpolateKey(time, key);
    return key;
}

// One parameter at `time`: the current value at the current time, else from the track.
template <class K, class V>
V Read(const cparamanim<K>& track, int time, V K::*field, const V& current) {
    return time == GetAnimTime() ? current : KeyAt(track, time).*field;
}

// Writes one (already validated) parameter at `time`. Off the current time only a key at
// `time` changes. At the current time the current value changes and then all current values
// are keyed: at `time` while recording, at time 0 for a track of fewer than two keys (an
// unanimated object keeps its one key equal to what it shows), else not at all.
// `currentKey(t)` builds the key of every current value at time t.
template <class K, class V, class CurrentKey>
void Write(cparamanim<K>& track, int time, V K::*field, const V& value, V& current,
           CurrentKey currentKey) {
    if (time != GetAnimTime()) {
        K key = KeyAt(track, time);
        key.time = time;
        key.*field = value;
        track.SetKey(key);
        return;
    }
    current = value;
    if (IsAnimOn())
        track.SetKey(currentKey(time));
    else if (track.NumKeys() < 2)
        track.SetKey(currentKey(0));
}

// Keys the current values at the current time, first also at time 0 when the track is not
// yet animated.
template <class K, class CurrentKey>
void Snap(cparamanim<K>& track, CurrentKey currentKey) {
    const int now = GetAnimTime();
    if (track.NumKeys() < 2 && now != 0) track.SetKey(currentKey(0));
    track.SetKey(currentKey(now));
}

}  // namespace keyedparams

#endif
