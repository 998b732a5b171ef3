#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "command.h"
#include "host/plugin_raster_mem_impl.h"
#include "host/result_codes.h"
#include "image/pixel_format.h"

namespace vireon::test {
namespace {

using headless::Depth;
using headless::Slot;

bool IsZero(const sdk::PF_EffectWorld& world, std::int32_t bytesPerPixel) {
    for (std::int32_t y = 0; y < world.height; ++y) {
        const auto* row = static_cast<const std::uint8_t*>(world.data) +
                          static_cast<std::ptrdiff_t>(y) * world.rowbytes;
        for (std::int32_t i = 0; i < world.width * bytesPerPixel; ++i) {
            if (row[i] != 0) return false;
        }
    }
    return true;
}

TEST(ClearOutput, FillsItWhollyWithoutAColour) {
    for (const Depth depth : {Depth::k8, Depth::k16, Depth::kFloat}) {
        Scene scene;
        scene.depth = depth;
        InRender(scene, [&](Command& command) {
            PluginHost_AE_Impl host = command.makeHost();
            ASSERT_FALSE(IsZero(*command.output, headless::BytesPerPixel(depth)));
            EXPECT_EQ(host.clearOutput(), 0);
            EXPECT_TRUE(IsZero(*command.output, headless::BytesPerPixel(depth)));
            ASSERT_EQ(command.spy.fills.size(), 1u);
            EXPECT_EQ(command.spy.fills[0].colour, nullptr);
            EXPECT_EQ(command.spy.fills[0].rectangle, nullptr);
            EXPECT_EQ(command.spy.fills[0].world, command.output);
            command.failNext(Slot::kFill);
            EXPECT_EQ(host.clearOutput(), Command::kInjected);
        });
    }
}

/// Rows of a raster of 5 x 4 pixels, one character a pixel: '.' for zero, '#' for untouched.
std::string Picture(PluginHost_API& host, PluginRaster_API& raster, const ShortRect& rectangle) {
    RasterLayout layout;
    EXPECT_EQ(host.rasterLayout(raster, layout), 0);
    const auto rowBytes = static_cast<std::size_t>(layout.width * layout.bytesPerPixel);
    for (std::int32_t y = 0; y < layout.height; ++y) std::memset(layout.row(y), 0x7E, rowBytes);
    EXPECT_EQ(host.clearRectangle(raster, &rectangle), 0);
    std::string picture;
    for (std::int32_t y = 0; y < layout.height; ++y) {
        for (std::int32_t x = 0; x < layout.width; ++x) {
            int zeros = 0;
            for (std::int32_t i = 0; i < layout.bytesPerPixel; ++i) {
                zeros += layout.row(y)[x * layout.bytesPerPixel + i] == std::byte{0} ? 1 : 0;
            }
            picture += zeros == 0 ? '#' : zeros == layout.bytesPerPixel ? '.' : '?';
        }
        picture += '\n';
    }
    return picture;
}

void ExpectClearsAsymmetrically(PluginHost_API& host, PluginRaster_API& raster) {
    // top, left, bottom, right: the last row is cleared, the last column is not.
    EXPECT_EQ(Picture(host, raster, {1, 1, 2, 3}), "#####\n#..##\n#..##\n#####\n");
    EXPECT_EQ(Picture(host, raster, {0, 0, 3, 5}), ".....\n.....\n.....\n.....\n");
    EXPECT_EQ(Picture(host, raster, {2, 4, 2, 5}), "#####\n#####\n####.\n#####\n");
    const std::string untouched = "#####\n#####\n#####\n#####\n";
    EXPECT_EQ(Picture(host, raster, {2, 0, 1, 5}), untouched) << "top below bottom";
    EXPECT_EQ(Picture(host, raster, {0, 3, 3, 3}), untouched) << "no columns";
    EXPECT_EQ(Picture(host, raster, {0, 4, 3, 2}), untouched) << "fewer than no columns";
}

TEST(ClearRectangle, IncludesTheBottomRowButNotTheRightColumn) {
    for (const bool negativeRows : {false, true}) {
        Scene scene;
        scene.settings.negativeRowBytes = negativeRows;
        InRender(scene, [](Command& command) {
            PluginHost_AE_Impl host = command.makeHost();
            for (const std::int32_t depth : {kDepth8, kDepth16, kDepthFloat}) {
                std::int32_t error = 1;
                PluginRaster_MEM_Impl memory(host, 5, 4, depth, error);
                ExpectClearsAsymmetrically(host, memory);
                const auto world = host.newWorld(5, 4, depth, error, true);
                ASSERT_NE(world, nullptr);
                ExpectClearsAsymmetrically(host, *world);
                EXPECT_EQ(host.disposeWorld(*world), 0);
            }
        });
    }
}

TEST(ClearRectangle, WithoutARectangleFillsTheWholeWorld) {
    InRender([](Command& command) {
        PluginHost_AE_Impl host = command.makeHost();
        const auto output = host.outputRaster();
        EXPECT_EQ(host.clearRectangle(*output, nullptr), 0);
        ASSERT_EQ(command.spy.fills.size(), 1u);
        EXPECT_EQ(command.spy.fills[0].colour, nullptr);
        EXPECT_EQ(command.spy.fills[0].rectangle, nullptr);
        EXPECT_EQ(command.spy.fills[0].world, command.output);
        EXPECT_TRUE(IsZero(*command.output, 4));
    });
}

TEST(ClearRectangle, WithoutARectangleClearsAMemoryRasterToo) {
    InRender([](Command& command) {
        PluginHost_AE_Impl host = command.makeHost();
        std::int32_t error = 1;
        PluginRaster_MEM_Impl memory(host, 5, 4, kDepth16, error);
        RasterLayout& layout = *memory.layoutRecord();
        std::memset(layout.pixels, 0x7E, 5 * 4 * 8);
        EXPECT_EQ(host.clearRectangle(memory, nullptr), 0);
        for (std::int32_t i = 0; i < 5 * 4 * 8; ++i) {
            ASSERT_EQ(layout.row(0)[i], std::byte{0}) << i;
        }
    });
}

TEST(ClearRaster, FillsItsWorld) {
    InRender([](Command& command) {
        PluginHost_AE_Impl host = command.makeHost();
        const auto output = host.outputRaster();
        EXPECT_EQ(host.clearRaster(*output), 0);
        ASSERT_EQ(command.spy.fills.size(), 1u);
        EXPECT_EQ(command.spy.fills[0].colour, nullptr);
        EXPECT_EQ(command.spy.fills[0].rectangle, nullptr);
        EXPECT_EQ(command.spy.fills[0].world, command.output);
        EXPECT_TRUE(IsZero(*command.output, 4));
        command.failNext(Slot::kFill);
        EXPECT_EQ(host.clearRaster(*output), Command::kInjected);
    });
}

TEST(CopyInputToOutput, CopiesTheInputsWorldWhole) {
    InRender([](Command& command) {
        PluginHost_AE_Impl host = command.makeHost();
        EXPECT_EQ(host.copyInputToOutput(), 0);
        ASSERT_EQ(command.spy.copies.size(), 1u);
        const Spy::Copy& copy = command.spy.copies[0];
        EXPECT_EQ(copy.source, &command.params[0]->u.ld);
        EXPECT_EQ(copy.destination, command.output);
        EXPECT_FALSE(copy.from.has_value());
        EXPECT_FALSE(copy.to.has_value());
        EXPECT_EQ(std::memcmp(command.output->data, command.params[0]->u.ld.data, 6 * 4), 0);
        command.failNext(Slot::kCopy);
        EXPECT_EQ(host.copyInputToOutput(), Command::kInjected);
    });
}

TEST(CopyRaster, CopiesOneWorldToAnotherWhole) {
    InRender([](Command& command) {
        PluginHost_AE_Impl host = command.makeHost();
        const auto input = host.parameterRaster(kInput);
        const auto output = host.outputRaster();
        EXPECT_EQ(host.copyRaster(*input, *output), 0);
        ASSERT_EQ(command.spy.copies.size(), 1u);
        const Spy::Copy& copy = command.spy.copies[0];
        EXPECT_EQ(copy.source, &command.params[0]->u.ld);
        EXPECT_EQ(copy.destination, command.output);
        EXPECT_FALSE(copy.from.has_value());
        EXPECT_FALSE(copy.to.has_value());
        command.failNext(Slot::kCopy);
        EXPECT_EQ(host.copyRaster(*input, *output), Command::kInjected);
    });
}

TEST(CopyRectangle, WidensTheRectanglesIntoTheHostsOrder) {
    InRender([](Command& command) {
        PluginHost_AE_Impl host = command.makeHost();
        const auto input = host.parameterRaster(kInput);
        const auto output = host.outputRaster();
        ASSERT_EQ(host.clearOutput(), 0);
        const ShortRect from{0, 1, 2, 4};
        const ShortRect to{-1, 2, 1, 5};
        EXPECT_EQ(host.copyRectangle(*input, *output, from, to), 0);
        ASSERT_EQ(command.spy.copies.size(), 1u);
        const Spy::Copy& copy = command.spy.copies[0];
        EXPECT_EQ(copy.source, &command.params[0]->u.ld);
        EXPECT_EQ(copy.destination, command.output);
        ASSERT_TRUE(copy.from.has_value() && copy.to.has_value());
        EXPECT_EQ(copy.from->left, 1);
        EXPECT_EQ(copy.from->top, 0);
        EXPECT_EQ(copy.from->right, 4);
        EXPECT_EQ(copy.from->bottom, 2);
        EXPECT_EQ(copy.to->left, 2);
        EXPECT_EQ(copy.to->top, -1);
        EXPECT_EQ(copy.to->right, 5);
        EXPECT_EQ(copy.to->bottom, 1);
        // Row 1 of the source came to row 0, column 1 to column 2.
        const auto* source = static_cast<const std::uint8_t*>(command.params[0]->u.ld.data) +
                             command.params[0]->u.ld.rowbytes + 4;
        const auto* destination = static_cast<const std::uint8_t*>(command.output->data) + 8;
        EXPECT_EQ(std::memcmp(source, destination, 3 * 4), 0);
        command.failNext(Slot::kCopy);
        EXPECT_EQ(host.copyRectangle(*input, *output, from, to), Command::kInjected);
    });
}

TEST(CopyRectangle, KeepsTheSignAtTheEndsOfSixteenBits) {
    InRender([](Command& command) {
        PluginHost_AE_Impl host = command.makeHost();
        const auto input = host.parameterRaster(kInput);
        const auto output = host.outputRaster();
        host.copyRectangle(*input, *output, {-32768, -32768, 32767, 32767},
                           {-32768, -32768, 32767, 32767});
        ASSERT_EQ(command.spy.copies.size(), 1u);
        EXPECT_EQ(command.spy.copies[0].from->left, -32768);
        EXPECT_EQ(command.spy.copies[0].to->bottom, 32767);
    });
}

TEST(Copies, OfRastersWithoutAWorldAreRefused) {
    InRender([](Command& command) {
        PluginHost_AE_Impl host = command.makeHost();
        std::int32_t error = 1;
        PluginRaster_MEM_Impl memory(host, 6, 4, kDepth8, error);
        const auto output = host.outputRaster();
        EXPECT_EQ(host.copyRaster(memory, *output), kBadCallbackParameter);
        EXPECT_EQ(host.copyRectangle(memory, *output, {}, {}), kBadCallbackParameter);
        EXPECT_EQ(host.copyRectangle(*output, memory, {}, {}), kBadCallbackParameter);
        EXPECT_EQ(host.copyRaster(*output, memory), kBadCallbackParameter);
        EXPECT_TRUE(command.spy.copies.empty());
    });
}

TEST(Copies, NeedAnInputAndAnOutput) {
    InRender([](Command& command) {
        sdk::PF_EffectWorld* const output = command.output;
        command.output = nullptr;
        EXPECT_EQ(command.makeHost().copyInputToOutput(), kBadCallbackParameter);
        EXPECT_EQ(command.makeHost().clearOutput(), kBadCallbackParameter);
        command.output = output;
        command.params = nullptr;
        EXPECT_EQ(command.makeHost().copyInputToOutput(), kBadCallbackParameter);
        PluginHost_AE_Impl host = command.makeHost();
        PluginRaster_AE_Impl empty(nullptr, &host);
        EXPECT_EQ(host.clearRaster(empty), kBadCallbackParameter);
        EXPECT_TRUE(command.spy.copies.empty());
        EXPECT_TRUE(command.spy.fills.empty());
    });
}

}  // namespace
}  // namespace vireon::test
