#include "glow/glow_pipeline.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <memory>
#include <stdexcept>
#include <string_view>

#include <gtest/gtest.h>

#include "composite/brightness_extraction.h"
#include "composite/output_passes.h"
#include "composite/transfer_modes.h"
#include "glow/glow_pass.h"
#include "render/glow_settings.h"
#include "tests/unit/glow/plain_splat.h"
#include "tests/unit/support/fake_host.h"
#include "tests/unit/support/picture.h"

namespace vireon::test {
namespace {

constexpr std::int32_t kAddChoice = 4;
constexpr std::int32_t kColorBurnChoice = 12;

const GlowKernel& TestKernel() {
    static const GlowKernel kernel = [] {
        Random random(140);
        return RandomKernel(random, 10, 8);
    }();
    return kernel;
}

/// A frame with its rasters; the glow is grown from one picture and laid over another.
struct Frame {
    Frame(std::int32_t width, std::int32_t height, bool opaque = false)
        : source(width, height, 1), input(width, height, 2), output(width, height, 3) {
        Random random(141);
        source.randomize(random, 0.0f, 1.2f);
        input.randomize(random, 0.0f, 1.0f);
        if (opaque) FillAlpha(input.view());
        output.fill(-5.0f);
    }
    GlowRasters rasters(PluginRaster_API* mask = nullptr) { return {source, input, output, mask}; }

    Picture source;
    Picture input;
    Picture output;
};

GlowSettings Settings(std::int32_t transferMode = kAddChoice, std::int32_t quality = 1) {
    GlowSettings settings;
    settings.glowRadius = 6.0;
    settings.glowIntensity = 8.0;
    settings.quality = quality;
    settings.transferMode = transferMode;
    settings.driverFlag = true;
    return settings;
}

struct TestHost {
    FakeHost host;
    TestHost() { host.shape = &TestKernel(); }
};

/// The finished frame put together from the stages.
Picture StageByStage(const Frame& frame, GlowSettings settings, Picture* mask = nullptr) {
    FakeHost host;
    Picture source(frame.source);
    Picture input(frame.input);
    Picture map(source.width(), source.height());
    Picture glow(source.width(), source.height());
    settings.blurInput *= settings.glowRadius;
    if (settings.pipelineMode == 1) settings.driverFlag = false;
    const bool opaque = settings.outputAlpha && IsOpaque(input.view());
    if (opaque) settings.outputAlpha = false;
    EXPECT_EQ(ExtractBrightness(host, settings, source, map, mask), 0);
    if (settings.view == kViewMask) return map;
    EXPECT_EQ(GlowPass(host, map, glow, &TestKernel(), settings), 0);
    if (settings.view == kViewBrightnessMap) {
        const bool full = EffectiveQuality(settings, source.width(), source.height()) == 0;
        Picture result(full ? map : glow);
        FillAlpha(result.view());
        return result;
    }
    ChannelMaskPass(glow.view(), input.view(), settings, 1.0f, opaque);
    OverbrightSoftClip(glow.view(), settings);
    ClampAlpha(glow.view());
    if (settings.outputAlpha) IntensityToAlpha(glow.view());
    const auto g = static_cast<float>(settings.glowOpacity * 0.01);
    if (settings.transferMode != 0) {
        const std::int32_t mode = PipelineTransferMode(settings.transferMode, true);
        if (mode == kTransferColorBurn) ClampColour(glow.view());
        EXPECT_EQ(TransferCompose(host, mode, g, static_cast<float>(settings.sourceOpacity * 0.01),
                                  glow, input, false, true),
                  0);
        if (mode == kTransferColorBurn) ClampColour(glow.view());
    } else if (std::fabs(g - 1.0f) > 1e-5f) {
        ScaleColour(glow.view(), g);
    }
    return glow;
}

Picture Render(const Frame& frame, const GlowSettings& settings, bool separators = true) {
    TestHost t;
    t.host.separators = separators;
    Frame own(frame);
    GlowSettings copy = settings;
    EXPECT_EQ(RenderGlow(t.host, copy, own.rasters()), 0);
    EXPECT_TRUE(EverythingReturned(t.host));
    EXPECT_EQ(copy.outputAlpha, settings.outputAlpha);
    EXPECT_TRUE(SamePixels(own.source, frame.source));
    EXPECT_TRUE(SamePixels(own.input, frame.input));
    return own.output;
}

TEST(RenderGlow, IsItsStagesInOrderForEveryModeChannelAndQuality) {
    for (const bool opaque : {false, true}) {
        const Frame frame(19, 14, opaque);
        for (std::int32_t mode = 0; mode <= 22; ++mode) {
            GlowSettings settings = Settings(mode, mode % 3);
            settings.setOutputChannels(mode % 6);
            settings.glowOpacity = mode % 2 == 0 ? 100.0 : 60.0;
            settings.sourceOpacity = mode % 4 == 0 ? 40.0 : 100.0;
            settings.threshold = 10.0;
            settings.blurInput = 0.4;
            settings.glowFalloff = 1.3;
            settings.inputChannels = mode % 7;
            EXPECT_TRUE(SamePixels(Render(frame, settings), StageByStage(frame, settings)))
                << mode << ' ' << opaque;
        }
    }
}

TEST(RenderGlow, MaskLimitsTheLight) {
    const Frame frame(19, 14);
    Picture mask(19, 14);
    Random random(142);
    mask.randomize(random, 0.0f, 1.0f);
    GlowSettings settings = Settings();
    settings.enableMask = true;
    settings.maskRadius = 7.0;
    for (const std::int32_t view : {kViewOutput, kViewBrightnessMap, kViewMask}) {
        settings.view = view;
        TestHost t;
        Frame own(frame);
        GlowSettings copy = settings;
        EXPECT_EQ(RenderGlow(t.host, copy, own.rasters(&mask)), 0);
        EXPECT_TRUE(SamePixels(own.output, StageByStage(frame, settings, &mask))) << view;
        EXPECT_TRUE(EverythingReturned(t.host));
    }
}

TEST(RenderGlow, GlowOpacityOfZeroReturnsTheInputWithoutRunningAnyStage) {
    const Frame frame(19, 14);
    for (const double opacity : {0.0, 0.0009, -0.0009}) {
        for (std::int32_t mode = 1; mode <= 22; ++mode) {
            TestHost t;
            Frame own(frame);
            GlowSettings settings = Settings(mode);
            settings.glowOpacity = opacity;
            EXPECT_EQ(RenderGlow(t.host, settings, own.rasters()), 0);
            EXPECT_TRUE(SamePixels(own.output, frame.input));
            EXPECT_EQ(t.host.count("progress"), 0);
            EXPECT_EQ(t.host.count("newHandle"), 0);
            EXPECT_EQ(t.host.count("newWorld"), 0);
        }
    }
}

TEST(RenderGlow, GlowOpacityOfZeroWithNoneClearsTheOutput) {
    for (const std::int32_t application : {0, kAfterEffects}) {
        TestHost t;
        t.host.application = application;
        Frame frame(19, 14);
        const auto world = t.host.makeLayer(19, 14, 4);
        PluginRaster_API& output =
            application == 0 ? static_cast<PluginRaster_API&>(frame.output) : *world;
        GlowSettings settings = Settings(kTransferNone);
        settings.glowOpacity = 0.0;
        EXPECT_EQ(RenderGlow(t.host, settings, {frame.source, frame.input, output, nullptr}), 0);
        EXPECT_EQ(t.host.count("progress"), 0);
        EXPECT_EQ(t.host.count("newHandle") + t.host.count("newWorld"), 0);
        EXPECT_EQ(t.host.count("clearRaster"), application == 0 ? 0 : 1);
        if (application == 0) {
            EXPECT_TRUE(SamePixels(frame.output, Picture(19, 14)));
        } else {
            EXPECT_EQ(static_cast<const float*>(world->layout().pixels)[75], 0.0f);
        }
    }
}

TEST(RenderGlow, NoneShowsTheGlowAloneTimesItsOpacity) {
    const Frame frame(19, 14);
    GlowSettings settings = Settings(kTransferNone);
    Picture full = Render(frame, settings);
    settings.glowOpacity = 50.0;
    const Picture half = Render(frame, settings);
    ScaleColour(full.view(), 0.5f);
    EXPECT_TRUE(SamePixels(half, full));
}

TEST(RenderGlow, ScreenCompositesExactlyLikeAdd) {
    const Frame frame(19, 14);
    EXPECT_TRUE(SamePixels(Render(frame, Settings(6)), Render(frame, Settings(kAddChoice))));
    // In a popup without separators Screen is the fifth and Add the third choice.
    EXPECT_TRUE(SamePixels(Render(frame, Settings(5), false), Render(frame, Settings(3), false)));
    EXPECT_TRUE(SamePixels(Render(frame, Settings(3), false), Render(frame, Settings(4), true)));
}

TEST(RenderGlow, SeparatorPositionsCompositeAsNormal) {
    const Frame frame(19, 14);
    const Picture normal = Render(frame, Settings(2));
    for (const std::int32_t separator : {3, 10, 13, 18}) {
        EXPECT_TRUE(SamePixels(Render(frame, Settings(separator)), normal)) << separator;
    }
}

TEST(RenderGlow, FrameSmallerThanTheQualityFactorIsProcessedAtOneToOne) {
    for (const bool narrow : {false, true}) {
        const Frame frame(narrow ? 3 : 20, narrow ? 20 : 3);
        for (const std::int32_t view : {kViewOutput, kViewBrightnessMap}) {
            GlowSettings full = Settings(kAddChoice, 0);
            full.view = view;
            GlowSettings reduced = Settings(kAddChoice, 2);
            reduced.view = view;
            EXPECT_TRUE(SamePixels(Render(frame, reduced), Render(frame, full)));
        }
    }
}

TEST(RenderGlow, MaskViewShowsTheMapAndNothingElse) {
    const Frame frame(19, 14);
    GlowSettings settings = Settings();
    settings.view = kViewMask;
    Picture white(19, 14);
    white.fill(1.0f);
    EXPECT_TRUE(SamePixels(Render(frame, settings), white));
    settings.enableMask = true;
    settings.maskRadius = 5.0;
    EXPECT_TRUE(SamePixels(Render(frame, settings), StageByStage(frame, settings)));
}

TEST(RenderGlow, BrightnessMapViewShowsTheFullMapAtOneToOneAndTheReducedOneElse) {
    const Frame frame(19, 14);
    for (const std::int32_t quality : {0, 1, 2}) {
        GlowSettings settings = Settings(kAddChoice, quality);
        settings.view = kViewBrightnessMap;
        settings.threshold = 30.0;
        const Picture got = Render(frame, settings);
        EXPECT_TRUE(SamePixels(got, StageByStage(frame, settings))) << quality;
        for (std::int32_t x = 0; x < 19; ++x) EXPECT_EQ(got.at(x, 5, kAlpha), 1.0f);
    }
}

TEST(RenderGlow, BrightnessMapViewNeedsNoShape) {
    FakeHost host;
    Frame frame(19, 14);
    GlowSettings settings = Settings();
    settings.shape = 13;
    settings.view = kViewBrightnessMap;
    for (const std::int32_t quality : {0, 2}) {
        settings.quality = quality;
        EXPECT_EQ(RenderGlow(host, settings, frame.rasters()), 0);
        EXPECT_TRUE(EverythingReturned(host));
    }
}

TEST(RenderGlow, BlurInputIsMultipliedByTheGlowRadiusOnce) {
    TestHost t;
    Frame frame(19, 14);
    GlowSettings settings = Settings();
    settings.blurInput = 0.5;
    EXPECT_EQ(RenderGlow(t.host, settings, frame.rasters()), 0);
    EXPECT_EQ(settings.blurInput, 3.0);
}

TEST(RenderGlow, StandardPipelineModeTakesTheWideningOut) {
    const Frame frame(19, 14);
    GlowSettings settings = Settings(kAddChoice, 0);
    settings.view = kViewBrightnessMap;
    GlowSettings off = settings;
    off.driverFlag = false;
    EXPECT_TRUE(SamePixels(Render(frame, settings), Render(frame, off)));

    TestHost t;
    Frame own(frame);
    EXPECT_EQ(RenderGlow(t.host, settings, own.rasters()), 0);
    EXPECT_FALSE(settings.driverFlag);
}

TEST(RenderGlow, OtherPipelineModesLetTheWideningRun) {
    const Frame frame(19, 14);
    for (const std::int32_t mode : {0, 2}) {
        GlowSettings settings = Settings(kAddChoice, 0);
        settings.view = kViewBrightnessMap;
        const Picture plain = Render(frame, settings);
        settings.pipelineMode = mode;
        const Picture widened = Render(frame, settings);
        EXPECT_TRUE(SamePixels(widened, StageByStage(frame, settings)));
        EXPECT_FALSE(SamePixels(widened, plain));
        ForEachFloat(widened, [&](std::int32_t x, std::int32_t y, std::int32_t c) {
            EXPECT_GE(widened.at(x, y, c), plain.at(x, y, c));
        });
        // Without the driver's flag the mode alone changes nothing.
        settings.driverFlag = false;
        EXPECT_TRUE(SamePixels(Render(frame, settings), plain));
    }
}

TEST(RenderGlow, OpaqueInputsGetOpaqueGlowAndOutputAlphaIsSetAgain) {
    const Frame frame(19, 14, true);
    GlowSettings settings = Settings(kTransferNone);
    const Picture got = Render(frame, settings);
    for (std::int32_t y = 0; y < 14; ++y) {
        for (std::int32_t x = 0; x < 19; ++x) EXPECT_EQ(got.at(x, y, kAlpha), 1.0f);
    }
    TestHost t;
    Frame own(frame);
    EXPECT_EQ(RenderGlow(t.host, settings, own.rasters()), 0);
    EXPECT_TRUE(settings.outputAlpha);
}

TEST(RenderGlow, OpaqueTestLooksAtTheInputAndNotAtTheSourceOfTheGlow) {
    Frame frame(19, 14, false);
    FillAlpha(frame.source.view());
    GlowSettings settings = Settings(kTransferNone);
    EXPECT_TRUE(SamePixels(Render(frame, settings), StageByStage(frame, settings)));
    const Picture got = Render(frame, settings);
    bool transparent = false;
    for (std::int32_t x = 0; x < 19; ++x) transparent |= got.at(x, 3, kAlpha) < 1.0f;
    EXPECT_TRUE(transparent);
}

TEST(RenderGlow, WithoutAlphaAmongTheOutputChannelsTheInputsAlphaIsTaken) {
    for (const bool opaque : {false, true}) {
        const Frame frame(19, 14, opaque);
        GlowSettings settings = Settings(kTransferNone);
        settings.setOutputChannels(0);
        const Picture got = Render(frame, settings);
        for (std::int32_t x = 0; x < 19; ++x) {
            EXPECT_EQ(got.at(x, 3, kAlpha), frame.input.at(x, 3, kAlpha));
        }
    }
}

TEST(RenderGlow, ProgressCoversTheFrameHeightOrTwiceIt) {
    for (const std::int32_t twice : {0, 1}) {
        for (const std::int32_t quality : {0, 2}) {
            TestHost t;
            Frame frame(19, 14);
            GlowSettings settings = Settings(kAddChoice, quality);
            settings.countProgressTwice = twice;
            settings.progressCount = 77;
            EXPECT_EQ(RenderGlow(t.host, settings, frame.rasters()), 0);
            const std::size_t rows = quality == 0 ? 14 : 3;
            ASSERT_EQ(t.host.progressReports.size(), rows);
            for (std::size_t i = 0; i < rows; ++i) {
                EXPECT_EQ(t.host.progressReports[i].first, static_cast<std::int32_t>(i));
                EXPECT_EQ(t.host.progressReports[i].second, twice != 0 ? 28 : 14);
            }
        }
    }
}

TEST(RenderGlow, CustomShapeOfTheHostGoesBeforeTheLibrary) {
    const Frame frame(19, 14);
    GlowSettings settings = Settings();
    for (const std::int32_t shape : {0, 12, 13, 50, -1}) {
        settings.shape = shape;
        EXPECT_TRUE(SamePixels(Render(frame, settings), StageByStage(frame, settings))) << shape;
    }
}

TEST(RenderGlow, WithoutAShapeTheRenderEndsWithOneAndOutputAlphaIsSetAgain) {
    for (const std::int32_t shape : {13, 14, -1}) {
        FakeHost host;
        Frame frame(19, 14, true);
        GlowSettings settings = Settings();
        settings.shape = shape;
        EXPECT_EQ(RenderGlow(host, settings, frame.rasters()), 1) << shape;
        EXPECT_TRUE(settings.outputAlpha);
        EXPECT_TRUE(EverythingReturned(host));
    }
}

TEST(RenderGlow, EmptyLibrarySlotIsAShapeWithoutTexels) {
    FakeHost host;
    Frame frame(19, 14);
    GlowSettings settings = Settings();
    settings.shape = 0;
    EXPECT_EQ(RenderGlow(host, settings, frame.rasters()), 1);
    EXPECT_TRUE(EverythingReturned(host));
    settings.view = kViewBrightnessMap;
    EXPECT_EQ(RenderGlow(host, settings, frame.rasters()), 0);
}

TEST(RenderGlow, AbortIsTheResultAndEverythingIsReleased) {
    for (const std::int32_t application : {0, kAfterEffects}) {
        TestHost t;
        t.host.application = application;
        t.host.progressAnswer = [](int call) { return call == 2 ? 517 : 0; };
        Frame frame(19, 14, true);
        GlowSettings settings = Settings(kAddChoice, 0);
        EXPECT_EQ(RenderGlow(t.host, settings, frame.rasters()), 517);
        EXPECT_EQ(t.host.count("progress"), 3);
        EXPECT_TRUE(settings.outputAlpha);
        EXPECT_TRUE(EverythingReturned(t.host));
    }
}

TEST(RenderGlow, EveryFailureToGetMemoryReleasesEverythingAndSetsOutputAlphaAgain) {
    for (const std::int32_t application : {0, kAfterEffects}) {
        for (int call = 0; call < 1000; ++call) {
            TestHost t;
            t.host.application = application;
            (application != 0 ? t.host.newWorldFailsFrom : t.host.newHandleFailsFrom) = call;
            Frame frame(19, 14, true);
            GlowSettings settings = Settings(kAddChoice, 2);
            settings.blurInput = 0.5;
            const std::int32_t result = RenderGlow(t.host, settings, frame.rasters());
            EXPECT_TRUE(EverythingReturned(t.host)) << call;
            EXPECT_TRUE(settings.outputAlpha);
            const int taken =
                application != 0 ? t.host.count("newWorld") : t.host.count("newHandle");
            if (taken <= call) {
                EXPECT_EQ(result, 0);
                EXPECT_GT(call, 4);
                break;
            }
            EXPECT_NE(result, 0) << call;
        }
    }
}

TEST(RenderGlow, WithoutWorkingRastersTheOutputIsClearedAndTheErrorReturned) {
    for (const int call : {0, 1}) {
        TestHost t;
        t.host.application = kAfterEffects;
        t.host.newWorldFailsFrom = call;
        t.host.newWorldError = 9;
        Frame frame(19, 14);
        const auto output = t.host.makeLayer(19, 14, 4);
        GlowSettings settings = Settings();
        EXPECT_EQ(RenderGlow(t.host, settings, {frame.source, frame.input, *output, nullptr}), 9);
        EXPECT_EQ(static_cast<const float*>(output->layout().pixels)[75], 0.0f);
        EXPECT_TRUE(EverythingReturned(t.host));

        TestHost memory;
        memory.host.newHandleFailsFrom = call;
        EXPECT_EQ(RenderGlow(memory.host, settings, frame.rasters()), 4);
        EXPECT_TRUE(SamePixels(frame.output, Picture(19, 14)));
        EXPECT_TRUE(EverythingReturned(memory.host));
    }
}

TEST(RenderGlow, WorkingRastersAreHostWorldsInAfterEffects) {
    const Frame frame(19, 14);
    TestHost t;
    t.host.application = kAfterEffects;
    Frame own(frame);
    GlowSettings settings = Settings();
    const Picture want = StageByStage(frame, settings);
    EXPECT_EQ(RenderGlow(t.host, settings, own.rasters()), 0);
    EXPECT_TRUE(SamePixels(own.output, want));
    EXPECT_GE(t.host.worldsMade, 2);
    EXPECT_EQ(t.host.count("disposeWorld"), t.host.worldsMade);
    EXPECT_TRUE(EverythingReturned(t.host));
}

TEST(RenderGlow, PremiereRendersTheSame) {
    const Frame frame(19, 14);
    TestHost t;
    t.host.application = kPremierePro;
    Frame own(frame);
    GlowSettings settings = Settings();
    settings.blurInput = 0.5;
    const Picture want = StageByStage(frame, settings);
    EXPECT_EQ(RenderGlow(t.host, settings, own.rasters()), 0);
    EXPECT_TRUE(SamePixels(own.output, want));
}

TEST(RenderGlow, HostThatCompositesItselfKeepsBehindAndNormalToItself) {
    const Frame frame(19, 14);
    for (std::int32_t mode = 0; mode <= 4; ++mode) {
        TestHost t;
        t.host.selfCompositing = true;
        Frame own(frame);
        GlowSettings settings = Settings(mode);
        settings.glowOpacity = 50.0;
        GlowSettings plain = settings;
        if (mode <= 2) plain.transferMode = kTransferNone;
        EXPECT_EQ(RenderGlow(t.host, settings, own.rasters()), 0);
        EXPECT_TRUE(SamePixels(own.output, StageByStage(frame, plain))) << mode;
    }
}

TEST(RenderGlow, TransferServiceIsUsedInAfterEffectsOnly) {
    for (const std::int32_t application : {0, kAfterEffects}) {
        TestHost t;
        t.host.application = application;
        t.host.transferService = true;
        t.host.transferAnswer = 33;
        Frame frame(19, 14);
        GlowSettings settings = Settings(6);
        settings.glowOpacity = 50.0;
        settings.sourceOpacity = 25.0;
        const std::int32_t result = RenderGlow(t.host, settings, frame.rasters());
        EXPECT_TRUE(EverythingReturned(t.host));
        if (application == 0) {
            EXPECT_EQ(result, 0);
            EXPECT_EQ(t.host.transfers.size(), 0u);
            continue;
        }
        EXPECT_EQ(result, 33);
        ASSERT_EQ(t.host.transfers.size(), 1u);
        EXPECT_EQ(t.host.transfers[0].mode, kTransferAdd);
        EXPECT_EQ(t.host.transfers[0].glowOpacity, 0.5f);
        EXPECT_EQ(t.host.transfers[0].sourceOpacity, 0.25f);
        EXPECT_EQ(t.host.transfers[0].source, &frame.input);
        EXPECT_FALSE(t.host.transfers[0].forceOpaque);
    }
}

TEST(RenderGlow, ColorBurnNeverLeavesZeroToOne) {
    const Frame frame(19, 14, true);
    GlowSettings settings = Settings(kColorBurnChoice);
    settings.glowIntensity = 60.0;
    settings.preventOverbrights = false;
    const Picture got = Render(frame, settings);
    ForEachFloat(got, [&](std::int32_t x, std::int32_t y, std::int32_t c) {
        if (c == kAlpha) return;
        EXPECT_GE(got.at(x, y, c), 0.0f);
        EXPECT_LE(got.at(x, y, c), 1.0f);
    });
    EXPECT_TRUE(SamePixels(got, StageByStage(frame, settings)));
}

TEST(RenderGlow, UndefinedOrIgnoredAlphaIsFilledBeforeAndClearedAfterTheRender) {
    for (const bool ignored : {false, true}) {
        Frame frame(19, 14);
        Frame filled(frame);
        FillAlpha(filled.source.view());
        FillAlpha(filled.input.view());
        TestHost t;
        (ignored ? t.host.ignoredAlpha : t.host.undefinedAlpha) = true;
        GlowSettings settings = Settings();
        Picture want = StageByStage(filled, settings);
        EXPECT_EQ(RenderGlow(t.host, settings, frame.rasters()), 0);
        ClearAlpha(want.view());
        ClearAlpha(filled.source.view());
        ClearAlpha(filled.input.view());
        EXPECT_TRUE(SamePixels(frame.output, want));
        EXPECT_TRUE(SamePixels(frame.input, filled.input));
        EXPECT_TRUE(SamePixels(frame.source, filled.source));
    }
}

TEST(RenderGlow, PremultipliedInputIsMadeStraightAndInputAndOutputPremultipliedAgain) {
    Frame frame(19, 14);
    Frame straight(frame);
    Unpremultiply(straight.input.view());
    TestHost t;
    t.host.premultiplied = true;
    GlowSettings settings = Settings();
    Picture want = StageByStage(straight, settings);
    EXPECT_EQ(RenderGlow(t.host, settings, frame.rasters()), 0);
    Premultiply(want.view());
    Premultiply(straight.input.view());
    EXPECT_TRUE(SamePixels(frame.output, want));
    EXPECT_TRUE(SamePixels(frame.input, straight.input));
}

TEST(RenderGlow, RastersThatAreNotFloatGiveOne) {
    TestHost t;
    Frame frame(19, 14);
    const auto eight = t.host.makeLayer(19, 14, 0);
    GlowSettings settings = Settings();
    EXPECT_EQ(RenderGlow(t.host, settings, {*eight, frame.input, frame.output, nullptr}), 1);
    EXPECT_EQ(RenderGlow(t.host, settings, {frame.source, *eight, frame.output, nullptr}), 1);
    EXPECT_EQ(RenderGlow(t.host, settings, {frame.source, frame.input, *eight, nullptr}), 1);
    EXPECT_TRUE(EverythingReturned(t.host));
}

TEST(RenderGlow, ExceptionOfAHostCallReleasesEverything) {
    for (const std::string_view operation : {"progress", "newHandle", "isHighQuality"}) {
        for (const int when : {0, 1, 3, 5}) {
            TestHost t;
            int calls = 0;
            bool thrown = false;
            t.host.onCall = [&](std::string_view name) {
                if (name == operation && calls++ == when) {
                    thrown = true;
                    throw std::runtime_error("host");
                }
            };
            Frame frame(19, 14, true);
            GlowSettings settings = Settings(kAddChoice, 1);
            EXPECT_NO_THROW(RenderGlow(t.host, settings, frame.rasters())) << operation;
            t.host.onCall = nullptr;
            EXPECT_TRUE(EverythingReturned(t.host)) << operation << ' ' << when;
            EXPECT_TRUE(settings.outputAlpha);
            EXPECT_TRUE(thrown || operation != "progress");
        }
    }
}

TEST(RenderGlow, LightThatIsNotFiniteDoesNotSpread) {
    const Frame clean(19, 14);
    Frame dirty(clean);
    const float inf = std::numeric_limits<float>::infinity();
    const float nan = std::numeric_limits<float>::quiet_NaN();
    dirty.source.set(9, 7, {1.0f, nan, inf, -inf});
    GlowSettings settings = Settings(kAddChoice, 1);
    settings.blurInput = 0.5;
    settings.glowFalloff = 0.5;
    const Picture got = Render(dirty, settings);
    ForEachFloat(got, [&](std::int32_t x, std::int32_t y, std::int32_t c) {
        EXPECT_TRUE(std::isfinite(got.at(x, y, c))) << x << ' ' << y << ' ' << c;
    });
}

TEST(RenderGlow, InputPixelThatIsNotFiniteStaysAtItsOwnPlace) {
    const Frame clean(19, 14);
    const float nan = std::numeric_limits<float>::quiet_NaN();
    for (std::int32_t mode = 1; mode <= 22; ++mode) {
        Frame dirty(clean);
        dirty.input.set(9, 7, {1.0f, nan, nan, nan});
        Frame other(clean);
        other.input.set(9, 7, {1.0f, 0.5f, 0.5f, 0.5f});
        GlowSettings settings = Settings(mode, 1);
        Picture got = Render(dirty, settings);
        const Picture want = Render(other, settings);
        for (std::int32_t c = 0; c < 4; ++c) got.at(9, 7, c) = want.at(9, 7, c);
        EXPECT_TRUE(SamePixels(got, want)) << mode;
    }
}

}  // namespace
}  // namespace vireon::test
