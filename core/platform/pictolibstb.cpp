// BMP, TGA, GIF, PSD and HDR through stb_image (reading) and stb_image_write (BMP and TGA
// writing). The implementations come from the system's libstb.
#include <stb_image.h>
#include <stb_image_write.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "platform/pictolibcodecs.h"

namespace pictolib {
namespace {

struct StbFree {
    void operator()(void* p) const { stbi_image_free(p); }
};
template <class T>
using StbPixels = std::unique_ptr<T, StbFree>;

int Length(Bytes file) {
    return static_cast<int>(std::min<std::size_t>(file.size, 0x7fffffff));
}

// HDR values are linear light: they are clamped to 0..1 and scaled, without tone mapping or
// gamma, so that 1.0 is white.
bool DecodeHdr(Bytes file, Picture& picture) {
    int width = 0, height = 0, channels = 0;
    StbPixels<float> pixels(
        stbi_loadf_from_memory(file.data, Length(file), &width, &height, &channels, 4));
    if (!pixels || width != picture.width || height != picture.height) return false;
    unsigned char* out = picture.rgba.get();
    const std::size_t values = PixelCount(picture) * 4;
    for (std::size_t i = 0; i < values; ++i) {
        const float v = std::clamp(pixels.get()[i], 0.0f, 1.0f);
        out[i] = static_cast<unsigned char>(v * 255.0f + 0.5f);
    }
    return true;
}

bool DecodeEightBit(Bytes file, Picture& picture) {
    int width = 0, height = 0, channels = 0;
    StbPixels<unsigned char> pixels(
        stbi_load_from_memory(file.data, Length(file), &width, &height, &channels, 4));
    if (!pixels || width != picture.width || height != picture.height) return false;
    std::memcpy(picture.rgba.get(), pixels.get(), PixelCount(picture) * 4);
    return true;
}

void WriteToFile(void* context, void* data, int size) {
    auto* file = static_cast<std::FILE*>(context);
    std::fwrite(data, 1, static_cast<std::size_t>(size), file);
}

using StbWriter = int (*)(stbi_write_func*, void*, int, int, int, const void*);

int Write(StbWriter writer, std::FILE* file, unsigned char const* pixels, int width, int height,
          int channels) {
    const int ok = writer(WriteToFile, file, width, height, channels, pixels);
    return ok && !std::ferror(file) ? 1 : 0;
}

unsigned ReadLittle(Bytes file, std::size_t offset, int length) {
    unsigned value = 0;
    for (int i = length - 1; i >= 0; --i)
        value = value << 8 | file.data[offset + static_cast<std::size_t>(i)];
    return value;
}

// The reader fills pixels past the end of a file with zeros; for the uncompressed layouts,
// whose pixel data has a known length, a file that is too short is refused here instead.
bool UncompressedBmpFits(Bytes file) {
    if (file.size < 30) return false;
    const unsigned headerSize = ReadLittle(file, 14, 4);
    if (headerSize == 12) return true;  // the old core header is checked by the reader alone
    if (file.size < 34) return false;
    const unsigned compression = ReadLittle(file, 30, 4);
    if (compression != 0 && compression != 3 && compression != 6) return true;
    const long long width = static_cast<int>(ReadLittle(file, 18, 4));
    const long long height = std::llabs(static_cast<int>(ReadLittle(file, 22, 4)));
    const long long bitsPerPixel = ReadLittle(file, 28, 2);
    const long long stride = (width * bitsPerPixel + 31) / 32 * 4;
    return ReadLittle(file, 10, 4) + stride * height <= static_cast<long long>(file.size);
}

bool UncompressedTgaFits(Bytes file) {
    if (file.size < 18) return false;
    const unsigned type = file.data[2];
    if (type != 1 && type != 2 && type != 3) return true;
    const long long mapBytes =
        file.data[1] ? ReadLittle(file, 5, 2) * ((file.data[7] + 7LL) / 8) : 0;
    const long long pixelBytes = ReadLittle(file, 12, 2) *
                                 static_cast<long long>(ReadLittle(file, 14, 2)) *
                                 ((file.data[16] + 7LL) / 8);
    return 18 + file.data[0] + mapBytes + pixelBytes <= static_cast<long long>(file.size);
}

// Radiance pixels follow the header (lines up to an empty one) and the resolution line. Each
// scanline of 8 to 32767 pixels is either run-length encoded (2, 2, then its length, then the
// four components one after the other, each as runs and literal stretches) or starts the plain
// layout, four bytes a pixel, which then holds every pixel left in the picture. The reader
// takes a run of no pixels as progress and never ends, and reads zeros past the end of the
// file; pixels are therefore walked here first, and a zero count or a missing byte refuses the
// file.
bool RadiancePixelsFit(Bytes file, long long width, long long height) {
    const unsigned char* end = file.data + file.size;
    const unsigned char* at = file.data;
    // The header ends at an empty line; the resolution line follows.
    for (int newlines = 0; newlines < 2 && at < end; ++at)
        newlines = *at == '\n' ? newlines + 1 : 0;
    at = std::find(at, end, '\n');
    if (at == end) return false;
    ++at;
    const auto plainFits = [&](long long pixels) { return pixels * 4 <= end - at; };
    if (width < 8 || width >= 32768) return plainFits(width * height);
    for (long long row = 0; row < height; ++row) {
        if (end - at < 4) return false;
        if (at[0] != 2 || at[1] != 2 || (at[2] & 0x80)) return plainFits((height - row) * width);
        if ((at[2] << 8 | at[3]) != width) return false;
        at += 4;
        for (int component = 0; component < 4; ++component) {
            for (long long done = 0; done < width;) {
                if (at == end) return false;
                long long count = *at++;
                const bool run = count > 128;
                if (run) count -= 128;
                if (count == 0 || count > width - done || (run ? 1 : count) > end - at)
                    return false;
                at += run ? 1 : count;
                done += count;
            }
        }
    }
    return true;
}

// A GIF holds the logical screen, colour tables, extension blocks and then the first image:
// its descriptor, colour table, code size and a chain of data sub-blocks ended by an empty
// one. The reader allocates the whole screen before it looks at the image, so the blocks up
// to the end of the first image are walked here first: a file cut short, or one with no
// image, is refused before anything is allocated.
bool GifImageFits(Bytes file) {
    if (file.size < 13) return false;
    const unsigned char* at = file.data + 13;  // signature and logical screen descriptor
    const unsigned char* const end = file.data + file.size;
    const auto skipColorTable = [&](unsigned char packed) {
        const long long bytes = packed & 0x80 ? 3LL << ((packed & 7) + 1) : 0;
        if (bytes > end - at) return false;
        at += bytes;
        return true;
    };
    const auto skipSubBlocks = [&] {
        while (at < end) {
            const int size = *at++;
            if (size == 0) return true;
            if (size > end - at) return false;
            at += size;
        }
        return false;
    };
    if (!skipColorTable(file.data[10])) return false;
    while (at < end) {
        const unsigned char introducer = *at++;
        if (introducer == 0x21) {  // an extension: its label, then sub-blocks
            if (at == end) return false;
            ++at;
            if (!skipSubBlocks()) return false;
        } else if (introducer == 0x2C) {  // the image descriptor, then its code size
            if (end - at < 9) return false;
            const unsigned char packed = at[8];
            at += 9;
            if (!skipColorTable(packed) || at == end) return false;
            ++at;
            return skipSubBlocks();
        } else {
            return false;  // the trailer, or anything unknown, before any image
        }
    }
    return false;
}

// TGA has no signature: what is no other known format is taken for one.
bool PixelDataFits(Bytes file, int width, int height) {
    if (StartsWith(file, "BM", 2)) return UncompressedBmpFits(file);
    if (StartsWith(file, "#?", 2)) return RadiancePixelsFit(file, width, height);
    if (StartsWith(file, "GIF8", 4)) return GifImageFits(file);
    if (StartsWith(file, "8BPS", 4)) return true;
    return UncompressedTgaFits(file);
}

}  // namespace

int DecodeOther(Bytes file, Picture& picture) {
    int width = 0, height = 0, channels = 0;
    // The header alone first: the size is checked before the reader allocates for it.
    if (!stbi_info_from_memory(file.data, Length(file), &width, &height, &channels)) return 0;
    if (!IsPlausibleSize(width, height, file.size) || !PixelDataFits(file, width, height)) return 0;
    picture.width = width;
    picture.height = height;
    picture.rgba = AllocateRGBA(width, height);
    const bool hdr = stbi_is_hdr_from_memory(file.data, Length(file)) != 0;
    const bool ok =
        picture.rgba && (hdr ? DecodeHdr(file, picture) : DecodeEightBit(file, picture));
    if (!ok) {
        picture.rgba.reset();
        return 0;
    }
    return 1;
}

int EncodeBmp(std::FILE* file, unsigned char const* pixels, int width, int height, int channels) {
    return Write(stbi_write_bmp_to_func, file, pixels, width, height, channels);
}

int EncodeTga(std::FILE* file, unsigned char const* pixels, int width, int height, int channels) {
    return Write(stbi_write_tga_to_func, file, pixels, width, height, channels);
}

}  // namespace pictolib
