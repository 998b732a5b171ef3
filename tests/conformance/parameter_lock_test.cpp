#include <gtest/gtest.h>

#include <array>
#include <charconv>
#include <cstddef>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

#include "tests/conformance/support.h"

namespace vireon::conformance {
namespace {

using headless::Parameter;

template <typename Number>
std::string Text(Number number) {
    std::array<char, 40> digits{};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
    return {digits.data(), end};
}

std::string Fixed(sdk::PF_Fixed value) {
    return Text(static_cast<double>(value) / sdk::kFixedOne);
}

/// Ranges, default, value and precision of a slider.
std::string Slider(const std::array<std::string, 6>& numbers, std::int16_t precision) {
    return " valid=" + numbers[0] + ".." + numbers[1] + " slider=" + numbers[2] + ".." +
           numbers[3] + " default=" + numbers[4] + " value=" + numbers[5] +
           " precision=" + Text(precision);
}

/// What is special to the parameter's kind, the kind's name first.
std::string KindText(const Parameter& parameter) {
    const sdk::PF_ParamDefUnion& u = parameter.registered.u;
    switch (parameter.kind()) {
        case sdk::PF_Param_LAYER: return "layer default=" + Text(u.ld.dephault);
        case sdk::PF_Param_FLOAT_SLIDER:
            return "float-slider" +
                   Slider({Text(u.fs_d.valid_min), Text(u.fs_d.valid_max), Text(u.fs_d.slider_min),
                           Text(u.fs_d.slider_max), Text(u.fs_d.dephault), Text(u.fs_d.value)},
                          u.fs_d.precision);
        case sdk::PF_Param_FIX_SLIDER:
            return "fixed-slider" +
                   Slider({Fixed(u.fd.valid_min), Fixed(u.fd.valid_max), Fixed(u.fd.slider_min),
                           Fixed(u.fd.slider_max), Fixed(u.fd.dephault), Fixed(u.fd.value)},
                          u.fd.precision);
        case sdk::PF_Param_CHECKBOX:
            return "checkbox default=" + Text(static_cast<int>(u.bd.dephault)) +
                   " value=" + Text(u.bd.value) + " label=\"" + parameter.text + "\"";
        case sdk::PF_Param_POINT:
            return "point default=" + Fixed(u.td.x_dephault) + "," + Fixed(u.td.y_dephault) +
                   " value=" + Fixed(u.td.x_value) + "," + Fixed(u.td.y_value) +
                   " restricted=" + Text(static_cast<int>(u.td.restrict_bounds));
        case sdk::PF_Param_POPUP:
            return "popup choices=" + Text(u.pd.num_choices) + " default=" + Text(u.pd.dephault) +
                   " value=" + Text(u.pd.value) + " \"" + parameter.text + "\"";
        case sdk::PF_Param_GROUP_START: return "group-start";
        case sdk::PF_Param_GROUP_END: return "group-end";
        default: return "kind-" + Text(parameter.kind());
    }
}

/// The parameters that the effect registers in a host, one a line.
std::vector<std::string> RegisteredLines(const std::string& heading, std::int32_t application) {
    headless::HostSettings settings;
    settings.applicationId = application;
    const auto host = ReadyHost(settings);
    std::vector<std::string> lines{"# " + heading};
    for (std::int32_t index = 1; index < host->parameterCount(); ++index) {
        const Parameter& parameter = host->parameter(index);
        lines.push_back(Text(index) + " id=" + Text(parameter.id()) + " \"" + parameter.name() +
                        "\" flags=" + Text(parameter.registered.flags) +
                        " ui=" + Text(parameter.registered.ui_flags) + " " + KindText(parameter));
    }
    return lines;
}

std::vector<std::string> AllLines() {
    std::vector<std::string> lines = RegisteredLines("All hosts but one", sdk::kHostAfterEffects);
    const std::vector<std::string> fixed =
        RegisteredLines("The host that has no float sliders", sdk::kHostFinalCutPro);
    lines.insert(lines.end(), fixed.begin(), fixed.end());
    return lines;
}

std::vector<std::string> ReadLines(const std::string& file) {
    std::ifstream stream(file);
    std::vector<std::string> lines;
    for (std::string line; std::getline(stream, line);) {
        // A checkout may have put the other system's line ends in.
        if (!line.empty() && line.back() == '\r') {
            line.pop_back();
        }
        lines.push_back(line);
    }
    return lines;
}

/// With VIREON_WRITE_PARAMETER_LOCK set to a file name, that file is written first.
TEST(ParameterLock, NothingThatSavedProjectsDependOnHasChanged) {
    const std::vector<std::string> lines = AllLines();
    const char* const target = std::getenv("VIREON_WRITE_PARAMETER_LOCK");
    if (target != nullptr && *target != '\0') {
        std::ofstream stream(target, std::ios::binary);
        for (const std::string& line : lines) {
            stream << line << '\n';
        }
        ASSERT_TRUE(stream.flush()) << target;
    }
    const std::vector<std::string> locked = ReadLines(VIREON_PARAMETER_LOCK);
    ASSERT_FALSE(locked.empty()) << "cannot read " << VIREON_PARAMETER_LOCK;
    const char* const why =
        "saved projects depend on the order, the ids, the kinds and the values of the parameters: "
        "with another list they open with other settings or not at all";
    ASSERT_EQ(lines.size(), locked.size()) << why;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        EXPECT_EQ(lines[i], locked[i]) << why;
    }
}

}  // namespace
}  // namespace vireon::conformance
