// Internal: the picture codecs behind PictoLib, each over bytes in memory, and the pixel buffer
// they decode into.
#ifndef ORVANE_CORE_PLATFORM_PICTOLIBCODECS_H
#define ORVANE_CORE_PLATFORM_PICTOLIBCODECS_H

#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>

namespace pictolib {

// Sizes beyond these are refused before any pixel memory is taken: a side of 16384 pixels and
// 2^25 pixels in all (128 MiB of RGBA).
constexpr int kMaxSide = 16384;
constexpr long long kMaxPixels = 1LL << 25;
// No format packs more pixels than this into one byte of file (a 1-bit deflated PNG comes
// closest, at about 8300); a header claiming more is lying about a truncated or forged file.
constexpr long long kMaxPixelsPerFileByte = 10000;

struct FreeDeleter {
    void operator()(unsigned char* p) const { std::free(p); }
};
using Buffer = std::unique_ptr<unsigned char, FreeDeleter>;

// A decoded picture: width x height RGBA pixels, top row first, in a malloc'd buffer (so that
// PictoLib_Free releases it).
struct Picture {
    int width = 0;
    int height = 0;
    Buffer rgba;
};

// The bytes of a whole file.
struct Bytes {
    unsigned char const* data;
    std::size_t size;
};

// Whether the file begins with the `length` bytes of `magic`.
inline bool StartsWith(Bytes file, char const* magic, std::size_t length) {
    return file.size >= length && std::memcmp(file.data, magic, length) == 0;
}

inline std::size_t PixelCount(Picture const& picture) {
    return static_cast<std::size_t>(picture.width) * static_cast<std::size_t>(picture.height);
}

// Whether a header's claimed size is one worth allocating for, given the file's length.
bool IsPlausibleSize(long long width, long long height, std::size_t fileSize);

// A malloc'd RGBA buffer for width x height pixels (null if memory runs out).
Buffer AllocateRGBA(int width, int height);

// Decoders: 1 and a filled picture on success, 0 for a corrupt, truncated or oversized file.
int DecodePng(Bytes file, Picture& picture);
int DecodeJpeg(Bytes file, Picture& picture);
// BMP, TGA, GIF, PSD, HDR and the other formats the small reader knows.
int DecodeOther(Bytes file, Picture& picture);

// Encoders over width x height pixels of `channels` bytes each (3 RGB or 4 RGBA), top row
// first, into an open file: 1 when the whole picture was written.
int EncodePng(std::FILE* file, unsigned char const* pixels, int width, int height, int channels);
int EncodeJpeg(std::FILE* file, unsigned char const* pixels, int width, int height, int channels,
               int quality);
int EncodeBmp(std::FILE* file, unsigned char const* pixels, int width, int height, int channels);
int EncodeTga(std::FILE* file, unsigned char const* pixels, int width, int height, int channels);

}  // namespace pictolib

#endif
