#include <OpenImageIO/imageio.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cctype>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <stdexcept>
#include <string>

#include "samples/scenes.h"

namespace {

using vireon::scenes::Canvas;
using vireon::scenes::LightRange;

std::string LowerExtension(const std::string& path) {
    std::string extension = std::filesystem::path(path).extension().string();
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return extension;
}

// A format that holds floats gets the overbright lights, any other 8 bits a channel.
LightRange RangeOf(const std::string& path) {
    return LowerExtension(path) == ".exr" ? LightRange::kOverbright : LightRange::kDisplay;
}

void Write(const Canvas& canvas, const std::string& path) {
    const OIIO::TypeDesc depth =
        RangeOf(path) == LightRange::kOverbright ? OIIO::TypeDesc::FLOAT : OIIO::TypeDesc::UINT8;
    OIIO::ImageSpec spec(canvas.width(), canvas.height(), 3, depth);
    const auto file = OIIO::ImageOutput::create(path);
    if (!file) {
        throw std::runtime_error("cannot write '" + path + "': " + OIIO::geterror());
    }
    constexpr OIIO::stride_t kPixelBytes = 4 * sizeof(float);
    if (!file->open(path, spec) ||
        !file->write_image(OIIO::TypeDesc::FLOAT, canvas.samples().data(), kPixelBytes) ||
        !file->close()) {
        throw std::runtime_error("cannot write '" + path + "': " + file->geterror());
    }
}

}  // namespace

int main(int argc, char** argv) {
    CLI::App app{"Draws sample pictures for the glow: .exr with lights above 1, else 8 bits."};
    app.require_subcommand(1);
    std::string path;
    int width = 0;
    int height = 0;
    bool alone = false;
    const auto addScene = [&](const char* name, const char* description, int defaultWidth,
                              int defaultHeight) {
        CLI::App* scene = app.add_subcommand(name, description);
        scene->add_option("out", path, "Picture file to write")->required();
        scene->add_option("--width", width, "Width in pixels")
            ->default_str(std::to_string(defaultWidth))
            ->check(CLI::Range(1, 32768));
        scene->add_option("--height", height, "Height in pixels")
            ->default_str(std::to_string(defaultHeight))
            ->check(CLI::Range(1, 32768));
        scene->parse_complete_callback([&width, &height, defaultWidth, defaultHeight] {
            width = width > 0 ? width : defaultWidth;
            height = height > 0 ? height : defaultHeight;
        });
        return scene;
    };
    CLI::App* night = addScene("night", "A city at dusk after rain", 1920, 1080);
    CLI::App* lights = addScene("lights", "A few small lights on black", 320, 320);
    lights->add_flag("--alone", alone, "Only the white light in the middle");
    addScene("noise", "Random values in every pixel", 1920, 1080);
    CLI11_PARSE(app, argc, argv);

    try {
        if (night->parsed()) {
            Write(vireon::scenes::DrawNightCity(width, height, RangeOf(path)), path);
        } else if (lights->parsed()) {
            Write(vireon::scenes::DrawLights(width, height, RangeOf(path), !alone), path);
        } else {
            Write(vireon::scenes::DrawNoise(width, height), path);
        }
    } catch (const std::exception& error) {
        std::fprintf(stderr, "vireon-scenes: %s\n", error.what());
        return 1;
    }
    return 0;
}
