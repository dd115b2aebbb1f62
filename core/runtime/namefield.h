// Internal: the fixed 64-byte name field of nodes and materials.
#ifndef ORVANE_CORE_RUNTIME_NAMEFIELD_H
#define ORVANE_CORE_RUNTIME_NAMEFIELD_H

#include <cstring>

// Bytes in a name field; a name keeps at most NAME_FIELD_BYTES - 1 characters.
constexpr int NAME_FIELD_BYTES = 64;
constexpr int NAME_MAX_CHARS = NAME_FIELD_BYTES - 1;

// Clears `field` and copies at most NAME_MAX_CHARS characters of `name` into it, so the field
// is always terminated. A null name leaves the field as it was.
inline void StoreName(char (&field)[NAME_FIELD_BYTES], char const* name) {
    if (!name) return;
    std::memset(field, 0, sizeof field);
    std::memcpy(field, name, strnlen(name, NAME_MAX_CHARS));
}

// Copies the name in `field` and its terminator, and nothing after it, into `buffer`; a null
// buffer is ignored.
inline void CopyNameOut(const char (&field)[NAME_FIELD_BYTES], char* buffer) {
    if (!buffer) return;
    const std::size_t length = strnlen(field, NAME_MAX_CHARS);
    std::memcpy(buffer, field, length);
    buffer[length] = '\0';
}

#endif
