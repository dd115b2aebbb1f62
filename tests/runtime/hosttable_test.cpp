#include <dlfcn.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "coreinterface.h"

namespace {

// The library's own storage of a symbol, looked up in libCore.so itself (a host executable may
// hold a relocated copy of exported data).
std::uintptr_t LibrarySymbol(const std::string& name) {
    void* library = dlopen(CORE_LIBRARY_FILE, RTLD_NOW | RTLD_NOLOAD);
    const auto address =
        reinterpret_cast<std::uintptr_t>(library ? dlsym(library, name.c_str()) : nullptr);
    if (library) dlclose(library);
    return address;
}

TEST(HostTable, HoldsEightySixNullPointersContiguouslyInTableOrder) {
#define CORE_NAME_OF(ret, name, params) #name,
    const std::vector<std::string> names = {CORE_HOST_CALLBACKS(CORE_NAME_OF)};
#undef CORE_NAME_OF
    ASSERT_EQ(names.size() * 1000 + CORE_HOST_CALLBACK_COUNT, 86086u);
    EXPECT_EQ(names[17] + names[51], "I_GetSelNodeI_PickFromList");
    const std::uintptr_t base = LibrarySymbol("I_GetAppVersion");
    ASSERT_NE(base, 0u);
    for (size_t i = 0; i < names.size(); ++i)
        EXPECT_EQ(LibrarySymbol(names[i]), base + i * sizeof(void*)) << names[i];
#define CORE_EXPECT_NULL(ret, name, params) EXPECT_EQ(name, nullptr) << #name;
    CORE_HOST_CALLBACKS(CORE_EXPECT_NULL)
#undef CORE_EXPECT_NULL
    EXPECT_TRUE(_AbortApp == nullptr && Application_InformDeleted == nullptr);
    EXPECT_EQ(sizeof(path_app), 256u);
}

}  // namespace
