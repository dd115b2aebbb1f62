#include "undo.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "animclock.h"

namespace {

// What happened to the counted items: one entry per call, "<id>:<call>".
std::vector<std::string> events;

// An item that records its calls; Validate answers `valid`, Restore answers 1.
class CountedItem : public UndoItem {
public:
    CountedItem(char const* id, int valid = 1) : id(id), valid(valid) {
        SetName(const_cast<char*>(id));
    }
    ~CountedItem() override { events.push_back(std::string(id) + ":freed"); }
    int Restore() override {
        events.push_back(std::string(id) + ":restore");
        return 1;
    }
    void Destroy() override { events.push_back(std::string(id) + ":destroy"); }
    int Validate() override { return valid; }

private:
    char const* id;
    int valid;
};

std::vector<std::string> Names() {
    std::vector<std::string> names;
    for (int i = 0; i < theUndo.NumLevels(); ++i) names.push_back(theUndo.GetLevelName(i));
    return names;
}

class UndoManager : public ::testing::Test {
protected:
    void SetUp() override {
        theUndo.Clear();
        theUndo.SetMaxLevels(5);
        events.clear();
    }
    void TearDown() override {
        theUndo.Clear();
        theUndo.SetMaxLevels(5);
        SetAnimTime(0);
    }
    static void Push(std::initializer_list<char const*> ids) {
        for (char const* id : ids) ASSERT_EQ(theUndo.BeginGeneric(new CountedItem(id)), 1);
    }
};

TEST_F(UndoManager, DropsTheOldestLevelBeyondTheDepthDestroyingItTwiceAndFreeingIt) {
    Push({"a", "b", "c", "d", "e"});
    EXPECT_TRUE(events.empty());
    Push({"f"});
    EXPECT_EQ(theUndo.NumLevels(), 5);
    EXPECT_EQ(Names(), (std::vector<std::string>{"b", "c", "d", "e", "f"}));
    EXPECT_EQ(events, (std::vector<std::string>{"a:destroy", "a:destroy", "a:freed"}));
}

TEST_F(UndoManager, EndKeepsOnlyLevelsThatValidate) {
    EXPECT_EQ(theUndo.End(), 0);
    Push({"a"});
    EXPECT_EQ(theUndo.End(), 1);
    theUndo.BeginGeneric(new CountedItem("empty", 0));
    EXPECT_EQ(theUndo.NumLevels(), 2);
    EXPECT_EQ(theUndo.End(), 0);
    EXPECT_EQ(Names(), (std::vector<std::string>{"a"}));
    EXPECT_EQ(events, (std::vector<std::string>{"empty:destroy", "empty:destroy", "empty:freed"}));

    struct Plain : UndoItem {};
    theUndo.BeginGeneric(new Plain);
    EXPECT_EQ(theUndo.End(), 0) << "the base item never validates";
    EXPECT_EQ(theUndo.NumLevels(), 1);
    EXPECT_EQ(theUndo.BeginGeneric(nullptr), 0);
}

TEST_F(UndoManager, UndoRestoresTheNewestLevelAndDropsItOnlyWhenAsked) {
    EXPECT_EQ(theUndo.Undo(1), 0);
    Push({"a", "b"});
    EXPECT_EQ(theUndo.Undo(0), 1);
    EXPECT_EQ(theUndo.Undo(0), 1);
    EXPECT_EQ(theUndo.NumLevels(), 2);
    EXPECT_EQ(theUndo.Undo(1), 1);
    EXPECT_EQ(Names(), (std::vector<std::string>{"a"}));
    EXPECT_EQ(events, (std::vector<std::string>{"b:restore", "b:restore", "b:restore", "b:destroy",
                                                "b:destroy", "b:freed"}));
}

TEST_F(UndoManager, AbortsLevelsWithoutRestoringThem) {
    EXPECT_EQ(theUndo.AbortLast(), 0);
    Push({"a", "b", "c"});
    EXPECT_EQ(theUndo.Abort(-1), 0);
    EXPECT_EQ(theUndo.Abort(3), 0);
    EXPECT_EQ(theUndo.Abort(1), 1);
    EXPECT_EQ(Names(), (std::vector<std::string>{"a", "c"}));
    EXPECT_EQ(theUndo.AbortLast(), 1);
    EXPECT_EQ(Names(), (std::vector<std::string>{"a"}));
    for (const std::string& event : events) EXPECT_EQ(event.find("restore"), std::string::npos);

    events.clear();
    theUndo.Clear();
    EXPECT_EQ(theUndo.NumLevels(), 0);
    EXPECT_EQ(events, (std::vector<std::string>{"a:destroy", "a:destroy", "a:freed"}));
    Push({"x"});  // the array grows again from nothing
    EXPECT_EQ(theUndo.NumLevels(), 1);
}

TEST_F(UndoManager, SetsTheDepthWithinOneToFiftyKeepingTheNewestLevels) {
    EXPECT_EQ(theUndo.SetMaxLevels(0), 0);
    EXPECT_EQ(theUndo.SetMaxLevels(51), 0);
    EXPECT_EQ(theUndo.GetMaxLevels(), 5);
    Push({"a", "b", "c", "d", "e"});
    EXPECT_EQ(theUndo.SetMaxLevels(2), 1);
    EXPECT_EQ(Names(), (std::vector<std::string>{"d", "e"}));
    EXPECT_EQ(theUndo.SetMaxLevels(50), 1);
    EXPECT_EQ(Names(), (std::vector<std::string>{"d", "e"}));

    // Growing past the 50 slots' first doubling keeps every level.
    theUndo.Clear();
    std::vector<std::string> ids;
    for (int i = 0; i < 40; ++i) ids.push_back(std::to_string(i));
    for (const std::string& id : ids) theUndo.BeginGeneric(new CountedItem(id.c_str()));
    EXPECT_EQ(theUndo.NumLevels(), 40);
    EXPECT_EQ(std::string(theUndo.GetLevelName(39)), "39");
    theUndo.Clear();
}

TEST_F(UndoManager, AnswersNullOrMinusOneOutsideTheLevels) {
    Push({"a"});
    for (int index : {-1, 1}) {
        EXPECT_EQ(theUndo.GetLevel(index), nullptr);
        EXPECT_EQ(theUndo.GetLevelName(index), nullptr);
        EXPECT_EQ(theUndo.GetLevelType(index), -1);
        EXPECT_EQ(theUndo.GetLevelTime(index), -1);
    }
    struct Plain : UndoItem {};
    Plain plain;
    EXPECT_EQ(plain.GetName(), nullptr);
    EXPECT_EQ((std::vector<int>{plain.GetType(), plain.GetTime(), plain.Restore()}),
              (std::vector<int>{-1, -1, 0}));
}

TEST_F(UndoManager, MakesItemsByTypeCodeWithNamesTypesAndTimes) {
    SetAnimTime(80);
    EXPECT_EQ(CreateNewUndoItem(1, nullptr), nullptr);
    EXPECT_EQ(CreateNewUndoItem(33, nullptr), nullptr);
    EXPECT_EQ(theUndo.Begin(33, nullptr), 0);
    EXPECT_EQ(theUndo.NumLevels(), 0);

    char empty[] = "";
    char custom[] = "Nudge";
    EXPECT_EQ(theUndo.Begin(UNDO_MOVE, nullptr), 1);
    EXPECT_EQ(theUndo.Begin(UNDO_MOVE, empty), 1);
    EXPECT_EQ(theUndo.Begin(UNDO_MOVE, custom), 1);
    EXPECT_EQ(Names(), (std::vector<std::string>{"Move", "Move", "Nudge"}));
    EXPECT_EQ(theUndo.GetLevelName(2), custom) << "the pointer is kept, not the text";
    EXPECT_EQ(theUndo.GetLevelType(0), 2);
    EXPECT_EQ(theUndo.GetLevelTime(0), 80);

    const std::vector<std::string> expected = {
        "Move",   "Rotate",          "Scale",         "Edit Keys",      "Reset Transform", "Create",
        "Delete", "Select",          "Hide",          "Unhide",         "Rename",          "Link",
        "Unlink", "Assign Material", "Edit Material", "Delete Material"};
    for (unsigned long code = UNDO_MOVE; code <= UNDO_DELETEMATERIAL; ++code) {
        UndoItem* item = CreateNewUndoItem(code, nullptr);
        ASSERT_NE(item, nullptr) << code;
        EXPECT_EQ(item->GetType(), static_cast<int>(code));
        EXPECT_EQ(std::string(item->GetName()), expected[code - UNDO_MOVE]);
        item->Delete();
    }
}

}  // namespace
