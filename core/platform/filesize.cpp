#include "platform/filesize.h"

#include <sys/stat.h>

long RegularFileSize(std::FILE* file) {
    struct stat status;
    if (!file || fstat(fileno(file), &status) != 0 || !S_ISREG(status.st_mode)) return -1;
    return static_cast<long>(status.st_size);
}

int SameFile(std::FILE* a, std::FILE* b) {
    struct stat first, second;
    return a && b && fstat(fileno(a), &first) == 0 && fstat(fileno(b), &second) == 0 &&
                   first.st_dev == second.st_dev && first.st_ino == second.st_ino
               ? 1
               : 0;
}
