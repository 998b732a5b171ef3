// What the interface itself answers for a host that does without an operation.

#include <gtest/gtest.h>

#include <cmath>
#include <memory>

#include "tests/unit/support/fake_host.h"

namespace vireon::test {
namespace {

TEST(HostDefaults, RastersAndMemoryAreNotToBeHad) {
    FakeHost fake;
    PluginHost_API& host = fake;
    auto record = std::make_unique<OwnedLayout>();
    EXPECT_EQ(host.worldFromLayout(record), nullptr);
    EXPECT_NE(record, nullptr);
    EXPECT_EQ(host.inputLayerAt(0), nullptr);
    EXPECT_EQ(host.parameterUpdate(), nullptr);
    EXPECT_EQ(host.loadLibrary("any"), nullptr);
    EXPECT_EQ(host.handleSize(nullptr), 0u);
    void** handle = nullptr;
    EXPECT_EQ(host.resizeHandle(handle, 10), 516);
    EXPECT_EQ(host.path(), nullptr);
    host.setPath(nullptr);
    EXPECT_FALSE(host.hasGlobalAndSequenceData());
    const auto layer = fake.makeLayer(2, 2, 1);
    EXPECT_FALSE(host.isRasterDeep(*layer));
    host.adoptOutput(*layer);
    host.growOutput(10, 10, 0, 0);
    EXPECT_EQ(host.width(), -1);
}

TEST(HostDefaults, MathsIsTheSystems) {
    FakeHost fake;
    PluginHost_API& host = fake;
    EXPECT_EQ(host.mathSqrt(2.25), 1.5);
    EXPECT_EQ(host.mathFloor(-1.5), -2.0);
    EXPECT_EQ(host.mathCeil(-1.5), -1.0);
    EXPECT_EQ(host.mathAbs(-1.5), 1.5);
    EXPECT_DOUBLE_EQ(host.mathSin(0.5), std::sin(0.5));
    EXPECT_DOUBLE_EQ(host.mathCos(0.5), std::cos(0.5));
    EXPECT_DOUBLE_EQ(host.mathTan(0.5), std::tan(0.5));
    EXPECT_DOUBLE_EQ(host.mathAtan(0.5), std::atan(0.5));
    EXPECT_DOUBLE_EQ(host.mathExp(0.5), std::exp(0.5));
    EXPECT_DOUBLE_EQ(host.mathLog(0.5), std::log(0.5));
    EXPECT_DOUBLE_EQ(host.mathPow(2.0, 0.5), std::sqrt(2.0));
    EXPECT_EQ(host.mathFloor(-1.5f), -2.0f);
    EXPECT_EQ(host.mathPow(2.0f, 3.0f), 8.0f);
}

TEST(HostDefaults, TimeAndWordsAreAtRest) {
    FakeHost fake;
    PluginHost_API& host = fake;
    EXPECT_EQ(host.timeScale(), 1u);
    EXPECT_EQ(host.currentTime(), 0);
    EXPECT_EQ(host.timeStep(), 0);
    EXPECT_EQ(host.totalTime(), 0);
    EXPECT_EQ(host.localTimeStep(), 0);
    EXPECT_EQ(host.shutterPhase(), 0.0f);
    EXPECT_EQ(host.shutterAngle(), 0.0f);
    host.setUserWord(5);
    EXPECT_EQ(host.userWord(), 0);
    host.setUserWords(5, 6);
    std::int32_t first = 9;
    std::int32_t second = 9;
    host.userWords(first, second);
    EXPECT_EQ(first, 0);
    EXPECT_EQ(second, 0);
    EXPECT_EQ(host.fieldCount(), 1);
    EXPECT_EQ(host.one(), 1.0);
    EXPECT_EQ(host.unit(), 1);
    EXPECT_EQ(host.setSizeOverride(3, 4), 0);
    EXPECT_FALSE(host.canRefreshUi());
    host.requestUiRefresh();
    host.setReturnMessage("a", "b");
    host.sizeLimit(first, second);
    EXPECT_EQ(first, -1);
    EXPECT_EQ(second, -1);
    float rate = 9.0f;
    EXPECT_TRUE(host.frameRate(rate));
    EXPECT_TRUE(std::isfinite(rate));
}

TEST(HostDefaults, WhatOnlyTheApplicationKnowsIsAnError) {
    FakeHost fake;
    PluginHost_API& host = fake;
    std::uint16_t red = 0;
    std::uint16_t green = 0;
    std::uint16_t blue = 0;
    bool answer = true;
    EXPECT_EQ(host.backgroundColour(red, green, blue), 516);
    EXPECT_EQ(host.interfaceColour(1, red, green, blue), 516);
    EXPECT_EQ(host.isRenderEngine(answer), 516);
    std::int32_t major = 9;
    std::int32_t minor = 9;
    host.hostVersionParts(major, minor);
    EXPECT_EQ(major, 0);
    EXPECT_EQ(minor, 0);
}

TEST(HostDefaults, ValuesAtATimeAreZero) {
    FakeHost fake;
    PluginHost_API& host = fake;
    double a = 9.0;
    double b = 9.0;
    double c = 9.0;
    std::int32_t i = 9;
    host.floatSliderAt(1, {}, a);
    EXPECT_EQ(a, 0.0);
    a = 9.0;
    host.sliderAt(1, 0, {}, a);
    EXPECT_EQ(a, 0.0);
    a = 9.0;
    host.fixedAt(1, 0, {}, a);
    EXPECT_EQ(a, 0.0);
    host.integerAt(1, 0, {}, i);
    EXPECT_EQ(i, 0);
    i = 9;
    host.popupAt(1, 0, {}, i);
    EXPECT_EQ(i, 0);
    a = 9.0;
    host.pointAt(1, {}, a, b);
    EXPECT_EQ(a, 0.0);
    EXPECT_EQ(b, 0.0);
    a = b = 9.0;
    host.spacePointAt(1, {}, a, b, c);
    EXPECT_EQ(a, 0.0);
    EXPECT_EQ(b, 0.0);
    EXPECT_EQ(c, 0.0);
}

}  // namespace
}  // namespace vireon::test
