#include "undo.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "animclock.h"

namespace {

using Ints = std::vector<int>;

// What happened to the counted items: one entry per call, "<id>:<call>".
std::vector<std::string> events;

// An item that records its calls; Validate answers `valid`, Restore answers 1.
class CountedItem : public UndoItem {
public:
    explicit CountedItem(std::string id, int valid = 1) : id(std::move(id)), valid(valid) {
        SetName(&this->id[0]);
    }
    ~CountedItem() override { events.push_back(id + ":freed"); }
    int Restore() override { return events.push_back(id + ":restore"), 1; }
    void Destroy() override { events.push_back(id + ":destroy"); }
    int Validate() override { return valid; }

private:
    std::string id;
    int valid;
};

std::vector<std::string> Names() {
    std::vector<std::string> names;
    for (int i = 0; i < theUndo.NumLevels(); ++i) names.push_back(theUndo.GetLevelName(i));
    return names;
}

void Push(std::initializer_list<char const*> ids) {
    for (char const* id : ids) ASSERT_EQ(theUndo.BeginGeneric(new CountedItem(id)), 1);
}

std::vector<std::string> Dropped(const std::string& id) {
    return {id + ":destroy", id + ":destroy", id + ":freed"};
}

TEST(UndoManager, KeepsValidLevelsUpToTheDepthAndDropsLevelsDestroyingThemTwice) {
    theUndo.Clear();
    theUndo.SetMaxLevels(5);
    events.clear();
    Push({"a", "b", "c", "d", "e", "f"});
    EXPECT_EQ(events, Dropped("a"));
    EXPECT_EQ((Ints{theUndo.SetMaxLevels(0), theUndo.SetMaxLevels(51), theUndo.GetMaxLevels(),
                    theUndo.SetMaxLevels(3)}),
              (Ints{0, 0, 5, 1}));
    EXPECT_EQ(Names(), (std::vector<std::string>{"d", "e", "f"}));
    theUndo.SetMaxLevels(5);

    events.clear();
    theUndo.BeginGeneric(new CountedItem("empty", 0));
    EXPECT_EQ(theUndo.End(), 0);
    EXPECT_EQ(events, Dropped("empty"));
    EXPECT_EQ(theUndo.BeginGeneric(nullptr), 0);
    EXPECT_EQ(theUndo.End(), 1);

    events.clear();
    EXPECT_EQ((Ints{theUndo.Undo(0), theUndo.Undo(1), theUndo.Abort(2), theUndo.Abort(0)}),
              (Ints{1, 1, 0, 1}));
    EXPECT_EQ(Names(), (std::vector<std::string>{"e"}));
    EXPECT_EQ(theUndo.AbortLast(), 1);
    std::vector<std::string> expected = {"f:restore", "f:restore"};
    for (const char* id : {"f", "d", "e"})
        for (const std::string& event : Dropped(id)) expected.push_back(event);
    EXPECT_EQ(events, expected);
    EXPECT_EQ(theUndo.Undo(1) + theUndo.AbortLast(), 0);

    EXPECT_EQ(theUndo.SetMaxLevels(50), 1);
    for (int i = 0; i < 40; ++i) theUndo.BeginGeneric(new CountedItem(std::to_string(i)));
    EXPECT_EQ(theUndo.NumLevels(), 40) << "the array grows again from nothing";
    EXPECT_EQ(std::string(theUndo.GetLevelName(39)), "39");
    theUndo.Clear();
    theUndo.SetMaxLevels(5);
}

TEST(UndoManager, MakesItemsByTypeCodeWithNamesTypesAndTimes) {
    theUndo.Clear();
    SetAnimTime(80);
    EXPECT_EQ(CreateNewUndoItem(1, nullptr), nullptr);
    EXPECT_EQ(theUndo.Begin(33, nullptr), 0);
    char empty[] = "";
    char custom[] = "Nudge";
    EXPECT_EQ(theUndo.Begin(UNDO_MOVE, empty), 1);
    EXPECT_EQ(theUndo.Begin(UNDO_MOVE, custom), 1);
    EXPECT_EQ(Names(), (std::vector<std::string>{"Move", "Nudge"}));
    EXPECT_EQ(theUndo.GetLevelName(1), custom) << "the pointer is kept, not the text";
    EXPECT_EQ((Ints{theUndo.GetLevelType(0), theUndo.GetLevelTime(0), theUndo.GetLevelTime(2)}),
              (Ints{2, 80, -1}));
    EXPECT_EQ(theUndo.GetLevelName(-1), nullptr);
    theUndo.Clear();
    SetAnimTime(0);

    const std::vector<std::string> expected = {
        "Move",   "Rotate",          "Scale",         "Edit Keys",      "Reset Transform", "Create",
        "Delete", "Select",          "Hide",          "Unhide",         "Rename",          "Link",
        "Unlink", "Assign Material", "Edit Material", "Delete Material"};
    for (unsigned long code = UNDO_MOVE; code <= UNDO_DELETEMATERIAL; ++code) {
        UndoItem* item = CreateNewUndoItem(code, nullptr);
        ASSERT_NE(item, nullptr) << code;
        EXPECT_EQ(std::string(item->GetName()), expected[code - UNDO_MOVE]);
        item->Delete();
    }
}

}  // namespace
