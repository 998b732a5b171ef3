#pragma once

#include <memory>
#include <vector>

#include "headless/world.h"
#include "samples/canvas.h"

namespace vireon::look {

/// Red, green and blue of every pixel as they lie over black: colour times alpha. Packed rows, top
/// row first.
struct Picture {
    int width = 0;
    int height = 0;
    std::vector<float> samples;  ///< width x height x 3
};

/// How bright a picture is. Values above 1 count as 1, as on a display.
struct Brightness {
    double mean = 0.0;   ///< of all samples
    double white = 0.0;  ///< share of the samples that are 0.99 or more
};

/// How far two pictures of one size are apart, values above 1 counting as 1.
struct Difference {
    double mean = 0.0;  ///< of the absolute differences
    double most = 0.0;  ///< the largest of them
};

/// The scene as a layer of the host; `canvas` has straight colour.
std::shared_ptr<headless::World> LayerOf(const scenes::Canvas& canvas, headless::Depth depth);

Picture PictureOf(const headless::World& world);

Brightness BrightnessOf(const Picture& picture);

/// Sum of all samples, not limited.
double LightOf(const Picture& picture);

/// Mean of the samples between two distances from a place, both in pixels from the top left corner
/// of the picture; not limited. 0 where no pixel lies there.
double LightInRing(const Picture& picture, scenes::Point centre, double inner, double outer);

/// Throws std::invalid_argument when the sizes differ.
Difference DifferenceOf(const Picture& a, const Picture& b);

/// Every sample the mean of factor x factor samples; columns and rows that do not fill a last one
/// are left out. `factor` >= 1 and no more than a side.
Picture Reduced(const Picture& picture, int factor);

/// The same for a layer, as a host's preview reduces it: colour weighed by alpha.
std::shared_ptr<headless::World> Reduced(const headless::World& layer, int factor);

}  // namespace vireon::look
