#include "tools/vireon/samples.h"

#include <algorithm>
#include <cmath>

namespace vireon::tool {

using headless::Picture;

namespace {

/// Channels of a pixel in memory order: alpha, red, green, blue.
constexpr std::int32_t kChannels = 4;

template <typename Channel>
Color FromChannels(const Channel* pixel, double white) {
    return {static_cast<double>(pixel[1]) / white, static_cast<double>(pixel[2]) / white,
            static_cast<double>(pixel[3]) / white, static_cast<double>(pixel[0]) / white};
}

template <typename Channel, typename Convert>
void ToChannels(Channel* pixel, const Color& color, Convert convert) {
    pixel[0] = static_cast<Channel>(convert(color.alpha));
    pixel[1] = static_cast<Channel>(convert(color.red));
    pixel[2] = static_cast<Channel>(convert(color.green));
    pixel[3] = static_cast<Channel>(convert(color.blue));
}

}  // namespace

Color Associated(const Color& straight) {
    return {straight.red * straight.alpha, straight.green * straight.alpha,
            straight.blue * straight.alpha, straight.alpha};
}

Color Straight(const Color& associated) {
    const double alpha = associated.alpha;
    if (!(alpha > 0.0)) {
        return associated;
    }
    return {associated.red / alpha, associated.green / alpha, associated.blue / alpha, alpha};
}

std::uint32_t Quantised(double value, std::uint32_t white) {
    if (!(value > 0.0)) {
        return 0;
    }
    return static_cast<std::uint32_t>(std::min(value, 1.0) * white + 0.5);
}

Color PixelAt(const Picture& picture, std::int32_t x, std::int32_t y) {
    const std::int32_t at = x * kChannels;
    switch (picture.bits) {
        case 8: return FromChannels(picture.row<std::uint8_t>(y) + at, kWhite8);
        case 16: return FromChannels(picture.row<std::uint16_t>(y) + at, kWhite16);
        default: return FromChannels(picture.row<float>(y) + at, 1.0);
    }
}

void SetPixel(Picture& picture, std::int32_t x, std::int32_t y, const Color& color) {
    const std::int32_t at = x * kChannels;
    switch (picture.bits) {
        case 8:
            ToChannels(picture.row<std::uint8_t>(y) + at, color,
                       [](double value) { return Quantised(value, kWhite8); });
            break;
        case 16:
            ToChannels(picture.row<std::uint16_t>(y) + at, color,
                       [](double value) { return Quantised(value, kWhite16); });
            break;
        default: ToChannels(picture.row<float>(y) + at, color, [](double value) { return value; });
    }
}

Picture Reduced(const Picture& picture, std::int32_t factor) {
    if (factor == 1) {
        return picture;
    }
    Picture reduced((picture.width + factor - 1) / factor, (picture.height + factor - 1) / factor,
                    picture.bits);
    for (std::int32_t y = 0; y < reduced.height; ++y) {
        const std::int32_t bottom = std::min((y + 1) * factor, picture.height);
        for (std::int32_t x = 0; x < reduced.width; ++x) {
            const std::int32_t right = std::min((x + 1) * factor, picture.width);
            Color light{0, 0, 0, 0};    // weighted by alpha
            Color surface{0, 0, 0, 0};  // not weighted
            double count = 0;
            for (std::int32_t sourceY = y * factor; sourceY < bottom; ++sourceY) {
                for (std::int32_t sourceX = x * factor; sourceX < right; ++sourceX) {
                    const Color color = PixelAt(picture, sourceX, sourceY);
                    const Color weighted = Associated(color);
                    light.red += weighted.red;
                    light.green += weighted.green;
                    light.blue += weighted.blue;
                    light.alpha += weighted.alpha;
                    surface.red += color.red;
                    surface.green += color.green;
                    surface.blue += color.blue;
                    ++count;
                }
            }
            Color mean = light.alpha > 0.0 ? Straight(light)
                                           : Color{surface.red / count, surface.green / count,
                                                   surface.blue / count, 0};
            mean.alpha = light.alpha / count;
            SetPixel(reduced, x, y, mean);
        }
    }
    return reduced;
}

}  // namespace vireon::tool
