#include "samples/portrait_figure.h"

#include "tools/brushes/series.h"

namespace vireon::scenes {

namespace {

// Far from a part only a lower bound of its distance is worked out: its features reach no further
// than this from the plain form around it.
constexpr double kFeatures = 0.30;

// The middle plane of the face is mirrored: x is the distance from it.
double Face(Vec3 p) {
    const Vec3 q{std::abs(p.x), p.y, p.z};
    double d = Ellipsoid(q, {0.0, 0.16, -0.10}, {0.72, 0.85, 0.88});
    d = Joined(d, Ellipsoid(q, {0.0, -0.28, 0.13}, {0.53, 0.74, 0.60}), 0.20);
    if (d > 0.5) return d - kFeatures;
    // Behind the jaw there are none.
    if (p.z < -0.50) return d;
    // Chin, jaw, cheek bones.
    d = Joined(d, Ellipsoid(q, {0.0, -0.90, 0.47}, {0.165, 0.125, 0.150}), 0.26);
    d = Joined(d, Rod(q, {0.40, -0.56, -0.04}, {0.13, -0.90, 0.40}, 0.10, 0.085), 0.28);
    d = Joined(d, Ellipsoid(q, {0.33, -0.20, 0.46}, {0.17, 0.15, 0.19}), 0.24);
    // Brows over the hollows of the eyes, and the lowered lids in them.
    d = Joined(d, Ellipsoid(q, {0.20, 0.165, 0.655}, {0.20, 0.055, 0.080}), 0.22);
    d = Without(d, Ellipsoid(q, {0.25, -0.02, 0.85}, {0.17, 0.105, 0.125}), 0.18);
    d = Joined(d, Ellipsoid(q, {0.245, -0.035, 0.600}, {0.145, 0.096, 0.125}), 0.045);
    // The nose: bridge, tip, wings.
    d = Joined(d, Rod(q, {0.0, 0.13, 0.70}, {0.0, -0.27, 0.885}, 0.050, 0.070), 0.13);
    d = Joined(d, Ellipsoid(q, {0.0, -0.300, 0.875}, {0.078, 0.068, 0.080}), 0.06);
    d = Joined(d, Ellipsoid(q, {0.072, -0.325, 0.800}, {0.055, 0.050, 0.075}), 0.06);
    // The mouth: the upper lip, the fuller lower one, and the hollow under it.
    d = Joined(d, Ellipsoid(q, {0.0, -0.595, 0.630}, {0.17, 0.15, 0.110}), 0.20);
    d = Joined(d, Ellipsoid(q, {0.050, -0.570, 0.715}, {0.110, 0.038, 0.055}), 0.045);
    d = Joined(d, Ellipsoid(q, {0.0, -0.655, 0.705}, {0.110, 0.044, 0.060}), 0.045);
    d = Without(d, Ellipsoid(q, {0.0, -0.765, 0.760}, {0.12, 0.040, 0.06}), 0.10);
    return d;
}

double Scarf(Vec3 p) {
    const double whole = Ellipsoid(p, {0.0, 0.22, -0.16}, {0.81, 0.88, 0.93});
    const double back = Rod(p, {0.0, 0.34, -1.08}, {0.05, -1.10, -1.02}, 0.24, 0.26);
    if (std::min(whole, back) > 0.25) return std::min(whole, back) - 0.12;
    // Folds run around the head, rising to the knot at the back; they swing a little.
    const double swing = 0.10 * Wave(0.8 * p.x + 0.45 * p.z);
    const double slant = p.y - 0.30 * p.z + swing;
    const double fold = Wave(slant * 2.9) + 0.4 * Wave(slant * 6.1 + 0.3);
    const double shell = whole - 0.017 * fold - 0.015;
    // It ends over the brow and goes down over the ear to the nape.
    const double rim = (0.57 - p.y) * 0.62 + (p.z - 0.68) * 0.785;
    const double cap = -Joined(-shell, -rim, 0.06);
    const double knot =
        Ellipsoid(p, {0.0, 0.30, -1.04}, {0.25, 0.27, 0.20}) - 0.014 * Wave(p.x * 3.0 + p.y * 2.0);
    const double tail = Rod(p, {0.0, 0.20, -1.10}, {0.05, -1.12, -1.00}, 0.13, 0.23) -
                        0.022 * Wave(p.x * 4.2 + 0.5 * p.y + 0.6 * p.z);
    return Joined(cap, Joined(knot, tail, 0.10), 0.12);
}

double Neck(Vec3 p) {
    return Rod(p, {0.13, -0.45, -0.22}, {0.24, -1.62, -0.36}, 0.325, 0.375);
}

double Dress(Vec3 p) {
    const double shoulders = Rod(p, {-0.86, -2.12, -0.28}, {1.22, -2.06, -0.60}, 0.31, 0.31);
    const double chest = Ellipsoid(p, {0.20, -2.80, -0.36}, {1.26, 1.22, 0.72});
    const double slope = Rod(p, {0.22, -1.42, -0.40}, {0.22, -2.80, -0.44}, 0.30, 1.31);
    const double cloth = Joined(Joined(shoulders, chest, 0.45), slope, 0.30);
    if (cloth > 0.25) return cloth - 0.02;
    return cloth - 0.012 * Wave(1.7 * p.x + 0.9 * p.y + 0.4 * p.z);
}

// A white collar lies around the neck, open in front.
double Collar(Vec3 p) {
    const Vec3 q = p - Vec3{0.22, -1.47, -0.36};
    const Vec3 tilted{q.x, q.y + 0.30 * q.z, q.z};
    const double around = std::sqrt(tilted.x * tilted.x + tilted.z * tilted.z);
    const double flare = around - 0.455 + 0.42 * tilted.y;
    const double sheet = std::max(std::abs(flare) * 0.9 - 0.020, std::abs(tilted.y) - 0.150);
    return sheet - 0.014;
}

}  // namespace

Vec3 ToHead(Vec3 p) {
    // Turned to the left and bowed a little.
    constexpr double kTurn = 0.128;  // in turns
    constexpr double kBow = 0.016;
    static const double sinTurn = brushes::SinTurns(kTurn);
    static const double cosTurn = brushes::CosTurns(kTurn);
    static const double sinBow = brushes::SinTurns(kBow);
    static const double cosBow = brushes::CosTurns(kBow);
    const Vec3 turned{cosTurn * p.x + sinTurn * p.z, p.y, -sinTurn * p.x + cosTurn * p.z};
    return {turned.x, cosBow * turned.y + sinBow * turned.z,
            -sinBow * turned.y + cosBow * turned.z};
}

FigurePlace FigureAt(Vec3 p) {
    const Vec3 head = ToHead(p);
    FigurePlace nearest{Joined(Face(head), Neck(p), 0.14), Matter::kSkin};
    const auto take = [&nearest](double distance, Matter matter) {
        if (distance < nearest.distance) nearest = {distance, matter};
    };
    take(Dress(p), Matter::kDress);
    take(Collar(p), Matter::kCollar);
    take(Scarf(head), Matter::kScarf);
    take(Sphere(head, {0.625, -0.70, -0.02}, 0.098), Matter::kPearl);
    return nearest;
}

}  // namespace vireon::scenes
