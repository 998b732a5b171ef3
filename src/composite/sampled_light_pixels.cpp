#include "composite/sampled_light_pixels.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <utility>
#include <vector>

#include "composite/brightness_pixels.h"
#include "glow/resample_pixels.h"
#include "image/convert_pixels.h"
#include "image/pixel_format.h"
#include "image/tolerance.h"

namespace vireon {
namespace {

// The columns that a row of samples reads.
struct SampledColumns {
    std::vector<std::int32_t> positions;
    bool isWholeRow;  // every column from the first on, once and in order
};

// Float values of one row, worked out by the stages themselves.
void ShapeInput(const simd::KernelTable& kernels, const SampledLight& light,
                const FloatImage& input, const FloatImage& map) {
    const bool singleChannel = light.inputChannels != 0;
    MapBrightness(input, map, light.inputChannels);
    if (!NearZero(light.threshold)) {
        SubtractThreshold(kernels, map, light.threshold, singleChannel);
    }
    ShapeLight(kernels, map, light.exponent, light.gain, singleChannel);
}

// The light of every value of an 8-bit channel, where each channel's light depends on it alone.
class LightTable {
  public:
    LightTable(const simd::KernelTable& kernels, const RasterLayout& source,
               const SampledLight& light)
        : isUsed_(DepthOfFormat(source.formatCode) == kDepth8 && light.inputChannels == 0) {
        if (!isUsed_) return;
        std::uint8_t bytes[kValues];
        for (std::int32_t i = 0; i < kValues; ++i) bytes[i] = static_cast<std::uint8_t>(i);
        RasterLayout layout = source;
        layout.pixels = bytes;
        layout.width = kValues / kChannels;
        layout.height = 1;
        float values[kValues];
        const FloatImage input{values, layout.width, 1, 0};
        ConvertPixelsToFloat(kernels, layout, input);
        ShapeInput(kernels, light, input, {values_, layout.width, 1, 0});
    }

    bool isUsed() const { return isUsed_; }
    void look(const std::byte* pixel, float* to) const {
        for (std::int32_t c = 0; c < kChannels; ++c) {
            to[c] = values_[std::to_integer<std::size_t>(pixel[c])];
        }
    }

  private:
    static constexpr std::int32_t kValues = 256;
    bool isUsed_;
    float values_[kValues];
};

// One row of light: the source pixels at some columns of one row, extracted.
class LightRow {
  public:
    LightRow(std::int32_t pixels, std::int32_t bytesPerPixel)
        : width_(pixels),
          gathered_(static_cast<std::size_t>(pixels) * static_cast<std::size_t>(bytesPerPixel)),
          input_(static_cast<std::size_t>(pixels) * kChannels),
          light_(input_.size()) {}

    const float* pixel(std::int32_t x) const {
        return light_.data() + static_cast<std::ptrdiff_t>(x) * kChannels;
    }
    std::int32_t sourceRow() const { return sourceRow_; }

    void extract(const simd::KernelTable& kernels, const RasterLayout& source,
                 const SampledLight& light, const LightTable& table, std::int32_t row,
                 const SampledColumns& columns) {
        sourceRow_ = row;
        if (table.isUsed()) {
            lookUp(table, source, row, columns);
            return;
        }
        const FloatImage input{input_.data(), width_, 1, 0};
        ConvertPixelsToFloat(kernels, gather(source, row, columns), input);
        ShapeInput(kernels, light, input, {light_.data(), width_, 1, 0});
    }

  private:
    // The pixels of one source row side by side, transparent black where the source has none.
    RasterLayout gather(const RasterLayout& source, std::int32_t row,
                        const SampledColumns& columns) {
        RasterLayout layout = source;
        layout.pixels = gathered_.data();
        layout.width = width_;
        layout.height = 1;
        const auto bytes = static_cast<std::size_t>(source.bytesPerPixel);
        if (row >= source.height) {
            std::fill(gathered_.begin(), gathered_.end(), std::byte{0});
            return layout;
        }
        const std::byte* from = source.row(row);
        std::byte* to = gathered_.data();
        if (columns.isWholeRow && width_ <= source.width) {
            std::memcpy(to, from, gathered_.size());
            return layout;
        }
        for (const std::int32_t column : columns.positions) {
            if (column < source.width) {
                std::memcpy(to, from + static_cast<std::size_t>(column) * bytes, bytes);
            } else {
                std::memset(to, 0, bytes);
            }
            to += bytes;
        }
        return layout;
    }

    void lookUp(const LightTable& table, const RasterLayout& source, std::int32_t row,
                const SampledColumns& columns) {
        constexpr std::byte kBlack[kChannels] = {};
        const std::byte* from = row < source.height ? source.row(row) : nullptr;
        float* to = light_.data();
        for (const std::int32_t column : columns.positions) {
            const bool inside = from != nullptr && column < source.width;
            table.look(inside ? from + static_cast<std::ptrdiff_t>(column) * kChannels : kBlack,
                       to);
            to += kChannels;
        }
    }

    std::int32_t width_;
    std::int32_t sourceRow_ = -1;
    std::vector<std::byte> gathered_;
    std::vector<float> input_;
    std::vector<float> light_;
};

// Those of all first neighbours, then, when any sample lies between two pixels, those of all second
// ones.
SampledColumns ColumnsOf(const std::vector<SampleTap>& taps) {
    SampledColumns columns{{}, true};
    columns.positions.reserve(2 * taps.size());
    bool between = false;
    for (const SampleTap& tap : taps) {
        columns.positions.push_back(tap.first);
        between = between || tap.fraction != 0.0f;
    }
    if (between) {
        for (const SampleTap& tap : taps) columns.positions.push_back(tap.second);
    }
    for (std::size_t i = 0; i < columns.positions.size(); ++i) {
        if (columns.positions[i] != static_cast<std::int32_t>(i)) columns.isWholeRow = false;
    }
    return columns;
}

std::vector<SampleTap> TapsOf(const SampledLight& light, std::int32_t frameSize,
                              std::int32_t size) {
    std::vector<SampleTap> taps;
    taps.reserve(static_cast<std::size_t>(size));
    for (std::int32_t i = 0; i < size; ++i) {
        if (light.sampling == LightSampling::kBilinear) {
            taps.push_back(SampleTapAt(i, frameSize, size));
        } else {
            const std::int32_t nearest = NearestSample(i, frameSize, size);
            taps.push_back({nearest, nearest, 0.0f});
        }
    }
    return taps;
}

}  // namespace

void ExtractSampledLight(const simd::KernelTable& kernels, const RasterLayout& source,
                         const SampledLight& light, const FloatImage& map) {
    const std::vector<SampleTap> across = TapsOf(light, light.frameWidth, map.width);
    const std::vector<SampleTap> down = TapsOf(light, light.frameHeight, map.height);
    const SampledColumns columns = ColumnsOf(across);
    const auto pixels = static_cast<std::int32_t>(columns.positions.size());
    // Where the second neighbours lie in a row of light.
    const std::int32_t seconds = pixels == map.width ? 0 : map.width;
    const std::int32_t firstChannel = light.colourOnly ? kRed : kAlpha;

    const LightTable table(kernels, source, light);

    LightRow top(pixels, source.bytesPerPixel);
    LightRow bottom(pixels, source.bytesPerPixel);
    const auto extract = [&](LightRow& row, std::int32_t y) {
        if (row.sourceRow() != y) row.extract(kernels, source, light, table, y, columns);
    };
    for (std::int32_t y = 0; y < map.height; ++y) {
        const SampleTap& vertical = down[static_cast<std::size_t>(y)];
        if (bottom.sourceRow() == vertical.first) std::swap(top, bottom);
        extract(top, vertical.first);
        if (vertical.fraction != 0.0f) extract(bottom, vertical.second);
        const LightRow& below = vertical.fraction != 0.0f ? bottom : top;

        float* out = map.row(y);
        if (vertical.fraction == 0.0f && seconds == 0) {
            std::copy_n(top.pixel(0), static_cast<std::ptrdiff_t>(map.width) * kChannels, out);
            if (light.colourOnly) {
                for (std::int32_t x = 0; x < map.width; ++x) out[x * kChannels + kAlpha] = 0.0f;
            }
            continue;
        }
        for (std::int32_t x = 0; x < map.width; ++x, out += kChannels) {
            const float fraction = across[static_cast<std::size_t>(x)].fraction;
            if (light.colourOnly) out[kAlpha] = 0.0f;
            for (std::int32_t c = firstChannel; c < kChannels; ++c) {
                const float above =
                    BlendSamples(top.pixel(x)[c], top.pixel(x + seconds)[c], fraction);
                const float under =
                    BlendSamples(below.pixel(x)[c], below.pixel(x + seconds)[c], fraction);
                out[c] = BlendSamples(above, under, vertical.fraction);
            }
        }
    }
}

}  // namespace vireon
