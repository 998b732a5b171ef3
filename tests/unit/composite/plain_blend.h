#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>

namespace vireon::test {

/// The transfer modes written down pixel by pixel as they are defined, in any precision.

template <class Real>
struct PlainPixel {
    Real a;
    std::array<Real, 3> c;  // red, green, blue
};

template <class Real>
struct PlainBlend {
    Real glowOpacity;
    Real sourceOpacity;
    bool forceOpaque;
};

template <class Real>
Real PlainSeparable(std::int32_t mode, Real t, Real k) {
    switch (mode) {
        case 2: return t;
        case 5: return t * k;
        case 6:
        case 35: return 1 - (1 - k) * (1 - t);
        case 7: return k < Real(0.5) ? 2 * t * k : (2 * t - 1) * (1 - k) + k;
        case 8: return k + (1 - 2 * t) * (k * k - k);
        case 9: return t < Real(0.5) ? 2 * t * k : 1 - 2 * (1 - t) * (1 - k);
        case 10: return std::min(t, k);
        case 11: return std::max(t, k);
        case 23: return t < 1 ? k / (1 - t) : t;
        case 24: return t != 0 ? 1 - (1 - k) / t : t;
        default: return (1 - 2 * k) * t + k;
    }
}

constexpr double kPlainEpsilon = 0.0001;

template <class Real>
Real PlainHue(const std::array<Real, 3>& c) {
    const Real mx = std::max({c[0], c[1], c[2]});
    const Real d = mx - std::min({c[0], c[1], c[2]});
    if (mx < Real(kPlainEpsilon) || d < Real(kPlainEpsilon)) return 0;
    Real h = 0;
    if (c[0] == mx) {
        h = (c[1] - c[2]) / d;
    } else if (c[1] == mx) {
        h = (c[2] - c[0]) / d + 2;
    } else {
        h = (c[0] - c[1]) / d + 4;
    }
    return h < 0 ? h + 6 : h;
}

template <class Real>
Real PlainSaturation(const std::array<Real, 3>& c) {
    const Real mx = std::max({c[0], c[1], c[2]});
    const Real mn = std::min({c[0], c[1], c[2]});
    const Real d = mx - mn;
    if (mx < Real(kPlainEpsilon) || d < Real(kPlainEpsilon)) return 0;
    return mx + mn < 1 ? d / (mx + mn) : d / (2 - d);
}

template <class Real>
Real PlainWeigh(const std::array<Real, 3>& c) {
    return Real(0.299) * c[0] + Real(0.587) * c[1] + Real(0.114) * c[2];
}

template <class Real>
Real PlainLuma(const std::array<Real, 3>& c) {
    if (std::max({c[0], c[1], c[2]}) < Real(kPlainEpsilon)) return 0;
    return PlainWeigh(c);
}

template <class Real>
std::array<Real, 3> PlainConstruct(Real h, Real s, Real luma) {
    const Real hi = Real(0.5) * s + Real(0.5);
    const Real lo = 1 - hi;
    const int i = static_cast<int>(h);
    const Real f = h - static_cast<Real>(i);
    const Real up = lo + (hi - lo) * f;
    const Real down = lo + (hi - lo) * (1 - f);
    std::array<Real, 3> c{};
    switch (i) {
        case 0: c = {hi, up, lo}; break;
        case 1: c = {down, hi, lo}; break;
        case 2: c = {lo, hi, up}; break;
        case 3: c = {lo, down, hi}; break;
        case 4: c = {up, lo, hi}; break;
        default: c = {hi, lo, down}; break;
    }
    const Real y = PlainWeigh(c);
    for (Real& v : c) v = y >= luma ? v * (luma / y) : 1 - (1 - v) * (1 - luma) / (1 - y);
    return c;
}

template <class Real>
std::array<Real, 3> PlainFormula(std::int32_t mode, const std::array<Real, 3>& t,
                                 const std::array<Real, 3>& k) {
    switch (mode) {
        case 3:
        case 13: return PlainConstruct(PlainHue(t), PlainSaturation(k), PlainLuma(k));
        case 14: return PlainConstruct(PlainHue(k), PlainSaturation(t), PlainLuma(k));
        case 15: return PlainConstruct(PlainHue(t), PlainSaturation(t), PlainLuma(k));
        case 16: return PlainConstruct(PlainHue(k), PlainSaturation(k), PlainLuma(t));
        default: break;
    }
    std::array<Real, 3> c{};
    for (std::size_t i = 0; i < 3; ++i) c[i] = PlainSeparable(mode, t[i], k[i]);
    return c;
}

/// The result of one pixel; `mode` must be one that blends.
template <class Real>
PlainPixel<Real> PlainCompose(std::int32_t mode, PlainPixel<Real> t, PlainPixel<Real> k,
                              const PlainBlend<Real>& blend) {
    const Real at = blend.glowOpacity * t.a;
    const Real ak = blend.sourceOpacity * k.a;
    const Real aOut = ak + at - ak * at;
    PlainPixel<Real> out{aOut, k.c};
    const auto clampBelow = [&] {
        for (std::size_t i = 0; i < 3; ++i) {
            t.c[i] = std::max(t.c[i], Real(0));
            k.c[i] = std::max(k.c[i], Real(0));
        }
    };
    const auto mixOver = [&](std::array<Real, 3> c) {
        const Real w = (1 - at) * ak;
        const Real d = w + at;
        for (std::size_t i = 0; i < 3; ++i) c[i] = d == 0 ? 0 : (w * k.c[i] + at * c[i]) / d;
        return c;
    };
    if (mode == 1) {
        if (ak == 0) {
            out.c = t.c;
        } else if (ak == 1) {
            out = k;
        } else {
            clampBelow();
            std::array<Real, 3> c{};
            for (std::size_t i = 0; i < 3; ++i) c[i] = (1 - ak) * t.c[i] + ak * k.c[i];
            out.c = at == 1 ? c : mixOver(c);
        }
    } else if (at == 0) {
        out.c = k.c;
    } else if (mode == 4 || mode == 12) {
        clampBelow();
        out.c = t.c;
        if (ak > 0) {
            for (std::size_t i = 0; i < 3; ++i) {
                const Real tp = t.c[i] * at;
                const Real kp = k.c[i] * ak;
                const Real sum = mode == 4 ? tp + kp : std::abs(kp - tp);
                out.c[i] = aOut == 0 ? 0 : sum / aOut;
            }
        }
    } else {
        clampBelow();
        std::array<Real, 3> c = t.c;
        if (ak > 0) {
            c = PlainFormula(mode, t.c, k.c);
            if (ak < 1) {
                for (std::size_t i = 0; i < 3; ++i) c[i] = (1 - ak) * t.c[i] + ak * c[i];
            }
        }
        if (at != 1 && ak != 0) {
            out.c = mixOver(c);
        } else {
            out.c = c;
            out.a = at;
        }
    }
    if (blend.forceOpaque) out.a = 1;
    return out;
}

}  // namespace vireon::test
