// Record fields: every value goes through one little-endian encoder and one decoder.
#include "ciofields.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>

#include "io/cioblock.h"

static_assert(sizeof(int) == 4 && sizeof(unsigned int) == 4, "ints are 32 bits");
static_assert(sizeof(float) == 4 && std::numeric_limits<float>::is_iec559,
              "floats are 32-bit IEEE values");

namespace {

using Bits = std::uint32_t;

// On a little-endian machine a value's low Width bytes are its field; elsewhere they are
// assembled byte by byte.
constexpr bool kLittleEndian = __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__;

template <unsigned Width>
void Encode(Bits value, unsigned char* bytes) {
    if constexpr (kLittleEndian) {
        std::memcpy(bytes, &value, Width);
    } else {
        for (unsigned b = 0; b < Width; ++b)
            bytes[b] = static_cast<unsigned char>(value >> (8 * b));
    }
}

template <unsigned Width>
Bits Decode(const unsigned char* bytes) {
    Bits value = 0;
    if constexpr (kLittleEndian) {
        std::memcpy(&value, bytes, Width);
    } else {
        for (unsigned b = 0; b < Width; ++b) value |= Bits{bytes[b]} << (8 * b);
    }
    return value;
}

// Writes N values of Width bytes each as one piece, least significant byte first.
template <unsigned Width, std::size_t N>
int WriteFields(cio_save& out, const std::array<Bits, N>& values) {
    constexpr unsigned int size = Width * N;
    std::array<unsigned char, size> local;
    unsigned char* bytes = CioBlock::Reserve(out, size);
    const bool direct = bytes != nullptr;
    if (!direct) bytes = local.data();
    for (std::size_t i = 0; i < N; ++i) Encode<Width>(values[i], bytes + i * Width);
    return direct || out.Write(bytes, size);
}

// Reads N values of Width bytes each from one piece; `values` is only set on success.
template <unsigned Width, std::size_t N>
int ReadFields(cio_load& in, std::array<Bits, N>& values) {
    constexpr unsigned int size = Width * N;
    std::array<unsigned char, size> local;
    const unsigned char* bytes = CioBlock::Take(in, size);
    if (!bytes) {
        if (!in.Read(local.data(), size)) return 0;
        bytes = local.data();
    }
    for (std::size_t i = 0; i < N; ++i) values[i] = Decode<Width>(bytes + i * Width);
    return 1;
}

// One unsigned value of Width bytes; `value` is only set on success.
template <unsigned Width, class T>
int ReadUnsigned(cio_load& in, T& value) {
    std::array<Bits, 1> bits;
    if (!ReadFields<Width>(in, bits)) return 0;
    value = static_cast<T>(bits[0]);
    return 1;
}

// Floats travel as their bit patterns, copied with memcpy so that no floating-point instruction can
// quiet a signalling NaN on the way.
template <std::size_t N>
int WriteFloats(cio_save& out, const std::array<const float*, N>& values) {
    std::array<Bits, N> bits;
    for (std::size_t i = 0; i < N; ++i) std::memcpy(&bits[i], values[i], sizeof(float));
    return WriteFields<4>(out, bits);
}

template <std::size_t N>
int ReadFloats(cio_load& in, const std::array<float*, N>& values) {
    std::array<Bits, N> bits;
    if (!ReadFields<4>(in, bits)) return 0;
    for (std::size_t i = 0; i < N; ++i) std::memcpy(values[i], &bits[i], sizeof(float));
    return 1;
}

// Two's complement without relying on the implementation's unsigned-to-signed conversion.
int SignedFromBits(Bits bits) {
    if (bits <= static_cast<Bits>(std::numeric_limits<int>::max())) return static_cast<int>(bits);
    return -static_cast<int>(~bits) - 1;
}

// The length of `s`, counting at most `limit` characters.
std::size_t BoundedLength(char const* s, std::size_t limit) {
    std::size_t length = 0;
    while (length < limit && s[length] != '\0') ++length;
    return length;
}

}  // namespace

int WriteUInt8(cio_save& out, unsigned char value) {
    return WriteFields<1, 1>(out, {value});
}
int ReadUInt8(cio_load& in, unsigned char& value) {
    return ReadUnsigned<1>(in, value);
}
int WriteUInt16(cio_save& out, unsigned short value) {
    return WriteFields<2, 1>(out, {value});
}
int ReadUInt16(cio_load& in, unsigned short& value) {
    return ReadUnsigned<2>(in, value);
}
int WriteUInt32(cio_save& out, unsigned int value) {
    return WriteFields<4, 1>(out, {value});
}
int ReadUInt32(cio_load& in, unsigned int& value) {
    return ReadUnsigned<4>(in, value);
}

int WriteInt32(cio_save& out, int value) {
    return WriteUInt32(out, static_cast<unsigned int>(value));
}
int ReadInt32(cio_load& in, int& value) {
    unsigned int bits = 0;
    if (!ReadUInt32(in, bits)) return 0;
    value = SignedFromBits(bits);
    return 1;
}

int WriteFloat(cio_save& out, float value) {
    return WriteFloats<1>(out, {&value});
}
int ReadFloat(cio_load& in, float& value) {
    return ReadFloats<1>(in, {&value});
}

int WritePoint3(cio_save& out, const cpoint3& value) {
    return WriteFloats<3>(out, {&value.x, &value.y, &value.z});
}
int ReadPoint3(cio_load& in, cpoint3& value) {
    return ReadFloats<3>(in, {&value.x, &value.y, &value.z});
}

int WriteQuat(cio_save& out, const cquat& value) {
    return WriteFloats<4>(out, {&value.x, &value.y, &value.z, &value.w});
}
int ReadQuat(cio_load& in, cquat& value) {
    return ReadFloats<4>(in, {&value.x, &value.y, &value.z, &value.w});
}

int WriteColor(cio_save& out, const ccolor& value) {
    return WriteFloats<4>(out, {&value.r, &value.g, &value.b, &value.a});
}
int ReadColor(cio_load& in, ccolor& value) {
    return ReadFloats<4>(in, {&value.r, &value.g, &value.b, &value.a});
}

int WriteName(cio_save& out, char const* name, unsigned int size) {
    if (size == 0) return 0;
    if (unsigned char* field = CioBlock::Reserve(out, size)) {
        const std::size_t length = name ? BoundedLength(name, size - 1) : 0;
        if (length) std::memcpy(field, name, length);
        std::memset(field + length, 0, size - length);
        return 1;
    }
    std::string field(size, '\0');
    if (name) std::memcpy(&field[0], name, BoundedLength(name, size - 1));
    return out.Write(&field[0], size);
}

int ReadName(cio_load& in, char* name, unsigned int size) {
    if (size == 0 || !name) return 0;
    if (const unsigned char* field = CioBlock::Take(in, size)) {
        std::memcpy(name, field, size - 1);
        name[size - 1] = '\0';
        return 1;
    }
    std::string field(size, '\0');
    if (!in.Read(&field[0], size)) return 0;
    field[size - 1] = '\0';
    std::memcpy(name, field.data(), size);
    return 1;
}

int WriteText(cio_save& out, const std::string& text) {
    if (text.size() > std::numeric_limits<unsigned int>::max()) return 0;
    const auto length = static_cast<unsigned int>(text.size());
    // Write only reads from its buffer.
    return WriteUInt32(out, length) && out.Write(const_cast<char*>(text.data()), length);
}

int ReadText(cio_load& in, std::string& text) {
    unsigned int length = 0;
    if (!ReadUInt32(in, length) || length > in.BytesLeft()) return 0;
    std::string read(length, '\0');
    if (!in.Read(&read[0], length)) return 0;
    text.swap(read);
    return 1;
}

int StreamHolds(const cio_load& in, long long count, unsigned long elementBytes) {
    if (count < 0) return 0;
    if (elementBytes == 0) return 1;
    return static_cast<unsigned long long>(count) <= in.BytesLeft() / elementBytes ? 1 : 0;
}
