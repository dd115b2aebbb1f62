#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "cinterface.h"
#include "cnode.h"
#include "coreinterface.h"

namespace {

std::vector<std::string> g_progress;

int RecordProgress(char* text) {
    g_progress.emplace_back(text);
    return -1;  // the result is ignored
}

// The type id of the node that the creator of (type, subtype) makes, or 0 for none.
unsigned long MadeType(unsigned type, unsigned subtype) {
    auto* node = static_cast<cnode*>(CreateInterfaceCreate(type, subtype));
    if (!node) return 0;
    const unsigned long made = node->GetTypeID();
    node->Delete();
    return made;
}

TEST(CoreStartup, InitPrintsItsProgressTextsAndRegistersTheInvisibleCreatorsFirst) {
    g_progress.clear();
    EXPECT_EQ(CoreInit(RecordProgress), 1);
    EXPECT_EQ(g_progress, (std::vector<std::string>{"  Registering interfaces: ", "OK\n"}));
    EXPECT_EQ(CoreFini(), 1);

    ASSERT_GE(GetNumCreateInterfaces(), 3);
    std::vector<unsigned> ids;
    for (int i = 0; i < 3; ++i) {
        ccreateinterface* tool = GetCreateInterface(i);
        EXPECT_STREQ(tool->GetName(), "");
        EXPECT_EQ(tool->IsPublic() + tool->GetPanelID(), 0u);
        EXPECT_EQ(tool->GetInstance(), nullptr);
        ids.push_back(tool->GetType() * 10 + tool->GetSubType());
    }
    EXPECT_EQ(ids, (std::vector<unsigned>{10, 20, 60}));
    EXPECT_EQ((std::vector<unsigned long>{MadeType(1, 0), MadeType(2, 0), MadeType(6, 0),
                                          MadeType(3, 7)}),
              (std::vector<unsigned long>{TYPE_NODE, TYPE_MESH, TYPE_SKIN, 0}));
    UnregisterCreateInterfaces();
}

}  // namespace
