// The convolution alone, plain and at every level of the machine, one case after the other in one
// process. `per_texel` is the time over the texels of all stamps, those beyond the image included,
// whatever the form adds up in their place. Cases that take the plain form minutes are measured on
// a smaller picture as well. `longest_row_ms` is the longest time between two reports of
// progress.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "composite/brightness_pixels.h"
#include "glow/shape_splat_pixels.h"
#include "glow/stamp_convolution_pixels.h"
#include "samples/scenes.h"
#include "simd/level.h"

namespace {

using namespace vireon;

struct Map {
    Map(std::int32_t columns, std::int32_t rows)
        : values(static_cast<std::size_t>(columns) * static_cast<std::size_t>(rows) * kChannels),
          width(columns),
          height(rows) {}
    FloatImage view() {
        return {values.data(), width, height,
                static_cast<std::ptrdiff_t>(width) * kChannels *
                    static_cast<std::ptrdiff_t>(sizeof(float))};
    }
    std::vector<float> values;
    std::int32_t width;
    std::int32_t height;
};

enum class Depth { k8, kFloat };

/// A scene as light: cut off below the threshold, then to the power 1.5.
Map LightOf(const scenes::Canvas& scene, Depth depth, float threshold) {
    Map map(scene.width(), scene.height());
    float* out = map.values.data();
    for (int y = 0; y < scene.height(); ++y) {
        for (int x = 0; x < scene.width(); ++x, out += kChannels) {
            const scenes::Colour colour = scene.at(x, y);
            const float channels[] = {1.0f, colour.red, colour.green, colour.blue};
            for (std::int32_t c = 0; c < kChannels; ++c) {
                out[c] = depth == Depth::kFloat
                             ? channels[c]
                             : std::floor(std::min(channels[c], 1.0f) * 255.0f + 0.5f) / 255.0f;
            }
        }
    }
    if (threshold > 0.0f) SubtractThreshold(map.view(), threshold, false);
    ShapeLight(map.view(), 1.5f, 1.0f, false);
    return map;
}

Map Night(std::int32_t width, std::int32_t height, Depth depth, float threshold = 0.5f) {
    return LightOf(scenes::DrawNightCity(width, height, scenes::LightRange::kDisplay), depth,
                   threshold);
}

Map Noise(Depth depth) {
    return LightOf(scenes::DrawNoise(480, 270), depth, 0.0f);
}

Map White(std::int32_t width, std::int32_t height) {
    Map map(width, height);
    std::fill(map.values.begin(), map.values.end(), std::pow(0.5f, 1.5f));
    return map;
}

GlowKernel RoundKernel() {
    GlowKernel kernel;
    kernel.allocate(256, 256);
    for (std::int32_t y = 0; y < 256; ++y) {
        for (std::int32_t x = 0; x < 256; ++x) {
            const double distance = std::hypot(x - 128.0, y - 128.0) / 127.0;
            const double texel = std::max(0.0, 1.0 - distance);
            kernel.values[static_cast<std::size_t>(y) * 256 + static_cast<std::size_t>(x)] =
                static_cast<float>(texel * texel);
        }
    }
    kernel.flagEmptyRows();
    return kernel;
}

struct Case {
    const char* name;
    Map (*make)();
    float radius;
    bool plain;
};

const Case kCases[] = {
    {"night8_1to1_r50", [] { return Night(1920, 1080, Depth::k8); }, 50.0f, true},
    {"allNight8_1to1_r50", [] { return Night(1920, 1080, Depth::k8, 0.0f); }, 50.0f, true},
    {"nightFloat_1to1_r50", [] { return Night(1920, 1080, Depth::kFloat); }, 50.0f, true},
    {"night8_1to1_r500", [] { return Night(1920, 1080, Depth::k8); }, 500.0f, false},
    {"night8_4to1_r100", [] { return Night(480, 270, Depth::k8); }, 25.0f, true},
    {"night8_4to1_r1000", [] { return Night(480, 270, Depth::k8); }, 250.0f, true},
    {"nightFloat_4to1_r1000", [] { return Night(480, 270, Depth::kFloat); }, 250.0f, false},
    {"white_1to1_r50", [] { return White(1920, 1080); }, 50.0f, false},
    {"white_480x270_r50", [] { return White(480, 270); }, 50.0f, true},
    {"white_480x270_r250", [] { return White(480, 270); }, 250.0f, false},
    {"noise8_4to1_r100", [] { return Noise(Depth::k8); }, 25.0f, true},
    {"noiseFloat_4to1_r100", [] { return Noise(Depth::kFloat); }, 25.0f, true},
};

const ChannelFlags kColours{{false, true, true, true}};

void Measure(benchmark::State& state, const Case& which, simd::Level level) {
    static const GlowKernel kernel = RoundKernel();
    Map source = which.make();
    Map glow(source.width, source.height);
    const Splat splat{&kernel, 0.1f, which.radius, static_cast<std::int32_t>(which.radius + 0.5f)};
    const simd::KernelTable* kernels = simd::KernelsOf(level);
    ConvolutionReport report;
    double longest = 0.0;
    for (auto _ : state) {
        if (kernels == nullptr) {
            std::fill(glow.values.begin(), glow.values.end(), 0.0f);
            for (std::int32_t y = 0; y < source.height; ++y) {
                SplatRow(source.view(), y, glow.view(), splat, SplatMember::kGeneral, kColours);
            }
        } else {
            StampConvolution stamps(*kernels, source.view(), glow.view(), splat, kColours);
            for (std::int32_t y = 0; y < source.height; ++y) {
                const auto start = std::chrono::steady_clock::now();
                stamps.advance(static_cast<double>(y + 1) / source.height);
                const std::chrono::duration<double, std::milli> row =
                    std::chrono::steady_clock::now() - start;
                longest = std::max(longest, row.count());
            }
            report = stamps.report();
        }
        benchmark::ClobberMemory();
    }
    double texels = 0.0;
    for (const float& value : source.values) {
        const auto i = static_cast<std::size_t>(&value - source.values.data()) % kChannels;
        if (kColours.enabled[i]) {
            const StampSize size = StampSizeOf(value, splat);
            if (size.reach > 0) texels += size.texels();
        }
    }
    state.counters["texels"] = texels;
    state.counters["per_texel"] = benchmark::Counter(
        texels, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
    if (kernels != nullptr) {
        state.counters["longest_row_ms"] = longest;
        std::string forms;
        for (std::int32_t c = kRed; c <= kBlue; ++c) {
            forms += std::string(c == kRed ? "" : ", ") + FormName(report.channels[c].form);
        }
        state.SetLabel(forms);
    }
}

const bool kRegistered = [] {
    for (const Case& which : kCases) {
        for (const simd::Level level : simd::kLevels) {
            if (!simd::HasLevel(level) || (level == simd::Level::kPlain && !which.plain)) continue;
            const std::string name =
                std::string("Convolution/") + which.name + "/" + simd::LevelName(level);
            benchmark::RegisterBenchmark(name.c_str(), [&which, level](benchmark::State& state) {
                Measure(state, which, level);
            })->Unit(benchmark::kMillisecond);
        }
    }
    return true;
}();

}  // namespace
