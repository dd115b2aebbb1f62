#include <dlfcn.h>
#include <gtest/gtest.h>
#include <link.h>

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
    const auto* handle = reinterpret_cast<const unsigned char*>(GetCoreModuleHandle());
    ASSERT_NE(handle, nullptr);
    EXPECT_EQ(reinterpret_cast<ElfW(Addr)>(handle), map->l_addr);
    EXPECT_EQ(handle[0], 0x7f);
    EXPECT_EQ(handle[1], 'E');
    EXPECT_EQ(handle[2], 'L');
    EXPECT_EQ(handle[3], 'F');
}

}  // namespace
