// The transform track. Its sorted raw array (growth, removal, search, record checks) is shared
// with the parameter tracks and tested thoroughly in ccamanim_test.cpp; this file covers the
// transform key, the key times at the ends and the record.
#include "canim.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>

#include "anim/tracksupport.h"

namespace {

// The key as text, six significant digits a field: time, position, rotation, scale.
std::string Text(const ckey& k) {
    char text[256];
    std::snprintf(text, sizeof text, "%d %g %g %g %g %g %g %g %g %g %g", k.time, k.position.x,
                  k.position.y, k.position.z, k.rotation.x, k.rotation.y, k.rotation.z,
                  k.rotation.w, k.scale.x, k.scale.y, k.scale.z);
    return text;
}

// First and last key time and the number of keys.
std::vector<int> Ends(const canim& track) {
    return {track.GetFirstKeyTime(), track.GetLastKeyTime(), track.NumKeys()};
}

TEST(KeyTrack, InterpolatesPositionAndScaleLinearlyAndRotationSpherically) {
    canim track;
    const float s45 = std::sqrt(0.5f);
    track.SetKey(100, cpoint3(10, 0, 0), MakeQuat(0, 0, s45, s45), cpoint3(3, 1, 2));
    track.SetKey(ckey(0, cpoint3(0, 0, 0), cquat(), cpoint3(1, 1, 1)));
    // Halfway from 0 to 90 degrees about z: (0, 0, sin 22.5, cos 22.5). Outside the keys the
    // end key holds, with the time asked for.
    const std::pair<int, const char*> rows[] = {{50, "50 5 0 0 0 0 0.382683 0.92388 2 1 1.5"},
                                                {-30, "-30 0 0 0 0 0 0 1 1 1 1"},
                                                {130, "130 10 0 0 0 0 0.707107 0.707107 3 1 2"}};
    ckey key;
    for (const auto& [t, expected] : rows)
        EXPECT_TRUE(track.GetInterpolateKey(t, key) && Text(key) == expected) << Text(key);
    EXPECT_EQ(canim().GetInterpolateKey(3, key), 0);
    EXPECT_EQ(key.time, 130);
}

TEST(KeyTrack, KeyTimesFollowTheKeysAtBothEnds) {
    canim track;
    for (int t : {30, 10, 20}) track.SetKey(t, cpoint3(t, 0, 0), cquat(), cpoint3(1, 1, 1));
    EXPECT_EQ(Ends(track), (std::vector<int>{10, 30, 3})) << "not widened to 0";
    EXPECT_EQ(track.RemoveKeysSeg(5, 10) + track.SetKeyAt(1, ckey(45, {}, {}, {}), 0), 2);
    EXPECT_EQ(Ends(track), (std::vector<int>{20, 45, 2}));

    // Out of order keys: no key is found at the first key time, which is reported.
    canim unsorted;
    unsorted.SetKey(0, {}, {}, {});
    unsorted.SetKey(10, {}, {}, {});
    unsorted.SetKeyAt(0, ckey(20, {}, {}, {}), 0);
    AssertRecorder recorder;
    ckey key;
    EXPECT_EQ(unsorted.GetInterpolateKey(15, key), 1);
    ASSERT_EQ(recorder.Texts().size(), 1u);
    EXPECT_NE(recorder.Texts()[0].find("File: Core/canim,"), std::string::npos);
}

TEST(KeyTrack, RecordHoldsHeadAndNormalisedKeys) {
    canim track;
    track.SetKey(5, cpoint3(1, 2, 3), MakeQuat(0, 0, 0, 2), cpoint3(1, 1, 1));
    EXPECT_EQ(Saved([&](cio_save& out) { EXPECT_EQ(track.Save(out), 1); }),
              Ints({1, 5, 5, 5}) + Floats({1, 2, 3, 0, 0, 0, 1, 1, 1, 1}));

    const std::string two = Ints({2, -4, 8, -4}) + Floats({1, 0, 0, 0, 0, 3, 4, 2, 2, 2}) +
                            Ints({8}) + Floats({0, 1, 0, 0, 0, 0, 1, 1, 1, 1});
    RecordStream record(two);
    ASSERT_EQ(track.Load(record.in, 1), 1);
    EXPECT_EQ(Ends(track), (std::vector<int>{-4, 8, 2}));
    EXPECT_EQ(track.Capacity(), 2);
    ckey key;
    EXPECT_TRUE(track.GetKeyAt(0, key) && Text(key) == "-4 1 0 0 0 0 0.6 0.8 2 2 2");
    for (const std::string& corrupt :
         {Ints({-1, 0, 0}), two.substr(0, 99), Ints({0x7FFFFFFF, 0, 0}) + two.substr(12)}) {
        RecordStream bytes(corrupt);
        EXPECT_EQ(track.Load(bytes.in, 16), 0);  // the fuzz target checks what it leaves
    }
}

}  // namespace
