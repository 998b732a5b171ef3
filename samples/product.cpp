#include <algorithm>
#include <cmath>

#include "samples/letters.h"
#include "samples/paint.h"
#include "samples/scenes.h"
#include "tools/brushes/series.h"

namespace vireon::scenes {

namespace {

constexpr double kFloor = 872.0;  // where the flask stands
constexpr double kCapTop = 214.0;
constexpr double kCapBottom = 402.0;
constexpr double kCollarBottom = 448.0;
constexpr double kBodyTop = 448.0;
constexpr double kShoulder = 560.0;
constexpr double kBodyRadius = 188.0;
constexpr double kLevel = 588.0;  // of the liquid
constexpr double kBase = 826.0;   // under the liquid: solid glass

double Ease(double from, double to, double x) {
    const double t = std::clamp((x - from) / (to - from), 0.0, 1.0);
    return t * t * (3.0 - 2.0 * t);
}

// 1 between two edges, with soft flanks.
double Band(double from, double to, double soft, double x) {
    return Ease(from - soft, from + soft, x) * (1.0 - Ease(to - soft, to + soft, x));
}

Colour Times(Colour a, Colour b) {
    return {a.red * b.red, a.green * b.green, a.blue * b.blue};
}

// The light table: white that falls off towards the corners.
Colour Ground(double x, double y) {
    const double fall = x * x / (1500.0 * 1500.0) + (y - 470.0) * (y - 470.0) / (1150.0 * 1150.0);
    return Colour{0.955f, 0.957f, 0.962f} * (1.0 - 0.34 * fall);
}

// Half the width of the glass at a height; 0 where there is none.
double GlassRadius(double y) {
    if (y < kBodyTop || y > kFloor) return 0.0;
    if (y < kShoulder) {
        const double t = (kShoulder - y) / (kShoulder - kBodyTop);
        const double bend = std::sqrt(std::max(0.0, 1.0 - t * t));
        return 66.0 + (kBodyRadius - 66.0) * bend;
    }
    constexpr double kCorner = 30.0;
    if (y > kFloor - kCorner) {
        const double t = (y - kFloor + kCorner) / kCorner;
        return kBodyRadius - kCorner * (1.0 - std::sqrt(std::max(0.0, 1.0 - t * t)));
    }
    return kBodyRadius;
}

// What polished gold shows of the studio, u from -1 at the left edge to 1 at the right.
Colour Gold(double u, double hot) {
    const double tone = 0.30 + 0.46 * Band(-0.86, -0.16, 0.16, u) +
                        0.20 * Band(-0.2, 0.34, 0.2, u) + 0.50 * Band(0.58, 0.84, 0.08, u) -
                        0.16 * Band(0.22, 0.56, 0.10, u);
    const double glint = Band(-0.60, -0.46, 0.035, u);
    const Colour gold = Mix({0.46f, 0.27f, 0.10f}, {1.02f, 0.82f, 0.52f}, tone);
    return gold * (0.92 - 0.35 * u * u * u * u) + Colour{1.0f, 0.93f, 0.78f} * (hot * glint);
}

Colour CapColour(double x, double y) {
    constexpr double kRadius = 74.0;
    const double u = x / kRadius;
    Colour colour = Gold(u, 7.0 * Band(kCapTop + 14.0, kCapBottom - 12.0, 3.0, y));
    // Turned lines, and the polished edges above and below.
    const double line = ValueNoise(y * 0.55, 0.5, 0x6C617468u) - 0.5;
    colour = colour * (1.0 + 0.05 * line);
    if (y < kCapTop + 7.0) return Mix(colour, {1.0f, 0.94f, 0.80f}, 0.65);
    if (y > kCapBottom - 5.0) return colour * 0.55;
    return colour;
}

Colour CollarColour(double x, double y) {
    constexpr double kRadius = 80.0;
    const Colour colour = Gold(x / kRadius, 5.0) * 0.94;
    if (y < kCapBottom + 6.0) return colour * 0.28;
    const double groove = Band(423.0, 426.0, 0.8, y) + Band(433.0, 436.0, 0.8, y);
    return colour * (1.0 - 0.55 * groove);
}

Colour GlassColour(double x, double y) {
    const double radius = GlassRadius(y);
    const double u = x / radius;
    const double edge = std::abs(u);
    // The glass bends the bright ground; close to its edges it shows the dark of the studio.
    const Colour behind = Ground(x * 0.6, 1180.0 - y) * (0.99 - 0.10 * edge * edge);
    Colour colour = Times(behind, {0.965f, 0.978f, 0.972f});
    // Liquid fills the inside up to its level; a wall of clear glass remains around it.
    const double wall = 15.0 / radius;
    const double inner = u / (1.0 - wall);
    const double chord = std::sqrt(std::max(0.0, 1.0 - inner * inner)) * radius / kBodyRadius;
    const double surface = kLevel + 9.0 * (1.0 - inner * inner);
    const double within = Ease(0.0, 0.10, chord);
    const double liquid =
        within * Ease(surface - 1.2, surface + 1.2, y) * (1.0 - Ease(kBase - 2.0, kBase + 2.0, y));
    const double depth = 0.30 + 0.95 * chord;
    const Colour tint{static_cast<float>(brushes::Exp(-0.10 * depth)),
                      static_cast<float>(brushes::Exp(-0.80 * depth)),
                      static_cast<float>(brushes::Exp(-1.02 * depth))};
    const double lit = 0.80 + 0.34 * Ease(640.0, 830.0, y) - 0.12 * Ease(-0.2, 0.9, u);
    colour = Mix(colour, Times(colour, tint) * lit, liquid);
    // The meniscus and the bottom of the liquid shine.
    const double meniscus = Band(surface - 3.5, surface + 0.5, 1.2, y) * within;
    colour = Mix(colour, {1.0f, 0.86f, 0.80f}, 0.75 * meniscus);
    const double heel = Band(kBase - 1.0, kBase + 4.0, 2.0, y) * within;
    colour = Mix(colour, {0.70f, 0.30f, 0.26f}, 0.55 * heel);
    const double sole = Band(kBase + 14.0, kBase + 30.0, 6.0, y) * (1.0 - edge);
    colour = Mix(colour, {0.99f, 0.74f, 0.68f}, 0.55 * sole);
    // Edges of the inner wall and of the glass.
    const double innerEdge = Band(1.0 - wall - 0.025, 1.0 - wall + 0.004, 0.012, edge);
    colour = colour * (1.0 - 0.22 * innerEdge);
    const double rim = Ease(0.935, 0.998, edge);
    colour = colour * (1.0 - 0.62 * rim);
    colour = colour * (1.0 - 0.45 * Ease(kFloor - 14.0, kFloor, y));
    colour = colour * (1.0 - 0.40 * (1.0 - Ease(kBodyTop, kBodyTop + 16.0, y)));

    // The name is printed on the front; letters narrow where the glass turns away.
    const double onGlass = radius * (u + u * u * u / 6.0);
    constexpr double kLetter = 42.0;
    constexpr double kSpacing = 0.36;
    const double width = TextWidth("ELARA", kSpacing) * kLetter;
    const double ink = TextDistance("ELARA", kSpacing, 0.095,
                                    {(onGlass + 0.5 * width) / kLetter, (y - 676.0) / kLetter}) *
                       kLetter;
    if (ink < 0.0) colour = {0.985f, 0.955f, 0.925f};
    const double rule = std::max(std::abs(onGlass) - 34.0, std::abs(y - 748.0) - 1.3);
    if (rule < 0.0) colour = {0.97f, 0.92f, 0.88f};

    // A tall soft box on the left, a narrow one on the right.
    const double tall = Band(516.0, 846.0, 9.0, y);
    const double left = Band(-0.80, -0.60, 0.018, u) * tall;
    colour = Mix(colour, {1.0f, 0.995f, 0.98f}, 0.66 * left);
    const double hot = Band(-0.765, -0.722, 0.010, u) * Band(540.0, 824.0, 6.0, y);
    colour = colour + Colour{1.0f, 0.98f, 0.95f} * (10.5 * hot);
    const double right = Band(0.79, 0.86, 0.012, u) * Band(540.0, 838.0, 9.0, y);
    colour = Mix(colour, {1.0f, 1.0f, 1.0f}, 0.58 * right);
    // The shoulder catches the lamp above.
    const double dx = (u + 0.34) / 0.20;
    const double dy = (y - 492.0) / 9.0;
    const double spot = std::max(0.0, 1.0 - dx * dx - dy * dy);
    return colour + Colour{1.0f, 0.98f, 0.95f} * (8.0 * spot * spot);
}

// The flask, where there is any of it at the place; x from its axis.
bool Flask(double x, double y, Colour* colour) {
    if (y >= kCapTop && y < kCapBottom) {
        const double round = std::max(0.0, 9.0 - (y - kCapTop));
        const double radius = 74.0 - 9.0 + std::sqrt(std::max(0.0, 81.0 - round * round));
        if (std::abs(x) > radius) return false;
        *colour = CapColour(x, y);
        return true;
    }
    if (y >= kCapBottom && y < kCollarBottom) {
        const double radius = y < kCapBottom + 6.0 ? 66.0 : 80.0;
        if (std::abs(x) > radius) return false;
        *colour = CollarColour(x, y);
        return true;
    }
    if (std::abs(x) >= GlassRadius(y)) return false;
    *colour = GlassColour(x, y);
    return true;
}

double Blob(double x, double y, double reachX, double reachY) {
    const double rest = 1.0 - (x * x / (reachX * reachX) + y * y / (reachY * reachY));
    return rest > 0.0 ? rest * rest : 0.0;
}

Colour Table(double x, double y) {
    Colour colour = Ground(x, y);
    // The flask's shade falls to the right; light that went through it tints its middle.
    const double broad = Blob(x - 210.0, y - 890.0, 560.0, 74.0);
    const double close = Blob(x - 40.0, y - (kFloor + 3.0), 290.0, 26.0);
    const double contact = Blob(x, y - kFloor, 200.0, 11.0);
    colour = Times(colour, Mix({1.0f, 1.0f, 1.0f}, {0.70f, 0.69f, 0.71f}, broad));
    colour = Times(colour, Mix({1.0f, 1.0f, 1.0f}, {0.58f, 0.54f, 0.56f}, close));
    colour = Times(colour, Mix({1.0f, 1.0f, 1.0f}, {0.35f, 0.31f, 0.32f}, contact));
    const double caustic = Blob(x - 250.0, y - 890.0, 250.0, 20.0);
    colour = Times(colour, Mix({1.0f, 1.0f, 1.0f}, {1.20f, 0.86f, 0.79f}, caustic));
    if (y > kFloor) {
        // The table mirrors a little, less and less with the distance.
        const double below = y - kFloor;
        Colour mirrored{};
        const double share = 0.20 * std::max(0.0, 1.0 - below / 190.0);
        if (share > 0.0 && Flask(x, kFloor - below, &mirrored)) {
            const Colour capped{std::min(mirrored.red, 1.0f), std::min(mirrored.green, 1.0f),
                                std::min(mirrored.blue, 1.0f)};
            colour = Mix(colour, capped, share);
        }
    }
    return colour;
}

}  // namespace

Canvas DrawProduct(int width, int height, LightRange range) {
    Canvas canvas(width, height);
    const Stage stage(canvas, range);
    const double middle = stage.middle();
    PaintAll(stage, [&](Point p) {
        const double x = p.x - middle;
        Colour colour{};
        return Flask(x, p.y, &colour) ? colour : Table(x, p.y);
    });
    FinishWithGrain(stage, 1.0, 0x70726F64u);
    return canvas;
}

}  // namespace vireon::scenes
