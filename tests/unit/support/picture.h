#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include "host/plugin_raster_api.h"
#include "image/float_image.h"

namespace vireon::test {

/// What a handful of single-precision operations may lose against the same formula in double
/// precision, relative to the largest number involved: sixteen roundings of 2^-24 each. The image
/// code may order its operations as it likes within that.
inline constexpr double kRounding = 16.0 / 16777216.0;

/// Random numbers that are the same on every system.
class Random {
  public:
    explicit Random(std::uint32_t seed) : engine_(seed) {}
    std::uint32_t bits() { return static_cast<std::uint32_t>(engine_()); }
    /// Uniform in [low, high).
    double uniform(double low, double high) {
        return low + (high - low) * static_cast<double>(bits()) / 4294967296.0;
    }
    float real(float low, float high) {
        return static_cast<float>(uniform(static_cast<double>(low), static_cast<double>(high)));
    }
    std::int32_t whole(std::int32_t low, std::int32_t high) {
        return low + static_cast<std::int32_t>(bits() % static_cast<std::uint32_t>(high - low + 1));
    }

  private:
    std::mt19937 engine_;
};

/// A float image of the test's own: straight ARGB with some floats of padding after every row,
/// which nobody may write. It is a raster with a layout record at the same time.
class Picture final : public PluginRaster_API {
  public:
    /// \param padding  floats after every row
    /// \param bottomUp  rows go up in memory
    Picture(std::int32_t width, std::int32_t height, std::int32_t padding = 3,
            bool bottomUp = false);
    Picture(const Picture& other);
    Picture& operator=(const Picture&) = delete;

    float& at(std::int32_t x, std::int32_t y, std::int32_t channel);
    float at(std::int32_t x, std::int32_t y, std::int32_t channel) const;
    void set(std::int32_t x, std::int32_t y, std::initializer_list<float> argb);
    void fill(float value);
    void fill(float alpha, float red, float green, float blue);
    /// Uniform values, every float drawn in order.
    void randomize(Random& random, float low, float high);
    bool paddingIntact() const;

    FloatImage view();
    /// Same floats, read only by convention.
    FloatImage view() const { return const_cast<Picture*>(this)->view(); }

    std::int32_t width() const override { return layout_.width; }
    std::int32_t height() const override { return layout_.height; }
    std::int32_t depth() const override;
    std::int32_t rowBytes() const override { return layout_.rowBytes; }
    PluginRaster_AE_Impl* asHostWorld() override { return nullptr; }
    void attach(PluginHost_API*) override {}
    RasterLayout* layoutRecord() override { return &layout_; }

  private:
    std::size_t index(std::int32_t x, std::int32_t y, std::int32_t channel) const;
    void bind();

    std::vector<float> floats_;
    RasterLayout layout_;
    std::int32_t padding_;
    bool bottomUp_;
};

/// Whether both pictures hold the same values, bit by bit but for NaN, which equals every NaN.
testing::AssertionResult SamePixels(const Picture& got, const Picture& want);

/// Whether every value lies within `relative` times max(1, |want|, scale) of what is wanted; values
/// that are not finite must be the same. `scale` is the size of the numbers that the value was
/// computed from, where they may cancel.
testing::AssertionResult NearPixels(const Picture& got, const Picture& want, double relative,
                                    double scale = 1.0);

/// Calls `each(x, y, channel)` for every float of a picture's pixels.
void ForEachFloat(const Picture& picture,
                  const std::function<void(std::int32_t, std::int32_t, std::int32_t)>& each);

}  // namespace vireon::test
