#pragma once

#include <algorithm>
#include <cmath>

namespace vireon::scenes {

/// A place or a direction in space: x to the right, y up, z towards the viewer.
struct Vec3 {
    double x;
    double y;
    double z;
};

inline Vec3 operator+(Vec3 a, Vec3 b) {
    return {a.x + b.x, a.y + b.y, a.z + b.z};
}
inline Vec3 operator-(Vec3 a, Vec3 b) {
    return {a.x - b.x, a.y - b.y, a.z - b.z};
}
inline Vec3 operator*(Vec3 a, double factor) {
    return {a.x * factor, a.y * factor, a.z * factor};
}
inline double Dot(Vec3 a, Vec3 b) {
    return a.x * b.x + a.y * b.y + a.z * b.z;
}
inline double Length(Vec3 a) {
    return std::sqrt(Dot(a, a));
}
/// The direction of a vector that is not 0.
inline Vec3 Direction(Vec3 a) {
    return a * (1.0 / Length(a));
}

/// Signed distances of a place from solids: negative inside.

inline double Sphere(Vec3 p, Vec3 centre, double radius) {
    return Length(p - centre) - radius;
}

/// An ellipsoid along the axes; the distance is exact near its surface.
inline double Ellipsoid(Vec3 p, Vec3 centre, Vec3 radii) {
    const Vec3 q = p - centre;
    // Radii are mostly constants, so these divisions are done by the compiler.
    const Vec3 shares{1.0 / radii.x, 1.0 / radii.y, 1.0 / radii.z};
    const Vec3 once{q.x * shares.x, q.y * shares.y, q.z * shares.z};
    const Vec3 twice{once.x * shares.x, once.y * shares.y, once.z * shares.z};
    const double k = Length(once);
    const double gradient = Length(twice);
    return gradient > 0.0 ? k * (k - 1.0) / gradient : -std::min({radii.x, radii.y, radii.z});
}

/// A rod with round ends whose radius goes evenly from one end to the other.
inline double Rod(Vec3 p, Vec3 from, Vec3 to, double radiusFrom, double radiusTo) {
    const Vec3 along = to - from;
    const double t = std::clamp(Dot(p - from, along) / Dot(along, along), 0.0, 1.0);
    return Length(p - from - along * t) - (radiusFrom + (radiusTo - radiusFrom) * t);
}

/// The union of two solids, rounded where they meet within about `reach` > 0.
inline double Joined(double a, double b, double reach) {
    const double h = std::max(reach - std::abs(a - b), 0.0) / reach;
    return std::min(a, b) - h * h * h * reach * (1.0 / 6.0);
}

/// The first solid without the second, rounded likewise.
inline double Without(double a, double b, double reach) {
    return -Joined(-a, b, reach);
}

/// A wave between -1 and 1 with the period 1, close to a sine and quicker.
inline double Wave(double turns) {
    const double part = turns - std::floor(turns);
    const double way = std::abs(4.0 * part - 2.0) - 1.0;
    return way * (1.5 - 0.5 * way * way);
}

}  // namespace vireon::scenes
