#include "clight.h"

#include <GL/gl.h>
#include <gtest/gtest.h>

#include <cmath>
#include <string>

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

cquat Quat(float x, float y, float z, float w) {
    cquat q;
    q.x = x, q.y = y, q.z = z, q.w = w;
    return q;
}

void ExpectColor(const ccolor& c, float r, float g, float b, float a) {
    EXPECT_FLOAT_EQ(c.r, r);
    EXPECT_FLOAT_EQ(c.g, g);
    EXPECT_FLOAT_EQ(c.b, b);
    EXPECT_FLOAT_EQ(c.a, a);
}

}  // namespace

TEST_F(Light, StartsAsAPointLightWithOneDefaultKey) {
    clight light;
    EXPECT_EQ(light.GetTypeID(), TYPE_LIGHT);
    EXPECT_EQ(light.GetLightType(), LIGHT_POINT);
    EXPECT_STREQ(light.GetName(), "Light1");
    ExpectColor(light.GetColor(), 1, 1, 0, 1);
    ExpectColor(light.GetLightColor(0), 1, 1, 1, 1);
    EXPECT_FLOAT_EQ(light.GetDistance(), 128.0f);
    EXPECT_FLOAT_EQ(light.GetHotSpot(0), 43.0f);
    EXPECT_FLOAT_EQ(light.GetFallOff(0), 45.0f);
    EXPECT_FLOAT_EQ(light.GetRange(0), 256.0f);
    EXPECT_FLOAT_EQ(light.GetStrength(5), 1.0f);
    EXPECT_EQ(light.GetAttenuationFlag(), 0);
    EXPECT_EQ(light.GetAttenuationType(), 0);
    EXPECT_EQ(light.GetLightCastShadowFlag(), 1);
    EXPECT_EQ(light.GetShadowMapFlag(), 0);
    EXPECT_EQ(light.GetShadowMapSize(), 256);
    EXPECT_FLOAT_EQ(light.GetShadowMapBias(), 4.0f);
    EXPECT_EQ(light.GetVolumeFlag(), 0);
    EXPECT_EQ(light.GetTarget(), nullptr);
    ASSERT_EQ(light.GetLightAnimPtr()->NumKeys(), 1);
    const clightkey key = KeyAtTime(light, 0);
    EXPECT_FLOAT_EQ(key.hotspot, 43.0f);
    EXPECT_FLOAT_EQ(key.strength, 1.0f);

    // The wire colour follows the graphics settings current at construction.
    cgfx const saved = GetGfxInfo();
    cgfx red = saved;
    red.lightcolor.Set(1.0f, 0.0f, 0.0f, 1.0f);
    SetGfxInfo(red);
    clight* later = CreateNewLight();
    ASSERT_NE(later, nullptr);
    ExpectColor(later->GetColor(), 1, 0, 0, 1);
    later->Delete();
    cgfx restore = saved;
    SetGfxInfo(restore);
}

TEST_F(Light, KeyedParametersFollowTheCurrentTimeAndTheRecordingMode) {
    clight light;
    SetAnimTime(10);
    // Not recording, one key: the key at time 0 takes every current value.
    light.SetLightColor(10, ccolor(1.0f, 0.0f, 0.0f, 1.0f));
    ASSERT_EQ(light.GetLightAnimPtr()->NumKeys(), 1);
    ExpectColor(KeyAtTime(light, 0).color, 1, 0, 0, 1);
    ExpectColor(light.GetLightColor(10), 1, 0, 0, 1);

    // Off the current time only a key at that time changes.
    light.SetRange(20, -50.0f);
    ASSERT_EQ(light.GetLightAnimPtr()->NumKeys(), 2);
    EXPECT_FLOAT_EQ(KeyAtTime(light, 20).range, 50.0f);
    ExpectColor(KeyAtTime(light, 20).color, 1, 0, 0, 1);
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
    EXPECT_FLOAT_EQ(keyed.falloff, 30.0f);
    EXPECT_FLOAT_EQ(keyed.hotspot, 12.0f);
    EXPECT_FLOAT_EQ(keyed.strength, 0.0f);
    EXPECT_EQ(light.HasKey(10), 1);

    // Changing the time refreshes the current values from the track.
    SetAnimTime(20);
    light.UpdateTimeIdle();
    EXPECT_FLOAT_EQ(light.GetRange(20), 50.0f);
    EXPECT_FLOAT_EQ(light.GetStrength(20), 1.0f);
}

TEST_F(Light, ConeAndPlainParametersAreClamped) {
    clight light;
    light.SetFallOff(0, 200.0f);
    EXPECT_FLOAT_EQ(light.GetFallOff(0), 179.5f);
    light.SetFallOff(0, 45.0f);
    light.SetHotSpot(0, 60.0f);
    EXPECT_FLOAT_EQ(light.GetHotSpot(0), 45.0f);
    light.SetHotSpot(0, 43.0f);
    light.SetFallOff(0, 30.0f);
    EXPECT_FLOAT_EQ(light.GetHotSpot(0), 30.0f);
    EXPECT_FLOAT_EQ(KeyAtTime(light, 0).hotspot, 30.0f);
    light.SetHotSpot(0, -1.0f);
    EXPECT_FLOAT_EQ(light.GetHotSpot(0), 0.0f);
    light.SetFallOff(0, -1.0f);
    EXPECT_FLOAT_EQ(light.GetFallOff(0), 0.0f);

    // Off the current time the falloff lowers the hotspot at that time only.
    light.SetFallOff(0, 45.0f);
    light.SetHotSpot(0, 43.0f);
    light.SetFallOff(40, 20.0f);
    EXPECT_FLOAT_EQ(KeyAtTime(light, 40).hotspot, 20.0f);
    EXPECT_FLOAT_EQ(light.GetHotSpot(0), 43.0f);

    light.SetShadowMapSize(4);
    EXPECT_EQ(light.GetShadowMapSize(), 8);
    light.SetShadowMapSize(4096);
    EXPECT_EQ(light.GetShadowMapSize(), 2048);
    light.SetShadowMapSize(300);
    EXPECT_EQ(light.GetShadowMapSize(), 300);
    light.SetShadowMapBias(-1.0f);
    EXPECT_FLOAT_EQ(light.GetShadowMapBias(), 0.0f);
    light.SetShadowMapBias(5000.0f);
    EXPECT_FLOAT_EQ(light.GetShadowMapBias(), 1000.0f);
    light.SetDistance(-3.0f);
    EXPECT_FLOAT_EQ(light.GetDistance(), 0.0f);
}

TEST_F(Light, SnapsAndDeletesKeysButNeverTheOneAtZero) {
    clight light;
    SetAnimTime(30);
    light.SetStrength(30, 3.0f);
    light.SnapKey();
    ASSERT_EQ(light.GetLightAnimPtr()->NumKeys(), 2);
    EXPECT_FLOAT_EQ(KeyAtTime(light, 0).strength, 3.0f);
    EXPECT_FLOAT_EQ(KeyAtTime(light, 30).strength, 3.0f);
    EXPECT_TRUE(light.GetAnimPtr()->KeyExists(30)) << "the transform is snapped too";

    light.DeleteKey(0);
    EXPECT_EQ(light.GetLightAnimPtr()->NumKeys(), 2);
    light.DeleteKey(30);
    EXPECT_EQ(light.GetLightAnimPtr()->NumKeys(), 1);
    EXPECT_EQ(light.HasKey(30), 0);

    // A node key alone answers too.
    light.SetPosition(50, cpoint3(1, 2, 3));
    EXPECT_EQ(light.HasKey(50), 1);
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
    for (int i = 0; i < 3; ++i) {
        const int t = 40 * i;
        const cpoint3 expected = Normalize(targetAt[i] - lightAt[i]);
        EXPECT_TRUE(Near3(Facing(light, t), expected)) << "at time " << t;
        SetAnimTime(t);
        light.UpdateTimeIdle();
        target.UpdateTimeIdle();
        EXPECT_TRUE(Near3(Facing(light, t), expected)) << "current at time " << t;
    }
    SetAnimTime(0);
    light.UpdateTimeIdle();
    target.UpdateTimeIdle();

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
        clight tipped;
        tipped.SetTarget(&target);
        tipped.SetRotation(0, Quat(0.2f, 0.0f, sign * s, c));
        EXPECT_TRUE(Near3(Facing(tipped, 0), cpoint3(0, 0, -1))) << "the tip is dropped";

        clight light;
        light.SetTarget(&target);
        light.SetRotation(0, Quat(0.0f, 0.0f, sign * s, c));
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
    MainScene.AddNode(target, 1);
    MainScene.AddNode(other, 1);
    MainScene.AddNode(light, 1);
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
    light.Clone(0, clone);
    EXPECT_STREQ(clone.GetName(), "Lamp");
    EXPECT_TRUE(Near3(clone.GetPosition(0), cpoint3(1, 2, 3)));
    EXPECT_TRUE(Near3(Facing(clone, 0), cpoint3(1, 0, 0)));
    EXPECT_EQ(clone.GetShadowMapSize(), 512);
    EXPECT_EQ(clone.GetLightType(), LIGHT_SPOT);
    cnode plain("Plain", ccolor());
    light.Clone(0, plain);
    EXPECT_STREQ(plain.GetName(), "Lamp");

    cnode aim("Aim", ccolor());
    light.SetTarget(&aim);
    light.SetVolumeFlag(1);
    light.SetRange(80, 99.0f);
    clight copy(light);
    EXPECT_EQ(copy.GetLightType(), LIGHT_SPOT);
    EXPECT_EQ(copy.GetTarget(), &aim);
    EXPECT_EQ(copy.GetShadowMapSize(), 512);
    EXPECT_EQ(copy.GetVolumeFlag(), 1);
    EXPECT_EQ(copy.GetLightAnimPtr()->NumKeys(), 2);
    EXPECT_FLOAT_EQ(copy.GetRange(80), 99.0f);
    copy.SetRange(80, 1.0f);
    EXPECT_FLOAT_EQ(light.GetRange(80), 99.0f) << "the copy owns its track";

    clight assigned;
    assigned = light;
    EXPECT_EQ(assigned.GetLightType(), LIGHT_SPOT);
    EXPECT_FLOAT_EQ(assigned.GetRange(80), 99.0f);
}

// ---- Records ----

namespace {

// A light track record of the newest layout with one key per entry of `keys`.
std::string TrackRecord(std::initializer_list<clightkey> keys, int first, int last) {
    ByteString r;
    r.Word(keys.size()).Ints({first, last});
    for (const clightkey& k : keys) {
        r.Ints({k.time});
        r.Floats({k.color.r, k.color.g, k.color.b, k.color.a, k.hotspot, k.falloff, k.range,
                  k.strength});
    }
    return r.bytes;
}

}  // namespace

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
    clightkey k0(0, ccolor(1.0f, 1.0f, 1.0f, 1.0f), 45.0f, 30.0f, 256.0f, 1.0f);
    clightkey k50(50, ccolor(1.0f, 1.0f, 1.0f, 1.0f), 45.0f, 40.0f, 256.0f, 1.0f);
    r.bytes += TrackRecord({k0, k50}, 0, 50);
    const std::string saved = SavedRecord(light);
    EXPECT_EQ(saved, r.bytes);

    // The record loads back into the same light, target included.
    SetAnimTime(0);
    clight loaded;
    ASSERT_EQ(LoadRecord(loaded, saved, 16), 1);
    EXPECT_EQ(loaded.GetLightType(), LIGHT_SPOT);
    EXPECT_EQ(loaded.GetTarget(), aim);
    EXPECT_FLOAT_EQ(loaded.GetHotSpot(0), 30.0f);
    EXPECT_FLOAT_EQ(loaded.GetHotSpot(50), 40.0f);
    EXPECT_EQ(loaded.GetAttenuationType(), 2);
    EXPECT_EQ(loaded.GetShadowMapSize(), 1024);
    EXPECT_EQ(loaded.GetLightCastShadowFlag(), 0);
    EXPECT_EQ(SavedRecord(loaded), saved);

    // Without a target the name field is 64 zero bytes; a truncated record fails.
    light.SetTarget(nullptr);
    const std::string untargeted = SavedRecord(light);
    EXPECT_EQ(untargeted.substr(saved.size() - TrackRecord({k0, k50}, 0, 50).size() - 64, 64),
              std::string(64, '\0'));
    clight truncated;
    EXPECT_EQ(LoadRecord(truncated, saved.substr(0, saved.size() - 10), 16), 0);
}

TEST_F(LightRecord, ReadsOlderLayoutsWithTheirDefaults) {
    cnode* aim = new cnode("Aim", ccolor());
    MainScene.AddNode(aim, 1);
    auto oldKey = [](ByteString& r, int t, float hot, unsigned long version) {
        r.Ints({t}).Floats({0.5f, 0.5f, 0.5f, 1, hot, 50});
        if (version >= 4) r.Floats({77});
        r.Floats({2});
        if (version < 5) r.Ints({-1, -1});
    };
    for (unsigned long version : {2ul, 3ul, 4ul, 12ul}) {
        SCOPED_TRACE(version);
        ByteString r;
        r.bytes = BaseRecord(3, 2, "Old", ccolor(0.1f, 0.2f, 0.3f, 1.0f), version);
        r.Floats({0.5f, 0.25f, 0.125f, 1, 32, 20, 50});
        if (version >= 4) r.Ints({1}).Floats({77});
        if (version >= 5) r.Ints({3});
        r.Floats({2});
        if (version < 5) r.Ints({-1, -1});
        r.Ints({0});
        if (version >= 5) r.Ints({1, 16}).Floats({9}).Ints({1});
        if (version >= 3) r.Name("Aim", 32);
        r.Ints({2, 0, 10});
        oldKey(r, 0, 20, version);
        oldKey(r, 10, 30, version);
        r.Ints({0x5A5A5A5A});  // what follows the record

        clight light;
        RecordStream record(r.bytes);
        ASSERT_TRUE(record.opened);
        ASSERT_EQ(light.Load(record.in, version), 1);
        unsigned int next = 0;
        ASSERT_EQ(record.in.Read(&next, 4), 1);
        EXPECT_EQ(next, 0x5A5A5A5Au) << "the whole record is consumed";

        EXPECT_STREQ(light.GetName(), "Old");
        EXPECT_EQ(light.GetLightType(), LIGHT_DIRECTIONAL);
        ExpectColor(light.GetLightColor(0), 0.5f, 0.25f, 0.125f, 1.0f);
        EXPECT_FLOAT_EQ(light.GetDistance(), 32.0f);
        EXPECT_FLOAT_EQ(light.GetHotSpot(0), 20.0f);
        EXPECT_FLOAT_EQ(light.GetStrength(0), 2.0f);
        EXPECT_EQ(light.GetLightCastShadowFlag(), 0);
        EXPECT_EQ(light.GetAttenuationFlag(), version >= 4 ? 1 : 0);
        EXPECT_FLOAT_EQ(light.GetRange(0), version >= 4 ? 77.0f : 256.0f);
        EXPECT_EQ(light.GetAttenuationType(), version >= 5 ? 3 : 0);
        EXPECT_EQ(light.GetShadowMapFlag(), version >= 5 ? 1 : 0);
        EXPECT_EQ(light.GetShadowMapSize(), version >= 5 ? 16 : 256);
        EXPECT_FLOAT_EQ(light.GetShadowMapBias(), version >= 5 ? 9.0f : 4.0f);
        EXPECT_EQ(light.GetVolumeFlag(), version >= 5 ? 1 : 0);
        EXPECT_EQ(light.GetTarget(), version >= 3 ? aim : nullptr);
        ASSERT_EQ(light.GetLightAnimPtr()->NumKeys(), 2);
        EXPECT_FLOAT_EQ(KeyAtTime(light, 10).hotspot, 30.0f);
        EXPECT_FLOAT_EQ(KeyAtTime(light, 10).range, version >= 4 ? 77.0f : 256.0f);
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

// ---- OpenGL ----

namespace {

struct LightReadBack {
    GLfloat ambient[4], diffuse[4], specular[4], position[4], direction[3];
    GLfloat constant, linear, quadratic, exponent, cutoff;
};

LightReadBack ReadLight(GLenum light) {
    LightReadBack r{};
    glGetLightfv(light, GL_AMBIENT, r.ambient);
    glGetLightfv(light, GL_DIFFUSE, r.diffuse);
    glGetLightfv(light, GL_SPECULAR, r.specular);
    glGetLightfv(light, GL_POSITION, r.position);
    glGetLightfv(light, GL_SPOT_DIRECTION, r.direction);
    glGetLightfv(light, GL_CONSTANT_ATTENUATION, &r.constant);
    glGetLightfv(light, GL_LINEAR_ATTENUATION, &r.linear);
    glGetLightfv(light, GL_QUADRATIC_ATTENUATION, &r.quadratic);
    glGetLightfv(light, GL_SPOT_EXPONENT, &r.exponent);
    glGetLightfv(light, GL_SPOT_CUTOFF, &r.cutoff);
    return r;
}

void ExpectFloats(const GLfloat* got, std::initializer_list<float> expected) {
    int i = 0;
    for (float e : expected) EXPECT_NEAR(got[i++], e, 1e-5f) << "component " << i - 1;
}

// A unit square of the z = 0 plane, facing +Z, drawn as a fine grid: GL lights per vertex,
// so the cone's edge shows only where vertices lie inside and outside it.
void DrawLitSquare() {
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
}

// Renders the square under `light` (the only light) and returns the red channel at the
// framebuffer pixel (px, py) of a 64 x 64 view of x, y in [-1, 1].
class LitSquare {
public:
    explicit LitSquare(clight& light) {
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
        DrawLitSquare();
        glReadPixels(0, 0, 64, 64, GL_RGBA, GL_UNSIGNED_BYTE, pixels_);
        glDisable(GL_LIGHT0);
        glDisable(GL_LIGHTING);
    }
    int Red(int px, int py) const { return pixels_[(py * 64 + px) * 4]; }

private:
    unsigned char pixels_[64 * 64 * 4];
};

}  // namespace

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
        const LightReadBack r = ReadLight(GL_LIGHT3);
        ExpectFloats(r.ambient, {0, 0, 0, 1});
        ExpectFloats(r.diffuse, {0.5f, 0.25f, 1.0f, 0.75f});
        ExpectFloats(r.specular, {1, 1, 1, 1});
        ExpectFloats(r.position, {1, 2, 3, 1});
        ExpectFloats(r.direction, {0, -0.6f, -0.8f});
        EXPECT_FLOAT_EQ(r.constant, 0.5f);
        EXPECT_FLOAT_EQ(r.linear, 0.0f);
        EXPECT_FLOAT_EQ(r.quadratic, 0.0f);
        EXPECT_FLOAT_EQ(r.exponent, type == LIGHT_SPOT ? 64.0f : 0.0f);
        EXPECT_FLOAT_EQ(r.cutoff, type == LIGHT_SPOT ? 20.0f : (type == LIGHT_POINT ? 180 : 90));
        EXPECT_TRUE(glIsEnabled(GL_LIGHTING));
        EXPECT_TRUE(glIsEnabled(GL_LIGHT3));
        EXPECT_TRUE(glIsEnabled(GL_NORMALIZE));
        EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
        glDisable(GL_LIGHTING);
        glDisable(GL_LIGHT3);
        glDisable(GL_NORMALIZE);
    }
    // No strength: no constant attenuation either.
    clight dark;
    dark.SetStrength(0, 0.0f);
    dark.PushLight(0, 0);
    GLfloat constant = -1.0f;
    glGetLightfv(GL_LIGHT0, GL_CONSTANT_ATTENUATION, &constant);
    EXPECT_FLOAT_EQ(constant, 0.0f);
}

TEST_F(Light, LightsASquareWhereItReachesAndNowhereElse) {
    GLContextScope gl(64, 64);
    ASSERT_TRUE(gl.Ready());
    // Two units above the square's centre, shining down onto it (-Z is world -Z).
    clight light;
    light.SetPosition(0, cpoint3(0, 0, 2));

    {
        SCOPED_TRACE("point");
        LitSquare image(light);
        EXPECT_GT(image.Red(32, 32), 150);
        EXPECT_GT(image.Red(2, 2), 60) << "a point light reaches the corners";
    }
    {
        SCOPED_TRACE("spot");
        light.SetLightType(LIGHT_SPOT);
        light.SetFallOff(0, 40.0f);  // a cone of 20 degrees each side: radius 0.73 at the square
        light.SetHotSpot(0, 40.0f);
        LitSquare image(light);
        EXPECT_GT(image.Red(32, 32), 150);
        EXPECT_GT(image.Red(32 + 16, 32), 100) << "x = 0.52 is inside the cone";
        EXPECT_EQ(image.Red(32 + 28, 32), 0) << "x = 0.89 is outside the cone";
        EXPECT_EQ(image.Red(2, 2), 0);
        EXPECT_EQ(image.Red(32, 61), 0);
    }
    {
        SCOPED_TRACE("directional");
        light.SetLightType(LIGHT_DIRECTIONAL);
        LitSquare image(light);
        EXPECT_GT(image.Red(32, 32), 150);
        EXPECT_GT(image.Red(2, 2), 60) << "the whole half-space ahead is lit";
    }
    {
        SCOPED_TRACE("turned away");
        light.Create(LIGHT_DIRECTIONAL, cpoint3(0, 0, 2), cpoint3(0, 0, -1), cpoint3(0, 1, 0));
        LitSquare directional(light);
        EXPECT_EQ(directional.Red(32, 32), 0) << "behind a directional light is dark";
        light.SetLightType(LIGHT_POINT);
        LitSquare point(light);
        EXPECT_GT(point.Red(32, 32), 150) << "a point light shines all round";
    }
}
