#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "coreinterface.h"

namespace {

std::vector<std::string> g_progress;

int RecordProgress(char* text) {
    g_progress.emplace_back(text);
    return -1;  // the result is ignored
}

TEST(CoreStartup, InitPrintsItsTwoProgressTextsInOrderAndSucceeds) {
    g_progress.clear();
    EXPECT_EQ(CoreInit(RecordProgress), 1);
    EXPECT_EQ(g_progress, (std::vector<std::string>{"  Registering interfaces: ", "OK\n"}));
    EXPECT_EQ(CoreFini(), 1);
}

}  // namespace
