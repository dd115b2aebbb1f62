#include "platform/hugepages.h"

#include <sys/mman.h>

#include <cstdint>

namespace {

// The large-page size of x86-64 and AArch64 with 4 KiB base pages.
constexpr std::uintptr_t kLargePage = std::uintptr_t{2} << 20;

}  // namespace

void AdviseLargePages(void* p, std::size_t bytes) {
    const std::uintptr_t start = reinterpret_cast<std::uintptr_t>(p);
    const std::uintptr_t first = (start + kLargePage - 1) & ~(kLargePage - 1);
    const std::uintptr_t last = (start + bytes) & ~(kLargePage - 1);
    if (!p || last <= first) return;
    // Advice only: when the system refuses, the memory simply keeps small pages.
    madvise(reinterpret_cast<void*>(first), last - first, MADV_HUGEPAGE);
}
