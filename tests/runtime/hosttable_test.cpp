#include <dlfcn.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "coreinterface.h"

namespace {

std::vector<std::string> TableNames() {
#define CORE_NAME_OF(ret, name, params) #name,
    return {CORE_HOST_CALLBACKS(CORE_NAME_OF)};
#undef CORE_NAME_OF
}

// The library's own storage of a symbol, looked up in libCore.so itself (a host executable may
// hold a relocated copy of exported data).
std::uintptr_t LibrarySymbol(const char* name) {
    void* library = dlopen(CORE_LIBRARY_FILE, RTLD_NOW | RTLD_NOLOAD);
    if (!library) return 0;
    const auto address = reinterpret_cast<std::uintptr_t>(dlsym(library, name));
    dlclose(library);
    return address;
}

TEST(HostTable, HoldsEightySixPointersContiguouslyInTableOrder) {
    const std::vector<std::string> names = TableNames();
    ASSERT_EQ(names.size(), 86u);
    ASSERT_EQ(CORE_HOST_CALLBACK_COUNT, 86);
    EXPECT_EQ(names.front(), "I_GetAppVersion");
    EXPECT_EQ(names[17], "I_GetSelNode");
    EXPECT_EQ(names[51], "I_PickFromList");
    EXPECT_EQ(names.back(), "I_MirrorDlg");

    const std::uintptr_t base = LibrarySymbol("I_GetAppVersion");
    ASSERT_NE(base, 0u);
    EXPECT_EQ(base % alignof(void*), 0u);
    for (size_t i = 0; i < names.size(); ++i)
        EXPECT_EQ(LibrarySymbol(names[i].c_str()), base + i * sizeof(void*)) << names[i];
}

TEST(HostTable, StartsWithEveryPointerAndHookNull) {
#define CORE_EXPECT_NULL(ret, name, params) EXPECT_EQ(name, nullptr) << #name;
    CORE_HOST_CALLBACKS(CORE_EXPECT_NULL)
#undef CORE_EXPECT_NULL
    EXPECT_EQ(_AbortApp, nullptr);
    EXPECT_EQ(Application_InformDeleted, nullptr);
}

TEST(HostTable, PathAppIsAWritable256ByteBufferAnsweredByGetAppPath) {
    EXPECT_EQ(sizeof(path_app), 256u);
    EXPECT_EQ(GetAppPath(), path_app);
}

}  // namespace
