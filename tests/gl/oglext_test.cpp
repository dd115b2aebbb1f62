// Extension detection against a real context, and the name-matching rule on its own.
#include <GL/gl.h>
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "coreglcontext.h"
#include "gl/extstring.h"
#include "oglext.h"

TEST(OGL_CheckExtension, LooksOnlyAtTheFirstOccurrenceAndTheCharacterAfterIt) {
    char const* list = "GL_ARB_multitexture_x GL_EXT_foo GL_ARB_multitexture GL_EXT_bar";
    EXPECT_EQ(ExtensionListed(list, "GL_EXT_foo"), 1);
    EXPECT_EQ(ExtensionListed(list, "GL_EXT_bar"), 1);  // at the end of the string
    // First seen as the head of a longer name: not found, though listed later on its own.
    EXPECT_EQ(ExtensionListed(list, "GL_ARB_multitexture"), 0);
    EXPECT_EQ(ExtensionListed(list, "GL_EXT_fo"), 0);
    // The character before is never checked: a tail of a listed name counts.
    EXPECT_EQ(ExtensionListed(list, "EXT_foo"), 1);
    EXPECT_EQ(ExtensionListed(list, "GL_EXT_baz"), 0);
    EXPECT_EQ(ExtensionListed(nullptr, "GL_EXT_foo"), 0);
}

TEST(OGL_Init, EverythingIsZeroWithoutACurrentContext) {
    ASSERT_EQ(CoreGLContext_MakeCurrent(nullptr), 1);
    EXPECT_EQ(OGL_Init(), 1);
    EXPECT_EQ((std::vector<int>{OGL_CheckExtension("GL_ARB_multitexture"), OGL_MulTex_Supported(),
                                OGL_Arrays_Supported(), OGL_Compiled_Arrays_Supported(),
                                OGL_Num_Tex_Units()}),
              (std::vector<int>(5, 0)));
}

TEST(OGL_Init, ReadsTheCurrentContextsExtensions) {
    CoreGLContext* context = CoreGLContext_Create(16, 16, nullptr);
    ASSERT_NE(context, nullptr);
    ASSERT_EQ(CoreGLContext_MakeCurrent(context), 1);
    std::string const list = reinterpret_cast<char const*>(glGetString(GL_EXTENSIONS));
    auto listed = [&](char const* name) {
        return (" " + list + " ").find(std::string(" ") + name + " ") != std::string::npos;
    };

    EXPECT_EQ(OGL_Init(), 1);
    GLint units = 0;
    glGetIntegerv(GL_MAX_TEXTURE_UNITS, &units);
    EXPECT_EQ(OGL_Num_Tex_Units(), units);
    EXPECT_GE(units, 2);
    EXPECT_EQ(OGL_CheckExtension("GL_ARB_multitexture"), listed("GL_ARB_multitexture") ? 1 : 0);
    EXPECT_EQ(OGL_CheckExtension("GL_ARB_multitextur"), 0);
    EXPECT_EQ(OGL_MulTex_Supported(), listed("GL_ARB_multitexture") ? 1 : 0);
    EXPECT_EQ(OGL_Arrays_Supported(), listed("GL_EXT_vertex_array") ? 1 : 0);
    EXPECT_EQ(OGL_Compiled_Arrays_Supported(), listed("GL_EXT_compiled_vertex_array") ? 1 : 0);

    // The entry points: exactly the names asked for, in order, the odd ones included.
    ASSERT_EQ(OGL_NumExtensionProcs(), 38);
    EXPECT_STREQ(OGL_ExtensionProcName(0), "glMultiTexCoord1dEXT");
    EXPECT_STREQ(OGL_ExtensionProcName(30), "glMultiTexCoord4sdARB");
    EXPECT_STREQ(OGL_ExtensionProcName(32), "glActiveTextureARB");
    EXPECT_STREQ(OGL_ExtensionProcName(37), "glUnlockArraysEXT");
    EXPECT_EQ(OGL_ExtensionProcName(38), nullptr);
    EXPECT_EQ(OGL_FindExtensionProc("glActiveTextureARB"),
              CoreGLContext_GetProcAddress("glActiveTextureARB"));
    EXPECT_NE(OGL_FindExtensionProc("glMultiTexCoord2fARB"), nullptr);
    int all = 1;
    for (int i = 0; i < OGL_NumExtensionProcs(); ++i)
        if (!OGL_ExtensionProc(i)) all = 0;
    EXPECT_EQ(OGL_LoadExtensions(), all);

    // A resolved pointer is the working function: select unit 1 through it.
    using ActiveTexture = void (*)(GLenum);
    reinterpret_cast<ActiveTexture>(OGL_FindExtensionProc("glActiveTextureARB"))(GL_TEXTURE1);
    GLint active = 0;
    glGetIntegerv(GL_ACTIVE_TEXTURE, &active);
    EXPECT_EQ(active, GL_TEXTURE1);

    CoreGLContext_Destroy(context);
}
