// PictoLib's entry points: format recognition, size checks and the buffers handed out.
#include "pictolib.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "coreinterface.h"
#include "platform/filesize.h"
#include "platform/pictolibcodecs.h"

namespace pictolib {

bool IsPlausibleSize(long long width, long long height, std::size_t fileSize) {
    if (width < 1 || height < 1 || width > kMaxSide || height > kMaxSide) return false;
    const long long pixels = width * height;
    return pixels <= kMaxPixels &&
           pixels <= static_cast<long long>(fileSize) * kMaxPixelsPerFileByte;
}

Buffer AllocateRGBA(int width, int height) {
    const std::size_t size = static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 4;
    return Buffer(static_cast<unsigned char*>(std::malloc(size)));
}

}  // namespace pictolib

namespace {

using pictolib::Bytes;
using pictolib::Picture;
using pictolib::PixelCount;
using pictolib::StartsWith;

// Files above this are no picture the library would want to hold.
constexpr long kMaxFileSize = 256L << 20;

bool ReadWholeFile(char const* path, std::vector<unsigned char>& bytes) {
    std::FILE* file = std::fopen(path, "rb");
    if (!file) return false;
    const long size = RegularFileSize(file);
    bool ok = size > 0 && size <= kMaxFileSize;
    if (ok) {
        bytes.resize(static_cast<std::size_t>(size));
        ok = std::fread(bytes.data(), 1, bytes.size(), file) == bytes.size();
    }
    std::fclose(file);
    return ok;
}

// The format is told by the first bytes; what is neither PNG nor JPEG goes to the small
// reader, which recognises the rest by content in the same way (TGA by a plausible header).
int Decode(Bytes file, Picture& picture) {
    if (StartsWith(file, "\x89PNG\r\n\x1a\n", 8)) return pictolib::DecodePng(file, picture);
    if (StartsWith(file, "\xff\xd8\xff", 3)) return pictolib::DecodeJpeg(file, picture);
    return pictolib::DecodeOther(file, picture);
}

// Formats disagree on what counts as transparency (GIF and PSD readers always report an alpha
// channel, PNG may carry an opaque one): the pixels decide.
bool AnyTransparentPixel(Picture const& picture) {
    unsigned char const* rgba = picture.rgba.get();
    const std::size_t count = PixelCount(picture);
    for (std::size_t i = 0; i < count; ++i)
        if (rgba[4 * i + 3] != 255) return true;
    return false;
}

unsigned char* ExtractAlpha(Picture const& picture) {
    const std::size_t count = PixelCount(picture);
    auto* alpha = static_cast<unsigned char*>(std::malloc(count));
    if (!alpha) return nullptr;
    unsigned char const* rgba = picture.rgba.get();
    for (std::size_t i = 0; i < count; ++i) alpha[i] = rgba[4 * i + 3];
    return alpha;
}

std::string LowerExtension(char const* path) {
    char const* dot = std::strrchr(path, '.');
    char const* slash = std::max(std::strrchr(path, '/'), std::strrchr(path, '\\'));
    if (!dot || (slash && slash > dot)) return "";
    std::string extension(dot + 1);
    for (char& c : extension) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return extension;
}

// Packs the caller's pixels into the rows the encoders take: RGB, or RGBA with the separate
// alpha when there is one.
std::vector<unsigned char> Interleave(unsigned char const* bits, unsigned char const* alpha,
                                      int width, int height, int bitsPerPixel) {
    const std::size_t count = static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
    const std::size_t stride = bitsPerPixel == 24 ? 3 : 4;
    const std::size_t channels = alpha ? 4 : 3;
    std::vector<unsigned char> pixels(count * channels);
    for (std::size_t i = 0; i < count; ++i) {
        std::memcpy(&pixels[i * channels], bits + i * stride, 3);
        if (alpha) pixels[i * channels + 3] = alpha[i];
    }
    return pixels;
}

// The quality a JPEG is written with; 0 when the user cancelled the host's dialog.
int JpegQuality(int quality, int askQuality) {
    if (askQuality) {
        const int answer = I_JPGQualityDlg();
        return answer < 1 ? 0 : std::min(answer, 100);
    }
    return quality >= 1 && quality <= 100 ? quality : 75;
}

// Writes the file, removing it again when the encoder fails half-way: a truncated file would
// read back as a corrupt picture later.
int Encode(std::string const& extension, char const* path, std::vector<unsigned char> const& pixels,
           int width, int height, int channels, int jpegQuality) {
    std::FILE* file = std::fopen(path, "wb");
    if (!file) return 0;
    unsigned char const* data = pixels.data();
    int written = 0;
    if (extension == "png") {
        written = pictolib::EncodePng(file, data, width, height, channels);
    } else if (extension == "bmp") {
        written = pictolib::EncodeBmp(file, data, width, height, channels);
    } else if (extension == "tga") {
        written = pictolib::EncodeTga(file, data, width, height, channels);
    } else {
        written = pictolib::EncodeJpeg(file, data, width, height, channels, jpegQuality);
    }
    if (std::fclose(file) != 0) written = 0;
    if (!written) std::remove(path);
    return written;
}

bool IsWritableExtension(std::string const& extension) {
    return extension == "png" || extension == "jpg" || extension == "jpeg" || extension == "bmp" ||
           extension == "tga";
}

}  // namespace

int PictoLib_Load(char const* path, unsigned char** bits, unsigned char** alpha, int* width,
                  int* height) {
    if (!path || !bits || !width || !height) return 0;
    std::vector<unsigned char> bytes;
    if (!ReadWholeFile(path, bytes)) return 0;
    Picture picture;
    if (!Decode(Bytes{bytes.data(), bytes.size()}, picture)) return 0;
    unsigned char* alphaBuffer = nullptr;
    if (alpha && AnyTransparentPixel(picture)) {
        alphaBuffer = ExtractAlpha(picture);
        if (!alphaBuffer) return 0;
    }
    *bits = picture.rgba.release();
    if (alpha) *alpha = alphaBuffer;
    *width = picture.width;
    *height = picture.height;
    return 1;
}

int PictoLib_Save(char const* path, unsigned char const* bits, unsigned char const* alpha,
                  int width, int height, int bitsPerPixel, int quality, int askQuality) {
    if (!path || !bits || width < 1 || height < 1 || width > pictolib::kMaxSide ||
        height > pictolib::kMaxSide)
        return 0;
    const std::string extension = LowerExtension(path);
    if (!IsWritableExtension(extension)) return 0;
    const bool isJpeg = extension == "jpg" || extension == "jpeg";
    const int jpegQuality = isJpeg ? JpegQuality(quality, askQuality) : 0;
    if (isJpeg && jpegQuality == 0) return 0;
    const std::vector<unsigned char> pixels = Interleave(bits, alpha, width, height, bitsPerPixel);
    return Encode(extension, path, pixels, width, height, alpha ? 4 : 3, jpegQuality);
}

void PictoLib_Free(unsigned char* bits, unsigned char* alpha) {
    std::free(bits);
    std::free(alpha);
}
