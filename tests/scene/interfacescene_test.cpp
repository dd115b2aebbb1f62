#include <gtest/gtest.h>

#include "animclock.h"
#include "cbitarray.h"
#include "cmaterial.h"
#include "cnode.h"
#include "coreinterface.h"
#include "cscene.h"

TEST(InterfaceScene, AnswersFromMainScene) {
    ResetAnim();
    auto* moving = new cnode("Moving", ccolor());
    auto* hidden = new cnode("Hidden", ccolor());
    MainScene.AddNode(hidden, 1);
    MainScene.AddNode(moving, 1);
    moving->GetAnimPtr()->SetKey(400, cpoint3(0.0f, 8.0f, 0.0f), cquat(), cpoint3(1, 1, 1));
    MainScene.AddMaterial(new cmaterial("Idle"), 1);
    MainScene.Select(moving);
    MainScene.Hide(hidden);

    EXPECT_EQ(Interface::NumNodes(), 2);
    EXPECT_EQ(Interface::NumSelNodes(), 1);
    EXPECT_EQ(Interface::NumHiddenNodes(), 1);
    EXPECT_EQ(Interface::NumMaterials(), 1);
    EXPECT_EQ(Interface::NumUsedMaterials(), 0);
    cbitarray bits;
    EXPECT_EQ(Interface::GetUnusedMaterials(bits), 1);
    int start = -1, end = -1;
    Interface::GetAnimSeg(&start, &end);
    EXPECT_EQ(end, 400);
    EXPECT_EQ(Interface::GetNodesHierarchy(bits), 2);

    SetAnimTime(100);
    Interface::UpdateNodes();
    Interface::UpdateMisc();
    EXPECT_FLOAT_EQ(MainScene.GetSelCenter().y, 2.0f);
    cpoint3 min, max;
    EXPECT_EQ(Interface::GetWorldBBox(100, min, max, 0, 0), 1);
    EXPECT_FLOAT_EQ(max.y, 2.0f) << "the moving node, not the hidden one at the origin";
    EXPECT_FLOAT_EQ(min.y, 2.0f);

    MainScene.Clear();
    ResetAnim();
}
