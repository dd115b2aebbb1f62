// The plug-in tool classes and their registries.
//
// Every tool the host offers is an object of one of six kinds: creators (ccreateinterface),
// modifiers (cmodifyinterface), utilities (cutilityinterface), importers, exporters and
// renderers. The first three share the base cclassinterface. The library keeps one registry
// per kind: an array of non-owning pointers kept in ascending name order (bytes compared as
// unsigned characters, case-sensitive; equal names keep their registration order). The
// registries never own, copy or delete a tool.
//
// Virtual operations are declared in a fixed order: plug-in modules compiled against this
// header depend on the resulting table layout.
#ifndef ORVANE_CINTERFACE_H
#define ORVANE_CINTERFACE_H

#include "coreapi.h"

class CGLWindow;
class cgizmo;
class cnode;

class CORE_API cclassinterface {
public:
    // No module instance, no panel.
    cclassinterface() = default;
    cclassinterface(const cclassinterface&) = default;
    cclassinterface& operator=(const cclassinterface&) = default;

    virtual ~cclassinterface();
    // The panel group of a creator ("Primitives", "Lights" ...; "" for modifiers).
    virtual char* GetCategory() = 0;
    // The display name, also the registry's sort key.
    virtual char* GetName() = 0;
    // Non-zero when the host shows the tool in its panels.
    virtual int IsPublic() = 0;
    // The class id (node type id of what the tool creates, and a subtype).
    virtual unsigned int GetType() = 0;
    virtual unsigned int GetSubType() = 0;
    // A new object of the tool's kind with default parameters (a cnode for creators).
    virtual void* Create() = 0;
    // Handles a message of the tool's parameter panel `panel`; non-zero when handled.
    virtual int DlgProc(HWND panel, unsigned int msg, unsigned int wParam, long lParam) = 0;
    // Draws the tool's viewport aids while the scene is drawn.
    virtual void Display(int mode, CGLWindow* window, unsigned int flag) = 0;

    // The module whose resources hold the tool's panel (null by default).
    void SetInstance(HINSTANCE instance) { moduleInstance = instance; }
    HINSTANCE GetInstance() const { return moduleInstance; }
    // The panel's resource id; 0 means the tool has no panel.
    void SetPanelID(unsigned int id) { panelID = id; }
    unsigned int GetPanelID() const { return panelID; }

private:
    HINSTANCE moduleInstance = nullptr;
    unsigned int panelID = 0;
};

// A creation tool: builds new nodes from viewport drags.
class CORE_API ccreateinterface : public cclassinterface {
public:
    char* GetCategory() override;
    char* GetName() override;
    int IsPublic() override;
    unsigned int GetType() override;
    unsigned int GetSubType() override;
    void* Create() override;
    int DlgProc(HWND panel, unsigned int msg, unsigned int wParam, long lParam) override;
    void Display(int mode, CGLWindow* window, unsigned int flag) override;

    // Prepares a new series of creations / ends it.
    virtual void Init();
    virtual void Done();
    // Non-zero when a new drag may start a new object now.
    virtual int CanCreateNew();
    // The viewport drag protocol: window coordinates in pixels, then the tool's float
    // arguments (grid and construction-plane values supplied by the host). Non-zero when the
    // tool consumed the event.
    virtual int BeginDrag(CGLWindow* window, int x, int y, float, float, float, float, float, float,
                          float, float, float);
    virtual int Drag(CGLWindow* window, int, int, int, int, float, float, float, float, float);
    virtual int EndDrag(CGLWindow* window, int, int, int, int, float, float, float, float, float);
    virtual int DragIdle(CGLWindow* window, int, int, int, int, float, float, float, float, float);
    virtual int Stop(CGLWindow* window, int, int, int, int, float, float, float, float, float);
    // Non-zero for tools that want DragIdle calls with the mouse captured between clicks.
    virtual int DragIdleMouseCapture();
    // A bitmap for the tool's button (null: none), and the release of one it returned.
    virtual void* GetHBitmap();
    virtual void DeleteHBitmap(void* bitmap);
};

// A modifier: changes the selected nodes when executed.
class CORE_API cmodifyinterface : public cclassinterface {
public:
    char* GetCategory() override;
    char* GetName() override;
    int IsPublic() override;
    unsigned int GetType() override;
    unsigned int GetSubType() override;
    void* Create() override;
    int DlgProc(HWND panel, unsigned int msg, unsigned int wParam, long lParam) override;
    void Display(int mode, CGLWindow* window, unsigned int flag) override;

    virtual void Init();
    virtual void Done();
    // The gizmo the modifier shows in the viewports, or null.
    virtual cgizmo* GetGizmo() const;
    // Called after the user moved, rotated or scaled that gizmo.
    virtual void GizmoTransformed();
    // Non-zero when the host offers an Apply step.
    virtual int UseApply();
    // Applies the modifier to the selection; non-zero on success.
    virtual int Execute() = 0;
    // Re-applies it after a parameter change.
    virtual void Update();
    // Non-zero when the modifier accepts `node`.
    virtual int IsOkToModify(cnode* node) = 0;
    // Non-zero when the modifier records its own undo levels.
    virtual int OwnUndo();
};

// A utility: a tool with its own panel that runs alongside the others and receives the
// host's messages while running.
class CORE_API cutilityinterface : public cclassinterface {
public:
    cutilityinterface() = default;
    cutilityinterface(const cutilityinterface&) = default;
    cutilityinterface& operator=(const cutilityinterface&) = default;

    char* GetCategory() override;
    char* GetName() override;
    int IsPublic() override;
    unsigned int GetType() override;
    unsigned int GetSubType() override;
    void* Create() override;
    int DlgProc(HWND panel, unsigned int msg, unsigned int wParam, long lParam) override;
    void Display(int mode, CGLWindow* window, unsigned int flag) override;

    // The host starts the utility (opens its panel) / stops it; the library never calls them.
    virtual void Start() = 0;
    virtual void Stop() = 0;
    // The running flag set by ut_Run.
    virtual int IsRunning();
    // Reacts to a host-defined message; the library ignores the result.
    virtual int HandleMessage(unsigned long msg, unsigned long param1, unsigned long param2);

    void ut_Run(int running) { this->running = running; }

private:
    int running = 0;
};

// A file importer. No common base and no virtual destructor: the layout is four slots.
class CORE_API cimportinterface {
public:
    virtual const char* Name();
    // The index-th file extension it reads.
    virtual const char* Ext(int index);
    virtual int NumExt();
    // Reads the file at `path` into the scene; non-zero on success.
    virtual int Import(const char* path);

protected:
    // Not virtual: importers are never destroyed through this class.
    ~cimportinterface() = default;
};

// A file exporter, laid out as the importer with Export in the fourth slot.
class CORE_API cexportinterface {
public:
    virtual const char* Name();
    virtual const char* Ext(int index);
    virtual int NumExt();
    // Writes the scene to the file at `path`; non-zero on success.
    virtual int Export(const char* path);

protected:
    ~cexportinterface() = default;
};

// A renderer.
class CORE_API crenderinterface {
public:
    virtual const char* Name();
    // Renders the scene; non-zero on success.
    virtual int Render();

protected:
    ~crenderinterface() = default;
};

// ---- Registries ----

// Inserts the tool in name order. Creators, modifiers and utilities: null returns 0 and
// changes nothing, otherwise 1. Importers, exporters and renderers must not be null.
CORE_API int RegisterInterface(ccreateinterface* tool);
CORE_API int RegisterInterface(cmodifyinterface* tool);
CORE_API int RegisterInterface(cutilityinterface* tool);
CORE_API void RegisterInterface(cimportinterface* tool);
CORE_API void RegisterInterface(cexportinterface* tool);
CORE_API void RegisterInterface(crenderinterface* tool);

// Empty a registry; the tools and the active creator and modifier are left alone.
CORE_API void UnregisterCreateInterfaces();
CORE_API void UnregisterModifyInterfaces();
CORE_API void UnregisterUtilityInterfaces();
CORE_API void UnregisterImportInterfaces();
CORE_API void UnregisterExportInterfaces();
CORE_API void UnregisterRenderInterfaces();

// The number of registered tools of a kind.
CORE_API int GetNumCreateInterfaces();
CORE_API int GetNumModifyInterfaces();
CORE_API int GetNumUtilityInterfaces();
CORE_API int GetNumImportInterfaces();
CORE_API int GetNumExportInterfaces();
CORE_API int GetNumRenderInterfaces();

// The tool at `index` in name order, or null for an index outside 0 .. count - 1.
CORE_API ccreateinterface* GetCreateInterface(int index);
CORE_API cmodifyinterface* GetModifyInterface(int index);
CORE_API cutilityinterface* GetUtilityInterface(int index);
CORE_API cimportinterface* GetImportInterface(int index);
CORE_API cexportinterface* GetExportInterface(int index);
CORE_API crenderinterface* GetRenderInterface(int index);

// The first creator named exactly `name`; null for a null or empty name or none.
CORE_API ccreateinterface* GetCreateInterfaceByName(const char* name);
// The first creator (in name order) with the class id (type, subtype), or null.
CORE_API ccreateinterface* GetCreateInterfaceClass(unsigned type, unsigned subtype);
// That creator's Create(): a new object of the class, or null without such a creator.
CORE_API void* CreateInterfaceCreate(unsigned type, unsigned subtype);

// The active creator and modifier, stored as given (null allowed); both start null.
CORE_API void SetActiveCreateInterface(ccreateinterface* tool);
CORE_API ccreateinterface* GetActiveCreateInterface();
CORE_API void SetActiveModifyInterface(cmodifyinterface* tool);
CORE_API cmodifyinterface* GetActiveModifyInterface();

// Calls HandleMessage(msg, p1, p2) on every running utility / every utility, in registry
// order, then keeps msg, p1 and p2 as the last message.
CORE_API void SendUtilityMessage(unsigned long msg, unsigned long p1, unsigned long p2);
CORE_API void SendUtilityMessageToAll(unsigned long msg, unsigned long p1, unsigned long p2);
// The last message sent and its two parameters (0 before any).
CORE_API unsigned long GetUtilityLastMessage();
CORE_API unsigned long GetUtilityLastParam1();
CORE_API unsigned long GetUtilityLastParam2();

#endif
