#include "tools/vireon/commands/presets.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>

#include <nlohmann/json.hpp>

#include "tools/vireon/commands/common.h"
#include "tools/vireon/parameter_options.h"
#include "tools/vireon/preset.h"
#include "tools/vireon/preset_folder.h"
#include "tools/vireon/tool_error.h"

namespace vireon::tool {

using Json = nlohmann::ordered_json;

namespace {

// Only to hold a preset against an effect: no value depends on the size but places.
constexpr FrameSize kAnyFrame{1920, 1080, 1};

/// Whole numbers without a decimal point, as people write them.
Json NumberJson(double number) {
    constexpr double kLargest = 1e9;
    if (number == std::trunc(number) && std::abs(number) <= kLargest) {
        return static_cast<std::int64_t>(number);
    }
    return number;
}

Json ValueJson(const JsonValue& value) {
    switch (value.kind) {
        case JsonValue::Kind::kBool: return value.boolean;
        case JsonValue::Kind::kNumber: return NumberJson(value.number);
        case JsonValue::Kind::kText: return value.text;
        case JsonValue::Kind::kList: {
            Json list = Json::array();
            for (const JsonValue& item : value.items) {
                list.push_back(ValueJson(item));
            }
            return list;
        }
        default: return nullptr;
    }
}

Json PresetJson(const std::string& id, const Preset& preset) {
    Json json;
    json["preset"] = id;
    json["name"] = preset.name;
    json["description"] = preset.description;
    json["for"] = preset.purpose;
    json["height"] = preset.height ? NumberJson(*preset.height) : Json(nullptr);
    json["file"] = preset.path.string();
    json["parameters"] = Json::object();
    for (const auto& [name, value] : preset.parameters.members) {
        json["parameters"][name] = ValueJson(value);
    }
    return json;
}

void PrintJson(const Json& json) {
    std::puts(json.dump(2, ' ', false, Json::error_handler_t::replace).c_str());
}

}  // namespace

PresetsCommand::PresetsCommand(CLI::App& app)
    : command_(app.add_subcommand("presets", "List the looks of --preset, or show one")) {
    command_->add_option("NAME", preset_, "Preset to show: its name or its file")->type_name("");
    AddPluginOptions(*command_, plugin_);
    command_->add_flag("--json", json_, "Print JSON");
    command_->footer(
        "Presets are files NAME.json in the folder \"presets\" beside this program and in the\n"
        "folder that the environment variable VIREON_PRESETS names, which comes first.");
}

void PresetsCommand::run() {
    if (preset_.empty()) {
        list();
    } else {
        show();
    }
}

void PresetsCommand::list() const {
    const std::vector<PresetFile> files = ListPresets(PresetFolders());
    std::size_t width = 0;
    for (const PresetFile& file : files) {
        width = std::max(width, file.name.size());
    }
    Json all = Json::array();
    int faults = 0;
    std::string firstFault;
    for (const PresetFile& file : files) {
        std::string text;
        try {
            const Preset preset = ReadPreset(file.path);
            text = preset.description.empty() ? preset.name : preset.description;
            all.push_back(PresetJson(file.name, preset));
        } catch (const ToolError& error) {
            text = "(cannot be read)";
            firstFault = firstFault.empty() ? error.what() : firstFault;
            ++faults;
        }
        if (!json_) {
            std::printf("%-*s  %s\n", static_cast<int>(width), file.name.c_str(), text.c_str());
        }
    }
    if (json_) {
        PrintJson(all);
    }
    if (faults > 0) {
        throw ToolError(
            kInputUnreadable,
            faults == 1 ? firstFault
                        : std::to_string(faults) + " presets cannot be read, first: " + firstFault);
    }
}

void PresetsCommand::show() const {
    const Preset preset = ReadPreset(FindPreset(preset_, PresetFolders()));
    headless::WorkerClient worker = StartWorker(plugin_);
    PresetValues(preset, MakeParameterOptions(Describe(worker), {}), kAnyFrame);
    const std::string id = preset.path.stem().string();
    if (json_) {
        PrintJson(PresetJson(id, preset));
        return;
    }
    std::printf("%s (%s)\n", preset.name.c_str(), id.c_str());
    if (!preset.description.empty()) {
        std::printf("  %s\n", preset.description.c_str());
    }
    if (!preset.purpose.empty()) {
        std::printf("  for %s\n", preset.purpose.c_str());
    }
    if (preset.height) {
        std::printf("  made for %s lines; radii and intensity follow the picture's height\n",
                    NumberJson(*preset.height).dump().c_str());
    }
    std::printf("  file %s\n\n", preset.path.c_str());
    for (const auto& [name, value] : preset.parameters.members) {
        const std::string text =
            value.kind == JsonValue::Kind::kText ? value.text : ValueJson(value).dump();
        std::printf("  %-24s %s\n", name.c_str(), text.c_str());
    }
}

}  // namespace vireon::tool
