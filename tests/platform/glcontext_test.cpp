// Offscreen contexts: creation, current-context tracking, sharing and read-back.
#include <GL/gl.h>
#include <gtest/gtest.h>

#include <vector>

#include "coreglcontext.h"

TEST(CoreGLContext, ClearColourIsReadBackFromItsOwnFramebuffer) {
    EXPECT_EQ(CoreGLContext_Create(0, 16, nullptr), nullptr);
    CoreGLContext* context = CoreGLContext_Create(64, 32, nullptr);
    ASSERT_NE(context, nullptr);
    ASSERT_EQ(CoreGLContext_MakeCurrent(context), 1);
    EXPECT_EQ(CoreGLContext_GetCurrent(), context);
    GLint viewport[4] = {}, bits[2] = {};
    glGetIntegerv(GL_VIEWPORT, viewport);
    glGetIntegerv(GL_DEPTH_BITS, &bits[0]);
    glGetIntegerv(GL_STENCIL_BITS, &bits[1]);
    EXPECT_EQ(std::vector<GLint>(viewport, viewport + 4), (std::vector<GLint>{0, 0, 64, 32}));
    EXPECT_TRUE(bits[0] >= 24 && bits[1] >= 8) << bits[0] << " " << bits[1];

    glClearColor(1.0f, 0.5f, 0.0f, 1.0f);
    glClear(GL_COLOR_BUFFER_BIT);
    unsigned char pixel[4] = {};
    glReadPixels(63, 31, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, pixel);
    EXPECT_NEAR(pixel[1], 128, 1);
    pixel[1] = 0;
    EXPECT_EQ(std::vector<int>(pixel, pixel + 4), (std::vector<int>{255, 0, 0, 255}));
    EXPECT_NE(CoreGLContext_GetProcAddress("glActiveTexture"), nullptr);
    EXPECT_EQ(CoreGLContext_GetProcAddress(nullptr), nullptr);
    CoreGLContext_Destroy(context);
    EXPECT_EQ(CoreGLContext_GetCurrent(), nullptr);
}

TEST(CoreGLContext, SharingContextsSeeEachOthersTextures) {
    CoreGLContext* first = CoreGLContext_Create(16, 16, nullptr);
    CoreGLContext* second = CoreGLContext_Create(16, 16, first);
    CoreGLContext* loner = CoreGLContext_Create(16, 16, nullptr);
    ASSERT_TRUE(first && second && loner);
    ASSERT_EQ(CoreGLContext_MakeCurrent(first), 1);
    GLuint texture = 0;
    glGenTextures(1, &texture);
    glBindTexture(GL_TEXTURE_2D, texture);
    unsigned char const texel[4] = {10, 20, 30, 40};
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, 1, 1, 0, GL_RGBA, GL_UNSIGNED_BYTE, texel);
    glFinish();

    ASSERT_EQ(CoreGLContext_MakeCurrent(second), 1);
    glBindTexture(GL_TEXTURE_2D, texture);
    unsigned char readBack[4] = {};
    glGetTexImage(GL_TEXTURE_2D, 0, GL_RGBA, GL_UNSIGNED_BYTE, readBack);
    EXPECT_EQ(std::vector<int>(readBack, readBack + 4), (std::vector<int>{10, 20, 30, 40}));
    ASSERT_EQ(CoreGLContext_MakeCurrent(loner), 1);
    EXPECT_EQ(glIsTexture(texture), GL_FALSE);
    ASSERT_EQ(CoreGLContext_MakeCurrent(nullptr), 1);
    EXPECT_EQ(CoreGLContext_GetCurrent(), nullptr);
    for (CoreGLContext* c : {loner, second, first}) CoreGLContext_Destroy(c);
}
