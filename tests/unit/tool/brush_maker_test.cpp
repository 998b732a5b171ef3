#include "tools/vireon/brush_maker.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <limits>

#include <gtest/gtest.h>

#include "tests/unit/tool/expect_error.h"

namespace vireon::tool {
namespace {

constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinity = std::numeric_limits<float>::infinity();

/// A grey float picture whose levels a function gives.
PictureFile Grey(int width, int height, const std::function<double(int, int)>& level) {
    PictureFile picture;
    picture.width = width;
    picture.height = height;
    picture.format = SampleFormat::kFloat;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const auto value = static_cast<float>(level(x, y));
            picture.samplesFloat.insert(picture.samplesFloat.end(), {value, value, value, 1.0f});
        }
    }
    return picture;
}

/// Light at a few places.
PictureFile Spots(int width, int height, const std::vector<std::array<int, 2>>& spots) {
    return Grey(width, height, [&](int x, int y) {
        return std::count(spots.begin(), spots.end(), std::array{x, y}) > 0 ? 1.0 : 0.0;
    });
}

/// A soft light with a tail to one side, nowhere near the middle.
PictureFile Comet(int width, int height) {
    return Grey(width, height, [&](int x, int y) {
        const double dx = x - width * 0.3;
        const double dy = y - height * 0.4;
        const double head = 1.0 / (1.0 + (dx * dx + dy * dy) / 30.0);
        const double tail = dx > 0 ? 0.4 / (1.0 + dy * dy / 10.0) / (1.0 + dx / 20.0) : 0.0;
        return std::max(head - 0.01, 0.0) + tail * (1.0 - static_cast<double>(x) / width);
    });
}

double At(const MadeBrush& made, int x, int y) {
    return made.samples[static_cast<std::size_t>(y) * 256 + static_cast<std::size_t>(x)];
}

struct Weighed {
    double sum = 0;
    double offsetX = 0;
    double offsetY = 0;
};

Weighed Weigh(const MadeBrush& made) {
    Weighed weighed;
    for (int y = 0; y < 256; ++y) {
        for (int x = 0; x < 256; ++x) {
            weighed.sum += At(made, x, y);
            weighed.offsetX += At(made, x, y) * (x - 128);
            weighed.offsetY += At(made, x, y) * (y - 128);
        }
    }
    weighed.offsetX /= weighed.sum;
    weighed.offsetY /= weighed.sum;
    return weighed;
}

bool Notes(const MadeBrush& made, const std::string& words) {
    return std::any_of(made.notes.begin(), made.notes.end(), [&](const std::string& note) {
        return note.find(words) != std::string::npos;
    });
}

TEST(BrushMaker, EveryBrushHasOurEnergyIsCentredAndEndsAtTheRim) {
    for (const auto& picture :
         {Comet(500, 300), Comet(90, 200), Comet(256, 256), Spots(1000, 1000, {{17, 950}}),
          Spots(40, 30, {{3, 3}, {9, 20}, {11, 20}}), Spots(1, 1, {{0, 0}})}) {
        for (const bool crops : {false, true}) {
            BrushMaking making;
            making.crops = crops;
            const MadeBrush made = MakeBrush(picture, making);
            SCOPED_TRACE(std::to_string(picture.width) + (crops ? " crop" : " fit"));
            ASSERT_EQ(made.samples.size(), 65536u);
            const Weighed weighed = Weigh(made);
            EXPECT_NEAR(weighed.sum, brushes::kBrushEnergy, 1e-6);
            EXPECT_LT(std::abs(weighed.offsetX), 0.01);
            EXPECT_LT(std::abs(weighed.offsetY), 0.01);
            for (int y = 0; y < 256; ++y) {
                for (int x = 0; x < 256; ++x) {
                    ASSERT_GE(At(made, x, y), 0.0);
                    if ((x - 128) * (x - 128) + (y - 128) * (y - 128) >= 127 * 127) {
                        ASSERT_EQ(At(made, x, y), 0.0) << x << ", " << y;
                    }
                }
            }
        }
    }
}

TEST(BrushMaker, EnergyIsWhatIsAskedFor) {
    BrushMaking making;
    making.energy = 12.5;
    EXPECT_NEAR(Weigh(MakeBrush(Comet(100, 100), making)).sum, 12.5, 1e-9);
}

TEST(BrushMaker, TexelsAreMeansOfTheirAreas) {
    // A checkerboard far finer than the texels is an even grey.
    BrushMaking making;
    making.centring = BrushCentring::kPicture;
    making.crops = true;
    const MadeBrush made =
        MakeBrush(Grey(1016, 1016, [](int x, int y) { return (x + y) % 2; }), making);
    for (const auto& [x, y] : {std::array{128, 128}, std::array{60, 150}, std::array{200, 100}}) {
        EXPECT_NEAR(At(made, x, y) / At(made, 128, 128), 1.0, 1e-12);
    }
    EXPECT_LT(At(made, 128 + 115, 128), At(made, 128, 128));
}

TEST(BrushMaker, FitShowsAllOfAPictureAndCropFillsTheBrush) {
    const PictureFile wide = Grey(508, 254, [](int, int) { return 1.0; });
    BrushMaking making;
    making.centring = BrushCentring::kPicture;
    const MadeBrush fitted = MakeBrush(wide, making);
    EXPECT_GT(At(fitted, 128 + 120, 128), 0.0);
    EXPECT_GT(At(fitted, 128, 128 + 63), 0.0);
    EXPECT_EQ(At(fitted, 128, 128 + 65), 0.0);
    making.crops = true;
    EXPECT_GT(At(MakeBrush(wide, making), 128, 128 + 120), 0.0);
}

TEST(BrushMaker, PixelsThatAreNotSquareKeepTheirShape) {
    PictureFile picture = Grey(127, 254, [](int, int) { return 1.0; });
    picture.pixelAspect = 2.0;
    BrushMaking making;
    making.centring = BrushCentring::kPicture;
    const MadeBrush made = MakeBrush(picture, making);
    EXPECT_NEAR(At(made, 128 + 110, 128), At(made, 128, 128 + 110), 1e-9);
}

TEST(BrushMaker, APointOfThePictureLiesOnTheCentre) {
    BrushMaking making;
    making.centring = BrushCentring::kPoint;
    making.pointX = 31.5;
    making.pointY = 80.5;
    const MadeBrush made = MakeBrush(Spots(254, 254, {{31, 80}, {41, 80}, {31, 100}}), making);
    EXPECT_GT(At(made, 128, 128), 0.0);
    EXPECT_NEAR(At(made, 138, 128), At(made, 128, 128), 1e-9);
    EXPECT_NEAR(At(made, 128, 148), At(made, 128, 128), 1e-9);
    making.pointX = 1e6;
    EXPECT_NE(ExpectError(kInputUnreadable,
                          [&] {
                              MakeBrush(Spots(254, 254, {{31, 80}}), making);
                          })
                  .find("none of its light"),
              std::string::npos);
}

TEST(BrushMaker, LevelsThatAreNoLightCountAsBlackAndAreSaid) {
    const auto level = [](int x, int y) {
        if (y == 0)
            return x == 0   ? -3.0
                   : x == 1 ? static_cast<double>(kNan)
                   : x == 2 ? static_cast<double>(kInfinity)
                            : 0.0;
        return x == 32 && y == 32 ? 1.0 : 0.0;
    };
    const MadeBrush made = MakeBrush(Grey(64, 64, level), {});
    EXPECT_TRUE(Notes(made, "1 pixels of the picture are below 0"));
    EXPECT_TRUE(Notes(made, "2 pixels of the picture are not finite"));
    const MadeBrush clean = MakeBrush(Spots(64, 64, {{32, 32}}), {});
    EXPECT_EQ(made.samples, clean.samples);
    EXPECT_TRUE(clean.notes.empty());
}

TEST(BrushMaker, ChannelsAreLightMultipliedByAlpha) {
    PictureFile picture;
    picture.width = 3;
    picture.height = 1;
    picture.hasAlpha = true;
    picture.samples8 = {255, 0, 0, 255, 0, 255, 0, 255, 0, 0, 255, 0};
    BrushMaking making;
    making.centring = BrushCentring::kPicture;
    const auto left = [](const MadeBrush& made) { return At(made, 128 - 84, 128) > 0; };
    const auto middle = [](const MadeBrush& made) {
        return At(made, 128, 128) > 0.01 * At(made, 128 - 84, 128);
    };
    making.channel = BrushChannel::kRed;
    EXPECT_TRUE(left(MakeBrush(picture, making)));
    EXPECT_FALSE(middle(MakeBrush(picture, making)));
    making.channel = BrushChannel::kGreen;
    EXPECT_TRUE(middle(MakeBrush(picture, making)));
    making.channel = BrushChannel::kLuminance;
    const MadeBrush luminance = MakeBrush(picture, making);
    EXPECT_NEAR(At(luminance, 128 - 84, 128) / At(luminance, 128, 128), 0.2126 / 0.7152, 0.01);
    making.channel = BrushChannel::kAlpha;
    EXPECT_NEAR(At(MakeBrush(picture, making), 128 - 84, 128),
                At(MakeBrush(picture, making), 128, 128), 1e-3);
    // Blue is there in the file, but transparent; where colour is stored as light it counts.
    making.channel = BrushChannel::kBlue;
    ExpectError(kInputUnreadable, [&] { MakeBrush(picture, making); });
    picture.isAssociated = true;
    EXPECT_GT(At(MakeBrush(picture, making), 128 + 84, 128), 0.0);
}

TEST(BrushMaker, InvertingLeavesTheTransparentDark) {
    PictureFile picture;
    picture.width = 3;
    picture.height = 1;
    picture.hasAlpha = true;
    picture.samples8 = {0, 0, 0, 255, 255, 255, 255, 255, 0, 0, 0, 0};
    BrushMaking making;
    making.centring = BrushCentring::kPicture;
    making.isInverted = true;
    const MadeBrush made = MakeBrush(picture, making);
    // What lies between two pixels reaches a little into the middle of either.
    EXPECT_LT(At(made, 128, 128), 0.01 * At(made, 128 - 84, 128));
    EXPECT_EQ(At(made, 128 + 84, 128), 0.0);
}

TEST(BrushMaker, GammaIsAPowerOfTheLevels) {
    const PictureFile picture = Grey(2, 1, [](int x, int) { return x == 0 ? 1000.0 : 500.0; });
    BrushMaking making;
    making.centring = BrushCentring::kPicture;
    making.gamma = 3;
    const MadeBrush made = MakeBrush(picture, making);
    EXPECT_NEAR(At(made, 128 + 63, 128) / At(made, 128 - 63, 128), 0.125, 0.01);
}

TEST(BrushMaker, TheWindowBeginsWhereItIsAskedFor) {
    BrushMaking making;
    making.centring = BrushCentring::kPicture;
    making.crops = true;
    making.windowStart = 40;
    const MadeBrush made = MakeBrush(Grey(300, 300, [](int, int) { return 1.0; }), making);
    EXPECT_NEAR(At(made, 128 + 40, 128), At(made, 128, 128), 1e-9);
    EXPECT_LT(At(made, 128 + 43, 128), At(made, 128, 128));
    EXPECT_NEAR(At(made, 128 + 126, 128) / At(made, 128, 128), 0.0, 1e-4);
}

TEST(BrushMaker, BlackPicturesAndMissingChannelsAreRefused) {
    const PictureFile black = Grey(20, 20, [](int, int) { return 0.0; });
    EXPECT_NE(ExpectError(kInputUnreadable, [&] { MakeBrush(black, {}); })
                  .find("its luminance is black throughout"),
              std::string::npos);
    const PictureFile dark = Grey(20, 20, [](int, int) { return -1.0; });
    ExpectError(kInputUnreadable, [&] { MakeBrush(dark, {}); });
    BrushMaking making;
    making.channel = BrushChannel::kAlpha;
    EXPECT_NE(
        ExpectError(kInputUnreadable, [&] { MakeBrush(Comet(20, 20), making); }).find("no alpha"),
        std::string::npos);
}

TEST(BrushMaker, SaysWhatIsLostAndWhatShowsAsAnEdge) {
    BrushMaking making;
    making.centring = BrushCentring::kPicture;
    const MadeBrush band = MakeBrush(Grey(200, 50, [](int, int) { return 1.0; }), making);
    EXPECT_TRUE(Notes(band, "not black at its sides (up to 100 %"));
    EXPECT_TRUE(Notes(band, "lies beyond the brush or fades"));
    EXPECT_TRUE(MakeBrush(Spots(200, 50, {{100, 25}}), making).notes.empty());
}

}  // namespace
}  // namespace vireon::tool
