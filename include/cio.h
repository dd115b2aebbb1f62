// The binary file streams through which scenes and their objects are written and read.
//
// A stream holds at most one C-library file. Apart from Open, every operation returns 1 for
// success and 0 for failure (positions and sizes: -1), and with no open file it fails without
// touching memory. Record fields are encoded with the helpers of ciofields.h.
//
// Records are read and written a few bytes at a time, so each stream passes its bytes through
// a block of its own (64 KiB) and reaches the C library once per block rather than once per
// field. Positions are always the stream's own: GetPosition counts the bytes read or written,
// not the bytes the file has received, and a save stream hands its last block to the file at
// SetPosition and Close, and Size counts the bytes still waiting. Work on the FILE only through
// these operations.
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

    // Hands the bytes a save stream holds to the file. Returns 1 when all were written (or
    // none were waiting); the bytes of a failed write are dropped, and 0 is returned.
    int Flush();

    std::FILE* file = nullptr;

    // The block between the stream and `file`; null when it could not be allocated, and the
    // stream then calls the C library for every operation.
    char* block = nullptr;
    // The file offset of block[0].
    long blockStart = 0;
    // Reading: the bytes of the block read from the file. Writing: the bytes waiting in it.
    unsigned int blockUsed = 0;
    // Reading: the next byte of the block to hand out. Unused when writing.
    unsigned int blockNext = 0;
    bool writing = false;
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
    // record can still hold, measured against the file's length when it was opened. 0 with
    // no file. Loaders check counts against it before allocating.
    unsigned long BytesLeft() const;

private:
    friend struct CioBlock;  // the record field helpers read straight from the block

    // The file's length at Open; -1 when it could not be found (the stream reads nothing).
    long length = -1;
};

// A stream writing a file.
class CORE_API cio_save : public cio {
public:
    // Creates or truncates `name` for binary writing. Returns 0 on success and -1 when it
    // cannot be opened (the stream stays closed). A stream that already holds a file returns
    // 0 at once and keeps that file: call Close first to switch files.
    virtual int Open(char const* name);

    // Writes `bytes` bytes from `buffer` in one piece. Returns 1 when all were taken; 0 with
    // no file, a null buffer or a short write. Bytes wait in the stream's block, so a disk
    // that fills up shows at a later Write, at SetPosition, or as a file shorter than
    // GetPosition said. Zero bytes succeed with an open file and a buffer.
    int Write(void* buffer, unsigned int bytes);

    // Writes `bytes` copies of `fill` in one piece, e.g. an empty name field as 64 zero
    // bytes. Returns 1 when all were written, 0 with no file or a failed write.
    int Skip(char fill, unsigned int bytes);

private:
    friend struct CioBlock;  // the record field helpers write straight into the block
};

#endif
