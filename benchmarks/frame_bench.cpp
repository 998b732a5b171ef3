// Whole frames at 1080p, driven through the built library as a host drives it. The first render,
// which reads the brushes and warms the host's memory, is left out.

#include <benchmark/benchmark.h>

#include <stdexcept>

#include "benchmarks/bench_host.h"
#include "render/parameter_ids.h"
#include "samples/scenes.h"

namespace {

using namespace vireon;
using headless::Depth;

constexpr int kWidth = 1920;
constexpr int kHeight = 1080;
constexpr double kMaskRadius = 500.0;
constexpr double kMaskFalloff = 0.5;

scenes::Canvas NightScene(Depth depth) {
    const bool overbright = depth == Depth::kFloat;
    return scenes::DrawNightCity(
        kWidth, kHeight,
        overbright ? scenes::LightRange::kOverbright : scenes::LightRange::kDisplay);
}

const scenes::Canvas& NoiseScene() {
    static const scenes::Canvas scene = scenes::DrawNoise(kWidth, kHeight);
    return scene;
}

struct FrameSettings {
    Depth depth;
    std::int32_t quality;  ///< choice from 1
    double radius;
    std::int32_t transferMode = 5;  ///< choice from 1, of a popup with separators: Add
    bool mask = false;              ///< an ellipse, which goes through the stages one by one
};

constexpr std::int32_t kHueChoice = 20;

void RenderFrames(benchmark::State& state, const scenes::Canvas& scene,
                  const FrameSettings& settings) {
    headless::HostSettings hostSettings;
    // The host's own checks are no part of what is measured.
    hostSettings.checkInputs = false;
    hostSettings.scribble = false;
    headless::Host host(bench::Plugin(), hostSettings);
    for (const auto& result : host.setUp()) {
        if (result.error != 0) throw std::runtime_error(result.report());
    }
    host.setInput(bench::MakeLayer(scene, settings.depth));
    host.setPopup(kParamQuality, settings.quality);
    host.setFloatSlider(kParamGlowRadius, settings.radius);
    host.setPopup(kParamTransferMode, settings.transferMode);
    host.setCheckbox(kParamEnableMask, settings.mask);
    host.setFloatSlider(kParamMaskRadius, kMaskRadius);
    host.setFloatSlider(kParamMaskFalloff, kMaskFalloff);
    const headless::RenderRequest request = host.fullRequest(settings.depth);
    host.renderSmart(request);

    host.resetPeak();
    for (auto _ : state) {
        const headless::RenderOutcome outcome = host.renderSmart(request);
        if (outcome.error() != 0) {
            state.SkipWithError(outcome.report().c_str());
            break;
        }
    }
    state.counters["peak_MiB"] = static_cast<double>(host.peakBytes()) / (1024.0 * 1024.0);
}

void NightFrame(benchmark::State& state, FrameSettings settings) {
    RenderFrames(state, NightScene(settings.depth), settings);
}

void NoiseFrame(benchmark::State& state, FrameSettings settings) {
    RenderFrames(state, NoiseScene(), settings);
}

#define VIREON_FRAME_BENCH(scene, name, ...)                   \
    BENCHMARK_CAPTURE(scene, name, FrameSettings{__VA_ARGS__}) \
        ->Unit(benchmark::kMillisecond)                        \
        ->MinTime(1.0)

VIREON_FRAME_BENCH(NightFrame, 1to1_radius25_8bit, Depth::k8, 1, 25.0);
VIREON_FRAME_BENCH(NightFrame, 4to1_radius100_8bit, Depth::k8, 3, 100.0);
VIREON_FRAME_BENCH(NightFrame, 16to1_radius100_8bit, Depth::k8, 5, 100.0);
VIREON_FRAME_BENCH(NightFrame, 4to1_radius100_16bit, Depth::k16, 3, 100.0);
VIREON_FRAME_BENCH(NightFrame, 4to1_radius100_float, Depth::kFloat, 3, 100.0);
VIREON_FRAME_BENCH(NightFrame, 4to1_radius100_8bit_hue, Depth::k8, 3, 100.0, kHueChoice);
VIREON_FRAME_BENCH(NightFrame, 4to1_radius100_8bit_mask, Depth::k8, 3, 100.0, 5, true);
VIREON_FRAME_BENCH(NoiseFrame, 1to1_radius25_8bit, Depth::k8, 1, 25.0);
VIREON_FRAME_BENCH(NoiseFrame, 4to1_radius100_8bit, Depth::k8, 3, 100.0);
VIREON_FRAME_BENCH(NoiseFrame, 16to1_radius100_8bit, Depth::k8, 5, 100.0);

}  // namespace
