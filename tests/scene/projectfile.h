// Test helper: project files built byte by byte, independently of the library's readers, and
// the scene described as text for comparing what a project file brings back.
#ifndef ORVANE_TESTS_SCENE_PROJECTFILE_H
#define ORVANE_TESTS_SCENE_PROJECTFILE_H

#include <cstdint>
#include <cstdio>
#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

#include "animclock.h"
#include "cmaterial.h"
#include "cnode.h"
#include "cscene.h"
#include "support/bytestring.h"
#include "support/materialrecord.h"

// The start of a project file, as the name-table readers see it: magic, version, node table
// offset and count, material table offset and count, then 48 bytes of filler they must not
// read; the node table and the material table follow, each a count and 64-byte names.
struct ProjectFile {
    std::string magic = "#ORV";
    std::uint32_t version = 16;
    std::vector<std::string> nodes;
    std::vector<std::string> materials;

    // Overwrites the little-endian word at byte `at`.
    static void SetWord(std::string& bytes, std::size_t at, std::uint32_t value) {
        bytes.replace(at, 4, ByteString().Word(value).bytes);
    }
    static std::string Table(const std::vector<std::string>& names) {
        ByteString table;
        table.Word(names.size());
        for (const std::string& name : names) table.Name(name, 64);
        return table.bytes;
    }

    // The whole file; the node table starts at byte 72 (after the header) and the material
    // table right after it.
    std::string Bytes() const {
        const std::string nodeTable = Table(nodes), materialTable = Table(materials);
        ByteString header{magic.substr(0, 4)};
        header.Word(version).Word(72).Word(nodes.size()).Word(72 + nodeTable.size());
        header.Word(materials.size()).bytes.resize(72, 'h');
        return header.bytes + nodeTable + materialTable;
    }
};

// A whole project file: the header with every field, the two tables, the scene settings
// record, the material records (each behind its length word) and the node records, in that
// order. The tables come from `nodes` and `materials` of the base.
struct WholeProjectFile : ProjectFile {
    std::string settings = Settings(0.2f, "");
    std::vector<std::string> materialRecords;  // without their length words
    std::vector<std::string> nodeRecords;      // framed, as NodeRecord::Bytes gives them
    std::int32_t clock[4] = {0, 100, 0, 40};   // start, end, time, ticks per frame

    // Ambient (grey, opaque), black background, fog off with colour 0 and values 0, 1, 1.
    static std::string Settings(float ambient, const std::string& notes) {
        ByteString r;
        r.Floats({ambient, ambient, ambient, 1, 0, 0, 0, 1}).Word(0).Floats({0, 0, 0, 0, 1, 1});
        return r.Text(notes).bytes;
    }

    std::string Bytes() const {
        const std::string nodeTable = Table(nodes), materialTable = Table(materials);
        ByteString materialBytes;
        std::string nodeBytes;
        for (const std::string& record : materialRecords) materialBytes.Text(record);
        for (const std::string& record : nodeRecords) nodeBytes += record;
        std::uint32_t at = 72;
        ByteString header{magic.substr(0, 4)};
        header.Word(version).Word(at).Word(nodes.size());
        at += static_cast<std::uint32_t>(nodeTable.size());
        header.Word(at).Word(materials.size());
        at += static_cast<std::uint32_t>(materialTable.size());
        for (const std::string* section :
             {&settings, &std::as_const(materialBytes.bytes), &std::as_const(nodeBytes)}) {
            header.Word(at).Word(section->size());
            at += static_cast<std::uint32_t>(section->size());
        }
        for (std::int32_t value : clock) header.Ints({value});
        header.bytes.resize(72, '\0');
        return header.bytes + nodeTable + materialTable + settings + materialBytes.bytes +
               nodeBytes;
    }
};

// A node record as the project file frames it: the type and sub-type words, then the node base
// record of `version`: 32-byte names below 13, the IK block from 7, see-through from 15.
struct NodeRecord {
    struct Key {
        std::int32_t time;
        float position[3], rotation[4], scale[3];
    };

    std::uint32_t type = 1, subType = 0, recordType = 1;
    std::string name, parent, material, notes;
    std::uint32_t flags = 0;
    float color[4] = {0.5f, 0.25f, 1, 1};
    float position[3] = {0, 0, 0};
    std::int32_t ikLocked = 0, ikIterations = 100, seeThrough = 0;
    std::vector<Key> keys;

    std::string Bytes(std::uint32_t version) const {
        const std::size_t nameSize = version >= 13 ? 64 : 32;
        ByteString r;
        r.Word(type).Word(subType).Word(recordType).Word(subType);
        r.Name(name, nameSize).Name(parent, nameSize).Name(material, nameSize);
        r.Word(flags).Word(0).Floats({color[0], color[1], color[2], color[3], -1, -1, -1, 1, 1, 1});
        r.Floats({position[0], position[1], position[2], 0, 0, 0, 1, 1, 1, 1});
        r.Word(1).Word(0);  // cast shadows, receive shadows
        if (version >= 7) {
            r.Ints({0, 0, ikLocked}).Floats({10, -90, -90, -90, 90, 90, 90, 0, 0, 0, 1});
            r.Ints({ikIterations, 2});
        }
        if (version >= 15) r.Ints({seeThrough});
        r.Text(notes).Word(keys.size());
        r.Ints({keys.empty() ? 0 : keys.front().time, keys.empty() ? 0 : keys.back().time});
        for (const Key& key : keys) {
            r.Ints({key.time});
            for (float v : key.position) r.Floats({v});
            for (float v : key.rotation) r.Floats({v});
            for (float v : key.scale) r.Floats({v});
        }
        return r.bytes;
    }
};

// MainScene, its settings and the clock as text, every float exact (%.9g): each node's
// identity, hierarchy, notes, switches, IK values, keys and world transform at several times.
// With `identities` the objects' addresses are included, so that an untouched scene can be
// told from an equal one.
inline std::string DescribeMainScene(bool identities) {
    std::string text;
    const auto put = [&text](auto... values) {
        for (double v : {double(values)...}) {
            char number[32];
            std::snprintf(number, sizeof number, " %.9g", v);
            text += number;
        }
    };
    const auto name = [&text](const std::string& label, char const* value, const void* object) {
        text += label + (value ? value : "-");
        if (object) text += "@" + std::to_string(reinterpret_cast<std::uintptr_t>(object));
    };
    for (int i = 0; i < MainScene.NumNodes(); ++i) {
        cnode& n = *MainScene.GetNodeAt(i);
        const cnode* parent = n.GetParent();
        name("\nnode ", n.GetName(), identities ? &n : nullptr);
        name(" parent ", parent ? parent->GetName() : nullptr, identities ? parent : nullptr);
        for (int c = 0; c < n.NumChildren(); ++c)
            name(" child ", n.GetChild(c)->GetName(), nullptr);
        name(" notes ", n.GetNotes(), nullptr);
        const ccolor col = n.GetColor();
        const cpoint3 lo = n.GetIKMinRot(), hi = n.GetIKMaxRot();
        const cquat q = n.GetIKInitialRot();
        put(n.GetTypeID(), n.GetSubTypeID(), n.GetFlags(), n.GetCastShadowFlag(),
            n.GetReceiveShadowFlag(), n.GetSeeThroughFlag(), n.IsIKDOFEnabled(),
            n.IsIKDampingEnabled(), n.IsIKLocked(), n.GetIKNumIterations(), n.GetIKRecurseNum(),
            n.GetIKDampWidth(), lo.x, lo.y, lo.z, hi.x, hi.y, hi.z, q.x, q.y, q.z, q.w, col.r,
            col.g, col.b, col.a);
        for (int k = 0; k < n.GetAnimPtr()->NumKeys(); ++k) {
            ckey key;
            n.GetAnimPtr()->GetKeyAt(k, key);
            const cpoint3 &p = key.position, &s = key.scale;
            const cquat& r = key.rotation;
            text += " key";
            put(key.time, p.x, p.y, p.z, r.x, r.y, r.z, r.w, s.x, s.y, s.z);
        }
        for (int t : {0, 25, 40, 80, 130, 200, 400}) {
            const cpoint3 p = n.GetPosition(t), s = n.GetScale(t);
            const cquat r = n.GetRotation(t);
            text += " at";
            put(t, p.x, p.y, p.z, r.x, r.y, r.z, r.w, s.x, s.y, s.z);
        }
    }
    for (int i = 0; i < MainScene.NumMaterials(); ++i) {
        cmaterial* m = MainScene.GetMaterialAt(i);
        name("\nmaterial ", m->GetName(), identities ? m : nullptr);
    }
    const ccolor a = MainScene.GetAmbient(), b = MainScene.GetBkColor();
    cpoint3 fog;
    float start, end, density;
    MainScene.GetFogValues(fog, start, end, density);
    name("\nscene notes ", MainScene.GetNotes(), nullptr);
    put(a.r, a.g, a.b, a.a, b.r, b.g, b.b, b.a, MainScene.IsFogEnabled(), fog.x, fog.y, fog.z,
        start, end, density, MainScene.NumSelected(), MainScene.NumHidden(), GetAnimStart(),
        GetAnimEnd(), GetAnimTime(), GetAnimTPF());
    return text;
}

// A node named `name` added to MainScene, its name kept.
inline cnode* AddToMainScene(const char* name) {
    auto* node = new cnode(name, ccolor(0.1f, 0.2f, 0.3f, 1.0f));
    MainScene.AddNode(node, 1);
    return node;
}

// A car whose front wheel was made before the car (so the scene's order is not parents
// first), with keys at several times, IK settings, notes, a hidden lamp, materials, scene
// settings and a clock away from its defaults.
inline void BuildCarScene() {
    cnode* front = AddToMainScene("WheelFront");
    cnode* car = AddToMainScene("Car");
    cnode* back = AddToMainScene("WheelBack");
    cnode* hubcap = AddToMainScene("Hubcap");
    cnode* lamp = AddToMainScene("Lamp");
    car->Attach(front, 1);
    car->Attach(back, 1);
    front->Attach(hubcap, 1);
    SetAnimOn(1);
    car->SetPosition(0, cpoint3(1, 2, 3));
    car->SetPosition(40, cpoint3(10, 2, 3));
    car->SetRotation(120, cquat(0.0f, 90.0f, 0.0f));
    car->SetScale(200, cpoint3(2, 2, 2));
    front->SetRotation(40, cquat(45.0f, 0.0f, 0.0f));
    hubcap->SetPosition(80, cpoint3(12, 3, 5));
    SetAnimOn(0);
    front->EnableIKDOF(1);
    front->LockIK(1);
    front->SetIKDampWidth(5.5f);
    front->SetIKMinRot(cpoint3(-30, -20, -10));
    front->SetIKInitialRot(cquat(0.0f, 0.0f, 30.0f));
    front->SetIKNumIterations(50);
    car->CopyNotes("Red, two doors.", 15);
    lamp->SetSeeThroughFlag(1);
    lamp->SetCastShadowFlag(0);
    MainScene.Hide(lamp);
    for (const char* name : {"Chrome", "Rubber", "Glass"})
        MainScene.AddMaterial(new cmaterial(name), 1);
    MainScene.SetAmbient(ccolor(0.3f, 0.35f, 0.4f, 1.0f));
    MainScene.SetBkColor(ccolor(0.1f, 0.1f, 0.2f, 1.0f));
    MainScene.EnableFog(1);
    MainScene.SetFogValues(cpoint3(0.5f, 0.5f, 0.6f), 10.0f, 250.0f, 0.75f);
    MainScene.CopyNotes("A car for the demo reel.", 24);
    SetAnimTPF(25);
    SetAnimEnd(400);
    SetAnimStart(10);
    SetAnimTime(80);
    MainScene.UpdateNodesAtAnimTimeChange();
}

// A base and an arm below it; the base's 34-character name is cut to 31 by 32-byte fields.
inline WholeProjectFile RobotFile(std::uint32_t version) {
    const std::string base = "TheBaseOfTheRobotWithALongerName34";
    NodeRecord arm, root;
    arm.name = "Arm";
    arm.parent = root.name = base;
    arm.flags = FLAG_HIDDEN;
    arm.notes = "old";
    arm.ikLocked = 1;
    arm.ikIterations = 7;
    arm.keys = {{0, {1, 0, 0}, {0, 0, 0, 1}, {1, 1, 1}}, {100, {5, 0, 0}, {0, 0, 0, 1}, {1, 1, 1}}};
    root.keys = {{0, {0, 2, 0}, {0, 0, 0, 1}, {1, 1, 1}}};
    WholeProjectFile file;
    file.version = version;
    file.nodes = {"Arm", base};
    file.materials = {"Steel"};
    file.materialRecords = {DefaultMaterialRecord("Steel", version)};
    file.nodeRecords = {root.Bytes(version), arm.Bytes(version)};
    file.settings = WholeProjectFile::Settings(0.5f, "Old notes");
    file.clock[1] = 200;
    file.clock[2] = 50;
    return file;
}

// Header positions, for tests that corrupt a field.
constexpr std::size_t kNodeOffsetAt = 8, kNodeCountAt = 12, kMaterialOffsetAt = 16,
                      kMaterialCountAt = 20, kSettingsAt = 24, kMaterialRecordsAt = 32,
                      kNodeRecordsAt = 40;

#endif
