// orvane: the command-line host of Orvane Core.
//
// `orvane demo` does what every host does before it uses the library (application folder,
// callback table, CoreInit), then exercises the library: the animation clock through the
// Interface facade, a transform, and a record written with the object stream and read back.
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <string>

#include "Core.h"
#include "referencehost.h"

namespace {

constexpr char kUsage[] =
    "usage: orvane <command> [options]\n"
    "\n"
    "commands:\n"
    "  demo [--record FILE]   start the library as a host does and run the built-in demo;\n"
    "                         the demo record is written to FILE (default: a file in the\n"
    "                         system's temporary folder)\n"
    "  --help                 show this text\n";

int PrintProgress(char* text) {
    return std::fputs(text, stdout);
}

// The folder that holds this executable: the application folder a host gives the library.
std::string ExecutableFolder() {
    std::error_code error;
    const std::filesystem::path self = std::filesystem::read_symlink("/proc/self/exe", error);
    return error ? std::string(".") : self.parent_path().string();
}

// The demo record: what a scene object's record looks like, field by field.
struct DemoRecord {
    char name[NAME_FIELD_SIZE] = "Teapot1";
    int flags = 0x1;
    cpoint3 position{12.5f, -3.0f, 40.0f};
    cquat rotation = QuatFromAngleAxis(90.0f, cpoint3(0.0f, 0.0f, 1.0f));
    ccolor color{255, 128, 0};
    std::string notes = "Made by the orvane demo.";
};

int WriteRecord(const std::string& file, const DemoRecord& record) {
    cio_save out;
    if (out.Open(file.c_str()) != 0) return 0;
    const int ok = WriteName(out, record.name, NAME_FIELD_SIZE) && WriteInt32(out, record.flags) &&
                   WritePoint3(out, record.position) && WriteQuat(out, record.rotation) &&
                   WriteColor(out, record.color) && WriteText(out, record.notes);
    out.Close();
    return ok;
}

int ReadRecord(const std::string& file, DemoRecord& record, long& size) {
    cio_load in;
    if (in.Open(file.c_str()) != 0) return 0;
    size = in.Size();
    const int ok = ReadName(in, record.name, NAME_FIELD_SIZE) && ReadInt32(in, record.flags) &&
                   ReadPoint3(in, record.position) && ReadQuat(in, record.rotation) &&
                   ReadColor(in, record.color) && ReadText(in, record.notes) && in.BytesLeft() == 0;
    in.Close();
    return ok;
}

void ShowClock() {
    std::printf("\nAnimation clock (set through the host, read from the library):\n");
    Interface::SetAnimEnd(200);
    Interface::SetAnimTime(250);
    std::printf(
        "  Interface::SetAnimEnd(200), SetAnimTime(250) -> time %d of %d..%d, %d ticks/frame\n",
        Interface::GetAnimTime(), Interface::GetAnimStart(), Interface::GetAnimEnd(),
        Interface::GetAnimTPF());
    Interface::ResetAnim();
}

void ShowTransform() {
    std::printf("\nTransforms (row vectors, degrees, Euler X then Y then Z):\n");
    cmatrix4 move;
    move.FromTranslation(cpoint3(1.0f, 2.0f, 3.0f));
    const cmatrix4 m = MatrixFromEuler(cpoint3(0.0f, 0.0f, 90.0f)) * move;
    const cpoint3 p = cpoint3(1.0f, 0.0f, 0.0f) * m;
    std::printf("  (1, 0, 0) rotated 90 about Z, then moved by (1, 2, 3) -> (%.3f, %.3f, %.3f)\n",
                p.x, p.y, p.z);
    const cpoint3 euler = QuatToEuler(EulerToQuat(cpoint3(10.0f, 20.0f, 30.0f)));
    std::printf("  Euler (10, 20, 30) -> quaternion -> Euler (%.3f, %.3f, %.3f)\n", euler.x,
                euler.y, euler.z);
}

int ShowRecord(const std::string& file) {
    std::printf("\nObject stream:\n");
    const DemoRecord written;
    if (!WriteRecord(file, written)) {
        std::fprintf(stderr, "orvane: cannot write %s\n", file.c_str());
        return 0;
    }
    DemoRecord read;
    std::memset(read.name, 0, sizeof(read.name));
    read.notes.clear();
    long size = 0;
    if (!ReadRecord(file, read, size)) {
        std::fprintf(stderr, "orvane: cannot read the record back from %s\n", file.c_str());
        return 0;
    }
    std::printf("  wrote and read back %s (%ld bytes):\n", file.c_str(), size);
    std::printf("    name      \"%s\"\n", read.name);
    std::printf("    flags     0x%x\n", static_cast<unsigned int>(read.flags));
    std::printf("    position  (%g, %g, %g)\n", read.position.x, read.position.y, read.position.z);
    std::printf("    rotation  (%g, %g, %g, %g)\n", read.rotation.x, read.rotation.y,
                read.rotation.z, read.rotation.w);
    std::printf("    colour    (%g, %g, %g, %g)\n", read.color.r, read.color.g, read.color.b,
                read.color.a);
    std::printf("    notes     \"%s\"\n", read.notes.c_str());
    return 1;
}

int RunDemo(const std::string& recordFile) {
    ReferenceHost& host = ReferenceHost::Instance();
    host.Install(ExecutableFolder().c_str());
    std::printf("Orvane Core demo\n");
    std::printf("Application folder: %s\n", GetAppPath());
    std::printf("Host callbacks filled: %d\n", CORE_HOST_CALLBACK_COUNT);
    if (CoreInit(PrintProgress) != 1) return 1;

    ShowClock();
    ShowTransform();
    const int recordOk = ShowRecord(recordFile);

    std::printf("\nThe library called the host %zu times:", host.Calls().size());
    for (const std::string& call : host.Calls()) std::printf(" %s", call.c_str());
    std::printf("\n");
    CoreFini();
    host.Uninstall();
    return recordOk ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 2 || std::strcmp(argv[1], "--help") == 0 || std::strcmp(argv[1], "-h") == 0) {
        std::fputs(kUsage, argc < 2 ? stderr : stdout);
        return argc < 2 ? 2 : 0;
    }
    if (std::strcmp(argv[1], "demo") == 0) {
        std::string record = (std::filesystem::temp_directory_path() / "orvane-demo.rec").string();
        for (int i = 2; i < argc; ++i) {
            if (std::strcmp(argv[i], "--record") == 0 && i + 1 < argc) {
                record = argv[++i];
            } else {
                std::fprintf(stderr, "orvane: unknown option '%s'\n\n%s", argv[i], kUsage);
                return 2;
            }
        }
        return RunDemo(record);
    }
    std::fprintf(stderr, "orvane: unknown command '%s'\n\n%s", argv[1], kUsage);
    return 2;
}
