#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

#include "samples/neon_parts.h"
#include "samples/paint.h"

namespace vireon::scenes {

namespace {

// Light that reaches the wall, and from where it mostly comes.
struct Lighting {
    Colour colour{0.0f, 0.0f, 0.0f};
    double towardsX = 0.0;  // pull towards the lights, weighted by their strength
    double towardsY = 0.0;
    double weight = 0.0;
};

struct Source {
    Point place;
    double height;  // before the wall
    Colour light;
};

double Brightness(Colour c) {
    return static_cast<double>(c.red) * 0.3 + static_cast<double>(c.green) * 0.5 +
           static_cast<double>(c.blue) * 0.2;
}

std::vector<Source> SourcesOf(const NeonSign& sign) {
    constexpr double kTubeHeight = 42.0;
    constexpr double kLampHeight = 64.0;
    std::vector<Source> sources;
    for (const NeonTube& tube : sign.tubes) {
        for (std::size_t i = 0; i + 1 < tube.points.size(); ++i) {
            const Point a = tube.points[i];
            const Point b = tube.points[i + 1];
            const double length = std::sqrt((b.x - a.x) * (b.x - a.x) + (b.y - a.y) * (b.y - a.y));
            const int pieces = static_cast<int>(length / 24.0) + 1;
            for (int k = 0; k < pieces; ++k) {
                const double t = (k + 0.5) / pieces;
                sources.push_back({{a.x + (b.x - a.x) * t, a.y + (b.y - a.y) * t},
                                   kTubeHeight,
                                   tube.light * (length / pieces * tube.width)});
            }
        }
    }
    for (const NeonLamp& lamp : sign.lamps) {
        sources.push_back({lamp.place, kLampHeight, lamp.light * (lamp.radius * lamp.radius)});
    }
    return sources;
}

// The lighting of the wall on a coarse grid, read smoothly.
class LightMap {
  public:
    LightMap(double width, const std::vector<Source>& sources)
        : left_(0.5 * (width - std::min(width, kReach))),
          columns_(static_cast<int>(std::min(width, kReach) / kStep) + 3),
          rows_(static_cast<int>(Stage::kHeight / kStep) + 3),
          cells_(static_cast<std::size_t>(columns_) * static_cast<std::size_t>(rows_)) {
        for (int row = 0; row < rows_; ++row) {
            for (int column = 0; column < columns_; ++column) {
                cells_[index(column, row)] =
                    reaching({left_ + column * kStep, row * kStep}, sources);
            }
        }
    }

    Lighting at(Point p) const {
        const double x = std::clamp((p.x - left_) / kStep, 0.0, columns_ - 1.001);
        const double y = std::clamp(p.y / kStep, 0.0, rows_ - 1.001);
        const int column = static_cast<int>(x);
        const int row = static_cast<int>(y);
        Lighting mean;
        for (int corner = 0; corner < 4; ++corner) {
            const int right = corner % 2;
            const int down = corner / 2;
            const double share = (right == 1 ? x - column : 1.0 - (x - column)) *
                                 (down == 1 ? y - row : 1.0 - (y - row));
            const Lighting& cell = cells_[index(column + right, row + down)];
            mean.colour = mean.colour + cell.colour * share;
            mean.towardsX += cell.towardsX * share;
            mean.towardsY += cell.towardsY * share;
            mean.weight += cell.weight * share;
        }
        return mean;
    }

  private:
    static constexpr double kStep = 10.0;
    // Further from the middle of a very wide wall the light is that of the edge: next to none.
    static constexpr double kReach = 16000.0;

    std::size_t index(int column, int row) const {
        return static_cast<std::size_t>(row) * static_cast<std::size_t>(columns_) +
               static_cast<std::size_t>(column);
    }

    static Lighting reaching(Point p, const std::vector<Source>& sources) {
        Lighting sum;
        for (const Source& source : sources) {
            const double dx = source.place.x - p.x;
            const double dy = source.place.y - p.y;
            const double far = dx * dx + dy * dy + source.height * source.height;
            const double distance = std::sqrt(far);
            const double share = source.height / (far * distance);
            sum.colour = sum.colour + source.light * share;
            const double weight = Brightness(source.light) * share;
            sum.towardsX += weight * dx / distance;
            sum.towardsY += weight * dy / distance;
            sum.weight += weight;
        }
        return sum;
    }

    double left_;
    int columns_;
    int rows_;
    std::vector<Lighting> cells_;
};

struct Surface {
    Colour albedo;
    double tiltX = 0.0;  // slope of the surface: towards the right and downwards positive
    double tiltY = 0.0;
    double open = 1.0;  // share of the light that reaches into a joint
};

double Ease(double t) {
    t = std::clamp(t, 0.0, 1.0);
    return t * t * (3.0 - 2.0 * t);
}

Surface BrickAt(Point p) {
    constexpr double kLength = 116.0;
    constexpr double kCourse = 40.0;
    constexpr double kJoint = 3.2;  // half of its width
    constexpr double kRound = 4.0;
    const double wobbleX = 2.2 * (FractalNoise(p.x / 26.0, p.y / 26.0, 2, 0x776F6231u) - 0.5);
    const double wobbleY = 2.2 * (FractalNoise(p.x / 26.0, p.y / 26.0, 2, 0x776F6232u) - 0.5);
    const double course = std::floor((p.y + wobbleY) / kCourse);
    const double shift = kLength * 0.5 * (course - 2.0 * std::floor(course * 0.5));
    const double along = p.x + wobbleX + shift + 4000.0;
    const double brick = std::floor(along / kLength);
    const double x = along - brick * kLength;
    const double y = p.y + wobbleY - course * kCourse;
    const double left = x - kJoint;
    const double right = kLength - kJoint - x;
    const double top = y - kJoint;
    const double bottom = kCourse - kJoint - y;
    const double inside = std::min({left, right, top, bottom});

    const auto seed = static_cast<std::uint64_t>(brick * 131.0 + (course + 64.0) * 7207.0);
    Random random(seed);
    const double tone = random.between(0.72, 1.18);
    const double warm = random.between(-0.05, 0.05);
    const double burnt = random.chance(0.10) ? 0.62 : 1.0;
    const double fine = FractalNoise(p.x / 9.0, p.y / 7.0, 4, 0x6272696Bu);
    const double broad = FractalNoise(p.x / 170.0, p.y / 130.0, 4, 0x736F6F74u);
    const double grain = (0.66 + 0.68 * fine) * (0.72 + 0.56 * broad);

    Surface surface;
    const Colour brickColour =
        Colour{static_cast<float>(0.37 + warm), 0.190f, static_cast<float>(0.165 - 0.4 * warm)} *
        (tone * burnt * grain);
    const Colour mortar = Colour{0.21f, 0.19f, 0.175f} * grain;
    const double solid = Ease((inside + 1.0) / 2.0);
    surface.albedo = Mix(mortar, brickColour, solid);
    surface.open = 0.42 + 0.58 * Ease((inside + 3.0) / 5.0);
    // The brick's edges are rounded; its face is rough.
    const auto bevel = [](double distance) {
        return distance > -1.5 && distance < kRound ? 1.0 - std::max(distance, 0.0) / kRound : 0.0;
    };
    surface.tiltX = 0.75 * (bevel(right) - bevel(left));
    surface.tiltY = 0.75 * (bevel(bottom) - bevel(top));
    surface.tiltX += 1.5 * (FractalNoise(p.x / 14.0, p.y / 12.0, 3, 0x74697831u) - 0.5);
    surface.tiltY += 1.5 * (FractalNoise(p.x / 14.0, p.y / 12.0, 3, 0x74697932u) - 0.5);
    return surface;
}

}  // namespace

void PaintNeonWall(const Stage& stage, const NeonSign& sign) {
    const LightMap lights(stage.width(), SourcesOf(sign));
    // How much of the lights' sum the wall shows.
    constexpr double kExposure = 1.7;
    const Colour moonlight{0.052f, 0.064f, 0.115f};
    PaintAll(stage, [&](Point p) {
        const Surface surface = BrickAt(p);
        const Lighting reaching = lights.at(p);
        double facing = 1.0;
        if (reaching.weight > 0.0) {
            facing += 0.9 *
                      (surface.tiltX * reaching.towardsX + surface.tiltY * reaching.towardsY) /
                      reaching.weight;
        }
        // A little of the night comes from above on the left.
        const double night = std::max(0.2, 1.0 - 0.5 * surface.tiltY - 0.3 * surface.tiltX);
        const Colour falling =
            reaching.colour * (kExposure * std::max(0.10, facing)) + moonlight * night;
        // A wall close to a tube gets far more light than it can show beside the tube itself.
        const auto shown = [&](float albedo, float light) {
            const double value =
                static_cast<double>(albedo) * static_cast<double>(light) * surface.open;
            constexpr double kMost = 0.56;
            return static_cast<float>(value / (1.0 + value / kMost));
        };
        return Colour{shown(surface.albedo.red, falling.red),
                      shown(surface.albedo.green, falling.green),
                      shown(surface.albedo.blue, falling.blue)};
    });
}

}  // namespace vireon::scenes
