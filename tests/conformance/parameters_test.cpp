#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include "tests/conformance/support.h"

namespace vireon::conformance {
namespace {

using headless::CommandResult;
using headless::Host;
using headless::Slot;

constexpr std::int32_t kSupervise = 64;
constexpr std::int32_t kNoVary = 2;
constexpr std::int32_t kCollapse = 32;
constexpr std::int32_t kDisabled = 32;

/// A parameter as it must be registered: the whole record, and the text that it points to.
struct Expected {
    sdk::PF_ParamDef def{};
    std::string text;
};

Expected Blank(std::int32_t id, const char* name, std::int32_t kind, std::int32_t flags,
               std::int32_t uiFlags) {
    Expected expected;
    // The union's largest member is written first so that all of it is zero.
    std::memset(&expected.def, 0, sizeof(expected.def));
    expected.def.uu.id = id;
    expected.def.ui_flags = uiFlags;
    expected.def.param_type = kind;
    std::strncpy(expected.def.name, name, sizeof(expected.def.name) - 1);
    expected.def.flags = flags;
    return expected;
}

Expected Layer(std::int32_t id, const char* name, std::int32_t uiFlags) {
    Expected expected = Blank(id, name, 0, kSupervise, uiFlags);
    expected.def.u.ld.dephault = 0;
    return expected;
}

Expected Group(std::int32_t id, const char* name, std::int32_t flags) {
    return Blank(id, name, 13, flags, 0);
}

Expected GroupEnd(std::int32_t id) {
    return Blank(id, "", 14, 0, 0);
}

Expected Popup(std::int32_t id, const char* name, std::int32_t flags, std::int16_t choices,
               std::int16_t value, const char* text) {
    Expected expected = Blank(id, name, 7, flags, 0);
    expected.def.u.pd.value = value;
    expected.def.u.pd.num_choices = choices;
    expected.def.u.pd.dephault = value;
    expected.text = text;
    return expected;
}

Expected Checkbox(std::int32_t id, const char* name, bool value) {
    Expected expected = Blank(id, name, 4, kSupervise, 0);
    expected.def.u.bd.value = value ? 1 : 0;
    expected.def.u.bd.dephault = value ? 1 : 0;
    return expected;
}

Expected Center(std::int32_t id, const char* name) {
    Expected expected = Blank(id, name, 6, 0, kDisabled);
    expected.def.u.td.x_value = 3276800;
    expected.def.u.td.y_value = 3276800;
    expected.def.u.td.x_dephault = 3276800;
    expected.def.u.td.y_dephault = 3276800;
    return expected;
}

Expected Opacity(std::int32_t id, const char* name) {
    Expected expected = Blank(id, name, 2, kCollapse, 0);
    expected.def.u.fd.value = 100 * 65536;
    expected.def.u.fd.valid_max = 100 * 65536;
    expected.def.u.fd.slider_max = 100 * 65536;
    expected.def.u.fd.dephault = 100 * 65536;
    expected.def.u.fd.precision = 1;
    return expected;
}

/// Makes the ten sliders that are float in most hosts.
using SliderMaker = Expected (*)(std::int32_t id, const char* name, std::int32_t uiFlags,
                                 double validMin, double validMax, double sliderMin,
                                 double sliderMax, double value);

Expected FloatSlider(std::int32_t id, const char* name, std::int32_t uiFlags, double validMin,
                     double validMax, double sliderMin, double sliderMax, double value) {
    Expected expected = Blank(id, name, 10, kCollapse, uiFlags);
    expected.def.u.fs_d.value = value;
    expected.def.u.fs_d.valid_min = static_cast<float>(validMin);
    expected.def.u.fs_d.valid_max = static_cast<float>(validMax);
    expected.def.u.fs_d.slider_min = static_cast<float>(sliderMin);
    expected.def.u.fs_d.slider_max = static_cast<float>(sliderMax);
    expected.def.u.fs_d.dephault = static_cast<float>(value);
    expected.def.u.fs_d.precision = 2;
    expected.def.u.fs_d.curve_tolerance = 0.05f;
    return expected;
}

sdk::PF_Fixed Fixed(double value) {
    return static_cast<sdk::PF_Fixed>(value * 65536);
}

Expected FixedSlider(std::int32_t id, const char* name, std::int32_t uiFlags, double validMin,
                     double validMax, double sliderMin, double sliderMax, double value) {
    Expected expected = Blank(id, name, 2, kCollapse, uiFlags);
    expected.def.u.fd.value = Fixed(value);
    expected.def.u.fd.valid_min = Fixed(validMin);
    expected.def.u.fd.valid_max = Fixed(validMax);
    expected.def.u.fd.slider_min = Fixed(sliderMin);
    expected.def.u.fd.slider_max = Fixed(sliderMax);
    expected.def.u.fd.dephault = Fixed(value);
    expected.def.u.fd.precision = 2;
    return expected;
}

/// The list from index 1 on.
std::vector<Expected> ExpectedParameters(SliderMaker slider) {
    return {
        Popup(1039, "Shape", kSupervise | kNoVary, 14, 1,
              "Gaussian|Hoop|Kuplah|Mass|Six Flare|Six Spike Horizontal|Six Spike Vertical|"
              "Six Spike Whack|Spectacle|Tent|Tree|Whoopy|Zig|Custom Glow Shape"),
        Layer(101, "Shape Layer", kDisabled),
        slider(62, "Glow Radius", 0, 0, 5000, 0, 1000, 100),
        slider(63, "Glow Intensity", 0, 0, 100, 0, 20, 10),
        slider(19, "Glow Falloff", 0, 0.1, 10, 0, 5, 1.5),
        slider(78, "Threshold", 0, 0, 1000, 0, 100, 50),
        Group(90, "Input", kCollapse),
        Layer(60, "Glow Layer", 0),
        slider(75, "Blur Input", 0, 0, 1, 0, 1, 0),
        Popup(99, "Quality", 0, 5, 3,
              "1:1 (slowest)|2:1 (slow)|4:1 (moderate)|8:1 (fast)|16:1 (fastest)"),
        Popup(10, "Input Source Channels", 0, 7, 1,
              "RGBA|Alpha|Lightness|Luminance|Red|Green|Blue"),
        GroupEnd(91),
        Group(81, "Mask", kCollapse),
        Checkbox(84, "Enable Mask", false),
        Layer(82, "Mask Layer", kDisabled),
        Center(83, "Center"),
        slider(85, "Radius", kDisabled, 0, 10000, 0, 500, 100),
        slider(86, "Falloff", kDisabled, 0, 1, 0, 1, 0),
        slider(87, "Width Aspect", kDisabled, 0.1, 100, 0.1, 10, 1),
        slider(88, "Height Aspect", kDisabled, 0.1, 100, 0.1, 10, 1),
        GroupEnd(89),
        Group(92, "Output", 0),
        Popup(73, "View", 0, 3, 1, "Output|Brightness Map|Mask"),
        Checkbox(97, "Prevent Overbrights", true),
        slider(98, "Overbright Clamp", 0, 0, 100, 0, 100, 100),
        Popup(94, "Channels", 0, 6, 2, "RGB|RGBA|Red|Green|Blue|Alpha"),
        Opacity(8, "Source Opacity"),
        Opacity(68, "Glow Opacity"),
        Popup(9, "Transfer Mode", 0, 23, 5,
              "None|Behind|Normal|(-|Add|Multiply|Screen|Overlay|Soft Light|Hard Light|(-|"
              "Color Dodge|Color Burn|(-|Darken|Lighten|Difference|Exclusion|(-|Hue|Saturation|"
              "Color|Luminosity"),
        GroupEnd(93),
    };
}

void ExpectParameters(const Host& host, const std::vector<Expected>& list) {
    ASSERT_EQ(list.size() + 1, static_cast<std::size_t>(kParameterCount));
    ASSERT_EQ(host.parameterCount(), kParameterCount);
    for (std::size_t i = 0; i < list.size(); ++i) {
        const headless::Parameter& parameter = host.parameter(static_cast<std::int32_t>(i + 1));
        const sdk::PF_ParamDef& have = parameter.registered;
        const sdk::PF_ParamDef& want = list[i].def;
        SCOPED_TRACE("index " + std::to_string(i + 1) + ", " + want.name);
        EXPECT_EQ(have.uu.id, want.uu.id);
        EXPECT_STREQ(have.name, want.name);
        EXPECT_EQ(have.param_type, want.param_type);
        EXPECT_EQ(have.flags, want.flags);
        EXPECT_EQ(have.ui_flags, want.ui_flags);
        EXPECT_EQ(parameter.text, list[i].text);
        switch (want.param_type) {
            case sdk::PF_Param_FLOAT_SLIDER:
                EXPECT_EQ(have.u.fs_d.value, want.u.fs_d.value);
                EXPECT_EQ(have.u.fs_d.valid_min, want.u.fs_d.valid_min);
                EXPECT_EQ(have.u.fs_d.valid_max, want.u.fs_d.valid_max);
                EXPECT_EQ(have.u.fs_d.slider_min, want.u.fs_d.slider_min);
                EXPECT_EQ(have.u.fs_d.slider_max, want.u.fs_d.slider_max);
                EXPECT_EQ(have.u.fs_d.dephault, want.u.fs_d.dephault);
                EXPECT_EQ(have.u.fs_d.precision, want.u.fs_d.precision);
                EXPECT_EQ(have.u.fs_d.curve_tolerance, want.u.fs_d.curve_tolerance);
                break;
            case sdk::PF_Param_FIX_SLIDER:
                EXPECT_EQ(have.u.fd.value, want.u.fd.value);
                EXPECT_EQ(have.u.fd.valid_min, want.u.fd.valid_min);
                EXPECT_EQ(have.u.fd.valid_max, want.u.fd.valid_max);
                EXPECT_EQ(have.u.fd.slider_min, want.u.fd.slider_min);
                EXPECT_EQ(have.u.fd.slider_max, want.u.fd.slider_max);
                EXPECT_EQ(have.u.fd.dephault, want.u.fd.dephault);
                EXPECT_EQ(have.u.fd.precision, want.u.fd.precision);
                break;
            case sdk::PF_Param_POPUP:
                EXPECT_EQ(have.u.pd.value, want.u.pd.value);
                EXPECT_EQ(have.u.pd.num_choices, want.u.pd.num_choices);
                EXPECT_EQ(have.u.pd.dephault, want.u.pd.dephault);
                break;
            case sdk::PF_Param_CHECKBOX:
                EXPECT_EQ(have.u.bd.value, want.u.bd.value);
                EXPECT_EQ(have.u.bd.dephault, want.u.bd.dephault);
                break;
            default: break;
        }
        // Everything else is zero, bytes between fields included.
        EXPECT_EQ(std::memcmp(&have, &want, sizeof(want)), 0)
            << "a field that has no value of its own is not zero";
    }
}

TEST(Parameters, AreRegisteredFieldByField) {
    const auto host = ReadyHost();
    ExpectParameters(*host, ExpectedParameters(FloatSlider));
}

TEST(Parameters, AreTheSameInEveryHostWithFloatSliders) {
    for (const std::int32_t application :
         {sdk::kHostPremierePro, sdk::kHostMotion, sdk::HostCode("Unkn")}) {
        SCOPED_TRACE(application);
        headless::HostSettings settings;
        settings.applicationId = application;
        const auto host = ReadyHost(settings);
        ExpectParameters(*host, ExpectedParameters(FloatSlider));
    }
}

TEST(Parameters, AreFixedSlidersInTheHostThatHasNoFloatOnes) {
    headless::HostSettings settings;
    settings.applicationId = sdk::kHostFinalCutPro;
    const auto host = ReadyHost(settings);
    ExpectParameters(*host, ExpectedParameters(FixedSlider));
    EXPECT_EQ(host->parameter(kGlowRadius).registered.u.fd.valid_max, 327680000);
    EXPECT_EQ(host->parameter(kGlowRadius).registered.u.fd.slider_max, 65536000);
    EXPECT_EQ(host->parameter(kGlowRadius).registered.u.fd.dephault, 6553600);
    EXPECT_EQ(host->parameter(kGlowFalloff).registered.u.fd.valid_min, 6553);
}

TEST(Parameters, AreCountedInTheAnswer) {
    Host host(Effect());
    host.globalSetup();
    host.resetCalls();
    const CommandResult result = host.paramsSetup();
    EXPECT_EQ(result.error, 0);
    EXPECT_TRUE(result.clean()) << result.report();
    EXPECT_EQ(result.out.num_params, kParameterCount);
    EXPECT_EQ(host.calls()[Slot::kAddParam], 30u);
}

std::vector<std::int32_t>* appendedAt = nullptr;
decltype(sdk::PF_InteractCallbacks::add_param) hostsAddParam = nullptr;

sdk::PF_Err RecordAddParam(sdk::PF_ProgPtr effectRef, std::int32_t index, sdk::PF_ParamDef* def) {
    appendedAt->push_back(index);
    return hostsAddParam(effectRef, index, def);
}

TEST(Parameters, AreAppendedOneAfterTheOther) {
    std::vector<std::int32_t> places;
    appendedAt = &places;
    headless::HostSettings settings;
    settings.adjustInData = [](sdk::PF_InData& inData) {
        if (inData.inter.add_param != RecordAddParam) {
            hostsAddParam = inData.inter.add_param;
            inData.inter.add_param = RecordAddParam;
        }
    };
    const auto host = ReadyHost(settings);
    EXPECT_EQ(places, std::vector<std::int32_t>(30, -1));
}

TEST(Parameters, RegistrationStopsAtTheFirstThatTheHostRefuses) {
    for (std::uint64_t nth = 1; nth <= 30; ++nth) {
        SCOPED_TRACE(nth);
        Host host(Effect());
        host.globalSetup();
        host.resetCalls();
        const auto code = static_cast<sdk::PF_Err>(600 + nth);
        host.faults().fail(Slot::kAddParam, nth, code);
        const CommandResult result = host.paramsSetup();
        EXPECT_EQ(result.error, code);
        EXPECT_TRUE(result.leaks.empty()) << result.leaks;
        EXPECT_EQ(host.calls()[Slot::kAddParam], nth);
        EXPECT_NE(result.out.num_params, kParameterCount);
    }
}

TEST(Parameters, IdsAreUnique) {
    const auto host = ReadyHost();
    std::vector<std::int32_t> ids;
    for (std::int32_t index = 1; index < kParameterCount; ++index) {
        ids.push_back(host->parameter(index).id());
    }
    std::sort(ids.begin(), ids.end());
    EXPECT_EQ(std::adjacent_find(ids.begin(), ids.end()), ids.end());
}

}  // namespace
}  // namespace vireon::conformance
