#include "tools/vireon/commands/describe.h"

#include <cstdio>
#include <map>
#include <string>

#include <nlohmann/json.hpp>

#include "tools/vireon/commands/common.h"
#include "tools/vireon/flag_names.h"
#include "tools/vireon/parameter_options.h"

namespace vireon::tool {

using headless::Description;
using headless::EffectVersion;
using headless::ParameterDescription;

namespace {

std::string VersionText(const EffectVersion& version) {
    std::string text = std::to_string(version.major) + "." + std::to_string(version.minor) + "." +
                       std::to_string(version.bugFix);
    if (version.stage != sdk::PF_Stage_RELEASE || version.build != 0) {
        text += " (" + StageName(version.stage) + ", build " + std::to_string(version.build) + ")";
    }
    return text;
}

/// The about text begins with the effect's name and a full stop.
std::string NameOf(const Description& description) {
    return description.about.substr(0, description.about.find('.'));
}

std::string Joined(const std::vector<std::string>& texts) {
    std::string joined;
    for (const std::string& text : texts) {
        joined += (joined.empty() ? "" : ", ") + text;
    }
    return joined.empty() ? "none" : joined;
}

/// By index; layers have the key of --layer in place of an option.
std::map<std::int32_t, ParameterOption> OptionsByIndex(const Description& description) {
    std::map<std::int32_t, ParameterOption> options;
    for (const ParameterOption& option : MakeParameterOptions(description, {})) {
        options[option.parameter.index] = option;
    }
    return options;
}

nlohmann::ordered_json ParameterJson(const ParameterDescription& parameter) {
    nlohmann::ordered_json json;
    json["index"] = parameter.index;
    json["id"] = parameter.id;
    json["name"] = parameter.name;
    json["kind"] = KindName(parameter.kind);
    json["flags"] = parameter.flags;
    json["ui_flags"] = parameter.uiFlags;
    switch (parameter.kind) {
        case sdk::PF_Param_POPUP:
            json["choices"] = parameter.choices();
            json["default"] = parameter.defaultValue;
            break;
        case sdk::PF_Param_CHECKBOX:
            json["label"] = parameter.text;
            json["default"] = parameter.defaultValue != 0;
            break;
        case sdk::PF_Param_POINT:
            json["default_percent"] = {parameter.defaultValue, parameter.defaultY};
            break;
        case sdk::PF_Param_SLIDER:
        case sdk::PF_Param_FIX_SLIDER:
        case sdk::PF_Param_FLOAT_SLIDER:
            json["valid"] = {parameter.validMin, parameter.validMax};
            json["slider"] = {parameter.sliderMin, parameter.sliderMax};
            json["default"] = parameter.defaultValue;
            json["precision"] = parameter.precision;
            break;
        default: break;
    }
    return json;
}

void PrintJson(const Description& description, const std::string& plugin,
               const headless::WorkerClient& worker) {
    const EffectVersion version = description.version();
    nlohmann::ordered_json json;
    json["plugin"] = plugin;
    json["system"] = worker.system();
    json["simd"] = worker.simd();
    json["name"] = NameOf(description);
    json["about"] = description.about;
    json["version"] = {{"packed", description.packedVersion},
                       {"major", version.major},
                       {"minor", version.minor},
                       {"bug_fix", version.bugFix},
                       {"stage", StageName(version.stage)},
                       {"build", version.build}};
    json["out_flags"] = {{"value", description.outFlags},
                         {"names", OutFlagNames(description.outFlags)}};
    json["out_flags2"] = {{"value", description.outFlags2},
                          {"names", OutFlag2Names(description.outFlags2)}};
    json["parameters"] = nlohmann::ordered_json::array();
    for (const ParameterDescription& parameter : description.parameters) {
        json["parameters"].push_back(ParameterJson(parameter));
    }
    std::puts(json.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace).c_str());
}

void PrintText(const Description& description, const std::string& plugin,
               const headless::WorkerClient& worker) {
    std::printf("%s\n", NameOf(description).c_str());
    std::printf("  plug-in      %s (%s, %s)\n", plugin.c_str(), worker.system().c_str(),
                worker.simd().c_str());
    std::printf("  about        %s\n", description.about.c_str());
    std::printf("  version      %s, packed 0x%08X\n", VersionText(description.version()).c_str(),
                description.packedVersion);
    std::printf("  out flags    0x%08X  %s\n", description.outFlags,
                Joined(OutFlagNames(description.outFlags)).c_str());
    std::printf("  out flags 2  0x%08X  %s\n", description.outFlags2,
                Joined(OutFlag2Names(description.outFlags2)).c_str());
    std::printf("  parameters   %zu, the input layer included\n\n", description.parameters.size());
    std::printf("  index    id  kind          name                        values (default)\n");
    const auto options = OptionsByIndex(description);
    for (const ParameterDescription& parameter : description.parameters) {
        const std::string name = parameter.index == 0 ? "(input layer)" : parameter.name;
        std::string values;
        if (const auto found = options.find(parameter.index); found != options.end()) {
            values = found->second.valueHelp() + " (" + found->second.defaultHelp() + ")";
        }
        std::string line(256 + values.size() + name.size(), '\0');
        line.resize(static_cast<std::size_t>(std::snprintf(
            line.data(), line.size(), "  %5d %5d  %-12s  %-26s  %s", parameter.index, parameter.id,
            KindName(parameter.kind).c_str(), name.c_str(), values.c_str())));
        line.erase(line.find_last_not_of(' ') + 1);
        std::puts(line.c_str());
    }
}

}  // namespace

DescribeCommand::DescribeCommand(CLI::App& app)
    : command_(app.add_subcommand("describe", "Show what the effect tells a host about itself")) {
    AddPluginOptions(*command_, plugin_);
    command_->add_flag("--json", json_, "Print JSON");
}

void DescribeCommand::run() {
    headless::WorkerClient worker = StartWorker(plugin_);
    const Description description = Describe(worker);
    const std::string plugin = PluginPath(plugin_).string();
    if (json_) {
        PrintJson(description, plugin, worker);
    } else {
        PrintText(description, plugin, worker);
    }
}

}  // namespace vireon::tool
