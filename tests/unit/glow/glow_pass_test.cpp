#include "glow/glow_pass.h"

#include <cstdint>
#include <limits>
#include <string_view>

#include <gtest/gtest.h>

#include "glow/resample_pixels.h"
#include "glow/shape_convolution.h"
#include "glow/tent_blur.h"
#include "render/glow_settings.h"
#include "tests/unit/glow/plain_splat.h"
#include "tests/unit/support/fake_host.h"
#include "tests/unit/support/picture.h"

namespace vireon::test {
namespace {

constexpr std::int32_t kSmoothing[] = {1, 2, 4, 5, 6};

GlowKernel TestKernel() {
    Random random(130);
    return RandomKernel(random, 10, 8);
}

Picture Light(std::int32_t width, std::int32_t height) {
    Random random(131);
    Picture picture(width, height, 1);
    picture.randomize(random, 0.0f, 1.5f);
    return picture;
}

GlowSettings Settings(std::int32_t quality) {
    GlowSettings settings;
    settings.quality = quality;
    settings.glowRadius = 16.0;
    settings.glowIntensity = 5.0;
    return settings;
}

/// The pass put together from its stages, for a frame that reduces to at least one pixel.
Picture StageByStage(const Picture& map, const GlowKernel& kernel, GlowSettings settings,
                     bool resample, const FakeHost& circumstances) {
    FakeHost host;
    host.factorX = circumstances.factorX;
    host.factorY = circumstances.factorY;
    const std::int32_t q = settings.quality;
    const auto f = static_cast<std::int32_t>(kQualityFactors[q]);
    Picture glow(map.width(), map.height());
    if (q == 0) {
        Picture source(map);
        EXPECT_EQ(ConvolveShape(host, source, glow, &kernel, settings, 1.0f), 0);
        return glow;
    }
    Picture reduced(map.width() / f, map.height() / f);
    if (resample) {
        const bool coloursOnly =
            settings.outputChannelCount() == 3 && !settings.outputAlpha && !settings.fastSplat;
        ReduceBilinear(map.view(), reduced.view(), coloursOnly);
    } else {
        ReduceNearest(map.view(), reduced.view());
    }
    Picture spread(reduced);
    if (settings.view != kViewBrightnessMap) {
        settings.radiusScale *= static_cast<double>(1.0f / kQualityFactors[q]);
        EXPECT_EQ(ConvolveShape(host, reduced, spread, &kernel, settings, kQualityFactors[q]), 0);
    }
    ExpandNearest(spread.view(), glow.view());
    if (resample) {
        const std::int32_t radius = q <= 1 ? 1 : kSmoothing[q];
        EXPECT_EQ(BlurRaster(host, glow, radius, settings, false), 0);
    }
    return glow;
}

TEST(EffectiveQuality, FallsBackToOneToOneWhenTheReducedFrameHasNoPixels) {
    GlowSettings settings;
    for (std::int32_t q = 0; q <= 4; ++q) {
        settings.quality = q;
        const auto f = static_cast<std::int32_t>(kQualityFactors[q]);
        EXPECT_EQ(EffectiveQuality(settings, f, f), q);
        EXPECT_EQ(EffectiveQuality(settings, 100, f), q);
        if (q > 0) {
            EXPECT_EQ(EffectiveQuality(settings, f - 1, 100), 0);
            EXPECT_EQ(EffectiveQuality(settings, 100, f - 1), 0);
        }
    }
}

TEST(EffectiveQuality, ChoicesBeyondThePopupAreOneToOne) {
    GlowSettings settings;
    for (const std::int32_t q : {-1, 5, 1000}) {
        settings.quality = q;
        EXPECT_EQ(EffectiveQuality(settings, 100, 100), 0);
    }
}

TEST(GlowPass, EveryQualityAndResampleFlagIsItsStagesInOrder) {
    const GlowKernel kernel = TestKernel();
    for (std::int32_t q = 0; q <= 4; ++q) {
        for (const bool highQuality : {false, true}) {
            for (std::int32_t channels = 0; channels <= 5; ++channels) {
                FakeHost host;
                host.highQuality = highQuality;
                Picture map = Light(37, 33);
                const Picture before(map);
                Picture glow(37, 33, 2);
                glow.fill(std::numeric_limits<float>::quiet_NaN());
                GlowSettings settings = Settings(q);
                settings.setOutputChannels(channels);
                const Picture want = StageByStage(map, kernel, settings, highQuality, host);
                EXPECT_EQ(GlowPass(host, map, glow, &kernel, settings), 0);
                EXPECT_TRUE(SamePixels(glow, want)) << q << ' ' << highQuality << ' ' << channels;
                EXPECT_TRUE(SamePixels(map, before));
                EXPECT_EQ(settings.radiusScale, 1.0);
                EXPECT_TRUE(EverythingReturned(host));
            }
        }
    }
}

TEST(GlowPass, DownsampledRendersAreTheirStagesInOrder) {
    const GlowKernel kernel = TestKernel();
    for (const std::int32_t q : {0, 1, 2}) {
        FakeHost host;
        host.factorX = 0.5;
        host.factorY = 0.25;
        Picture map = Light(21, 18);
        Picture glow(21, 18);
        GlowSettings settings = Settings(q);
        const Picture want = StageByStage(map, kernel, settings, true, host);
        EXPECT_EQ(GlowPass(host, map, glow, &kernel, settings), 0);
        EXPECT_TRUE(SamePixels(glow, want)) << q;
    }
}

TEST(GlowPass, PremultipliedHostsResampleInDraftsToo) {
    const GlowKernel kernel = TestKernel();
    FakeHost host;
    host.highQuality = false;
    host.premultiplied = true;
    Picture map = Light(20, 17);
    Picture glow(20, 17);
    GlowSettings settings = Settings(2);
    const Picture want = StageByStage(map, kernel, settings, true, host);
    EXPECT_EQ(GlowPass(host, map, glow, &kernel, settings), 0);
    EXPECT_TRUE(SamePixels(glow, want));
}

TEST(GlowPass, FrameSmallerThanTheFactorIsDoneAtOneToOne) {
    const GlowKernel kernel = TestKernel();
    for (const std::int32_t q : {1, 2, 3, 4}) {
        const auto f = static_cast<std::int32_t>(kQualityFactors[q]);
        for (const bool narrow : {false, true}) {
            FakeHost host;
            const std::int32_t width = narrow ? f - 1 : 20;
            const std::int32_t height = narrow ? 20 : f - 1;
            Picture map = Light(width, height);
            Picture glow(width, height);
            GlowSettings settings = Settings(q);
            const Picture want = StageByStage(map, kernel, Settings(0), true, host);
            EXPECT_EQ(GlowPass(host, map, glow, &kernel, settings), 0);
            EXPECT_TRUE(SamePixels(glow, want)) << q << ' ' << narrow;
        }
    }
}

TEST(GlowPass, BrightnessMapViewAtOneToOneDoesNothing) {
    const GlowKernel kernel = TestKernel();
    for (const std::int32_t q : {0, 4}) {
        FakeHost host;
        Picture map = Light(11, 9);
        Picture glow(11, 9);
        glow.fill(0.25f);
        const Picture before(glow);
        GlowSettings settings = Settings(q);
        settings.view = kViewBrightnessMap;
        EXPECT_EQ(GlowPass(host, map, glow, &kernel, settings), 0);
        EXPECT_TRUE(SamePixels(glow, before));
        EXPECT_EQ(host.count("progress"), 0);
    }
}

TEST(GlowPass, BrightnessMapViewShowsTheReducedMap) {
    const GlowKernel kernel = TestKernel();
    for (std::int32_t q = 1; q <= 4; ++q) {
        for (const bool highQuality : {false, true}) {
            FakeHost host;
            host.highQuality = highQuality;
            Picture map = Light(37, 33);
            Picture glow(37, 33);
            GlowSettings settings = Settings(q);
            settings.view = kViewBrightnessMap;
            const Picture want = StageByStage(map, kernel, settings, highQuality, host);
            EXPECT_EQ(GlowPass(host, map, glow, &kernel, settings), 0);
            EXPECT_TRUE(SamePixels(glow, want)) << q;
            EXPECT_EQ(host.count("progress"), 0);
            EXPECT_TRUE(EverythingReturned(host));
        }
    }
}

TEST(GlowPass, WithoutAShapeTheGlowFailsAndTheBrightnessMapSucceeds) {
    const GlowKernel empty;
    for (const GlowKernel* const shape : {static_cast<const GlowKernel*>(nullptr), &empty}) {
        for (const std::int32_t q : {0, 2}) {
            FakeHost host;
            Picture map = Light(37, 33);
            Picture glow(37, 33);
            GlowSettings settings = Settings(q);
            EXPECT_EQ(GlowPass(host, map, glow, shape, settings), 1);
            EXPECT_TRUE(EverythingReturned(host));
            settings.view = kViewBrightnessMap;
            EXPECT_EQ(GlowPass(host, map, glow, shape, settings), 0);
            EXPECT_TRUE(EverythingReturned(host));
        }
    }
}

TEST(GlowPass, AbortIsTheResultAndEverythingIsReleased) {
    const GlowKernel kernel = TestKernel();
    for (const std::int32_t q : {0, 1, 2}) {
        for (const std::int32_t application : {0, kAfterEffects}) {
            FakeHost host;
            host.application = application;
            host.progressAnswer = [](int call) { return call == 3 ? 517 : 0; };
            Picture map = Light(37, 33);
            Picture glow(37, 33);
            GlowSettings settings = Settings(q);
            EXPECT_EQ(GlowPass(host, map, glow, &kernel, settings), 517);
            EXPECT_EQ(host.count("progress"), 4);
            EXPECT_EQ(settings.radiusScale, 1.0);
            EXPECT_TRUE(EverythingReturned(host));
        }
    }
}

TEST(GlowPass, EveryFailureToGetMemoryIsReportedAndEverythingReleased) {
    const GlowKernel kernel = TestKernel();
    for (const std::int32_t application : {0, kAfterEffects}) {
        for (int call = 0;; ++call) {
            FakeHost host;
            host.application = application;
            // Everything that the pass takes after this many blocks or worlds is refused.
            host.newHandleFailsFrom = call;
            if (application != 0) {
                host.newHandleFailsFrom = FakeHost::kNever;
                host.newWorldFailsFrom = call;
            }
            Picture map = Light(20, 17);
            Picture glow(20, 17);
            GlowSettings settings = Settings(2);
            const std::int32_t result = GlowPass(host, map, glow, &kernel, settings);
            EXPECT_TRUE(EverythingReturned(host)) << call;
            EXPECT_EQ(settings.radiusScale, 1.0);
            const bool refused =
                application != 0 ? host.count("newWorld") > call : host.count("newHandle") > call;
            if (!refused) {
                EXPECT_EQ(result, 0);
                EXPECT_GT(call, 0);
                break;
            }
            EXPECT_NE(result, 0) << call;
        }
    }
}

TEST(GlowPass, WorkingRastersAreHostWorldsInAfterEffects) {
    const GlowKernel kernel = TestKernel();
    FakeHost host;
    host.application = kAfterEffects;
    Picture map = Light(20, 17);
    Picture glow(20, 17);
    GlowSettings settings = Settings(2);
    const Picture want = StageByStage(map, kernel, settings, true, host);
    EXPECT_EQ(GlowPass(host, map, glow, &kernel, settings), 0);
    EXPECT_TRUE(SamePixels(glow, want));
    EXPECT_GT(host.worldsMade, 0);
    EXPECT_EQ(host.count("disposeWorld"), host.worldsMade);
    EXPECT_TRUE(EverythingReturned(host));
}

}  // namespace
}  // namespace vireon::test
