#pragma once

#include <filesystem>
#include <string>

#include "headless/remote/child_process.h"

namespace vireon::headless {

/// Whether a library is a Windows one by its name: .aex or .dll, in any case.
bool IsWindowsLibrary(const std::filesystem::path& library);

/// The path under which a Windows program under Wine finds a file of this system: absolute, on
/// drive Z, with backslashes.
std::string WindowsPath(const std::filesystem::path& path);

/// The Wine program: `VIREON_WINE` if set, else wine64 or wine where the system keeps them. Empty
/// when there is none.
std::filesystem::path FindWine();

/// Our own Wine prefix, never the user's: `VIREON_WINE_PREFIX` if set, else
/// vireon/wine-prefix in the user's cache folder.
std::filesystem::path DefaultWinePrefix();

/// Completes a command that runs a Windows program under Wine without a display in a prefix, which
/// is made when it does not exist. Throws std::filesystem::filesystem_error when it cannot be made.
ChildCommand WineCommand(const std::filesystem::path& wine, const std::filesystem::path& prefix,
                         const std::filesystem::path& program);

}  // namespace vireon::headless
