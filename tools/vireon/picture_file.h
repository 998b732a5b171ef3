#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <limits>
#include <string>
#include <vector>

#include <OpenImageIO/imageio.h>

#include "headless/remote/picture.h"
#include "tools/vireon/samples.h"

namespace vireon::tool {

/// How a picture file stores a channel.
enum class SampleFormat { k8, k16, kHalf, kFloat };

/// A picture as its file has it: all four channels of every pixel, and what must be kept for the
/// file that is written from it. Grey is spread over the colours, missing alpha is opaque.
struct PictureFile {
    std::int32_t width = 0;
    std::int32_t height = 0;
    SampleFormat format = SampleFormat::k8;
    bool isGrey = false;
    bool hasAlpha = false;
    bool isAssociated = false;  ///< colours are multiplied by alpha
    /// Width of a pixel over its height.
    double pixelAspect = 1;
    std::string fileFormat;  ///< name of the format, e.g. "png"
    /// Metadata, data window and display window.
    OIIO::ImageSpec metadata;
    /// Red, green, blue, alpha of each pixel, rows from the top, in one of these by `format`.
    std::vector<std::uint8_t> samples8;
    std::vector<std::uint16_t> samples16;
    std::vector<float> samplesFloat;
    /// What the user should know, for example that a second layer was left out.
    std::vector<std::string> notes;

    /// Depth at which a host would take the file: 8, 16 or 32.
    std::int32_t naturalBits() const;
};

/// Reads the first picture of a file. Throws ToolError (kInputUnreadable) for every error, also
/// when only a part of the pixels could be read, and for pictures of more than `mostPixels`.
PictureFile ReadPictureFile(const std::filesystem::path& path,
                            std::int64_t mostPixels = std::numeric_limits<std::int64_t>::max());

/// A pixel as the file has it, counted in rows from the top; `isAssociated` says what its colour
/// is.
Color FileColor(const PictureFile& file, std::size_t pixel);

/// The picture as a host holds it: straight colour, 8 or 16 bits or float. No colour space is
/// converted.
headless::Picture ToHostPicture(const PictureFile& file, std::int32_t bits);

}  // namespace vireon::tool
