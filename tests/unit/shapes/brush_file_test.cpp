#include "shapes/brush_file.h"

#include <clocale>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/unit/shapes/temporary_folder.h"
#include "tests/unit/support/picture.h"

namespace vireon::test {
namespace {

constexpr std::size_t kSamples = 65536;
const std::string kHeader = "256\n256\nany text\n";

GlowKernel Read(const std::string& text) {
    const TemporaryFolder folder;
    return ReadBrushFile(folder.write("test.brush", text).native());
}

/// A file that begins with these samples and ends there.
GlowKernel ReadSamples(const std::string& samples) {
    return Read(kHeader + samples);
}

void ExpectRejected(const GlowKernel& kernel) {
    EXPECT_FALSE(kernel.hasTexels());
    EXPECT_TRUE(kernel.emptyRows.empty());
}

void ExpectEmptyTail(const GlowKernel& kernel, std::size_t from) {
    for (std::size_t i = from; i < kSamples; ++i) ASSERT_EQ(kernel.values[i], 0.0f) << i;
}

TEST(ReadBrushFile, SamplesStandInRowsAsTheyAre) {
    Random random(170);
    std::string text = kHeader;
    std::vector<float> want;
    for (std::size_t i = 0; i < kSamples; ++i) {
        const double value = random.uniform(-3.0, 300.0);
        text += std::to_string(value) + "\n";
        want.push_back(static_cast<float>(std::stod(std::to_string(value))));
    }
    const GlowKernel kernel = Read(text);
    ASSERT_TRUE(kernel.hasTexels());
    EXPECT_EQ(kernel.width, 256);
    EXPECT_EQ(kernel.height, 256);
    ASSERT_EQ(kernel.values.size(), kSamples);
    ASSERT_EQ(kernel.emptyRows.size(), 256u);
    EXPECT_EQ(kernel.values, want);
    for (std::int32_t y = 0; y < 256; ++y) EXPECT_FALSE(kernel.rowIsEmpty(y));
}

TEST(ReadBrushFile, HeaderOf128By128IsRejectedEvenWithAllItsSamples) {
    std::string text = "128\n128\nx\n";
    for (int i = 0; i < 128 * 128; ++i) text += "0.5\n";
    const GlowKernel kernel = Read(text);
    ExpectRejected(kernel);
    EXPECT_EQ(kernel.width, 128);
    EXPECT_EQ(kernel.height, 128);
}

TEST(ReadBrushFile, EverySizeBut256By256IsRejected) {
    for (const std::string header :
         {"256\n255\n", "255\n256\n", "0\n0\n", "-256\n-256\n", "512\n512\n", "abc\n256\n",
          "256\n\n", "65536\n1\n", "99999999999999999999\n256\n", "4294967552\n256\n"}) {
        ExpectRejected(Read(header + "x\n1\n1\n1\n"));
    }
}

TEST(ReadBrushFile, HeaderNumbersArePrefixesOfTheirLines) {
    for (const std::string header :
         {"  256\n\t256\n", "256 pixels\n256px\n", "+256\n256.9\n", "0256\n256;\n"}) {
        const GlowKernel kernel = Read(header + "x\n0.5\n");
        ASSERT_TRUE(kernel.hasTexels()) << header;
        EXPECT_EQ(kernel.values[0], 0.5f);
    }
}

TEST(ReadBrushFile, AThousandSamplesLeaveTheRestZeroAndTheRowsFromTheFifthFlagged) {
    std::string samples;
    for (int i = 0; i < 1000; ++i) samples += "0.25\n";
    const GlowKernel kernel = ReadSamples(samples);
    ASSERT_TRUE(kernel.hasTexels());
    for (std::size_t i = 0; i < 1000; ++i) ASSERT_EQ(kernel.values[i], 0.25f);
    ExpectEmptyTail(kernel, 1000);
    for (std::int32_t y = 0; y < 256; ++y) EXPECT_EQ(kernel.rowIsEmpty(y), y >= 4) << y;
}

TEST(ReadBrushFile, RowFlagsTellRowsOfZerosOnly) {
    std::string samples;
    for (int i = 0; i < 256; ++i) samples += i % 2 == 0 ? "0\n" : "-0.0\n";
    for (int i = 0; i < 256; ++i) samples += i == 200 ? "1e-30\n" : "0\n";
    const GlowKernel kernel = ReadSamples(samples);
    EXPECT_TRUE(kernel.rowIsEmpty(0));
    EXPECT_FALSE(kernel.rowIsEmpty(1));
    EXPECT_TRUE(kernel.rowIsEmpty(2));
}

TEST(ReadBrushFile, LinesThatAreNoNumberAreZero) {
    const GlowKernel kernel = ReadSamples("abc\n\n-\n.\n0.5\ne5\n  \n#7\n0.25\n");
    const float want[] = {0.0f, 0.0f, 0.0f, 0.0f, 0.5f, 0.0f, 0.0f, 0.0f, 0.25f};
    for (std::size_t i = 0; i < 9; ++i) EXPECT_EQ(kernel.values[i], want[i]) << i;
}

TEST(ReadBrushFile, SamplesArePrefixesOfTheirLines) {
    const GlowKernel kernel =
        ReadSamples("  0.5\n\t0.25 # grey\n+1.5\n-2.5e-1x\n.125\n3.\n1E2\n1e\n0.5 0.75\n0.1\n");
    const float want[] = {0.5f, 0.25f, 1.5f, -0.25f, 0.125f, 3.0f, 100.0f, 1.0f, 0.5f, 0.1f};
    for (std::size_t i = 0; i < 10; ++i) EXPECT_EQ(kernel.values[i], want[i]) << i;
    ExpectEmptyTail(kernel, 10);
}

TEST(ReadBrushFile, LineEndsOfWindowsAreRead) {
    const GlowKernel kernel = Read("256\r\n256\r\nx\r\n0.5\r\n0.25\r\n");
    ASSERT_TRUE(kernel.hasTexels());
    EXPECT_EQ(kernel.values[0], 0.5f);
    EXPECT_EQ(kernel.values[1], 0.25f);
    ExpectEmptyTail(kernel, 2);
}

TEST(ReadBrushFile, LastLineNeedsNoLineEnd) {
    const GlowKernel kernel = ReadSamples("0.5\n0.25");
    EXPECT_EQ(kernel.values[1], 0.25f);
    ExpectEmptyTail(kernel, 2);
}

TEST(ReadBrushFile, LinesOfMoreThan1023CharactersCountAsSeveral) {
    // The rest of the long third line is the first sample.
    const GlowKernel third = Read("256\n256\n" + std::string(1023, 'x') + "0.75\n0.5\n");
    ASSERT_TRUE(third.hasTexels());
    EXPECT_EQ(third.values[0], 0.75f);
    EXPECT_EQ(third.values[1], 0.5f);

    const GlowKernel sample = ReadSamples("0.5" + std::string(1020, ' ') + "0.25\n" + "0.125\n");
    EXPECT_EQ(sample.values[0], 0.5f);
    EXPECT_EQ(sample.values[1], 0.25f);
    EXPECT_EQ(sample.values[2], 0.125f);

    const GlowKernel three = Read("256\n256\n" + std::string(2 * 1023, 'x') + "0.75\n0.5\n");
    EXPECT_EQ(three.values[0], 0.0f);
    EXPECT_EQ(three.values[1], 0.75f);
    EXPECT_EQ(three.values[2], 0.5f);
}

TEST(ReadBrushFile, LinesOfUpTo1022CharactersAreOne) {
    const GlowKernel kernel = Read("256\n256\n" + std::string(1022, 'x') + "\n0.75\n");
    EXPECT_EQ(kernel.values[0], 0.75f);
}

TEST(ReadBrushFile, MissingHeaderLinesAreRejected) {
    for (const std::string text : {"", "256", "256\n", "256\n256", "256\n256\n"}) {
        ExpectRejected(Read(text));
    }
}

TEST(ReadBrushFile, ThirdLineMustExistAndNothingElse) {
    for (const std::string text : {"256\n256\nx", "256\n256\n\n", "256\n256\n0.5\n"}) {
        const GlowKernel kernel = Read(text);
        ASSERT_TRUE(kernel.hasTexels());
        ExpectEmptyTail(kernel, 0);
        for (std::int32_t y = 0; y < 256; ++y) EXPECT_TRUE(kernel.rowIsEmpty(y));
    }
}

TEST(ReadBrushFile, SamplesThatAreNotFiniteAreZero) {
    const GlowKernel kernel =
        ReadSamples("nan\ninf\n-inf\nNaN\nINFINITY\n1e999\n-1e999\n1e39\n0.5\n1e-60\n");
    for (std::size_t i = 0; i < 8; ++i) EXPECT_EQ(kernel.values[i], 0.0f) << i;
    EXPECT_EQ(kernel.values[8], 0.5f);
    EXPECT_EQ(kernel.values[9], 0.0f);
    EXPECT_FALSE(kernel.rowIsEmpty(0));
}

TEST(ReadBrushFile, LinesBehindTheLastSampleAreNotRead) {
    const GlowKernel kernel =
        Read(FlatBrush("0.5") + "77\nnot a number\n" + std::string(5000, '9'));
    ASSERT_EQ(kernel.values.size(), kSamples);
    for (const float value : kernel.values) ASSERT_EQ(value, 0.5f);
}

TEST(ReadBrushFile, CommasEndTheNumberWhateverTheLocale) {
    const GlowKernel plain = ReadSamples("0,5\n0.5\n");
    EXPECT_EQ(plain.values[0], 0.0f);
    EXPECT_EQ(plain.values[1], 0.5f);

    const std::string before = std::setlocale(LC_NUMERIC, nullptr);
    const char* chosen = nullptr;
    for (const char* const name :
         {"de_DE.UTF-8", "de_DE.utf8", "de_DE", "fr_FR.UTF-8", "German", "German_Germany.1252"}) {
        chosen = std::setlocale(LC_NUMERIC, name);
        if (chosen != nullptr) break;
    }
    if (chosen == nullptr) GTEST_SKIP() << "no locale with decimal commas on this system";
    const bool comma = std::string(std::localeconv()->decimal_point) == ",";
    const GlowKernel kernel = ReadSamples("0,5\n0.5\n");
    std::setlocale(LC_NUMERIC, before.c_str());
    ASSERT_TRUE(comma);
    EXPECT_EQ(kernel.values[0], 0.0f);
    EXPECT_EQ(kernel.values[1], 0.5f);
}

TEST(ReadBrushFile, MissingFilesAndFoldersAreEmpty) {
    const TemporaryFolder folder;
    ExpectRejected(ReadBrushFile((folder.path() / "missing.brush").native()));
    ExpectRejected(ReadBrushFile((folder.path() / "no folder" / "a.brush").native()));
    ExpectRejected(ReadBrushFile(folder.path().native()));
}

TEST(GlowKernel, AllocateZeroesAndFlagsFollowTheTexels) {
    GlowKernel kernel;
    EXPECT_FALSE(kernel.hasTexels());
    kernel.allocate(3, 2);
    EXPECT_TRUE(kernel.hasTexels());
    EXPECT_EQ(kernel.width, 3);
    EXPECT_EQ(kernel.height, 2);
    for (const float value : kernel.values) EXPECT_EQ(value, 0.0f);
    kernel.values[1] = -0.0f;
    kernel.values[5] = -1.0f;
    kernel.flagEmptyRows();
    EXPECT_TRUE(kernel.rowIsEmpty(0));
    EXPECT_FALSE(kernel.rowIsEmpty(1));
    EXPECT_EQ(kernel.row(1)[2], -1.0f);
    kernel.allocate(2, 2);
    EXPECT_EQ(kernel.values.size(), 4u);
    for (const float value : kernel.values) EXPECT_EQ(value, 0.0f);
}

}  // namespace
}  // namespace vireon::test
