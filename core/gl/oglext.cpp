// Detection of the OpenGL extensions and their entry points.
#include "oglext.h"

#include <GL/gl.h>
#include <GL/glext.h>

#include <cstring>

#include "coreglcontext.h"
#include "gl/extstring.h"

namespace {

// Intended: the first name keeps its "EXT" suffix and "glMultiTexCoord4sdARB" is misspelt, so
// ordinary drivers leave that one unresolved and OGL_LoadExtensions answers 0.
constexpr char const* kProcNames[] = {
    "glMultiTexCoord1dEXT",     "glMultiTexCoord1dvARB", "glMultiTexCoord1fARB",
    "glMultiTexCoord1fvARB",    "glMultiTexCoord1iARB",  "glMultiTexCoord1ivARB",
    "glMultiTexCoord1sARB",     "glMultiTexCoord1svARB", "glMultiTexCoord2dARB",
    "glMultiTexCoord2dvARB",    "glMultiTexCoord2fARB",  "glMultiTexCoord2fvARB",
    "glMultiTexCoord2iARB",     "glMultiTexCoord2ivARB", "glMultiTexCoord2sARB",
    "glMultiTexCoord2svARB",    "glMultiTexCoord3dARB",  "glMultiTexCoord3dvARB",
    "glMultiTexCoord3fARB",     "glMultiTexCoord3fvARB", "glMultiTexCoord3iARB",
    "glMultiTexCoord3ivARB",    "glMultiTexCoord3sARB",  "glMultiTexCoord3svARB",
    "glMultiTexCoord4dARB",     "glMultiTexCoord4dvARB", "glMultiTexCoord4fARB",
    "glMultiTexCoord4fvARB",    "glMultiTexCoord4iARB",  "glMultiTexCoord4ivARB",
    "glMultiTexCoord4sdARB",    "glMultiTexCoord4svARB", "glActiveTextureARB",
    "glClientActiveTextureARB", "glPointParameterfEXT",  "glPointParameterfvEXT",
    "glLockArraysEXT",          "glUnlockArraysEXT"};
constexpr int kNumProcs = static_cast<int>(sizeof(kProcNames) / sizeof(kProcNames[0]));

struct ExtensionState {
    void* procs[kNumProcs] = {};
    int mulTex = 0;
    int arrays = 0;
    int compiledArrays = 0;
    int texUnits = 0;
};

ExtensionState g_state;

int IndexOf(char const* name) {
    if (!name) return -1;
    for (int i = 0; i < kNumProcs; ++i)
        if (std::strcmp(kProcNames[i], name) == 0) return i;
    return -1;
}

int Resolved(char const* name) {
    return OGL_FindExtensionProc(name) != nullptr;
}

char const* ExtensionString() {
    // Without a current context (whoever made it) GL answers null.
    return reinterpret_cast<char const*>(glGetString(GL_EXTENSIONS));
}

int TextureUnits() {
    // Stays 0 without a current context: the query is then ignored.
    GLint units = 0;
    glGetIntegerv(GL_MAX_TEXTURE_UNITS_ARB, &units);
    return units;
}

}  // namespace

int OGL_LoadExtensions() {
    int all = 1;
    for (int i = 0; i < kNumProcs; ++i) {
        g_state.procs[i] = CoreGLContext_GetProcAddress(kProcNames[i]);
        if (!g_state.procs[i]) all = 0;
    }
    return all;
}

int OGL_Init() {
    OGL_LoadExtensions();
    g_state.texUnits = TextureUnits();
    g_state.mulTex = OGL_CheckExtension("GL_ARB_multitexture") && Resolved("glActiveTextureARB") &&
                     Resolved("glMultiTexCoord2fARB");
    g_state.arrays = OGL_CheckExtension("GL_EXT_vertex_array");
    g_state.compiledArrays = OGL_CheckExtension("GL_EXT_compiled_vertex_array") &&
                             Resolved("glLockArraysEXT") && Resolved("glUnlockArraysEXT");
    return 1;
}

int OGL_CheckExtension(char const* name) {
    return ExtensionListed(ExtensionString(), name);
}

int OGL_MulTex_Supported() {
    return g_state.mulTex;
}
int OGL_Arrays_Supported() {
    return g_state.arrays;
}
int OGL_Compiled_Arrays_Supported() {
    return g_state.compiledArrays;
}
int OGL_Num_Tex_Units() {
    return g_state.texUnits;
}

int OGL_NumExtensionProcs() {
    return kNumProcs;
}

char const* OGL_ExtensionProcName(int index) {
    return index >= 0 && index < kNumProcs ? kProcNames[index] : nullptr;
}

void* OGL_ExtensionProc(int index) {
    return index >= 0 && index < kNumProcs ? g_state.procs[index] : nullptr;
}

void* OGL_FindExtensionProc(char const* name) {
    return OGL_ExtensionProc(IndexOf(name));
}
