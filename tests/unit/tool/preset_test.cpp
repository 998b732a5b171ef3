#include "tools/vireon/preset.h"

#include <fstream>

#include <gtest/gtest.h>

#include "tests/unit/tool/description_builder.h"
#include "tests/unit/tool/expect_error.h"
#include "tests/unit/tool/scratch_folder.h"

namespace vireon::tool {
namespace {

using Values = std::map<std::int32_t, headless::ParameterValue>;

constexpr FrameSize kFrame{400, 200, 1};

enum Index {
    kShape = 1,
    kRadius,
    kOther,
    kMaskLayer,
    kEnable,
    kCenter,
    kMaskRadius,
    kSteps,
    kIntensity
};

std::vector<ParameterOption> Options() {
    DescriptionBuilder builder;
    builder.add(sdk::PF_Param_POPUP, "Shape").text = "Gaussian|Hoop|(-|Six Spike|Six Flare";
    builder.slider("Glow Radius", 0, 5000, 100);
    builder.slider("Threshold", 0, 1000, 50);
    builder.add(sdk::PF_Param_LAYER, "Mask Layer");
    builder.add(sdk::PF_Param_CHECKBOX, "Enable Mask");
    builder.add(sdk::PF_Param_POINT, "Center");
    std::vector<ParameterOption> options = MakeParameterOptions(builder.get(), {});
    ParameterOption radius = options.at(1);
    radius.parameter.name = "Radius";
    radius.parameter.index = kMaskRadius;
    radius.group = "Mask";
    options.push_back(radius);
    ParameterOption steps = options.at(2);
    steps.parameter.name = "Steps";
    steps.parameter.kind = sdk::PF_Param_SLIDER;
    steps.parameter.index = kSteps;
    options.push_back(steps);
    ParameterOption intensity = options.at(2);
    intensity.parameter.name = "Glow Intensity";
    intensity.parameter.validMax = 100;
    intensity.parameter.index = kIntensity;
    options.push_back(intensity);
    return options;
}

class PresetFileTest : public testing::Test {
  protected:
    Preset read(const std::string& text) const {
        std::ofstream(path_, std::ios::binary) << text;
        return ReadPreset(path_);
    }
    Values values(const std::string& parameters, const FrameSize& frame = kFrame,
                  const std::string& more = "") const {
        const Preset preset = read("{" + more + "\n\"parameters\": {\n" + parameters + "}}");
        return PresetValues(preset, Options(), frame);
    }
    void expectIn(const std::string& text, const std::string& words) const {
        EXPECT_TRUE(text.starts_with(path_.string() + ": ")) << text;
        EXPECT_NE(text.find(words), std::string::npos) << "no \"" << words << "\" in: " << text;
    }
    void expectFileError(ExitCode code, const std::string& text, const std::string& words) const {
        expectIn(ExpectError(code, [&] { read(text); }), words);
    }
    void expectValueError(ExitCode code, const std::string& parameters,
                          const std::string& words) const {
        expectIn(ExpectError(code, [&] { values(parameters); }), words);
    }

    ScratchFolder folder_;
    std::filesystem::path path_ = folder_ / "my look.json";
};

TEST_F(PresetFileTest, HasADescriptionAndValues) {
    const Preset preset = read(
        R"({"name": "Neon", "description": "Tubes\nthat glow", "for": "signs", "height": 1080,
            "parameters": {"Glow Radius": 60, "Enable Mask": true}})");
    EXPECT_EQ(preset.path, path_);
    EXPECT_EQ(preset.name, "Neon");
    EXPECT_EQ(preset.description, "Tubes that glow");
    EXPECT_EQ(preset.purpose, "signs");
    EXPECT_EQ(preset.height, 1080);
    ASSERT_EQ(preset.parameters.members.size(), 2u);
    EXPECT_EQ(preset.parameters.members[0].first, "Glow Radius");
}

TEST_F(PresetFileTest, NeedsNothingButParameters) {
    const Preset preset = read(R"({"parameters": {}})");
    EXPECT_EQ(preset.name, "my look");
    EXPECT_EQ(preset.description + preset.purpose, "");
    EXPECT_FALSE(preset.height);
    EXPECT_TRUE(PresetValues(preset, Options(), kFrame).empty());
}

TEST_F(PresetFileTest, WhatIsNoPresetIsRefused) {
    expectFileError(kInputUnreadable, "[1]", "holds a list, not an object");
    expectFileError(kInputUnreadable, "3", "holds a number");
    expectFileError(kInputUnreadable, "{}", "no \"parameters\"");
    expectFileError(kInputUnreadable, "{\"parameters\": }", "line 1, column 16: this is not JSON");
    expectFileError(kBadValue, "{\n\"parameters\": [1]}",
                    "line 2: \"parameters\" wants an object, not a list");
    expectFileError(kBadValue, R"({"name": 3, "parameters": {}})", "\"name\" wants a text, not a");
    expectFileError(kUnknownName, R"({"parametres": {}})", "did you mean parameters?");
    expectFileError(kUnknownName, R"({"Glow Radius": 3, "parameters": {}})",
                    "go into \"parameters\"");
    for (const char* const height : {"0", "-3", "30001", "\"1080\"", "null", "true"}) {
        expectFileError(kBadValue, std::string("{\"height\": ") + height + ", \"parameters\": {}}",
                        "\"height\" wants a number of pixels from 1 to 30000");
    }
}

TEST_F(PresetFileTest, ValuesGoByTheNamesThatTheEffectRegistered) {
    EXPECT_EQ(values(R"("Shape": "Six Spike", "Glow Radius": 12.5, "Enable Mask": false,
                        "Center": [25, 150], "Steps": 7)"),
              (Values{{kShape, {4, 0}},
                      {kRadius, {12.5, 0}},
                      {kEnable, {0, 0}},
                      {kCenter, {100, 300}},
                      {kSteps, {7, 0}}}));
}

TEST_F(PresetFileTest, UnknownParametersAreNamedWithTheNearest) {
    expectValueError(kUnknownName, R"("Threshold": 1,
        "Glow Raduis": 60)",
                     "line 4: \"Glow Raduis\" is no parameter of the effect (did you mean Glow "
                     "Radius?)");
    expectValueError(kUnknownName, R"("glow radius": 60)", "(did you mean Glow Radius?)");
    expectValueError(kUnknownName, R"("Sparkle\n": 60)", "\"Sparkle?\" is no parameter");
}

TEST_F(PresetFileTest, ValuesOutOfRangeAreRefused) {
    expectValueError(kBadValue, R"("Glow Radius": 5001)",
                     "line 3: \"Glow Radius\": 5001 is out of range; 0 to 5000 is possible");
    expectValueError(kBadValue, R"("Threshold": -0.5)", "-0.5 is out of range");
    expectValueError(kBadValue, R"("Glow Radius": 1e300)", "out of range");
    expectValueError(kBadValue, R"("Steps": 1.5)", "a whole number from 0 to 1000");
}

TEST_F(PresetFileTest, TypesAreTheParameters) {
    expectValueError(kBadValue, R"("Glow Radius": "60")", "wants a number, not a text");
    expectValueError(kBadValue, R"("Glow Radius": null)", "wants a number, not null");
    expectValueError(kBadValue, R"("Glow Radius": [60])", "wants a number, not a list");
    expectValueError(kBadValue, R"("Enable Mask": 1)", "wants true or false, not a number");
    expectValueError(kBadValue, R"("Shape": 2)", "wants the text of one of its choices, not a num");
    for (const char* const point : {"50", "[50]", "[1, 2, 3]", "[\"50%\", 3]", "\"50%,50%\""}) {
        expectValueError(kBadValue, std::string("\"Center\": ") + point, "wants a list [X, Y]");
    }
}

TEST_F(PresetFileTest, ChoicesAreWrittenInFull) {
    expectValueError(kUnknownName, R"("Shape": "Gausian")",
                     "\"Shape\": there is no choice \"Gausian\" (did you mean Gaussian?)");
    expectValueError(kUnknownName, R"("Shape": "gaussian")", "(did you mean Gaussian?)");
    expectValueError(kUnknownName, R"("Shape": "Hoo")", "(did you mean Hoop?)");
    expectValueError(kUnknownName, R"("Shape": "(-")", "possible are Gaussian, Hoop, Six Spike");
    expectValueError(kUnknownName, R"("Shape": "")", "there is no choice \"\"");
}

TEST_F(PresetFileTest, LayersAreGivenBesideIt) {
    expectValueError(kBadValue, R"("Mask Layer": "matte.png")", "--layer mask=FILE");
}

TEST_F(PresetFileTest, AmbiguousNamesAreRefused) {
    std::vector<ParameterOption> options = Options();
    options.push_back(options.at(2));
    const Preset preset = read(R"({"parameters": {"Threshold": 1}})");
    expectIn(ExpectError(kUnknownName, [&] { PresetValues(preset, options, kFrame); }),
             "the name of several parameters");
}

TEST_F(PresetFileTest, LengthsFollowTheHeightOfThePicture) {
    const std::string lengths = R"("Glow Radius": 60, "Radius": 300, "Threshold": 40)";
    EXPECT_EQ(values(lengths, {3840, 2160, 1}, "\"height\": 1080,"),
              (Values{{kRadius, {120, 0}}, {kMaskRadius, {600, 0}}, {kOther, {40, 0}}}));
    EXPECT_EQ(values(lengths, {640, 270, 1}, "\"height\": 1080,"),
              (Values{{kRadius, {15, 0}}, {kMaskRadius, {75, 0}}, {kOther, {40, 0}}}));
    // The effect itself makes a radius smaller where a host shows less than the full resolution.
    EXPECT_EQ(values(lengths, {640, 270, 2}, "\"height\": 1080,").at(kRadius).x, 15);
    // Without a height they are meant as they stand.
    EXPECT_EQ(values(lengths, {3840, 2160, 1}),
              (Values{{kRadius, {60, 0}}, {kMaskRadius, {300, 0}}, {kOther, {40, 0}}}));
}

TEST_F(PresetFileTest, IntensityMakesUpForTheNumberOfPixels) {
    const std::string intensity = R"("Glow Intensity": 10)";
    const std::string height = "\"height\": 1080,";
    EXPECT_EQ(values(intensity, {3840, 2160, 1}, height).at(kIntensity).x, 2.5);
    EXPECT_EQ(values(intensity, {1920, 1080, 1}, height).at(kIntensity).x, 10);
    EXPECT_EQ(values(intensity, {960, 540, 1}, height).at(kIntensity).x, 40);
    EXPECT_EQ(values(intensity, {96, 54, 1}, height).at(kIntensity).x, 100);
    EXPECT_EQ(values(intensity, {96, 54, 1}).at(kIntensity).x, 10);
}

TEST_F(PresetFileTest, ScaledLengthsEndAtTheRange) {
    EXPECT_EQ(values(R"("Glow Radius": 4000)", {3840, 2160, 1}, "\"height\": 1080,"),
              (Values{{kRadius, {5000, 0}}}));
    // What is written has to be in range by itself.
    expectIn(ExpectError(kBadValue,
                         [&] {
                             values(R"("Glow Radius": 6000)", {64, 36, 1}, "\"height\": 1080,");
                         }),
             "6000 is out of range");
}

}  // namespace
}  // namespace vireon::tool
