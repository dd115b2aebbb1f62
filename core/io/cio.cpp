// The binary file streams: the only place records reach the C library's file functions.
#include "cio.h"

#include <algorithm>
#include <climits>
#include <cstring>
#include <memory>
#include <new>

#include "io/cioblock.h"
#include "platform/filesize.h"

// SetPosition passes its origin straight to the C library.
static_assert(SEEK_SET == 0 && SEEK_CUR == 1 && SEEK_END == 2, "seek origins are 0, 1 and 2");

namespace {

constexpr unsigned int kBlockSize = CioBlock::kSize;

}  // namespace

cio::~cio() {
    Close();
}

int cio::Close() {
    if (file) {
        Flush();
        std::fclose(file);
        file = nullptr;
    }
    delete[] block;
    block = nullptr;
    blockStart = 0;
    blockUsed = blockNext = 0;
    return 0;
}

int cio::Flush() {
    if (!file || !writing || blockUsed == 0) return 1;
    const size_t written = std::fwrite(block, 1, blockUsed, file);
    blockStart += static_cast<long>(written);
    const bool all = written == blockUsed;
    blockUsed = 0;
    return all ? 1 : 0;
}

int cio::SetPosition(long offset, int origin) {
    if (!file) return -1;
    const long position = GetPosition();
    if (origin == SEEK_CUR) {
        // The file stands at the block's end, not at our position: seek from the start.
        if (offset > 0 && position > LONG_MAX - offset) return -1;
        offset += position;
        origin = SEEK_SET;
    }
    // A read within the block's bytes only moves inside the block.
    if (!writing && origin == SEEK_SET && offset >= blockStart &&
        offset - blockStart <= static_cast<long>(blockUsed)) {
        blockNext = static_cast<unsigned int>(offset - blockStart);
        return 0;
    }
    if (!Flush()) return -1;
    const int result = std::fseek(file, offset, origin);
    if (result != 0) return result;
    blockStart = std::ftell(file);
    blockUsed = blockNext = 0;
    return 0;
}

long cio::GetPosition() const {
    if (!file) return -1;
    return blockStart + static_cast<long>(writing ? blockUsed : blockNext);
}

long cio::Size() const {
    if (!file) return -1;
    // The file's own position is left where it was, so the block stays valid.
    const long saved = std::ftell(file);
    if (saved < 0 || std::fseek(file, 0, SEEK_END) != 0) return -1;
    const long size = std::ftell(file);
    std::fseek(file, saved, SEEK_SET);
    // Waiting bytes that reach past the file's end will lengthen it.
    return writing ? std::max(size, blockStart + static_cast<long>(blockUsed)) : size;
}

int cio::OpenFile(char const* name, char const* mode) {
    // Intended: a stream that holds a file reports success and keeps that file untouched.
    if (file) return 0;
    if (!name) return -1;
    file = std::fopen(name, mode);
    if (!file) return -1;
    writing = mode[0] != 'r';
    blockStart = 0;
    blockUsed = blockNext = 0;
    block = new (std::nothrow) char[kBlockSize];
    // The block does the C library's buffering; without one the C library keeps its own.
    if (block) std::setvbuf(file, nullptr, _IONBF, 0);
    return 0;
}

int cio_load::Open(char const* name) {
    if (file) return OpenFile(name, "rb");  // keeps the held file and its length
    if (OpenFile(name, "rb") != 0) return -1;
    // Loaders ask how much is left before every counted field: the length is found once.
    length = RegularFileSize(file);
    if (length < 0) length = Size();
    return 0;
}

int cio_load::Read(void* buffer, unsigned int bytes) {
    if (!file || !buffer) return 0;
    auto* out = static_cast<char*>(buffer);
    const unsigned int ready = blockUsed - blockNext;
    if (bytes <= ready) {
        if (bytes) std::memcpy(out, block + blockNext, bytes);
        blockNext += bytes;
        return 1;
    }
    // Hand out what the block holds, then read on: large reads go straight to the caller.
    if (ready) std::memcpy(out, block + blockNext, ready);
    out += ready;
    const unsigned int rest = bytes - ready;
    blockStart += static_cast<long>(blockUsed);
    blockUsed = blockNext = 0;
    if (!block || rest >= kBlockSize) {
        const size_t got = std::fread(out, 1, rest, file);
        blockStart += static_cast<long>(got);
        return got == rest ? 1 : 0;
    }
    blockUsed = static_cast<unsigned int>(std::fread(block, 1, kBlockSize, file));
    blockNext = std::min(rest, blockUsed);
    std::memcpy(out, block, blockNext);
    return blockNext == rest ? 1 : 0;
}

bool CioBlock::Gather(cio_load& in, unsigned int bytes) {
    if (!in.block || bytes > kBlockSize) return false;
    // The file stands at the block's end, which moving the bytes does not change.
    const unsigned int ready = in.blockUsed - in.blockNext;
    std::memmove(in.block, in.block + in.blockNext, ready);
    in.blockStart += static_cast<long>(in.blockNext);
    in.blockNext = 0;
    in.blockUsed = ready + static_cast<unsigned int>(
                               std::fread(in.block + ready, 1, kBlockSize - ready, in.file));
    return bytes <= in.blockUsed;
}

int CioBlock::SameFile(const cio_load& a, const cio_load& b) {
    return ::SameFile(a.file, b.file);
}

int cio_load::Skip(unsigned int bytes) {
    if (!file) return 0;
    const unsigned long step = std::min<unsigned long>(bytes, BytesLeft());
    if (SetPosition(static_cast<long>(step), SEEK_CUR) != 0) return 0;
    return step == bytes ? 1 : 0;
}

unsigned long cio_load::BytesLeft() const {
    const long position = GetPosition();
    if (position < 0 || length <= position) return 0;
    return static_cast<unsigned long>(length - position);
}

int cio_save::Open(char const* name) {
    return OpenFile(name, "wb");
}

int cio_save::Write(void* buffer, unsigned int bytes) {
    if (!file || !buffer) return 0;
    if (block && bytes <= kBlockSize - blockUsed) {
        if (bytes) std::memcpy(block + blockUsed, buffer, bytes);
        blockUsed += bytes;
        return 1;
    }
    if (!Flush()) return 0;
    if (!block || bytes >= kBlockSize) {
        const size_t written = std::fwrite(buffer, 1, bytes, file);
        blockStart += static_cast<long>(written);
        return written == bytes ? 1 : 0;
    }
    std::memcpy(block, buffer, bytes);
    blockUsed = bytes;
    return 1;
}

int cio_save::Skip(char fill, unsigned int bytes) {
    if (!file) return 0;
    if (bytes == 0) return 1;
    const std::unique_ptr<char[]> filled(new (std::nothrow) char[bytes]);
    if (!filled) return 0;
    std::memset(filled.get(), fill, bytes);
    return Write(filled.get(), bytes);
}
