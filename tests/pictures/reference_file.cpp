#include "tests/pictures/reference_file.h"

#include <array>
#include <cstddef>
#include <memory>
#include <vector>

#include <OpenImageIO/filesystem.h>
#include <OpenImageIO/imageio.h>

#include "tools/vireon/exit_codes.h"
#include "tools/vireon/output_file.h"
#include "tools/vireon/picture_file.h"
#include "tools/vireon/picture_writer.h"
#include "tools/vireon/tool_error.h"

namespace vireon::pictures {
namespace {

using headless::Picture;
using tool::PictureFile;
using tool::SampleFormat;
using tool::ToolError;

constexpr std::size_t kChannels = 4;
/// Place in a host's pixel (alpha, red, green, blue) of each channel of a file.
constexpr std::array<std::size_t, kChannels> kHostPlace{1, 2, 3, 0};
constexpr char kStraightAttribute[] = "oiio:UnassociatedAlpha";

void WriteWhole(const std::filesystem::path& file, const Picture& picture, SampleFormat format) {
    PictureFile like;
    like.width = picture.width;
    like.height = picture.height;
    like.format = format;
    like.hasAlpha = true;
    std::vector<std::string> notes;
    tool::WritePictureFile(file, picture, like, notes);
}

void WriteFloat(const std::filesystem::path& file, const Picture& picture) {
    std::vector<float> samples;
    samples.reserve(picture.pixels.size() / sizeof(float));
    for (std::int32_t y = 0; y < picture.height; ++y) {
        for (std::int32_t x = 0; x < picture.width; ++x) {
            const float* const pixel = picture.row<float>(y) + static_cast<std::size_t>(x) * 4;
            for (const std::size_t place : kHostPlace) samples.push_back(pixel[place]);
        }
    }
    OIIO::ImageSpec spec(picture.width, picture.height, kChannels, OIIO::TypeDesc::FLOAT);
    spec.attribute("compression", "zip");
    spec.attribute(kStraightAttribute, 1);
    OIIO::Filesystem::IOVecOutput bytes;
    const auto writer = OIIO::ImageOutput::create("picture.exr");
    if (writer == nullptr || !writer->set_ioproxy(&bytes) || !writer->open("picture.exr", spec) ||
        !writer->write_image(OIIO::TypeDesc::FLOAT, samples.data()) || !writer->close()) {
        throw ToolError(tool::kOutputFailed, "cannot write " + file.string() + ": " +
                                                 (writer ? writer->geterror() : OIIO::geterror()));
    }
    tool::WriteFileWhole(file, bytes.buffer());
}

Picture FromFloat(const PictureFile& file) {
    Picture picture(file.width, file.height, 32);
    for (std::int32_t y = 0; y < file.height; ++y) {
        const std::size_t begin =
            static_cast<std::size_t>(y) * static_cast<std::size_t>(file.width) * kChannels;
        float* const row = picture.row<float>(y);
        for (std::size_t x = 0; x < static_cast<std::size_t>(file.width); ++x) {
            for (std::size_t c = 0; c < kChannels; ++c) {
                row[x * kChannels + kHostPlace[c]] = file.samplesFloat[begin + x * kChannels + c];
            }
        }
    }
    return picture;
}

SampleFormat FormatOf(std::int32_t bits) {
    switch (bits) {
        case 8: return SampleFormat::k8;
        case 16: return SampleFormat::k16;
        default: return SampleFormat::kFloat;
    }
}

}  // namespace

std::string ReferenceName(const std::string& name, std::int32_t bits) {
    return name + (bits == 32 ? ".exr" : ".png");
}

void WriteReference(const std::filesystem::path& file, const Picture& picture) {
    if (picture.bits == 32) {
        WriteFloat(file, picture);
    } else {
        WriteWhole(file, picture, FormatOf(picture.bits));
    }
}

Picture ReadReference(const std::filesystem::path& file, std::int32_t bits) {
    const PictureFile content = tool::ReadPictureFile(file);
    if (content.format != FormatOf(bits)) {
        throw ToolError(tool::kInputUnreadable, "cannot read " + file.string() + ": it is not of " +
                                                    std::to_string(bits) + " bits");
    }
    return bits == 32 ? FromFloat(content) : tool::ToHostPicture(content, bits);
}

}  // namespace vireon::pictures
