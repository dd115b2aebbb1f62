// Test helper: project files built byte by byte, independently of the library's readers, and
// a snapshot of the scene for telling whether a refused file left it untouched.
#ifndef ORVANE_TESTS_SCENE_PROJECTFILE_H
#define ORVANE_TESTS_SCENE_PROJECTFILE_H

#include <cstdio>
#include <utility>

#include <projectfile.h>

#include "animclock.h"
#include "cmaterial.h"
#include "cnode.h"
#include "cscene.h"
#include "support/materialrecord.h"
#include "support/testsupport.h"

// Header positions, for tests that corrupt a field.
constexpr std::size_t kNodeCountAt = 12, kMaterialCountAt = 20, kMaterialRecordsAt = 32,
                      kNodeRecordsAt = 40;

// A project file: the 72-byte header (magic, version, offset and count of each name table,
// offset and size of each section, the clock, the marks), the node and material name tables (a
// count and 64-byte names), the scene settings record, the material records (each behind its
// length word), the node records and the marks, in that order.
struct ProjectFile {
    std::string magic = "#ORV";
    std::uint32_t version = 16;
    std::vector<std::string> nodes, materials;
    std::string settings = Settings(0.2f, "");
    std::vector<std::string> materialRecords;  // without their length words
    std::vector<std::string> nodeRecords;      // framed, as NodeRecord::Bytes gives them
    std::int32_t clock[4] = {0, 100, 0, 40};   // start, end, time, ticks per frame
    // With a stride, the node record marks follow the node records: the stride, then where
    // every stride-th record starts.
    std::uint32_t markStride = 0;

    // Overwrites the little-endian word at byte `at`.
    static void SetWord(std::string& bytes, std::size_t at, std::uint32_t value) {
        bytes.replace(at, 4, ByteString().Word(value).bytes);
    }
    // Ambient (grey, opaque), black background, fog off with colour 0 and values 0, 1, 1.
    static std::string Settings(float ambient, const std::string& notes) {
        ByteString r;
        r.Floats({ambient, ambient, ambient, 1, 0, 0, 0, 1}).Word(0).Floats({0, 0, 0, 0, 1, 1});
        return r.Text(notes).bytes;
    }

    std::string Bytes() const {
        ByteString materialBytes, tables[2];
        std::string nodeBytes, body;
        for (int t = 0; t < 2; ++t) {
            tables[t].Word((t ? materials : nodes).size());
            for (const std::string& name : t ? materials : nodes) tables[t].Name(name, 64);
        }
        for (const std::string& record : materialRecords) materialBytes.Text(record);
        for (const std::string& record : nodeRecords) nodeBytes += record;
        const std::string sections[] = {tables[0].bytes, tables[1].bytes, settings,
                                        materialBytes.bytes, nodeBytes};
        ByteString header{magic.substr(0, 4)};
        header.Word(version);
        for (int s = 0; s < 5; ++s) {
            const std::size_t count = s == 0 ? nodes.size() : materials.size();
            header.Word(72 + body.size()).Word(s < 2 ? count : sections[s].size());
            body += sections[s];
        }
        for (std::int32_t value : clock) header.Ints({value});
        header.bytes.resize(72, '\0');
        if (markStride) {
            ByteString marks;
            marks.Word(markStride);
            std::size_t at = 72 + body.size() - nodeBytes.size();
            for (std::size_t i = 0; i < nodeRecords.size(); ++i) {
                if (i > 0 && i % markStride == 0) marks.Word(at);
                at += nodeRecords[i].size();
            }
            SetWord(header.bytes, PROJECT_NODE_MARKS_OFFSET_AT, 72 + body.size());
            SetWord(header.bytes, PROJECT_NODE_MARKS_SIZE_AT, marks.bytes.size());
            body += marks.bytes;
        }
        return header.bytes + body;
    }
};

// A node record as the project file frames it: the type and sub-type words, then the node base
// record of `version`: 32-byte names below 13, the IK block from 7, see-through from 15.
struct NodeRecord {
    std::uint32_t type = 1, subType = 0, recordType = 1;
    std::string name, parent, material, notes;
    std::uint32_t flags = 0;
    std::int32_t ikIterations = 100;
    std::vector<std::pair<std::int32_t, float>> keys;  // time and x; no turn, unit scale

    std::string Bytes(std::uint32_t version) const {
        const std::size_t nameSize = version >= 13 ? 64 : 32;
        ByteString r;
        r.Word(type).Word(subType).Word(recordType).Word(subType);
        r.Name(name, nameSize).Name(parent, nameSize).Name(material, nameSize);
        r.Word(flags).Word(0).Floats({0.5f, 0.25f, 1, 1, -1, -1, -1, 1, 1, 1});
        r.Floats({0, 0, 0, 0, 0, 0, 1, 1, 1, 1}).Word(1).Word(0);  // shadows: cast, not receive
        if (version >= 7) {
            r.Ints({0, 0, 1}).Floats({10, -90, -90, -90, 90, 90, 90, 0, 0, 0, 1});
            r.Ints({ikIterations, 2});
        }
        if (version >= 15) r.Ints({0});
        r.Text(notes).Word(keys.size());
        r.Ints({keys.empty() ? 0 : keys.front().first, keys.empty() ? 0 : keys.back().first});
        for (const auto& [time, x] : keys) r.Ints({time}).Floats({x, 0, 0, 0, 0, 0, 1, 1, 1, 1});
        return r.bytes;
    }
};

// MainScene and the clock as saving them writes them (nodes, parents, keys, materials,
// settings), with what saving leaves out: the counters, every node's flags and, with
// `identities`, the nodes' and materials' addresses, so that an untouched scene can be told
// from an equal one.
inline std::string DescribeMainScene(bool identities) {
    static const TempDir folder;
    const std::string path = folder.File("described.orv");
    std::remove(path.c_str());
    // Saved first, read after: the operands of + may be evaluated in either order.
    std::string text = std::to_string(SaveProjectFile(path.c_str()));
    text += ReadFileBytes(path);
    text += " " + std::to_string(MainScene.NumSelected()) + std::to_string(MainScene.NumHidden());
    for (int i = 0; i < MainScene.NumNodes(); ++i) {
        text += " " + std::to_string(MainScene.GetNodeAt(i)->GetFlags());
        if (identities) text += "@" + std::to_string(std::uintptr_t(MainScene.GetNodeAt(i)));
    }
    for (int i = 0; identities && i < MainScene.NumMaterials(); ++i)
        text += "@" + std::to_string(std::uintptr_t(MainScene.GetMaterialAt(i)));
    return text;
}

// A node named `name` added to MainScene, its name kept.
inline cnode* AddToMainScene(const char* name) {
    auto* node = new cnode(name, ccolor(0.1f, 0.2f, 0.3f, 1.0f));
    MainScene.AddNode(node, 1);
    return node;
}

// A car whose front wheel was made before the car (so the scene's order is not parents
// first), with keys at several times, an IK limit, notes, a hidden lamp, materials, scene
// settings and a clock away from its defaults.
inline void BuildCarScene() {
    cnode* front = AddToMainScene("WheelFront");
    cnode* car = AddToMainScene("Car");
    cnode* hubcap = AddToMainScene("Hubcap");
    cnode* lamp = AddToMainScene("Lamp");
    car->Attach(front, 1);
    front->Attach(hubcap, 1);
    SetAnimOn(1);
    car->SetPosition(40, cpoint3(10, 2, 3));
    car->SetRotation(120, cquat(0.0f, 90.0f, 0.0f));
    car->SetScale(200, cpoint3(2, 2, 2));
    SetAnimOn(0);
    front->SetIKMinRot(cpoint3(-30, -20, -10));
    car->CopyNotes("Red, two doors.", 15);
    MainScene.Hide(lamp);
    for (const char* name : {"Chrome", "Rubber"}) MainScene.AddMaterial(new cmaterial(name), 1);
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
inline ProjectFile RobotFile(std::uint32_t version) {
    const std::string base = "TheBaseOfTheRobotWithALongerName34";
    // Type, sub-type, record type, name, parent, material, notes, flags, IK iterations, keys.
    const NodeRecord root{1, 0, 1, base, "", "", "", 0, 100, {{0, 2.0f}}};
    const NodeRecord arm{1, 0, 1, "Arm", base, "", "old", FLAG_HIDDEN, 7, {{0, 1.0f}, {100, 5.0f}}};
    ProjectFile file;
    file.version = version;
    file.nodes = {"Arm", base};
    file.materials = {"Steel"};
    file.materialRecords = {DefaultMaterialRecord("Steel", version)};
    file.nodeRecords = {root.Bytes(version), arm.Bytes(version)};
    file.settings = ProjectFile::Settings(0.5f, "Old notes");
    file.clock[1] = 200;
    file.clock[2] = 50;
    return file;
}

#endif
