// Fuzz target: PictoLib_Load over untrusted picture files of every format it reads.
//
// The input is written to a file and loaded. A load either fails or hands out a picture within
// the size limits whose every byte can be read, with an alpha buffer exactly when some pixel
// is not opaque, repeating the pixels' fourth bytes.

#include "fuzz/fuzztarget.h"
#include "pictolib.h"

namespace {

void CheckPicture(unsigned char const* bits, unsigned char const* alpha, int width, int height) {
    FUZZ_CHECK(bits && width >= 1 && width <= 16384 && height >= 1 && height <= 16384);
    const std::size_t count = static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
    FUZZ_CHECK(count <= (std::size_t{1} << 25));
    bool anyTransparent = false;
    for (std::size_t i = 0; i < count; ++i) {
        anyTransparent = anyTransparent || bits[4 * i + 3] != 255;
        FUZZ_CHECK(!alpha || alpha[i] == bits[4 * i + 3]);
    }
    FUZZ_CHECK(anyTransparent == (alpha != nullptr));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string path = FuzzFile(data, size);
    unsigned char* bits = nullptr;
    unsigned char* alpha = nullptr;
    int width = 0, height = 0;
    if (PictoLib_Load(path.c_str(), &bits, &alpha, &width, &height)) {
        CheckPicture(bits, alpha, width, height);
        PictoLib_Free(bits, alpha);
    } else {
        FUZZ_CHECK(bits == nullptr && alpha == nullptr && width == 0 && height == 0);
    }
    return 0;
}

std::vector<std::string> FuzzSeeds() {
    std::vector<std::string> seeds;
    // Small real files: grey, palette, interlaced and alpha PNGs, the three JPEG codings.
    for (const char* name :
         {"pngsuite/basn0g01.png", "pngsuite/basn3p02.png", "pngsuite/ibasn3p01.png",
          "pngsuite/basn4a08.png", "pngsuite/ftbbn3p08.png", "jpeg-bmp/testimgint.jpg",
          "jpeg-bmp/testimgari.jpg"}) {
        const std::string bytes = ReadFileBytes(SharedDataPath(std::string("images/") + name));
        if (!bytes.empty()) seeds.push_back(bytes);
    }
    // The formats without a small sample file, written by hand: a 1 x 1 GIF whose one pixel
    // is transparent, a 2 x 2 run-length TGA, a 2 x 1 Radiance file and a 2 x 2 8-bit BMP.
    seeds.push_back(
        std::string("GIF89a\x01\x00\x01\x00\x80\x00\x00\xff\xff\xff\x00\x00\x00"
                    "!\xf9\x04\x01\x00\x00\x00\x00,\x00\x00\x00\x00\x01\x00\x01\x00"
                    "\x00\x02\x02"
                    "D\x01\x00;",
                    43));
    // A GIF whose screen of 1606 x 11900 the file's size allows, but which holds no image: it
    // is refused before the screen is allocated.
    seeds.push_back(std::string("GIF89a\x46\x06\x7c\x2e\x00\x00\x00", 13) +
                    std::string(2649, '\0'));
    seeds.push_back(
        std::string("\x00\x00\x0a\x00\x00\x00\x00\x00\x00\x00\x00\x00\x02\x00\x02\x00"
                    "\x18\x20\x81\x10\x20\x30\x81\x40\x50\x60",
                    26));
    seeds.push_back(std::string("#?RADIANCE\nFORMAT=32-bit_rle_rgbe\n\n-Y 1 +X 2\n") +
                    std::string("\x80\x40\x00\x80\x80\x80\x80\x81", 8));
    std::string bmp(
        "BM\x46\x00\x00\x00\x00\x00\x00\x00\x3e\x00\x00\x00\x28\x00\x00\x00"
        "\x02\x00\x00\x00\x02\x00\x00\x00\x01\x00\x08\x00\x00\x00\x00\x00"
        "\x08\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x02\x00\x00\x00"
        "\x00\x00\x00\x00",
        54);
    bmp += std::string("\x00\x00\xff\x00\xff\x00\x00\x00\x00\x01\x00\x00\x01\x00\x00\x00", 16);
    seeds.push_back(bmp);
    // A PNG whose suggested-palette chunk claims 761 MB: refused before anything is allocated.
    seeds.push_back(std::string(
        "\x89PNG\r\n\x1a\n\0\0\0\rIHDR\0\0\0 \0\0\0 \x02\x03\0\0\0\x0e\x14\x92g"
        "\0\0\0\x04gAMFORMAT=32-b\x8d\x03sPLTE\0\xff=\0\xbdI\x7f\x81m*\xca/\xfb\0\0\0\0IEND"
        "\xae\x42\x60\x82",
        83));
    return seeds;
}
