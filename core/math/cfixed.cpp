// cfixed: conversions from floating point, multiplication and division.
#include "cfixed.h"

#include <cstdint>
#include <cstdlib>

namespace {

constexpr std::int32_t kOverflow = -1;

// round(a x b / c) with halves away from zero and a 64-bit intermediate. A result outside
// the 32-bit signed range, or c of 0, gives -1.
// Intended: -1 doubles as the failure value, as the operating system's multiply-divide does.
std::int32_t MulDivRounded(std::int32_t a, std::int32_t b, std::int32_t c) {
    if (c == 0) return kOverflow;
    const std::int64_t product = static_cast<std::int64_t>(a) * b;  // |product| <= 2^62
    const bool negative = (product < 0) != (c < 0);
    const std::uint64_t n = static_cast<std::uint64_t>(std::llabs(product));
    const std::uint64_t d = static_cast<std::uint64_t>(std::llabs(static_cast<std::int64_t>(c)));
    // Adding half the divisor before the division rounds the magnitude half up.
    const std::uint64_t magnitude = (n + d / 2) / d;
    const std::uint64_t limit = negative ? std::uint64_t{1} << 31 : (std::uint64_t{1} << 31) - 1;
    if (magnitude > limit) return kOverflow;
    return negative ? static_cast<std::int32_t>(-static_cast<std::int64_t>(magnitude))
                    : static_cast<std::int32_t>(magnitude);
}

// value x 65536 truncated toward zero. Out of range or NaN gives INT32_MIN, the processor's
// "integer indefinite", rather than an undefined conversion.
std::int32_t TruncateScaled(double value) {
    const double scaled = value * 65536.0;
    return scaled > -2147483648.0 && scaled < 2147483648.0 ? static_cast<std::int32_t>(scaled)
                                                           : INT32_MIN;
}

}  // namespace

cfixed::cfixed(float value) : raw_(TruncateScaled(value)) {}

cfixed::cfixed(double value) : raw_(TruncateScaled(value)) {}

cfixed& cfixed::operator*=(cfixed o) {
    raw_ = MulDivRounded(raw_, o.raw_, 65536);
    return *this;
}

cfixed& cfixed::operator/=(cfixed o) {
    raw_ = MulDivRounded(raw_, 65536, o.raw_);
    return *this;
}
