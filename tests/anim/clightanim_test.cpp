// What the light's track adds to the parameter track design (tested in ccamanim_test.cpp):
// its key's payload, argument order and version-dependent record, and its report name.
#include <gtest/gtest.h>

#include <vector>

#include "anim/tracksupport.h"
#include "cparamanim.h"
#include "support/testsupport.h"

namespace {

void ExpectKey(const clightkey& key, int time, const ccolor& color, float hotspot, float falloff,
               float range, float strength) {
    EXPECT_EQ(key.time, time);
    EXPECT_EQ(key.color, color);
    EXPECT_EQ(std::vector<float>({key.hotspot, key.falloff, key.range, key.strength}),
              std::vector<float>({hotspot, falloff, range, strength}));
}

TEST(LightTrack, KeysTakeFalloffBeforeHotspotAndInterpolateEveryChannel) {
    clightkey key;
    ExpectKey(key, 0, ccolor(1.0f, 1.0f, 1.0f, 1.0f), 43.0f, 45.0f, 256.0f, 1.0f);
    key.Set(4, ccolor(), 60.0f, 20.0f, 10.0f, 0.5f);
    ExpectKey(key, 4, ccolor(), 20.0f, 60.0f, 10.0f, 0.5f);
    clightanim track;
    track.SetKey(0, ccolor(0.0f, 1.0f, 0.5f, 0.0f), 40.0f, 20.0f, 100.0f, 1.0f);
    track.SetKey(clightkey(8, ccolor(1.0f, 0.0f, 0.5f, 1.0f), 60.0f, 40.0f, 300.0f, 3.0f));
    ASSERT_EQ(track.GetKey(8, key), 1);
    ExpectKey(key, 8, ccolor(1.0f, 0.0f, 0.5f, 1.0f), 40.0f, 60.0f, 300.0f, 3.0f);
    ASSERT_EQ(track.GetInterpolateKey(2, key), 1);
    ExpectKey(key, 2, ccolor(0.25f, 0.75f, 0.5f, 0.25f), 25.0f, 45.0f, 150.0f, 1.5f);
}

TEST(LightTrack, ReportsFromClightanim) {
    AssertRecorder recorder;
    clightanim track;
    track.SetKey(clightkey(5, ccolor(), 1.0f, 1.0f, 1.0f, 1.0f));
    clightkey key;
    EXPECT_EQ(track.GetInterpolateKey(-2, key), 1);
    ASSERT_EQ(recorder.Texts().size(), 1u);
    EXPECT_NE(recorder.Texts()[0].find("File: Core/clightanim,"), std::string::npos);
    EXPECT_NE(recorder.Texts()[0].find("Expression: GetKey(first,key)\n"), std::string::npos);
}

TEST(LightTrack, RecordLayoutDependsOnTheVersion) {
    clightanim track;
    track.SetKey(8, ccolor(0.5f, 0.25f, 1.0f, 0.75f), 50.0f, 30.0f, 100.0f, 2.0f);
    const std::string color = Floats({0.5f, 0.25f, 1.0f, 0.75f});
    const std::string newest = Ints({1, 0, 8, 8}) + color + Floats({30, 50, 100, 2});
    EXPECT_EQ(Saved([&](cio_save& out) { EXPECT_EQ(track.Save(out), 1); }), newest);
    // Two keys, each followed by two words that must be skipped.
    const std::string ignored = Ints({-1, 0x7FFFFFFF});
    const std::string v3 = Ints({2, 0, 6, 1}) + color + Floats({30, 50, 2}) + ignored + Ints({6}) +
                           color + Floats({31, 51, 4}) + ignored;
    RecordStream v3Record(v3 + "tail");
    ASSERT_EQ(track.Load(v3Record.in, 3), 1);
    clightkey key;
    ASSERT_EQ(track.GetKeyAt(1, key), 1);
    ExpectKey(key, 6, ccolor(0.5f, 0.25f, 1.0f, 0.75f), 31.0f, 51.0f, 256.0f, 4.0f);
    EXPECT_EQ(v3Record.in.BytesLeft(), 4u);

    const std::string v4Key = Ints({6}) + color + Floats({31, 51, 90, 4});
    RecordStream v4Record(Ints({1, 0, 6}) + v4Key + ignored);
    ASSERT_EQ(track.Load(v4Record.in, 4), 1);
    ASSERT_EQ(track.GetKeyAt(0, key), 1);
    ExpectKey(key, 6, ccolor(0.5f, 0.25f, 1.0f, 0.75f), 31.0f, 51.0f, 90.0f, 4.0f);
    EXPECT_EQ(v4Record.in.BytesLeft(), 0u);

    for (unsigned long version : {5ul, 16ul}) {
        RecordStream record(newest);
        ASSERT_EQ(track.Load(record.in, version), 1);
        ASSERT_EQ(track.GetKeyAt(0, key), 1);
        ExpectKey(key, 8, ccolor(0.5f, 0.25f, 1.0f, 0.75f), 30.0f, 50.0f, 100.0f, 2.0f);
    }
    // A version-4 key without its two ignored words is cut short.
    RecordStream shortV4(Ints({1, 0, 6}) + v4Key);
    EXPECT_EQ(track.Load(shortV4.in, 4), 0);
    EXPECT_EQ(track.NumKeys(), 0);
}

}  // namespace
