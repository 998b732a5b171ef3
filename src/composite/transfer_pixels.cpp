#include "composite/transfer_pixels.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "composite/transfer_codes.h"
#include "simd/kernel_table.h"

namespace vireon {
namespace {

struct Colour {
    float red;
    float green;
    float blue;
};

struct Alphas {
    float glow;    // a_t
    float source;  // a_k
    float out;
};

Colour ColourOf(const float* pixel) {
    return {pixel[kRed], pixel[kGreen], pixel[kBlue]};
}

float ClampedBelow(float value) {
    return value < 0.0f ? 0.0f : value;
}

Colour ClampedBelow(const Colour& c) {
    return {ClampedBelow(c.red), ClampedBelow(c.green), ClampedBelow(c.blue)};
}

// Applies f to the three channels of two colours.
template <typename Function>
Colour PerChannel(const Colour& a, const Colour& b, Function&& f) {
    return {f(a.red, b.red), f(a.green, b.green), f(a.blue, b.blue)};
}

// Of two operands that are no numbers the processor keeps the first one's payload, and which one is
// first is the compiler's choice: a single NaN stands for all, so that every build gives its bits.
float OneNaN(float value) {
    return std::isnan(value) ? std::numeric_limits<float>::quiet_NaN() : value;
}

void Store(float* pixel, const Colour& colour, float alpha, const BlendSettings& settings) {
    pixel[kAlpha] = settings.forceOpaque ? 1.0f : OneNaN(alpha);
    pixel[kRed] = OneNaN(colour.red);
    pixel[kGreen] = OneNaN(colour.green);
    pixel[kBlue] = OneNaN(colour.blue);
}

// Walks both images; `blend` gets the glow pixel, which it overwrites, the source pixel and their
// alphas.
template <typename Blend>
void ForEachPixel(const FloatImage& glow, const FloatImage& source, const BlendSettings& settings,
                  Blend&& blend) {
    for (std::int32_t y = 0; y < glow.height; ++y) {
        float* top = glow.row(y);
        const float* backdrop = source.row(y);
        for (std::int32_t x = 0; x < glow.width; ++x, top += kChannels, backdrop += kChannels) {
            Alphas alphas{};
            alphas.glow = settings.glowOpacity * top[kAlpha];
            alphas.source = settings.sourceOpacity * backdrop[kAlpha];
            alphas.out = alphas.source + alphas.glow - alphas.source * alphas.glow;
            blend(top, backdrop, alphas);
        }
    }
}

// The blended colour weighed against the part of the source that the glow does not cover.
Colour OverSource(const Colour& blended, const Colour& source, const Alphas& alphas) {
    const float uncovered = (1.0f - alphas.glow) * alphas.source;
    const float sum = uncovered + alphas.glow;
    return PerChannel(source, blended, [&](float k, float c) {
        return sum == 0.0f ? 0.0f : (uncovered * k + alphas.glow * c) / sum;
    });
}

// The frame that all modes but Behind, Add and Difference share: `mix` gives the colour that glow
// and source make where both are.
template <typename Mix>
void BlendGeneric(const FloatImage& glow, const FloatImage& source, const BlendSettings& settings,
                  Mix&& mix) {
    ForEachPixel(glow, source, settings, [&](float* top, const float* backdrop, Alphas a) {
        if (a.glow == 0.0f) {
            Store(top, ColourOf(backdrop), a.out, settings);
            return;
        }
        const Colour t = ClampedBelow(ColourOf(top));
        const Colour k = ClampedBelow(ColourOf(backdrop));
        Colour c = t;
        if (a.source > 0.0f) {
            c = mix(t, k);
            if (a.source < 1.0f) {
                c = PerChannel(t, c, [&](float plain, float mixed) {
                    return (1.0f - a.source) * plain + a.source * mixed;
                });
            }
        }
        if (a.glow != 1.0f && a.source != 0.0f) {
            Store(top, OverSource(c, k, a), a.out, settings);
        } else {
            Store(top, c, a.glow, settings);
        }
    });
}

// A separable mode: B(T, K) for each channel apart.
template <typename Mode>
void BlendSeparable(const FloatImage& glow, const FloatImage& source,
                    const BlendSettings& settings) {
    BlendGeneric(glow, source, settings, [](const Colour& t, const Colour& k) {
        return PerChannel(t, k, [](float top, float backdrop) { return Mode::B(top, backdrop); });
    });
}

struct Normal {
    static float B(float t, float) { return t; }
};
struct Multiply {
    static float B(float t, float k) { return t * k; }
};
struct Screen {
    static float B(float t, float k) { return 1.0f - (1.0f - k) * (1.0f - t); }
};
struct Overlay {
    static float B(float t, float k) {
        return k < 0.5f ? 2.0f * t * k : (2.0f * t - 1.0f) * (1.0f - k) + k;
    }
};
struct SoftLight {
    static float B(float t, float k) { return k + (1.0f - 2.0f * t) * (k * k - k); }
};
struct HardLight {
    static float B(float t, float k) {
        return t < 0.5f ? 2.0f * t * k : 1.0f - 2.0f * (1.0f - t) * (1.0f - k);
    }
};
struct Darken {
    static float B(float t, float k) { return std::min(t, k); }
};
struct Lighten {
    static float B(float t, float k) { return std::max(t, k); }
};
struct ColorDodge {
    static float B(float t, float k) { return t < 1.0f ? k / (1.0f - t) : t; }
};
struct ColorBurn {
    static float B(float t, float k) { return t != 0.0f ? 1.0f - (1.0f - k) / t : t; }
};
struct Exclusion {
    static float B(float t, float k) { return (1.0f - 2.0f * k) * t + k; }
};

void BlendBehind(const FloatImage& glow, const FloatImage& source, const BlendSettings& settings) {
    ForEachPixel(glow, source, settings, [&](float* top, const float* backdrop, Alphas a) {
        if (a.source == 0.0f) {
            Store(top, ColourOf(top), a.out, settings);
            return;
        }
        if (a.source == 1.0f) {
            Store(top, ColourOf(backdrop), backdrop[kAlpha], settings);
            return;
        }
        const Colour t = ClampedBelow(ColourOf(top));
        const Colour k = ClampedBelow(ColourOf(backdrop));
        const Colour c = PerChannel(t, k, [&](float plain, float mixed) {
            return (1.0f - a.source) * plain + a.source * mixed;
        });
        Store(top, a.glow == 1.0f ? c : OverSource(c, k, a), a.out, settings);
    });
}

// Add and Difference join the premultiplied colours.
template <typename Join>
void BlendPremultiplied(const FloatImage& glow, const FloatImage& source,
                        const BlendSettings& settings, Join&& join) {
    ForEachPixel(glow, source, settings, [&](float* top, const float* backdrop, Alphas a) {
        if (a.glow == 0.0f) {
            Store(top, ColourOf(backdrop), a.out, settings);
            return;
        }
        const Colour t = ClampedBelow(ColourOf(top));
        const Colour k = ClampedBelow(ColourOf(backdrop));
        Colour c = t;
        if (a.source > 0.0f) {
            c = PerChannel(t, k, [&](float plainTop, float plainBackdrop) {
                const float coveredTop = a.glow != 1.0f ? plainTop * a.glow : plainTop;
                const float coveredBackdrop =
                    a.source != 1.0f ? plainBackdrop * a.source : plainBackdrop;
                return a.out == 0.0f ? 0.0f : join(coveredTop, coveredBackdrop) / a.out;
            });
        }
        Store(top, c, a.out, settings);
    });
}

void BlendAdd(const FloatImage& glow, const FloatImage& source, const BlendSettings& settings) {
    BlendPremultiplied(glow, source, settings, [](float t, float k) { return t + k; });
}

void BlendDifference(const FloatImage& glow, const FloatImage& source,
                     const BlendSettings& settings) {
    BlendPremultiplied(glow, source, settings, [](float t, float k) { return std::fabs(k - t); });
}

// Hue, saturation and luma of the modes that are not separable. The model is its own: saturation
// divides by 2 - spread, and the colour is built at the luma of a half-lightness colour, then
// scaled towards black or white.
constexpr float kColourTolerance = 0.0001f;

float Largest(const Colour& c) {
    return std::max({c.red, c.green, c.blue});
}
float Smallest(const Colour& c) {
    return std::min({c.red, c.green, c.blue});
}

float HueOf(const Colour& c) {
    const float largest = Largest(c);
    if (largest < kColourTolerance) return 0.0f;
    const float spread = largest - Smallest(c);
    if (spread < kColourTolerance) return 0.0f;
    float hue = 0.0f;
    if (c.red == largest) {
        hue = (c.green - c.blue) / spread;
    } else if (c.green == largest) {
        hue = (c.blue - c.red) / spread + 2.0f;
    } else {
        hue = (c.red - c.green) / spread + 4.0f;
    }
    return hue < 0.0f ? hue + 6.0f : hue;
}

float SaturationOf(const Colour& c) {
    const float largest = Largest(c);
    if (largest < kColourTolerance) return 0.0f;
    const float smallest = Smallest(c);
    const float spread = largest - smallest;
    if (spread < kColourTolerance) return 0.0f;
    return largest + smallest < 1.0f ? spread / (largest + smallest) : spread / (2.0f - spread);
}

float WeighedLuma(const Colour& c) {
    return 0.299f * c.red + 0.587f * c.green + 0.114f * c.blue;
}

float LumaOf(const Colour& c) {
    return Largest(c) < kColourTolerance ? 0.0f : WeighedLuma(c);
}

Colour PureColour(float hue, float saturation) {
    const float high = 0.5f * saturation + 0.5f;
    const float low = 1.0f - high;
    // Hues are below 7; one that is no number, from colours that are none, falls into the last row.
    const std::int32_t sector = hue >= 0.0f && hue < 7.0f ? static_cast<std::int32_t>(hue) : 6;
    const float fraction = hue - static_cast<float>(sector);
    const float rising = low + (high - low) * fraction;
    const float falling = low + (high - low) * (1.0f - fraction);
    switch (sector) {
        case 0: return {high, rising, low};
        case 1: return {falling, high, low};
        case 2: return {low, high, rising};
        case 3: return {low, falling, high};
        case 4: return {rising, low, high};
        default: return {high, low, falling};
    }
}

Colour ColourFrom(float hue, float saturation, float luma) {
    const Colour pure = PureColour(hue, saturation);
    const float pureLuma = WeighedLuma(pure);
    if (pureLuma >= luma) {
        const float factor = luma / pureLuma;
        return {pure.red * factor, pure.green * factor, pure.blue * factor};
    }
    const auto lightened = [&](float channel) {
        return 1.0f - (1.0f - channel) * (1.0f - luma) / (1.0f - pureLuma);
    };
    return {lightened(pure.red), lightened(pure.green), lightened(pure.blue)};
}

enum class Layer { kGlow, kSource };

// A mode that is not separable, by the layers that its hue, saturation and luma come from.
template <Layer kHue, Layer kSaturation, Layer kLuma>
void BlendColourModel(const FloatImage& glow, const FloatImage& source,
                      const BlendSettings& settings) {
    BlendGeneric(glow, source, settings, [](const Colour& t, const Colour& k) {
        const auto colourOf = [&](Layer layer) { return layer == Layer::kGlow ? t : k; };
        return ColourFrom(HueOf(colourOf(kHue)), SaturationOf(colourOf(kSaturation)),
                          LumaOf(colourOf(kLuma)));
    });
}

constexpr BlendRoutine BlendHue = BlendColourModel<Layer::kGlow, Layer::kSource, Layer::kSource>;
constexpr BlendRoutine BlendSaturation =
    BlendColourModel<Layer::kSource, Layer::kGlow, Layer::kSource>;
constexpr BlendRoutine BlendColor = BlendColourModel<Layer::kGlow, Layer::kGlow, Layer::kSource>;
constexpr BlendRoutine BlendLuminosity =
    BlendColourModel<Layer::kSource, Layer::kSource, Layer::kGlow>;

// A blend in both of its forms.
struct Blend {
    BlendRoutine plain = nullptr;
    simd::BlendRow simd::BlendKernels::*row = nullptr;
};

Blend BlendOf(std::int32_t mode) {
    using Rows = simd::BlendKernels;
    if (mode >= kTransferFirstAlphaVariant && mode <= kTransferLastAlphaVariant) {
        return {BlendSeparable<Exclusion>, &Rows::exclusion};
    }
    switch (mode) {
        case kTransferBehind: return {BlendBehind, &Rows::behind};
        case kTransferNormal: return {BlendSeparable<Normal>, &Rows::normal};
        case kTransferDissolve:
        case kTransferHue: return {BlendHue, &Rows::hue};
        case kTransferAdd: return {BlendAdd, &Rows::add};
        case kTransferMultiply: return {BlendSeparable<Multiply>, &Rows::multiply};
        case kTransferScreen:
        case kTransferLighterColor: return {BlendSeparable<Screen>, &Rows::screen};
        case kTransferOverlay: return {BlendSeparable<Overlay>, &Rows::overlay};
        case kTransferSoftLight: return {BlendSeparable<SoftLight>, &Rows::softLight};
        case kTransferHardLight: return {BlendSeparable<HardLight>, &Rows::hardLight};
        case kTransferDarken: return {BlendSeparable<Darken>, &Rows::darken};
        case kTransferLighten: return {BlendSeparable<Lighten>, &Rows::lighten};
        case kTransferDifference: return {BlendDifference, &Rows::difference};
        case kTransferSaturation: return {BlendSaturation, &Rows::saturation};
        case kTransferColor: return {BlendColor, &Rows::color};
        case kTransferLuminosity: return {BlendLuminosity, &Rows::luminosity};
        case kTransferColorDodge: return {BlendSeparable<ColorDodge>, &Rows::colorDodge};
        case kTransferColorBurn: return {BlendSeparable<ColorBurn>, &Rows::colorBurn};
        case kTransferExclusion: return {BlendSeparable<Exclusion>, &Rows::exclusion};
        default: return {};
    }
}

}  // namespace

BlendRoutine BlendRoutineOf(std::int32_t mode) {
    return BlendOf(mode).plain;
}

simd::BlendRow BlendRowOf(const simd::KernelTable& kernels, std::int32_t mode) {
    const Blend blend = BlendOf(mode);
    return blend.row != nullptr ? kernels.blend.*blend.row : nullptr;
}

void BlendImages(std::int32_t mode, const FloatImage& glow, const FloatImage& source,
                 const BlendSettings& settings) {
    if (const BlendRoutine blend = BlendRoutineOf(mode)) blend(glow, source, settings);
}

void BlendImages(const simd::KernelTable& kernels, std::int32_t mode, const FloatImage& glow,
                 const FloatImage& source, const BlendSettings& settings) {
    const simd::BlendRow blend = BlendRowOf(kernels, mode);
    if (blend == nullptr) return;
    const std::ptrdiff_t values = static_cast<std::ptrdiff_t>(glow.width) * kChannels;
    for (std::int32_t y = 0; y < glow.height; ++y) {
        blend(glow.row(y), source.row(y), values, settings);
    }
}

}  // namespace vireon
