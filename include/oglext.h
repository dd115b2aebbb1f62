// The OpenGL extensions the viewports use: detection, and the entry points of their functions.
// Call OGL_Init once a rendering context is current; the results are library-wide.
#ifndef ORVANE_OGLEXT_H
#define ORVANE_OGLEXT_H

#include "coreapi.h"

// Resolves the extension entry points, reads the number of texture units and sets the
// multitexture, vertex-array and compiled-array flags from the current context. Returns 1.
CORE_API int OGL_Init();
// Resolves every extension entry point through the platform's GL lookup. Returns 1 only when
// all of them resolved, else 0; the pointers that did resolve are kept either way.
CORE_API int OGL_LoadExtensions();
// 1 when `name` is listed in the current context's extension string: its first occurrence
// there is followed by a blank or the end of the string. 0 without a current context.
CORE_API int OGL_CheckExtension(char const* name);

// The results of the last OGL_Init (all 0 before it, or when it ran without a context).
CORE_API int OGL_MulTex_Supported();
CORE_API int OGL_Arrays_Supported();
CORE_API int OGL_Compiled_Arrays_Supported();
CORE_API int OGL_Num_Tex_Units();

// The extension entry points, in the order OGL_LoadExtensions asks for them.
// Their number.
CORE_API int OGL_NumExtensionProcs();
// The function name asked for at `index` (0 .. OGL_NumExtensionProcs() - 1), or null.
CORE_API char const* OGL_ExtensionProcName(int index);
// The entry point stored for `index` (null when it did not resolve or the index is outside).
CORE_API void* OGL_ExtensionProc(int index);
// The entry point stored under the function `name`, or null.
CORE_API void* OGL_FindExtensionProc(char const* name);

#endif
