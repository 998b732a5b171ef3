#include "samples/paint.h"

#include <limits>

namespace vireon::scenes {

void FinishWithGrain(const Stage& stage, double steps, std::uint64_t seed) {
    Canvas& canvas = stage.canvas();
    Random random(seed);
    const float most =
        stage.range() == LightRange::kDisplay ? 1.0f : std::numeric_limits<float>::max();
    for (int y = 0; y < canvas.height(); ++y) {
        for (int x = 0; x < canvas.width(); ++x) {
            const float grain = static_cast<float>((random.unit() - 0.5) * steps / 255.0);
            const Colour colour = canvas.at(x, y);
            const auto finished = [&](float value) {
                return std::clamp(value + grain, 0.0f, most);
            };
            canvas.set(x, y, {finished(colour.red), finished(colour.green), finished(colour.blue)});
        }
    }
}

double FractalNoise(double x, double y, int octaves, std::uint64_t seed) {
    double sum = 0.0;
    double weight = 0.5;
    double weights = 0.0;
    for (int i = 0; i < octaves; ++i) {
        sum += weight * ValueNoise(x, y, seed + static_cast<std::uint64_t>(i) * 7919u);
        weights += weight;
        weight *= 0.5;
        // Turned a little each time, so that the lattices do not line up.
        const double turned = 1.6 * x + 1.2 * y;
        y = 1.6 * y - 1.2 * x + 17.3;
        x = turned + 5.7;
    }
    return sum / weights;
}

}  // namespace vireon::scenes
