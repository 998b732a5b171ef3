// `vireon render` when all goes well.

#include <gtest/gtest.h>

#include <filesystem>

#include "tests/tool/program.h"

namespace vireon::tool {
namespace {

/// What the effect was given, from its own mouth.
std::string ReportOf(const Workplace& place, std::vector<std::string> more) {
    more.insert(more.end(), {"--behaviour", "report"});
    const Outcome outcome = place.render(more);
    EXPECT_EQ(outcome.code(), 12) << outcome.errors;
    return outcome.errors;
}

void ExpectIn(const std::string& text, const std::string& words) {
    EXPECT_NE(text.find(words), std::string::npos) << "no \"" << words << "\" in: " << text;
}

TEST(Render, WritesWhatTheEffectDrew) {
    const Workplace place;
    Outcome outcome = place.render({});
    EXPECT_EQ(outcome.code(), 0) << outcome.errors;
    EXPECT_EQ(outcome.output + outcome.errors, "");
    EXPECT_EQ(Pixels8(place.output()), Pixels8(place.input()));

    outcome = place.render({"--behaviour", "Invert"});
    EXPECT_EQ(outcome.code(), 0) << outcome.errors;
    const auto before = Pixels8(place.input());
    const auto after = Pixels8(place.output());
    ASSERT_EQ(after.size(), before.size());
    for (std::size_t i = 0; i < before.size(); i += 4) {
        EXPECT_EQ(after[i], 255 - before[i]);
        EXPECT_EQ(after[i + 1], before[i + 1]);
        EXPECT_EQ(after[i + 3], before[i + 3]);
    }
}

TEST(Render, InputMayBeTheOutput) {
    const Workplace place;
    const auto before = Pixels8(place.input());
    const Outcome outcome =
        Vireon({"render", place.input(), place.input(), "--plugin", VIREON_TEST_EFFECT});
    EXPECT_EQ(outcome.code(), 0) << outcome.errors;
    EXPECT_EQ(Pixels8(place.input()), before);
}

TEST(Render, EveryDepthGivesBackAnEightBitPicture) {
    const Workplace place;
    for (const char* const depth : {"8", "16", "32"}) {
        const Outcome outcome = place.render({"--depth", depth});
        EXPECT_EQ(outcome.code(), 0) << outcome.errors;
        EXPECT_EQ(Pixels8(place.output()), Pixels8(place.input())) << depth;
    }
}

TEST(Render, DefaultsAreTheEffectsOwn) {
    const Workplace place;
    ExpectIn(ReportOf(place, {}),
             "radius=100 opacity=100 enable=0 center=10,5 mask=0x0 depth=1 input=20x10 full=20x10 "
             "scale=1/1,1/1 aspect=1/1 quality=1");
}

TEST(Render, OptionsReachTheEffect) {
    const Workplace place;
    ExpectIn(ReportOf(place, {"--glow-radius", "12.5", "--opacity=40.5", "--enable", "on",
                              "--center", "-3.5,20%", "--extra-depth", "7", "--layer",
                              "mask=" + place.input(), "--draft"}),
             "radius=12.5 opacity=40.5 enable=1 center=-3.5,2 mask=20x10 depth=7 input=20x10 "
             "full=20x10 scale=1/1,1/1 aspect=1/1 quality=0");
}

TEST(Render, ReducedResolutionIsThatOfAHost) {
    const Workplace place;
    ExpectIn(ReportOf(place, {"--half", "--center", "4,2", "--glow-radius", "60", "--layer",
                              "mask=" + place.input()}),
             "radius=60 opacity=100 enable=0 center=2,1 mask=10x5 depth=1 input=10x5 full=20x10 "
             "scale=1/2,1/2");
    ExpectIn(ReportOf(place, {"--downsample", "3"}), "input=7x4 full=20x10 scale=1/3,1/3");
    EXPECT_EQ(place.render({"--downsample", "3"}).code(), 0);
    int width = 0;
    Pixels8(place.output(), &width);
    EXPECT_EQ(width, 7);
}

TEST(Render, AlphaAppearsWhenTheEffectMakesSome) {
    const Workplace place;
    WritePng8(place.input(), 2, 3, {1, 2, 3, 4, 5, 6});
    int channels = 0;
    EXPECT_EQ(place.render({}).code(), 0);
    Pixels8(place.output(), nullptr, &channels);
    EXPECT_EQ(channels, 3);
    EXPECT_EQ(place.render({"--behaviour", "fade"}).code(), 0);
    EXPECT_EQ(Pixels8(place.output(), nullptr, &channels),
              (std::vector<std::uint8_t>{1, 2, 3, 128, 4, 5, 6, 128}));
    EXPECT_EQ(channels, 4);
}

TEST(Render, LostAlphaIsSaidUnlessQuiet) {
    const Workplace place;
    const std::vector<std::string> arguments{"render", place.input(), place.file("out.jpg"),
                                             "--plugin", VIREON_TEST_EFFECT};
    Outcome outcome = Vireon(arguments);
    EXPECT_EQ(outcome.code(), 0);
    EXPECT_EQ(outcome.errorLines(), 1);
    ExpectIn(outcome.errors, "over black");
    std::vector<std::string> quiet = arguments;
    quiet.push_back("--quiet");
    outcome = Vireon(quiet);
    EXPECT_EQ(outcome.code(), 0);
    EXPECT_EQ(outcome.errors, "");
}

TEST(Render, TimeIsPrintedOnRequest) {
    const Workplace place;
    const Outcome outcome = place.render({"--time"}, {{"VIREON_GLOW_SIMD", "plain"}});
    EXPECT_EQ(outcome.code(), 0);
    ExpectIn(outcome.output, " s (plain), whole frame");
    ExpectIn(outcome.output, "effect 0.");
    ExpectIn(outcome.output, "peak of host memory");
    EXPECT_EQ(outcome.errors, "");
}

TEST(Render, WhatTheEffectPrintsGoesNowhereUnlessWished) {
    const Workplace place;
    Outcome outcome = place.render({"--behaviour", "print"});
    EXPECT_EQ(outcome.code(), 0);
    EXPECT_EQ(outcome.output + outcome.errors, "");
    EXPECT_EQ(Pixels8(place.output()), Pixels8(place.input()));
    outcome = place.render({"--behaviour", "print", "--verbose"});
    EXPECT_EQ(outcome.code(), 0);
    ExpectIn(outcome.errors, "chatter of the effect");
}

TEST(Render, ProgressIsForTerminalsOnly) {
    const Workplace place;
    EXPECT_EQ(place.render({"--behaviour", "brief"}).errors, "");
    if (!std::filesystem::exists("/usr/bin/script")) {
        GTEST_SKIP() << "no program to make a terminal";
    }
    const std::string command = std::string("'") + VIREON_TEST_STAGE + "/vireon' render '" +
                                place.input() + "' '" + place.output() + "' --plugin '" +
                                VIREON_TEST_EFFECT + "' --behaviour brief";
    Outcome outcome = RunProgram("/usr/bin/script", {"-qec", command, "/dev/null"});
    EXPECT_EQ(outcome.code(), 0) << outcome.output;
    ExpectIn(outcome.output, "rendering   0 %");
    ExpectIn(outcome.output, "rendering 100 %");
    outcome = RunProgram("/usr/bin/script", {"-qec", command + " --quiet", "/dev/null"});
    EXPECT_EQ(outcome.code(), 0);
    EXPECT_EQ(outcome.output.find("rendering"), std::string::npos);
}

}  // namespace
}  // namespace vireon::tool
