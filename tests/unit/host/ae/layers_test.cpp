#include <gtest/gtest.h>

#include "command.h"
#include "shapes/glow_kernel.h"

namespace vireon::test {
namespace {

using headless::Depth;
using headless::Slot;

TEST(ParameterRaster, ViewsTheLayerOfAParameter) {
    InRender([](Command& command) {
        PluginHost_AE_Impl host = command.makeHost();
        const auto raster = host.parameterRaster(kInput);
        ASSERT_NE(raster, nullptr);
        ASSERT_NE(raster->asHostWorld(), nullptr);
        EXPECT_EQ(raster->asHostWorld()->world(), &command.params[kInput]->u.ld);
        EXPECT_EQ(raster->width(), 6);
        const auto layer = host.parameterRaster(kLayer);
        ASSERT_NE(layer, nullptr);
        EXPECT_EQ(layer->asHostWorld()->world(), &command.params[kLayer]->u.ld);
        EXPECT_NE(host.parameterRaster(kInput), raster) << "a new object each time";
    });
}

TEST(OutputRaster, ViewsTheOutput) {
    InRender([](Command& command) {
        const auto raster = command.makeHost().outputRaster();
        ASSERT_NE(raster, nullptr);
        EXPECT_EQ(raster->asHostWorld()->world(), command.output);
        command.output = nullptr;
        EXPECT_EQ(command.makeHost().outputRaster(), nullptr);
    });
}

TEST(CheckoutLayer, GivesALayerUntilItIsCheckedIn) {
    Scene scene;
    scene.settings.time = {.current = 12, .step = 2, .localStep = 2, .total = 50, .scale = 25};
    scene.prepare = [](headless::Host& host) { host.setLayer(kLayer, MakeLayer(Depth::k8, 3, 2)); };
    InRender(scene, [](Command& command) {
        PluginHost_AE_Impl host = command.makeHost();
        const auto layer = host.checkoutLayer(kLayer, 16);
        ASSERT_NE(layer, nullptr);
        EXPECT_EQ(layer->width(), 3);
        EXPECT_EQ(layer->height(), 2);
        ASSERT_EQ(command.spy.checkOuts.size(), 1u);
        EXPECT_EQ(command.spy.checkOuts[0].index, kLayer);
        EXPECT_EQ(command.spy.checkOuts[0].time, 12);
        EXPECT_EQ(command.spy.checkOuts[0].step, 2);
        EXPECT_EQ(command.spy.checkOuts[0].scale, 25u);
        EXPECT_EQ(command.calls(Slot::kCheckinParam), 0u);
        host.checkinLayer(kLayer);
        EXPECT_EQ(command.calls(Slot::kCheckinParam), 1u);
        host.checkinLayer(kLayer);
        EXPECT_EQ(command.calls(Slot::kCheckinParam), 1u);
    });
}

TEST(CheckoutLayer, AnAbsentLayerIsNullAndCheckedInAllTheSame) {
    InRender([](Command& command) {
        PluginHost_AE_Impl host = command.makeHost();
        EXPECT_EQ(host.checkoutLayer(kLayer, 16), nullptr);
        EXPECT_EQ(command.calls(Slot::kCheckoutParam), 1u);
        host.checkinLayer(kLayer);
        EXPECT_EQ(command.calls(Slot::kCheckinParam), 1u);
    });
}

TEST(CheckoutLayer, WhatCouldNotBeCheckedOutIsNotCheckedIn) {
    InRender([](Command& command) {
        PluginHost_AE_Impl host = command.makeHost();
        command.failNext(Slot::kCheckoutParam);
        EXPECT_EQ(host.checkoutLayer(kLayer, 16), nullptr);
        host.checkinLayer(kLayer);
        EXPECT_EQ(command.calls(Slot::kCheckinParam), 0u);
    });
}

TEST(CustomShape, IsNoneUntilItIsSet) {
    InRender([](Command& command) {
        PluginHost_AE_Impl host = command.makeHost();
        EXPECT_EQ(host.customShape(), nullptr);
        const GlowKernel kernel;
        host.setCustomShape(&kernel);
        EXPECT_EQ(host.customShape(), &kernel);
        host.setCustomShape(nullptr);
        EXPECT_EQ(host.customShape(), nullptr);
    });
}

}  // namespace
}  // namespace vireon::test
