#pragma once

#include <array>
#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "headless/world.h"

namespace vireon::conformance {

/// Places of the channels in a pixel of a picture.
inline constexpr std::size_t kAlpha = 0;
inline constexpr std::size_t kRed = 1;
inline constexpr std::size_t kGreen = 2;
inline constexpr std::size_t kBlue = 3;

using PixelValues = std::array<float, 4>;

/// A picture of straight float colour, for the model and for comparing.
class Picture {
  public:
    Picture() = default;
    /// Transparent black.
    Picture(int width, int height);

    int width() const { return width_; }
    int height() const { return height_; }
    PixelValues& at(int x, int y) { return pixels_[index(x, y)]; }
    const PixelValues& at(int x, int y) const { return pixels_[index(x, y)]; }
    std::vector<PixelValues>& pixels() { return pixels_; }
    const std::vector<PixelValues>& pixels() const { return pixels_; }

    /// Bit for bit, so that a NaN equals itself.
    bool operator==(const Picture& other) const;

  private:
    std::size_t index(int x, int y) const {
        return static_cast<std::size_t>(y) * static_cast<std::size_t>(width_) +
               static_cast<std::size_t>(x);
    }

    int width_ = 0;
    int height_ = 0;
    std::vector<PixelValues> pixels_;
};

Picture MakePicture(int width, int height, const std::function<PixelValues(int x, int y)>& pixel);

/// The pixels of a world as the effect sees them in float: 8-bit values times 0.003921569, 16-bit
/// values over 32768.
Picture ReadWorld(const headless::World& world);
/// The pixels as stored, as numbers: 0..255, 0..32768 or float.
Picture ReadRaw(const headless::World& world);

/// A world with the pixels of a picture; integer depths take the nearest value.
std::shared_ptr<headless::World> MakeWorld(const Picture& picture, headless::Depth depth,
                                           int originX = 0, int originY = 0);
std::shared_ptr<headless::World> MakeWorld(const Picture& picture, headless::WorldOptions options);

/// How float results are stored at an integer depth: white x value + 0.5 in float, truncated,
/// clamped. Answers the stored numbers.
Picture Stored(const Picture& picture, headless::Depth depth);

/// Where two pictures differ most.
struct Difference {
    double largest = 0;  ///< infinite when a value is missing or only one of the two is not finite
    std::string text;
};
Difference Compare(const Picture& expected, const Picture& actual);

/// Largest magnitude of a picture's finite values.
double Peak(const Picture& picture);
bool AllFinite(const Picture& picture);

}  // namespace vireon::conformance
