#include "tools/vireon/brush_picture.h"

#include <set>
#include <string>

#include <gtest/gtest.h>

#include "tools/vireon/samples.h"
#include "tools/vireon/small_font.h"

namespace vireon::tool {
namespace {

NamedBrush Brush() {
    NamedBrush brush{"test.brush", {}};
    brush.kernel.allocate(256, 256);
    brush.kernel.values[128 * 256 + 128] = 4.0f;
    brush.kernel.values[128 * 256 + 129] = 0.25f;  // a sixteenth of the peak
    brush.kernel.values[10 * 256 + 20] = -4.0f;
    brush.kernel.flagEmptyRows();
    return brush;
}

// The panels begin below the caption; the second is a gap further.
constexpr int kTop = 28;
constexpr int kRoot = 10;
constexpr int kLinear = 276;

TEST(BrushPicture, TexelsAreTheFourthRootAndTheShareOfThePeak) {
    const headless::Picture picture = DrawBrushes({Brush()});
    const auto red = [&](int left, int x) {
        return PixelAt(picture, left + x, kTop + 128).red * 255;
    };
    EXPECT_NEAR(red(kRoot, 128), 255.0, 0.5);
    EXPECT_NEAR(red(kRoot, 129), 127.5, 0.6);
    EXPECT_NEAR(red(kRoot, 130), 0.0, 0.0);
    EXPECT_NEAR(red(kLinear, 128), 255.0, 0.5);
    EXPECT_NEAR(red(kLinear, 129), 15.9, 0.6);
}

TEST(BrushPicture, ValuesBelowZeroAreBlue) {
    const headless::Picture picture = DrawBrushes({Brush()});
    const Color below = PixelAt(picture, kRoot + 20, kTop + 10);
    EXPECT_EQ(below.red, 0.0);
    EXPECT_EQ(below.green, 0.0);
    EXPECT_EQ(below.blue, 1.0);
}

TEST(BrushPicture, EveryBrushHasAStripAndTheSheetIsOpaque) {
    const headless::Picture one = DrawBrushes({Brush()});
    const headless::Picture three = DrawBrushes({Brush(), Brush(), Brush()});
    EXPECT_EQ(one.width, three.width);
    EXPECT_EQ(three.height - one.height, 2 * (one.height - 10));
    for (std::int32_t y = 0; y < one.height; ++y) {
        for (std::int32_t x = 0; x < one.width; ++x) {
            ASSERT_EQ(PixelAt(one, x, y).alpha, 1.0);
        }
    }
    EXPECT_EQ(DrawBrushes({Brush()}), one);
}

TEST(BrushPicture, TheProfilesStandAtTheirDecade) {
    // The peak at the top, and around it a thousandth, half way down the six decades.
    NamedBrush brush{"ring", {}};
    brush.kernel.allocate(256, 256);
    for (const int row : {127, 128, 129}) {
        for (const int column : {127, 128, 129}) {
            brush.kernel.values[static_cast<std::size_t>(row * 256 + column)] = 0.004f;
        }
    }
    brush.kernel.values[128 * 256 + 128] = 4.0f;
    brush.kernel.flagEmptyRows();
    const headless::Picture picture = DrawBrushes({brush});
    constexpr int kPlot = 276 + 256 + 34;
    const auto isMean = [&](int texel, int row) {
        const Color color = PixelAt(picture, kPlot + 4 * texel, kTop + row);
        return color.red == 1.0 && color.green == 1.0 && color.blue == 1.0;
    };
    EXPECT_TRUE(isMean(0, 0));
    EXPECT_FALSE(isMean(0, 1));
    EXPECT_TRUE(isMean(1, 128));
    EXPECT_FALSE(isMean(1, 129));
    EXPECT_FALSE(isMean(1, 95));
}

TEST(BrushPicture, ABrushOfZerosStaysBlack) {
    NamedBrush brush{"nothing", {}};
    brush.kernel.allocate(256, 256);
    brush.kernel.flagEmptyRows();
    const headless::Picture picture = DrawBrushes({brush});
    EXPECT_EQ(PixelAt(picture, kRoot + 128, kTop + 128).red, 0.0);
}

TEST(SmallFont, LettersAreDistinctAndWhatIsUnknownIsABox) {
    std::set<std::string> drawn;
    for (const char letter : std::string("ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789.,+-%()/_: ")) {
        const std::uint8_t* const rows = LetterRows(letter);
        EXPECT_TRUE(drawn.insert(std::string(rows, rows + kLetterHeight)).second) << letter;
    }
    EXPECT_EQ(LetterRows('g'), LetterRows('G'));
    EXPECT_EQ(LetterRows('\xE4'), LetterRows('\x01'));
    EXPECT_EQ(LetterRows('~')[0], 0x1F);
}

}  // namespace
}  // namespace vireon::tool
