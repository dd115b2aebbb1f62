// cnode: identity, hierarchy, the animated transform, notes and the base record.
#include "cnode.h"

#include <algorithm>
#include <cstring>

#include "animclock.h"
#include "ciofields.h"
#include "cmaterial.h"
#include "corearray.h"
#include "corerandom.h"
#include "ik.h"
#include "io/fieldcodec.h"
#include "mtllist.h"
#include "nodelist.h"
#include "projectheader.h"
#include "runtime/check.h"
#include "runtime/namefield.h"
#include "runtime/notestext.h"
#include "scene/recordconstruction.h"

namespace {

// The first record version with the IK block, and with the see-through switch.
constexpr unsigned long IK_VERSION = 7;
constexpr unsigned long SEE_THROUGH_VERSION = 15;

constexpr float IK_DEFAULT_DAMP_WIDTH = 10.0f;
constexpr float IK_DEFAULT_LIMIT = 180.0f;
constexpr int IK_DEFAULT_ITERATIONS = 100;
constexpr int IK_MAX_ITERATIONS = 200;
constexpr int IK_DEFAULT_RECURSE = 2;
constexpr int IK_MAX_RECURSE = 1000;

const cpoint3 UNIT_SCALE(1.0f, 1.0f, 1.0f);

// The record opens with the head (type and sub-type, then the node's, parent's and material's
// names) and goes on with the body, whose fixed fields end with the notes length. Each moves
// through the stream as one piece.
unsigned int RecordHeadBytes(unsigned long version) {
    return 8 + 3 * NameFieldSize(version);
}

unsigned int RecordBodyBytes(unsigned long version) {
    constexpr unsigned int kBase = 96, kIK = 64, kSeeThrough = 4, kNotesLength = 4;
    return kBase + (version >= IK_VERSION ? kIK : 0) +
           (version >= SEE_THROUGH_VERSION ? kSeeThrough : 0) + kNotesLength;
}

static_assert(NODE_NAME_SIZE == NAME_FIELD_BYTES, "node names use the shared name field");

// The colour of a node constructed without one: random r, g, b, opaque.
ccolor RandomColor() {
    // The first node of the process seeds the generator, so every run gets other colours.
    // Nodes may be constructed on several threads at once (a project's records are read in
    // parallel), and the seeding happens once among them all.
    static const bool seeded = [] {
        seedrandtime();
        return true;
    }();
    static_cast<void>(seeded);
    ccolor c;
    c.r = rand(0.0f, 1.0f);
    c.g = rand(0.0f, 1.0f);
    c.b = rand(0.0f, 1.0f);
    c.a = 1.0f;
    return c;
}

// A zero-terminated copy of `length` bytes (array_new), or null after reporting `what`.
static_assert(NODE_NOTES_MAX == NOTES_MAX_CHARS, "one notes limit for nodes and the scene");

// Allocation reports of the notes name this file.
void ReportCheck(bool ok, char const* what) {
    CORE_CHECK(ok, what);
}

// The local matrix Scale x Rotation x Translation of a key, and back. Decomposing takes the
// scale from the row lengths and the rotation from the orthonormalised rows.
cmatrix4 KeyMatrix(const ckey& key) {
    cmatrix4 m, r;
    m.FromScale(key.scale);
    MatrixFromQuat(key.rotation, r);
    m *= r;
    m.Translate(key.position);
    return m;
}

void SetKeyFromMatrix(ckey& key, const cmatrix4& m) {
    key.scale = GetScale(m);
    key.rotation = Normalize(QuatFromMatrix(RemoveScaling(m)));
    key.position = m.GetTrans();
}

// True when `node` is `ancestor` or lies below it.
bool IsWithin(const cnode* node, const cnode* ancestor) {
    for (; node; node = node->GetParent())
        if (node == ancestor) return true;
    return false;
}

}  // namespace

// ---------------------------------------------------------------------------------------------
// Construction and destruction

namespace {

thread_local bool constructingForRecord = false;

}  // namespace

RecordConstruction::RecordConstruction() : ThreadSetting(constructingForRecord, true) {}

bool RecordConstruction::Active() {
    return constructingForRecord;
}

// A node made for its record takes its colour from the record: it draws no random numbers.
cnode::cnode() {
    Init(nullptr, RecordConstruction::Active() ? ccolor() : RandomColor());
}

cnode::cnode(char const* name_) {
    Init(name_, RecordConstruction::Active() ? ccolor() : RandomColor());
}

cnode::cnode(char const* name_, const ccolor& color_) {
    Init(name_, color_);
}

void cnode::Init(char const* name_, const ccolor& color_) {
    typeID = static_cast<std::uint32_t>(TYPE_NODE);
    subTypeID = 0;
    StoreName(name, name_ ? name_ : "Node1");
    flags = 0;
    subLevel = 0;
    position = cpoint3();
    rotation = cquat();
    scale = UNIT_SCALE;
    color = color_;
    bbMin = bbMax = cpoint3();
    castShadow = receiveShadow = 1;
    parent = nullptr;
    children = nullptr;
    numChildren = 0;
    notes = nullptr;
    ResetIK();
    seeThrough = 0;
    // A node made for its record takes its keys from the record.
    if (!RecordConstruction::Active()) anim.SetKey(0, position, rotation, scale);
}

cnode::~cnode() {
    DetachAll(1);
    // The parent still lets go with its world transform kept, but the node's own keys die
    // with it: with the pointer already cleared, SetParent has nothing to convert them from.
    if (cnode* held = parent) {
        parent = nullptr;
        held->Detach(this, 1);
    }
    array_delete(notes);
}

void cnode::Delete() {
    delete this;
}

// ---------------------------------------------------------------------------------------------
// Identity and display state

void cnode::SetName(char const* name_) {
    StoreName(name, name_);
}

char* cnode::GetName() const {
    return const_cast<char*>(name);
}

void cnode::GetName(char* buffer) const {
    CopyNameOut(name, buffer);
}

unsigned long cnode::GetTypeID() const {
    return typeID;
}

unsigned long cnode::GetSubTypeID() const {
    return subTypeID;
}

void cnode::SetFlags(unsigned long flags_) {
    flags = static_cast<std::uint32_t>(flags_);
}

unsigned long cnode::GetFlags() const {
    return flags;
}

void cnode::SetSubLevel(int level) {
    subLevel = level;
}

int cnode::GetSubLevel() const {
    return subLevel;
}

void cnode::SetColor(const ccolor& color_) {
    color = color_;
}

ccolor cnode::GetColor() const {
    return color;
}

int cnode::GetBBox(int, cpoint3& min, cpoint3& max) {
    min = bbMin;
    max = bbMax;
    return 1;
}

int cnode::IsRenderable() const {
    return 0;
}

int cnode::ApplyUV(int, int, int, int, float, float, const cmatrix4&) {
    return 0;
}

int cnode::HandlesUVMapping() const {
    return 0;
}

cuniquemesh* cnode::GetRenderMesh(int) {
    return nullptr;
}

// ---------------------------------------------------------------------------------------------
// Hierarchy

void cnode::SetParent(const cnode* parent_, int keepWorld) {
    if (keepWorld && parent) {
        ForEachTransform([this](ckey& key) {
            key.position = PosFromParent(key.time, key.position);
            key.rotation = RotFromParent(key.time, key.rotation);
            key.scale = ScaleFromParent(key.time, key.scale);
        });
    }
    // The parent is stored to be told about its children later (Detach on destruction).
    parent = const_cast<cnode*>(parent_);
    if (keepWorld && parent) {
        ForEachTransform([this](ckey& key) {
            key.position = PosToParent(key.time, key.position);
            key.rotation = RotToParent(key.time, key.rotation);
            key.scale = ScaleToParent(key.time, key.scale);
        });
    }
}

cnode* cnode::GetParent() const {
    return parent;
}

void cnode::Attach(cnode* child, int notify) {
    if (!child || child == parent || child == this) return;
    if (GetChild(child) < 0) {
        auto** grown = static_cast<cnode**>(array_new(sizeof(cnode*) * (numChildren + 1)));
        CORE_CHECK(grown, "NCache");
        if (!grown) return;
        std::copy(children, children + numChildren, grown);
        grown[numChildren] = child;
        array_delete(children);
        children = grown;
        ++numChildren;
    }
    if (!notify) return;
    // A node lives in one children list: the old parent lets go first.
    cnode* old = child->GetParent();
    if (old && old != this) old->Detach(child, 0);
    child->SetParent(this, 1);
}

void cnode::Detach(int index, int notify) {
    if (index < 0 || index >= numChildren) return;
    if (notify) children[index]->SetParent(nullptr, 1);
    Remove(index);
}

void cnode::Detach(const cnode* child, int notify) {
    Detach(GetChild(child), notify);
}

void cnode::DetachAll(int notify) {
    if (notify)
        for (int i = 0; i < numChildren; ++i) children[i]->SetParent(nullptr, 1);
    array_delete(children);
    children = nullptr;
    numChildren = 0;
}

int cnode::GetChild(const cnode* child) const {
    const auto found = std::find(children, children + numChildren, child);
    return found == children + numChildren ? -1 : static_cast<int>(found - children);
}

cnode* cnode::GetChild(int index) const {
    return index >= 0 && index < numChildren ? children[index] : nullptr;
}

int cnode::NumChildren() const {
    return numChildren;
}

void cnode::Remove(int index) {
    if (index < 0 || index >= numChildren) return;
    std::copy(children + index + 1, children + numChildren, children + index);
    --numChildren;
    if (numChildren == 0) {
        array_delete(children);
        children = nullptr;
        return;
    }
    auto** shrunk = static_cast<cnode**>(array_new(sizeof(cnode*) * numChildren));
    CORE_CHECK(shrunk, "NCache");
    // Without a smaller block the old one keeps serving, one entry too long.
    if (!shrunk) return;
    std::copy(children, children + numChildren, shrunk);
    array_delete(children);
    children = shrunk;
}

void cnode::SetMaterial(cmaterial*) {}

cmaterial* cnode::GetMaterial() const {
    return nullptr;
}

void cnode::Clone(int time, cnode& target) const {
    target.SetName(name);
    target.SetColor(color);
    target.SetPosition(time, GetPosition(time));
    target.SetRotation(time, GetRotation(time));
    target.SetScale(time, GetScale(time));
    target.SetCastShadowFlag(castShadow);
    target.SetReceiveShadowFlag(receiveShadow);
    if (parent) parent->Attach(&target, 1);
    target.anim.Copy(anim);
    // The cache holds the pose at `time`; at any other current time it follows the copied track.
    if (time != GetAnimTime()) target.UpdateTimeIdle();
    target.ClearNotes();
    if (NotesSize() > 0) target.CopyNotes(notes, NotesSize());
    target.ikDOF = ikDOF;
    target.ikDamping = ikDamping;
    target.ikLocked = ikLocked;
    target.ikDampWidth = ikDampWidth;
    target.ikMinRot = ikMinRot;
    target.ikMaxRot = ikMaxRot;
    target.ikInitialRot = ikInitialRot;
    target.ikNumIterations = ikNumIterations;
    target.ikRecurseNum = ikRecurseNum;
    target.SetSeeThroughFlag(seeThrough);
}

// ---------------------------------------------------------------------------------------------
// Spaces

cpoint3 cnode::PosToParent(int time, const cpoint3& p) const {
    return parent ? p * Inverse(parent->GetNodeTM(time, TM_ALL)) : p;
}

cquat cnode::RotToParent(int time, const cquat& q) const {
    return parent ? Normalize(q * Inverse(parent->GetRotation(time))) : q;
}

cpoint3 cnode::ScaleToParent(int time, const cpoint3& s) const {
    return parent ? s / parent->GetScale(time) : s;
}

cpoint3 cnode::PosFromParent(int time, const cpoint3& p) const {
    return parent ? p * parent->GetNodeTM(time, TM_ALL) : p;
}

cquat cnode::RotFromParent(int time, const cquat& q) const {
    return parent ? q * parent->GetRotation(time) : q;
}

cpoint3 cnode::ScaleFromParent(int time, const cpoint3& s) const {
    return parent ? s * parent->GetScale(time) : s;
}

// ---------------------------------------------------------------------------------------------
// The animated transform

void cnode::CacheFromKey(const ckey& key) {
    position = key.position;
    rotation = key.rotation;
    scale = key.scale;
}

ckey cnode::KeyFromCache(int time) const {
    return ckey(time, position, rotation, scale);
}

ckey cnode::InterpolatedKey(int time) const {
    ckey key = KeyFromCache(time);
    anim.GetInterpolateKey(time, key);
    key.time = time;
    return key;
}

template <class F>
void cnode::ForEachTransform(F&& convert) {
    ckey cache = KeyFromCache(GetAnimTime());
    convert(cache);
    CacheFromKey(cache);
    for (int i = 0; i < anim.NumKeys(); ++i) {
        ckey key;
        const int found = anim.GetKeyAt(i, key);
        CORE_CHECK(found, "anim.GetKeyAt(i,key)");
        if (!found) continue;
        convert(key);
        anim.SetKeyAt(i, key, 1);
    }
}

template <class T>
void cnode::SetLocalComponent(int time, T ckey::*keyField, T cnode::*cacheField, const T& local) {
    if (time != GetAnimTime()) {
        ckey key = InterpolatedKey(time);
        key.*keyField = local;
        anim.SetKey(key);
        return;
    }
    this->*cacheField = local;
    if (IsAnimOn())
        anim.SetKey(KeyFromCache(time));
    else if (anim.NumKeys() < 2)
        anim.SetKey(KeyFromCache(0));
    // Intended: with animation off an animated node is posed only until the time changes.
}

void cnode::SetPosition(int time, const cpoint3& p) {
    SetLocalComponent(time, &ckey::position, &cnode::position, PosToParent(time, p));
}

void cnode::SetRotation(int time, const cquat& q) {
    SetLocalComponent(time, &ckey::rotation, &cnode::rotation, RotToParent(time, q));
}

void cnode::SetScale(int time, const cpoint3& s) {
    SetLocalComponent(time, &ckey::scale, &cnode::scale, ScaleToParent(time, s));
}

void cnode::SetNodeTM(int time, const cmatrix4& tm, int parts) {
    if (parts & TM_SCALE) SetScale(time, ::GetScale(tm));
    if (parts & TM_ROT) SetRotation(time, QuatFromMatrix(tm));
    if (parts & TM_POS) SetPosition(time, tm.GetTrans());
}

cpoint3 cnode::GetPosition(int time) const {
    const cpoint3 local = time == GetAnimTime() ? position : InterpolatedKey(time).position;
    return PosFromParent(time, local);
}

cquat cnode::GetRotation(int time) const {
    const cquat local = time == GetAnimTime() ? rotation : InterpolatedKey(time).rotation;
    return RotFromParent(time, local);
}

cpoint3 cnode::GetScale(int time) const {
    const cpoint3 local = time == GetAnimTime() ? scale : InterpolatedKey(time).scale;
    return ScaleFromParent(time, local);
}

cmatrix4 cnode::GetNodeTM(int time, int parts) const {
    cmatrix4 m;
    if (parts & TM_SCALE) m.FromScale(GetScale(time));
    if (parts & TM_ROT) {
        cmatrix4 r;
        MatrixFromQuat(GetRotation(time), r);
        m *= r;
    }
    if (parts & TM_POS) m.Translate(GetPosition(time));
    return m;
}

int cnode::HasKey(int time) const {
    return anim.KeyExists(time);
}

void cnode::UpdateTimeIdle() {
    ckey key;
    if (anim.GetInterpolateKey(GetAnimTime(), key)) CacheFromKey(key);
}

void cnode::SnapKey() {
    const int now = GetAnimTime();
    // Snapping the first key away from time 0 also pins the current pose at 0.
    if (anim.NumKeys() < 2 && now != 0) anim.SetKey(KeyFromCache(0));
    anim.SetKey(KeyFromCache(now));
}

void cnode::DeleteKey(int time) {
    // Intended: the key at time 0 is never removed.
    if (time == 0) return;
    anim.RemoveKey(time);
    UpdateTimeIdle();
}

// ---------------------------------------------------------------------------------------------
// Drawing and sub-object hooks: a plain node has no geometry and no elements.

void cnode::Flash(int, CGLWindow*) {}

void cnode::Render(int, CGLWindow*, unsigned int) {}

void cnode::SetCastShadowFlag(int on) {
    castShadow = on;
}

void cnode::SetReceiveShadowFlag(int on) {
    receiveShadow = on;
}

int cnode::GetCastShadowFlag() const {
    return castShadow;
}

int cnode::GetReceiveShadowFlag() const {
    return receiveShadow;
}

int cnode::GetElement(celement&, int, unsigned int) const {
    return 0;
}

int cnode::GetNumElements(unsigned int) const {
    return 0;
}

int cnode::GetNumSelElements(unsigned int) const {
    return 0;
}

int cnode::GetNumHiddenElements(unsigned int) const {
    return 0;
}

int cnode::GetSelElementsCenter(unsigned int, int, cpoint3&) const {
    return 0;
}

int cnode::SelectAll() {
    return 0;
}

int cnode::DeselectAll() {
    return 0;
}

int cnode::InvertSelection() {
    return 0;
}

void cnode::HideSelected() {}

void cnode::UnhideAll() {}

void cnode::DeleteSelected() {}

int cnode::PickElement(int, CGLWindow*, int, int, int, float) {
    return 0;
}

int cnode::PickElementRect(int, CGLWindow*, int, int, int, int, int) {
    return 0;
}

int cnode::PickElementCircle(int, CGLWindow*, int, int, int, int) {
    return 0;
}

int cnode::PickElementContour(int, CGLWindow*, cpoint3*, int, int) {
    return 0;
}

// ---------------------------------------------------------------------------------------------
// Editing

void cnode::Move(int time, const cpoint3& delta, int mode, int ikOn, int iterations,
                 float tolerance) {
    const cpoint3 target = GetPosition(time) + delta;
    if (ikOn && mode == 0 && parent)
        IK_ComputeCCD(time, target, this, iterations, tolerance);
    else
        SetPosition(time, target);
}

void cnode::Rotate(int time, const cquat& q, const cpoint3& center, int) {
    SetRotation(time, GetRotation(time) * q);
    SetPosition(time, center + (GetPosition(time) - center) * q);
}

void cnode::Scale(int time, const cpoint3& factors, const cpoint3& center, int) {
    if (!(factors.x > 0.0f && factors.y > 0.0f && factors.z > 0.0f)) return;
    SetScale(time, GetScale(time) * factors);
    SetPosition(time, center + (GetPosition(time) - center) * factors);
}

void cnode::Mirror(int, int, cmatrix4*) {}

// The node's box lies in its own space; testing it needs the viewport's projection, which a
// plain node does not draw into, so nothing is hit.
int cnode::HitTest(int, CGLWindow*, int, int, float*, float) {
    return 0;
}

int cnode::HitTestRect(int, CGLWindow*, int, int, int, int) {
    return 0;
}

int cnode::HitTestCircle(int, CGLWindow*, int, int, int) {
    return 0;
}

int cnode::HitTestContour(int, CGLWindow*, cpoint3*, int) {
    return 0;
}

void cnode::SetSeeThroughFlag(int on) {
    seeThrough = on;
}

int cnode::GetSeeThroughFlag() const {
    return seeThrough;
}

// ---------------------------------------------------------------------------------------------
// The base record

int cnode::Save(cio_save& out) const {
    const cmaterial* material = GetMaterial();
    const int length = NotesSize();
    const auto savedFlags = flags & ~static_cast<std::uint32_t>(FLAG_SELECTED | FLAG_DELETED);
    // Intended: the writes of the fixed fields and notes are not checked; the key track's write
    // is the result.
    WritePiece(out, RecordHeadBytes(PROJECT_MAX_VERSION), [&](FieldEncoder field) {
        field(typeID)(subTypeID).Name(name, NAME_FIELD_SIZE);
        field.Name(parent ? parent->GetName() : nullptr, NAME_FIELD_SIZE);
        field.Name(material ? material->GetName() : nullptr, NAME_FIELD_SIZE);
    });
    WritePiece(out, RecordBodyBytes(PROJECT_MAX_VERSION), [&](FieldEncoder field) {
        // The sub-object level is not kept: a loaded node starts at the object level.
        field(savedFlags)(0)(color)(bbMin)(bbMax)(position)(Normalize(rotation))(scale);
        field(castShadow)(receiveShadow);
        field(ikDOF)(ikDamping)(ikLocked)(ikDampWidth)(ikMinRot)(ikMaxRot)(ikInitialRot);
        field(ikNumIterations)(ikRecurseNum)(seeThrough)(length);
    });
    if (length > 0) out.Write(notes, static_cast<unsigned int>(length));
    return anim.Save(out);
}

int cnode::Load(cio_load& in, unsigned long version) {
    std::uint32_t recordType = 0;
    char read[NODE_NAME_SIZE] = {}, parentName[NODE_NAME_SIZE] = {},
         materialName[NODE_NAME_SIZE] = {};
    const unsigned int nameSize = NameFieldSize(version);
    // The constructing class fixes the type id; the record's copy only tells the host which
    // class to construct.
    if (!ReadPiece(in, RecordHeadBytes(version), [&](FieldDecoder field) {
            field(recordType)(subTypeID).Name(read, nameSize).Name(parentName, nameSize);
            field.Name(materialName, nameSize);
        }))
        return 0;
    StoreName(name, read);
    if (parentName[0]) {
        cnode* found = NodeList::FindNode(parentName);
        // A parent inside this node's own subtree would close a cycle.
        if (found && !IsWithin(found, this)) {
            parent = found;
            found->Attach(this, 0);
        }
    }
    if (materialName[0]) SetMaterial(MtlList::FindMaterial(materialName));

    int length = 0;
    if (!ReadPiece(in, RecordBodyBytes(version), [&](FieldDecoder field) {
            field(flags)(subLevel)(color)(bbMin)(bbMax)(position)(rotation)(scale);
            field(castShadow)(receiveShadow);
            if (version >= IK_VERSION) {
                field(ikDOF)(ikDamping)(ikLocked)(ikDampWidth)(ikMinRot)(ikMaxRot);
                field(ikInitialRot)(ikNumIterations)(ikRecurseNum);
            }
            if (version >= SEE_THROUGH_VERSION) field(seeThrough);
            field(length);
        }))
        return 0;
    if (version >= IK_VERSION) {
        SetIKNumIterations(ikNumIterations);
        SetIKRecurseNum(ikRecurseNum);
    }
    // Most nodes have no notes; asking the stream what it holds costs a call to the file system.
    if (length != 0 && !StreamHolds(in, length, 1)) return 0;
    if (length > 0) {
        ClearNotes();
        notes = NewNotesBuffer(length, "notes", ReportCheck);
        const auto bytes = static_cast<unsigned int>(length);
        if (!(notes ? in.Read(notes, bytes) : in.Skip(bytes))) return 0;
    }

    if (!anim.Load(in, version)) return 0;
    if (anim.NumKeys() == 0) anim.SetKey(0, cpoint3(), cquat(), UNIT_SCALE);
    rotation.Normalize();
    UpdateTimeIdle();
    return 1;
}

// ---------------------------------------------------------------------------------------------
// Notes

void cnode::ClearNotes() {
    ClearNotesText(notes);
}

void cnode::CopyNotes(char const* text, int length) {
    CopyNotesText(notes, text, length, ReportCheck);
}

void cnode::AddNotes(char const* text, int length) {
    AddNotesText(notes, text, length, ReportCheck);
}

char const* cnode::GetNotes() const {
    return notes;
}

int cnode::NotesSize() const {
    return NotesTextSize(notes);
}

// ---------------------------------------------------------------------------------------------
// Messages and materials

int cnode::HandleMessage(unsigned long msg, void* a, void* b) {
    if (msg == MSG_MTL_DELETED) {
        if (GetMaterial() != a) return 0;
        SetMaterial(nullptr);
        return 1;
    }
    if (msg == MSG_NODE_REPLACED) {
        if (!parent || parent != a) return 0;
        auto* replacement = static_cast<cnode*>(b);
        parent->Detach(this, 0);
        if (replacement) replacement->Attach(this, 0);
        SetParent(replacement, 0);
        return 1;
    }
    return 0;
}

int cnode::IsMaterialUsed(cmaterial* material) const {
    return GetMaterial() == material;
}

// ---------------------------------------------------------------------------------------------
// Pivot

cmatrix4 cnode::ResetPivotMatrix(int time, int parts) const {
    const cmatrix4 kept = GetNodeTM(time, TM_ALL & ~parts);
    return kept * Inverse(GetNodeTM(time, TM_ALL));
}

cmatrix4 cnode::ChangePivot(const cmatrix4& pivotChange) {
    const cmatrix4 geometry = Inverse(pivotChange);
    ForEachTransform(
        [&pivotChange](ckey& key) { SetKeyFromMatrix(key, pivotChange * KeyMatrix(key)); });
    for (int i = 0; i < numChildren; ++i)
        children[i]->ForEachTransform(
            [&geometry](ckey& key) { SetKeyFromMatrix(key, KeyMatrix(key) * geometry); });
    cpoint3 lo, hi;
    for (int corner = 0; corner < 8; ++corner) {
        const cpoint3 c(corner & 1 ? bbMax.x : bbMin.x, corner & 2 ? bbMax.y : bbMin.y,
                        corner & 4 ? bbMax.z : bbMin.z);
        const cpoint3 moved = c * geometry;
        for (int axis = 0; axis < 3; ++axis) {
            lo[axis] = corner ? std::min(lo[axis], moved[axis]) : moved[axis];
            hi[axis] = corner ? std::max(hi[axis], moved[axis]) : moved[axis];
        }
    }
    bbMin = lo;
    bbMax = hi;
    return geometry;
}

void cnode::ResetTransform(int time, int parts) {
    ChangePivot(ResetPivotMatrix(time, parts));
}

void cnode::CenterGeomToPivot(int) {}

void cnode::CenterPivotToGeom(int) {}

cmatrix4 cnode::CenterPivotToGeom(int time, const cpoint3& center) {
    cmatrix4 pivotChange;
    pivotChange.FromTranslation(center * Inverse(GetNodeTM(time, TM_ALL)));
    return ChangePivot(pivotChange);
}

// ---------------------------------------------------------------------------------------------
// Inverse-kinematics parameters

void cnode::ResetIK() {
    ikDOF = 0;
    ikDamping = 0;
    ikLocked = 0;
    ikDampWidth = IK_DEFAULT_DAMP_WIDTH;
    ikMinRot = cpoint3(-IK_DEFAULT_LIMIT, -IK_DEFAULT_LIMIT, -IK_DEFAULT_LIMIT);
    ikMaxRot = cpoint3(IK_DEFAULT_LIMIT, IK_DEFAULT_LIMIT, IK_DEFAULT_LIMIT);
    ikInitialRot = cquat();
    ikNumIterations = IK_DEFAULT_ITERATIONS;
    ikRecurseNum = IK_DEFAULT_RECURSE;
}

void cnode::CalcIKInitialRot(int time) {
    ikInitialRot = GetRotation(time);
    if (parent) ikInitialRot *= Inverse(parent->GetRotation(time));
}

void cnode::SetIKNumIterations(int n) {
    ikNumIterations = std::clamp(n, 1, IK_MAX_ITERATIONS);
}

void cnode::SetIKRecurseNum(int n) {
    ikRecurseNum = std::clamp(n, 1, IK_MAX_RECURSE);
}
