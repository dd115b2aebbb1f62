// The tool classes' defaults and the six registries.
#include "cinterface.h"

#include <cstdint>
#include <cstring>

#include "tools/registry.h"

namespace {

char emptyText[] = "";

char const* OrEmpty(char const* name) {
    return name ? name : "";
}

// The sort key of each kind: GetName() for the three cclassinterface kinds, Name() for the
// others.
template <class Tool>
char const* ClassName(Tool* tool) {
    return OrEmpty(tool->GetName());
}
template <class Tool>
char const* PlainName(Tool* tool) {
    return OrEmpty(tool->Name());
}

ToolRegistry<ccreateinterface, ClassName<ccreateinterface>> creators({"Core/Icreate", 38});
ToolRegistry<cmodifyinterface, ClassName<cmodifyinterface>> modifiers({"Core/Imodify", 38});
ToolRegistry<cutilityinterface, ClassName<cutilityinterface>> utilities({"Core/Iutility", 34});
ToolRegistry<cimportinterface, PlainName<cimportinterface>> importers({"Core/IImport", 32});
ToolRegistry<cexportinterface, PlainName<cexportinterface>> exporters({"Core/IExport", 48});
ToolRegistry<crenderinterface, PlainName<crenderinterface>> renderers({"Core/IRender", 32});

ccreateinterface* activeCreator = nullptr;
cmodifyinterface* activeModifier = nullptr;

// Each value is kept as an unsigned 32-bit number.
struct UtilityMessage {
    std::uint32_t msg = 0, param1 = 0, param2 = 0;
};
UtilityMessage lastUtilityMessage;

// Null tools of the kinds that check for them are refused.
template <class Registry, class Tool>
int RegisterChecked(Registry& registry, Tool* tool) {
    return tool ? registry.Insert(tool) : 0;
}

template <class Running>
void SendToUtilities(Running running, unsigned long msg, unsigned long p1, unsigned long p2) {
    utilities.ForEach([&](cutilityinterface* utility) {
        if (running(utility)) utility->HandleMessage(msg, p1, p2);
    });
    lastUtilityMessage = {static_cast<std::uint32_t>(msg), static_cast<std::uint32_t>(p1),
                          static_cast<std::uint32_t>(p2)};
}

}  // namespace

// ---- Defaults ----

cclassinterface::~cclassinterface() = default;

// The three cclassinterface kinds share these defaults.
#define CORE_CLASSINTERFACE_DEFAULTS(Kind)                      \
    char* Kind::GetCategory() {                                 \
        return emptyText;                                       \
    }                                                           \
    char* Kind::GetName() {                                     \
        return emptyText;                                       \
    }                                                           \
    int Kind::IsPublic() {                                      \
        return 1;                                               \
    }                                                           \
    unsigned int Kind::GetType() {                              \
        return 0;                                               \
    }                                                           \
    unsigned int Kind::GetSubType() {                           \
        return 0;                                               \
    }                                                           \
    void* Kind::Create() {                                      \
        return nullptr;                                         \
    }                                                           \
    int Kind::DlgProc(HWND, unsigned int, unsigned int, long) { \
        return 0;                                               \
    }                                                           \
    void Kind::Display(int, CGLWindow*, unsigned int) {}

CORE_CLASSINTERFACE_DEFAULTS(ccreateinterface)
CORE_CLASSINTERFACE_DEFAULTS(cmodifyinterface)
CORE_CLASSINTERFACE_DEFAULTS(cutilityinterface)
#undef CORE_CLASSINTERFACE_DEFAULTS

void ccreateinterface::Init() {}
void ccreateinterface::Done() {}
int ccreateinterface::CanCreateNew() {
    return 1;
}
int ccreateinterface::BeginDrag(CGLWindow*, int, int, float, float, float, float, float, float,
                                float, float, float) {
    return 0;
}
int ccreateinterface::Drag(CGLWindow*, int, int, int, int, float, float, float, float, float) {
    return 0;
}
int ccreateinterface::EndDrag(CGLWindow*, int, int, int, int, float, float, float, float, float) {
    return 0;
}
int ccreateinterface::DragIdle(CGLWindow*, int, int, int, int, float, float, float, float, float) {
    return 0;
}
int ccreateinterface::Stop(CGLWindow*, int, int, int, int, float, float, float, float, float) {
    return 0;
}
int ccreateinterface::DragIdleMouseCapture() {
    return 0;
}
void* ccreateinterface::GetHBitmap() {
    return nullptr;
}
void ccreateinterface::DeleteHBitmap(void*) {}

void cmodifyinterface::Init() {}
void cmodifyinterface::Done() {}
cgizmo* cmodifyinterface::GetGizmo() const {
    return nullptr;
}
void cmodifyinterface::GizmoTransformed() {}
int cmodifyinterface::UseApply() {
    return 1;
}
void cmodifyinterface::Update() {}
int cmodifyinterface::OwnUndo() {
    return 0;
}

int cutilityinterface::IsRunning() {
    return running;
}
int cutilityinterface::HandleMessage(unsigned long, unsigned long, unsigned long) {
    return 0;
}

// Importers and exporters share their layout and defaults.
#define CORE_FILEINTERFACE_DEFAULTS(Kind, Transfer) \
    const char* Kind::Name() {                      \
        return "";                                  \
    }                                               \
    const char* Kind::Ext(int) {                    \
        return "";                                  \
    }                                               \
    int Kind::NumExt() {                            \
        return 0;                                   \
    }                                               \
    int Kind::Transfer(const char*) {               \
        return 0;                                   \
    }

CORE_FILEINTERFACE_DEFAULTS(cimportinterface, Import)
CORE_FILEINTERFACE_DEFAULTS(cexportinterface, Export)
#undef CORE_FILEINTERFACE_DEFAULTS

const char* crenderinterface::Name() {
    return "";
}
int crenderinterface::Render() {
    return 0;
}

// ---- Registries ----

int RegisterInterface(ccreateinterface* tool) {
    return RegisterChecked(creators, tool);
}
int RegisterInterface(cmodifyinterface* tool) {
    return RegisterChecked(modifiers, tool);
}
int RegisterInterface(cutilityinterface* tool) {
    return RegisterChecked(utilities, tool);
}
// Intended: these three kinds take no null check; a null tool must not be passed.
void RegisterInterface(cimportinterface* tool) {
    importers.Insert(tool);
}
void RegisterInterface(cexportinterface* tool) {
    exporters.Insert(tool);
}
void RegisterInterface(crenderinterface* tool) {
    renderers.Insert(tool);
}

void UnregisterCreateInterfaces() {
    creators.Clear();
}
void UnregisterModifyInterfaces() {
    modifiers.Clear();
}
void UnregisterUtilityInterfaces() {
    utilities.Clear();
}
void UnregisterImportInterfaces() {
    importers.Clear();
}
void UnregisterExportInterfaces() {
    exporters.Clear();
}
void UnregisterRenderInterfaces() {
    renderers.Clear();
}

int GetNumCreateInterfaces() {
    return creators.Count();
}
int GetNumModifyInterfaces() {
    return modifiers.Count();
}
int GetNumUtilityInterfaces() {
    return utilities.Count();
}
int GetNumImportInterfaces() {
    return importers.Count();
}
int GetNumExportInterfaces() {
    return exporters.Count();
}
int GetNumRenderInterfaces() {
    return renderers.Count();
}

ccreateinterface* GetCreateInterface(int index) {
    return creators.At(index);
}
cmodifyinterface* GetModifyInterface(int index) {
    return modifiers.At(index);
}
cutilityinterface* GetUtilityInterface(int index) {
    return utilities.At(index);
}
cimportinterface* GetImportInterface(int index) {
    return importers.At(index);
}
cexportinterface* GetExportInterface(int index) {
    return exporters.At(index);
}
crenderinterface* GetRenderInterface(int index) {
    return renderers.At(index);
}

ccreateinterface* GetCreateInterfaceByName(const char* name) {
    if (!name || !*name) return nullptr;
    return creators.FindFirst([name](ccreateinterface* tool) {
        char const* own = tool->GetName();
        return own && std::strcmp(own, name) == 0;
    });
}

ccreateinterface* GetCreateInterfaceClass(unsigned type, unsigned subtype) {
    return creators.FindFirst([type, subtype](ccreateinterface* tool) {
        return tool->GetType() == type && tool->GetSubType() == subtype;
    });
}

void* CreateInterfaceCreate(unsigned type, unsigned subtype) {
    ccreateinterface* creator = GetCreateInterfaceClass(type, subtype);
    return creator ? creator->Create() : nullptr;
}

void SetActiveCreateInterface(ccreateinterface* tool) {
    activeCreator = tool;
}
ccreateinterface* GetActiveCreateInterface() {
    return activeCreator;
}
void SetActiveModifyInterface(cmodifyinterface* tool) {
    activeModifier = tool;
}
cmodifyinterface* GetActiveModifyInterface() {
    return activeModifier;
}

void SendUtilityMessage(unsigned long msg, unsigned long p1, unsigned long p2) {
    SendToUtilities([](cutilityinterface* utility) { return utility->IsRunning() != 0; }, msg, p1,
                    p2);
}
void SendUtilityMessageToAll(unsigned long msg, unsigned long p1, unsigned long p2) {
    SendToUtilities([](cutilityinterface*) { return true; }, msg, p1, p2);
}

unsigned long GetUtilityLastMessage() {
    return lastUtilityMessage.msg;
}
unsigned long GetUtilityLastParam1() {
    return lastUtilityMessage.param1;
}
unsigned long GetUtilityLastParam2() {
    return lastUtilityMessage.param2;
}
