#include "headless/remote/wine.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <string_view>

#include <pwd.h>
#include <unistd.h>

namespace vireon::headless {
namespace {

std::string Variable(const char* name) {
    const char* const value = std::getenv(name);
    return value == nullptr ? std::string() : std::string(value);
}

std::filesystem::path FindInPath(std::string_view program) {
    const std::string folders = Variable("PATH");
    std::string_view rest = folders;
    while (!rest.empty()) {
        const std::size_t colon = rest.find(':');
        const std::filesystem::path candidate =
            std::filesystem::path(rest.substr(0, colon)) / program;
        if (candidate.is_absolute() && access(candidate.c_str(), X_OK) == 0) {
            return candidate;
        }
        rest = colon == std::string_view::npos ? std::string_view() : rest.substr(colon + 1);
    }
    return {};
}

/// Absolute, as Wine wants it: where HOME says nothing, as for services, the user's entry does.
std::filesystem::path HomeFolder() {
    const std::string home = Variable("HOME");
    if (!home.empty() && home.front() == '/') {
        return home;
    }
    const passwd* const user = getpwuid(getuid());
    return user != nullptr && user->pw_dir != nullptr ? user->pw_dir : "/";
}

}  // namespace

bool IsWindowsLibrary(const std::filesystem::path& library) {
    std::string extension = library.extension().string();
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return extension == ".aex" || extension == ".dll";
}

std::string WindowsPath(const std::filesystem::path& path) {
    std::string text = "Z:" + std::filesystem::absolute(path).lexically_normal().string();
    std::replace(text.begin(), text.end(), '/', '\\');
    return text;
}

std::filesystem::path FindWine() {
    const std::string chosen = Variable("VIREON_WINE");
    if (!chosen.empty()) {
        return std::filesystem::path(access(chosen.c_str(), X_OK) == 0 ? chosen : "");
    }
    std::filesystem::path found = FindInPath("wine64");
    if (found.empty() && access("/usr/lib/wine/wine64", X_OK) == 0) {
        found = "/usr/lib/wine/wine64";
    }
    return found.empty() ? FindInPath("wine") : found;
}

std::filesystem::path DefaultWinePrefix() {
    const std::string chosen = Variable("VIREON_WINE_PREFIX");
    if (!chosen.empty()) {
        return std::filesystem::absolute(chosen);
    }
    const std::string cache = Variable("XDG_CACHE_HOME");
    if (!cache.empty() && cache.front() == '/') {
        return std::filesystem::path(cache) / "vireon" / "wine-prefix";
    }
    return HomeFolder() / ".cache" / "vireon" / "wine-prefix";
}

ChildCommand WineCommand(const std::filesystem::path& wine, const std::filesystem::path& prefix,
                         const std::filesystem::path& program) {
    std::filesystem::create_directories(prefix);
    return {wine,
            {WindowsPath(program)},
            {{"WINEPREFIX", prefix.string()},
             {"WINEARCH", "win64"},
             {"WINEDEBUG", "-all"},
             {"WINEDLLOVERRIDES", "mscoree,mshtml,winemenubuilder.exe=d"},
             {"DISPLAY", std::nullopt},
             {"WAYLAND_DISPLAY", std::nullopt}}};
}

}  // namespace vireon::headless
