// Test helpers for images and materials: a current GL context, pictures made by ImageMagick
// and pixels read from images.
#ifndef ORVANE_TESTS_MATERIALS_MATERIALSUPPORT_H
#define ORVANE_TESTS_MATERIALS_MATERIALSUPPORT_H

#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <string>
#include <vector>

#include "cimage.h"
#include "coreglcontext.h"

using Pixel = std::array<int, 4>;

// A 64 x 64 offscreen context, current for the test. A missing context fails the test.
class GLTest : public testing::Test {
protected:
    void SetUp() override {
        context = CoreGLContext_Create(64, 64, nullptr);
        ASSERT_NE(context, nullptr) << "no offscreen GL context";
        ASSERT_EQ(CoreGLContext_MakeCurrent(context), 1);
    }
    void TearDown() override { CoreGLContext_Destroy(context); }

    CoreGLContext* context = nullptr;
};

// Runs ImageMagick: `arguments` then the output file. True on success.
inline bool Convert(const std::string& arguments, const std::string& output) {
    const std::string command = "/usr/bin/convert " + arguments + " '" + output + "' 2>/dev/null";
    return std::system(command.c_str()) == 0;
}

// A one-colour picture of `width` x `height`; `colour` in ImageMagick's syntax.
inline bool SolidPicture(const std::string& path, const std::string& colour, int width,
                         int height) {
    const std::string size = std::to_string(width) + "x" + std::to_string(height);
    return Convert("-size " + size + " 'xc:" + colour + "'", path);
}

// The RGBA bytes of pixel (x, y) of the frame in memory, top row first.
inline Pixel PixelAt(cimage& image, int x, int y) {
    const unsigned char* p = image.GetBitsPtr() + 4 * (y * image.GetWidth() + x);
    return {p[0], p[1], p[2], p[3]};
}

// `image` set to `width` x `height` pixels, all of `rgba`.
inline void SolidImage(cimage& image, Pixel rgba, int width = 2, int height = 2) {
    std::vector<unsigned char> pixels(static_cast<size_t>(width) * height * 4);
    for (size_t i = 0; i < pixels.size(); ++i) pixels[i] = static_cast<unsigned char>(rgba[i % 4]);
    ASSERT_EQ(image.SetBits(nullptr, pixels.data(), nullptr, width, height, 32, 0), 1);
}

#endif
