// Internal: what the file system says about an open file.
#ifndef ORVANE_CORE_PLATFORM_FILESIZE_H
#define ORVANE_CORE_PLATFORM_FILESIZE_H

#include <cstdio>

#include "coreapi.h"

// Both are exported for the library's tests only; no public header declares them.

// The length of the regular file `file` holds, as seeking to its end would find it, without
// moving or flushing the stream; -1 for anything but a regular file.
CORE_API long RegularFileSize(std::FILE* file);

// 1 when `a` and `b` hold the same file of the file system (the same device and file number),
// as when one path was opened twice and nothing replaced the file in between; 0 otherwise.
CORE_API int SameFile(std::FILE* a, std::FILE* b);

#endif
