// Fuzz target: the key track records (canim, ccamanim, clightanim) over untrusted files.
//
// The input is read as the record of each track at file versions 1, 3, 4, 5 and 16. A load
// either succeeds with keys in time order, no more of them than the bytes can hold and an
// array of exactly their number, or fails leaving the track empty. A loaded track must write a
// record that loads back to the same keys, then answer queries and take edits without a fault.
// Assertion reports (a record may name key times no key has) return here instead of ending
// the process, as they do in a host with an abort hook.
#include <climits>

#include "canim.h"
#include "coreinterface.h"
#include "coreplatform.h"
#include "cparamanim.h"
#include "fuzz/fuzztarget.h"
#include "support/bytestring.h"

namespace {

constexpr unsigned long kVersions[] = {1, 3, 4, 5, 16};
// Queries look at no more keys than this, so that long tracks stay quick.
constexpr std::size_t kKeysExercised = 64;

// Reports return, show nothing and find no folder for their log.
void SilenceReports() {
    _AbortApp = [] {};
    SetMessageBoxHandler([](char const*, char const*, unsigned int) -> int { return IDOK; });
    std::snprintf(path_app, sizeof(path_app), "%s", "/nonexistent/orvane-fuzz");
}

// Bytes of one key in a record of the given version.
unsigned long KeyBytes(const canim&, unsigned long) {
    return 44;
}
template <class K>
unsigned long KeyBytes(const cparamanim<K>&, unsigned long version) {
    return K::RecordBytes(version);
}

template <class Track, class Key>
std::vector<int> TimesOf(const Track& track, Key key) {
    std::vector<int> times;
    for (int i = 0; track.GetKeyAt(i, key); ++i) times.push_back(key.time);
    return times;
}

// Queries at, around and between the first keys and outside the key times, then edits.
template <class Track, class Key>
void Exercise(Track& track, Key key, const std::vector<int>& times) {
    std::vector<int> queries = {track.GetFirstKeyTime(), track.GetLastKeyTime(), 0};
    for (std::size_t i = 0; i < times.size() && i < kKeysExercised; ++i)
        queries.insert(queries.end(), {times[i] == INT_MIN ? times[i] : times[i] - 1,
                                       times[i] == INT_MAX ? times[i] : times[i] + 1});
    for (int t : queries) {
        track.GetInterpolateKey(t, key);
        track.KeyExists(t);
    }
    key.time = 7;
    FUZZ_CHECK(track.SetKey(key) == 1 && track.KeyExists(7) == 1);
    FUZZ_CHECK(track.NumKeys() <= track.Capacity());
    if (!times.empty()) track.RemoveKeysSeg(times.front(), times.back());
    track.RemoveKey(7);
    FUZZ_CHECK(track.NumKeys() <= track.Capacity());
}

template <class Track, class Key>
void LoadTrack(const std::string& input, std::size_t size, unsigned long version, Key key) {
    Track track;
    track.SetKey(key);
    if (!LoadRecord(track, input, version)) {
        FUZZ_CHECK(track.NumKeys() == 0 && track.Capacity() == 0 && track.GetFirstKeyTime() == 0 &&
                   track.GetLastKeyTime() == 0);
        return;
    }
    const std::vector<int> times = TimesOf(track, key);
    FUZZ_CHECK(track.Capacity() == track.NumKeys());
    FUZZ_CHECK(12 + times.size() * KeyBytes(track, version) <= size);
    for (std::size_t i = 1; i < times.size(); ++i) FUZZ_CHECK(times[i - 1] < times[i]);
    Track loaded;
    FUZZ_CHECK(LoadRecord(loaded, SaveRecord(track), 16) == 1 && TimesOf(loaded, key) == times);
    FUZZ_CHECK(loaded.GetFirstKeyTime() == track.GetFirstKeyTime() &&
               loaded.GetLastKeyTime() == track.GetLastKeyTime());
    Exercise(track, key, times);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    [[maybe_unused]] static const bool silenced = (SilenceReports(), true);
    const std::string input = FuzzFile(data, size);
    for (unsigned long version : kVersions) {
        LoadTrack<canim>(input, size, version, ckey(0, cpoint3(1, 2, 3), cquat(), cpoint3()));
        LoadTrack<ccamanim>(input, size, version, ccamkey(0, 45.0f));
        LoadTrack<clightanim>(input, size, version, clightkey());
    }
    return 0;
}

std::vector<std::string> FuzzSeeds() {
    ByteString transforms;
    transforms.Ints({3, -40, 80, -40}).Floats({0, 0, 0, 0, 0, 0, 1, 1, 1, 1});
    transforms.Ints({0}).Floats({1, 2, 3, 0, 0.7071068f, 0, 0.7071068f, 1, 2, 1});
    transforms.Ints({80}).Floats({-5, 0, 9, 0, 0, 0.5f, 0.8660254f, 2, 2, 2});
    ByteString fovs;
    fovs.Ints({4, 0, 120, 0}).Floats({53}).Ints({1}).Floats({50}).Ints({2}).Floats({45});
    fovs.Ints({120}).Floats({30});
    ByteString lights;  // the newest layout
    lights.Ints({2, 0, 40, 0}).Floats({1, 1, 1, 1, 43, 45, 256, 1});
    lights.Ints({40}).Floats({0.5f, 0.2f, 0.1f, 1, 30, 35, 100, 2.5f});
    ByteString oldLights;  // version 3: no range, two ignored words
    oldLights.Ints({2, -8, 8, -8}).Floats({1, 0, 0, 1, 20, 25, 1});
    oldLights.Ints({0, 0, 8}).Floats({0, 0, 1, 1, 40, 45, 3}).Ints({7, 9});
    return {transforms.bytes, fovs.bytes, lights.bytes, oldLights.bytes};
}
