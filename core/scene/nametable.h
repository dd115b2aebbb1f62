// Internal: a name table of the project file being loaded, shared by NodeList and MtlList.
#ifndef ORVANE_CORE_SCENE_NAMETABLE_H
#define ORVANE_CORE_SCENE_NAMETABLE_H

#include <climits>
#include <cstring>

#include "cio.h"
#include "ciofields.h"
#include "corearray.h"
#include "projectheader.h"

class NameTable {
public:
    // Allocates the table's memory and reports a failure under the caller's own name.
    using Allocate = char* (*)(unsigned long bytes);

    NameTable() = default;
    NameTable(const NameTable&) = delete;
    NameTable& operator=(const NameTable&) = delete;
    ~NameTable() { Clear(); }

    // Replaces the table by the one whose offset and count the project header holds at
    // `offsetAt` and `countAt` (see projectheader.h). The stream position is restored whatever
    // the outcome. Returns 1, or 0 with no table kept.
    int Read(cio_load& in, unsigned int offsetAt, unsigned int countAt, Allocate allocate) {
        Clear();
        const long start = in.GetPosition();
        if (start < 0) return 0;
        const int ok = ReadAt(in, offsetAt, countAt, allocate);
        in.SetPosition(start, 0);
        if (!ok) Clear();
        return ok;
    }

    void Clear() {
        array_delete(names);
        names = nullptr;
        count = 0;
        loaded = false;
    }

    bool Loaded() const { return loaded; }
    int Count() const { return count; }
    // The i-th name (zero-terminated), or null for an index outside the table.
    char const* NameAt(int i) const {
        return i >= 0 && i < count ? names + static_cast<long>(i) * PROJECT_TABLE_NAME_SIZE
                                   : nullptr;
    }

private:
    static unsigned int Word(const unsigned char* bytes) {
        return bytes[0] | bytes[1] << 8 | bytes[2] << 16 |
               static_cast<unsigned int>(bytes[3]) << 24;
    }

    int ReadAt(cio_load& in, unsigned int offsetAt, unsigned int countAt, Allocate allocate) {
        unsigned char header[PROJECT_HEADER_SIZE];
        if (in.SetPosition(0, 0) != 0 || !in.Read(header, sizeof header)) return 0;
        if (std::memcmp(header, PROJECT_MAGIC, sizeof PROJECT_MAGIC) != 0) return 0;
        if (Word(header + 4) > PROJECT_MAX_VERSION) return 0;
        const unsigned int offset = Word(header + offsetAt);
        const unsigned int expected = Word(header + countAt);
        unsigned int n = 0;
        if (in.SetPosition(static_cast<long>(offset), 0) != 0 || !ReadUInt32(in, n)) return 0;
        // A count is trusted only when the header agrees and the file holds every name.
        if (n != expected || n > INT_MAX / PROJECT_TABLE_NAME_SIZE ||
            !StreamHolds(in, n, PROJECT_TABLE_NAME_SIZE))
            return 0;
        if (n > 0 && !ReadNames(in, n, allocate)) return 0;
        count = static_cast<int>(n);
        loaded = true;
        return 1;
    }

    int ReadNames(cio_load& in, unsigned int n, Allocate allocate) {
        const unsigned int bytes = n * PROJECT_TABLE_NAME_SIZE;
        names = allocate(bytes);
        if (!names || !in.Read(names, bytes)) return 0;
        // A field without a terminator keeps its first 63 characters.
        for (unsigned int i = 0; i < n; ++i) names[(i + 1) * PROJECT_TABLE_NAME_SIZE - 1] = '\0';
        return 1;
    }

    char* names = nullptr;
    int count = 0;
    bool loaded = false;
};

#endif
