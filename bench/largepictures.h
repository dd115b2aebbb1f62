// A real photograph scaled up to 4000 x 3000 as a JPEG and a PNG, shared by the picture
// benchmarks, and libjpeg and libpng called directly into RGBA as their baselines.
#ifndef ORVANE_BENCH_LARGEPICTURES_H
#define ORVANE_BENCH_LARGEPICTURES_H

#include <png.h>
#include <stdlib.h>

#include <cstddef>
#include <cstdio>  // jpeglib.h needs FILE and size_t declared first

#include <jpeglib.h>

#include <cstdlib>
#include <string>
#include <vector>

// The shared data folder lies beside the source tree.
inline std::string SharedDataFolder() {
    const std::string source = __FILE__;
    return source.substr(0, source.rfind("/bench/")) + "/../shared/data";
}

// The photograph written once as JPEG and PNG in a temporary folder that is removed at exit;
// `folder` is empty when they could not be made.
struct LargePictures {
    std::string folder, jpeg, png;
    LargePictures() {
        char name[] = "/tmp/core-bench-pictures-XXXXXX";
        if (!mkdtemp(name)) return;
        folder = name;
        jpeg = folder + "/large.jpg";
        png = folder + "/large.png";
        const std::string source = SharedDataFolder() + "/images/jpeg-bmp/testorig.png";
        const std::string make = "/usr/bin/convert '" + source + "' -resize 4000x3000! ";
        if (std::system((make + "-quality 90 '" + jpeg + "'").c_str()) != 0 ||
            std::system((make + "'" + png + "'").c_str()) != 0)
            folder.clear();
    }
    ~LargePictures() {
        if (!folder.empty()) std::system(("rm -rf '" + folder + "'").c_str());
    }
    LargePictures(const LargePictures&) = delete;
    LargePictures& operator=(const LargePictures&) = delete;
};

// The pictures, made on first use.
inline const LargePictures& Pictures() {
    static const LargePictures pictures;
    return pictures;
}

// Decodes the JPEG at `path` with libjpeg into `rgba`, four bytes a pixel, row after row.
inline bool DecodeJpegDirectly(const std::string& path, std::vector<unsigned char>& rgba) {
    std::FILE* file = std::fopen(path.c_str(), "rb");
    if (!file) return false;
    jpeg_decompress_struct info;
    jpeg_error_mgr errors;
    info.err = jpeg_std_error(&errors);
    jpeg_create_decompress(&info);
    jpeg_stdio_src(&info, file);
    jpeg_read_header(&info, TRUE);
    info.out_color_space = JCS_EXT_RGBA;
    jpeg_start_decompress(&info);
    const std::size_t stride = static_cast<std::size_t>(info.output_width) * 4;
    rgba.resize(stride * info.output_height);
    while (info.output_scanline < info.output_height) {
        JSAMPROW row = rgba.data() + stride * info.output_scanline;
        jpeg_read_scanlines(&info, &row, 1);
    }
    jpeg_finish_decompress(&info);
    jpeg_destroy_decompress(&info);
    std::fclose(file);
    return true;
}

// Decodes the PNG at `path` with libpng's simplified API into `rgba`, four bytes a pixel.
inline bool DecodePngDirectly(const std::string& path, std::vector<unsigned char>& rgba) {
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    if (!png_image_begin_read_from_file(&image, path.c_str())) return false;
    image.format = PNG_FORMAT_RGBA;
    rgba.resize(PNG_IMAGE_SIZE(image));
    return png_image_finish_read(&image, nullptr, rgba.data(), 0, nullptr) != 0;
}

#endif  // ORVANE_BENCH_LARGEPICTURES_H
