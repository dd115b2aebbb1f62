#include <dlfcn.h>
#include <gtest/gtest.h>
#include <link.h>

#include <string>

#include "coreinterface.h"
#include "coreplatform.h"

namespace {

TEST(ModuleHandle, IsTheLibrarysOwnLoadAddressFromTheMomentItIsLoaded) {
    void* library = dlopen(CORE_LIBRARY_FILE, RTLD_NOW | RTLD_NOLOAD);
    ASSERT_NE(library, nullptr);
    link_map* map = nullptr;
    ASSERT_EQ(dlinfo(library, RTLD_DI_LINKMAP, &map), 0);
    dlclose(library);

    // The ELF header sits at the start of the mapping: the handle points at "\x7f" "ELF".
    const auto* handle = reinterpret_cast<const char*>(GetCoreModuleHandle());
    ASSERT_NE(handle, nullptr);
    EXPECT_EQ(reinterpret_cast<ElfW(Addr)>(handle), map->l_addr);
    EXPECT_EQ(std::string(handle, handle + 4), "\177ELF");
}

}  // namespace
