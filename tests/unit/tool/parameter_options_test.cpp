#include "tools/vireon/parameter_options.h"

#include <gtest/gtest.h>

#include "tests/unit/tool/description_builder.h"
#include "tests/unit/tool/expect_error.h"

namespace vireon::tool {
namespace {

using headless::ParameterDescription;
using headless::ParameterValue;

std::vector<std::string> NamesOf(const std::vector<ParameterOption>& options) {
    std::vector<std::string> names;
    for (const ParameterOption& option : options) {
        names.push_back(option.option);
    }
    return names;
}

ParameterOption Slider(double min, double max) {
    DescriptionBuilder builder;
    builder.slider("Glow Radius", min, max, 100);
    return MakeParameterOptions(builder.get(), {}).at(0);
}

ParameterOption Popup() {
    DescriptionBuilder builder;
    ParameterDescription& parameter = builder.add(sdk::PF_Param_POPUP, "Mode");
    parameter.text = "None|Normal|(-|Color|Color Dodge|Color Burn|4:1 (moderate)";
    parameter.defaultValue = 5;
    return MakeParameterOptions(builder.get(), {}).at(0);
}

ParameterOption OfKind(std::int32_t kind) {
    DescriptionBuilder builder;
    builder.add(kind, "Thing").defaultValue = 1;
    return MakeParameterOptions(builder.get(), {}).at(0);
}

constexpr FrameSize kFrame{200, 100, 1};

TEST(ParameterOptions, AreMadeFromWhatTheEffectRegistered) {
    DescriptionBuilder builder;
    builder.slider("Glow Radius", 0, 10, 1);
    builder.add(sdk::PF_Param_GROUP_START, "Input");
    builder.add(sdk::PF_Param_LAYER, "Glow Layer");
    builder.add(sdk::PF_Param_CHECKBOX, "Enable Mask");
    builder.add(sdk::PF_Param_GROUP_END, "");
    builder.add(sdk::PF_Param_POINT, "Center");
    builder.add(sdk::PF_Param_BUTTON, "Press Me");
    const auto options = MakeParameterOptions(builder.get(), {});
    EXPECT_EQ(NamesOf(options),
              (std::vector<std::string>{"glow-radius", "glow", "enable-mask", "center"}));
    EXPECT_EQ(options[0].group, "");
    EXPECT_EQ(options[1].group, "Input");
    EXPECT_TRUE(options[1].isLayer());
    EXPECT_EQ(options[2].group, "Input");
    EXPECT_EQ(options[3].group, "");
    EXPECT_EQ(options[3].parameter.index, 6);
}

TEST(ParameterOptions, NamesStayDistinct) {
    DescriptionBuilder builder;
    builder.slider("Depth", 0, 1, 0);
    builder.add(sdk::PF_Param_GROUP_START, "Mask");
    builder.slider("Depth", 0, 1, 0);
    builder.slider("Radius", 0, 1, 0);
    builder.slider("Depth", 0, 1, 0);
    builder.slider("!?", 0, 1, 0);
    const auto names = NamesOf(MakeParameterOptions(builder.get(), {"depth", "plugin"}));
    EXPECT_EQ(names, (std::vector<std::string>{"depth-1", "mask-depth", "radius", "mask-depth-5",
                                               "parameter"}));
}

TEST(ParameterOptions, SlidersAreCheckedAgainstTheValidRange) {
    const ParameterOption option = Slider(0.1, 5000);
    EXPECT_EQ(ParseValue(option, "12.5", kFrame), (ParameterValue{12.5, 0}));
    EXPECT_EQ(ParseValue(option, "+1e3", kFrame), (ParameterValue{1000, 0}));
    EXPECT_EQ(ParseValue(option, "5000", kFrame), (ParameterValue{5000, 0}));
    const std::string text = ExpectError(kBadValue, [&] { ParseValue(option, "5001", kFrame); });
    EXPECT_NE(text.find("--glow-radius"), std::string::npos) << text;
    EXPECT_NE(text.find("0.1 to 5000"), std::string::npos) << text;
    for (const char* const wrong : {"-1", "0", "", "ten", "10px", "nan", "inf", "1,5", "0x10"}) {
        ExpectError(kBadValue, [&] { ParseValue(option, wrong, kFrame); });
    }
}

TEST(ParameterOptions, BoundsThatAreSingleFloatsMeanWhatTheyShow) {
    const ParameterOption option = Slider(static_cast<double>(0.1f), 10);
    EXPECT_EQ(option.valueHelp(), "0.1 to 10");
    EXPECT_EQ(ParseValue(option, "0.1", kFrame), (ParameterValue{0.1, 0}));
}

TEST(ParameterOptions, WholeSlidersTakeWholeNumbers) {
    ParameterOption option = Slider(0, 10);
    option.parameter.kind = sdk::PF_Param_SLIDER;
    EXPECT_EQ(ParseValue(option, "3", kFrame), (ParameterValue{3, 0}));
    ExpectError(kBadValue, [&] { ParseValue(option, "3.5", kFrame); });
}

TEST(ParameterOptions, ChoicesGoByTheirText) {
    const ParameterOption option = Popup();
    EXPECT_EQ(ParseValue(option, "None", kFrame).x, 1);
    EXPECT_EQ(ParseValue(option, "color", kFrame).x, 4);
    EXPECT_EQ(ParseValue(option, "COLOR DODGE", kFrame).x, 5);
    EXPECT_EQ(ParseValue(option, "color-burn", kFrame).x, 6);
    EXPECT_EQ(ParseValue(option, "4:1", kFrame).x, 7);
    EXPECT_EQ(ParseValue(option, "nor", kFrame).x, 2);
    EXPECT_EQ(option.defaultHelp(), "Color Dodge");
}

TEST(ParameterOptions, UnknownChoicesGetSuggestions) {
    const ParameterOption option = Popup();
    std::string text = ExpectError(kUnknownName, [&] { ParseValue(option, "colour-bun", kFrame); });
    EXPECT_NE(text.find("did you mean Color Burn?"), std::string::npos) << text;
    text = ExpectError(kUnknownName, [&] { ParseValue(option, "sparkle", kFrame); });
    EXPECT_NE(text.find("None, Normal, Color, Color Dodge"), std::string::npos) << text;
    EXPECT_EQ(text.find("(-"), std::string::npos) << text;
    // Separators cannot be chosen; a beginning must be that of one choice.
    ExpectError(kUnknownName, [&] { ParseValue(option, "(-", kFrame); });
    ExpectError(kUnknownName, [&] { ParseValue(option, "no", kFrame); });
    ExpectError(kUnknownName, [&] { ParseValue(option, "", kFrame); });
}

TEST(ParameterOptions, CheckboxesAreOnOrOff) {
    const ParameterOption option = OfKind(sdk::PF_Param_CHECKBOX);
    EXPECT_EQ(option.defaultHelp(), "on");
    for (const char* const on : {"on", "ON", "yes", "true", "1"}) {
        EXPECT_EQ(ParseValue(option, on, kFrame).x, 1) << on;
    }
    for (const char* const off : {"off", "No", "false", "0"}) {
        EXPECT_EQ(ParseValue(option, off, kFrame).x, 0) << off;
    }
    ExpectError(kBadValue, [&] { ParseValue(option, "maybe", kFrame); });
}

TEST(ParameterOptions, PointsArePixelsOfTheWholePictureOrPercent) {
    const ParameterOption option = OfKind(sdk::PF_Param_POINT);
    EXPECT_EQ(ParseValue(option, "10,20", kFrame), (ParameterValue{10, 20}));
    EXPECT_EQ(ParseValue(option, "-10.5,2e1", kFrame), (ParameterValue{-10.5, 20}));
    EXPECT_EQ(ParseValue(option, "50%,25%", kFrame), (ParameterValue{100, 25}));
    EXPECT_EQ(ParseValue(option, "50%,20", kFrame), (ParameterValue{100, 20}));
    // At half resolution the picture of 201 x 101 pixels has 101 x 51.
    const FrameSize half{201, 101, 2};
    EXPECT_EQ(ParseValue(option, "10,20", half), (ParameterValue{5, 10}));
    EXPECT_EQ(ParseValue(option, "100%,50%", half), (ParameterValue{101, 25.5}));
    for (const char* const wrong : {"10", "10,", ",", "a,b", "10,20,30", "%,1", "10;20"}) {
        ExpectError(kBadValue, [&] { ParseValue(option, wrong, kFrame); });
    }
}

TEST(ParameterOptions, AnglesAreDegrees) {
    const ParameterOption option = OfKind(sdk::PF_Param_ANGLE);
    EXPECT_EQ(ParseValue(option, "-720.5", kFrame).x, -720.5);
    ExpectError(kBadValue, [&] { ParseValue(option, "half", kFrame); });
}

}  // namespace
}  // namespace vireon::tool
