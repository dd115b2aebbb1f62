// The bridge between libCore.so and its host application: the library's start and stop entry
// points, the application folder, the host callback table (I_*) with its hooks, and the static
// Interface facade through which library code and plug-ins reach the host.
//
// A host fills path_app, every I_* pointer, Application_InformDeleted (and optionally
// _AbortApp), then calls CoreInit once. The library never tests a callback for null.
#ifndef ORVANE_COREINTERFACE_H
#define ORVANE_COREINTERFACE_H

#include "ccolor.h"
#include "coreapi.h"
#include "cpoint.h"

class cbitarray;
class cnode;
class cmaterial;
class cimage;
class CGLWindow;
class cimportinterface;
class cexportinterface;

// The application folder, written by the host (no trailing separator).
extern CORE_API char path_app[256];

// Called instead of ending the process when an assertion fails; null (the default) ends it.
extern CORE_API void (*_AbortApp)();

// Called with a node that is about to be destroyed for good, so that the host can drop any
// reference to it. The host must set it.
extern CORE_API void (*Application_InformDeleted)(cnode* node);

// Starts the library: prints "  Registering interfaces: " through `progress`, registers the
// built-in tools with the library's module handle, prints "OK\n" and returns 1.
// `progress`'s result is ignored.
CORE_API int CoreInit(int (*progress)(char* text));

// Returns 1 and does nothing else: global objects clean up in their destructors at unload.
CORE_API int CoreFini();

// Returns path_app.
CORE_API char* GetAppPath();

// The host callback table, one row per exported pointer in storage order:
// X(return type, symbol, parenthesised parameter list). The pointers are laid out contiguously
// in this order and are all null until the host stores them.
#define CORE_HOST_CALLBACKS(X)                                                       \
    X(unsigned long, I_GetAppVersion, ())                                            \
    X(void*, I_GetMainHINSTANCE, ())                                                 \
    X(void*, I_GetMainHWND, ())                                                      \
    X(int, I_DlgPickColor, (unsigned long&))                                         \
    X(int, I_DlgLoadImage, (char*))                                                  \
    X(int, I_JPGQualityDlg, ())                                                      \
    X(int, I_CreateImageWnd, (int, int))                                             \
    X(void, I_CloseImageWnd, ())                                                     \
    X(int, I_ShowMatImage, (cmaterial*, int))                                        \
    X(int, I_ShowImage, (cimage*, char*, int, int))                                  \
    X(int, I_ShowFileImage, (char const*, char*, int, int))                          \
    X(int, I_ShowRawImage, (void*, void*, int, int, int, int, int))                  \
    X(void, I_AddNodeArrayToScene, (cnode**, int, int))                              \
    X(void, I_AddMatArrayToScene, (cmaterial**, int, int))                           \
    X(void, I_AddNodeToScene, (cnode*, int))                                         \
    X(void, I_RemoveNodeFromScene, (cnode*, int))                                    \
    X(void, I_AddMatToScene, (cmaterial*, int))                                      \
    X(cnode*, I_GetSelNode, ())                                                      \
    X(int, I_FindNode, (cnode*))                                                     \
    X(cnode*, I_FindNodeByName, (char const*))                                       \
    X(cnode*, I_GetNodeAt, (int))                                                    \
    X(int, I_FindMaterial, (cmaterial*))                                             \
    X(cmaterial*, I_FindMaterialByName, (char const*))                               \
    X(cmaterial*, I_GetMaterialAt, (int))                                            \
    X(int, I_IsMaterialUsed, (cmaterial*))                                           \
    X(void, I_SetSceneAmbient, (ccolor const&))                                      \
    X(ccolor, I_GetSceneAmbient, ())                                                 \
    X(void, I_SetSceneBkColor, (ccolor const&))                                      \
    X(ccolor, I_GetSceneBkColor, ())                                                 \
    X(cimage*, I_GetSceneBkImage, ())                                                \
    X(void, I_SetFogValues, (cpoint3 const&, float, float, float))                   \
    X(void, I_GetFogValues, (cpoint3&, float&, float&, float&))                      \
    X(void, I_EnableFog, (int))                                                      \
    X(int, I_IsFogEnabled, ())                                                       \
    X(int, I_GetSubLevel, ())                                                        \
    X(cpoint3, I_GetSelCenter, ())                                                   \
    X(void, I_Select, (cnode*))                                                      \
    X(void, I_Deselect, (cnode*))                                                    \
    X(void, I_DeselectAll, ())                                                       \
    X(void, I_Hide, (cnode*))                                                        \
    X(void, I_Unhide, (cnode*))                                                      \
    X(void, I_UnhideAll, ())                                                         \
    X(void, I_UpdateViews, ())                                                       \
    X(void, I_UpdateActiveView, ())                                                  \
    X(CGLWindow*, I_GetActiveGLView, ())                                             \
    X(CGLWindow*, I_GetGLView, (int))                                                \
    X(void, I_CopyNotes, (char const*, int))                                         \
    X(void, I_AddNotes, (char const*, int))                                          \
    X(void, I_ClearNotes, ())                                                        \
    X(char*, I_GetNotes, ())                                                         \
    X(int, I_NotesSize, ())                                                          \
    X(int, I_PickFromList,                                                           \
      (unsigned int, unsigned int, char*, char*, int (*)(cnode*), void (*)(cnode*))) \
    X(void, I_ResetAnim, ())                                                         \
    X(void, I_SetAnimTime, (int))                                                    \
    X(void, I_SetAnimStart, (int))                                                   \
    X(void, I_SetAnimEnd, (int))                                                     \
    X(void, I_SetAnimTPF, (int))                                                     \
    X(void, I_FocusViews, (int, int))                                                \
    X(void, I_UpdateAnimBar, ())                                                     \
    X(void, I_UpdateControlPanel, ())                                                \
    X(void, I_UpdateToolbars, ())                                                    \
    X(void, I_MaximizeActiveView, (int))                                             \
    X(void, I_MaximizeView, (int))                                                   \
    X(int, I_IsActiveViewMaximized, ())                                              \
    X(int, I_IsViewMaximized, (int))                                                 \
    X(int, I_IsViewEnabled, (int))                                                   \
    X(void, I_EnableView, (int, int))                                                \
    X(void, I_SetActiveView, (int))                                                  \
    X(int, I_ActiveViewID, ())                                                       \
    X(int, I_SetCameraToView, (int, cnode*, int))                                    \
    X(void, I_RemoveCameraFromView, (int, int))                                      \
    X(void, I_New, (int, int, int))                                                  \
    X(int, I_Open, (char const*))                                                    \
    X(int, I_Save, ())                                                               \
    X(int, I_SaveAs, (char const*))                                                  \
    X(void, I_Import, ())                                                            \
    X(void, I_Export, ())                                                            \
    X(int, I_ImportFile, (char const*, cimportinterface*))                           \
    X(int, I_ExportFile, (char const*, cexportinterface*))                           \
    X(void, I_SetProjectPathName, (char const*))                                     \
    X(int, I_GetProjectPathName, (char*))                                            \
    X(void, I_SetProjectName, (char const*))                                         \
    X(int, I_GetProjectName, (char*))                                                \
    X(void, I_SetProjectPath, (char const*))                                         \
    X(int, I_GetProjectPath, (char*))                                                \
    X(int, I_MirrorDlg, (void (*)(int, int)))

#define CORE_DECLARE_HOST_CALLBACK(ret, name, params) extern CORE_API ret(*name) params;
CORE_HOST_CALLBACKS(CORE_DECLARE_HOST_CALLBACK)
#undef CORE_DECLARE_HOST_CALLBACK

// The number of pointers in the host callback table.
#define CORE_HOST_CALLBACK_COUNT 86

// The static facade through which the library and its plug-ins reach the host. Forwarders
// pass their arguments unchanged to the callback of the same name and return its result.
// The clock's getters and SetAnimOn read and write the library's own clock; the clock's other
// setters go to the host, which moves its time slider and then sets the library's clock.
class CORE_API Interface {
public:
    static unsigned long GetAppVersion();
    static void* GetMainHINSTANCE();
    static void* GetMainHWND();
    static int DlgPickColor(unsigned long& color);
    static int DlgLoadImage(char* path);
    static int JPGQualityDlg();
    static int CreateImageWnd(int width, int height);
    static void CloseImageWnd();
    static int ShowImage(cmaterial* material, int map);
    static int ShowImage(cimage* image, char* title, int x, int y);
    static int ShowImage(char const* file, char* title, int x, int y);
    static int ShowImage(void* bits, void* palette, int width, int height, int bitsPerPixel, int x,
                         int y);
    static void AddNodeArrayToScene(cnode** nodes, int count, int flags);
    static void AddMatArrayToScene(cmaterial** materials, int count, int flags);
    static void AddToScene(cnode* node, int flags);
    static void AddToScene(cmaterial* material, int flags);
    static void RemoveFromScene(cnode* node, int flags);
    static cnode* GetSelNode();
    static int Find(cnode* node);
    static int Find(cmaterial* material);
    static cnode* FindNode(char const* name);
    static cnode* GetNodeAt(int index);
    static cmaterial* FindMaterial(char const* name);
    static cmaterial* GetMaterialAt(int index);
    static int IsMaterialUsed(cmaterial* material);
    static void SetSceneAmbient(ccolor const& color);
    static ccolor GetSceneAmbient();
    static void SetSceneBkColor(ccolor const& color);
    static ccolor GetSceneBkColor();
    static cimage* GetSceneBkImage();
    static void SetFogValues(cpoint3 const& color, float start, float end, float density);
    static void GetFogValues(cpoint3& color, float& start, float& end, float& density);
    static void EnableFog(int on);
    static int IsFogEnabled();
    static int GetSubLevel();
    static cpoint3 GetSelCenter();
    static void Select(cnode* node);
    static void Deselect(cnode* node);
    static void DeselectAll();
    static void Hide(cnode* node);
    static void Unhide(cnode* node);
    static void UnhideAll();
    static void UpdateViews();
    static void UpdateActiveView();
    static CGLWindow* GetActiveGLView();
    static CGLWindow* GetGLView(int view);
    static void CopyNotes(char const* text, int length);
    static void AddNotes(char const* text, int length);
    static void ClearNotes();
    static char* GetNotes();
    static int NotesSize();
    static int PickFromList(unsigned int type, unsigned int subType, char* title, char* selected,
                            int (*filter)(cnode*), void (*picked)(cnode*));
    static void ResetAnim();
    static void SetAnimTime(int t);
    static void SetAnimStart(int t);
    static void SetAnimEnd(int t);
    static void SetAnimTPF(int ticks);
    static void FocusViews(int a, int b);
    static void UpdateAnimBar();
    static void UpdateControlPanel();
    static void UpdateToolbars();
    static void MaximizeActiveView(int on);
    static void MaximizeView(int view);
    static int IsActiveViewMaximized();
    static int IsViewMaximized(int view);
    static int IsViewEnabled(int view);
    static void EnableView(int view, int on);
    static void SetActiveView(int view);
    static int ActiveViewID();
    static int SetCameraToView(int view, cnode* camera, int flags);
    static void RemoveCameraFromView(int view, int flags);
    static void New(int a, int b, int c);
    static int Open(char const* file);
    static int Save();
    static int SaveAs(char const* file);
    static void Import();
    static void Export();
    static int ImportFile(char const* file, cimportinterface* importer);
    static int ExportFile(char const* file, cexportinterface* exporter);
    static void SetProjectPathName(char const* pathName);
    static int GetProjectPathName(char* pathName);
    static void SetProjectName(char const* name);
    static int GetProjectName(char* name);
    static void SetProjectPath(char const* path);
    static int GetProjectPath(char* path);

    // Answers from MainScene (see cscene.h for each one's meaning).
    // The numbers of nodes, of selected nodes, of hidden nodes, of materials and of materials
    // some node uses.
    static int NumNodes();
    static int NumSelNodes();
    static int NumHiddenNodes();
    static int NumMaterials();
    static int NumUsedMaterials();
    // Element i is 1 for each material no node uses; returns their number.
    static int GetUnusedMaterials(cbitarray& unused);
    // The earliest and latest key time of the nodes' tracks, in ticks; 0 without keys.
    static int GetAnimSeg(int* start, int* end);
    // The world box of the nodes at `time`; 0 (corners at the origin) when no node counts.
    static int GetWorldBBox(int time, cpoint3& min, cpoint3& max, int selectedOnly,
                            int includeHidden);
    // The scene indices of the nodes, every parent before its children.
    static int GetNodesHierarchy(cbitarray& order);
    // After a time change: every node re-evaluates itself; the selection centre follows.
    static void UpdateNodes();
    static void UpdateMisc();
    // Recomputes the cached selection centre.
    static void UpdateSelPos();

    // A copy of the application folder in a buffer owned by the facade.
    static char* GetMainPath();

    // The library's animation clock (see animclock.h).
    static void SetAnimOn(int on);
    static int IsAnimOn();
    static int GetAnimTime();
    static int GetAnimStart();
    static int GetAnimEnd();
    static int GetAnimTPF();
};

#endif
