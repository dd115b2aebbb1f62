// The project file: MainScene, its settings and the animation clock, written and read whole.
//
// It lives with the scene rather than with the streams because it creates nodes and fills
// MainScene; the byte layout is in docs/file-format.md.
#include "projectfile.h"

#include <algorithm>
#include <atomic>
#include <climits>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <iterator>
#include <memory>
#include <new>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
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
#include "runtime/deferredreports.h"
#include "runtime/flatmap.h"
#include "runtime/nameindex.h"
#include "runtime/prefetch.h"
#include "scene/loadingnodes.h"
#include "scene/recordconstruction.h"

// Lets the loader hand the nodes it has just created to MainScene without the scene looking
// for each of them among its own first.
struct LoadedNodesHandOver {
    using Counts = cscene::JoinedCounts;
    static void Prepare(cnode* node, Counts& counts) { cscene::JoinFlags(node, counts); }
    static void Add(cnode** nodes, int count, const Counts& counts) {
        MainScene.AddNewNodes(nodes, count, counts);
    }
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
    Section marks;  // the node record marks; empty when the file has none
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
    visit(PROJECT_NODE_MARKS_OFFSET_AT, h.marks.offset);
    visit(PROJECT_NODE_MARKS_SIZE_AT, h.marks.size);
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
// inside the file (the marks may be absent).
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
           SectionInside(header.nodes, size) &&
           ((header.marks.offset == 0 && header.marks.size == 0) ||
            SectionInside(header.marks, size));
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
// library cannot create. Each node kind adds its case here. The record gives the node its keys.
cnode* CreateNodeForRecord(std::uint32_t type, [[maybe_unused]] std::uint32_t subType) {
    const RecordConstruction forRecord;
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

// Every this many node records, the writer marks where the next one starts, so that a reader
// can split the records into runs that it reads in parallel.
constexpr std::uint32_t kMarkStride = 1024;

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
    // Makes room for `expected` nodes (the file's node count).
    explicit PendingNodes(size_t expected) : loading(expected) {
        poseAgain.reserve(expected);
        SetLoadingNodes(&loading);
    }
    ~PendingNodes() { SetLoadingNodes(nullptr); }
    PendingNodes(const PendingNodes&) = delete;
    PendingNodes& operator=(const PendingNodes&) = delete;

    void Expect(std::uint64_t hash) const { loading.Expect(hash); }
    cnode* Find(std::string_view name, std::uint64_t hash) const {
        return loading.Find(name, hash);
    }
    // Takes `node`, which bears `name` of `hash`. Within the expected count this cannot fail before
    // the node is held, so the caller hands its ownership over first.
    void Add(cnode* node, std::string_view name, std::uint64_t hash, bool posedAgain) {
        poseAgain.push_back(posedAgain);
        loading.Add(node, name, hash);
    }
    // Takes over the links that the records read into `from` have deferred, after those
    // already held.
    void TakeLinks(LoadingNodes& from) {
        auto& links = loading.pendingLinks;
        links.insert(links.end(), std::make_move_iterator(from.pendingLinks.begin()),
                     std::make_move_iterator(from.pendingLinks.end()));
        from.pendingLinks.clear();
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
    // Hands every node to the empty MainScene, in load order; LoadedNodesHandOver::Prepare
    // has prepared each of them, in order, into `counts`.
    int HandOver(const LoadedNodesHandOver::Counts& counts) {
        SetLoadingNodes(nullptr);
        return owner.HandOver(
            [&counts](cnode** nodes, int count) { LoadedNodesHandOver::Add(nodes, count, counts); },
            [] { return MainScene.NumNodes(); }, [](int i) { return MainScene.GetNodeAt(i); });
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

// ---- Reading node records, in parallel where the file allows ----
//
// The records are split into runs at the file's record marks, and each run is read into its
// nodes on a thread of its own: the calling thread reads the first. Reading a record looks up
// no other node: the run's own LoadingNodes answers no name and collects the links a record
// makes to other nodes. Once every run is read, the calling thread links each node to its
// parent and adds it to the loaded nodes, in file order, exactly as reading the records one
// after the other would have found the parents.

// One node record read into its node, which is not yet linked to any other node. Its name and
// its parent's are copied into the run's text, which the linking reads from one end to the
// other instead of visiting every node.
struct ReadNode {
    cnode* node;
    std::uint64_t nameHash;    // NameIndex::Hash of the node's name
    std::uint64_t parentHash;  // and of its parent's name, when the record names one
    std::uint32_t nameAt;      // where the node's name starts in the run's text
    std::uint32_t parentAt;    // where the parent's name starts in the run's text, or kNoParent
    bool posedAgain;
};
constexpr std::uint32_t kNoParent = UINT32_MAX;

// A run of `count` consecutive node records from record `first`, which starts at byte
// `offset`, to the byte `end`.
struct RecordRun {
    std::uint32_t first = 0, count = 0;
    long long offset = 0, end = 0;
};

// The node record marks: record k * stride starts at byte offsets[k - 1], for k from 1. A
// stride of 0: the file has no marks.
struct RecordMarks {
    std::uint32_t stride = 0;
    std::vector<std::uint32_t> offsets;

    // Whether record `record`, which starts at byte `at`, starts where the marks say. Every
    // mark is checked whichever run reads its record, so that a file loads or fails alike
    // however many threads read it.
    bool Agree(std::uint32_t record, long long at) const {
        if (stride == 0 || record == 0 || record % stride != 0) return true;
        return offsets[record / stride - 1] == at;
    }
};

// The nodes read from one run. Owns those it has not handed on to the loaded nodes.
struct ReadRun {
    ReadRun(const RecordRun& run, const RecordMarks& marks) : run(run), marks(marks) {}
    ~ReadRun() {
        for (size_t i = nodes.size(); i-- > handedOn;) nodes[i].node->Delete();
    }
    ReadRun(const ReadRun&) = delete;
    ReadRun& operator=(const ReadRun&) = delete;

    std::string_view Name(const ReadNode& read) const { return &text[read.nameAt]; }
    std::string_view ParentName(const ReadNode& read) const { return &text[read.parentAt]; }

    // Copies `name` into the text and answers where it starts.
    std::uint32_t AddText(std::string_view name) {
        const auto at = static_cast<std::uint32_t>(text.size());
        text.insert(text.end(), name.begin(), name.end());
        text.push_back('\0');
        return at;
    }

    const RecordRun run;
    const RecordMarks& marks;
    std::vector<ReadNode> nodes;
    std::vector<char> text;              // names, zero-terminated, one after the other
    LoadingNodes links;                  // finds no node; collects the records' links
    DeferredReports reports;             // the failed checks of a run read on a helper thread
    LoadedNodesHandOver::Counts joined;  // the nodes prepared to join MainScene
    size_t handedOn = 0;
    bool ok = false;
    // Whether each record bears the name at its own position in the node table, as every file
    // written from a scene kept in hierarchy order does. The nodes then keep the file's order.
    bool inTableOrder = true;
};

// Reads the records of `read.run` from `in`. Answers 1 when every record is sound and the last
// ends where the run ends. Stops early once `failed` is set, and sets it on failure.
int ReadRecords(cio_load& in, unsigned long version, ReadRun& read, std::atomic<bool>& failed) {
    const LoadingNodesScope links(&read.links);
    const RecordRun& run = read.run;
    int ok = in.SetPosition(static_cast<long>(run.offset), 0) == 0;
    if (ok) {
        read.nodes.reserve(run.count);
        // Room for short names, which most are; longer ones grow the text.
        read.text.reserve(static_cast<size_t>(run.count) * 16);
    }
    for (std::uint32_t i = 0; ok && i < run.count && !failed.load(std::memory_order_relaxed); ++i) {
        RecordFrame frame;
        cnode* node = nullptr;
        ok = read.marks.Agree(run.first + i, in.GetPosition()) &&
             ReadRecordFrame(in, version, frame) && frame.recordType == frame.type &&
             frame.recordSubType == frame.subType &&
             (node = CreateNodeForRecord(frame.type, frame.subType)) != nullptr;
        if (!ok) break;
        if (!node->Load(in, version)) {
            node->Delete();
            ok = 0;
            break;
        }
        LoadedNodesHandOver::Prepare(node, read.joined);
        // The room reserved above takes the node without fail; the text may throw after.
        read.nodes.push_back({node, 0, 0, 0, kNoParent, PosedAfterLoading(frame.type)});
        ReadNode& added = read.nodes.back();
        const std::string_view name(node->GetName());
        added.nameHash = NameIndex::Hash(name);
        added.nameAt = read.AddText(name);
        read.inTableOrder =
            read.inTableOrder &&
            RecordName(NodeList::GetNameAt(static_cast<int>(run.first + i)), version) == name;
        if (frame.parent[0]) {
            const std::string_view parent(frame.parent);
            added.parentHash = NameIndex::Hash(parent);
            added.parentAt = read.AddText(parent);
        }
        ok = in.GetPosition() <= run.end;
    }
    ok = ok && read.nodes.size() == run.count && in.GetPosition() == run.end;
    if (!ok) failed = true;
    return ok;
}

// Reads a run on a helper thread, through a stream of its own on the file `path`, which must
// still be the file `opened` holds.
void ReadRecordsOnHelper(char const* path, const cio_load& opened, unsigned long version,
                         ReadRun& read, std::atomic<bool>& failed) {
    const CollectReports collect(read.reports);
    try {
        cio_load in;
        read.ok = in.Open(path) == 0 && CioBlock::SameFile(in, opened) &&
                  ReadRecords(in, version, read, failed);
    } catch (...) {
        read.ok = false;
    }
    if (!read.ok) failed = true;
}

// The helper threads of a load, joined before anything they work on goes away.
class Helpers {
public:
    Helpers() = default;
    ~Helpers() { Join(); }
    Helpers(const Helpers&) = delete;
    Helpers& operator=(const Helpers&) = delete;

    template <class Work>
    void Start(Work work) {
        threads.emplace_back(std::move(work));
    }
    void Join() {
        for (std::thread& thread : threads)
            if (thread.joinable()) thread.join();
        threads.clear();
    }

private:
    std::vector<std::thread> threads;
};

// Reads the node record marks. Answers 0 for marks that do not fit the records: a stride of
// 0, a count other than the node count calls for, or offsets that do not rise strictly inside
// the node records.
int ReadMarks(cio_load& in, const Header& header, RecordMarks& marks) {
    marks = RecordMarks();
    if (header.marks.size == 0) return header.marks.offset == 0;
    std::uint32_t stride = 0;
    if (header.marks.size % 4 != 0 || in.SetPosition(header.marks.offset, 0) != 0 ||
        !ReadUInt32(in, stride) || stride == 0)
        return 0;
    const std::uint32_t count = header.marks.size / 4 - 1;
    if (count != (header.numNodes == 0 ? 0 : (header.numNodes - 1) / stride)) return 0;
    marks.stride = stride;
    marks.offsets.resize(count);
    std::uint32_t previous = header.nodes.offset;
    for (std::uint32_t& at : marks.offsets) {
        if (!ReadUInt32(in, at) || at <= previous || at >= header.nodes.End()) return 0;
        previous = at;
    }
    return 1;
}

// How many threads may read node records (SetProjectLoadThreads); 0 for as many as the machine
// runs at once.
std::atomic<int> loadThreads{0};
constexpr int kMaxLoadThreads = 8;

int LoadThreads() {
    int threads = loadThreads.load();
    if (threads == 0) threads = static_cast<int>(std::thread::hardware_concurrency());
    return std::clamp(threads, 1, kMaxLoadThreads);
}

// Splits the node records into at most LoadThreads() runs of about equal counts, at marks.
std::vector<RecordRun> SplitRecords(const Header& header, const RecordMarks& marks) {
    const auto count = static_cast<std::uint64_t>(marks.offsets.size()) + 1;
    const auto wanted = std::min<std::uint64_t>(static_cast<std::uint64_t>(LoadThreads()), count);
    std::vector<RecordRun> runs;
    std::uint32_t first = 0;
    long long offset = header.nodes.offset;
    for (std::uint64_t t = 1; t <= wanted; ++t) {
        // Mark m (from 1) starts record m * stride; the last run ends with the records.
        const std::uint64_t m = t == wanted ? count : (t * count + wanted / 2) / wanted;
        const std::uint64_t last = t == wanted ? header.numNodes : m * marks.stride;
        if (last <= first) continue;
        const long long end = t == wanted ? header.nodes.End() : marks.offsets[m - 1];
        runs.push_back({first, static_cast<std::uint32_t>(last - first), offset, end});
        first = static_cast<std::uint32_t>(last);
        offset = end;
    }
    if (runs.empty()) runs.push_back({0, 0, header.nodes.offset, header.nodes.End()});
    return runs;
}

// Links the run's nodes to their parents and adds them to the loaded nodes, in file order.
// Parents are written first: a parent that the table names but no earlier record gave is a
// later record, which only a damaged file or a parent cycle produces. A parent the table does
// not name is left unresolved, and the node stays a root.
int LinkRun(Loading& loading, ReadRun& read) {
    PendingNodes& loaded = loading.nodes;
    const size_t count = read.nodes.size();
    for (size_t i = 0; i < count; ++i) {
        // Both waits for memory of a node's index slots are started a few nodes ahead.
        if (i + kPrefetchAhead < count) {
            const ReadNode& ahead = read.nodes[i + kPrefetchAhead];
            loaded.Expect(ahead.nameHash);
            if (ahead.parentAt != kNoParent) loaded.Expect(ahead.parentHash);
        }
        const ReadNode& node = read.nodes[i];
        if (node.parentAt != kNoParent) {
            const std::string_view name = read.ParentName(node);
            cnode* parent = loaded.Find(name, node.parentHash);
            if (!parent && loading.TableHolds(name)) return 0;
            // The node has no children yet, so its parent cannot lie in its own subtree.
            if (parent) {
                node.node->SetParent(parent, 0);
                parent->Attach(node.node, 0);
            }
        }
        ++read.handedOn;
        loaded.Add(node.node, read.Name(node), node.nameHash, node.posedAgain);
    }
    loaded.TakeLinks(read.links);
    return 1;
}

int LoadNodes(Loading& loading, char const* path) {
    RecordMarks marks;
    if (!ReadMarks(loading.in, loading.header, marks)) return 0;
    const MaterialIndex materials;
    std::vector<std::unique_ptr<ReadRun>> runs;
    for (const RecordRun& run : SplitRecords(loading.header, marks))
        runs.push_back(std::make_unique<ReadRun>(run, marks));
    std::atomic<bool> failed{false};
    {
        Helpers helpers;
        const unsigned long version = loading.header.version;
        for (size_t r = 1; r < runs.size(); ++r) {
            ReadRun& read = *runs[r];
            helpers.Start([path, &loading, version, &read, &failed] {
                ReadRecordsOnHelper(path, loading.in, version, read, failed);
            });
        }
        // The first run is linked while the helpers still read theirs.
        runs[0]->ok =
            ReadRecords(loading.in, version, *runs[0], failed) && LinkRun(loading, *runs[0]);
        if (!runs[0]->ok) failed = true;
    }
    // Reports are made in file order, as reading one record after the other would make them.
    for (auto& read : runs) read->reports.Report();
    for (size_t r = 0; r < runs.size(); ++r)
        if (!runs[r]->ok || (r > 0 && !LinkRun(loading, *runs[r]))) return 0;
    // Targets and bones saved after the nodes that name them.
    loading.nodes.ResolvePendingLinks();
    const bool inTableOrder =
        std::all_of(runs.begin(), runs.end(), [](const auto& read) { return read->inTableOrder; });
    cbitarray order;
    if (!inTableOrder && !loading.nodes.TableOrder(loading.header.version, order)) return 0;
    LoadedNodesHandOver::Counts joined;
    for (const auto& read : runs) joined.Add(read->joined);
    if (!loading.nodes.HandOver(joined) || (!inTableOrder && !MainScene.SetNodeOrder(order)))
        return 0;
    // In scene order, as a change of the clock's time poses them.
    for (int k = 0; k < MainScene.NumNodes(); ++k)
        if (loading.nodes.PosedAgain(inTableOrder ? k : order[k]))
            MainScene.GetNodeAt(k)->UpdateTimeIdle();
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
    if (!LoadMaterials(loading) || !LoadNodes(loading, path)) return 0;
    transaction.Commit();
    ApplySettings(settings, MainScene);
    // The selection centre follows the new time. With nothing selected, as after loading any
    // file SaveProjectFile writes, it is the origin that the emptied scene started with.
    if (MainScene.NumSelected() > 0) MainScene.UpdateMiscAtAnimTimeChange();
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

// Writes the node records; `marks` receives the offset of every kMarkStride-th one and must
// have room for them.
int WriteNodes(cio_save& out, const std::vector<cnode*>& nodes, std::vector<std::uint32_t>& marks) {
    // Writing a record takes long enough that four places ahead already hide the trip to memory.
    constexpr size_t kAhead = 4;
    for (size_t i = 0; i < nodes.size(); ++i) {
        if (i + kAhead < nodes.size()) PrefetchBytes(nodes[i + kAhead], sizeof(cnode));
        if (i > 0 && i % kMarkStride == 0) {
            std::uint32_t at = 0;
            if (!PositionWord(out, at)) return 0;
            marks.push_back(at);
        }
        const cnode* node = nodes[i];
        const auto type = static_cast<std::uint32_t>(node->GetTypeID());
        const auto subType = static_cast<std::uint32_t>(node->GetSubTypeID());
        if (!WriteUInt32(out, type) || !WriteUInt32(out, subType) || !node->Save(out)) return 0;
    }
    return 1;
}

int WriteMarks(cio_save& out, const std::vector<std::uint32_t>& marks) {
    if (!WriteUInt32(out, kMarkStride)) return 0;
    for (std::uint32_t at : marks)
        if (!WriteUInt32(out, at)) return 0;
    return 1;
}

// Writes the whole file; `end` receives its length. `marks` has room for the node record
// marks.
int WriteProject(cio_save& out, const std::vector<cnode*>& nodes, SceneSettings& settings,
                 std::vector<std::uint32_t>& marks, std::uint32_t& end) {
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
           WriteSection(out, header.nodes, [&] { return WriteNodes(out, nodes, marks); }) &&
           WriteSection(out, header.marks, [&] { return WriteMarks(out, marks); }) &&
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
    std::vector<std::uint32_t> marks;
    marks.reserve(nodes.size() / kMarkStride);
    const std::string written = std::string(path) + ".saving";
    std::uint32_t end = 0;
    int ok = 0;
    {
        cio_save out;
        if (out.Open(written.c_str()) != 0) return 0;
        ok = WriteProject(out, nodes, settings, marks, end);
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

int SetProjectLoadThreads(int count) {
    return loadThreads.exchange(std::max(count, 0));
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
