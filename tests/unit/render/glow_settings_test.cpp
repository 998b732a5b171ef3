#include "render/glow_settings.h"

#include <cstdint>

#include <gtest/gtest.h>

#include "render/glow_params.h"
#include "render/parameter_ids.h"
#include "tests/unit/support/fake_host.h"

namespace vireon::test {
namespace {

TEST(GlowSettings, FreshRecordHoldsTheDefaultsFieldByField) {
    const GlowSettings s;
    EXPECT_EQ(s.inputChannels, 0);
    EXPECT_EQ(s.glowRadius, 100.0);
    EXPECT_EQ(s.radiusScale, 1.0);
    EXPECT_EQ(s.glowIntensity, 10.0);
    EXPECT_EQ(s.glowFalloff, 1.0);
    EXPECT_EQ(s.pipelineMode, 1);
    EXPECT_TRUE(s.outputRed);
    EXPECT_TRUE(s.outputGreen);
    EXPECT_TRUE(s.outputBlue);
    EXPECT_TRUE(s.outputAlpha);
    EXPECT_EQ(s.shape, 2);
    EXPECT_EQ(s.sourceOpacity, 100.0);
    EXPECT_EQ(s.glowOpacity, 100.0);
    EXPECT_EQ(s.transferMode, 0);
    EXPECT_EQ(s.reservedCount, 8);
    EXPECT_EQ(s.reservedMode, 0);
    EXPECT_EQ(s.lightGain, 1.0);
    EXPECT_FALSE(s.firstPrePass);
    EXPECT_FALSE(s.driverFlag);
    EXPECT_FALSE(s.singleChannel);
    EXPECT_EQ(s.reachScale, 1.25);
    EXPECT_EQ(s.view, 0);
    EXPECT_EQ(s.countProgressTwice, 0);
    EXPECT_EQ(s.blurInput, 0.0);
    EXPECT_EQ(s.threshold, 0.0);
    EXPECT_FALSE(s.enableMask);
    EXPECT_EQ(s.maskRadius, 100.0);
    EXPECT_EQ(s.maskFalloff, 0.0);
    EXPECT_EQ(s.widthAspect, 1.0);
    EXPECT_EQ(s.maskCenterX, 0.5);
    EXPECT_EQ(s.maskCenterY, 0.5);
    EXPECT_EQ(s.heightAspect, 1.0);
    for (const bool flag : s.reservedFlags) EXPECT_FALSE(flag);
    EXPECT_FALSE(s.fastSplat);
    EXPECT_TRUE(s.preventOverbrights);
    EXPECT_EQ(s.overbrightClamp, 100.0);
    EXPECT_EQ(s.quality, 2);
    EXPECT_EQ(s.progressCount, 0);
    EXPECT_EQ(s.progressTotal, 100);
}

TEST(GlowSettings, OutputChannelFlagsOfEveryChoice) {
    struct Case {
        std::int32_t choice;
        bool red, green, blue, alpha;
    };
    for (const Case& c : {Case{0, true, true, true, false}, Case{1, true, true, true, true},
                          Case{2, true, false, false, false}, Case{3, false, true, false, false},
                          Case{4, false, false, true, false}, Case{5, false, false, false, true},
                          Case{6, false, false, false, false}, Case{-1, false, false, false, false},
                          Case{1000, false, false, false, false}}) {
        GlowSettings s;
        s.setOutputChannels(c.choice);
        EXPECT_EQ(s.outputRed, c.red) << c.choice;
        EXPECT_EQ(s.outputGreen, c.green) << c.choice;
        EXPECT_EQ(s.outputBlue, c.blue) << c.choice;
        EXPECT_EQ(s.outputAlpha, c.alpha) << c.choice;
        EXPECT_EQ(s.outputChannelCount(), c.red + c.green + c.blue + c.alpha) << c.choice;
    }
}

GlowParams SomeParams() {
    GlowParams p;
    p.shape = 7;
    p.glowRadius = 33.5;
    p.glowIntensity = 12.25;
    p.glowFalloff = 1.75;
    p.threshold = 22.5;
    p.blurInput = 0.125;
    p.quality = 4;
    p.inputChannels = 3;
    p.enableMask = true;
    p.maskCenterX = 0.25;
    p.maskCenterY = 0.75;
    p.maskRadius = 44.5;
    p.maskFalloff = 0.375;
    p.widthAspect = 1.5;
    p.heightAspect = 2.5;
    p.view = 1;
    p.preventOverbrights = false;
    p.overbrightClamp = 66.5;
    p.outputChannels = 5;
    p.sourceOpacity = 77.5;
    p.glowOpacity = 88.5;
    p.transferMode = 14;
    return p;
}

TEST(GlowSettings, FillTakesEveryParameterAndSetsTheDriversFlag) {
    const GlowParams p = SomeParams();
    GlowSettings s;
    s.fill(p);
    EXPECT_EQ(s.shape, p.shape);
    EXPECT_EQ(s.glowRadius, p.glowRadius);
    EXPECT_EQ(s.glowIntensity, p.glowIntensity);
    EXPECT_EQ(s.glowFalloff, p.glowFalloff);
    EXPECT_EQ(s.threshold, p.threshold);
    EXPECT_EQ(s.blurInput, p.blurInput);
    EXPECT_EQ(s.quality, p.quality);
    EXPECT_EQ(s.inputChannels, p.inputChannels);
    EXPECT_EQ(s.enableMask, p.enableMask);
    EXPECT_EQ(s.maskCenterX, p.maskCenterX);
    EXPECT_EQ(s.maskCenterY, p.maskCenterY);
    EXPECT_EQ(s.maskRadius, p.maskRadius);
    EXPECT_EQ(s.maskFalloff, p.maskFalloff);
    EXPECT_EQ(s.widthAspect, p.widthAspect);
    EXPECT_EQ(s.heightAspect, p.heightAspect);
    EXPECT_EQ(s.view, p.view);
    EXPECT_EQ(s.preventOverbrights, p.preventOverbrights);
    EXPECT_EQ(s.overbrightClamp, p.overbrightClamp);
    EXPECT_EQ(s.sourceOpacity, p.sourceOpacity);
    EXPECT_EQ(s.glowOpacity, p.glowOpacity);
    EXPECT_EQ(s.transferMode, p.transferMode);
    EXPECT_TRUE(s.driverFlag);
    EXPECT_TRUE(s.outputAlpha);
    EXPECT_FALSE(s.outputRed);
}

TEST(GlowSettings, FillLeavesTheFixedFieldsAtTheirDefaults) {
    GlowSettings s;
    s.fill(SomeParams());
    const GlowSettings fresh;
    EXPECT_EQ(s.radiusScale, fresh.radiusScale);
    EXPECT_EQ(s.pipelineMode, fresh.pipelineMode);
    EXPECT_EQ(s.reservedCount, fresh.reservedCount);
    EXPECT_EQ(s.reservedMode, fresh.reservedMode);
    EXPECT_EQ(s.lightGain, fresh.lightGain);
    EXPECT_EQ(s.firstPrePass, fresh.firstPrePass);
    EXPECT_EQ(s.singleChannel, fresh.singleChannel);
    EXPECT_EQ(s.reachScale, fresh.reachScale);
    EXPECT_EQ(s.countProgressTwice, fresh.countProgressTwice);
    EXPECT_EQ(s.fastSplat, fresh.fastSplat);
    EXPECT_EQ(s.progressCount, fresh.progressCount);
    EXPECT_EQ(s.progressTotal, fresh.progressTotal);
}

TEST(ReadGlowParams, ReadsEveryParameterOnceByItsKind) {
    FakeHost host;
    host.popups = {{kParamShape, 7}, {kParamQuality, 4},        {kParamInputChannels, 3},
                   {kParamView, 1},  {kParamOutputChannels, 5}, {kParamTransferMode, 14}};
    host.sliders = {
        {kParamGlowRadius, 33.5},      {kParamGlowIntensity, 12.25}, {kParamGlowFalloff, 1.75},
        {kParamThreshold, 22.5},       {kParamBlurInput, 0.125},     {kParamMaskRadius, 44.5},
        {kParamMaskFalloff, 0.375},    {kParamMaskWidthAspect, 1.5}, {kParamMaskHeightAspect, 2.5},
        {kParamOverbrightClamp, 66.5}, {kParamSourceOpacity, 77.5},  {kParamGlowOpacity, 88.5}};
    host.checkboxes = {{kParamEnableMask, true}, {kParamPreventOverbrights, false}};
    host.points = {{kParamMaskCenter, {50.0, 300.0}}};
    const GlowParams p = ReadGlowParams(host, 200, 400);
    const GlowParams want = SomeParams();
    EXPECT_EQ(p.shape, want.shape);
    EXPECT_EQ(p.glowRadius, want.glowRadius);
    EXPECT_EQ(p.glowIntensity, want.glowIntensity);
    EXPECT_EQ(p.glowFalloff, want.glowFalloff);
    EXPECT_EQ(p.threshold, want.threshold);
    EXPECT_EQ(p.blurInput, want.blurInput);
    EXPECT_EQ(p.quality, want.quality);
    EXPECT_EQ(p.inputChannels, want.inputChannels);
    EXPECT_EQ(p.enableMask, want.enableMask);
    EXPECT_EQ(p.maskCenterX, want.maskCenterX);
    EXPECT_EQ(p.maskCenterY, want.maskCenterY);
    EXPECT_EQ(p.maskRadius, want.maskRadius);
    EXPECT_EQ(p.maskFalloff, want.maskFalloff);
    EXPECT_EQ(p.widthAspect, want.widthAspect);
    EXPECT_EQ(p.heightAspect, want.heightAspect);
    EXPECT_EQ(p.view, want.view);
    EXPECT_EQ(p.preventOverbrights, want.preventOverbrights);
    EXPECT_EQ(p.overbrightClamp, want.overbrightClamp);
    EXPECT_EQ(p.outputChannels, want.outputChannels);
    EXPECT_EQ(p.sourceOpacity, want.sourceOpacity);
    EXPECT_EQ(p.glowOpacity, want.glowOpacity);
    EXPECT_EQ(p.transferMode, want.transferMode);
    for (const auto& [index, kind] : host.sliderKinds) {
        const bool fixedPoint = index == kParamSourceOpacity || index == kParamGlowOpacity;
        EXPECT_EQ(kind >= 0, fixedPoint) << index;
    }
    EXPECT_EQ(host.count("popupValue"), 6);
    EXPECT_EQ(host.count("sliderValue"), 12);
}

TEST(ReadGlowParams, CentreOfAnEmptyLayerIsZero) {
    FakeHost host;
    host.points = {{kParamMaskCenter, {50.0, 300.0}}};
    const GlowParams p = ReadGlowParams(host, 0, 0);
    EXPECT_EQ(p.maskCenterX, 0.0);
    EXPECT_EQ(p.maskCenterY, 0.0);
}

}  // namespace
}  // namespace vireon::test
