#include "glow/fused_frame.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <functional>
#include <limits>
#include <memory>
#include <new>
#include <optional>
#include <vector>

#include "composite/brightness_extraction.h"
#include "composite/output_passes.h"
#include "composite/sampled_light_pixels.h"
#include "composite/transfer_codes.h"
#include "composite/transfer_modes.h"
#include "composite/transfer_pixels.h"
#include "glow/enlarged_rows_pixels.h"
#include "glow/glow_pass.h"
#include "glow/resample_pixels.h"
#include "glow/shape_convolution.h"
#include "glow/tent_blur.h"
#include "host/application_codes.h"
#include "host/plugin_host_api.h"
#include "host/result_codes.h"
#include "image/channel_order.h"
#include "image/convert_pixels.h"
#include "image/pixel_format.h"
#include "image/tolerance.h"
#include "render/glow_settings.h"
#include "render/raster_ops.h"
#include "shapes/glow_kernel.h"
#include "simd/kernel_table.h"

namespace vireon {
namespace {

bool IsReadable(const RasterLayout& layout) {
    if (layout.pixels == nullptr || layout.width <= 0 || layout.height <= 0) return false;
    if (ChannelOrderOf(layout.formatCode) != kAlphaFirst) return false;
    return DepthOfFormat(layout.formatCode) == kDepthFloat ? IsFloatView(layout)
                                                           : DepthOfFormat(layout.formatCode) >= 0;
}

// First and last byte of the rows.
std::pair<const std::byte*, const std::byte*> Extent(const RasterLayout& layout) {
    const std::byte* first = layout.row(0);
    const std::byte* last = layout.row(layout.height - 1);
    if (last < first) std::swap(first, last);
    return {first, last + static_cast<std::ptrdiff_t>(layout.width) * layout.bytesPerPixel};
}

bool Overlap(const RasterLayout& a, const RasterLayout& b) {
    const auto [beginA, endA] = Extent(a);
    const auto [beginB, endB] = Extent(b);
    return std::less<>()(beginA, endB) && std::less<>()(beginB, endA);
}

/// Some pixels of one row.
struct Span {
    std::int32_t x;
    std::int32_t y;
    std::int32_t pixels;
};

RasterLayout SpanOf(const RasterLayout& layout, const Span& span) {
    RasterLayout part = layout;
    part.pixels = layout.row(span.y) + static_cast<std::ptrdiff_t>(span.x) * layout.bytesPerPixel;
    part.width = std::min(span.pixels, layout.width - span.x);
    part.height = 1;
    return part;
}

// Asks for a row of pixels that is read soon, into the second cache. Spans do not follow each other
// in memory, so that the processor can't look ahead by itself.
void Fetch(const RasterLayout& row) {
    constexpr std::ptrdiff_t kCacheLine = 64;
    const auto* const pixels = reinterpret_cast<const char*>(row.pixels);
    const std::ptrdiff_t bytes = static_cast<std::ptrdiff_t>(row.width) * row.bytesPerPixel;
    for (std::ptrdiff_t i = 0; i < bytes; i += kCacheLine) __builtin_prefetch(pixels + i, 0, 2);
}

bool IsOpaqueFrame(const simd::KernelTable& kernels, const RasterLayout& frame) {
    const std::ptrdiff_t values = static_cast<std::ptrdiff_t>(frame.width) * kChannels;
    for (std::int32_t y = 0; y < frame.height; ++y) {
        std::byte* row = frame.row(y);
        bool opaque = false;
        switch (DepthOfFormat(frame.formatCode)) {
            case kDepth8:
                opaque = kernels.frame.isOpaque8(reinterpret_cast<std::uint8_t*>(row), values);
                break;
            case kDepth16:
                opaque = kernels.frame.isOpaque16(reinterpret_cast<std::uint16_t*>(row), values);
                break;
            default:
                opaque = kernels.frame.isOpaqueFloat(reinterpret_cast<float*>(row), values);
                break;
        }
        if (!opaque) return false;
    }
    return true;
}

SampledLight LightOf(const GlowSettings& settings, const FrameLayouts& layouts, bool resample) {
    SampledLight light{};
    light.frameWidth = layouts.input.width;
    light.frameHeight = layouts.input.height;
    light.inputChannels = settings.inputChannels;
    light.threshold = static_cast<float>(settings.threshold / 100.0);
    light.exponent = static_cast<float>(settings.glowFalloff);
    light.gain = static_cast<float>(settings.lightGain);
    light.sampling = resample ? LightSampling::kBilinear : LightSampling::kNearest;
    light.colourOnly = resample && SamplesColourOnly(settings);
    return light;
}

// The glow at the frame's size, from the top down.
class GlowRows {
  public:
    virtual ~GlowRows() = default;
    // Makes rows from y on readable and tells how many.
    virtual std::int32_t prepare(std::int32_t y) = 0;
    // Writes pixels from (x, y) on to `to`.
    virtual void read(std::int32_t x, std::int32_t y, std::int32_t pixels, float* to) = 0;
    // How many rows from y on have one limit, at least 1.
    virtual std::int32_t alike(std::int32_t y) const = 0;
    // No colour of row y, readable or not, is larger.
    virtual float colourLimit(std::int32_t y) = 0;
    // The larger of `largest` and every colour of a row that is readable.
    virtual float largestColour(std::int32_t y, float largest) = 0;
};

class ImageRows final : public GlowRows {
  public:
    ImageRows(const simd::KernelTable& kernels, const FloatImage& image)
        : kernels_(kernels), image_(image) {}
    std::int32_t prepare(std::int32_t) override { return 1; }
    void read(std::int32_t x, std::int32_t y, std::int32_t pixels, float* to) override {
        std::copy_n(image_.pixel(x, y), static_cast<std::ptrdiff_t>(pixels) * kChannels, to);
    }
    std::int32_t alike(std::int32_t) const override { return 1; }
    float colourLimit(std::int32_t) override { return std::numeric_limits<float>::infinity(); }
    float largestColour(std::int32_t y, float largest) override {
        return kernels_.frame.largestColour(
            image_.row(y), static_cast<std::ptrdiff_t>(image_.width) * kChannels, largest);
    }

  private:
    const simd::KernelTable& kernels_;
    FloatImage image_;
};

class EnlargedGlowRows final : public GlowRows {
  public:
    explicit EnlargedGlowRows(EnlargedRows rows) : rows_(std::move(rows)) {}
    std::int32_t prepare(std::int32_t y) override { return rows_.prepare(y); }
    void read(std::int32_t x, std::int32_t y, std::int32_t pixels, float* to) override {
        rows_.read(x, y, pixels, to);
    }
    std::int32_t alike(std::int32_t y) const override { return rows_.alike(y); }
    float colourLimit(std::int32_t y) override { return rows_.colourLimit(y); }
    float largestColour(std::int32_t y, float largest) override {
        return rows_.largestColour(y, largest);
    }

  private:
    EnlargedRows rows_;
};

// Pixels that go from stage to stage together: few enough to stay in the first cache with the rows
// that they are made of.
constexpr std::int32_t kSpan = 320;

// Calls `pass` with every span of the first `height` rows and the one that comes after it, rows
// that share their sources one after the other.
template <typename Pass>
void ForEachSpan(GlowRows& rows, std::int32_t width, std::int32_t height, Pass&& pass) {
    const auto spanAt = [&](std::int32_t x, std::int32_t y) {
        return Span{x, y, std::min(kSpan, width - x)};
    };
    for (std::int32_t y = 0; y < height;) {
        const std::int32_t end = std::min(y + rows.prepare(y), height);
        for (std::int32_t x = 0; x < width; x += kSpan) {
            for (std::int32_t row = y; row + 1 < end; ++row) {
                pass(spanAt(x, row), spanAt(x, row + 1));
            }
            const bool isLast = x + kSpan >= width;
            pass(spanAt(x, end - 1),
                 isLast ? spanAt(0, std::min(end, height - 1)) : spanAt(x + kSpan, y));
        }
        y = end;
    }
}

struct GlowRange {
    float largest;
    bool finite;
};

// The largest colour that is an output channel, at least 0, and whether all values are finite.
GlowRange RangeOf(const simd::KernelTable& kernels, const FloatImage& glow) {
    const std::ptrdiff_t values = static_cast<std::ptrdiff_t>(glow.width) * kChannels;
    GlowRange range{0.0f, true};
    for (std::int32_t y = 0; y < glow.height; ++y) {
        range.largest = kernels.frame.largestColour(glow.row(y), values, range.largest);
        range.finite = range.finite && kernels.frame.isFinite(glow.row(y), values);
    }
    return range;
}

// The largest colour of the finished glow as far as the soft clip asks: 1 stands for anything less,
// 2 or more for anything that is not less.
float LargestOfRows(GlowRows& rows, std::int32_t height) {
    float largest = 1.0f;
    for (std::int32_t y = 0; y < height;) {
        const std::int32_t end = y + rows.alike(y);
        if (rows.colourLimit(y) <= largest) {
            y = end;
            continue;
        }
        rows.prepare(y);
        for (; y < end; ++y) {
            largest = rows.largestColour(y, largest);
            if (largest >= 2.0f) return largest;
        }
    }
    return largest;
}

// Turns spans of glow into spans of the finished frame: the passes over the glow, then the
// composite over the input, in the glow's place.
class SpanFinisher {
  public:
    SpanFinisher(PluginHost_API& host, const simd::KernelTable& kernels,
                 const GlowSettings& settings, const simd::GlowRowSettings& passes)
        : kernels_(kernels),
          passes_(passes),
          settings_{static_cast<float>(settings.glowOpacity * 0.01),
                    static_cast<float>(settings.sourceOpacity * 0.01), /*forceOpaque=*/false},
          composites_(settings.transferMode != kTransferNone) {
        if (!composites_) return;
        const std::int32_t mode =
            PipelineTransferMode(settings.transferMode, host.keepsSeparators());
        blend_ = BlendRowOf(kernels, mode);
        limitsColour_ = mode == kTransferColorBurn;
        addsOpaque_ = mode == kTransferAdd && passes.opaque && settings_.glowOpacity == 1.0f &&
                      settings_.sourceOpacity == 1.0f;
    }

    void finish(float* glow, const float* input, std::int32_t pixels) const {
        const std::ptrdiff_t values = static_cast<std::ptrdiff_t>(pixels) * kChannels;
        if (addsOpaque_) {
            kernels_.frame.finishAndAddOpaque(glow, input, values, passes_);
            return;
        }
        kernels_.frame.finishGlow(glow, input, values, passes_);
        composite({glow, pixels, 1, 0}, input);
    }

  private:
    void composite(const FloatImage& glow, const float* input) const {
        if (!composites_) {
            if (!NearOne(settings_.glowOpacity)) ScaleColour(kernels_, glow, settings_.glowOpacity);
            return;
        }
        if (limitsColour_) ClampColour(kernels_, glow);
        if (blend_ != nullptr) {
            blend_(glow.pixels, input, static_cast<std::ptrdiff_t>(glow.width) * kChannels,
                   settings_);
        }
        if (limitsColour_) ClampColour(kernels_, glow);
    }

    const simd::KernelTable& kernels_;
    simd::GlowRowSettings passes_;
    BlendSettings settings_;
    bool composites_;
    simd::BlendRow blend_ = nullptr;
    bool limitsColour_ = false;
    bool addsOpaque_ = false;
};

bool IsFloat(const RasterLayout& layout) {
    return DepthOfFormat(layout.formatCode) == kDepthFloat;
}

void WriteFrame(const simd::KernelTable& kernels, const FrameLayouts& layouts, GlowRows& rows,
                const SpanFinisher& finisher) {
    // Float pixels are read and written where they are, others by way of these.
    std::vector<float> convertedInput(static_cast<std::size_t>(kSpan) * kChannels);
    std::vector<float> finished(convertedInput.size());
    const std::int32_t width = std::min(layouts.input.width, layouts.output.width);
    const std::int32_t height = std::min(layouts.input.height, layouts.output.height);
    ForEachSpan(rows, width, height, [&](const Span& span, const Span& next) {
        Fetch(SpanOf(layouts.input, next));
        const RasterLayout from = SpanOf(layouts.input, span);
        const RasterLayout to = SpanOf(layouts.output, span);
        float* input = convertedInput.data();
        if (IsFloat(from)) {
            input = FloatView(from).pixels;
        } else {
            ConvertPixelsToFloat(kernels, from, {input, span.pixels, 1, 0});
        }
        float* glow = IsFloat(to) ? FloatView(to).pixels : finished.data();
        rows.read(span.x, span.y, span.pixels, glow);
        finisher.finish(glow, input, span.pixels);
        if (!IsFloat(to)) ConvertPixelsFromFloat(kernels, {glow, span.pixels, 1, 0}, to);
    });
}

std::int32_t RenderRows(PluginHost_API& host, const simd::KernelTable& kernels,
                        GlowSettings& settings, const FrameLayouts& layouts,
                        const GlowKernel& shape, PluginRaster_API& output) {
    const std::int32_t width = layouts.input.width;
    const std::int32_t height = layouts.input.height;
    const std::int32_t quality = EffectiveQuality(settings, width, height);
    const float factor = kQualityFactors[quality];
    const bool resample = host.isHighQuality();

    const bool opaque = settings.outputAlpha && IsOpaqueFrame(kernels, layouts.input);
    if (opaque) settings.outputAlpha = false;
    settings.singleChannel = settings.inputChannels != kInputRgba;
    settings.progressCount = 0;
    settings.progressTotal = settings.countProgressTwice != 0 ? 2 * height : height;

    const auto mapWidth = static_cast<std::int32_t>(static_cast<float>(width) / factor);
    const auto mapHeight = static_cast<std::int32_t>(static_cast<float>(height) / factor);
    std::int32_t error = 0;
    const auto makeRaster = [&](std::int32_t w, std::int32_t h) {
        ScopedRaster raster = CreateWorkingRaster(host, w, h, kDepthFloat, /*clear=*/false, error);
        if (!raster) {
            ClearRaster(host, output);
            if (error == 0) error = kRenderFailed;
        }
        return raster;
    };
    ScopedRaster map = makeRaster(mapWidth, mapHeight);
    if (!map) return error;
    ScopedRaster glow = makeRaster(mapWidth, mapHeight);
    if (!glow) return error;

    ExtractSampledLight(kernels, layouts.source,
                        LightOf(settings, layouts, resample && quality != 0),
                        ViewRaster(host, *map));
    {
        const ScopedRadiusScale reducedRadius(settings, factor);
        const std::int32_t result = ConvolveShape(host, *map, *glow, &shape, settings, factor);
        if (result != kSuccess) return result;
    }
    map.reset();

    const FloatImage small = ViewRaster(host, *glow);
    const GlowRange range = RangeOf(kernels, small);
    const std::int32_t radius = resample ? SmoothingRadius(quality, true) : 0;
    std::unique_ptr<GlowRows> rows;
    ScopedRaster enlarged;
    if (quality == 0) {
        rows = std::make_unique<ImageRows>(kernels, small);
    } else if (range.finite) {
        rows =
            std::make_unique<EnlargedGlowRows>(EnlargedRows(kernels, small, width, height, radius));
    } else {
        enlarged = makeRaster(width, height);
        if (!enlarged) return error;
        ExpandNearest(small, ViewRaster(host, *enlarged));
        if (resample) {
            const std::int32_t result = BlurRaster(host, *enlarged, radius, settings, false);
            if (result != kSuccess) return result;
        }
        rows = std::make_unique<ImageRows>(kernels, ViewRaster(host, *enlarged));
    }

    simd::GlowRowSettings passes = RowPasses(settings, opaque);
    // Smoothing weighs its samples with positive weights whose sum is 1: it makes no value larger.
    const bool mayExceed = !range.finite || range.largest > 1.0f;
    if (settings.preventOverbrights && mayExceed) {
        AddSoftClip(passes, settings, LargestOfRows(*rows, height));
    }
    WriteFrame(kernels, layouts, *rows, SpanFinisher(host, kernels, settings, passes));
    return kSuccess;
}

}  // namespace

bool CanFuseStages(PluginHost_API& host, const GlowSettings& settings) {
    if (settings.view != kViewOutput || !IsInputChannelsChoice(settings.inputChannels))
        return false;
    if (settings.enableMask || settings.fastSplat) return false;
    if (!NearZero(settings.blurInput * settings.glowRadius)) return false;
    if (settings.driverFlag && settings.pipelineMode != 1) return false;
    if (NearZero(static_cast<float>(settings.glowOpacity * 0.01))) return false;

    const bool ownCompositor = !host.isApplication(kAfterEffects);
    return !host.alphaIsUndefined() && !host.alphaIsIgnored() && !host.isPremultiplied() &&
           !host.compositesItself() && (ownCompositor || !host.offersTransfer());
}

bool CanFusePixels(const FrameLayouts& layouts) {
    return IsReadable(layouts.source) && IsReadable(layouts.input) && IsReadable(layouts.output) &&
           layouts.source.formatCode == layouts.input.formatCode &&
           !Overlap(layouts.output, layouts.input) && !Overlap(layouts.output, layouts.source);
}

std::int32_t RenderFusedFrame(PluginHost_API& host, const simd::KernelTable& kernels,
                              GlowSettings& settings, const FrameLayouts& layouts,
                              const GlowKernel& shape, PluginRaster_API& output) {
    try {
        return RenderRows(host, kernels, settings, layouts, shape, output);
    } catch (const std::bad_alloc&) {
        throw;
    } catch (...) {
        // As in `RenderGlow`, what the host threw ends the render; the rasters are released by now.
        return kSuccess;
    }
}

}  // namespace vireon
