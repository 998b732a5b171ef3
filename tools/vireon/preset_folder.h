#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace vireon::tool {

/// Where presets that go by a name are looked for, the first wins: the folder that the environment
/// variable VIREON_PRESETS names, if it does, and the folder "presets" beside this program.
std::vector<std::filesystem::path> PresetFolders();

/// A preset file of those folders.
struct PresetFile {
    std::string name;  ///< what --preset takes: the file's without ".json"
    std::filesystem::path path;
};

/// The presets of all the folders by name, each name once. Throws ToolError (kInputUnreadable) for
/// a folder that cannot be read; one that is not there is left out, unless VIREON_PRESETS names it.
std::vector<PresetFile> ListPresets(const std::vector<std::filesystem::path>& folders);

/// The file that --preset means: `text` itself when it ends in ".json" or contains a slash, else
/// the preset of that name. Throws ToolError (kUnknownName).
std::filesystem::path FindPreset(const std::string& text,
                                 const std::vector<std::filesystem::path>& folders);

}  // namespace vireon::tool
