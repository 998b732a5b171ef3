#pragma once

#include <cstdint>
#include <optional>
#include <utility>

#include "headless/host.h"
#include "tests/conformance/picture.h"

namespace vireon::conformance {

/// Places of the controls in the parameter list.
enum ControlIndex : std::int32_t {
    kShape = 1,
    kShapeLayer = 2,
    kGlowRadius = 3,
    kGlowIntensity = 4,
    kGlowFalloff = 5,
    kThreshold = 6,
    kInputGroup = 7,
    kGlowLayer = 8,
    kBlurInput = 9,
    kQuality = 10,
    kInputChannels = 11,
    kInputGroupEnd = 12,
    kMaskGroup = 13,
    kEnableMask = 14,
    kMaskLayer = 15,
    kMaskCenter = 16,
    kMaskRadius = 17,
    kMaskFalloff = 18,
    kWidthAspect = 19,
    kHeightAspect = 20,
    kMaskGroupEnd = 21,
    kOutputGroup = 22,
    kView = 23,
    kPreventOverbrights = 24,
    kOverbrightClamp = 25,
    kChannels = 26,
    kSourceOpacity = 27,
    kGlowOpacity = 28,
    kTransferMode = 29,
    kOutputGroupEnd = 30,
};
inline constexpr std::int32_t kParameterCount = 31;

inline constexpr std::int32_t kShapeCustom = 14;
inline constexpr std::int32_t kViewOutput = 1;
inline constexpr std::int32_t kViewBrightness = 2;
inline constexpr std::int32_t kViewMask = 3;
inline constexpr std::int32_t kModeNone = 1;
inline constexpr std::int32_t kModeNormal = 3;
inline constexpr std::int32_t kModeAdd = 5;

/// The controls as the user sets them, popups counted from 1; begins with the defaults.
struct Controls {
    std::int32_t shape = 1;
    double glowRadius = 100;
    double glowIntensity = 10;
    double glowFalloff = 1.5;
    double threshold = 50;
    double blurInput = 0;
    std::int32_t quality = 3;
    std::int32_t inputChannels = 1;
    bool enableMask = false;
    /// Pixels of the present resolution; not set: the middle of the layer.
    std::optional<std::pair<double, double>> maskCenter;
    double maskRadius = 100;
    double maskFalloff = 0;
    double widthAspect = 1;
    double heightAspect = 1;
    std::int32_t view = kViewOutput;
    bool preventOverbrights = true;
    double overbrightClamp = 100;
    std::int32_t channels = 2;
    double sourceOpacity = 100;
    double glowOpacity = 100;
    std::int32_t transferMode = kModeAdd;
};

/// One frame: the controls, the pictures at the present resolution, and what the host says.
struct Scene {
    Controls controls;
    Picture input;
    std::optional<Picture> glowLayer;
    std::optional<Picture> maskLayer;
    std::optional<Picture> shapeLayer;
    sdk::PF_RationalScale downsampleX{1, 1};
    sdk::PF_RationalScale downsampleY{1, 1};
    sdk::PF_RationalScale pixelAspect{1, 1};
    bool highQuality = true;
};

/// Sets every control, layer and setting of a host whose effect is set up. Pictures get `depth`.
void Apply(const Scene& scene, headless::Host& host, headless::Depth depth);

/// A colourful, uneven, opaque picture with values from 0 to a little above 1.
Picture OpaquePicture(int width, int height);
/// The same with alpha from 0 to 1, both ends included.
Picture TransparentPicture(int width, int height);
/// Smoothly varying alpha over grey, for masks.
Picture AlphaPicture(int width, int height);

/// 48 x 32, opaque, with a glow that covers the frame and stays moderate: the scene that tests
/// change one thing of.
Scene PlainScene();

}  // namespace vireon::conformance
