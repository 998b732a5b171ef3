#include "image/copy_pixels.h"

#include <algorithm>
#include <cstring>
#include <vector>

#include "image/channel_order.h"
#include "image/convert_pixels.h"
#include "image/pixel_format.h"

namespace vireon {
namespace {

void CopyRows(const RasterLayout& source, const RasterLayout& destination) {
    const auto bytes = static_cast<std::size_t>(std::min(source.width, destination.width)) *
                       static_cast<std::size_t>(source.bytesPerPixel);
    const std::int32_t height = std::min(source.height, destination.height);
    for (std::int32_t y = 0; y < height; ++y) {
        std::memcpy(destination.row(y), source.row(y), bytes);
    }
}

// One row of floats carries the pixels from one format to the other.
void CopyConverted(const RasterLayout& source, const RasterLayout& destination) {
    const std::int32_t width = std::min(source.width, destination.width);
    const std::int32_t height = std::min(source.height, destination.height);
    std::vector<float> line(static_cast<std::size_t>(width) * kChannels);
    const FloatImage row{line.data(), width, 1, 0};
    for (std::int32_t y = 0; y < height; ++y) {
        RasterLayout from = source;
        from.pixels = source.row(y);
        RasterLayout to = destination;
        to.pixels = destination.row(y);
        ConvertPixelsToFloat(from, row);
        ConvertPixelsFromFloat(row, to);
    }
}

// Several codes can mean one format: a host's 16 bits and a memory raster's are the same pixels.
bool SameFormat(const RasterLayout& a, const RasterLayout& b) {
    return DepthOfFormat(a.formatCode) == DepthOfFormat(b.formatCode) &&
           a.bytesPerPixel == b.bytesPerPixel &&
           ChannelOrderOf(a.formatCode) == ChannelOrderOf(b.formatCode);
}

}  // namespace

void ClearPixels(const RasterLayout& layout) {
    const auto bytes =
        static_cast<std::size_t>(layout.width) * static_cast<std::size_t>(layout.bytesPerPixel);
    for (std::int32_t y = 0; y < layout.height; ++y) std::memset(layout.row(y), 0, bytes);
}

void CopyPixels(const RasterLayout& source, const RasterLayout& destination) {
    if (SameFormat(source, destination)) {
        CopyRows(source, destination);
    } else {
        CopyConverted(source, destination);
    }
}

}  // namespace vireon
