#include "tests/pictures/golden_frame.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <optional>
#include <stdexcept>
#include <utility>

#include "headless/remote/child_process.h"
#include "samples/catalogue.h"
#include "samples/scene_file.h"
#include "tests/pictures/reference_file.h"
#include "tools/vireon/exit_codes.h"
#include "tools/vireon/parameter_options.h"
#include "tools/vireon/picture_file.h"
#include "tools/vireon/pixel_aspect.h"
#include "tools/vireon/samples.h"
#include "tools/vireon/tool_error.h"

namespace vireon::pictures {
namespace {

using headless::Picture;
using headless::RenderJob;
using tool::ParameterOption;

const ParameterOption& FindOption(const std::vector<ParameterOption>& options,
                                  const std::string& name, bool layer) {
    const auto found = std::find_if(options.begin(), options.end(), [&](const auto& option) {
        return option.option == name && option.isLayer() == layer;
    });
    if (found == options.end()) {
        throw tool::ToolError(tool::kUnknownName, "the effect has no parameter \"" + name + "\"");
    }
    return *found;
}

std::string CommandLine(const std::filesystem::path& program,
                        const std::vector<std::string>& arguments) {
    std::string line = ShellWord(program.string());
    for (const std::string& argument : arguments) line += " " + ShellWord(argument);
    return line;
}

}  // namespace

void RunToEnd(const std::filesystem::path& program, const std::vector<std::string>& arguments) {
    headless::ChildProcess child({program, arguments, {}});
    child.input.close();
    const auto status = child.waitFor(std::chrono::minutes(2));
    if (status && !status->bySignal && status->code == 0) return;
    // The little that our programs say fits into the pipe.
    std::array<std::uint8_t, 4096> bytes;
    const auto count = headless::ReadSome(child.errors, bytes);
    throw std::runtime_error(
        CommandLine(program, arguments) + ": " +
        (status ? status->text() : std::string("does not end")) + ": " +
        std::string(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(count.value_or(0))));
}

std::string ShellWord(const std::string& word) {
    const bool plain = !word.empty() && word.find_first_not_of(
                                            "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ"
                                            "0123456789-_./=:,+%@") == std::string::npos;
    if (plain) return word;
    std::string quoted = "'";
    for (const char c : word) {
        if (c == '\'') {
            quoted += "'\\''";
        } else {
            quoted += c;
        }
    }
    return quoted + "'";
}

std::string SceneFileName(const SceneInput& input, std::int32_t bits) {
    std::string name =
        input.scene + "-" + std::to_string(input.width) + "x" + std::to_string(input.height);
    if (input.frame) name += "-frame-" + std::to_string(*input.frame);
    if (bits == 16) name += "-16-bits";
    return name + (bits == 32 ? ".exr" : ".png");
}

std::vector<std::string> SceneArguments(const SceneInput& input, std::int32_t bits) {
    std::vector<std::string> arguments{input.scene, SceneFileName(input, bits),
                                       "--width",   std::to_string(input.width),
                                       "--height",  std::to_string(input.height)};
    if (input.frame) {
        arguments.insert(arguments.end(), {"--frame", std::to_string(*input.frame)});
    }
    if (bits == 16) arguments.insert(arguments.end(), {"--bits", "16"});
    return arguments;
}

std::vector<std::string> RenderArguments(const GoldenCase& golden, const std::string& output) {
    std::vector<std::string> arguments{"render", SceneFileName(golden.input, golden.bits), output,
                                       "--depth", std::to_string(golden.bits)};
    if (golden.downsample != 1) {
        arguments.insert(arguments.end(), {"--downsample", std::to_string(golden.downsample)});
    }
    for (const auto& [option, value] : golden.parameters) {
        arguments.insert(arguments.end(), {"--" + option, value});
    }
    for (const auto& [layer, input] : golden.layers) {
        arguments.insert(arguments.end(),
                         {"--layer", layer + "=" + SceneFileName(input, golden.bits)});
    }
    return arguments;
}

std::vector<std::string> CommandsFor(const GoldenCase& golden, const GoldenPrograms& programs,
                                     const std::filesystem::path& folder) {
    std::vector<std::string> lines{"cd " + ShellWord(folder.string())};
    const auto draw = [&](const SceneInput& input) {
        lines.push_back(CommandLine(programs.scenes, SceneArguments(input, golden.bits)));
    };
    draw(golden.input);
    for (const auto& layer : golden.layers) draw(layer.second);
    std::vector<std::string> render =
        RenderArguments(golden, ReferenceName(golden.name + "-again", golden.bits));
    if (!programs.plugin.empty()) {
        render.insert(render.end(), {"--plugin", programs.plugin.string()});
    }
    const std::string level =
        programs.level.empty() ? "" : "VIREON_GLOW_SIMD=" + ShellWord(programs.level) + " ";
    lines.push_back(level + CommandLine(programs.vireon, render));
    return lines;
}

SceneFolder::SceneFolder(std::filesystem::path folder) : folder_(std::move(folder)) {
    std::filesystem::create_directories(folder_);
}

std::filesystem::path SceneFolder::fileOf(const SceneInput& input, std::int32_t bits) {
    const std::string name = SceneFileName(input, bits);
    const std::filesystem::path file = folder_ / name;
    if (drawn_.contains(name)) return file;
    const scenes::Scene* const scene = scenes::FindScene(input.scene);
    const std::int32_t frame = input.frame.value_or(0);
    if (scene == nullptr || frame < 0 || frame >= scene->frames) {
        throw std::runtime_error("there is no scene \"" + input.scene + "\" with a frame " +
                                 std::to_string(frame));
    }
    const scenes::FileDepth depth = scenes::DepthFor(name, bits);
    const auto range = depth == scenes::FileDepth::kFloat ? scenes::LightRange::kOverbright
                                                          : scenes::LightRange::kDisplay;
    scenes::WritePicture(scene->draw({input.width, input.height, range, frame}), scene->hasAlpha,
                         depth, file.string());
    drawn_.insert(name);
    return file;
}

RenderJob MakeJob(const GoldenCase& golden, const headless::Description& description,
                  SceneFolder& scenes) {
    const auto picture = [&](const SceneInput& input) {
        return tool::ReadPictureFile(scenes.fileOf(input, golden.bits));
    };
    const auto reduced = [&](const tool::PictureFile& file) {
        return tool::Reduced(tool::ToHostPicture(file, golden.bits), golden.downsample);
    };
    const tool::PictureFile source = picture(golden.input);

    RenderJob job;
    job.bits = golden.bits;
    const auto denominator = static_cast<std::uint32_t>(golden.downsample);
    job.downsampleX = {1, denominator};
    job.downsampleY = {1, denominator};
    job.pixelAspect = tool::PixelAspectRatio(source.pixelAspect);
    job.fullWidth = source.width;
    job.fullHeight = source.height;
    job.input = reduced(source);

    const std::vector<ParameterOption> options = tool::MakeParameterOptions(description, {});
    const tool::FrameSize frame{source.width, source.height, golden.downsample};
    for (const ParameterOption& option : options) {
        if (option.parameter.kind != sdk::PF_Param_POINT) continue;
        job.values[option.parameter.index] = ParseValue(option, option.defaultHelp(), frame);
    }
    for (const auto& [name, text] : golden.parameters) {
        const ParameterOption& option = FindOption(options, name, false);
        job.values[option.parameter.index] = ParseValue(option, text, frame);
    }
    for (const auto& [name, input] : golden.layers) {
        job.layers[FindOption(options, name, true).parameter.index] = reduced(picture(input));
    }
    return job;
}

}  // namespace vireon::pictures
