// orvane: the command-line host of Orvane Core.
//
// Every command first does what every host does before it uses the library: the application
// folder, the callback table (the reference host's, over MainScene) and CoreInit. Then
//   demo  builds a small animated hierarchy through the host and the library, shows a few
//         edits being undone, saves it as a project file, empties the scene, loads the file back
//         and shows where the nodes are at a few times;
//   info  loads any project file and describes its scene.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "Core.h"
#include "referencehost.h"

namespace {

constexpr char kUsage[] =
    "usage: orvane <command> [options]\n"
    "\n"
    "commands:\n"
    "  demo [--project FILE]  build a small animated scene through the host, undo a few\n"
    "                         edits, save the scene as a project file (default: demo.orv in\n"
    "                         the system's temporary folder), load it back into an empty\n"
    "                         scene and print the node tree with world transforms at times\n"
    "                         0, 40 and 80\n"
    "  info FILE              load a project file and print its scene: nodes with their\n"
    "                         types, parents, key counts, materials and world transforms at\n"
    "                         the current time, and the materials\n"
    "  --help                 show this text\n";

int PrintProgress(char* text) {
    return std::fputs(text, stdout);
}
int IgnoreProgress(char*) {
    return 0;
}

// The folder that holds this executable: the application folder a host gives the library.
std::string ExecutableFolder() {
    std::error_code error;
    const std::filesystem::path self = std::filesystem::read_symlink("/proc/self/exe", error);
    return error ? std::string(".") : self.parent_path().string();
}

// Installs the reference host and starts the library, printing its progress when asked.
void StartLibrary(bool showProgress) {
    ReferenceHost::Instance().Install(ExecutableFolder().c_str());
    CoreInit(showProgress ? PrintProgress : IgnoreProgress);
}

void StopLibrary() {
    Interface::New(0, 0, 0);  // the scene's nodes and materials are destroyed with it
    CoreFini();
    ReferenceHost::Instance().Uninstall();
}

// ---- Printing the scene ----

char const* TypeName(unsigned long type) {
    static char const* const kNames[] = {"?",      "node", "mesh",  "light", "bone",
                                         "camera", "skin", "shape", "gizmo"};
    return type < sizeof(kNames) / sizeof(kNames[0]) ? kNames[type] : "?";
}

// Rounds away the float noise that would print as "-0.00".
float Tidy(float v) {
    return std::fabs(v) < 0.005f ? 0.0f : v;
}

std::string Triple(const cpoint3& p) {
    char text[96];
    std::snprintf(text, sizeof text, "(%.2f, %.2f, %.2f)", Tidy(p.x), Tidy(p.y), Tidy(p.z));
    return text;
}

// The depth of `node` below its topmost ancestor.
int Depth(const cnode* node) {
    int depth = 0;
    for (const cnode* p = node->GetParent(); p && depth < MainScene.NumNodes(); p = p->GetParent())
        ++depth;
    return depth;
}

// Calls `visit` on every node of MainScene, parents before their children.
template <class Visit>
void ForEachNodeInTree(Visit visit) {
    cbitarray order;
    const int count = MainScene.GetNodesHierarchy(order);
    for (int k = 0; k < count; ++k) visit(*MainScene.GetNodeAt(order[k]));
}

// One line per node: the name indented by its depth, then its world position and rotation
// (Euler angles X, then Y, then Z, in degrees) at `time`.
void PrintPoses(int time) {
    ForEachNodeInTree([time](const cnode& node) {
        const int indent = 2 * Depth(&node);
        std::printf("    %*s%-*s position %-26s rotation %s\n", indent, "", std::max(1, 8 - indent),
                    node.GetName(), Triple(node.GetPosition(time)).c_str(),
                    Triple(QuatToEuler(node.GetRotation(time))).c_str());
    });
}

char const* MaterialName(const cnode& node) {
    const cmaterial* material = node.GetMaterial();
    return material ? material->GetName() : "none";
}

// Each node's identity, place, keys and material, then its world transform at `time`.
void PrintNodeDetails(int time) {
    ForEachNodeInTree([time](const cnode& node) {
        const cnode* parent = node.GetParent();
        std::printf("  %s\n", node.GetName());
        std::printf("    type %s, parent %s, %d keys, material %s\n", TypeName(node.GetTypeID()),
                    parent ? parent->GetName() : "none", node.GetAnimPtr()->NumKeys(),
                    MaterialName(node));
        std::printf("    position %s  rotation %s  scale %s\n",
                    Triple(node.GetPosition(time)).c_str(),
                    Triple(QuatToEuler(node.GetRotation(time))).c_str(),
                    Triple(node.GetScale(time)).c_str());
    });
}

void PrintMaterials() {
    for (int i = 0; i < MainScene.NumMaterials(); ++i) {
        cmaterial* material = MainScene.GetMaterialAt(i);
        std::printf("  %s (%s)\n", material->GetName(),
                    MainScene.IsMaterialUsed(material) ? "used" : "unused");
    }
}

// ---- demo ----

cnode* AddNode(char const* name, const cpoint3& position) {
    auto* node = new cnode(name);
    Interface::AddToScene(node, 0);
    node->SetPosition(GetAnimTime(), position);
    return node;
}

// A robot arm: Base carries Arm, Arm carries Hand. With animation mode on, each edit writes a
// key at the current time: the hand flexes from 0 to 80, the arm tilts by time 40, the base slides
// and turns from 0 to 80. The keys hold transforms relative to the parent, so the children
// ride along with every move of their parents.
void BuildDemoScene() {
    Interface::New(0, 0, 0);
    Interface::SetAnimOn(1);
    Interface::SetAnimTime(0);
    cnode* base = AddNode("Base", cpoint3(0.0f, 0.0f, 0.0f));
    cnode* arm = AddNode("Arm", cpoint3(0.0f, 0.0f, 20.0f));
    cnode* hand = AddNode("Hand", cpoint3(0.0f, 0.0f, 60.0f));
    base->Attach(arm, 1);
    arm->Attach(hand, 1);

    Interface::SetAnimTime(80);
    hand->SetRotation(80, QuatFromAngleAxis(30.0f, cpoint3(1.0f, 0.0f, 0.0f)));
    Interface::SetAnimTime(40);
    arm->SetRotation(40, QuatFromAngleAxis(90.0f, cpoint3(1.0f, 0.0f, 0.0f)));
    Interface::SetAnimTime(80);
    base->SetPosition(80, cpoint3(100.0f, 0.0f, 0.0f));
    base->SetRotation(80, QuatFromAngleAxis(90.0f, cpoint3(0.0f, 0.0f, 1.0f)));
    Interface::SetAnimOn(0);
    Interface::ResetAnim();

    // The materials travel with the project. Plain nodes carry no material (meshes do), so
    // both stay unused here.
    Interface::AddToScene(new cmaterial("Steel"), 0);
    Interface::AddToScene(new cmaterial("Rubber"), 0);
    Interface::CopyNotes("A robot arm made by orvane demo.", 32);
}

// Records `edit` as one level of the undo history, as a host's editing command does.
template <class Edit>
void RecordEdit(unsigned long type, Edit edit) {
    theUndo.Begin(type, nullptr);
    edit();
    theUndo.End();
}

// Takes the newest level back (the host's Edit > Undo) and prints its name.
void UndoNewest() {
    std::printf("  Undo \"%s\":", theUndo.GetLevelName(theUndo.NumLevels() - 1));
    theUndo.Undo(1);
}

// A few edits recorded as undo levels and taken back again. The scene ends as it was, so the
// project saved next is the same as without them.
void ShowUndo() {
    std::printf("\nEdits undone (world positions at time %d):\n", Interface::GetAnimTime());
    cnode* base = MainScene.FindNode("Base");
    cnode* hand = MainScene.FindNode("Hand");
    const auto where = [](const cnode* node) {
        return Triple(node->GetPosition(Interface::GetAnimTime()));
    };

    MainScene.Select(base);
    RecordEdit(UNDO_MOVE, [] { MainScene.MoveSelected(cpoint3(0.0f, 0.0f, 50.0f)); });
    std::printf("  Move Base by (0, 0, 50): Base at %s, Hand at %s\n", where(base).c_str(),
                where(hand).c_str());
    UndoNewest();
    std::printf(" Base at %s, Hand at %s\n", where(base).c_str(), where(hand).c_str());
    MainScene.DeselectAll();

    MainScene.Select(hand);
    RecordEdit(UNDO_DELETE, [hand] { Interface::RemoveFromScene(hand, 0); });
    std::printf("  Delete Hand: %d nodes, Arm has %d children\n", Interface::NumNodes(),
                MainScene.FindNode("Arm")->NumChildren());
    UndoNewest();
    std::printf(" %d nodes, Hand is a child of %s again\n", Interface::NumNodes(),
                hand->GetParent() ? hand->GetParent()->GetName() : "nothing");
    MainScene.DeselectAll();

    RecordEdit(UNDO_RENAME, [base] { base->SetName("Turntable"); });
    std::printf("  Rename Base: %s\n", base->GetName());
    UndoNewest();
    std::printf(" %s\n", base->GetName());
    std::printf("  Levels left: %d of at most %d\n", theUndo.NumLevels(), theUndo.GetMaxLevels());
}

// The callbacks the demo's calls through the Interface facade reached, in order of first call,
// with their counts.
void PrintCallbackSummary() {
    std::vector<std::string> order;
    std::map<std::string, int> counts;
    for (const std::string& call : ReferenceHost::Instance().Calls())
        if (counts[call]++ == 0) order.push_back(call);
    std::printf("\nThe host answered %zu callbacks:", ReferenceHost::Instance().Calls().size());
    for (const std::string& call : order) std::printf(" %s (%d)", call.c_str(), counts[call]);
    std::printf("\n");
}

void ShowClock() {
    std::printf("\nAnimation clock (set through the host, read from the library):\n");
    Interface::SetAnimEnd(200);
    Interface::SetAnimTime(250);
    std::printf("  SetAnimEnd(200), SetAnimTime(250) -> time %d of %d..%d, %d ticks per frame\n",
                Interface::GetAnimTime(), Interface::GetAnimStart(), Interface::GetAnimEnd(),
                Interface::GetAnimTPF());
}

// Saves the scene to `project`, starts a new scene and opens the project again, as a user
// does through the host's menu. Returns 0 after printing what failed.
int SaveAndReload(const std::string& project) {
    if (!Interface::SaveAs(project.c_str())) {
        std::fprintf(stderr, "orvane: cannot write %s\n", project.c_str());
        return 0;
    }
    std::error_code error;
    std::printf("Saved %s (%ju bytes).\n", project.c_str(),
                static_cast<std::uintmax_t>(std::filesystem::file_size(project, error)));
    Interface::New(0, 0, 0);
    std::printf("New scene: %d nodes, %d materials.\n", Interface::NumNodes(),
                Interface::NumMaterials());
    if (!Interface::Open(project.c_str())) {
        std::fprintf(stderr, "orvane: cannot load %s back\n", project.c_str());
        return 0;
    }
    std::printf("Loaded it back: %d nodes, %d materials.\n", Interface::NumNodes(),
                Interface::NumMaterials());
    return 1;
}

int RunDemo(const std::string& project) {
    std::printf("Orvane Core demo\n");
    std::printf("Application folder: %s\n", ExecutableFolder().c_str());
    std::printf("Host callbacks filled: %d\n", CORE_HOST_CALLBACK_COUNT);
    StartLibrary(true);
    ShowClock();

    BuildDemoScene();
    int first = 0, last = 0;
    Interface::GetAnimSeg(&first, &last);
    std::printf("\nBuilt %d nodes and %d materials with keys from %d to %d.\n",
                Interface::NumNodes(), Interface::NumMaterials(), first, last);
    ShowUndo();
    const int reloaded = SaveAndReload(project);
    if (reloaded) {
        std::printf("\nWorld transforms (rotation as Euler angles X, Y, Z in degrees):\n");
        for (int time : {0, 40, 80}) {
            Interface::SetAnimTime(time);
            std::printf("  time %d (frame %d)\n", time, time / Interface::GetAnimTPF());
            PrintPoses(time);
        }
        PrintCallbackSummary();
    }
    StopLibrary();
    return reloaded ? 0 : 1;
}

// ---- info ----

// The scene just loaded from `file`: its totals and clock, the node tree and the materials.
void PrintProject(const std::string& file) {
    int first = 0, last = 0;
    Interface::GetAnimSeg(&first, &last);
    std::printf("%s: %d nodes, %d materials, keys from %d to %d; time %d of %d..%d\n", file.c_str(),
                Interface::NumNodes(), Interface::NumMaterials(), first, last,
                Interface::GetAnimTime(), Interface::GetAnimStart(), Interface::GetAnimEnd());
    std::printf(
        "Nodes, parents first (world transform at the current time, rotation as Euler "
        "angles X, Y, Z in degrees):\n");
    PrintNodeDetails(Interface::GetAnimTime());
    std::printf("Materials:\n");
    PrintMaterials();
    if (Interface::NotesSize() > 0)
        std::printf("Notes: %.*s\n", Interface::NotesSize(), Interface::GetNotes());
}

int RunInfo(const std::string& file) {
    StartLibrary(false);
    const int loaded = Interface::Open(file.c_str());
    if (loaded) {
        PrintProject(file);
    } else {
        std::error_code error;
        std::fprintf(stderr, "orvane: cannot load %s: %s\n", file.c_str(),
                     std::filesystem::exists(file, error)
                         ? "not an Orvane project file, or a damaged one"
                         : "no such file");
    }
    StopLibrary();
    return loaded ? 0 : 1;
}

int Usage(char const* problem, char const* what) {
    std::fprintf(stderr, "orvane: %s '%s'\n\n%s", problem, what, kUsage);
    return 2;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 2 || std::strcmp(argv[1], "--help") == 0 || std::strcmp(argv[1], "-h") == 0) {
        std::fputs(kUsage, argc < 2 ? stderr : stdout);
        return argc < 2 ? 2 : 0;
    }
    if (std::strcmp(argv[1], "demo") == 0) {
        std::string project = (std::filesystem::temp_directory_path() / "demo.orv").string();
        for (int i = 2; i < argc; ++i) {
            if (std::strcmp(argv[i], "--project") == 0 && i + 1 < argc)
                project = argv[++i];
            else
                return Usage("unknown option", argv[i]);
        }
        return RunDemo(project);
    }
    if (std::strcmp(argv[1], "info") == 0) {
        if (argc != 3) {
            std::fprintf(stderr, "orvane: info takes exactly one project file\n\n%s", kUsage);
            return 2;
        }
        return RunInfo(argv[2]);
    }
    return Usage("unknown command", argv[1]);
}
