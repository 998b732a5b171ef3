#include "platform/paths.h"

#include <windows.h>

namespace vireon::platform {

Path FromNarrow(const char* text) {
    // The length counts the terminating zero.
    const int length = MultiByteToWideChar(CP_ACP, 0, text, -1, nullptr, 0);
    if (length <= 1) return {};
    Path wide(static_cast<std::size_t>(length), L'\0');
    MultiByteToWideChar(CP_ACP, 0, text, -1, wide.data(), length);
    wide.resize(static_cast<std::size_t>(length) - 1);
    return wide;
}

std::optional<Path> EnvironmentPath(const char* name) {
    const Path wideName = FromNarrow(name);
    SetLastError(ERROR_SUCCESS);
    const DWORD length = GetEnvironmentVariableW(wideName.c_str(), nullptr, 0);
    if (length == 0) {
        if (GetLastError() == ERROR_ENVVAR_NOT_FOUND) return std::nullopt;
        return Path();
    }
    Path value(length, L'\0');
    value.resize(GetEnvironmentVariableW(wideName.c_str(), value.data(), length));
    return value;
}

std::optional<Path> ParentFolder(const Path& path) {
    const std::size_t separator = path.rfind(L'\\');
    if (separator == Path::npos) return std::nullopt;
    return path.substr(0, separator);
}

Path Join(const Path& folder, const char* name) {
    return folder + L'\\' + FromNarrow(name);
}

}  // namespace vireon::platform
