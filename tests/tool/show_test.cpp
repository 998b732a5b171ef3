// The commands that show something: help, describe, shapes.

#include <gtest/gtest.h>

#include <filesystem>

#include <nlohmann/json.hpp>

#include "tests/tool/program.h"
#include "tools/vireon/exit_codes.h"

namespace vireon::tool {
namespace {

void ExpectIn(const std::string& text, const std::string& words) {
    EXPECT_NE(text.find(words), std::string::npos) << "no \"" << words << "\" in: " << text;
}

TEST(Show, HelpHasTheTableOfExitCodes) {
    const Outcome outcome = Vireon({"--help"});
    EXPECT_EQ(outcome.code(), 0);
    EXPECT_EQ(outcome.errors, "");
    for (const ExitCodeMeaning& entry : ExitCodes()) {
        ExpectIn(outcome.output, std::to_string(entry.code) + "  " + entry.meaning);
    }
}

TEST(Show, RenderHelpListsTheEffectsParameters) {
    const Outcome outcome = Vireon({"render", "--help", "--plugin", VIREON_TEST_EFFECT});
    EXPECT_EQ(outcome.code(), 0) << outcome.errors;
    ExpectIn(outcome.output, "--glow-radius");
    ExpectIn(outcome.output, "0 to 5000 (default 100)");
    ExpectIn(outcome.output, "Effect, Extra:");
    ExpectIn(outcome.output, "mask (Mask Layer)");
    ExpectIn(outcome.output, "no colour space is converted");
    ExpectIn(outcome.output, "Copy, Invert, Crash");
    EXPECT_EQ(outcome.output.find("(-"), std::string::npos);
}

TEST(Show, RenderHelpWithoutAnEffectShowsTheRestAndSaysWhy) {
    const Outcome outcome = Vireon({"render", "--help", "--plugin", "/nonexistent.so"});
    EXPECT_EQ(outcome.code(), 11);
    ExpectIn(outcome.output, "--downsample");
    ExpectIn(outcome.errors, "there is no plug-in");
}

TEST(Show, DescribeNamesWhatTheEffectRegistered) {
    const Outcome outcome =
        Vireon({"describe", "--plugin", VIREON_TEST_EFFECT}, {{"VIREON_GLOW_SIMD", "sse2"}});
    EXPECT_EQ(outcome.code(), 0) << outcome.errors;
    ExpectIn(outcome.output, "Fake Effect. Misbehaves on demand.");
    ExpectIn(outcome.output, "(linux, sse2)");
    ExpectIn(outcome.output, "2.3.4 (alpha, build 7)");
    ExpectIn(outcome.output, "DEEP_COLOR_AWARE");
    ExpectIn(outcome.output, "SUPPORTS_SMART_RENDER, FLOAT_COLOR_AWARE");
    ExpectIn(outcome.output, "Glow Radius");
}

TEST(Show, DescribeSpeaksJson) {
    const Outcome outcome = Vireon({"describe", "--json", "--plugin", VIREON_TEST_EFFECT},
                                   {{"VIREON_GLOW_SIMD", "scalar"}});
    EXPECT_EQ(outcome.code(), 0) << outcome.errors;
    const auto json = nlohmann::json::parse(outcome.output);
    EXPECT_EQ(json["name"], "Fake Effect");
    EXPECT_EQ(json["system"], "linux");
    EXPECT_EQ(json["simd"], "scalar");
    EXPECT_EQ(json["version"]["minor"], 3);
    EXPECT_EQ(json["out_flags2"]["names"][0], "SUPPORTS_SMART_RENDER");
    ASSERT_EQ(json["parameters"].size(), 10u);
    EXPECT_EQ(json["parameters"][1]["choices"][0], "Copy");
    EXPECT_EQ(json["parameters"][2]["valid"][1], 5000);
    EXPECT_EQ(json["parameters"][4]["kind"], "fixed slider");
    EXPECT_EQ(json["parameters"][6]["default_percent"][0], 50);
}

TEST(Show, ShapesNeedAShapePopup) {
    const Outcome outcome = Vireon({"shapes", "--plugin", VIREON_TEST_EFFECT});
    EXPECT_EQ(outcome.code(), 11);
    ExpectIn(outcome.errors, "\"Shape\"");
}

class ShapesOfTheEffect : public testing::Test {
  protected:
    void SetUp() override {
        if (!std::filesystem::exists(std::filesystem::path(VIREON_TEST_STAGE) / "VireonGlow.so")) {
            GTEST_SKIP() << "the effect is not built";
        }
    }
};

TEST_F(ShapesOfTheEffect, AreThereInTheStage) {
    const Outcome outcome = Vireon({"shapes"}, {{"ORVANTE_QUILLON_SVG_DIR", std::nullopt}});
    EXPECT_EQ(outcome.code(), 0) << outcome.errors << outcome.output;
    ExpectIn(outcome.output, "Six Spike Whack");
    ExpectIn(outcome.output, "sixSpikeWhack.brush");
    ExpectIn(outcome.output, "(from a layer)");
}

TEST_F(ShapesOfTheEffect, AreMissedElsewhere) {
    const Workplace place;
    const Outcome outcome =
        Vireon({"shapes"}, {{"ORVANTE_QUILLON_SVG_DIR", place.file("nowhere")}});
    EXPECT_EQ(outcome.code(), 17);
    EXPECT_EQ(outcome.errorLines(), 1);
    ExpectIn(outcome.errors, "13 brush files");
    ExpectIn(outcome.output, "is missing");
}

}  // namespace
}  // namespace vireon::tool
