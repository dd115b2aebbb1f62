// What the light's track adds to the parameter track design (tested in ccamanim_test.cpp):
// its key's payload, argument order and version-dependent record, and its report name.
#include <gtest/gtest.h>

#include "anim/tracksupport.h"
#include "cparamanim.h"

namespace {

// Time, colour, hotspot, falloff, range and strength.
std::vector<float> Fields(const clightkey& k) {
    return {float(k.time), k.color.r, k.color.g, k.color.b, k.color.a,
            k.hotspot,     k.falloff, k.range,   k.strength};
}

TEST(LightTrack, KeysTakeFalloffBeforeHotspotAndInterpolateEveryChannel) {
    clightanim track;
    track.SetKey(0, ccolor(0.0f, 1.0f, 0.5f, 0.0f), 40.0f, 20.0f, 100.0f, 1.0f);
    clightkey key;
    key.Set(8, ccolor(1.0f, 0.0f, 0.5f, 1.0f), 60.0f, 40.0f, 300.0f, 3.0f);
    track.SetKey(key);
    ASSERT_EQ(track.GetInterpolateKey(2, key), 1);
    EXPECT_EQ(Fields(key), (std::vector<float>{2, 0.25f, 0.75f, 0.5f, 0.25f, 25, 45, 150, 1.5f}));
    // Without a key at the first key time 0 the report names this track's source.
    AssertRecorder recorder;
    clightanim late;
    late.SetKey(key);
    EXPECT_EQ(late.GetInterpolateKey(-1, key), 1);
    EXPECT_TRUE(recorder.Count() == 1 &&
                recorder.Texts()[0].find("File: Core/clightanim, Line: 185\n") !=
                    std::string::npos);
}

TEST(LightTrack, RecordLayoutDependsOnTheVersion) {
    clightanim track;
    track.SetKey(8, ccolor(0.5f, 0.25f, 1.0f, 0.75f), 50.0f, 30.0f, 100.0f, 2.0f);
    const std::string color = Floats({0.5f, 0.25f, 1.0f, 0.75f});
    const std::string newest = Ints({1, 0, 8, 8}) + color + Floats({30, 50, 100, 2});
    EXPECT_EQ(Saved([&](cio_save& out) { EXPECT_EQ(track.Save(out), 1); }), newest);
    // Versions 3, 4 and 5: up to 4 each key is followed by two words that are skipped; range
    // comes in 4.
    const std::string key6 = Ints({1, 0, 6, 6}) + color + Floats({31, 51}), skipped = Ints({-1, 7});
    const std::string records[] = {key6 + Floats({4}) + skipped, key6 + Floats({90, 4}) + skipped,
                                   key6 + Floats({90, 4})};
    for (unsigned long version = 3; version <= 5; ++version) {
        RecordStream record(records[version - 3] + "tail");
        ASSERT_EQ(track.Load(record.in, version), 1) << version;
        clightkey key;
        ASSERT_EQ(track.GetKeyAt(0, key), 1);
        EXPECT_EQ(Fields(key), (std::vector<float>{6, 0.5f, 0.25f, 1, 0.75f, 31, 51,
                                                   version == 3 ? 256.0f : 90.0f, 4}))
            << version;
        EXPECT_EQ(record.in.BytesLeft(), 4u) << version;
    }
    // A version-4 key without its two ignored words is cut short.
    RecordStream shortV4(key6 + Floats({90, 4}));
    EXPECT_EQ(track.Load(shortV4.in, 4), 0);
}

}  // namespace
