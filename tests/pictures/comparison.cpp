#include "tests/pictures/comparison.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <sstream>

namespace vireon::pictures {
namespace {

using headless::Picture;

constexpr int kChannels = 4;
constexpr const char* kChannelNames[kChannels] = {"alpha", "red", "green", "blue"};

double Peak(const Picture& picture) {
    double peak = 0.0;
    for (std::int32_t y = 0; y < picture.height; ++y) {
        for (std::int32_t x = 0; x < picture.width; ++x) {
            for (int c = 0; c < kChannels; ++c) {
                const double size = std::fabs(SampleAt(picture, x, y, c));
                if (std::isfinite(size)) peak = std::max(peak, size);
            }
        }
    }
    return peak;
}

std::string SizeText(const Picture& picture) {
    return std::to_string(picture.width) + " x " + std::to_string(picture.height) + " at " +
           std::to_string(picture.bits) + " bits, origin " + std::to_string(picture.originX) + "," +
           std::to_string(picture.originY);
}

bool SameBits(const Picture& a, const Picture& b, std::int32_t x, std::int32_t y, int channel) {
    const auto bytes = static_cast<std::size_t>(a.bits / 8);
    const std::size_t at = a.rowBytes() * static_cast<std::size_t>(y) +
                           static_cast<std::size_t>(x * kChannels + channel) * bytes;
    return std::memcmp(a.pixels.data() + at, b.pixels.data() + at, bytes) == 0;
}

std::string ProblemText(const Comparison& found, std::int32_t bits, double allowed) {
    std::ostringstream text;
    text.precision(9);
    if (std::isinf(found.largest)) {
        text << "a sample is not finite: ";
    } else {
        text << found.differing << " samples differ, by up to " << found.largest
             << (bits == 32 ? " of the peak" : " steps") << " where " << allowed << " is allowed: ";
    }
    text << found.channel << " at " << found.x << "," << found.y << " is " << found.now
         << " instead of " << found.reference;
    return text.str();
}

}  // namespace

double SampleAt(const Picture& picture, std::int32_t x, std::int32_t y, int channel) {
    const std::int32_t at = x * kChannels + channel;
    switch (picture.bits) {
        case 8: return picture.row<std::uint8_t>(y)[at];
        case 16: return picture.row<std::uint16_t>(y)[at];
        default: return static_cast<double>(picture.row<float>(y)[at]);
    }
}

double WhiteOf(std::int32_t bits) {
    switch (bits) {
        case 8: return 255.0;
        case 16: return 32768.0;
        default: return 1.0;
    }
}

Comparison Compare(const Picture& now, const Picture& reference, const Tolerance& tolerance) {
    Comparison found;
    if (now.width != reference.width || now.height != reference.height ||
        now.bits != reference.bits || now.originX != reference.originX ||
        now.originY != reference.originY) {
        found.problem =
            "the picture is " + SizeText(now) + ", its reference " + SizeText(reference);
        return found;
    }
    if (now.pixels.size() != reference.pixels.size() || now.pixels.empty()) {
        found.problem = "a picture without its pixels";
        return found;
    }
    const bool isFloat = now.bits == 32;
    const double allowed = isFloat ? tolerance.ofPeak : tolerance.steps;
    const double peak = isFloat ? Peak(reference) : 1.0;
    const double unit = peak > 0.0 ? peak : 1.0;
    for (std::int32_t y = 0; y < now.height; ++y) {
        for (std::int32_t x = 0; x < now.width; ++x) {
            for (int c = 0; c < kChannels; ++c) {
                const double left = SampleAt(now, x, y, c);
                const double right = SampleAt(reference, x, y, c);
                const bool same = SameBits(now, reference, x, y, c);
                const bool finite = std::isfinite(left) && std::isfinite(right);
                if (same && finite) continue;
                found.differing += same ? 0 : 1;
                const double difference = finite ? std::fabs(left - right) / unit : HUGE_VAL;
                if (found.x >= 0 && !(difference > found.largest)) continue;
                found.largest = difference;
                found.x = x;
                found.y = y;
                found.channel = kChannelNames[c];
                found.now = left;
                found.reference = right;
            }
        }
    }
    if (found.x >= 0 && (allowed <= 0.0 || !(found.largest <= allowed))) {
        found.problem = ProblemText(found, now.bits, allowed);
    }
    return found;
}

}  // namespace vireon::pictures
