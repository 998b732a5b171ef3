#include "samples/letters.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

namespace vireon::scenes {

namespace {

constexpr double kFar = 1e6;

double Box(Point p, double left, double top, double right, double bottom) {
    return std::max({left - p.x, p.x - right, top - p.y, p.y - bottom});
}

// A slanted stroke between the top and the base line, `across` wide along the horizontal; x of its
// left edge at both ends.
double Slant(Point p, double topLeft, double bottomLeft, double across) {
    const double lean = bottomLeft - topLeft;
    const double left = topLeft + lean * p.y;
    const double perpendicular = 1.0 / std::sqrt(1.0 + lean * lean);
    return std::max(
        {(left - p.x) * perpendicular, (p.x - left - across) * perpendicular, -p.y, p.y - 1.0});
}

// The horizontal width of a slanted stroke that is `stroke` thick.
double Across(double stroke, double lean) {
    return stroke * std::sqrt(1.0 + lean * lean);
}

double Ring(Point p, Point centre, double outer, double stroke) {
    const double dx = p.x - centre.x;
    const double dy = p.y - centre.y;
    const double middle = outer - stroke * 0.5;
    return std::abs(std::sqrt(dx * dx + dy * dy) - middle) - stroke * 0.5;
}

double LetterA(Point p, double s) {
    const double width = LetterWidth('A');
    const double lean = 0.5 * width - 0.6 * s;
    const double across = Across(s, lean);
    const double left = Slant(p, 0.5 * (width - across), 0.0, across);
    const double right = Slant(p, 0.5 * (width - across), width - across, across);
    const double half = 0.5 * across + 0.5 * (width - across) * p.y;
    const double bar =
        std::max(Box(p, 0.0, 0.62, width, 0.62 + 0.86 * s), std::abs(p.x - 0.5 * width) - half);
    return std::min({left, right, bar});
}

double LetterG(Point p, double s) {
    const Point centre{0.5, 0.5};
    // Open to the right between the upper arm and the bar.
    const double opening =
        std::max({centre.x + 0.10 - p.x + 0.9 * (centre.y - p.y) * 0.35, p.y - 0.5, 0.225 - p.y});
    const double ring = std::max(Ring(p, centre, 0.5, s), -opening);
    const double bar = Box(p, 0.54, 0.5, 0.985, 0.5 + 0.92 * s);
    const double post = Box(p, 0.985 - s, 0.5, 0.985, 0.66);
    return std::min({ring, bar, post});
}

double LetterR(Point p, double s) {
    constexpr double kBowl = 0.55;
    const double radius = kBowl * 0.5;
    const double turn = 0.60 - radius;
    const double stem = Box(p, 0.0, 0.0, s, 1.0);
    const double top = Box(p, 0.0, 0.0, turn, s);
    const double bottom = Box(p, 0.0, kBowl - s, turn, kBowl);
    const double bowl = std::max(Ring(p, {turn, radius}, radius, s), turn - 0.02 - p.x);
    const double lean = 0.42 / 0.5;
    const double across = Across(s, lean);
    const double left = 0.24 + lean * (p.y - (kBowl - s));
    const double perpendicular = 1.0 / std::sqrt(1.0 + lean * lean);
    const double leg =
        std::max({(left - p.x) * perpendicular, (p.x - left - across) * perpendicular,
                  kBowl - 0.5 * s - p.y, p.y - 1.0});
    return std::min({stem, top, bottom, bowl, leg});
}

double LetterW(Point p, double s) {
    const double width = LetterWidth('W');
    const double lean = 0.25 * width;
    const double across = Across(s, lean);
    const double step = (width - across) / 4.0;
    return std::min({Slant(p, 0.0, step, across), Slant(p, 2.0 * step, step, across),
                     Slant(p, 2.0 * step, 3.0 * step, across),
                     Slant(p, 4.0 * step, 3.0 * step, across)});
}

double LetterV(Point p, double s) {
    const double width = LetterWidth('V');
    const double across = Across(s, 0.5 * width);
    const double step = (width - across) / 2.0;
    return std::min(Slant(p, 0.0, step, across), Slant(p, 2.0 * step, step, across));
}

double LetterN(Point p, double s) {
    const double width = LetterWidth('N');
    const double across = Across(s, width) * 0.95;
    return std::min({Box(p, 0.0, 0.0, s, 1.0), Box(p, width - s, 0.0, width, 1.0),
                     Slant(p, 0.0, width - across, across)});
}

}  // namespace

double LetterWidth(char letter) {
    switch (letter) {
        case 'A': return 0.92;
        case 'E': return 0.54;
        case 'F': return 0.52;
        case 'G': return 0.99;
        case 'H': return 0.72;
        case 'I': return 0.13;
        case 'L': return 0.50;
        case 'N': return 0.76;
        case 'O': return 1.0;
        case 'R': return 0.66;
        case 'T': return 0.62;
        case 'V': return 0.90;
        case 'W': return 1.32;
        default: return 0.42;
    }
}

double LetterDistance(char letter, double s, Point p) {
    const double width = LetterWidth(letter);
    const double stem = Box(p, 0.0, 0.0, s, 1.0);
    switch (letter) {
        case 'A': return LetterA(p, s);
        case 'E':
            return std::min({stem, Box(p, 0.0, 0.0, width, s), Box(p, 0.0, 1.0 - s, width, 1.0),
                             Box(p, 0.0, 0.5 - 0.54 * s, width - 0.05, 0.5 + 0.46 * s)});
        case 'F':
            return std::min(
                {stem, Box(p, 0.0, 0.0, width, s), Box(p, 0.0, 0.48, width - 0.06, 0.48 + s)});
        case 'G': return LetterG(p, s);
        case 'H':
            return std::min({stem, Box(p, width - s, 0.0, width, 1.0),
                             Box(p, 0.0, 0.5 - 0.54 * s, width, 0.5 + 0.46 * s)});
        case 'I': return Box(p, 0.5 * (width - s), 0.0, 0.5 * (width + s), 1.0);
        case 'L': return std::min(stem, Box(p, 0.0, 1.0 - s, width, 1.0));
        case 'N': return LetterN(p, s);
        case 'O': return Ring(p, {0.5, 0.5}, 0.5, s);
        case 'R': return LetterR(p, s);
        case 'T':
            return std::min(Box(p, 0.0, 0.0, width, s),
                            Box(p, 0.5 * (width - s), 0.0, 0.5 * (width + s), 1.0));
        case 'V': return LetterV(p, s);
        case 'W': return LetterW(p, s);
        default: return kFar;
    }
}

double TextWidth(std::string_view text, double spacing) {
    double width = 0.0;
    for (const char letter : text) {
        width += LetterWidth(letter) + spacing;
    }
    return text.empty() ? 0.0 : width - spacing;
}

double TextDistance(std::string_view text, double spacing, double stroke, Point place) {
    double nearest = kFar;
    double x = 0.0;
    for (const char letter : text) {
        nearest = std::min(nearest, LetterDistance(letter, stroke, {place.x - x, place.y}));
        x += LetterWidth(letter) + spacing;
    }
    return nearest;
}

}  // namespace vireon::scenes
