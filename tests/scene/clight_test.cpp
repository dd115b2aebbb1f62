#include "clight.h"

#include <GL/gl.h>
#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <string>
#include <vector>

#include "animclock.h"
#include "cgfx.h"
#include "coreglcontext.h"
#include "cparamanim.h"
#include "cquat.h"
#include "cscene.h"
#include "scene/aimednodes.h"
#include "support/bytestring.h"

namespace {

class Light : public SceneClockTest {};

clightkey KeyAtTime(clight& light, int t) {
    clightkey key;
    EXPECT_EQ(light.GetLightAnimPtr()->GetKey(t, key), 1) << "no light key at " << t;
    return key;
}

// The light's whole state for one comparison: distance, attenuation flag and type, cast
// shadow, shadow map flag, size and bias, volume, then at `t` hotspot, falloff, range,
// strength and the colour.
std::vector<float> State(const clight& l, int t) {
    const ccolor c = l.GetLightColor(t);
    return Values(l.GetDistance(), l.GetAttenuationFlag(), l.GetAttenuationType(),
                  l.GetLightCastShadowFlag(), l.GetShadowMapFlag(), l.GetShadowMapSize(),
                  l.GetShadowMapBias(), l.GetVolumeFlag(), l.GetHotSpot(t), l.GetFallOff(t),
                  l.GetRange(t), l.GetStrength(t), c.r, c.g, c.b, c.a);
}

TEST_F(Light, KeyedParametersFollowTheCurrentTimeAndTheRecordingMode) {
    clight light;
    const ccolor red(1.0f, 0.0f, 0.0f, 1.0f);
    SetAnimTime(10);
    light.SetLightColor(10, red);
    EXPECT_EQ(KeyAtTime(light, 0).color, red) << "not recording, one key: key 0 follows";
    // Off the current time only a key at that time changes.
    light.SetRange(20, -50.0f);
    EXPECT_EQ(Values(KeyAtTime(light, 20).range, light.GetRange(10), light.GetRange(5)),
              Values(50, 256, 256.0f + (50.0f - 256.0f) * 0.25f));
    // Two keys and not recording: only the current value changes.
    light.SetHotSpot(10, 12.0f);
    EXPECT_EQ(Values(light.GetHotSpot(10), KeyAtTime(light, 0).hotspot, light.HasKey(10)),
              Values(12, 43, 0));
    // Intended: the strength keyed off the current time is the current one, not the one passed.
    light.SetStrength(20, 2.0f);
    light.SetStrength(10, -3.0f);
    light.SetStrength(30, 2.0f);
    EXPECT_EQ(
        Values(KeyAtTime(light, 20).strength, light.GetStrength(10), KeyAtTime(light, 30).strength),
        Values(1, 0, 0));
    // Recording: every current value is keyed at the current time.
    SetAnimOn(1);
    light.SetFallOff(10, 30.0f);
    const clightkey keyed = KeyAtTime(light, 10);
    EXPECT_EQ(Values(keyed.falloff, keyed.hotspot, keyed.strength), Values(30, 12, 0));
    // Changing the time refreshes the current values from the track.
    SetAnimTime(20);
    light.UpdateTimeIdle();
    EXPECT_EQ(Values(light.GetRange(20), light.GetStrength(20)), Values(50, 1));
    // The key at 0 is never deleted; a deletion refreshes the current values; a node key alone
    // answers HasKey too; snapping keys the light and the transform.
    light.DeleteKey(0);
    light.DeleteKey(20);
    light.SetPosition(50, cpoint3(1, 2, 3));
    EXPECT_EQ(Values(light.GetLightAnimPtr()->NumKeys(), light.GetRange(20), light.HasKey(50)),
              Values(3, 153, 1));
    SetAnimTime(60);
    light.SnapKey();
    EXPECT_TRUE(light.GetLightAnimPtr()->KeyExists(60) && light.GetAnimPtr()->KeyExists(60));
}

TEST_F(Light, StartsWithOneDefaultKeyAndClampsItsParameters) {
    clight light;
    EXPECT_EQ(Values(light.GetTypeID(), light.GetLightType(), light.GetLightAnimPtr()->NumKeys()),
              Values(TYPE_LIGHT, LIGHT_POINT, 1));
    EXPECT_EQ(State(light, 5), Values(128, 0, 0, 1, 0, 256, 4, 0, 43, 45, 256, 1, 1, 1, 1, 1));
    EXPECT_EQ(light.GetColor(), GetGfxInfo().lightcolor);
    EXPECT_STREQ(light.GetName(), "Light1");
    // Each row: falloff and hotspot set at time 0 in that order, then what they are.
    const float cone[][4] = {{200, 43, 179.5f, 43}, {45, 60, 45, 45}, {-1, -1, 0, 0}};
    for (const auto& row : cone) {
        light.SetFallOff(0, row[0]);
        light.SetHotSpot(0, row[1]);
        EXPECT_EQ(Values(light.GetFallOff(0), light.GetHotSpot(0)), Values(row[2], row[3]))
            << row[0] << " " << row[1];
    }
    light.SetFallOff(0, 45.0f);
    light.SetHotSpot(0, 43.0f);
    light.SetFallOff(0, 30.0f);
    light.SetFallOff(40, 20.0f);
    EXPECT_EQ(Values(KeyAtTime(light, 0).hotspot, KeyAtTime(light, 40).hotspot), Values(30, 20))
        << "the falloff lowers the hotspot, at its own time";
    light.SetShadowMapSize(4);
    const int small = light.GetShadowMapSize();
    light.SetShadowMapSize(4096);
    light.SetShadowMapBias(-1.0f);
    const float low = light.GetShadowMapBias();
    light.SetShadowMapBias(5000.0f);
    light.SetDistance(-3.0f);
    EXPECT_EQ(
        Values(small, light.GetShadowMapSize(), low, light.GetShadowMapBias(), light.GetDistance()),
        Values(8, 2048, 0, 1000, 0));
}

TEST_F(Light, FacesItsAnimatedTargetKeepingAnUnsignedRoll) {
    cnode target("Aim", ccolor());
    clight light;
    SetAnimOn(1);
    target.SetPosition(0, cpoint3(0, 0, -10));
    target.SetPosition(80, cpoint3(3, -4, 12));
    light.SetPosition(80, cpoint3(1, 1, 1));
    SetAnimOn(0);
    light.SetTarget(&target);
    EXPECT_TRUE(Near3(Facing(light, 80), Normalize(cpoint3(2, -5, 11))));
    // A 30 degree turn about Z moves the given X row 150 degrees from the look-at's -X.
    // Intended: the roll is unsigned, so both signs roll the same way.
    const float s = std::sin(15.0f * 3.14159265f / 180.0f);
    const float c = std::cos(15.0f * 3.14159265f / 180.0f);
    cpoint3 firstRow;
    for (float sign : {1.0f, -1.0f}) {
        clight rolled;
        rolled.SetTarget(&target);
        rolled.SetRotation(0, MakeQuat(0.0f, 0.0f, sign * s, c));
        const cmatrix4 m = rolled.GetNodeTM(0, TM_ROT);
        EXPECT_TRUE(Near3(m.GetRow3(2), cpoint3(0, 0, -1))) << sign;
        EXPECT_NEAR(DotProd(m.GetRow3(0), cpoint3(-1, 0, 0)), -std::sqrt(3.0f) / 2.0f, 1e-4f);
        if (sign > 0) firstRow = m.GetRow3(0);
        EXPECT_TRUE(Near3(m.GetRow3(0), firstRow)) << sign;
    }
    target.SetFlags(FLAG_DELETED);  // a target being deleted no longer steers
    EXPECT_TRUE(Near3(Facing(light, 80), cpoint3(0, 0, 1))) << "its own, unturned facing";
    target.SetFlags(0);
}

TEST_F(Light, WritesTheNewestLayoutWithTheValuesAtTimeZero) {
    cnode* aim = new cnode("Aim", ccolor());
    MainScene.AddNode(aim, 1);
    clight light, loaded, clone;
    light.SetName("Lamp");
    light.SetLightType(LIGHT_SPOT);
    light.SetTarget(aim);
    light.SetAttenuationFlag(1);
    light.SetAttenuationType(2);
    light.SetLightCastShadowFlag(0);
    light.SetShadowMapFlag(3);
    light.SetVolumeFlag(4);
    SetAnimOn(1);
    light.SetHotSpot(0, 30.0f);
    SetAnimTime(50);
    light.SetHotSpot(50, 40.0f);
    ByteString r;
    r.bytes = BaseRecord(3, 1, "Lamp", GetGfxInfo().lightcolor, 16);
    r.Floats({1, 1, 1, 1, 128, 30, 45}).Ints({1}).Floats({256}).Ints({2}).Floats({1});
    r.Ints({0, 3, 256}).Floats({4}).Ints({4}).Name("Aim", 64).Ints({2, 0, 50});
    for (auto [t, hotspot] : {std::pair{0, 30.0f}, {50, 40.0f}})
        r.Ints({t}).Floats({1, 1, 1, 1, hotspot, 45, 256, 1});
    const std::string saved = SavedRecord(light);
    EXPECT_EQ(saved, r.bytes);
    ASSERT_TRUE(LoadsWhole(loaded, saved, 16));
    light.Clone(50, clone);
    EXPECT_EQ(SavedRecord(loaded) + SavedRecord(clone), saved + saved) << "loaded, then cloned";
    EXPECT_EQ(LoadRecord(loaded, saved.substr(0, saved.size() - 10), 16), 0);
}

TEST_F(Light, ReadsOlderLayoutsWithTheirDefaults) {
    cnode* aim = new cnode("Aim", ccolor());
    MainScene.AddNode(aim, 1);
    for (unsigned long version : {2ul, 3ul, 4ul, 12ul}) {
        SCOPED_TRACE(version);
        const bool v4 = version >= 4, v5 = version >= 5;
        ByteString r;
        r.bytes = BaseRecord(3, 2, "Old", ccolor(0.1f, 0.2f, 0.3f, 1.0f), version);
        r.Floats({0.5f, 0.25f, 0.125f, 1, 32, 20, 50});
        if (v4) r.Ints({1}).Floats({77});
        if (v5) r.Ints({3});
        r.Floats({2});
        if (!v5) r.Ints({-1, -1});
        r.Ints({0});
        if (v5) r.Ints({1, 16}).Floats({9}).Ints({1});
        if (version >= 3) r.Name("Aim", 32);
        r.Ints({0, 0, 0});  // a track without keys
        clight light;
        ASSERT_TRUE(LoadsWhole(light, r.bytes, version));
        EXPECT_EQ(light.GetLightType(), LIGHT_DIRECTIONAL);
        EXPECT_EQ(State(light, GetAnimTime()),
                  Values(32, v4, v5 ? 3 : 0, 0, v5, v5 ? 16 : 256, v5 ? 9 : 4, v5, 20, 50,
                         v4 ? 77 : 256, 2, 0.5f, 0.25f, 0.125f, 1));
        EXPECT_EQ(light.GetTarget(), version >= 3 ? aim : nullptr);
        EXPECT_EQ(Values(light.GetLightAnimPtr()->NumKeys(), KeyAtTime(light, 0).hotspot),
                  Values(1, 43))
            << "the default key";
    }
}

TEST_F(Light, PushLightSetsUpEveryParameterOfTheGLLight) {
    const std::unique_ptr<CoreGLContext, void (*)(CoreGLContext*)> gl(
        CoreGLContext_Create(64, 64, nullptr), CoreGLContext_Destroy);
    ASSERT_TRUE(gl && CoreGLContext_MakeCurrent(gl.get()) &&
                CoreGLContext_GetCurrent() == gl.get());
    // Spot exponent and cutoff by type; a type of no kind leaves them as they were (7).
    const float spot[][2] = {{0, 180}, {64, 20}, {0, 90}, {7, 7}};
    for (unsigned int type : {LIGHT_POINT, LIGHT_SPOT, LIGHT_DIRECTIONAL, 3u}) {
        SCOPED_TRACE(type);
        clight light;
        // Shines along -(0, 0.6, 0.8) from (1, 2, 3); a strength of 0 gives no attenuation.
        light.Create(type, cpoint3(1, 2, 3), cpoint3(0, 3, 4), cpoint3(1, 0, 0));
        light.SetLightColor(0, ccolor(0.5f, 0.25f, 1.0f, 0.75f));
        light.SetStrength(0, type == 3 ? 0.0f : 2.0f);
        light.SetFallOff(0, 40.0f);
        light.SetHotSpot(0, 20.0f);
        glLightf(GL_LIGHT3, GL_SPOT_EXPONENT, 7.0f);
        glLightf(GL_LIGHT3, GL_SPOT_CUTOFF, 7.0f);
        light.PushLight(0, 3);
        // GL_AMBIENT to GL_QUADRATIC_ATTENUATION are consecutive: ambient, diffuse, specular,
        // position, spot direction, exponent, cutoff, constant, linear, quadratic attenuation.
        const int counts[] = {4, 4, 4, 4, 3, 1, 1, 1, 1, 1};
        std::vector<float> got;
        for (int i = 0; i < 10; ++i) {
            GLfloat v[4] = {};
            glGetLightfv(GL_LIGHT3, static_cast<GLenum>(GL_AMBIENT + i), v);
            got.insert(got.end(), v, v + counts[i]);
        }
        const std::vector<float> expected =
            Values(0, 0, 0, 1, 0.5f, 0.25f, 1, 0.75f, 1, 1, 1, 1, 1, 2, 3, 1, 0, -0.6f, -0.8f,
                   spot[type][0], spot[type][1], type == 3 ? 0 : 0.5f, 0, 0);
        for (std::size_t i = 0; i < expected.size(); ++i)
            EXPECT_NEAR(got[i], expected[i], 1e-5f) << "value " << i;
        for (GLenum cap : {GL_LIGHTING, GL_LIGHT3, GL_NORMALIZE}) {
            EXPECT_TRUE(glIsEnabled(cap)) << cap;
            glDisable(cap);
        }
    }
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

}  // namespace
