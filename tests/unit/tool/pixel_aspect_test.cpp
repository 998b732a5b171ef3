#include "tools/vireon/pixel_aspect.h"

#include <limits>

#include <gtest/gtest.h>

namespace vireon::tool {
namespace {

using headless::Ratio;

TEST(PixelAspect, FindsTheRatioThatWasMeant) {
    EXPECT_EQ(PixelAspectRatio(1.0), (Ratio{1, 1}));
    EXPECT_EQ(PixelAspectRatio(static_cast<double>(10.0f / 11.0f)), (Ratio{10, 11}));
    EXPECT_EQ(PixelAspectRatio(static_cast<double>(768.0f / 702.0f)), (Ratio{128, 117}));
    EXPECT_EQ(PixelAspectRatio(2.0), (Ratio{2, 1}));
    EXPECT_EQ(PixelAspectRatio(0.5), (Ratio{1, 2}));
    EXPECT_EQ(PixelAspectRatio(static_cast<double>(4.0f / 3.0f)), (Ratio{4, 3}));
    EXPECT_EQ(PixelAspectRatio(0.002), (Ratio{1, 500}));
}

TEST(PixelAspect, ApproximatesOddOnes) {
    const Ratio ratio = PixelAspectRatio(3.14159265358979);
    EXPECT_LE(ratio.denominator, 1000u);
    EXPECT_NEAR(static_cast<double>(ratio.numerator) / ratio.denominator, 3.14159265, 1e-6);
}

TEST(PixelAspect, NonsenseIsSquare) {
    for (const double aspect : {0.0, -1.0, 1e9, std::numeric_limits<double>::quiet_NaN(),
                                std::numeric_limits<double>::infinity()}) {
        EXPECT_EQ(PixelAspectRatio(aspect), (Ratio{1, 1})) << aspect;
    }
}

}  // namespace
}  // namespace vireon::tool
