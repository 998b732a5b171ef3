#pragma once

#include <cstddef>
#include <functional>
#include <vector>

namespace vireon::scenes {

/// A place on a canvas in pixels: x to the right, y downwards, the top left corner of the top left
/// pixel at (0, 0).
struct Point {
    double x;
    double y;
};

/// Light in display values (1 = the white of a display); values above 1 are overbright.
struct Colour {
    float red;
    float green;
    float blue;
};

Colour operator*(Colour colour, double factor);
Colour operator+(Colour a, Colour b);

/// `from` at t = 0, `to` at t = 1, evenly between; t is not limited.
Colour Mix(Colour from, Colour to, double t);

/// What a canvas holds before anything is drawn: black in either case.
enum class Ground {
    kOpaque,       ///< alpha 1, which no drawing changes
    kTransparent,  ///< alpha 0, which drawing raises
};

/// A picture: four 32-bit floats a pixel in the order red, green, blue, alpha, rows packed, top row
/// first. Colour is straight, not multiplied by alpha. Drawing outside the canvas does nothing.
class Canvas {
  public:
    /// An empty canvas. Throws std::invalid_argument unless both sides are between 1 and 32768.
    Canvas(int width, int height, Ground ground = Ground::kOpaque);

    int width() const { return width_; }
    int height() const { return height_; }

    /// All samples, width x height x 4.
    const std::vector<float>& samples() const { return samples_; }

    /// Colour of a pixel inside the canvas.
    Colour at(int x, int y) const;

    /// Alpha of a pixel inside the canvas, 0 to 1.
    float alphaAt(int x, int y) const;

    /// Replaces the colour of a pixel inside the canvas and leaves its alpha.
    void set(int x, int y, Colour colour);

    /// Lays `colour` over a pixel with the coverage 0 to 1; outside the canvas nothing happens.
    void blend(int x, int y, Colour colour, double coverage);

    /// Adds light to a pixel and leaves its alpha; outside the canvas nothing happens.
    void add(int x, int y, Colour light);

  private:
    std::size_t index(int x, int y) const;

    int width_;
    int height_;
    std::vector<float> samples_;
};

/// The drawing functions lay one colour over the canvas with edges antialiased over a pixel.

/// An upright rectangle between two corners; partly covered pixels get their exact share.
void FillRectangle(Canvas& canvas, Point topLeft, Point bottomRight, Colour colour);

/// A round disc.
void FillDisc(Canvas& canvas, Point centre, double radius, Colour colour);

/// A convex polygon, corners in either order of rotation, three or more.
void FillConvex(Canvas& canvas, const std::vector<Point>& corners, Colour colour);

/// The colour of a place.
using ColourAt = std::function<Colour(Point)>;

/// The same with a colour of its own for every pixel, taken at its middle.
void FillConvex(Canvas& canvas, const std::vector<Point>& corners, const ColourAt& colourAt);

/// A line with round ends, `width` pixels across.
void DrawLine(Canvas& canvas, Point from, Point to, double width, Colour colour);

/// Lines through all points in turn.
void DrawPolyline(Canvas& canvas, const std::vector<Point>& points, double width, Colour colour);

/// A circle drawn as a line `width` pixels across.
void DrawCircle(Canvas& canvas, Point centre, double radius, double width, Colour colour);

/// Adds a soft round light, `light` at its centre and none beyond `radius`.
void AddSoftLight(Canvas& canvas, Point centre, double radius, Colour light);

}  // namespace vireon::scenes
