#include "tools/brushes/brush_file.h"

#include <gtest/gtest.h>

#include <charconv>
#include <cmath>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <locale>
#include <map>
#include <set>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "tools/brushes/rasterise.h"
#include "tools/brushes/shapes.h"

namespace vireon::brushes {
namespace {

namespace fs = std::filesystem;

const std::vector<std::string> kFileNames{
    "gaussian.brush",  "hoop.brush",          "kuplah.brush",       "mass.brush",
    "sixFlare.brush",  "sixSpikeHoriz.brush", "sixSpikeVert.brush", "sixSpikeWhack.brush",
    "spectacle.brush", "Tent.brush",          "Tree.brush",         "Whoopy.brush",
    "Zig.brush"};

// A folder of the test's own, gone with it.
class Folder {
  public:
    Folder() {
        const auto* info = testing::UnitTest::GetInstance()->current_test_info();
        path_ = fs::path(testing::TempDir()) /
                (std::string("vireon-brushes-") + info->test_suite_name() + "-" + info->name());
        fs::remove_all(path_);
        fs::create_directories(path_);
    }
    ~Folder() {
        std::error_code ignored;
        fs::remove_all(path_, ignored);
    }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;

    const fs::path& path() const { return path_; }

  private:
    fs::path path_;
};

std::string Content(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

std::set<std::string> NamesIn(const fs::path& folder) {
    std::set<std::string> names;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder)) {
        names.insert(entry.path().filename().string());
    }
    return names;
}

std::vector<std::string> Lines(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line);
    }
    return lines;
}

TEST(WriteBrushes, WritesThirteenCompleteFiles) {
    const Folder folder;
    const fs::path target = folder.path() / "made" / "on the way";
    WriteBrushes(target);
    EXPECT_EQ(NamesIn(target), std::set<std::string>(kFileNames.begin(), kFileNames.end()));
    for (const std::string& name : kFileNames) {
        const std::string text = Content(target / name);
        ASSERT_FALSE(text.empty()) << name;
        EXPECT_EQ(text.back(), '\n') << name;
        const std::vector<std::string> lines = Lines(text);
        ASSERT_EQ(lines.size(), 3u + 65536u) << name;
        EXPECT_EQ(lines[0], "256") << name;
        EXPECT_EQ(lines[1], "256") << name;
        EXPECT_FALSE(lines[2].empty()) << name;
        double sum = 0.0;
        for (std::size_t i = 3; i < lines.size(); ++i) {
            const std::string& line = lines[i];
            double sample = -1.0;
            const auto [end, error] =
                std::from_chars(line.data(), line.data() + line.size(), sample);
            ASSERT_EQ(error, std::errc{}) << name << " line " << i + 1;
            ASSERT_EQ(end, line.data() + line.size()) << name << " line " << i + 1;
            ASSERT_TRUE(std::isfinite(sample) && sample >= 0.0) << name << " line " << i + 1;
            sum += sample;
        }
        // What the six digits and the dropped smallest samples may take away.
        EXPECT_NEAR(sum, kBrushEnergy, 1e-4 * kBrushEnergy) << name;
    }
}

TEST(WriteBrushes, ListsTheShapesInTheOrderOfTheMenu) {
    ASSERT_EQ(Shapes().size(), kFileNames.size());
    for (std::size_t i = 0; i < kFileNames.size(); ++i) {
        EXPECT_EQ(Shapes()[i].fileName, kFileNames[i]);
    }
}

TEST(WriteBrushes, SaysWhichFolderCannotBeMade) {
    const Folder folder;
    const fs::path blocked = folder.path() / "file";
    WriteFileWhole(blocked, "not a folder");
    try {
        WriteBrushes(blocked / "below");
        FAIL() << "no error";
    } catch (const std::runtime_error& error) {
        EXPECT_NE(std::string(error.what()).find((blocked / "below").string()), std::string::npos)
            << error.what();
    }
}

TEST(BrushFileText, WritesSamplesShortAndRowByRow) {
    std::vector<double> samples(65536, 0.0);
    samples[0] = 0.5;
    samples[1] = 0.123456789;
    samples[256] = 1.25e-6;
    samples[257] = 1e-9;
    const std::vector<std::string> lines = Lines(BrushFileText("A title", samples));
    ASSERT_EQ(lines.size(), 3u + 65536u);
    EXPECT_EQ(lines[2], "A title");
    EXPECT_EQ(lines[3], "0.5");
    EXPECT_EQ(lines[4], "0.123457");
    EXPECT_EQ(lines[5], "0");
    EXPECT_EQ(lines[3 + 256], "1.25e-06");
    EXPECT_EQ(lines[3 + 257], "0");
}

TEST(BrushFileText, IgnoresTheLocale) {
    struct CommaPoint : std::numpunct<char> {
        char do_decimal_point() const override { return ','; }
        char do_thousands_sep() const override { return '.'; }
        std::string do_grouping() const override { return "\3"; }
    };
    const std::vector<double> samples(65536, 0.25);
    const std::string before = BrushFileText("Even", samples);
    const std::locale previous =
        std::locale::global(std::locale(std::locale::classic(), new CommaPoint));
    const std::string after = BrushFileText("Even", samples);
    std::locale::global(previous);
    EXPECT_EQ(before, after);
}

// 64-bit FNV-1a.
std::uint64_t Checksum(const std::string& text) {
    std::uint64_t hash = 0xCBF29CE484222325u;
    for (const char c : text) {
        hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001B3u;
    }
    return hash;
}

// The files are the same on every machine and from every compiler. Whoever redraws a shape on
// purpose replaces its checksum by the one that this test prints.
TEST(BrushFileText, HasTheRecordedBytes) {
    const std::map<std::string, std::uint64_t> recorded{
        {"gaussian.brush", 0xD85C9061FFCFC3B3u},     {"hoop.brush", 0x979669F2F2163146u},
        {"kuplah.brush", 0x964AC31CF979B0B2u},       {"mass.brush", 0x340FD41011AAA0E1u},
        {"sixFlare.brush", 0xAE7ED6E062500697u},     {"sixSpikeHoriz.brush", 0x8C8482D4C49F726Eu},
        {"sixSpikeVert.brush", 0xD2E9E8F18A8571B0u}, {"sixSpikeWhack.brush", 0xCD879F22C4BC152Du},
        {"spectacle.brush", 0x987732FB2826961Cu},    {"Tent.brush", 0x3EDA97FE29D4907Au},
        {"Tree.brush", 0xA53CCC85FF728D43u},         {"Whoopy.brush", 0x9BE8A9F4967F8E82u},
        {"Zig.brush", 0xC4BD599356ACB1EFu},
    };
    for (const Shape& shape : Shapes()) {
        const std::string text = BrushFileText(shape.name, RasteriseShape(shape));
        EXPECT_EQ(Checksum(text), recorded.at(shape.fileName))
            << shape.fileName << ": 0x" << std::hex << std::uppercase << Checksum(text);
    }
}

TEST(WriteFileWhole, ReplacesAFileAndLeavesNothingElse) {
    const Folder folder;
    WriteFileWhole(folder.path() / "a.brush", "old and longer");
    WriteFileWhole(folder.path() / "a.brush", "new");
    EXPECT_EQ(Content(folder.path() / "a.brush"), "new");
    EXPECT_EQ(NamesIn(folder.path()), std::set<std::string>{"a.brush"});
}

TEST(WriteFileWhole, LeavesTheOldFileWhenItCannotReplaceIt) {
    const Folder folder;
    // A folder that is not empty cannot be replaced by a file.
    const fs::path target = folder.path() / "taken.brush";
    fs::create_directories(target / "inner");
    EXPECT_THROW(WriteFileWhole(target, "text"), std::runtime_error);
    EXPECT_TRUE(fs::is_directory(target / "inner"));
    EXPECT_EQ(NamesIn(folder.path()), std::set<std::string>{"taken.brush"});
}

TEST(WriteFileWhole, SaysWhichFileCannotBeCreated) {
    const Folder folder;
    try {
        WriteFileWhole(folder.path() / "missing" / "a.brush", "text");
        FAIL() << "no error";
    } catch (const std::runtime_error& error) {
        EXPECT_NE(std::string(error.what()).find("a.brush"), std::string::npos) << error.what();
    }
}

}  // namespace
}  // namespace vireon::brushes
