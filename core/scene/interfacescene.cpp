// The Interface members answered from MainScene. They live with the scene because the runtime,
// where the rest of the facade is, lies below it.
#include "coreinterface.h"
#include "cscene.h"

int Interface::NumNodes() {
    return MainScene.NumNodes();
}
int Interface::NumSelNodes() {
    return MainScene.NumSelected();
}
int Interface::NumHiddenNodes() {
    return MainScene.NumHidden();
}
int Interface::NumMaterials() {
    return MainScene.NumMaterials();
}
int Interface::NumUsedMaterials() {
    return MainScene.NumUsedMaterials();
}
int Interface::GetUnusedMaterials(cbitarray& unused) {
    return MainScene.GetUnusedMaterials(unused);
}
int Interface::GetAnimSeg(int* start, int* end) {
    return MainScene.GetAnimSeg(start, end);
}
int Interface::GetWorldBBox(int time, cpoint3& min, cpoint3& max, int selectedOnly,
                            int includeHidden) {
    return MainScene.GetWorldBBox(time, min, max, selectedOnly, includeHidden);
}
int Interface::GetNodesHierarchy(cbitarray& order) {
    return MainScene.GetNodesHierarchy(order);
}
void Interface::UpdateNodes() {
    MainScene.UpdateNodesAtAnimTimeChange();
}
void Interface::UpdateMisc() {
    MainScene.UpdateMiscAtAnimTimeChange();
}
void Interface::UpdateSelPos() {
    MainScene.UpdateSelPos();
}
