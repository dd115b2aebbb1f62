// The Interface facade: forwarders to the host callbacks and the library's own answers.
//
// The members answered from MainScene (NumNodes, GetWorldBBox, UpdateNodes ...) are defined in
// core/scene/interfacescene.cpp: the runtime lies below the scene and does not include it.
#include <cstring>

#include "animclock.h"
#include "coreinterface.h"

unsigned long Interface::GetAppVersion() {
    return I_GetAppVersion();
}
void* Interface::GetMainHINSTANCE() {
    return I_GetMainHINSTANCE();
}
void* Interface::GetMainHWND() {
    return I_GetMainHWND();
}
int Interface::DlgPickColor(unsigned long& color) {
    return I_DlgPickColor(color);
}
int Interface::DlgLoadImage(char* path) {
    return I_DlgLoadImage(path);
}
int Interface::JPGQualityDlg() {
    return I_JPGQualityDlg();
}
int Interface::CreateImageWnd(int width, int height) {
    return I_CreateImageWnd(width, height);
}
void Interface::CloseImageWnd() {
    I_CloseImageWnd();
}
int Interface::ShowImage(cmaterial* material, int map) {
    return I_ShowMatImage(material, map);
}
int Interface::ShowImage(cimage* image, char* title, int x, int y) {
    return I_ShowImage(image, title, x, y);
}
int Interface::ShowImage(char const* file, char* title, int x, int y) {
    return I_ShowFileImage(file, title, x, y);
}
int Interface::ShowImage(void* bits, void* palette, int width, int height, int bitsPerPixel, int x,
                         int y) {
    return I_ShowRawImage(bits, palette, width, height, bitsPerPixel, x, y);
}
void Interface::AddNodeArrayToScene(cnode** nodes, int count, int flags) {
    I_AddNodeArrayToScene(nodes, count, flags);
}
void Interface::AddMatArrayToScene(cmaterial** materials, int count, int flags) {
    I_AddMatArrayToScene(materials, count, flags);
}
void Interface::AddToScene(cnode* node, int flags) {
    I_AddNodeToScene(node, flags);
}
void Interface::AddToScene(cmaterial* material, int flags) {
    I_AddMatToScene(material, flags);
}
void Interface::RemoveFromScene(cnode* node, int flags) {
    I_RemoveNodeFromScene(node, flags);
}
cnode* Interface::GetSelNode() {
    return I_GetSelNode();
}
int Interface::Find(cnode* node) {
    return I_FindNode(node);
}
int Interface::Find(cmaterial* material) {
    return I_FindMaterial(material);
}
cnode* Interface::FindNode(char const* name) {
    return I_FindNodeByName(name);
}
cnode* Interface::GetNodeAt(int index) {
    return I_GetNodeAt(index);
}
cmaterial* Interface::FindMaterial(char const* name) {
    return I_FindMaterialByName(name);
}
cmaterial* Interface::GetMaterialAt(int index) {
    return I_GetMaterialAt(index);
}
int Interface::IsMaterialUsed(cmaterial* material) {
    return I_IsMaterialUsed(material);
}
void Interface::SetSceneAmbient(ccolor const& color) {
    I_SetSceneAmbient(color);
}
ccolor Interface::GetSceneAmbient() {
    return I_GetSceneAmbient();
}
void Interface::SetSceneBkColor(ccolor const& color) {
    I_SetSceneBkColor(color);
}
ccolor Interface::GetSceneBkColor() {
    return I_GetSceneBkColor();
}
cimage* Interface::GetSceneBkImage() {
    return I_GetSceneBkImage();
}
void Interface::SetFogValues(cpoint3 const& color, float start, float end, float density) {
    I_SetFogValues(color, start, end, density);
}
void Interface::GetFogValues(cpoint3& color, float& start, float& end, float& density) {
    I_GetFogValues(color, start, end, density);
}
void Interface::EnableFog(int on) {
    I_EnableFog(on);
}
int Interface::IsFogEnabled() {
    return I_IsFogEnabled();
}
int Interface::GetSubLevel() {
    return I_GetSubLevel();
}
cpoint3 Interface::GetSelCenter() {
    return I_GetSelCenter();
}
void Interface::Select(cnode* node) {
    I_Select(node);
}
void Interface::Deselect(cnode* node) {
    I_Deselect(node);
}
void Interface::DeselectAll() {
    I_DeselectAll();
}
void Interface::Hide(cnode* node) {
    I_Hide(node);
}
void Interface::Unhide(cnode* node) {
    I_Unhide(node);
}
void Interface::UnhideAll() {
    I_UnhideAll();
}
void Interface::UpdateViews() {
    I_UpdateViews();
}
void Interface::UpdateActiveView() {
    I_UpdateActiveView();
}
CGLWindow* Interface::GetActiveGLView() {
    return I_GetActiveGLView();
}
CGLWindow* Interface::GetGLView(int view) {
    return I_GetGLView(view);
}
void Interface::CopyNotes(char const* text, int length) {
    I_CopyNotes(text, length);
}
void Interface::AddNotes(char const* text, int length) {
    I_AddNotes(text, length);
}
void Interface::ClearNotes() {
    I_ClearNotes();
}
char* Interface::GetNotes() {
    return I_GetNotes();
}
int Interface::NotesSize() {
    return I_NotesSize();
}
int Interface::PickFromList(unsigned int type, unsigned int subType, char* title, char* selected,
                            int (*filter)(cnode*), void (*picked)(cnode*)) {
    return I_PickFromList(type, subType, title, selected, filter, picked);
}
void Interface::ResetAnim() {
    I_ResetAnim();
}
void Interface::SetAnimTime(int t) {
    I_SetAnimTime(t);
}
void Interface::SetAnimStart(int t) {
    I_SetAnimStart(t);
}
void Interface::SetAnimEnd(int t) {
    I_SetAnimEnd(t);
}
void Interface::SetAnimTPF(int ticks) {
    I_SetAnimTPF(ticks);
}
void Interface::FocusViews(int a, int b) {
    I_FocusViews(a, b);
}
void Interface::UpdateAnimBar() {
    I_UpdateAnimBar();
}
void Interface::UpdateControlPanel() {
    I_UpdateControlPanel();
}
void Interface::UpdateToolbars() {
    I_UpdateToolbars();
}
void Interface::MaximizeActiveView(int on) {
    I_MaximizeActiveView(on);
}
void Interface::MaximizeView(int view) {
    I_MaximizeView(view);
}
int Interface::IsActiveViewMaximized() {
    return I_IsActiveViewMaximized();
}
int Interface::IsViewMaximized(int view) {
    return I_IsViewMaximized(view);
}
int Interface::IsViewEnabled(int view) {
    return I_IsViewEnabled(view);
}
void Interface::EnableView(int view, int on) {
    I_EnableView(view, on);
}
void Interface::SetActiveView(int view) {
    I_SetActiveView(view);
}
int Interface::ActiveViewID() {
    return I_ActiveViewID();
}
int Interface::SetCameraToView(int view, cnode* camera, int flags) {
    return I_SetCameraToView(view, camera, flags);
}
void Interface::RemoveCameraFromView(int view, int flags) {
    I_RemoveCameraFromView(view, flags);
}
void Interface::New(int a, int b, int c) {
    I_New(a, b, c);
}
int Interface::Open(char const* file) {
    return I_Open(file);
}
int Interface::Save() {
    return I_Save();
}
int Interface::SaveAs(char const* file) {
    return I_SaveAs(file);
}
void Interface::Import() {
    I_Import();
}
void Interface::Export() {
    I_Export();
}
int Interface::ImportFile(char const* file, cimportinterface* importer) {
    return I_ImportFile(file, importer);
}
int Interface::ExportFile(char const* file, cexportinterface* exporter) {
    return I_ExportFile(file, exporter);
}
void Interface::SetProjectPathName(char const* pathName) {
    I_SetProjectPathName(pathName);
}
int Interface::GetProjectPathName(char* pathName) {
    return I_GetProjectPathName(pathName);
}
void Interface::SetProjectName(char const* name) {
    I_SetProjectName(name);
}
int Interface::GetProjectName(char* name) {
    return I_GetProjectName(name);
}
void Interface::SetProjectPath(char const* path) {
    I_SetProjectPath(path);
}
int Interface::GetProjectPath(char* path) {
    return I_GetProjectPath(path);
}

char* Interface::GetMainPath() {
    static char mainPath[sizeof(path_app)];
    std::strncpy(mainPath, GetAppPath(), sizeof(mainPath) - 1);
    mainPath[sizeof(mainPath) - 1] = '\0';
    return mainPath;
}

// Deliberate asymmetry: the clock is read here, but only SetAnimOn is set here; the other
// setters above go to the host, which moves its time slider and then sets the clock.
void Interface::SetAnimOn(int on) {
    ::SetAnimOn(on);
}
int Interface::IsAnimOn() {
    return ::IsAnimOn();
}
int Interface::GetAnimTime() {
    return ::GetAnimTime();
}
int Interface::GetAnimStart() {
    return ::GetAnimStart();
}
int Interface::GetAnimEnd() {
    return ::GetAnimEnd();
}
int Interface::GetAnimTPF() {
    return ::GetAnimTPF();
}
