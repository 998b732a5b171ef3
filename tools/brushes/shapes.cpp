#include "tools/brushes/shapes.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

#include "tools/brushes/series.h"

// A stamp of a dim light is only some sixteen pixels wide, so a line that is to survive there must
// be no thinner than a sigma of about 0.03 radii (nine texels from edge to edge).

namespace vireon::brushes {

namespace {

constexpr Position kCentre{0.0, 0.0};

// Every shape carries this soft core, so that a light still reads as a light: a bright middle in a
// wider veil.
double Core(Position p) {
    return Spot(p, kCentre, 0.09) + 0.12 * Spot(p, kCentre, 0.24);
}

// A circle of light with a soft line; `radius` and `sigma` in radii of the shape.
double Ring(Position p, Position centre, double radius, double sigma) {
    const double off = Distance({p.x - centre.x, p.y - centre.y}) - radius;
    return Spot({off, 0.0}, kCentre, sigma);
}

// A round patch of even light with a soft edge.
double Disc(Position p, Position centre, double radius, double softness) {
    const double distance = Distance({p.x - centre.x, p.y - centre.y});
    return 1.0 - SmoothRamp(radius - softness, radius + softness, distance);
}

// A blade of light that starts at the centre.
struct Blade {
    Position along;  // unit vector
    double length;
    double sigma;  // of the cross profile at the root, in radii
};

Blade MakeBlade(double direction, double length, double sigma) {
    return {Polar(1.0, direction), length, sigma};
}

// The blade narrows towards its tip and dims; behind the centre it ends in a half round.
double BladeIntensity(const Blade& blade, Position p) {
    const double along = p.x * blade.along.x + p.y * blade.along.y;
    const double across = p.y * blade.along.x - p.x * blade.along.y;
    if (along >= blade.length) {
        return 0.0;
    }
    const double t = std::max(along, 0.0) / blade.length;
    const double behind = std::min(along, 0.0);
    const double level = (1.0 - t) / (1.0 + 1.6 * t);
    return level * Spot({across, behind}, kCentre, blade.sigma * (1.0 - 0.5 * t));
}

using SixBlades = std::array<Blade, 6>;

SixBlades EvenBlades(double firstDirection, double sigma) {
    SixBlades blades{};
    for (std::size_t i = 0; i < blades.size(); ++i) {
        blades[i] = MakeBlade(firstDirection + static_cast<double>(i) / 6.0, 0.98, sigma);
    }
    return blades;
}

// Where blades overlap at their roots the brightest counts.
double BrightestBlade(const SixBlades& blades, Position p) {
    double brightest = 0.0;
    for (const Blade& blade : blades) {
        brightest = std::max(brightest, BladeIntensity(blade, p));
    }
    return brightest;
}

// The core with six sharp spikes.
double SixSpikes(const SixBlades& blades, Position p) {
    return Core(p) + 0.62 * BrightestBlade(blades, p);
}

// The drops of a splash: each leaves the middle on a broad foot, narrows to a neck and swells again
// to a round head; most have a droplet ahead of them that has come loose.
std::vector<Stroke> SplashStrokes() {
    struct Drop {
        double direction;
        double reach;
        double headSigma;
        double dropletReach;  // 0: none
        double dropletTurn;
        double dropletSigma;
    };
    static constexpr std::array<Drop, 11> kDrops{{{0.010, 0.62, 0.046, 0.84, 0.008, 0.034},
                                                  {0.107, 0.46, 0.040, 0.66, -0.014, 0.030},
                                                  {0.176, 0.70, 0.050, 0.90, 0.006, 0.028},
                                                  {0.296, 0.50, 0.042, 0.74, 0.010, 0.036},
                                                  {0.372, 0.64, 0.044, 0.0, 0.0, 0.0},
                                                  {0.455, 0.44, 0.040, 0.63, -0.010, 0.032},
                                                  {0.527, 0.68, 0.048, 0.88, 0.010, 0.034},
                                                  {0.640, 0.48, 0.042, 0.0, 0.0, 0.0},
                                                  {0.703, 0.66, 0.046, 0.86, -0.012, 0.036},
                                                  {0.812, 0.52, 0.044, 0.73, 0.012, 0.030},
                                                  {0.905, 0.72, 0.046, 0.91, -0.004, 0.028}}};
    std::vector<Stroke> strokes;
    for (const Drop& drop : kDrops) {
        const Position foot = Polar(0.06, drop.direction);
        const Position neck = Polar(0.62 * drop.reach, drop.direction);
        const Position head = Polar(drop.reach, drop.direction);
        strokes.push_back({foot, neck, 0.105, 0.034, 1.0, 0.74});
        strokes.push_back({neck, head, 0.034, 0.90 * drop.headSigma, 0.74, 0.86});
        if (drop.dropletReach > 0.0) {
            const Position droplet = Polar(drop.dropletReach, drop.direction + drop.dropletTurn);
            strokes.push_back({droplet, droplet, drop.dropletSigma, drop.dropletSigma, 0.8, 0.8});
        }
    }
    return strokes;
}

// Grows a branch and its offspring. Angles in turns; up is -0.25.
void GrowBranch(std::vector<Stroke>& strokes, Position from, double direction, double length,
                double level, int generation) {
    constexpr int kGenerations = 5;
    const Position step = Polar(length, direction);
    const Position to{from.x + step.x, from.y + step.y};
    const double sigma = 0.052 - 0.0075 * generation;
    const double levelEnd = level * 0.84;
    strokes.push_back({from, to, sigma, sigma - 0.006, level, levelEnd});
    if (generation + 1 >= kGenerations) {
        return;
    }
    // The two sides differ a little, and in turn, so that the crown does not look stamped.
    const double lean = generation % 2 == 0 ? 0.012 : -0.016;
    GrowBranch(strokes, to, direction - 0.075 + lean, length * 0.76, levelEnd, generation + 1);
    GrowBranch(strokes, to, direction + 0.080 + lean, length * 0.72, levelEnd, generation + 1);
}

std::vector<Stroke> TreeStrokes() {
    std::vector<Stroke> strokes;
    // The trunk, from the ground to the light in the fork; then three limbs and two roots.
    const Position ground{0.0, 0.80};
    strokes.push_back({ground, kCentre, 0.075, 0.055, 0.75, 1.0});
    GrowBranch(strokes, kCentre, -0.250, 0.30, 0.95, 1);
    GrowBranch(strokes, kCentre, -0.375, 0.30, 0.95, 1);
    GrowBranch(strokes, kCentre, -0.125, 0.30, 0.95, 1);
    strokes.push_back({{0.0, 0.66}, {-0.26, 0.86}, 0.05, 0.03, 0.7, 0.4});
    strokes.push_back({{0.0, 0.66}, {0.24, 0.87}, 0.05, 0.03, 0.7, 0.4});
    return strokes;
}

std::vector<Stroke> BoltStrokes() {
    // From the upper right to the lower left, the middle leg through the centre; the bolt is broad
    // and bright in the middle and runs to a point at both ends.
    static constexpr std::array<Position, 6> kCorners{
        {{0.24, -0.92}, {-0.29, -0.55}, {0.33, -0.20}, {-0.33, 0.20}, {0.29, 0.55}, {-0.24, 0.92}}};
    constexpr std::array<double, 6> kSigmas{0.026, 0.046, 0.058, 0.058, 0.046, 0.026};
    constexpr std::array<double, 6> kLevels{0.45, 0.78, 1.0, 1.0, 0.78, 0.45};
    std::vector<Stroke> strokes;
    for (std::size_t i = 0; i + 1 < kCorners.size(); ++i) {
        strokes.push_back(
            {kCorners[i], kCorners[i + 1], kSigmas[i], kSigmas[i + 1], kLevels[i], kLevels[i + 1]});
    }
    return strokes;
}

}  // namespace

// A soft round glow: a bright core whose light runs out in a long smooth tail.
double Gaussian(Position p) {
    return Spot(p, kCentre, 0.10) + 0.30 * Spot(p, kCentre, 0.22) + 0.11 * Spot(p, kCentre, 0.40);
}

// A ring around the light, with a breath of light inside it.
double Hoop(Position p) {
    return Core(p) + 0.34 * Ring(p, kCentre, 0.70, 0.055) + 0.02 * Disc(p, kCentre, 0.55, 0.25);
}

// A splash: drops of light thrown out unevenly in every direction, with droplets ahead of them.
double Kuplah(Position p) {
    static const std::vector<Stroke> kStrokes = SplashStrokes();
    return Core(p) + 0.30 * BrightestStroke(kStrokes, p);
}

// A dense round body, even across and soft at its edge, a little denser in the middle.
double Mass(Position p) {
    return Disc(p, kCentre, 0.54, 0.26) + 0.35 * Spot(p, kCentre, 0.22);
}

// The star of a six-bladed iris: broad soft blades, brighter and darker in turn along their length,
// around a wide core.
double SixFlare(Position p) {
    static const SixBlades kBlades = EvenBlades(1.0 / 24.0, 0.088);
    const double ripple = 0.80 + 0.20 * CosTurns(Distance(p) / 0.24);
    return Core(p) + 0.06 * Spot(p, kCentre, 0.32) + 0.50 * ripple * BrightestBlade(kBlades, p);
}

// Six sharp even spikes, two of them along the horizontal.
double SixSpikeHorizontal(Position p) {
    static const SixBlades kBlades = EvenBlades(0.0, 0.045);
    return SixSpikes(kBlades, p);
}

// Six sharp even spikes, two of them along the vertical.
double SixSpikeVertical(Position p) {
    static const SixBlades kBlades = EvenBlades(0.25, 0.045);
    return SixSpikes(kBlades, p);
}

// Six sharp spikes thrown askew, of uneven lengths and widths.
double SixSpikeWhack(Position p) {
    static const SixBlades kBlades{MakeBlade(0.035, 0.98, 0.050), MakeBlade(0.165, 0.66, 0.046),
                                   MakeBlade(0.395, 0.86, 0.046), MakeBlade(0.548, 0.58, 0.044),
                                   MakeBlade(0.660, 0.97, 0.050), MakeBlade(0.865, 0.76, 0.046)};
    return SixSpikes(kBlades, p);
}

// What a lens makes of a light: rings around it, and a chain of ghosts on a slanting axis.
double Spectacle(Position p) {
    struct Ghost {
        double place;  // along the axis, from the centre
        double radius;
        double level;
    };
    static constexpr std::array<Ghost, 6> kGhosts{{{-0.76, 0.13, 0.15},
                                                   {-0.50, 0.075, 0.20},
                                                   {-0.24, 0.05, 0.16},
                                                   {0.26, 0.06, 0.18},
                                                   {0.52, 0.10, 0.16},
                                                   {0.79, 0.085, 0.18}}};
    constexpr double kAxis = 0.09;
    double light = Core(p) + 0.24 * Ring(p, kCentre, 0.37, 0.050) +
                   0.15 * Ring(p, kCentre, 0.64, 0.050) + 0.10 * Ring(p, kCentre, 0.89, 0.050);
    for (const Ghost& ghost : kGhosts) {
        const Position centre = Polar(ghost.place, kAxis);
        light += ghost.level * (0.75 * Disc(p, centre, ghost.radius, 0.035) +
                                0.35 * Ring(p, centre, ghost.radius, 0.028));
    }
    return light;
}

// A cone: light that falls in a straight line from the centre outwards, on a small bright core.
double Tent(Position p) {
    return std::max(0.0, 1.0 - Distance(p) / 0.88) + 0.8 * Spot(p, kCentre, 0.09);
}

// A tree of light: a trunk that forks at the centre into branches and twigs.
double Tree(Position p) {
    static const std::vector<Stroke> kStrokes = TreeStrokes();
    return 0.8 * Core(p) + 0.40 * BrightestStroke(kStrokes, p);
}

// A whirl: three arms that wind outwards around the light and thin out.
double Whoopy(Position p) {
    const double radius = Distance(p);
    if (radius == 0.0) {
        return Core(p);
    }
    // cos(3 angle) and sin(3 angle) of the direction, by the triple-angle formulas.
    const double c = p.x / radius;
    const double s = p.y / radius;
    const double cos3 = c * (4.0 * c * c - 3.0);
    const double sin3 = s * (3.0 - 4.0 * s * s);
    // The arms turn with the square root of the distance: tightly wound inside, open outside.
    const double winding = 3.6 * std::sqrt(radius + 0.02);
    const double wave = cos3 * CosTurns(winding) + sin3 * SinTurns(winding);
    const double crest = Exp(-2.6 * (1.0 - wave));
    const double fade = SmoothRamp(0.05, 0.22, radius) * (1.0 - SmoothRamp(0.45, 0.98, radius));
    return Core(p) + 0.24 * crest * fade;
}

// A bolt that runs to and fro across the light.
double Zig(Position p) {
    static const std::vector<Stroke> kStrokes = BoltStrokes();
    return 0.8 * Core(p) + 0.45 * BrightestStroke(kStrokes, p);
}

std::span<const Shape> Shapes() {
    static constexpr std::array<Shape, 13> kShapes{{
        {"gaussian.brush", "Gaussian", Gaussian},
        {"hoop.brush", "Hoop", Hoop},
        {"kuplah.brush", "Kuplah", Kuplah},
        {"mass.brush", "Mass", Mass},
        {"sixFlare.brush", "Six Flare", SixFlare},
        {"sixSpikeHoriz.brush", "Six Spike Horizontal", SixSpikeHorizontal},
        {"sixSpikeVert.brush", "Six Spike Vertical", SixSpikeVertical},
        {"sixSpikeWhack.brush", "Six Spike Whack", SixSpikeWhack},
        {"spectacle.brush", "Spectacle", Spectacle},
        {"Tent.brush", "Tent", Tent},
        {"Tree.brush", "Tree", Tree},
        {"Whoopy.brush", "Whoopy", Whoopy},
        {"Zig.brush", "Zig", Zig},
    }};
    return kShapes;
}

}  // namespace vireon::brushes
