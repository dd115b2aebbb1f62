// MtlList: the material name table of the project file being loaded.
#include "mtllist.h"

#include "cscene.h"
#include "runtime/check.h"
#include "scene/loadingnodes.h"
#include "scene/nametable.h"

namespace {

NameTable& Table() {
    static NameTable table;
    return table;
}

const NameIndex*& LoadingMaterials() {
    static const NameIndex* names = nullptr;
    return names;
}

cmaterial* FindByName(char const* name) {
    if (const NameIndex* names = LoadingMaterials()) {
        const int i = names->Find(name);
        return i < 0 ? nullptr : MainScene.GetMaterialAt(i);
    }
    return MainScene.FindMaterial(name);
}

char* AllocateMaterialNames(unsigned long bytes) {
    char* names = static_cast<char*>(array_new(bytes));
    CORE_CHECK(names != nullptr, "matnames");
    return names;
}

}  // namespace

void SetLoadingMaterials(const NameIndex* names) {
    LoadingMaterials() = names;
}

int MtlList::ReadMaterialNames(cio_load& in) {
    return Table().Read(in, PROJECT_MATERIAL_TABLE_OFFSET_AT, PROJECT_MATERIAL_COUNT_AT,
                        AllocateMaterialNames);
}

void MtlList::Clear() {
    Table().Clear();
}

int MtlList::IsLoaded() {
    return Table().Loaded() ? 1 : 0;
}

cmaterial* MtlList::GetMaterialAt(int i) {
    if (!Table().Loaded()) return MainScene.GetMaterialAt(i);
    char const* name = Table().NameAt(i);
    return name ? FindByName(name) : nullptr;
}

int MtlList::NumMaterials() {
    return Table().Loaded() ? Table().Count() : MainScene.NumMaterials();
}

char const* MtlList::GetNameAt(int i) {
    return Table().NameAt(i);
}

cmaterial* MtlList::FindMaterial(char const* name) {
    return name ? FindByName(name) : nullptr;
}

int MtlList::Find(cmaterial* material) {
    return MainScene.Find(material);
}
