#include "tools/vireon/brush_figures.h"

#include <algorithm>
#include <array>

#include <gtest/gtest.h>

namespace vireon::tool {
namespace {

GlowKernel Kernel() {
    GlowKernel kernel;
    kernel.allocate(256, 256);
    return kernel;
}

float& Texel(GlowKernel& kernel, int x, int y) {
    return kernel.values[static_cast<std::size_t>(y) * 256 + static_cast<std::size_t>(x)];
}

TEST(BrushFigures, OfThreeTexels) {
    GlowKernel kernel = Kernel();
    Texel(kernel, 128, 128) = 2.0f;
    Texel(kernel, 148, 128) = 1.0f;
    Texel(kernel, 128, 168) = 1.0f;
    kernel.flagEmptyRows();
    const BrushFigures figures = FiguresOf(kernel);
    EXPECT_EQ(figures.sum, 4.0);
    EXPECT_EQ(figures.peak, 2.0);
    EXPECT_EQ(figures.peakX, 128);
    EXPECT_EQ(figures.peakY, 128);
    EXPECT_EQ(figures.smallest, 0.0);
    EXPECT_EQ(figures.offsetX, 5.0);
    EXPECT_EQ(figures.offsetY, 10.0);
    EXPECT_EQ(figures.zeroRows, 254);
    EXPECT_EQ(figures.rim, 0.0);
    EXPECT_EQ(figures.share[0], 0.5);
    EXPECT_EQ(figures.share[1], 0.75);
    EXPECT_EQ(figures.share[2], 1.0);
}

TEST(BrushFigures, TheRimBeginsAtDistance127AndTakesMagnitudes) {
    for (const auto& [x, y, counts] :
         {std::array{255, 128, 1}, std::array{128, 255, 1}, std::array{0, 3, 1},
          std::array{254, 128, 0}, std::array{128, 2, 0}, std::array{218, 218, 1}}) {
        GlowKernel kernel = Kernel();
        Texel(kernel, x, y) = -0.5f;
        kernel.flagEmptyRows();
        EXPECT_EQ(FiguresOf(kernel).rim, counts * 0.5) << x << ", " << y;
        EXPECT_EQ(FiguresOf(kernel).smallest, -0.5);
    }
}

TEST(BrushFigures, WithoutLightThereIsNothingToWeigh) {
    GlowKernel kernel = Kernel();
    kernel.flagEmptyRows();
    const BrushFigures figures = FiguresOf(kernel);
    EXPECT_EQ(figures.sum, 0.0);
    EXPECT_EQ(figures.offsetX, 0.0);
    EXPECT_EQ(figures.share[2], 0.0);
    EXPECT_EQ(figures.zeroRows, 256);
}

TEST(RadialMean, IsTheMeanOfARing) {
    GlowKernel kernel = Kernel();
    std::fill(kernel.values.begin(), kernel.values.end(), 0.25f);
    for (const double mean : RadialMean(kernel)) {
        EXPECT_EQ(mean, 0.25);
    }
    kernel = Kernel();
    Texel(kernel, 128, 128) = 7.0f;
    Texel(kernel, 129, 128) = 8.0f;  // one of the eight texels that round to distance 1
    const auto means = RadialMean(kernel);
    EXPECT_EQ(means[0], 7.0);
    EXPECT_EQ(means[1], 1.0);
    EXPECT_EQ(means[2], 0.0);
}

}  // namespace
}  // namespace vireon::tool
