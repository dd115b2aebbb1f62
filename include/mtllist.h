// MtlList: which scene material stands at a given index of the project file being loaded.
//
// The material counterpart of NodeList (see nodelist.h): ReadMaterialNames keeps the file's
// material name table; GetMaterialAt(i) then answers the scene material that bears the i-th
// name. Without a loaded table (or after Clear) every answer comes from MainScene. Every
// member is static, so a record's loader reaches it as MtlList::FindMaterial(name).
#ifndef ORVANE_MTLLIST_H
#define ORVANE_MTLLIST_H

#include "cio.h"
#include "coreapi.h"

class cmaterial;

class CORE_API MtlList {
public:
    MtlList() = delete;

    // Reads the material name table of the project file held by `in` and keeps it, with the
    // same checks and results as NodeList::ReadNodeNames; the report for a failed allocation
    // is "matnames". The stream position is restored afterwards.
    static int ReadMaterialNames(cio_load& in);
    // Forgets the loaded table; later answers come from MainScene.
    static void Clear();
    // 1 while a table is loaded.
    static int IsLoaded();

    // With a table: the scene material named like the table's i-th name (null for an index
    // outside the table or an unknown name). Without: MainScene.GetMaterialAt(i).
    static cmaterial* GetMaterialAt(int i);
    // The number of names in the table, or MainScene.NumMaterials() without one.
    static int NumMaterials();
    // The table's i-th name (zero-terminated, at most 63 characters), or null for an index
    // outside the table or without a table.
    static char const* GetNameAt(int i);
    // MainScene's material named `name`, or null.
    static cmaterial* FindMaterial(char const* name);
    // MainScene's index of `material`, or -1.
    static int Find(cmaterial* material);
};

#endif
