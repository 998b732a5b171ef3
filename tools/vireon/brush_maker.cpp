#include "tools/vireon/brush_maker.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "image/exact_math.h"
#include "tools/brushes/series.h"
#include "tools/vireon/format_text.h"
#include "tools/vireon/tool_error.h"

namespace vireon::tool {
namespace {

constexpr int kSize = brushes::kBrushSize;
constexpr int kCentre = brushes::kBrushCentre;
constexpr double kRim = brushes::kBrushRadius;

/// Texels across which a fitted picture lies: from rim to rim.
constexpr double kFitted = 2.0 * kRim;

/// The centring stops at this offset: a fifth of what is promised, so that rounding in the file
/// cannot undo it.
constexpr double kCentredWithin = 0.002;
constexpr double kCentredPromise = 0.01;
constexpr int kMostRounds = 60;

[[noreturn]] void Refuse(const std::string& reason) {
    throw ToolError(kInputUnreadable, "cannot make a brush of this picture: " + reason);
}

const char* NameOf(BrushChannel channel) {
    switch (channel) {
        case BrushChannel::kRed: return "red";
        case BrushChannel::kGreen: return "green";
        case BrushChannel::kBlue: return "blue";
        case BrushChannel::kAlpha: return "alpha";
        case BrushChannel::kLuminance: return "luminance";
    }
    return "";
}

std::string Percent(double share) {
    return FormatText("%.0f %%", 100 * share);
}

/// The light of a picture, its brightest level 1.
struct Plane {
    int width = 0;
    int height = 0;
    std::vector<float> levels;
    double at(int x, int y) const {
        return static_cast<double>(
            levels[static_cast<std::size_t>(y) * static_cast<std::size_t>(width) +
                   static_cast<std::size_t>(x)]);
    }
};

double ChannelOf(const Color& color, BrushChannel channel) {
    switch (channel) {
        case BrushChannel::kRed: return color.red;
        case BrushChannel::kGreen: return color.green;
        case BrushChannel::kBlue: return color.blue;
        case BrushChannel::kAlpha: return color.alpha;
        case BrushChannel::kLuminance:
            return 0.2126 * color.red + 0.7152 * color.green + 0.0722 * color.blue;
    }
    return 0;
}

void NoteOddPixels(std::int64_t negative, std::int64_t notFinite, std::vector<std::string>& notes) {
    if (negative > 0) {
        notes.push_back(std::to_string(negative) +
                        " pixels of the picture are below 0 and count as black");
    }
    if (notFinite > 0) {
        notes.push_back(std::to_string(notFinite) +
                        " pixels of the picture are not finite and count as black");
    }
}

Plane LightOf(const PictureFile& picture, const BrushMaking& making,
              std::vector<std::string>& notes) {
    if (making.channel == BrushChannel::kAlpha && !picture.hasAlpha) {
        Refuse("it has no alpha channel");
    }
    Plane plane{picture.width, picture.height, {}};
    const std::size_t count =
        static_cast<std::size_t>(picture.width) * static_cast<std::size_t>(picture.height);
    plane.levels.resize(count);
    std::int64_t negative = 0;
    std::int64_t notFinite = 0;
    for (std::size_t i = 0; i < count; ++i) {
        const Color stored = FileColor(picture, i);
        const Color light = picture.isAssociated ? stored : Associated(stored);
        double level = ChannelOf(light, making.channel);
        if (!std::isfinite(level)) {
            ++notFinite;
            continue;
        }
        negative += level < 0 ? 1 : 0;
        if (making.isInverted) {
            const double full = making.channel == BrushChannel::kAlpha ? 1.0 : light.alpha;
            level = std::isfinite(full) ? full - level : 0.0;
        }
        plane.levels[i] = static_cast<float>(std::max(level, 0.0));
    }
    NoteOddPixels(negative, notFinite, notes);
    const float peak = *std::max_element(plane.levels.begin(), plane.levels.end());
    if (peak == 0.0f) {
        Refuse(std::string("its ") + NameOf(making.channel) +
               (making.isInverted ? ", inverted," : "") + " is black throughout");
    }
    const auto gamma = static_cast<float>(making.gamma);
    for (float& level : plane.levels) {
        level = level / peak;
        level = gamma == 1.0f ? level : Pow(level, gamma);
    }
    return plane;
}

/// Which pixels along one direction make up a texel, and by how much.
struct Taps {
    int first = 0;
    std::vector<double> weights;
};

/// `texels` is the length of a pixel in texels, `centre` the place in pixels that texel 128 shows.
std::vector<Taps> TapsFor(int pixels, double texels, double centre) {
    std::vector<Taps> all(kSize);
    for (int i = 0; i < kSize; ++i) {
        Taps& taps = all[static_cast<std::size_t>(i)];
        // Half the width of what a texel gathers: its own, or that between neighbours where pixels
        // are larger.
        const double middle = centre + (i - kCentre) / texels;
        const bool enlarges = texels > 1.0;
        const double reach = enlarges ? 1.0 : 0.5 / texels;
        const double from = middle - reach;
        const double to = middle + reach;
        const double first = std::floor(std::clamp(from - 1.0, 0.0, pixels - 1.0));
        const double last = std::floor(std::clamp(to + 1.0, 0.0, pixels - 1.0));
        taps.first = static_cast<int>(first);
        for (int p = taps.first; p <= static_cast<int>(last); ++p) {
            const double weight =
                enlarges ? std::max(0.0, 1.0 - std::abs(p + 0.5 - middle))
                         : std::max(0.0, std::min(p + 1.0, to) - std::max(p + 0.0, from)) * texels;
            taps.weights.push_back(weight);
        }
    }
    return all;
}

/// Where a picture lies in the brush.
struct Placing {
    double texelsX = 1;  ///< width of a pixel in texels
    double texelsY = 1;
    double centreX = 0;  ///< place in the picture, in pixels, that lies on texel (128, 128)
    double centreY = 0;
};

std::vector<double> Resampled(const Plane& plane, const Placing& placing) {
    const std::vector<Taps> columns = TapsFor(plane.width, placing.texelsX, placing.centreX);
    const std::vector<Taps> rows = TapsFor(plane.height, placing.texelsY, placing.centreY);
    std::vector<double> narrowed(static_cast<std::size_t>(plane.height) * kSize);
    std::size_t index = 0;
    for (int y = 0; y < plane.height; ++y) {
        for (int x = 0; x < kSize; ++x, ++index) {
            const Taps& taps = columns[static_cast<std::size_t>(x)];
            int p = taps.first;
            for (const double weight : taps.weights) {
                narrowed[index] += weight * plane.at(p++, y);
            }
        }
    }
    std::vector<double> samples(static_cast<std::size_t>(kSize) * kSize);
    for (std::size_t y = 0; y < kSize; ++y) {
        std::size_t p = static_cast<std::size_t>(rows[y].first);
        for (const double weight : rows[y].weights) {
            for (std::size_t x = 0; x < kSize; ++x) {
                samples[y * kSize + x] += weight * narrowed[p * kSize + x];
            }
            ++p;
        }
    }
    return samples;
}

double DistanceFromCentre(double x, double y) {
    return std::sqrt((x - kCentre) * (x - kCentre) + (y - kCentre) * (y - kCentre));
}

/// What the samples add up to, and how far their centre of mass is off.
struct Balance {
    double sum = 0;
    double offsetX = 0;
    double offsetY = 0;
    double offset() const { return std::max(std::abs(offsetX), std::abs(offsetY)); }
};

/// Fades the samples out to exactly zero at the rim.
Balance Fade(std::vector<double>& samples, double windowStart) {
    Balance balance;
    std::size_t index = 0;
    for (int y = 0; y < kSize; ++y) {
        for (int x = 0; x < kSize; ++x, ++index) {
            const double distance = DistanceFromCentre(x, y);
            samples[index] *=
                distance >= kRim ? 0.0 : 1.0 - brushes::SmoothRamp(windowStart, kRim, distance);
            balance.sum += samples[index];
            balance.offsetX += samples[index] * (x - kCentre);
            balance.offsetY += samples[index] * (y - kCentre);
        }
    }
    if (balance.sum > 0) {
        balance.offsetX /= balance.sum;
        balance.offsetY /= balance.sum;
    }
    return balance;
}

Placing FirstPlacing(const PictureFile& picture, const Plane& plane, const BrushMaking& making) {
    const double width = plane.width * picture.pixelAspect;
    const double height = plane.height;
    const double texels =
        kFitted / (making.crops ? std::min(width, height) : std::max(width, height));
    Placing placing{texels * picture.pixelAspect, texels, plane.width * 0.5, plane.height * 0.5};
    if (making.centring == BrushCentring::kPoint) {
        placing.centreX = making.pointX;
        placing.centreY = making.pointY;
    } else if (making.centring == BrushCentring::kMass) {
        double sum = 0;
        double momentX = 0;
        double momentY = 0;
        for (int y = 0; y < plane.height; ++y) {
            for (int x = 0; x < plane.width; ++x) {
                const double level = plane.at(x, y);
                sum += level;
                momentX += level * (x + 0.5);
                momentY += level * (y + 0.5);
            }
        }
        placing.centreX = momentX / sum;
        placing.centreY = momentY / sum;
    }
    return placing;
}

void NoteLostLight(const Plane& plane, const Placing& placing, double kept,
                   std::vector<std::string>& notes) {
    constexpr double kWorthANote = 0.02;
    double whole = 0;
    for (const float level : plane.levels) {
        whole += static_cast<double>(level);
    }
    const double lost = 1.0 - kept / (whole * placing.texelsX * placing.texelsY);
    if (lost > kWorthANote) {
        notes.push_back(Percent(lost) +
                        " of the picture's light lies beyond the brush or fades towards its rim");
    }
}

/// The sides of a picture show where they are bright and lie well within the brush.
void NoteBrightSides(const Plane& plane, const Placing& placing, double windowStart,
                     std::vector<std::string>& notes) {
    constexpr double kWorthANote = 0.02;
    double brightest = 0;
    const auto look = [&](int x, int y) {
        const double texelX = kCentre + (x + 0.5 - placing.centreX) * placing.texelsX;
        const double texelY = kCentre + (y + 0.5 - placing.centreY) * placing.texelsY;
        const double window =
            1.0 - brushes::SmoothRamp(windowStart, kRim, DistanceFromCentre(texelX, texelY));
        brightest = std::max(brightest, plane.at(x, y) * window);
    };
    for (int x = 0; x < plane.width; ++x) {
        look(x, 0);
        look(x, plane.height - 1);
    }
    for (int y = 0; y < plane.height; ++y) {
        look(0, y);
        look(plane.width - 1, y);
    }
    if (brightest > kWorthANote) {
        notes.push_back("the picture is not black at its sides (up to " + Percent(brightest) +
                        " of its peak), which shows as an edge in the glow; try --crop");
    }
}

/// Finds the place in a picture, in pixels along one direction, that brings the centre of mass to
/// the centre. A step by the offset itself would do if the window did not change what is weighed;
/// the next step allows for how the last one worked.
class CentreSearch {
  public:
    /// Where to try next, from a place and the offset in texels that it led to.
    double next(double place, double offset, double texels) {
        constexpr double kLeastResponse = 0.1;
        constexpr double kMostResponse = 2.0;
        double response = 1.0;
        if (step_ != 0.0) {
            response = std::clamp((offset_ - offset) / step_, kLeastResponse, kMostResponse);
        }
        offset_ = offset;
        step_ = offset / response;
        return place + step_ / texels;
    }

  private:
    double offset_ = 0;
    double step_ = 0;  ///< last step in texels
};

}  // namespace

MadeBrush MakeBrush(const PictureFile& picture, const BrushMaking& making) {
    MadeBrush made;
    const Plane plane = LightOf(picture, making, made.notes);
    Placing placing = FirstPlacing(picture, plane, making);
    Placing placed;
    Balance balance;
    CentreSearch across;
    CentreSearch down;
    for (int round = 0; round < kMostRounds; ++round) {
        placed = placing;
        made.samples = Resampled(plane, placed);
        balance = Fade(made.samples, making.windowStart);
        if (making.centring != BrushCentring::kMass || balance.sum <= 0 ||
            balance.offset() < kCentredWithin) {
            break;
        }
        placing.centreX = across.next(placed.centreX, balance.offsetX, placed.texelsX);
        placing.centreY = down.next(placed.centreY, balance.offsetY, placed.texelsY);
    }
    if (balance.sum <= 0) {
        Refuse("none of its light lies within the brush; choose another --centre");
    }
    if (making.centring == BrushCentring::kMass && balance.offset() >= kCentredPromise) {
        made.notes.push_back(
            "the centre of mass could not be brought to the brush's centre, because light that "
            "comes in on one side outweighs what goes out on the other; try --centre picture");
    }
    NoteLostLight(plane, placed, balance.sum, made.notes);
    NoteBrightSides(plane, placed, making.windowStart, made.notes);
    for (double& sample : made.samples) {
        sample *= making.energy / balance.sum;
    }
    return made;
}

}  // namespace vireon::tool
