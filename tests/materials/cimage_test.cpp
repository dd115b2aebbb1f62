#include "cimage.h"

#include <GL/gl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cstring>
#include <string>
#include <vector>

#include "coreinterface.h"
#include "materials/materialsupport.h"
#include "support/testsupport.h"
#include "texwindow.h"

using Pixel = std::array<int, 4>;

namespace {

// Four frames of an image file list: red, green, blue, white, 2 x 2 each.
std::string FourFrameList(const TempDir& dir) {
    const char* colours[] = {"#ff0000", "#00ff00", "#0000ff", "#ffffff"};
    std::string list;
    for (int i = 0; i < 4; ++i) {
        const std::string name = "f" + std::to_string(i) + ".png";
        EXPECT_TRUE(SolidPicture(dir.File(name), colours[i], 2, 2));
        list += name + "\n";
    }
    WriteFileBytes(dir.File("anim.ifl"), list);
    return dir.File("anim.ifl");
}

std::vector<int> FramesAt(const cimage& image, int ticks) {
    std::vector<int> frames;
    for (int t = 0; t < ticks; ++t) frames.push_back(image.CalcFrameIndex(t));
    return frames;
}

// The alpha of every pixel of the frame in memory, in memory order.
std::vector<int> Alphas(cimage& image) {
    std::vector<int> alphas;
    for (int i = 0; i < image.GetWidth() * image.GetHeight(); ++i)
        alphas.push_back(image.GetBitsPtr()[4 * i + 3]);
    return alphas;
}

// A parameter of texture `id`, or of its mipmap `level` when one is given.
GLint TextureParameter(GLuint id, GLenum name, GLint level = -1) {
    GLint value = -1;
    glBindTexture(GL_TEXTURE_2D, id);
    if (level < 0) glGetTexParameteriv(GL_TEXTURE_2D, name, &value);
    if (level >= 0) glGetTexLevelParameteriv(GL_TEXTURE_2D, level, name, &value);
    return value;
}

}  // namespace

TEST(TextureSettings, AcceptOnlyTheListedValues) {
    const auto settings = [] {
        return std::vector<int>{Tex_GetMaxSize(), Tex_GetTexelFilter(), Tex_GetMipMapFilter()};
    };
    for (int ignored : {1024, 0, 100, -64}) Tex_SetMaxSize(ignored);
    for (int ignored : {3, 0}) Tex_SetTexelFilter(ignored);
    for (int ignored : {3, -1}) Tex_SetMipMapFilter(ignored);
    EXPECT_EQ(settings(), (std::vector<int>{256, 1, 0}));
    Tex_SetMaxSize(64);
    Tex_SetTexelFilter(2);
    Tex_SetMipMapFilter(2);
    EXPECT_EQ(settings(), (std::vector<int>{64, 2, 2}));
    Tex_SetMaxSize(256);
    Tex_SetTexelFilter(1);
    Tex_SetMipMapFilter(0);
}

TEST(ImageFrames, FrameIndexFollowsRateStartFreezeAndFramesFlag) {
    TempDir dir;
    cimage image;
    ASSERT_EQ(image.Load(FourFrameList(dir).c_str()), 1);
    ASSERT_EQ(image.GetNumFrames(), 4);
    EXPECT_EQ(FramesAt(image, 10), (std::vector<int>{0, 1, 2, 3, 0, 1, 2, 3, 0, 1}));
    image.SetFramesFlag(FRAMES_PINGPONG);
    EXPECT_EQ(FramesAt(image, 10), (std::vector<int>{0, 1, 2, 3, 3, 2, 1, 0, 0, 1}));
    image.SetFramesFlag(FRAMES_ONCE);
    EXPECT_EQ(FramesAt(image, 7), (std::vector<int>{0, 1, 2, 3, 3, 3, 3}));
    image.SetFramesFlag(FRAMES_LOOP);
    image.SetFrameRate(0.5f);
    EXPECT_EQ(FramesAt(image, 8), (std::vector<int>{0, 0, 1, 1, 2, 2, 3, 3}));
    image.SetStartFrame(6);  // 6 mod 4 = 2 is shown at time 0
    EXPECT_EQ(FramesAt(image, 4), (std::vector<int>{2, 2, 3, 3}));
    image.SetFreezeFlag(1);
    EXPECT_EQ(FramesAt(image, 3), (std::vector<int>{2, 2, 2}));
    image.SetFreezeFlag(0);
    image.SetStartFrame(0);
    image.SetFrameRate(4.0f);  // four frames per tick or more: always frame 0
    EXPECT_EQ(FramesAt(image, 3), (std::vector<int>{0, 0, 0}));

    // Frames are decoded on demand: time 2 at rate 1 is the blue picture.
    image.SetFrameRate(1.0f);
    ASSERT_NE(image.GetBits(2), nullptr);
    EXPECT_EQ(PixelAt(image, 1, 1), (Pixel{0, 0, 255, 255}));
    ASSERT_NE(image.GetBitsAt(5), nullptr);  // wraps to frame 1
    EXPECT_EQ(PixelAt(image, 0, 0), (Pixel{0, 255, 0, 255}));
}

TEST(ImageFileList, SkipsCommentsAndResolvesNamesAgainstItsFolder) {
    TempDir dir;
    ASSERT_EQ(::mkdir(dir.File("frames").c_str(), 0755), 0);
    ASSERT_TRUE(SolidPicture(dir.File("frames/a.png"), "#102030", 1, 1));
    ASSERT_TRUE(SolidPicture(dir.File("b.png"), "#405060", 1, 1));
    WriteFileBytes(dir.File("frames/list.IFL"),
                   "; made by hand\r\n\r\n# a comment\n  a.png  \n" + dir.File("b.png") + "\n");
    cimage image;
    ASSERT_EQ(image.Load(dir.File("frames/list.IFL").c_str()), 1);
    EXPECT_EQ(image.GetNumFrames(), 2);
    EXPECT_EQ(PixelAt(image, 0, 0), (Pixel{0x10, 0x20, 0x30, 255}));
    ASSERT_NE(image.GetBitsAt(1), nullptr);
    EXPECT_EQ(PixelAt(image, 0, 0), (Pixel{0x40, 0x50, 0x60, 255}));

    WriteFileBytes(dir.File("empty.ifl"), "; nothing\n\n");
    EXPECT_EQ(image.Load(dir.File("empty.ifl").c_str()), 0);
    EXPECT_EQ(image.GetNumFrames(), 2) << "a list without frames fails";
}

TEST(ImageLoad, ReadsPixelsTopRowFirstWithTheirAlpha) {
    TempDir dir;
    ASSERT_TRUE(
        Convert("-size 1x1 xc:red -size 1x1 xc:blue +append -size 2x1 "
                "'xc:rgba(0,255,0,0.0)' -append",
                dir.File("pic.png")));
    cimage image;
    ASSERT_EQ(image.Load(dir.File("pic.png").c_str()), 1);
    EXPECT_EQ((std::vector<int>{image.IsEmpty(), image.GetWidth(), image.GetHeight(),
                                image.GetNumFrames()}),
              (std::vector<int>{0, 2, 2, 1}));
    EXPECT_EQ(PixelAt(image, 0, 0), (Pixel{255, 0, 0, 255}));
    EXPECT_EQ(PixelAt(image, 1, 0), (Pixel{0, 0, 255, 255}));
    EXPECT_EQ(Alphas(image), (std::vector<int>{255, 255, 0, 0}));
    EXPECT_EQ(image.IsTransparent(), 1);
    image.EnableAlpha(0);
    EXPECT_EQ(image.IsTransparent(), 0);
    EXPECT_EQ(image.Reload(), 1);
    EXPECT_EQ(Alphas(image), (std::vector<int>(4, 255))) << "the alpha switch holds";
    image.Clear();
    EXPECT_STREQ(image.GetPathNamePtr(), "<empty>");
    EXPECT_EQ(image.Reload(), 0);
}

TEST(ImageLoad, SearchesStoredPathThenWorkingFolderThenMaps) {
    TempDir work, app;
    AssertRecorder recorder;  // points path_app at its own folder
    ASSERT_EQ(::mkdir((recorder.Folder() + "/Maps").c_str(), 0755), 0);
    ASSERT_TRUE(SolidPicture(recorder.Folder() + "/Maps/wood.png", "#804020", 3, 1));
    ASSERT_TRUE(SolidPicture(work.File("stone.png"), "#808080", 1, 3));
    char cwd[4096];
    ASSERT_NE(::getcwd(cwd, sizeof cwd), nullptr);
    ASSERT_EQ(::chdir(work.Path().c_str()), 0);

    cimage image;
    EXPECT_EQ(image.Load("/gone/folder/stone.png"), 1);
    EXPECT_EQ(image.GetHeight(), 3);
    EXPECT_STREQ(image.GetPathNamePtr(), "/gone/folder/stone.png") << "the given path is kept";
    EXPECT_EQ(image.Load("C:\\old\\maps\\wood.png"), 1);
    EXPECT_EQ(image.GetWidth(), 3);
    EXPECT_EQ(PixelAt(image, 0, 0), (Pixel{0x80, 0x40, 0x20, 255}));
    EXPECT_EQ(image.Load("/gone/nowhere.png"), 0);
    EXPECT_EQ(image.Load(""), 0);
    EXPECT_EQ(image.Load(nullptr), 0);
    ASSERT_EQ(::chdir(cwd), 0);
}

TEST(ImageLoad, FailedLoadKeepsThePreviousImage) {
    TempDir dir;
    ASSERT_TRUE(SolidPicture(dir.File("good.png"), "#336699", 3, 2));
    WriteFileBytes(dir.File("bad.png"), std::string("\x89PNG\r\n\x1a\ngarbage", 16));
    WriteFileBytes(dir.File("bad.avi"), "RIFF....AVI nothing");
    cimage image;
    ASSERT_EQ(image.Load(dir.File("good.png").c_str()), 1);
    image.SetFrameRate(2.0f);
    for (const std::string& file : {dir.File("bad.png"), dir.File("bad.avi"), dir.File("no.png")}) {
        EXPECT_EQ(image.Load(file.c_str()), 0) << file;
        EXPECT_EQ((std::vector<float>{float(image.GetWidth()), float(image.GetHeight()),
                                      image.GetFrameRate()}),
                  (std::vector<float>{3, 2, 2}));
        EXPECT_STREQ(image.GetPathNamePtr(), dir.File("good.png").c_str());
        EXPECT_EQ(PixelAt(image, 2, 1), (Pixel{0x33, 0x66, 0x99, 255}));
    }
}

TEST(ImageSetBits, ConvertsEveryDepthAndRefusesTheRest) {
    cimage image;
    unsigned char palette[256 * 3] = {};
    palette[3 * 7 + 0] = 10, palette[3 * 7 + 1] = 20, palette[3 * 7 + 2] = 30;
    unsigned char indices[2] = {7, 0};
    ASSERT_EQ(image.SetBits(const_cast<char*>("pal"), indices, palette, 2, 1, 8, 0), 1);
    EXPECT_EQ(PixelAt(image, 0, 0), (Pixel{10, 20, 30, 255}));
    EXPECT_STREQ(image.GetPathNamePtr(), "pal");

    // 5-5-5: 0x7C00 red, 0x4210 grey 16 of 31 = 132; 5-6-5: 0x07E0 green, 0x001F blue.
    unsigned char words[4] = {0x00, 0x7C, 0x10, 0x42};
    ASSERT_EQ(image.SetBits(nullptr, words, nullptr, 2, 1, 16, 0), 1);
    EXPECT_EQ(PixelAt(image, 0, 0), (Pixel{255, 0, 0, 255}));
    EXPECT_EQ(PixelAt(image, 1, 0), (Pixel{132, 132, 132, 255}));
    unsigned char words565[4] = {0xE0, 0x07, 0x1F, 0x00};
    ASSERT_EQ(image.SetBits(nullptr, words565, nullptr, 2, 1, 16, IMAGE_RGB565), 1);
    EXPECT_EQ(PixelAt(image, 0, 0), (Pixel{0, 255, 0, 255}));
    EXPECT_EQ(PixelAt(image, 1, 0), (Pixel{0, 0, 255, 255}));

    unsigned char rgb[6] = {1, 2, 3, 4, 5, 6};
    ASSERT_EQ(image.SetBits(nullptr, rgb, nullptr, 1, 2, 24, 0), 1);
    EXPECT_EQ(PixelAt(image, 0, 1), (Pixel{4, 5, 6, 255}));
    unsigned char rgba[4] = {9, 8, 7, 6};
    ASSERT_EQ(image.SetBits(nullptr, rgba, nullptr, 1, 1, 32, 0), 1);
    EXPECT_EQ(PixelAt(image, 0, 0), (Pixel{9, 8, 7, 6}));

    EXPECT_EQ(image.SetBits(nullptr, rgba, nullptr, 1, 1, 12, 0), 0);
    EXPECT_EQ(image.SetBits(nullptr, nullptr, nullptr, 1, 1, 32, 0), 0);
    EXPECT_EQ(image.SetBits(nullptr, indices, nullptr, 1, 1, 8, 0), 0);
    EXPECT_EQ(PixelAt(image, 0, 0), (Pixel{9, 8, 7, 6})) << "refused pixels change nothing";
}

TEST(ImageAlpha, ColourKeyAlphaSwitchAndChannelConversions) {
    cimage image;
    std::vector<unsigned char> pixels = {30, 60, 90, 128, 200, 0, 0, 255, 200, 0, 0, 40};
    SetPixels(image, pixels, 3, 1);
    image.SetColorKey(0x0000C8ul);  // red 200 in the low byte
    unsigned char r, g, b;
    image.GetColorKey(r, g, b);
    EXPECT_EQ((Pixel{r, g, b, 0}), (Pixel{200, 0, 0, 0}));
    EXPECT_EQ(Alphas(image), (std::vector<int>{128, 255, 40})) << "the key is off";
    image.EnableColorKey(1);
    EXPECT_EQ(Alphas(image), (std::vector<int>{128, 0, 0}));
    image.EnableAlpha(0);
    EXPECT_EQ(Alphas(image), (std::vector<int>{255, 0, 0})) << "the key applies without alpha";
    image.SetColorKey(ccolor(30 / 255.0f + 0.001f, 60 / 255.0f + 0.001f, 90 / 255.0f + 0.001f));
    EXPECT_EQ(Alphas(image), (std::vector<int>{0, 255, 255}));
    image.EnableColorKey(0);
    image.EnableAlpha(1);
    image.GetBitsPtr()[3] = 7;
    image.RestoreAlpha();
    EXPECT_EQ(Alphas(image), (std::vector<int>{128, 255, 40}));

    image.MakeAlphaChannelOutOfRGB();
    EXPECT_EQ(PixelAt(image, 0, 0), (Pixel{30, 60, 90, 60}));
    image.EnableAlpha(0);
    image.EnableAlpha(1);
    EXPECT_EQ(Alphas(image), (std::vector<int>{60, 66, 66})) << "the made alpha is the stored one";
    image.MakeRGBOutOfAlphaChannel();
    EXPECT_EQ(PixelAt(image, 0, 0), (Pixel{60, 60, 60, 60}));
}

TEST(ImagePath, SplitsAtTheLastSeparatorOfEitherKind) {
    cimage image;
    const auto parts = [&image](const char* path) {
        image.SetPathName(const_cast<char*>(path));
        std::vector<std::string> out;
        for (auto get : {&cimage::GetPath, &cimage::GetName, &cimage::GetTitle, &cimage::GetExt,
                         &cimage::GetPathName}) {
            char buffer[512];
            (image.*get)(buffer);
            out.push_back(buffer);
        }
        return out;
    };
    EXPECT_EQ(parts("C:\\maps/wood.grain.PNG"),
              (std::vector<std::string>{"C:\\maps/", "wood.grain.PNG", "wood.grain", "PNG",
                                        "C:\\maps/wood.grain.PNG"}));
    EXPECT_EQ(parts("d:\\x\\plain"),
              (std::vector<std::string>{"d:\\x\\", "plain", "plain", "", "d:\\x\\plain"}));
    EXPECT_EQ(image.IsEmpty(), 1) << "a path alone holds no picture";
}

TEST(ImageHelpers, SwapRedBlueSaveAndCopy) {
    unsigned char rgb[6] = {1, 2, 3, 4, 5, 6};
    ISwapRedBlue(rgb, 2, 1, 24);
    EXPECT_EQ(std::vector<int>(rgb, rgb + 6), (std::vector<int>{3, 2, 1, 6, 5, 4}));
    unsigned char rgba[8] = {1, 2, 3, 4, 5, 6, 7, 8};
    ISwapRedBlue(rgba, 1, 2, 32);
    EXPECT_EQ(std::vector<int>(rgba, rgba + 8), (std::vector<int>{3, 2, 1, 4, 7, 6, 5, 8}));
    ISwapRedBlue(rgb, 3, 1, 16);
    EXPECT_EQ(rgb[0], 3) << "16-bit pixels are left alone";

    TempDir dir;
    std::vector<unsigned char> pixels = {10, 20, 30, 255, 40, 50, 60, 255};
    EXPECT_EQ(SaveImage("", pixels.data(), nullptr, 2, 1, 32, 0), 0);
    EXPECT_EQ(SaveImage(dir.File("x.png").c_str(), nullptr, nullptr, 2, 1, 32, 0), 0);
    ASSERT_EQ(SaveImage(dir.File("x.png").c_str(), pixels.data(), nullptr, 2, 1, 32, 0), 1);
    cimage source;
    ASSERT_EQ(source.Load(dir.File("x.png").c_str()), 1);
    EXPECT_EQ(PixelAt(source, 1, 0), (Pixel{40, 50, 60, 255}));

    source.SetStartFrame(3);
    source.SetColorKey(40, 50, 60);
    source.EnableColorKey(1);
    cimage copy;
    CopyImage(copy, source);
    source.EnableColorKey(0);
    source.GetBitsPtr()[0] = 99;
    EXPECT_EQ(PixelAt(copy, 0, 0), (Pixel{10, 20, 30, 255}));
    EXPECT_EQ(PixelAt(copy, 1, 0)[3], 0);
    EXPECT_EQ(copy.GetStartFrame(), 3);
    EXPECT_EQ(copy.IsColorKeyEnabled(), 1);
    copy.EnableColorKey(0);
    EXPECT_EQ(PixelAt(copy, 1, 0)[3], 255) << "the stored alpha was copied";
    EXPECT_STREQ(copy.GetPathNamePtr(), source.GetPathNamePtr());
}

TEST(VideoClipImage, UpperCaseAviIsAClipDecodedFrameByFrame) {
    TempDir dir;
    const char* colours[] = {"#ff0000", "#00ff00", "#0000ff", "#ffff00"};
    for (int i = 0; i < 4; ++i)
        ASSERT_TRUE(SolidPicture(dir.File("c" + std::to_string(i) + ".png"), colours[i], 16, 8));
    const std::string clip = dir.File("clip.AVI");
    const std::string command = "/usr/bin/ffmpeg -loglevel error -y -framerate 4 -i '" +
                                dir.File("c%d.png") + "' -c:v rawvideo -pix_fmt bgr24 '" + clip +
                                "'";
    ASSERT_EQ(std::system(command.c_str()), 0);
    cimage image;
    ASSERT_EQ(image.Load(clip.c_str()), 1);
    EXPECT_EQ(image.GetNumFrames(), 4);
    EXPECT_EQ(image.GetWidth(), 16);
    EXPECT_EQ(PixelAt(image, 5, 5), (Pixel{255, 0, 0, 255}));
    ASSERT_NE(image.GetBitsAt(3), nullptr);
    EXPECT_EQ(PixelAt(image, 0, 7), (Pixel{255, 255, 0, 255}));
    cimage copy;
    CopyImage(copy, image);
    image.Clear();
    ASSERT_NE(copy.GetBitsAt(1), nullptr) << "the copy reopened the clip";
    EXPECT_EQ(PixelAt(copy, 8, 4), (Pixel{0, 255, 0, 255}));
}

using TextureUpload = GLTest;

TEST_F(TextureUpload, RoundsToPowersOfTwoAndCapsAt512) {
    const int sizes[][4] = {{300, 200, 512, 256}, {1024, 1024, 512, 512}, {64, 64, 64, 64},
                            {64, 48, 64, 64},     {2048, 8, 512, 8},      {1, 3, 1, 4}};
    for (const auto& s : sizes) {
        cimage image;
        SolidImage(image, {1, 2, 3, 255}, s[0], s[1]);
        const GLuint id = image.GetIDAt(0);
        ASSERT_NE(id, 0u);
        EXPECT_EQ(TextureParameter(id, GL_TEXTURE_WIDTH, 0), s[2]) << s[0] << "x" << s[1];
        EXPECT_EQ(TextureParameter(id, GL_TEXTURE_HEIGHT, 0), s[3]) << s[0] << "x" << s[1];
    }
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

TEST_F(TextureUpload, FiltersFollowTheSettingsTable) {
    struct Row {
        int mip, texel;
        GLint mag, min;
    };
    const Row rows[] = {{0, 1, GL_NEAREST, GL_NEAREST},
                        {0, 2, GL_LINEAR, GL_LINEAR},
                        {1, 1, GL_NEAREST, GL_NEAREST_MIPMAP_NEAREST},
                        {1, 2, GL_LINEAR, GL_NEAREST_MIPMAP_LINEAR},
                        {2, 1, GL_NEAREST, GL_LINEAR_MIPMAP_NEAREST},
                        {2, 2, GL_LINEAR, GL_LINEAR_MIPMAP_LINEAR}};
    for (const Row& row : rows) {
        Tex_SetMipMapFilter(row.mip);
        Tex_SetTexelFilter(row.texel);
        cimage image;
        SolidImage(image, {9, 9, 9, 255}, 8, 8);
        const GLuint id = image.GetIDAt(0);
        EXPECT_EQ(TextureParameter(id, GL_TEXTURE_MAG_FILTER), row.mag) << row.mip << row.texel;
        EXPECT_EQ(TextureParameter(id, GL_TEXTURE_MIN_FILTER), row.min) << row.mip << row.texel;
        EXPECT_EQ(TextureParameter(id, GL_TEXTURE_WRAP_S), GL_REPEAT);
        EXPECT_EQ(TextureParameter(id, GL_TEXTURE_WRAP_T), GL_REPEAT);
        EXPECT_EQ(TextureParameter(id, GL_TEXTURE_WIDTH, 3), row.mip ? 1 : 0)
            << "mipmaps down to 1 x 1 only when asked for";
    }
    Tex_SetMipMapFilter(0);
    Tex_SetTexelFilter(1);
    GLint mode = 0;
    glGetTexEnviv(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, &mode);
    EXPECT_EQ(mode, GL_MODULATE);
}

namespace {
CoreGLContext* textureWindowContext = nullptr;
CoreGLContext* LookUpTextureContext(CGLWindow*) {
    return textureWindowContext;
}
}  // namespace

TEST_F(TextureUpload, TexturesLiveInTheTextureWindowsContext) {
    CoreGLContext* holder = CoreGLContext_Create(16, 16, nullptr);
    ASSERT_NE(holder, nullptr);
    ASSERT_EQ(CoreGLContext_MakeCurrent(context), 1);
    textureWindowContext = holder;
    CGLWindow_SetContextLookup(LookUpTextureContext);
    // Any address serves as the window: only the lookup looks at it.
    auto* window = reinterpret_cast<CGLWindow*>(&textureWindowContext);
    CGLWindow_SetTexGLWindow(window);
    EXPECT_EQ(CGLWindow_GetTexGLWindow(), window);

    cimage image;
    SolidImage(image, {1, 2, 3, 255}, 4, 4);
    const GLuint id = image.GetIDAt(0);
    ASSERT_NE(id, 0u);
    EXPECT_EQ(CoreGLContext_GetCurrent(), context) << "the caller's context is current again";
    EXPECT_EQ(glIsTexture(id), GL_FALSE) << "the test's own context has no such texture";
    ASSERT_EQ(CoreGLContext_MakeCurrent(holder), 1);
    EXPECT_EQ(glIsTexture(id), GL_TRUE);
    ASSERT_EQ(CoreGLContext_MakeCurrent(context), 1);
    image.Clear();
    ASSERT_EQ(CoreGLContext_MakeCurrent(holder), 1);
    EXPECT_EQ(glIsTexture(id), GL_FALSE) << "released in the texture window's context";

    CGLWindow_SetTexGLWindow(nullptr);
    CGLWindow_SetContextLookup(nullptr);
    CoreGLContext_Destroy(holder);
    EXPECT_EQ(CoreGLContext_MakeCurrent(context), 1);
}
