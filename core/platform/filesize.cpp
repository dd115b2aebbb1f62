#include "platform/filesize.h"

#include <sys/stat.h>

long RegularFileSize(std::FILE* file) {
    struct stat status;
    if (!file || fstat(fileno(file), &status) != 0 || !S_ISREG(status.st_mode)) return -1;
    return static_cast<long>(status.st_size);
}
