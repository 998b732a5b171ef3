#include "tests/pictures/reference_file.h"

#include <fstream>
#include <limits>

#include <gtest/gtest.h>

#include "tests/pictures/test_pictures.h"
#include "tests/unit/tool/scratch_folder.h"
#include "tools/vireon/tool_error.h"

namespace vireon::pictures {
namespace {

using headless::Picture;
using tool::ScratchFolder;
using tool::ToolError;

TEST(ReferenceFile, KeepsEveryBitAtEveryDepth) {
    const ScratchFolder folder;
    for (const int bits : {8, 16, 32}) {
        const Picture picture = TestPicture(bits);
        const auto file = folder / ReferenceName("picture", bits);
        WriteReference(file, picture);
        EXPECT_TRUE(ReadReference(file, bits) == picture) << bits;
    }
    EXPECT_TRUE(std::filesystem::exists(folder / "picture.png"));
    EXPECT_TRUE(std::filesystem::exists(folder / "picture.exr"));
}

TEST(ReferenceFile, KeepsEveryValueOfSixteenBits) {
    const ScratchFolder folder;
    Picture picture(256, 129, 16);
    std::uint32_t value = 0;
    for (std::int32_t y = 0; y < picture.height; ++y) {
        for (std::int32_t i = 0; i < picture.width * 4; ++i) {
            picture.row<std::uint16_t>(y)[i] = static_cast<std::uint16_t>(value++ % 32769);
        }
    }
    ASSERT_GT(value, 4u * 32769u - 1000u);
    WriteReference(folder / "all.png", picture);
    EXPECT_TRUE(ReadReference(folder / "all.png", 16) == picture);
}

TEST(ReferenceFile, KeepsColourThatNothingCovers) {
    const ScratchFolder folder;
    for (const int bits : {8, 16, 32}) {
        Picture picture = TestPicture(bits);
        switch (bits) {
            case 8: picture.row<std::uint8_t>(1)[0] = 0; break;
            case 16: picture.row<std::uint16_t>(1)[0] = 0; break;
            default: picture.row<float>(1)[0] = 0.0f; break;
        }
        const auto file = folder / ReferenceName("clear", bits);
        WriteReference(file, picture);
        EXPECT_TRUE(ReadReference(file, bits) == picture) << bits;
    }
}

TEST(ReferenceFile, KeepsFloatsThatAreNoColours) {
    const ScratchFolder folder;
    Picture picture = TestPicture(32);
    float* const row = picture.row<float>(0);
    row[0] = -0.0f;
    row[1] = -3.5f;
    row[2] = 1e30f;
    row[3] = std::numeric_limits<float>::denorm_min();
    row[4] = std::numeric_limits<float>::infinity();
    WriteReference(folder / "odd.exr", picture);
    // By bytes: operator== of the pixels compares bytes as well, so -0 counts.
    EXPECT_EQ(ReadReference(folder / "odd.exr", 32).pixels, picture.pixels);
}

TEST(ReferenceFile, SamePictureSameBytes) {
    const ScratchFolder folder;
    for (const int bits : {8, 16, 32}) {
        std::string bytes[2];
        for (int i = 0; i < 2; ++i) {
            const auto file = folder / ReferenceName(std::to_string(i), bits);
            WriteReference(file, TestPicture(bits));
            std::ifstream stream(file, std::ios::binary);
            bytes[i].assign(std::istreambuf_iterator<char>(stream), {});
        }
        EXPECT_FALSE(bytes[0].empty());
        EXPECT_EQ(bytes[0], bytes[1]) << bits;
    }
}

TEST(ReferenceFile, RefusesWhatIsMissingDamagedOrOfAnotherDepth) {
    const ScratchFolder folder;
    EXPECT_THROW(ReadReference(folder / "missing.png", 8), ToolError);
    WriteReference(folder / "eight.png", TestPicture(8));
    EXPECT_THROW(ReadReference(folder / "eight.png", 16), ToolError);
    WriteReference(folder / "sixteen.png", TestPicture(16));
    EXPECT_THROW(ReadReference(folder / "sixteen.png", 8), ToolError);
    WriteReference(folder / "large.exr", TestPicture(32, 64, 64));
    std::filesystem::resize_file(folder / "large.exr", 2000);
    EXPECT_THROW(ReadReference(folder / "large.exr", 32), ToolError);
}

}  // namespace
}  // namespace vireon::pictures
