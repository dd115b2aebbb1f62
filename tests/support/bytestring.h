// Little-endian bytes written by hand, so that expected bytes and seeds never come from the
// field writers under test.
#ifndef ORVANE_TESTS_SUPPORT_BYTESTRING_H
#define ORVANE_TESTS_SUPPORT_BYTESTRING_H

#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <string>

// A byte string built field by field; every call appends and returns the builder.
struct ByteString {
    std::string bytes;

    ByteString& Byte(unsigned int value) {
        bytes += static_cast<char>(value & 0xFF);
        return *this;
    }
    // The low `width` bytes of `value`, least significant first.
    ByteString& Word(std::uint64_t value, int width = 4) {
        for (int b = 0; b < width; ++b) Byte(static_cast<unsigned int>((value >> (8 * b)) & 0xFF));
        return *this;
    }
    // 32-bit words; negative values in two's complement.
    ByteString& Ints(std::initializer_list<std::int64_t> values) {
        for (std::int64_t value : values) Word(static_cast<std::uint64_t>(value));
        return *this;
    }
    // 32-bit floats as their bit patterns.
    ByteString& Floats(std::initializer_list<float> values) {
        for (float value : values) {
            std::uint32_t bits;
            std::memcpy(&bits, &value, sizeof bits);
            Word(bits);
        }
        return *this;
    }
    // A fixed field: `name` cut or zero-padded to `size` bytes.
    ByteString& Name(const std::string& name, std::size_t size) {
        std::string field = name.substr(0, size);
        field.resize(size, '\0');
        bytes += field;
        return *this;
    }
    // A length word, then the characters without a terminator.
    ByteString& Text(const std::string& text) {
        Word(text.size());
        bytes += text;
        return *this;
    }
};

#endif
