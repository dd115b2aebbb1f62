// Helpers of the key track tests: the key times of a track and short forms of the byte builder.
#ifndef ORVANE_TESTS_ANIM_TRACKSUPPORT_H
#define ORVANE_TESTS_ANIM_TRACKSUPPORT_H

#include "support/bytestring.h"
#include "support/testsupport.h"

// The times of the track's keys in index order; `Key` is the track's key type.
template <class Key, class Track>
std::vector<int> TimesOf(const Track& track) {
    std::vector<int> times;
    Key key;
    for (int i = 0; track.GetKeyAt(i, key); ++i) times.push_back(key.time);
    return times;
}

// Shorthands of ByteString for records that are little more than words and floats.
inline std::string Ints(std::initializer_list<std::int64_t> values) {
    return ByteString().Ints(values).bytes;
}

inline std::string Floats(std::initializer_list<float> values) {
    return ByteString().Floats(values).bytes;
}

#endif
