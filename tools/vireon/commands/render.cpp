#include "tools/vireon/commands/render.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <utility>

#include "tools/vireon/commands/common.h"
#include "tools/vireon/flag_names.h"
#include "tools/vireon/interruption.h"
#include "tools/vireon/names.h"
#include "tools/vireon/output_file.h"
#include "tools/vireon/picture_writer.h"
#include "tools/vireon/pixel_aspect.h"
#include "tools/vireon/preset_folder.h"
#include "tools/vireon/progress_line.h"
#include "tools/vireon/samples.h"
#include "tools/vireon/stage_folder.h"
#include "tools/vireon/stages.h"
#include "tools/vireon/tool_error.h"

namespace vireon::tool {

using headless::RenderJob;
using headless::RenderResult;

namespace {

constexpr std::int32_t kMaxDownsample = 64;

/// Breaks a text into lines of up to `width` characters at its blanks.
std::string Wrapped(const std::string& text, std::size_t width) {
    std::string wrapped;
    std::size_t lineBegin = 0;
    std::size_t begin = 0;
    while (begin < text.size()) {
        const std::size_t end = std::min(text.find(' ', begin), text.size());
        const std::size_t word = end - begin;
        if (wrapped.size() > lineBegin && wrapped.size() - lineBegin + 1 + word > width) {
            wrapped += '\n';
            lineBegin = wrapped.size();
        } else if (wrapped.size() > lineBegin) {
            wrapped += ' ';
        }
        wrapped += text.substr(begin, word);
        begin = end + 1;
    }
    return wrapped;
}

std::string OneLine(std::string text) {
    for (std::size_t at = text.find('\n'); at != std::string::npos; at = text.find('\n', at)) {
        text.replace(at, 1, "; ");
    }
    return text;
}

std::string FailureText(const RenderResult& result) {
    std::string text = "the effect ended with error " + std::to_string(result.error);
    const std::string name = ErrorName(result.error);
    if (!name.empty()) {
        text += " (" + name + ")";
    }
    if (!result.message.empty()) {
        text += ": " + result.message;
    }
    if (!result.violations.empty()) {
        text += "; " + result.violations;
    }
    return OneLine(text);
}

void CheckResult(const RenderResult& result) {
    if (result.error != 0) {
        throw ToolError(kEffectFailed, FailureText(result));
    }
    if (!result.violations.empty()) {
        throw ToolError(kEffectMisbehaved,
                        "the effect broke its host's rules and its frame was thrown away: " +
                            OneLine(result.violations));
    }
    if (result.output.pixels.empty()) {
        throw ToolError(kEffectFailed, "the effect gave no picture");
    }
}

}  // namespace

RenderCommand::RenderCommand(CLI::App& app)
    : command_(app.add_subcommand("render", "Render the effect on a picture")) {
    addStaticOptions();
}

void RenderCommand::addStaticOptions() {
    command_->allow_extras();
    command_->add_option("IN", input_, "Picture to render on")->type_name("");
    command_->add_option("OUT", output_, "Picture to write; its extension chooses the format")
        ->type_name("");
    AddPluginOptions(*command_, plugin_);
    command_
        ->add_option("--preset", presetText_,
                     "Take values from a preset: a name that vireon presets lists, or a file\n"
                     "(ends in .json or has a slash); options given beside it win")
        ->type_name("NAME");
    command_
        ->add_option("--depth", bits_,
                     "Bits a channel while rendering: 8, 16 or 32 (float)\n"
                     "(default: 8 for 8-bit files, 16 for 16-bit, 32 for half and float)")
        ->type_name("BITS");
    command_->add_flag("--half", half_, "Render at half resolution, like --downsample 2");
    command_
        ->add_option("--downsample", downsample_,
                     "Render at 1/N of the resolution, as a host's preview does")
        ->type_name("N");
    command_->add_flag("--draft", draft_, "Render at the host's draft quality");
    command_->add_option("--layer", layers_, "Picture for one of the effect's layers, listed below")
        ->type_name("NAME=FILE")
        ->allow_extra_args(false);
    command_
        ->add_option("--stages", stageFolder_,
                     "Write what each stage of the effect made into a folder, with a contact\n"
                     "sheet and a list; takes up to seven more renders")
        ->type_name("FOLDER");
    command_->add_flag("--quiet", quiet_, "No progress and no notes");
    command_->add_flag("--time", time_, "Print how long the frame took");
    command_->footer(
        "Colours are taken and written as they stand: no colour space is converted, and light is\n"
        "added in the encoding of the file. The effect works on straight colour; files that keep\n"
        "colour multiplied by alpha (EXR, most TIFF) are converted both ways. Exit codes: see\n"
        "vireon --help.");
}

void RenderCommand::addParameters(const std::vector<std::string>& arguments) {
    plugin_ = ScanPluginOptions(arguments);
    worker_ = StartWorker(plugin_);
    description_ = Describe(*worker_);

    constexpr std::size_t kHelpWidth = 68;
    std::string layerHelp;
    for (ParameterOption& option : MakeParameterOptions(description_, optionNames())) {
        GivenOption& given = parameters_.emplace_back();
        given.parameter = std::move(option);
        const ParameterOption& parameter = given.parameter;
        if (parameter.isLayer()) {
            layerHelp += (layerHelp.empty() ? "" : ", ") + parameter.option + " (" +
                         parameter.parameter.name + ")";
            continue;
        }
        const std::string help = parameter.parameter.name + ": " + parameter.valueHelp() +
                                 " (default " + parameter.defaultHelp() + ")";
        const std::string group =
            "Effect" + (parameter.group.empty() ? std::string() : ", " + parameter.group);
        given.handle =
            command_->add_option("--" + parameter.option, given.text, Wrapped(help, kHelpWidth))
                ->type_name("VALUE")
                ->group(group);
    }
    if (!layerHelp.empty()) {
        command_->get_option("--layer")->description("Picture for one of the effect's layers:\n" +
                                                     Wrapped(layerHelp, kHelpWidth));
    }
}

std::vector<std::string> RenderCommand::optionNames() const {
    std::vector<std::string> names;
    for (const CLI::Option* option : command_->get_options()) {
        for (const std::string& name : option->get_lnames()) {
            names.push_back(name);
        }
    }
    return names;
}

void RenderCommand::rejectUnknown() const {
    std::vector<std::string> extras = command_->remaining();
    std::erase(extras, "--");  // ends the options; the files behind it were taken
    for (const std::string& argument : extras) {
        if (argument.size() > 1 && argument.front() == '-') {
            const std::string name = argument.substr(0, argument.find('='));
            const std::string word =
                name.substr(std::min(name.find_first_not_of('-'), name.size()));
            throw ToolError(kUnknownName, "there is no option " + name +
                                              Suggestion(word, optionNames(), "--") +
                                              "; vireon render --help lists them");
        }
    }
    if (!extras.empty()) {
        throw ToolError(kBadCommandLine, "unexpected argument \"" + extras.front() +
                                             "\": one picture in and one out are wanted");
    }
    if (input_.empty() || output_.empty()) {
        throw ToolError(kBadCommandLine, "two files are wanted: vireon render IN OUT [OPTIONS]");
    }
}

void RenderCommand::checkSettings() {
    if (bits_ != 0 && bits_ != 8 && bits_ != 16 && bits_ != 32) {
        throw ToolError(kBadValue, "--depth: " + std::to_string(bits_) + " is not 8, 16 or 32");
    }
    if (downsample_ < 1 || downsample_ > kMaxDownsample) {
        throw ToolError(kBadValue, "--downsample: " + std::to_string(downsample_) +
                                       " is out of range; 1 to " + std::to_string(kMaxDownsample) +
                                       " is possible");
    }
    if (half_ && downsample_ != 1 && downsample_ != 2) {
        throw ToolError(kBadCommandLine, "--half and --downsample contradict each other");
    }
    if (half_) {
        downsample_ = 2;
    }
    if (command_->count("--preset") > 0) {
        preset_ = ReadPreset(FindPreset(presetText_, PresetFolders()));
    }
    CheckOutputFormat(output_);
    CheckOutputPlace(output_);
    checkStages();
}

void RenderCommand::checkStages() const {
    if (command_->count("--stages") == 0) {
        return;
    }
    if (stageFolder_.empty()) {
        throw ToolError(kBadValue, "--stages wants a folder");
    }
    std::vector<std::filesystem::path> others{input_, output_};
    for (const std::string& layer : layers_) {
        others.emplace_back(layer.substr(std::min(layer.find('=') + 1, layer.size())));
    }
    CheckStageFolder(stageFolder_, others);
}

void RenderCommand::note(const std::string& text) const {
    if (!quiet_) {
        std::fprintf(stderr, "vireon: note: %s\n", text.c_str());
    }
}

std::vector<ParameterOption> RenderCommand::parameterOptions() const {
    std::vector<ParameterOption> options;
    for (const GivenOption& given : parameters_) {
        options.push_back(given.parameter);
    }
    return options;
}

void RenderCommand::fillValues(RenderJob& job, const FrameSize& frame) const {
    if (preset_) {
        job.values = PresetValues(*preset_, parameterOptions(), frame);
    }
    for (const GivenOption& given : parameters_) {
        const ParameterOption& parameter = given.parameter;
        if (given.handle != nullptr && given.handle->count() > 0) {
            job.values[parameter.parameter.index] = ParseValue(parameter, given.text, frame);
        } else if (parameter.parameter.kind == sdk::PF_Param_POINT &&
                   !job.values.contains(parameter.parameter.index)) {
            // The registered percentage, of the same size as one that is given.
            job.values[parameter.parameter.index] =
                ParseValue(parameter, parameter.defaultHelp(), frame);
        }
    }
}

void RenderCommand::fillLayers(RenderJob& job) {
    std::vector<std::string> keys;
    for (const GivenOption& given : parameters_) {
        if (given.parameter.isLayer()) {
            keys.push_back(given.parameter.option);
        }
    }
    for (const std::string& layer : layers_) {
        const std::size_t equals = layer.find('=');
        if (equals == std::string::npos) {
            throw ToolError(kBadCommandLine,
                            "--layer: \"" + layer + "\" has not the form NAME=FILE");
        }
        const std::string key = KebabName(layer.substr(0, equals));
        const auto found =
            std::find_if(parameters_.begin(), parameters_.end(), [&key](const GivenOption& given) {
                return given.parameter.isLayer() && given.parameter.option == key;
            });
        if (found == parameters_.end()) {
            std::string possible;
            for (const std::string& known : keys) {
                possible += (possible.empty() ? "" : ", ") + known;
            }
            const std::string suggestion = Suggestion(key, keys);
            throw ToolError(kUnknownName,
                            "--layer: the effect has no layer \"" + layer.substr(0, equals) + "\"" +
                                (suggestion.empty() ? "; it has " + possible : suggestion));
        }
        const PictureFile file = ReadPictureFile(layer.substr(equals + 1));
        for (const std::string& text : file.notes) {
            note(text);
        }
        job.layers[found->parameter.parameter.index] =
            Reduced(ToHostPicture(file, job.bits), downsample_);
    }
}

RenderJob RenderCommand::makeJob(const PictureFile& source) {
    RenderJob job;
    job.bits = bits_ != 0 ? bits_ : source.naturalBits();
    const bool renders16 = (description_.outFlags & sdk::PF_OutFlag_DEEP_COLOR_AWARE) != 0;
    const bool renders32 = (description_.outFlags2 & sdk::PF_OutFlag2_FLOAT_COLOR_AWARE) != 0;
    if ((job.bits == 16 && !renders16) || (job.bits == 32 && !renders32)) {
        throw ToolError(kBadValue, "the effect does not render " + std::to_string(job.bits) +
                                       " bits a channel; choose another --depth");
    }
    job.smart = (description_.outFlags2 & sdk::PF_OutFlag2_SUPPORTS_SMART_RENDER) != 0;
    job.quality = draft_ ? sdk::PF_Quality_LO : sdk::PF_Quality_HI;
    const auto denominator = static_cast<std::uint32_t>(downsample_);
    job.downsampleX = {1, denominator};
    job.downsampleY = {1, denominator};
    job.pixelAspect = PixelAspectRatio(source.pixelAspect);
    job.fullWidth = source.width;
    job.fullHeight = source.height;
    fillValues(job, {source.width, source.height, downsample_});
    fillLayers(job);
    job.input = Reduced(ToHostPicture(source, job.bits), downsample_);
    return job;
}

RenderResult RenderCommand::render(const RenderJob& job) {
    ProgressLine line(!quiet_);
    headless::RenderHooks hooks = InterruptibleHooks();
    hooks.progress = [&line](const headless::Progress& progress) {
        line.show(progress.current, progress.total);
    };
    try {
        return worker_->render(job, hooks);
    } catch (const headless::WorkerError& error) {
        throw ToToolError(error, "rendering");
    }
}

void RenderCommand::writeStages(const RenderJob& job, const headless::Picture& output,
                                const PictureFile& source) {
    std::vector<StagePicture> pictures;
    pictures.push_back({kSourceStage, "source", "the picture as the effect is given it", job.input,
                        /*isData=*/false});
    for (Stage& stage : StagesOf(job, parameterOptions())) {
        StopIfInterrupted();
        RenderResult result = render(stage.job);
        StopIfInterrupted();
        CheckResult(result);
        pictures.push_back({stage.file, stage.title, stage.text, std::move(result.output),
                            /*isData=*/true, stage.hasLightInAlpha});
    }
    pictures.push_back({kOutputStage, "output", "what the effect made of the frame", output,
                        /*isData=*/false});
    std::vector<std::string> notes;
    WriteStageFolder(stageFolder_, pictures, source, notes);
    for (const std::string& text : notes) {
        note(text);
    }
}

void RenderCommand::run() {
    using Clock = std::chrono::steady_clock;
    const Clock::time_point start = Clock::now();
    rejectUnknown();
    checkSettings();
    const PictureFile source = ReadPictureFile(input_);
    for (const std::string& text : source.notes) {
        note(text);
    }
    const RenderJob job = makeJob(source);
    StopIfInterrupted();
    const RenderResult result = render(job);
    StopIfInterrupted();
    CheckResult(result);
    if (!result.message.empty()) {
        note("the effect says: " + OneLine(result.message));
    }
    if (!stageFolder_.empty()) {
        writeStages(job, result.output, source);
    }
    std::vector<std::string> notes;
    WritePictureFile(output_, result.output, source, notes);
    for (const std::string& text : notes) {
        note(text);
    }
    if (time_) {
        const double whole = std::chrono::duration<double>(Clock::now() - start).count();
        std::printf("effect %.3f s (%s), whole frame %.3f s, peak of host memory %.1f MB\n",
                    result.seconds, worker_->simd().c_str(), whole,
                    static_cast<double>(result.peakBytes) / 1e6);
    }
}

}  // namespace vireon::tool
