#include <gtest/gtest.h>

#include "command.h"
#include "host/application_codes.h"
#include "host/plugin_raster_mem_impl.h"
#include "image/pixel_format.h"

namespace vireon::test {
namespace {

using headless::Depth;

struct Kind {
    Depth depth;
    std::int32_t pixelFormat;
    std::int32_t formatCode;
    std::int32_t bytesPerPixel;
    float deepScaleOfParameters;
    float deepScaleOfOthers;
};
const Kind kKinds[] = {
    {Depth::k8, 0, 0, 4, 1.0f, 1.0f},
    {Depth::k8, sdk::PF_PixelFormat_BGRA32, 1, 4, 1.0f, 1.0f},
    {Depth::k16, 0, 3, 8, 2.0f, 0.5f},
    {Depth::kFloat, 0, 9, 16, 1.0f, 1.0f},
};

void ExpectLayoutOf(const sdk::PF_EffectWorld& world, const Kind& kind, const RasterLayout& layout,
                    float valueScale) {
    EXPECT_EQ(layout.pixels, world.data);
    EXPECT_EQ(layout.formatCode, kind.formatCode);
    EXPECT_EQ(layout.width, world.width);
    EXPECT_EQ(layout.height, world.height);
    EXPECT_EQ(layout.rowBytes, world.rowbytes);
    EXPECT_EQ(layout.bytesPerPixel, kind.bytesPerPixel);
    EXPECT_EQ(layout.pixelAspectRatio, static_cast<float>(10.0 / 11.0));
    EXPECT_EQ(layout.valueScale, valueScale);
    EXPECT_EQ(layout.reserved, 0);
}

TEST(Layout, OfParametersOutputAndRastersTellsFormatAndScale) {
    for (const bool negativeRows : {false, true}) {
        for (const Kind& kind : kKinds) {
            SCOPED_TRACE(kind.formatCode);
            Scene scene;
            scene.settings.pixelAspect = {10, 11};
            scene.settings.negativeRowBytes = negativeRows;
            scene.depth = kind.depth;
            scene.input = MakeLayer(kind.depth, 6, 4, kind.pixelFormat);
            InRender(scene, [&](Command& command) {
                // The output has the input's format too when the host renders blue first.
                command.output = &command.params[0]->u.ld;
                PluginHost_AE_Impl host = command.makeHost();
                RasterLayout layout{.valueScale = 77.0f, .reserved = 5};
                EXPECT_EQ(host.parameterLayout(kInput, layout), 0);
                ExpectLayoutOf(*command.output, kind, layout, kind.deepScaleOfParameters);
                layout = {.valueScale = 77.0f, .reserved = 5};
                EXPECT_EQ(host.outputLayout(layout), 0);
                ExpectLayoutOf(*command.output, kind, layout, kind.deepScaleOfParameters);
                layout = {.valueScale = 77.0f, .reserved = 5};
                const auto raster = host.outputRaster();
                EXPECT_EQ(host.rasterLayout(*raster, layout), 0);
                ExpectLayoutOf(*command.output, kind, layout, kind.deepScaleOfOthers);
            });
        }
    }
}

TEST(Layout, OfAMemoryRasterIsItsOwnRecord) {
    InRender([](Command& command) {
        PluginHost_AE_Impl host = command.makeHost();
        std::int32_t error = 1;
        PluginRaster_MEM_Impl memory(host, 5, 2, kDepth16, error);
        RasterLayout layout;
        EXPECT_EQ(host.rasterLayout(memory, layout), 0);
        EXPECT_EQ(layout.pixels, memory.layoutRecord()->pixels);
        EXPECT_EQ(layout.formatCode, kFormat16);
        EXPECT_EQ(layout.width, 5);
        EXPECT_EQ(layout.height, 2);
        EXPECT_EQ(layout.rowBytes, 40);
        EXPECT_EQ(layout.bytesPerPixel, 8);
        EXPECT_EQ(layout.pixelAspectRatio, 1.0f);
        EXPECT_EQ(layout.valueScale, 1.0f);
    });
}

TEST(Layout, OfWhatIsNotThereIsAnError) {
    InRender([](Command& command) {
        RasterLayout layout;
        sdk::PF_EffectWorld* const output = command.output;
        command.output = nullptr;
        EXPECT_EQ(command.makeHost().outputLayout(layout), sdk::PF_Err_BAD_CALLBACK_PARAM);
        command.output = output;
        command.params = nullptr;
        EXPECT_EQ(command.makeHost().parameterLayout(kInput, layout), sdk::PF_Err_INVALID_INDEX);
    });
}

TEST(Layout, TheAspectRatioOfAHostWithoutOneIsOne) {
    Scene scene;
    scene.settings.pixelAspect = {4, 0};
    InRender(scene, [](Command& command) {
        RasterLayout layout;
        EXPECT_EQ(command.makeHost().outputLayout(layout), 0);
        EXPECT_EQ(layout.pixelAspectRatio, 1.0f);
    });
}

// Pixel-data callbacks that give addresses of their own, so that it shows whose answer is taken.
alignas(16) std::uint8_t bytes8[64];
alignas(16) std::uint8_t bytes16[64];

sdk::PF_Err Pixels8(sdk::PF_EffectWorld*, void*, sdk::PF_Pixel** pixels) {
    *pixels = reinterpret_cast<sdk::PF_Pixel*>(bytes8);
    return 0;
}

sdk::PF_Err Pixels16(sdk::PF_EffectWorld*, void*, sdk::PF_Pixel16** pixels) {
    *pixels = reinterpret_cast<sdk::PF_Pixel16*>(bytes16);
    return 0;
}

struct PointerCase {
    std::int32_t application;
    std::int16_t major;
    std::int16_t minor;
    bool byCallback;
};
const PointerCase kPointerCases[] = {
    {kAfterEffects, 11, 9, false}, {kAfterEffects, 12, 4, false}, {kAfterEffects, 12, 5, true},
    {kAfterEffects, 12, 12, true}, {kAfterEffects, 13, 0, false}, {kAfterEffects, 13, 4, false},
    {kAfterEffects, 13, 5, true},  {kAfterEffects, 13, 27, true}, {kAfterEffects, 14, 1, false},
    {kPremierePro, 13, 27, false}, {kPremierePro, 13, 4, false},  {kFinalCutPro, 13, 27, true},
    {kFinalCutPro, 12, 12, true},  {kMotion, 13, 27, true},
};

TEST(Layout, ThePixelsAreThoseOfTheHostsCallbackWhereItHasOne) {
    for (const PointerCase& one : kPointerCases) {
        SCOPED_TRACE(testing::Message() << one.major << "." << one.minor << " " << one.application);
        for (const Depth depth : {Depth::k8, Depth::k16, Depth::kFloat}) {
            Scene scene = SceneIn(one.application, one.major, one.minor);
            const bool knowsFloat = one.major * 100 + one.minor >= 1212;
            if (depth == Depth::kFloat && !knowsFloat) continue;
            scene.depth = depth;
            InRender(scene, [&](Command& command) {
                command.utils.get_pixel_data8 = Pixels8;
                command.utils.get_pixel_data16 = Pixels16;
                PluginHost_AE_Impl host = command.makeHost();
                void* expected = command.output->data;
                if (one.byCallback && depth == Depth::k8) expected = bytes8;
                if (one.byCallback && depth == Depth::k16) expected = bytes16;
                RasterLayout layout;
                EXPECT_EQ(host.outputLayout(layout), 0);
                EXPECT_EQ(layout.pixels, expected);
                const auto raster = host.outputRaster();
                EXPECT_EQ(host.rasterLayout(*raster, layout), 0);
                EXPECT_EQ(layout.pixels, expected);
            });
        }
    }
}

TEST(Layout, FailuresOfTheHostComeOut) {
    for (const Depth depth : {Depth::k8, Depth::k16}) {
        Scene scene;
        scene.depth = depth;
        InRender(scene, [&](Command& command) {
            PluginHost_AE_Impl host = command.makeHost();
            RasterLayout layout;
            command.failNext(depth == Depth::k8 ? headless::Slot::kGetPixelData8
                                                : headless::Slot::kGetPixelData16);
            EXPECT_EQ(host.outputLayout(layout), Command::kInjected);
            command.failNext(headless::Slot::kGetPixelFormat);
            EXPECT_EQ(host.outputLayout(layout), Command::kInjected);
            EXPECT_EQ(host.outputLayout(layout), 0);
        });
    }
}

TEST(Layout, OfAWorldWhoseDepthTheHostDeniesIsAnError) {
    for (const Depth depth : {Depth::k8, Depth::k16}) {
        Scene scene;
        scene.depth = depth;
        InRender(scene, [](Command& command) {
            command.utils.get_pixel_data8 = [](sdk::PF_EffectWorld*, void*,
                                               sdk::PF_Pixel** pixels) -> sdk::PF_Err {
                *pixels = nullptr;
                return 0;
            };
            command.utils.get_pixel_data16 = [](sdk::PF_EffectWorld*, void*,
                                                sdk::PF_Pixel16** pixels) -> sdk::PF_Err {
                *pixels = nullptr;
                return 0;
            };
            RasterLayout layout;
            EXPECT_EQ(command.makeHost().outputLayout(layout), sdk::PF_Err_BAD_CALLBACK_PARAM);
            EXPECT_EQ(layout.pixels, nullptr);
        });
    }
}

TEST(Layout, OfAWorldWithoutPixelsHasNone) {
    InRender([](Command& command) {
        PluginHost_AE_Impl host = command.makeHost();
        sdk::PF_EffectWorld empty = *command.output;
        empty.data = nullptr;
        PluginRaster_AE_Impl raster(&empty, &host);
        RasterLayout layout;
        EXPECT_EQ(host.rasterLayout(raster, layout), 0);
        EXPECT_EQ(layout.pixels, nullptr);
        const ShortRect all{0, 0, 3, 6};
        EXPECT_EQ(host.clearRectangle(raster, &all), 0);
        PluginRaster_AE_Impl worldless(nullptr, &host);
        EXPECT_EQ(host.rasterLayout(worldless, layout), sdk::PF_Err_BAD_CALLBACK_PARAM);
    });
}

TEST(Depth, FollowsTheWorldSuiteWhereThereIsOne) {
    for (const Depth depth : {Depth::k8, Depth::k16, Depth::kFloat}) {
        Scene scene = SceneIn(kAfterEffects, 12, 12);
        scene.depth = depth;
        InRender(scene, [&](Command& command) {
            PluginHost_AE_Impl host = command.makeHost();
            // The flag alone would say otherwise.
            command.output->world_flags ^= sdk::PF_WorldFlag_DEEP;
            const auto raster = host.outputRaster();
            EXPECT_EQ(raster->depth(), depth == Depth::k8    ? kDepth8
                                       : depth == Depth::k16 ? kDepth16
                                                             : kDepthFloat);
            command.output->world_flags ^= sdk::PF_WorldFlag_DEEP;
        });
    }
}

TEST(Depth, FollowsTheWorldsFlagInOldHosts) {
    for (const Depth depth : {Depth::k8, Depth::k16}) {
        Scene scene = SceneIn(kAfterEffects, 12, 11);
        scene.depth = depth;
        InRender(scene, [&](Command& command) {
            PluginHost_AE_Impl host = command.makeHost();
            EXPECT_EQ(host.outputRaster()->depth(), depth == Depth::k8 ? kDepth8 : kDepth16);
            RasterLayout layout;
            EXPECT_EQ(host.outputLayout(layout), 0);
            EXPECT_EQ(layout.formatCode, depth == Depth::k8 ? 0 : 3);
            EXPECT_EQ(command.calls(headless::Slot::kGetPixelFormat), 0u);
        });
    }
}

TEST(IsRasterDeep, IsKnownInOneApplicationOnly) {
    for (const std::int32_t application : {kCbst, kAfterEffects, kPremierePro, kMotion}) {
        for (const Depth depth : {Depth::k8, Depth::k16}) {
            Scene scene = SceneIn(application, 13, 27);
            scene.depth = depth;
            InRender(scene, [&](Command& command) {
                PluginHost_AE_Impl host = command.makeHost();
                const auto raster = host.outputRaster();
                EXPECT_EQ(host.isRasterDeep(*raster), application == kCbst && depth == Depth::k16);
            });
        }
    }
}

}  // namespace
}  // namespace vireon::test
