#include "tools/look/measures.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <ctime>
#include <limits>
#include <stdexcept>

#include "samples/catalogue.h"
#include "tools/look/effect.h"

namespace vireon::look {

namespace {

using headless::Depth;
using scenes::LightRange;

// Radii are meant for pictures of this height.
constexpr double kDesignHeight = 1080.0;

// For what takes many frames a scene: one of many small lights, one of lines, one of large areas.
constexpr std::array<const char*, 3> kFewScenes{"night", "neon", "sunlit"};

double ScaleOf(const Subject& subject) {
    return subject.height / kDesignHeight;
}

const scenes::Scene& SceneNamed(const char* name) {
    const scenes::Scene* scene = scenes::FindScene(name);
    if (scene == nullptr) throw std::runtime_error(std::string("there is no scene ") + name);
    return *scene;
}

std::shared_ptr<headless::World> Drawn(const Subject& subject, const scenes::Scene& scene,
                                       LightRange range, Depth depth, int frame = 0) {
    return LayerOf(scene.draw({subject.width, subject.height, range, frame}), depth);
}

std::shared_ptr<headless::World> Displayed(const Subject& subject, const char* scene, Depth depth) {
    return Drawn(subject, SceneNamed(scene), LightRange::kDisplay, depth);
}

double GlowLight(Effect& effect, const std::shared_ptr<headless::World>& layer) {
    return LightOf(PictureOf(*effect.render(layer)));
}

double ProcessorMilliseconds() {
    return 1000.0 * static_cast<double>(std::clock()) / CLOCKS_PER_SEC;
}

}  // namespace

std::vector<BrightnessRow> MeasureBrightness(const Subject& subject) {
    Effect effect(*subject.library, ScaleOf(subject));
    std::vector<BrightnessRow> rows;
    const auto measure = [&](const scenes::Scene& scene, LightRange range, Depth depth,
                             const char* kind) {
        const auto layer = Drawn(subject, scene, range, depth);
        rows.push_back({std::string(scene.name) + kind, BrightnessOf(PictureOf(*layer)),
                        BrightnessOf(PictureOf(*effect.render(layer)))});
    };
    for (const scenes::Scene& scene : scenes::Scenes()) {
        measure(scene, LightRange::kDisplay, Depth::k8, ", 8 bits");
    }
    for (const char* name : {"night", "neon", "stars", "sunlit"}) {
        measure(SceneNamed(name), LightRange::kOverbright, Depth::kFloat, ", float");
    }
    return rows;
}

std::vector<HaloRow> MeasureHalos(const Subject& subject) {
    Effect effect(*subject.library, ScaleOf(subject));
    effect.choose("Quality", effect.entries("Quality").front());
    std::vector<HaloRow> rows;
    const double scale = ScaleOf(subject);
    for (const double radius : {2.0, 4.0, 8.0, 16.0}) {
        scenes::Canvas canvas(subject.width, subject.height);
        const scenes::Point centre{0.5 * subject.width, 0.5 * subject.height};
        scenes::FillDisc(canvas, centre, radius * scale, {1.0f, 1.0f, 1.0f});
        const Picture after = PictureOf(*effect.render(LayerOf(canvas, Depth::k8)));
        const auto ring = [&](double inner, double outer) {
            return LightInRing(after, centre, (radius + inner) * scale, (radius + outer) * scale);
        };
        rows.push_back({radius, ring(2.0, 10.0), ring(10.0, 30.0)});
    }
    return rows;
}

ShapeTable MeasureShapes(const Subject& subject) {
    Effect effect(*subject.library, ScaleOf(subject));
    effect.showGlowAlone();
    ShapeTable table;
    for (const std::string& shape : effect.entries("Shape")) {
        if (shape != "Custom Glow Shape") table.rows.push_back({shape, {}});
    }
    for (const char* scene : kFewScenes) {
        const auto layer = Displayed(subject, scene, Depth::kFloat);
        double sum = 0.0;
        double least = std::numeric_limits<double>::infinity();
        double most = 0.0;
        for (ShapeRow& row : table.rows) {
            effect.choose("Shape", row.shape);
            const double light = GlowLight(effect, layer);
            row.light.push_back(light);
            sum += light;
            least = std::min(least, light);
            most = std::max(most, light);
        }
        const double mean = sum / static_cast<double>(table.rows.size());
        for (ShapeRow& row : table.rows) row.light.back() /= mean;
        table.scenes.emplace_back(scene);
        table.spread.push_back(most / least - 1.0);
    }
    return table;
}

std::vector<FlickerRow> MeasureFlicker(const Subject& subject) {
    Effect effect(*subject.library, ScaleOf(subject));
    effect.showGlowAlone();
    std::vector<FlickerRow> rows;
    for (const std::string& quality : effect.entries("Quality"))
        rows.emplace_back().quality = quality;
    std::vector<std::vector<double>> light(rows.size());
    const scenes::Scene& moving = SceneNamed("moving");
    for (int frame = 0; frame < moving.frames; ++frame) {
        const auto layer = Drawn(subject, moving, LightRange::kDisplay, Depth::kFloat, frame);
        for (std::size_t i = 0; i < rows.size(); ++i) {
            effect.choose("Quality", rows[i].quality);
            light[i].push_back(GlowLight(effect, layer));
        }
    }
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const std::size_t frames = light[i].size();
        double mean = 0.0;
        for (const double frame : light[i]) mean += frame / static_cast<double>(frames);
        for (std::size_t frame = 0; frame < frames; ++frame) {
            // The scene goes on with its first frame after its last.
            const double change = std::abs(light[i][(frame + 1) % frames] - light[i][frame]) / mean;
            rows[i].mean += change / static_cast<double>(frames);
            rows[i].most = std::max(rows[i].most, change);
        }
    }
    return rows;
}

std::vector<PreviewRow> MeasurePreviews(const Subject& subject) {
    Effect effect(*subject.library, ScaleOf(subject));
    std::vector<PreviewRow> rows;
    for (const char* scene : kFewScenes) {
        const auto layer = Displayed(subject, scene, Depth::k8);
        const Picture full = PictureOf(*effect.render(layer));
        for (const int factor : {2, 4}) {
            effect.preview(factor);
            const Picture preview = PictureOf(*effect.render(Reduced(*layer, factor)));
            const Picture expected = Reduced(full, factor);
            rows.push_back({scene, factor, DifferenceOf(preview, expected),
                            BrightnessOf(preview).mean / BrightnessOf(expected).mean});
        }
        effect.reset();
    }
    return rows;
}

std::vector<QualityRow> MeasureQualities(const Subject& subject) {
    Effect effect(*subject.library, ScaleOf(subject));
    const std::vector<std::string> qualities = effect.entries("Quality");
    constexpr int kTimes = 3;
    std::vector<QualityRow> rows;
    for (const char* scene : kFewScenes) {
        const auto layer = Displayed(subject, scene, Depth::k8);
        const auto floats = Displayed(subject, scene, Depth::kFloat);
        Picture finest;
        double finestLight = 0.0;
        for (const std::string& quality : qualities) {
            effect.reset();
            effect.choose("Quality", quality);
            QualityRow row;
            row.scene = scene;
            row.quality = quality;
            std::shared_ptr<headless::World> output;
            row.milliseconds = std::numeric_limits<double>::infinity();
            for (int i = 0; i < kTimes; ++i) {
                const double start = ProcessorMilliseconds();
                output = effect.render(layer);
                row.milliseconds = std::min(row.milliseconds, ProcessorMilliseconds() - start);
            }
            const Picture picture = PictureOf(*output);
            effect.showGlowAlone();
            const double light = GlowLight(effect, floats);
            if (finest.samples.empty()) {
                finest = picture;
                finestLight = light;
            }
            row.difference = DifferenceOf(picture, finest);
            row.light = light / finestLight;
            rows.push_back(std::move(row));
        }
    }
    return rows;
}

}  // namespace vireon::look
