#include "samples/scene_file.h"

#include <OpenImageIO/imageio.h>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <stdexcept>
#include <system_error>
#include <vector>

namespace vireon::scenes {

namespace {

namespace fs = std::filesystem;

std::string LowerExtension(const std::string& path) {
    std::string extension = fs::path(path).extension().string();
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return extension;
}

[[noreturn]] void FailToWrite(const std::string& path, const std::string& why) {
    throw std::runtime_error("cannot write '" + path + "': " + why);
}

OIIO::TypeDesc TypeOf(FileDepth depth) {
    switch (depth) {
        case FileDepth::k8: return OIIO::TypeDesc::UINT8;
        case FileDepth::k16: return OIIO::TypeDesc::UINT16;
        default: return OIIO::TypeDesc::FLOAT;
    }
}

std::vector<float> Premultiplied(std::vector<float> samples) {
    for (std::size_t i = 0; i < samples.size(); i += 4) {
        for (std::size_t c = 0; c < 3; ++c) {
            samples[i + c] *= samples[i + 3];
        }
    }
    return samples;
}

void WriteTo(const fs::path& file, const Canvas& canvas, bool withAlpha, FileDepth depth,
             const std::string& path) {
    OIIO::ImageSpec spec(canvas.width(), canvas.height(), withAlpha ? 4 : 3, TypeOf(depth));
    // An EXR would carry the time of writing; the same scene is to be the same file.
    spec.attribute("DateTime", "2000:01:01 00:00:00");
    const bool premultiplied = withAlpha && depth == FileDepth::kFloat;
    if (withAlpha && !premultiplied) {
        spec.attribute("oiio:UnassociatedAlpha", 1);
    }
    const auto output = OIIO::ImageOutput::create(file.string());
    if (!output) {
        FailToWrite(path, OIIO::geterror());
    }
    const std::vector<float> copy =
        premultiplied ? Premultiplied(canvas.samples()) : std::vector<float>();
    const float* samples = premultiplied ? copy.data() : canvas.samples().data();
    constexpr OIIO::stride_t kPixelBytes = 4 * sizeof(float);
    if (!output->open(file.string(), spec) ||
        !output->write_image(OIIO::TypeDesc::FLOAT, samples, kPixelBytes) || !output->close()) {
        FailToWrite(path, output->geterror());
    }
}

}  // namespace

FileDepth DepthFor(const std::string& path, int bits) {
    const std::string extension = LowerExtension(path);
    if (extension == ".exr") {
        if (bits != 0 && bits != 32) {
            throw std::invalid_argument("an .exr is written in 32 bits a channel, not in " +
                                        std::to_string(bits));
        }
        return FileDepth::kFloat;
    }
    if (extension == ".png") {
        if (bits == 32) {
            throw std::invalid_argument("a .png has 8 or 16 bits a channel; write an .exr for 32");
        }
        return bits == 16 ? FileDepth::k16 : FileDepth::k8;
    }
    throw std::invalid_argument("'" + path + "' must end in .png or .exr");
}

void CheckPlace(const std::string& path) {
    const fs::path folder = fs::absolute(path).parent_path();
    std::error_code ignored;
    if (!fs::is_directory(folder, ignored)) {
        FailToWrite(path, "its folder does not exist");
    }
    if (fs::is_directory(path, ignored)) {
        FailToWrite(path, "it is a folder");
    }
}

void WritePicture(const Canvas& canvas, bool withAlpha, FileDepth depth, const std::string& path) {
    // The image library takes the format from the extension, so that of the unfinished file is the
    // same.
    fs::path unfinished = path;
    unfinished.replace_filename("." + unfinished.stem().string() + ".unfinished" +
                                unfinished.extension().string());
    try {
        WriteTo(unfinished, canvas, withAlpha, depth, path);
        fs::rename(unfinished, path);
    } catch (const fs::filesystem_error& error) {
        std::error_code ignored;
        fs::remove(unfinished, ignored);
        FailToWrite(path, error.code().message());
    } catch (...) {
        std::error_code ignored;
        fs::remove(unfinished, ignored);
        throw;
    }
}

}  // namespace vireon::scenes
