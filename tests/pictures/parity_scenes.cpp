#include "tests/pictures/parity_scenes.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>

#include "render/parameter_ids.h"
#include "samples/scenes.h"

namespace vireon::pictures {
namespace {

using headless::Picture;
using headless::RenderJob;
using scenes::Canvas;
using scenes::LightRange;

constexpr int kWidth = 160;
constexpr int kHeight = 90;

template <typename Channel>
Channel Store(float value, float white) {
    return static_cast<Channel>(std::clamp(value * white + 0.5f, 0.0f, white));
}

/// Alpha as a function of the place.
using Alpha = std::function<float(int x, int y)>;

Picture ToPicture(const Canvas& canvas, std::int32_t bits, const Alpha& alpha) {
    Picture picture(canvas.width(), canvas.height(), bits);
    for (int y = 0; y < canvas.height(); ++y) {
        for (int x = 0; x < canvas.width(); ++x) {
            const scenes::Colour colour = canvas.at(x, y);
            const float pixel[] = {alpha(x, y), colour.red, colour.green, colour.blue};
            for (int c = 0; c < 4; ++c) {
                const int at = x * 4 + c;
                switch (bits) {
                    case 8:
                        picture.row<std::uint8_t>(y)[at] = Store<std::uint8_t>(pixel[c], 255.0f);
                        break;
                    case 16:
                        picture.row<std::uint16_t>(y)[at] =
                            Store<std::uint16_t>(pixel[c], 32768.0f);
                        break;
                    default: picture.row<float>(y)[at] = pixel[c]; break;
                }
            }
        }
    }
    return picture;
}

float Opaque(int, int) {
    return 1.0f;
}
float Ramp(int x, int y) {
    return static_cast<float>((x * 3 + y * 5) % 256) / 255.0f;
}
float Disc(int x, int y) {
    const auto distance = std::hypot(static_cast<float>(x) - 40.0f, static_cast<float>(y) - 30.0f);
    return std::clamp(1.0f - distance / 40.0f, 0.0f, 1.0f);
}

class SceneBuilder {
  public:
    SceneBuilder(std::string name, const Canvas& canvas, std::int32_t bits,
                 const Alpha& alpha = Opaque) {
        scene_.name = std::move(name);
        scene_.job.bits = bits;
        scene_.job.input = ToPicture(canvas, bits, alpha);
    }
    SceneBuilder& set(ParameterIndex index, double value) {
        scene_.job.values[index] = {value, 0.0};
        return *this;
    }
    SceneBuilder& layer(ParameterIndex index, const Canvas& canvas, const Alpha& alpha) {
        scene_.job.layers[index] = ToPicture(canvas, scene_.job.bits, alpha);
        return *this;
    }
    RenderJob& job() { return scene_.job; }
    ParityScene done() { return std::move(scene_); }

  private:
    ParityScene scene_;
};

/// Pixels that no camera makes.
void Spoil(Picture& picture) {
    if (picture.bits != 32) return;
    picture.row<float>(10)[4 * 20 + 1] = std::numeric_limits<float>::infinity();
    picture.row<float>(20)[4 * 30 + 2] = -std::numeric_limits<float>::infinity();
    picture.row<float>(30)[4 * 40 + 3] = std::numeric_limits<float>::quiet_NaN();
    picture.row<float>(40)[4 * 50 + 1] = -3.0f;
    picture.row<float>(50)[4 * 60 + 1] = 1e30f;
}

}  // namespace

std::vector<ParityScene> ParityScenes(std::int32_t bits) {
    const LightRange range = bits == 32 ? LightRange::kOverbright : LightRange::kDisplay;
    const Canvas night = scenes::DrawNightCity(kWidth, kHeight, range);
    const Canvas lights = scenes::DrawLights(kWidth, kHeight, range);
    const Canvas noise = scenes::DrawNoise(kWidth, kHeight);
    const Canvas small = scenes::DrawLights(48, 48, range);

    std::vector<ParityScene> list;
    const auto add = [&](SceneBuilder builder) { list.push_back(builder.done()); };
    add(SceneBuilder("defaults", night, bits));
    add(SceneBuilder("full quality, no falloff", lights, bits)
            .set(kParamQuality, 1)
            .set(kParamGlowFalloff, 1)
            .set(kParamGlowRadius, 30));
    add(SceneBuilder("fractional power of noise", noise, bits)
            .set(kParamGlowFalloff, 2.37)
            .set(kParamThreshold, 12.5)
            .set(kParamGlowRadius, 20));
    add(SceneBuilder("transparent layer", night, bits, Ramp).set(kParamTransferMode, 3));
    add(SceneBuilder("glow alone, soft clip at half", lights, bits)
            .set(kParamTransferMode, 1)
            .set(kParamGlowIntensity, 60)
            .set(kParamOverbrightClamp, 50));
    add(SceneBuilder("luminance through an ellipse", night, bits)
            .set(kParamInputChannels, 4)
            .set(kParamThreshold, 10)
            .set(kParamEnableMask, 1)
            .set(kParamMaskFalloff, 0.63)
            .set(kParamMaskWidthAspect, 3.1));
    add(SceneBuilder("mask layer and glow layer", night, bits)
            .set(kParamThreshold, 10)
            .set(kParamEnableMask, 1)
            .set(kParamMaskRadius, 120)
            .layer(kParamMaskLayer, noise, Disc)
            .layer(kParamGlowLayer, small, Opaque));
    add(SceneBuilder("custom shape", lights, bits, Ramp)
            .set(kParamShape, 14)
            .set(kParamQuality, 2)
            .layer(kParamShapeLayer, small, Ramp));
    add(SceneBuilder("blurred input, colour mode", night, bits)
            .set(kParamBlurInput, 0.17)
            .set(kParamTransferMode, 22)
            .set(kParamShape, 6));
    add(SceneBuilder("colour dodge of red alone", night, bits)
            .set(kParamTransferMode, 12)
            .set(kParamOutputChannels, 3)
            .set(kParamGlowOpacity, 61.5));
    add(SceneBuilder("brightness map at 8:1", night, bits)
            .set(kParamView, 2)
            .set(kParamQuality, 4));
    SceneBuilder half("half resolution, wide pixels", night, bits);
    half.set(kParamShape, 9).set(kParamTransferMode, 9);
    half.job().downsampleX = {1, 2};
    half.job().downsampleY = {1, 2};
    half.job().pixelAspect = {10, 11};
    add(std::move(half));
    SceneBuilder spoiled("pixels that are no light", lights, bits, Ramp);
    spoiled.set(kParamInputChannels, 3).set(kParamTransferMode, 8);
    Spoil(spoiled.job().input);
    add(std::move(spoiled));
    SceneBuilder plain("plain render, rows going up", noise, bits, Ramp);
    plain.set(kParamGlowRadius, 12);
    plain.job().smart = false;
    plain.job().negativeRowBytes = true;
    add(std::move(plain));
    return list;
}

std::vector<ParityScene> LargeScenes(std::int32_t bits) {
    constexpr int kLargeWidth = 517;
    constexpr int kLargeHeight = 291;
    const LightRange range = bits == 32 ? LightRange::kOverbright : LightRange::kDisplay;
    const Canvas night = scenes::DrawNightCity(kLargeWidth, kLargeHeight, range);
    const Canvas noise = scenes::DrawNoise(kLargeWidth, kLargeHeight);
    Canvas white(kLargeWidth, kLargeHeight);
    for (int y = 0; y < kLargeHeight; ++y) {
        for (int x = 0; x < kLargeWidth; ++x) white.set(x, y, {1.0f, 1.0f, 1.0f});
    }

    std::vector<ParityScene> list;
    const auto add = [&](SceneBuilder builder) { list.push_back(builder.done()); };
    add(SceneBuilder("large night at 1:1", night, bits)
            .set(kParamQuality, 1)
            .set(kParamGlowRadius, 30));
    add(SceneBuilder("large night, wide glow", night, bits, Ramp).set(kParamGlowRadius, 1000));
    add(SceneBuilder("large noise, every value glows", noise, bits)
            .set(kParamQuality, 2)
            .set(kParamThreshold, 0)
            .set(kParamGlowRadius, 40));
    add(SceneBuilder("large noise at 1:1, spikes", noise, bits, Ramp)
            .set(kParamQuality, 1)
            .set(kParamShape, 7)
            .set(kParamGlowRadius, 12));
    add(SceneBuilder("white at 2:1", white, bits).set(kParamQuality, 2));
    return list;
}

}  // namespace vireon::pictures
