// Fuzz target: the project file's node and material name tables over untrusted files.
//
// The input is the whole file, read from its middle. Each reader must restore the position,
// refuse a file without the magic or with a version above 16, and keep a table only when the
// file holds every name it counts. Lookups through a kept table answer scene objects or null.
#include <cstring>

#include "cmaterial.h"
#include "cnode.h"
#include "cscene.h"
#include "fuzz/fuzztarget.h"
#include "mtllist.h"
#include "nodelist.h"
#include "scene/projectfile.h"

namespace {

// Scene objects bearing the seeds' names, so that lookups find something.
void FillScene() {
    MainScene.AddNode(new cnode("Box01", ccolor()), 1);
    MainScene.AddNode(new cnode("Sphere01", ccolor()), 1);
    MainScene.AddMaterial(new cmaterial("Chrome"), 1);
}

bool Acceptable(const std::uint8_t* data, std::size_t size) {
    if (size < 72 || std::memcmp(data, "#ORV", 4) != 0) return false;
    const std::uint32_t version =
        data[4] | data[5] << 8 | data[6] << 16 | static_cast<std::uint32_t>(data[7]) << 24;
    return version <= 16;
}

// One reader: its verdict agrees with the header, the position comes back, a kept table fits
// in the file, and every lookup answers a scene object or null.
template <class Object>
void CheckReader(cio_load& in, const std::uint8_t* data, std::size_t size, int (*read)(cio_load&),
                 int (*loaded)(), int (*number)(), Object* (*at)(int), int (*find)(Object*)) {
    const long start = in.GetPosition();
    const int ok = read(in);
    FUZZ_CHECK(in.GetPosition() == start);
    FUZZ_CHECK(ok == loaded());
    if (!Acceptable(data, size)) FUZZ_CHECK(!ok);
    if (!ok) return;
    const int count = number();
    FUZZ_CHECK(count >= 0 && static_cast<std::size_t>(count) * 64 + 4 <= size);
    for (int i = -1; i <= count; ++i) {
        Object* object = at(i);
        if (object) FUZZ_CHECK(find(object) >= 0);
        if (i < 0 || i == count) FUZZ_CHECK(!object);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    [[maybe_unused]] static const bool filled = (FillScene(), true);
    cio_load in;
    FUZZ_CHECK(in.Open(FuzzFile(data, size).c_str()) == 0);
    FUZZ_CHECK(in.SetPosition(static_cast<long>(size / 2), 0) == 0);
    CheckReader<cnode>(in, data, size, NodeList::ReadNodeNames, NodeList::IsLoaded,
                       NodeList::NumNodes, NodeList::GetNodeAt, NodeList::Find);
    CheckReader<cmaterial>(in, data, size, MtlList::ReadMaterialNames, MtlList::IsLoaded,
                           MtlList::NumMaterials, MtlList::GetMaterialAt, MtlList::Find);
    NodeList::Clear();
    MtlList::Clear();
    return 0;
}

std::vector<std::string> FuzzSeeds() {
    ProjectFile typical;
    typical.nodes = {"Box01", "Camera01", "Sphere01"};
    typical.materials = {"Chrome", "Wood"};
    ProjectFile old;
    old.version = 3;
    old.nodes = {std::string(64, 'x')};
    ProjectFile empty;
    return {typical.Bytes(), old.Bytes(), empty.Bytes()};
}
