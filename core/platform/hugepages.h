// Internal: advice to the operating system on large temporary arrays.
#ifndef ORVANE_CORE_PLATFORM_HUGEPAGES_H
#define ORVANE_CORE_PLATFORM_HUGEPAGES_H

#include <cstddef>

// Asks for the untouched memory [p, p + bytes) to be backed by large pages when it is first
// written, so that filling an array of many megabytes takes a few page faults instead of
// thousands. Only whole large pages inside the range are affected; small ranges and systems
// without large pages are left as they are. The memory's contents and lifetime do not change.
void AdviseLargePages(void* p, std::size_t bytes);

// Allocates `count` values of a trivially copyable T without initialising them, advised as
// above; freed with delete[].
template <class T>
T* NewLargeArray(std::size_t count) {
    T* array = new T[count];
    AdviseLargePages(array, count * sizeof(T));
    return array;
}

#endif
