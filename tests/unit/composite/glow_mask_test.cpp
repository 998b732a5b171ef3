#include "composite/glow_mask.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>

#include <gtest/gtest.h>

#include "composite/glow_mask_pixels.h"
#include "render/glow_settings.h"
#include "tests/unit/support/fake_host.h"
#include "tests/unit/support/picture.h"

namespace vireon::test {
namespace {

constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();

GlowSettings MaskSettings(double radius) {
    GlowSettings settings;
    settings.enableMask = true;
    settings.maskRadius = radius;
    return settings;
}

/// The whole stage as its definition says, in double precision.
void PlainMask(const GlowSettings& s, Picture& map, const Picture* mask, bool single, double dx,
               double dy, double aspect) {
    if (s.view == 2) map.fill(1.0f);
    if (!s.enableMask) return;
    std::int32_t width = map.width();
    std::int32_t height = map.height();
    const auto multiply = [&](std::int32_t x, std::int32_t y, double factor) {
        for (std::int32_t c = 0; c < (single ? 1 : 4); ++c) {
            map.at(x, y, c) = static_cast<float>(static_cast<double>(map.at(x, y, c)) * factor);
        }
    };
    if (mask != nullptr) {
        width = std::min(width, mask->width());
        height = std::min(height, mask->height());
        for (std::int32_t y = 0; y < height; ++y) {
            for (std::int32_t x = 0; x < width; ++x) {
                multiply(x, y, static_cast<double>(mask->at(x, y, kAlpha)));
            }
        }
    }
    const double r = s.maskRadius;
    const double a = aspect * s.widthAspect;
    const double b = s.heightAspect;
    if (std::fabs(r) <= 1e-5 || std::fabs(a) <= 1e-5 || std::fabs(b) <= 1e-5) return;
    const double soft = 1.0 - s.maskFalloff;
    const double cx = width * s.maskCenterX;
    const double cy = height * s.maskCenterY;
    for (std::int32_t y = 0; y < height; ++y) {
        for (std::int32_t x = 0; x < width; ++x) {
            const double q =
                (x - cx) * (x - cx) / (dx * dx * a) + (y - cy) * (y - cy) / (dy * dy * b);
            const double d = std::sqrt(q) / r;
            multiply(x, y, q >= r * r ? 0.0 : 1.0 - std::pow(d, soft));
        }
    }
}

/// Single precision loses about as much in d / r as in any other step, but a power of less than 1
/// amplifies it near the centre, where 1 - m is small beside 1; both stay within this.
constexpr double kMaskTolerance = 4.0 * kRounding;

TEST(ApplyGlowMask, FollowsTheEllipseOfItsDefinition) {
    Random random(60);
    for (int i = 0; i < 200; ++i) {
        FakeHost host;
        host.factorX = random.whole(0, 1) != 0 ? 1.0 : 0.5;
        host.factorY = random.whole(0, 1) != 0 ? 1.0 : 0.25;
        GlowSettings settings = MaskSettings(random.uniform(2.0, 30.0));
        settings.maskFalloff = random.whole(0, 2) != 0 ? random.uniform(0.0, 0.9) : 0.0;
        settings.widthAspect = random.uniform(0.2, 4.0);
        settings.heightAspect = random.uniform(0.2, 4.0);
        settings.maskCenterX = random.uniform(-0.2, 1.2);
        settings.maskCenterY = random.uniform(-0.2, 1.2);
        const bool single = random.whole(0, 1) != 0;
        const bool withMask = random.whole(0, 1) != 0;
        Picture map(19, 14, 1, true);
        map.randomize(random, -1.0f, 3.0f);
        Picture mask(random.whole(5, 25), random.whole(5, 25));
        mask.randomize(random, 0.0f, 1.0f);
        Picture want(map);
        PlainMask(settings, want, withMask ? &mask : nullptr, single, host.factorX, host.factorY,
                  1.0);
        EXPECT_EQ(ApplyGlowMask(host, settings, map, withMask ? &mask : nullptr, single), 0);
        EXPECT_TRUE(NearPixels(map, want, kMaskTolerance)) << i;
        EXPECT_TRUE(EverythingReturned(host));
    }
}

TEST(ApplyGlowMask, ChangesNothingWithEnableMaskOffEvenWithAMaskLayer) {
    FakeHost host;
    Picture map(6, 5);
    map.fill(0.5f);
    const Picture before(map);
    Picture mask(6, 5);
    GlowSettings settings;
    for (const std::int32_t view : {kViewOutput, kViewBrightnessMap}) {
        settings.view = view;
        EXPECT_EQ(ApplyGlowMask(host, settings, map, &mask, false), 0);
        EXPECT_TRUE(SamePixels(map, before));
    }
}

TEST(ApplyGlowMask, RadiusOfZeroDisablesTheEllipseButNotTheMaskLayer) {
    FakeHost host;
    Picture map(6, 5);
    map.fill(0.5f);
    Picture mask(6, 5);
    mask.fill(0.5f, 9.0f, 9.0f, 9.0f);
    Picture want(6, 5);
    want.fill(0.25f);
    EXPECT_EQ(ApplyGlowMask(host, MaskSettings(0.000009), map, &mask, false), 0);
    EXPECT_TRUE(SamePixels(map, want));
}

TEST(ApplyGlowMask, AspectsOfZeroDisableTheEllipse) {
    FakeHost host;
    Picture map(6, 5);
    map.fill(0.5f);
    const Picture before(map);
    GlowSettings settings = MaskSettings(2.0);
    settings.widthAspect = 0.0;
    EXPECT_EQ(ApplyGlowMask(host, settings, map, nullptr, false), 0);
    settings.widthAspect = 1.0;
    settings.heightAspect = 0.000009;
    EXPECT_EQ(ApplyGlowMask(host, settings, map, nullptr, false), 0);
    EXPECT_TRUE(SamePixels(map, before));
}

TEST(ApplyGlowMask, MaskViewWithoutEnableMaskIsUniformlyWhite) {
    FakeHost host;
    Picture map(6, 5);
    map.fill(0.25f);
    Picture mask(6, 5);
    GlowSettings settings;
    settings.view = kViewMask;
    for (const bool single : {false, true}) {
        EXPECT_EQ(ApplyGlowMask(host, settings, map, &mask, single), 0);
        Picture want(6, 5);
        want.fill(1.0f);
        EXPECT_TRUE(SamePixels(map, want));
    }
}

TEST(ApplyGlowMask, MaskViewShowsTheConeOneAtTheCentreHalfHalfWayZeroAtTheRim) {
    FakeHost host;
    Picture map(300, 4);
    GlowSettings settings = MaskSettings(100.0);
    settings.view = kViewMask;
    EXPECT_EQ(ApplyGlowMask(host, settings, map, nullptr, false), 0);
    for (std::int32_t c = 0; c < 4; ++c) {
        EXPECT_EQ(map.at(150, 2, c), 1.0f);
        EXPECT_NEAR(map.at(200, 2, c), 0.5f, 1e-6f);
        EXPECT_EQ(map.at(250, 2, c), 0.0f);
        EXPECT_EQ(map.at(50, 2, c), 0.0f);
        EXPECT_EQ(map.at(299, 2, c), 0.0f);
    }
}

TEST(ApplyGlowMask, AspectOfFourStretchesByTwo) {
    FakeHost host;
    Picture map(300, 4);
    map.fill(1.0f);
    GlowSettings settings = MaskSettings(50.0);
    settings.widthAspect = 4.0;
    EXPECT_EQ(ApplyGlowMask(host, settings, map, nullptr, false), 0);
    EXPECT_NEAR(map.at(200, 2, kRed), 0.5f, 1e-6f);
    EXPECT_EQ(map.at(250, 2, kRed), 0.0f);
}

TEST(ApplyGlowMask, PixelAspectRatioIsTheWorkingRastersOwn) {
    FakeHost host;
    host.application = kAfterEffects;
    host.aspectRatio = 4.0;
    // A memory raster has square pixels whatever the command says.
    Picture map(300, 4);
    map.fill(1.0f);
    EXPECT_EQ(ApplyGlowMask(host, MaskSettings(50.0), map, nullptr, false), 0);
    EXPECT_NEAR(map.at(175, 2, kRed), 0.5f, 1e-6f);
    // A host world has the command's.
    const auto world = host.makeLayer(300, 4, 4);
    auto* const row2 =
        static_cast<float*>(world->layout().pixels) + 2 * world->layout().rowBytes / 4;
    for (int i = 0; i < 1200; ++i) row2[i] = 1.0f;
    EXPECT_EQ(ApplyGlowMask(host, MaskSettings(50.0), *world, nullptr, false), 0);
    EXPECT_NEAR(row2[200 * 4 + 1], 0.5f, 1e-6f);
    EXPECT_EQ(row2[250 * 4 + 1], 0.0f);
}

TEST(ApplyGlowMask, HalfResolutionHalvesTheRadiusInPixels) {
    FakeHost host;
    host.factorX = 0.5;
    host.factorY = 0.5;
    Picture map(300, 4);
    map.fill(1.0f);
    EXPECT_EQ(ApplyGlowMask(host, MaskSettings(100.0), map, nullptr, false), 0);
    EXPECT_NEAR(map.at(175, 2, kRed), 0.5f, 1e-6f);
    EXPECT_EQ(map.at(200, 2, kRed), 0.0f);
}

TEST(ApplyGlowMask, SmallMaskLayerLeavesTheRestUnmaskedAndMovesTheEllipse) {
    FakeHost host;
    Picture map(40, 30);
    map.fill(0.5f);
    Picture mask(20, 10);
    mask.fill(0.5f);
    GlowSettings settings = MaskSettings(4.0);
    EXPECT_EQ(ApplyGlowMask(host, settings, map, &mask, false), 0);
    EXPECT_EQ(map.at(10, 5, kRed), 0.25f);
    EXPECT_NEAR(map.at(12, 5, kRed), 0.125f, 1e-6f);
    EXPECT_EQ(map.at(0, 0, kRed), 0.0f);
    EXPECT_EQ(map.at(20, 5, kRed), 0.5f);
    EXPECT_EQ(map.at(10, 10, kRed), 0.5f);
    EXPECT_EQ(map.at(39, 29, kAlpha), 0.5f);
}

TEST(ApplyGlowMask, OneChannelMapKeepsItsColours) {
    FakeHost host;
    Picture map(9, 9);
    map.fill(0.5f);
    Picture mask(9, 9);
    mask.fill(0.0f);
    EXPECT_EQ(ApplyGlowMask(host, MaskSettings(3.0), map, &mask, true), 0);
    EXPECT_EQ(map.at(0, 0, kAlpha), 0.0f);
    EXPECT_EQ(map.at(4, 4, kAlpha), 0.0f);
    EXPECT_EQ(map.at(0, 0, kRed), 0.5f);
    EXPECT_EQ(map.at(4, 4, kBlue), 0.5f);
}

TEST(ApplyGlowMask, NeverBrightensLight) {
    Random random(61);
    for (const double falloff : {0.0, 0.3, 0.7, 0.99}) {
        FakeHost host;
        GlowSettings settings = MaskSettings(8.0);
        settings.maskFalloff = falloff;
        Picture map(17, 17);
        map.randomize(random, 0.0f, 2.0f);
        const Picture before(map);
        EXPECT_EQ(ApplyGlowMask(host, settings, map, nullptr, false), 0);
        ForEachFloat(map, [&](std::int32_t x, std::int32_t y, std::int32_t c) {
            EXPECT_LE(map.at(x, y, c), before.at(x, y, c));
        });
    }
}

TEST(MultiplyByAlpha, MaskAlphaThatIsNotFiniteCannotSpread) {
    Picture map(3, 1);
    map.fill(0.5f);
    Picture mask(3, 1);
    mask.set(0, 0, {kNaN, 1.0f, 1.0f, 1.0f});
    mask.set(1, 0, {kInfinity, 1.0f, 1.0f, 1.0f});
    mask.set(2, 0, {-kInfinity, 1.0f, 1.0f, 1.0f});
    MultiplyByAlpha(map.view(), mask.view(), 3, 1, false);
    EXPECT_EQ(map.at(0, 0, kGreen), 0.0f);
    EXPECT_EQ(map.at(1, 0, kGreen), 32752.0f);
    EXPECT_EQ(map.at(2, 0, kAlpha), -32752.0f);
}

TEST(MaskPixels, TreatOnlyTheRectangleThatIsAskedFor) {
    Random random(62);
    Picture map(9, 6, 1);
    map.randomize(random, 1.0f, 2.0f);
    const Picture before(map);
    Picture mask(5, 3);
    MultiplyByAlpha(map.view(), mask.view(), 5, 3, false);
    MultiplyByEllipse(map.view(), {20.0f, 20.0f, 1.0f, 1.0f, 1.0f, 1.0f}, 6, 4, false);
    ForEachFloat(map, [&](std::int32_t x, std::int32_t y, std::int32_t c) {
        EXPECT_EQ(map.at(x, y, c), x < 6 && y < 4 ? 0.0f : before.at(x, y, c));
    });
    EXPECT_TRUE(map.paddingIntact());
}

}  // namespace
}  // namespace vireon::test
