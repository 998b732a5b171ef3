#include "tools/vireon/brush_maker.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>

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
constexpr int kMostRounds = 100;

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

/// Integral from -1 to `x` of the triangle that is 1 at 0 and 0 at -1 and 1.
double TriangleUpTo(double x) {
    const double inside = std::clamp(x, -1.0, 1.0);
    return inside < 0.0 ? 0.5 * (1.0 + inside) * (1.0 + inside)
                        : 1.0 - 0.5 * (1.0 - inside) * (1.0 - inside);
}

/// Integral up to `x` of a box of width 1 around 0.
double BoxUpTo(double x) {
    return std::clamp(x + 0.5, 0.0, 1.0);
}

/// Texels are means over their areas: of the pixels as they lie, or, where these are larger than
/// texels, of what lies between them in a straight line. `texels` is the length of a pixel in
/// texels, `centre` the place in pixels that texel 128 shows.
std::vector<Taps> TapsFor(int pixels, double texels, double centre) {
    const auto upTo = texels > 1.0 ? TriangleUpTo : BoxUpTo;
    std::vector<Taps> all(kSize);
    for (int i = 0; i < kSize; ++i) {
        Taps& taps = all[static_cast<std::size_t>(i)];
        const double from = centre + (i - kCentre - 0.5) / texels;
        const double to = centre + (i - kCentre + 0.5) / texels;
        const double first = std::floor(std::clamp(from - 2.0, 0.0, pixels - 1.0));
        const double last = std::floor(std::clamp(to + 2.0, 0.0, pixels - 1.0));
        taps.first = static_cast<int>(first);
        for (int p = taps.first; p <= static_cast<int>(last); ++p) {
            const double middle = p + 0.5;
            taps.weights.push_back((upTo(to - middle) - upTo(from - middle)) * texels);
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
void NoteBrightSides(const Plane& plane, const Placing& placing, double windowStart, bool crops,
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
                        " of its peak), which shows as an edge in the glow: " +
                        (crops ? "darken them first" : "try --crop, or darken them first"));
    }
}

/// A place in the picture that was tried, and what came of it.
struct Trial {
    Placing placing;
    std::vector<double> samples;
    Balance balance;
};

Trial Try(const Plane& plane, const Placing& placing, double windowStart) {
    Trial trial{placing, Resampled(plane, placing), {}};
    trial.balance = Fade(trial.samples, windowStart);
    return trial;
}

/// How much of a step of `texels` came off the offset; a whole step would if the window did not
/// change what is weighed.
double Response(double texels, double before, double after) {
    constexpr double kLeast = 0.1;
    constexpr double kMost = 2.0;
    return texels == 0.0 ? 1.0 : std::clamp((before - after) / texels, kLeast, kMost);
}

/// Moves a picture until its centre of mass lies on the centre, as near as it comes. A step by the
/// offset always leads there in the end, but creeps where light enters on one side as it leaves on
/// the other; longer steps, by how the last one worked, are taken where they help.
Trial CentreByMass(const Plane& plane, const Placing& start, double windowStart) {
    Trial now = Try(plane, start, windowStart);
    double stepX = now.balance.offsetX;
    double stepY = now.balance.offsetY;
    bool isPlain = true;
    for (int round = 1;
         round < kMostRounds && now.balance.sum > 0 && now.balance.offset() >= kCentredWithin;
         ++round) {
        Placing placing = now.placing;
        placing.centreX += stepX / placing.texelsX;
        placing.centreY += stepY / placing.texelsY;
        Trial next = Try(plane, placing, windowStart);
        const bool helped = next.balance.sum > 0 && next.balance.offset() < now.balance.offset();
        if (!helped && !isPlain) {
            stepX = now.balance.offsetX;
            stepY = now.balance.offsetY;
            isPlain = true;
            continue;
        }
        const double across = Response(stepX, now.balance.offsetX, next.balance.offsetX);
        const double down = Response(stepY, now.balance.offsetY, next.balance.offsetY);
        isPlain = !helped;
        stepX = next.balance.offsetX / (helped ? across : 1.0);
        stepY = next.balance.offsetY / (helped ? down : 1.0);
        now = std::move(next);
    }
    return now;
}

}  // namespace

MadeBrush MakeBrush(const PictureFile& picture, const BrushMaking& making) {
    MadeBrush made;
    const Plane plane = LightOf(picture, making, made.notes);
    const Placing placing = FirstPlacing(picture, plane, making);
    Trial placed = making.centring == BrushCentring::kMass
                       ? CentreByMass(plane, placing, making.windowStart)
                       : Try(plane, placing, making.windowStart);
    const Balance& balance = placed.balance;
    if (balance.sum <= 0) {
        Refuse("none of its light lies within the brush; choose another --centre");
    }
    if (making.centring == BrushCentring::kMass && balance.offset() >= kCentredPromise) {
        made.notes.push_back(
            "the centre of mass could not be brought to the brush's centre, because light that "
            "comes in on one side outweighs what goes out on the other; try --centre picture");
    }
    NoteLostLight(plane, placed.placing, balance.sum, made.notes);
    NoteBrightSides(plane, placed.placing, making.windowStart, making.crops, made.notes);
    made.samples = std::move(placed.samples);
    for (double& sample : made.samples) {
        sample *= making.energy / balance.sum;
    }
    return made;
}

}  // namespace vireon::tool
