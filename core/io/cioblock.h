// Internal: direct access to a stream's block for the record field helpers.
//
// A record field is a handful of bytes; copying it through Read or Write costs more than
// decoding it. When the block holds (or has room for) the whole field, the helpers decode
// from it or encode into it in place; otherwise they fall back on Read and Write.
#ifndef ORVANE_CORE_IO_CIOBLOCK_H
#define ORVANE_CORE_IO_CIOBLOCK_H

#include "cio.h"

struct CioBlock {
    // The next `bytes` bytes of `in`, consumed, in its block; null, consuming nothing, when
    // the file ends first, the stream has no block or `bytes` exceeds the block's size.
    static const unsigned char* Take(cio_load& in, unsigned int bytes) {
        const unsigned char* at = Peek(in, bytes);
        if (at) in.blockNext += bytes;
        return at;
    }

    // The next `bytes` bytes of `in` in its block, not consumed, or null as for Take.
    static const unsigned char* Peek(cio_load& in, unsigned int bytes) {
        if (!in.file) return nullptr;
        if (bytes > in.blockUsed - in.blockNext && !Gather(in, bytes)) return nullptr;
        return reinterpret_cast<const unsigned char*>(in.block + in.blockNext);
    }

    // Room for `bytes` bytes at the end of `out`'s block, counted as written, when the block
    // has that room; else null and nothing is counted.
    static unsigned char* Reserve(cio_save& out, unsigned int bytes) {
        if (!out.file || !out.block || bytes > kSize - out.blockUsed) return nullptr;
        char* at = out.block + out.blockUsed;
        out.blockUsed += bytes;
        return reinterpret_cast<unsigned char*>(at);
    }

    // Moves the block's unread bytes to its front and fills the rest from the file, so that a
    // run of fields which straddled the block's end now lies in it. Returns whether the block
    // then holds `bytes` unread bytes.
    static bool Gather(cio_load& in, unsigned int bytes);

    // 1 when both streams hold the same file of the file system (see SameFile).
    static int SameFile(const cio_load& a, const cio_load& b);

    // The block's capacity in bytes.
    static constexpr unsigned int kSize = 64 * 1024;
};

#endif
