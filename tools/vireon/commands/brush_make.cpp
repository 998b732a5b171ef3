#include "tools/vireon/commands/brush_make.h"

#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <map>
#include <span>
#include <vector>

#include "tools/brushes/brush_file.h"
#include "tools/vireon/brush_figures.h"
#include "tools/vireon/brush_findings.h"
#include "tools/vireon/format_text.h"
#include "tools/vireon/interruption.h"
#include "tools/vireon/names.h"
#include "tools/vireon/output_file.h"
#include "tools/vireon/tool_error.h"

namespace vireon::tool {
namespace {

constexpr double kLeastEnergy = 1;
constexpr double kMostEnergy = 1e6;
constexpr double kMostWindow = 126;
constexpr double kLeastGamma = 0.1;
constexpr double kMostGamma = 10;
constexpr std::size_t kLongestTitle = 200;

void CheckRange(const char* option, double value, double least, double most) {
    if (!(value >= least && value <= most)) {
        throw ToolError(kBadValue, FormatText("%s: %g is out of range; %g to %g is possible",
                                              option, value, least, most));
    }
}

BrushChannel ChannelOf(const std::string& name) {
    static const std::map<std::string, BrushChannel> channels{
        {"r", BrushChannel::kRed},
        {"red", BrushChannel::kRed},
        {"g", BrushChannel::kGreen},
        {"green", BrushChannel::kGreen},
        {"b", BrushChannel::kBlue},
        {"blue", BrushChannel::kBlue},
        {"a", BrushChannel::kAlpha},
        {"alpha", BrushChannel::kAlpha},
        {"luminance", BrushChannel::kLuminance},
    };
    const auto found = channels.find(FoldedText(name));
    if (found == channels.end()) {
        throw ToolError(kBadValue, "--channel: \"" + name + "\" is not R, G, B, A or luminance");
    }
    return found->second;
}

bool ParseNumber(std::string_view text, double& value) {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    return error == std::errc() && end == text.data() + text.size() && std::isfinite(value);
}

void ReadCentre(const std::string& text, BrushMaking& making) {
    const std::size_t comma = text.find(',');
    if (FoldedText(text) == "mass") {
        making.centring = BrushCentring::kMass;
    } else if (FoldedText(text) == "picture") {
        making.centring = BrushCentring::kPicture;
    } else if (comma != std::string::npos &&
               ParseNumber(std::string_view(text).substr(0, comma), making.pointX) &&
               ParseNumber(std::string_view(text).substr(comma + 1), making.pointY)) {
        making.centring = BrushCentring::kPoint;
    } else {
        throw ToolError(kBadValue, "--centre: \"" + text +
                                       "\" is not mass, picture or X,Y (pixels from the upper "
                                       "left corner)");
    }
}

/// A title that stays on one line of a brush file.
std::string OneTitle(std::string title) {
    for (char& c : title) {
        c = static_cast<unsigned char>(c) < ' ' ? ' ' : c;
    }
    return title.substr(0, kLongestTitle);
}

void CheckOutput(const std::filesystem::path& output, const std::filesystem::path& picture) {
    // A slip that names a picture here would cost that picture.
    if (output.extension() != ".brush") {
        throw ToolError(kOutputFailed, "cannot write " + output.string() +
                                           ": the name of a brush file ends in .brush");
    }
    std::error_code error;
    if (std::filesystem::equivalent(output, picture, error)) {
        throw ToolError(kOutputFailed,
                        "cannot write " + output.string() + ": it is the picture itself");
    }
    CheckOutputPlace(output);
}

}  // namespace

BrushMakeCommand::BrushMakeCommand(CLI::App& brush)
    : command_(brush.add_subcommand("make", "Make a brush file of a picture")) {
    command_->add_option("IMAGE", picture_, "Picture to take the light from")
        ->type_name("")
        ->required();
    command_->add_option("OUT", output_, "Brush file to write (.brush); an older one is replaced")
        ->type_name("")
        ->required();
    command_->add_flag("--fit", fit_, "All of the picture lies within the brush (default)");
    command_->add_flag("--crop", crop_,
                       "The shorter side fills the brush; what is longer is cut off");
    command_->add_option("--channel", channel_, "R, G, B, A or luminance (default: luminance)")
        ->type_name("CHANNEL");
    command_
        ->add_option("--centre,--center", centre_,
                     "What lies on the bright pixel: the centre of mass, the picture's middle,\n"
                     "or a place in pixels from its upper left corner (default: mass)")
        ->type_name("mass|picture|X,Y");
    command_
        ->add_option("--window", window_,
                     "Distance in texels from which the brush fades; at 127 it is zero\n"
                     "(0 to 126, default: 100)")
        ->type_name("RADIUS");
    command_
        ->add_option("--energy", energy_,
                     "Sum of the samples, the amount of light\n"
                     "(1 to 1000000, default: that of the effect's own shapes)")
        ->type_name("SUM");
    command_->add_flag("--invert", invert_, "Dark is light; what is transparent stays dark");
    command_
        ->add_option("--gamma", gamma_,
                     "Power of the levels: above 1 tails get fainter, below 1 stronger\n"
                     "(0.1 to 10, default: 1, levels as they stand)")
        ->type_name("POWER");
    command_->add_option("--title", title_, "Third line of the file (default: the picture's name)")
        ->type_name("TEXT");
    command_->add_flag("--quiet", quiet_, "No figures and no notes");
    command_->footer(
        "A brush is 256 x 256 texels; the light lies on texel (128, 128), and from distance 127 "
        "on\neverything is zero. Its sum is that of the effect's own shapes, so that a change of "
        "shape\nkeeps the brightness of the glow. Levels are taken as they stand; 16 bits or "
        "float keep faint\ntails that end in steps at 8 bits. The effect uses the file under the "
        "name of one of its\nshapes, in a folder that ORVANTE_QUILLON_SVG_DIR names; see vireon "
        "brush check.");
}

BrushMaking BrushMakeCommand::readSettings() const {
    if (fit_ && crop_) {
        throw ToolError(kBadCommandLine, "--fit and --crop contradict each other");
    }
    BrushMaking making;
    making.channel = ChannelOf(channel_);
    making.isInverted = invert_;
    making.gamma = gamma_;
    making.crops = crop_;
    making.windowStart = window_;
    making.energy = energy_;
    ReadCentre(centre_, making);
    CheckRange("--window", window_, 0, kMostWindow);
    CheckRange("--energy", energy_, kLeastEnergy, kMostEnergy);
    CheckRange("--gamma", gamma_, kLeastGamma, kMostGamma);
    return making;
}

void BrushMakeCommand::run() {
    const BrushMaking making = readSettings();
    CheckOutput(output_, picture_);
    const PictureFile picture = ReadPictureFile(picture_, kMostBrushPixels);
    StopIfInterrupted();
    MadeBrush made;
    try {
        made = MakeBrush(picture, making);
    } catch (const ToolError& error) {
        throw ToolError(error.code(), picture_ + ": " + error.what());
    }
    StopIfInterrupted();
    const std::string title =
        OneTitle(title_.empty() ? std::filesystem::path(picture_).stem().string() : title_);
    const std::string text = brushes::BrushFileText(title, made.samples);
    WriteFileWhole(output_,
                   std::span(reinterpret_cast<const std::uint8_t*>(text.data()), text.size()));
    if (quiet_) {
        return;
    }
    std::vector<std::string> notes = picture.notes;
    notes.insert(notes.end(), made.notes.begin(), made.notes.end());
    for (const std::string& note : notes) {
        std::fprintf(stderr, "vireon: note: %s\n", note.c_str());
    }
    // What the effect will read, not what was meant to be written.
    const BrushReport written = InspectBrush(output_);
    if (!written.kernel.hasTexels()) {
        return;
    }
    for (const BrushFinding& finding : written.findings) {
        std::fprintf(stderr, "vireon: note: %s: it %s\n", output_.c_str(), finding.text.c_str());
    }
    const BrushFigures figures = FiguresOf(written.kernel);
    std::printf("%s: sum %.6g, peak %.4g at (%d, %d), centre of mass off by %.3f, %.3f texels\n",
                output_.c_str(), figures.sum, figures.peak, figures.peakX, figures.peakY,
                figures.offsetX, figures.offsetY);
}

}  // namespace vireon::tool
