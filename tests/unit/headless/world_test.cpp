#include "headless/world.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>

#include "headless/error.h"

namespace vireon::headless {
namespace {

constexpr Depth kDepths[] = {Depth::k8, Depth::k16, Depth::kFloat};

TEST(World, FirstPixelLiesOffTheSixteenByteGrid) {
    for (const Depth depth : kDepths) {
        for (const bool negative : {false, true}) {
            const World world(
                {.width = 7, .height = 5, .depth = depth, .negativeRowBytes = negative});
            const auto address = reinterpret_cast<std::uintptr_t>(world.record().data);
            EXPECT_EQ(address % 16, depth == Depth::k16 ? 8u : 4u);
        }
    }
}

TEST(World, RowsArePaddedAndMayRunDownInMemory) {
    const World up({.width = 7, .height = 5, .depth = Depth::k8});
    EXPECT_EQ(up.record().rowbytes, 7 * 4 + 20);
    const World down({.width = 7, .height = 5, .depth = Depth::k8, .negativeRowBytes = true});
    EXPECT_EQ(down.record().rowbytes, -(7 * 4 + 20));
    EXPECT_EQ(static_cast<const void*>(down.row<sdk::PF_Pixel>(0)), down.record().data);
    const auto* first = reinterpret_cast<const std::uint8_t*>(down.row<sdk::PF_Pixel>(0));
    const auto* second = reinterpret_cast<const std::uint8_t*>(down.row<sdk::PF_Pixel>(1));
    EXPECT_EQ(second - first, down.record().rowbytes);
}

TEST(World, RecordTellsSizeFlagsAndPlace) {
    const World world({.width = 3, .height = 2, .depth = Depth::k16, .originX = -4, .originY = 9});
    const sdk::PF_EffectWorld& record = world.record();
    EXPECT_EQ(record.world_flags, sdk::PF_WorldFlag_DEEP | sdk::PF_WorldFlag_WRITEABLE);
    EXPECT_EQ(record.extent_hint.right, 3);
    EXPECT_EQ(record.origin_x, -4);
    EXPECT_EQ(world.bounds().left, -4);
    EXPECT_EQ(world.bounds().bottom, 11);
    EXPECT_EQ(World(3, 2, Depth::kFloat).record().world_flags, sdk::PF_WorldFlag_WRITEABLE);
}

TEST(World, ColoursRoundAndClampAtIntegerDepths) {
    World world(4, 1, Depth::k8);
    world.setColor(0, 0, {1.0f, 0.5f, -1.0f, 7.0f});
    const sdk::PF_Pixel& pixel = world.row<sdk::PF_Pixel>(0)[0];
    EXPECT_EQ(pixel.alpha, 255);
    EXPECT_EQ(pixel.red, 128);
    EXPECT_EQ(pixel.green, 0);
    EXPECT_EQ(pixel.blue, 255);
    world.setColor(1, 0, {std::numeric_limits<float>::quiet_NaN(), 0.0f, 0.0f, 0.0f});
    EXPECT_EQ(world.row<sdk::PF_Pixel>(0)[1].alpha, 0);
    World deep(1, 1, Depth::k16);
    deep.setColor(0, 0, {1.0f, 0.25f, 2.0f, 0.0f});
    EXPECT_EQ(deep.row<sdk::PF_Pixel16>(0)[0].alpha, 32768);
    EXPECT_EQ(deep.row<sdk::PF_Pixel16>(0)[0].red, 8192);
    EXPECT_EQ(deep.row<sdk::PF_Pixel16>(0)[0].green, 32768);
    EXPECT_FLOAT_EQ(deep.color(0, 0).red, 0.25f);
}

TEST(World, BlueFirstWorldsStoreChannelsBackwards) {
    World world(
        {.width = 1, .height = 1, .depth = Depth::k8, .pixelFormat = sdk::PF_PixelFormat_BGRA32});
    world.setColor(0, 0, {1.0f, 0.0f, 0.0f, 0.4f});
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(world.row<sdk::PF_Pixel>(0));
    EXPECT_EQ(bytes[0], 102);
    EXPECT_EQ(bytes[3], 255);
    EXPECT_FLOAT_EQ(world.color(0, 0).blue, 0.4f);
    EXPECT_EQ(world.convertedTo(Depth::k8)->row<sdk::PF_Pixel>(0)[0].blue, 102);
}

TEST(World, DamageFindsEverySingleByteOutsideThePixels) {
    for (const Depth depth : kDepths) {
        for (const bool negative : {false, true}) {
            World world({.width = 3,
                         .height = 3,
                         .depth = depth,
                         .extraRowBytes = 8,
                         .negativeRowBytes = negative});
            EXPECT_EQ(world.damage(), "");
            const std::ptrdiff_t stride = std::abs(world.record().rowbytes);
            auto* lowest = static_cast<std::uint8_t*>(world.record().data);
            if (negative) {
                lowest -= 2 * stride;
            }
            const std::ptrdiff_t used = 3 * BytesPerPixel(depth);
            for (std::ptrdiff_t at = -64; at < 3 * stride + 64; ++at) {
                const bool pixel = at >= 0 && at < 3 * stride && at % stride < used;
                lowest[at] = static_cast<std::uint8_t>(~lowest[at]);
                EXPECT_EQ(world.damage().empty(), pixel) << "byte " << at;
                lowest[at] = static_cast<std::uint8_t>(~lowest[at]);
            }
            EXPECT_EQ(world.damage(), "");
        }
    }
}

TEST(World, ChecksumSeesEachPixelAndNothingElse) {
    World world(9, 4, Depth::kFloat);
    const std::uint64_t before = world.checksum();
    EXPECT_EQ(
        World({.width = 9, .height = 4, .extraRowBytes = 64, .negativeRowBytes = true}).checksum(),
        before);
    for (std::int32_t y = 0; y < 4; ++y) {
        for (std::int32_t x = 0; x < 9; ++x) {
            world.setColor(x, y, {0.0f, 0.0f, 0.0f, 1.0f});
            EXPECT_NE(world.checksum(), before);
            world.setColor(x, y, {});
            EXPECT_EQ(world.checksum(), before);
        }
    }
}

TEST(World, IsRecognisedByCopiesOfItsRecordUntilItIsGone) {
    sdk::PF_EffectWorld copy{};
    {
        const World world(2, 2, Depth::k16);
        copy = world.record();
        ASSERT_TRUE(IdentifyWorld(copy).has_value());
        EXPECT_EQ(IdentifyWorld(copy)->depth, Depth::k16);
        EXPECT_EQ(IdentifyWorld(copy)->pixelFormat, sdk::PF_PixelFormat_ARGB64);
    }
    EXPECT_FALSE(IdentifyWorld(copy).has_value());
    EXPECT_FALSE(IdentifyWorld({}).has_value());
}

TEST(World, RefusesWhatMakesNoSense) {
    EXPECT_THROW(World(0, 5, Depth::k8), HeadlessError);
    EXPECT_THROW(World(5, 30001, Depth::k8), HeadlessError);
    EXPECT_THROW(World({.width = 1, .height = 1, .extraRowBytes = -4}), HeadlessError);
    EXPECT_THROW(World({.width = 1,
                        .height = 1,
                        .depth = Depth::k16,
                        .pixelFormat = sdk::PF_PixelFormat_BGRA32}),
                 HeadlessError);
    World world(2, 2, Depth::k8);
    EXPECT_THROW(world.row<sdk::PF_Pixel16>(0), HeadlessError);
    EXPECT_THROW(world.row<sdk::PF_Pixel>(2), HeadlessError);
    EXPECT_THROW(world.color(2, 0), HeadlessError);
    EXPECT_THROW(DepthFromBits(10), HeadlessError);
}

TEST(World, ScribbleAndClearTouchPixelsOnly) {
    World world({.width = 5, .height = 3, .depth = Depth::k16, .negativeRowBytes = true});
    world.scribble();
    EXPECT_GT(world.row<sdk::PF_Pixel16>(2)[4].blue, sdk::PF_MAX_CHAN16);
    EXPECT_EQ(world.damage(), "");
    world.clear();
    EXPECT_EQ(world.row<sdk::PF_Pixel16>(2)[4].blue, 0);
    EXPECT_EQ(world.damage(), "");
}

}  // namespace
}  // namespace vireon::headless
