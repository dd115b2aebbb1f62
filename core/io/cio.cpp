// The binary file streams: the only place records reach the C library's file functions.
#include "cio.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <new>

#include "platform/filesize.h"

// SetPosition passes its origin straight to the C library.
static_assert(SEEK_SET == 0 && SEEK_CUR == 1 && SEEK_END == 2, "seek origins are 0, 1 and 2");

cio::~cio() {
    Close();
}

int cio::Close() {
    if (file) {
        std::fclose(file);
        file = nullptr;
    }
    return 0;
}

int cio::SetPosition(long offset, int origin) {
    if (!file) return -1;
    return std::fseek(file, offset, origin);
}

long cio::GetPosition() const {
    if (!file) return -1;
    return std::ftell(file);
}

long cio::Size() const {
    const long saved = GetPosition();
    if (saved < 0 || std::fseek(file, 0, SEEK_END) != 0) return -1;
    const long size = std::ftell(file);
    std::fseek(file, saved, SEEK_SET);
    return size;
}

int cio::OpenFile(char const* name, char const* mode) {
    // Intended: a stream that holds a file reports success and keeps that file untouched.
    if (file) return 0;
    if (!name) return -1;
    file = std::fopen(name, mode);
    return file ? 0 : -1;
}

int cio_load::Open(char const* name) {
    return OpenFile(name, "rb");
}

int cio_load::Read(void* buffer, unsigned int bytes) {
    if (!file || !buffer) return 0;
    if (bytes == 0) return 1;
    return std::fread(buffer, bytes, 1, file) == 1 ? 1 : 0;
}

int cio_load::Skip(unsigned int bytes) {
    if (!file) return 0;
    const unsigned long step = std::min<unsigned long>(bytes, BytesLeft());
    if (std::fseek(file, static_cast<long>(step), SEEK_CUR) != 0) return 0;
    return step == bytes ? 1 : 0;
}

unsigned long cio_load::BytesLeft() const {
    const long position = GetPosition();
    if (position < 0) return 0;
    // Loaders ask before every counted field: the file system answers without the seeks,
    // which would throw away the stream's read buffer. Other files take the seeking way.
    long size = RegularFileSize(file);
    if (size < 0) size = Size();
    if (size <= position) return 0;
    return static_cast<unsigned long>(size - position);
}

int cio_save::Open(char const* name) {
    return OpenFile(name, "wb");
}

int cio_save::Write(void* buffer, unsigned int bytes) {
    if (!file || !buffer) return 0;
    if (bytes == 0) return 1;
    return std::fwrite(buffer, bytes, 1, file) == 1 ? 1 : 0;
}

int cio_save::Skip(char fill, unsigned int bytes) {
    if (!file) return 0;
    if (bytes == 0) return 1;
    const std::unique_ptr<char[]> block(new (std::nothrow) char[bytes]);
    if (!block) return 0;
    std::memset(block.get(), fill, bytes);
    return Write(block.get(), bytes);
}
