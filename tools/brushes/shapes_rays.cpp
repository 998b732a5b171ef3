#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <span>

#include "tools/brushes/light.h"
#include "tools/brushes/series.h"
#include "tools/brushes/shapes.h"

// The shapes whose rays leave the light in straight lines.

namespace vireon::brushes {

namespace {

// A ray of light that starts at the centre, widest there, and runs out to a point.
struct Ray {
    Position along;  // unit vector
    double length;
    double sigma;  // of the cross profile at the root, in radii
    double level;
};

Ray MakeRay(double direction, double length, double sigma, double level) {
    return {Polar(1.0, direction), length, sigma, level};
}

// At the root all rays lie on each other; they rise to their full light only out of the core.
constexpr double kRise = 0.30;

// Behind the centre a ray ends in a half round.
double RayLight(const Ray& ray, Position p) {
    const double along = p.x * ray.along.x + p.y * ray.along.y;
    const double across = p.y * ray.along.x - p.x * ray.along.y;
    if (along >= ray.length) {
        return 0.0;
    }
    const double t = std::max(along, 0.0) / ray.length;
    const double behind = std::min(along, 0.0);
    const double left = 1.0 - t;
    const double rise = 0.08 + 0.92 * SmoothRamp(0.0, kRise, along);
    const double level = ray.level * rise * left * std::sqrt(left) / (1.0 + 1.2 * t);
    const double sigma = ray.sigma * (1.0 - 0.62 * t);
    return level * LineProfile((across * across + behind * behind) / (sigma * sigma));
}

// Rays add up, as light does.
double RaysLight(std::span<const Ray> rays, Position p) {
    double light = 0.0;
    for (const Ray& ray : rays) {
        light += RayLight(ray, p);
    }
    return light;
}

using SixRays = std::array<Ray, 6>;

SixRays EvenRays(double firstDirection, double sigma) {
    SixRays rays{};
    for (std::size_t i = 0; i < rays.size(); ++i) {
        rays[i] = MakeRay(firstDirection + static_cast<double>(i) / 6.0, 1.0, sigma, 1.0);
    }
    return rays;
}

// The light that the spikes stand in.
double SpikeCore(Position p) {
    return (Glow(p, 0.205, 0.25) + Glow(p, 0.275, 0.26)) * RimFade(p, 0.50);
}

constexpr double kSpikeLevel = 1.4;
constexpr double kSpikeSigma = 0.052;

}  // namespace

// What an iris of six blades makes of a light: each of its edges throws a fan of three fine rays,
// with a slow beat of dark and bright that the distance blurs, around a wide soft core.
double SixFlare(Position p) {
    constexpr double kTurn = 1.0 / 24.0;
    constexpr double kFan = 0.017;
    static const std::array<SixRays, 3> kFans{EvenRays(kTurn - kFan, 0.05), EvenRays(kTurn, 0.06),
                                              EvenRays(kTurn + kFan, 0.05)};
    const double rays = 0.55 * RaysLight(kFans[0], p) + 0.9 * RaysLight(kFans[1], p) +
                        0.55 * RaysLight(kFans[2], p);
    const double radius = Distance(p);
    const double beat = 1.0 + 0.16 * (1.0 - radius) * CosTurns(radius / 0.21);
    const double core = Glow(p, 0.19, 0.26) + Glow(p, 0.32, 0.32);
    return core * RimFade(p, 0.50) + 1.0 * beat * rays;
}

// Six sharp even spikes, two of them along the horizontal.
double SixSpikeHorizontal(Position p) {
    static const SixRays kRays = EvenRays(0.0, kSpikeSigma);
    return SpikeCore(p) + kSpikeLevel * RaysLight(kRays, p);
}

// Six sharp even spikes, two of them along the vertical.
double SixSpikeVertical(Position p) {
    static const SixRays kRays = EvenRays(0.25, kSpikeSigma);
    return SpikeCore(p) + kSpikeLevel * RaysLight(kRays, p);
}

// Six sharp spikes thrown askew, of uneven lengths and strengths.
double SixSpikeWhack(Position p) {
    static const SixRays kRays{
        MakeRay(0.038, 1.00, 0.050, 1.10), MakeRay(0.168, 0.62, 0.046, 0.90),
        MakeRay(0.392, 0.88, 0.048, 1.00), MakeRay(0.556, 0.56, 0.044, 0.85),
        MakeRay(0.664, 0.99, 0.050, 1.10), MakeRay(0.868, 0.74, 0.046, 0.95)};
    return SpikeCore(p) + kSpikeLevel * RaysLight(kRays, p);
}

}  // namespace vireon::brushes
