#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace vireon::pictures {

/// A picture that vireon-scenes draws.
struct SceneInput {
    std::string scene;  ///< name of the program's scene
    std::int32_t width = 0;
    std::int32_t height = 0;
    std::optional<std::int32_t> frame;  ///< only for scenes that move
};

/// One golden picture: what is rendered, and how, in the words of `vireon render`.
struct GoldenCase {
    std::string name;   ///< small letters, digits and hyphens; the reference is called so
    std::string shows;  ///< what the case is there for
    SceneInput input;
    std::int32_t bits = 8;
    std::int32_t downsample = 1;
    /// Option without hyphens and its value; others have the effect's defaults.
    std::vector<std::pair<std::string, std::string>> parameters;
    /// The effect's layer as --layer names it, and what it shows.
    std::vector<std::pair<std::string, SceneInput>> layers;
};

/// Reads the list of cases. Throws std::runtime_error, naming the case and the field, for a field
/// that is unknown, missing or of the wrong kind and for a name that is used twice. Whether scenes
/// and parameters exist is found out by drawing and rendering.
std::vector<GoldenCase> ReadGoldenCases(const std::filesystem::path& file);

/// As ReadGoldenCases, from the text of a list.
std::vector<GoldenCase> ParseGoldenCases(const std::string& text);

}  // namespace vireon::pictures
