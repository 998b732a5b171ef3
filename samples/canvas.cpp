#include "samples/canvas.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

namespace vireon::scenes {

namespace {

constexpr int kLargestSide = 32768;

double Dot(Point a, Point b) {
    return a.x * b.x + a.y * b.y;
}

Point operator-(Point a, Point b) {
    return {a.x - b.x, a.y - b.y};
}

double Length(Point a) {
    return std::sqrt(Dot(a, a));
}

double DistanceToLine(Point p, Point from, Point to) {
    const Point along = to - from;
    const double lengthSquared = Dot(along, along);
    const double t =
        lengthSquared > 0.0 ? std::clamp(Dot(p - from, along) / lengthSquared, 0.0, 1.0) : 0.0;
    return Length(p - Point{from.x + t * along.x, from.y + t * along.y});
}

// A box of pixels, the last column and row excluded.
struct PixelBox {
    int left;
    int top;
    int right;
    int bottom;
};

// The pixels of the canvas that the box between two corners touches.
PixelBox PixelsBetween(const Canvas& canvas, Point topLeft, Point bottomRight) {
    const auto limited = [](double value, int size) {
        return static_cast<int>(std::clamp(value, 0.0, static_cast<double>(size)));
    };
    return {limited(std::floor(topLeft.x), canvas.width()),
            limited(std::floor(topLeft.y), canvas.height()),
            limited(std::ceil(bottomRight.x), canvas.width()),
            limited(std::ceil(bottomRight.y), canvas.height())};
}

PixelBox PixelsAround(const Canvas& canvas, Point centre, double reach) {
    return PixelsBetween(canvas, {centre.x - reach, centre.y - reach},
                         {centre.x + reach, centre.y + reach});
}

// Lays the colour over every pixel of the box by the signed distance of its middle to the edge of
// the figure: negative inside, half covered at 0.
template <typename ColourOf, typename SignedDistance>
void PaintByDistance(Canvas& canvas, const PixelBox& box, const ColourOf& colourOf,
                     const SignedDistance& signedDistance) {
    for (int y = box.top; y < box.bottom; ++y) {
        for (int x = box.left; x < box.right; ++x) {
            const Point middle{x + 0.5, y + 0.5};
            const double coverage = std::clamp(0.5 - signedDistance(middle), 0.0, 1.0);
            if (coverage > 0.0) canvas.blend(x, y, colourOf(middle), coverage);
        }
    }
}

template <typename SignedDistance>
void FillByDistance(Canvas& canvas, const PixelBox& box, Colour colour,
                    const SignedDistance& signedDistance) {
    PaintByDistance(
        canvas, box, [&](Point) { return colour; }, signedDistance);
}

// The part of the pixel [start, start + 1] that the interval [from, to] covers.
double Overlap(int start, double from, double to) {
    return std::max(0.0, std::min(to, start + 1.0) - std::max(from, static_cast<double>(start)));
}

}  // namespace

Colour operator*(Colour colour, double factor) {
    const float f = static_cast<float>(factor);
    return {colour.red * f, colour.green * f, colour.blue * f};
}

Colour operator+(Colour a, Colour b) {
    return {a.red + b.red, a.green + b.green, a.blue + b.blue};
}

Colour Mix(Colour from, Colour to, double t) {
    return from * (1.0 - t) + to * t;
}

Canvas::Canvas(int width, int height, Ground ground) : width_(width), height_(height) {
    if (width < 1 || height < 1 || width > kLargestSide || height > kLargestSide) {
        throw std::invalid_argument("a canvas must be between 1 and 32768 pixels wide and high");
    }
    samples_.assign(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 4, 0.0f);
    if (ground == Ground::kOpaque) {
        for (std::size_t i = 3; i < samples_.size(); i += 4) {
            samples_[i] = 1.0f;
        }
    }
}

std::size_t Canvas::index(int x, int y) const {
    return (static_cast<std::size_t>(y) * static_cast<std::size_t>(width_) +
            static_cast<std::size_t>(x)) *
           4;
}

Colour Canvas::at(int x, int y) const {
    const std::size_t i = index(x, y);
    return {samples_[i], samples_[i + 1], samples_[i + 2]};
}

float Canvas::alphaAt(int x, int y) const {
    return samples_[index(x, y) + 3];
}

void Canvas::set(int x, int y, Colour colour) {
    const std::size_t i = index(x, y);
    samples_[i] = colour.red;
    samples_[i + 1] = colour.green;
    samples_[i + 2] = colour.blue;
}

void Canvas::blend(int x, int y, Colour colour, double coverage) {
    if (x < 0 || y < 0 || x >= width_ || y >= height_ || coverage <= 0.0) {
        return;
    }
    float& alpha = samples_[index(x, y) + 3];
    if (alpha == 1.0f) {
        set(x, y, Mix(at(x, y), colour, coverage));
        return;
    }
    // Where less lies beneath, the new colour has the greater share of the straight colour.
    const double beneath = static_cast<double>(alpha) * (1.0 - coverage);
    const double whole = std::min(coverage + beneath, 1.0);
    set(x, y, Mix(at(x, y), colour, std::min(coverage / whole, 1.0)));
    alpha = static_cast<float>(whole);
}

void Canvas::add(int x, int y, Colour light) {
    if (x < 0 || y < 0 || x >= width_ || y >= height_) {
        return;
    }
    set(x, y, at(x, y) + light);
}

void FillRectangle(Canvas& canvas, Point topLeft, Point bottomRight, Colour colour) {
    const PixelBox box = PixelsBetween(canvas, topLeft, bottomRight);
    for (int y = box.top; y < box.bottom; ++y) {
        const double rows = Overlap(y, topLeft.y, bottomRight.y);
        for (int x = box.left; x < box.right; ++x) {
            canvas.blend(x, y, colour, rows * Overlap(x, topLeft.x, bottomRight.x));
        }
    }
}

void FillDisc(Canvas& canvas, Point centre, double radius, Colour colour) {
    FillByDistance(canvas, PixelsAround(canvas, centre, radius + 1.0), colour,
                   [&](Point p) { return Length(p - centre) - radius; });
}

void FillConvex(Canvas& canvas, const std::vector<Point>& corners, const ColourAt& colourAt) {
    if (corners.size() < 3) {
        return;
    }
    Point low = corners.front();
    Point high = corners.front();
    double doubledArea = 0.0;
    for (std::size_t i = 0; i < corners.size(); ++i) {
        const Point a = corners[i];
        const Point b = corners[(i + 1) % corners.size()];
        low = {std::min(low.x, a.x), std::min(low.y, a.y)};
        high = {std::max(high.x, a.x), std::max(high.y, a.y)};
        doubledArea += a.x * b.y - b.x * a.y;
    }
    const double turn = doubledArea < 0.0 ? -1.0 : 1.0;
    PaintByDistance(
        canvas, PixelsBetween(canvas, {low.x - 1.0, low.y - 1.0}, {high.x + 1.0, high.y + 1.0}),
        colourAt, [&](Point p) {
            double furthest = -1e9;
            for (std::size_t i = 0; i < corners.size(); ++i) {
                const Point a = corners[i];
                const Point edge = corners[(i + 1) % corners.size()] - a;
                const double length = Length(edge);
                if (length > 0.0) {
                    const Point outwards{turn * edge.y / length, -turn * edge.x / length};
                    furthest = std::max(furthest, Dot(p - a, outwards));
                }
            }
            return furthest;
        });
}

void FillConvex(Canvas& canvas, const std::vector<Point>& corners, Colour colour) {
    FillConvex(canvas, corners, [&](Point) { return colour; });
}

void DrawLine(Canvas& canvas, Point from, Point to, double width, Colour colour) {
    const double reach = width * 0.5 + 1.0;
    const Point low{std::min(from.x, to.x) - reach, std::min(from.y, to.y) - reach};
    const Point high{std::max(from.x, to.x) + reach, std::max(from.y, to.y) + reach};
    FillByDistance(canvas, PixelsBetween(canvas, low, high), colour,
                   [&](Point p) { return DistanceToLine(p, from, to) - width * 0.5; });
}

void DrawPolyline(Canvas& canvas, const std::vector<Point>& points, double width, Colour colour) {
    for (std::size_t i = 0; i + 1 < points.size(); ++i) {
        DrawLine(canvas, points[i], points[i + 1], width, colour);
    }
}

void DrawCircle(Canvas& canvas, Point centre, double radius, double width, Colour colour) {
    FillByDistance(canvas, PixelsAround(canvas, centre, radius + width * 0.5 + 1.0), colour,
                   [&](Point p) { return std::abs(Length(p - centre) - radius) - width * 0.5; });
}

void AddSoftLight(Canvas& canvas, Point centre, double radius, Colour light) {
    if (radius <= 0.0) {
        return;
    }
    const PixelBox box = PixelsAround(canvas, centre, radius);
    for (int y = box.top; y < box.bottom; ++y) {
        for (int x = box.left; x < box.right; ++x) {
            const Point off = Point{x + 0.5, y + 0.5} - centre;
            const double rest = 1.0 - Dot(off, off) / (radius * radius);
            if (rest > 0.0) {
                canvas.add(x, y, light * (rest * rest * rest));
            }
        }
    }
}

}  // namespace vireon::scenes
