// The undo history: UndoItem, one level of it, and UndoMgr, the stack of levels.
//
// The host records every undoable edit as a level of theUndo: Begin(type, name) before the
// edit (the item made for the type captures what the edit will change), the edit, End() after
// it. Undo(1) puts the scene back as the newest level recorded it and discards that level.
// The history holds at most GetMaxLevels() levels (5 unless set, 1 to 50), oldest first; there
// is no redo. The type codes of the standard items are listed below and in docs/undo.md.
#ifndef ORVANE_UNDO_H
#define ORVANE_UNDO_H

#include "coreapi.h"

// Type codes of the standard undo items (CreateNewUndoItem). Each code has its own item
// class; the default level name is given after the code.
enum : unsigned long {
    UNDO_MOVE = 2,               // "Move": transforms and key tracks of the selected nodes
    UNDO_ROTATE = 3,             // "Rotate": the same
    UNDO_SCALE = 4,              // "Scale": the same
    UNDO_KEYS = 5,               // "Edit Keys": the same
    UNDO_RESETTRANSFORM = 6,     // "Reset Transform": selected nodes and their children
    UNDO_CREATE = 7,             // "Create": nodes added to the scene during the edit
    UNDO_DELETE = 8,             // "Delete": the selected nodes, taken out of the scene
    UNDO_SELECT = 9,             // "Select": selection and visibility of every node
    UNDO_HIDE = 10,              // "Hide": the same
    UNDO_UNHIDE = 11,            // "Unhide": the same
    UNDO_RENAME = 12,            // "Rename": names of every node
    UNDO_LINK = 13,              // "Link": hierarchy links and transforms of every node
    UNDO_UNLINK = 14,            // "Unlink": the same
    UNDO_ASSIGNMATERIAL = 15,    // "Assign Material": every node's material
    UNDO_EDITMATERIAL = 16,      // "Edit Material": every scene material's settings
    UNDO_DELETEMATERIAL = 17,    // "Delete Material": materials taken out of the scene
    UNDO_MODIFYELEMENTS = 18,    // "Modify Elements": arrays of the selected meshes
    UNDO_DELETEELEMENTS = 19,    // "Delete Elements": the same
    UNDO_MOVEELEMENTS = 20,      // "Move Elements": the same
    UNDO_ROTATEELEMENTS = 21,    // "Rotate Elements": the same
    UNDO_SCALEELEMENTS = 22,     // "Scale Elements": the same
    UNDO_SELECTELEMENTS = 23,    // "Select Elements": the same
    UNDO_LIGHTPARAMS = 24,       // "Light Parameters": fields and tracks of the selected lights
    UNDO_CAMERAPARAMS = 25,      // "Camera Parameters": fields and tracks of the selected cameras
    UNDO_CLONE = 26,             // "Clone": nodes added to the scene during the edit
    UNDO_SETKEYS = 27,           // "Set Keys": transforms and key tracks of every node
    UNDO_DELETEKEYS = 28,        // "Delete Keys": the same
    UNDO_OBJECTCOLOR = 29,       // "Object Color": wire colours of the selected nodes
    UNDO_OBJECTPROPERTIES = 30,  // "Object Properties": shadow and see-through switches of
                                 // the selected nodes
    UNDO_IKPARAMS = 31,          // "IK Parameters": every IK parameter of the selected nodes
    UNDO_NOTES = 32,             // "Edit Notes": the notes of the selected nodes
};

// One level of the history. Subclasses capture state when they are made and put it back in
// Restore.
class CORE_API UndoItem {
public:
    UndoItem() = default;
    UndoItem(const UndoItem&) = delete;
    UndoItem& operator=(const UndoItem&) = delete;

    // The virtual operations are declared in a fixed order (plug-in items depend on it).
    virtual ~UndoItem();
    // Puts back what the item captured; non-zero on success (base: 0).
    virtual int Restore();
    // Frees what the item captured. It may run more than once and must then do nothing.
    virtual void Destroy();
    // Calls Destroy(), then destroys and frees the item itself.
    virtual void Delete();
    // Non-zero when the item holds something to restore (base: 0).
    virtual int Validate();

    // The level's name: the pointer is kept, not the text, which must outlive the item.
    char* GetName() const { return name; }
    void SetName(char* text) { name = text; }
    // The undo type code (-1 until set).
    int GetType() const { return type; }
    void SetType(int code) { type = code; }
    // The animation time in ticks at which the level was recorded (-1 until set).
    int GetTime() const { return time; }
    void SetTime(int ticks) { time = ticks; }

private:
    char* name = nullptr;
    int type = -1;
    int time = -1;
};

class CORE_API UndoMgr {
public:
    // Depth 5, room for 5 levels.
    UndoMgr();
    // Clear(), then frees the array.
    ~UndoMgr();
    UndoMgr(const UndoMgr&) = delete;
    UndoMgr& operator=(const UndoMgr&) = delete;

    // Records a new level made by CreateNewUndoItem(type, name), dropping the oldest level
    // when the depth is reached. Returns 0 for a type without an item class, else 1.
    int Begin(unsigned long type, char* name);
    // Records `item` (owned from now on) as Begin does; 0 for null.
    int BeginGeneric(UndoItem* item);
    // Closes the newest level: kept (1) when its Validate() answers non-zero, dropped (0)
    // otherwise; 0 without levels.
    int End();
    // Restores the newest level and, with `drop` non-zero, discards it. Returns Restore()'s
    // answer, or 0 without levels.
    int Undo(int drop);
    // Discards the newest level / the level at `index` (0 = oldest) without restoring it.
    // 1 when a level was discarded.
    int AbortLast();
    int Abort(int index);
    // Discards every level, oldest first, and frees the array; the depth is kept.
    void Clear();
    // Sets the depth (1 to 50; 0 returned otherwise), discarding the oldest levels beyond it.
    int SetMaxLevels(int n);
    int GetMaxLevels() const { return maxLevels; }

    int NumLevels() const { return count; }
    // The level at `index` (0 = oldest), its name, type and time; null or -1 outside
    // 0 .. NumLevels() - 1.
    UndoItem* GetLevel(int index) const;
    char* GetLevelName(int index) const;
    int GetLevelType(int index) const;
    int GetLevelTime(int index) const;

private:
    // Takes the level at `index` out of the array, then Destroy() and Delete() on it.
    void Drop(int index);
    // Appends `item`, dropping the oldest level first when the depth is reached.
    int Push(UndoItem* item);
    // Replaces the array by one of `slots` zeroed slots holding the levels.
    void Reallocate(int slots);

    UndoItem** levels = nullptr;
    int count = 0;
    int capacity = 0;
    int maxLevels = 5;
};

// The application's undo history.
extern CORE_API UndoMgr theUndo;

// Makes the item of undo type code `type` (null for a code without an item class). A
// non-empty `name` replaces the class's default name; the type and the current animation
// time are stored in the item.
CORE_API UndoItem* CreateNewUndoItem(unsigned long type, char* name);

#endif
