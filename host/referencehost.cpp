#include "referencehost.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

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

template <class T>
int IndexOf(const std::vector<T*>& list, T* item) {
    const auto it = std::find(list.begin(), list.end(), item);
    return it == list.end() ? -1 : static_cast<int>(it - list.begin());
}

template <class T>
void Erase(std::vector<T*>& list, T* item) {
    list.erase(std::remove(list.begin(), list.end(), item), list.end());
}

template <class T>
void AddOnce(std::vector<T*>& list, T* item) {
    if (item && IndexOf(list, item) < 0) list.push_back(item);
}

template <class T>
T* At(const std::vector<T*>& list, int index) {
    return index >= 0 && index < static_cast<int>(list.size()) ? list[index] : nullptr;
}

}  // namespace

// Every callback is named after the pointer it fills and records its own name when called.
#define RECORD() Host().Record(__func__)

namespace callbacks {

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

void I_AddNodeArrayToScene(cnode** nodes, int count, int) {
    RECORD();
    for (int i = 0; i < count; ++i) AddOnce(S().nodes, nodes[i]);
}
void I_AddMatArrayToScene(cmaterial** materials, int count, int) {
    RECORD();
    for (int i = 0; i < count; ++i) AddOnce(S().materials, materials[i]);
}
void I_AddNodeToScene(cnode* node, int) {
    RECORD(), AddOnce(S().nodes, node);
}
void I_RemoveNodeFromScene(cnode* node, int) {
    RECORD();
    Erase(S().nodes, node);
    Erase(S().selected, node);
    Erase(S().hidden, node);
}
void I_AddMatToScene(cmaterial* material, int) {
    RECORD(), AddOnce(S().materials, material);
}
cnode* I_GetSelNode() {
    return RECORD(), S().selected.size() == 1 ? S().selected[0] : nullptr;
}
int I_FindNode(cnode* node) {
    return RECORD(), IndexOf(S().nodes, node);
}
// Scene objects are named by the scene graph; this host keeps only pointers, so no name
// matches until it hands its lists to the scene.
cnode* I_FindNodeByName(char const*) {
    return RECORD(), nullptr;
}
cnode* I_GetNodeAt(int index) {
    return RECORD(), At(S().nodes, index);
}
int I_FindMaterial(cmaterial* material) {
    return RECORD(), IndexOf(S().materials, material);
}
cmaterial* I_FindMaterialByName(char const*) {
    return RECORD(), nullptr;
}
cmaterial* I_GetMaterialAt(int index) {
    return RECORD(), At(S().materials, index);
}
int I_IsMaterialUsed(cmaterial*) {
    return RECORD(), 0;
}
void I_SetSceneAmbient(ccolor const& color) {
    RECORD(), S().ambient = color;
}
ccolor I_GetSceneAmbient() {
    return RECORD(), S().ambient;
}
void I_SetSceneBkColor(ccolor const& color) {
    RECORD(), S().background = color;
}
ccolor I_GetSceneBkColor() {
    return RECORD(), S().background;
}
cimage* I_GetSceneBkImage() {
    return RECORD(), nullptr;
}
void I_SetFogValues(cpoint3 const& color, float start, float end, float density) {
    RECORD();
    S().fogColor = color;
    S().fogStart = start;
    S().fogEnd = end;
    S().fogDensity = density;
}
void I_GetFogValues(cpoint3& color, float& start, float& end, float& density) {
    RECORD();
    color = S().fogColor;
    start = S().fogStart;
    end = S().fogEnd;
    density = S().fogDensity;
}
void I_EnableFog(int on) {
    RECORD(), S().fogEnabled = on;
}
int I_IsFogEnabled() {
    return RECORD(), S().fogEnabled;
}
int I_GetSubLevel() {
    return RECORD(), S().subLevel;
}
cpoint3 I_GetSelCenter() {
    return RECORD(), cpoint3();
}
void I_Select(cnode* node) {
    RECORD();
    if (IndexOf(S().hidden, node) < 0) AddOnce(S().selected, node);
}
void I_Deselect(cnode* node) {
    RECORD(), Erase(S().selected, node);
}
void I_DeselectAll() {
    RECORD(), S().selected.clear();
}
void I_Hide(cnode* node) {
    RECORD();
    Erase(S().selected, node);  // a hidden object is never selected
    AddOnce(S().hidden, node);
}
void I_Unhide(cnode* node) {
    RECORD(), Erase(S().hidden, node);
}
void I_UnhideAll() {
    RECORD(), S().hidden.clear();
}
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
void I_CopyNotes(char const* text, int length) {
    RECORD();
    S().notes.assign(text ? text : "", text && length > 0 ? static_cast<size_t>(length) : 0);
}
void I_AddNotes(char const* text, int length) {
    RECORD();
    if (text && length > 0) S().notes.append(text, static_cast<size_t>(length));
}
void I_ClearNotes() {
    RECORD(), S().notes.clear();
}
char* I_GetNotes() {
    return RECORD(), &S().notes[0];
}
int I_NotesSize() {
    return RECORD(), static_cast<int>(S().notes.size());
}
int I_PickFromList(unsigned int, unsigned int, char*, char*, int (*)(cnode*), void (*)(cnode*)) {
    return RECORD(), 0;
}
// The clock setters reach the library's clock; a windowed host would also move its slider.
void I_ResetAnim() {
    RECORD(), ResetAnim();
}
void I_SetAnimTime(int t) {
    RECORD(), SetAnimTime(t);
}
void I_SetAnimStart(int t) {
    RECORD(), SetAnimStart(t);
}
void I_SetAnimEnd(int t) {
    RECORD(), SetAnimEnd(t);
}
void I_SetAnimTPF(int ticks) {
    RECORD(), SetAnimTPF(ticks);
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
void I_New(int, int, int) {
    RECORD();
    S().nodes.clear();
    S().materials.clear();
    S().selected.clear();
    S().hidden.clear();
    S().notes.clear();
    S().projectName = "Untitled";
    ResetAnim();
}
// Project files belong to the scene; this host has none to open or write yet.
int I_Open(char const*) {
    return RECORD(), 0;
}
int I_Save() {
    return RECORD(), 0;
}
int I_SaveAs(char const*) {
    return RECORD(), 0;
}
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
    RECORD();
    const std::string full = pathName ? pathName : "";
    const size_t slash = full.find_last_of("/\\");
    S().projectPath = slash == std::string::npos ? std::string() : full.substr(0, slash);
    S().projectName = slash == std::string::npos ? full : full.substr(slash + 1);
}
int I_GetProjectPathName(char* out) {
    RECORD();
    const std::string& path = S().projectPath;
    return CopyOut(path.empty() ? S().projectName : path + "/" + S().projectName, out);
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

void InformDeleted(cnode* node) {
    Host().Record("Application_InformDeleted");
    I_RemoveNodeFromScene(node, 0);
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
