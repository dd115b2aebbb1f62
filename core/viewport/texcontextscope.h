// Internal: uploads and deletions of textures run inside the texture window's context.
#ifndef ORVANE_CORE_VIEWPORT_TEXCONTEXTSCOPE_H
#define ORVANE_CORE_VIEWPORT_TEXCONTEXTSCOPE_H

#include "coreglcontext.h"

// While alive, the texture window's context is current (when a texture window is set and its
// context is known); the context current before is made current again on destruction.
class TexContextScope {
public:
    TexContextScope();
    ~TexContextScope();
    TexContextScope(const TexContextScope&) = delete;
    TexContextScope& operator=(const TexContextScope&) = delete;

private:
    CoreGLContext* previous = nullptr;
    bool switched = false;
};

// 1 when GL calls reach a context: one is current on this thread, or the texture window's
// context is known. Without one a texture cannot be made.
int TexContextAvailable();

#endif
