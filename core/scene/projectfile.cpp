// The project file: MainScene, its settings and the animation clock, written and read whole.
//
// It lives with the scene rather than with the streams because it creates nodes and fills
// MainScene; the byte layout is in docs/file-format.md.
#include "projectfile.h"

#include <climits>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <new>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "animclock.h"
#include "cbitarray.h"
#include "ccamera.h"
#include "ccolor.h"
#include "cio.h"
#include "ciofields.h"
#include "clight.h"
#include "cmaterial.h"
#include "cmesh.h"
#include "cnode.h"
#include "cpoint.h"
#include "cscene.h"
#include "cskin.h"
#include "io/cioblock.h"
#include "io/fieldcodec.h"
#include "mtllist.h"
#include "nodelist.h"
#include "runtime/flatmap.h"
#include "runtime/prefetch.h"
#include "scene/loadingnodes.h"

// Lets the loader hand the nodes it has just created to MainScene without the scene looking
// for each of them among its own first.
struct LoadedNodesHandOver {
    static void Add(cnode** nodes, int count) { MainScene.AddNewNodes(nodes, count); }
};

namespace {

// ---- The header ----

// A stretch of the file, in bytes from the start.
struct Section {
    std::uint32_t offset = 0;
    std::uint32_t size = 0;
    long long End() const { return static_cast<long long>(offset) + size; }
};

// The header's words after the magic. The clock words hold signed values.
struct Header {
    std::uint32_t version = 0;
    std::uint32_t nodeTable = 0, numNodes = 0;
    std::uint32_t materialTable = 0, numMaterials = 0;
    Section settings, materials, nodes;
    std::uint32_t animStart = 0, animEnd = 0, animTime = 0, animTPF = 0;
};

// Every header word with its offset: the one list that reading and writing share.
template <class Visit>
void ForEachHeaderWord(Header& h, Visit visit) {
    visit(PROJECT_VERSION_AT, h.version);
    visit(PROJECT_NODE_TABLE_OFFSET_AT, h.nodeTable);
    visit(PROJECT_NODE_COUNT_AT, h.numNodes);
    visit(PROJECT_MATERIAL_TABLE_OFFSET_AT, h.materialTable);
    visit(PROJECT_MATERIAL_COUNT_AT, h.numMaterials);
    visit(PROJECT_SETTINGS_OFFSET_AT, h.settings.offset);
    visit(PROJECT_SETTINGS_SIZE_AT, h.settings.size);
    visit(PROJECT_MATERIAL_RECORDS_OFFSET_AT, h.materials.offset);
    visit(PROJECT_MATERIAL_RECORDS_SIZE_AT, h.materials.size);
    visit(PROJECT_NODE_RECORDS_OFFSET_AT, h.nodes.offset);
    visit(PROJECT_NODE_RECORDS_SIZE_AT, h.nodes.size);
    visit(PROJECT_ANIM_START_AT, h.animStart);
    visit(PROJECT_ANIM_END_AT, h.animEnd);
    visit(PROJECT_ANIM_TIME_AT, h.animTime);
    visit(PROJECT_ANIM_TPF_AT, h.animTPF);
}

int Signed(std::uint32_t word) {
    return static_cast<std::int32_t>(word);
}

int SectionInside(const Section& section, long long fileSize) {
    return section.offset >= PROJECT_HEADER_SIZE && section.End() <= fileSize;
}

// A name table: its count word, then 64 bytes per name.
int TableInside(std::uint32_t offset, std::uint32_t count, long long fileSize) {
    const long long end = static_cast<long long>(offset) + 4 +
                          static_cast<long long>(count) * PROJECT_TABLE_NAME_SIZE;
    return offset >= PROJECT_HEADER_SIZE && count <= INT_MAX / PROJECT_TABLE_NAME_SIZE &&
           end <= fileSize;
}

// Reads and checks the header: the magic, a version from 1 to 16, and every table and section
// inside the file.
int ReadHeader(cio_load& in, Header& header) {
    unsigned char bytes[PROJECT_HEADER_SIZE];
    if (in.SetPosition(0, 0) != 0 || !in.Read(bytes, sizeof bytes)) return 0;
    if (std::memcmp(bytes, PROJECT_MAGIC, sizeof PROJECT_MAGIC) != 0) return 0;
    ForEachHeaderWord(header, [&bytes](unsigned int at, std::uint32_t& word) {
        word = bytes[at] | bytes[at + 1] << 8 | bytes[at + 2] << 16 |
               static_cast<std::uint32_t>(bytes[at + 3]) << 24;
    });
    const long long size = in.Size();
    return header.version >= 1 && header.version <= PROJECT_MAX_VERSION &&
           TableInside(header.nodeTable, header.numNodes, size) &&
           TableInside(header.materialTable, header.numMaterials, size) &&
           SectionInside(header.settings, size) && SectionInside(header.materials, size) &&
           SectionInside(header.nodes, size);
}

int WriteHeader(cio_save& out, Header header) {
    unsigned char bytes[PROJECT_HEADER_SIZE] = {};
    std::memcpy(bytes, PROJECT_MAGIC, sizeof PROJECT_MAGIC);
    ForEachHeaderWord(header, [&bytes](unsigned int at, std::uint32_t word) {
        for (unsigned int b = 0; b < 4; ++b) bytes[at + b] = (word >> (8 * b)) & 0xFF;
    });
    return out.SetPosition(0, 0) == 0 && out.Write(bytes, sizeof bytes);
}

// ---- The scene settings record ----

struct SceneSettings {
    ccolor ambient, background;
    int fog = 0;
    cpoint3 fogColor;
    float fogStart = 0.0f, fogEnd = 1.0f, fogDensity = 1.0f;
    std::string notes;
};

// The record's fields in file order, each handed to `field`: one list for both directions.
template <class Field>
int ForEachSetting(SceneSettings& s, Field field) {
    return field(s.ambient) && field(s.background) && field(s.fog) && field(s.fogColor) &&
           field(s.fogStart) && field(s.fogEnd) && field(s.fogDensity) && field(s.notes);
}

// One field through the stream helper of its type.
struct ReadField {
    cio_load& in;
    int operator()(ccolor& v) const { return ReadColor(in, v); }
    int operator()(cpoint3& v) const { return ReadPoint3(in, v); }
    int operator()(float& v) const { return ReadFloat(in, v); }
    int operator()(int& v) const { return ReadInt32(in, v); }
    int operator()(std::string& v) const { return ReadText(in, v); }
};
struct WriteField {
    cio_save& out;
    int operator()(const ccolor& v) const { return WriteColor(out, v); }
    int operator()(const cpoint3& v) const { return WritePoint3(out, v); }
    int operator()(float v) const { return WriteFloat(out, v); }
    int operator()(int v) const { return WriteInt32(out, v); }
    int operator()(const std::string& v) const { return WriteText(out, v); }
};

SceneSettings SettingsOf(const cscene& scene) {
    SceneSettings s;
    s.ambient = scene.GetAmbient();
    s.background = scene.GetBkColor();
    s.fog = scene.IsFogEnabled();
    scene.GetFogValues(s.fogColor, s.fogStart, s.fogEnd, s.fogDensity);
    if (scene.GetNotes()) s.notes.assign(scene.GetNotes(), scene.NotesSize());
    return s;
}

void ApplySettings(const SceneSettings& s, cscene& scene) {
    scene.SetAmbient(s.ambient);
    scene.SetBkColor(s.background);
    scene.EnableFog(s.fog);
    scene.SetFogValues(s.fogColor, s.fogStart, s.fogEnd, s.fogDensity);
    scene.ClearNotes();
    scene.CopyNotes(s.notes.data(), static_cast<int>(s.notes.size()));
    // The file holds no background image: the old project's must not stay behind.
    scene.ClearBkImage();
}

// Fields added later are appended: a record longer than this reader knows is read as far as
// it knows, and a shorter one is corrupt.
int ReadSettings(cio_load& in, const Section& section, SceneSettings& settings) {
    return in.SetPosition(section.offset, 0) == 0 && ForEachSetting(settings, ReadField{in}) &&
           in.GetPosition() <= section.End();
}

// ---- Writing helpers ----

// The stream's position as a 32-bit file offset; 0 past 4 GiB.
int PositionWord(const cio& io, std::uint32_t& word) {
    const long position = io.GetPosition();
    if (position < 0 || static_cast<unsigned long>(position) > UINT32_MAX) return 0;
    word = static_cast<std::uint32_t>(position);
    return 1;
}

// Runs `write` and records where its bytes went.
template <class Write>
int WriteSection(cio_save& out, Section& section, Write write) {
    std::uint32_t end = 0;
    if (!PositionWord(out, section.offset) || !write() || !PositionWord(out, end)) return 0;
    section.size = end - section.offset;
    return 1;
}

// Runs `write` behind a 32-bit word that receives the byte length of what it wrote.
template <class Write>
int WriteSized(cio_save& out, Write write) {
    Section record;
    const long lengthAt = out.GetPosition();
    if (!WriteUInt32(out, 0) || !WriteSection(out, record, write)) return 0;
    return out.SetPosition(lengthAt, 0) == 0 && WriteUInt32(out, record.size) &&
           out.SetPosition(static_cast<long>(record.End()), 0) == 0;
}

// A name table: the count, then one 64-byte field per name of the items `itemAt` gives. A
// scene's nodes have long left the cache, so the start of each (where a node keeps its name)
// is asked for a few items ahead of its turn.
template <class ItemAt>
int WriteNameTable(cio_save& out, int count, ItemAt itemAt) {
    constexpr unsigned long kStart = 128;
    if (!WriteUInt32(out, static_cast<std::uint32_t>(count))) return 0;
    for (int i = 0; i < count; ++i) {
        if (i + kPrefetchAhead < count) PrefetchBytes(itemAt(i + kPrefetchAhead), kStart);
        if (!WriteName(out, itemAt(i)->GetName(), PROJECT_TABLE_NAME_SIZE)) return 0;
    }
    return 1;
}

// ---- Material records ----

// The material's own record. It is framed by its byte length (WriteSized), so that readers
// skip fields a later writer appends.
int WriteMaterialRecord(cio_save& out, const cmaterial& material) {
    return material.Save(out);
}

// A record that reads past its frame is corrupt.
cmaterial* ReadMaterialRecord(cio_load& in, unsigned long version, std::uint32_t length) {
    const long long end = in.GetPosition() + static_cast<long long>(length);
    auto* material = new (std::nothrow) cmaterial();
    if (!material) return nullptr;
    if (!material->Load(in, version) || in.GetPosition() > end) {
        material->Delete();
        return nullptr;
    }
    return material;
}

// ---- Node records ----

// Creates the node that a record of `type` and `subType` loads into, or null for a type the
// library cannot create. Each node kind adds its case here.
cnode* CreateNodeForRecord(std::uint32_t type, [[maybe_unused]] std::uint32_t subType) {
    switch (type) {
        case TYPE_NODE:
            // A plain node has no variants: its record carries the sub-type as it is.
            return new (std::nothrow) cnode("", ccolor());
        case TYPE_MESH:
            // Meshes have no variants; the record fills the arrays.
            return CreateNewMesh();
        case TYPE_LIGHT: {
            // Point, spot and directional lights are one class told apart by the sub-type.
            clight* light = CreateNewLight();
            if (light) light->SetLightType(subType);
            return light;
        }
        case TYPE_CAMERA:
            return CreateNewCamera();
        case TYPE_SKIN:
            // A skin's record links its bones by name, resolved once every record is read.
            return CreateNewSkin();
        default:
            return nullptr;
    }
}

// Whether a node of `type` is posed again once every node is loaded. A node's Load poses it
// at the current time as its base record ends; lights, cameras and skins go on to read what
// their UpdateTimeIdle also uses (keyed parameters, bones), so they are posed once more.
bool PosedAfterLoading(std::uint32_t type) {
    return type == TYPE_LIGHT || type == TYPE_CAMERA || type == TYPE_SKIN;
}

// A node record's framing words (type and sub-type), and from the start of the record they
// frame its own copy of them, the node's name and its parent's name.
struct RecordFrame {
    std::uint32_t type = 0, subType = 0;
    std::uint32_t recordType = 0, recordSubType = 0;
    char name[NAME_FIELD_SIZE] = {};
    char parent[NAME_FIELD_SIZE] = {};
};

// Reads the framing words and looks at the start of the record without consuming it.
int ReadRecordFrame(cio_load& in, unsigned long version, RecordFrame& frame) {
    const unsigned int nameSize = NameFieldSize(version);
    const unsigned char* at = CioBlock::Peek(in, 16 + 2 * nameSize);
    if (!at) return 0;
    FieldDecoder field{at};
    field(frame.type)(frame.subType)(frame.recordType)(frame.recordSubType);
    field.Name(frame.name, nameSize).Name(frame.parent, nameSize);
    return CioBlock::Take(in, 8) != nullptr;
}

// ---- Loading ----

// A table name as a record of `version` holds it: record names below version 13 keep 31
// characters, while the tables always have 64-byte fields.
// The view lives as long as the table.
std::string_view RecordName(char const* tableName, unsigned long version) {
    const std::string_view name(tableName ? tableName : "");
    return name.substr(0, NameFieldSize(version) - 1);
}

// Loaded items on their way into MainScene. They are handed over all at once, so that the
// scene's array grows once instead of once per item; whatever MainScene has not taken is
// destroyed with this, from the last loaded to the first (children before parents, as
// ClearNodes goes).
template <class T>
class Pending {
public:
    explicit Pending(std::vector<T*>& items) : items(items) {}
    ~Pending() {
        for (auto item = items.rbegin(); item != items.rend(); ++item) (*item)->Delete();
    }
    Pending(const Pending&) = delete;
    Pending& operator=(const Pending&) = delete;

    // Hands the items to MainScene through `addArray` (which keeps their names) and answers 1
    // when it took them all. Only running out of memory makes it take fewer; those stay here.
    template <class AddArray, class Count, class At>
    int HandOver(AddArray addArray, Count count, At at) {
        const int before = count();
        addArray(items.data(), static_cast<int>(items.size()));
        const auto added = static_cast<size_t>(count() - before);
        if (added != items.size()) {
            FlatSet<const T*> taken;
            for (int i = before; i < count(); ++i) taken.Insert(at(i));
            std::vector<T*> left;
            for (T* item : items)
                if (!taken.Contains(item)) left.push_back(item);
            items.swap(left);
            return 0;
        }
        items.clear();
        return 1;
    }

private:
    std::vector<T*>& items;
};

// The loaded nodes, which NodeList consults instead of MainScene until they are handed over.
class PendingNodes {
public:
    // `expected` only sizes the tables.
    explicit PendingNodes(size_t expected) : loading(expected) { SetLoadingNodes(&loading); }
    ~PendingNodes() { SetLoadingNodes(nullptr); }
    PendingNodes(const PendingNodes&) = delete;
    PendingNodes& operator=(const PendingNodes&) = delete;

    void Expect(std::string_view name) const { loading.Expect(name); }
    void Add(cnode* node, bool posedAgain) {
        loading.Add(node);
        poseAgain.push_back(posedAgain);
    }
    void ResolvePendingLinks() { loading.ResolvePendingLinks(); }
    // Whether the node at load position `i` poses itself again once every node is loaded.
    bool PosedAgain(int i) const { return poseAgain[static_cast<size_t>(i)]; }
    // Records come parents first; the scene takes the table's order back. Each table name
    // claims the earliest loaded node of that name not yet claimed, so repeated names pair up
    // too. `order` receives the load position of each table entry.
    bool TableOrder(unsigned long version, cbitarray& order) const {
        return loading.TableOrder(
            NodeList::NumNodes(),
            [version](int k) { return RecordName(NodeList::GetNameAt(k), version); }, order);
    }
    // Hands every node to the empty MainScene, in load order.
    int HandOver() {
        SetLoadingNodes(nullptr);
        return owner.HandOver(
            LoadedNodesHandOver::Add, [] { return MainScene.NumNodes(); },
            [](int i) { return MainScene.GetNodeAt(i); });
    }

private:
    LoadingNodes loading;
    Pending<cnode> owner{loading.nodes};
    std::vector<bool> poseAgain;
};

// Views into NodeList's table, which stays loaded while the records are read.
FlatSet<std::string_view> TableNodeNames(unsigned long version) {
    FlatSet<std::string_view> names(static_cast<size_t>(NodeList::NumNodes()));
    for (int i = 0; i < NodeList::NumNodes(); ++i)
        names.Insert(RecordName(NodeList::GetNameAt(i), version));
    return names;
}

// What reading the records needs besides the header.
struct Loading {
    Loading(cio_load& in, const Header& header) : in(in), header(header), nodes(header.numNodes) {}

    cio_load& in;
    const Header& header;
    PendingNodes nodes;

    // Whether the file's node table holds `name`. The set is made on the first question, which
    // only a parent not yet loaded raises: a sound file never asks.
    bool TableHolds(std::string_view name) {
        if (!tableNodeNames) tableNodeNames = TableNodeNames(header.version);
        return tableNodeNames->Contains(name);
    }

private:
    std::optional<FlatSet<std::string_view>> tableNodeNames;
};

// The i-th material record: its length word, then the record, which must bear the table's
// i-th name.
int LoadMaterialRecord(Loading& loading, std::uint32_t i, std::vector<cmaterial*>& loaded) {
    cio_load& in = loading.in;
    std::uint32_t length = 0;
    if (!ReadUInt32(in, length)) return 0;
    const long long end = in.GetPosition() + static_cast<long long>(length);
    if (end > loading.header.materials.End()) return 0;
    cmaterial* material = ReadMaterialRecord(in, loading.header.version, length);
    if (!material) return 0;
    loaded.push_back(material);
    return RecordName(MtlList::GetNameAt(static_cast<int>(i)), loading.header.version) ==
               material->GetName() &&
           in.SetPosition(static_cast<long>(end), 0) == 0;
}

// The materials join MainScene together once all are read, before the node records that
// look them up by name.
int LoadMaterials(Loading& loading) {
    const Section& section = loading.header.materials;
    if (loading.in.SetPosition(section.offset, 0) != 0) return 0;
    std::vector<cmaterial*> loaded;
    Pending<cmaterial> pending(loaded);
    for (std::uint32_t i = 0; i < loading.header.numMaterials; ++i)
        if (!LoadMaterialRecord(loading, i, loaded)) return 0;
    return loading.in.GetPosition() == section.End() &&
           pending.HandOver(
               [](cmaterial** materials, int n) { MainScene.AddMaterialArray(materials, n, 1); },
               [] { return MainScene.NumMaterials(); },
               [](int i) { return MainScene.GetMaterialAt(i); });
}

// One node record: the type and sub-type words, then the node's own record, which repeats
// them. The node joins the loaded nodes at once, so that the records after it find it as a
// parent through NodeList.
int LoadNodeRecord(Loading& loading) {
    cio_load& in = loading.in;
    RecordFrame frame;
    if (!ReadRecordFrame(in, loading.header.version, frame) || frame.recordType != frame.type ||
        frame.recordSubType != frame.subType)
        return 0;
    // The node joins the loaded nodes once its record is read, and its parent is looked up
    // after the node is made: both waits for memory hide behind that work.
    loading.nodes.Expect(frame.name);
    if (frame.parent[0]) loading.nodes.Expect(frame.parent);
    cnode* node = CreateNodeForRecord(frame.type, frame.subType);
    if (!node) return 0;
    // Parents are written first: a parent that the table names but no earlier record gave is
    // a later record, which only a damaged file or a parent cycle produces. A parent the
    // table does not name is left unresolved, and the node stays a root.
    const bool parentLater =
        frame.parent[0] && !NodeList::FindNode(frame.parent) && loading.TableHolds(frame.parent);
    if (parentLater || !node->Load(in, loading.header.version)) {
        node->Delete();
        return 0;
    }
    loading.nodes.Add(node, PosedAfterLoading(frame.type));
    return in.GetPosition() <= loading.header.nodes.End();
}

// The names of MainScene's materials (the loaded ones), which MtlList consults while the node
// records load so that each record's material is found without a scan.
class MaterialIndex {
public:
    MaterialIndex() : names(static_cast<size_t>(MainScene.NumMaterials())) {
        for (int i = 0; i < MainScene.NumMaterials(); ++i)
            names.Add(MainScene.GetMaterialAt(i)->GetName());
        SetLoadingMaterials(&names);
    }
    ~MaterialIndex() { SetLoadingMaterials(nullptr); }
    MaterialIndex(const MaterialIndex&) = delete;
    MaterialIndex& operator=(const MaterialIndex&) = delete;

private:
    NameIndex names;
};

int LoadNodes(Loading& loading) {
    const Section& section = loading.header.nodes;
    if (loading.in.SetPosition(section.offset, 0) != 0) return 0;
    const MaterialIndex materials;
    for (std::uint32_t i = 0; i < loading.header.numNodes; ++i)
        if (!LoadNodeRecord(loading)) return 0;
    if (loading.in.GetPosition() != section.End()) return 0;
    // Targets saved after the lights and cameras that aim at them.
    loading.nodes.ResolvePendingLinks();
    cbitarray order;
    if (!loading.nodes.TableOrder(loading.header.version, order) || !loading.nodes.HandOver() ||
        !MainScene.SetNodeOrder(order))
        return 0;
    // In scene order, as a change of the clock's time poses them.
    for (int k = 0; k < MainScene.NumNodes(); ++k)
        if (loading.nodes.PosedAgain(order[k])) MainScene.GetNodeAt(k)->UpdateTimeIdle();
    return 1;
}

// The animation clock's settings.
struct Clock {
    int ticksPerFrame, start, end, time;

    static Clock Current() { return {GetAnimTPF(), GetAnimStart(), GetAnimEnd(), GetAnimTime()}; }
    static Clock Of(const Header& header) {
        return {Signed(header.animTPF), Signed(header.animStart), Signed(header.animEnd),
                Signed(header.animTime)};
    }

    void Apply() const {
        SetAnimTPF(ticksPerFrame);
        // The start first goes to 0 so that no old value clamps the new end.
        SetAnimStart(0);
        SetAnimEnd(end);
        SetAnimStart(start);
        SetAnimTime(time);
    }
};

// The file's name tables, held by NodeList and MtlList while its records are read.
class NameTables {
public:
    explicit NameTables(cio_load& in)
        : ok(NodeList::ReadNodeNames(in) && MtlList::ReadMaterialNames(in)) {}
    ~NameTables() {
        NodeList::Clear();
        MtlList::Clear();
    }
    NameTables(const NameTables&) = delete;
    NameTables& operator=(const NameTables&) = delete;

    const bool ok;
};

// While alive, MainScene holds only what is being loaded and its old nodes and materials wait
// in `aside`, and the clock runs as the file sets it, so that each node poses itself as it
// loads. Unless committed, the destructor puts the old clock back and swaps the old scene back,
// and the partly loaded ones die with `aside`; once committed, the old ones die with it instead.
class SceneTransaction {
public:
    explicit SceneTransaction(const Clock& clock) {
        MainScene.SwapNodesAndMaterials(aside);
        clock.Apply();
    }
    ~SceneTransaction() {
        if (!committed) {
            oldClock.Apply();
            MainScene.SwapNodesAndMaterials(aside);
        }
        // Whichever scene dies here, its nodes go before its materials: a node about to be
        // destroyed needs no word of each material's deletion.
        aside.ClearNodes();
    }
    SceneTransaction(const SceneTransaction&) = delete;
    SceneTransaction& operator=(const SceneTransaction&) = delete;

    void Commit() { committed = true; }

private:
    const Clock oldClock = Clock::Current();
    cscene aside;
    bool committed = false;
};

int LoadProject(char const* path) {
    cio_load in;
    Header header;
    if (!path || in.Open(path) != 0 || !ReadHeader(in, header)) return 0;
    const NameTables tables(in);
    SceneSettings settings;
    if (!tables.ok || !ReadSettings(in, header.settings, settings)) return 0;
    SceneTransaction transaction(Clock::Of(header));
    // After the transaction, so that nodes never handed over die while the materials they may
    // refer to still live.
    Loading loading(in, header);
    if (!LoadMaterials(loading) || !LoadNodes(loading)) return 0;
    transaction.Commit();
    ApplySettings(settings, MainScene);
    MainScene.UpdateMiscAtAnimTimeChange();
    return 1;
}

// ---- Saving ----

// The scene's nodes parents first, each followed by its descendants in child order, so that
// loading rebuilds every children list in the same order.
std::vector<cnode*> RecordOrder() {
    cbitarray order;
    const int count = MainScene.GetNodesHierarchy(order);
    std::vector<cnode*> nodes;
    nodes.reserve(static_cast<size_t>(count));
    for (int k = 0; k < count; ++k) nodes.push_back(MainScene.GetNodeAt(order[k]));
    return nodes;
}

// 1 when LoadProjectFile will accept the records in this order: every parent name that some
// node of the scene bears is borne by an earlier record. A looping parent chain fails this.
int ParentsComeFirst(const std::vector<cnode*>& nodes) {
    // A parent whose own record comes earlier bears its name there, so its name's first
    // record is earlier too. Only the other parents (outside the scene, or after the child
    // in a looping chain) need the names, which are then mapped to their first records; the
    // keys view the nodes' own names, which do not change while the scene is saved.
    FlatMap<const cnode*, size_t> position(nodes.size());
    for (size_t i = 0; i < nodes.size(); ++i) {
        if (i + kPrefetchAhead < nodes.size()) position.Prefetch(nodes[i + kPrefetchAhead]);
        position.Insert(nodes[i], i);
    }
    std::optional<FlatMap<std::string_view, size_t>> first;
    for (size_t i = 0; i < nodes.size(); ++i) {
        if (i + kPrefetchAhead < nodes.size())
            PrefetchBytes(nodes[i + kPrefetchAhead], sizeof(cnode));
        const cnode* parent = nodes[i]->GetParent();
        if (!parent || !*parent->GetName()) continue;
        const size_t* at = position.Find(parent);
        if (at && *at < i) continue;
        if (!first) {
            first.emplace(nodes.size());
            for (size_t j = 0; j < nodes.size(); ++j) first->Insert(nodes[j]->GetName(), j);
        }
        const size_t* bearer = first->Find(parent->GetName());
        if (bearer && *bearer >= i) return 0;
    }
    return 1;
}

int WriteMaterials(cio_save& out) {
    for (int i = 0; i < MainScene.NumMaterials(); ++i) {
        const cmaterial& material = *MainScene.GetMaterialAt(i);
        if (!WriteSized(out, [&] { return WriteMaterialRecord(out, material); })) return 0;
    }
    return 1;
}

int WriteNodes(cio_save& out, const std::vector<cnode*>& nodes) {
    // Writing a record takes long enough that four places ahead already hide the trip to memory.
    constexpr size_t kAhead = 4;
    for (size_t i = 0; i < nodes.size(); ++i) {
        if (i + kAhead < nodes.size()) PrefetchBytes(nodes[i + kAhead], sizeof(cnode));
        const cnode* node = nodes[i];
        const auto type = static_cast<std::uint32_t>(node->GetTypeID());
        const auto subType = static_cast<std::uint32_t>(node->GetSubTypeID());
        if (!WriteUInt32(out, type) || !WriteUInt32(out, subType) || !node->Save(out)) return 0;
    }
    return 1;
}

// Writes the whole file; `end` receives its length.
int WriteProject(cio_save& out, const std::vector<cnode*>& nodes, SceneSettings& settings,
                 std::uint32_t& end) {
    Header header;
    header.version = PROJECT_VERSION;
    header.numNodes = static_cast<std::uint32_t>(MainScene.NumNodes());
    header.numMaterials = static_cast<std::uint32_t>(MainScene.NumMaterials());
    header.animStart = static_cast<std::uint32_t>(GetAnimStart());
    header.animEnd = static_cast<std::uint32_t>(GetAnimEnd());
    header.animTime = static_cast<std::uint32_t>(GetAnimTime());
    header.animTPF = static_cast<std::uint32_t>(GetAnimTPF());
    const auto nodeAt = [](int i) { return MainScene.GetNodeAt(i); };
    const auto materialAt = [](int i) { return MainScene.GetMaterialAt(i); };
    return out.Skip(0, PROJECT_HEADER_SIZE) && PositionWord(out, header.nodeTable) &&
           WriteNameTable(out, MainScene.NumNodes(), nodeAt) &&
           PositionWord(out, header.materialTable) &&
           WriteNameTable(out, MainScene.NumMaterials(), materialAt) &&
           WriteSection(out, header.settings,
                        [&] { return ForEachSetting(settings, WriteField{out}); }) &&
           WriteSection(out, header.materials, [&] { return WriteMaterials(out); }) &&
           WriteSection(out, header.nodes, [&] { return WriteNodes(out, nodes); }) &&
           PositionWord(out, end) && WriteHeader(out, header);
}

// 1 when the file at `path` is exactly `size` bytes long: the stream reports no failed flush,
// so a short file is how a full disk shows.
int HasSize(char const* path, std::uint32_t size) {
    cio_load in;
    return in.Open(path) == 0 && in.Size() == static_cast<long>(size);
}

int SaveProject(char const* path) {
    if (!path || !*path) return 0;
    const std::vector<cnode*> nodes = RecordOrder();
    if (!ParentsComeFirst(nodes)) return 0;
    SceneSettings settings = SettingsOf(MainScene);
    const std::string written = std::string(path) + ".saving";
    std::uint32_t end = 0;
    int ok = 0;
    {
        cio_save out;
        if (out.Open(written.c_str()) != 0) return 0;
        ok = WriteProject(out, nodes, settings, end);
    }
    ok = ok && HasSize(written.c_str(), end) && std::rename(written.c_str(), path) == 0;
    if (!ok) std::remove(written.c_str());
    return ok;
}

}  // namespace

int SaveProjectFile(char const* path) {
    try {
        return SaveProject(path);
    } catch (...) {
        // Only running out of memory throws, and only before the file is opened.
        return 0;
    }
}

int LoadProjectFile(char const* path) {
    try {
        return LoadProject(path);
    } catch (...) {
        // The transaction has put the old scene back while the exception passed.
        return 0;
    }
}

int ReadProjectInfo(char const* path, ProjectInfo* info) {
    cio_load in;
    Header header;
    if (!path || !info || in.Open(path) != 0 || !ReadHeader(in, header)) return 0;
    info->version = header.version;
    info->numNodes = static_cast<int>(header.numNodes);
    info->numMaterials = static_cast<int>(header.numMaterials);
    info->animStart = Signed(header.animStart);
    info->animEnd = Signed(header.animEnd);
    info->animTime = Signed(header.animTime);
    info->animTPF = Signed(header.animTPF);
    return 1;
}
