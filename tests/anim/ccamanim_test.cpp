// The parameter track design and the sorted key array it shares with canim, tested once
// through the camera's track; clightanim_test.cpp covers what the light's key changes.
#include <gtest/gtest.h>

#include <vector>

#include "anim/tracksupport.h"
#include "cparamanim.h"
#include "support/testsupport.h"

namespace {

// Keys at the given times, each with the field of view 40 + time.
ccamanim TrackAt(std::initializer_list<int> times) {
    ccamanim track;
    for (int t : times) track.SetKey(t, 40.0f + t);
    return track;
}

std::vector<int> Times(const ccamanim& track) {
    return TimesOf<ccamkey>(track);
}

// Number of keys, capacity and the two key times, in one list.
std::vector<int> Shape(const ccamanim& track) {
    return {track.NumKeys(), track.Capacity(), track.GetFirstKeyTime(), track.GetLastKeyTime()};
}

TEST(ParamTrack, InsertsInTimeOrderWithKeyTimesIncludingZero) {
    ccamanim track;
    track.SetKey(10, 60.0f);
    EXPECT_EQ(track.SetKey(ccamkey(5, 40.0f)), 1);
    EXPECT_EQ(Times(track), (std::vector<int>{5, 10}));
    EXPECT_EQ(Shape(track), (std::vector<int>{2, 16, 0, 10}));
    track.SetKey(10, 70.0f);
    ccamkey key;
    ASSERT_EQ(track.GetKey(10, key), 1);
    EXPECT_EQ(key.fov, 70.0f);
    EXPECT_EQ(track.NumKeys(), 2);
    EXPECT_EQ(track.GetKey(7, key) + track.KeyExists(0), 0);
    track.SetKey(-8, 30.0f);
    EXPECT_EQ(track.GetFirstKeyTime(), -8);
    ccamanim copy;
    copy = track;
    track.Clear();
    EXPECT_EQ(Times(copy), (std::vector<int>{-8, 5, 10}));
    EXPECT_EQ(Shape(track), (std::vector<int>{0, 0, 0, 0}));

    const ccamkey steps[] = {ccamkey(0, 1), ccamkey(1, 1), ccamkey(2, 1), ccamkey(3, 1)};
    EXPECT_EQ(FindKeyEntry(2, 4, steps), 2);
    EXPECT_EQ(FindKeyEntry(2, 3, steps), 2);  // halving alone would stop at index 1
    const ccamkey spread[] = {ccamkey(0, 1), ccamkey(10, 1), ccamkey(20, 1)};
    EXPECT_EQ(FindKeyEntry(25, 3, spread), 1);
    EXPECT_EQ(FindKeyByEntry(20, 3, spread), 2);
    EXPECT_EQ(FindKeyByEntry(15, 3, spread), -1);
}

TEST(ParamTrack, InterpolatesLinearlyAndHoldsTheEndKeys) {
    ccamanim track = TrackAt({5, 10});
    ccamkey key(99, 53.0f);
    // The key times include 0, so between 0 and the first key there is no previous key.
    EXPECT_EQ(track.GetInterpolateKey(2, key), 0);
    EXPECT_EQ(key.time, 99);
    track.SetKey(5, 40.0f);
    track.SetKey(10, 60.0f);
    track.SetKey(0, 20.0f);
    for (auto [t, fov] : {std::pair{7, 48.0f}, {-3, 20.0f}, {12, 60.0f}}) {
        ASSERT_EQ(track.GetInterpolateKey(t, key), 1) << t;
        EXPECT_EQ(key.time, t);
        EXPECT_FLOAT_EQ(key.fov, fov) << t;
    }
    EXPECT_EQ(ccamanim().GetInterpolateKey(2, key), 0);
}

TEST(ParamTrack, MissingEndKeysAreReportedFromCcamanim) {
    AssertRecorder recorder;
    ccamkey key(0, 53.0f);
    EXPECT_EQ(TrackAt({5, 10}).GetInterpolateKey(-1, key), 1);  // no key at first time 0
    EXPECT_EQ(key.time, -1);
    EXPECT_EQ(key.fov, 53.0f);
    EXPECT_EQ(TrackAt({-10, -5}).GetInterpolateKey(3, key), 1);  // no key at last time 0
    ASSERT_EQ(recorder.Texts().size(), 2u);
    EXPECT_NE(recorder.Texts()[0].find("File: Core/ccamanim,"), std::string::npos);
    EXPECT_NE(recorder.Texts()[0].find("Expression: GetKey(first,key)\n"), std::string::npos);
    EXPECT_NE(recorder.Texts()[1].find("Expression: GetKey(last,key)\n"), std::string::npos);
}

TEST(ParamTrack, GrowsByDoublingAndShrinksWhenLessThanHalfFull) {
    ccamanim track = TrackAt({0});
    EXPECT_EQ(track.Capacity(), 16);
    for (int t = 1; t < 17; ++t) track.SetKey(t, 50.0f);
    EXPECT_EQ(track.Capacity(), 32);
    EXPECT_EQ(track.RemoveKey(16), 1);  // 16 left of 32: in place
    EXPECT_EQ(track.Capacity(), 32);
    EXPECT_EQ(track.RemoveKey(3), 1);  // 15 left: an array of exactly 15
    EXPECT_EQ(Shape(track), (std::vector<int>{15, 15, 0, 15}));
    ccamkey key;
    ASSERT_EQ(track.GetKeyAt(3, key), 1);
    EXPECT_EQ(key.time, 4);
    track.SetKey(20, 50.0f);
    EXPECT_EQ(track.Capacity(), 30);
}

TEST(ParamTrack, RemovalsRecomputeKeyTimesFromZero) {
    ccamanim track = TrackAt({-20, -10, 5, 10, 30});
    EXPECT_EQ(track.RemoveKey(7), 0);
    EXPECT_EQ(track.RemoveKeysSeg(12, 40), 1);
    EXPECT_EQ(track.GetLastKeyTime(), 10);
    EXPECT_EQ(track.RemoveKeysSeg(-10, -30), 1);  // either order, ends included
    EXPECT_EQ(Times(track), (std::vector<int>{5, 10}));
    EXPECT_EQ(track.GetFirstKeyTime(), 0);
    EXPECT_EQ(track.RemoveKeysSeg(6, 9) + track.RemoveKeysSegAt(0, 2) + track.RemoveKeyAt(-1), 0);
    EXPECT_EQ(track.RemoveKeysSegAt(1, 0), 1);
    EXPECT_EQ(Shape(track), (std::vector<int>{0, 0, 0, 0}));
}

TEST(ParamTrack, IndexAccessAndResizing) {
    ccamanim track = TrackAt({-5, 5, 10});
    EXPECT_EQ(track.SetNumKeys(2, 0), 1);
    EXPECT_EQ(Times(track), (std::vector<int>{-5, 5}));
    EXPECT_EQ(Shape(track), (std::vector<int>{2, 2, -5, 5}));
    EXPECT_EQ(track.SetNumKeys(3, 1), 1);
    ccamkey key;
    ASSERT_EQ(track.GetKeyAt(2, key), 1);
    EXPECT_EQ(key.time, 0);
    EXPECT_EQ(key.fov, 53.0f);
    EXPECT_EQ(track.GetFirstKeyTime() + track.GetLastKeyTime(), 0);
    EXPECT_EQ(track.SetKeyAt(1, ccamkey(30, 45.0f), 1), 0);  // the key there is at time 0
    EXPECT_EQ(track.SetKeyAt(1, ccamkey(30, 45.0f), 0), 1);
    EXPECT_EQ(track.SetKeyAt(1, ccamkey(12, 46.0f), 0), 1);
    EXPECT_EQ(track.GetLastKeyTime(), 30);  // widened, never narrowed
    EXPECT_EQ(track.SetKeyAt(3, key, 0) + track.GetKeyAt(-1, key), 0);
    EXPECT_EQ(track.SetNumKeys(0, 0), 1);
    EXPECT_EQ(track.NumKeys() + track.Capacity(), 0);
}

TEST(ParamTrack, RecordKeepsTheKeyTimesAsTheyStand) {
    const std::string keys = Ints({0}) + Floats({40}) + Ints({13}) + Floats({53});
    const ccamanim track = TrackAt({0, 13});
    EXPECT_EQ(Saved([&](cio_save& out) { EXPECT_EQ(track.Save(out), 1); }),
              Ints({2, 0, 13}) + keys);
    RecordStream record(Ints({2, -7, 50}) + keys);
    ccamanim loaded = TrackAt({100});
    ASSERT_EQ(loaded.Load(record.in, 3), 1);
    EXPECT_EQ(Times(loaded), (std::vector<int>{0, 13}));
    EXPECT_EQ(Shape(loaded), (std::vector<int>{2, 2, -7, 50}));

    const std::string corrupt[] = {
        Ints({-3, 0, 0}),
        Ints({3, 0, 4}) + keys + keys.substr(0, 7),
        Ints({0x40000000, 0, 4}) + keys,
        Ints({2, 0, 4}) + keys.substr(0, 8) + keys.substr(0, 8),
        Ints({1}),
    };
    for (const std::string& bytes : corrupt) {
        RecordStream in(bytes);
        ccamanim failed = TrackAt({-1, 1});
        EXPECT_EQ(failed.Load(in.in, 16), 0);
        EXPECT_EQ(Shape(failed), (std::vector<int>{0, 0, 0, 0}));
    }
}

}  // namespace
