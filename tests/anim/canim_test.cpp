// The transform track. Its sorted raw array (growth, removal, search, record checks) is shared
// with the parameter tracks and tested thoroughly in ccamanim_test.cpp; this file covers the
// transform key, the key times at the ends and the record.
#include "canim.h"

#include <gtest/gtest.h>

#include <cmath>

#include "anim/tracksupport.h"
#include "support/testsupport.h"

namespace {

void ExpectQuatNear(const cquat& q, float x, float y, float z, float w) {
    EXPECT_NEAR(q.x, x, 1e-6f);
    EXPECT_NEAR(q.y, y, 1e-6f);
    EXPECT_NEAR(q.z, z, 1e-6f);
    EXPECT_NEAR(q.w, w, 1e-6f);
}

TEST(KeyTrack, InterpolatesPositionAndScaleLinearlyAndRotationSpherically) {
    canim track;
    const float s45 = std::sqrt(0.5f);
    track.SetKey(100, cpoint3(10, 0, 0), MakeQuat(0, 0, s45, s45), cpoint3(3, 1, 2));
    track.SetKey(ckey(0, cpoint3(0, 0, 0), cquat(), cpoint3(1, 1, 1)));
    ckey key;
    ASSERT_EQ(track.GetInterpolateKey(50, key), 1);
    EXPECT_EQ(key.time, 50);
    EXPECT_EQ(key.position, cpoint3(5, 0, 0));
    EXPECT_EQ(key.scale, cpoint3(2, 1, 1.5f));
    // Halfway from 0 to 90 degrees about z: (0, 0, sin 22.5, cos 22.5).
    ExpectQuatNear(key.rotation, 0, 0, 0.38268343f, 0.92387953f);
    ASSERT_EQ(track.GetInterpolateKey(25, key), 1);
    ExpectQuatNear(key.rotation, 0, 0, 0.19509032f, 0.98078528f);
    // Outside the keys the end key holds, with the time asked for.
    ASSERT_EQ(track.GetInterpolateKey(-30, key), 1);
    EXPECT_EQ(key.time, -30);
    EXPECT_EQ(key.position, cpoint3(0, 0, 0));
    ASSERT_EQ(track.GetInterpolateKey(130, key), 1);
    EXPECT_EQ(key.scale, cpoint3(3, 1, 2));
    key.time = 7;
    EXPECT_EQ(canim().GetInterpolateKey(3, key), 0);
    EXPECT_EQ(key.time, 7);
}

TEST(KeyTrack, KeyTimesFollowTheKeysAtBothEnds) {
    canim track;
    for (int t : {30, 10, 20}) track.SetKey(t, cpoint3(t, 0, 0), cquat(), cpoint3(1, 1, 1));
    EXPECT_EQ(TimesOf<ckey>(track), (std::vector<int>{10, 20, 30}));
    EXPECT_EQ(track.GetFirstKeyTime(), 10);  // not widened to 0
    EXPECT_EQ(track.GetLastKeyTime(), 30);
    EXPECT_EQ(track.RemoveKeysSeg(5, 10), 1);
    EXPECT_EQ(track.GetFirstKeyTime(), 20);
    EXPECT_EQ(track.SetKeyAt(1, ckey(45, {}, {}, {}), 0), 1);
    EXPECT_EQ(track.GetLastKeyTime(), 45);
    canim copy(track);
    EXPECT_EQ(track.SetNumKeys(3, 0), 1);  // a default key at time 0 is appended
    EXPECT_EQ(track.GetLastKeyTime(), 0);
    EXPECT_EQ(TimesOf<ckey>(copy), (std::vector<int>{20, 45}));
    EXPECT_EQ(copy.RemoveKeyAt(0) + copy.RemoveKey(45), 2);
    EXPECT_EQ(copy.GetFirstKeyTime() + copy.GetLastKeyTime() + copy.Capacity(), 0);
    const ckey steps[] = {ckey(0, {}, {}, {}), ckey(1, {}, {}, {}), ckey(2, {}, {}, {}),
                          ckey(3, {}, {}, {})};
    EXPECT_EQ(FindKeyEntry(2, 4, steps), 2);
    EXPECT_EQ(FindKeyByEntry(2, 4, steps), 2);
}

TEST(KeyTrack, ReportsAMissingEndKeyFromCanim) {
    canim track;
    track.SetKey(0, {}, {}, {});
    track.SetKey(10, {}, {}, {});
    track.SetKeyAt(0, ckey(20, {}, {}, {}), 0);  // out of order: no key is found at 20
    AssertRecorder recorder;
    ckey key;
    EXPECT_EQ(track.GetInterpolateKey(15, key), 1);
    EXPECT_EQ(key.time, 15);
    ASSERT_EQ(recorder.Texts().size(), 1u);
    EXPECT_NE(recorder.Texts()[0].find("File: Core/canim,"), std::string::npos);
    EXPECT_NE(recorder.Texts()[0].find("Expression: GetKey(first,key)\n"), std::string::npos);
}

TEST(KeyTrack, RecordHoldsHeadAndNormalisedKeys) {
    canim track;
    track.SetKey(5, cpoint3(1, 2, 3), MakeQuat(0, 0, 0, 2), cpoint3(1, 1, 1));
    EXPECT_EQ(Saved([&](cio_save& out) { EXPECT_EQ(track.Save(out), 1); }),
              Ints({1, 5, 5, 5}) + Floats({1, 2, 3, 0, 0, 0, 1, 1, 1, 1}));

    const std::string two = Ints({2, -4, 8, -4}) + Floats({1, 0, 0, 0, 0, 3, 4, 2, 2, 2}) +
                            Ints({8}) + Floats({0, 1, 0, 0, 0, 0, 1, 1, 1, 1});
    for (unsigned long version : {1ul, 16ul}) {
        RecordStream record(two);
        ASSERT_EQ(track.Load(record.in, version), 1);
        EXPECT_EQ(TimesOf<ckey>(track), (std::vector<int>{-4, 8}));
        EXPECT_EQ(track.Capacity(), 2);
        EXPECT_EQ(track.GetFirstKeyTime() + track.GetLastKeyTime(), 4);
        ckey key;
        track.GetKeyAt(0, key);
        EXPECT_EQ(key.position, cpoint3(1, 0, 0));
        ExpectQuatNear(key.rotation, 0, 0, 0.6f, 0.8f);
        EXPECT_EQ(key.scale, cpoint3(2, 2, 2));
    }

    for (const std::string& corrupt : {Ints({-1, 0, 0}), two.substr(0, 12 + 44 + 43),
                                       Ints({0x7FFFFFFF, 0, 0}) + two.substr(12)}) {
        RecordStream record(corrupt);
        EXPECT_EQ(track.Load(record.in, 16), 0);
        EXPECT_EQ(track.NumKeys() + track.Capacity(), 0);
        EXPECT_EQ(track.GetFirstKeyTime() + track.GetLastKeyTime(), 0);
    }
}

}  // namespace
