// Raw element arrays, for the plain heap arrays of vertices, faces and the like.
#ifndef ORVANE_COREARRAY_H
#define ORVANE_COREARRAY_H

#include "coreapi.h"

// Allocates `bytes` bytes from the general heap; no zeroing, no header. Null on failure.
CORE_API void* array_new(unsigned long bytes);

// Frees a block from array_new; null is ignored.
CORE_API void array_delete(void* p);

// Reports "condition" (file "Core/array", line 18) through MyAssertFailedLine when
// `condition` is 0. Growable arrays call it right after array_new with `block != nullptr`.
CORE_API void array_assert(int condition);

#endif
