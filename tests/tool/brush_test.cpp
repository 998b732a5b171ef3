// vireon brush, and the effect itself over folders of brushes that nobody should have written.

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include <sys/stat.h>
#include <nlohmann/json.hpp>

#include "tests/tool/program.h"
#include "tests/unit/support/hostile_brushes.h"
#include "tools/brushes/brush_file.h"
#include "tools/brushes/rasterise.h"
#include "tools/vireon/exit_codes.h"

namespace vireon::tool {
namespace {

constexpr char kFolderVariable[] = "ORVANTE_QUILLON_SVG_DIR";

void ExpectIn(const std::string& text, const std::string& words) {
    EXPECT_NE(text.find(words), std::string::npos) << "no \"" << words << "\" in: " << text;
}

void WriteText(const std::string& path, const std::string& text) {
    std::ofstream(path, std::ios::binary) << text;
}

std::string ContentOf(const std::string& path) {
    std::ifstream stream(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

/// A picture of a light beside its middle.
void WriteLight(const std::string& path) {
    std::vector<std::uint8_t> samples;
    for (int y = 0; y < 60; ++y) {
        for (int x = 0; x < 80; ++x) {
            const int square = (x - 30) * (x - 30) + (y - 33) * (y - 33);
            samples.push_back(static_cast<std::uint8_t>(5000 / (20 + square)));
        }
    }
    WritePng8(path, 80, 1, samples);
}

TEST(BrushCheck, OurBrushesPassAndTheFolderIsTheEffects) {
    const Workplace place;
    brushes::WriteBrushes(place.file("own"));
    const Outcome named = Vireon({"brush", "check", place.file("own"), "--strict"});
    EXPECT_EQ(named.code(), 0) << named.errors;
    EXPECT_EQ(named.errors, "");
    ExpectIn(named.output, "Whoopy                 ok");
    const Outcome chosen = Vireon({"brush", "check"}, {{kFolderVariable, place.file("own")}});
    EXPECT_EQ(chosen.output, named.output);
    const Outcome beside = Vireon({"brush", "check", "--plugin", place.file("own/VireonGlow.so")},
                                  {{kFolderVariable, std::nullopt}});
    EXPECT_EQ(beside.code(), 17);
    ExpectIn(beside.errors, "there is no folder " + place.file("own/Vireon/Brush"));
}

TEST(BrushCheck, FaultsHaveFileLineAndExitCode) {
    const Workplace place;
    const std::string folder = place.file("own");
    brushes::WriteBrushes(folder);
    std::filesystem::rename(folder + "/Zig.brush", folder + "/zig.brush");
    WriteText(folder + "/hoop.brush", test::BrushOf("glow"));
    WriteText(folder + "/mass.brush", test::Utf16(test::BrushOf("1")));
    const Outcome outcome = Vireon({"brush", "check", folder});
    EXPECT_EQ(outcome.code(), 17);
    EXPECT_EQ(outcome.errorLines(), 1);
    ExpectIn(outcome.errors, "vireon: 4 faults and 0 warnings in " + folder);
    ExpectIn(outcome.output, "Zig.brush: fault: it is missing; there is zig.brush: rename it\n");
    ExpectIn(outcome.output,
             "hoop.brush:4: fault: it has \"glow\", which is no number and reads as 0 (65536 such "
             "lines)\n");
    ExpectIn(outcome.output, "mass.brush:1: fault: it is text in UTF-16");

    const Outcome shapes = Vireon({"shapes"}, {{kFolderVariable, folder}});
    EXPECT_TRUE(shapes.code() == 17 || shapes.code() == 11) << shapes.errors;
    if (shapes.code() == 17) {
        ExpectIn(shapes.output, "is missing; there is zig.brush: rename it");
        ExpectIn(shapes.errors, "3 brush files in " + folder);
    }
}

TEST(BrushCheck, WarningsCountOnlyWhenStrict) {
    const Workplace place;
    const std::string folder = place.file("own");
    brushes::WriteBrushes(folder);
    WriteText(folder + "/mine.brush", "");
    const Outcome mild = Vireon({"brush", "check", folder});
    EXPECT_EQ(mild.code(), 0);
    EXPECT_EQ(mild.errors, "");
    ExpectIn(mild.output, "mine.brush: warning: it has none of the names");
    const Outcome strict = Vireon({"brush", "check", folder, "--strict"});
    EXPECT_EQ(strict.code(), 17);
    ExpectIn(strict.errors, "0 faults and 1 warning in");
}

TEST(BrushCheck, SpeaksJsonWhateverIsInTheFiles) {
    const Workplace place;
    const std::string folder = place.file("own");
    std::filesystem::create_directory(folder);
    WriteText(folder + "/gaussian.brush", "256\n256\nx\n" + test::BinaryNoise(10000));
    const Outcome outcome = Vireon({"brush", "check", folder, "--json"});
    EXPECT_EQ(outcome.code(), 17);
    const auto json = nlohmann::json::parse(outcome.output);
    ASSERT_EQ(json["files"].size(), 13u);
    EXPECT_EQ(json["files"][0]["file"], "gaussian.brush");
    EXPECT_EQ(json["files"][0]["usable"], true);
    EXPECT_GE(json["files"][0]["findings"][0]["line"], 4);
    EXPECT_EQ(json["files"][1]["usable"], false);
    EXPECT_EQ(json["files"][1]["findings"][0]["kind"], "fault");
    EXPECT_TRUE(json["files"][1]["findings"][0]["line"].is_null());
}

TEST(BrushCheck, SingleFilesAndWhatIsNoFolder) {
    const Workplace place;
    WriteText(place.file("one.brush"), "128\n256\nx\n");
    const Outcome one = Vireon({"brush", "check", place.file("one.brush")});
    EXPECT_EQ(one.code(), 17);
    ExpectIn(one.output, "one.brush:1: fault: it is 128 x 256, not 256 x 256");
    ASSERT_EQ(mkfifo(place.file("pipe.brush").c_str(), 0600), 0);
    ExpectIn(Vireon({"brush", "check", place.file("pipe.brush")}).output, "it is a pipe");
    ExpectIn(Vireon({"brush", "check", "/dev/zero"}).output, "it is a pipe or a device");
    place.expectFailure(Vireon({"brush", "check", place.file("none")}), 17, "there is no folder");
}

TEST(BrushShow, PrintsFiguresAndDrawsThePicture) {
    const Workplace place;
    brushes::WriteBrushes(place.file("own"));
    const std::string picture = place.file("sheet.png");
    const Outcome outcome = Vireon({"brush", "show", place.file("own/hoop.brush"),
                                    place.file("own/Tent.brush"), "-o", picture, "--json"});
    EXPECT_EQ(outcome.code(), 0) << outcome.errors;
    const auto json = nlohmann::json::parse(outcome.output);
    ASSERT_EQ(json.size(), 2u);
    EXPECT_NEAR(json[0]["sum"].get<double>() / brushes::kBrushEnergy, 1.0, 1e-4);
    EXPECT_EQ(json[1]["rim"], 0.0);
    EXPECT_GT(json[1]["share_within"]["64"], json[1]["share_within"]["16"]);
    int width = 0;
    int channels = 0;
    const auto pixels = Pixels8(picture, &width, &channels);
    EXPECT_EQ(channels, 3);
    EXPECT_EQ(pixels.size(), static_cast<std::size_t>(width) * 606 * 3);
    const Outcome text = Vireon({"brush", "show", place.file("own/hoop.brush")});
    EXPECT_EQ(text.code(), 0);
    ExpectIn(text.output, "centre offset");
}

TEST(BrushShow, WhatTheEffectCannotUseIsRefusedWithoutAPicture) {
    const Workplace place;
    const auto show = [&](const std::string& file) {
        return Vireon({"brush", "show", file, "-o", place.output()});
    };
    WriteText(place.file("bad.brush"), test::BinaryNoise(5000));
    place.expectFailure(show(place.file("bad.brush")), 17, "line 1: is no text");
    place.expectFailure(show(place.file("none.brush")), 17, "No such file");
    place.expectFailure(show("/dev/zero"), 17, "pipe or a device");
    ASSERT_EQ(mkfifo(place.file("pipe").c_str(), 0600), 0);
    place.expectFailure(show(place.file("pipe")), 17, "pipe or a device");
    WriteText(place.file("huge.brush"), test::BrushOf("1"));
    std::filesystem::resize_file(place.file("huge.brush"), std::uintmax_t{4} << 30);
    place.expectFailure(show(place.file("huge.brush")), 17, "MB large");
    WriteText(place.file("good.brush"), test::BrushOf("1"));
    place.expectFailure(
        Vireon({"brush", "show", place.file("good.brush"), "-o", place.file("none/x.png")}), 6,
        "does not exist");
    place.expectFailure(Vireon({"brush", "show", place.file("good.brush"), "-o", "x.nonsense"}), 7,
                        "extension .nonsense");
    place.expectFailure(Vireon({"brush", "show"}), 2, "FILE");
}

TEST(BrushMake, MakesABrushThatPassesItsOwnCheck) {
    const Workplace place;
    WriteLight(place.file("light.png"));
    const std::string brush = place.file("light.brush");
    const Outcome made = Vireon({"brush", "make", place.file("light.png"), brush, "--crop"});
    EXPECT_EQ(made.code(), 0) << made.errors;
    ExpectIn(made.output, "centre of mass off by");
    const Outcome check = Vireon({"brush", "check", brush, "--strict"});
    EXPECT_EQ(check.code(), 0) << check.output;
    const auto json = nlohmann::json::parse(Vireon({"brush", "show", brush, "--json"}).output);
    EXPECT_LT(std::abs(json[0]["centre_offset"][0].get<double>()), 0.01);
    EXPECT_LT(std::abs(json[0]["centre_offset"][1].get<double>()), 0.01);
    EXPECT_NEAR(json[0]["sum"].get<double>() / brushes::kBrushEnergy, 1.0, 1e-4);
    EXPECT_EQ(json[0]["rim"], 0.0);
    // The same again gives the same bytes and replaces the file.
    const std::string first = ContentOf(brush);
    EXPECT_EQ(first.substr(0, 14), "256\n256\nlight\n");
    WriteText(brush, "older");
    EXPECT_EQ(Vireon({"brush", "make", place.file("light.png"), brush, "--crop"}).code(), 0);
    EXPECT_EQ(ContentOf(brush), first);
}

TEST(BrushMake, TitlesStayOnTheirLine) {
    const Workplace place;
    WriteLight(place.file("light.png"));
    const std::string brush = place.file("x.brush");
    EXPECT_EQ(Vireon({"brush", "make", place.file("light.png"), brush, "--title", "two\nlines",
                      "--quiet"})
                  .output,
              "");
    EXPECT_EQ(ContentOf(brush).substr(0, 18), "256\n256\ntwo lines\n");
}

TEST(BrushMake, WhatCannotBeMadeLeavesTheOlderBrush) {
    const Workplace place;
    const std::string brush = place.file("old.brush");
    WriteText(brush, "older");
    WritePng8(place.file("black.png"), 8, 1, std::vector<std::uint8_t>(64, 0));
    WriteLight(place.file("light.png"));
    WriteText(place.file("text.png"), "no picture");
    const auto make = [&](const std::string& picture, const std::vector<std::string>& more = {}) {
        std::vector<std::string> arguments{"brush", "make", place.file(picture), brush};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return Vireon(arguments);
    };
    place.expectFailure(make("black.png"), 5, "black throughout");
    place.expectFailure(make("text.png"), 5, "text.png");
    place.expectFailure(make("none.png"), 5, "No such file");
    ASSERT_EQ(mkfifo(place.file("pipe.png").c_str(), 0600), 0);
    place.expectFailure(make("pipe.png"), 5, "it is a pipe");
    place.expectFailure(make("light.png", {"--channel", "A"}), 5, "no alpha");
    place.expectFailure(make("light.png", {"--channel", "Z"}), 4, "R, G, B, A or luminance");
    place.expectFailure(make("light.png", {"--centre", "1,x"}), 4, "mass, picture or X,Y");
    place.expectFailure(make("light.png", {"--centre", "nan,1"}), 4, "mass, picture or X,Y");
    place.expectFailure(make("light.png", {"--energy", "0"}), 4, "1 to 1e+06 is possible");
    place.expectFailure(make("light.png", {"--energy", "nan"}), 4, "--energy");
    place.expectFailure(make("light.png", {"--window", "127"}), 4, "0 to 126");
    place.expectFailure(make("light.png", {"--gamma", "0"}), 4, "0.1 to 10");
    place.expectFailure(make("light.png", {"--fit", "--crop"}), 2, "contradict");
    EXPECT_EQ(ContentOf(brush), "older");
    place.expectFailure(
        Vireon({"brush", "make", place.file("light.png"), place.file("light2.png")}), 7,
        "ends in .brush");
    place.expectFailure(
        Vireon({"brush", "make", place.file("light.png"), place.file("none/x.brush")}), 6,
        "does not exist");
}

TEST(BrushMake, PicturesBeyondTheLimitAreRefusedUnread) {
    const Workplace place;
    // A header that claims 30000 x 30000 pixels, and nothing behind it.
    WriteText(place.file("large.pgm"), "P5\n30000 30000\n255\n");
    place.expectFailure(Vireon({"brush", "make", place.file("large.pgm"), place.file("x.brush")}),
                        5, "million pixels");
}

TEST(BrushCommand, WantsACommand) {
    const Workplace place;
    place.expectFailure(Vireon({"brush"}), 2, "show, make or check");
    place.expectFailure(Vireon({"brush", "chek"}), 2, "did you mean brush check?");
    const Outcome help = Vireon({"brush", "--help"});
    EXPECT_EQ(help.code(), 0);
    ExpectIn(help.output, kFolderVariable);
}

class HostileBrushesInTheEffect : public testing::Test {
  protected:
    void SetUp() override {
        if (!std::filesystem::exists(std::filesystem::path(VIREON_TEST_STAGE) / "VireonGlow.so")) {
            GTEST_SKIP() << "the effect is not built";
        }
        std::filesystem::create_directory(folder_);
    }
    /// Renders with the Gaussian from the folder.
    Outcome render() const {
        return Vireon({"render", place_.input(), place_.file("rendered.png"), "--shape", "Gaussian",
                       "--timeout", "60", "--quiet"},
                      {{kFolderVariable, folder_}});
    }

    Workplace place_;
    std::string folder_ = place_.file("brushes");
    std::string gaussian_ = folder_ + "/gaussian.brush";
};

TEST_F(HostileBrushesInTheEffect, CostAFrameAtMost) {
    for (const test::HostileBrush& brush : test::HostileBrushes()) {
        WriteText(gaussian_, brush.text);
        const Outcome outcome = render();
        EXPECT_EQ(outcome.code(), brush.isUsable ? 0 : 12) << brush.name << ": " << outcome.errors;
    }
}

TEST_F(HostileBrushesInTheEffect, ThatAreNoFilesCostAFrameAtMost) {
    EXPECT_EQ(render().code(), 12);
    ASSERT_EQ(mkfifo(gaussian_.c_str(), 0600), 0);
    EXPECT_EQ(render().code(), 12);
    std::filesystem::remove(gaussian_);
    std::filesystem::create_symlink("/dev/zero", gaussian_);
    EXPECT_EQ(render().code(), 12);
    std::filesystem::remove(gaussian_);
    std::filesystem::create_directory(gaussian_);
    EXPECT_EQ(render().code(), 12);
    std::filesystem::remove(gaussian_);
    WriteText(gaussian_, test::BrushOf("0.5"));
    std::filesystem::resize_file(gaussian_, std::uintmax_t{8} << 30);
    EXPECT_EQ(render().code(), 0);
}

}  // namespace
}  // namespace vireon::tool
