#include <dlfcn.h>

#include "headless/error.h"
#include "headless/platform.h"

namespace vireon::headless::platform {

void* OpenLibrary(const std::string& path) {
    void* const library = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (library == nullptr) {
        const char* const text = dlerror();
        std::string reason = text ? text : "unknown reason";
        // The system's text begins with the path already, if the file was there at all.
        if (reason.rfind(path + ": ", 0) == 0) reason.erase(0, path.size() + 2);
        throw HeadlessError("cannot load " + path + ": " + reason);
    }
    return library;
}

void* FindSymbol(void* library, const char* name) {
    return dlsym(library, name);
}

void CloseLibrary(void* library) {
    dlclose(library);
}

std::optional<std::vector<std::uint8_t>> ReadResource(void* /*library*/, const char* /*type*/,
                                                      std::int32_t /*id*/) {
    return std::nullopt;
}

std::string NarrowPath(const std::string& utf8) {
    return utf8;
}

}  // namespace vireon::headless::platform
