#include <array>
#include <cstdint>
#include <limits>
#include <new>
#include <stdexcept>

#include <gtest/gtest.h>

#include "host/application_codes.h"
#include "host/plugin_raster_mem_impl.h"
#include "image/pixel_format.h"
#include "tests/unit/support/fake_host.h"

namespace vireon::test {
namespace {

struct DepthCase {
    std::int32_t depth, format, bytesPerPixel;
};
constexpr DepthCase kDepths[] = {{kDepth8, 0, 4}, {kDepth16, 7, 8}, {kDepthFloat, 9, 16}};

TEST(MemoryRaster, LayoutRecordOfEveryDepth) {
    for (const DepthCase& c : kDepths) {
        FakeHost host;
        {
            std::int32_t error = 99;
            PluginRaster_MEM_Impl raster(host, 7, 5, c.depth, error);
            EXPECT_EQ(error, 0);
            EXPECT_EQ(raster.width(), 7);
            EXPECT_EQ(raster.height(), 5);
            EXPECT_EQ(raster.depth(), c.depth);
            EXPECT_EQ(raster.rowBytes(), 7 * c.bytesPerPixel);
            EXPECT_EQ(raster.asHostWorld(), nullptr);
            RasterLayout* const layout = raster.layoutRecord();
            ASSERT_NE(layout, nullptr);
            EXPECT_NE(layout->pixels, nullptr);
            EXPECT_EQ(layout->formatCode, c.format);
            EXPECT_EQ(layout->width, 7);
            EXPECT_EQ(layout->height, 5);
            EXPECT_EQ(layout->rowBytes, 7 * c.bytesPerPixel);
            EXPECT_EQ(layout->bytesPerPixel, c.bytesPerPixel);
            EXPECT_EQ(layout->pixelAspectRatio, 1.0f);
            EXPECT_EQ(layout->valueScale, 1.0f);
            EXPECT_EQ(layout->reserved, 0);
            ASSERT_EQ(host.handleSizes.size(), 1u);
            EXPECT_EQ(host.handleSizes[0], 35 * c.bytesPerPixel);
            EXPECT_EQ(host.count("lockHandle"), 1);
            EXPECT_EQ(host.count("unlockHandle"), 0);
        }
        EXPECT_EQ(host.count("unlockHandle"), 1);
        EXPECT_EQ(host.count("disposeHandle"), 1);
        EXPECT_TRUE(EverythingReturned(host));
    }
}

TEST(MemoryRaster, WidthOrHeightOfZeroAsksForABlockOfZeroBytes) {
    constexpr std::array<std::array<std::int32_t, 2>, 3> kSizes{{{0, 5}, {7, 0}, {0, 0}}};
    for (const auto& size : kSizes) {
        FakeHost host;
        {
            std::int32_t error = 99;
            PluginRaster_MEM_Impl raster(host, size[0], size[1], kDepthFloat, error);
            EXPECT_EQ(error, 0);
            ASSERT_EQ(host.handleSizes.size(), 1u);
            EXPECT_EQ(host.handleSizes[0], 0);
        }
        EXPECT_TRUE(EverythingReturned(host));
    }
}

TEST(MemoryRaster, ExtentIsTheLastRowAndColumn) {
    FakeHost host;
    std::int32_t error = 0;
    const PluginRaster_MEM_Impl raster(host, 7, 5, kDepth8, error);
    EXPECT_EQ(raster.extentTop(), 0);
    EXPECT_EQ(raster.extentLeft(), 0);
    EXPECT_EQ(raster.extentBottom(), 4);
    EXPECT_EQ(raster.extentRight(), 6);
}

TEST(MemoryRaster, AttachingAnotherHostChangesNothing) {
    FakeHost host;
    FakeHost other;
    {
        std::int32_t error = 0;
        PluginRaster_MEM_Impl raster(host, 2, 2, kDepth8, error);
        raster.attach(&other);
    }
    EXPECT_TRUE(EverythingReturned(host));
    EXPECT_EQ(other.count("disposeHandle"), 0);
}

TEST(MemoryRaster, WithoutMemoryThrowsAndKeepsNothing) {
    for (const bool lockFails : {false, true}) {
        FakeHost host;
        (lockFails ? host.lockFailsFrom : host.newHandleFailsFrom) = 0;
        std::int32_t error = 99;
        EXPECT_THROW(PluginRaster_MEM_Impl(host, 7, 5, kDepth8, error), std::bad_alloc);
        EXPECT_EQ(error, 0);
        EXPECT_TRUE(EverythingReturned(host));
    }
}

TEST(MemoryRaster, UnknownDepthsAndImpossibleSizesThrowBeforeAnythingIsTaken) {
    FakeHost host;
    std::int32_t error = 0;
    for (const std::int32_t depth : {-1, 2, 3, 5, 9}) {
        EXPECT_THROW(PluginRaster_MEM_Impl(host, 7, 5, depth, error), std::invalid_argument);
    }
    EXPECT_THROW(PluginRaster_MEM_Impl(host, -1, 5, kDepth8, error), std::invalid_argument);
    EXPECT_THROW(PluginRaster_MEM_Impl(host, 7, -5, kDepth8, error), std::invalid_argument);
    EXPECT_THROW(PluginRaster_MEM_Impl(host, 134217728, 1, kDepthFloat, error),
                 std::invalid_argument);
    EXPECT_EQ(host.count("newHandle"), 0);
}

TEST(FourCharacterCode, HasItsFirstCharacterInTheHighestByte) {
    EXPECT_EQ(kAfterEffects, 0x46585443);
    EXPECT_EQ(kPremierePro, 0x50724D72);
}

}  // namespace
}  // namespace vireon::test
