#include <array>
#include <string_view>
#include <vector>

#include "samples/curves.h"
#include "samples/stage.h"
#include "samples/tube_letters.h"

namespace vireon::scenes {

namespace {

constexpr double kTubeStrength = 1.1;
constexpr Colour kBoard{0.016f, 0.014f, 0.026f};

// A neon tube: a saturated rim around a paler, stronger core. Tubes are long, so their light adds
// up; they need little strength of their own.
void Tube(const Stage& stage, const std::vector<Point>& points, double width, Colour colour) {
    stage.polyline(points, width, colour * kTubeStrength);
    stage.polyline(points, width * 0.42,
                   Mix(colour, {1.0f, 1.0f, 1.0f}, 0.35) * (kTubeStrength * 1.25));
}

// Writes a word in tubes; `unit` is the width of a letter, which is twice as high. An I has no
// width of its own.
void TubeWord(const Stage& stage, std::string_view word, Point corner, double unit, double width,
              Colour colour) {
    for (const char letter : word) {
        for (const std::vector<Point>& tube : LetterTubes(letter)) {
            std::vector<Point> points;
            for (const Point& p : tube) {
                points.push_back({corner.x + p.x * unit, corner.y + p.y * unit});
            }
            Tube(stage, points, width, colour);
        }
        corner.x += unit * (letter == 'I' ? 0.55 : 1.55);
    }
}

void TubeFrame(const Stage& stage, Point topLeft, Point bottomRight, double width, Colour colour) {
    Tube(stage,
         {topLeft, {bottomRight.x, topLeft.y}, bottomRight, {topLeft.x, bottomRight.y}, topLeft},
         width, colour);
}

// The long sign on the roof line: pink letters in a cyan frame on two legs.
void PaintNameSign(const Stage& stage) {
    const double left = stage.middle() - 590.0;
    const double top = 452.0;
    const Point corner{left, top};
    const Point opposite{left + 382.0, top + 132.0};
    for (const double leg : {56.0, 326.0}) {
        stage.rectangle({left + leg - 5.0, opposite.y}, {left + leg + 5.0, 720.0}, kBoard);
    }
    stage.rectangle(corner, opposite, kBoard);
    TubeFrame(stage, {left + 14.0, top + 14.0}, {opposite.x - 14.0, opposite.y - 14.0}, 5.0,
              {0.10f, 0.72f, 1.0f});
    TubeWord(stage, "VIREON", {left + 46.0, top + 31.0}, 35.0, 7.0, {1.0f, 0.16f, 0.50f});
}

// The bar's sign: a glass with its straw and an olive, the word beneath it.
void PaintBarSign(const Stage& stage) {
    const double x = stage.middle() + 330.0;
    const double y = 596.0;
    stage.rectangle({x - 72.0, y - 20.0}, {x + 72.0, y + 206.0}, kBoard);
    const Colour green{0.16f, 1.0f, 0.46f};
    const Colour amber{1.0f, 0.56f, 0.10f};
    Tube(stage, {{x - 46.0, y}, {x + 46.0, y}, {x, y + 58.0}, {x - 46.0, y}}, 5.5, green);
    Tube(stage, {{x, y + 58.0}, {x, y + 108.0}}, 5.5, green);
    Tube(stage, {{x - 28.0, y + 108.0}, {x + 28.0, y + 108.0}}, 5.5, green);
    Tube(stage, {{x - 4.0, y + 34.0}, {x + 34.0, y - 14.0}}, 4.0, {1.0f, 0.20f, 0.56f});
    Tube(stage, Arc({x - 12.0, y + 20.0}, 7.5, 7.5, 0.0, 1.0), 4.0, amber);
    TubeWord(stage, "BAR", {x - 51.0, y + 132.0}, 25.0, 6.0, amber);
}

// A large video wall: even bright areas spill over their edges instead of making a halo.
void PaintVideoWall(const Stage& stage) {
    const double left = stage.middle() - 58.0;
    const double top = 560.0;
    constexpr double kWidth = 190.0;
    constexpr double kHeight = 118.0;
    stage.rectangle({left - 7.0, top - 7.0}, {left + kWidth + 7.0, top + kHeight + 7.0}, kBoard);
    constexpr int kStrips = 95;
    for (int i = 0; i < kStrips; ++i) {
        const double t = (i + 0.5) / kStrips;
        stage.rectangle({left + kWidth * i / kStrips, top},
                        {left + kWidth * (i + 1) / kStrips, top + kHeight},
                        Mix({0.42f, 0.20f, 0.86f}, {0.12f, 0.72f, 0.90f}, t));
    }
    // The picture on it: a low sun over hills.
    stage.disc({left + kWidth * 0.64, top + kHeight * 0.50}, 29.0, {0.98f, 0.84f, 0.62f});
    stage.convex({{left, top + kHeight},
                  {left, top + kHeight * 0.72},
                  {left + kWidth * 0.36, top + kHeight * 0.58},
                  {left + kWidth * 0.80, top + kHeight}},
                 {0.20f, 0.10f, 0.46f});
    stage.convex({{left + kWidth * 0.28, top + kHeight},
                  {left + kWidth * 0.70, top + kHeight * 0.70},
                  {left + kWidth, top + kHeight * 0.80},
                  {left + kWidth, top + kHeight}},
                 {0.13f, 0.08f, 0.34f});
}

// Lit shops at street level.
void PaintShops(const Stage& stage) {
    struct Shop {
        double offset;
        double width;
        Colour light;
    };
    static constexpr std::array<Shop, 6> kShops{{{-842.0, 118.0, {0.82f, 0.62f, 0.36f}},
                                                 {-540.0, 150.0, {0.66f, 0.78f, 0.80f}},
                                                 {-205.0, 104.0, {0.86f, 0.58f, 0.30f}},
                                                 {95.0, 132.0, {0.84f, 0.70f, 0.46f}},
                                                 {470.0, 112.0, {0.62f, 0.72f, 0.84f}},
                                                 {700.0, 140.0, {0.80f, 0.54f, 0.30f}}}};
    for (const Shop& shop : kShops) {
        const double left = stage.middle() + shop.offset;
        constexpr double kTop = 850.0;
        constexpr double kBottom = 900.0;
        stage.rectangle({left, kTop}, {left + shop.width, kBottom}, shop.light);
        stage.rectangle({left, kBottom - 16.0}, {left + shop.width, kBottom}, shop.light * 0.6);
        const int panes = static_cast<int>(shop.width / 36.0);
        for (int i = 1; i < panes; ++i) {
            const double bar = left + shop.width * i / panes;
            stage.rectangle({bar - 1.5, kTop}, {bar + 1.5, kBottom}, kBoard);
        }
        stage.rectangle({left - 5.0, kTop - 9.0}, {left + shop.width + 5.0, kTop},
                        shop.light * 0.22);
    }
}

}  // namespace

void PaintSigns(const Stage& stage) {
    PaintNameSign(stage);
    PaintVideoWall(stage);
    PaintBarSign(stage);
    PaintShops(stage);
}

}  // namespace vireon::scenes
