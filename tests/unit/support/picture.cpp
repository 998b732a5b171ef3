#include "tests/unit/support/picture.h"

#include <algorithm>
#include <bit>
#include <cmath>

#include "image/pixel_format.h"

namespace vireon::test {

namespace {

constexpr float kPadding = -12345.678f;

bool SameFloat(float a, float b) {
    if (std::isnan(a) && std::isnan(b)) return true;
    return std::bit_cast<std::uint32_t>(a) == std::bit_cast<std::uint32_t>(b);
}

bool NearFloat(float got, float want, double relative, double scale) {
    if (!std::isfinite(got) || !std::isfinite(want)) return SameFloat(got, want);
    const auto wanted = static_cast<double>(want);
    const double size = std::max({1.0, std::fabs(wanted), scale});
    return std::fabs(static_cast<double>(got) - wanted) <= relative * size;
}

testing::AssertionResult Compare(const Picture& got, const Picture& want,
                                 const std::function<bool(float, float)>& equal) {
    if (got.width() != want.width() || got.height() != want.height()) {
        return testing::AssertionFailure() << "sizes differ";
    }
    for (std::int32_t y = 0; y < got.height(); ++y) {
        for (std::int32_t x = 0; x < got.width(); ++x) {
            for (std::int32_t c = 0; c < kChannels; ++c) {
                if (!equal(got.at(x, y, c), want.at(x, y, c))) {
                    return testing::AssertionFailure()
                           << "pixel (" << x << ", " << y << ") channel " << c << ": got "
                           << testing::PrintToString(got.at(x, y, c)) << ", want "
                           << testing::PrintToString(want.at(x, y, c));
                }
            }
        }
    }
    if (!got.paddingIntact()) return testing::AssertionFailure() << "row padding was written";
    return testing::AssertionSuccess();
}

}  // namespace

Picture::Picture(std::int32_t width, std::int32_t height, std::int32_t padding, bool bottomUp)
    : padding_(padding), bottomUp_(bottomUp) {
    layout_.width = width;
    layout_.height = height;
    floats_.assign(
        static_cast<std::size_t>(width * kChannels + padding) * static_cast<std::size_t>(height),
        kPadding);
    bind();
    fill(0.0f);
}

Picture::Picture(const Picture& other)
    : floats_(other.floats_),
      layout_(other.layout_),
      padding_(other.padding_),
      bottomUp_(other.bottomUp_) {
    bind();
}

void Picture::bind() {
    const std::int32_t rowFloats = layout_.width * kChannels + padding_;
    layout_.formatCode = kFormatFloat;
    layout_.bytesPerPixel = 16;
    layout_.rowBytes = rowFloats * 4;
    layout_.pixels = floats_.data();
    if (bottomUp_) {
        if (layout_.height > 0) {
            layout_.pixels =
                floats_.data() + static_cast<std::ptrdiff_t>(rowFloats) * (layout_.height - 1);
        }
        layout_.rowBytes = -layout_.rowBytes;
    }
}

std::size_t Picture::index(std::int32_t x, std::int32_t y, std::int32_t channel) const {
    const std::int32_t row = bottomUp_ ? layout_.height - 1 - y : y;
    return static_cast<std::size_t>(row) *
               static_cast<std::size_t>(layout_.width * kChannels + padding_) +
           static_cast<std::size_t>(x * kChannels + channel);
}

float& Picture::at(std::int32_t x, std::int32_t y, std::int32_t channel) {
    return floats_.at(index(x, y, channel));
}

float Picture::at(std::int32_t x, std::int32_t y, std::int32_t channel) const {
    return floats_.at(index(x, y, channel));
}

void Picture::set(std::int32_t x, std::int32_t y, std::initializer_list<float> argb) {
    std::int32_t channel = 0;
    for (const float value : argb) at(x, y, channel++) = value;
}

void Picture::fill(float value) {
    fill(value, value, value, value);
}

void Picture::fill(float alpha, float red, float green, float blue) {
    for (std::int32_t y = 0; y < height(); ++y) {
        for (std::int32_t x = 0; x < width(); ++x) set(x, y, {alpha, red, green, blue});
    }
}

void Picture::randomize(Random& random, float low, float high) {
    ForEachFloat(*this, [&](std::int32_t x, std::int32_t y, std::int32_t c) {
        at(x, y, c) = random.real(low, high);
    });
}

bool Picture::paddingIntact() const {
    for (std::int32_t y = 0; y < height(); ++y) {
        for (std::int32_t i = 0; i < padding_; ++i) {
            const std::size_t place =
                index(0, y, 0) + static_cast<std::size_t>(layout_.width * kChannels + i);
            if (!SameFloat(floats_.at(place), kPadding)) return false;
        }
    }
    return true;
}

FloatImage Picture::view() {
    return {static_cast<float*>(layout_.pixels), layout_.width, layout_.height, layout_.rowBytes};
}

std::int32_t Picture::depth() const {
    return kDepthFloat;
}

testing::AssertionResult SamePixels(const Picture& got, const Picture& want) {
    return Compare(got, want, SameFloat);
}

testing::AssertionResult NearPixels(const Picture& got, const Picture& want, double relative,
                                    double scale) {
    return Compare(got, want, [=](float a, float b) { return NearFloat(a, b, relative, scale); });
}

void ForEachFloat(const Picture& picture,
                  const std::function<void(std::int32_t, std::int32_t, std::int32_t)>& each) {
    for (std::int32_t y = 0; y < picture.height(); ++y) {
        for (std::int32_t x = 0; x < picture.width(); ++x) {
            for (std::int32_t c = 0; c < kChannels; ++c) each(x, y, c);
        }
    }
}

}  // namespace vireon::test
