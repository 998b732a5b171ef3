#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

#include "tools/brushes/light.h"
#include "tools/brushes/series.h"
#include "tools/brushes/shapes.h"

// The shapes drawn with strokes.

namespace vireon::brushes {

namespace {

// Numbers from 0 to 1 that look thrown and are the same everywhere: the fraction of i times an
// irrational number.
double Thrown(int i, double irrational) {
    const double product = i * irrational;
    return product - std::floor(product);
}

using Lines = std::vector<Drawing::Line>;

// A splash seen from above: jets of many lengths leave the middle, thin out to a neck and end in a
// bead; beads that have come loose fly ahead, smaller the further out.
Lines SplashLines() {
    constexpr int kJets = 17;
    Lines lines;
    for (int i = 0; i < kJets; ++i) {
        const double direction = (i + 0.60 * Thrown(i, 0.61803398875)) / kJets;
        const double strength = Thrown(i, 0.41421356237);
        const double reach = 0.36 + 0.34 * strength;
        const double bend = 0.030 * (Thrown(i, 0.73205080757) - 0.5);
        const Position foot = Polar(0.05, direction);
        const Position neck = Polar(0.68 * reach, direction + 0.5 * bend);
        const Position head = Polar(reach, direction + bend);
        const double headSigma = 0.028 + 0.014 * strength;
        lines.push_back(
            {{foot, neck, 0.095, 0.024, 1.0, 0.50}, {neck, head, 0.024, headSigma, 0.50, 0.60}});
        double place = reach;
        double sigma = headSigma;
        double level = 0.58;
        for (int bead = 0; bead < 2; ++bead) {
            place += 0.12 + 0.08 * Thrown(2 * i + bead, 0.23606797750);
            sigma *= 0.78;
            level *= 0.80;
            if (place > 0.90) {
                break;
            }
            const double turn = 0.016 * (Thrown(5 * i + bead, 0.16227766017) - 0.5);
            const Position drop = Polar(place, direction + bend + turn);
            lines.push_back({{drop, drop, sigma, sigma, level, level}});
        }
    }
    return lines;
}

// How a branch grows and divides. Angles in turns; up is -0.25.
struct Growth {
    double lengthRatio;  // of a branch to the one that it springs from
    double spread;       // between the two offspring
    double drawn;        // direction towards which branches bend
    int generations;
};

struct Branch {
    Position from;
    double direction;
    double length;
    double sigma;
    double level;
    int number;  // of each branch its own; decides how it strays
};

void GrowBranch(Lines& lines, const Growth& growth, const Branch& branch, int generation) {
    constexpr int kPieces = 6;
    const bool twig = generation >= growth.generations;
    const double sigmaEnd = (twig ? 0.60 : 0.74) * branch.sigma;
    const double levelEnd = (twig ? 0.25 : 0.84) * branch.level;
    const double sway = 0.11 * (Thrown(branch.number, 0.61803398875) - 0.5);
    Position from = branch.from;
    double direction = branch.direction;
    Drawing::Line line;
    for (int i = 0; i < kPieces; ++i) {
        // To one side first and back to the other, and a little towards the light.
        direction += (2 * i < kPieces ? sway : -sway) / kPieces;
        direction += 0.05 * (growth.drawn - direction);
        const Position step = Polar(branch.length / kPieces, direction);
        const Position to{from.x + step.x, from.y + step.y};
        const double begin = static_cast<double>(i) / kPieces;
        const double end = (i + 1.0) / kPieces;
        const auto between = [](double a, double b, double t) { return a + t * (b - a); };
        line.push_back(
            {from, to, between(branch.sigma, sigmaEnd, begin), between(branch.sigma, sigmaEnd, end),
             between(branch.level, levelEnd, begin), between(branch.level, levelEnd, end)});
        from = to;
    }
    lines.push_back(line);
    if (twig) {
        return;
    }
    const double lean = 0.05 * (Thrown(branch.number, 0.41421356237) - 0.5);
    const double uneven = 0.40 * (Thrown(branch.number, 0.73205080757) - 0.5);
    for (int side = 0; side < 2; ++side) {
        const double sign = side == 0 ? -1.0 : 1.0;
        // The longer offspring keeps closer to the old direction.
        const double longer = 1.0 + sign * uneven;
        GrowBranch(lines, growth,
                   {from, direction + lean + sign * 0.5 * growth.spread / longer,
                    branch.length * growth.lengthRatio * longer, sigmaEnd, levelEnd,
                    2 * branch.number + side},
                   generation + 1);
    }
}

// A crown above the light, roots below it, the light where the trunk divides.
Lines TreeLines() {
    constexpr Position kFork{0.0, 0.0};
    constexpr Position kGround{0.03, 0.46};
    Lines lines;
    const Growth crown{0.80, 0.16, -0.25, 4};
    GrowBranch(lines, crown, {kFork, -0.205, 0.27, 0.050, 1.0, 11}, 1);
    GrowBranch(lines, crown, {kFork, -0.330, 0.28, 0.048, 1.0, 7}, 1);
    GrowBranch(lines, crown, {kFork, -0.440, 0.24, 0.042, 0.9, 5}, 2);
    GrowBranch(lines, crown, {{0.01, 0.10}, -0.075, 0.26, 0.042, 0.9, 9}, 2);
    lines.push_back({{kFork, {-0.025, 0.15}, 0.062, 0.056, 1.0, 0.97},
                     {{-0.025, 0.15}, {-0.015, 0.32}, 0.056, 0.054, 0.97, 0.93},
                     {{-0.015, 0.32}, kGround, 0.054, 0.056, 0.93, 0.90}});
    const Growth roots{0.72, 0.14, 0.25, 3};
    GrowBranch(lines, roots, {kGround, 0.225, 0.20, 0.040, 0.85, 6}, 1);
    GrowBranch(lines, roots, {kGround, 0.360, 0.24, 0.044, 0.85, 3}, 1);
    GrowBranch(lines, roots, {kGround, 0.110, 0.22, 0.044, 0.85, 8}, 1);
    return lines;
}

// Three arms that wind outwards and thin out, each with a fainter one behind it.
Lines WhirlLines() {
    constexpr int kArms = 6;
    constexpr int kPieces = 36;
    Lines lines;
    for (int arm = 0; arm < kArms; ++arm) {
        const bool faint = arm % 2 == 1;
        const double reach = faint ? 0.72 : 0.96;
        const auto place = [&](double t) {
            // Tightly wound inside, open outside.
            return Polar(0.05 + (reach - 0.05) * t,
                         static_cast<double>(arm) / kArms + 1.15 * std::sqrt(t + 0.02));
        };
        const auto sigma = [&](double t) { return (faint ? 0.034 : 0.054) * (1.0 - 0.62 * t); };
        const auto level = [&](double t) { return (faint ? 0.45 : 1.0) * (1.0 - t); };
        Drawing::Line line;
        for (int i = 0; i < kPieces; ++i) {
            const double t0 = static_cast<double>(i) / kPieces;
            const double t1 = (i + 1.0) / kPieces;
            line.push_back({place(t0), place(t1), sigma(t0), sigma(t1), level(t0), level(t1)});
        }
        lines.push_back(line);
    }
    return lines;
}

// A bolt that runs to and fro through the light and out to a point at both ends, with a spark that
// leaps on from its inner corners. The same turned by half a circle.
Lines BoltLines() {
    const Drawing::Line bolt{{{0.0, 0.0}, {0.27, -0.16}, 0.060, 0.055, 1.0, 0.96},
                             {{0.27, -0.16}, {-0.24, -0.45}, 0.055, 0.042, 0.96, 0.80},
                             {{-0.24, -0.45}, {0.20, -0.64}, 0.042, 0.031, 0.80, 0.60},
                             {{0.20, -0.64}, {0.05, -0.95}, 0.031, 0.014, 0.60, 0.20}};
    const Drawing::Line spark{{{0.27, -0.16}, {0.44, -0.22}, 0.038, 0.026, 0.66, 0.36},
                              {{0.44, -0.22}, {0.58, -0.36}, 0.026, 0.014, 0.36, 0.10}};
    Lines lines;
    for (const Drawing::Line& line : {bolt, spark}) {
        lines.push_back(line);
        Drawing::Line turned = line;
        for (Stroke& stroke : turned) {
            stroke.from = {-stroke.from.x, -stroke.from.y};
            stroke.to = {-stroke.to.x, -stroke.to.y};
        }
        lines.push_back(turned);
    }
    return lines;
}

}  // namespace

double Kuplah(Position p) {
    static const Drawing kDrawing(SplashLines());
    const double veil = Glow(p, 0.21, 0.28) + Glow(p, 0.34, 0.30);
    return veil * RimFade(p, 0.50) + 1.6 * kDrawing.intensity(p) * RimFade(p, 0.80);
}

double Tree(Position p) {
    static const Drawing kDrawing(TreeLines());
    const double veil = Glow(p, 0.22, 0.22) + Glow(p, 0.36, 0.35);
    return veil * RimFade(p, 0.50) + 1.1 * kDrawing.intensity(p) * RimFade(p, 0.78);
}

double Whoopy(Position p) {
    static const Drawing kDrawing(WhirlLines());
    const double veil = Glow(p, 0.16, 0.20) + Glow(p, 0.34, 0.28);
    return veil * RimFade(p, 0.50) + 1.6 * kDrawing.intensity(p) * RimFade(p, 0.75);
}

double Zig(Position p) {
    static const Drawing kDrawing(BoltLines());
    const double veil = Glow(p, 0.21, 0.24) + Glow(p, 0.36, 0.30);
    return veil * RimFade(p, 0.50) + 1.5 * kDrawing.intensity(p) * RimFade(p, 0.80);
}

}  // namespace vireon::brushes
