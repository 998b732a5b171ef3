#include "tools/vireon/contact_sheet.h"

#include <fstream>
#include <limits>

#include <OpenImageIO/imageio.h>
#include <gtest/gtest.h>

#include "tests/unit/tool/scratch_folder.h"
#include "tools/vireon/samples.h"

namespace vireon::tool {
namespace {

/// A sheet in 8 bits, read back.
class Sheet {
  public:
    explicit Sheet(const std::vector<StagePicture>& stages) {
        std::vector<std::string> notes;
        const std::vector<std::uint8_t> bytes = ContactSheet(stages, notes);
        const std::string path = folder_ / "sheet.png";
        std::ofstream(path, std::ios::binary)
            .write(reinterpret_cast<const char*>(bytes.data()),
                   static_cast<std::streamsize>(bytes.size()));
        const auto input = OIIO::ImageInput::open(path);
        if (input == nullptr) {
            ADD_FAILURE() << OIIO::geterror();
            return;
        }
        width_ = input->spec().width;
        height_ = input->spec().height;
        EXPECT_EQ(input->spec().nchannels, 3);
        samples_.resize(static_cast<std::size_t>(width_ * height_ * 3));
        EXPECT_TRUE(input->read_image(0, 0, 0, 3, OIIO::TypeDesc::UINT8, samples_.data()));
    }
    int width() const { return width_; }
    int height() const { return height_; }
    /// Red of a pixel of the n-th picture, none of which is made smaller.
    int red(int stage, int x, int y, int pictureHeight) const {
        const int column = 6 + stage % 3 * 486 + x;
        const int row = 6 + stage / 3 * (pictureHeight + 36) + 30 + y;
        return samples_.at(static_cast<std::size_t>((row * width_ + column) * 3));
    }

  private:
    ScratchFolder folder_;
    int width_ = 0;
    int height_ = 0;
    std::vector<std::uint8_t> samples_;
};

StagePicture Stage(std::int32_t width, std::int32_t height, const Color& color) {
    StagePicture stage{"08-glow", "glow", "text", headless::Picture(width, height, 32)};
    for (std::int32_t y = 0; y < height; ++y) {
        for (std::int32_t x = 0; x < width; ++x) SetPixel(stage.picture, x, y, color);
    }
    return stage;
}

TEST(ContactSheet, HasAPlaceForEveryStage) {
    const std::vector<StagePicture> stages(4, Stage(960, 540, {0.5, 0.5, 0.5, 1}));
    const Sheet sheet(stages);
    EXPECT_EQ(sheet.width(), 3 * 486 + 6);
    EXPECT_EQ(sheet.height(), 2 * (30 + 270 + 6) + 6);
    for (int i = 0; i < 4; ++i) EXPECT_EQ(sheet.red(i, 240, 135, 270), 128) << i;
}

TEST(ContactSheet, LightAboveWhiteIsDividedByTheLargest) {
    StagePicture bright = Stage(8, 8, {1, 0, 0, 1});
    SetPixel(bright.picture, 3, 3, {4, 0, 0, 1});
    const Sheet sheet({bright, Stage(8, 8, {1, 0, 0, 1})});
    EXPECT_EQ(sheet.red(0, 3, 3, 8), 255);
    EXPECT_EQ(sheet.red(0, 5, 5, 8), 64);
    EXPECT_EQ(sheet.red(1, 5, 5, 8), 255);
}

TEST(ContactSheet, AlphaIsShownWhereItMeansSomething) {
    StagePicture map = Stage(8, 8, {1, 0, 0, 0.2});
    map.showsAlpha = false;
    const Sheet sheet({Stage(8, 8, {1, 0, 0, 0.2}), map});
    EXPECT_EQ(sheet.red(0, 5, 5, 8), 51);
    EXPECT_EQ(sheet.red(1, 5, 5, 8), 255);
}

TEST(ContactSheet, ValuesThatAreNotFiniteAreNoReasonToFail) {
    StagePicture odd = Stage(8, 8, {0.5, 0, 0, 1});
    SetPixel(odd.picture, 1, 1, {std::numeric_limits<double>::quiet_NaN(), 0, 0, 1});
    SetPixel(odd.picture, 2, 2, {std::numeric_limits<double>::infinity(), 0, 0, 1});
    const Sheet sheet({odd, Stage(1, 1, {1, 0, 0, 1})});
    EXPECT_EQ(sheet.red(0, 1, 1, 8), 0);
    EXPECT_EQ(sheet.red(0, 2, 2, 8), 255);
    EXPECT_EQ(sheet.red(0, 5, 5, 8), 128);
}

}  // namespace
}  // namespace vireon::tool
