#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/vireon/json_tree.h"
#include "tools/vireon/parameter_options.h"

namespace vireon::tool {

/// A look: values for some of the effect's parameters, read from a file
///
///     {"name": "Neon tubes", "description": "...", "for": "what picture it suits",
///      "height": 1080, "parameters": {"Glow Radius": 60, "Shape": "Tent", "Enable Mask": false}}
///
/// of which only "parameters" must be there. Parameters go by the names that the effect registers:
/// sliders take numbers, checkboxes true or false, popups the text of a choice, points a list of
/// two numbers, percent of the picture's width and height.
struct Preset {
    std::filesystem::path path;
    std::string name;         ///< as people read it; without one the file's
    std::string description;  ///< may be empty
    std::string purpose;      ///< "for"; may be empty
    /// Height of the picture that radii and intensity are meant for; none: any.
    std::optional<double> height;
    JsonValue parameters;  ///< an object, its values not yet held against an effect
};

/// Reads a preset as far as it can be understood without the effect. Throws ToolError:
/// kInputUnreadable for what is no preset file, kUnknownName for a field that presets do not have,
/// kBadValue for a field of the wrong type.
Preset ReadPreset(const std::filesystem::path& path);

/// The preset's values by parameter index, for a picture of the size of `frame`. Where the preset
/// has a height and the picture's full height is `scale` times that, the radii (Glow Radius, the
/// mask's Radius) are multiplied by `scale` and Glow Intensity is divided by its square, so that the
/// look stays: pixels add up their light, and a larger picture has more of them. What leaves the
/// parameter's range by that ends there. Throws ToolError: kUnknownName for a
/// parameter or choice that the effect does not have, kBadValue for a value of the wrong type or
/// out of range.
std::map<std::int32_t, headless::ParameterValue> PresetValues(
    const Preset& preset, const std::vector<ParameterOption>& options, const FrameSize& frame);

}  // namespace vireon::tool
