#include <algorithm>
#include <array>
#include <cmath>

#include "samples/paint.h"
#include "samples/scenes.h"

namespace vireon::scenes {

namespace {

// Place across and along the band of the galaxy, which rises from the lower left to the upper right
// through the middle; both in units of the design.
Point InBand(const Stage& stage, Point p) {
    constexpr double kAlongX = 0.8575;
    constexpr double kAlongY = -0.5145;
    const double x = p.x - stage.middle();
    const double y = p.y - 560.0;
    return {x * kAlongX + y * kAlongY, -x * kAlongY + y * kAlongX};
}

double Bump(double t) {
    const double rest = std::max(0.0, 1.0 - t * t);
    return rest * rest;
}

double Ramp(double from, double to, double x) {
    const double t = std::clamp((x - from) / (to - from), 0.0, 1.0);
    return t * t * (3.0 - 2.0 * t);
}

// How much of the galaxy's light there is at a place, 0 to 1, without the dust before it.
double BandLight(Point band) {
    const double wave = 120.0 * (FractalNoise(band.x / 520.0, 3.1, 3, 0x62656E64u) - 0.5);
    return Bump((band.y + wave) / 430.0);
}

double Dust(Point p, Point band) {
    const double warp = 160.0 * FractalNoise(p.x / 300.0, p.y / 300.0, 3, 0x77617270u);
    const double cloud =
        FractalNoise((band.x + warp) / 330.0, (band.y + 0.6 * warp) / 120.0, 5, 0x64757374u);
    return Ramp(0.46, 0.72, cloud) * Bump(band.y / 300.0);
}

Colour SkyLight(const Stage& stage, Point p) {
    const Point band = InBand(stage, p);
    const Colour deep = Mix({0.010f, 0.015f, 0.036f}, {0.014f, 0.022f, 0.044f}, p.y / 1080.0);
    const double glow = BandLight(band);
    const double fine = FractalNoise(p.x / 95.0, p.y / 95.0, 5, 0x66696E65u);
    Colour sky = deep + Colour{0.150f, 0.135f, 0.158f} * (glow * (0.16 + 1.2 * fine));
    // Two clouds of gas: rose to the right of the middle, teal further down to the left.
    const double warpX = 210.0 * (FractalNoise(p.x / 260.0, p.y / 260.0, 4, 0x67617331u) - 0.5);
    const double warpY = 210.0 * (FractalNoise(p.x / 260.0, p.y / 260.0, 4, 0x67617332u) - 0.5);
    const auto gas = [&](double x, double y, double reach) {
        const double dx = (p.x + warpX - stage.middle() - x) / reach;
        const double dy = (p.y + warpY - y) / reach;
        return Bump(std::min(1.0, std::sqrt(dx * dx + dy * dy)));
    };
    const double threads =
        FractalNoise((p.x + warpX) / 130.0, (p.y + warpY) / 130.0, 6, 0x74687264u);
    const double rose = gas(330.0, 330.0, 430.0) * Ramp(0.30, 0.80, threads);
    const double core = gas(350.0, 322.0, 190.0) * Ramp(0.35, 0.85, threads);
    const double teal = gas(-390.0, 720.0, 480.0) * Ramp(0.32, 0.90, 1.0 - threads);
    // Dark threads run through the gas.
    const double veins = FractalNoise((p.x - warpY) / 75.0, (p.y + warpX) / 75.0, 6, 0x7665696Eu);
    const double clear = 0.42 + 0.58 * Ramp(0.36, 0.58, veins);
    sky = sky + Colour{0.35f, 0.066f, 0.165f} * (rose * clear) +
          Colour{0.17f, 0.13f, 0.18f} * (core * clear) +
          Colour{0.040f, 0.20f, 0.27f} * (teal * (0.5 + 0.5 * clear));
    const double dust = Dust(p, band);
    // Dust takes blue first.
    return {sky.red * static_cast<float>(1.0 - 0.66 * dust),
            sky.green * static_cast<float>(1.0 - 0.74 * dust),
            sky.blue * static_cast<float>(1.0 - 0.82 * dust)};
}

// Adds a star as a lens shows it: a small bright core that falls off smoothly. A star smaller than
// a pixel keeps the light it sends in all.
void AddStar(const Stage& stage, Point place, double radius, Colour light) {
    Canvas& canvas = stage.canvas();
    constexpr double kSmallest = 0.62;
    const Point centre = stage.toPixels(place);
    const double drawn = std::max(radius * stage.scale(), kSmallest);
    const double kept = radius * stage.scale() / drawn;
    const Colour peak = light * (kept * kept);
    const double reach = 7.0 * drawn;
    // What the falling-off would still have where the drawing ends is taken from all of it.
    const auto profile = [](double r2) {
        const double base = 1.0 / (1.0 + r2);
        return base * base * base;
    };
    const double end = profile(49.0);
    const auto limited = [](double value, int size) {
        return static_cast<int>(std::clamp(value, 0.0, static_cast<double>(size)));
    };
    const int right = limited(std::ceil(centre.x + reach), canvas.width());
    const int bottom = limited(std::ceil(centre.y + reach), canvas.height());
    for (int y = limited(std::floor(centre.y - reach), canvas.height()); y < bottom; ++y) {
        for (int x = limited(std::floor(centre.x - reach), canvas.width()); x < right; ++x) {
            const double dx = (x + 0.5 - centre.x) / drawn;
            const double dy = (y + 0.5 - centre.y) / drawn;
            const double share = profile(dx * dx + dy * dy) - end;
            if (share > 0.0) {
                canvas.add(x, y, peak * share);
            }
        }
    }
}

// From the coolest stars to the hottest.
Colour StarColour(double heat) {
    static constexpr std::array<Colour, 6> kColours{{{1.0f, 0.42f, 0.20f},
                                                     {1.0f, 0.66f, 0.38f},
                                                     {1.0f, 0.87f, 0.66f},
                                                     {0.98f, 0.97f, 1.0f},
                                                     {0.74f, 0.84f, 1.0f},
                                                     {0.52f, 0.68f, 1.0f}}};
    const double at = std::clamp(heat, 0.0, 1.0) * (kColours.size() - 1);
    const auto below = std::min(static_cast<std::size_t>(at), kColours.size() - 2);
    return Mix(kColours[below], kColours[below + 1], at - static_cast<double>(below));
}

void PaintFaintStars(const Stage& stage) {
    Random random(0x6661696E74u);
    const int count = static_cast<int>(stage.furnishedWidth() * 9.0);
    for (int i = 0; i < count; ++i) {
        const Point place{random.unit() * stage.furnishedWidth(), random.unit() * Stage::kHeight};
        const double rank = random.unit();
        const double heat = random.unit();
        const double keep = random.unit();
        const Point band = InBand(stage, place);
        if (keep > 0.22 + 0.78 * BandLight(band) * (1.0 - 0.85 * Dust(place, band))) {
            continue;
        }
        // Many faint ones for each that is brighter.
        const double strength = std::min(0.055 / (rank + 0.045), 1.1);
        AddStar(stage, place, 0.85 + 0.45 * strength, StarColour(0.15 + 0.8 * heat) * strength);
    }
}

void PaintMiddleStars(const Stage& stage) {
    Random random(0x6D6964646Cu);
    const int count = static_cast<int>(stage.furnishedWidth() * 0.085);
    for (int i = 0; i < count; ++i) {
        const Point place{random.unit() * stage.furnishedWidth(), random.unit() * Stage::kHeight};
        const double rank = random.unit();
        const Colour colour = StarColour(random.unit());
        const double strength = 0.8 + 0.55 / (rank + 0.16);
        AddStar(stage, place, 1.7 + 0.30 * strength, colour * strength);
    }
}

void PaintBrightStars(const Stage& stage) {
    struct Star {
        double offset;  // from the middle
        double y;
        double radius;
        double heat;
        double strength;
    };
    static constexpr std::array<Star, 15> kStars{{{-610.0, 262.0, 4.4, 0.94, 19.0},
                                                  {352.0, 318.0, 4.1, 0.62, 15.0},
                                                  {-212.0, 806.0, 3.9, 0.30, 13.0},
                                                  {668.0, 742.0, 4.0, 0.06, 12.0},
                                                  {-432.0, 590.0, 3.4, 0.85, 7.5},
                                                  {92.0, 168.0, 3.6, 0.76, 7.0},
                                                  {446.0, 402.0, 2.8, 0.98, 6.0},
                                                  {286.0, 396.0, 2.5, 0.90, 5.0},
                                                  {420.0, 262.0, 2.4, 0.20, 4.5},
                                                  {-802.0, 838.0, 3.2, 0.44, 6.0},
                                                  {812.0, 196.0, 3.0, 0.14, 5.5},
                                                  {148.0, 912.0, 3.0, 0.88, 5.0},
                                                  {-60.0, 470.0, 2.9, 0.52, 4.6},
                                                  {-318.0, 120.0, 2.7, 0.25, 4.0},
                                                  {546.0, 968.0, 2.8, 0.80, 4.4}}};
    for (const Star& star : kStars) {
        AddStar(stage, {stage.middle() + star.offset, star.y}, star.radius,
                StarColour(star.heat) * star.strength);
    }
}

}  // namespace

Canvas DrawStarField(int width, int height, LightRange range) {
    Canvas canvas(width, height);
    // Stars add up; the sum is what a display has to show.
    const Stage lights(canvas, LightRange::kOverbright);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            canvas.set(x, y,
                       SkyLight(lights, {(x + 0.5) / lights.scale(), (y + 0.5) / lights.scale()}));
        }
    }
    PaintFaintStars(lights);
    PaintMiddleStars(lights);
    PaintBrightStars(lights);
    const Stage stage(canvas, range);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const Colour light = canvas.at(x, y);
            const auto limited = [](float value) { return std::min(value, 20.0f); };
            canvas.set(
                x, y, stage.shown({limited(light.red), limited(light.green), limited(light.blue)}));
        }
    }
    FinishWithGrain(stage, 1.0, 0x73746172u);
    return canvas;
}

}  // namespace vireon::scenes
