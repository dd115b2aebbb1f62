// Angle brackets for the library's project file header: the test helper of the same name
// beside this file would shadow it.
#include <projectfile.h>

#include "ccamera.h"

#include <gtest/gtest.h>

#include <string>

#include "animclock.h"
#include "cgfx.h"
#include "clight.h"
#include "cparamanim.h"
#include "cscene.h"
#include "scene/aimednodes.h"
#include "support/bytestring.h"
#include "support/testsupport.h"

namespace {

class Camera : public SceneClockTest {};
using CameraRecord = Camera;

float KeyedFOV(ccamera& camera, int t) {
    ccamkey key;
    EXPECT_EQ(camera.GetCamAnimPtr()->GetKey(t, key), 1) << "no camera key at " << t;
    return key.fov;
}

}  // namespace

TEST_F(Camera, StartsWithOneKeyAndClampsItsParameters) {
    ccamera camera;
    EXPECT_EQ(camera.GetTypeID(), TYPE_CAMERA);
    EXPECT_STREQ(camera.GetName(), "Camera1");
    EXPECT_EQ(camera.GetColor(), GetGfxInfo().cameracolor);
    EXPECT_EQ(Values(camera.GetFOV(500), camera.GetDistance(), camera.GetDepthNear(),
                     camera.GetDepthFar(), camera.IsOrtho(), KeyedFOV(camera, 0)),
              Values(53, 128, 1, 4096, 0, 53));

    camera.SetFOV(0, 200.0f);
    EXPECT_FLOAT_EQ(camera.GetFOV(0), 179.0f);
    camera.SetFOV(0, -5.0f);
    EXPECT_FLOAT_EQ(camera.GetFOV(0), 0.0f);
    camera.SetDepthNear(0.01f);
    EXPECT_FLOAT_EQ(camera.GetDepthNear(), 0.1f);
    camera.SetDepthFar(-1.0f);
    EXPECT_FLOAT_EQ(camera.GetDepthFar(), -1.0f) << "the far plane is not clamped";
    camera.SetDistance(-1.0f);
    EXPECT_FLOAT_EQ(camera.GetDistance(), 0.0f);
}

// The keying rules are the light's (one shared mechanism); this checks the camera's wiring.
TEST_F(Camera, FieldOfViewIsKeyedLikeALightsParameters) {
    ccamera camera;
    SetAnimTime(10);
    camera.SetFOV(10, 60.0f);
    EXPECT_FLOAT_EQ(KeyedFOV(camera, 0), 60.0f) << "one key follows the current value";
    camera.SetFOV(20, 40.0f);
    EXPECT_FLOAT_EQ(KeyedFOV(camera, 20), 40.0f);
    EXPECT_FLOAT_EQ(camera.GetFOV(5), 55.0f);
    camera.SetFOV(10, 30.0f);
    EXPECT_FLOAT_EQ(camera.GetFOV(10), 30.0f);
    EXPECT_FALSE(camera.GetCamAnimPtr()->KeyExists(10)) << "two keys: the current value only";
    SetAnimOn(1);
    camera.SetFOV(10, 35.0f);
    EXPECT_FLOAT_EQ(KeyedFOV(camera, 10), 35.0f);
    EXPECT_EQ(camera.HasKey(10), 1);
    SetAnimTime(20);
    camera.UpdateTimeIdle();
    EXPECT_FLOAT_EQ(camera.GetFOV(20), 40.0f);
    camera.DeleteKey(0);
    camera.DeleteKey(20);
    EXPECT_EQ(camera.GetCamAnimPtr()->NumKeys(), 2) << "the key at 0 stays";
    EXPECT_FLOAT_EQ(camera.GetFOV(20), 35.0f) << "refreshed after the delete";

    SetAnimOn(0);
    ccamera fresh;
    SetAnimTime(30);
    fresh.SetFOV(30, 70.0f);
    fresh.SnapKey();
    EXPECT_FLOAT_EQ(KeyedFOV(fresh, 0), 70.0f) << "snapping one key pins time 0 as well";
    EXPECT_FLOAT_EQ(KeyedFOV(fresh, 30), 70.0f);
    EXPECT_TRUE(fresh.GetAnimPtr()->KeyExists(30));
}

// Aiming is the light's (one shared mechanism); this checks the camera's wiring.
TEST_F(Camera, LooksAtItsTargetAndCopiesItsOwnState) {
    cnode target("Aim", ccolor()), replacement("New", ccolor());
    ccamera camera;
    camera.Create(cpoint3(0, 10, 0), cpoint3(0, 0, 1), cpoint3(0, 1, 0));
    EXPECT_TRUE(Near3(Facing(camera, 0), cpoint3(0, 0, 1)));
    target.SetPosition(0, cpoint3(10, 10, 0));
    camera.SetTarget(&target);
    camera.SetTarget(&camera);
    EXPECT_TRUE(Near3(Facing(camera, 0), cpoint3(1, 0, 0)));
    camera.SetFOV(0, 70.0f);
    camera.SetDepthNear(3.0f);
    camera.Ortho(1);
    ccamera copy(camera), clone;
    camera.Clone(0, clone);
    for (ccamera* c : {&copy, &clone}) {
        EXPECT_EQ(c->GetTarget(), &target);
        EXPECT_EQ(Values(c->GetFOV(0), c->GetDepthNear(), c->IsOrtho()), Values(70, 3, 1));
    }
    EXPECT_TRUE(Near3(clone.GetPosition(0), cpoint3(0, 10, 0)));
    EXPECT_TRUE(Near3(Facing(clone, 0), cpoint3(1, 0, 0)));
    replacement.SetPosition(0, cpoint3(0, 10, -10));
    EXPECT_EQ(camera.HandleMessage(MSG_NODE_REPLACED, &target, &replacement), 1);
    EXPECT_TRUE(Near3(Facing(camera, 0), cpoint3(0, 0, -1)));
    EXPECT_EQ(camera.HandleMessage(MSG_NODE_DELETED, &replacement, nullptr), 1);
    EXPECT_EQ(camera.GetTarget(), nullptr);
    replacement.SetPosition(0, cpoint3(50, 0, 0));
    EXPECT_TRUE(Near3(Facing(camera, 0), cpoint3(0, 0, -1))) << "kept, no longer steered";
}

TEST_F(CameraRecord, WritesTheNewestLayoutAndReadsOlderOnes) {
    cnode* aim = new cnode("Aim", ccolor());
    MainScene.AddNode(aim, 1);
    ccamera camera;
    camera.SetName("Eye");
    camera.SetTarget(aim);
    camera.SetDistance(10.0f);
    camera.Ortho(1);
    camera.SetDepthNear(2.0f);
    camera.SetDepthFar(500.0f);
    camera.SetFOV(40, 90.0f);
    SetAnimTime(40);
    camera.UpdateTimeIdle();
    ByteString r;
    r.bytes = BaseRecord(5, 0, "Eye", GetGfxInfo().cameracolor, 16);
    r.Floats({53, 10}).Ints({1}).Floats({2, 500}).Name("Aim", 64);
    r.Ints({2, 0, 40, 0}).Floats({53}).Ints({40}).Floats({90});
    const std::string saved = SavedRecord(camera);
    EXPECT_EQ(saved, r.bytes) << "the field of view at time 0, not the current one";

    ccamera loaded;
    ASSERT_TRUE(LoadsWhole(loaded, saved, 16));
    EXPECT_EQ(loaded.GetTarget(), aim);
    EXPECT_EQ(SavedRecord(loaded), saved);
    EXPECT_EQ(LoadRecord(loaded, saved.substr(0, saved.size() - 3), 16), 0);

    for (unsigned long version : {2ul, 12ul}) {
        SCOPED_TRACE(version);
        ByteString old;
        old.bytes = BaseRecord(5, 0, "Old", ccolor(), version);
        old.Floats({35, 64}).Ints({0});
        if (version > 2) old.Floats({0.05f, 100});
        old.Name("Aim", 32).Ints({0, 0, 0});  // a track without keys
        ccamera camera2;
        ASSERT_TRUE(LoadsWhole(camera2, old.bytes, version));
        // Loaded without the setters' checks.
        EXPECT_EQ(Values(camera2.GetFOV(GetAnimTime()), camera2.GetDistance(),
                         camera2.GetDepthNear(), camera2.GetDepthFar()),
                  version > 2 ? Values(35, 64, 0.05f, 100) : Values(35, 64, 1, 4096));
        EXPECT_EQ(camera2.GetTarget(), aim);
        ASSERT_EQ(camera2.GetCamAnimPtr()->NumKeys(), 1);
        EXPECT_FLOAT_EQ(KeyedFOV(camera2, 0), 53.0f);
    }
}

TEST_F(CameraRecord, ProjectFilesBringBackLightsAndCameras) {
    TempDir folder;
    const std::string path = folder.File("lit.orv");
    cnode* aim = new cnode("Aim", ccolor());
    aim->SetPosition(0, cpoint3(0, 0, -20));
    clight* spot = CreateNewLight();
    spot->SetName("Spot");
    spot->Create(LIGHT_SPOT, cpoint3(0, 5, 0), cpoint3(0, 0, 1), cpoint3(0, 1, 0));
    spot->SetFallOff(0, 60.0f);
    spot->SetTarget(aim);
    ccamera* camera = CreateNewCamera();
    camera->SetName("Eye");
    camera->SetFOV(0, 35.0f);
    camera->SetDepthFar(900.0f);
    camera->SetPosition(0, cpoint3(3, 0, 0));
    camera->SetTarget(aim);
    // The target's record comes after the records that aim at it.
    for (cnode* node : std::initializer_list<cnode*>{spot, camera, aim}) MainScene.AddNode(node, 1);
    ASSERT_EQ(SaveProjectFile(path.c_str()), 1);

    MainScene.Clear();
    ASSERT_EQ(LoadProjectFile(path.c_str()), 1);
    ASSERT_EQ(MainScene.NumNodes(), 3);
    cnode* loadedAim = MainScene.FindNode("Aim");
    auto* loadedSpot = dynamic_cast<clight*>(MainScene.FindNode("Spot"));
    auto* loadedEye = dynamic_cast<ccamera*>(MainScene.FindNode("Eye"));
    ASSERT_TRUE(loadedAim && loadedSpot && loadedEye);
    EXPECT_EQ(loadedSpot->GetLightType(), LIGHT_SPOT);
    EXPECT_FLOAT_EQ(loadedSpot->GetFallOff(0), 60.0f);
    EXPECT_EQ(loadedSpot->GetTarget(), loadedAim);
    EXPECT_TRUE(Near3(Facing(*loadedSpot, 0), Normalize(cpoint3(0, -5, -20))));
    EXPECT_EQ(Values(loadedEye->GetFOV(0), loadedEye->GetDepthFar()), Values(35, 900));
    EXPECT_TRUE(Near3(loadedEye->GetPosition(0), cpoint3(3, 0, 0)));
    EXPECT_EQ(loadedEye->GetTarget(), loadedAim);
}
