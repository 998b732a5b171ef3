#include "render/raster_ops.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <utility>

#include <gtest/gtest.h>

#include "host/plugin_raster_mem_impl.h"
#include "image/convert_pixels.h"
#include "image/pixel_format.h"
#include "tests/unit/support/fake_host.h"
#include "tests/unit/support/picture.h"

namespace vireon::test {
namespace {

constexpr std::int32_t kDepths[] = {kDepth8, kDepth16, kDepthFloat};

const std::byte* RowOf(const RasterLayout& layout, std::int32_t y) {
    return static_cast<const std::byte*>(layout.pixels) +
           static_cast<std::ptrdiff_t>(y) * layout.rowBytes;
}

/// Every byte of the pixels of a layout, rows in order, padding left out.
bool PixelBytesAre(const RasterLayout& layout, std::byte value) {
    for (std::int32_t y = 0; y < layout.height; ++y) {
        for (std::int32_t i = 0; i < layout.width * layout.bytesPerPixel; ++i) {
            if (RowOf(layout, y)[i] != value) return false;
        }
    }
    return true;
}

bool PaddingBytesAre(const RasterLayout& layout, std::byte value) {
    for (std::int32_t y = 0; y < layout.height; ++y) {
        for (std::int32_t i = layout.width * layout.bytesPerPixel; i < layout.rowBytes; ++i) {
            if (RowOf(layout, y)[i] != value) return false;
        }
    }
    return true;
}

RasterLayout Describe(PluginHost_API& host, PluginRaster_API& raster) {
    std::int32_t error = 99;
    const RasterLayout layout = DescribeRaster(host, raster, error);
    EXPECT_EQ(error, 0);
    return layout;
}

TEST(CreateWorkingRaster, IsMemoryOutsideAfterEffects) {
    for (const std::int32_t application : {0, kPremierePro, kMotion}) {
        for (const std::int32_t depth : kDepths) {
            for (const bool clear : {false, true}) {
                FakeHost host;
                host.application = application;
                {
                    std::int32_t error = 99;
                    const ScopedRaster raster =
                        CreateWorkingRaster(host, 7, 5, depth, clear, error);
                    ASSERT_TRUE(raster);
                    EXPECT_EQ(error, 0);
                    EXPECT_EQ(raster->width(), 7);
                    EXPECT_EQ(raster->height(), 5);
                    EXPECT_EQ(raster->depth(), depth);
                    ASSERT_NE(raster->layoutRecord(), nullptr);
                    if (clear) {
                        EXPECT_TRUE(PixelBytesAre(*raster->layoutRecord(), std::byte{0}));
                    }
                    EXPECT_EQ(host.count("newWorld"), 0);
                }
                EXPECT_EQ(host.count("disposeWorld"), 0);
                EXPECT_TRUE(EverythingReturned(host));
            }
        }
    }
}

TEST(CreateWorkingRaster, IsAHostWorldInAfterEffects) {
    for (const std::int32_t depth : kDepths) {
        for (const bool clear : {false, true}) {
            FakeHost host;
            host.application = kAfterEffects;
            {
                std::int32_t error = 99;
                const ScopedRaster raster = CreateWorkingRaster(host, 7, 5, depth, clear, error);
                ASSERT_TRUE(raster);
                EXPECT_EQ(error, 0);
                EXPECT_EQ(raster->depth(), depth);
                EXPECT_EQ(raster->layoutRecord(), nullptr);
                EXPECT_EQ(host.liveWorlds(), 1u);
                if (clear) {
                    EXPECT_TRUE(PixelBytesAre(Describe(host, *raster), std::byte{0}));
                }
            }
            EXPECT_EQ(host.count("newHandle"), 0);
            EXPECT_EQ(host.count("disposeWorld"), 1);
            EXPECT_TRUE(EverythingReturned(host));
        }
    }
}

TEST(CreateWorkingRaster, FloatFallsBackToMemoryWhenTheHostMakesAnEightBitWorld) {
    for (const bool clear : {false, true}) {
        FakeHost host;
        host.application = kAfterEffects;
        host.madeDepth = kDepth8;
        {
            std::int32_t error = 99;
            const ScopedRaster raster = CreateWorkingRaster(host, 7, 5, kDepthFloat, clear, error);
            ASSERT_TRUE(raster);
            EXPECT_EQ(error, 0);
            EXPECT_EQ(raster->depth(), kDepthFloat);
            ASSERT_NE(raster->layoutRecord(), nullptr);
            EXPECT_EQ(raster->rowBytes(), 7 * 16);
            EXPECT_EQ(host.liveWorlds(), 0u);
            if (clear) {
                EXPECT_TRUE(PixelBytesAre(*raster->layoutRecord(), std::byte{0}));
            }
        }
        EXPECT_TRUE(EverythingReturned(host));
    }
}

TEST(CreateWorkingRaster, FloatFallsBackToMemoryWhenTheHostMakesNoWorld) {
    FakeHost host;
    host.application = kAfterEffects;
    host.newWorldFailsFrom = 0;
    host.newWorldError = 0;
    {
        std::int32_t error = 99;
        const ScopedRaster raster = CreateWorkingRaster(host, 7, 5, kDepthFloat, true, error);
        ASSERT_TRUE(raster);
        EXPECT_EQ(error, 0);
        EXPECT_EQ(raster->depth(), kDepthFloat);
        EXPECT_TRUE(PixelBytesAre(Describe(host, *raster), std::byte{0}));
    }
    EXPECT_TRUE(EverythingReturned(host));
}

TEST(CreateWorkingRaster, ErrorOfTheHostIsReturnedWithoutARaster) {
    for (const std::int32_t depth : kDepths) {
        FakeHost host;
        host.application = kAfterEffects;
        host.newWorldFailsFrom = 0;
        host.newWorldError = 9;
        std::int32_t error = 0;
        EXPECT_FALSE(CreateWorkingRaster(host, 7, 5, depth, true, error));
        EXPECT_EQ(error, 9);
        EXPECT_TRUE(EverythingReturned(host));
    }
}

TEST(CreateWorkingRaster, WithoutMemoryTheErrorIsFour) {
    for (const bool lockFails : {false, true}) {
        FakeHost host;
        (lockFails ? host.lockFailsFrom : host.newHandleFailsFrom) = 0;
        std::int32_t error = 0;
        EXPECT_FALSE(CreateWorkingRaster(host, 7, 5, kDepthFloat, true, error));
        EXPECT_EQ(error, 4);
        EXPECT_TRUE(EverythingReturned(host));
    }
}

TEST(CreateWorkingRaster, WithoutMemoryForTheFallbackTheErrorIsFourAndTheWorldIsGone) {
    FakeHost host;
    host.application = kAfterEffects;
    host.madeDepth = kDepth8;
    host.newHandleFailsFrom = 0;
    std::int32_t error = 0;
    EXPECT_FALSE(CreateWorkingRaster(host, 7, 5, kDepthFloat, true, error));
    EXPECT_EQ(error, 4);
    EXPECT_TRUE(EverythingReturned(host));
}

TEST(ScopedRaster, MovesAndResetsReleaseOnce) {
    FakeHost host;
    host.application = kAfterEffects;
    std::int32_t error = 0;
    {
        ScopedRaster first = CreateWorkingRaster(host, 3, 3, kDepth8, false, error);
        ScopedRaster second = CreateWorkingRaster(host, 3, 3, kDepth8, false, error);
        EXPECT_EQ(host.liveWorlds(), 2u);
        first = std::move(second);
        EXPECT_EQ(host.liveWorlds(), 1u);
        ScopedRaster third(std::move(first));
        EXPECT_EQ(host.liveWorlds(), 1u);
        third.reset();
        EXPECT_FALSE(third);
        EXPECT_EQ(host.liveWorlds(), 0u);
        third.reset();
    }
    EXPECT_EQ(host.count("disposeWorld"), 2);
    EXPECT_TRUE(EverythingReturned(host));
}

TEST(ReleaseRaster, HandsWorldsBackAndLeavesMemoryRastersToTheirOwner) {
    FakeHost host;
    {
        std::int32_t error = 0;
        PluginRaster_MEM_Impl memory(host, 3, 3, kDepth8, error);
        ReleaseRaster(host, memory);
        EXPECT_EQ(host.count("disposeHandle"), 0);
        EXPECT_EQ(host.count("disposeWorld"), 0);
        const auto world = host.newWorld(3, 3, kDepth8, error, false);
        ReleaseRaster(host, *world);
        EXPECT_EQ(host.count("disposeWorld"), 1);
    }
    EXPECT_TRUE(EverythingReturned(host));
}

TEST(DescribeRaster, TakesTheRastersOwnRecordElseTheHostsAnswer) {
    FakeHost host;
    Picture picture(7, 5, 3, true);
    const RasterLayout own = Describe(host, picture);
    EXPECT_EQ(own.pixels, picture.layoutRecord()->pixels);
    EXPECT_EQ(own.rowBytes, picture.layoutRecord()->rowBytes);
    EXPECT_LT(own.rowBytes, 0);

    const auto layer = host.makeLayer(7, 5, kDepth16);
    const RasterLayout world = Describe(host, *layer);
    EXPECT_EQ(world.pixels, layer->layout().pixels);
    EXPECT_EQ(world.formatCode, kFormatWorld16);
    EXPECT_EQ(world.bytesPerPixel, 8);
}

TEST(DescribeRaster, AfterAnErrorOfTheHostTheLayoutHasNoPixels) {
    FakeHost host;
    const auto layer = host.makeLayer(7, 5, kDepth16);
    layer->freePixels();
    std::int32_t error = 0;
    const RasterLayout layout = DescribeRaster(host, *layer, error);
    EXPECT_EQ(error, 516);
    EXPECT_EQ(layout.pixels, nullptr);
    EXPECT_EQ(layout.width, 0);
    EXPECT_EQ(layout.height, 0);
}

struct SizePair {
    std::int32_t fromWidth, fromHeight, toWidth, toHeight;
};
constexpr SizePair kSizePairs[] = {
    {7, 5, 7, 5}, {4, 3, 7, 5}, {9, 8, 7, 5}, {4, 8, 7, 5}, {9, 3, 7, 5}};

TEST(CopyRaster, CropsAndNeverTouchesPadding) {
    for (const SizePair& s : kSizePairs) {
        for (const bool up : {false, true}) {
            FakeHost host;
            Random random(150);
            Picture source(s.fromWidth, s.fromHeight, 2, up);
            source.randomize(random, -1.0f, 1.0f);
            Picture got(s.toWidth, s.toHeight, 3, !up);
            got.fill(9.0f);
            Picture want(got);
            ForEachFloat(want, [&](std::int32_t x, std::int32_t y, std::int32_t c) {
                if (x < s.fromWidth && y < s.fromHeight) want.at(x, y, c) = source.at(x, y, c);
            });
            EXPECT_EQ(CopyRaster(host, got, source), 0);
            EXPECT_TRUE(SamePixels(got, want)) << s.fromWidth << 'x' << s.fromHeight;
            EXPECT_EQ(host.count("copyRaster") + host.count("copyRectangle"), 0);
        }
    }
}

TEST(CopyRaster, TwoHostWorldsAreCopiedByTheHostCroppedAndNotScaled) {
    for (const std::int32_t depth : kDepths) {
        for (const SizePair& s : kSizePairs) {
            FakeHost host;
            host.application = kAfterEffects;
            const auto source = host.makeLayer(s.fromWidth, s.fromHeight, depth, 5 * 4);
            source->fill(std::byte{0x11});
            const auto got = host.makeLayer(s.toWidth, s.toHeight, depth);
            got->fill(std::byte{0x22});
            EXPECT_EQ(CopyRaster(host, *got, *source), 0);
            EXPECT_EQ(host.count("copyRaster") + host.count("copyRectangle"), 1);
            if (s.fromWidth != s.toWidth || s.fromHeight != s.toHeight) {
                // A copy of the whole worlds would scale.
                EXPECT_EQ(host.count("copyRaster"), 0);
            }
            const RasterLayout& layout = got->layout();
            for (std::int32_t y = 0; y < s.toHeight; ++y) {
                for (std::int32_t x = 0; x < s.toWidth; ++x) {
                    const bool copied = x < s.fromWidth && y < s.fromHeight;
                    EXPECT_EQ(RowOf(layout, y)[x * layout.bytesPerPixel],
                              copied ? std::byte{0x11} : std::byte{0x22});
                }
            }
            EXPECT_TRUE(EverythingReturned(host));
        }
    }
}

TEST(CopyRaster, WorldToMemoryGoesRowByRowOverWholePixels) {
    for (const std::int32_t depth : kDepths) {
        FakeHost host;
        {
            const auto source = host.makeLayer(9, 6, depth, 12);
            source->fill(std::byte{0x11});
            std::int32_t error = 0;
            PluginRaster_MEM_Impl got(host, 7, 8, depth, error);
            // 16-bit worlds and memory rasters have different format codes of the same pixels.
            const std::size_t bytes =
                static_cast<std::size_t>(got.rowBytes()) * static_cast<std::size_t>(got.height());
            std::memset(got.layoutRecord()->pixels, 0x22, bytes);
            EXPECT_EQ(CopyRaster(host, got, *source), 0);
            RasterLayout top = *got.layoutRecord();
            top.height = 6;
            EXPECT_TRUE(PixelBytesAre(top, std::byte{0x11})) << depth;
            EXPECT_EQ(RowOf(*got.layoutRecord(), 6)[0], std::byte{0x22});
            EXPECT_EQ(RowOf(*got.layoutRecord(), 7)[7], std::byte{0x22});

            const auto back = host.makeLayer(9, 6, depth, 12);
            back->fill(std::byte{0x33});
            EXPECT_EQ(CopyRaster(host, *back, got), 0);
            EXPECT_TRUE(PaddingBytesAre(back->layout(), std::byte{0x33}));
            EXPECT_EQ(RowOf(back->layout(), 5)[0], std::byte{0x11});
            EXPECT_EQ(RowOf(back->layout(), 5)[8 * back->layout().bytesPerPixel], std::byte{0x33});
        }
        EXPECT_TRUE(EverythingReturned(host));
    }
}

TEST(CopyRaster, DifferentFormatsAreConvertedChannelByChannel) {
    FakeHost host;
    Picture source(3, 2);
    source.fill(0.5f, 1.0f, 0.0f, 2.0f);
    std::int32_t error = 0;
    {
        PluginRaster_MEM_Impl eight(host, 3, 2, kDepth8, error);
        EXPECT_EQ(CopyRaster(host, eight, source), 0);
        const std::array<std::byte, 4> argb{std::byte{128}, std::byte{255}, std::byte{0},
                                            std::byte{255}};
        EXPECT_EQ(std::memcmp(RowOf(*eight.layoutRecord(), 1) + 8, argb.data(), 4), 0);

        eight.layoutRecord()->formatCode = kFormat8Bgra;
        EXPECT_EQ(CopyRaster(host, eight, source), 0);
        const std::array<std::byte, 4> bgra{std::byte{255}, std::byte{0}, std::byte{255},
                                            std::byte{128}};
        EXPECT_EQ(std::memcmp(RowOf(*eight.layoutRecord(), 1) + 8, bgra.data(), 4), 0);

        Picture back(3, 2);
        EXPECT_EQ(CopyRaster(host, back, eight), 0);
        EXPECT_EQ(back.at(2, 1, kRed), 255.0f * 0.003921569f);
        EXPECT_EQ(back.at(2, 1, kAlpha), 128.0f * 0.003921569f);
    }
    EXPECT_TRUE(EverythingReturned(host));
}

TEST(RasterOps, RastersThatTheHostCannotDescribeGiveItsCode) {
    FakeHost host;
    const auto gone = host.makeLayer(3, 3, kDepthFloat);
    gone->freePixels();
    Picture picture(3, 3);
    picture.fill(0.5f);
    const Picture before(picture);
    EXPECT_EQ(CopyRaster(host, picture, *gone), 516);
    EXPECT_EQ(CopyRaster(host, *gone, picture), 516);
    EXPECT_EQ(ConvertFromFloat(host, *gone, picture), 516);
    EXPECT_EQ(ConvertFromFloat(host, picture, *gone), 516);
    std::int32_t error = 0;
    EXPECT_FALSE(ConvertToFloat(host, *gone, error));
    EXPECT_EQ(error, 516);
    EXPECT_FALSE(IsFloatRaster(host, *gone));
    EXPECT_TRUE(SamePixels(picture, before));
    EXPECT_TRUE(EverythingReturned(host));
}

TEST(ClearRaster, MemoryRastersOfEveryDepthAndDirection) {
    for (const std::int32_t application : {0, kAfterEffects}) {
        for (const bool up : {false, true}) {
            FakeHost host;
            host.application = application;
            Picture picture(7, 5, 0, up);
            picture.fill(9.0f);
            EXPECT_EQ(ClearRaster(host, picture), 0);
            EXPECT_TRUE(SamePixels(picture, Picture(7, 5)));
            EXPECT_EQ(host.count("clearRaster"), 0);
            EXPECT_EQ(host.misuses, 0);
        }
        for (const std::int32_t depth : kDepths) {
            FakeHost host;
            host.application = application;
            std::int32_t error = 0;
            PluginRaster_MEM_Impl memory(host, 7, 5, depth, error);
            EXPECT_EQ(ClearRaster(host, memory), 0);
            EXPECT_TRUE(PixelBytesAre(*memory.layoutRecord(), std::byte{0}));
        }
    }
}

TEST(ClearRaster, HostWorldsAreClearedByTheHostInAfterEffectsOnly) {
    for (const std::int32_t application : {0, kAfterEffects}) {
        for (const std::int32_t depth : kDepths) {
            FakeHost host;
            host.application = application;
            const auto world = host.makeLayer(7, 5, depth);
            EXPECT_EQ(ClearRaster(host, *world), 0);
            EXPECT_TRUE(PixelBytesAre(world->layout(), std::byte{0}));
            EXPECT_EQ(host.count("clearRaster"), application == 0 ? 0 : 1);
        }
    }
}

TEST(ConvertToFloat, MakesAFloatRasterOfTheSameSizeFromEveryDepth) {
    for (const std::int32_t application : {0, kAfterEffects}) {
        for (const std::int32_t depth : kDepths) {
            FakeHost host;
            host.application = application;
            {
                const auto source = host.makeLayer(7, 5, depth, 12);
                source->fill(std::byte{0x11});
                Picture want(7, 5);
                ConvertPixelsToFloat(source->layout(), want.view());
                std::int32_t error = 99;
                const ScopedRaster raster = ConvertToFloat(host, *source, error);
                ASSERT_TRUE(raster);
                EXPECT_EQ(error, 0);
                EXPECT_EQ(raster->width(), 7);
                EXPECT_EQ(raster->height(), 5);
                EXPECT_EQ(raster->depth(), kDepthFloat);
                EXPECT_EQ(Describe(host, *raster).formatCode, kFormatFloat);
                ASSERT_TRUE(IsFloatRaster(host, *raster));
                Picture got(7, 5);
                EXPECT_EQ(CopyRaster(host, got, *raster), 0);
                EXPECT_TRUE(SamePixels(got, want)) << depth;
            }
            EXPECT_TRUE(EverythingReturned(host));
        }
    }
}

TEST(ConvertToFloat, WithoutARasterTheReasonIsGiven) {
    FakeHost host;
    const auto source = host.makeLayer(7, 5, kDepth8);
    host.newHandleFailsFrom = 0;
    std::int32_t error = 0;
    EXPECT_FALSE(ConvertToFloat(host, *source, error));
    EXPECT_EQ(error, 4);
    host.application = kAfterEffects;
    host.newWorldFailsFrom = 0;
    host.newWorldError = 9;
    EXPECT_FALSE(ConvertToFloat(host, *source, error));
    EXPECT_EQ(error, 9);
    EXPECT_TRUE(EverythingReturned(host));
}

TEST(ConvertFromFloat, WritesEveryDepthAndLeavesPaddingAlone) {
    Random random(151);
    for (const std::int32_t depth : kDepths) {
        FakeHost host;
        Picture source(7, 5, 1, true);
        source.randomize(random, -0.5f, 1.5f);
        const auto got = host.makeLayer(7, 5, depth, 12);
        const auto want = host.makeLayer(7, 5, depth, 12);
        ConvertPixelsFromFloat(source.view(), want->layout());
        EXPECT_EQ(ConvertFromFloat(host, *got, source), 0);
        for (std::int32_t y = 0; y < 5; ++y) {
            EXPECT_EQ(std::memcmp(RowOf(got->layout(), y), RowOf(want->layout(), y),
                                  static_cast<std::size_t>(7 * got->layout().bytesPerPixel)),
                      0);
        }
        EXPECT_TRUE(PaddingBytesAre(got->layout(), std::byte{0xFF}));
    }
}

TEST(IsFloatRaster, TellsFloatRastersFromOthers) {
    FakeHost host;
    Picture picture(3, 2);
    EXPECT_TRUE(IsFloatRaster(host, picture));
    EXPECT_EQ(ViewRaster(host, picture).pixels, picture.view().pixels);
    EXPECT_FALSE(IsFloatRaster(host, *host.makeLayer(3, 2, kDepth8)));
    EXPECT_FALSE(IsFloatRaster(host, *host.makeLayer(3, 2, kDepth16)));
    EXPECT_TRUE(IsFloatRaster(host, *host.makeLayer(3, 2, kDepthFloat)));
}

}  // namespace
}  // namespace vireon::test
