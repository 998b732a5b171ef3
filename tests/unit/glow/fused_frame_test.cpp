#include "glow/fused_frame.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <stdexcept>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "composite/output_passes.h"
#include "glow/glow_pipeline.h"
#include "image/convert_pixels.h"
#include "image/pixel_format.h"
#include "render/glow_settings.h"
#include "tests/unit/glow/plain_splat.h"
#include "tests/unit/support/fake_host.h"
#include "tests/unit/support/levels.h"
#include "tests/unit/support/picture.h"

namespace vireon::test {
namespace {

constexpr std::int32_t kNoneChoice = 0;
constexpr std::int32_t kNormalChoice = 2;
constexpr std::int32_t kAddChoice = 4;
constexpr std::int32_t kOverlayChoice = 7;
constexpr std::int32_t kLastChoice = 22;

const GlowKernel& TestKernel() {
    static const GlowKernel kernel = [] {
        Random random(140);
        return RandomKernel(random, 10, 8);
    }();
    return kernel;
}

/// Pixels of any depth with padded rows.
class Pixels {
  public:
    Pixels(std::int32_t width, std::int32_t height, std::int32_t format, std::int32_t padding) {
        layout_.formatCode = format;
        layout_.width = width;
        layout_.height = height;
        layout_.bytesPerPixel = BytesPerPixel(DepthOfFormat(format));
        layout_.rowBytes = width * layout_.bytesPerPixel + padding;
        bytes_.assign(static_cast<std::size_t>(layout_.rowBytes) * static_cast<std::size_t>(height),
                      std::byte{0xA5});
        layout_.pixels = bytes_.data();
    }
    Pixels(const Pixels& other) : bytes_(other.bytes_), layout_(other.layout_) {
        layout_.pixels = bytes_.data();
    }
    Pixels& operator=(const Pixels&) = delete;

    void set(const Picture& picture) { ConvertPixelsFromFloat(picture.view(), layout_); }
    Picture asFloat() const {
        Picture picture(layout_.width, layout_.height);
        ConvertPixelsToFloat(layout_, picture.view());
        return picture;
    }
    const RasterLayout& layout() const { return layout_; }
    const std::vector<std::byte>& bytes() const { return bytes_; }

  private:
    std::vector<std::byte> bytes_;
    RasterLayout layout_;
};

struct Frame {
    Frame(std::int32_t width, std::int32_t height, std::int32_t format, bool opaque)
        : source(width, height, format, 16),
          input(width, height, format, 32),
          output(width, height, format, 48) {
        Random random(141);
        Picture picture(width, height);
        picture.randomize(random, 0.0f, 1.2f);
        source.set(picture);
        picture.randomize(random, 0.0f, 1.0f);
        if (opaque) FillAlpha(picture.view());
        input.set(picture);
    }
    FrameLayouts layouts() const { return {source.layout(), input.layout(), output.layout()}; }

    Pixels source;
    Pixels input;
    Pixels output;
};

GlowSettings Settings(std::int32_t transferMode, std::int32_t quality) {
    GlowSettings settings;
    settings.glowRadius = 6.0;
    settings.glowIntensity = 8.0;
    settings.glowFalloff = 1.3;
    settings.threshold = 10.0;
    settings.quality = quality;
    settings.transferMode = transferMode;
    settings.driverFlag = true;
    return settings;
}

/// The frame by full-size stages, in float.
Picture Staged(const Frame& frame, GlowSettings settings, bool highQuality = true) {
    FakeHost host;
    host.highQuality = highQuality;
    host.shape = &TestKernel();
    Picture source = frame.source.asFloat();
    Picture input = frame.input.asFloat();
    Picture output = frame.output.asFloat();
    EXPECT_EQ(RenderGlow(host, settings, {source, input, output, nullptr}), 0);
    return output;
}

/// The frame in one pass, at every level; all levels must agree.
Picture Fused(const Frame& frame, const GlowSettings& settings, bool highQuality = true) {
    std::vector<Picture> pictures;
    for (const simd::Level level : KernelLevels()) {
        FakeHost host;
        host.highQuality = highQuality;
        Frame own(frame);
        Picture hostOutput(1, 1);
        GlowSettings copy = settings;
        EXPECT_TRUE(CanFuseStages(host, copy));
        EXPECT_TRUE(CanFusePixels(own.layouts()));
        EXPECT_EQ(RenderFusedFrame(host, *simd::KernelsOf(level), copy, own.layouts(), TestKernel(),
                                   hostOutput),
                  0);
        EXPECT_TRUE(EverythingReturned(host));
        EXPECT_EQ(copy.radiusScale, settings.radiusScale);
        EXPECT_EQ(own.source.bytes(), frame.source.bytes()) << "the source was written";
        EXPECT_EQ(own.input.bytes(), frame.input.bytes()) << "the input was written";
        pictures.push_back(own.output.asFloat());
        EXPECT_TRUE(SamePixels(pictures.back(), pictures.front())) << simd::LevelName(level);
    }
    return pictures.front();
}

TEST(FusedFrame, IsTheStagesToTheBitAtFullResolutionForEveryModeAndChannelChoice) {
    for (const bool opaque : {false, true}) {
        const Frame frame(19, 14, kFormatFloat, opaque);
        for (std::int32_t mode = 0; mode <= kLastChoice; ++mode) {
            GlowSettings settings = Settings(mode, 0);
            settings.setOutputChannels(mode % 6);
            settings.glowOpacity = mode % 2 == 0 ? 100.0 : 60.0;
            settings.sourceOpacity = mode % 4 == 0 ? 40.0 : 100.0;
            settings.inputChannels = mode % 7;
            settings.overbrightClamp = mode % 3 == 0 ? 70.0 : 100.0;
            EXPECT_TRUE(SamePixels(Fused(frame, settings), Staged(frame, settings)))
                << "mode " << mode << ", opaque " << opaque;
        }
    }
}

TEST(FusedFrame, IsTheStagesToFloatRoundingAtEveryReduction) {
    for (const bool opaque : {false, true}) {
        for (std::int32_t quality = 1; quality <= 4; ++quality) {
            for (const std::int32_t mode :
                 {kNoneChoice, kNormalChoice, kAddChoice, kOverlayChoice}) {
                for (const std::int32_t width : {16, 19, 37, 64}) {
                    const Frame frame(width, 33, kFormatFloat, opaque);
                    GlowSettings settings = Settings(mode, quality);
                    settings.setOutputChannels(width % 2);
                    const Picture staged = Staged(frame, settings);
                    float peak = 1.0f;
                    ForEachFloat(staged, [&](std::int32_t x, std::int32_t y, std::int32_t c) {
                        peak = std::max(peak, staged.at(x, y, c));
                    });
                    EXPECT_TRUE(
                        NearPixels(Fused(frame, settings), staged, 1e-5, static_cast<double>(peak)))
                        << "mode " << mode << ", quality " << quality << ", width " << width;
                }
            }
        }
    }
}

TEST(FusedFrame, IsTheStagesToTheBitWhereTheEnlargementIsNotSmoothed) {
    const Frame frame(37, 33, kFormatFloat, false);
    for (std::int32_t quality = 1; quality <= 4; ++quality) {
        const GlowSettings settings = Settings(kAddChoice, quality);
        EXPECT_TRUE(SamePixels(Fused(frame, settings, false), Staged(frame, settings, false)));
    }
}

TEST(FusedFrame, IsWithinOneStepOfTheStagesInIntegerPixels) {
    for (const std::int32_t format : {kFormat8, kFormatWorld16}) {
        const float step = format == kFormat8 ? 1.0f / 255.0f : 1.0f / 32768.0f;
        for (std::int32_t quality = 0; quality <= 4; ++quality) {
            const Frame frame(45, 31, format, false);
            const GlowSettings settings = Settings(kAddChoice, quality);
            // What the driver does with a float result.
            Pixels written(frame.output);
            written.set(Staged(frame, settings));
            const Picture want = written.asFloat();
            const Picture got = Fused(frame, settings);
            ForEachFloat(want, [&](std::int32_t x, std::int32_t y, std::int32_t c) {
                EXPECT_NEAR(got.at(x, y, c), want.at(x, y, c), quality == 0 ? 0.0f : 1.01f * step);
            });
        }
    }
}

TEST(FusedFrame, SoftClipSeesTheLargestValueOfTheWholeFrame) {
    // A frame with one bright corner: the knee comes from there and bends light everywhere.
    Frame frame(64, 48, kFormatFloat, true);
    Picture source(64, 48);
    source.fill(1.0f, 0.3f, 0.3f, 0.3f);
    for (std::int32_t y = 40; y < 48; ++y) {
        for (std::int32_t x = 56; x < 64; ++x) source.set(x, y, {1.0f, 1.0f, 1.0f, 1.0f});
    }
    frame.source.set(source);
    for (const double intensity : {2.0, 5.0, 12.0, 40.0}) {
        for (const std::int32_t quality : {0, 2}) {
            GlowSettings settings = Settings(kAddChoice, quality);
            settings.glowIntensity = intensity;
            EXPECT_TRUE(NearPixels(Fused(frame, settings), Staged(frame, settings), 1e-5, 2.0))
                << intensity << ", quality " << quality;
        }
    }
}

TEST(FusedFrame, GlowThatIsNotFiniteSpreadsAsInTheStages) {
    GlowKernel huge;
    huge.allocate(2, 2);
    huge.values.assign(4, 3e38f);
    huge.flagEmptyRows();
    Frame frame(24, 24, kFormatFloat, true);
    Picture source(24, 24);
    source.fill(1.0f, 0.0f, 0.0f, 0.0f);
    source.set(8, 8, {1.0f, 1.0f, 1.0f, 1.0f});
    frame.source.set(source);
    GlowSettings settings = Settings(kAddChoice, 1);
    settings.glowIntensity = 1000.0;
    for (const simd::Level level : KernelLevels()) {
        FakeHost host;
        host.shape = &huge;
        Picture sourceFloat = frame.source.asFloat();
        Picture input = frame.input.asFloat();
        Picture staged = frame.output.asFloat();
        GlowSettings copy = settings;
        EXPECT_EQ(RenderGlow(host, copy, {sourceFloat, input, staged, nullptr}), 0);
        Frame own(frame);
        Picture hostOutput(1, 1);
        copy = settings;
        EXPECT_EQ(
            RenderFusedFrame(host, *simd::KernelsOf(level), copy, own.layouts(), huge, hostOutput),
            0);
        EXPECT_TRUE(SamePixels(own.output.asFloat(), staged)) << simd::LevelName(level);
        bool broken = false;
        ForEachFloat(staged, [&](std::int32_t x, std::int32_t y, std::int32_t c) {
            broken = broken || !std::isfinite(staged.at(x, y, c));
        });
        EXPECT_TRUE(broken) << "the case is not what it says";
    }
}

TEST(FusedFrame, AnAbortLeavesTheOutputAsItWasAndReturnsTheAnswer) {
    const Frame frame(20, 16, kFormat8, true);
    for (const int row : {0, 3}) {
        FakeHost host;
        host.progressAnswer = [row](int call) { return call == row ? 517 : 0; };
        Frame own(frame);
        Picture hostOutput(1, 1);
        GlowSettings settings = Settings(kAddChoice, 2);
        EXPECT_EQ(RenderFusedFrame(host, *simd::KernelsOf(simd::Level::kSse2), settings,
                                   own.layouts(), TestKernel(), hostOutput),
                  517);
        EXPECT_EQ(own.output.bytes(), frame.output.bytes());
        EXPECT_EQ(host.count("progress"), row + 1);
        EXPECT_TRUE(EverythingReturned(host));
    }
}

TEST(FusedFrame, ReportsAsManyStepsAsTheStagesDo) {
    const Frame frame(20, 17, kFormatFloat, true);
    for (std::int32_t quality = 0; quality <= 4; ++quality) {
        FakeHost host;
        Frame own(frame);
        Picture hostOutput(1, 1);
        GlowSettings settings = Settings(kAddChoice, quality);
        EXPECT_EQ(RenderFusedFrame(host, *simd::KernelsOf(simd::Level::kSse2), settings,
                                   own.layouts(), TestKernel(), hostOutput),
                  0);
        FakeHost stagedHost;
        stagedHost.shape = &TestKernel();
        Picture source = frame.source.asFloat();
        Picture input = frame.input.asFloat();
        Picture output = frame.output.asFloat();
        settings = Settings(kAddChoice, quality);
        EXPECT_EQ(RenderGlow(stagedHost, settings, {source, input, output, nullptr}), 0);
        EXPECT_EQ(host.progressReports, stagedHost.progressReports);
    }
}

TEST(FusedFrame, WithoutMemoryForAWorkingRasterTheOutputIsCleared) {
    const Frame frame(20, 16, kFormat8, true);
    for (int failing = 0; failing < 2; ++failing) {
        FakeHost host;
        host.application = kAfterEffects;
        host.newWorldFailsFrom = failing;
        Frame own(frame);
        Picture hostOutput(3, 3);
        hostOutput.fill(5.0f);
        GlowSettings settings = Settings(kAddChoice, 2);
        EXPECT_EQ(RenderFusedFrame(host, *simd::KernelsOf(simd::Level::kSse2), settings,
                                   own.layouts(), TestKernel(), hostOutput),
                  4);
        EXPECT_EQ(hostOutput.at(1, 1, kRed), 0.0f);
        EXPECT_TRUE(EverythingReturned(host));
    }
}

TEST(FusedFrame, WhatTheHostThrowsEndsTheRenderWithEverythingReturned) {
    const Frame frame(20, 16, kFormat8, true);
    for (const std::string_view operation : {"isHighQuality", "newWorld", "rasterLayout"}) {
        FakeHost host;
        host.application = kAfterEffects;
        bool thrown = false;
        host.onCall = [&](std::string_view call) {
            if (call != operation) return;
            thrown = true;
            throw std::runtime_error("no answer");
        };
        Frame own(frame);
        Picture hostOutput(1, 1);
        GlowSettings settings = Settings(kAddChoice, 2);
        EXPECT_EQ(RenderFusedFrame(host, *simd::KernelsOf(simd::Level::kSse2), settings,
                                   own.layouts(), TestKernel(), hostOutput),
                  0);
        EXPECT_TRUE(thrown) << operation;
        EXPECT_EQ(own.output.bytes(), frame.output.bytes());
        EXPECT_TRUE(EverythingReturned(host)) << operation;
    }
}

TEST(CanFuseStages, RefusesWhateverNeedsFullSizeStages) {
    const auto refused = [](auto&& change) {
        FakeHost host;
        GlowSettings settings = Settings(kAddChoice, 2);
        change(host, settings);
        return !CanFuseStages(host, settings);
    };
    EXPECT_FALSE(refused([](FakeHost&, GlowSettings&) {}));
    EXPECT_TRUE(refused([](FakeHost&, GlowSettings& s) { s.view = kViewMask; }));
    EXPECT_TRUE(refused([](FakeHost&, GlowSettings& s) { s.view = kViewBrightnessMap; }));
    EXPECT_TRUE(refused([](FakeHost&, GlowSettings& s) { s.blurInput = 0.1; }));
    EXPECT_TRUE(refused([](FakeHost&, GlowSettings& s) { s.enableMask = true; }));
    EXPECT_TRUE(refused([](FakeHost&, GlowSettings& s) { s.fastSplat = true; }));
    EXPECT_TRUE(refused([](FakeHost&, GlowSettings& s) { s.pipelineMode = 0; }));
    EXPECT_TRUE(refused([](FakeHost&, GlowSettings& s) { s.inputChannels = 7; }));
    EXPECT_TRUE(refused([](FakeHost&, GlowSettings& s) { s.glowOpacity = 0.0; }));
    EXPECT_TRUE(refused([](FakeHost& h, GlowSettings&) { h.undefinedAlpha = true; }));
    EXPECT_TRUE(refused([](FakeHost& h, GlowSettings&) { h.ignoredAlpha = true; }));
    EXPECT_TRUE(refused([](FakeHost& h, GlowSettings&) { h.premultiplied = true; }));
    EXPECT_TRUE(refused([](FakeHost& h, GlowSettings&) { h.selfCompositing = true; }));
    EXPECT_TRUE(refused([](FakeHost& h, GlowSettings&) {
        h.transferService = true;
        h.application = kAfterEffects;
    }));
}

TEST(CanFusePixels, RefusesPixelsThatAreNotThereInAnotherOrderOrShared) {
    const Frame frame(20, 16, kFormat8, true);
    const auto refused = [&](auto&& change) {
        FrameLayouts layouts = frame.layouts();
        change(layouts);
        return !CanFusePixels(layouts);
    };
    EXPECT_FALSE(refused([](FrameLayouts&) {}));
    EXPECT_TRUE(refused([](FrameLayouts& l) { l.output.pixels = nullptr; }));
    EXPECT_TRUE(refused([](FrameLayouts& l) { l.source.height = 0; }));
    EXPECT_TRUE(refused([](FrameLayouts& l) {
        l.input.formatCode = kFormat8Bgra;
        l.source.formatCode = kFormat8Bgra;
    }));
    EXPECT_TRUE(refused([](FrameLayouts& l) { l.output = l.input; }));
    EXPECT_TRUE(refused([](FrameLayouts& l) { l.output = l.source; }));
    EXPECT_TRUE(refused([](FrameLayouts& l) { l.source.formatCode = kFormatWorld16; }));
}

}  // namespace
}  // namespace vireon::test
