// Helpers of the key track tests: the key times of a track, a little-endian encoder of their own
// (so that expected bytes do not come from the field writers) and streams over temporary files.
#ifndef ORVANE_TESTS_ANIM_TRACKSUPPORT_H
#define ORVANE_TESTS_ANIM_TRACKSUPPORT_H

#include <cstdint>
#include <cstring>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

#include "cio.h"
#include "support/testsupport.h"

// The times of the track's keys in index order; `Key` is the track's key type.
template <class Key, class Track>
std::vector<int> TimesOf(const Track& track) {
    std::vector<int> times;
    Key key;
    for (int i = 0; track.GetKeyAt(i, key); ++i) times.push_back(key.time);
    return times;
}

// Little-endian 32-bit words (negative values in two's complement), and floats as their bit
// patterns.
inline std::string Ints(std::initializer_list<std::int64_t> values) {
    std::string bytes;
    for (std::int64_t value : values)
        for (int b = 0; b < 4; ++b) bytes += static_cast<char>((value >> (8 * b)) & 0xFF);
    return bytes;
}

inline std::string Floats(std::initializer_list<float> values) {
    std::string bytes;
    for (float value : values) {
        std::uint32_t bits;
        std::memcpy(&bits, &value, 4);
        bytes += Ints({bits});
    }
    return bytes;
}

// The bytes `save` writes to a fresh file ("<open failed>" if it cannot be created).
inline std::string Saved(const std::function<void(cio_save&)>& save) {
    TempDir dir;
    cio_save out;
    if (out.Open(dir.File("track.bin").c_str()) != 0) return "<open failed>";
    save(out);
    out.Close();
    return ReadFileBytes(dir.File("track.bin"));
}

// A stream reading the given bytes from a file that lives as long as it does.
struct RecordStream {
    explicit RecordStream(const std::string& bytes) {
        std::ofstream(dir.File("in.bin"), std::ios::binary) << bytes;
        in.Open(dir.File("in.bin").c_str());
    }
    TempDir dir;
    cio_load in;
};

#endif
