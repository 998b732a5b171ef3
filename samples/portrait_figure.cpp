#include "samples/portrait_figure.h"

#include "tools/brushes/series.h"

namespace vireon::scenes {

namespace {

// The middle plane of the face is mirrored: x is the distance from it.
double Face(Vec3 p) {
    const Vec3 q{std::abs(p.x), p.y, p.z};
    double d = Ellipsoid(q, {0.0, 0.16, -0.10}, {0.73, 0.86, 0.88});
    d = Joined(d, Ellipsoid(q, {0.0, -0.26, 0.14}, {0.55, 0.80, 0.62}), 0.20);
    d = Joined(d, Ellipsoid(q, {0.0, -0.88, 0.44}, {0.23, 0.18, 0.20}), 0.26);
    d = Joined(d, Ellipsoid(q, {0.34, -0.20, 0.46}, {0.20, 0.18, 0.22}), 0.22);
    d = Joined(d, Ellipsoid(q, {0.22, 0.17, 0.66}, {0.24, 0.07, 0.09}), 0.16);
    d = Without(d, Ellipsoid(q, {0.25, -0.02, 0.86}, {0.18, 0.11, 0.13}), 0.16);
    d = Joined(d, Ellipsoid(q, {0.245, -0.03, 0.615}, {0.150, 0.098, 0.125}), 0.035);
    d = Joined(d, Rod(q, {0.0, 0.10, 0.70}, {0.0, -0.30, 0.905}, 0.055, 0.088), 0.11);
    d = Joined(d, Ellipsoid(q, {0.082, -0.325, 0.81}, {0.068, 0.060, 0.085}), 0.06);
    // The mouth: the upper lip, the fuller lower one, and the hollow under it.
    d = Joined(d, Ellipsoid(q, {0.055, -0.565, 0.735}, {0.120, 0.050, 0.075}), 0.05);
    d = Joined(d, Ellipsoid(q, {0.0, -0.660, 0.725}, {0.125, 0.058, 0.080}), 0.05);
    d = Without(d, Ellipsoid(q, {0.0, -0.760, 0.800}, {0.12, 0.045, 0.07}), 0.08);
    return d;
}

double Scarf(Vec3 p) {
    // Folds run around the head, slanting down to the back.
    const double slant = p.y + 0.42 * p.z;
    const double fold = brushes::SinTurns(slant * 2.6 + 0.35 * p.x);
    const double shell =
        Ellipsoid(p, {0.0, 0.22, -0.16}, {0.83, 0.90, 0.95}) - 0.016 * fold - 0.012;
    // It ends over the brow and comes down behind the ear.
    const double rim = (0.40 - p.y) * 0.80 + (p.z - 0.16) * 0.60;
    const double cap = -Joined(-shell, -rim, 0.05);
    const double knot = Ellipsoid(p, {0.0, 0.34, -1.08}, {0.24, 0.26, 0.20}) -
                        0.012 * brushes::SinTurns(p.x * 3.0 + p.y * 2.0);
    const double tail = Rod(p, {0.0, 0.22, -1.16}, {0.05, -1.10, -1.12}, 0.15, 0.24) -
                        0.020 * brushes::SinTurns(p.x * 4.0 + 0.5 * p.y);
    return Joined(cap, Joined(knot, tail, 0.08), 0.10);
}

double Neck(Vec3 p) {
    return Rod(p, {0.12, -0.45, -0.22}, {0.20, -1.62, -0.36}, 0.37, 0.40);
}

double Dress(Vec3 p) {
    const double shoulders = Rod(p, {-0.86, -2.16, -0.36}, {1.16, -2.10, -0.62}, 0.40, 0.40);
    const double chest = Ellipsoid(p, {0.16, -2.90, -0.36}, {1.28, 1.20, 0.74});
    return Joined(shoulders, chest, 0.45);
}

}  // namespace

Vec3 ToHead(Vec3 p) {
    // Turned to the left and bowed a little.
    constexpr double kTurn = 0.150;  // in turns
    constexpr double kBow = 0.014;
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
    const double skin = Joined(Face(head), Neck(p), 0.16);
    const double dress = Dress(p);
    FigurePlace nearest{Joined(skin, Ellipsoid(p, {0.15, -2.02, -0.30}, {0.62, 0.36, 0.44}), 0.30),
                        Matter::kSkin};
    const auto take = [&nearest](double distance, Matter matter) {
        if (distance < nearest.distance) nearest = {distance, matter};
    };
    take(dress, Matter::kDress);
    take(Scarf(head), Matter::kScarf);
    take(Sphere(head, {0.66, -0.66, -0.02}, 0.105), Matter::kPearl);
    return nearest;
}

}  // namespace vireon::scenes
