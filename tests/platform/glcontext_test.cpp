// Offscreen contexts: creation, current-context tracking, sharing and read-back.
#include <GL/gl.h>
#include <gtest/gtest.h>

#include "coreglcontext.h"

TEST(CoreGLContext, ClearColourIsReadBackFromItsOwnFramebuffer) {
    CoreGLContext* context = CoreGLContext_Create(64, 32, nullptr);
    ASSERT_NE(context, nullptr);
    ASSERT_EQ(CoreGLContext_MakeCurrent(context), 1);
    EXPECT_EQ(CoreGLContext_GetCurrent(), context);

    GLint viewport[4] = {};
    glGetIntegerv(GL_VIEWPORT, viewport);
    EXPECT_EQ(viewport[2], 64);
    EXPECT_EQ(viewport[3], 32);
    GLint depthBits = 0;
    GLint stencilBits = 0;
    glGetIntegerv(GL_DEPTH_BITS, &depthBits);
    glGetIntegerv(GL_STENCIL_BITS, &stencilBits);
    EXPECT_GE(depthBits, 24);
    EXPECT_GE(stencilBits, 8);

    glClearColor(1.0f, 0.5f, 0.0f, 1.0f);
    glClear(GL_COLOR_BUFFER_BIT);
    unsigned char pixel[4] = {};
    glReadPixels(63, 31, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, pixel);
    EXPECT_EQ(pixel[0], 255);
    EXPECT_NEAR(pixel[1], 128, 1);
    EXPECT_EQ(pixel[2], 0);
    EXPECT_EQ(pixel[3], 255);
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));

    CoreGLContext_Destroy(context);
    EXPECT_EQ(CoreGLContext_GetCurrent(), nullptr);
}

TEST(CoreGLContext, SharingContextsSeeEachOthersTextures) {
    CoreGLContext* first = CoreGLContext_Create(16, 16, nullptr);
    ASSERT_NE(first, nullptr);
    CoreGLContext* second = CoreGLContext_Create(16, 16, first);
    ASSERT_NE(second, nullptr);
    CoreGLContext* loner = CoreGLContext_Create(16, 16, nullptr);
    ASSERT_NE(loner, nullptr);

    ASSERT_EQ(CoreGLContext_MakeCurrent(first), 1);
    GLuint texture = 0;
    glGenTextures(1, &texture);
    glBindTexture(GL_TEXTURE_2D, texture);
    unsigned char const texel[4] = {10, 20, 30, 40};
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, 1, 1, 0, GL_RGBA, GL_UNSIGNED_BYTE, texel);
    glFinish();

    ASSERT_EQ(CoreGLContext_MakeCurrent(second), 1);
    EXPECT_EQ(CoreGLContext_GetCurrent(), second);
    EXPECT_EQ(glIsTexture(texture), GL_TRUE);
    glBindTexture(GL_TEXTURE_2D, texture);
    unsigned char readBack[4] = {};
    glGetTexImage(GL_TEXTURE_2D, 0, GL_RGBA, GL_UNSIGNED_BYTE, readBack);
    EXPECT_EQ(readBack[0], 10);
    EXPECT_EQ(readBack[3], 40);

    ASSERT_EQ(CoreGLContext_MakeCurrent(loner), 1);
    EXPECT_EQ(glIsTexture(texture), GL_FALSE);

    ASSERT_EQ(CoreGLContext_MakeCurrent(nullptr), 1);
    EXPECT_EQ(CoreGLContext_GetCurrent(), nullptr);
    CoreGLContext_Destroy(loner);
    CoreGLContext_Destroy(second);
    CoreGLContext_Destroy(first);
}

TEST(CoreGLContext, LooksUpFunctionsByName) {
    EXPECT_NE(CoreGLContext_GetProcAddress("glActiveTexture"), nullptr);
    EXPECT_EQ(CoreGLContext_GetProcAddress(nullptr), nullptr);
    EXPECT_EQ(CoreGLContext_Create(0, 16, nullptr), nullptr);
}
