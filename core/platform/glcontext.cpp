// Offscreen OpenGL contexts over EGL: a pbuffer per context, on Mesa's surfaceless platform
// when no window system is reachable.
#include <EGL/egl.h>
#include <EGL/eglext.h>

#include <cstdlib>
#include <mutex>

#include "coreglcontext.h"

struct CoreGLContext {
    EGLDisplay display;
    EGLContext context;
    EGLSurface surface;
};

namespace {

thread_local CoreGLContext* t_current = nullptr;

bool HasWindowSystem() {
    char const* x11 = std::getenv("DISPLAY");
    char const* wayland = std::getenv("WAYLAND_DISPLAY");
    return (x11 && *x11) || (wayland && *wayland);
}

EGLDisplay InitializedDisplay(EGLDisplay display) {
    if (display == EGL_NO_DISPLAY) return EGL_NO_DISPLAY;
    EGLint major = 0;
    EGLint minor = 0;
    return eglInitialize(display, &major, &minor) ? display : EGL_NO_DISPLAY;
}

EGLDisplay OpenSurfacelessDisplay() {
    return InitializedDisplay(
        eglGetPlatformDisplay(EGL_PLATFORM_SURFACELESS_MESA, EGL_DEFAULT_DISPLAY, nullptr));
}

// One display serves every context of the process so that contexts can share objects; it
// stays initialised for the life of the process because other contexts may still use it.
EGLDisplay SharedDisplay() {
    static std::once_flag once;
    static EGLDisplay display = EGL_NO_DISPLAY;
    std::call_once(once, [] {
        if (HasWindowSystem()) display = InitializedDisplay(eglGetDisplay(EGL_DEFAULT_DISPLAY));
        // A window system that refuses us (no server behind $DISPLAY) still leaves rendering
        // to memory possible.
        if (display == EGL_NO_DISPLAY) display = OpenSurfacelessDisplay();
    });
    return display;
}

EGLConfig ChooseConfig(EGLDisplay display) {
    EGLint const attributes[] = {EGL_SURFACE_TYPE,
                                 EGL_PBUFFER_BIT,
                                 EGL_RENDERABLE_TYPE,
                                 EGL_OPENGL_BIT,
                                 EGL_RED_SIZE,
                                 8,
                                 EGL_GREEN_SIZE,
                                 8,
                                 EGL_BLUE_SIZE,
                                 8,
                                 EGL_ALPHA_SIZE,
                                 8,
                                 EGL_DEPTH_SIZE,
                                 24,
                                 EGL_STENCIL_SIZE,
                                 8,
                                 EGL_NONE};
    EGLConfig config = nullptr;
    EGLint count = 0;
    if (!eglChooseConfig(display, attributes, &config, 1, &count) || count < 1) return nullptr;
    return config;
}

EGLContext CreateCompatibilityContext(EGLDisplay display, EGLConfig config, EGLContext share) {
    EGLint const attributes[] = {EGL_CONTEXT_OPENGL_PROFILE_MASK,
                                 EGL_CONTEXT_OPENGL_COMPATIBILITY_PROFILE_BIT, EGL_NONE};
    return eglCreateContext(display, config, share, attributes);
}

}  // namespace

CoreGLContext* CoreGLContext_Create(int width, int height, CoreGLContext* share) {
    if (width < 1 || height < 1) return nullptr;
    EGLDisplay display = SharedDisplay();
    if (display == EGL_NO_DISPLAY || !eglBindAPI(EGL_OPENGL_API)) return nullptr;
    EGLConfig config = ChooseConfig(display);
    if (!config) return nullptr;
    EGLContext context =
        CreateCompatibilityContext(display, config, share ? share->context : EGL_NO_CONTEXT);
    if (context == EGL_NO_CONTEXT) return nullptr;
    EGLint const surfaceAttributes[] = {EGL_WIDTH, width, EGL_HEIGHT, height, EGL_NONE};
    EGLSurface surface = eglCreatePbufferSurface(display, config, surfaceAttributes);
    if (surface == EGL_NO_SURFACE) {
        eglDestroyContext(display, context);
        return nullptr;
    }
    return new CoreGLContext{display, context, surface};
}

int CoreGLContext_MakeCurrent(CoreGLContext* context) {
    EGLDisplay display = context ? context->display : SharedDisplay();
    if (display == EGL_NO_DISPLAY) return context ? 0 : 1;
    if (!eglBindAPI(EGL_OPENGL_API)) return 0;
    EGLBoolean made =
        context ? eglMakeCurrent(display, context->surface, context->surface, context->context)
                : eglMakeCurrent(display, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
    if (!made) return 0;
    t_current = context;
    return 1;
}

CoreGLContext* CoreGLContext_GetCurrent() {
    // Someone may have changed the current context behind our back through EGL itself.
    if (t_current && eglGetCurrentContext() != t_current->context) t_current = nullptr;
    return t_current;
}

void CoreGLContext_Destroy(CoreGLContext* context) {
    if (!context) return;
    if (CoreGLContext_GetCurrent() == context) CoreGLContext_MakeCurrent(nullptr);
    eglDestroySurface(context->display, context->surface);
    eglDestroyContext(context->display, context->context);
    delete context;
}

void* CoreGLContext_GetProcAddress(char const* name) {
    if (!name) return nullptr;
    return reinterpret_cast<void*>(eglGetProcAddress(name));
}
