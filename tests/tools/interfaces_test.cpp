#include "cinterface.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "cnode.h"

namespace {

// A creator that answers a name and a class id and makes plain nodes.
class NamedCreator : public ccreateinterface {
public:
    explicit NamedCreator(char const* name, unsigned type = 0, unsigned subtype = 0)
        : name(name), type(type), subtype(subtype) {}
    char* GetName() override { return &name[0]; }
    unsigned int GetType() override { return type; }
    unsigned int GetSubType() override { return subtype; }
    void* Create() override { return new cnode(name.c_str()); }

private:
    std::string name;
    unsigned type, subtype;
};

class NamedModifier : public cmodifyinterface {
public:
    explicit NamedModifier(char const* name) : name(name) {}
    char* GetName() override { return &name[0]; }
    int Execute() override { return 1; }
    int IsOkToModify(cnode*) override { return 1; }

private:
    std::string name;
};

// A utility that records the messages it receives.
class RecordingUtility : public cutilityinterface {
public:
    explicit RecordingUtility(char const* name) : name(name) {}
    char* GetName() override { return &name[0]; }
    void Start() override { ut_Run(1); }
    void Stop() override { ut_Run(0); }
    int HandleMessage(unsigned long msg, unsigned long p1, unsigned long p2) override {
        received.push_back({msg, p1, p2});
        return 1;
    }
    std::vector<std::vector<unsigned long>> received;

private:
    std::string name;
};

// An importer, exporter or renderer that only answers its name.
template <class Kind>
class Named final : public Kind {
public:
    explicit Named(char const* name) : name(name) {}
    const char* Name() override { return name; }

private:
    char const* name;
};

std::vector<std::string> CreatorNames() {
    std::vector<std::string> names;
    for (int i = 0; i < GetNumCreateInterfaces(); ++i)
        names.push_back(GetCreateInterface(i)->GetName());
    return names;
}

class Registries : public ::testing::Test {
protected:
    void TearDown() override {
        UnregisterCreateInterfaces();
        UnregisterModifyInterfaces();
        UnregisterUtilityInterfaces();
        UnregisterImportInterfaces();
        UnregisterExportInterfaces();
        UnregisterRenderInterfaces();
        SetActiveCreateInterface(nullptr);
        SetActiveModifyInterface(nullptr);
    }
};

TEST_F(Registries, KeepCreatorsInByteWiseNameOrderWithEqualNamesInRegistrationOrder) {
    NamedCreator sphere("Sphere"), cube("Cube"), plane("Plane"), cube2("Cube"), omni("Point(omni)"),
        rect("Rectangle"), line("Line"), lower("cube"), unnamed(""), high("\xC3\x84rger");
    for (ccreateinterface* tool : {&sphere, &cube, &plane}) EXPECT_EQ(RegisterInterface(tool), 1);
    EXPECT_EQ(CreatorNames(), (std::vector<std::string>{"Cube", "Plane", "Sphere"}));

    for (ccreateinterface* tool :
         std::vector<ccreateinterface*>{&cube2, &omni, &rect, &line, &lower, &unnamed, &high})
        RegisterInterface(tool);
    EXPECT_EQ(CreatorNames(),
              (std::vector<std::string>{"", "Cube", "Cube", "Line", "Plane", "Point(omni)",
                                        "Rectangle", "Sphere", "cube", "\xC3\x84rger"}));
    EXPECT_EQ(GetCreateInterface(1), &cube);
    EXPECT_EQ(GetCreateInterface(2), &cube2);

    // Duplicates are not detected.
    RegisterInterface(&sphere);
    EXPECT_EQ(GetNumCreateInterfaces(), 11);
    EXPECT_EQ(GetCreateInterface(8), &sphere);
    EXPECT_EQ(GetCreateInterface(9), &lower);
}

TEST_F(Registries, AnswerNullOutsideTheEntriesAndRefuseNullTools) {
    EXPECT_EQ(RegisterInterface(static_cast<ccreateinterface*>(nullptr)), 0);
    EXPECT_EQ(RegisterInterface(static_cast<cmodifyinterface*>(nullptr)), 0);
    EXPECT_EQ(RegisterInterface(static_cast<cutilityinterface*>(nullptr)), 0);
    EXPECT_EQ((std::vector<int>{GetNumCreateInterfaces(), GetNumModifyInterfaces(),
                                GetNumUtilityInterfaces()}),
              (std::vector<int>{0, 0, 0}));
    NamedCreator cube("Cube");
    RegisterInterface(&cube);
    EXPECT_EQ(GetCreateInterface(-1), nullptr);
    EXPECT_EQ(GetCreateInterface(1), nullptr);
    EXPECT_EQ(GetCreateInterface(0), &cube);
}

TEST_F(Registries, FindCreatorsByExactNameAndByClassIdInNameOrder) {
    NamedCreator sphere("Sphere", 2, 0), cube("Cube", 2, 0), light("Omni", 3, 0),
        spot("Spot", 3, 1), rebuild("", 3, 1);
    for (ccreateinterface* tool : {&sphere, &cube, &light, &spot}) RegisterInterface(tool);

    EXPECT_EQ(GetCreateInterfaceByName("Cube"), &cube);
    EXPECT_EQ(GetCreateInterfaceByName("cube"), nullptr);
    EXPECT_EQ(GetCreateInterfaceByName(""), nullptr);
    EXPECT_EQ(GetCreateInterfaceByName(nullptr), nullptr);
    EXPECT_EQ(GetCreateInterfaceByName("Cone"), nullptr);

    EXPECT_EQ(GetCreateInterfaceClass(2, 0), &cube) << "first of the pair by name";
    EXPECT_EQ(GetCreateInterfaceClass(3, 1), &spot);
    EXPECT_EQ(GetCreateInterfaceClass(5, 0), nullptr);
    RegisterInterface(&rebuild);
    EXPECT_EQ(GetCreateInterfaceClass(3, 1), &rebuild) << "an empty name sorts first";

    auto* made = static_cast<cnode*>(CreateInterfaceCreate(2, 0));
    ASSERT_NE(made, nullptr);
    EXPECT_STREQ(made->GetName(), "Cube");
    made->Delete();
    EXPECT_EQ(CreateInterfaceCreate(9, 9), nullptr);
}

TEST_F(Registries, KeepTheActiveToolsAcrossClearing) {
    NamedCreator cube("Cube");
    NamedModifier bend("Bend");
    EXPECT_EQ(GetActiveCreateInterface(), nullptr);
    EXPECT_EQ(GetActiveModifyInterface(), nullptr);
    SetActiveCreateInterface(&cube);  // not registered: stored as given
    SetActiveModifyInterface(&bend);
    RegisterInterface(&bend);
    EXPECT_EQ(GetModifyInterface(0), &bend);
    UnregisterCreateInterfaces();
    UnregisterModifyInterfaces();
    EXPECT_EQ(GetActiveCreateInterface(), &cube);
    EXPECT_EQ(GetActiveModifyInterface(), &bend);
}

TEST_F(Registries, SendUtilityMessagesToRunningUtilitiesOrToAll) {
    RecordingUtility b("B"), a("A");
    RegisterInterface(&b);
    RegisterInterface(&a);
    SendUtilityMessage(7, 8, 9);
    EXPECT_TRUE(a.received.empty());
    EXPECT_TRUE(b.received.empty());
    EXPECT_EQ((std::vector<unsigned long>{GetUtilityLastMessage(), GetUtilityLastParam1(),
                                          GetUtilityLastParam2()}),
              (std::vector<unsigned long>{7, 8, 9}));

    b.Start();
    EXPECT_EQ(b.IsRunning(), 1);
    SendUtilityMessage(1, 2, 3);
    EXPECT_TRUE(a.received.empty());
    EXPECT_EQ(b.received, (std::vector<std::vector<unsigned long>>{{1, 2, 3}}));

    SendUtilityMessageToAll(4, 5, 0x1'0000'0006ul);
    EXPECT_EQ(a.received, (std::vector<std::vector<unsigned long>>{{4, 5, 0x1'0000'0006ul}}));
    EXPECT_EQ(b.received.size(), 2u);
    EXPECT_EQ(GetUtilityLastMessage(), 4u);
    EXPECT_EQ(GetUtilityLastParam2(), 6u) << "kept as an unsigned 32-bit value";

    // Copies carry the running flag with the base fields.
    b.SetPanelID(301);
    RecordingUtility copy("C");
    copy = b;
    EXPECT_EQ(copy.IsRunning(), 1);
    EXPECT_EQ(copy.GetPanelID(), 301u);
}

TEST_F(Registries, KeepFileAndRenderToolsInNameOrder) {
    Named<cimportinterface> objIn("OBJ"), dxfIn("DXF");
    Named<cexportinterface> objOut("OBJ"), aseOut("ASE");
    Named<crenderinterface> ray("Raytrace"), preview("Preview");
    const auto registerAll = [](auto&... tools) { (RegisterInterface(&tools), ...); };
    registerAll(objIn, dxfIn, objOut, aseOut, ray, preview);
    EXPECT_EQ(GetNumImportInterfaces(), 2);
    EXPECT_EQ(GetImportInterface(0), &dxfIn);
    EXPECT_EQ(GetExportInterface(0), &aseOut);
    EXPECT_EQ(GetExportInterface(1), &objOut);
    EXPECT_EQ(GetRenderInterface(0), &preview);
    EXPECT_EQ(GetRenderInterface(2), nullptr);
    UnregisterImportInterfaces();
    EXPECT_EQ(GetImportInterface(0), nullptr);
    EXPECT_EQ(GetNumExportInterfaces(), 2) << "each kind has its own registry";
}

TEST_F(Registries, BaseKindsSupplyTheirDefaults) {
    NamedModifier modifier("M");
    NamedCreator creator("C");
    Named<cimportinterface> importer("X");
    EXPECT_STREQ(modifier.GetCategory(), "");
    EXPECT_STREQ(importer.Ext(0), "");
    EXPECT_EQ((std::vector<long>{modifier.IsPublic(), modifier.UseApply(), modifier.OwnUndo(),
                                 creator.CanCreateNew(), creator.DragIdleMouseCapture(),
                                 creator.BeginDrag(nullptr, 1, 2, 0, 0, 0, 0, 0, 0, 0, 0, 0),
                                 creator.DlgProc(nullptr, 0x110, 0, 0), creator.GetPanelID(),
                                 importer.NumExt(), importer.Import("/nonexistent")}),
              (std::vector<long>{1, 1, 0, 1, 0, 0, 0, 0, 0, 0}));
    EXPECT_EQ((std::vector<const void*>{modifier.GetGizmo(), modifier.Create(),
                                        creator.GetHBitmap(), creator.GetInstance()}),
              (std::vector<const void*>(4, nullptr)));
}

}  // namespace
