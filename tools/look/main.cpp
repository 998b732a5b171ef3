#include <CLI/CLI.hpp>
#include <cstdio>
#include <exception>
#include <string>

#include "headless/error.h"
#include "tools/brushes/brush_file.h"
#include "tools/look/measures.h"
#include "tools/look/tables.h"
#include "tools/vireon/exit_codes.h"

namespace {

using vireon::tool::kBadCommandLine;
using vireon::tool::kEffectFailed;
using vireon::tool::kNotAnEffect;
using vireon::tool::kOutputFailed;
using vireon::tool::kSuccess;

int Refuse(int code, const std::string& message) {
    std::fprintf(stderr, "vireon-look: %s\n", message.c_str());
    return code;
}

void Say(bool quiet, const char* stage) {
    if (!quiet) std::fprintf(stderr, "measuring %s\n", stage);
}

}  // namespace

int main(int argc, char** argv) {
    CLI::App app{
        "Measures how the glow looks on the sample scenes: brightness, halos, the light of the "
        "shapes, flicker, previews and qualities. Prints Markdown tables."};
    std::string plugin = VIREON_LOOK_PLUGIN;
    std::string json;
    int width = 960;
    int height = 540;
    bool full = false;
    bool quiet = false;
    // The intensity of lower scenes would have to exceed its range to keep the look.
    const CLI::Range sides(346, 8192);
    app.add_option("--plugin", plugin, "Effect to measure")->type_name("FILE");
    app.add_option("--json", json, "Write the figures to this file as well")->type_name("FILE");
    auto* widthOption = app.add_option("--width", width, "Width of the scenes")->check(sides);
    auto* heightOption = app.add_option("--height", height, "Height of the scenes")->check(sides);
    app.add_flag("--full", full, "Scenes of 1920x1080")
        ->excludes(widthOption)
        ->excludes(heightOption);
    app.add_flag("--quiet", quiet, "Do not say what is being measured");
    try {
        app.parse(argc, argv);
    } catch (const CLI::CallForHelp& help) {
        return app.exit(help);
    } catch (const CLI::ParseError& error) {
        return Refuse(kBadCommandLine, std::string(error.what()) + "; see vireon-look --help");
    }
    if (full) {
        width = 1920;
        height = 1080;
    }
    try {
        const vireon::headless::EffectLibrary library(plugin);
        const vireon::look::Subject subject{&library, width, height};
        vireon::look::Measures measures;
        Say(quiet, "brightness");
        measures.brightness = MeasureBrightness(subject);
        measures.halos = MeasureHalos(subject);
        Say(quiet, "shapes");
        measures.shapes = MeasureShapes(subject);
        Say(quiet, "flicker");
        measures.flicker = MeasureFlicker(subject);
        Say(quiet, "previews");
        measures.previews = MeasurePreviews(subject);
        Say(quiet, "qualities");
        measures.qualities = MeasureQualities(subject);
        std::fputs(MarkdownOf(measures, subject).c_str(), stdout);
        if (!json.empty()) {
            try {
                vireon::brushes::WriteFileWhole(json, JsonOf(measures, subject).dump(2) + "\n");
            } catch (const std::exception& error) {
                return Refuse(kOutputFailed, error.what());
            }
        }
    } catch (const vireon::headless::HeadlessError& error) {
        return Refuse(kNotAnEffect, error.what());
    } catch (const std::exception& error) {
        return Refuse(kEffectFailed, error.what());
    }
    return kSuccess;
}
