#include <gtest/gtest.h>

#include "animclock.h"
#include "cmaterial.h"
#include "cnode.h"
#include "coreinterface.h"
#include "cscene.h"
#include "scene/aimednodes.h"

using InterfaceScene = SceneClockTest;

// Counts and arguments chosen so that a query forwarded to the wrong one shows.
TEST_F(InterfaceScene, AnswersFromMainScene) {
    for (const char* name : {"A", "B", "Moving"}) MainScene.AddNode(new cnode(name), 1);
    cnode* moving = MainScene.GetNodeAt(2);
    moving->GetAnimPtr()->SetKey(400, cpoint3(0.0f, 8.0f, 0.0f), cquat(), cpoint3(1, 1, 1));
    for (const char* name : {"W", "X", "Y", "Z"}) MainScene.AddMaterial(new cmaterial(name), 1);
    MainScene.Select(moving);
    for (int i : {0, 1}) MainScene.Hide(MainScene.GetNodeAt(i));
    int start = -1, end = -1;
    Interface::GetAnimSeg(&start, &end);
    SetAnimTime(100);
    Interface::UpdateNodes();
    Interface::UpdateMisc();
    cpoint3 min, max;
    EXPECT_EQ(Interface::GetWorldBBox(100, min, max, 1, 0), 1);
    EXPECT_EQ(Values(Interface::NumNodes(), Interface::NumSelNodes(), Interface::NumHiddenNodes(),
                     Interface::NumMaterials(), Interface::NumUsedMaterials(), end,
                     MainScene.GetSelCenter().y, min.y),
              Values(3, 1, 2, 4, 0, 400, 2, 2));
}
