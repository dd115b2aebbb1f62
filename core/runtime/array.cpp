// Raw element arrays.
#include "corearray.h"

#include <cstdlib>

#include "coreassert.h"

void* array_new(unsigned long bytes) {
    return std::malloc(bytes);
}

void array_delete(void* p) {
    std::free(p);
}

void array_assert(int condition) {
    // The report names this check's historical place: "Core/array", line 18.
    if (!condition) MyAssertFailedLine("condition", "Core/array", 18);
}
