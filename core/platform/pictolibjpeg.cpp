// JPEG through libjpeg-turbo. libjpeg reports errors by calling error_exit, which here jumps
// back with longjmp: the functions that set the jump keep only plain data in their frames.
#include <cstdio>  // jpeglib.h needs FILE and size_t declared first

#include <jerror.h>
#include <jpeglib.h>

#include <csetjmp>
#include <vector>

#include "platform/pictolibcodecs.h"

namespace pictolib {
namespace {

// A forged progressive file can hold thousands of scans over a tiny picture; no encoder writes
// more than a few dozen.
constexpr int kMaxScans = 1000;

struct ErrorManager {
    jpeg_error_mgr base;
    std::jmp_buf jump;
};

[[noreturn]] void JumpBack(j_common_ptr info) {
    std::longjmp(reinterpret_cast<ErrorManager*>(info->err)->jump, 1);
}

// Warnings mean corrupt or missing data, which libjpeg would fill in with grey: such a file is
// refused. Stray bytes between markers are the one harmless warning many cameras cause.
void RefuseCorruptData(j_common_ptr info, int level) {
    if (level < 0 && info->err->msg_code != JWRN_EXTRANEOUS_DATA) JumpBack(info);
}

void LimitScans(j_common_ptr info) {
    auto* decompress = reinterpret_cast<j_decompress_ptr>(info);
    if (decompress->input_scan_number > kMaxScans) JumpBack(info);
}

void InstallErrorManager(j_common_ptr info, ErrorManager& errors) {
    info->err = jpeg_std_error(&errors.base);
    errors.base.error_exit = JumpBack;
    errors.base.emit_message = RefuseCorruptData;
}

bool IsInkColourSpace(J_COLOR_SPACE space) {
    return space == JCS_CMYK || space == JCS_YCCK;
}

// Ink (CMYK) pixels converted in place to RGBA. Files with an Adobe marker store the inks
// inverted (255 is no ink), which is what every such file in practice carries.
void InkToRGBA(unsigned char* row, JDIMENSION width, bool inverted) {
    for (JDIMENSION x = 0; x < width; ++x, row += 4) {
        int ink[4];
        for (int c = 0; c < 4; ++c) ink[c] = inverted ? row[c] : 255 - row[c];
        for (int c = 0; c < 3; ++c)
            row[c] = static_cast<unsigned char>((ink[c] * ink[3] + 127) / 255);
        row[3] = 255;
    }
}

int ReadHeader(jpeg_decompress_struct* info, ErrorManager* errors, Bytes file, Picture* picture,
               jpeg_progress_mgr* progress) {
    if (setjmp(errors->jump)) return 0;
    jpeg_create_decompress(info);
    info->progress = progress;
    jpeg_mem_src(info, file.data, static_cast<unsigned long>(file.size));
    if (jpeg_read_header(info, TRUE) != JPEG_HEADER_OK) return 0;
    if (!IsPlausibleSize(info->image_width, info->image_height, file.size)) return 0;
    info->out_color_space = IsInkColourSpace(info->jpeg_color_space) ? JCS_CMYK : JCS_EXT_RGBA;
    jpeg_start_decompress(info);
    picture->width = static_cast<int>(info->output_width);
    picture->height = static_cast<int>(info->output_height);
    return info->output_components == 4 ? 1 : 0;
}

int ReadScanlines(jpeg_decompress_struct* info, ErrorManager* errors, unsigned char* rgba) {
    if (setjmp(errors->jump)) return 0;
    const std::size_t stride = std::size_t{info->output_width} * 4;
    const bool ink = info->out_color_space == JCS_CMYK;
    while (info->output_scanline < info->output_height) {
        JSAMPROW row = rgba + std::size_t{info->output_scanline} * stride;
        if (jpeg_read_scanlines(info, &row, 1) != 1) return 0;
        if (ink) InkToRGBA(row, info->output_width, info->saw_Adobe_marker != 0);
    }
    jpeg_finish_decompress(info);
    return 1;
}

int WriteScanlines(jpeg_compress_struct* info, ErrorManager* errors, std::FILE* file,
                   unsigned char const* pixels, int width, int height, int channels, int quality) {
    if (setjmp(errors->jump)) return 0;
    jpeg_create_compress(info);
    jpeg_stdio_dest(info, file);
    info->image_width = static_cast<JDIMENSION>(width);
    info->image_height = static_cast<JDIMENSION>(height);
    info->input_components = channels;
    // The alpha byte of RGBA input is skipped: JPEG has no alpha.
    info->in_color_space = channels == 4 ? JCS_EXT_RGBX : JCS_RGB;
    jpeg_set_defaults(info);
    jpeg_set_quality(info, quality, TRUE);
    jpeg_start_compress(info, TRUE);
    const std::size_t stride = static_cast<std::size_t>(width) * static_cast<std::size_t>(channels);
    while (info->next_scanline < info->image_height) {
        // libjpeg takes non-const rows but only reads them.
        JSAMPROW row = const_cast<JSAMPROW>(pixels + std::size_t{info->next_scanline} * stride);
        jpeg_write_scanlines(info, &row, 1);
    }
    jpeg_finish_compress(info);
    return 1;
}

}  // namespace

int DecodeJpeg(Bytes file, Picture& picture) {
    jpeg_decompress_struct info{};
    ErrorManager errors{};
    InstallErrorManager(reinterpret_cast<j_common_ptr>(&info), errors);
    jpeg_progress_mgr progress{};
    progress.progress_monitor = LimitScans;
    int ok = ReadHeader(&info, &errors, file, &picture, &progress);
    if (ok) {
        picture.rgba = AllocateRGBA(picture.width, picture.height);
        ok = picture.rgba && ReadScanlines(&info, &errors, picture.rgba.get());
    }
    jpeg_destroy_decompress(&info);
    if (!ok) picture.rgba.reset();
    return ok;
}

int EncodeJpeg(std::FILE* file, unsigned char const* pixels, int width, int height, int channels,
               int quality) {
    jpeg_compress_struct info{};
    ErrorManager errors{};
    InstallErrorManager(reinterpret_cast<j_common_ptr>(&info), errors);
    const int ok = WriteScanlines(&info, &errors, file, pixels, width, height, channels, quality);
    jpeg_destroy_compress(&info);
    return ok && !std::ferror(file);
}

}  // namespace pictolib
