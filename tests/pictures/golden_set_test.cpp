#include "tests/pictures/golden_set.h"

#include <fstream>
#include <iterator>
#include <limits>
#include <stdexcept>

#include <gtest/gtest.h>

#include "tests/pictures/test_pictures.h"
#include "tests/unit/tool/scratch_folder.h"

namespace vireon::pictures {
namespace {

using headless::Picture;
using tool::ScratchFolder;

GoldenCase Case(const std::string& name, std::int32_t bits) {
    GoldenCase golden;
    golden.name = name;
    golden.bits = bits;
    return golden;
}

std::string ContentOf(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

class ASet : public testing::Test {
  protected:
    const ScratchFolder folder_;
    const GoldenCase eight_ = Case("eight", 8);
    const GoldenCase float_ = Case("float", 32);
    const GoldenSet set_{{eight_, float_}, folder_.path()};
};

TEST_F(ASet, AMissingReferenceFails) {
    const auto entry = set_.check(eight_, TestPicture(8), kRounding);
    ASSERT_TRUE(entry.has_value());
    EXPECT_NE(entry->problem.find("no reference eight.png"), std::string::npos) << entry->problem;
    EXPECT_TRUE(entry->now.has_value());
    EXPECT_FALSE(entry->reference.has_value());
    // Looking at it brought none into being.
    EXPECT_EQ(folder_.count(), 0);
}

TEST_F(ASet, ADamagedReferenceFails) {
    std::ofstream(folder_ / "eight.png") << "no picture";
    const auto entry = set_.check(eight_, TestPicture(8), kRounding);
    ASSERT_TRUE(entry.has_value());
    EXPECT_NE(entry->problem.find("eight.png"), std::string::npos) << entry->problem;
}

TEST_F(ASet, WhatWasAcceptedIsRightAndNothingElse) {
    for (const GoldenCase& golden : set_.cases()) {
        Picture picture = TestPicture(golden.bits);
        EXPECT_TRUE(set_.accept(golden, picture));
        EXPECT_FALSE(set_.check(golden, picture, kSameBits).has_value());

        const std::string before = ContentOf(set_.fileOf(golden));
        picture.pixels[5] ^= 1;
        const auto entry = set_.check(golden, picture, kSameBits);
        ASSERT_TRUE(entry.has_value());
        ASSERT_TRUE(entry->comparison.has_value());
        EXPECT_EQ(entry->comparison->differing, 1u);
        EXPECT_TRUE(entry->reference.has_value());
        EXPECT_EQ(ContentOf(set_.fileOf(golden)), before) << "a check changed a reference";
    }
}

TEST_F(ASet, TheSamePictureIsNotWrittenAgain) {
    EXPECT_TRUE(set_.accept(eight_, TestPicture(8)));
    EXPECT_FALSE(set_.accept(eight_, TestPicture(8)));
    Picture other = TestPicture(8);
    other.pixels[9] ^= 1;
    EXPECT_TRUE(set_.accept(eight_, other));
    EXPECT_FALSE(set_.check(eight_, other, kSameBits).has_value());
}

TEST_F(ASet, APictureThatIsNotFiniteIsNeverAccepted) {
    Picture spoiled = TestPicture(32);
    spoiled.row<float>(1)[6] = std::numeric_limits<float>::quiet_NaN();
    EXPECT_THROW(set_.accept(float_, spoiled), std::runtime_error);
    EXPECT_EQ(folder_.count(), 0);
}

TEST_F(ASet, PicturesWithoutACaseAreFound) {
    set_.accept(eight_, TestPicture(8));
    EXPECT_TRUE(set_.strays().empty());
    std::ofstream(folder_ / "cases.json") << "[]";
    std::ofstream(folder_ / "old.png") << "";
    std::ofstream(folder_ / "eight.exr") << "";
    const std::vector<std::filesystem::path> expected{folder_ / "eight.exr", folder_ / "old.png"};
    EXPECT_EQ(set_.strays(), expected);
}

TEST_F(ASet, OnlyAWishAccepts) {
    const std::vector<GoldenCase>& cases = set_.cases();
    EXPECT_TRUE(CasesToAccept("", cases).empty());
    EXPECT_TRUE(CasesToAccept("0", cases).empty());
    EXPECT_TRUE(CasesToAccept(" ", cases).empty());
    const std::set<std::string> both{"eight", "float"};
    EXPECT_EQ(CasesToAccept("1", cases), both);
    EXPECT_EQ(CasesToAccept("all", cases), both);
    EXPECT_EQ(CasesToAccept("float, eight", cases), both);
    EXPECT_EQ(CasesToAccept("float", cases), std::set<std::string>{"float"});
    EXPECT_THROW(CasesToAccept("float nine", cases), std::runtime_error);
}

}  // namespace
}  // namespace vireon::pictures
