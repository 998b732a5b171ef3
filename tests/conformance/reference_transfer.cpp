#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>

#include "tests/conformance/reference_model.h"

namespace vireon::conformance {
namespace {

using Color = std::array<float, 3>;

/// The popup's entries, in their order; lines between groups keep their places.
enum class Mode {
    kNone,
    kBehind,
    kNormal,
    kLine1,
    kAdd,
    kMultiply,
    kScreen,
    kOverlay,
    kSoftLight,
    kHardLight,
    kLine2,
    kColorDodge,
    kColorBurn,
    kLine3,
    kDarken,
    kLighten,
    kDifference,
    kExclusion,
    kLine4,
    kHue,
    kSaturation,
    kColor,
    kLuminosity,
};

float Largest(const Color& c) {
    return std::max({c[0], c[1], c[2]});
}

float Smallest(const Color& c) {
    return std::min({c[0], c[1], c[2]});
}

float Luma(const Color& c) {
    return 0.299f * c[0] + 0.587f * c[1] + 0.114f * c[2];
}

constexpr float kFlat = 0.0001f;

float HueOf(const Color& c) {
    const float largest = Largest(c);
    const float spread = largest - Smallest(c);
    if (largest < kFlat || spread < kFlat) {
        return 0;
    }
    float hue = 0;
    if (c[0] == largest) {
        hue = (c[1] - c[2]) / spread;
    } else if (c[1] == largest) {
        hue = (c[2] - c[0]) / spread + 2;
    } else {
        hue = (c[0] - c[1]) / spread + 4;
    }
    return hue < 0 ? hue + 6 : hue;
}

float SaturationOf(const Color& c) {
    const float largest = Largest(c);
    const float spread = largest - Smallest(c);
    if (largest < kFlat || spread < kFlat) {
        return 0;
    }
    const float sum = largest + Smallest(c);
    return sum < 1 ? spread / sum : spread / (2 - spread);
}

float LumaOf(const Color& c) {
    return Largest(c) < kFlat ? 0 : Luma(c);
}

Color Construct(float hue, float saturation, float luma) {
    const float high = 0.5f * saturation + 0.5f;
    const float low = 1 - high;
    const int sector = static_cast<int>(hue);
    const float part = hue - static_cast<float>(sector);
    const float rising = low + (high - low) * part;
    const float falling = low + (high - low) * (1 - part);
    Color c{};
    switch (sector) {
        case 0: c = {high, rising, low}; break;
        case 1: c = {falling, high, low}; break;
        case 2: c = {low, high, rising}; break;
        case 3: c = {low, falling, high}; break;
        case 4: c = {rising, low, high}; break;
        default: c = {high, low, falling}; break;
    }
    const float own = Luma(c);
    for (float& value : c) {
        value = own >= luma ? value * luma / own : 1 - (1 - value) * (1 - luma) / (1 - own);
    }
    return c;
}

float BlendChannel(Mode mode, float t, float k) {
    switch (mode) {
        case Mode::kMultiply: return t * k;
        case Mode::kOverlay: return k < 0.5f ? 2 * t * k : (2 * t - 1) * (1 - k) + k;
        case Mode::kSoftLight: return k + (1 - 2 * t) * (k * k - k);
        case Mode::kHardLight: return t < 0.5f ? 2 * t * k : 1 - 2 * (1 - t) * (1 - k);
        case Mode::kColorDodge: return t < 1 ? k / (1 - t) : t;
        case Mode::kColorBurn: return t != 0 ? 1 - (1 - k) / t : t;
        case Mode::kDarken: return std::min(t, k);
        case Mode::kLighten: return std::max(t, k);
        case Mode::kExclusion: return (1 - 2 * k) * t + k;
        default: return t;
    }
}

Color Blend(Mode mode, const Color& t, const Color& k) {
    switch (mode) {
        case Mode::kHue: return Construct(HueOf(t), SaturationOf(k), LumaOf(k));
        case Mode::kSaturation: return Construct(HueOf(k), SaturationOf(t), LumaOf(k));
        case Mode::kColor: return Construct(HueOf(t), SaturationOf(t), LumaOf(k));
        case Mode::kLuminosity: return Construct(HueOf(k), SaturationOf(k), LumaOf(t));
        default: break;
    }
    return {BlendChannel(mode, t[0], k[0]), BlendChannel(mode, t[1], k[1]),
            BlendChannel(mode, t[2], k[2])};
}

/// What of the source shows through a glow that is not opaque.
Color UnderGlow(const Color& c, const Color& k, float glowAlpha, float sourceAlpha) {
    const float weight = (1 - glowAlpha) * sourceAlpha;
    const float sum = weight + glowAlpha;
    Color result{};
    for (std::size_t i = 0; i < 3; ++i) {
        result[i] = sum == 0 ? 0 : (weight * k[i] + glowAlpha * c[i]) / sum;
    }
    return result;
}

PixelValues CompositePixel(Mode mode, const PixelValues& top, const PixelValues& back,
                           float glowAlpha, float sourceAlpha) {
    const float alpha = sourceAlpha + glowAlpha - sourceAlpha * glowAlpha;
    if (mode == Mode::kBehind) {
        if (sourceAlpha == 0) {
            return {alpha, top[kRed], top[kGreen], top[kBlue]};
        }
        if (sourceAlpha == 1) {
            return back;
        }
    } else if (glowAlpha == 0) {
        return {alpha, back[kRed], back[kGreen], back[kBlue]};
    }

    Color t{};
    Color k{};
    for (std::size_t i = 0; i < 3; ++i) {
        t[i] = std::max(0.0f, top[i + 1]);
        k[i] = std::max(0.0f, back[i + 1]);
    }
    Color c = t;
    float resultAlpha = alpha;
    switch (mode) {
        case Mode::kAdd:
        case Mode::kScreen:
        case Mode::kDifference:
            for (std::size_t i = 0; i < 3 && sourceAlpha > 0; ++i) {
                const float glow = t[i] * glowAlpha;
                const float source = k[i] * sourceAlpha;
                const float sum =
                    mode == Mode::kDifference ? std::abs(source - glow) : source + glow;
                c[i] = alpha == 0 ? 0 : sum / alpha;
            }
            break;
        case Mode::kBehind:
            for (std::size_t i = 0; i < 3; ++i) {
                c[i] = (1 - sourceAlpha) * t[i] + sourceAlpha * k[i];
            }
            if (glowAlpha != 1) {
                c = UnderGlow(c, k, glowAlpha, sourceAlpha);
            }
            break;
        default:
            if (sourceAlpha > 0) {
                const Color blended = Blend(mode, t, k);
                for (std::size_t i = 0; i < 3; ++i) {
                    c[i] = sourceAlpha < 1 ? (1 - sourceAlpha) * t[i] + sourceAlpha * blended[i]
                                           : blended[i];
                }
            }
            if (glowAlpha != 1 && sourceAlpha != 0) {
                c = UnderGlow(c, k, glowAlpha, sourceAlpha);
            } else {
                resultAlpha = glowAlpha;
            }
            break;
    }
    return {resultAlpha, c[0], c[1], c[2]};
}

}  // namespace

void Composite(Picture& glow, const Picture& source, int mode, float glowOpacity,
               float sourceOpacity) {
    for (std::size_t i = 0; i < glow.pixels().size(); ++i) {
        PixelValues& pixel = glow.pixels()[i];
        const PixelValues& back = source.pixels()[i];
        pixel = CompositePixel(static_cast<Mode>(mode), pixel, back, glowOpacity * pixel[kAlpha],
                               sourceOpacity * back[kAlpha]);
    }
}

}  // namespace vireon::conformance
