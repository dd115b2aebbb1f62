// Extension detection against a real context, and the name-matching rule on its own.
#include <GL/gl.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "coreglcontext.h"
#include "gl/extstring.h"
#include "oglext.h"

namespace {

using Ints = std::vector<int>;

// The check for "GL_ARB_multitexture", the three flags and the number of texture units.
Ints Detected() {
    return {OGL_CheckExtension("GL_ARB_multitexture"), OGL_MulTex_Supported(),
            OGL_Arrays_Supported(), OGL_Compiled_Arrays_Supported(), OGL_Num_Tex_Units()};
}

}  // namespace

TEST(OGL_CheckExtension, LooksOnlyAtTheFirstOccurrenceAndTheCharacterAfterIt) {
    char const* list = "GL_ARB_multitexture_x GL_EXT_foo GL_ARB_multitexture GL_EXT_bar";
    // Intended: a name first seen as the head of a longer one is not found, though listed
    // later on its own; the character before is never checked, so a tail of a name counts.
    EXPECT_EQ((Ints{ExtensionListed(list, "GL_EXT_foo"), ExtensionListed(list, "GL_EXT_bar"),
                    ExtensionListed(list, "EXT_foo"), ExtensionListed(list, "GL_ARB_multitexture"),
                    ExtensionListed(list, "GL_EXT_fo"), ExtensionListed(nullptr, "GL_EXT_foo")}),
              (Ints{1, 1, 1, 0, 0, 0}));
}

TEST(OGL_Init, ReadsTheCurrentContextsExtensionsAndNothingWithoutOne) {
    ASSERT_EQ(CoreGLContext_MakeCurrent(nullptr), 1);
    EXPECT_EQ(OGL_Init(), 1);
    EXPECT_EQ(Detected(), Ints(5, 0));

    CoreGLContext* context = CoreGLContext_Create(16, 16, nullptr);
    ASSERT_NE(context, nullptr);
    ASSERT_EQ(CoreGLContext_MakeCurrent(context), 1);
    const std::string list =
        " " + std::string(reinterpret_cast<char const*>(glGetString(GL_EXTENSIONS))) + " ";
    const auto listed = [&](char const* name) { return int(list.find(name) != std::string::npos); };
    EXPECT_EQ(OGL_Init(), 1);
    GLint units = 0;
    glGetIntegerv(GL_MAX_TEXTURE_UNITS, &units);
    EXPECT_EQ(Detected(), (Ints{listed(" GL_ARB_multitexture "), listed(" GL_ARB_multitexture "),
                                listed(" GL_EXT_vertex_array "),
                                listed(" GL_EXT_compiled_vertex_array "), units}));

    // The entry points: exactly the names asked for, in order, the odd ones included.
    ASSERT_EQ(OGL_NumExtensionProcs(), 38);
    EXPECT_STREQ(OGL_ExtensionProcName(0), "glMultiTexCoord1dEXT");
    EXPECT_STREQ(OGL_ExtensionProcName(30), "glMultiTexCoord4sdARB");
    EXPECT_EQ(OGL_FindExtensionProc("glActiveTextureARB"),
              CoreGLContext_GetProcAddress("glActiveTextureARB"));
    CoreGLContext_Destroy(context);
}
