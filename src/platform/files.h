#pragma once

#include <cstdio>

#include "platform/paths.h"

namespace vireon::platform {

/// Opens a file for reading as text. Null when it cannot be opened or is no file; owned by the
/// caller.
std::FILE* OpenText(const Path& path);

}  // namespace vireon::platform
