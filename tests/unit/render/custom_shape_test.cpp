#include "render/custom_shape.h"

#include <cstdint>
#include <limits>

#include <gtest/gtest.h>

#include "tests/unit/support/picture.h"

namespace vireon::test {
namespace {

TEST(MakeCustomShape, TexelsAreLuminanceTimesAlpha) {
    Random random(160);
    Picture layer(9, 6, 2, true);
    layer.randomize(random, -0.5f, 2.0f);
    const GlowKernel kernel = MakeCustomShape(layer.view());
    ASSERT_TRUE(kernel.hasTexels());
    EXPECT_EQ(kernel.width, 9);
    EXPECT_EQ(kernel.height, 6);
    for (std::int32_t y = 0; y < 6; ++y) {
        for (std::int32_t x = 0; x < 9; ++x) {
            const double want = (204.0 * static_cast<double>(layer.at(x, y, kGreen)) +
                                 117.0 * static_cast<double>(layer.at(x, y, kRed)) +
                                 64.0 * static_cast<double>(layer.at(x, y, kBlue))) *
                                static_cast<double>(layer.at(x, y, kAlpha)) / 385.0;
            EXPECT_NEAR(static_cast<double>(kernel.row(y)[x]), want, kRounding * 4.0);
        }
        EXPECT_FALSE(kernel.rowIsEmpty(y));
    }
}

TEST(MakeCustomShape, TransparentLayerHasEveryRowFlaggedEmpty) {
    Picture layer(5, 4);
    layer.fill(0.0f, 1.0f, 0.5f, 2.0f);
    layer.set(2, 1, {-0.0f, 1.0f, 1.0f, 1.0f});
    const GlowKernel kernel = MakeCustomShape(layer.view());
    ASSERT_TRUE(kernel.hasTexels());
    for (std::int32_t y = 0; y < 4; ++y) EXPECT_TRUE(kernel.rowIsEmpty(y));
}

TEST(MakeCustomShape, OnlyRowsThatAreWhollyBlackAreFlagged) {
    Picture layer(5, 4);
    layer.set(4, 2, {1.0f, 0.0f, 0.0f, 0.01f});
    const GlowKernel kernel = MakeCustomShape(layer.view());
    for (std::int32_t y = 0; y < 4; ++y) EXPECT_EQ(kernel.rowIsEmpty(y), y != 2);
}

TEST(MakeCustomShape, TexelsThatAreNotFiniteAreZero) {
    const float inf = std::numeric_limits<float>::infinity();
    const float nan = std::numeric_limits<float>::quiet_NaN();
    Picture layer(4, 2);
    layer.set(0, 0, {1.0f, nan, 1.0f, 1.0f});
    layer.set(1, 0, {1.0f, inf, 1.0f, 1.0f});
    layer.set(2, 0, {nan, 1.0f, 1.0f, 1.0f});
    layer.set(3, 0, {0.0f, -inf, 1.0f, 1.0f});
    const GlowKernel kernel = MakeCustomShape(layer.view());
    for (std::int32_t x = 0; x < 4; ++x) EXPECT_EQ(kernel.row(0)[x], 0.0f);
    EXPECT_TRUE(kernel.rowIsEmpty(0));
}

TEST(MakeCustomShape, EmptyLayerGivesAnEmptyKernel) {
    EXPECT_FALSE(MakeCustomShape(FloatImage{}).hasTexels());
}

}  // namespace
}  // namespace vireon::test
