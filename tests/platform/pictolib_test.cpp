// The picture codecs, checked against ImageMagick's decoder run on the same files.
#include "pictolib.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "coreinterface.h"
#include "support/testsupport.h"

namespace {

// An RGBA picture, top row first.
struct Rgba {
    int width = 0;
    int height = 0;
    std::vector<unsigned char> pixels;
    bool hasAlphaBuffer = false;
};

std::string RunForOutput(const std::string& command) {
    std::string out;
    std::FILE* pipe = popen(command.c_str(), "r");
    if (!pipe) return out;
    char chunk[65536];
    std::size_t n;
    while ((n = std::fread(chunk, 1, sizeof chunk, pipe)) > 0) out.append(chunk, n);
    pclose(pipe);
    return out;
}

// Reads a PAM (P7) or PPM (P6) of 8-bit samples into RGBA.
Rgba ParseNetpbm(const std::string& bytes) {
    Rgba picture;
    std::istringstream in(bytes);
    std::string magic, word;
    in >> magic;
    int depth = 3, maxval = 0;
    if (magic == "P6") {
        in >> picture.width >> picture.height >> maxval;
    } else if (magic == "P7") {
        while (in >> word && word != "ENDHDR") {
            if (word == "WIDTH") in >> picture.width;
            if (word == "HEIGHT") in >> picture.height;
            if (word == "DEPTH") in >> depth;
            if (word == "MAXVAL") in >> maxval;
            if (word == "TUPLTYPE") in >> word;
        }
    } else {
        return Rgba{};
    }
    in.get();  // the single white-space byte before the samples
    if (maxval != 255) return Rgba{};
    const std::size_t count = static_cast<std::size_t>(picture.width) * picture.height;
    std::vector<unsigned char> samples(count * depth);
    in.read(reinterpret_cast<char*>(samples.data()), static_cast<std::streamsize>(samples.size()));
    if (static_cast<std::size_t>(in.gcount()) != samples.size()) return Rgba{};
    picture.pixels.resize(count * 4);
    for (std::size_t i = 0; i < count; ++i) {
        unsigned char const* s = &samples[i * depth];
        const bool grey = depth <= 2;
        const bool alpha = depth == 2 || depth == 4;
        picture.pixels[4 * i + 0] = s[0];
        picture.pixels[4 * i + 1] = grey ? s[0] : s[1];
        picture.pixels[4 * i + 2] = grey ? s[0] : s[2];
        picture.pixels[4 * i + 3] = alpha ? s[depth - 1] : 255;
    }
    return picture;
}

// ImageMagick's reading of a file. It keeps a TGA's row order as a note beside the pixels;
// -auto-orient applies it.
Rgba DecodeWithConvert(const std::string& path) {
    const std::string orient =
        std::filesystem::path(path).extension() == ".tga" ? " -auto-orient" : "";
    return ParseNetpbm(RunForOutput("/usr/bin/convert '" + path + "[0]'" + orient +
                                    " -depth 8 pam:- 2>/dev/null"));
}

Rgba DecodeWithPictoLib(const std::string& path) {
    unsigned char* bits = nullptr;
    unsigned char* alpha = nullptr;
    Rgba picture;
    if (!PictoLib_Load(path.c_str(), &bits, &alpha, &picture.width, &picture.height)) return {};
    const std::size_t count = static_cast<std::size_t>(picture.width) * picture.height;
    picture.pixels.assign(bits, bits + count * 4);
    picture.hasAlphaBuffer = alpha != nullptr;
    // The alpha buffer must repeat the fourth bytes.
    for (std::size_t i = 0; alpha && i < count; ++i)
        if (alpha[i] != bits[4 * i + 3]) picture.hasAlphaBuffer = false;
    PictoLib_Free(bits, alpha);
    return picture;
}

// The largest difference of any sample, and the count of samples that differ at all.
struct Difference {
    int largest = 0;
    std::size_t differing = 0;
};

Difference Compare(const Rgba& a, const Rgba& b) {
    Difference d;
    for (std::size_t i = 0; i < a.pixels.size() && i < b.pixels.size(); ++i) {
        const int delta = std::abs(a.pixels[i] - b.pixels[i]);
        d.largest = std::max(d.largest, delta);
        d.differing += delta != 0;
    }
    return d;
}

// Expects the same size and samples within `tolerance`.
void ExpectSamePicture(const std::string& path, const Rgba& ours, const Rgba& reference,
                       int tolerance) {
    ASSERT_GT(reference.width, 0) << "reference decoder failed on " << path;
    ASSERT_EQ(ours.width, reference.width) << path;
    ASSERT_EQ(ours.height, reference.height) << path;
    EXPECT_LE(Compare(ours, reference).largest, tolerance) << path;
}

bool AnyAlphaBelowOpaque(const Rgba& picture) {
    for (std::size_t i = 3; i < picture.pixels.size(); i += 4)
        if (picture.pixels[i] != 255) return true;
    return false;
}

std::string JpegBmp(const std::string& name) {
    return SharedDataPath("images/jpeg-bmp/" + name);
}

TEST(PictoLib, DecodesEveryPngOfTheSuiteLikeAnIndependentDecoder) {
    std::vector<std::string> files;
    for (const auto& entry : std::filesystem::directory_iterator(SharedDataPath("images/pngsuite")))
        if (entry.path().extension() == ".png") files.push_back(entry.path());
    ASSERT_GE(files.size(), 60u);
    for (const std::string& path : files) {
        const Rgba ours = DecodeWithPictoLib(path);
        const Rgba reference = DecodeWithConvert(path);
        // 16-bit samples are scaled to 8 bits with rounding by both, but not always the same
        // rounding: one step apart at most.
        const std::string name = path.substr(path.rfind('/') + 1);
        const bool sixteenBit = name.find("16") != std::string::npos;
        ExpectSamePicture(path, ours, reference, sixteenBit ? 1 : 0);
        // An alpha buffer comes exactly with transparency in the file: an alpha channel
        // (colour types 4 and 6, "a08"/"a16") or a transparency chunk ("tb", "tp1").
        bool transparent = false;
        for (const char* mark : {"a08", "a16", "tb", "tp1"})
            transparent = transparent || name.find(mark) != std::string::npos;
        EXPECT_EQ(ours.hasAlphaBuffer, transparent) << path;
    }
}

TEST(PictoLib, DecodesTheJpegAndBmpSamplesLikeAnIndependentDecoder) {
    for (const char* name : {"testorig.png", "vgl_5674_0098.png", "shira_bird8.bmp",
                             "vgl_6434_0018a.bmp", "vgl_6548_0026a.bmp"}) {
        const std::string path = JpegBmp(name);
        const Rgba ours = DecodeWithPictoLib(path);
        ExpectSamePicture(path, ours, DecodeWithConvert(path), 0);
        EXPECT_FALSE(ours.hasAlphaBuffer) << path;
    }
    // 16-bit samples: both scale with rounding, one step apart at most.
    const std::string monkey = JpegBmp("monkey16.png");
    ExpectSamePicture(monkey, DecodeWithPictoLib(monkey), DecodeWithConvert(monkey), 1);
    // Both decoders sit on libjpeg, but with their own settings; a step of 1 is the usual
    // difference between integer IDCT implementations.
    for (const char* name : {"testorig.jpg", "testimgint.jpg", "testimgari.jpg"}) {
        const std::string path = JpegBmp(name);
        ExpectSamePicture(path, DecodeWithPictoLib(path), DecodeWithConvert(path), 1);
    }
}

TEST(PictoLib, DecodesTheReferenceJpegToItsPublishedPixels) {
    const Rgba reference = ParseNetpbm(ReadFileBytes(JpegBmp("testorig.ppm")));
    ASSERT_EQ(reference.width, 227);
    ASSERT_EQ(reference.height, 149);
    const Rgba ours = DecodeWithPictoLib(JpegBmp("testorig.jpg"));
    // The reference comes from a decoder that upsamples chroma by scaled DCT instead of the
    // triangle filter: up to 3 steps apart, on a minority of the samples.
    ExpectSamePicture("testorig.jpg", ours, reference, 3);
    EXPECT_LT(Compare(ours, reference).differing, ours.pixels.size() * 3 / 4 / 5);
    EXPECT_FALSE(ours.hasAlphaBuffer);
}

TEST(PictoLib, DecodesTgaGifAndPsdFilesMadeByAnotherProgram) {
    TempDir dir;
    struct Case {
        const char* source;
        const char* target;
        const char* options;
        bool transparent;
    };
    const std::string suite = SharedDataPath("images/pngsuite/");
    const Case cases[] = {
        {"basn2c08.png", "rgb.tga", "-compress None", false},
        {"basn2c08.png", "rgb-top.tga", "-compress None -orient TopLeft", false},
        {"basn2c08.png", "rgb-rle.tga", "-compress RLE", false},
        {"basn6a08.png", "rgba.tga", "-compress None", true},
        {"basn6a08.png", "rgba-rle.tga", "-compress RLE", true},
        {"basn0g08.png", "grey.tga", "-compress None -type Grayscale", false},
        {"basn3p08.png", "palette.gif", "", false},
        {"ftbbn3p08.png", "transparent.gif", "", true},
        {"basn2c08.png", "rgb.psd", "-alpha off", false},
        {"basn2c08.png", "rgb565.bmp", "-define bmp:subtype=RGB565", false},
    };
    for (const Case& c : cases) {
        const std::string path = dir.File(c.target);
        const std::string command = "/usr/bin/convert '" + suite + c.source + "' " + c.options +
                                    " '" + path + "' 2>/dev/null";
        ASSERT_EQ(std::system(command.c_str()), 0) << command;
        const Rgba ours = DecodeWithPictoLib(path);
        ExpectSamePicture(path, ours, DecodeWithConvert(path), 0);
        EXPECT_EQ(ours.hasAlphaBuffer, c.transparent) << path;
        EXPECT_EQ(AnyAlphaBelowOpaque(ours), c.transparent) << path;
    }
}

// A Radiance file written by hand: 2 x 2 pixels, flat scanlines of RGBE.
TEST(PictoLib, ClampsHdrToTheDisplayRangeWithoutToneMapping) {
    TempDir dir;
    std::string file = "#?RADIANCE\nFORMAT=32-bit_rle_rgbe\n\n-Y 2 +X 2\n";
    // 0.5 = 128/256 * 2^0; 1.0 = 128/256 * 2^1; 2.0 clamps to 1; 0.25 = 128/256 * 2^-1.
    const unsigned char rgbe[] = {128, 0,   0,   128, 0,   128, 0, 129,
                                  128, 128, 128, 130, 128, 64,  0, 127};
    file.append(reinterpret_cast<const char*>(rgbe), sizeof rgbe);
    WriteFileBytes(dir.File("small.hdr"), file);
    const Rgba ours = DecodeWithPictoLib(dir.File("small.hdr"));
    ASSERT_EQ(ours.width, 2);
    ASSERT_EQ(ours.height, 2);
    const std::vector<unsigned char> expected = {128, 0,   0,   255, 0,  255, 0, 255,
                                                 255, 255, 255, 255, 64, 32,  0, 255};
    EXPECT_EQ(ours.pixels, expected);
    EXPECT_FALSE(ours.hasAlphaBuffer);
}

// A 5 x 3 test card whose every sample differs, with an alpha ramp, as 24-bit and 32-bit
// pixels and the RGBA expected back with and without the alpha buffer.
struct Card {
    static constexpr int kWidth = 5, kHeight = 3;
    std::vector<unsigned char> rgb, rgba, alpha, withAlpha, opaque;
    Card() {
        for (int y = 0; y < kHeight; ++y)
            for (int x = 0; x < kWidth; ++x) {
                const std::vector<unsigned char> pixel = {
                    static_cast<unsigned char>(40 * x + 7), static_cast<unsigned char>(80 * y + 3),
                    static_cast<unsigned char>(200 - 10 * (x + y))};
                const auto a = static_cast<unsigned char>(17 * (x + kWidth * y));
                for (auto* out : {&rgb, &rgba, &withAlpha, &opaque})
                    out->insert(out->end(), pixel.begin(), pixel.end());
                rgba.push_back(99);  // never written: the alpha comes from its own buffer
                alpha.push_back(a);
                withAlpha.push_back(a);
                opaque.push_back(255);
            }
    }
};

TEST(PictoLib, SavesLosslessFormatsThatReadBackExactly) {
    TempDir dir;
    const Card card;
    for (const char* name : {"card.png", "card.BMP", "card.tga"}) {
        for (const bool withAlpha : {false, true}) {
            for (const int bitsPerPixel : {24, 32}) {
                const std::string path =
                    dir.File(std::to_string(bitsPerPixel) + (withAlpha ? "a" : "") + name);
                const unsigned char* bits = bitsPerPixel == 24 ? card.rgb.data() : card.rgba.data();
                ASSERT_EQ(PictoLib_Save(path.c_str(), bits, withAlpha ? card.alpha.data() : nullptr,
                                        Card::kWidth, Card::kHeight, bitsPerPixel, 0, 0),
                          1)
                    << path;
                const Rgba ours = DecodeWithPictoLib(path);
                EXPECT_EQ(ours.width, Card::kWidth) << path;
                EXPECT_EQ(ours.pixels, withAlpha ? card.withAlpha : card.opaque) << path;
                EXPECT_EQ(ours.hasAlphaBuffer, withAlpha) << path;
                // Another program reads the same pixels from the file.
                EXPECT_EQ(DecodeWithConvert(path).pixels, withAlpha ? card.withAlpha : card.opaque)
                    << path;
            }
        }
    }
}

int g_dialogAnswer = 0;
int g_dialogCalls = 0;
int AnswerQualityDialog() {
    ++g_dialogCalls;
    return g_dialogAnswer;
}

std::string EstimatedJpegQuality(const std::string& path) {
    return RunForOutput("/usr/bin/convert '" + path + "' -format %Q info: 2>/dev/null");
}

// Saves the 32-bit pixels of `p` to `path`; the result of PictoLib_Save.
int SaveRgba(const std::string& path, const Rgba& p, const unsigned char* alpha = nullptr,
             int quality = 0, int ask = 0) {
    return PictoLib_Save(path.empty() ? nullptr : path.c_str(), p.pixels.data(), alpha, p.width,
                         p.height, 32, quality, ask);
}

TEST(PictoLib, SavesJpegWithTheGivenOrTheAskedQuality) {
    TempDir dir;
    const Rgba source = DecodeWithPictoLib(JpegBmp("testorig.png"));
    ASSERT_EQ(source.width, 227);
    ASSERT_EQ(SaveRgba(dir.File("fine.jpg"), source, nullptr, 95), 1);
    EXPECT_EQ(EstimatedJpegQuality(dir.File("fine.jpg")), "95");
    const Rgba back = DecodeWithPictoLib(dir.File("fine.jpg"));
    ASSERT_EQ(back.height, source.height);
    EXPECT_LT(Compare(back, source).largest, 48);
    // Out of range means 75; an alpha buffer is dropped, JPEG has no alpha.
    std::vector<unsigned char> alpha(static_cast<std::size_t>(source.width) * source.height, 7);
    ASSERT_EQ(SaveRgba(dir.File("default.JPEG"), source, alpha.data(), 101), 1);
    EXPECT_EQ(EstimatedJpegQuality(dir.File("default.JPEG")), "75");
    EXPECT_FALSE(DecodeWithPictoLib(dir.File("default.JPEG")).hasAlphaBuffer);

    int (*saved)() = I_JPGQualityDlg;
    I_JPGQualityDlg = AnswerQualityDialog;
    g_dialogCalls = 0;
    g_dialogAnswer = 30;
    EXPECT_EQ(SaveRgba(dir.File("asked.jpg"), source, nullptr, 95, 1), 1);
    EXPECT_EQ(EstimatedJpegQuality(dir.File("asked.jpg")), "30");
    // A cancelled dialog writes nothing; other formats never ask.
    g_dialogAnswer = 0;
    EXPECT_EQ(SaveRgba(dir.File("cancelled.jpg"), source, nullptr, 95, 1), 0);
    EXPECT_TRUE(ReadFileBytes(dir.File("cancelled.jpg")).empty());
    EXPECT_EQ(SaveRgba(dir.File("never.png"), source, nullptr, 95, 1), 1);
    EXPECT_EQ(g_dialogCalls, 2);
    I_JPGQualityDlg = saved;
}

TEST(PictoLib, RefusesBadArgumentsAndUnknownExtensions) {
    TempDir dir;
    Rgba card{5, 3, Card().rgba};
    for (const std::string name : {"a.gif", "noextension", "missing/a.png", ""})
        EXPECT_EQ(SaveRgba(name.empty() ? name : dir.File(name), card), 0) << name;
    EXPECT_EQ(PictoLib_Save(dir.File("a.png").c_str(), nullptr, nullptr, 5, 3, 32, 0, 0), 0);
    card.width = 0;
    EXPECT_EQ(SaveRgba(dir.File("a.png"), card), 0);
    unsigned char* out = nullptr;
    int width = 0, height = 0;
    EXPECT_EQ(PictoLib_Load(dir.File("absent.png").c_str(), &out, nullptr, &width, &height), 0);
    WriteFileBytes(dir.File("text.png"), "this is no picture at all, whatever its name says");
    EXPECT_EQ(PictoLib_Load(dir.File("text.png").c_str(), &out, nullptr, &width, &height), 0);
    EXPECT_EQ(out, nullptr);
    // The content decides, not the name: a PNG named .jpg loads.
    WriteFileBytes(dir.File("png.jpg"),
                   ReadFileBytes(SharedDataPath("images/pngsuite/basn2c08.png")));
    ASSERT_EQ(PictoLib_Load(dir.File("png.jpg").c_str(), &out, nullptr, &width, &height), 1);
    EXPECT_EQ(width, 32);
    PictoLib_Free(out, nullptr);
}

// Loads `bytes` as a file; the result of PictoLib_Load.
int LoadBytes(const TempDir& dir, const std::string& bytes) {
    const std::string path = dir.File("damaged");
    WriteFileBytes(path, bytes);
    unsigned char* bits = nullptr;
    unsigned char* alpha = nullptr;
    int width = 0, height = 0;
    const int ok = PictoLib_Load(path.c_str(), &bits, &alpha, &width, &height);
    if (ok) PictoLib_Free(bits, alpha);
    return ok;
}

TEST(PictoLib, RefusesTruncatedFiles) {
    TempDir dir;
    for (const std::string& path :
         {SharedDataPath("images/pngsuite/basn6a08.png"),
          SharedDataPath("images/pngsuite/ibasn3p02.png"), JpegBmp("testorig.jpg"),
          JpegBmp("testimgari.jpg"), JpegBmp("shira_bird8.bmp"), JpegBmp("vgl_6434_0018a.bmp")}) {
        const std::string bytes = ReadFileBytes(path);
        ASSERT_EQ(LoadBytes(dir, bytes), 1) << path;
        const std::size_t step = std::max<std::size_t>(1, bytes.size() / 300);
        for (std::size_t length = 0; length < bytes.size(); length += step)
            EXPECT_EQ(LoadBytes(dir, bytes.substr(0, length)), 0) << path << " cut at " << length;
        EXPECT_EQ(LoadBytes(dir, bytes.substr(0, bytes.size() - 1)), 0) << path;
    }
}

TEST(PictoLib, RefusesPngsWithFlippedBytesAndSurvivesRandomDamage) {
    TempDir dir;
    // Every byte of the header and pixel chunks (type, data and checksum) is covered by the
    // checksum; damage to an ancillary chunk is only a warning.
    const std::string png = ReadFileBytes(SharedDataPath("images/pngsuite/basn2c08.png"));
    ASSERT_GT(png.size(), 100u);
    int flipped = 0;
    for (std::size_t chunk = 8; chunk + 12 <= png.size();) {
        const std::size_t length = (static_cast<unsigned char>(png[chunk]) << 24 |
                                    static_cast<unsigned char>(png[chunk + 1]) << 16 |
                                    static_cast<unsigned char>(png[chunk + 2]) << 8 |
                                    static_cast<unsigned char>(png[chunk + 3]));
        const std::string type = png.substr(chunk + 4, 4);
        for (std::size_t i = chunk + 4;
             (type == "IHDR" || type == "IDAT") && i < chunk + 12 + length; ++i, ++flipped) {
            std::string damaged = png;
            damaged[i] = static_cast<char>(damaged[i] ^ 0x10);
            EXPECT_EQ(LoadBytes(dir, damaged), 0) << type << " flip at " << i;
        }
        chunk += 12 + length;
    }
    EXPECT_GT(flipped, 50);
    // Other formats cannot always tell damage from content; they must still never crash.
    std::mt19937 random(5);
    for (const char* name : {"testorig.jpg", "shira_bird8.bmp", "testimgari.jpg"}) {
        const std::string bytes = ReadFileBytes(JpegBmp(name));
        for (int round = 0; round < 40; ++round) {
            std::string damaged = bytes;
            for (int flip = 0; flip < 8; ++flip)
                damaged[random() % damaged.size()] = static_cast<char>(random());
            LoadBytes(dir, damaged);
        }
    }
    // A header claiming a picture far larger than the file is refused before allocating.
    std::string huge = png;
    const unsigned char size[8] = {0, 0, 0x40, 0, 0, 0, 0x40, 0};  // 16384 x 16384
    std::memcpy(&huge[16], size, 8);
    EXPECT_EQ(LoadBytes(dir, huge), 0);
}

}  // namespace
