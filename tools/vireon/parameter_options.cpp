#include "tools/vireon/parameter_options.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <set>
#include <system_error>

#include "tools/vireon/names.h"
#include "tools/vireon/text_file.h"
#include "tools/vireon/tool_error.h"

namespace vireon::tool {

using headless::ParameterDescription;
using headless::ParameterValue;

namespace {

bool IsSlider(const ParameterDescription& parameter) {
    return parameter.kind == sdk::PF_Param_FLOAT_SLIDER ||
           parameter.kind == sdk::PF_Param_FIX_SLIDER || parameter.kind == sdk::PF_Param_SLIDER;
}

bool HasValue(const ParameterDescription& parameter) {
    return IsSlider(parameter) || parameter.kind == sdk::PF_Param_ANGLE ||
           parameter.kind == sdk::PF_Param_CHECKBOX || parameter.kind == sdk::PF_Param_POPUP ||
           parameter.kind == sdk::PF_Param_POINT || parameter.kind == sdk::PF_Param_LAYER;
}

/// Separator lines of a popup cannot be chosen.
bool IsSeparator(const std::string& choice) {
    return choice.substr(0, 2) == "(-";
}

/// Bounds are stored as single floats and in fixed point; six digits show them as they were meant.
std::string NumberText(double value) {
    char text[32];
    const auto end = std::to_chars(text, text + sizeof text, value, std::chars_format::general, 6);
    return {text, end.ptr};
}

std::optional<double> ParseNumber(std::string_view text) {
    if (!text.empty() && text.front() == '+') {
        text.remove_prefix(1);
    }
    double value = 0;
    const auto end = std::from_chars(text.data(), text.data() + text.size(), value);
    if (end.ec != std::errc() || end.ptr != text.data() + text.size() || !std::isfinite(value)) {
        return std::nullopt;
    }
    return value;
}

[[noreturn]] void BadValue(const std::string& where, const std::string& text,
                           const std::string& wanted) {
    throw ToolError(kBadValue, where + ": " + Quoted(text) + " is not " + wanted);
}

std::vector<std::string> SelectableChoices(const ParameterDescription& parameter) {
    std::vector<std::string> choices = parameter.choices();
    std::erase_if(choices, IsSeparator);
    return choices;
}

double ParseSlider(const ParameterDescription& parameter, const std::string& text,
                   const std::string& where) {
    const std::string range =
        NumberText(parameter.validMin) + " to " + NumberText(parameter.validMax);
    const std::optional<double> value = ParseNumber(text);
    const bool whole = parameter.kind == sdk::PF_Param_SLIDER;
    if (!value || (whole && *value != std::trunc(*value))) {
        BadValue(where, text, (whole ? "a whole number from " : "a number from ") + range);
    }
    // The bounds are narrower types than the value; what is written like the bound is the bound.
    const double slack =
        1e-6 * std::max(std::abs(parameter.validMin), std::abs(parameter.validMax));
    if (*value < parameter.validMin - slack || *value > parameter.validMax + slack) {
        throw ToolError(kBadValue,
                        where + ": " + text + " is out of range; " + range + " is possible");
    }
    return *value;
}

double ParseAngle(const std::string& text, const std::string& where) {
    const std::optional<double> value = ParseNumber(text);
    if (!value) {
        BadValue(where, text, "a number of degrees");
    }
    return *value;
}

double ParseCheckbox(const std::string& text, const std::string& where) {
    static const std::set<std::string> on{"on", "yes", "true", "1"};
    static const std::set<std::string> off{"off", "no", "false", "0"};
    const std::string folded = FoldedText(text);
    if (on.contains(folded)) {
        return 1;
    }
    if (!off.contains(folded)) {
        BadValue(where, text, "on or off");
    }
    return 0;
}

double ParsePopup(const ParameterDescription& parameter, const std::string& text,
                  const std::string& where) {
    const std::vector<std::string> choices = parameter.choices();
    const std::string folded = FoldedText(text);
    std::vector<std::size_t> beginnings;
    for (std::size_t i = 0; i < choices.size(); ++i) {
        if (IsSeparator(choices[i])) {
            continue;
        }
        const std::string choice = FoldedText(choices[i]);
        if (choice == folded) {
            return static_cast<double>(i + 1);
        }
        if (!folded.empty() && choice.substr(0, folded.size()) == folded) {
            beginnings.push_back(i);
        }
    }
    if (beginnings.size() == 1) {
        return static_cast<double>(beginnings.front() + 1);
    }
    const std::vector<std::string> selectable = SelectableChoices(parameter);
    std::string message = where + ": there is no choice " + Quoted(text);
    const std::string suggestion = Suggestion(text, selectable);
    if (!suggestion.empty()) {
        message += suggestion;
    } else {
        message += "; possible are";
        for (const std::string& choice : selectable) {
            message += (&choice == &selectable.front() ? " " : ", ") + choice;
        }
    }
    throw ToolError(kUnknownName, message);
}

double ParseCoordinate(const std::string& where, const std::string& whole, std::string_view text,
                       std::int32_t size, std::int32_t downsample) {
    const bool percent = !text.empty() && text.back() == '%';
    const std::optional<double> value =
        ParseNumber(percent ? text.substr(0, text.size() - 1) : text);
    if (!value) {
        BadValue(where, whole, "a place X,Y in pixels or in percent of the picture");
    }
    // Percentages are of the picture at hand, as the effect's own default is.
    const std::int32_t present = (size + downsample - 1) / downsample;
    return percent ? *value / 100.0 * present : *value / downsample;
}

ParameterValue ParsePoint(const std::string& text, const FrameSize& frame,
                          const std::string& where) {
    const std::size_t comma = text.find(',');
    if (comma == std::string::npos) {
        BadValue(where, text, "a place X,Y in pixels or in percent of the picture");
    }
    const std::string_view view = text;
    return {ParseCoordinate(where, text, view.substr(0, comma), frame.width, frame.downsample),
            ParseCoordinate(where, text, view.substr(comma + 1), frame.height, frame.downsample)};
}

/// "mask" for "Mask Layer".
std::string LayerKey(const std::string& name) {
    const std::string kebab = KebabName(name);
    const std::string suffix = "-layer";
    return kebab.size() > suffix.size() && kebab.ends_with(suffix)
               ? kebab.substr(0, kebab.size() - suffix.size())
               : kebab;
}

std::string FreeName(const ParameterOption& option, const std::set<std::string>& taken) {
    std::string name = option.option;
    if (!name.empty() && !taken.contains(name)) {
        return name;
    }
    const std::string group = KebabName(option.group);
    if (!group.empty() && !name.empty()) {
        name = group + "-" + name;
    } else if (name.empty()) {
        name = "parameter";
    }
    if (!taken.contains(name)) {
        return name;
    }
    return name + "-" + std::to_string(option.parameter.index);
}

}  // namespace

bool ParameterOption::isLayer() const {
    return parameter.kind == sdk::PF_Param_LAYER;
}

std::string ParameterOption::valueHelp() const {
    switch (parameter.kind) {
        case sdk::PF_Param_CHECKBOX: return "on or off";
        case sdk::PF_Param_POINT: return "X,Y in pixels at full resolution or in percent";
        case sdk::PF_Param_ANGLE: return "degrees";
        case sdk::PF_Param_LAYER: return "picture file";
        case sdk::PF_Param_POPUP: {
            std::string text;
            for (const std::string& choice : SelectableChoices(parameter)) {
                text += (text.empty() ? "" : ", ") + choice;
            }
            return text;
        }
        default: return NumberText(parameter.validMin) + " to " + NumberText(parameter.validMax);
    }
}

std::string ParameterOption::defaultHelp() const {
    switch (parameter.kind) {
        case sdk::PF_Param_CHECKBOX: return parameter.defaultValue != 0 ? "on" : "off";
        case sdk::PF_Param_POINT:
            return NumberText(parameter.defaultValue) + "%," + NumberText(parameter.defaultY) + "%";
        case sdk::PF_Param_LAYER: return "none";
        case sdk::PF_Param_POPUP: {
            const std::vector<std::string> choices = parameter.choices();
            const auto at = static_cast<std::size_t>(parameter.defaultValue);
            return at >= 1 && at <= choices.size() ? choices[at - 1]
                                                   : NumberText(parameter.defaultValue);
        }
        default: return NumberText(parameter.defaultValue);
    }
}

std::vector<ParameterOption> MakeParameterOptions(const headless::Description& description,
                                                  const std::vector<std::string>& taken) {
    std::vector<ParameterOption> options;
    std::set<std::string> names(taken.begin(), taken.end());
    std::set<std::string> layerKeys;
    std::vector<std::string> groups;
    for (const ParameterDescription& parameter : description.parameters) {
        if (parameter.kind == sdk::PF_Param_GROUP_START) {
            groups.push_back(parameter.name);
        } else if (parameter.kind == sdk::PF_Param_GROUP_END && !groups.empty()) {
            groups.pop_back();
        }
        if (parameter.index == 0 || !HasValue(parameter)) {
            continue;
        }
        ParameterOption option{{}, parameter, groups.empty() ? std::string() : groups.back()};
        std::set<std::string>& known = option.isLayer() ? layerKeys : names;
        option.option = option.isLayer() ? LayerKey(parameter.name) : KebabName(parameter.name);
        option.option = FreeName(option, known);
        known.insert(option.option);
        options.push_back(std::move(option));
    }
    return options;
}

ParameterValue ParseValue(const ParameterOption& option, const std::string& text,
                          const FrameSize& frame) {
    return ParseValue(option, text, frame, "--" + option.option);
}

ParameterValue ParseValue(const ParameterOption& option, const std::string& text,
                          const FrameSize& frame, const std::string& where) {
    switch (option.parameter.kind) {
        case sdk::PF_Param_CHECKBOX: return {ParseCheckbox(text, where), 0};
        case sdk::PF_Param_POPUP: return {ParsePopup(option.parameter, text, where), 0};
        case sdk::PF_Param_POINT: return ParsePoint(text, frame, where);
        case sdk::PF_Param_ANGLE: return {ParseAngle(text, where), 0};
        default: return {ParseSlider(option.parameter, text, where), 0};
    }
}

}  // namespace vireon::tool
