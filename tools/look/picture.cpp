#include "tools/look/picture.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <stdexcept>

namespace vireon::look {

namespace {

constexpr std::size_t kColours = 3;
constexpr double kWhite = 0.99;

double Shown(float sample) {
    return std::min(static_cast<double>(sample), 1.0);
}

}  // namespace

std::shared_ptr<headless::World> LayerOf(const scenes::Canvas& canvas, headless::Depth depth) {
    auto world = std::make_shared<headless::World>(canvas.width(), canvas.height(), depth);
    const float* pixel = canvas.samples().data();
    for (int y = 0; y < canvas.height(); ++y) {
        for (int x = 0; x < canvas.width(); ++x, pixel += 4) {
            world->setColor(x, y, {pixel[3], pixel[0], pixel[1], pixel[2]});
        }
    }
    return world;
}

Picture PictureOf(const headless::World& world) {
    Picture picture{world.width(), world.height(), {}};
    picture.samples.reserve(static_cast<std::size_t>(world.width()) *
                            static_cast<std::size_t>(world.height()) * kColours);
    for (int y = 0; y < world.height(); ++y) {
        for (int x = 0; x < world.width(); ++x) {
            const sdk::PF_PixelFloat pixel = world.color(x, y);
            for (const float colour : {pixel.red, pixel.green, pixel.blue}) {
                picture.samples.push_back(colour * pixel.alpha);
            }
        }
    }
    return picture;
}

Brightness BrightnessOf(const Picture& picture) {
    Brightness brightness;
    for (const float sample : picture.samples) {
        brightness.mean += Shown(sample);
        if (sample >= kWhite) brightness.white += 1.0;
    }
    const auto count = static_cast<double>(picture.samples.size());
    brightness.mean /= count;
    brightness.white /= count;
    return brightness;
}

double LightOf(const Picture& picture) {
    double sum = 0.0;
    for (const float sample : picture.samples) sum += static_cast<double>(sample);
    return sum;
}

double LightInRing(const Picture& picture, scenes::Point centre, double inner, double outer) {
    double sum = 0.0;
    double count = 0.0;
    const float* pixel = picture.samples.data();
    for (int y = 0; y < picture.height; ++y) {
        for (int x = 0; x < picture.width; ++x, pixel += kColours) {
            const double distance = std::hypot(x + 0.5 - centre.x, y + 0.5 - centre.y);
            if (distance < inner || distance >= outer) continue;
            for (std::size_t c = 0; c < kColours; ++c) sum += static_cast<double>(pixel[c]);
            count += kColours;
        }
    }
    return count > 0.0 ? sum / count : 0.0;
}

Difference DifferenceOf(const Picture& a, const Picture& b) {
    if (a.width != b.width || a.height != b.height) {
        throw std::invalid_argument("pictures of different sizes cannot be compared");
    }
    Difference difference;
    for (std::size_t i = 0; i < a.samples.size(); ++i) {
        const double apart = std::abs(Shown(a.samples[i]) - Shown(b.samples[i]));
        difference.mean += apart;
        difference.most = std::max(difference.most, apart);
    }
    difference.mean /= static_cast<double>(a.samples.size());
    return difference;
}

Picture Reduced(const Picture& picture, int factor) {
    Picture reduced{picture.width / factor, picture.height / factor, {}};
    const double share = 1.0 / (static_cast<double>(factor) * factor);
    for (int y = 0; y < reduced.height; ++y) {
        for (int x = 0; x < reduced.width; ++x) {
            for (int c = 0; c < static_cast<int>(kColours); ++c) {
                double sum = 0.0;
                for (int j = 0; j < factor; ++j) {
                    for (int i = 0; i < factor; ++i) {
                        const int pixel = (y * factor + j) * picture.width + x * factor + i;
                        sum += static_cast<double>(
                            picture.samples[static_cast<std::size_t>(pixel) * kColours +
                                            static_cast<std::size_t>(c)]);
                    }
                }
                reduced.samples.push_back(static_cast<float>(sum * share));
            }
        }
    }
    return reduced;
}

std::shared_ptr<headless::World> Reduced(const headless::World& layer, int factor) {
    auto reduced = std::make_shared<headless::World>(layer.width() / factor,
                                                     layer.height() / factor, layer.depth());
    const auto share = static_cast<float>(1.0 / (static_cast<double>(factor) * factor));
    for (int y = 0; y < reduced->height(); ++y) {
        for (int x = 0; x < reduced->width(); ++x) {
            sdk::PF_PixelFloat sum{};
            for (int j = 0; j < factor; ++j) {
                for (int i = 0; i < factor; ++i) {
                    const sdk::PF_PixelFloat pixel = layer.color(x * factor + i, y * factor + j);
                    sum.alpha += pixel.alpha;
                    sum.red += pixel.alpha * pixel.red;
                    sum.green += pixel.alpha * pixel.green;
                    sum.blue += pixel.alpha * pixel.blue;
                }
            }
            const float colour = sum.alpha > 0.0f ? 1.0f / sum.alpha : 0.0f;
            reduced->setColor(
                x, y, {sum.alpha * share, sum.red * colour, sum.green * colour, sum.blue * colour});
        }
    }
    return reduced;
}

}  // namespace vireon::look
