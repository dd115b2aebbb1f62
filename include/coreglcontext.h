// Offscreen OpenGL contexts for rendering without a window: tests, thumbnails and batch output.
#ifndef ORVANE_COREGLCONTEXT_H
#define ORVANE_COREGLCONTEXT_H

#include "coreapi.h"

struct CoreGLContext;  // opaque

// An offscreen desktop OpenGL context (compatibility profile, so GL 1.1 calls work) over EGL,
// Mesa's surfaceless platform when there is no display, with its own width x height
// framebuffer (RGBA 8 bits each, depth 24, stencil 8; an EGL pbuffer) that glReadPixels
// reads. Shares textures and display lists with `share` when it is not null. Null when
// no EGL display, config or context can be had.
CORE_API CoreGLContext* CoreGLContext_Create(int width, int height, CoreGLContext* share);
// Makes `context` current on the calling thread (null: none current). 1 on success.
CORE_API int CoreGLContext_MakeCurrent(CoreGLContext* context);
// The context current on the calling thread, or null.
CORE_API CoreGLContext* CoreGLContext_GetCurrent();
// Destroys the context, releasing it first when it is current.
CORE_API void CoreGLContext_Destroy(CoreGLContext* context);
// The address of a GL or extension function (eglGetProcAddress), or null.
CORE_API void* CoreGLContext_GetProcAddress(char const* name);

#endif
