#include "tools/vireon/preset_folder.h"

#include <algorithm>
#include <cstdlib>
#include <map>
#include <system_error>

#include "tools/vireon/names.h"
#include "tools/vireon/plugin.h"
#include "tools/vireon/text_file.h"
#include "tools/vireon/tool_error.h"

namespace vireon::tool {

namespace fs = std::filesystem;

namespace {

constexpr char kExtension[] = ".json";

bool IsPath(const std::string& text) {
    return text.find('/') != std::string::npos || text.ends_with(kExtension);
}

}  // namespace

std::vector<fs::path> PresetFolders() {
    std::vector<fs::path> folders;
    if (const char* const own = std::getenv("VIREON_PRESETS"); own != nullptr && *own != '\0') {
        std::error_code ignored;
        if (!fs::is_directory(own, ignored)) {
            throw ToolError(kInputUnreadable,
                            std::string("VIREON_PRESETS names ") + own + ", which is no folder");
        }
        folders.emplace_back(own);
    }
    folders.push_back(ProgramFolder() / "presets");
    return folders;
}

std::vector<PresetFile> ListPresets(const std::vector<fs::path>& folders) {
    std::map<std::string, fs::path> found;
    for (const fs::path& folder : folders) {
        std::error_code error;
        if (!fs::exists(folder, error)) {
            continue;
        }
        for (fs::directory_iterator entry(folder, error), end; !error && entry != end;
             entry.increment(error)) {
            const fs::path& path = entry->path();
            if (path.extension() == kExtension && !path.filename().string().starts_with('.')) {
                found.emplace(path.stem().string(), path);
            }
        }
        if (error) {
            throw ToolError(kInputUnreadable,
                            "cannot read the folder " + folder.string() + ": " + error.message());
        }
    }
    std::vector<PresetFile> files;
    for (const auto& [name, path] : found) {
        files.push_back({name, path});
    }
    return files;
}

fs::path FindPreset(const std::string& text, const std::vector<fs::path>& folders) {
    if (IsPath(text)) {
        return text;
    }
    const std::vector<PresetFile> files = ListPresets(folders);
    std::vector<std::string> names;
    for (const PresetFile& file : files) {
        if (file.name == text) {
            return file.path;
        }
        names.push_back(file.name);
    }
    throw ToolError(kUnknownName, "there is no preset " + Quoted(text) +
                                      Suggestion(text.substr(0, 80), names) +
                                      "; vireon presets lists them, a file of yours goes by its "
                                      "path");
}

}  // namespace vireon::tool
