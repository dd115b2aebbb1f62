// Internal: raw element arrays of non-trivial types (vertices carry a smoothing-normal list),
// allocated with array_new and constructed in place.
#ifndef ORVANE_CORE_MESH_ELEMENTARRAY_H
#define ORVANE_CORE_MESH_ELEMENTARRAY_H

#include <algorithm>
#include <new>

#include "corearray.h"

// Destroys `count` elements at `p` and frees the block; null is ignored.
template <class T>
void DeleteElements(T* p, int count) {
    if (!p) return;
    for (int i = 0; i < count; ++i) p[i].~T();
    array_delete(p);
}

// A block of `count` elements: the first min(count, oldCount) copied from `old`, the rest
// default-constructed. Null when count < 1 or the allocation fails; `old` is not freed.
template <class T>
T* CopyElements(const T* old, int oldCount, int count) {
    if (count < 1) return nullptr;
    void* block =
        array_new(static_cast<unsigned long>(sizeof(T)) * static_cast<unsigned long>(count));
    if (!block) return nullptr;
    T* p = static_cast<T*>(block);
    const int kept = old ? std::min(oldCount, count) : 0;
    for (int i = 0; i < kept; ++i) new (p + i) T(old[i]);
    for (int i = kept; i < count; ++i) new (p + i) T();
    return p;
}

#endif
