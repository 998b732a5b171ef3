#include <gtest/gtest.h>

#include "command.h"
#include "host/application_codes.h"
#include "image/pixel_format.h"

namespace vireon::test {
namespace {

using headless::Depth;

TEST(Size, IsTheOutputsUnlessItIsOverridden) {
    InRender([](Command& command) {
        PluginHost_AE_Impl host = command.makeHost();
        EXPECT_EQ(host.width(), 6);
        EXPECT_EQ(host.height(), 4);
        EXPECT_EQ(host.setSizeOverride(100, 50), 0);
        EXPECT_EQ(host.width(), 100);
        EXPECT_EQ(host.height(), 50);
        EXPECT_EQ(host.setSizeOverride(-1, 50), 0);
        EXPECT_EQ(host.width(), 6);
        EXPECT_EQ(host.height(), 50);
        EXPECT_EQ(host.setSizeOverride(7, -2), 0);
        EXPECT_EQ(host.width(), 7);
        EXPECT_EQ(host.height(), 4);
        EXPECT_EQ(host.setSizeOverride(-2, -1), 0);
        EXPECT_EQ(host.width(), 6);
        EXPECT_EQ(host.height(), 4);
        EXPECT_EQ(host.setSizeOverride(0, -3), 0);
        EXPECT_EQ(host.width(), 0);
        EXPECT_EQ(host.height(), -3);
    });
}

TEST(Size, IsTheOverrideWithoutAnOutput) {
    InRender([](Command& command) {
        command.output = nullptr;
        PluginHost_AE_Impl host = command.makeHost();
        EXPECT_EQ(host.width(), -1);
        EXPECT_EQ(host.height(), -1);
        EXPECT_EQ(host.setSizeOverride(-2, 33), 0);
        EXPECT_EQ(host.width(), -2);
        EXPECT_EQ(host.height(), 33);
    });
}

TEST(Size, HasNoLimit) {
    InRender([](Command& command) {
        std::int32_t width = 5;
        std::int32_t height = 5;
        command.makeHost().sizeLimit(width, height);
        EXPECT_EQ(width, -1);
        EXPECT_EQ(height, -1);
    });
}

TEST(Origin, IsTheOutputsInAfterEffectsOnly) {
    for (const std::int32_t application :
         {kAfterEffects, kPremierePro, kFinalCutPro, kMotion, kCbst}) {
        Scene scene = SceneIn(application, 13, 27);
        scene.input = MakeLayer(Depth::k8);
        scene.input->setOrigin(-3, 11);
        InRender(scene, [&](Command& command) {
            const PluginHost_AE_Impl host = command.makeHost();
            ASSERT_EQ(command.output->origin_x, -3);
            EXPECT_EQ(host.outputOriginX(), application == kAfterEffects ? -3 : 0) << application;
            EXPECT_EQ(host.outputOriginY(), application == kAfterEffects ? 11 : 0) << application;
        });
    }
}

TEST(Origin, IsZeroWithoutAnOutput) {
    InRender([](Command& command) {
        command.output = nullptr;
        const PluginHost_AE_Impl host = command.makeHost();
        EXPECT_EQ(host.outputOriginX(), 0);
        EXPECT_EQ(host.outputOriginY(), 0);
    });
}

/// What growOutput makes of a world of 80 x 60 in a command whose out-data names a size.
struct Grown {
    std::int32_t width;
    std::int32_t height;
    sdk::PF_Point origin;
};

Grown Grow(sdk::PF_Point outSize, sdk::PF_Point wanted, std::int32_t a, std::int32_t b) {
    Grown grown{};
    RunCleanIn(sdk::PF_Cmd_FRAME_SETUP, {}, [&](Command& command) {
        sdk::PF_EffectWorld world{};
        world.width = 80;
        world.height = 60;
        sdk::PF_OutData out{};
        out.width = outSize.h;
        out.height = outSize.v;
        out.origin = {1234, 5678};
        PluginHost_AE_Impl host(&command.in, &out, nullptr, &world);
        host.growOutput(wanted.h, wanted.v, a, b);
        grown = {world.width, world.height, out.origin};
        EXPECT_EQ(out.width, outSize.h);
        EXPECT_EQ(out.height, outSize.v);
    });
    return grown;
}

TEST(GrowOutput, LeavesAnOutputThatIsLargeEnough) {
    for (const sdk::PF_Point wanted : {sdk::PF_Point{80, 60}, {10, 60}, {80, 1}, {0, 0}}) {
        const Grown grown = Grow({100, 90}, wanted, 20, 30);
        EXPECT_EQ(grown.width, 80);
        EXPECT_EQ(grown.height, 60);
        EXPECT_EQ(grown.origin.h, 1234);
        EXPECT_EQ(grown.origin.v, 5678);
    }
}

TEST(GrowOutput, TakesTheWholeSizeWhenEitherSideIsTooSmall) {
    for (const sdk::PF_Point wanted : {sdk::PF_Point{81, 60}, {80, 61}, {200, 10}, {10, 200}}) {
        const Grown grown = Grow({100, 90}, wanted, 20, 30);
        EXPECT_EQ(grown.width, wanted.h);
        EXPECT_EQ(grown.height, wanted.v);
        EXPECT_EQ(grown.origin.h, 40);
        EXPECT_EQ(grown.origin.v, 30);
    }
}

TEST(GrowOutput, ComputesTheOriginInSixteenBitsAndKeepsItsSign) {
    const Grown negative = Grow({40, 41}, {100, 100}, 100, 100);
    EXPECT_EQ(negative.origin.h, -30);
    EXPECT_EQ(negative.origin.v, -29);
    // 60000 is -5536 in 16 bits; 40000 - 30000 fits again.
    const Grown wrapped = Grow({60000, 40000}, {100, 100}, 0, 30000);
    EXPECT_EQ(wrapped.origin.h, -2768);
    EXPECT_EQ(wrapped.origin.v, 5000);
}

TEST(GrowOutput, NeedsAnOutput) {
    InRender([](Command& command) {
        command.output = nullptr;
        command.makeHost().growOutput(100, 100, 0, 0);
        EXPECT_EQ(command.out.origin.h, 0);
    });
}

TEST(AdoptOutput, MakesAnotherWorldTheOutput) {
    InRender([](Command& command) {
        PluginHost_AE_Impl host = command.makeHost();
        std::int32_t error = 1;
        const auto world = host.newWorld(9, 5, kDepth8, error, true);
        ASSERT_NE(world, nullptr);
        host.adoptOutput(*world);
        EXPECT_EQ(host.width(), 9);
        EXPECT_EQ(host.height(), 5);
        const auto output = host.outputRaster();
        ASSERT_NE(output, nullptr);
        EXPECT_EQ(output->asHostWorld()->world(), world->asHostWorld()->world());
        EXPECT_EQ(host.disposeWorld(*world), 0);
    });
}

}  // namespace
}  // namespace vireon::test
