// The undo manager.
#include "undo.h"

#include <cstring>

#include "corearray.h"

UndoMgr theUndo;

// ---- UndoItem ----

UndoItem::~UndoItem() = default;

int UndoItem::Restore() {
    return 0;
}

void UndoItem::Destroy() {}

void UndoItem::Delete() {
    Destroy();
    delete this;
}

int UndoItem::Validate() {
    return 0;
}

// ---- UndoMgr ----

UndoMgr::UndoMgr() {
    Reallocate(maxLevels);
}

UndoMgr::~UndoMgr() {
    Clear();
}

void UndoMgr::Reallocate(int slots) {
    auto** grown = static_cast<UndoItem**>(array_new(sizeof(UndoItem*) * slots));
    array_assert(grown != nullptr);
    if (!grown) return;
    std::memset(grown, 0, sizeof(UndoItem*) * slots);
    if (count > slots) count = slots;
    for (int i = 0; i < count; ++i) grown[i] = levels[i];
    array_delete(levels);
    levels = grown;
    capacity = slots;
}

void UndoMgr::Drop(int index) {
    UndoItem* item = levels[index];
    for (int i = index; i + 1 < count; ++i) levels[i] = levels[i + 1];
    levels[--count] = nullptr;
    // Intended: Destroy runs here and once more inside Delete.
    item->Destroy();
    item->Delete();
}

int UndoMgr::Push(UndoItem* item) {
    if (count + 1 > maxLevels) Drop(0);
    if (count == capacity) {
        Reallocate(capacity ? capacity * 2 : 16);
        if (count == capacity) {
            item->Delete();
            return 0;
        }
    }
    levels[count++] = item;
    return 1;
}

int UndoMgr::Begin(unsigned long type, char* name) {
    UndoItem* item = CreateNewUndoItem(type, name);
    return item ? Push(item) : 0;
}

int UndoMgr::BeginGeneric(UndoItem* item) {
    return item ? Push(item) : 0;
}

int UndoMgr::End() {
    if (count == 0) return 0;
    if (levels[count - 1]->Validate()) return 1;
    Drop(count - 1);
    return 0;
}

int UndoMgr::Undo(int drop) {
    if (count == 0) return 0;
    const int restored = levels[count - 1]->Restore();
    if (drop) Drop(count - 1);
    return restored;
}

int UndoMgr::AbortLast() {
    if (count == 0) return 0;
    Drop(count - 1);
    return 1;
}

int UndoMgr::Abort(int index) {
    if (index < 0 || index >= count) return 0;
    Drop(index);
    return 1;
}

void UndoMgr::Clear() {
    for (int i = 0; i < count; ++i) {
        levels[i]->Destroy();
        levels[i]->Delete();
    }
    array_delete(levels);
    levels = nullptr;
    count = 0;
    capacity = 0;
}

int UndoMgr::SetMaxLevels(int n) {
    if (n < 1 || n > 50) return 0;
    while (count > n) Drop(0);
    maxLevels = n;
    Reallocate(n);
    return 1;
}

UndoItem* UndoMgr::GetLevel(int index) const {
    return index >= 0 && index < count ? levels[index] : nullptr;
}

char* UndoMgr::GetLevelName(int index) const {
    UndoItem* item = GetLevel(index);
    return item ? item->GetName() : nullptr;
}

int UndoMgr::GetLevelType(int index) const {
    UndoItem* item = GetLevel(index);
    return item ? item->GetType() : -1;
}

int UndoMgr::GetLevelTime(int index) const {
    UndoItem* item = GetLevel(index);
    return item ? item->GetTime() : -1;
}
