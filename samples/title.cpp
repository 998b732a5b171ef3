#include <algorithm>
#include <cmath>
#include <string_view>

#include "samples/letters.h"
#include "samples/scenes.h"
#include "samples/stage.h"

namespace vireon::scenes {

namespace {

// Size and place of one line of text in the design.
struct TextLine {
    std::string_view text;
    double spacing;  // in letter heights, as for the letters' own functions
    double stroke;
    Point corner;  // top left
    double height;

    double width() const { return TextWidth(text, spacing) * height; }
    // Distance of a place of the design from the letters' edge, in units of the design.
    double distance(Point p) const {
        return TextDistance(text, spacing, stroke,
                            {(p.x - corner.x) / height, (p.y - corner.y) / height}) *
               height;
    }
};

TextLine Centred(std::string_view text, double spacing, double stroke, Point topMiddle,
                 double height) {
    TextLine line{text, spacing, stroke, topMiddle, height};
    line.corner.x -= 0.5 * line.width();
    return line;
}

double Ease(double t) {
    t = std::clamp(t, 0.0, 1.0);
    return t * t * (3.0 - 2.0 * t);
}

// The last light of a day from top to bottom, t from 0 to 1.
Colour Dusk(double t) {
    const Colour top{0.98f, 0.93f, 0.86f};
    const Colour upper{1.0f, 0.76f, 0.50f};
    const Colour lower{0.94f, 0.36f, 0.26f};
    const Colour bottom{0.52f, 0.13f, 0.31f};
    if (t < 0.40) return Mix(top, upper, Ease(t / 0.40));
    if (t < 0.74) return Mix(upper, lower, Ease((t - 0.40) / 0.34));
    return Mix(lower, bottom, Ease((t - 0.74) / 0.26));
}

Colour LetterColour(const TextLine& line, Point p, double inside) {
    const double down = (p.y - line.corner.y) / line.height;
    Colour colour = Dusk(down);
    // A fine edge that catches the light from above.
    const double edge = 1.0 - Ease(inside / 5.0);
    colour = Mix(colour, {1.0f, 0.94f, 0.84f}, edge * std::max(0.0, 0.62 - 0.55 * down));
    // A narrow shine lies across the letters on a slant, strongest on the eighth letter.
    const double across = (p.x - line.corner.x) / line.width();
    const double shine = (across - 0.735 + 0.045 * (down - 0.5)) / 0.030;
    const double wide = (across - 0.735 + 0.045 * (down - 0.5)) / 0.16;
    const double hot = 1.0 / ((1.0 + shine * shine) * (1.0 + shine * shine));
    const double warm = 1.0 / ((1.0 + wide * wide) * (1.0 + wide * wide));
    return colour + Colour{1.0f, 0.90f, 0.70f} * (11.0 * hot * hot + 0.20 * warm);
}

// Lays colours over the pixels of a box of the design by their distance to a figure.
template <typename Distance, typename ColourAt>
void Lay(const Stage& stage, Point topLeft, Point bottomRight, double opacity,
         const Distance& distance, const ColourAt& colourAt) {
    Canvas& canvas = stage.canvas();
    const auto limited = [](double value, int size) {
        return static_cast<int>(std::clamp(value, 0.0, static_cast<double>(size)));
    };
    const Point low = stage.toPixels(topLeft);
    const Point high = stage.toPixels(bottomRight);
    const int right = limited(std::ceil(high.x) + 1.0, canvas.width());
    const int bottom = limited(std::ceil(high.y) + 1.0, canvas.height());
    for (int y = limited(std::floor(low.y) - 1.0, canvas.height()); y < bottom; ++y) {
        for (int x = limited(std::floor(low.x) - 1.0, canvas.width()); x < right; ++x) {
            const Point p{(x + 0.5) / stage.scale(), (y + 0.5) / stage.scale()};
            const double d = distance(p);
            const double coverage = std::clamp(0.5 - d * stage.scale(), 0.0, 1.0);
            if (coverage > 0.0) {
                canvas.blend(x, y, stage.shown(colourAt(p, -d)), coverage * opacity);
            }
        }
    }
}

void LayText(const Stage& stage, const TextLine& line, double opacity, bool shining) {
    Lay(
        stage, line.corner, {line.corner.x + line.width(), line.corner.y + line.height}, opacity,
        [&](Point p) { return line.distance(p); },
        [&](Point p, double inside) {
            return shining ? LetterColour(line, p, inside) : Colour{0.96f, 0.80f, 0.66f};
        });
}

// A hair line that fades out towards one end.
void LayRule(const Stage& stage, Point strongEnd, double length) {
    Canvas& canvas = stage.canvas();
    const double thick = std::max(2.0, 1.0 / stage.scale());
    constexpr int kPieces = 160;
    for (int i = 0; i < kPieces; ++i) {
        const double t = (i + 0.5) / kPieces;
        const Point a = stage.toPixels({strongEnd.x + length * i / kPieces, strongEnd.y});
        const Point b = stage.toPixels({strongEnd.x + length * (i + 1) / kPieces, strongEnd.y});
        const double left = std::min(a.x, b.x);
        const double right = std::max(a.x, b.x);
        const double top = a.y - 0.5 * thick * stage.scale();
        const double bottom = a.y + 0.5 * thick * stage.scale();
        for (int y = static_cast<int>(std::floor(top)); y < bottom; ++y) {
            for (int x = static_cast<int>(std::floor(left)); x < right; ++x) {
                const double columns = std::min(right, x + 1.0) - std::max(left, x * 1.0);
                const double rows = std::min(bottom, y + 1.0) - std::max(top, y * 1.0);
                canvas.blend(x, y, {0.96f, 0.72f, 0.52f},
                             std::clamp(columns * rows, 0.0, 1.0) * (1.0 - t) * 0.9);
            }
        }
    }
}

}  // namespace

Canvas DrawTitle(int width, int height, LightRange range) {
    Canvas canvas(width, height, Ground::kTransparent);
    const Stage stage(canvas, range);
    // A picture narrower than 16:9 gets smaller letters.
    const double size = std::min(1.0, stage.width() / 1920.0);
    const double middle = stage.middle();
    LayText(stage, Centred("AFTERGLOW", 0.20, 0.118, {middle, 540.0 - 128.0 * size}, 186.0 * size),
            1.0, true);
    const TextLine second =
        Centred("ONE NIGHT OF LIGHT", 0.46, 0.10, {middle, 540.0 + 128.0 * size}, 31.0 * size);
    LayText(stage, second, 0.86, false);
    const double ruleY = second.corner.y + 0.5 * second.height;
    LayRule(stage, {second.corner.x - 44.0 * size, ruleY}, -330.0 * size);
    LayRule(stage, {second.corner.x + second.width() + 44.0 * size, ruleY}, 330.0 * size);
    return canvas;
}

}  // namespace vireon::scenes
