#include "cimage.h"

#include <GL/gl.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "materials/materialsupport.h"
#include "support/testsupport.h"

namespace {

using Ints = std::vector<int>;

Ints FramesAt(const cimage& image, int ticks) {
    Ints frames;
    for (int t = 0; t < ticks; ++t) frames.push_back(image.CalcFrameIndex(t));
    return frames;
}

// The alpha of every pixel of the frame in memory, in memory order.
Ints Alphas(cimage& image) {
    Ints alphas;
    for (int i = 0; i < image.GetWidth() * image.GetHeight(); ++i)
        alphas.push_back(image.GetBitsPtr()[4 * i + 3]);
    return alphas;
}

// Texture `id`'s magnification and minification filter, wrap in s and t, the width and height
// of mipmap level 0 and the width of level 3 (0 when there is no such level).
Ints TextureState(GLuint id) {
    Ints values;
    glBindTexture(GL_TEXTURE_2D, id);
    for (GLenum name :
         {GL_TEXTURE_MAG_FILTER, GL_TEXTURE_MIN_FILTER, GL_TEXTURE_WRAP_S, GL_TEXTURE_WRAP_T})
        glGetTexParameteriv(GL_TEXTURE_2D, name, &values.emplace_back(-1));
    for (auto [level, name] :
         {std::pair{0, GL_TEXTURE_WIDTH}, {0, GL_TEXTURE_HEIGHT}, {3, GL_TEXTURE_WIDTH}})
        glGetTexLevelParameteriv(GL_TEXTURE_2D, level, name, &values.emplace_back(-1));
    return values;
}

}  // namespace

TEST(ImageFrames, FrameIndexFollowsRateStartFreezeAndFramesFlag) {
    TempDir dir;
    const char* colours[] = {"#ff0000", "#00ff00", "#0000ff", "#ffffff"};
    for (int i = 0; i < 4; ++i)
        ASSERT_TRUE(SolidPicture(dir.File("f" + std::to_string(i) + ".png"), colours[i], 2, 2));
    WriteFileBytes(dir.File("anim.ifl"), "f0.png\nf1.png\nf2.png\nf3.png\n");
    cimage image;
    ASSERT_EQ(image.Load(dir.File("anim.ifl").c_str()), 1);
    EXPECT_EQ(FramesAt(image, 10), (Ints{0, 1, 2, 3, 0, 1, 2, 3, 0, 1}));
    // Frames are decoded on demand: time 2 is the blue picture.
    ASSERT_NE(image.GetBits(2), nullptr);
    EXPECT_EQ(PixelAt(image, 1, 1), (Pixel{0, 0, 255, 255}));
    image.SetFramesFlag(FRAMES_PINGPONG);
    EXPECT_EQ(FramesAt(image, 10), (Ints{0, 1, 2, 3, 3, 2, 1, 0, 0, 1}));
    image.SetFramesFlag(FRAMES_ONCE);
    image.SetFrameRate(0.5f);
    image.SetStartFrame(6);  // 6 mod 4 = 2 is shown at time 0
    EXPECT_EQ(FramesAt(image, 10), (Ints{2, 2, 3, 3, 0, 0, 1, 1, 1, 1}));
    image.SetFrameRate(4.0f);  // Intended: four frames per tick or more always show frame 0.
    EXPECT_EQ(FramesAt(image, 2), (Ints{0, 0}));
    image.SetFreezeFlag(1);
    EXPECT_EQ(FramesAt(image, 2), (Ints{2, 2}));
}

TEST(ImageLoad, ReadsPixelsWithAlphaFromTheStoredPathTheWorkingFolderOrMapsAndKeepsOnFailure) {
    TempDir work;
    AssertRecorder recorder;  // points path_app at its own folder
    ASSERT_TRUE(std::filesystem::create_directory(recorder.Folder() + "/Maps"));
    ASSERT_TRUE(SolidPicture(recorder.Folder() + "/Maps/wood.png", "#804020", 3, 1));
    ASSERT_TRUE(
        Convert("-size 1x1 xc:red -size 1x1 xc:blue +append -size 2x1 "
                "'xc:rgba(0,255,0,0.0)' -append",
                work.File("pic.png")));
    ASSERT_TRUE(std::filesystem::create_directory(work.File("sub")));
    ASSERT_TRUE(SolidPicture(work.File("sub/leaf.png"), "#000000", 1, 1));
    WriteFileBytes(work.File("bad.png"), std::string("\x89PNG\r\n\x1a\ngarbage", 16));
    WriteFileBytes(work.File("bad.avi"), "RIFF....AVI nothing");
    const std::filesystem::path cwd = std::filesystem::current_path();
    std::filesystem::current_path(work.Path());

    cimage image;
    EXPECT_EQ(image.Load("/gone/folder/pic.png"), 1);
    EXPECT_STREQ(image.GetPathNamePtr(), "/gone/folder/pic.png") << "the given path is kept";
    EXPECT_EQ((Ints{image.GetWidth(), image.GetHeight(), image.GetNumFrames()}), (Ints{2, 2, 1}));
    EXPECT_EQ(PixelAt(image, 1, 0), (Pixel{0, 0, 255, 255}));
    EXPECT_EQ(Alphas(image), (Ints{255, 255, 0, 0}));
    EXPECT_EQ(image.IsTransparent(), 1);
    image.EnableAlpha(0);
    EXPECT_EQ(image.Reload(), 1);
    EXPECT_EQ(Alphas(image), Ints(4, 255)) << "the alpha switch holds";
    EXPECT_EQ(image.IsTransparent(), 0);

    // The name is what follows the last backslash, even when a slash comes after it.
    EXPECT_EQ(image.Load("C:\\gone\\sub/leaf.png"), 1);
    EXPECT_EQ(image.Load("C:\\old\\maps\\wood.png"), 1);
    for (const char* file : {"bad.png", "bad.avi", "/gone/nowhere.png", ""}) {
        EXPECT_EQ(image.Load(file), 0) << file;
        EXPECT_STREQ(image.GetPathNamePtr(), "C:\\old\\maps\\wood.png");
        EXPECT_EQ(PixelAt(image, 2, 0), (Pixel{0x80, 0x40, 0x20, 255}));
    }
    image.Clear();
    EXPECT_STREQ(image.GetPathNamePtr(), "<empty>");
    std::filesystem::current_path(cwd);
}

TEST(ImageSetBits, ConvertsEveryDepthAndRefusesTheRest) {
    cimage image;
    unsigned char palette[256 * 3] = {}, indices[2] = {7, 0};
    palette[3 * 7 + 0] = 10, palette[3 * 7 + 1] = 20, palette[3 * 7 + 2] = 30;
    ASSERT_EQ(image.SetBits(const_cast<char*>("pal"), indices, palette, 2, 1, 8, 0), 1);
    EXPECT_EQ(PixelAt(image, 0, 0), (Pixel{10, 20, 30, 255}));
    // 5-5-5: 0x4210 is grey 16 of 31 = 132.
    unsigned char grey[2] = {0x10, 0x42};
    ASSERT_EQ(image.SetBits(nullptr, grey, nullptr, 1, 1, 16, 0), 1);
    EXPECT_EQ(PixelAt(image, 0, 0), (Pixel{132, 132, 132, 255}));
    unsigned char rgb[3] = {4, 5, 6};
    ASSERT_EQ(image.SetBits(nullptr, rgb, nullptr, 1, 1, 24, 0), 1);
    EXPECT_EQ(image.SetBits(nullptr, grey, nullptr, 1, 1, 12, 0) +
                  image.SetBits(nullptr, nullptr, nullptr, 1, 1, 32, 0) +
                  image.SetBits(nullptr, indices, nullptr, 1, 1, 8, 0),
              0);
#ifndef __SANITIZE_ADDRESS__  // the sanitizer ends the process on a request this large
    AssertRecorder recorder;
    EXPECT_EQ(image.SetBits(nullptr, rgb, nullptr, 1 << 30, 1 << 30, 24, 0), 0);
    EXPECT_TRUE(recorder.Count() == 1 &&
                recorder.Texts()[0].find("File: Core/cimage, Line: 349\nExpression: bits\n") !=
                    std::string::npos);
#endif
    EXPECT_EQ(PixelAt(image, 0, 0), (Pixel{4, 5, 6, 255})) << "refused pixels change nothing";
}

TEST(ImageAlpha, ColourKeyAlphaSwitchAndChannelConversions) {
    cimage image;
    unsigned char pixels[12] = {30, 60, 90, 128, 200, 0, 0, 255, 200, 0, 0, 40};
    ASSERT_EQ(image.SetBits(nullptr, pixels, nullptr, 3, 1, 32, 0), 1);
    image.SetColorKey(0x0000C8ul);  // red 200 in the low byte
    EXPECT_EQ(Alphas(image), (Ints{128, 255, 40})) << "the key is off";
    image.EnableColorKey(1);
    EXPECT_EQ(Alphas(image), (Ints{128, 0, 0}));
    image.EnableAlpha(0);
    EXPECT_EQ(Alphas(image), (Ints{255, 0, 0})) << "the key applies without alpha";
    image.EnableColorKey(0);
    image.EnableAlpha(1);
    image.GetBitsPtr()[3] = 7;
    image.RestoreAlpha();
    EXPECT_EQ(Alphas(image), (Ints{128, 255, 40}));
    image.MakeRGBOutOfAlphaChannel();
    EXPECT_EQ(PixelAt(image, 0, 0), (Pixel{128, 128, 128, 128}));
    for (int i = 0; i < 3; ++i) image.GetBitsPtr()[4 * i + 3] = 255;
    image.Bind();  // without a GL context only the transparent flag follows the pixels
    EXPECT_EQ(image.IsTransparent(), 0);
}

using TextureUpload = GLTest;

TEST_F(TextureUpload, RoundsToPowersOfTwoCapsAt512AndFiltersFollowTheSettings) {
    for (int ignored : {1024, 0, 100}) Tex_SetMaxSize(ignored);
    Tex_SetTexelFilter(3);
    Tex_SetMipMapFilter(3);
    EXPECT_EQ((Ints{Tex_GetMaxSize(), Tex_GetTexelFilter(), Tex_GetMipMapFilter()}),
              (Ints{256, 1, 0}))
        << "settings other than the listed ones are ignored";
    // Per mipmap and texel filter and picture size: mag, min, the uploaded size and the width of
    // mipmap level 3 (0 without mipmaps).
    const GLint rows[][9] = {{0, 1, 300, 200, GL_NEAREST, GL_NEAREST, 512, 256, 0},
                             {0, 2, 2048, 8, GL_LINEAR, GL_LINEAR, 512, 8, 0},
                             {1, 1, 64, 48, GL_NEAREST, GL_NEAREST_MIPMAP_NEAREST, 64, 64, 8},
                             {1, 2, 8, 8, GL_LINEAR, GL_NEAREST_MIPMAP_LINEAR, 8, 8, 1},
                             {2, 1, 8, 8, GL_NEAREST, GL_LINEAR_MIPMAP_NEAREST, 8, 8, 1},
                             {2, 2, 8, 8, GL_LINEAR, GL_LINEAR_MIPMAP_LINEAR, 8, 8, 1}};
    for (const auto& row : rows) {
        Tex_SetMipMapFilter(row[0]);
        Tex_SetTexelFilter(row[1]);
        cimage image;
        SolidImage(image, {9, 9, 9, 255}, row[2], row[3]);
        EXPECT_EQ(TextureState(image.GetIDAt(0)),
                  (Ints{row[4], row[5], GL_REPEAT, GL_REPEAT, row[6], row[7], row[8]}))
            << row[0] << row[1];
    }
    Tex_SetMipMapFilter(0);
    Tex_SetTexelFilter(1);
    GLint mode = 0;
    glGetTexEnviv(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, &mode);
    EXPECT_EQ(mode, GL_MODULATE);
}
