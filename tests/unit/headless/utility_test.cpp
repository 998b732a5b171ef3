#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <string>
#include <vector>

#include "fake_effect.h"
#include "headless/host.h"

namespace vireon::headless {
namespace {

using testing::Call;
using testing::FakeEffect;
using testing::HasViolation;

/// Runs a body inside one command of a host.
CommandResult During(const std::function<void(const Call&)>& body, HostSettings settings = {}) {
    const FakeEffect effect([&](const Call& call) -> sdk::PF_Err {
        body(call);
        return 0;
    });
    Host host(effect.library(), std::move(settings));
    return host.about();
}

sdk::PF_Pixel& PixelAt(const sdk::PF_EffectWorld& world, std::int32_t x, std::int32_t y) {
    auto* row =
        static_cast<std::uint8_t*>(world.data) + static_cast<std::ptrdiff_t>(y) * world.rowbytes;
    return reinterpret_cast<sdk::PF_Pixel*>(row)[x];
}

TEST(Worlds, EveryDepthIsMadeFilledAndDisposedOf) {
    HostSettings settings;
    for (const bool negative : {false, true}) {
        settings.negativeRowBytes = negative;
        const CommandResult result = During(
            [&](const Call& call) {
                const auto* suite = call.acquire<sdk::PF_WorldSuite2>(sdk::kWorldSuite2);
                for (const Depth depth : {Depth::k8, Depth::k16, Depth::kFloat}) {
                    sdk::PF_EffectWorld world{};
                    ASSERT_EQ(suite->PF_NewWorld(call.in.effect_ref, 5, 3, 0, PixelFormatOf(depth),
                                                 &world),
                              0);
                    std::int32_t format = 0;
                    const sdk::PF_EffectWorld copy = world;
                    EXPECT_EQ(suite->PF_GetPixelFormat(&copy, &format), 0);
                    EXPECT_EQ(format, PixelFormatOf(depth));
                    EXPECT_NE(static_cast<std::uint8_t*>(world.data)[0], 0);
                    EXPECT_EQ(call.utils().fill(call.in.effect_ref, nullptr, nullptr, &world), 0);
                    for (std::int32_t y = 0; y < 3; ++y) {
                        const auto* row = static_cast<std::uint8_t*>(world.data) +
                                          static_cast<std::ptrdiff_t>(y) * world.rowbytes;
                        for (std::int32_t i = 0; i < 5 * BytesPerPixel(depth); ++i) {
                            EXPECT_EQ(row[i], 0);
                        }
                    }
                    sdk::PF_Pixel* pixels8 = nullptr;
                    sdk::PF_Pixel16* pixels16 = nullptr;
                    EXPECT_EQ(call.utils().get_pixel_data8(&world, nullptr, &pixels8), 0);
                    EXPECT_EQ(call.utils().get_pixel_data16(&world, nullptr, &pixels16), 0);
                    EXPECT_EQ(pixels8 != nullptr, depth == Depth::k8);
                    EXPECT_EQ(pixels16 != nullptr, depth == Depth::k16);
                    EXPECT_EQ(suite->PF_DisposeWorld(call.in.effect_ref, &world), 0);
                }
                call.in.pica_basicP->ReleaseSuite("PF World Suite", 2);
            },
            settings);
        EXPECT_TRUE(result.clean()) << result.report();
    }
}

TEST(Worlds, OldCallbackMakesEightAndSixteenBits) {
    const CommandResult result = During([](const Call& call) {
        sdk::PF_EffectWorld world{};
        ASSERT_EQ(call.utils().new_world(
                      call.in.effect_ref, 2, 2,
                      sdk::PF_NewWorldFlag_CLEAR_PIXELS | sdk::PF_NewWorldFlag_DEEP_PIXELS, &world),
                  0);
        EXPECT_EQ(world.world_flags, sdk::PF_WorldFlag_DEEP | sdk::PF_WorldFlag_WRITEABLE);
        EXPECT_EQ(static_cast<sdk::PF_Pixel16*>(world.data)->blue, 0);
        call.utils().dispose_world(call.in.effect_ref, &world);
        EXPECT_NE(call.utils().new_world(call.in.effect_ref, 0, 2, 0, &world), 0);
        EXPECT_EQ(world.data, nullptr);
    });
    EXPECT_EQ(result.violations.size(), 1u);
}

TEST(Worlds, OverrunsAreFoundWhenAWorldIsGivenBack) {
    const CommandResult result = During([](const Call& call) {
        sdk::PF_EffectWorld world{};
        call.utils().new_world(call.in.effect_ref, 3, 2, 0, &world);
        PixelAt(world, 3, 1).red ^= 1;
        call.utils().dispose_world(call.in.effect_ref, &world);
    });
    EXPECT_TRUE(HasViolation(result, "written into the padding of row 1, byte 1"));
}

/// Two 8-bit worlds for copying: a source whose pixels carry their place, an empty target.
struct CopyPair {
    explicit CopyPair(const Call& theCall) : call(theCall) {
        call.utils().new_world(call.in.effect_ref, 4, 4, 0, &source);
        call.utils().new_world(call.in.effect_ref, 6, 6, sdk::PF_NewWorldFlag_CLEAR_PIXELS,
                               &target);
        for (std::int32_t y = 0; y < 4; ++y) {
            for (std::int32_t x = 0; x < 4; ++x) {
                PixelAt(source, x, y) = {255, static_cast<std::uint8_t>(x + 1),
                                         static_cast<std::uint8_t>(y + 1), 9};
            }
        }
    }
    ~CopyPair() {
        call.utils().dispose_world(call.in.effect_ref, &source);
        call.utils().dispose_world(call.in.effect_ref, &target);
    }
    CopyPair(const CopyPair&) = delete;
    CopyPair& operator=(const CopyPair&) = delete;

    sdk::PF_Err copy(sdk::PF_LRect from, sdk::PF_LRect to) {
        return call.utils().copy(call.in.effect_ref, &source, &target, &from, &to);
    }
    int red(std::int32_t x, std::int32_t y) const { return PixelAt(target, x, y).red; }

    const Call& call;
    sdk::PF_EffectWorld source{};
    sdk::PF_EffectWorld target{};
};

TEST(Copy, RectanglesMayReachOutsideBothWorlds) {
    const CommandResult result = During([](const Call& call) {
        CopyPair pair(call);
        EXPECT_EQ(pair.copy({-1, 0, 5, 4}, {3, 1, 9, 5}), 0);
        EXPECT_EQ(pair.red(3, 1), 0);
        EXPECT_EQ(pair.red(4, 1), 1);
        EXPECT_EQ(pair.red(5, 4), 2);
        EXPECT_EQ(pair.red(5, 0), 0);
        EXPECT_EQ(pair.red(5, 5), 0);
    });
    EXPECT_TRUE(result.clean()) << result.report();
}

TEST(Copy, RectanglesOfDifferentSizeStretch) {
    const CommandResult result = During([](const Call& call) {
        CopyPair pair(call);
        EXPECT_EQ(pair.copy({0, 0, 2, 4}, {0, 0, 6, 4}), 0);
        std::vector<int> reds;
        for (std::int32_t x = 0; x < 6; ++x) {
            reds.push_back(pair.red(x, 3));
        }
        EXPECT_EQ(reds, (std::vector<int>{1, 1, 1, 2, 2, 2}));
        EXPECT_EQ(PixelAt(pair.target, 5, 3).green, 4);
        EXPECT_EQ(pair.red(0, 4), 0);
        // Two for four: the middle of the first target pixel lies on the second source pixel.
        EXPECT_EQ(pair.copy({0, 0, 4, 4}, {0, 5, 2, 6}), 0);
        EXPECT_EQ(pair.red(0, 5), 2);
        EXPECT_EQ(pair.red(1, 5), 4);
        EXPECT_EQ(PixelAt(pair.target, 0, 5).green, 3);
    });
    EXPECT_TRUE(result.clean()) << result.report();
}

TEST(Copy, RefusesStrangeWorlds) {
    const CommandResult result = During([](const Call& call) {
        CopyPair pair(call);
        sdk::PF_EffectWorld deep{};
        call.utils().new_world(call.in.effect_ref, 4, 4, sdk::PF_NewWorldFlag_DEEP_PIXELS, &deep);
        EXPECT_NE(call.utils().copy(call.in.effect_ref, &pair.source, &deep, nullptr, nullptr), 0);
        call.utils().dispose_world(call.in.effect_ref, &deep);
        EXPECT_NE(call.utils().copy(call.in.effect_ref, &deep, &pair.target, nullptr, nullptr), 0);
        sdk::PF_EffectWorld grown = pair.target;
        grown.height = 60;
        EXPECT_NE(call.utils().fill(call.in.effect_ref, nullptr, nullptr, &grown), 0);
        sdk::PF_EffectWorld locked = pair.target;
        locked.world_flags = 0;
        EXPECT_NE(call.utils().fill(call.in.effect_ref, nullptr, nullptr, &locked), 0);
    });
    EXPECT_TRUE(HasViolation(result, "different pixel formats"));
    EXPECT_TRUE(HasViolation(result, "of no world of the host's"));
    EXPECT_TRUE(HasViolation(result, "reaches outside its pixels"));
    EXPECT_TRUE(HasViolation(result, "may only be read"));
    EXPECT_EQ(result.violations.size(), 4u) << result.report();
}

TEST(Fill, ColoursARectangleAtItsOwnDepth) {
    const CommandResult result = During([](const Call& call) {
        CopyPair pair(call);
        const sdk::PF_Pixel colour{1, 2, 3, 4};
        const sdk::PF_LRect rect{4, 4, 20, 20};
        EXPECT_EQ(call.utils().fill(call.in.effect_ref, &colour, &rect, &pair.target), 0);
        EXPECT_EQ(pair.red(3, 4), 0);
        EXPECT_EQ(pair.red(4, 3), 0);
        EXPECT_EQ(PixelAt(pair.target, 5, 5).blue, 4);
        const sdk::PF_Pixel16 deep{};
        EXPECT_NE(call.utils().fill16(call.in.effect_ref, &deep, nullptr, &pair.target), 0);
    });
    EXPECT_EQ(result.violations.size(), 1u) << result.report();
}

TEST(Handles, KeepTheirBytesAndSizes) {
    const CommandResult result = During([](const Call& call) {
        const sdk::PF_UtilCallbacks& utils = call.utils();
        sdk::PF_Handle handle = utils.host_new_handle(10);
        void* data = utils.host_lock_handle(handle);
        EXPECT_EQ(data, *handle);
        std::memset(data, 5, 10);
        utils.host_unlock_handle(handle);
        EXPECT_EQ(utils.host_resize_handle(1000, &handle), 0);
        EXPECT_EQ(utils.host_get_handle_size(handle), 1000u);
        EXPECT_EQ(static_cast<std::uint8_t*>(*handle)[9], 5);
        utils.host_dispose_handle(handle);
        const sdk::PF_Handle empty = utils.host_new_handle(0);
        EXPECT_NE(*empty, nullptr);
        utils.host_dispose_handle(empty);
        EXPECT_EQ(utils.host_new_handle(~std::uint64_t{0}), nullptr);
    });
    EXPECT_TRUE(result.clean()) << result.report();
}

TEST(Handles, OverrunsAndOpenLocksAreViolations) {
    const CommandResult result = During([](const Call& call) {
        const auto* suite = call.acquire<sdk::PF_HandleSuite1>(sdk::kHandleSuite2);
        const sdk::PF_Handle handle = suite->host_new_handle(3);
        static_cast<std::uint8_t*>(suite->host_lock_handle(handle))[3] = 1;
        suite->host_dispose_handle(handle);
        call.in.pica_basicP->ReleaseSuite("PF Handle Suite", 2);
    });
    EXPECT_TRUE(HasViolation(result, "wrote beside the bytes"));
    EXPECT_TRUE(HasViolation(result, "while it is locked"));
    EXPECT_EQ(result.leaks, "");
}

TEST(PlatformData, GivesThePathNarrowAndWide) {
    HostSettings settings;
    settings.pluginPath = "C:\\Plug\xC3\xA4\\glow.aex";
    const CommandResult result = During(
        [](const Call& call) {
            char16_t wide[260] = {};
            EXPECT_EQ(call.utils().get_platform_data(call.in.effect_ref,
                                                     sdk::PF_PlatData_EXE_FILE_PATH_W, wide),
                      0);
            EXPECT_EQ(std::u16string(wide), u"C:\\Plug\u00E4\\glow.aex");
            char narrow[260] = {};
            EXPECT_EQ(call.utils().get_platform_data(
                          call.in.effect_ref, sdk::PF_PlatData_RES_FILE_PATH_DEPRECATED, narrow),
                      0);
            EXPECT_EQ(std::string(narrow).substr(0, 7), "C:\\Plug");
            EXPECT_NE(call.utils().get_platform_data(call.in.effect_ref, 5, narrow), 0);
        },
        settings);
    EXPECT_TRUE(result.clean()) << result.report();
}

TEST(PlatformData, PathsTooLongForTheBufferFail) {
    HostSettings settings;
    settings.pluginPath = std::string(260, 'p');
    During(
        [](const Call& call) {
            char narrow[261] = {};
            EXPECT_NE(call.utils().get_platform_data(
                          call.in.effect_ref, sdk::PF_PlatData_RES_FILE_PATH_DEPRECATED, narrow),
                      0);
            EXPECT_EQ(narrow[0], '\0');
        },
        settings);
}

TEST(Ansi, MathsAndText) {
    During([](const Call& call) {
        const sdk::PF_ANSICallbacks& ansi = call.utils().ansi;
        EXPECT_EQ(ansi.sqrt(9.0), 3.0);
        EXPECT_EQ(ansi.atan2(1.0, 0.0), std::atan2(1.0, 0.0));
        EXPECT_EQ(ansi.fmod(7.5, 2.0), 1.5);
        EXPECT_EQ(ansi.pow(2.0, 10.0), 1024.0);
        char text[32];
        EXPECT_EQ(ansi.sprintf(text, "%d %.1f", 3, 0.25), 5);
        EXPECT_STREQ(text, "3 0.2");
        EXPECT_EQ(ansi.strcpy(text, "x"), text);
        EXPECT_STREQ(text, "x");
    });
}

TEST(Paths, VerticesComeAroundOnAClosedOutline) {
    const FakeEffect effect([](const Call& call) -> sdk::PF_Err {
        const auto* query = call.acquire<sdk::PF_PathQuerySuite1>(sdk::kPathQuerySuite1);
        const auto* data = call.acquire<sdk::PF_PathDataSuite1>(sdk::kPathDataSuite1);
        const sdk::PF_ProgPtr ref = call.in.effect_ref;
        std::int32_t count = 0;
        EXPECT_EQ(query->PF_NumPaths(ref, &count), 0);
        EXPECT_EQ(count, 1);
        std::uint32_t id = 0;
        EXPECT_EQ(query->PF_PathInfo(ref, 0, &id), 0);
        EXPECT_EQ(id, 7u);
        void* path = nullptr;
        EXPECT_EQ(query->PF_CheckoutPath(ref, id, 0, 1, 30, &path), 0);
        sdk::PF_Boolean open = 1;
        EXPECT_EQ(data->PF_PathIsOpen(nullptr, path, &open), 0);
        EXPECT_EQ(open, 0);
        EXPECT_EQ(data->PF_PathNumSegments(ref, path, &count), 0);
        EXPECT_EQ(count, 3);
        sdk::PF_PathVertex vertex{};
        EXPECT_EQ(data->PF_PathVertexInfo(ref, path, 3, &vertex), 0);
        EXPECT_EQ(vertex.x, 1.0);
        EXPECT_EQ(data->PF_PathVertexInfo(ref, path, 4, &vertex), sdk::PF_Err_INVALID_INDEX);
        char name[32];
        EXPECT_EQ(data->PF_PathGetName(ref, id, name), 0);
        EXPECT_STREQ(name, "Mask 1");
        if (call.command == sdk::PF_Cmd_ABOUT) {
            query->PF_CheckinPath(ref, id, 0, path);
        }
        call.in.pica_basicP->ReleaseSuite("PF Path Query Suite", 1);
        call.in.pica_basicP->ReleaseSuite("PF Path Data Suite", 1);
        return 0;
    });
    Host host(effect.library());
    host.setPaths({{.id = 7,
                    .vertices = {{1, 2, 0, 0, 0, 0}, {3, 4, 0, 0, 0, 0}, {5, 6, 0, 0, 0, 0}},
                    .name = "Mask 1"}});
    const CommandResult result = host.about();
    EXPECT_TRUE(result.clean()) << result.report();
    EXPECT_EQ(host.globalSetup().leaks, "1 path check-out(s)");
}

TEST(Blocks, OfTheBasicSuiteAreBooked) {
    const CommandResult result = During([](const Call& call) {
        const sdk::SPBasicSuite& basic = *call.in.pica_basicP;
        void* block = nullptr;
        EXPECT_EQ(basic.AllocateBlock(10, &block), 0);
        EXPECT_EQ(basic.ReallocateBlock(block, 500, &block), 0);
        EXPECT_EQ(basic.FreeBlock(block), 0);
        EXPECT_EQ(basic.AllocateBlock(10, &block), 0);
        EXPECT_EQ(basic.IsEqual("a", "a"), 1);
        EXPECT_NE(basic.Undefined(), 0);
    });
    EXPECT_EQ(result.leaks, "1 block(s) of the basic suite");
}

}  // namespace
}  // namespace vireon::headless
