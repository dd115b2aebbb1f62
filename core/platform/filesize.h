// Internal: the size of an open file, asked of the file system.
#ifndef ORVANE_CORE_PLATFORM_FILESIZE_H
#define ORVANE_CORE_PLATFORM_FILESIZE_H

#include <cstdio>

// The length of the regular file `file` holds, as seeking to its end would find it, without
// moving or flushing the stream; -1 for anything but a regular file.
long RegularFileSize(std::FILE* file);

#endif
