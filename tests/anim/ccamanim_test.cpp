// The parameter track design and the sorted key array it shares with canim, tested once
// through the camera's track; clightanim_test.cpp covers what the light's key changes.
#include <gtest/gtest.h>

#include "anim/tracksupport.h"
#include "cparamanim.h"

namespace {

using Times = std::vector<int>;

// Keys at the given times, each with the field of view 40 + time.
ccamanim TrackAt(std::initializer_list<int> times) {
    ccamanim track;
    for (int t : times) track.SetKey(t, 40.0f + t);
    return track;
}

// The key times in index order, then the number of keys, capacity and first and last key time.
Times Shape(const ccamanim& track) {
    Times shape = TimesOf<ccamkey>(track);
    shape.insert(shape.end(), {track.NumKeys(), track.Capacity(), track.GetFirstKeyTime(),
                               track.GetLastKeyTime()});
    return shape;
}

TEST(ParamTrack, InsertsInTimeOrderWithKeyTimesIncludingZero) {
    ccamanim track = TrackAt({10});
    EXPECT_EQ(track.SetKey(ccamkey(5, 40.0f)), 1);
    track.SetKey(10, 70.0f);
    EXPECT_EQ(Shape(track), (Times{5, 10, 2, 16, 0, 10}));
    ccamkey key;
    EXPECT_TRUE(track.GetKey(10, key) && key.fov == 70.0f);
    EXPECT_EQ(track.GetKey(7, key) + track.KeyExists(0), 0);

    // Intended: a time below the count whose key sits at that index is found at once.
    const ccamkey steps[] = {ccamkey(0, 1), ccamkey(1, 1), ccamkey(2, 1), ccamkey(3, 1)};
    EXPECT_EQ(FindKeyEntry(2, 3, steps), 2);  // halving alone would stop at index 1
    const ccamkey spread[] = {ccamkey(0, 1), ccamkey(10, 1), ccamkey(20, 1)};
    EXPECT_EQ((Times{FindKeyEntry(25, 3, spread), FindKeyByEntry(20, 3, spread),
                     FindKeyByEntry(15, 3, spread)}),
              (Times{1, 2, -1}));
}

TEST(ParamTrack, InterpolatesLinearlyAndReportsMissingEndKeys) {
    ccamanim track = TrackAt({5, 10});
    ccamkey key(99, 53.0f);
    // The key times include 0, so between 0 and the first key there is no previous key.
    EXPECT_EQ(track.GetInterpolateKey(2, key), 0);
    EXPECT_EQ(key.time, 99);
    track.SetKey(5, 40.0f);
    track.SetKey(10, 60.0f);
    ASSERT_EQ(track.GetInterpolateKey(7, key), 1);
    EXPECT_EQ((std::pair{key.time, key.fov}), (std::pair{7, 48.0f}));
    AssertRecorder recorder;
    // No key at the first key time 0: the time is set, the rest of the key left as it was.
    EXPECT_EQ(TrackAt({5, 10}).GetInterpolateKey(-1, key), 1);
    EXPECT_EQ((std::pair{key.time, key.fov}), (std::pair{-1, 48.0f}));
    EXPECT_EQ(TrackAt({-10, -5}).GetInterpolateKey(3, key), 1);  // no key at last time 0
    ASSERT_EQ(recorder.Texts().size(), 2u);
    EXPECT_NE(recorder.Texts()[0].find("File: Core/ccamanim, Line: 185\n"
                                       "Expression: GetKey(first,key)\n"),
              std::string::npos);
    EXPECT_NE(recorder.Texts()[1].find("Line: 191\nExpression: GetKey(last,key)\n"),
              std::string::npos);
}

TEST(ParamTrack, GrowsByDoublingShrinksWhenLessThanHalfFullAndRecomputesKeyTimes) {
    ccamanim track = TrackAt({0});
    for (int t = 1; t < 17; ++t) track.SetKey(t, 50.0f);
    EXPECT_EQ(track.Capacity(), 32);
    EXPECT_TRUE(track.RemoveKey(16) && track.Capacity() == 32) << "16 left of 32: in place";
    EXPECT_EQ(track.RemoveKey(3), 1);  // 15 left: an array of exactly 15
    EXPECT_EQ(Shape(track),
              (Times{0, 1, 2, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 15, 15, 0, 15}));
    track.SetKey(20, 50.0f);
    EXPECT_EQ(track.Capacity(), 30);

    // Removals recompute the key times from 0; segments in either order, ends included. The
    // copy holds exactly its 5 keys, so 2 left shrink it.
    track = TrackAt({-20, -10, 5, 10, 30});
    EXPECT_EQ(track.RemoveKey(7) + track.RemoveKeysSeg(6, 9), 0);
    EXPECT_EQ(track.RemoveKeysSeg(12, 40) + track.RemoveKeysSeg(-10, -30), 2);
    EXPECT_EQ(Shape(track), (Times{5, 10, 2, 2, 0, 10}));
    EXPECT_EQ(track.RemoveKeysSegAt(0, 2) + track.RemoveKeyAt(-1), 0);
    EXPECT_EQ(track.RemoveKeysSegAt(1, 0), 1);
    EXPECT_EQ(Shape(track), (Times{0, 0, 0, 0}));
}

TEST(ParamTrack, IndexAccessAndResizing) {
    ccamanim track = TrackAt({-5, 5, 10});
    EXPECT_EQ(track.SetNumKeys(2, 0), 1);
    EXPECT_EQ(Shape(track), (Times{-5, 5, 2, 2, -5, 5}));
    EXPECT_EQ(track.SetNumKeys(3, 1), 1);  // default keys only
    EXPECT_EQ(Shape(track), (Times{0, 0, 0, 3, 3, 0, 0}));
    ccamkey key;
    EXPECT_EQ(track.SetKeyAt(1, ccamkey(30, 45.0f), 1), 0);  // the key there is at time 0
    EXPECT_EQ(track.SetKeyAt(1, ccamkey(30, 45.0f), 0) + track.SetKeyAt(1, ccamkey(12, 46), 0), 2);
    EXPECT_EQ(track.GetLastKeyTime(), 30);  // widened, never narrowed
    EXPECT_EQ(track.SetKeyAt(3, key, 0) + track.GetKeyAt(-1, key), 0);
}

TEST(ParamTrack, RecordKeepsTheKeyTimesAsTheyStand) {
    const std::string keys = Ints({0}) + Floats({40}) + Ints({13}) + Floats({53});
    const ccamanim saved = TrackAt({0, 13});
    EXPECT_EQ(Saved([&](cio_save& out) { EXPECT_EQ(saved.Save(out), 1); }),
              Ints({2, 0, 13}) + keys);
    const std::string record = Ints({2, -7, 50}) + keys;
    RecordStream in(record);
    ccamanim loaded = TrackAt({100});
    ASSERT_EQ(loaded.Load(in.in, 3), 1);
    EXPECT_EQ(Shape(loaded), (Times{0, 13, 2, 2, -7, 50}));

    const std::string twiceAtZero = Ints({2, 0, 4}) + keys.substr(0, 8) + keys.substr(0, 8);
    for (const std::string& corrupt :
         {Ints({-3, 0, 0}), record.substr(0, 15), Ints({0x40000000, 0, 4}) + keys, twiceAtZero}) {
        RecordStream bytes(corrupt);  // the fuzz target checks what a failed load leaves
        EXPECT_EQ(ccamanim().Load(bytes.in, 16), 0);
    }
}

}  // namespace
