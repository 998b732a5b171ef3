#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <string_view>
#include <vector>

#include "samples/curves.h"
#include "samples/neon_parts.h"
#include "samples/tube_letters.h"

namespace vireon::scenes {

namespace {

constexpr Colour kPink{2.6f, 0.34f, 1.16f};
constexpr Colour kCyan{0.22f, 1.75f, 2.40f};
constexpr Colour kGold{2.60f, 1.55f, 0.42f};
constexpr Colour kLampLight{18.0f, 12.2f, 5.6f};

using Curve = std::vector<Point>;

// The word "aurora" in one hand: the height of a small letter is 1, y downwards from its top.
std::vector<Curve> WrittenWord() {
    const auto letterA = [](double x) {
        return Curve{{x + 0.86, 0.16}, {x + 0.52, 0.00}, {x + 0.16, 0.34}, {x + 0.14, 0.78},
                     {x + 0.40, 1.00}, {x + 0.72, 0.74}, {x + 0.90, 0.08}, {x + 0.88, 0.70},
                     {x + 1.03, 0.98}, {x + 1.28, 0.76}};
    };
    const auto letterU = [](double x) {
        return Curve{{x + 0.00, 0.06}, {x - 0.02, 0.66}, {x + 0.18, 0.99}, {x + 0.48, 0.76},
                     {x + 0.60, 0.06}, {x + 0.58, 0.70}, {x + 0.73, 0.98}, {x + 0.98, 0.74}};
    };
    const auto letterR = [](double x) {
        return Curve{{x - 0.12, 0.52}, {x + 0.06, 0.02}, {x + 0.12, 0.12}, {x + 0.30, 0.15},
                     {x + 0.46, 0.10}, {x + 0.40, 0.62}, {x + 0.52, 0.97}, {x + 0.78, 0.76}};
    };
    const auto letterO = [](double x) {
        return Curve{{x + 0.50, 0.03}, {x + 0.14, 0.30}, {x + 0.12, 0.78},
                     {x + 0.42, 1.00}, {x + 0.74, 0.70}, {x + 0.70, 0.22},
                     {x + 0.46, 0.04}, {x + 0.58, 0.24}, {x + 0.90, 0.26}};
    };
    std::vector<Curve> curves{letterA(0.0),  letterU(1.34), letterR(2.52),
                              letterO(3.22), letterR(4.30), letterA(5.00)};
    // The last letter runs out into a stroke under the word.
    Curve& last = curves.back();
    last.back() = {6.34, 0.70};
    last.push_back({6.62, 0.36});
    return curves;
}

void AddWord(NeonSign& sign, Point corner, double size) {
    constexpr double kSlant = 0.24;
    const auto place = [&](Point p) {
        return Point{corner.x + (p.x + kSlant * (1.0 - p.y)) * size, corner.y + p.y * size};
    };
    for (Curve& curve : WrittenWord()) {
        for (Point& p : curve) p = place(p);
        sign.tubes.push_back({SmoothCurve(curve, 9), 12.5, kPink});
    }
    const Curve under{place({0.30, 1.46}), place({1.60, 1.36}), place({3.30, 1.33}),
                      place({5.00, 1.37}), place({6.30, 1.50})};
    sign.tubes.push_back({SmoothCurve(under, 12), 8.5, kGold});
}

void AddBlockWord(NeonSign& sign, std::string_view word, Point corner, double unit) {
    for (const char letter : word) {
        for (Curve tube : LetterTubes(letter)) {
            for (Point& p : tube) p = {corner.x + p.x * unit, corner.y + p.y * unit};
            sign.tubes.push_back({tube, 10.5, kCyan});
        }
        corner.x += unit * 1.66;
    }
}

void AddMoon(NeonSign& sign, Point centre) {
    // Outer and inner edge of a crescent that meet in its tips.
    Curve outer = Arc(centre, 96.0, 96.0, 0.115, 0.885, 48);
    const Curve inner = Arc({centre.x + 53.0, centre.y}, 67.5, 67.5, 0.815, 0.185, 36);
    outer.insert(outer.end(), inner.begin(), inner.end());
    outer.push_back(outer.front());
    sign.tubes.push_back({outer, 9.0, kGold});
    struct Star {
        double x;
        double y;
        double size;
    };
    static constexpr std::array<Star, 3> kStars{
        {{62.0, -8.0, 31.0}, {148.0, -62.0, 20.0}, {176.0, 34.0, 14.0}}};
    for (const Star& star : kStars) {
        const Point at{centre.x + star.x, centre.y + star.y};
        Curve points;
        for (int i = 0; i <= 8; ++i) {
            const double reach = i % 2 == 0 ? star.size : star.size * 0.30;
            static constexpr std::array<Point, 8> kWays{{{0.0, -1.0},
                                                         {0.7071, -0.7071},
                                                         {1.0, 0.0},
                                                         {0.7071, 0.7071},
                                                         {0.0, 1.0},
                                                         {-0.7071, 0.7071},
                                                         {-1.0, 0.0},
                                                         {-0.7071, -0.7071}}};
            const Point way = kWays[static_cast<std::size_t>(i % 8)];
            points.push_back({at.x + reach * way.x, at.y + reach * way.y});
        }
        sign.tubes.push_back({points, star.size > 18.0 ? 6.5 : 5.0, kCyan});
    }
}

void AddArrow(NeonSign& sign, double middle) {
    sign.arrow = SmoothCurve({{middle + 330.0, 178.0},
                              {middle + 540.0, 196.0},
                              {middle + 686.0, 330.0},
                              {middle + 714.0, 540.0},
                              {middle + 620.0, 742.0},
                              {middle + 420.0, 838.0},
                              {middle + 250.0, 846.0}},
                             40);
    constexpr double kBetween = 47.0;
    double left = kBetween * 0.5;
    for (std::size_t i = 0; i + 1 < sign.arrow.size(); ++i) {
        const Point a = sign.arrow[i];
        const Point b = sign.arrow[i + 1];
        const double length = std::sqrt((b.x - a.x) * (b.x - a.x) + (b.y - a.y) * (b.y - a.y));
        double at = left;
        while (at < length) {
            const double t = at / length;
            sign.lamps.push_back({{a.x + (b.x - a.x) * t, a.y + (b.y - a.y) * t}, 8.6, kLampLight});
            at += kBetween;
        }
        left = at - length;
    }
    const Point tip = sign.arrow.back();
    for (const double side : {-1.0, 1.0}) {
        for (int i = 1; i <= 2; ++i) {
            sign.lamps.push_back(
                {{tip.x + 38.0 * i - 46.0, tip.y + side * 36.0 * i}, 8.6, kLampLight});
        }
    }
    sign.lamps.push_back({{tip.x - 46.0, tip.y}, 8.6, kLampLight});
}

double DistanceToCurve(const Curve& curve, Point p) {
    double nearest = 1e30;
    for (std::size_t i = 0; i + 1 < curve.size(); ++i) {
        const Point a = curve[i];
        const double dx = curve[i + 1].x - a.x;
        const double dy = curve[i + 1].y - a.y;
        const double length = dx * dx + dy * dy;
        const double t = length > 0.0
                             ? std::clamp(((p.x - a.x) * dx + (p.y - a.y) * dy) / length, 0.0, 1.0)
                             : 0.0;
        const double offX = p.x - a.x - t * dx;
        const double offY = p.y - a.y - t * dy;
        nearest = std::min(nearest, offX * offX + offY * offY);
    }
    return std::sqrt(nearest);
}

// Lays colours over the pixels within `reach` of a curve by their distance from it.
template <typename ColourAt>
void LayAlong(const Stage& stage, const Curve& curve, double reach, const ColourAt& colourAt) {
    Point low = curve.front();
    Point high = curve.front();
    for (const Point& p : curve) {
        low = {std::min(low.x, p.x), std::min(low.y, p.y)};
        high = {std::max(high.x, p.x), std::max(high.y, p.y)};
    }
    Canvas& canvas = stage.canvas();
    const double scale = stage.scale();
    const auto limited = [](double value, int size) {
        return static_cast<int>(std::clamp(value, 0.0, static_cast<double>(size)));
    };
    const int right = limited((high.x + reach) * scale + 2.0, canvas.width());
    const int bottom = limited((high.y + reach) * scale + 2.0, canvas.height());
    for (int y = limited((low.y - reach) * scale - 1.0, canvas.height()); y < bottom; ++y) {
        for (int x = limited((low.x - reach) * scale - 1.0, canvas.width()); x < right; ++x) {
            const double distance = DistanceToCurve(curve, {(x + 0.5) / scale, (y + 0.5) / scale});
            const double coverage = std::clamp(0.5 - (distance - reach) * scale, 0.0, 1.0);
            if (coverage > 0.0) {
                canvas.blend(x, y, stage.shown(colourAt(std::min(distance, reach))), coverage);
            }
        }
    }
}

void PaintTray(const Stage& stage, const NeonSign& sign) {
    const Point tip = sign.arrow.back();
    const std::vector<Point> head{
        {tip.x - 96.0, tip.y}, {tip.x + 44.0, tip.y - 124.0}, {tip.x + 44.0, tip.y + 124.0}};
    const Colour rim{0.58f, 0.36f, 0.17f};
    const Colour face{0.20f, 0.028f, 0.030f};
    stage.convex({{head[0].x - 13.0, head[0].y},
                  {head[1].x + 6.0, head[1].y - 17.0},
                  {head[2].x + 6.0, head[2].y + 17.0}},
                 rim);
    LayAlong(stage, sign.arrow, kTrayHalfWidth + 5.0, [&](double) { return rim; });
    stage.convex(head, face);
    // The lamps light the middle of the tray more than its edges.
    LayAlong(stage, sign.arrow, kTrayHalfWidth, [&](double d) {
        const double t = d / kTrayHalfWidth;
        return face * (1.75 - 1.0 * t * t);
    });
}

}  // namespace

NeonSign MakeNeonSign(double width) {
    const double middle = 0.5 * width;
    NeonSign sign;
    AddMoon(sign, {middle - 560.0, 236.0});
    AddWord(sign, {middle - 690.0, 400.0}, 182.0);
    AddBlockWord(sign, "BAR", {middle - 330.0, 744.0}, 76.0);
    AddArrow(sign, middle);
    return sign;
}

void PaintNeonSign(const Stage& stage, const NeonSign& sign) {
    PaintTray(stage, sign);
    for (const NeonLamp& lamp : sign.lamps) {
        stage.softLight(lamp.place, 34.0, {0.42f, 0.17f, 0.05f});
        stage.disc(lamp.place, lamp.radius + 3.0, {0.30f, 0.17f, 0.08f});
        stage.disc(lamp.place, lamp.radius, lamp.light * 0.28);
        stage.disc(lamp.place, lamp.radius * 0.62, lamp.light);
    }
    for (const NeonTube& tube : sign.tubes) {
        const double half = 0.5 * tube.width;
        const double strongest =
            static_cast<double>(std::max({tube.light.red, tube.light.green, tube.light.blue}));
        const Colour white = Colour{1.0f, 1.0f, 1.0f} * strongest;
        LayAlong(stage, tube.points, half, [&](double distance) {
            const double t = distance / half;
            const Colour core = Mix(tube.light, white, 0.55 * (1.0 - t) * (1.0 - t));
            return core * (1.18 - 0.80 * t * t);
        });
    }
}

}  // namespace vireon::scenes
