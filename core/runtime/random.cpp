// Random numbers over the C library generator.
#include "corerandom.h"

#include <ctime>

namespace {

constexpr int kDrawMax = 32767;

// One 15-bit draw (0..32767) from the C library generator, whose own range may be wider.
int Draw() {
    return std::rand() & kDrawMax;
}

}  // namespace

void seedrandtime() {
    std::srand(static_cast<unsigned int>(std::time(nullptr)));
}

int rand(int a, int b) {
    // Intended: integer division, so the result is `a` for every draw but the largest.
    const int q = Draw() / kDrawMax;
    // a + q * (b - a) for q of 0 or 1, written so that a span b - a wider than int cannot
    // overflow.
    return q == 0 ? a : b;
}

double rand(double a, double b) {
    const double t = Draw() / static_cast<double>(kDrawMax);
    return a + (b - a) * t;
}

float rand(float a, float b) {
    return static_cast<float>(rand(static_cast<double>(a), static_cast<double>(b)));
}
