#include "referencehost.h"

#include <cstdio>

#include "projectfile.h"
#include "undo.h"

namespace {

ReferenceHost& Host() {
    return ReferenceHost::Instance();
}
ReferenceHost::State& S() {
    return Host().GetState();
}

// Copies `text` into a caller's buffer; the library's callers pass buffers of at least 256.
int CopyOut(const std::string& text, char* out) {
    if (!out) return 0;
    std::snprintf(out, 256, "%s", text.c_str());
    return static_cast<int>(text.size());
}

bool ValidView(int view) {
    return view >= 0 && view < ReferenceHost::kViewCount;
}

// Views stop looking through `camera` (every camera when null): the node is going away.
void ForgetCamera(const cnode* camera) {
    for (ReferenceHost::View& view : S().views)
        if (!camera || view.camera == camera) view.camera = nullptr;
}

// What a windowed host does after its time slider moved: the nodes re-evaluate their
// transforms at the new time, then the rest of the scene's time-dependent state follows.
void FollowClock() {
    MainScene.UpdateNodesAtAnimTimeChange();
    MainScene.UpdateMiscAtAnimTimeChange();
}

// Splits "folder/name" into the project's folder and name; the project now has a file.
void SetProjectFile(char const* pathName) {
    const std::string full = pathName ? pathName : "";
    const size_t slash = full.find_last_of("/\\");
    S().projectPath = slash == std::string::npos ? std::string() : full.substr(0, slash);
    S().projectName = slash == std::string::npos ? full : full.substr(slash + 1);
    S().hasFile = !full.empty();
}

std::string ProjectFile() {
    const ReferenceHost::State& s = S();
    return s.projectPath.empty() ? s.projectName : s.projectPath + "/" + s.projectName;
}

// Writes MainScene to `path`; on success the project takes that file.
int SaveTo(char const* path) {
    if (!path || !*path || !SaveProjectFile(path)) return 0;
    SetProjectFile(path);
    return 1;
}

}  // namespace

// Every callback is named after the pointer it fills and records its own name when called.
#define RECORD() Host().Record(__func__)

namespace callbacks {

// ---- The application: version, windows, dialogs, the image window ----

unsigned long I_GetAppVersion() {
    return RECORD(), S().appVersion;
}
void* I_GetMainHINSTANCE() {
    return RECORD(), nullptr;
}  // a headless host has no windows
void* I_GetMainHWND() {
    return RECORD(), nullptr;
}
// Dialogs: a headless host answers as a user who cancels would.
int I_DlgPickColor(unsigned long&) {
    return RECORD(), 0;
}
int I_DlgLoadImage(char*) {
    return RECORD(), 0;
}
int I_JPGQualityDlg() {
    return RECORD(), S().jpegQuality;
}
int I_CreateImageWnd(int width, int height) {
    RECORD();
    S().imageWindowWidth = width;
    S().imageWindowHeight = height;
    return 1;
}
void I_CloseImageWnd() {
    RECORD();
    S().imageWindowWidth = S().imageWindowHeight = 0;
}
int I_ShowMatImage(cmaterial*, int) {
    return RECORD(), S().imageWindowWidth > 0;
}
int I_ShowImage(cimage*, char*, int, int) {
    return RECORD(), S().imageWindowWidth > 0;
}
int I_ShowFileImage(char const*, char*, int, int) {
    return RECORD(), S().imageWindowWidth > 0;
}
int I_ShowRawImage(void*, void*, int, int, int, int, int) {
    return RECORD(), S().imageWindowWidth > 0;
}

// ---- The scene: MainScene ----

void I_AddNodeArrayToScene(cnode** nodes, int count, int flag) {
    RECORD(), MainScene.AddNodeArray(nodes, count, flag);
}
void I_AddMatArrayToScene(cmaterial** materials, int count, int flag) {
    RECORD(), MainScene.AddMaterialArray(materials, count, flag);
}
void I_AddNodeToScene(cnode* node, int flag) {
    RECORD(), MainScene.AddNode(node, flag);
}
// The node is handed back to the caller, who keeps it (for undo) or deletes it.
void I_RemoveNodeFromScene(cnode* node, int) {
    RECORD(), MainScene.RemoveNode(node);
}
void I_AddMatToScene(cmaterial* material, int flag) {
    RECORD(), MainScene.AddMaterial(material, flag);
}
cnode* I_GetSelNode() {
    return RECORD(), MainScene.GetSelNode();
}
int I_FindNode(cnode* node) {
    return RECORD(), MainScene.Find(node);
}
cnode* I_FindNodeByName(char const* name) {
    return RECORD(), MainScene.FindNode(name);
}
cnode* I_GetNodeAt(int index) {
    return RECORD(), MainScene.GetNodeAt(index);
}
int I_FindMaterial(cmaterial* material) {
    return RECORD(), MainScene.Find(material);
}
cmaterial* I_FindMaterialByName(char const* name) {
    return RECORD(), MainScene.FindMaterial(name);
}
cmaterial* I_GetMaterialAt(int index) {
    return RECORD(), MainScene.GetMaterialAt(index);
}
int I_IsMaterialUsed(cmaterial* material) {
    return RECORD(), MainScene.IsMaterialUsed(material);
}
void I_SetSceneAmbient(ccolor const& color) {
    RECORD(), MainScene.SetAmbient(color);
}
ccolor I_GetSceneAmbient() {
    return RECORD(), MainScene.GetAmbient();
}
void I_SetSceneBkColor(ccolor const& color) {
    RECORD(), MainScene.SetBkColor(color);
}
ccolor I_GetSceneBkColor() {
    return RECORD(), MainScene.GetBkColor();
}
cimage* I_GetSceneBkImage() {
    return RECORD(), MainScene.GetBkImage();
}
void I_SetFogValues(cpoint3 const& color, float start, float end, float density) {
    RECORD(), MainScene.SetFogValues(color, start, end, density);
}
void I_GetFogValues(cpoint3& color, float& start, float& end, float& density) {
    RECORD(), MainScene.GetFogValues(color, start, end, density);
}
void I_EnableFog(int on) {
    RECORD(), MainScene.EnableFog(on);
}
int I_IsFogEnabled() {
    return RECORD(), MainScene.IsFogEnabled();
}
int I_GetSubLevel() {
    return RECORD(), MainScene.GetSubLevel();
}
cpoint3 I_GetSelCenter() {
    return RECORD(), MainScene.GetSelCenter();
}
void I_Select(cnode* node) {
    RECORD(), MainScene.Select(node);
}
void I_Deselect(cnode* node) {
    RECORD(), MainScene.Deselect(node);
}
void I_DeselectAll() {
    RECORD(), MainScene.DeselectAll();
}
void I_Hide(cnode* node) {
    RECORD(), MainScene.Hide(node);
}
void I_Unhide(cnode* node) {
    RECORD(), MainScene.Unhide(node);
}
void I_UnhideAll() {
    RECORD(), MainScene.UnhideAll();
}
void I_CopyNotes(char const* text, int length) {
    RECORD(), MainScene.CopyNotes(text, length);
}
void I_AddNotes(char const* text, int length) {
    RECORD(), MainScene.AddNotes(text, length);
}
void I_ClearNotes() {
    RECORD(), MainScene.ClearNotes();
}
char* I_GetNotes() {
    return RECORD(), MainScene.GetNotes();
}
int I_NotesSize() {
    return RECORD(), MainScene.NotesSize();
}
int I_PickFromList(unsigned int, unsigned int, char*, char*, int (*)(cnode*), void (*)(cnode*)) {
    return RECORD(), 0;
}

// ---- The clock: the library's, followed by the scene ----

void I_ResetAnim() {
    RECORD(), ResetAnim(), FollowClock();
}
void I_SetAnimTime(int t) {
    RECORD(), SetAnimTime(t), FollowClock();
}
void I_SetAnimStart(int t) {
    RECORD(), SetAnimStart(t), FollowClock();
}
void I_SetAnimEnd(int t) {
    RECORD(), SetAnimEnd(t), FollowClock();
}
void I_SetAnimTPF(int ticks) {
    RECORD(), SetAnimTPF(ticks), FollowClock();
}

// ---- The views: kept by the host, never drawn ----

void I_UpdateViews() {
    RECORD(), ++S().updateViewsCount;
}
void I_UpdateActiveView() {
    RECORD(), ++S().updateViewsCount;
}
CGLWindow* I_GetActiveGLView() {
    return RECORD(), nullptr;
}  // headless: no GL viewports
CGLWindow* I_GetGLView(int) {
    return RECORD(), nullptr;
}
void I_FocusViews(int, int) {
    RECORD(), ++S().updateViewsCount;
}
void I_UpdateAnimBar() {
    RECORD();
}
void I_UpdateControlPanel() {
    RECORD();
}
void I_UpdateToolbars() {
    RECORD();
}
void I_MaximizeActiveView(int on) {
    RECORD(), S().views[S().activeView].maximized = on != 0;
}
void I_MaximizeView(int view) {
    RECORD();
    if (ValidView(view)) S().views[view].maximized = true;
}
int I_IsActiveViewMaximized() {
    return RECORD(), S().views[S().activeView].maximized;
}
int I_IsViewMaximized(int view) {
    return RECORD(), ValidView(view) && S().views[view].maximized;
}
int I_IsViewEnabled(int view) {
    return RECORD(), ValidView(view) && S().views[view].enabled;
}
void I_EnableView(int view, int on) {
    RECORD();
    if (ValidView(view)) S().views[view].enabled = on != 0;
}
void I_SetActiveView(int view) {
    RECORD();
    if (ValidView(view)) S().activeView = view;
}
int I_ActiveViewID() {
    return RECORD(), S().activeView;
}
int I_SetCameraToView(int view, cnode* camera, int) {
    RECORD();
    if (!ValidView(view)) return 0;
    S().views[view].camera = camera;
    return 1;
}
void I_RemoveCameraFromView(int view, int) {
    RECORD();
    if (ValidView(view)) S().views[view].camera = nullptr;
}

// ---- The project: MainScene in a project file ----

// A new, empty, untitled scene with the clock at its defaults and animation mode off.
void I_New(int, int, int) {
    RECORD();
    ForgetCamera(nullptr);
    // Undo levels refer to the old scene's nodes.
    theUndo.Clear();
    MainScene.Clear();
    ResetAnim();
    SetAnimOn(0);
    S().projectName = "Untitled";
    S().projectPath.clear();
    S().hasFile = false;
}
// On success the scene and the clock are the file's and the project takes the file; on
// failure all three stay as they were.
int I_Open(char const* path) {
    RECORD();
    if (!path || !*path || !LoadProjectFile(path)) return 0;
    ForgetCamera(nullptr);  // the nodes the views looked through are gone
    theUndo.Clear();        // and so are the nodes the undo levels refer to
    SetProjectFile(path);
    return 1;
}
int I_Save() {
    RECORD();
    return S().hasFile ? SaveTo(ProjectFile().c_str()) : 0;
}
int I_SaveAs(char const* path) {
    return RECORD(), SaveTo(path);
}
// Importers and exporters are plug-ins the headless host does not load.
void I_Import() {
    RECORD();
}
void I_Export() {
    RECORD();
}
int I_ImportFile(char const*, cimportinterface*) {
    return RECORD(), 0;
}
int I_ExportFile(char const*, cexportinterface*) {
    return RECORD(), 0;
}
void I_SetProjectPathName(char const* pathName) {
    RECORD(), SetProjectFile(pathName);
}
int I_GetProjectPathName(char* out) {
    return RECORD(), CopyOut(ProjectFile(), out);
}
void I_SetProjectName(char const* name) {
    RECORD(), S().projectName = name ? name : "";
}
int I_GetProjectName(char* out) {
    return RECORD(), CopyOut(S().projectName, out);
}
void I_SetProjectPath(char const* path) {
    RECORD(), S().projectPath = path ? path : "";
}
int I_GetProjectPath(char* out) {
    return RECORD(), CopyOut(S().projectPath, out);
}
int I_MirrorDlg(void (*)(int, int)) {
    return RECORD(), 0;
}

// ---- Hooks ----

void InformDeleted(cnode* node) {
    Host().Record("Application_InformDeleted");
    if (node) ForgetCamera(node);
}
void ContinueAfterAssert() {
    Host().CountFailedAssertion();
}

}  // namespace callbacks

#undef RECORD

ReferenceHost& ReferenceHost::Instance() {
    static ReferenceHost host;
    return host;
}

void ReferenceHost::Install(char const* appFolder, bool abortOnAssert) {
    state_ = State();
    calls_.clear();
    failedAssertions_ = 0;
    std::snprintf(path_app, sizeof(path_app), "%s", appFolder ? appFolder : ".");
#define CORE_INSTALL_CALLBACK(ret, name, params) ::name = callbacks::name;
    CORE_HOST_CALLBACKS(CORE_INSTALL_CALLBACK)
#undef CORE_INSTALL_CALLBACK
    Application_InformDeleted = callbacks::InformDeleted;
    _AbortApp = abortOnAssert ? nullptr : callbacks::ContinueAfterAssert;
}

void ReferenceHost::Uninstall() {
#define CORE_CLEAR_CALLBACK(ret, name, params) ::name = nullptr;
    CORE_HOST_CALLBACKS(CORE_CLEAR_CALLBACK)
#undef CORE_CLEAR_CALLBACK
    Application_InformDeleted = nullptr;
    _AbortApp = nullptr;
}
