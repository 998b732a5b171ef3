#include "benchmarks/speed_frames.h"

#include <cstdio>
#include <cstdlib>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "benchmarks/bench_host.h"
#include "benchmarks/memory_host.h"
#include "benchmarks/speed_stages.h"
#include "composite/sampled_light_pixels.h"
#include "glow/convolution_report.h"
#include "glow/stamp_convolution_pixels.h"
#include "headless/host.h"
#include "headless/pixel_block.h"
#include "image/pixel_format.h"
#include "samples/scenes.h"
#include "shapes/shape_library.h"

namespace vireon::bench {
namespace {

namespace fs = std::filesystem;
using headless::Depth;
using headless::World;
using scenes::Canvas;
using scenes::LightRange;

constexpr int kWidth = 1920;
constexpr int kHeight = 1080;
/// Of the default quality.
constexpr std::int32_t kReduction = 4;
/// A frame of four times the area may take that much and some more for the caches.
constexpr double kMostGrowth = 4.5;

void SetVariable(const char* name, const std::string& value) {
#if defined(_WIN32)
    _putenv_s(name, value.c_str());
#else
    setenv(name, value.c_str(), 1);
#endif
}

Canvas Filled(scenes::Colour colour) {
    Canvas canvas(kWidth, kHeight);
    for (int y = 0; y < kHeight; ++y) {
        for (int x = 0; x < kWidth; ++x) canvas.set(x, y, colour);
    }
    return canvas;
}

/// The matte of a title: strokes as letters have them, soft lights behind, nothing elsewhere.
Canvas TitleMatte() {
    Canvas matte(kWidth, kHeight);
    constexpr scenes::Colour kOn{1.0f, 1.0f, 1.0f};
    for (int letter = 0; letter < 9; ++letter) {
        const double left = 210.0 + letter * 170.0;
        scenes::AddSoftLight(matte, {left + 60.0, 540.0}, 220.0, {0.3f, 0.3f, 0.3f});
        scenes::DrawLine(matte, {left, 400.0}, {left + 40.0, 680.0}, 26.0, kOn);
        scenes::DrawLine(matte, {left + 40.0, 680.0}, {left + 110.0, 400.0}, 26.0, kOn);
        scenes::DrawCircle(matte, {left + 60.0, 300.0}, 40.0, 14.0, kOn);
    }
    return matte;
}

std::shared_ptr<World> TitleLayer(const Canvas& picture) {
    const Canvas matte = TitleMatte();
    auto world = MakeLayer(picture, Depth::k8);
    for (int y = 0; y < kHeight; ++y) {
        for (int x = 0; x < kWidth; ++x) {
            sdk::PF_PixelFloat color = world->color(x, y);
            color.alpha = matte.at(x, y).red;
            world->setColor(x, y, color);
        }
    }
    return world;
}

void Expect(bool good, const std::string& report) {
    if (!good) throw std::runtime_error("a frame failed: " + report);
}

/// The effect's default settings on one layer, rendered again and again.
class Film {
  public:
    Film(const headless::EffectLibrary& library, std::shared_ptr<World> layer)
        : host_(library, quietSettings()), depth_(layer->depth()) {
        for (const auto& result : host_.setUp()) Expect(result.error == 0, result.report());
        host_.setInput(std::move(layer));
        request_ = host_.fullRequest(depth_);
    }
    void render() {
        const headless::RenderOutcome outcome = host_.renderSmart(request_);
        Expect(outcome.error() == 0 && outcome.output != nullptr, outcome.report());
    }
    std::size_t peakBytes() {
        host_.resetPeak();
        render();
        return host_.peakBytes();
    }

  private:
    static headless::HostSettings quietSettings() {
        headless::HostSettings settings;
        // The host's own checks are no part of what is measured.
        settings.checkInputs = false;
        settings.scribble = false;
        return settings;
    }

    headless::Host host_;
    Depth depth_;
    headless::RenderRequest request_;
};

/// Copies of the library by the level that each has taken.
class Libraries {
  public:
    Libraries(const fs::path& plugin, const fs::path& work)
        : plugin_(fs::absolute(plugin)), work_(fs::absolute(work)) {
        if (std::getenv(kBrushFolderVariable) == nullptr) {
            SetVariable(kBrushFolderVariable,
                        (plugin_.parent_path() / "Vireon" / "Brush").make_preferred().string());
        }
    }

    const headless::EffectLibrary& at(simd::Level level) {
        const auto found = libraries_.find(level);
        if (found != libraries_.end()) return found->second;
        const fs::path folder = work_ / simd::LevelName(level);
        fs::create_directories(folder);
        const fs::path copy = (folder / plugin_.filename()).make_preferred();
        // Removed first: MinGW's library never overwrites a file, whatever it is asked for.
        fs::remove(copy);
        fs::copy_file(plugin_, copy);
        SetVariable(simd::kLevelVariable, simd::LevelName(level));
        const auto& library = libraries_.emplace(level, copy.string()).first->second;
        // The level is found out by the first frame that has light, and stays.
        Film(library, MakeLayer(scenes::DrawLights(64, 64, LightRange::kDisplay), Depth::k8))
            .render();
        return library;
    }

  private:
    fs::path plugin_;
    fs::path work_;
    std::map<simd::Level, headless::EffectLibrary> libraries_;
};

/// The forms that the convolution of such a frame takes: what the library does with it, done here
/// where it can be asked.
std::string FormsOfFrame(const World& layer, const simd::KernelTable& kernels) {
    RasterLayout source;
    source.pixels = layer.record().data;
    source.formatCode = layer.depth() == Depth::k8 ? kFormat8 : kFormatFloat;
    source.width = layer.width();
    source.height = layer.height();
    source.rowBytes = layer.record().rowbytes;
    source.bytesPerPixel = BytesPerPixel(DepthOfFormat(source.formatCode));

    const std::int32_t width = source.width / kReduction;
    const std::int32_t height = source.height / kReduction;
    std::vector<float> light(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) *
                             kChannels);
    std::vector<float> glow(light.size());
    const std::ptrdiff_t rowBytes =
        static_cast<std::ptrdiff_t>(width) * kChannels * static_cast<std::ptrdiff_t>(sizeof(float));
    const FloatImage map{light.data(), width, height, rowBytes};
    const SampledLight extraction{
        source.width, source.height, 0, 0.5f, 1.5f, 1.0f, LightSampling::kBilinear, false};
    ExtractSampledLight(kernels, source, extraction, map);

    MemoryHost host;
    LoadShapesOnce(host);
    constexpr std::int32_t kRadius = 100 / kReduction;
    const Splat splat{LibraryShape(0), 0.1f, static_cast<float>(kRadius), kRadius};
    if (splat.kernel == nullptr || !splat.kernel->hasTexels()) return {};
    ChannelFlags channels;
    channels.enabled[kAlpha] = layer.color(0, 0).alpha < 1.0f;
    StampConvolution convolution(kernels, map, {glow.data(), width, height, rowBytes}, splat,
                                 channels);
    convolution.advance(1.0);
    return FormsOf(convolution.report());
}

struct Case {
    const char* name;
    std::optional<double> required;
    simd::Level level;
};

class FrameTable {
  public:
    explicit FrameTable(const FrameOptions& options)
        : options_(options), libraries_(options.plugin, options.work) {}

    void measure(const Case& frame, const std::shared_ptr<World>& layer) {
        Film plain(libraries_.at(simd::Level::kPlain), layer);
        Film ours(libraries_.at(frame.level), layer);
        const Pair pair = MeasureInTurns({.run = [&] { plain.render(); }},
                                         {.run = [&] { ours.render(); }}, options_.repeats);
        SpeedRow row;
        row.name = frame.name;
        row.plainMs = pair.first;
        row.oursMs = pair.second;
        row.requiredRatio = frame.required;
        row.level = simd::LevelName(frame.level);
        row.form = FormsOfFrame(*layer, *simd::KernelsOf(frame.level));
        row.plainPeakBytes = plain.peakBytes();
        row.oursPeakBytes = ours.peakBytes();
        if (options_.onRow) options_.onRow(row);
        rows_.push_back(std::move(row));
    }
    /// How many times longer the second layer takes than the first, both by one level.
    double growth(simd::Level level, const std::shared_ptr<World>& from,
                  const std::shared_ptr<World>& to) {
        Film small(libraries_.at(level), from);
        Film large(libraries_.at(level), to);
        const Pair pair = MeasureInTurns({.run = [&] { small.render(); }},
                                         {.run = [&] { large.render(); }}, options_.repeats);
        return pair.second / pair.first;
    }
    /// Milliseconds that a frame of each side takes more when the host's memory comes fresh from
    /// the system than when the host keeps what was given back.
    Pair allocation(simd::Level level, const std::shared_ptr<World>& layer) {
        const auto costOf = [&](simd::Level side) {
            Film film(libraries_.at(side), layer);
            const auto render = [&] { film.render(); };
            const Pair pair = MeasureInTurns(
                {.run = render, .prepare = render},
                {.run = render, .prepare = [] { headless::PixelBlock::trim(); }}, options_.repeats);
            return pair.second - pair.first;
        };
        return {costOf(simd::Level::kPlain), costOf(level)};
    }
    std::vector<SpeedRow> take() { return std::move(rows_); }

  private:
    const FrameOptions& options_;
    Libraries libraries_;
    std::vector<SpeedRow> rows_;
};

}  // namespace

std::vector<SpeedRow> MeasureFrames(const FrameOptions& options,
                                    std::vector<std::string>& remarks) {
    const simd::Level level = options.level;
    FrameTable table(options);
    const Canvas night = scenes::DrawNightCity(kWidth, kHeight, LightRange::kDisplay);
    const auto nightLayer = MakeLayer(night, Depth::k8);
    table.measure({"night city, 8 bits", 12.0, level}, nightLayer);
    table.measure({"white, 8 bits", 30.0, level}, MakeLayer(Filled({1.0f, 1.0f, 1.0f}), Depth::k8));
    table.measure({"black, 8 bits", std::nullopt, level},
                  MakeLayer(Filled({0.0f, 0.0f, 0.0f}), Depth::k8));
    table.measure({"dense noise, 8 bits", 15.0, level},
                  MakeLayer(scenes::DrawNoise(kWidth, kHeight), Depth::k8));
    table.measure(
        {"night city, float, lights to 20", 10.0, level},
        MakeLayer(scenes::DrawNightCity(kWidth, kHeight, LightRange::kOverbright), Depth::kFloat));
    table.measure({"transparent title, 8 bits", 10.0, level}, TitleLayer(night));
    // The levels below show what machines without the widest instructions get.
    if (level > simd::Level::kAvx2) {
        table.measure({"night city, 8 bits, AVX2", 12.0, simd::Level::kAvx2}, nightLayer);
    }
    if (level > simd::Level::kSse2) {
        table.measure({"night city, 8 bits, SSE2", 6.0, simd::Level::kSse2}, nightLayer);
    }
    const auto largeLayer =
        MakeLayer(scenes::DrawNightCity(2 * kWidth, 2 * kHeight, LightRange::kDisplay), Depth::k8);
    table.measure({"night city, 8 bits, 3840x2160", std::nullopt, level}, largeLayer);
    const double growth = table.growth(level, nightLayer, largeLayer);
    char text[160];
    std::snprintf(text, sizeof text,
                  "Four times the pixels (3840x2160) take %.2f times as long; at most %.1f: %s.",
                  growth, kMostGrowth, growth <= kMostGrowth ? "met" : "NOT met");
    remarks.emplace_back(text);
    const Pair fresh = table.allocation(level, nightLayer);
    std::snprintf(
        text, sizeof text,
        "Memory fresh from the system adds %.1f ms to the plain night city and %.1f ms to "
        "ours; no frame above holds any.",
        fresh.first, fresh.second);
    remarks.emplace_back(text);
    remarks.emplace_back(
        "Frames are 1920x1080 unless named otherwise, at the effect's default settings: radius "
        "100, quality 4:1, all four channels. Peaks are host memory in use at once.");
    return table.take();
}

}  // namespace vireon::bench
