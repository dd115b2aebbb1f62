// The binary file streams through which scenes and their objects are written and read.
//
// A stream holds at most one C-library file. Apart from Open, every operation returns 1 for
// success and 0 for failure (positions and sizes: -1), and with no open file it fails without
// touching memory. Record fields are encoded with the helpers of ciofields.h.
#ifndef ORVANE_CIO_H
#define ORVANE_CIO_H

#include <cstdio>

#include "coreapi.h"

class CORE_API cio {
public:
    cio() = default;
    // Closes the file if one is still open.
    virtual ~cio();

    cio(const cio&) = delete;
    cio& operator=(const cio&) = delete;

    // Closes the file if one is open and forgets it; returns 0.
    int Close();

    // Seeks like the C library: origin 0 counts from the start, 1 from the current position,
    // 2 from the end. Returns the C library's result (0 on success), or -1 with no file.
    int SetPosition(long offset, int origin);

    // The current offset in bytes from the start, or -1 with no file.
    long GetPosition() const;

    // The file's length in bytes, found by seeking to the end and back to the current
    // position (which is therefore unchanged); -1 with no file.
    long Size() const;

protected:
    // Opens `name` with the C library mode `mode` unless a file is already held. Returns 0
    // when the stream holds a file afterwards, -1 when the file could not be opened.
    int OpenFile(char const* name, char const* mode);

    std::FILE* file = nullptr;
};

// A stream reading a file. Reads never move past the end of the file.
class CORE_API cio_load : public cio {
public:
    // Opens `name` for binary reading. Returns 0 on success and -1 when it cannot be opened
    // (the stream stays closed). A stream that already holds a file returns 0 at once and
    // keeps that file: call Close first to switch files.
    virtual int Open(char const* name);

    // Reads exactly `bytes` bytes into `buffer`. Returns 1 on success; 0 with no file, a
    // null buffer or fewer bytes left (the bytes that were there are consumed). Zero bytes
    // succeed with an open file and a buffer.
    int Read(void* buffer, unsigned int bytes);

    // Moves forward by `bytes`. Returns 1 when the position advanced by exactly that amount;
    // a skip beyond the end stops at the end and returns 0.
    int Skip(unsigned int bytes);

    // The number of bytes between the current position and the end of the file: what a
    // record can still hold. 0 with no file. Loaders check counts against it before
    // allocating.
    unsigned long BytesLeft() const;
};

// A stream writing a file.
class CORE_API cio_save : public cio {
public:
    // Creates or truncates `name` for binary writing. Returns 0 on success and -1 when it
    // cannot be opened (the stream stays closed). A stream that already holds a file returns
    // 0 at once and keeps that file: call Close first to switch files.
    virtual int Open(char const* name);

    // Writes `bytes` bytes from `buffer` in one piece. Returns 1 when all were written; 0
    // with no file, a null buffer or a short write. Zero bytes succeed with an open file and
    // a buffer.
    int Write(void* buffer, unsigned int bytes);

    // Writes `bytes` copies of `fill` in one piece, e.g. an empty name field as 64 zero
    // bytes. Returns 1 when all were written, 0 with no file or a failed write.
    int Skip(char fill, unsigned int bytes);
};

#endif
