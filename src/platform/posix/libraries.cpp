#include "platform/libraries.h"

#include <dlfcn.h>

namespace vireon::platform {

void* LoadLibraryByName(const char* name) {
    return dlopen(name, RTLD_NOW | RTLD_LOCAL);
}

}  // namespace vireon::platform
