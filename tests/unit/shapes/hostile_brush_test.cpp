// Whatever lies in the folder of the brushes, the effect goes on: with an empty slot, or with
// zeros.

#include <cmath>
#include <filesystem>
#include <string>

#include <gtest/gtest.h>

#include "shapes/brush_file.h"
#include "tests/unit/shapes/temporary_folder.h"
#include "tests/unit/support/hostile_brushes.h"

#ifndef _WIN32
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace vireon::test {
namespace {

TEST(HostileBrush, LeavesAnEmptySlotOrFiniteTexels) {
    const TemporaryFolder folder;
    for (const HostileBrush& brush : HostileBrushes()) {
        const GlowKernel kernel = ReadBrushFile(folder.write(brush.name, brush.text).native());
        ASSERT_EQ(kernel.hasTexels(), brush.isUsable) << brush.name;
        if (!brush.isUsable) continue;
        ASSERT_EQ(kernel.values.size(), 65536u) << brush.name;
        ASSERT_EQ(kernel.emptyRows.size(), 256u) << brush.name;
        for (const float value : kernel.values) ASSERT_TRUE(std::isfinite(value)) << brush.name;
    }
}

TEST(HostileBrush, NotesChangeNothing) {
    const TemporaryFolder folder;
    for (const HostileBrush& brush : HostileBrushes()) {
        const auto path = folder.write(brush.name, brush.text).native();
        BrushFileNotes notes;
        const GlowKernel noted = ReadBrushFile(path, &notes);
        const GlowKernel plain = ReadBrushFile(path);
        EXPECT_EQ(noted.values, plain.values) << brush.name;
        EXPECT_EQ(noted.emptyRows, plain.emptyRows) << brush.name;
        EXPECT_EQ(noted.width, plain.width) << brush.name;
        EXPECT_EQ(noted.height, plain.height) << brush.name;
        EXPECT_TRUE(notes.isOpen);
    }
}

TEST(HostileBrush, OfManyGigabytesIsReadNoFurtherThanItsSamples) {
    const TemporaryFolder folder;
    const auto path = folder.write("huge.brush", BrushOf("0.5", 1000) + std::string(2000, '\0'));
    std::error_code error;
    // Takes no room on the disk where the file system knows holes.
    std::filesystem::resize_file(path, std::uintmax_t{1} << 33, error);
    if (error) GTEST_SKIP() << "no room for a large file: " << error.message();
    const GlowKernel kernel = ReadBrushFile(path.native());
    ASSERT_TRUE(kernel.hasTexels());
    EXPECT_EQ(kernel.values[999], 0.5f);
    EXPECT_EQ(kernel.values[1000], 0.0f);
    EXPECT_TRUE(kernel.rowIsEmpty(255));
}

#ifndef _WIN32
TEST(HostileBrush, ThatIsAPipeOrADeviceIsPassedOver) {
    const TemporaryFolder folder;
    const std::string pipe = (folder.path() / "pipe.brush").string();
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_FALSE(ReadBrushFile(pipe).hasTexels());
    EXPECT_FALSE(ReadBrushFile("/dev/zero").hasTexels());
    const auto link = folder.path() / "link.brush";
    std::filesystem::create_symlink("/dev/zero", link);
    EXPECT_FALSE(ReadBrushFile(link.native()).hasTexels());
    const auto circle = folder.path() / "circle.brush";
    std::filesystem::create_symlink(circle, circle);
    EXPECT_FALSE(ReadBrushFile(circle.native()).hasTexels());
}

TEST(HostileBrush, ThatMayNotBeReadIsPassedOver) {
    const TemporaryFolder folder;
    const auto path = folder.write("secret.brush", BrushOf("0.5"));
    std::filesystem::permissions(path, std::filesystem::perms::none);
    if (access(path.c_str(), R_OK) == 0) GTEST_SKIP() << "this user may read everything";
    EXPECT_FALSE(ReadBrushFile(path.native()).hasTexels());
}
#endif

TEST(BrushFileNotes, CountAndPlaceEveryKindOfLine) {
    const TemporaryFolder folder;
    const std::string text = "256\n256\nx\n0.5\n0.5 0.5\nglow\nnan\n0,5\n1e999\n1e-999\n\nsoft\n" +
                             std::string(1500, ' ') + "\n0.25";
    BrushFileNotes notes;
    ReadBrushFile(folder.write("a", text).native(), &notes);
    EXPECT_EQ(notes.headerLines, 3);
    EXPECT_EQ(notes.samples, 12);
    EXPECT_EQ(notes.of(SampleReading::kNumber).count, 3);
    EXPECT_EQ(notes.of(SampleReading::kNumber).first, 4);
    EXPECT_EQ(notes.of(SampleReading::kMore).count, 2);
    EXPECT_EQ(notes.of(SampleReading::kMore).first, 5);
    EXPECT_EQ(notes.of(SampleReading::kMore).text, "0.5 0.5\n");
    EXPECT_EQ(notes.of(SampleReading::kNoNumber).count, 5);
    EXPECT_EQ(notes.of(SampleReading::kNoNumber).first, 6);
    EXPECT_EQ(notes.of(SampleReading::kNoNumber).text, "glow\n");
    EXPECT_EQ(notes.of(SampleReading::kNotFinite).first, 7);
    EXPECT_EQ(notes.of(SampleReading::kTooLarge).count, 1);
    EXPECT_EQ(notes.of(SampleReading::kTooLarge).first, 9);
    EXPECT_EQ(notes.firstLongLine, 13);
    EXPECT_EQ(notes.firstLineBehind, 0);
}

TEST(BrushFileNotes, TellWhatStandsBehindTheSamples) {
    const TemporaryFolder folder;
    BrushFileNotes notes;
    ReadBrushFile(folder.write("a", BrushOf("1") + "\n \r\nmore\n").native(), &notes);
    EXPECT_EQ(notes.samples, 65536);
    EXPECT_EQ(notes.firstLineBehind, 65542);
    notes = {};
    ReadBrushFile(folder.write("b", BrushOf("1") + "\n\n").native(), &notes);
    EXPECT_EQ(notes.firstLineBehind, 0);
}

}  // namespace
}  // namespace vireon::test
