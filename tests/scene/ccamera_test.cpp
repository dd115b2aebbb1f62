#include "ccamera.h"

#include "cgfx.h"
#include "scene/aimednodes.h"

using Camera = SceneClockTest;

TEST_F(Camera, ClampsKeysAndAimsLikeALight) {
    ccamera camera;
    camera.SetFOV(0, 200.0f);
    const float high = camera.GetFOV(0);
    camera.SetFOV(0, -5.0f);
    camera.SetDepthNear(0.01f);
    camera.SetDepthFar(-1.0f);  // the far plane is not clamped
    camera.SetDistance(-1.0f);
    EXPECT_EQ(Values(high, camera.GetFOV(0), camera.GetDepthNear(), camera.GetDepthFar(),
                     camera.GetDistance()),
              Values(179, 0, 0.1f, -1, 0));
    // The keying and aiming rules are the light's (one shared mechanism): the wiring.
    cnode target("Aim", ccolor()), replacement("New", ccolor());
    SetAnimTime(10);
    camera.SetFOV(10, 60.0f);
    camera.SetFOV(20, 40.0f);
    EXPECT_EQ(Values(camera.GetFOV(5), camera.HasKey(20)), Values(55, 1))
        << "keys 60 at 0, 40 at 20";
    SetAnimTime(20);
    camera.UpdateTimeIdle();  // the current value becomes the key's 40
    camera.DeleteKey(0);
    camera.DeleteKey(20);
    EXPECT_EQ(Values(camera.GetCamAnimPtr()->NumKeys(), camera.GetFOV(20)), Values(1, 60))
        << "the key at 0 stays; the current value is refreshed";
    camera.SnapKey();
    EXPECT_TRUE(camera.GetCamAnimPtr()->KeyExists(20) && camera.GetAnimPtr()->KeyExists(20));
    SetAnimTime(0);
    camera.Create(cpoint3(0, 10, 0), cpoint3(0, 0, 1), cpoint3(0, 1, 0));
    target.SetPosition(0, cpoint3(10, 10, 0));
    camera.SetTarget(&target);
    camera.SetTarget(&camera);
    EXPECT_TRUE(Near3(Facing(camera, 0), cpoint3(1, 0, 0)));
    replacement.SetPosition(0, cpoint3(0, 10, -10));
    EXPECT_EQ(camera.HandleMessage(MSG_NODE_REPLACED, &target, &replacement), 1);
    EXPECT_TRUE(Near3(Facing(camera, 0), cpoint3(0, 0, -1)));
    EXPECT_EQ(camera.HandleMessage(MSG_NODE_DELETED, &replacement, nullptr), 1);
    replacement.SetPosition(0, cpoint3(50, 0, 0));
    EXPECT_TRUE(Near3(Facing(camera, 0), cpoint3(0, 0, -1))) << "kept, no longer steered";
}

TEST_F(Camera, WritesTheNewestLayoutAndReadsOlderOnes) {
    cnode* aim = new cnode("Aim", ccolor());
    MainScene.AddNode(aim, 1);
    ccamera camera, loaded, clone;
    camera.SetName("Eye");
    camera.SetTarget(aim);
    camera.Ortho(1);
    camera.SetFOV(40, 90.0f);
    SetAnimTime(40);
    camera.UpdateTimeIdle();
    ByteString r;
    r.bytes = BaseRecord(5, 0, "Eye", GetGfxInfo().cameracolor, 16);
    r.Floats({53, 128}).Ints({1}).Floats({1, 4096}).Name("Aim", 64);
    r.Ints({2, 0, 40, 0}).Floats({53}).Ints({40}).Floats({90});
    const std::string saved = SavedRecord(camera);
    EXPECT_EQ(saved, r.bytes) << "the field of view at time 0, not the current one";
    ASSERT_TRUE(LoadsWhole(loaded, saved, 16));
    camera.Clone(0, clone);
    EXPECT_EQ(SavedRecord(loaded) + SavedRecord(clone), saved + saved) << "loaded, then cloned";
    EXPECT_EQ(LoadRecord(loaded, saved.substr(0, saved.size() - 3), 16), 0);

    for (unsigned long version : {2ul, 3ul}) {
        ByteString old;
        old.bytes = BaseRecord(5, 0, "Old", ccolor(), version);
        old.Floats({35, 64}).Ints({0});
        if (version > 2) old.Floats({0.05f, 100});
        old.Name("Aim", 32).Ints({0, 0, 0});  // a track without keys
        ccamera oldCamera;
        ASSERT_TRUE(LoadsWhole(oldCamera, old.bytes, version)) << version;
        // Loaded without the setters' checks; an empty track gets the default key.
        EXPECT_EQ(Values(oldCamera.GetFOV(GetAnimTime()), oldCamera.GetDistance(),
                         oldCamera.GetDepthNear(), oldCamera.GetDepthFar(),
                         oldCamera.GetCamAnimPtr()->NumKeys(), oldCamera.GetTarget() == aim),
                  version > 2 ? Values(35, 64, 0.05f, 100, 1, 1) : Values(35, 64, 1, 4096, 1, 1));
    }
}
