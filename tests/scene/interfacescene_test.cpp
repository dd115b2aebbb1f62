#include "coreinterface.h"
#include "scene/aimednodes.h"

using InterfaceScene = SceneClockTest;

// The scene's answers that only the facade asks for: the animated segment, the selection's box
// and centre once the facade has updated the nodes to a new time.
TEST_F(InterfaceScene, AnswersFromMainScene) {
    for (const char* name : {"A", "Moving"}) MainScene.AddNode(new cnode(name), 1);
    cnode* moving = MainScene.GetNodeAt(1);
    moving->GetAnimPtr()->SetKey(400, cpoint3(0.0f, 8.0f, 0.0f), cquat(), cpoint3(1, 1, 1));
    MainScene.Select(moving);
    int start = -1, end = -1;
    Interface::GetAnimSeg(&start, &end);
    SetAnimTime(100);
    Interface::UpdateNodes();
    Interface::UpdateMisc();
    cpoint3 min, max;
    EXPECT_EQ(Interface::GetWorldBBox(100, min, max, 1, 0), 1);
    EXPECT_EQ(Values(end, MainScene.GetSelCenter().y, min.y), Values(400, 2, 2));
}
