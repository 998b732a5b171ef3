#include "shell/parameter_table.h"

#include <algorithm>
#include <cstring>

namespace vireon {
namespace {

constexpr const char* kShapeChoices =
    "Gaussian|Hoop|Kuplah|Mass|Six Flare|Six Spike Horizontal|Six Spike Vertical|Six Spike Whack|"
    "Spectacle|Tent|Tree|Whoopy|Zig|Custom Glow Shape";
constexpr const char* kQualityChoices =
    "1:1 (slowest)|2:1 (slow)|4:1 (moderate)|8:1 (fast)|16:1 (fastest)";
constexpr const char* kInputChannelsChoices = "RGBA|Alpha|Lightness|Luminance|Red|Green|Blue";
constexpr const char* kViewChoices = "Output|Brightness Map|Mask";
constexpr const char* kOutputChannelsChoices = "RGB|RGBA|Red|Green|Blue|Alpha";
constexpr const char* kTransferModeChoices =
    "None|Behind|Normal|(-|Add|Multiply|Screen|Overlay|Soft Light|Hard Light|(-|Color Dodge|"
    "Color Burn|(-|Darken|Lighten|Difference|Exclusion|(-|Hue|Saturation|Color|Luminosity";

constexpr ParameterTraits kPlain{};
constexpr ParameterTraits kSupervised{.supervised = true};
constexpr ParameterTraits kSupervisedConstant{.supervised = true, .constant = true};
constexpr ParameterTraits kSupervisedDisabled{.supervised = true, .disabled = true};
constexpr ParameterTraits kDisabled{.disabled = true};

constexpr ParameterSpec Layer(ParameterIndex index, std::int32_t id, const char* name,
                              ParameterTraits traits) {
    return {
        .index = index, .id = id, .name = name, .kind = ParameterKind::kLayer, .traits = traits};
}

constexpr ParameterSpec Slider(ParameterIndex index, std::int32_t id, const char* name,
                               ParameterTraits traits, double validMin, double validMax,
                               double sliderMin, double sliderMax, double initial) {
    return {.index = index,
            .id = id,
            .name = name,
            .kind = ParameterKind::kFloatSlider,
            .traits = traits,
            .validMin = validMin,
            .validMax = validMax,
            .sliderMin = sliderMin,
            .sliderMax = sliderMax,
            .initial = initial};
}

constexpr ParameterSpec Opacity(ParameterIndex index, std::int32_t id, const char* name) {
    ParameterSpec spec = Slider(index, id, name, kPlain, 0, 100, 0, 100, 100);
    spec.kind = ParameterKind::kFixedSlider;
    return spec;
}

constexpr ParameterSpec Checkbox(ParameterIndex index, std::int32_t id, const char* name,
                                 ParameterTraits traits, bool initial) {
    return {.index = index,
            .id = id,
            .name = name,
            .kind = ParameterKind::kCheckbox,
            .traits = traits,
            .initial = initial ? 1.0 : 0.0};
}

constexpr ParameterSpec Popup(ParameterIndex index, std::int32_t id, const char* name,
                              ParameterTraits traits, const char* choices, std::int32_t initial) {
    return {.index = index,
            .id = id,
            .name = name,
            .kind = ParameterKind::kPopup,
            .traits = traits,
            .initial = static_cast<double>(initial),
            .choices = choices};
}

constexpr ParameterSpec Point(ParameterIndex index, std::int32_t id, const char* name,
                              ParameterTraits traits, double initial) {
    return {.index = index,
            .id = id,
            .name = name,
            .kind = ParameterKind::kPoint,
            .traits = traits,
            .initial = initial};
}

constexpr ParameterSpec GroupStart(ParameterIndex index, std::int32_t id, const char* name,
                                   bool startCollapsed) {
    return {.index = index,
            .id = id,
            .name = name,
            .kind = ParameterKind::kGroupStart,
            .traits = {.startCollapsed = startCollapsed}};
}

constexpr ParameterSpec GroupEnd(ParameterIndex index, std::int32_t id) {
    return {.index = index, .id = id, .name = "", .kind = ParameterKind::kGroupEnd};
}

// "Glow Falloff" shows a slider that begins below its smallest value on purpose.
constexpr ParameterSpec kTable[kRegisteredParameters] = {
    Popup(kParamShape, 1039, "Shape", kSupervisedConstant, kShapeChoices, 1),
    Layer(kParamShapeLayer, kShapeLayerId, "Shape Layer", kSupervisedDisabled),
    Slider(kParamGlowRadius, 62, "Glow Radius", kPlain, 0, 5000, 0, 1000, 100),
    Slider(kParamGlowIntensity, 63, "Glow Intensity", kPlain, 0, 100, 0, 20, 10),
    Slider(kParamGlowFalloff, 19, "Glow Falloff", kPlain, 0.1, 10, 0, 5, 1.5),
    Slider(kParamThreshold, 78, "Threshold", kPlain, 0, 1000, 0, 100, 50),
    GroupStart(kParamInputGroup, 90, "Input", true),
    Layer(kParamGlowLayer, kGlowLayerId, "Glow Layer", kSupervised),
    Slider(kParamBlurInput, 75, "Blur Input", kPlain, 0, 1, 0, 1, 0),
    Popup(kParamQuality, 99, "Quality", kPlain, kQualityChoices, 3),
    Popup(kParamInputChannels, 10, "Input Source Channels", kPlain, kInputChannelsChoices, 1),
    GroupEnd(kParamInputGroupEnd, 91),
    GroupStart(kParamMaskGroup, 81, "Mask", true),
    Checkbox(kParamEnableMask, 84, "Enable Mask", kSupervised, false),
    Layer(kParamMaskLayer, kMaskLayerId, "Mask Layer", kSupervisedDisabled),
    Point(kParamMaskCenter, 83, "Center", kDisabled, 50),
    Slider(kParamMaskRadius, 85, "Radius", kDisabled, 0, 10000, 0, 500, 100),
    Slider(kParamMaskFalloff, 86, "Falloff", kDisabled, 0, 1, 0, 1, 0),
    Slider(kParamMaskWidthAspect, 87, "Width Aspect", kDisabled, 0.1, 100, 0.1, 10, 1),
    Slider(kParamMaskHeightAspect, 88, "Height Aspect", kDisabled, 0.1, 100, 0.1, 10, 1),
    GroupEnd(kParamMaskGroupEnd, 89),
    GroupStart(kParamOutputGroup, 92, "Output", false),
    Popup(kParamView, 73, "View", kPlain, kViewChoices, 1),
    Checkbox(kParamPreventOverbrights, 97, "Prevent Overbrights", kSupervised, true),
    Slider(kParamOverbrightClamp, 98, "Overbright Clamp", kPlain, 0, 100, 0, 100, 100),
    Popup(kParamOutputChannels, 94, "Channels", kPlain, kOutputChannelsChoices, 2),
    Opacity(kParamSourceOpacity, 8, "Source Opacity"),
    Opacity(kParamGlowOpacity, 68, "Glow Opacity"),
    Popup(kParamTransferMode, 9, "Transfer Mode", kPlain, kTransferModeChoices, 5),
    GroupEnd(kParamOutputGroupEnd, 93),
};

constexpr bool TableIsInOrder() {
    for (std::int32_t i = 0; i < kRegisteredParameters; ++i) {
        if (kTable[i].index != i + 1) return false;
    }
    return true;
}
static_assert(TableIsInOrder(), "a parameter's place in the table is its index");

}  // namespace

const ParameterSpec (&ParameterTable())[kRegisteredParameters] {
    return kTable;
}

std::int32_t CountChoices(const char* choices) {
    return 1 + static_cast<std::int32_t>(std::count(choices, choices + std::strlen(choices), '|'));
}

}  // namespace vireon
