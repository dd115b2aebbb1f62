// Record fields: the fixed-width values every record is made of, encoded little-endian byte by byte
// whatever the machine's byte order, with no padding between fields.
//
// Every Write helper writes its whole field in one piece and returns 1, or 0 when the write failed.
// Every Read helper returns 1 when the whole field was read; on 0 the destination keeps its value.
// A length read from the file is checked against what the stream still holds before anything is
// allocated for it.
#ifndef ORVANE_CIOFIELDS_H
#define ORVANE_CIOFIELDS_H

#include <string>

#include "ccolor.h"
#include "cio.h"
#include "coreapi.h"
#include "cpoint.h"
#include "cquat.h"

// Name fields are 64 bytes; files older than version 13 have 32-byte name fields.
constexpr unsigned int NAME_FIELD_SIZE = 64;
constexpr unsigned int OLD_NAME_FIELD_SIZE = 32;
constexpr unsigned long NAME_FIELD_VERSION = 13;

// The size in bytes of a name field in a file of the given version.
inline unsigned int NameFieldSize(unsigned long version) {
    return version >= NAME_FIELD_VERSION ? NAME_FIELD_SIZE : OLD_NAME_FIELD_SIZE;
}

// Unsigned integers of 8, 16 and 32 bits, and signed 32-bit integers (two's complement).
CORE_API int WriteUInt8(cio_save& out, unsigned char value);
CORE_API int ReadUInt8(cio_load& in, unsigned char& value);
CORE_API int WriteUInt16(cio_save& out, unsigned short value);
CORE_API int ReadUInt16(cio_load& in, unsigned short& value);
CORE_API int WriteUInt32(cio_save& out, unsigned int value);
CORE_API int ReadUInt32(cio_load& in, unsigned int& value);
CORE_API int WriteInt32(cio_save& out, int value);
CORE_API int ReadInt32(cio_load& in, int& value);

// A 32-bit IEEE float, bit for bit (NaN payloads and the sign of zero survive).
CORE_API int WriteFloat(cio_save& out, float value);
CORE_API int ReadFloat(cio_load& in, float& value);

// Consecutive floats: a point as x, y, z; a quaternion as x, y, z, w; a colour as r, g, b, a.
CORE_API int WritePoint3(cio_save& out, const cpoint3& value);
CORE_API int ReadPoint3(cio_load& in, cpoint3& value);
CORE_API int WriteQuat(cio_save& out, const cquat& value);
CORE_API int ReadQuat(cio_load& in, cquat& value);
CORE_API int WriteColor(cio_save& out, const ccolor& value);
CORE_API int ReadColor(cio_load& in, ccolor& value);

// A name field of `size` bytes: at most size - 1 characters of `name`, zero-padded, so the field
// always holds a terminator. A null name writes `size` zero bytes. Fails for size 0.
CORE_API int WriteName(cio_save& out, char const* name, unsigned int size);

// Reads a name field of `size` bytes into `name`, which has room for `size` bytes. The result is
// always terminated: a field without a terminator keeps its first size - 1 characters. Fails for
// size 0 or a null `name`.
CORE_API int ReadName(cio_load& in, char* name, unsigned int size);

// Variable-length text: a 32-bit length, then that many bytes without a terminator. Writing fails
// for text longer than 2^32 - 1 bytes; reading fails, before allocating anything, when the length
// exceeds what the stream still holds.
CORE_API int WriteText(cio_save& out, const std::string& text);
CORE_API int ReadText(cio_load& in, std::string& text);

// 1 when `count` is not negative and the stream still holds `count` elements of `elementBytes`
// bytes each (computed without overflow), else 0. Loaders call it on every count read from a file
// before allocating for it.
CORE_API int StreamHolds(const cio_load& in, long long count, unsigned long elementBytes);

#endif
