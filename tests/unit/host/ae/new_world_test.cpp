#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <utility>
#include <vector>

#include "command.h"
#include "host/application_codes.h"
#include "image/pixel_format.h"

namespace vireon::test {
namespace {

using headless::Depth;
using headless::Slot;

// Format codes that an 8-bit world cannot take the place of.
constexpr bool kRefused[25] = {
    // 0 to 4
    false, false, false, true, true,
    // 5 to 9
    true, true, true, true, true,
    // 10 to 14
    true, true, false, true, true,
    // 15 to 19
    false, false, true, true, false,
    // 20 to 24
    true, false, false, false, false};

std::unique_ptr<OwnedLayout> MakeRecord(PluginHost_API& host, std::int32_t code) {
    auto record = std::make_unique<OwnedLayout>();
    record->layout.formatCode = code;
    record->layout.width = 7;
    record->layout.height = 3;
    record->memory = host.newHandle(7 * 3 * 16);
    return record;
}

TEST(WorldFromLayout, TakesThePlaceOfLayoutsOfTheFirstClassOnly) {
    InRender([](Command& command) {
        PluginHost_AE_Impl host = command.makeHost();
        for (std::int32_t code = 0; code < 25; ++code) {
            SCOPED_TRACE(code);
            command.host.resetCalls();
            command.spy.newWorlds.clear();
            auto record = MakeRecord(host, code);
            void** const memory = record->memory;
            ASSERT_NE(memory, nullptr);
            const auto raster = host.worldFromLayout(record);
            if (kRefused[code]) {
                EXPECT_EQ(raster, nullptr);
                ASSERT_NE(record, nullptr);
                EXPECT_EQ(record->memory, memory);
                EXPECT_EQ(record->layout.formatCode, code);
                EXPECT_EQ(record->layout.width, 7);
                EXPECT_EQ(command.calls(Slot::kDisposeHandle), 0u);
                EXPECT_TRUE(command.spy.newWorlds.empty());
                EXPECT_EQ(command.calls(Slot::kSuiteNewWorld), 0u);
                host.disposeHandle(memory);
            } else {
                ASSERT_NE(raster, nullptr);
                EXPECT_EQ(record, nullptr);
                EXPECT_EQ(command.calls(Slot::kDisposeHandle), 1u);
                ASSERT_EQ(command.spy.newWorlds.size(), 1u);
                EXPECT_EQ(command.spy.newWorlds[0].flags, 0);
                EXPECT_EQ(raster->width(), 7);
                EXPECT_EQ(raster->height(), 3);
                EXPECT_EQ(raster->depth(), kDepth8);
                EXPECT_EQ(host.disposeWorld(*raster), 0);
            }
        }
    });
}

TEST(WorldFromLayout, ClassesFollowTheFormatCode) {
    constexpr std::int32_t kClasses[25] = {0, 0, 0, 1, 1, 2, 2, 3, 3, 4, 4, 4, 0,
                                           1, 4, 0, 0, 2, 2, 0, 4, 0, 0, 0, 0};
    for (std::int32_t code = 0; code < 25; ++code) {
        EXPECT_EQ(LayoutClass(code), kClasses[code]) << code;
    }
    EXPECT_EQ(LayoutClass(-1), 0);
    EXPECT_EQ(LayoutClass(1000), 0);
}

TEST(WorldFromLayout, TakesTheLayoutEvenWhenTheHostHasNoMemory) {
    InRender([](Command& command) {
        PluginHost_AE_Impl host = command.makeHost();
        auto record = MakeRecord(host, 0);
        command.failNext(Slot::kNewWorld);
        EXPECT_EQ(host.worldFromLayout(record), nullptr);
        EXPECT_EQ(record, nullptr);
        EXPECT_EQ(command.calls(Slot::kDisposeHandle), 1u);
    });
}

struct Version {
    std::int16_t major;
    std::int16_t minor;
    bool hasFloat;
};
constexpr Version kVersions[] = {{12, 11, false}, {12, 12, true}, {13, 27, true}};

void ExpectZero(const PluginRaster_API& raster, const sdk::PF_EffectWorld& world,
                std::int32_t bytesPerPixel) {
    for (std::int32_t y = 0; y < raster.height(); ++y) {
        const auto* row = static_cast<const std::uint8_t*>(world.data) +
                          static_cast<std::ptrdiff_t>(y) * world.rowbytes;
        for (std::int32_t i = 0; i < raster.width() * bytesPerPixel; ++i) ASSERT_EQ(row[i], 0);
    }
}

TEST(NewWorld, OfIntegerDepthsComesFromThePlainCallback) {
    for (const Version& version : kVersions) {
        const Scene scene = SceneIn(kAfterEffects, version.major, version.minor);
        InRender(scene, [&](Command& command) {
            PluginHost_AE_Impl host = command.makeHost();
            for (const std::int32_t depth : {kDepth8, kDepth16}) {
                for (const bool clear : {false, true}) {
                    command.spy = {};
                    command.host.resetCalls();
                    std::int32_t error = 99;
                    const auto raster = host.newWorld(5, 3, depth, error, clear);
                    ASSERT_NE(raster, nullptr);
                    EXPECT_EQ(error, 0);
                    ASSERT_EQ(command.spy.newWorlds.size(), 1u);
                    EXPECT_EQ(command.spy.newWorlds[0].width, 5);
                    EXPECT_EQ(command.spy.newWorlds[0].height, 3);
                    EXPECT_EQ(command.spy.newWorlds[0].flags,
                              (depth == kDepth16 ? 2 : 0) | (clear ? 1 : 0));
                    EXPECT_EQ(raster->depth(), depth);
                    // It is filled whatever was asked for.
                    ASSERT_EQ(command.spy.fills.size(), 1u);
                    EXPECT_EQ(command.spy.fills[0].colour, nullptr);
                    EXPECT_EQ(command.spy.fills[0].rectangle, nullptr);
                    const sdk::PF_EffectWorld* world = raster->asHostWorld()->world();
                    EXPECT_EQ(command.spy.fills[0].world, world);
                    ExpectZero(*raster, *world, depth == kDepth16 ? 8 : 4);
                    EXPECT_EQ(host.disposeWorld(*raster), 0);
                    EXPECT_EQ(command.calls(Slot::kDisposeWorld), 1u);
                    EXPECT_EQ(command.calls(Slot::kSuiteNewWorld), 0u);
                    EXPECT_EQ(command.calls(Slot::kSuiteDisposeWorld), 0u);
                }
            }
        });
    }
}

/// A World Suite that notes the arguments of its new worlds.
struct SuiteNewWorld {
    std::int32_t width;
    std::int32_t height;
    sdk::PF_Boolean clear;
    std::int32_t format;
};
thread_local std::vector<SuiteNewWorld> suiteNewWorlds;
thread_local const sdk::PF_WorldSuite2* realWorldSuite;

sdk::PF_Err NoteNewWorld(sdk::PF_ProgPtr ref, std::int32_t width, std::int32_t height,
                         sdk::PF_Boolean clear, std::int32_t format, sdk::PF_EffectWorld* world) {
    suiteNewWorlds.push_back({width, height, clear, format});
    return realWorldSuite->PF_NewWorld(ref, width, height, clear, format, world);
}

TEST(NewWorld, OfFloatDepthComesFromTheSuite) {
    for (const Version& version : kVersions) {
        if (!version.hasFloat) continue;
        const Scene scene = SceneIn(kAfterEffects, version.major, version.minor);
        sdk::PF_WorldSuite2 noting{};
        InRender(scene, [&](Command& command) {
            const void* table = nullptr;
            ASSERT_EQ(command.basic.AcquireSuite("PF World Suite", 2, &table), 0);
            realWorldSuite = static_cast<const sdk::PF_WorldSuite2*>(table);
            ASSERT_EQ(command.basic.ReleaseSuite("PF World Suite", 2), 0);
            noting = *realWorldSuite;
            noting.PF_NewWorld = NoteNewWorld;
            command.host.offerSuite("PF World Suite", 2, &noting);
            PluginHost_AE_Impl host = command.makeHost();
            for (const bool clear : {false, true}) {
                suiteNewWorlds.clear();
                command.spy = {};
                command.host.resetCalls();
                std::int32_t error = 99;
                const auto raster = host.newWorld(5, 3, kDepthFloat, error, clear);
                ASSERT_NE(raster, nullptr);
                EXPECT_EQ(error, 0);
                ASSERT_EQ(suiteNewWorlds.size(), 1u);
                EXPECT_EQ(suiteNewWorlds[0].width, 5);
                EXPECT_EQ(suiteNewWorlds[0].height, 3);
                EXPECT_EQ(suiteNewWorlds[0].clear, clear ? 1 : 0);
                EXPECT_EQ(suiteNewWorlds[0].format, 0x32336561);
                EXPECT_TRUE(command.spy.newWorlds.empty());
                EXPECT_TRUE(command.spy.fills.empty());
                EXPECT_EQ(raster->depth(), kDepthFloat);
                const sdk::PF_EffectWorld* world = raster->asHostWorld()->world();
                if (clear) ExpectZero(*raster, *world, 16);
                EXPECT_EQ(host.disposeWorld(*raster), 0);
                EXPECT_EQ(command.calls(Slot::kSuiteDisposeWorld), 1u);
                EXPECT_EQ(command.calls(Slot::kDisposeWorld), 0u);
            }
        });
    }
}

TEST(NewWorld, OfFloatDepthInAnOldHostIsAnEightBitWorld) {
    InRender(SceneIn(kAfterEffects, 12, 11), [](Command& command) {
        PluginHost_AE_Impl host = command.makeHost();
        std::int32_t error = 99;
        const auto raster = host.newWorld(5, 3, kDepthFloat, error, true);
        ASSERT_NE(raster, nullptr);
        EXPECT_EQ(error, 0);
        ASSERT_EQ(command.spy.newWorlds.size(), 1u);
        EXPECT_EQ(command.spy.newWorlds[0].flags, sdk::PF_NewWorldFlag_CLEAR_PIXELS);
        EXPECT_EQ(command.spy.fills.size(), 1u);
        EXPECT_EQ(raster->depth(), kDepth8);
        EXPECT_EQ(host.disposeWorld(*raster), 0);
        EXPECT_EQ(command.calls(Slot::kDisposeWorld), 1u);
    });
}

TEST(NewWorld, OfAnyOtherDepthIsNone) {
    for (const Version& version : kVersions) {
        if (!version.hasFloat) continue;
        InRender(SceneIn(kAfterEffects, version.major, version.minor), [](Command& command) {
            PluginHost_AE_Impl host = command.makeHost();
            for (const std::int32_t depth : {2, 3, 5, -1, 32}) {
                std::int32_t error = 99;
                EXPECT_EQ(host.newWorld(5, 3, depth, error, true), nullptr) << depth;
                EXPECT_EQ(error, 0) << depth;
            }
            EXPECT_TRUE(command.spy.newWorlds.empty());
            EXPECT_EQ(command.calls(Slot::kSuiteNewWorld), 0u);
        });
    }
}

TEST(NewWorld, AnErrorOfTheHostComesOutAndTheRasterHasNoWorld) {
    InRender([](Command& command) {
        PluginHost_AE_Impl host = command.makeHost();
        for (const std::int32_t depth : {kDepth8, kDepth16, kDepthFloat}) {
            command.failNext(depth == kDepthFloat ? Slot::kSuiteNewWorld : Slot::kNewWorld);
            std::int32_t error = 0;
            const auto raster = host.newWorld(5, 3, depth, error, true);
            EXPECT_EQ(error, Command::kInjected) << depth;
            ASSERT_NE(raster, nullptr);
            EXPECT_EQ(raster->width(), 0);
            EXPECT_EQ(raster->asHostWorld()->world(), nullptr);
            EXPECT_EQ(host.disposeWorld(*raster), 0);
        }
        EXPECT_EQ(command.calls(Slot::kDisposeWorld), 0u);
        EXPECT_EQ(command.calls(Slot::kSuiteDisposeWorld), 0u);
    });
}

TEST(DisposeWorld, OfARasterWithoutAWorldCallsNothing) {
    InRender([](Command& command) {
        PluginHost_AE_Impl host = command.makeHost();
        PluginRaster_AE_Impl empty(nullptr, &host);
        EXPECT_EQ(host.disposeWorld(empty), 0);
        EXPECT_EQ(command.host.calls().total(), 2u) << "nothing but the two suites";
    });
}

TEST(DisposeWorld, ReturnsTheHostsCode) {
    InRender([](Command& command) {
        PluginHost_AE_Impl host = command.makeHost();
        for (const std::int32_t depth : {kDepth8, kDepthFloat}) {
            std::int32_t error = 0;
            const auto raster = host.newWorld(5, 3, depth, error, true);
            ASSERT_NE(raster, nullptr);
            command.failNext(depth == kDepthFloat ? Slot::kSuiteDisposeWorld : Slot::kDisposeWorld);
            // The suite's code is not passed on.
            EXPECT_EQ(host.disposeWorld(*raster), depth == kDepthFloat ? 0 : Command::kInjected);
            EXPECT_EQ(raster->asHostWorld()->world(), nullptr);
            EXPECT_EQ(host.disposeWorld(*raster), 0) << "a second time";
        }
    });
}

/// Compares a returned copy with the layer it was made of.
void ExpectSamePixels(const sdk::PF_EffectWorld& copy, const headless::World& layer) {
    const std::size_t bytes = static_cast<std::size_t>(headless::BytesPerPixel(layer.depth()));
    for (std::int32_t y = 0; y < layer.height(); ++y) {
        for (std::int32_t x = 0; x < layer.width(); ++x) {
            const auto* pixel = static_cast<const std::uint8_t*>(copy.data) +
                                static_cast<std::ptrdiff_t>(y) * copy.rowbytes +
                                static_cast<std::ptrdiff_t>(x) * static_cast<std::ptrdiff_t>(bytes);
            headless::World expected(1, 1, layer.depth());
            expected.setColor(0, 0, layer.color(x, y));
            ASSERT_EQ(std::memcmp(pixel, expected.record().data, bytes), 0) << x << ", " << y;
        }
    }
}

TEST(InputLayerAt, CopiesTheLayerAtEveryDepth) {
    for (const Depth depth : {Depth::k8, Depth::k16, Depth::kFloat}) {
        Scene scene;
        scene.depth = depth;
        scene.input = MakeLayer(depth);
        InRender(scene, [&](Command& command) {
            PluginHost_AE_Impl host = command.makeHost();
            const auto raster = host.inputLayerAt(10);
            ASSERT_NE(raster, nullptr);
            EXPECT_EQ(raster->width(), 6);
            EXPECT_EQ(raster->height(), 4);
            EXPECT_EQ(raster->depth(), host.outputRaster()->depth());
            ExpectSamePixels(*raster->asHostWorld()->world(), *scene.input);
            EXPECT_EQ(command.calls(Slot::kCheckoutParam), 1u);
            EXPECT_EQ(command.calls(Slot::kCheckinParam), 1u);
            EXPECT_EQ(host.disposeWorld(*raster), 0);
        });
    }
}

TEST(InputLayerAt, BringsTheChannelsOfABlueFirstLayerIntoOrder) {
    Scene scene;
    scene.input = MakeLayer(Depth::k8, 6, 4, sdk::PF_PixelFormat_BGRA32);
    InRender(scene, [&](Command& command) {
        PluginHost_AE_Impl host = command.makeHost();
        const auto raster = host.inputLayerAt(0);
        ASSERT_NE(raster, nullptr);
        RasterLayout layout;
        EXPECT_EQ(host.rasterLayout(*raster, layout), 0);
        EXPECT_EQ(layout.formatCode, kFormat8);
        ExpectSamePixels(*raster->asHostWorld()->world(), *scene.input);
        EXPECT_EQ(host.disposeWorld(*raster), 0);
    });
}

TEST(InputLayerAt, LimitsTheTimeToTheLayer) {
    Scene scene;
    scene.settings.time = {.current = 40, .step = 3, .localStep = 5, .total = 100, .scale = 24};
    InRender(scene, [](Command& command) {
        PluginHost_AE_Impl host = command.makeHost();
        for (const auto& [asked, given] :
             {std::pair(-1, 0), {0, 0}, {57, 57}, {100, 100}, {101, 100}, {-100000, 0}}) {
            command.spy.checkOuts.clear();
            const auto raster = host.inputLayerAt(asked);
            ASSERT_NE(raster, nullptr);
            EXPECT_EQ(host.disposeWorld(*raster), 0);
            ASSERT_EQ(command.spy.checkOuts.size(), 1u);
            EXPECT_EQ(command.spy.checkOuts[0].index, 0);
            EXPECT_EQ(command.spy.checkOuts[0].time, given);
            EXPECT_EQ(command.spy.checkOuts[0].step, 3);
            EXPECT_EQ(command.spy.checkOuts[0].scale, 24u);
        }
    });
}

TEST(InputLayerAt, IsNoneWhenTheLayerCannotBeHad) {
    InRender([](Command& command) {
        PluginHost_AE_Impl host = command.makeHost();
        command.failNext(Slot::kCheckoutParam);
        EXPECT_EQ(host.inputLayerAt(0), nullptr);
        EXPECT_TRUE(command.spy.newWorlds.empty());
    });
    Scene scene;
    scene.settings.nullInput = true;
    InRender(scene, [](Command& command) {
        PluginHost_AE_Impl host = command.makeHost();
        EXPECT_EQ(host.inputLayerAt(0), nullptr);
        EXPECT_EQ(command.calls(Slot::kCheckinParam), 1u);
    });
}

TEST(InputLayerAt, ChecksTheLayerInWhenItCannotBeCopied) {
    for (const Slot slot : {Slot::kNewWorld, Slot::kCopy}) {
        InRender([&](Command& command) {
            PluginHost_AE_Impl host = command.makeHost();
            command.host.faults().fail(slot, 1, Command::kInjected, true);
            EXPECT_EQ(host.inputLayerAt(0), nullptr);
            command.host.faults().clear();
            EXPECT_EQ(command.calls(Slot::kCheckinParam), 1u);
        });
    }
}

}  // namespace
}  // namespace vireon::test
