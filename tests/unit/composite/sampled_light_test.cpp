#include "composite/sampled_light_pixels.h"

#include <cstdint>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "composite/brightness_pixels.h"
#include "glow/resample_pixels.h"
#include "image/convert_pixels.h"
#include "image/pixel_format.h"
#include "image/tolerance.h"
#include "tests/unit/support/levels.h"
#include "tests/unit/support/picture.h"

namespace vireon::test {
namespace {

/// A source of any depth with padded rows.
struct Source {
    Source(std::int32_t width, std::int32_t height, std::int32_t format, Random& random) {
        layout.formatCode = format;
        layout.width = width;
        layout.height = height;
        layout.bytesPerPixel = BytesPerPixel(DepthOfFormat(format));
        layout.rowBytes = width * layout.bytesPerPixel + 12;
        bytes.resize(static_cast<std::size_t>(layout.rowBytes) * static_cast<std::size_t>(height));
        layout.pixels = bytes.data();
        Picture picture(width, height);
        picture.randomize(random, 0.0f, 1.1f);
        ConvertPixelsFromFloat(picture.view(), layout);
    }
    std::vector<std::byte> bytes;
    RasterLayout layout;
};

/// The stages one after the other over whole frames.
Picture StageByStage(const RasterLayout& source, const SampledLight& light, std::int32_t width,
                     std::int32_t height) {
    Picture input(light.frameWidth, light.frameHeight);
    input.fill(0.0f);
    ConvertPixelsToFloat(source, input.view());
    Picture map(light.frameWidth, light.frameHeight);
    map.fill(0.0f);
    const bool singleChannel = light.inputChannels != 0;
    MapBrightness(input.view(), map.view(), light.inputChannels);
    if (!NearZero(light.threshold)) SubtractThreshold(map.view(), light.threshold, singleChannel);
    ShapeLight(map.view(), light.exponent, light.gain, singleChannel);
    Picture reduced(width, height);
    if (light.sampling == LightSampling::kBilinear) {
        ReduceBilinear(map.view(), reduced.view(), light.colourOnly);
    } else {
        ReduceNearest(map.view(), reduced.view());
    }
    return reduced;
}

void Check(const Source& source, const SampledLight& light, std::int32_t width,
           std::int32_t height) {
    const Picture want = StageByStage(source.layout, light, width, height);
    for (const simd::Level level : KernelLevels()) {
        Picture got(width, height);
        ExtractSampledLight(*simd::KernelsOf(level), source.layout, light, got.view());
        EXPECT_TRUE(SamePixels(got, want))
            << simd::LevelName(level) << ", " << light.frameWidth << " x " << light.frameHeight
            << " to " << width << " x " << height << ", channels " << light.inputChannels;
        EXPECT_TRUE(got.paddingIntact());
    }
}

SampledLight Light(std::int32_t width, std::int32_t height) {
    return {width, height, 0, 0.5f, 1.5f, 1.0f, LightSampling::kBilinear, false};
}

TEST(SampledLight, IsThatOfTheStagesAtEverySizeAndReduction) {
    Random random(30);
    for (std::int32_t width = 1; width <= 33; ++width) {
        const std::int32_t height = 1 + (width * 7) % 33;
        const Source source(width, height, kFormat8, random);
        for (const std::int32_t factor : {1, 2, 4, 8, 16}) {
            if (width / factor == 0 || height / factor == 0) continue;
            SampledLight light = Light(width, height);
            light.colourOnly = width % 2 == 0;
            Check(source, light, width / factor, height / factor);
            light.sampling = LightSampling::kNearest;
            light.colourOnly = false;
            Check(source, light, width / factor, height / factor);
        }
    }
}

TEST(SampledLight, IsThatOfTheStagesAtEveryDepthAndForEveryChannelChoice) {
    Random random(31);
    for (const std::int32_t format : {kFormat8, kFormatWorld16, kFormat16, kFormatFloat}) {
        const Source source(45, 31, format, random);
        for (std::int32_t channels = 0; channels < 7; ++channels) {
            SampledLight light = Light(45, 31);
            light.inputChannels = channels;
            Check(source, light, 11, 7);
            Check(source, light, 45, 31);
            light.threshold = 0.0f;
            light.exponent = 1.0f;
            Check(source, light, 22, 15);
        }
    }
}

TEST(SampledLight, SourcesSmallerOrLargerThanTheFrameAreFilledUpAndCut) {
    Random random(32);
    const Source small(20, 9, kFormat8, random);
    const Source large(70, 50, kFormat8, random);
    for (const Source* source : {&small, &large}) {
        Check(*source, Light(45, 31), 11, 7);
        Check(*source, Light(45, 31), 45, 31);
    }
}

}  // namespace
}  // namespace vireon::test
