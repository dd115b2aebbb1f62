#include "cinterface.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "cnode.h"

namespace {

using Words = std::vector<unsigned long>;

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

// A utility that records the messages it receives.
class RecordingUtility : public cutilityinterface {
public:
    char* GetName() override { return name; }
    void Start() override { ut_Run(1); }
    void Stop() override { ut_Run(0); }
    int HandleMessage(unsigned long msg, unsigned long p1, unsigned long p2) override {
        return received.push_back({msg, p1, p2}), 1;
    }
    std::vector<Words> received;
    char name[2] = "U";
};

class Registries : public ::testing::Test {
protected:
    void TearDown() override {
        UnregisterCreateInterfaces();
        UnregisterUtilityInterfaces();
        SetActiveCreateInterface(nullptr);
    }
};

TEST_F(Registries, KeepCreatorsInByteWiseNameOrderAndFindThemByNameAndClassId) {
    NamedCreator sphere("Sphere", 2, 0), cube("Cube", 2, 0), cube2("Cube"), lower("cube"),
        spot("Spot", 3, 1), unnamed("", 3, 1), high("\xC3\x84rger");
    for (ccreateinterface* tool : {&sphere, &cube, &cube2, &lower, &spot, &high, &sphere})
        EXPECT_EQ(RegisterInterface(tool), 1);
    EXPECT_EQ(RegisterInterface(static_cast<ccreateinterface*>(nullptr)), 0);
    std::vector<std::string> names;
    for (int i = 0; i < GetNumCreateInterfaces(); ++i)
        names.push_back(GetCreateInterface(i)->GetName());
    // Intended: a tool registered twice is listed twice.
    EXPECT_EQ(names, (std::vector<std::string>{"Cube", "Cube", "Sphere", "Sphere", "Spot", "cube",
                                               "\xC3\x84rger"}));
    // Equal names keep their registration order; a class id finds the first of its pair by
    // name, and an empty name sorts first.
    RegisterInterface(&unnamed);
    EXPECT_EQ((std::vector<ccreateinterface*>{
                  GetCreateInterface(2), GetCreateInterface(-1), GetCreateInterface(8),
                  GetCreateInterfaceByName("Cube"), GetCreateInterfaceByName("cube"),
                  GetCreateInterfaceByName(nullptr), GetCreateInterfaceClass(2, 0),
                  GetCreateInterfaceClass(3, 0), GetCreateInterfaceClass(3, 1)}),
              (std::vector<ccreateinterface*>{&cube2, nullptr, nullptr, &cube, &lower, nullptr,
                                              &cube, nullptr, &unnamed}));
    auto* made = static_cast<cnode*>(CreateInterfaceCreate(2, 0));
    ASSERT_NE(made, nullptr);
    EXPECT_STREQ(made->GetName(), "Cube");
    made->Delete();
    EXPECT_EQ(CreateInterfaceCreate(9, 9), nullptr);

    // Each kind has its own registry; the active tool outlives clearing.
    EXPECT_EQ(GetNumUtilityInterfaces(), 0);
    SetActiveCreateInterface(&spot);
    UnregisterCreateInterfaces();
    EXPECT_EQ(GetCreateInterface(0), nullptr);
    EXPECT_EQ(GetActiveCreateInterface(), &spot);
}

TEST_F(Registries, SendUtilityMessagesToRunningUtilitiesOrToAll) {
    RecordingUtility a, b;
    RegisterInterface(&a);
    RegisterInterface(&b);
    b.Start();
    SendUtilityMessage(1, 2, 3);
    SendUtilityMessageToAll(4, 5, 0x1'0000'0006ul);
    EXPECT_EQ(a.received, (std::vector<Words>{{4, 5, 0x1'0000'0006ul}}));
    EXPECT_EQ(b.received, (std::vector<Words>{{1, 2, 3}, {4, 5, 0x1'0000'0006ul}}));
    EXPECT_EQ((Words{GetUtilityLastMessage(), GetUtilityLastParam1(), GetUtilityLastParam2()}),
              (Words{4, 5, 6}))
        << "kept as unsigned 32-bit values";
    EXPECT_EQ(GetNumCreateInterfaces(), 0);

    // Copies carry the running flag with the base fields.
    b.SetPanelID(301);
    RecordingUtility copy;
    copy = b;
    EXPECT_EQ(copy.IsRunning() * 1000 + copy.GetPanelID(), 1301u);
}

}  // namespace
