#include "tests/conformance/picture.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <sstream>

namespace vireon::conformance {
namespace {

using headless::Depth;
using headless::World;

template <typename Pixel>
Picture ReadStored(const World& world) {
    Picture picture(world.width(), world.height());
    for (int y = 0; y < world.height(); ++y) {
        const Pixel* row = world.row<Pixel>(y);
        for (int x = 0; x < world.width(); ++x) {
            picture.at(x, y) = {static_cast<float>(row[x].alpha), static_cast<float>(row[x].red),
                                static_cast<float>(row[x].green), static_cast<float>(row[x].blue)};
        }
    }
    return picture;
}

}  // namespace

Picture::Picture(int width, int height)
    : width_(width),
      height_(height),
      pixels_(static_cast<std::size_t>(width) * static_cast<std::size_t>(height), PixelValues{}) {}

bool Picture::operator==(const Picture& other) const {
    return width_ == other.width_ && height_ == other.height_ &&
           (pixels_.empty() || std::memcmp(pixels_.data(), other.pixels_.data(),
                                           pixels_.size() * sizeof(PixelValues)) == 0);
}

Picture MakePicture(int width, int height, const std::function<PixelValues(int x, int y)>& pixel) {
    Picture picture(width, height);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            picture.at(x, y) = pixel(x, y);
        }
    }
    return picture;
}

Picture ReadRaw(const World& world) {
    switch (world.depth()) {
        case Depth::k8: return ReadStored<sdk::PF_Pixel8>(world);
        case Depth::k16: return ReadStored<sdk::PF_Pixel16>(world);
        case Depth::kFloat: break;
    }
    return ReadStored<sdk::PF_PixelFloat>(world);
}

Picture ReadWorld(const World& world) {
    Picture picture = ReadRaw(world);
    for (PixelValues& pixel : picture.pixels()) {
        for (float& value : pixel) {
            if (world.depth() == Depth::k8) {
                value *= 0.003921569f;
            } else if (world.depth() == Depth::k16) {
                value /= 32768.0f;
            }
        }
    }
    return picture;
}

std::shared_ptr<World> MakeWorld(const Picture& picture, headless::WorldOptions options) {
    options.width = picture.width();
    options.height = picture.height();
    auto world = std::make_shared<World>(options);
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            const PixelValues& pixel = picture.at(x, y);
            if (options.depth == Depth::kFloat) {
                std::memcpy(world->row<sdk::PF_PixelFloat>(y) + x, pixel.data(), sizeof(pixel));
            } else {
                world->setColor(x, y, {pixel[kAlpha], pixel[kRed], pixel[kGreen], pixel[kBlue]});
            }
        }
    }
    return world;
}

std::shared_ptr<World> MakeWorld(const Picture& picture, Depth depth, int originX, int originY) {
    headless::WorldOptions options;
    options.depth = depth;
    options.originX = originX;
    options.originY = originY;
    return MakeWorld(picture, options);
}

Picture Stored(const Picture& picture, Depth depth) {
    Picture stored = picture;
    if (depth == Depth::kFloat) {
        return stored;
    }
    const float white = depth == Depth::k8 ? 255.0f : 32768.0f;
    for (PixelValues& pixel : stored.pixels()) {
        for (float& value : pixel) {
            const float scaled = white * value + 0.5f;
            value = std::isnan(scaled) ? 0.0f : std::trunc(std::clamp(scaled, 0.0f, white));
        }
    }
    return stored;
}

Difference Compare(const Picture& expected, const Picture& actual) {
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    if (expected.width() != actual.width() || expected.height() != actual.height()) {
        std::ostringstream text;
        text << "size " << actual.width() << " x " << actual.height() << " instead of "
             << expected.width() << " x " << expected.height();
        return {kInfinity, text.str()};
    }
    Difference difference;
    for (int y = 0; y < expected.height(); ++y) {
        for (int x = 0; x < expected.width(); ++x) {
            for (std::size_t channel = 0; channel < 4; ++channel) {
                const float want = expected.at(x, y)[channel];
                const float have = actual.at(x, y)[channel];
                double distance = 0;
                if (std::isfinite(want) && std::isfinite(have)) {
                    distance = std::abs(static_cast<double>(want) - static_cast<double>(have));
                } else if (!(want == have || (std::isnan(want) && std::isnan(have)))) {
                    distance = kInfinity;
                }
                if (distance > difference.largest) {
                    std::ostringstream text;
                    text.precision(9);
                    text << have << " instead of " << want << " at (" << x << ", " << y
                         << "), channel "
                         << "ARGB"[channel];
                    difference = {distance, text.str()};
                }
            }
        }
    }
    return difference;
}

double Peak(const Picture& picture) {
    double peak = 0;
    for (const PixelValues& pixel : picture.pixels()) {
        for (const float value : pixel) {
            if (std::isfinite(value)) {
                peak = std::max(peak, std::abs(static_cast<double>(value)));
            }
        }
    }
    return peak;
}

bool AllFinite(const Picture& picture) {
    return std::all_of(picture.pixels().begin(), picture.pixels().end(),
                       [](const PixelValues& pixel) {
                           return std::all_of(pixel.begin(), pixel.end(),
                                              [](float value) { return std::isfinite(value); });
                       });
}

}  // namespace vireon::conformance
