// The picture codecs, checked against ImageMagick's decoder run on the same files.
#include "pictolib.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>
#include <tuple>
#include <vector>

#include "coreinterface.h"
#include "support/testsupport.h"

namespace {

// An RGBA picture, top row first.
struct Rgba {
    int width = 0, height = 0;
    std::vector<unsigned char> pixels;
    bool hasAlphaBuffer = false;
};

std::string RunForOutput(const std::string& command) {
    std::string out;
    std::FILE* pipe = popen(command.c_str(), "r");
    char chunk[65536];
    for (std::size_t n; pipe && (n = std::fread(chunk, 1, sizeof chunk, pipe)) > 0;)
        out.append(chunk, n);
    if (pipe) pclose(pipe);
    return out;
}

// ImageMagick's reading of a file's first frame, as 8-bit grey, grey and alpha, RGB or RGBA
// samples. It keeps a TGA's row order as a note beside the pixels; -auto-orient applies it.
Rgba DecodeWithConvert(const std::string& path) {
    const std::string orient =
        std::filesystem::path(path).extension() == ".tga" ? " -auto-orient" : "";
    const std::string out =
        RunForOutput("/usr/bin/convert '" + path + "[0]'" + orient + " -depth 8 pam:- 2>/dev/null");
    Rgba p;
    int depth = 0, start = 0;
    std::sscanf(out.c_str(), "P7 WIDTH %d HEIGHT %d DEPTH %d MAXVAL 255 TUPLTYPE %*s ENDHDR%*c%n",
                &p.width, &p.height, &depth, &start);
    const std::size_t count = static_cast<std::size_t>(p.width) * p.height;
    if (start == 0 || out.size() != start + count * depth) return Rgba{};
    for (std::size_t i = 0; i < count; ++i) {
        unsigned char const* s = reinterpret_cast<unsigned char const*>(&out[start + i * depth]);
        p.pixels.insert(p.pixels.end(),
                        {s[0], s[depth > 2 ? 1 : 0], s[depth > 2 ? 2 : 0],
                         depth % 2 == 0 ? s[depth - 1] : static_cast<unsigned char>(255)});
    }
    return p;
}

// Our reading of a file; hasAlphaBuffer also requires the buffer to repeat the fourth bytes.
Rgba DecodeWithPictoLib(const std::string& path) {
    unsigned char *bits = nullptr, *alpha = nullptr;
    Rgba p;
    if (!PictoLib_Load(path.c_str(), &bits, &alpha, &p.width, &p.height)) return {};
    p.pixels.assign(bits, bits + static_cast<std::size_t>(p.width) * p.height * 4);
    p.hasAlphaBuffer = alpha != nullptr;
    for (std::size_t i = 0; alpha && i < p.pixels.size() / 4; ++i)
        p.hasAlphaBuffer = p.hasAlphaBuffer && alpha[i] == bits[4 * i + 3];
    PictoLib_Free(bits, alpha);
    return p;
}

// The largest difference of any sample.
int LargestDifference(const Rgba& a, const Rgba& b) {
    int d = 0;
    for (std::size_t i = 0; i < a.pixels.size() && i < b.pixels.size(); ++i)
        d = std::max(d, std::abs(a.pixels[i] - b.pixels[i]));
    return d;
}

// Expects our decoding of `path` to have the reference's size and samples within `tolerance`,
// and an alpha buffer exactly when `transparent`.
Rgba ExpectDecodedLike(const std::string& path, int tolerance, bool transparent) {
    const Rgba reference = DecodeWithConvert(path);
    const Rgba ours = DecodeWithPictoLib(path);
    EXPECT_GT(reference.width, 0) << "reference decoder failed on " << path;
    EXPECT_EQ(ours.width * 100000 + ours.height, reference.width * 100000 + reference.height)
        << path;
    EXPECT_LE(LargestDifference(ours, reference), tolerance) << path;
    EXPECT_EQ(ours.hasAlphaBuffer, transparent) << path;
    return ours;
}

std::string JpegBmp(const std::string& name) {
    return SharedDataPath("images/jpeg-bmp/" + name);
}

TEST(PictoLib, DecodesEveryFormatLikeAnIndependentDecoder) {
    int files = 0;
    for (const auto& entry :
         std::filesystem::directory_iterator(SharedDataPath("images/pngsuite"))) {
        const std::string name = entry.path().filename();
        if (entry.path().extension() != ".png") continue;
        ++files;
        // 16-bit samples are scaled to 8 bits with rounding by both, but not always the same
        // rounding. An alpha buffer comes exactly with transparency in the file: an alpha
        // channel (colour types 4 and 6, "a08"/"a16") or a transparency chunk ("tb", "tp1").
        bool transparent = false;
        for (const char* mark : {"a08", "a16", "tb", "tp1"})
            transparent = transparent || name.find(mark) != std::string::npos;
        ExpectDecodedLike(entry.path(), name.find("16") != name.npos ? 1 : 0, transparent);
    }
    EXPECT_GE(files, 60);
    // Both JPEG decoders sit on libjpeg with their own settings: a step of 1 is the usual
    // difference between integer IDCT implementations.
    for (const char* name :
         {"vgl_5674_0098.png", "shira_bird8.bmp", "vgl_6434_0018a.bmp", "vgl_6548_0026a.bmp",
          "monkey16.png", "testimgint.jpg", "testimgari.jpg"}) {
        const bool exact =
            std::strstr(name, "16") == nullptr && std::strstr(name, "jpg") == nullptr;
        ExpectDecodedLike(JpegBmp(name), exact ? 0 : 1, false);
    }
    // TGA, GIF, PSD and 16-bit BMP files written by ImageMagick.
    TempDir dir;
    for (const auto& [source, target, options] :
         {std::make_tuple("basn2c08", "rgb.tga", "-compress None"),
          std::make_tuple("basn2c08", "rgb-top.tga", "-compress None -orient TopLeft"),
          std::make_tuple("basn6a08", "rgba-rle.tga", "-compress RLE"),
          std::make_tuple("basn0g08", "grey.tga", "-compress None -type Grayscale"),
          std::make_tuple("basn3p08", "palette.gif", ""),
          std::make_tuple("ftbbn3p08", "transparent.gif", ""),
          std::make_tuple("basn2c08", "rgb.psd", "-alpha off"),
          std::make_tuple("basn2c08", "rgb565.bmp", "-define bmp:subtype=RGB565")}) {
        const std::string path = dir.File(target);
        const std::string command = "/usr/bin/convert '" + SharedDataPath("images/pngsuite/") +
                                    source + ".png' " + options + " '" + path + "'";
        ASSERT_EQ(std::system(command.c_str()), 0) << command;
        ExpectDecodedLike(path, 0, std::strstr(target, "rgba") || std::strstr(target, "trans"));
    }
}

TEST(PictoLib, SavesLosslessFormatsThatReadBackExactly) {
    // A 5 x 3 card whose every sample differs, with an alpha ramp, as 24-bit and 32-bit
    // pixels; the fourth bytes of the 32-bit pixels are never written, the alpha comes from
    // its own buffer.
    std::vector<unsigned char> rgb, rgba, alpha;
    for (int i = 0; i < 15; ++i) {
        const unsigned char pixel[4] = {static_cast<unsigned char>(40 * (i % 5) + 7),
                                        static_cast<unsigned char>(80 * (i / 5) + 3),
                                        static_cast<unsigned char>(200 - 10 * (i % 5 + i / 5)), 99};
        rgb.insert(rgb.end(), pixel, pixel + 3);
        rgba.insert(rgba.end(), pixel, pixel + 4);
        alpha.push_back(static_cast<unsigned char>(17 * i));
    }
    TempDir dir;
    for (const char* name : {"card.png", "card.BMP", "card.tga"})
        for (const bool hasAlpha : {false, true})
            for (const int bpp : {24, 32}) {
                const std::string path =
                    dir.File(std::to_string(bpp) + (hasAlpha ? "a" : "") + name);
                ASSERT_EQ(PictoLib_Save(path.c_str(), bpp == 24 ? rgb.data() : rgba.data(),
                                        hasAlpha ? alpha.data() : nullptr, 5, 3, bpp, 0, 0),
                          1)
                    << path;
                std::vector<unsigned char> expected = rgba;
                for (int i = 0; i < 15; ++i) expected[4 * i + 3] = hasAlpha ? alpha[i] : 255;
                EXPECT_EQ(ExpectDecodedLike(path, 0, hasAlpha).pixels, expected) << path;
            }
}

int g_dialogAnswer = 0, g_dialogCalls = 0;

// Saves the 32-bit pixels of `p` to `path`; the result of PictoLib_Save.
int SaveRgba(const std::string& path, const Rgba& p, int quality = 0, int ask = 0,
             const unsigned char* alpha = nullptr) {
    return PictoLib_Save(path.empty() ? nullptr : path.c_str(), p.pixels.data(), alpha, p.width,
                         p.height, 32, quality, ask);
}

TEST(PictoLib, SavesJpegWithTheGivenOrTheAskedQualityAndRefusesBadArguments) {
    TempDir dir;
    const Rgba source = DecodeWithPictoLib(JpegBmp("testorig.png"));
    // The result of saving `name`, then the quality ImageMagick reads from the file written.
    const auto save = [&](const char* name, int quality, int ask, const unsigned char* alpha) {
        const int saved = SaveRgba(dir.File(name), source, quality, ask, alpha);
        return std::to_string(saved) + " " +
               RunForOutput("/usr/bin/convert '" + dir.File(name) + "' -format %Q info:");
    };
    EXPECT_EQ(save("fine.jpg", 100, 0, nullptr), "1 100");
    EXPECT_LT(LargestDifference(ExpectDecodedLike(dir.File("fine.jpg"), 1, false), source), 48);
    // Out of range means 75; an alpha buffer is dropped, JPEG has no alpha.
    const std::vector<unsigned char> alpha(source.pixels.size() / 4, 7);
    EXPECT_EQ(save("default.JPEG", 101, 0, alpha.data()), "1 75");
    EXPECT_FALSE(DecodeWithPictoLib(dir.File("default.JPEG")).hasAlphaBuffer);

    I_JPGQualityDlg = [] { return ++g_dialogCalls, g_dialogAnswer; };
    g_dialogAnswer = 30;
    EXPECT_EQ(save("asked.jpg", 95, 1, nullptr), "1 30");
    // A cancelled dialog writes nothing; other formats never ask.
    g_dialogAnswer = 0;
    EXPECT_EQ(SaveRgba(dir.File("cancelled.jpg"), source, 95, 1), 0);
    EXPECT_TRUE(ReadFileBytes(dir.File("cancelled.jpg")).empty());
    EXPECT_EQ(SaveRgba(dir.File("never.png"), source, 95, 1), 1);
    EXPECT_EQ(g_dialogCalls, 2);
    I_JPGQualityDlg = nullptr;

    for (const std::string name : {"a.gif", "noextension", "missing/a.png", ""})
        EXPECT_EQ(SaveRgba(name.empty() ? name : dir.File(name), source), 0) << name;
    EXPECT_EQ(PictoLib_Save(dir.File("a.png").c_str(), nullptr, nullptr, 5, 3, 32, 0, 0), 0);
    EXPECT_EQ(SaveRgba(dir.File("a.png"), Rgba{0, 3, source.pixels}), 0);
}

// Our reading of `bytes` written to a file (width 0 when refused).
Rgba LoadBytes(const std::string& bytes) {
    static const TempDir dir;
    WriteFileBytes(dir.File("damaged"), bytes);
    return DecodeWithPictoLib(dir.File("damaged"));
}

TEST(PictoLib, TrustsTheContentNotTheNameAndRefusesDamagedFiles) {
    const std::string png = ReadFileBytes(SharedDataPath("images/pngsuite/basn2c08.png"));
    EXPECT_EQ(LoadBytes(png).width, 32) << "a PNG loads under any name";
    EXPECT_EQ(LoadBytes("this is no picture at all, whatever its name says").width, 0);
    for (const std::string& path :
         {SharedDataPath("images/pngsuite/basn6a08.png"),
          SharedDataPath("images/pngsuite/ibasn3p02.png"), JpegBmp("testorig.jpg"),
          JpegBmp("testimgari.jpg"), JpegBmp("shira_bird8.bmp"), JpegBmp("vgl_6434_0018a.bmp")}) {
        const std::string bytes = ReadFileBytes(path);
        const std::size_t step = std::max<std::size_t>(1, bytes.size() / 300);
        for (std::size_t length = 0; length < bytes.size(); length += step)
            EXPECT_EQ(LoadBytes(bytes.substr(0, length)).width, 0) << path << " cut at " << length;
        EXPECT_EQ(LoadBytes(bytes.substr(0, bytes.size() - 1)).width, 0) << path;
    }
    // Every byte of the header and pixel chunks (type, data and checksum) is covered by the
    // checksum; damage to an ancillary chunk is only a warning.
    int flipped = 0;
    for (std::size_t chunk = 8, length; chunk + 12 <= png.size(); chunk += 12 + length) {
        length = 0;
        for (int b = 0; b < 4; ++b)
            length = length << 8 | static_cast<unsigned char>(png[chunk + b]);
        const std::string type = png.substr(chunk + 4, 4);
        for (std::size_t i = chunk + 4;
             (type == "IHDR" || type == "IDAT") && i < chunk + 12 + length; ++i, ++flipped) {
            std::string damaged = png;
            damaged[i] = static_cast<char>(damaged[i] ^ 0x10);
            EXPECT_EQ(LoadBytes(damaged).width, 0) << type << " flip at " << i;
        }
    }
    EXPECT_GT(flipped, 50);
    // Flat 2 x 2 pixels: 0.5 = 128/256 * 2^0; 1.0 = 128/256 * 2^1; 2.0 clamps to 1;
    // 0.25 = 128/256 * 2^-1. No tone mapping.
    const std::string flat =
        "#?RADIANCE\nFORMAT=32-bit_rle_rgbe\n\n-Y 2 +X 2\n" +
        std::string("\x80\0\0\x80\0\x80\0\x81\x80\x80\x80\x82\x80\x40\0\x7f", 16);
    EXPECT_EQ(LoadBytes(flat).pixels,
              (std::vector<unsigned char>{128, 0, 0, 255, 0, 255, 0, 255, 255, 255, 255, 255, 64,
                                          32, 0, 255}));
    // Run-length encoded Radiance scanlines of 8 pixels, each component one run: red 1.0,
    // green 0.5. Every cut, and a stretch of no pixels (on which the reader would never end),
    // is refused.
    const std::string radiance = "#?RADIANCE\nFORMAT=32-bit_rle_rgbe\n\n-Y 2 +X 8\n";
    std::string rle = radiance;
    for (int row = 0; row < 2; ++row)
        rle += std::string("\2\2\0\x08\x88\x80\x88\x40\x88\0\x88\x81", 12);
    EXPECT_EQ(LoadBytes(rle).pixels.at(1), 128);
    for (std::size_t length = radiance.size(); length < rle.size(); ++length)
        EXPECT_EQ(LoadBytes(rle.substr(0, length)).width, 0) << "Radiance cut at " << length;
    std::string empty = rle;
    empty[radiance.size() + 4] = '\0';
    EXPECT_EQ(LoadBytes(empty).width, 0);
    // A 1 x 1 GIF: cut anywhere before the end of its image data, it is refused.
    const std::string gif(
        "GIF89a\x01\x00\x01\x00\x80\x00\x00\xff\xff\xff\x00\x00\x00"
        "!\xf9\x04\x01\x00\x00\x00\x00,\x00\x00\x00\x00\x01\x00\x01\x00"
        "\x00\x02\x02"
        "D\x01\x00;",
        43);
    EXPECT_EQ(LoadBytes(gif).width, 1);
    for (std::size_t length = 6; length < gif.size() - 1; ++length)
        EXPECT_EQ(LoadBytes(gif.substr(0, length)).width, 0) << "GIF cut at " << length;
    // A header claiming a picture far larger than the file is refused before allocating.
    std::string huge = png;
    std::memcpy(&huge[16], "\0\0\x40\0\0\0\x40\0", 8);  // 16384 x 16384
    EXPECT_EQ(LoadBytes(huge).width, 0);
}

}  // namespace
