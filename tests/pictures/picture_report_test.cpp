#include "tests/pictures/picture_report.h"

#include <fstream>
#include <iterator>
#include <limits>
#include <regex>
#include <set>

#include <gtest/gtest.h>

#include "tests/pictures/reference_file.h"
#include "tests/pictures/test_pictures.h"
#include "tests/unit/tool/scratch_folder.h"

namespace vireon::pictures {
namespace {

using headless::Picture;
using tool::ScratchFolder;

std::string ContentOf(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

void ExpectIn(const std::string& text, const std::string& words) {
    EXPECT_NE(text.find(words), std::string::npos) << "no \"" << words << "\" in:\n" << text;
}

/// Every file that the page shows or links to.
std::set<std::string> FilesOf(const std::string& page) {
    static const std::regex link("(?:src|href)=\"([^\"#]+)\"");
    std::set<std::string> files;
    for (std::sregex_iterator at(page.begin(), page.end(), link), end; at != end; ++at) {
        files.insert((*at)[1]);
    }
    return files;
}

ReportEntry EntryOf(const Picture& now, const Picture& reference) {
    ReportEntry entry;
    entry.name = "night-altered";
    entry.shows = "a picture & what became of it";
    entry.now = now;
    entry.reference = reference;
    entry.comparison = Compare(now, reference, kSameBits);
    entry.problem = entry.comparison->problem;
    entry.repeat = {"cd '/a <folder>'", "vireon render in.png night-again.png"};
    entry.accept = "scripts/accept-pictures night-altered";
    return entry;
}

TEST(Amplification, IsTheLargestPowerOfTwoWithinWhite) {
    EXPECT_EQ(AmplificationFor(1.0), 1);
    EXPECT_EQ(AmplificationFor(0.5), 2);
    EXPECT_EQ(AmplificationFor(0.51), 1);
    EXPECT_EQ(AmplificationFor(1.0 / 255.0), 128);
    EXPECT_EQ(AmplificationFor(3.0), 1);
    EXPECT_EQ(AmplificationFor(0.0), 1);
    EXPECT_EQ(AmplificationFor(1e-30), 1 << 23);
    EXPECT_EQ(AmplificationFor(std::numeric_limits<double>::infinity()), 1);
    EXPECT_EQ(AmplificationFor(std::numeric_limits<double>::quiet_NaN()), 1);
}

TEST(DifferencePicture, ShowsWhereAndHowMuch) {
    const Picture reference = TestPicture(8);
    Picture now = reference;
    now.row<std::uint8_t>(2)[4 * 3 + 1] += 3;  // red
    now.row<std::uint8_t>(4)[4 * 6 + 0] -= 2;  // alpha
    const Picture shown = DifferencePicture(now, reference, 8);
    for (std::int32_t y = 0; y < shown.height; ++y) {
        for (std::int32_t x = 0; x < shown.width; ++x) {
            const std::uint8_t* const pixel = shown.row<std::uint8_t>(y) + x * 4;
            const bool red = x == 3 && y == 2;
            const bool alpha = x == 6 && y == 4;
            EXPECT_EQ(pixel[0], 255);
            EXPECT_EQ(pixel[1], red ? 24 : alpha ? 16 : 0);
            EXPECT_EQ(pixel[2], alpha ? 16 : 0);
            EXPECT_EQ(pixel[3], alpha ? 16 : 0);
        }
    }
}

TEST(DifferencePicture, HidesNothing) {
    const Picture reference = TestPicture(32);
    Picture now = reference;
    now.row<float>(1)[5] += 1e-6f;
    now.row<float>(1)[6] = std::numeric_limits<float>::quiet_NaN();
    const Picture shown = DifferencePicture(now, reference, 1);
    EXPECT_EQ(shown.row<std::uint8_t>(1)[5], 1);
    EXPECT_EQ(shown.row<std::uint8_t>(1)[6], 255);
}

class ReportAtDepth : public testing::TestWithParam<int> {};

TEST_P(ReportAtDepth, ThePageShowsAnAlteredPicture) {
    const ScratchFolder folder;
    const Picture reference = TestPicture(GetParam());
    Picture now = reference;
    now.pixels[static_cast<std::size_t>(GetParam()) / 8 * (28 + 4 * 2 + 1)] ^= 1;
    PictureReport report(folder / "report", "Pictures <that> changed");
    EXPECT_TRUE(report.empty());
    const ReportEntry entry = EntryOf(now, reference);
    report.add(entry);
    EXPECT_FALSE(report.empty());
    EXPECT_EQ(folder.count(), 0) << "written before it was asked for";

    const std::filesystem::path page = report.write();
    EXPECT_EQ(page, folder / "report" / "index.html");
    const std::string html = ContentOf(page);
    ExpectIn(html, "<title>Pictures &lt;that&gt; changed</title>");
    ExpectIn(html, "a picture &amp; what became of it");
    ExpectIn(html, "Largest difference: red at 2,1 is ");
    ExpectIn(html, "; 1 samples differ.");
    ExpectIn(html, entry.problem);
    ExpectIn(html, "cd '/a &lt;folder&gt;'\nvireon render in.png night-again.png\n");
    ExpectIn(html, "scripts/accept-pictures night-altered\n");
    if (GetParam() == 8) ExpectIn(html, "difference x 128,");

    const std::set<std::string> files = FilesOf(html);
    EXPECT_EQ(files.size(), GetParam() == 8 ? 3u : 5u);
    for (const std::string& file : files) {
        EXPECT_EQ(file.find('/'), std::string::npos) << file << " is not beside the page";
        EXPECT_TRUE(std::filesystem::exists(page.parent_path() / file)) << file;
    }
    // The pictures themselves, with all of their bits.
    const auto kept = [&](const std::string& part) {
        return ReadReference(
            page.parent_path() / ReferenceName("night-altered-" + part, GetParam()), GetParam());
    };
    EXPECT_TRUE(kept("new") == now);
    EXPECT_TRUE(kept("reference") == reference);
    const Picture difference =
        ReadReference(page.parent_path() / "night-altered-difference.png", 8);
    EXPECT_GT(difference.row<std::uint8_t>(1)[4 * 2 + 1], 0);
    EXPECT_EQ(difference.row<std::uint8_t>(2)[4 * 2 + 1], 0);
}

INSTANTIATE_TEST_SUITE_P(Depths, ReportAtDepth, testing::Values(8, 16, 32));

TEST(PictureReport, APictureWithoutReferenceIsShownAlone) {
    const ScratchFolder folder;
    ReportEntry entry;
    entry.name = "new-case";
    entry.problem = "there is no reference new-case.png";
    entry.now = TestPicture(8);
    PictureReport report(folder.path(), "Pictures");
    report.add(entry);
    const std::string html = ContentOf(report.write());
    ExpectIn(html, "there is no reference");
    ExpectIn(html, "no reference</div>");
    EXPECT_EQ(FilesOf(html), std::set<std::string>{"new-case-new.png"});
}

TEST(PictureReport, PicturesOfTwoSizesHaveNoDifference) {
    const ScratchFolder folder;
    PictureReport report(folder.path(), "Pictures");
    report.add(EntryOf(TestPicture(8, 9, 4), TestPicture(8)));
    const std::set<std::string> expected{"night-altered-new.png", "night-altered-reference.png"};
    EXPECT_EQ(FilesOf(ContentOf(report.write())), expected);
}

TEST(PictureReport, AFrameThatFailedIsListed) {
    const ScratchFolder folder;
    ReportEntry entry;
    entry.name = "crash";
    entry.problem = "the effect failed with 514";
    PictureReport report(folder.path(), "Pictures");
    report.add(entry);
    const std::string html = ContentOf(report.write());
    ExpectIn(html, "the effect failed with 514");
    ExpectIn(html, "no new picture");
    EXPECT_TRUE(FilesOf(html).empty());
}

}  // namespace
}  // namespace vireon::pictures
