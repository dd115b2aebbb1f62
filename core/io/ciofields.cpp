// Record fields: every value goes through one little-endian encoder and one decoder.
#include "ciofields.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <vector>

#include "io/fieldcodec.h"

static_assert(sizeof(int) == 4 && sizeof(unsigned int) == 4, "ints are 32 bits");
static_assert(sizeof(float) == 4 && std::numeric_limits<float>::is_iec559,
              "floats are 32-bit IEEE values");

namespace fieldcodec {

namespace {

// Room for a piece: on the stack unless it is large.
class PieceBuffer {
public:
    explicit PieceBuffer(unsigned int bytes) {
        if (bytes > sizeof local) large.resize(bytes);
    }
    unsigned char* Get() { return large.empty() ? local : large.data(); }

private:
    unsigned char local[512];
    std::vector<unsigned char> large;
};

}  // namespace

int ReadThroughBuffer(cio_load& in, unsigned int bytes, CodeBytes decode, void* decoder) {
    PieceBuffer piece(bytes);
    if (!in.Read(piece.Get(), bytes)) return 0;
    decode(decoder, piece.Get());
    return 1;
}

int WriteThroughBuffer(cio_save& out, unsigned int bytes, CodeBytes encode, void* encoder) {
    PieceBuffer piece(bytes);
    encode(encoder, piece.Get());
    return out.Write(piece.Get(), bytes);
}

}  // namespace fieldcodec

namespace {

// One field (or a point's, quaternion's or colour's run of fields) as a piece of its own.
template <unsigned int Bytes, class T>
int WriteField(cio_save& out, const T& value) {
    return WritePiece(out, Bytes, [&value](FieldEncoder field) { field(value); });
}

template <unsigned int Bytes, class T>
int ReadField(cio_load& in, T& value) {
    return ReadPiece(in, Bytes, [&value](FieldDecoder field) { field(value); });
}

}  // namespace

int WriteUInt8(cio_save& out, unsigned char value) {
    return WriteField<1>(out, value);
}
int ReadUInt8(cio_load& in, unsigned char& value) {
    return ReadField<1>(in, value);
}
int WriteUInt16(cio_save& out, unsigned short value) {
    return WriteField<2>(out, value);
}
int ReadUInt16(cio_load& in, unsigned short& value) {
    return ReadField<2>(in, value);
}
int WriteUInt32(cio_save& out, unsigned int value) {
    return WriteField<4>(out, value);
}
int ReadUInt32(cio_load& in, unsigned int& value) {
    return ReadField<4>(in, value);
}
int WriteInt32(cio_save& out, int value) {
    return WriteField<4>(out, value);
}
int ReadInt32(cio_load& in, int& value) {
    return ReadField<4>(in, value);
}
int WriteFloat(cio_save& out, float value) {
    return WriteField<4>(out, value);
}
int ReadFloat(cio_load& in, float& value) {
    return ReadField<4>(in, value);
}
int WritePoint3(cio_save& out, const cpoint3& value) {
    return WriteField<12>(out, value);
}
int ReadPoint3(cio_load& in, cpoint3& value) {
    return ReadField<12>(in, value);
}
int WriteQuat(cio_save& out, const cquat& value) {
    return WriteField<16>(out, value);
}
int ReadQuat(cio_load& in, cquat& value) {
    return ReadField<16>(in, value);
}
int WriteColor(cio_save& out, const ccolor& value) {
    return WriteField<16>(out, value);
}
int ReadColor(cio_load& in, ccolor& value) {
    return ReadField<16>(in, value);
}

int WriteName(cio_save& out, char const* name, unsigned int size) {
    if (size == 0) return 0;
    return WritePiece(out, size, [name, size](FieldEncoder field) { field.Name(name, size); });
}

int ReadName(cio_load& in, char* name, unsigned int size) {
    if (size == 0 || !name) return 0;
    return ReadPiece(in, size, [name, size](FieldDecoder field) { field.Name(name, size); });
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
