#include <algorithm>
#include <cmath>

#include "samples/paint.h"
#include "samples/portrait_figure.h"
#include "samples/scenes.h"

namespace vireon::scenes {

namespace {

// Units of the design for one of the figure, and where the figure's origin is.
constexpr double kSize = 292.0;
constexpr double kHeadX = -8.0;  // from the middle
constexpr double kHeadY = 452.0;

constexpr double kNear = 1.7;  // z before the figure
constexpr double kFar = -2.0;  // z behind it

const Vec3 kKey = Direction({-0.80, 0.46, 0.50});
const Vec3 kRim = Direction({0.86, 0.34, -0.40});
const Vec3 kFill = Direction({0.55, 0.05, 0.80});

Colour Times(Colour a, Colour b) {
    return {a.red * b.red, a.green * b.green, a.blue * b.blue};
}

double Ease(double from, double to, double x) {
    const double t = std::clamp((x - from) / (to - from), 0.0, 1.0);
    return t * t * (3.0 - 2.0 * t);
}

double DistanceAt(Vec3 p) {
    return FigureAt(p).distance;
}

Vec3 NormalAt(Vec3 p) {
    constexpr double kStep = 0.0025;
    const Vec3 a{1.0, -1.0, -1.0};
    const Vec3 b{-1.0, -1.0, 1.0};
    const Vec3 c{-1.0, 1.0, -1.0};
    const Vec3 d{1.0, 1.0, 1.0};
    return Direction(a * DistanceAt(p + a * kStep) + b * DistanceAt(p + b * kStep) +
                     c * DistanceAt(p + c * kStep) + d * DistanceAt(p + d * kStep));
}

// Share of a wide light that reaches a place: `wide` is its half width seen from there.
double Reaching(Vec3 p, Vec3 towards, double wide) {
    double open = 1.0;
    double way = 0.06;
    for (int i = 0; i < 48 && way < 2.4; ++i) {
        const double clear = DistanceAt(p + towards * way);
        open = std::min(open, 0.5 + 0.5 * clear / (wide * way));
        if (open <= 0.0) return 0.0;
        way += std::clamp(0.6 * clear, 0.02, 0.10);
    }
    return open * open * (3.0 - 2.0 * open);
}

double Openness(Vec3 p, Vec3 normal) {
    double closed = 0.0;
    double weight = 1.0;
    for (int i = 1; i <= 4; ++i) {
        const double way = 0.055 * i;
        closed += weight * (way - DistanceAt(p + normal * way));
        weight *= 0.72;
    }
    return std::clamp(1.0 - 1.9 * closed, 0.0, 1.0);
}

Colour Background(Point p, double middle) {
    const double dx = (p.x - middle - 330.0) / 900.0;
    const double dy = (p.y - 420.0) / 760.0;
    const double light = 1.0 / ((1.0 + dx * dx + dy * dy) * (1.0 + dx * dx + dy * dy));
    const double cloth = FractalNoise(p.x / 240.0, p.y / 300.0, 4, 0x636C6F74u);
    return Mix({0.012f, 0.014f, 0.018f}, {0.175f, 0.180f, 0.170f}, light * (0.72 + 0.5 * cloth));
}

struct Look {
    Colour albedo;
    double shine;   // strength of the highlight
    double sharp;   // its exponent, a power of two
    double velvet;  // brightening towards the rim
};

Look LookOf(Matter matter, Vec3 head) {
    switch (matter) {
        case Matter::kSkin: {
            Look look{{0.76f, 0.575f, 0.475f}, 0.13, 16.0, 0.0};
            const double x = std::abs(head.x);
            // Colour of the lips and the cheeks, and the line of the lowered lashes.
            const double lips =
                Ease(0.020, -0.020,
                     Ellipsoid(Vec3{x, head.y, head.z}, {0.0, -0.612, 0.72}, {0.165, 0.090, 0.16}));
            look.albedo = Mix(look.albedo, {0.66f, 0.27f, 0.25f}, 0.75 * lips);
            const double cheek =
                Ease(0.42, 0.0, Length(Vec3{x, head.y, head.z} - Vec3{0.42, -0.30, 0.58}));
            look.albedo = Mix(look.albedo, {0.82f, 0.44f, 0.36f}, 0.35 * cheek);
            const double lidX = (x - 0.245) / 0.150;
            const double lashLine = -0.085 + 0.050 * lidX * lidX;
            const double lash = Ease(0.020, 0.006, std::abs(head.y - lashLine)) *
                                Ease(1.08, 0.90, std::abs(lidX)) * (head.z > 0.45 ? 1.0 : 0.0);
            look.albedo = Mix(look.albedo, {0.10f, 0.055f, 0.045f}, 0.9 * lash);
            const double browX = (x - 0.25) / 0.22;
            const double brow =
                Ease(0.030, 0.010, std::abs(head.y - 0.195 + 0.05 * browX * browX)) *
                Ease(1.0, 0.55, std::abs(browX)) * (head.z > 0.45 ? 1.0 : 0.0);
            look.albedo = Mix(look.albedo, {0.26f, 0.15f, 0.11f}, 0.72 * brow);
            return look;
        }
        case Matter::kScarf: {
            const double band = Ease(0.02, -0.02, head.z + 0.86);
            return {Mix({0.085f, 0.205f, 0.46f}, {0.80f, 0.54f, 0.16f}, band), 0.22, 8.0, 0.45};
        }
        case Matter::kCollar: return {{0.84f, 0.83f, 0.80f}, 0.05, 8.0, 0.10};
        case Matter::kPearl: return {{0.62f, 0.60f, 0.60f}, 14.0, 128.0, 0.30};
        default: return {{0.42f, 0.26f, 0.085f}, 0.05, 8.0, 0.30};
    }
}

double Power(double base, double exponent) {
    double power = base;
    for (double e = 1.0; e < exponent; e *= 2.0) power *= power;
    return power;
}

Colour Shade(Vec3 p, Matter matter) {
    const Vec3 normal = NormalAt(p);
    const Vec3 lifted = p + normal * 0.012;
    const Look look = LookOf(matter, ToHead(p));
    const double open = Openness(p, normal);
    const double grazing = 1.0 - std::max(0.0, normal.z);

    const double facing = Dot(normal, kKey);
    const double wrapped = std::max(0.0, (facing + 0.16) / 1.16);
    const double key = wrapped > 0.0 ? wrapped * Reaching(lifted, kKey, 0.30) : 0.0;
    const double rimFacing = std::max(0.0, Dot(normal, kRim));
    const double rim = rimFacing > 0.0 ? rimFacing * grazing * Reaching(lifted, kRim, 0.10) : 0.0;
    const double fill = std::max(0.0, 0.5 + 0.5 * Dot(normal, kFill)) * open;

    Colour light = Colour{1.16f, 1.04f, 0.90f} * (1.22 * key) +
                   Colour{0.120f, 0.128f, 0.155f} * fill + Colour{1.0f, 0.92f, 0.80f} * (2.7 * rim);
    if (matter == Matter::kSkin) {
        // Light that goes through the skin warms the edge of the shade.
        const double edge = std::max(0.0, 1.0 - std::abs(facing - 0.04) / 0.34);
        light = light + Colour{0.100f, 0.030f, 0.016f} * (edge * open);
    }
    Colour colour = Times(look.albedo, light) * (0.62 + 0.38 * open);
    const Vec3 half = Direction(kKey + Vec3{0.0, 0.0, 1.0});
    const double gloss = Power(std::max(0.0, Dot(normal, half)), look.sharp) * look.shine;
    colour = colour + Colour{1.0f, 0.96f, 0.90f} * (gloss * std::min(1.0, 2.0 * key));
    return colour + Times(look.albedo, {0.5f, 0.5f, 0.5f}) *
                        (look.velvet * grazing * grazing * (0.25 * key + 0.10 * fill));
}

}  // namespace

Canvas DrawPortrait(int width, int height, LightRange range) {
    Canvas canvas(width, height);
    const Stage stage(canvas, range);
    const double middle = stage.middle();
    PaintAll(stage, [&](Point p) {
        const double x = (p.x - middle - kHeadX) / kSize;
        const double y = (kHeadY - p.y) / kSize;
        // Nothing of the figure lies beside this outline.
        const bool beside = y > 1.25 || (y > -1.30 ? x < -1.10 || x > 1.50 : std::abs(x) > 2.0);
        if (!beside) {
            double z = kNear;
            for (int i = 0; i < 90 && z > kFar; ++i) {
                const FigurePlace place = FigureAt({x, y, z});
                if (place.distance < 0.0012) return Shade({x, y, z}, place.matter);
                z -= 0.9 * place.distance;
            }
        }
        return Background(p, middle);
    });
    FinishWithGrain(stage, 1.4, 0x706F7274u);
    return canvas;
}

}  // namespace vireon::scenes
