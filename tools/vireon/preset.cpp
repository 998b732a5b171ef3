#include "tools/vireon/preset.h"

#include <algorithm>
#include <charconv>
#include <cstddef>

#include "tools/vireon/names.h"
#include "tools/vireon/text_file.h"
#include "tools/vireon/tool_error.h"

namespace vireon::tool {

using headless::ParameterValue;
using Kind = JsonValue::Kind;

namespace {

constexpr std::size_t kMaxBytes = 1u << 20;
constexpr double kMaxHeight = 30000;

/// File, line and name of a value, as messages begin.
std::string Where(const std::filesystem::path& path, const JsonValue& value,
                  const std::string& name) {
    return path.string() + ": line " + std::to_string(value.line) + ": " + Quoted(name);
}

std::string TextField(const std::filesystem::path& path, const JsonValue& file,
                      const std::string& name) {
    const JsonValue* const field = file.member(name);
    if (field == nullptr) {
        return {};
    }
    if (field->kind != Kind::kText) {
        throw ToolError(kBadValue,
                        Where(path, *field, name) + " wants a text, not " + field->kindName());
    }
    // What is printed as one line must be one.
    std::string text = field->text;
    std::replace_if(
        text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 0x20; }, ' ');
    return text;
}

std::optional<double> HeightField(const std::filesystem::path& path, const JsonValue& file) {
    const JsonValue* const field = file.member("height");
    if (field == nullptr) {
        return std::nullopt;
    }
    if (field->kind != Kind::kNumber || !(field->number >= 1 && field->number <= kMaxHeight)) {
        throw ToolError(
            kBadValue, Where(path, *field, "height") + " wants a number of pixels from 1 to 30000");
    }
    return field->number;
}

void RejectUnknownFields(const std::filesystem::path& path, const JsonValue& file) {
    static const std::vector<std::string> known{"name", "description", "for", "height",
                                                "parameters"};
    for (const auto& [name, value] : file.members) {
        if (std::find(known.begin(), known.end(), name) == known.end()) {
            const std::string suggestion = Suggestion(name.substr(0, 80), known);
            throw ToolError(
                kUnknownName,
                Where(path, value, name) + " is nothing that a preset has" +
                    (suggestion.empty() ? "; the effect's parameters go into \"parameters\""
                                        : suggestion));
        }
    }
}

/// What a parameter's value is multiplied by for a picture `scale` times as high as the preset's.
double FactorFor(const ParameterOption& option, double scale) {
    const std::string& name = option.parameter.name;
    if (name == "Glow Radius" || (option.group == "Mask" && name == "Radius")) {
        return scale;
    }
    // Every bright pixel adds a stamp, and the same light has scale x scale as many of them.
    return name == "Glow Intensity" ? 1.0 / (scale * scale) : 1.0;
}

std::string NumberText(double value) {
    char text[40];
    const auto end = std::to_chars(text, text + sizeof text, value);
    return {text, end.ptr};
}

const ParameterOption& FindParameter(const std::string& where, const std::string& name,
                                     const std::vector<ParameterOption>& options) {
    std::vector<std::string> names;
    const ParameterOption* found = nullptr;
    for (const ParameterOption& option : options) {
        if (!option.isLayer()) {
            names.push_back(option.parameter.name);
        }
        if (option.parameter.name != name) {
            continue;
        }
        if (found != nullptr) {
            throw ToolError(kUnknownName, where + " is the name of several parameters");
        }
        found = &option;
    }
    if (found == nullptr) {
        throw ToolError(kUnknownName, where + " is no parameter of the effect" +
                                          Suggestion(name.substr(0, 80), names) +
                                          "; vireon describe lists them");
    }
    if (found->isLayer()) {
        throw ToolError(kBadValue, where +
                                       " is a layer, which a preset cannot hold: give it with "
                                       "--layer " +
                                       found->option + "=FILE");
    }
    return *found;
}

/// The value as the command line would have it; throws when its type is not the parameter's.
std::string OptionText(const std::string& where, const ParameterOption& option,
                       const JsonValue& value) {
    const auto wants = [&](const std::string& wanted) {
        return ToolError(kBadValue, where + " wants " + wanted + ", not " + value.kindName());
    };
    switch (option.parameter.kind) {
        case sdk::PF_Param_CHECKBOX:
            if (value.kind != Kind::kBool) throw wants("true or false");
            return value.boolean ? "on" : "off";
        case sdk::PF_Param_POPUP:
            if (value.kind != Kind::kText) throw wants("the text of one of its choices");
            return value.text;
        case sdk::PF_Param_POINT:
            if (value.kind != Kind::kList || value.items.size() != 2 ||
                value.items[0].kind != Kind::kNumber || value.items[1].kind != Kind::kNumber) {
                throw ToolError(kBadValue,
                                where +
                                    " wants a list [X, Y] of two numbers, percent of the "
                                    "picture's width and height");
            }
            return NumberText(value.items[0].number) + "%," + NumberText(value.items[1].number) +
                   "%";
        default:
            if (value.kind != Kind::kNumber) throw wants("a number");
            return NumberText(value.number);
    }
}

/// Popups take beginnings and other spellings on the command line; a file that is kept says the
/// whole, so that a choice that comes later cannot change what it means.
void RequireWholeChoice(const std::string& where, const ParameterOption& option,
                        const std::string& text, const ParameterValue& value) {
    const std::vector<std::string> choices = option.parameter.choices();
    const std::string& chosen = choices.at(static_cast<std::size_t>(value.x) - 1);
    if (chosen != text) {
        throw ToolError(kUnknownName, where + ": there is no choice " + Quoted(text) +
                                          " (did you mean " + chosen + "?)");
    }
}

ParameterValue ValueOf(const Preset& preset, const std::string& where,
                       const ParameterOption& option, const JsonValue& value,
                       const FrameSize& frame) {
    const std::string text = OptionText(where, option, value);
    ParameterValue parsed = ParseValue(option, text, frame, where);
    if (option.parameter.kind == sdk::PF_Param_POPUP) {
        RequireWholeChoice(where, option, text, parsed);
    }
    if (preset.height) {
        const double factor = FactorFor(option, frame.height / *preset.height);
        if (factor != 1.0) {
            parsed.x =
                std::clamp(parsed.x * factor, option.parameter.validMin, option.parameter.validMax);
        }
    }
    return parsed;
}

}  // namespace

Preset ReadPreset(const std::filesystem::path& path) {
    const JsonValue file = ParseJson(ReadTextFile(path, kMaxBytes), path);
    if (file.kind != Kind::kObject) {
        throw ToolError(kInputUnreadable, path.string() + ": this is no preset: it holds " +
                                              file.kindName() + ", not an object");
    }
    RejectUnknownFields(path, file);
    Preset preset;
    preset.path = path;
    preset.name = TextField(path, file, "name");
    if (preset.name.empty()) {
        preset.name = path.stem().string();
    }
    preset.description = TextField(path, file, "description");
    preset.purpose = TextField(path, file, "for");
    preset.height = HeightField(path, file);
    const JsonValue* const parameters = file.member("parameters");
    if (parameters == nullptr) {
        throw ToolError(kInputUnreadable,
                        path.string() + ": this is no preset: it has no \"parameters\"");
    }
    if (parameters->kind != Kind::kObject) {
        throw ToolError(kBadValue, Where(path, *parameters, "parameters") +
                                       " wants an object, not " + parameters->kindName());
    }
    preset.parameters = *parameters;
    return preset;
}

std::map<std::int32_t, ParameterValue> PresetValues(const Preset& preset,
                                                    const std::vector<ParameterOption>& options,
                                                    const FrameSize& frame) {
    std::map<std::int32_t, ParameterValue> values;
    for (const auto& [name, value] : preset.parameters.members) {
        const std::string where = Where(preset.path, value, name);
        const ParameterOption& option = FindParameter(where, name, options);
        values[option.parameter.index] = ValueOf(preset, where, option, value, frame);
    }
    return values;
}

}  // namespace vireon::tool
