#include <CLI/CLI.hpp>
#include <cstdio>
#include <exception>
#include <new>
#include <stdexcept>
#include <string>

#include "samples/catalogue.h"
#include "samples/scene_file.h"
#include "tools/vireon/exit_codes.h"

namespace {

using vireon::scenes::LightRange;
using vireon::scenes::Scene;
using vireon::tool::kBadCommandLine;
using vireon::tool::kBadValue;
using vireon::tool::kOutputFailed;
using vireon::tool::kSuccess;
using vireon::tool::kUnknownName;

int Refuse(int code, const std::string& message) {
    std::fprintf(stderr, "vireon-scenes: %s\n", message.c_str());
    return code;
}

std::string ListOfScenes() {
    std::string list;
    for (const Scene& scene : vireon::scenes::Scenes()) {
        std::string line = "  " + std::string(scene.name);
        line.resize(13, ' ');
        line += std::string(scene.description) + ", " + std::to_string(scene.defaultWidth) + "x" +
                std::to_string(scene.defaultHeight);
        if (scene.hasAlpha) line += ", with alpha";
        if (scene.frames > 1) line += ", " + std::to_string(scene.frames) + " frames";
        list += line + "\n";
    }
    return list;
}

struct Request {
    std::string scene;
    std::string path;
    int width = 0;
    int height = 0;
    int frame = 0;
    int bits = 0;
    bool alone = false;
};

int Draw(const Request& request) {
    const Scene* scene = vireon::scenes::FindScene(request.scene);
    if (scene == nullptr) {
        return Refuse(kUnknownName, "there is no scene '" + request.scene +
                                        "'; 'vireon-scenes list' names them all");
    }
    if (request.path.empty()) {
        return Refuse(kBadCommandLine, "say which file to write, for example 'vireon-scenes " +
                                           request.scene + " " + request.scene + ".png'");
    }
    if (request.frame >= scene->frames) {
        return Refuse(kBadValue, "the scene '" + request.scene + "' has no frame " +
                                     std::to_string(request.frame) + "; its last is " +
                                     std::to_string(scene->frames - 1));
    }
    if (request.alone && request.scene != "lights") {
        return Refuse(kBadCommandLine, "--alone belongs to the scene 'lights'");
    }
    const vireon::scenes::FileDepth depth = vireon::scenes::DepthFor(request.path, request.bits);
    const LightRange range =
        depth == vireon::scenes::FileDepth::kFloat ? LightRange::kOverbright : LightRange::kDisplay;
    const int width = request.width > 0 ? request.width : scene->defaultWidth;
    const int height = request.height > 0 ? request.height : scene->defaultHeight;
    vireon::scenes::CheckPlace(request.path);
    const vireon::scenes::Canvas canvas =
        request.alone ? vireon::scenes::DrawLights(width, height, range, false)
                      : scene->draw({width, height, range, request.frame});
    vireon::scenes::WritePicture(canvas, scene->hasAlpha, depth, request.path);
    return kSuccess;
}

}  // namespace

int main(int argc, char** argv) {
    CLI::App app{
        "Draws sample pictures for the glow: .exr in float with lights above 1, .png in 8 "
        "or 16 bits."};
    app.footer("Scenes:\n" + ListOfScenes());
    Request request;
    app.add_option("scene", request.scene, "Name of the scene, or 'list' for all of them")
        ->required();
    app.add_option("out", request.path, "Picture file to write, .png or .exr");
    app.add_option("--width", request.width, "Width in pixels (default: the scene's own)")
        ->check(CLI::Range(1, 32768));
    app.add_option("--height", request.height, "Height in pixels (default: the scene's own)")
        ->check(CLI::Range(1, 32768));
    app.add_option("--frame", request.frame, "Frame of a moving scene, from 0")
        ->check(CLI::Range(0, 1000000));
    app.add_option("--bits", request.bits, "8 or 16 for .png (default 8), 32 for .exr")
        ->check(CLI::IsMember({8, 16, 32}));
    app.add_flag("--alone", request.alone, "lights: only the white light in the middle");
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() == 0) return app.exit(error);
        const bool value =
            error.get_exit_code() == static_cast<int>(CLI::ExitCodes::ValidationError);
        return Refuse(value ? kBadValue : kBadCommandLine,
                      std::string(error.what()) + "; see 'vireon-scenes --help'");
    }
    if (request.scene == "list") {
        if (!request.path.empty()) return Refuse(kBadCommandLine, "'list' writes no file");
        std::fputs(ListOfScenes().c_str(), stdout);
        return kSuccess;
    }
    try {
        return Draw(request);
    } catch (const std::bad_alloc&) {
        return Refuse(kOutputFailed,
                      "there is not enough memory for so large a picture; ask for a "
                      "smaller one by --width and --height");
    } catch (const std::invalid_argument& error) {
        return Refuse(kBadValue, error.what());
    } catch (const std::exception& error) {
        return Refuse(kOutputFailed, error.what());
    }
}
