// Each stage by itself at 1080p, on float pixels with packed rows.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "composite/brightness_pixels.h"
#include "composite/glow_mask_pixels.h"
#include "composite/output_passes.h"
#include "composite/transfer_codes.h"
#include "composite/transfer_pixels.h"
#include "composite/widening_pixels.h"
#include "glow/resample_pixels.h"
#include "glow/shape_splat_pixels.h"
#include "glow/tent_blur_pixels.h"
#include "image/convert_pixels.h"
#include "image/pixel_format.h"
#include "render/glow_settings.h"
#include "samples/scenes.h"
#include "simd/level.h"

namespace {

using namespace vireon;

constexpr std::int32_t kWidth = 1920;
constexpr std::int32_t kHeight = 1080;
constexpr std::int32_t kReduction = 4;

struct Pixels {
    Pixels(std::int32_t columns, std::int32_t rows)
        : values(static_cast<std::size_t>(columns) * static_cast<std::size_t>(rows) * kChannels),
          width(columns),
          height(rows) {}
    FloatImage view() {
        return {values.data(), width, height, static_cast<std::ptrdiff_t>(width) * kChannels * 4};
    }
    std::vector<float> values;
    std::int32_t width;
    std::int32_t height;
};

/// The night scene, alpha first.
const Pixels& Night() {
    static const Pixels night = [] {
        const scenes::Canvas scene =
            scenes::DrawNightCity(kWidth, kHeight, scenes::LightRange::kDisplay);
        Pixels pixels(kWidth, kHeight);
        float* out = pixels.values.data();
        for (int y = 0; y < kHeight; ++y) {
            for (int x = 0; x < kWidth; ++x, out += kChannels) {
                const scenes::Colour colour = scene.at(x, y);
                out[kAlpha] = 1.0f;
                out[kRed] = std::min(colour.red, 1.0f);
                out[kGreen] = std::min(colour.green, 1.0f);
                out[kBlue] = std::min(colour.blue, 1.0f);
            }
        }
        return pixels;
    }();
    return night;
}

/// Runs `stage` on a fresh copy of the night scene each time; the copy is not counted.
template <typename Stage>
void Measure(benchmark::State& state, Stage&& stage) {
    Pixels work = Night();
    for (auto _ : state) {
        state.PauseTiming();
        work.values = Night().values;
        state.ResumeTiming();
        stage(work.view());
        benchmark::DoNotOptimize(work.values.data());
        benchmark::ClobberMemory();
    }
}

void ConvertFrom8Bits(benchmark::State& state) {
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(kWidth) * kHeight * kChannels, 200);
    RasterLayout source;
    source.pixels = bytes.data();
    source.formatCode = kFormat8;
    source.width = kWidth;
    source.height = kHeight;
    source.rowBytes = kWidth * 4;
    source.bytesPerPixel = 4;
    Measure(state, [&](const FloatImage& image) { ConvertPixelsToFloat(source, image); });
}

void ConvertTo8Bits(benchmark::State& state) {
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(kWidth) * kHeight * kChannels);
    RasterLayout destination;
    destination.pixels = bytes.data();
    destination.formatCode = kFormat8;
    destination.width = kWidth;
    destination.height = kHeight;
    destination.rowBytes = kWidth * 4;
    destination.bytesPerPixel = 4;
    Measure(state, [&](const FloatImage& image) { ConvertPixelsFromFloat(image, destination); });
}

void ThresholdAndPower(benchmark::State& state) {
    Measure(state, [](const FloatImage& image) {
        SubtractThreshold(image, 0.5f, false);
        ShapeLight(image, 1.5f, 1.0f, false);
    });
}

void Widening(benchmark::State& state) {
    const WideningReach reach{static_cast<std::int32_t>(state.range(0)), 0.5f};
    std::vector<float> scratch(WideningScratchBytes(kWidth, reach) / sizeof(float));
    Measure(state, [&](const FloatImage& image) {
        WidenLight(image, reach, true, {}, scratch.data());
        WidenLight(image, reach, false, {}, scratch.data());
    });
}

/// The kernels of the active level; a benchmark of theirs has nothing to run at the plain one.
const simd::KernelTable* KernelsOrSkip(benchmark::State& state) {
    const simd::KernelTable* kernels = simd::ActiveKernels();
    if (kernels == nullptr) state.SkipWithError("the plain level has no kernels");
    return kernels;
}

void ThresholdAndPowerFast(benchmark::State& state) {
    const simd::KernelTable* kernels = KernelsOrSkip(state);
    if (kernels == nullptr) return;
    Measure(state, [&](const FloatImage& image) {
        SubtractThresholdAndShapeLight(*kernels, image, 0.5f, 1.5f, 1.0f, false);
    });
}

/// No light falls below the threshold, so that every float needs its power.
void PowerOfAll(benchmark::State& state) {
    Measure(state, [](const FloatImage& image) { ShapeLight(image, 1.5f, 1.0f, false); });
}

void PowerOfAllFast(benchmark::State& state) {
    const simd::KernelTable* kernels = KernelsOrSkip(state);
    if (kernels == nullptr) return;
    Measure(state,
            [&](const FloatImage& image) { ShapeLight(*kernels, image, 1.5f, 1.0f, false); });
}

void WideningFast(benchmark::State& state) {
    const simd::KernelTable* kernels = KernelsOrSkip(state);
    if (kernels == nullptr) return;
    const WideningReach reach{static_cast<std::int32_t>(state.range(0)), 0.5f};
    std::vector<float> scratch(WideningScratchBytes(kWidth, reach) / sizeof(float));
    Measure(state, [&](const FloatImage& image) {
        WidenLight(*kernels, image, reach, true, {}, scratch.data());
        WidenLight(*kernels, image, reach, false, {}, scratch.data());
    });
}

void EllipseMaskPass(benchmark::State& state) {
    const EllipseMask ellipse{kWidth / 2.0f, kHeight / 2.0f, 500.0f, 1.0f, 1.0f, 0.5f};
    Measure(state, [&](const FloatImage& image) {
        MultiplyByEllipse(image, ellipse, kWidth, kHeight, false);
    });
}

void EllipseMaskPassFast(benchmark::State& state) {
    const simd::KernelTable* kernels = KernelsOrSkip(state);
    if (kernels == nullptr) return;
    const EllipseMask ellipse{kWidth / 2.0f, kHeight / 2.0f, 500.0f, 1.0f, 1.0f, 0.5f};
    Measure(state, [&](const FloatImage& image) {
        MultiplyByEllipse(*kernels, image, ellipse, kWidth, kHeight, false);
    });
}

void AlphaMaskPass(benchmark::State& state) {
    Pixels mask = Night();
    Measure(state, [&](const FloatImage& image) {
        MultiplyByAlpha(image, mask.view(), kWidth, kHeight, false);
    });
}

void AlphaMaskPassFast(benchmark::State& state) {
    const simd::KernelTable* kernels = KernelsOrSkip(state);
    if (kernels == nullptr) return;
    Pixels mask = Night();
    Measure(state, [&](const FloatImage& image) {
        MultiplyByAlpha(*kernels, image, mask.view(), kWidth, kHeight, false);
    });
}

void ReduceBy4(benchmark::State& state) {
    Pixels small(kWidth / kReduction, kHeight / kReduction);
    Measure(state, [&](const FloatImage& image) { ReduceBilinear(image, small.view(), true); });
}

void EnlargeBy4(benchmark::State& state) {
    Pixels small(kWidth / kReduction, kHeight / kReduction);
    Measure(state, [&](const FloatImage& image) { ExpandNearest(small.view(), image); });
}

GlowKernel TentKernel() {
    GlowKernel kernel;
    kernel.allocate(256, 256);
    for (std::int32_t y = 0; y < 256; ++y) {
        for (std::int32_t x = 0; x < 256; ++x) {
            const auto distance =
                static_cast<float>(std::max(std::abs(x - 128), std::abs(y - 128)));
            kernel.values[static_cast<std::size_t>(y) * 256 + static_cast<std::size_t>(x)] =
                std::max(0.0f, 1.0f - distance / 127.0f);
        }
    }
    kernel.flagEmptyRows();
    return kernel;
}

void StampShapes4to1(benchmark::State& state) {
    const GlowKernel kernel = TentKernel();
    const Splat splat{&kernel, 0.1f, 25.0f, 25};
    Pixels small(kWidth / kReduction, kHeight / kReduction);
    ReduceBilinear(Pixels(Night()).view(), small.view(), true);
    SubtractThreshold(small.view(), 0.5f, false);
    ShapeLight(small.view(), 1.5f, 1.0f, false);
    Pixels glow(small.width, small.height);
    const ChannelFlags channels{{false, true, true, true}};
    for (auto _ : state) {
        for (std::int32_t y = 0; y < small.height; ++y) {
            SplatRow(small.view(), y, glow.view(), splat, SplatMember::kGeneral, channels);
        }
        benchmark::ClobberMemory();
    }
}

void TentBlur(benchmark::State& state) {
    const auto radius = static_cast<std::int32_t>(state.range(0));
    Pixels scratch(kWidth, kHeight);
    Measure(state, [&](const FloatImage& image) {
        TentBlurRGB(image, scratch.view(), radius, kAlongRows);
        TentBlurRGB(scratch.view(), image, radius, kAlongColumns);
    });
}

void TentBlurFast(benchmark::State& state) {
    const simd::KernelTable* kernels = KernelsOrSkip(state);
    if (kernels == nullptr) return;
    const auto radius = static_cast<std::int32_t>(state.range(0));
    Pixels scratch(kWidth, kHeight);
    Measure(state, [&](const FloatImage& image) {
        TentBlur(*kernels, image, scratch.view(), radius, {{false, true, true, true}});
    });
}

/// Glow with alpha and light above white.
template <typename Finish>
void MeasureFinish(benchmark::State& state, Finish&& finish) {
    Pixels bright = Night();
    for (float& value : bright.values) value *= 2.0f;
    const GlowSettings settings;
    Pixels work = bright;
    for (auto _ : state) {
        state.PauseTiming();
        work.values = bright.values;
        state.ResumeTiming();
        finish(work.view(), settings);
        benchmark::ClobberMemory();
    }
}

void FinishedGlow(benchmark::State& state) {
    Pixels source = Night();
    MeasureFinish(state, [&](const FloatImage& glow, const GlowSettings& settings) {
        FinishGlow(glow, source.view(), settings, false);
    });
}

void FinishedGlowFast(benchmark::State& state) {
    const simd::KernelTable* kernels = KernelsOrSkip(state);
    if (kernels == nullptr) return;
    Pixels source = Night();
    MeasureFinish(state, [&](const FloatImage& glow, const GlowSettings& settings) {
        FinishGlow(*kernels, glow, source.view(), settings, false);
    });
}

void Unpremultiplied(benchmark::State& state) {
    Measure(state, [](const FloatImage& image) { Unpremultiply(image); });
}

void UnpremultipliedFast(benchmark::State& state) {
    const simd::KernelTable* kernels = KernelsOrSkip(state);
    if (kernels == nullptr) return;
    Measure(state, [&](const FloatImage& image) { Unpremultiply(*kernels, image); });
}

/// Spans as long as those of fused frames and few, so that memory plays no part. Most frames are
/// `opaque`.
template <typename Blend>
void MeasureSpans(benchmark::State& state, bool opaque, Blend&& blend) {
    constexpr std::int32_t kSpan = 320;
    constexpr std::int32_t kSpans = 2;
    Pixels glow(kSpan, kSpans);
    Pixels source(kSpan, kSpans);
    const Pixels& night = Night();
    const std::ptrdiff_t values = static_cast<std::ptrdiff_t>(kSpan) * kSpans * kChannels;
    std::copy_n(night.values.end() - 2 * values, values, glow.values.begin());
    std::copy_n(night.values.end() - values, values, source.values.begin());
    if (!opaque) {
        for (std::ptrdiff_t i = 0; i < values; i += kChannels) {
            glow.values[static_cast<std::size_t>(i)] = static_cast<float>(i % 29) / 28.0f;
        }
    }
    Pixels work(kSpan, 1);
    for (auto _ : state) {
        for (std::int32_t y = 0; y < kSpans; ++y) {
            std::copy_n(glow.view().row(y), kSpan * kChannels, work.values.begin());
            blend(work.view(), FloatImage{source.view().row(y), kSpan, 1, 0});
            benchmark::ClobberMemory();
        }
    }
    state.counters["per pixel"] =
        benchmark::Counter(static_cast<double>(state.iterations()) * kSpan * kSpans,
                           benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

constexpr BlendSettings kFullOpacities{1.0f, 1.0f, false};

void Composite(benchmark::State& state, std::int32_t mode) {
    MeasureSpans(state, state.range(0) != 0, [&](const FloatImage& glow, const FloatImage& source) {
        BlendImages(mode, glow, source, kFullOpacities);
    });
}

void CompositeFast(benchmark::State& state, std::int32_t mode) {
    const simd::KernelTable* kernels = KernelsOrSkip(state);
    if (kernels == nullptr) return;
    MeasureSpans(state, state.range(0) != 0, [&](const FloatImage& glow, const FloatImage& source) {
        BlendImages(*kernels, mode, glow, source, kFullOpacities);
    });
}

BENCHMARK(ConvertFrom8Bits)->Unit(benchmark::kMillisecond);
BENCHMARK(ConvertTo8Bits)->Unit(benchmark::kMillisecond);
BENCHMARK(ThresholdAndPower)->Unit(benchmark::kMillisecond);
BENCHMARK(ThresholdAndPowerFast)->Name("ThresholdAndPower/fast")->Unit(benchmark::kMillisecond);
BENCHMARK(PowerOfAll)->Unit(benchmark::kMillisecond);
BENCHMARK(PowerOfAllFast)->Name("PowerOfAll/fast")->Unit(benchmark::kMillisecond);
BENCHMARK(Widening)->Arg(31)->Arg(125)->Unit(benchmark::kMillisecond);
BENCHMARK(WideningFast)->Name("Widening/fast")->Arg(31)->Arg(125)->Unit(benchmark::kMillisecond);
BENCHMARK(EllipseMaskPass)->Unit(benchmark::kMillisecond);
BENCHMARK(EllipseMaskPassFast)->Name("EllipseMaskPass/fast")->Unit(benchmark::kMillisecond);
BENCHMARK(AlphaMaskPass)->Unit(benchmark::kMillisecond);
BENCHMARK(AlphaMaskPassFast)->Name("AlphaMaskPass/fast")->Unit(benchmark::kMillisecond);
BENCHMARK(ReduceBy4)->Unit(benchmark::kMillisecond);
BENCHMARK(StampShapes4to1)->Unit(benchmark::kMillisecond);
BENCHMARK(EnlargeBy4)->Unit(benchmark::kMillisecond);
BENCHMARK(TentBlur)->Arg(4)->Arg(100)->Unit(benchmark::kMillisecond);
BENCHMARK(TentBlurFast)->Name("TentBlur/fast")->Arg(4)->Arg(100)->Unit(benchmark::kMillisecond);
BENCHMARK(FinishedGlow)->Unit(benchmark::kMillisecond);
BENCHMARK(FinishedGlowFast)->Name("FinishedGlow/fast")->Unit(benchmark::kMillisecond);
BENCHMARK(Unpremultiplied)->Unit(benchmark::kMillisecond);
BENCHMARK(UnpremultipliedFast)->Name("Unpremultiplied/fast")->Unit(benchmark::kMillisecond);

#define VIREON_COMPOSITE(name)                                                              \
    BENCHMARK_CAPTURE(Composite, name, kTransfer##name)->ArgName("opaque")->Arg(1)->Arg(0); \
    BENCHMARK_CAPTURE(CompositeFast, name, kTransfer##name)                                 \
        ->Name("Composite/" #name "/fast")                                                  \
        ->ArgName("opaque")                                                                 \
        ->Arg(1)                                                                            \
        ->Arg(0)
VIREON_COMPOSITE(Add);
VIREON_COMPOSITE(Behind);
VIREON_COMPOSITE(Screen);
VIREON_COMPOSITE(Overlay);
VIREON_COMPOSITE(ColorBurn);
VIREON_COMPOSITE(Hue);
VIREON_COMPOSITE(Color);
#undef VIREON_COMPOSITE

}  // namespace
