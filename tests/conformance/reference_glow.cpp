#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <vector>

#include "tests/conformance/reference_model.h"

namespace vireon::conformance {
namespace {

constexpr std::array<float, 5> kReduction{1, 2, 4, 8, 16};
constexpr std::array<int, 5> kSmoothing{1, 2, 4, 5, 6};

/// Position on a line of texels or pixels: two neighbours and the weight of the second.
struct Between {
    int first = 0;
    int second = 0;
    float fraction = 0;
};

Between Locate(float position, int count) {
    const float floor = std::floor(position);
    const int first = static_cast<int>(floor);
    return {first, std::min(first + 1, count - 1), position - floor};
}

/// The kernel at a position in texels, clamped to its outermost texels.
double Sample(const Kernel& kernel, float u, float t) {
    const Between across =
        Locate(std::clamp(u, 0.0f, static_cast<float>(kernel.width - 1)), kernel.width);
    const Between down =
        Locate(std::clamp(t, 0.0f, static_cast<float>(kernel.height - 1)), kernel.height);
    const auto column = [&](int x) {
        return (1.0 - static_cast<double>(down.fraction)) *
                   static_cast<double>(kernel.at(x, down.first)) +
               static_cast<double>(down.fraction) * static_cast<double>(kernel.at(x, down.second));
    };
    return (1.0 - static_cast<double>(across.fraction)) * column(across.first) +
           static_cast<double>(across.fraction) * column(across.second);
}

/// Adds up the stamps of all light in one channel.
void Stamp(const Picture& light, std::size_t channel, const Kernel& kernel, float radius,
           double weight, Picture& glow) {
    const int width = light.width();
    const int height = light.height();
    std::vector<double> sums(light.pixels().size(), 0.0);
    const float halfWidth = static_cast<float>(kernel.width) * 0.5f;
    const float halfHeight = static_cast<float>(kernel.height) * 0.5f;
    const float largest = std::trunc(radius + 0.5f);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            float scale = light.at(x, y)[channel] * radius;
            if (!(scale >= 1)) {
                continue;
            }
            float reach = std::trunc(scale) + 1;
            if (reach > largest) {
                reach = largest;
                scale = largest;
            }
            if (reach < 1) {
                continue;
            }
            const float stepX = halfWidth / scale;
            const float stepY = halfHeight / scale;
            const int pixels = static_cast<int>(std::min(reach, 100000.0f));
            for (int row = std::max(0, y - pixels); row <= std::min(height - 1, y + pixels);
                 ++row) {
                for (int column = std::max(0, x - pixels);
                     column <= std::min(width - 1, x + pixels); ++column) {
                    sums[static_cast<std::size_t>(row) * static_cast<std::size_t>(width) +
                         static_cast<std::size_t>(column)] +=
                        weight * Sample(kernel, static_cast<float>(column - x) * stepX + halfWidth,
                                        static_cast<float>(row - y) * stepY + halfHeight);
                }
            }
        }
    }
    for (std::size_t i = 0; i < sums.size(); ++i) {
        glow.pixels()[i][channel] = static_cast<float>(sums[i]);
    }
}

Picture Convolve(const Picture& light, const Kernel& kernel, const Controls& controls,
                 const GlowPlan& plan, float reduction) {
    Picture glow(light.width(), light.height());
    const float weight = static_cast<float>(controls.glowIntensity / 100.0);
    float radius = static_cast<float>(static_cast<double>(static_cast<float>(controls.glowRadius)) *
                                      static_cast<double>(1.0f / reduction));
    radius *= plan.resolution;
    for (std::size_t channel = 0; channel < 4; ++channel) {
        if (plan.channels[channel]) {
            Stamp(light, channel, kernel, radius, static_cast<double>(weight), glow);
        }
    }
    if (std::abs(plan.resolution - 1) >= 1e-5f || std::abs(reduction - 1) >= 1e-5f) {
        const float gain = reduction * reduction / (plan.resolution * plan.resolution);
        for (PixelValues& pixel : glow.pixels()) {
            for (float& value : pixel) {
                value *= gain;
            }
        }
    }
    return glow;
}

Picture ReduceNearest(const Picture& picture, int width, int height) {
    const float stepX = static_cast<float>(picture.width()) / static_cast<float>(width);
    const float stepY = static_cast<float>(picture.height()) / static_cast<float>(height);
    return MakePicture(width, height, [&](int x, int y) {
        const int column = static_cast<int>(static_cast<float>(x) * stepX + 0.5f);
        const int row = static_cast<int>(static_cast<float>(y) * stepY + 0.5f);
        return picture.at(std::min(column, picture.width() - 1),
                          std::min(row, picture.height() - 1));
    });
}

Picture ReduceBilinear(const Picture& picture, int width, int height) {
    const float stepX = static_cast<float>(picture.width()) / static_cast<float>(width);
    const float stepY = static_cast<float>(picture.height()) / static_cast<float>(height);
    return MakePicture(width, height, [&](int x, int y) {
        const Between across = Locate(static_cast<float>(x) * stepX, picture.width());
        const Between down = Locate(static_cast<float>(y) * stepY, picture.height());
        PixelValues pixel{};
        for (std::size_t channel = 0; channel < 4; ++channel) {
            const auto line = [&](int row) {
                return picture.at(across.first, row)[channel] * (1 - across.fraction) +
                       picture.at(across.second, row)[channel] * across.fraction;
            };
            pixel[channel] =
                line(down.first) * (1 - down.fraction) + line(down.second) * down.fraction;
        }
        return pixel;
    });
}

Picture EnlargeNearest(const Picture& picture, int width, int height) {
    const float stepX = static_cast<float>(picture.width()) / static_cast<float>(width);
    const float stepY = static_cast<float>(picture.height()) / static_cast<float>(height);
    return MakePicture(width, height, [&](int x, int y) {
        const int column = static_cast<int>(std::floor(static_cast<float>(x) * stepX + 0.5f));
        const int row = static_cast<int>(std::floor(static_cast<float>(y) * stepY + 0.5f));
        return picture.at(std::min(column, picture.width() - 1),
                          std::min(row, picture.height() - 1));
    });
}

}  // namespace

void BlurTent(Picture& picture, int radius, const ChannelFlags& channels) {
    for (const bool vertical : {false, true}) {
        const int length = vertical ? picture.height() : picture.width();
        int reach = radius;
        if (2 * reach + 2 >= length) {
            reach = length / 2 - 2;
        }
        if (reach <= 0) {
            continue;
        }
        const Picture before = picture;
        const int peak = reach + 1;
        for (int y = 0; y < picture.height(); ++y) {
            for (int x = 0; x < picture.width(); ++x) {
                for (std::size_t channel = 0; channel < 4; ++channel) {
                    if (!channels[channel]) {
                        continue;
                    }
                    double sum = 0;
                    for (int k = -reach; k <= reach; ++k) {
                        const int place = std::clamp((vertical ? y : x) + k, 0, length - 1);
                        const PixelValues& pixel =
                            vertical ? before.at(x, place) : before.at(place, y);
                        sum += (peak - std::abs(k)) * static_cast<double>(pixel[channel]);
                    }
                    picture.at(x, y)[channel] =
                        static_cast<float>(sum / (static_cast<double>(peak) * peak));
                }
            }
        }
    }
}

Picture SpreadLight(const Picture& light, const Kernel& kernel, const Controls& controls,
                    const GlowPlan& plan) {
    auto quality = static_cast<std::size_t>(plan.qualityIndex);
    int width = static_cast<int>(static_cast<float>(light.width()) / kReduction[quality]);
    int height = static_cast<int>(static_cast<float>(light.height()) / kReduction[quality]);
    if (width == 0 || height == 0) {
        quality = 0;
    }
    if (quality == 0) {
        return plan.brightnessOnly ? light : Convolve(light, kernel, controls, plan, 1);
    }
    const Picture reduced = plan.highQuality ? ReduceBilinear(light, width, height)
                                             : ReduceNearest(light, width, height);
    Picture glow = EnlargeNearest(
        plan.brightnessOnly ? reduced
                            : Convolve(reduced, kernel, controls, plan, kReduction[quality]),
        light.width(), light.height());
    if (plan.highQuality) {
        BlurTent(glow, quality <= 1 ? 1 : kSmoothing[quality],
                 {plan.channels[kAlpha], true, true, true});
    }
    return glow;
}

}  // namespace vireon::conformance
