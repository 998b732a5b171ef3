#include "benchmarks/speed_stages.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <optional>
#include <stdexcept>

#include "benchmarks/memory_host.h"
#include "composite/brightness_pixels.h"
#include "composite/widening_pixels.h"
#include "glow/shape_convolution.h"
#include "glow/tent_blur_pixels.h"
#include "host/plugin_raster_mem_impl.h"
#include "image/float_image.h"
#include "image/pixel_format.h"
#include "render/glow_settings.h"
#include "render/raster_ops.h"
#include "samples/scenes.h"
#include "shapes/glow_kernel.h"
#include "simd/kernel_table.h"

namespace vireon::bench {
namespace {

using scenes::Canvas;
using scenes::LightRange;

constexpr std::int32_t kWidth = 1920;
constexpr std::int32_t kHeight = 1080;
/// For a plain form that looks at every pixel within a long reach.
constexpr std::int32_t kHalfWidth = kWidth / 2;
constexpr std::int32_t kHalfHeight = kHeight / 2;
/// A 1080p frame at a quality of 4:1.
constexpr std::int32_t kReducedWidth = kWidth / 4;
constexpr std::int32_t kReducedHeight = kHeight / 4;
constexpr float kDefaultThreshold = 0.5f;
constexpr float kDefaultFalloff = 1.5f;

enum class Depth { k8, kFloat };

/// A float picture in the host's memory.
class Picture {
  public:
    Picture(MemoryHost& host, std::int32_t width, std::int32_t height)
        : raster_(host, width, height, kDepthFloat, error_), view_(ViewRaster(host, raster_)) {}

    PluginRaster_API& raster() { return raster_; }
    const FloatImage& view() const { return view_; }
    std::size_t bytes() const {
        return static_cast<std::size_t>(view_.width) * static_cast<std::size_t>(view_.height) *
               kChannels * sizeof(float);
    }
    /// Takes over the pixels of a picture of the same size.
    void copy(const Picture& other) {
        std::memcpy(view_.pixels, other.view_.pixels, std::min(bytes(), other.bytes()));
    }
    void draw(const Canvas& scene, Depth depth) {
        for (std::int32_t y = 0; y < view_.height; ++y) {
            for (std::int32_t x = 0; x < view_.width; ++x) {
                const scenes::Colour colour = scene.at(x, y);
                float* const pixel = view_.pixel(x, y);
                pixel[kAlpha] = 1.0f;
                pixel[kRed] = stored(colour.red, depth);
                pixel[kGreen] = stored(colour.green, depth);
                pixel[kBlue] = stored(colour.blue, depth);
            }
        }
    }
    /// What is above the threshold, to the power of the effect's default falloff.
    void makeLight(float threshold) {
        if (threshold > 0.0f) SubtractThreshold(view_, threshold, false);
        ShapeLight(view_, kDefaultFalloff, 1.0f, false);
    }

  private:
    static float stored(float value, Depth depth) {
        if (depth == Depth::kFloat) return value;
        return std::floor(std::clamp(value, 0.0f, 1.0f) * 255.0f + 0.5f) / 255.0f;
    }

    std::int32_t error_ = 0;
    PluginRaster_MEM_Impl raster_;
    FloatImage view_;
};

/// A round shape that falls to nothing at its rim.
GlowKernel RoundShape() {
    constexpr std::int32_t kSide = 256;
    GlowKernel shape;
    shape.allocate(kSide, kSide);
    for (std::int32_t y = 0; y < kSide; ++y) {
        for (std::int32_t x = 0; x < kSide; ++x) {
            const double texel =
                std::max(0.0, 1.0 - std::hypot(x - kSide / 2, y - kSide / 2) / (kSide / 2 - 1));
            shape.values[static_cast<std::size_t>(y) * kSide + static_cast<std::size_t>(x)] =
                static_cast<float>(texel * texel);
        }
    }
    shape.flagEmptyRows();
    return shape;
}

Canvas White(std::int32_t width, std::int32_t height) {
    Canvas canvas(width, height);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) canvas.set(x, y, {1.0f, 1.0f, 1.0f});
    }
    return canvas;
}

struct Convolution {
    const char* name;
    Canvas scene;
    Depth depth;
    float threshold;
    double radius;  ///< pixels of the picture that is convolved
    std::optional<double> required;
    std::string note;
    bool showTexels = false;
};

double TexelsOf(const ConvolutionReport& report) {
    double texels = 0.0;
    for (const auto& channel : report.channels) texels += channel.texels;
    return texels;
}

class StageTable {
  public:
    StageTable(const StageOptions& options, const Canvas& night)
        : options_(options), kernels_(simd::KernelsOf(options.level)) {
        if (kernels_ == nullptr) throw std::runtime_error("no fast form to measure");
        night_.draw(night, Depth::k8);
    }

    void convolution(const Convolution& which) {
        Picture light(host_, which.scene.width(), which.scene.height());
        Picture glow(host_, which.scene.width(), which.scene.height());
        light.draw(which.scene, which.depth);
        light.makeLight(which.threshold);
        ConvolutionReport report;
        const auto convolve = [&](const ConvolutionOptions& options) {
            GlowSettings settings;
            settings.setOutputChannels(0);
            settings.glowRadius = which.radius;
            const std::int32_t result = ConvolveShape(host_, light.raster(), glow.raster(), &shape_,
                                                      settings, 1.0f, options);
            if (result != 0) throw std::runtime_error("a convolution failed");
        };
        SpeedRow row;
        row.name = which.name;
        row.requiredRatio = which.required;
        measure(row,
                {.run =
                     [&] {
                         convolve({nullptr, nullptr});
                     }},
                {.run = [&] {
                    convolve({kernels_, &report});
                }});
        row.form = FormsOf(report);
        row.note = which.note;
        if (which.showTexels) {
            const double texels = TexelsOf(report);
            char text[120];
            std::snprintf(text, sizeof text,
                          "%.1f million texels, plain %.3f ns, ours %.4f ns each", texels * 1e-6,
                          row.plainMs * 1e6 / texels, row.oursMs * 1e6 / texels);
            row.note += text;
        }
        add(std::move(row));
    }

    /// What a convolution asks of the host for every row, by dark pictures that have nothing but
    /// rows: many of them against one.
    std::string costOfPolls(double radius) {
        const auto convolve = [&](Picture& light, Picture& glow) {
            GlowSettings settings;
            settings.setOutputChannels(0);
            settings.glowRadius = radius;
            ConvolveShape(host_, light.raster(), glow.raster(), &shape_, settings, 1.0f,
                          {kernels_, nullptr});
        };
        Picture manyRows(host_, 1, kHeight);
        Picture oneRow(host_, 1, 1);
        Picture manyRowsOfGlow(host_, 1, kHeight);
        Picture oneRowOfGlow(host_, 1, 1);
        manyRows.draw(Canvas(1, kHeight), Depth::k8);
        oneRow.draw(Canvas(1, 1), Depth::k8);
        const Pair pair =
            MeasureInTurns({.run = [&] { convolve(manyRows, manyRowsOfGlow); }},
                           {.run = [&] { convolve(oneRow, oneRowOfGlow); }}, options_.repeats);
        const double ms = pair.first - pair.second;
        char text[160];
        std::snprintf(text, sizeof text,
                      "Asking the host for leave and a scratch block, %d rows at a radius of %.0f: "
                      "%.3f ms, %.1f %% of the convolution of the night city.",
                      static_cast<int>(kHeight), radius, ms, 100.0 * ms / rows_.front().oursMs);
        return text;
    }

    void widening(std::int32_t reach, double required) {
        const WideningReach pixels{reach, 0.5f};
        Picture night(host_, kHalfWidth, kHalfHeight);
        night.draw(scenes::DrawNightCity(kHalfWidth, kHalfHeight, LightRange::kDisplay), Depth::k8);
        Picture work(host_, kHalfWidth, kHalfHeight);
        std::vector<float> scratch(WideningScratchBytes(kHalfWidth, pixels) / sizeof(float) + 1);
        const auto prepare = [&] { work.copy(night); };
        SpeedRow row;
        row.name = "widening, reach " + std::to_string(reach) + ", four channels";
        row.requiredRatio = required;
        row.note = "960x540 pixels for both; 1920x1080 take the plain form 4 times as long";
        measure(row,
                {.run =
                     [&] {
                         WidenLight(work.view(), pixels, true, {}, scratch.data());
                         WidenLight(work.view(), pixels, false, {}, scratch.data());
                     },
                 .prepare = prepare},
                {.run =
                     [&] {
                         WidenLight(*kernels_, work.view(), pixels, true, {}, scratch.data());
                         WidenLight(*kernels_, work.view(), pixels, false, {}, scratch.data());
                     },
                 .prepare = prepare});
        add(std::move(row));
    }

    void tentBlur(std::int32_t radius, double required) {
        Picture between(host_, kWidth, kHeight);
        between.copy(night_);
        const FloatImage& scratch = between.view();
        SpeedRow row;
        row.name = "tent blur, radius " + std::to_string(radius) + ", three channels";
        row.requiredRatio = required;
        measure(row, stage([&](const FloatImage& image) {
                    TentBlurRGB(image, scratch, radius, kAlongRows);
                    TentBlurRGB(scratch, image, radius, kAlongColumns);
                }),
                stage([&](const FloatImage& image) {
                    TentBlur(*kernels_, image, scratch, radius, {{false, true, true, true}});
                }));
        add(std::move(row));
    }

    std::vector<SpeedRow> take() { return std::move(rows_); }

  private:
    /// A stage that works in place, on a fresh copy of the night scene each time.
    template <typename Pass>
    Work stage(Pass pass) {
        return {.run = [this, pass] { pass(work_.view()); },
                .prepare = [this] { work_.copy(night_); }};
    }
    void measure(SpeedRow& row, const Work& plain, const Work& ours) const {
        const Pair pair = MeasureInTurns(plain, ours, options_.repeats);
        row.plainMs = pair.first;
        row.oursMs = pair.second;
        row.level = simd::LevelName(options_.level);
    }
    void add(SpeedRow row) {
        if (options_.onRow) options_.onRow(row);
        rows_.push_back(std::move(row));
    }

    const StageOptions& options_;
    const simd::KernelTable* kernels_;
    MemoryHost host_;
    GlowKernel shape_ = RoundShape();
    Picture night_{host_, kWidth, kHeight};
    Picture work_{host_, kWidth, kHeight};
    std::vector<SpeedRow> rows_;
};

}  // namespace

std::vector<SpeedRow> MeasureStages(const StageOptions& options,
                                    std::vector<std::string>& remarks) {
    const Canvas night = scenes::DrawNightCity(kWidth, kHeight, LightRange::kDisplay);
    const Canvas reducedNight =
        scenes::DrawNightCity(kReducedWidth, kReducedHeight, LightRange::kDisplay);
    const Canvas noise = scenes::DrawNoise(kReducedWidth, kReducedHeight);
    StageTable table(options, night);
    table.convolution({"convolution, night city, 1:1, radius 50", night, Depth::k8,
                       kDefaultThreshold, 50.0, 25.0, "", true});
    table.convolution({"convolution, all of the night city", night, Depth::k8, 0.0f, 50.0,
                       std::nullopt, "1:1, radius 50, threshold 0; ", true});
    table.convolution({"convolution, white, 1:1, radius 50", White(kReducedWidth, kReducedHeight),
                       Depth::k8, kDefaultThreshold, 50.0, 300.0,
                       "480x270 pixels for both; 1920x1080 take the plain form 16 times as long"});
    table.convolution({"convolution, noise, 4:1, radius 100", noise, Depth::k8, 0.0f, 25.0, 12.0,
                       "threshold 0: every pixel of the 480x270 glows"});
    table.convolution({"convolution, float noise, 4:1, radius 100", noise, Depth::kFloat, 0.0f,
                       25.0, 4.0, "threshold 0 and no two values the same"});
    table.convolution({"convolution, night city, 4:1, radius 100", reducedNight, Depth::k8,
                       kDefaultThreshold, 25.0, std::nullopt, "", true});
    table.convolution({"convolution, night city, 4:1, radius 1000", reducedNight, Depth::k8,
                       kDefaultThreshold, 250.0, std::nullopt, "", true});
    remarks.push_back(table.costOfPolls(50.0));
    table.widening(125, 60.0);
    table.tentBlur(4, 12.0);
    table.tentBlur(100, 12.0);
    remarks.emplace_back(
        "Convolutions add up the three colours; 4:1 means 480x270 pixels and a quarter of the "
        "radius. Widening and blur are rows and columns, the blur of 1920x1080.");
    return table.take();
}

std::string FormsOf(const ConvolutionReport& report) {
    std::string forms;
    std::string last;
    for (const std::int32_t c : {kRed, kGreen, kBlue, kAlpha}) {
        const std::string form = FormName(report.channels[c].form);
        const bool isOff = report.channels[c].form == ConvolutionForm::kNone;
        if (form == last || isOff) continue;
        forms += (forms.empty() ? "" : ", ") + form;
        last = form;
    }
    return forms.empty() ? FormName(ConvolutionForm::kNone) : forms;
}

}  // namespace vireon::bench
