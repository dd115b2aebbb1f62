// Internal: direct access to a stream's block for the record field helpers.
//
// A record field is a handful of bytes; copying it through Read or Write costs more than
// decoding it. When the block holds (or has room for) the whole field, the helpers decode
// from it or encode into it in place; otherwise they fall back on Read and Write.
#ifndef ORVANE_CORE_IO_CIOBLOCK_H
#define ORVANE_CORE_IO_CIOBLOCK_H

#include "cio.h"

struct CioBlock {
    // The next `bytes` bytes of `in`, consumed, when its block holds them all; else null and
    // nothing is consumed.
    static const unsigned char* Take(cio_load& in, unsigned int bytes) {
        if (!in.file || bytes > in.blockUsed - in.blockNext) return nullptr;
        const char* at = in.block + in.blockNext;
        in.blockNext += bytes;
        return reinterpret_cast<const unsigned char*>(at);
    }

    // Room for `bytes` bytes at the end of `out`'s block, counted as written, when the block
    // has that room; else null and nothing is counted.
    static unsigned char* Reserve(cio_save& out, unsigned int bytes) {
        if (!out.file || !out.block || bytes > kSize - out.blockUsed) return nullptr;
        char* at = out.block + out.blockUsed;
        out.blockUsed += bytes;
        return reinterpret_cast<unsigned char*>(at);
    }

    // The block's capacity in bytes.
    static constexpr unsigned int kSize = 64 * 1024;
};

#endif
