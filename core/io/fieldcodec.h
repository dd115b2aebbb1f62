// Internal: record fields coded in memory, and runs of fields moved through a stream as one
// piece.
//
// A node record holds some sixty fields. Reading or writing each through a call of its own
// costs more than building the node, so records move a fixed-size run of fields as one piece
// (ReadPiece, WritePiece) and code each field in place with the cursors below, which compile
// inline. The field helpers of ciofields.h are single-field pieces, so every field of every
// record goes through the one encoder and decoder here.
#ifndef ORVANE_CORE_IO_FIELDCODEC_H
#define ORVANE_CORE_IO_FIELDCODEC_H

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <type_traits>

#include "ccolor.h"
#include "cio.h"
#include "cpoint.h"
#include "cquat.h"
#include "io/cioblock.h"

namespace fieldcodec {

using Bits = std::uint32_t;

// On a little-endian machine a value's low Width bytes are its field; elsewhere they are
// assembled byte by byte.
constexpr bool kLittleEndian = __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__;

template <unsigned Width>
inline void Encode(Bits value, unsigned char* bytes) {
    if constexpr (kLittleEndian) {
        std::memcpy(bytes, &value, Width);
    } else {
        for (unsigned b = 0; b < Width; ++b)
            bytes[b] = static_cast<unsigned char>(value >> (8 * b));
    }
}

template <unsigned Width>
inline Bits Decode(const unsigned char* bytes) {
    Bits value = 0;
    if constexpr (kLittleEndian) {
        std::memcpy(&value, bytes, Width);
    } else {
        for (unsigned b = 0; b < Width; ++b) value |= Bits{bytes[b]} << (8 * b);
    }
    return value;
}

// Two's complement without relying on the implementation's unsigned-to-signed conversion.
inline int SignedFromBits(Bits bits) {
    if (bits <= static_cast<Bits>(std::numeric_limits<int>::max())) return static_cast<int>(bits);
    return -static_cast<int>(~bits) - 1;
}

// The length of `s`, counting at most `limit` characters (memchr stops at the terminator, so
// a short name in a small buffer is not read past).
inline std::size_t BoundedLength(char const* s, std::size_t limit) {
    const void* end = std::memchr(s, '\0', limit);
    return end ? static_cast<std::size_t>(static_cast<char const*>(end) - s) : limit;
}

}  // namespace fieldcodec

// Decodes consecutive fields from bytes in memory: `field(a)(b).Name(c, 64)`.
// Floats are copied bit for bit, so that no floating-point instruction can quiet a signalling
// NaN on the way.
struct FieldDecoder {
    const unsigned char* at;

    FieldDecoder& operator()(unsigned char& value) { return Unsigned<1>(value); }
    FieldDecoder& operator()(unsigned short& value) { return Unsigned<2>(value); }
    FieldDecoder& operator()(unsigned int& value) { return Unsigned<4>(value); }
    FieldDecoder& operator()(int& value) {
        value = fieldcodec::SignedFromBits(fieldcodec::Decode<4>(at));
        at += 4;
        return *this;
    }
    FieldDecoder& operator()(float& value) {
        const fieldcodec::Bits bits = fieldcodec::Decode<4>(at);
        std::memcpy(&value, &bits, sizeof value);
        at += 4;
        return *this;
    }
    FieldDecoder& operator()(cpoint3& p) { return Floats(p, p.x, p.y, p.z); }
    FieldDecoder& operator()(cquat& q) { return Floats(q, q.x, q.y, q.z, q.w); }
    FieldDecoder& operator()(ccolor& c) { return Floats(c, c.r, c.g, c.b, c.a); }
    // A name field of `size` (> 0) bytes into `name`, which has room for `size` bytes and is
    // always terminated: a field without a terminator keeps its first size - 1 characters.
    FieldDecoder& Name(char* name, unsigned int size) {
        // The two sizes that records use are copied with fixed lengths, which become a few
        // vector moves; a length known only when running becomes a string instruction that
        // is slow to start and makes the next read of the name wait for its stores.
        if (size == 64)
            std::memcpy(name, at, 63);
        else if (size == 32)
            std::memcpy(name, at, 31);
        else
            std::memcpy(name, at, size - 1);
        name[size - 1] = '\0';
        at += size;
        return *this;
    }

private:
    // A run of floats that are the whole of `value`: on a little-endian machine copied in one
    // piece, so that the next read of the whole value is served straight from that store.
    // The members, in declaration order, are then the fields in file order.
    template <class T, class... F>
    FieldDecoder& Floats(T& value, F&... floats) {
        if constexpr (fieldcodec::kLittleEndian && std::is_trivially_copyable_v<T> &&
                      std::is_standard_layout_v<T> && sizeof(T) == sizeof(float) * sizeof...(F)) {
            std::memcpy(&value, at, sizeof value);
            at += sizeof value;
        } else {
            ((*this)(floats), ...);
        }
        return *this;
    }
    template <unsigned Width, class T>
    FieldDecoder& Unsigned(T& value) {
        value = static_cast<T>(fieldcodec::Decode<Width>(at));
        at += Width;
        return *this;
    }
};

// Encodes consecutive fields into bytes in memory, the inverse of FieldDecoder.
struct FieldEncoder {
    unsigned char* at;

    FieldEncoder& operator()(unsigned char value) { return Bits<1>(value); }
    FieldEncoder& operator()(unsigned short value) { return Bits<2>(value); }
    FieldEncoder& operator()(unsigned int value) { return Bits<4>(value); }
    FieldEncoder& operator()(int value) { return Bits<4>(static_cast<unsigned int>(value)); }
    FieldEncoder& operator()(float value) {
        fieldcodec::Bits bits = 0;
        std::memcpy(&bits, &value, sizeof value);
        return Bits<4>(bits);
    }
    FieldEncoder& operator()(const cpoint3& p) { return (*this)(p.x)(p.y)(p.z); }
    FieldEncoder& operator()(const cquat& q) { return (*this)(q.x)(q.y)(q.z)(q.w); }
    FieldEncoder& operator()(const ccolor& c) { return (*this)(c.r)(c.g)(c.b)(c.a); }
    // A name field of `size` (> 0) bytes: at most size - 1 characters of `name`, zero-padded; a
    // null name is all zeros.
    FieldEncoder& Name(char const* name, unsigned int size) {
        const std::size_t length = name ? fieldcodec::BoundedLength(name, size - 1) : 0;
        if (length) std::memcpy(at, name, length);
        std::memset(at + length, 0, size - length);
        at += size;
        return *this;
    }

private:
    template <unsigned Width>
    FieldEncoder& Bits(fieldcodec::Bits value) {
        fieldcodec::Encode<Width>(value, at);
        at += Width;
        return *this;
    }
};

namespace fieldcodec {

// The rare paths of ReadPiece and WritePiece, out of line: a piece that straddles the
// stream's block (or a stream without one) goes through a buffer of its own.
using CodeBytes = void (*)(void* coder, unsigned char* bytes);
int ReadThroughBuffer(cio_load& in, unsigned int bytes, CodeBytes decode, void* decoder);
int WriteThroughBuffer(cio_save& out, unsigned int bytes, CodeBytes encode, void* encoder);

}  // namespace fieldcodec

// Reads the next `bytes` bytes of `in` and hands a decoder over them to `decode`, which must
// decode exactly that many. Returns 1, or 0 (without calling `decode`) when the stream holds
// fewer bytes.
template <class Decode>
inline int ReadPiece(cio_load& in, unsigned int bytes, Decode decode) {
    if (const unsigned char* at = CioBlock::Take(in, bytes)) {
        decode(FieldDecoder{at});
        return 1;
    }
    return fieldcodec::ReadThroughBuffer(
        in, bytes,
        [](void* coder, unsigned char* at) { (*static_cast<Decode*>(coder))(FieldDecoder{at}); },
        &decode);
}

// Has `encode` encode exactly `bytes` bytes and writes them to `out` as one piece. Returns 1
// when they were all taken.
template <class Encode>
inline int WritePiece(cio_save& out, unsigned int bytes, Encode encode) {
    if (unsigned char* at = CioBlock::Reserve(out, bytes)) {
        encode(FieldEncoder{at});
        return 1;
    }
    return fieldcodec::WriteThroughBuffer(
        out, bytes,
        [](void* coder, unsigned char* at) { (*static_cast<Encode*>(coder))(FieldEncoder{at}); },
        &encode);
}

#endif
