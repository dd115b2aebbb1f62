// cfixed: a 16.16 fixed-point number.
#ifndef ORVANE_CFIXED_H
#define ORVANE_CFIXED_H

#include <cstdint>

#include "coreapi.h"

// One signed 32-bit integer holding value x 65536: 16 integer bits including the sign and 16
// fraction bits. Addition and subtraction wrap on overflow; multiplication and division round
// to nearest (halves away from zero) and give the raw value -1 on overflow or division by 0.
class CORE_API cfixed {
public:
    // Zero.
    cfixed() = default;
    // From an integer: the value shifted left 16 bits (bits above the 32nd are lost).
    cfixed(int value) : raw_(Wrap(static_cast<std::uint32_t>(value) << 16)) {}
    cfixed(long value) : raw_(Wrap(static_cast<std::uint32_t>(value) << 16)) {}
    // From a float or double: value x 65536 truncated toward zero. A value outside
    // (-32768, 32768), or NaN, gives the raw value INT32_MIN, as the processor's conversion does.
    cfixed(float value);
    cfixed(double value);

    // The number whose raw 16.16 representation is `raw`.
    static cfixed FromRaw(std::int32_t raw) {
        cfixed f;
        f.raw_ = raw;
        return f;
    }
    // The raw 16.16 representation: value x 65536.
    std::int32_t GetRaw() const { return raw_; }

    // The integer part by arithmetic shift, i.e. rounded toward minus infinity (-1.5 gives -2).
    int Int() const { return raw_ >> 16; }
    // The low 16 bits as an unsigned number, in 65536ths (-1.5 gives 32768).
    unsigned int Frac() const { return static_cast<std::uint32_t>(raw_) & 0xFFFFu; }

    operator int() const { return Int(); }
    // The value: raw / 65536.
    operator float() const { return static_cast<float>(raw_ / 65536.0); }
    operator double() const { return raw_ / 65536.0; }

    cfixed& operator+=(cfixed o) {
        raw_ = Wrap(static_cast<std::uint32_t>(raw_) + static_cast<std::uint32_t>(o.raw_));
        return *this;
    }
    cfixed& operator-=(cfixed o) {
        raw_ = Wrap(static_cast<std::uint32_t>(raw_) - static_cast<std::uint32_t>(o.raw_));
        return *this;
    }
    // raw = a x b / 65536 with a 64-bit intermediate, rounded; -1 on overflow.
    cfixed& operator*=(cfixed o);
    // raw = a x 65536 / b with a 64-bit intermediate, rounded; -1 on overflow or b of 0.
    cfixed& operator/=(cfixed o);

    cfixed operator-() const { return cfixed() -= *this; }

    friend cfixed operator+(cfixed a, cfixed b) { return a += b; }
    friend cfixed operator-(cfixed a, cfixed b) { return a -= b; }
    friend cfixed operator*(cfixed a, cfixed b) { return a *= b; }
    friend cfixed operator/(cfixed a, cfixed b) { return a /= b; }

    friend bool operator<(cfixed a, cfixed b) { return a.raw_ < b.raw_; }
    friend bool operator>(cfixed a, cfixed b) { return a.raw_ > b.raw_; }
    friend bool operator==(cfixed a, cfixed b) { return a.raw_ == b.raw_; }
    friend bool operator!=(cfixed a, cfixed b) { return a.raw_ != b.raw_; }

private:
    // Two's-complement reading of 32 bits, without relying on an out-of-range conversion.
    static std::int32_t Wrap(std::uint32_t bits) {
        return bits < 0x80000000u ? static_cast<std::int32_t>(bits)
                                  : static_cast<std::int32_t>(bits - 0x80000000u) - INT32_MAX - 1;
    }

    std::int32_t raw_ = 0;
};

#endif
