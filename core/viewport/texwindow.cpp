// The texture window and the switch to its context around texture work.
#include "texwindow.h"

#include <GL/gl.h>

#include "texcontextscope.h"

namespace {

CGLWindow* texWindow = nullptr;
CoreGLContext* (*contextLookup)(CGLWindow*) = nullptr;

CoreGLContext* TexWindowContext() {
    return texWindow && contextLookup ? contextLookup(texWindow) : nullptr;
}

}  // namespace

void CGLWindow_SetTexGLWindow(CGLWindow* window) {
    texWindow = window;
}

CGLWindow* CGLWindow_GetTexGLWindow() {
    return texWindow;
}

void CGLWindow_SetContextLookup(CoreGLContext* (*lookup)(CGLWindow* window)) {
    contextLookup = lookup;
}

TexContextScope::TexContextScope() {
    CoreGLContext* target = TexWindowContext();
    if (!target) return;
    previous = CoreGLContext_GetCurrent();
    if (previous != target) switched = CoreGLContext_MakeCurrent(target) == 1;
}

TexContextScope::~TexContextScope() {
    if (switched) CoreGLContext_MakeCurrent(previous);
}

int TexContextAvailable() {
    // Without a current context the GL answers every query with null.
    return TexWindowContext() || glGetString(GL_VERSION) ? 1 : 0;
}
