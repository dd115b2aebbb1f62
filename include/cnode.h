// cnode: the base class of every scene object (meshes, shapes, lights, cameras, bones, gizmos,
// skins).
//
// A node carries its identity (type id, subtype id, a name of at most 63 characters), display
// state (colour, flags, sub-object level), its place in the hierarchy (a non-owning parent
// pointer and an array of non-owning child pointers), its animated transform (a key track plus
// a cache of the transform at the current animation time), inverse-kinematics parameters,
// shadow and see-through switches and free-text notes.
//
// Spaces: the cache and the key track hold values relative to the parent; every public getter
// and setter of the transform takes and returns world values. Points are row vectors multiplied
// on the left of matrices; a node's matrix is Scale x Rotation x Translation with the
// translation in the fourth row; quaternion products compose left to right; angles are degrees.
#ifndef ORVANE_CNODE_H
#define ORVANE_CNODE_H

#include <cstdint>

#include "canim.h"
#include "ccolor.h"
#include "cio.h"
#include "cmatrix4.h"
#include "coreapi.h"
#include "cpoint.h"
#include "cquat.h"

class CGLWindow;
struct celement;
class cmaterial;
class cuniquemesh;

// Node type ids (GetTypeID), fixed by each class's constructor.
constexpr unsigned long TYPE_NODE = 1;
constexpr unsigned long TYPE_MESH = 2;
constexpr unsigned long TYPE_LIGHT = 3;
constexpr unsigned long TYPE_BONE = 4;
constexpr unsigned long TYPE_CAMERA = 5;
constexpr unsigned long TYPE_SKIN = 6;
constexpr unsigned long TYPE_SHAPE = 7;
constexpr unsigned long TYPE_GIZMO = 8;

// Node flags (GetFlags/SetFlags).
constexpr unsigned long FLAG_SELECTED = 0x1;
constexpr unsigned long FLAG_HIDDEN = 0x2;
constexpr unsigned long FLAG_DELETED = 0x4;

// The selection mode that asks the picking functions for a hit test only.
constexpr unsigned int SEL_ISHIT = 0xFFFFFFFFu;

// Transform parts for GetNodeTM and SetNodeTM.
constexpr int TM_POS = 1;
constexpr int TM_ROT = 2;
constexpr int TM_SCALE = 4;
constexpr int TM_ALL = TM_POS | TM_ROT | TM_SCALE;

// Node messages (HandleMessage): the arguments are the deleted node, the removed material, or
// the old node and the node that takes its place.
constexpr unsigned long MSG_NODE_DELETED = 1;
constexpr unsigned long MSG_MTL_DELETED = 2;
constexpr unsigned long MSG_NODE_REPLACED = 3;

// Sizes and limits of the node's fixed fields.
constexpr int NODE_NAME_SIZE = 64;
constexpr int NODE_NOTES_MAX = 8192;

class CORE_API cnode {
public:
    // A node named "Node1" (or `name`) with a random colour (or `color`); see the constructors'
    // definition for the full initial state.
    cnode();
    explicit cnode(char const* name);
    cnode(char const* name, const ccolor& color);

    cnode(const cnode&) = delete;
    cnode& operator=(const cnode&) = delete;

    // The virtual operations below are declared in a fixed order: host and plug-in modules
    // compiled against this header depend on the resulting table layout. New virtuals must not
    // be inserted, removed or reordered.

    // 1. Detaches every child (they keep their world transform), detaches itself from its
    // parent through the parent's Detach (its own keys, which die with it, are not converted),
    // frees the notes and the key track.
    virtual ~cnode();
    // 2. Destroys the object through its virtual destructor.
    virtual void Delete();
    // 3. Stores at most 63 characters of `name`; null is ignored.
    virtual void SetName(char const* name);
    // 4. The stored name (zero-terminated).
    virtual char* GetName() const;
    // 5. Copies the stored name with its terminator into `buffer` (64 bytes); null is ignored.
    virtual void GetName(char* buffer) const;
    // 6, 7. The type id (TYPE_*) and the subtype id.
    virtual unsigned long GetTypeID() const;
    virtual unsigned long GetSubTypeID() const;
    // 8 to 13. Flags (FLAG_*), sub-object level (0 = object level) and colour, stored as given.
    virtual void SetFlags(unsigned long flags);
    virtual unsigned long GetFlags() const;
    virtual void SetSubLevel(int level);
    virtual int GetSubLevel() const;
    virtual void SetColor(const ccolor& color);
    virtual ccolor GetColor() const;
    // 14. The local bounding box at `time` (node space). The base class copies the stored box
    // and ignores the time. Returns 1.
    virtual int GetBBox(int time, cpoint3& min, cpoint3& max);
    // 15. Non-zero for nodes the renderer draws (base: 0).
    virtual int IsRenderable() const;
    // 16. Applies a UV mapping to the node's geometry (base: 0, nothing to map).
    virtual int ApplyUV(int type, int axis, int channel, int flags, float tileU, float tileV,
                        const cmatrix4& tm);
    // 17. Non-zero for nodes that take UV mappings (base: 0).
    virtual int HandlesUVMapping() const;
    // 18. The mesh the renderer draws at `time` (base: null).
    virtual cuniquemesh* GetRenderMesh(int time);

    // 19. Replaces the parent pointer. With `keepWorld` non-zero the cache and every key are
    // converted so that the world transform stays as it was at every key time; with 0 the
    // local values are kept and the node follows its new parent. Children lists are untouched.
    virtual void SetParent(const cnode* parent, int keepWorld);
    // 20. The parent, or null for a root.
    virtual cnode* GetParent() const;
    // 21. Appends `child` unless it is null, this node, its parent or already a child; with
    // `notify` non-zero the child then leaves its old parent's list and SetParent(this, 1) keeps
    // its world transform.
    virtual void Attach(cnode* child, int notify);
    // 22. Removes the child at `index` (ignored when out of range); with `notify` non-zero the
    // child first becomes a root keeping its world transform.
    virtual void Detach(int index, int notify);
    // 23. Detach of the child's index; ignored for a node that is not a child.
    virtual void Detach(const cnode* child, int notify);
    // 24. Detaches every child as Detach(index, notify) does, then frees the array.
    virtual void DetachAll(int notify);
    // 25. The index of `child` among the children, or -1.
    virtual int GetChild(const cnode* child) const;
    // 26. The child at `index`, or null when out of range.
    virtual cnode* GetChild(int index) const;
    // 27. The number of children.
    virtual int NumChildren() const;
    // 28, 29. The node's material (base: ignored / null).
    virtual void SetMaterial(cmaterial* material);
    virtual cmaterial* GetMaterial() const;
    // 30. Copies name, colour, world transform at `time`, shadow switches, parent, the whole
    // key track, notes, IK parameters and the see-through switch into `target`. Flags, level
    // and material are not copied.
    virtual void Clone(int time, cnode& target) const;

    // 31 to 33. Set the world position, rotation or scale at `time`: off the current time a
    // key is written at `time`; at the current time the cache is written, and then a key at
    // `time` in animation mode, the key at time 0 when the track has fewer than 2 keys, or no
    // key at all (a temporary pose until the time changes).
    virtual void SetPosition(int time, const cpoint3& position);
    virtual void SetRotation(int time, const cquat& rotation);
    virtual void SetScale(int time, const cpoint3& scale);
    // 34. Sets the `parts` (TM_*) of the world matrix `tm`: scale, then rotation, then position.
    virtual void SetNodeTM(int time, const cmatrix4& tm, int parts);
    // 35 to 37. The world position, rotation or scale at `time`: from the cache at the current
    // animation time, from the interpolated key track otherwise.
    virtual cpoint3 GetPosition(int time) const;
    virtual cquat GetRotation(int time) const;
    virtual cpoint3 GetScale(int time) const;
    // 38. The world matrix Scale x Rotation x Translation at `time`, restricted to `parts`.
    virtual cmatrix4 GetNodeTM(int time, int parts = TM_ALL) const;
    // 39. Non-zero when the track holds a key at exactly `time`.
    virtual int HasKey(int time) const;
    // 40. Re-evaluates the cache from the key track at the current animation time.
    virtual void UpdateTimeIdle();
    // 41. Stores the cache as a key at the current time (and first at time 0 when the track
    // has fewer than 2 keys and the current time is not 0).
    virtual void SnapKey();
    // 42. Removes the key at `time` and re-evaluates; the key at time 0 is never removed.
    virtual void DeleteKey(int time);

    // 43, 44. Viewport highlight and drawing (base: nothing to draw).
    virtual void Flash(int mode, CGLWindow* window);
    virtual void Render(int mode, CGLWindow* window, unsigned int flags);
    // 45 to 48. Shadow switches (default 1), stored as given.
    virtual void SetCastShadowFlag(int on);
    virtual void SetReceiveShadowFlag(int on);
    virtual int GetCastShadowFlag() const;
    virtual int GetReceiveShadowFlag() const;

    // 49 to 63. Sub-object editing hooks at sub-object `level` (base: no elements; counts and
    // selections answer 0, hiding and deleting do nothing).
    virtual int GetElement(celement& element, int index, unsigned int level) const;
    virtual int GetNumElements(unsigned int level) const;
    virtual int GetNumSelElements(unsigned int level) const;
    virtual int GetNumHiddenElements(unsigned int level) const;
    virtual int GetSelElementsCenter(unsigned int level, int time, cpoint3& center) const;
    virtual int SelectAll();
    virtual int DeselectAll();
    virtual int InvertSelection();
    virtual void HideSelected();
    virtual void UnhideAll();
    virtual void DeleteSelected();
    virtual int PickElement(int time, CGLWindow* window, int x, int y, int flags, float tolerance);
    virtual int PickElementRect(int time, CGLWindow* window, int x0, int y0, int x1, int y1,
                                int flags);
    virtual int PickElementCircle(int time, CGLWindow* window, int x, int y, int radius, int flags);
    virtual int PickElementContour(int time, CGLWindow* window, cpoint3* contour, int count,
                                   int flags);

    // 64. Moves the node by the world vector `delta` at `time`. With `ikOn` non-zero, `mode` 0
    // and a parent, the move goes to the IK solver instead (IK_ComputeCCD(time, target, this,
    // iterations, tolerance), see ik.h); otherwise the node's position is set.
    virtual void Move(int time, const cpoint3& delta, int mode, int ikOn, int iterations,
                      float tolerance);
    // 65. Rotates by `rotation` (applied after the current one) and swings the position about
    // the world point `center`. `flag` is for derived classes.
    virtual void Rotate(int time, const cquat& rotation, const cpoint3& center, int flag);
    // 66. Scales by `factors` per component about the world point `center`; does nothing
    // unless every factor is greater than 0. `flag` is for derived classes.
    virtual void Scale(int time, const cpoint3& factors, const cpoint3& center, int flag);
    // 67. Mirrors sub-object elements (base: nothing to mirror).
    virtual void Mirror(int time, int axis, cmatrix4* tm);

    // 68 to 71. Hit tests of the node against a viewport point, rectangle, circle or contour.
    // The base class answers 0: a node without geometry has nothing to hit.
    virtual int HitTest(int time, CGLWindow* window, int x, int y, float* depth, float tolerance);
    virtual int HitTestRect(int time, CGLWindow* window, int x0, int y0, int x1, int y1);
    virtual int HitTestCircle(int time, CGLWindow* window, int x, int y, int radius);
    virtual int HitTestContour(int time, CGLWindow* window, cpoint3* contour, int count);

    // 72, 73. See-through display switch (default 0).
    virtual void SetSeeThroughFlag(int on);
    virtual int GetSeeThroughFlag() const;

    // 74. Reads the base record of a file of `version` (1 to 16). Returns 0 for a corrupt or
    // truncated record (the node then holds whatever was read), 1 otherwise.
    virtual int Load(cio_load& in, unsigned long version);
    // 75. Writes the base record in the newest layout; returns the key track's result.
    virtual int Save(cio_save& out) const;

    // 76 to 80. Free-text notes of at most 8192 characters.
    virtual void ClearNotes();
    // Replaces the notes by the first `length` (at most 8192) characters of `text`; ignored
    // for null or empty text or a length of 0 or less.
    virtual void CopyNotes(char const* text, int length);
    // Appends at most `length` characters of `text`, never past 8192 in all.
    virtual void AddNotes(char const* text, int length);
    // The notes, or null.
    virtual char const* GetNotes() const;
    // The notes' length in characters (0 with none).
    virtual int NotesSize() const;

    // 81. Reacts to a node message (MSG_*); returns 1 when the node changed.
    virtual int HandleMessage(unsigned long msg, void* a, void* b);
    // 82. Non-zero when the node uses `material` (base: GetMaterial() == material).
    virtual int IsMaterialUsed(cmaterial* material) const;
    // 83. Resets the world `parts` (TM_ROT, TM_SCALE, TM_POS) of the pivot at `time` to the
    // identity (world-aligned axes, unit scale, world origin) while the box and the children
    // stay where they are in the world. The same pivot change applies at every key, so the
    // animation relative to the pivot is kept.
    virtual void ResetTransform(int time, int parts);
    // 84. Moves the geometry so that its centre lies on the pivot (base: no geometry).
    virtual void CenterGeomToPivot(int time);
    // 85. Moves the pivot to the geometry's centre (base: no geometry). Derived classes that
    // override it see the non-virtual overload below hidden: add `using cnode::CenterPivotToGeom`.
    virtual void CenterPivotToGeom(int time);

    // Moves the pivot to the world point `center` (as placed at `time`) while the box and the
    // children stay where they are; the node's rotation and scale are kept. Returns the matrix
    // by which node-space geometry must be multiplied (row vectors) to stay in place.
    cmatrix4 CenterPivotToGeom(int time, const cpoint3& center);

    // The key track.
    canim* GetAnimPtr() { return &anim; }
    const canim* GetAnimPtr() const { return &anim; }

    // Inverse-kinematics parameters (see ik.h for their use).
    // Restores the defaults: no limits, no damping, unlocked, damping width 10, limits
    // (-180, -180, -180) to (180, 180, 180) degrees, identity initial rotation, 100 iterations,
    // recursion depth 2.
    void ResetIK();
    void EnableIKDOF(int on) { ikDOF = on; }
    int IsIKDOFEnabled() const { return ikDOF; }
    void EnableIKDamping(int on) { ikDamping = on; }
    int IsIKDampingEnabled() const { return ikDamping; }
    void LockIK(int on) { ikLocked = on; }
    int IsIKLocked() const { return ikLocked; }
    // The largest rotation of one solver step, in degrees.
    void SetIKDampWidth(float degrees) { ikDampWidth = degrees; }
    float GetIKDampWidth() const { return ikDampWidth; }
    // Euler angle limits relative to the parent, degrees, X then Y then Z.
    void SetIKMinRot(const cpoint3& degrees) { ikMinRot = degrees; }
    cpoint3 GetIKMinRot() const { return ikMinRot; }
    void SetIKMaxRot(const cpoint3& degrees) { ikMaxRot = degrees; }
    cpoint3 GetIKMaxRot() const { return ikMaxRot; }
    void SetIKInitialRot(const cquat& rotation) { ikInitialRot = rotation; }
    cquat GetIKInitialRot() const { return ikInitialRot; }
    // The initial rotation becomes the world rotation at `time` relative to the parent's.
    void CalcIKInitialRot(int time);
    // Kept within [1, 200].
    void SetIKNumIterations(int n);
    int GetIKNumIterations() const { return ikNumIterations; }
    // Kept within [1, 1000].
    void SetIKRecurseNum(int n);
    int GetIKRecurseNum() const { return ikRecurseNum; }

protected:
    // For derived constructors: the type id (TYPE_*) and the subtype id.
    void SetTypeID(unsigned long id) { typeID = static_cast<std::uint32_t>(id); }
    void SetSubTypeID(unsigned long id) { subTypeID = static_cast<std::uint32_t>(id); }

    // World <-> parent-space conversions at `time`; without a parent the value is unchanged.
    cpoint3 PosToParent(int time, const cpoint3& p) const;
    cquat RotToParent(int time, const cquat& q) const;
    cpoint3 ScaleToParent(int time, const cpoint3& s) const;
    cpoint3 PosFromParent(int time, const cpoint3& p) const;
    cquat RotFromParent(int time, const cquat& q) const;
    cpoint3 ScaleFromParent(int time, const cpoint3& s) const;

    // Removes the child entry at `index` without telling the child.
    void Remove(int index);

    // The pivot change that ResetTransform(time, parts) applies: the matrix D with new world
    // matrix = D x old world matrix at `time`.
    cmatrix4 ResetPivotMatrix(int time, int parts) const;
    // Applies the pivot change D (node space, row vectors): the cache and every key become
    // D x local, each child's cache and keys become local x Inverse(D), and the stored box is
    // replaced by the bounds of its corners times Inverse(D). Returns Inverse(D), the matrix
    // derived classes apply to their own node-space geometry.
    cmatrix4 ChangePivot(const cmatrix4& pivotChange);

    // Fields, in their fixed order.
    std::uint32_t typeID;
    std::uint32_t subTypeID;
    char name[NODE_NAME_SIZE];
    std::uint32_t flags;
    int subLevel;
    cpoint3 position;  // cache at the current time, parent space
    cquat rotation;
    cpoint3 scale;
    ccolor color;
    cpoint3 bbMin;  // local box, node space
    cpoint3 bbMax;
    canim anim;
    int castShadow;
    int receiveShadow;
    cnode* parent;
    cnode** children;  // exactly numChildren entries, null when empty
    int numChildren;
    char* notes;  // zero-terminated, or null
    int ikDOF;
    int ikDamping;
    int ikLocked;
    float ikDampWidth;
    cpoint3 ikMinRot;
    cpoint3 ikMaxRot;
    cquat ikInitialRot;
    int ikNumIterations;
    int ikRecurseNum;
    int seeThrough;

private:
    void Init(char const* name, const ccolor& color);
    // Stores `key`'s position, rotation and scale into the cache, or takes them from it.
    void CacheFromKey(const ckey& key);
    ckey KeyFromCache(int time) const;
    // The track interpolated at `time`, or the cache when the track cannot answer.
    ckey InterpolatedKey(int time) const;
    // Applies `convert` to the cache (as a key at the current time) and to every key.
    template <class F>
    void ForEachTransform(F&& convert);
    // Writes one parent-space transform component at `time` under the setters' key rules.
    template <class T>
    void SetLocalComponent(int time, T ckey::*keyField, T cnode::*cacheField, const T& local);
};

#endif
