#include "clight.h"

#include <GL/gl.h>
#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <utility>
#include <vector>

#include "animclock.h"
#include "cgfx.h"
#include "coreinterface.h"
#include "cparamanim.h"
#include "cquat.h"
#include "cscene.h"
#include "scene/aimednodes.h"
#include "support/bytestring.h"

namespace {

class Light : public SceneClockTest {};
using LightRecord = Light;

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

// A light track record of the newest layout with one key per entry of `keys`.
std::string TrackRecord(std::initializer_list<clightkey> keys, int first, int last) {
    ByteString r;
    r.Word(keys.size()).Ints({first, last});
    for (const clightkey& k : keys) {
        r.Ints({k.time}).Floats({k.color.r, k.color.g, k.color.b, k.color.a, k.hotspot, k.falloff,
                                 k.range, k.strength});
    }
    return r.bytes;
}

// Every parameter of GL light `light` in one list: ambient, diffuse, specular, position, spot
// direction, constant, linear and quadratic attenuation, spot exponent and cutoff.
std::vector<float> ReadLight(GLenum light) {
    const GLenum params[] = {GL_AMBIENT,
                             GL_DIFFUSE,
                             GL_SPECULAR,
                             GL_POSITION,
                             GL_SPOT_DIRECTION,
                             GL_CONSTANT_ATTENUATION,
                             GL_LINEAR_ATTENUATION,
                             GL_QUADRATIC_ATTENUATION,
                             GL_SPOT_EXPONENT,
                             GL_SPOT_CUTOFF};
    const int counts[] = {4, 4, 4, 4, 3, 1, 1, 1, 1, 1};
    std::vector<float> values;
    for (int i = 0; i < 10; ++i) {
        GLfloat v[4] = {};
        glGetLightfv(light, params[i], v);
        values.insert(values.end(), v, v + counts[i]);
    }
    return values;
}

// The red channel of a 64 x 64 view of x, y in [-1, 1] after drawing the unit square of the
// z = 0 plane, facing +Z, under `light` alone. The square is a fine grid: GL lights per vertex,
// so the cone's edge shows only where vertices lie inside and outside it.
std::vector<int> LitSquare(clight& light) {
    glClearColor(0, 0, 0, 1);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glOrtho(-1, 1, -1, 1, -10, 10);
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    const GLfloat noAmbient[4] = {0, 0, 0, 1};
    glLightModelfv(GL_LIGHT_MODEL_AMBIENT, noAmbient);
    light.PushLight(0, 0);
    constexpr int kCells = 64;
    glNormal3f(0.0f, 0.0f, 1.0f);
    for (int j = 0; j < kCells; ++j) {
        glBegin(GL_QUAD_STRIP);
        for (int i = 0; i <= kCells; ++i) {
            const float x = -1.0f + 2.0f * i / kCells;
            glVertex3f(x, -1.0f + 2.0f * j / kCells, 0.0f);
            glVertex3f(x, -1.0f + 2.0f * (j + 1) / kCells, 0.0f);
        }
        glEnd();
    }
    std::vector<unsigned char> pixels(64 * 64 * 4);
    glReadPixels(0, 0, 64, 64, GL_RGBA, GL_UNSIGNED_BYTE, pixels.data());
    glDisable(GL_LIGHT0);
    glDisable(GL_LIGHTING);
    std::vector<int> red;
    for (std::size_t i = 0; i < pixels.size(); i += 4) red.push_back(pixels[i]);
    return red;
}

}  // namespace

TEST_F(Light, StartsAsAPointLightWithOneDefaultKey) {
    clight light;
    EXPECT_EQ(light.GetTypeID(), TYPE_LIGHT);
    EXPECT_EQ(light.GetLightType(), LIGHT_POINT);
    EXPECT_STREQ(light.GetName(), "Light1");
    EXPECT_EQ(light.GetColor(), ccolor(1.0f, 1.0f, 0.0f, 1.0f));
    EXPECT_EQ(State(light, 5), Values(128, 0, 0, 1, 0, 256, 4, 0, 43, 45, 256, 1, 1, 1, 1, 1));
    EXPECT_EQ(light.GetTarget(), nullptr);
    ASSERT_EQ(light.GetLightAnimPtr()->NumKeys(), 1);
    EXPECT_FLOAT_EQ(KeyAtTime(light, 0).hotspot, 43.0f);
    // The wire colour follows the graphics settings current at construction.
    cgfx saved = GetGfxInfo(), red = saved;
    red.lightcolor.Set(1.0f, 0.0f, 0.0f, 1.0f);
    SetGfxInfo(red);
    clight* later = CreateNewLight();
    SetGfxInfo(saved);
    ASSERT_NE(later, nullptr);
    EXPECT_EQ(later->GetColor(), ccolor(1.0f, 0.0f, 0.0f, 1.0f));
    later->Delete();
}

TEST_F(Light, KeyedParametersFollowTheCurrentTimeAndTheRecordingMode) {
    clight light;
    const ccolor red(1.0f, 0.0f, 0.0f, 1.0f);
    SetAnimTime(10);
    light.SetLightColor(10, red);
    ASSERT_EQ(light.GetLightAnimPtr()->NumKeys(), 1);
    EXPECT_EQ(KeyAtTime(light, 0).color, red) << "not recording, one key: key 0 follows";
    EXPECT_EQ(light.GetLightColor(10), red);
    // Off the current time only a key at that time changes.
    light.SetRange(20, -50.0f);
    ASSERT_EQ(light.GetLightAnimPtr()->NumKeys(), 2);
    EXPECT_FLOAT_EQ(KeyAtTime(light, 20).range, 50.0f);
    EXPECT_EQ(KeyAtTime(light, 20).color, red);
    EXPECT_FLOAT_EQ(light.GetRange(10), 256.0f) << "the current value is untouched";
    EXPECT_FLOAT_EQ(light.GetRange(5), 256.0f + (50.0f - 256.0f) * 0.25f);
    // The strength keyed off the current time is the current strength, not the one passed.
    light.SetStrength(20, 2.0f);
    EXPECT_FLOAT_EQ(KeyAtTime(light, 20).strength, 1.0f);
    light.SetStrength(10, -3.0f);
    EXPECT_FLOAT_EQ(light.GetStrength(10), 0.0f);
    light.SetStrength(30, 2.0f);
    EXPECT_FLOAT_EQ(KeyAtTime(light, 30).strength, 0.0f);
    // Two keys and not recording: only the current value changes.
    light.SetHotSpot(10, 12.0f);
    EXPECT_FLOAT_EQ(light.GetHotSpot(10), 12.0f);
    EXPECT_FLOAT_EQ(KeyAtTime(light, 0).hotspot, 43.0f);
    EXPECT_FALSE(light.GetLightAnimPtr()->KeyExists(10));
    // Recording: every current value is keyed at the current time.
    SetAnimOn(1);
    light.SetFallOff(10, 30.0f);
    const clightkey keyed = KeyAtTime(light, 10);
    EXPECT_EQ(Values(keyed.falloff, keyed.hotspot, keyed.strength), Values(30, 12, 0));
    EXPECT_EQ(light.HasKey(10), 1);
    // Changing the time refreshes the current values from the track.
    SetAnimTime(20);
    light.UpdateTimeIdle();
    EXPECT_EQ(Values(light.GetRange(20), light.GetStrength(20)), Values(50, 1));
}

TEST_F(Light, ConeAndPlainParametersAreClamped) {
    clight light;
    // Each row: falloff and hotspot set at time 0 in that order, then what they are.
    const float cone[][4] = {
        {200, 43, 179.5f, 43}, {45, 60, 45, 45}, {30, 43, 30, 30}, {45, -1, 45, 0}, {-1, -1, 0, 0}};
    for (const auto& row : cone) {
        light.SetFallOff(0, row[0]);
        light.SetHotSpot(0, row[1]);
        EXPECT_EQ(Values(light.GetFallOff(0), light.GetHotSpot(0)), Values(row[2], row[3]))
            << row[0] << " " << row[1];
    }
    light.SetFallOff(0, 45.0f);
    light.SetHotSpot(0, 43.0f);
    light.SetFallOff(0, 30.0f);
    EXPECT_EQ(Values(light.GetHotSpot(0), KeyAtTime(light, 0).hotspot), Values(30, 30))
        << "the falloff lowers the hotspot";
    light.SetFallOff(0, 45.0f);
    light.SetHotSpot(0, 43.0f);
    light.SetFallOff(40, 20.0f);
    EXPECT_FLOAT_EQ(KeyAtTime(light, 40).hotspot, 20.0f) << "off the current time, there only";
    EXPECT_FLOAT_EQ(light.GetHotSpot(0), 43.0f);

    for (auto [size, kept] : {std::pair{4, 8}, {4096, 2048}, {300, 300}}) {
        light.SetShadowMapSize(size);
        EXPECT_EQ(light.GetShadowMapSize(), kept) << size;
    }
    for (auto [bias, kept] : {std::pair{-1.0f, 0.0f}, {5000.0f, 1000.0f}}) {
        light.SetShadowMapBias(bias);
        EXPECT_FLOAT_EQ(light.GetShadowMapBias(), kept) << bias;
    }
    light.SetDistance(-3.0f);
    EXPECT_FLOAT_EQ(light.GetDistance(), 0.0f);
}

TEST_F(Light, SnapsAndDeletesKeysButNeverTheOneAtZero) {
    clight light;
    SetAnimTime(30);
    light.SetStrength(30, 3.0f);
    light.SnapKey();
    ASSERT_EQ(light.GetLightAnimPtr()->NumKeys(), 2);
    EXPECT_EQ(Values(KeyAtTime(light, 0).strength, KeyAtTime(light, 30).strength), Values(3, 3));
    EXPECT_TRUE(light.GetAnimPtr()->KeyExists(30)) << "the transform is snapped too";
    light.DeleteKey(0);
    EXPECT_EQ(light.GetLightAnimPtr()->NumKeys(), 2);
    light.DeleteKey(30);
    EXPECT_EQ(light.GetLightAnimPtr()->NumKeys(), 1);
    EXPECT_EQ(light.HasKey(30), 0);
    light.SetPosition(50, cpoint3(1, 2, 3));
    EXPECT_EQ(light.HasKey(50), 1) << "a node key alone answers too";
    EXPECT_EQ(light.HasKey(60), 0);
}

TEST_F(Light, FacesItsAnimatedTargetAtEveryKeyTime) {
    cnode target("Aim", ccolor());
    clight light;
    SetAnimOn(1);
    const cpoint3 targetAt[] = {cpoint3(0, 0, -10), cpoint3(10, 0, 0), cpoint3(3, -4, 12)};
    const cpoint3 lightAt[] = {cpoint3(0, 0, 0), cpoint3(0, 5, 0), cpoint3(1, 1, 1)};
    for (int i = 0; i < 3; ++i) {
        target.SetPosition(40 * i, targetAt[i]);
        light.SetPosition(40 * i, lightAt[i]);
    }
    SetAnimOn(0);
    light.SetTarget(&target);
    for (int i : {0, 1, 2, 0}) {
        const int t = 40 * i;
        const cpoint3 expected = Normalize(targetAt[i] - lightAt[i]);
        EXPECT_TRUE(Near3(Facing(light, t), expected)) << "at time " << t;
        SetAnimTime(t);
        light.UpdateTimeIdle();
        target.UpdateTimeIdle();
        EXPECT_TRUE(Near3(Facing(light, t), expected)) << "current at time " << t;
    }
    // Straight down -Z with the world up kept: a half turn about Y.
    const cmatrix4 m = light.GetNodeTM(0, TM_ROT);
    EXPECT_TRUE(Near3(m.GetRow3(0), cpoint3(-1, 0, 0)));
    EXPECT_TRUE(Near3(m.GetRow3(1), cpoint3(0, 1, 0)));
    // A light never targets itself; a target being deleted no longer steers.
    light.SetTarget(&light);
    EXPECT_EQ(light.GetTarget(), &target);
    target.SetFlags(FLAG_DELETED);
    EXPECT_TRUE(Near3(Facing(light, 40), cpoint3(0, 0, 1))) << "its own, unturned facing";
    target.SetFlags(0);
}

TEST_F(Light, KeepsOnlyAnUnsignedRollUnderATarget) {
    cnode target("Aim", ccolor());
    target.SetPosition(0, cpoint3(0, 0, -10));
    const float s = std::sin(15.0f * 3.14159265f / 180.0f);
    const float c = std::cos(15.0f * 3.14159265f / 180.0f);
    // Facing -Z with Y up, the look-at's X row is -X; a 30 degree turn about Z moves the
    // given X row to (cos 30, +-sin 30, 0), 150 degrees away from it.
    const float cos150 = -std::sqrt(3.0f) / 2.0f;
    cmatrix4 first;
    for (float sign : {1.0f, -1.0f}) {
        SCOPED_TRACE(sign);
        clight tipped, light;
        tipped.SetTarget(&target);
        tipped.SetRotation(0, MakeQuat(0.2f, 0.0f, sign * s, c));
        EXPECT_TRUE(Near3(Facing(tipped, 0), cpoint3(0, 0, -1))) << "the tip is dropped";
        light.SetTarget(&target);
        light.SetRotation(0, MakeQuat(0.0f, 0.0f, sign * s, c));
        const cmatrix4 m = light.GetNodeTM(0, TM_ROT);
        EXPECT_TRUE(Near3(Facing(light, 0), cpoint3(0, 0, -1)));
        EXPECT_NEAR(DotProd(m.GetRow3(0), cpoint3(-1, 0, 0)), cos150, 1e-4f);
        // Intended: the roll is unsigned, so both signs end up rolled the same way.
        if (sign > 0) first = m;
        EXPECT_TRUE(Near3(m.GetRow3(0), first.GetRow3(0)));
        EXPECT_TRUE(Near3(m.GetRow3(1), first.GetRow3(1)));
    }
}

TEST_F(Light, DroppedTargetsLeaveTheFacingAndReplacedOnesAreFollowed) {
    cnode* target = new cnode("Aim", ccolor());
    cnode* other = new cnode("Other", ccolor());
    clight* light = CreateNewLight();
    for (cnode* node : {target, other, static_cast<cnode*>(light)}) MainScene.AddNode(node, 1);
    target->SetPosition(0, cpoint3(5, 0, 0));
    other->SetPosition(0, cpoint3(0, -5, -5));
    light->SetTarget(target);
    EXPECT_TRUE(Near3(Facing(*light, 0), cpoint3(1, 0, 0)));
    EXPECT_EQ(light->HandleMessage(MSG_NODE_REPLACED, target, other), 1);
    EXPECT_EQ(light->GetTarget(), other);
    const cpoint3 towardsOther = Normalize(cpoint3(0, -1, -1));
    EXPECT_TRUE(Near3(Facing(*light, 0), towardsOther));
    EXPECT_EQ(light->HandleMessage(MSG_NODE_DELETED, target, nullptr), 0);

    void (*const savedInform)(cnode*) = Application_InformDeleted;
    Application_InformDeleted = [](cnode*) {};
    MainScene.DeleteNodeForGood(other);
    Application_InformDeleted = savedInform;
    EXPECT_EQ(light->GetTarget(), nullptr);
    EXPECT_TRUE(Near3(Facing(*light, 0), towardsOther));
    EXPECT_TRUE(Near3(Facing(*light, 100), towardsOther)) << "kept in the key too";
}

TEST_F(Light, CreatesFromALookAtAndCopiesItsOwnState) {
    clight light;
    light.Create(LIGHT_SPOT, 1, 2, 3, 1, 0, 0, 0, 1, 0);
    EXPECT_EQ(light.GetLightType(), LIGHT_SPOT);
    EXPECT_EQ(light.GetSubTypeID(), 1u);
    EXPECT_TRUE(Near3(light.GetPosition(0), cpoint3(1, 2, 3)));
    const cmatrix4 m = light.GetNodeTM(0, TM_ROT);
    EXPECT_TRUE(Near3(m.GetRow3(0), cpoint3(0, 0, -1)));
    EXPECT_TRUE(Near3(m.GetRow3(1), cpoint3(0, 1, 0)));
    EXPECT_TRUE(Near3(m.GetRow3(2), cpoint3(1, 0, 0)));

    light.SetName("Lamp");
    light.SetShadowMapSize(512);
    clight clone;
    cnode plain("Plain", ccolor());
    light.Clone(0, clone);
    light.Clone(0, plain);
    EXPECT_STREQ(plain.GetName(), "Lamp");
    EXPECT_STREQ(clone.GetName(), "Lamp");
    EXPECT_TRUE(Near3(clone.GetPosition(0), cpoint3(1, 2, 3)));
    EXPECT_TRUE(Near3(Facing(clone, 0), cpoint3(1, 0, 0)));
    EXPECT_EQ(Values(clone.GetShadowMapSize(), clone.GetLightType()), Values(512, LIGHT_SPOT));

    cnode aim("Aim", ccolor());
    light.SetTarget(&aim);
    light.SetVolumeFlag(1);
    light.SetRange(80, 99.0f);
    clight copy(light), assigned;
    assigned = light;
    for (clight* c : {&copy, &assigned}) {
        EXPECT_EQ(c->GetTarget(), &aim);
        EXPECT_EQ(Values(c->GetLightType(), c->GetShadowMapSize(), c->GetVolumeFlag(),
                         c->GetLightAnimPtr()->NumKeys(), c->GetRange(80)),
                  Values(LIGHT_SPOT, 512, 1, 2, 99));
    }
    copy.SetRange(80, 1.0f);
    EXPECT_FLOAT_EQ(light.GetRange(80), 99.0f) << "the copy owns its track";
}

TEST_F(LightRecord, WritesTheNewestLayoutWithTheValuesAtTimeZero) {
    cnode* aim = new cnode("Aim", ccolor());
    MainScene.AddNode(aim, 1);
    clight light;
    light.SetName("Lamp");
    light.SetLightType(LIGHT_SPOT);
    light.SetTarget(aim);
    light.SetDistance(64.0f);
    light.SetAttenuationFlag(1);
    light.SetAttenuationType(2);
    light.SetLightCastShadowFlag(0);
    light.SetShadowMapFlag(1);
    light.SetShadowMapSize(1024);
    light.SetShadowMapBias(0.5f);
    light.SetVolumeFlag(1);
    SetAnimOn(1);
    light.SetHotSpot(0, 30.0f);
    SetAnimTime(50);
    light.SetHotSpot(50, 40.0f);
    SetAnimOn(0);
    ASSERT_FLOAT_EQ(light.GetHotSpot(50), 40.0f);

    ByteString r;
    r.bytes = BaseRecord(3, 1, "Lamp", ccolor(1.0f, 1.0f, 0.0f, 1.0f), 16);
    r.Floats({1, 1, 1, 1, 64, 30, 45}).Ints({1}).Floats({256}).Ints({2}).Floats({1});
    r.Ints({0, 1, 1024}).Floats({0.5f}).Ints({1}).Name("Aim", 64);
    const ccolor white(1.0f, 1.0f, 1.0f, 1.0f);
    const std::string track = TrackRecord({clightkey(0, white, 45.0f, 30.0f, 256.0f, 1.0f),
                                           clightkey(50, white, 45.0f, 40.0f, 256.0f, 1.0f)},
                                          0, 50);
    const std::string saved = SavedRecord(light);
    EXPECT_EQ(saved, r.bytes + track);
    // The record loads back into the same light, target included.
    SetAnimTime(0);
    clight loaded, truncated;
    ASSERT_EQ(LoadRecord(loaded, saved, 16), 1);
    EXPECT_EQ(loaded.GetTarget(), aim);
    EXPECT_EQ(SavedRecord(loaded), saved);
    EXPECT_EQ(LoadRecord(truncated, saved.substr(0, saved.size() - 10), 16), 0);
    // Without a target the name field is 64 zero bytes.
    light.SetTarget(nullptr);
    EXPECT_EQ(SavedRecord(light).substr(saved.size() - track.size() - 64, 64),
              std::string(64, '\0'));
}

TEST_F(LightRecord, ReadsOlderLayoutsWithTheirDefaults) {
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
        r.Ints({2, 0, 10});
        for (auto [t, hot] : {std::pair{0, 20.0f}, {10, 30.0f}}) {
            r.Ints({t}).Floats({0.5f, 0.5f, 0.5f, 1, hot, 50});
            if (v4) r.Floats({77});
            r.Floats({2});
            if (!v5) r.Ints({-1, -1});
        }
        clight light;
        ASSERT_TRUE(LoadsWhole(light, r.bytes, version));
        EXPECT_STREQ(light.GetName(), "Old");
        EXPECT_EQ(light.GetLightType(), LIGHT_DIRECTIONAL);
        EXPECT_EQ(State(light, 0), Values(32, v4, v5 ? 3 : 0, 0, v5, v5 ? 16 : 256, v5 ? 9 : 4, v5,
                                          20, 50, v4 ? 77 : 256, 2, 0.5f, 0.25f, 0.125f, 1));
        EXPECT_EQ(light.GetTarget(), version >= 3 ? aim : nullptr);
        ASSERT_EQ(light.GetLightAnimPtr()->NumKeys(), 2);
        EXPECT_EQ(Values(KeyAtTime(light, 10).hotspot, KeyAtTime(light, 10).range),
                  Values(30, v4 ? 77 : 256));
        EXPECT_FLOAT_EQ(light.GetHotSpot(5), 25.0f);
    }
    // A record whose track has no keys gets the default key at time 0.
    ByteString empty;
    empty.bytes = BaseRecord(3, 0, "Bare", ccolor(), 16);
    empty.Floats({1, 1, 1, 1, 128, 43, 45}).Ints({0}).Floats({256}).Ints({0}).Floats({1});
    empty.Ints({1, 0, 256}).Floats({4}).Ints({0}).Name("", 64).Ints({0, 0, 0});
    clight bare;
    ASSERT_EQ(LoadRecord(bare, empty.bytes, 16), 1);
    ASSERT_EQ(bare.GetLightAnimPtr()->NumKeys(), 1);
    EXPECT_FLOAT_EQ(KeyAtTime(bare, 0).falloff, 45.0f);
}

TEST_F(Light, PushLightSetsUpEveryParameterOfTheGLLight) {
    GLContextScope gl(64, 64);
    ASSERT_TRUE(gl.Ready());
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    for (unsigned int type : {LIGHT_POINT, LIGHT_SPOT, LIGHT_DIRECTIONAL}) {
        SCOPED_TRACE(type);
        clight light;
        // Shines along -(0, 0.6, 0.8) from (1, 2, 3).
        light.Create(type, cpoint3(1, 2, 3), cpoint3(0, 3, 4), cpoint3(1, 0, 0));
        light.SetLightColor(0, ccolor(0.5f, 0.25f, 1.0f, 0.75f));
        light.SetStrength(0, 2.0f);
        light.SetFallOff(0, 40.0f);
        light.SetHotSpot(0, 20.0f);
        light.PushLight(0, 3);
        const bool spot = type == LIGHT_SPOT;
        const std::vector<float> expected =
            Values(0, 0, 0, 1, 0.5f, 0.25f, 1, 0.75f, 1, 1, 1, 1, 1, 2, 3, 1, 0, -0.6f, -0.8f, 0.5f,
                   0, 0, spot ? 64 : 0, spot ? 20 : (type == LIGHT_POINT ? 180 : 90));
        const std::vector<float> got = ReadLight(GL_LIGHT3);
        for (std::size_t i = 0; i < expected.size(); ++i)
            EXPECT_NEAR(got[i], expected[i], 1e-5f) << "value " << i;
        for (GLenum cap : {GL_LIGHTING, GL_LIGHT3, GL_NORMALIZE}) {
            EXPECT_TRUE(glIsEnabled(cap)) << cap;
            glDisable(cap);
        }
        EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    }
    // No strength: no constant attenuation either.
    clight dark;
    dark.SetStrength(0, 0.0f);
    dark.PushLight(0, 0);
    EXPECT_FLOAT_EQ(ReadLight(GL_LIGHT0)[19], 0.0f);
}

TEST_F(Light, LightsASquareWhereItReachesAndNowhereElse) {
    GLContextScope gl(64, 64);
    ASSERT_TRUE(gl.Ready());
    // Two units above the square's centre, shining down onto it (-Z is world -Z).
    clight light;
    light.SetPosition(0, cpoint3(0, 0, 2));
    std::vector<int> red = LitSquare(light);
    const auto at = [&red](int px, int py) { return red[py * 64 + px]; };
    EXPECT_GT(at(32, 32), 150) << "point";
    EXPECT_GT(at(2, 2), 60) << "a point light reaches the corners";

    light.SetLightType(LIGHT_SPOT);
    light.SetFallOff(0, 40.0f);  // a cone of 20 degrees each side: radius 0.73 at the square
    light.SetHotSpot(0, 40.0f);
    red = LitSquare(light);
    EXPECT_GT(at(32, 32), 150) << "spot";
    EXPECT_GT(at(32 + 16, 32), 100) << "x = 0.52 is inside the cone";
    EXPECT_EQ(at(32 + 28, 32), 0) << "x = 0.89 is outside the cone";
    EXPECT_EQ(at(2, 2) + at(32, 61), 0) << "a corner and the top edge are dark";

    light.SetLightType(LIGHT_DIRECTIONAL);
    red = LitSquare(light);
    EXPECT_GT(at(32, 32), 150) << "directional";
    EXPECT_GT(at(2, 2), 60) << "the whole half-space ahead is lit";

    light.Create(LIGHT_DIRECTIONAL, cpoint3(0, 0, 2), cpoint3(0, 0, -1), cpoint3(0, 1, 0));
    EXPECT_EQ(LitSquare(light)[32 * 64 + 32], 0) << "behind a directional light is dark";
    light.SetLightType(LIGHT_POINT);
    EXPECT_GT(LitSquare(light)[32 * 64 + 32], 150) << "a point light shines all round";
}
