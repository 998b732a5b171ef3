#include "platform/libraries.h"

#include <windows.h>

#include "platform/paths.h"

namespace vireon::platform {

void* LoadLibraryByName(const char* name) {
    return reinterpret_cast<void*>(LoadLibraryW(FromNarrow(name).c_str()));
}

}  // namespace vireon::platform
