#include "tools/vireon/brush_findings.h"

#include <cstdlib>
#include <fstream>
#include <map>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "shapes/brush_file.h"
#include "tests/unit/support/hostile_brushes.h"
#include "tests/unit/tool/scratch_folder.h"
#include "tools/brushes/brush_file.h"
#include "tools/brushes/rasterise.h"
#include "tools/brushes/shapes.h"
#include "tools/vireon/brush_folder.h"

namespace vireon::tool {
namespace {

using test::BrushOf;

void WriteText(const std::filesystem::path& path, const std::string& text) {
    std::ofstream(path, std::ios::binary) << text;
}

BrushReport InspectText(const std::string& text) {
    const ScratchFolder folder;
    WriteText(folder / "test.brush", text);
    return InspectBrush(folder / "test.brush");
}

/// Every finding on a line: "fault 5: text".
std::string Listed(const BrushReport& report) {
    std::string list;
    for (const BrushFinding& finding : report.findings) {
        list += (finding.isFault ? "fault " : "warning ") + std::to_string(finding.line) + ": " +
                finding.text + "\n";
    }
    return list;
}

void ExpectFinding(const BrushReport& report, const std::string& words) {
    EXPECT_NE(Listed(report).find(words), std::string::npos) << "no \"" << words << "\" in:\n"
                                                             << Listed(report);
}

/// A brush of zeros but for these texels, by their places in rows.
std::string Spots(const std::map<int, std::string>& spots) {
    std::string text = "256\n256\nspots\n";
    for (int i = 0; i < 65536; ++i) {
        const auto spot = spots.find(i);
        text += (spot == spots.end() ? "0" : spot->second) + "\n";
    }
    return text;
}

constexpr int kMiddle = 128 * 256 + 128;

/// A multiple of the energy of our brushes, as a sample.
std::string Energy(double factor = 1) {
    return std::to_string(factor * brushes::kBrushEnergy);
}

TEST(BrushFindings, ThereAreNoneForAProperBrush) {
    EXPECT_EQ(Listed(InspectText(Spots({{kMiddle, Energy()}}))), "");
    EXPECT_EQ(Listed(InspectText(Spots({{kMiddle, "  " + Energy() + " "}}))), "");
}

TEST(BrushFindings, EveryHostileFileIsNamedWithItsLine) {
    const std::map<std::string, std::string> words{
        {"empty", "fault 0: is empty"},
        {"one line", "fault 1: ends within its header"},
        {"no title", "fault 2: ends within its header"},
        {"header only", "fault 0: ends after 0 of 65536 samples"},
        {"wrong width", "fault 1: is 128 x 256, not 256 x 256"},
        {"huge size", "fault 1: is 2147483647 x 2147483647, not"},
        {"size beyond integers", "fault 1: is 0 x 256, not"},
        {"negative size", "fault 1: is -256 x -256, not"},
        {"cut short", "fault 0: ends after 1000 of 65536 samples"},
        {"cut within a number", "fault 0: ends after 2 of 65536"},
        {"not a number", "fault 4: has \"nan\", which is not finite and reads as 0 (65536 such"},
        {"infinity", "fault 4: has \"inf\", which is not finite"},
        {"minus infinity", "fault 4: has \"-infinity\", which is not finite"},
        {"beyond double", "fault 4: has \"1e999\", which is too large a number and reads as 0"},
        {"beyond single", "fault 4: has \"-1e39\", which is too large a number"},
        {"below double", "fault 0: is zero throughout"},
        {"words", "fault 4: has \"glow\", which is no number and reads as 0 (65536 such lines)"},
        {"commas", "fault 4: has \"0,5\", which counts up to its comma only"},
        {"negative", "warning 0: has 65536 values below 0, down to -0.5"},
        {"largest single", "warning 0: is up to 3.403e+38 at its rim"},
        {"all zero", "fault 0: is zero throughout"},
        {"too long", "goes on behind its last sample"},
        {"noise", "fault 1: is no text: there are zero bytes or control characters in it"},
        {"noise behind a header", "which is no number and reads as 0"},
        {"zeros", "fault 1: is no text: there are zero bytes"},
        {"a zero within a sample", "warning 0: is up to 0.5 at its rim"},
        {"one endless line", "fault 4: has \"111111111111111111111111...\", which is too large"},
        {"one endless header", "fault 1: is 0 x 0, not 256 x 256"},
        {"a number of a million digits", "fault 4: has \"999999999999999999999999...\", which"},
        {"line ends only", "fault 1: is 0 x 0, not 256 x 256"},
        {"carriage returns only", "fault 1: ends within its header"},
        {"utf 16", "fault 1: is text in UTF-16, which the effect does not read"},
        {"utf 8 mark", "fault 1: begins with the byte order mark of UTF-8"},
    };
    for (const test::HostileBrush& brush : test::HostileBrushes()) {
        SCOPED_TRACE(brush.name);
        ASSERT_TRUE(words.contains(brush.name));
        const BrushReport report = InspectText(brush.text);
        ExpectFinding(report, words.at(brush.name));
        EXPECT_EQ(report.kernel.hasTexels(), brush.isUsable);
        EXPECT_TRUE(brush.isUsable || report.faults() == 1);
        for (const BrushFinding& finding : report.findings) {
            EXPECT_EQ(finding.text.find_first_of("\n\r"), std::string::npos) << finding.text;
        }
    }
}

TEST(BrushFindings, UtfWithoutAMarkIsFoundToo) {
    ExpectFinding(InspectText(test::Utf16(BrushOf("1")).substr(2)), "is text in UTF-16");
    ExpectFinding(InspectText("\xFE\xFF" + std::string("\0002\0005\0006", 6)), "is text in UTF-16");
}

TEST(BrushFindings, TheKernelIsWhatTheEffectReads) {
    const ScratchFolder folder;
    for (const test::HostileBrush& brush : test::HostileBrushes()) {
        WriteText(folder / brush.name, brush.text);
        const GlowKernel kernel = ReadBrushFile(folder / brush.name);
        EXPECT_EQ(InspectBrush(folder / brush.name).kernel.values, kernel.values) << brush.name;
    }
}

TEST(BrushFindings, OnlyADecimalCommaIsAFault) {
    const auto with = [](const std::string& sample) {
        return InspectText(Spots({{kMiddle, Energy()}, {kMiddle + 1, sample}}));
    };
    const std::string line = std::to_string(kMiddle + 1 + 4);
    EXPECT_EQ(Listed(with("0.5 0.25")), "warning " + line +
                                            ": has \"0.5 0.25\", which counts up to the end of "
                                            "its first number only\n");
    EXPECT_EQ(with("0.5 # soft, white").faults(), 0);
    EXPECT_EQ(with("0.5, 7").faults(), 0);
    EXPECT_EQ(with("-0,5").faults(), 1);
    EXPECT_EQ(with("1e-999").findings.size(), 0u);
    EXPECT_EQ(with("0." + std::string(400, '0') + "1").findings.size(), 0u);
    EXPECT_EQ(with(std::string(400, '1')).faults(), 1);
}

TEST(BrushFindings, LongLinesAndLinesBehindAreWarnedOf) {
    ExpectFinding(InspectText("256\n256\n" + std::string(2000, 'x') + "\n"),
                  "warning 3: has a line of more than 1022 characters");
    ExpectFinding(InspectText(Spots({{kMiddle, Energy()}}) + "\nmore\n"),
                  "warning 65541: goes on behind its last sample");
    EXPECT_EQ(Listed(InspectText(Spots({{kMiddle, Energy()}}) + "\n\r\n")), "");
}

TEST(BrushFindings, TheLightIsWeighed) {
    ExpectFinding(InspectText(Spots({{kMiddle, Energy(2.01)}})),
                  "its glow is brighter than theirs");
    EXPECT_EQ(Listed(InspectText(Spots({{kMiddle, Energy(1.99)}}))), "");
    ExpectFinding(InspectText(Spots({{kMiddle, Energy(0.49)}})), "its glow is fainter than theirs");
    ExpectFinding(InspectText(Spots({{kMiddle, "-1"}})), "warning 0: adds up to -1: it darkens");
    ExpectFinding(InspectText(Spots({{kMiddle + 17, Energy()}})),
                  "has its centre of mass +17.0 texels across and +0.0 down from (128, 128)");
    EXPECT_EQ(Listed(InspectText(Spots({{kMiddle + 16, Energy()}}))), "");
    ExpectFinding(InspectText(Spots({{kMiddle, Energy()}, {kMiddle + 127, "0.25"}})),
                  "is up to 0.25 at its rim");
    EXPECT_EQ(Listed(InspectText(Spots({{kMiddle, Energy()}, {kMiddle + 126, "0.25"}}))), "");
}

TEST(BrushFindings, WhatIsNoFileIsNeitherOpenedNorWaitedFor) {
    const ScratchFolder folder;
    const auto pipe = folder / "pipe.brush";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    const auto circle = folder / "circle.brush";
    std::filesystem::create_symlink(circle, circle);
    ExpectFinding(InspectBrush(pipe), "fault 0: is a pipe or a device");
    ExpectFinding(InspectBrush("/dev/zero"), "fault 0: is a pipe or a device");
    ExpectFinding(InspectBrush(folder.path()), "fault 0: is a folder");
    ExpectFinding(InspectBrush(folder / "none"), "fault 0: cannot be read: No such file");
    ExpectFinding(InspectBrush(circle), "fault 0: cannot be read: Too many levels");
}

TEST(BrushFindings, HugeFilesAreRefusedUnread) {
    const ScratchFolder folder;
    const auto path = folder / "huge.brush";
    WriteText(path, BrushOf("1"));
    std::filesystem::resize_file(path, kLargestBrushFile);
    EXPECT_TRUE(InspectBrush(path).kernel.hasTexels());
    std::filesystem::resize_file(path, std::uintmax_t{5} << 30);
    const BrushReport report = InspectBrush(path);
    ExpectFinding(report, "fault 0: is 5369 MB large");
    EXPECT_FALSE(report.kernel.hasTexels());
}

TEST(BrushFindings, FilesThatMayNotBeReadAreNamed) {
    const ScratchFolder folder;
    WriteText(folder / "secret.brush", BrushOf("1"));
    std::filesystem::permissions(folder / "secret.brush", std::filesystem::perms::none);
    if (access((folder / "secret.brush").c_str(), R_OK) == 0) {
        GTEST_SKIP() << "this user may read everything";
    }
    ExpectFinding(InspectBrush(folder / "secret.brush"), "cannot be read: Permission denied");
}

TEST(BrushFindings, FirstFaultHasItsLine) {
    EXPECT_EQ(FirstFault(InspectText("128\n256\nx\n")), "line 1: is 128 x 256, not 256 x 256");
    EXPECT_EQ(FirstFault(InspectText("")), "is empty");
    EXPECT_EQ(FirstFault(InspectText(BrushOf("-1"))), "");
}

/// The report of a file in a folder; the name must be there.
const BrushReport& ReportOf(const std::vector<BrushFileReport>& reports, const std::string& file) {
    for (const BrushFileReport& report : reports) {
        if (report.file == file) {
            return report.report;
        }
    }
    ADD_FAILURE() << "no report of " << file;
    return reports.front().report;
}

TEST(BrushFolderFindings, OurOwnBrushesHaveNone) {
    const ScratchFolder folder;
    brushes::WriteBrushes(folder.path());
    const auto reports = InspectBrushFolder(folder.path());
    ASSERT_EQ(reports.size(), 13u);
    for (std::size_t i = 0; i < reports.size(); ++i) {
        EXPECT_EQ(reports[i].file, brushes::Shapes()[i].fileName);
        EXPECT_EQ(reports[i].shape, brushes::Shapes()[i].name);
        EXPECT_EQ(Listed(reports[i].report), "") << reports[i].file;
    }
}

TEST(BrushFolderFindings, NamesCountWithTheirCapitals) {
    const ScratchFolder folder;
    brushes::WriteBrushes(folder.path());
    std::filesystem::rename(folder / "Zig.brush", folder / "zig.brush");
    std::filesystem::remove(folder / "Tree.brush");
    std::filesystem::copy_file(folder / "Tent.brush", folder / "tent.brush");
    WriteText(folder / "mine.brush", "");
    WriteText(folder / "readme.txt", "");
    const auto reports = InspectBrushFolder(folder.path());
    EXPECT_EQ(reports.size(), 15u);
    EXPECT_EQ(Listed(ReportOf(reports, "Zig.brush")),
              "fault 0: is missing; there is zig.brush: rename it\n");
    EXPECT_EQ(Listed(ReportOf(reports, "Tree.brush")), "fault 0: is missing\n");
    EXPECT_EQ(Listed(ReportOf(reports, "Tent.brush")), "");
    for (const char* const extra : {"tent.brush", "mine.brush"}) {
        EXPECT_EQ(Listed(ReportOf(reports, extra)),
                  "warning 0: has none of the names that the effect looks for\n");
    }
}

TEST(BrushFolderFindings, AMissingFolderMissesThemAll) {
    const ScratchFolder folder;
    const auto reports = InspectBrushFolder(folder / "none");
    ASSERT_EQ(reports.size(), 13u);
    for (const BrushFileReport& report : reports) {
        EXPECT_EQ(FirstFault(report.report), "is missing");
    }
}

TEST(BrushFolder, IsTheOneOfTheEffect) {
    unsetenv("ORVANTE_QUILLON_SVG_DIR");
    EXPECT_EQ(BrushFolder("/opt/x/VireonGlow.so"), "/opt/x/Vireon/Brush");
    setenv("ORVANTE_QUILLON_SVG_DIR", "/somewhere", 1);
    EXPECT_EQ(BrushFolder("/opt/x/VireonGlow.so"), "/somewhere");
    unsetenv("ORVANTE_QUILLON_SVG_DIR");
}

}  // namespace
}  // namespace vireon::tool
