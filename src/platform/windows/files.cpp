#include "platform/files.h"

namespace vireon::platform {

std::FILE* OpenText(const Path& path) {
    return _wfopen(path.c_str(), L"r");
}

}  // namespace vireon::platform
