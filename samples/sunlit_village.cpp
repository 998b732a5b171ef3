#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

#include "samples/paint.h"
#include "samples/sunlit_parts.h"

namespace vireon::scenes {

namespace {

using Corners = std::vector<Point>;

constexpr Colour kLit{0.975f, 0.930f, 0.850f};
constexpr Colour kShade{0.345f, 0.410f, 0.520f};
constexpr Colour kRoof{0.925f, 0.880f, 0.800f};
constexpr Colour kBlue{0.060f, 0.215f, 0.500f};

double Ease(double from, double to, double x) {
    const double t = std::clamp((x - from) / (to - from), 0.0, 1.0);
    return t * t * (3.0 - 2.0 * t);
}

double Plaster(Point p) {
    return 0.94 + 0.08 * FractalNoise(p.x / 46.0, p.y / 38.0, 4, 0x706C6173u) +
           0.04 * ValueNoise(p.x / 2.4, p.y / 2.4, 0x67726974u);
}

// Light from the ground brightens the foot of a wall in shade and warms it.
Colour ShadeAt(Point p, double top, double bottom) {
    const double down = std::clamp((p.y - top) / (bottom - top), 0.0, 1.0);
    return (kShade + Colour{0.150f, 0.100f, 0.035f} * (down * down)) * Plaster(p);
}

// A house seen at its corner: a sunlit wall to the left of it, one in shade to the right. Lines
// that go back run towards the horizon.
struct House {
    double x;  // of the near corner, from the middle of the picture
    double top;
    double bottom;
    double left;   // width of the sunlit wall
    double right;  // width of the wall in shade
};

Point Back(Point p, double width) {
    constexpr double kDepth = 2100.0;
    return {p.x, p.y + (kSeaHorizon - p.y) * std::abs(width) / kDepth};
}

// A place on a wall: u from the near corner (0) to its end (1), v from its top (0) to its foot (1).
struct Wall {
    Point topNear;
    Point bottomNear;
    double width;  // negative to the left

    Point at(double u, double v) const {
        const Point top = Back({topNear.x + width * u, topNear.y}, width * u);
        const Point bottom = Back({bottomNear.x + width * u, bottomNear.y}, width * u);
        return {top.x, top.y + (bottom.y - top.y) * v};
    }
    Corners part(double u0, double v0, double u1, double v1) const {
        return {at(u0, v0), at(u1, v0), at(u1, v1), at(u0, v1)};
    }
};

Wall LitWall(double middle, const House& h) {
    return {{middle + h.x, h.top}, {middle + h.x, h.bottom}, -h.left};
}

Wall ShadeWall(double middle, const House& h) {
    return {{middle + h.x, h.top}, {middle + h.x, h.bottom}, h.right};
}

// A strip of a quarter-turned square along the edge from a to b, as wide as `share` of the way to
// c.
Corners Strip(Point a, Point b, Point c, double share) {
    const Point over{(c.x - a.x) * share, (c.y - a.y) * share};
    return {a, b, {b.x + over.x, b.y + over.y}, {a.x + over.x, a.y + over.y}};
}

// The flat roof, seen from above; the raised edges towards the sun throw their shade on it.
void PaintRoof(const Stage& stage, const Wall& lit, const Wall& shade) {
    const Point near = lit.at(0.0, 0.0);
    const Point left = lit.at(1.0, 0.0);
    const Point right = shade.at(1.0, 0.0);
    const Point far{left.x + right.x - near.x, left.y + right.y - near.y};
    stage.convex({near, left, far, right}, [](Point p) { return kRoof * Plaster(p); });
    const Colour shaded{0.400f, 0.440f, 0.510f};
    for (const Corners& strip : {Strip(left, far, near, 0.13), Strip(left, near, far, 0.055)}) {
        stage.convex(strip, [&](Point p) { return shaded * Plaster(p); });
    }
    stage.line(left, far, 5.0, kLit * 0.97);
    stage.line(near, left, 6.0, kLit * 1.01);
    stage.line(near, right, 6.0, kLit * 0.98);
}

void PaintHouse(const Stage& stage, const House& h) {
    const double middle = stage.middle();
    const Wall lit = LitWall(middle, h);
    const Wall shade = ShadeWall(middle, h);
    stage.convex(lit.part(0.0, 0.0, 1.0, 1.0), [&](Point p) {
        // Whitewash on rough stone, a little darker and warmer towards the ground.
        const double down = std::clamp((p.y - h.top) / (h.bottom - h.top), 0.0, 1.0);
        const double stain =
            Ease(0.55, 0.85, FractalNoise(p.x / 18.0, p.y / 130.0, 3, 0x72616964u));
        const double tone = (1.0 - 0.07 * stain * (1.0 - down)) * Plaster(p);
        return Mix(kLit, {0.935f, 0.845f, 0.715f}, 0.55 * down * down) * tone;
    });
    stage.convex(shade.part(0.0, 0.0, 1.0, 1.0),
                 [&](Point p) { return ShadeAt(p, h.top, h.bottom); });
    if (h.top > kSeaHorizon) {
        PaintRoof(stage, lit, shade);
    } else {
        stage.line(lit.at(0.0, 0.0), lit.at(1.0, 0.0), 6.0, kLit);
        stage.line(shade.at(0.0, 0.0), shade.at(1.0, 0.0), 6.0, kShade * 1.25);
    }
}

// A door under a round arch, by its foot's middle on a wall.
void PaintDoor(const Stage& stage, const Wall& wall, double u, double halfWidth, double height,
               bool lit) {
    const auto arch = [&](double grow) {
        const double foot = 1.0;
        const double rise = height * 0.30;
        Corners corners{wall.at(u + halfWidth * grow, foot), wall.at(u - halfWidth * grow, foot)};
        constexpr int kPieces = 14;
        for (int i = 0; i <= kPieces; ++i) {
            const double t = -1.0 + 2.0 * i / kPieces;
            const double up = (1.0 - t * t) / (1.0 + t * t);
            const double along = 2.0 * t / (1.0 + t * t);
            corners.push_back(
                wall.at(u + halfWidth * grow * along, foot - (height - rise) - rise * grow * up));
        }
        return corners;
    };
    stage.convex(arch(1.18),
                 [&](Point p) { return (lit ? kLit * 0.80 : kShade * 1.22) * Plaster(p); });
    const Colour paint = lit ? kBlue * 1.5 : kBlue * 0.66;
    stage.convex(arch(1.0), [&](Point p) {
        return paint * (0.74 + 0.42 * ValueNoise(p.x / 4.2, 0.5, 0x646F6F72u));
    });
}

// A window or a door in a wall: reveal, dark pane, painted shutters or frame.
void PaintOpening(const Stage& stage, const Wall& wall, double u, double v, double du, double dv,
                  bool lit, bool door) {
    const Colour paint = lit ? kBlue * 1.45 : kBlue * 0.62;
    const Colour inside = lit ? Colour{0.030f, 0.042f, 0.062f} : Colour{0.022f, 0.032f, 0.055f};
    stage.convex(wall.part(u, v, u + du, v + dv), [&](Point) { return inside; });
    if (door) {
        stage.convex(wall.part(u + 0.10 * du, v + 0.06 * dv, u + 0.90 * du, v + dv), [&](Point p) {
            const double board = ValueNoise(p.x / 3.2, 0.5, 0x626F6172u);
            return paint * (0.82 + 0.3 * board);
        });
        return;
    }
    for (const double side : {-0.46, 1.0}) {
        stage.convex(wall.part(u + side * du, v - 0.02 * dv, u + (side + 0.46) * du, v + 1.03 * dv),
                     [&](Point p) {
                         const double slat = ValueNoise(0.5, p.y / 2.2, 0x736C6174u);
                         return paint * (0.78 + 0.4 * slat);
                     });
    }
    stage.convex(wall.part(u - 0.06 * du, v + dv, u + 1.06 * du, v + 1.08 * dv),
                 [&](Point p) { return (lit ? kLit : kShade * 1.2) * Plaster(p); });
}

// The blue dome on its round base; the sun stands to the left behind it.
void PaintDome(const Stage& stage, double x, double y, double radius) {
    const double cx = stage.middle() + x;
    const auto across = [&](Point p) { return std::clamp((p.x - cx) / radius, -1.0, 1.0); };
    const double drum = radius * 0.46;
    stage.convex(
        {{cx - radius, y}, {cx + radius, y}, {cx + radius, y + drum}, {cx - radius, y + drum}},
        [&](Point p) {
            const double u = across(p);
            const double window = std::abs(u * 6.0 - std::floor(u * 6.0) - 0.5);
            Colour wall = Mix(kLit, kShade * 1.05, Ease(-0.62, 0.10, u)) * Plaster(p);
            if (window < 0.15 && p.y > y + 0.30 * drum && p.y < y + 0.78 * drum) {
                wall = Colour{0.04f, 0.055f, 0.085f};
            }
            return wall;
        });
    Corners half;
    constexpr int kPieces = 40;
    for (int i = 0; i <= kPieces; ++i) {
        // Points of a half circle by its half-angle tangent, from the left end to the right one.
        const double t = -1.0 + 2.0 * i / kPieces;
        const double away = (1.0 - t * t) / (1.0 + t * t);
        const double along = 2.0 * t / (1.0 + t * t);
        half.push_back({cx + radius * 1.03 * along, y - radius * 1.02 * away});
    }
    stage.convex(half, [&](Point p) {
        const double nx = std::clamp((p.x - cx) / (radius * 1.03), -1.0, 1.0);
        const double ny = std::clamp((y - p.y) / (radius * 1.02), 0.0, 1.0);
        const double nz = std::sqrt(std::max(0.0, 1.0 - nx * nx - ny * ny));
        const double facing = -0.76 * nx + 0.60 * ny + 0.16 * nz;
        const double half2 = std::max(0.0, -0.50 * nx + 0.48 * ny + 0.72 * nz);
        double shine = half2 * half2;
        shine *= shine;
        shine *= shine;
        shine *= shine;
        shine *= shine;
        const Colour base = Mix(kBlue * 0.50, {0.170f, 0.440f, 0.790f}, Ease(-0.15, 0.85, facing));
        return base * (0.95 + 0.10 * Plaster(p)) +
               Colour{1.0f, 0.96f, 0.88f} * (3.2 * shine * shine);
    });
    stage.rectangle({cx - 5.0, y - radius * 1.16}, {cx + 5.0, y - radius * 1.0}, kLit * 0.8);
    stage.disc({cx, y - radius * 1.19}, 9.0, kLit);
}

// Bougainvillea: many small leaves and blossoms, those above and to the left in the sun.
void PaintBush(const Stage& stage, double x, double y, double reachX, double reachY, int count,
               std::uint64_t seed) {
    Random random(seed);
    for (int i = 0; i < count; ++i) {
        double u = random.between(-1.0, 1.0);
        double v = random.between(-1.0, 1.0);
        while (u * u + v * v > 1.0) {
            u = random.between(-1.0, 1.0);
            v = random.between(-1.0, 1.0);
        }
        const double ragged = 0.75 + 0.5 * ValueNoise(3.0 * u + 7.0, 3.0 * v, seed);
        const double depth = static_cast<double>(i) / count;
        const double sun = std::clamp(
            0.42 - 0.42 * u - 0.52 * v + random.between(-0.28, 0.28) + 0.35 * (depth - 0.5), 0.0,
            1.0);
        const bool leaf = random.chance(0.36 - 0.22 * depth);
        const Colour colour = leaf ? Mix({0.020f, 0.055f, 0.030f}, {0.30f, 0.44f, 0.13f}, sun)
                                   : Mix({0.170f, 0.012f, 0.090f}, {0.97f, 0.22f, 0.47f}, sun);
        const Point place{stage.middle() + x + u * reachX * ragged, y + v * reachY * ragged};
        stage.disc(place, random.between(1.8, 4.4), colour);
    }
}

}  // namespace

void PaintVillage(const Stage& stage) {
    const double middle = stage.middle();
    // From the back to the front.
    static constexpr std::array<House, 7> kHouses{{{860.0, 356.0, 700.0, 150.0, 420.0},
                                                   {330.0, 452.0, 720.0, 170.0, 300.0},
                                                   {760.0, 470.0, 900.0, 270.0, 330.0},
                                                   {120.0, 566.0, 800.0, 190.0, 270.0},
                                                   {430.0, 620.0, 960.0, 250.0, 360.0},
                                                   {150.0, 770.0, 1100.0, 330.0, 260.0},
                                                   {700.0, 812.0, 1130.0, 330.0, 420.0}}};
    // The quay on which the foremost houses stand.
    stage.convex({{middle - 262.0, 996.0},
                  {stage.width() + 60.0, 900.0},
                  {stage.width() + 60.0, 1120.0},
                  {middle - 420.0, 1120.0}},
                 [](Point p) {
                     const double stone = FractalNoise(p.x / 60.0, p.y / 14.0, 4, 0x73746F6Eu);
                     return Colour{0.70f, 0.62f, 0.51f} * (0.70 + 0.45 * stone);
                 });
    PaintHouse(stage, kHouses[0]);
    PaintDome(stage, 590.0, 262.0, 118.0);
    // The church under the dome.
    PaintHouse(stage, {612.0, 314.0, 760.0, 176.0, 168.0});
    for (std::size_t i = 1; i < kHouses.size(); ++i) {
        PaintHouse(stage, kHouses[i]);
    }
    const auto lit = [&](std::size_t i) { return LitWall(middle, kHouses[i]); };
    const auto shade = [&](std::size_t i) { return ShadeWall(middle, kHouses[i]); };
    PaintOpening(stage, lit(1), 0.42, 0.22, 0.17, 0.22, true, false);
    PaintOpening(stage, shade(1), 0.30, 0.24, 0.12, 0.24, false, false);
    PaintOpening(stage, lit(2), 0.38, 0.14, 0.16, 0.16, true, false);
    PaintOpening(stage, shade(2), 0.34, 0.14, 0.12, 0.16, false, false);
    PaintOpening(stage, lit(3), 0.40, 0.24, 0.16, 0.26, true, false);
    PaintOpening(stage, lit(4), 0.36, 0.22, 0.15, 0.22, true, false);
    PaintOpening(stage, shade(4), 0.28, 0.22, 0.11, 0.20, false, false);
    // Chimneys and low sheds on the roofs.
    for (const House& shed :
         {House{905.0, 418.0, 480.0, 36.0, 30.0}, House{236.0, 676.0, 742.0, 60.0, 44.0}}) {
        PaintHouse(stage, shed);
    }
    PaintDoor(stage, lit(5), 0.44, 0.105, 0.36, true);
    PaintOpening(stage, shade(5), 0.34, 0.16, 0.13, 0.20, false, false);
    PaintDoor(stage, shade(6), 0.48, 0.085, 0.42, false);
    PaintOpening(stage, lit(6), 0.58, 0.26, 0.13, 0.24, true, false);
    PaintBush(stage, 96.0, 772.0, 74.0, 46.0, 1500, 0x62757368u);
    PaintBush(stage, 20.0, 806.0, 44.0, 58.0, 800, 0x68616E67u);
    PaintBush(stage, 690.0, 812.0, 130.0, 58.0, 3000, 0x626C6F6Fu);
    PaintBush(stage, 640.0, 868.0, 62.0, 86.0, 1500, 0x6D626F75u);
    PaintBush(stage, 800.0, 846.0, 74.0, 44.0, 1200, 0x67616976u);
}

}  // namespace vireon::scenes
