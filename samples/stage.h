#pragma once

#include <algorithm>
#include <cstdint>
#include <vector>

#include "samples/canvas.h"
#include "samples/scenes.h"

namespace vireon::scenes {

/// A canvas seen in the measure in which the scenes are designed: 1080 lines high, as wide as
/// the picture's proportions ask (1920 for 16:9), the origin at the top left. The drawing calls are
/// those of canvas.h with the design's lengths; for a display each colour is limited before it is
/// drawn, so that the edges of strong lights stay smooth.
class Stage {
  public:
    static constexpr double kHeight = 1080.0;
    static constexpr double kWidest = 40000.0;

    /// Refers to the canvas, which must outlive the stage.
    Stage(Canvas& canvas, LightRange range)
        : canvas_(canvas),
          range_(range),
          scale_(canvas.height() / kHeight),
          width_(canvas.width() / scale_) {}

    Canvas& canvas() const { return canvas_; }

    LightRange range() const { return range_; }

    /// Pixels of the canvas for one unit of the design.
    double scale() const { return scale_; }

    /// Width of the picture in units of the design.
    double width() const { return width_; }

    /// Width in which a scene places its single things, at most kWidest: beyond it, in pictures far
    /// wider than any film's, only grounds go on.
    double furnishedWidth() const { return std::min(width_, kWidest); }

    double middle() const { return width_ * 0.5; }

    /// The colour that stands for a light on this canvas.
    Colour shown(Colour light) const {
        return range_ == LightRange::kDisplay ? DisplayColour(light) : light;
    }

    Point toPixels(Point p) const { return {p.x * scale_, p.y * scale_}; }

    void rectangle(Point topLeft, Point bottomRight, Colour colour) const {
        FillRectangle(canvas_, toPixels(topLeft), toPixels(bottomRight), shown(colour));
    }
    void disc(Point centre, double radius, Colour colour) const {
        FillDisc(canvas_, toPixels(centre), radius * scale_, shown(colour));
    }
    void circle(Point centre, double radius, double lineWidth, Colour colour) const {
        DrawCircle(canvas_, toPixels(centre), radius * scale_, lineWidth * scale_, shown(colour));
    }
    void line(Point from, Point to, double lineWidth, Colour colour) const {
        DrawLine(canvas_, toPixels(from), toPixels(to), lineWidth * scale_, shown(colour));
    }
    void softLight(Point centre, double radius, Colour light) const {
        AddSoftLight(canvas_, toPixels(centre), radius * scale_, light);
    }
    void polyline(const std::vector<Point>& points, double lineWidth, Colour colour) const {
        DrawPolyline(canvas_, allToPixels(points), lineWidth * scale_, shown(colour));
    }
    void convex(const std::vector<Point>& corners, Colour colour) const {
        FillConvex(canvas_, allToPixels(corners), shown(colour));
    }
    void convex(const std::vector<Point>& corners, const ColourAt& colourAt) const {
        FillConvex(canvas_, allToPixels(corners), [&](Point p) {
            return shown(colourAt({p.x / scale_, p.y / scale_}));
        });
    }

  private:
    std::vector<Point> allToPixels(const std::vector<Point>& points) const {
        std::vector<Point> pixels;
        pixels.reserve(points.size());
        for (const Point& p : points) {
            pixels.push_back(toPixels(p));
        }
        return pixels;
    }

    Canvas& canvas_;
    LightRange range_;
    double scale_;
    double width_;
};

/// Smooth random relief in 0..1 with hills about one unit of (x, y) apart, the same for the same
/// seed on every system.
double ValueNoise(double x, double y, std::uint64_t seed);

/// The line on which the houses, the lamps and the cars stand; below it lies the street.
inline constexpr double kStreetLine = 912.0;

/// The parts of the night city, back to front.
void PaintSky(const Stage& stage);
void PaintBuildings(const Stage& stage);
void PaintSigns(const Stage& stage);
void PaintStreetLife(const Stage& stage);

/// Paints the street below kStreetLine as the wet mirror of what stands above it in `scene`, a
/// picture of the same size with overbright light: reflections of strong lights stay strong. Called
/// last; `scene` may be the stage's own canvas.
void PaintWetStreet(const Stage& stage, const Canvas& scene);

}  // namespace vireon::scenes
