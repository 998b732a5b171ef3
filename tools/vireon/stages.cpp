#include "tools/vireon/stages.h"

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <utility>

#include "image/convert_pixels.h"
#include "image/pixel_format.h"
#include "tools/vireon/tool_error.h"

namespace vireon::tool {

using headless::Picture;
using headless::RenderJob;

namespace {

using Settings = std::vector<std::pair<const char*, const char*>>;  ///< parameter and value

/// On which frames a stage is there.
enum class When { kAlways, kBlurred, kMasked, kReduced };

struct StageSpec {
    const char* file;
    const char* title;
    const char* text;
    When when;
    Settings settings;
};

/// The numbers are fixed: a file that is not there tells that its stage did nothing.
const std::vector<StageSpec>& Specs() {
    static const std::vector<StageSpec> specs{
        {"02-brightness-map",
         "brightness map",
         "the light above the threshold, raised to the falloff, at full size",
         When::kAlways,
         {{"View", "Brightness Map"},
          {"Quality", "1:1 (slowest)"},
          {"Blur Input", "0"},
          {"Enable Mask", "off"}}},
        {"03-blurred-map",
         "blurred map",
         "the same light with Blur Input",
         When::kBlurred,
         {{"View", "Brightness Map"}, {"Quality", "1:1 (slowest)"}, {"Enable Mask", "off"}}},
        {"04-mask", "mask", "where light may arise", When::kMasked, {{"View", "Mask"}}},
        {"05-masked-map",
         "masked map",
         "the light that the mask leaves",
         When::kMasked,
         {{"View", "Brightness Map"}, {"Quality", "1:1 (slowest)"}}},
        {"06-sampled-map",
         "sampled map",
         "what the shape is stamped for at this Quality, enlarged",
         When::kReduced,
         {{"View", "Brightness Map"}}},
        {"07-glow-before-clip",
         "glow before the clip",
         "the stamped glow in the output channels, unlimited",
         When::kAlways,
         {{"View", "Output"},
          {"Transfer Mode", "None"},
          {"Glow Opacity", "100"},
          {"Prevent Overbrights", "off"}}},
        {"08-glow",
         "glow",
         "the glow that is composited over the source",
         When::kAlways,
         {{"View", "Output"}, {"Transfer Mode", "None"}, {"Glow Opacity", "100"}}},
    };
    return specs;
}

const ParameterOption& Find(const std::vector<ParameterOption>& options, const std::string& name) {
    const auto found =
        std::find_if(options.begin(), options.end(), [&name](const ParameterOption& option) {
            return option.parameter.name == name && !option.isLayer();
        });
    if (found == options.end()) {
        throw ToolError(kUnknownName,
                        "--stages: the effect has no parameter \"" + name +
                            "\", which its stages are shown through; this works with Vireon Glow");
    }
    return *found;
}

double ValueOf(const RenderJob& job, const ParameterOption& option) {
    const auto value = job.values.find(option.parameter.index);
    return value != job.values.end() ? value->second.x : option.parameter.defaultValue;
}

/// Whether a stage is a glow whose intensity the effect moves into alpha.
bool HasLightInAlpha(const StageSpec& spec, const RenderJob& job,
                     const std::vector<ParameterOption>& options) {
    const bool isGlow = std::any_of(
        spec.settings.begin(), spec.settings.end(),
        [](const auto& setting) { return std::string_view(setting.first) == "Transfer Mode"; });
    if (!isGlow) {
        return false;
    }
    const ParameterOption& channels = Find(options, "Channels");
    return ValueOf(job, channels) == ParseValue(channels, "RGBA", {}, "--stages").x;
}

bool IsThere(When when, const RenderJob& job, const std::vector<ParameterOption>& options) {
    switch (when) {
        case When::kBlurred: return ValueOf(job, Find(options, "Blur Input")) > 0;
        case When::kMasked: return ValueOf(job, Find(options, "Enable Mask")) != 0;
        case When::kReduced: return ValueOf(job, Find(options, "Quality")) > 1;
        default: return true;
    }
}

RasterLayout LayoutOf(Picture& picture, std::int32_t format) {
    RasterLayout layout;
    layout.pixels = picture.pixels.data();
    layout.width = picture.width;
    layout.height = picture.height;
    layout.rowBytes = static_cast<std::int32_t>(picture.rowBytes());
    layout.formatCode = format;
    layout.bytesPerPixel = picture.bits / 2;
    return layout;
}

Picture InFloat(Picture picture) {
    if (picture.bits == 32) {
        return picture;
    }
    Picture converted(picture.width, picture.height, 32);
    converted.originX = picture.originX;
    converted.originY = picture.originY;
    const RasterLayout source = LayoutOf(picture, picture.bits == 8 ? kFormat8 : kFormat16);
    ConvertPixelsToFloat(source, FloatView(LayoutOf(converted, kFormatFloat)));
    return converted;
}

RenderJob InFloat(RenderJob job) {
    job.bits = 32;
    job.input = InFloat(std::move(job.input));
    for (auto& [index, picture] : job.layers) {
        picture = InFloat(std::move(picture));
    }
    return job;
}

}  // namespace

std::vector<std::string> StageNames() {
    std::vector<std::string> names{kSourceStage};
    for (const StageSpec& spec : Specs()) {
        names.emplace_back(spec.file);
    }
    names.emplace_back(kOutputStage);
    return names;
}

std::vector<Stage> StagesOf(const RenderJob& job, const std::vector<ParameterOption>& options) {
    const RenderJob base = InFloat(job);
    const FrameSize frame{job.fullWidth, job.fullHeight, 1};
    std::vector<Stage> stages;
    for (const StageSpec& spec : Specs()) {
        if (!IsThere(spec.when, job, options)) {
            continue;
        }
        Stage stage{spec.file, spec.title, spec.text, HasLightInAlpha(spec, job, options), base};
        for (const auto& [name, text] : spec.settings) {
            const ParameterOption& option = Find(options, name);
            stage.job.values[option.parameter.index] = ParseValue(option, text, frame, "--stages");
        }
        stages.push_back(std::move(stage));
    }
    return stages;
}

}  // namespace vireon::tool
