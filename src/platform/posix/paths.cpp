#include "platform/paths.h"

#include <cstdlib>

namespace vireon::platform {

Path FromNarrow(const char* text) {
    return text;
}

std::optional<Path> EnvironmentPath(const char* name) {
    const char* value = std::getenv(name);
    if (value == nullptr) return std::nullopt;
    return Path(value);
}

std::optional<Path> ParentFolder(const Path& path) {
    const std::size_t separator = path.rfind('/');
    if (separator == Path::npos) return std::nullopt;
    return path.substr(0, separator);
}

Path Join(const Path& folder, const char* name) {
    return folder + '/' + name;
}

}  // namespace vireon::platform
