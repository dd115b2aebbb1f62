// PNG through libpng. libpng reports errors by longjmp: the functions that call it keep only
// plain data in their frames, and the pixel buffer lives in a caller's object, so nothing with
// a destructor is skipped when libpng jumps.
#include <png.h>

#include <csetjmp>
#include <cstring>
#include <vector>

#include "platform/pictolibcodecs.h"

namespace pictolib {
namespace {

struct MemoryReader {
    Bytes file;
    std::size_t position;
};

void ReadFromMemory(png_structp png, png_bytep out, png_size_t length) {
    auto* reader = static_cast<MemoryReader*>(png_get_io_ptr(png));
    if (length > reader->file.size - reader->position) png_error(png, "truncated");
    std::memcpy(out, reader->file.data + reader->position, length);
    reader->position += length;
}

// libpng allocates some chunks (a suggested palette, text) at the length their header claims
// before it reads them. Every chunk's length is therefore checked against what the file holds
// first, so that a forged length cannot ask for gigabytes.
bool ChunksFit(Bytes file) {
    constexpr std::size_t kSignature = 8, kFrame = 12;  // length, type, then the checksum
    for (std::size_t at = kSignature; at < file.size;) {
        if (file.size - at < kFrame) return false;
        const unsigned char* word = file.data + at;
        const std::size_t length =
            static_cast<std::size_t>(word[0]) << 24 | word[1] << 16 | word[2] << 8 | word[3];
        if (length > file.size - at - kFrame) return false;
        if (std::memcmp(word + 4, "IEND", 4) == 0) break;
        at += kFrame + length;
    }
    return true;
}

void Fail(png_structp png, png_const_charp /*message*/) {
    png_longjmp(png, 1);
}

// Warnings (a bad ancillary chunk) do not stop decoding and are not worth a line on stderr.
void IgnoreWarning(png_structp /*png*/, png_const_charp /*message*/) {}

// Every source becomes 8-bit RGBA: palettes and low grey depths expanded, a transparent colour
// turned into alpha, 16-bit channels scaled with rounding, grey spread to RGB, opaque sources
// given an alpha of 255.
void RequestRGBA(png_structp png, png_infop info) {
    png_set_expand(png);
    png_set_scale_16(png);
    png_set_gray_to_rgb(png);
    png_set_filler(png, 0xff, PNG_FILLER_AFTER);
    png_set_interlace_handling(png);
    png_read_update_info(png, info);
}

// Reads the header and sets up the conversion; libpng may jump out of here (see the file
// comment).
int ReadHeader(png_structp png, png_infop info, MemoryReader* reader, Picture* picture) {
    if (setjmp(png_jmpbuf(png))) return 0;
    png_set_read_fn(png, reader, ReadFromMemory);
    png_set_user_limits(png, kMaxSide, kMaxSide);
    png_read_info(png, info);
    const png_uint_32 width = png_get_image_width(png, info);
    const png_uint_32 height = png_get_image_height(png, info);
    if (!IsPlausibleSize(width, height, reader->file.size)) return 0;
    RequestRGBA(png, info);
    if (png_get_rowbytes(png, info) != static_cast<png_size_t>(width) * 4) return 0;
    picture->width = static_cast<int>(width);
    picture->height = static_cast<int>(height);
    return 1;
}

int ReadImage(png_structp png, png_bytep* rows) {
    if (setjmp(png_jmpbuf(png))) return 0;
    png_read_image(png, rows);
    // The chunks after the pixels up to IEND are read too, so that a file cut short anywhere
    // is refused.
    png_read_end(png, nullptr);
    return 1;
}

int ReadPicture(png_structp png, png_infop info, MemoryReader* reader, Picture& picture) {
    if (!ReadHeader(png, info, reader, &picture)) return 0;
    picture.rgba = AllocateRGBA(picture.width, picture.height);
    if (!picture.rgba) return 0;
    const std::size_t stride = static_cast<std::size_t>(picture.width) * 4;
    std::vector<png_bytep> rows(static_cast<std::size_t>(picture.height));
    for (std::size_t y = 0; y < rows.size(); ++y) rows[y] = picture.rgba.get() + y * stride;
    return ReadImage(png, rows.data());
}

void WriteToFile(png_structp png, png_bytep data, png_size_t length) {
    auto* file = static_cast<std::FILE*>(png_get_io_ptr(png));
    if (std::fwrite(data, 1, length, file) != length) png_error(png, "write failed");
}

void FlushFile(png_structp png) {
    std::fflush(static_cast<std::FILE*>(png_get_io_ptr(png)));
}

int WriteRows(png_structp png, png_infop info, std::FILE* file, png_bytep* rows, int width,
              int height, int channels) {
    if (setjmp(png_jmpbuf(png))) return 0;
    png_set_write_fn(png, file, WriteToFile, FlushFile);
    png_set_IHDR(png, info, static_cast<png_uint_32>(width), static_cast<png_uint_32>(height), 8,
                 channels == 4 ? PNG_COLOR_TYPE_RGB_ALPHA : PNG_COLOR_TYPE_RGB, PNG_INTERLACE_NONE,
                 PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    png_write_info(png, info);
    png_write_image(png, rows);
    png_write_end(png, info);
    return 1;
}

}  // namespace

int DecodePng(Bytes file, Picture& picture) {
    if (!ChunksFit(file)) return 0;
    png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, Fail, IgnoreWarning);
    if (!png) return 0;
    png_infop info = png_create_info_struct(png);
    MemoryReader reader{file, 0};
    const int ok = info ? ReadPicture(png, info, &reader, picture) : 0;
    png_destroy_read_struct(&png, info ? &info : nullptr, nullptr);
    if (!ok) picture.rgba.reset();
    return ok;
}

int EncodePng(std::FILE* file, unsigned char const* pixels, int width, int height, int channels) {
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, Fail, IgnoreWarning);
    if (!png) return 0;
    png_infop info = png_create_info_struct(png);
    std::vector<png_bytep> rows(static_cast<std::size_t>(height));
    const std::size_t stride = static_cast<std::size_t>(width) * static_cast<std::size_t>(channels);
    // libpng takes non-const rows but only reads them while writing.
    auto* base = const_cast<png_bytep>(pixels);
    for (std::size_t y = 0; y < rows.size(); ++y) rows[y] = base + y * stride;
    const int ok = info ? WriteRows(png, info, file, rows.data(), width, height, channels) : 0;
    png_destroy_write_struct(&png, info ? &info : nullptr);
    return ok;
}

}  // namespace pictolib
