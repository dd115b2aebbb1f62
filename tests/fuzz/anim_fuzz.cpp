// Fuzz target: the key track records (canim, ccamanim, clightanim) over untrusted files.
//
// The input is read as the record of each track at file versions 1, 3, 4, 5 and 16. A load
// either succeeds with keys in time order, no more of them than the bytes can hold and an
// array of exactly their number, or fails leaving the track empty. A loaded track must then
// answer queries and take edits without a fault, and write a record that loads back to the same
// keys. Assertion reports (a record may name key times no key has) return here instead of
// ending the process, as they do in a host with an abort hook.
#include <climits>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "canim.h"
#include "coreinterface.h"
#include "coreplatform.h"
#include "cparamanim.h"
#include "fuzz/fuzztarget.h"
#include "support/bytestring.h"
#include "support/testsupport.h"

namespace {

constexpr unsigned long kVersions[] = {1, 3, 4, 5, 16};
constexpr unsigned long kHeadBytes = 12;
// Queries and edits look at no more keys than this, so that long tracks stay quick.
constexpr int kKeysExercised = 64;

const TempDir& Folder() {
    static const TempDir folder;
    return folder;
}

void IgnoreAbort() {}
int AnswerOk(char const*, char const*, unsigned int) {
    return IDOK;
}

// Reports return, show nothing and find no folder for their log.
void SilenceReports() {
    _AbortApp = IgnoreAbort;
    SetMessageBoxHandler(AnswerOk);
    std::snprintf(path_app, sizeof(path_app), "%s/no-such-folder", Folder().Path().c_str());
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
void Exercise(Track& track, Key key) {
    std::vector<int> times = TimesOf(track, key);
    if (times.size() > static_cast<std::size_t>(kKeysExercised)) times.resize(kKeysExercised);
    std::vector<int> queries = {track.GetFirstKeyTime(), track.GetLastKeyTime(), 0};
    for (int t : times) {
        if (t > INT_MIN) queries.push_back(t - 1);
        if (t < INT_MAX) queries.push_back(t + 1);
    }
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

// A saved track loads back with the same key times.
template <class Track, class Key>
void CheckRoundTrip(const Track& track, Key key) {
    const std::string path = Folder().File("saved.bin");
    std::remove(path.c_str());  // a fresh file, as for the input
    {
        cio_save out;
        FUZZ_CHECK(out.Open(path.c_str()) == 0);
        FUZZ_CHECK(track.Save(out) == 1);
    }
    cio_load in;
    FUZZ_CHECK(in.Open(path.c_str()) == 0);
    Track loaded;
    FUZZ_CHECK(loaded.Load(in, 16) == 1);
    FUZZ_CHECK(TimesOf(loaded, key) == TimesOf(track, key));
    FUZZ_CHECK(loaded.GetFirstKeyTime() == track.GetFirstKeyTime());
    FUZZ_CHECK(loaded.GetLastKeyTime() == track.GetLastKeyTime());
}

template <class Track, class Key>
void LoadTrack(cio_load& in, long size, unsigned long version, Key key) {
    FUZZ_CHECK(in.SetPosition(0, 0) == 0);
    Track track;
    track.SetKey(key);
    if (!track.Load(in, version)) {
        FUZZ_CHECK(track.NumKeys() == 0 && track.Capacity() == 0);
        FUZZ_CHECK(track.GetFirstKeyTime() == 0 && track.GetLastKeyTime() == 0);
        return;
    }
    const unsigned long keys = static_cast<unsigned long>(track.NumKeys());
    FUZZ_CHECK(track.Capacity() == track.NumKeys());
    FUZZ_CHECK(kHeadBytes + keys * KeyBytes(track, version) <= static_cast<unsigned long>(size));
    const std::vector<int> times = TimesOf(track, key);
    for (std::size_t i = 1; i < times.size(); ++i) FUZZ_CHECK(times[i - 1] < times[i]);
    CheckRoundTrip(track, key);
    Exercise(track, key);
}

const std::string& InputFile() {
    static const std::string path = Folder().File("input.bin");
    return path;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const bool silenced = (SilenceReports(), true);
    (void)silenced;
    WriteFileBytes(InputFile(), std::string(reinterpret_cast<const char*>(data), size));
    cio_load in;
    FUZZ_CHECK(in.Open(InputFile().c_str()) == 0);
    const long length = static_cast<long>(size);
    for (unsigned long version : kVersions) {
        LoadTrack<canim>(in, length, version, ckey(0, cpoint3(1, 2, 3), cquat(), cpoint3()));
        LoadTrack<ccamanim>(in, length, version, ccamkey(0, 45.0f));
        LoadTrack<clightanim>(in, length, version, clightkey());
    }
    return 0;
}

std::vector<std::string> FuzzSeeds() {
    ByteString transforms;
    transforms.Ints({3, -40, 80});
    transforms.Ints({-40}).Floats({0, 0, 0, 0, 0, 0, 1, 1, 1, 1});
    transforms.Ints({0}).Floats({1, 2, 3, 0, 0.7071068f, 0, 0.7071068f, 1, 2, 1});
    transforms.Ints({80}).Floats({-5, 0, 9, 0, 0, 0.5f, 0.8660254f, 2, 2, 2});

    ByteString fovs;
    fovs.Ints({4, 0, 120}).Ints({0}).Floats({53}).Ints({1}).Floats({50}).Ints({2}).Floats({45});
    fovs.Ints({120}).Floats({30});

    ByteString lights;  // the newest layout
    lights.Ints({2, 0, 40}).Ints({0}).Floats({1, 1, 1, 1, 43, 45, 256, 1});
    lights.Ints({40}).Floats({0.5f, 0.2f, 0.1f, 1, 30, 35, 100, 2.5f});

    ByteString oldLights;  // version 3: no range, two ignored words
    oldLights.Ints({2, -8, 8}).Ints({-8}).Floats({1, 0, 0, 1, 20, 25, 1});
    oldLights.Ints({0, 0, 8}).Floats({0, 0, 1, 1, 40, 45, 3}).Ints({7, 9});

    return {transforms.bytes, fovs.bytes, lights.bytes, oldLights.bytes};
}
