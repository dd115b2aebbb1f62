#include "clight.h"

#include <GL/gl.h>

#include <memory>

#include "cgfx.h"
#include "coreglcontext.h"
#include "scene/aimednodes.h"

namespace {

class Light : public SceneClockTest {};

clightkey KeyAtTime(clight& light, int t) {
    clightkey key;
    EXPECT_EQ(light.GetLightAnimPtr()->GetKey(t, key), 1) << "no light key at " << t;
    return key;
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
    for (auto [t, strength] : {std::pair{20, 2.0f}, {10, -3.0f}, {30, 2.0f}})
        light.SetStrength(t, strength);
    EXPECT_EQ(
        Values(KeyAtTime(light, 20).strength, light.GetStrength(10), KeyAtTime(light, 30).strength),
        Values(1, 0, 0));
    // Recording: every current value is keyed at the current time.
    SetAnimOn(1);
    light.SetFallOff(10, 30.0f);
    EXPECT_EQ(Values(KeyAtTime(light, 10).falloff, KeyAtTime(light, 10).hotspot), Values(30, 12));
    SetAnimTime(20);
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
    // The defaults the record tests do not show.
    EXPECT_EQ(Values(light.GetLightType(), light.GetLightCastShadowFlag()), Values(LIGHT_POINT, 1));
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
    clight high;
    for (clight* l : {&light, &high}) {
        l->SetShadowMapSize(l == &light ? 4 : 4096);
        l->SetShadowMapBias(l == &light ? -1.0f : 5000.0f);
    }
    light.SetDistance(-3.0f);
    EXPECT_EQ(Values(light.GetShadowMapSize(), high.GetShadowMapSize(), light.GetShadowMapBias(),
                     high.GetShadowMapBias(), light.GetDistance()),
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
    clight rolled[2];
    for (int i : {0, 1}) {
        rolled[i].SetTarget(&target);
        rolled[i].SetRotation(0, cquat(cpoint3(0, 0, 1), i ? -30.0f : 30.0f));
    }
    const cmatrix4 m = rolled[0].GetNodeTM(0, TM_ROT);
    EXPECT_TRUE(Near3(m.GetRow3(2), cpoint3(0, 0, -1)));
    EXPECT_NEAR(DotProd(m.GetRow3(0), cpoint3(-1, 0, 0)), -std::sqrt(3.0f) / 2.0f, 1e-4f);
    EXPECT_TRUE(Near3(rolled[1].GetNodeTM(0, TM_ROT).GetRow3(0), m.GetRow3(0)));
    target.SetFlags(FLAG_DELETED);  // a target being deleted no longer steers
    EXPECT_TRUE(Near3(Facing(light, 80), cpoint3(0, 0, 1))) << "its own, unturned facing";
    SetAnimTime(80);
    EXPECT_EQ(light.HandleMessage(MSG_NODE_DELETED, &target, nullptr), 1);
    EXPECT_TRUE(light.GetTarget() == nullptr && Near3(Facing(light, 80), cpoint3(0, 0, 1)))
        << "dropping the deleted target turns nothing";
    target.SetFlags(0);
}

TEST_F(Light, WritesTheNewestLayoutWithTheValuesAtTimeZeroAndReadsOlderOnes) {
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

    for (unsigned long version : {2ul, 3ul, 4ul, 12ul}) {
        const bool v4 = version >= 4, v5 = version >= 5;
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
        clight old;
        ASSERT_TRUE(LoadsWhole(old, r.bytes, version)) << version;
        const int t = GetAnimTime();
        const ccolor c = old.GetLightColor(t);
        // The state: distance, attenuation flag and type, cast shadow, shadow map flag, size
        // and bias, volume, hotspot, falloff, range, strength and colour; then the type, the
        // target and the default key.
        EXPECT_EQ(
            Values(old.GetDistance(), old.GetAttenuationFlag(), old.GetAttenuationType(),
                   old.GetLightCastShadowFlag(), old.GetShadowMapFlag(), old.GetShadowMapSize(),
                   old.GetShadowMapBias(), old.GetVolumeFlag(), old.GetHotSpot(t),
                   old.GetFallOff(t), old.GetRange(t), old.GetStrength(t), c.r, c.g, c.b, c.a),
            Values(32, v4, v5 ? 3 : 0, 0, v5, v5 ? 16 : 256, v5 ? 9 : 4, v5, 20, 50, v4 ? 77 : 256,
                   2, 0.5f, 0.25f, 0.125f, 1))
            << version;
        EXPECT_EQ(Values(old.GetLightType(), old.GetTarget() == aim,
                         old.GetLightAnimPtr()->NumKeys(), KeyAtTime(old, 0).hotspot),
                  Values(LIGHT_DIRECTIONAL, version >= 3, 1, 43))
            << "the target, the default key of version " << version;
    }
}

TEST_F(Light, PushLightSetsUpEveryParameterOfTheGLLight) {
    const std::unique_ptr<CoreGLContext, void (*)(CoreGLContext*)> gl(
        CoreGLContext_Create(64, 64, nullptr), CoreGLContext_Destroy);
    ASSERT_TRUE(gl && CoreGLContext_MakeCurrent(gl.get()));
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
        // Each reads up to 4 values; unused ones stay 0.
        GLfloat got[10][4] = {};
        for (int i = 0; i < 10; ++i) glGetLightfv(GL_LIGHT3, GLenum(GL_AMBIENT + i), got[i]);
        const std::vector<float> expected =
            Values(0, 0, 0, 1, 0.5f, 0.25f, 1, 0.75f, 1, 1, 1, 1, 1, 2, 3, 1, 0, -0.6f, -0.8f, 0,
                   spot[type][0], 0, 0, 0, spot[type][1], 0, 0, 0, type == 3 ? 0 : 0.5f, 0, 0, 0, 0,
                   0, 0, 0, 0, 0, 0, 0);
        for (std::size_t i = 0; i < expected.size(); ++i)
            EXPECT_NEAR(got[i / 4][i % 4], expected[i], 1e-5f) << "value " << i;
        for (GLenum cap : {GL_LIGHTING, GL_LIGHT3, GL_NORMALIZE}) {
            EXPECT_TRUE(glIsEnabled(cap)) << cap;
            glDisable(cap);
        }
    }
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

}  // namespace
