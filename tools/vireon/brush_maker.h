#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "tools/brushes/rasterise.h"
#include "tools/vireon/picture_file.h"

namespace vireon::tool {

/// What of a picture's pixel is light.
enum class BrushChannel { kRed, kGreen, kBlue, kAlpha, kLuminance };

/// Which point of a picture comes to lie on the bright pixel.
enum class BrushCentring { kMass, kPicture, kPoint };

/// How a picture becomes a brush.
struct BrushMaking {
    BrushChannel channel = BrushChannel::kLuminance;
    bool isInverted = false;  ///< dark is light; what is transparent stays dark
    double gamma = 1;         ///< power of the levels, above 0
    bool crops = false;       ///< the shorter side fills the brush, else the longer
    BrushCentring centring = BrushCentring::kMass;
    double pointX = 0;         ///< for kPoint, in pixels from the left edge
    double pointY = 0;         ///< from the upper edge
    double windowStart = 100;  ///< distance from which the brush fades to its rim, 0 to 126 texels
    double energy = brushes::kBrushEnergy;  ///< sum of the samples, above 0
};

struct MadeBrush {
    std::vector<double> samples;     ///< 256 x 256 in rows, finite, not negative
    std::vector<std::string> notes;  ///< what the user should know
};

/// Largest picture that is taken, in pixels.
inline constexpr std::int64_t kMostBrushPixels = 40'000'000;

/// Makes a brush of a picture. Levels are taken as they stand, colour as light (multiplied by
/// alpha), luminance with the weights of Rec. 709; those below 0 or not finite count as black. Each
/// texel is the mean of the area that it covers, in a smaller picture a mean of its neighbours. The
/// brush is zero from distance 127 on; with kMass its centre of mass lies within a hundredth of a
/// texel of (128, 128), or a note says that it could not be brought there. The same samples on
/// every machine.
/// Throws ToolError (kInputUnreadable) when the picture has no such channel, is black throughout or
/// has no light within the brush.
MadeBrush MakeBrush(const PictureFile& picture, const BrushMaking& making);

}  // namespace vireon::tool
