#include "tools/vireon/brush_picture.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>

#include "shapes/brush_file.h"
#include "tools/vireon/brush_figures.h"
#include "tools/vireon/format_text.h"
#include "tools/vireon/samples.h"
#include "tools/vireon/small_font.h"

namespace vireon::tool {
namespace {

using headless::Picture;

struct Ink {
    double red;
    double green;
    double blue;
};

constexpr Ink kPaper{0.09, 0.09, 0.10};
constexpr Ink kPlotPaper{0.13, 0.13, 0.15};
constexpr Ink kGrid{0.25, 0.25, 0.28};
constexpr Ink kText{0.80, 0.80, 0.82};
constexpr Ink kFaintText{0.50, 0.50, 0.54};
constexpr Ink kRight{1.00, 0.62, 0.20};
constexpr Ink kLeft{0.55, 0.33, 0.10};
constexpr Ink kDown{0.40, 0.90, 0.45};
constexpr Ink kUp{0.18, 0.45, 0.20};
constexpr Ink kMean{1.00, 1.00, 1.00};

constexpr int kGap = 10;
constexpr int kCaption = 18;
constexpr int kAxis = 14;
constexpr int kScaleWidth = 34;
constexpr int kTexelWidth = 4;
constexpr int kPlotWidth = kTexelWidth * (kBrushRim + 1) + 1;
constexpr int kPanel = kBrushSize;
constexpr int kStrip = kCaption + kPanel + kAxis + kGap;
constexpr int kRootLeft = kGap;
constexpr int kLinearLeft = kRootLeft + kPanel + kGap;
constexpr int kPlotLeft = kLinearLeft + kPanel + kScaleWidth;
constexpr int kWidth = kPlotLeft + kPlotWidth + kGap;
constexpr int kDecades = 6;
constexpr std::size_t kLongestName = 40;

void Dot(Picture& picture, int x, int y, const Ink& ink) {
    if (x >= 0 && x < picture.width && y >= 0 && y < picture.height) {
        SetPixel(picture, x, y, {ink.red, ink.green, ink.blue, 1.0});
    }
}

void Fill(Picture& picture, int left, int top, int width, int height, const Ink& ink) {
    for (int y = top; y < top + height; ++y) {
        for (int x = left; x < left + width; ++x) {
            Dot(picture, x, y, ink);
        }
    }
}

/// Writes a text and answers where the next may begin.
int Write(Picture& picture, int x, int y, const std::string& text, const Ink& ink) {
    for (const char letter : text) {
        const std::uint8_t* const rows = LetterRows(letter);
        for (int j = 0; j < kLetterHeight; ++j) {
            for (int i = 0; i < kLetterWidth; ++i) {
                if ((rows[j] >> (kLetterWidth - 1 - i) & 1) != 0) {
                    Dot(picture, x + i, y + j, ink);
                }
            }
        }
        x += kLetterAdvance;
    }
    return x;
}

/// Logarithm to the base 10 of a positive number to some 20 bits, of exact operations only: the
/// bits of the binary logarithm come from squaring.
double Log10(double value) {
    constexpr double kLog10Of2 = 0.30102999566398120;
    int exponent = 0;
    double mantissa = std::frexp(value, &exponent) * 2.0;
    double logarithm = exponent - 1;
    for (double bit = 0.5; bit > 1e-6; bit *= 0.5) {
        mantissa *= mantissa;
        if (mantissa >= 2.0) {
            mantissa *= 0.5;
            logarithm += bit;
        }
    }
    return logarithm * kLog10Of2;
}

/// Largest magnitude of a kernel; 1 for one of zeros, which then stays black.
double Scale(const GlowKernel& kernel) {
    double scale = 0.0;
    for (const float value : kernel.values) {
        scale = std::max(scale, std::abs(static_cast<double>(value)));
    }
    return scale > 0.0 ? scale : 1.0;
}

void DrawPanel(Picture& picture, int left, int top, const GlowKernel& kernel, double scale,
               bool asRoot) {
    for (int y = 0; y < kPanel; ++y) {
        for (int x = 0; x < kPanel; ++x) {
            const double value = static_cast<double>(kernel.row(y)[x]) / scale;
            const double share = std::abs(value);
            const double level = asRoot ? std::sqrt(std::sqrt(share)) : share;
            const bool below = value < 0.0;
            Dot(picture, left + x, top + y, {below ? 0.0 : level, below ? 0.0 : level, level});
        }
    }
}

using Profile = std::array<double, kBrushRim + 1>;

/// Values from the centre outwards; where the brush ends before the plot, zeros.
Profile ProfileOf(const GlowKernel& kernel, int stepX, int stepY) {
    Profile profile{};
    for (int i = 0; i <= kBrushRim; ++i) {
        const int x = kBrushCentre + i * stepX;
        const int y = kBrushCentre + i * stepY;
        if (x >= 0 && x < kBrushSize && y >= 0 && y < kBrushSize) {
            profile[static_cast<std::size_t>(i)] = static_cast<double>(kernel.row(y)[x]);
        }
    }
    return profile;
}

/// Row of the plot for a share of the peak, as a fraction; far below the plot for 0 and less.
double PlotRow(double share) {
    return share > 0.0 ? -Log10(share) / kDecades * kPanel : 2.0 * kPanel;
}

void DrawProfile(Picture& picture, int top, const Profile& profile, double scale, const Ink& ink) {
    // The plot ends a texel behind the profile; the line goes on level.
    const auto plotRow = [&](int texel) {
        return PlotRow(profile[static_cast<std::size_t>(std::min(texel, kBrushRim))] / scale);
    };
    double last = plotRow(0);
    for (int x = 0; x < kPlotWidth; ++x) {
        const int texel = x / kTexelWidth;
        const double part = static_cast<double>(x % kTexelWidth) / kTexelWidth;
        const double here = plotRow(texel);
        const double row = part == 0.0 ? here : here + part * (plotRow(texel + 1) - here);
        // A steep line is as connected as a flat one.
        const double upper = std::max(std::min(row, last), 0.0);
        const double lower = std::min(std::max(row, last), kPanel - 1.0);
        for (int y = static_cast<int>(upper + 0.5); y <= static_cast<int>(lower + 0.5); ++y) {
            Dot(picture, kPlotLeft + x, top + y, ink);
        }
        last = row;
    }
}

void DrawPlot(Picture& picture, int top, const GlowKernel& kernel, double scale) {
    Fill(picture, kPlotLeft, top, kPlotWidth, kPanel, kPlotPaper);
    for (int decade = 0; decade <= kDecades; ++decade) {
        const int y = top + std::min(decade * kPanel / kDecades, kPanel - 1);
        Fill(picture, kPlotLeft, y, kPlotWidth, 1, kGrid);
        const std::string label = decade == 0 ? "1" : "1E-" + std::to_string(decade);
        const int width = kLetterAdvance * static_cast<int>(label.size());
        Write(picture, kPlotLeft - width - 3, std::min(y, top + kPanel - kLetterHeight), label,
              kFaintText);
    }
    for (int distance = 0; distance <= kBrushRim + 1; distance += 16) {
        Fill(picture, kPlotLeft + distance * kTexelWidth, top, 1, kPanel, kGrid);
        const std::string label = std::to_string(distance);
        const int width = kLetterAdvance * static_cast<int>(label.size());
        Write(picture, kPlotLeft + distance * kTexelWidth - (distance == 0 ? 0 : width / 2),
              top + kPanel + 4, label, kFaintText);
    }
    DrawProfile(picture, top, ProfileOf(kernel, -1, 0), scale, kLeft);
    DrawProfile(picture, top, ProfileOf(kernel, 0, -1), scale, kUp);
    DrawProfile(picture, top, ProfileOf(kernel, 1, 0), scale, kRight);
    DrawProfile(picture, top, ProfileOf(kernel, 0, 1), scale, kDown);
    DrawProfile(picture, top, RadialMean(kernel), scale, kMean);
}

void DrawCaption(Picture& picture, int top, const NamedBrush& brush) {
    const BrushFigures figures = FiguresOf(brush.kernel);
    const int end = Write(picture, kRootLeft, top, brush.name.substr(0, kLongestName), kText);
    const std::string text = FormatText(
        "sum %.4g  peak %.4g (%d,%d)  offset %+.2f %+.2f  rim %.3g  within 16/32/64 "
        "%.0f/%.0f/%.0f%%",
        figures.sum, figures.peak, figures.peakX, figures.peakY, figures.offsetX, figures.offsetY,
        figures.rim, 100 * figures.share[0], 100 * figures.share[1], 100 * figures.share[2]);
    Write(picture, end + 2 * kLetterAdvance, top, text, kFaintText);
    int x = kPlotLeft + kPlotWidth - 32 * kLetterAdvance;
    x = Write(picture, x, top, "right", kRight) + kLetterAdvance;
    x = Write(picture, x, top, "left", kLeft) + kLetterAdvance;
    x = Write(picture, x, top, "down", kDown) + kLetterAdvance;
    x = Write(picture, x, top, "up", kUp) + kLetterAdvance;
    Write(picture, x, top, "ring mean", kMean);
}

}  // namespace

Picture DrawBrushes(const std::vector<NamedBrush>& brushes) {
    Picture picture(kWidth, kGap + kStrip * static_cast<int>(brushes.size()), 8);
    Fill(picture, 0, 0, picture.width, picture.height, kPaper);
    int top = kGap;
    for (const NamedBrush& brush : brushes) {
        const double scale = Scale(brush.kernel);
        DrawCaption(picture, top, brush);
        const int panel = top + kCaption;
        DrawPanel(picture, kRootLeft, panel, brush.kernel, scale, true);
        DrawPanel(picture, kLinearLeft, panel, brush.kernel, scale, false);
        Write(picture, kRootLeft, panel + kPanel + 4, "fourth root of share of peak", kFaintText);
        Write(picture, kLinearLeft, panel + kPanel + 4, "share of peak", kFaintText);
        DrawPlot(picture, panel, brush.kernel, scale);
        top += kStrip;
    }
    return picture;
}

}  // namespace vireon::tool
