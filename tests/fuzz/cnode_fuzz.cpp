// Fuzz target: the node base record over untrusted files.
//
// The input is loaded as a node record of versions 6 (no IK block), 12 (32-byte names, no
// see-through) and 16 (the newest layout), each into a fresh node. Whatever the bytes, a load
// must end without a crash, leave a terminated name, and a node that loaded must keep its
// invariants (a key track with keys, IK counts within their ranges) and save a record that
// loads again to a record of the same length.
#include <cstring>

#include "cnode.h"
#include "fuzz/fuzztarget.h"

namespace {

// Offsets in a record of the newest layout: the names, the IK block, the see-through switch.
constexpr std::size_t kNamesAt = 8, kAfterNames = kNamesAt + 3 * 64;
constexpr std::size_t kIKAt = kAfterNames + 96, kSeeThroughAt = kIKAt + 64;

// The same record in an older layout: 32-byte names and no see-through below 13, no IK block
// below 7. The seeds' names are shorter than 32 characters.
std::string OlderLayout(const std::string& record, unsigned long version) {
    std::string old = record.substr(0, kNamesAt);
    for (std::size_t name = 0; name < 3; ++name) old += record.substr(kNamesAt + 64 * name, 32);
    old += record.substr(kAfterNames, kIKAt - kAfterNames);
    if (version >= 7) old += record.substr(kIKAt, kSeeThroughAt - kIKAt);
    return old + record.substr(kSeeThroughAt + 4);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string input = FuzzFile(data, size);
    for (unsigned long version : {6ul, 12ul, 16ul}) {
        cnode node("Fuzz", ccolor());
        const int loaded = LoadRecord(node, input, version);
        FUZZ_CHECK(loaded == 0 || loaded == 1);
        FUZZ_CHECK(std::memchr(node.GetName(), '\0', NODE_NAME_SIZE) != nullptr);
        FUZZ_CHECK(node.NotesSize() <= static_cast<int>(size));
        if (!loaded) continue;
        FUZZ_CHECK(node.GetAnimPtr()->NumKeys() >= 1);
        FUZZ_CHECK(node.GetIKNumIterations() >= 1 && node.GetIKNumIterations() <= 200);
        FUZZ_CHECK(node.GetIKRecurseNum() >= 1 && node.GetIKRecurseNum() <= 1000);
        CheckSavedRecordReloads(node);
    }
    return 0;
}

std::vector<std::string> FuzzSeeds() {
    cnode plain("Plain", ccolor(0.2f, 0.4f, 0.6f, 1.0f));
    cnode parent("Parent", ccolor());
    cnode busy("Busy", ccolor(1.0f, 0.0f, 0.0f, 1.0f));
    parent.Attach(&busy, 1);
    busy.SetFlags(0x3);
    busy.CopyNotes("Notes that travel with the node.", 32);
    busy.EnableIKDOF(1);
    busy.SetIKMinRot(cpoint3(-45, 0, -10));
    busy.SetIKRecurseNum(4);
    busy.SetSeeThroughFlag(1);
    canim& track = *busy.GetAnimPtr();
    track.SetKey(0, cpoint3(1, 2, 3), cquat(0.0f, 90.0f, 0.0f), cpoint3(1, 1, 1));
    track.SetKey(40, cpoint3(4, 5, 6), cquat(30.0f, 0.0f, 0.0f), cpoint3(2, 2, 2));
    track.SetKey(120, cpoint3(-1, 0, 1), cquat(0.0f, 0.0f, 45.0f), cpoint3(1, 0.5f, 1));
    busy.UpdateTimeIdle();

    std::vector<std::string> seeds;
    for (const cnode* node : {&plain, &busy}) {
        const std::string record = ReadFileBytes(SaveRecord(*node));
        seeds.insert(seeds.end(), {record, OlderLayout(record, 12), OlderLayout(record, 6)});
    }
    return seeds;
}
