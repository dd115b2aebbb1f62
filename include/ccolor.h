// ccolor: an RGBA colour of floats, nominally in [0, 1].
#ifndef ORVANE_CCOLOR_H
#define ORVANE_CCOLOR_H

#include <climits>

#include "cpoint.h"

// Arithmetic with a colour, a float or an int is component-wise, alpha included (an int is
// taken as a plain number, not as a 0..255 component). == compares all four floats exactly.
struct ccolor : cvectorops<ccolor> {
    static constexpr int kSize = 4;
    float r = 1.0f, g = 1.0f, b = 1.0f, a = 1.0f;

    // Opaque white.
    ccolor() = default;
    ccolor(float r_, float g_, float b_) { Set(r_, g_, b_); }
    ccolor(float r_, float g_, float b_, float a_) { Set(r_, g_, b_, a_); }
    explicit ccolor(const float rgb[3]) { Set(rgb); }
    // From 0..255 integers: each component divided by 255; the three-int forms give alpha 1.
    ccolor(int r_, int g_, int b_) { Set(r_, g_, b_); }
    ccolor(int r_, int g_, int b_, int a_) { Set(r_, g_, b_, a_); }
    explicit ccolor(const int rgb[3]) { Set(rgb); }

    void Set(float r_, float g_, float b_) { Set(r_, g_, b_, 1.0f); }
    void Set(float r_, float g_, float b_, float a_) { r = r_, g = g_, b = b_, a = a_; }
    void Set(const float rgb[3]) { Set(rgb[0], rgb[1], rgb[2]); }
    void Set(int r_, int g_, int b_) { Set(r_ / 255.0f, g_ / 255.0f, b_ / 255.0f); }
    void Set(int r_, int g_, int b_, int a_) {
        Set(r_ / 255.0f, g_ / 255.0f, b_ / 255.0f, a_ / 255.0f);
    }
    void Set(const int rgb[3]) { Set(rgb[0], rgb[1], rgb[2]); }

    // Opaque white (1, 1, 1, 1) and transparent black (0, 0, 0, 0).
    void Identity() { Set(1.0f, 1.0f, 1.0f, 1.0f); }
    void Zero() { Set(0.0f, 0.0f, 0.0f, 0.0f); }

    // A component times 255, truncated toward zero: no rounding and no clamping (0.999 gives
    // 254, 2.0 gives 510).
    int Redi() const { return ToInt255(r); }
    int Greeni() const { return ToInt255(g); }
    int Bluei() const { return ToInt255(b); }
    int Alphai() const { return ToInt255(a); }

    // Limits each of the four components to [0, 1].
    void Clamp() {
        for (int i = 0; i < kSize; ++i)
            (*this)[i] = (*this)[i] < 0.0f ? 0.0f : ((*this)[i] > 1.0f ? 1.0f : (*this)[i]);
    }

    // Components in the order r, g, b, a.
    float& operator[](int i) { return i == 0 ? r : (i == 1 ? g : (i == 2 ? b : a)); }
    float operator[](int i) const { return i == 0 ? r : (i == 1 ? g : (i == 2 ? b : a)); }
    operator float*() { return &r; }
    operator const float*() const { return &r; }

private:
    // A product outside the int range (or NaN) gives INT_MIN, as the processor's truncating
    // conversion does, instead of an undefined conversion.
    static int ToInt255(float c) {
        const float scaled = c * 255.0f;
        return scaled > -2147483648.0f && scaled < 2147483648.0f ? static_cast<int>(scaled)
                                                                 : INT_MIN;
    }
};

#endif
