#include "platform/files.h"

#include <sys/stat.h>

namespace vireon::platform {

std::FILE* OpenText(const Path& path) {
    // A folder opens like a file here and only fails to be read; a pipe would block the host.
    struct stat status {};
    if (stat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) return nullptr;
    return std::fopen(path.c_str(), "r");
}

}  // namespace vireon::platform
