#pragma once

#include <string>
#include <vector>

#include "headless/effect_library.h"
#include "tools/look/picture.h"

namespace vireon::look {

/// What is measured on.
struct Subject {
    const headless::EffectLibrary* library;  ///< the effect
    int width;                               ///< of every scene, pixels
    int height;  ///< pixels, 346 or more; radius and intensity are scaled with it from 1080
};

/// A scene at the effect's default settings.
struct BrightnessRow {
    std::string scene;  ///< with the kind of pixels
    Brightness before;
    Brightness after;
};

/// Every still scene at 8 bits, then those with strong lights in float.
std::vector<BrightnessRow> MeasureBrightness(const Subject& subject);

/// The halo of one white lamp on black, 8 bits, defaults.
struct HaloRow {
    double lamp;  ///< radius of the lamp, pixels of a picture 1080 high
    double near;  ///< mean light from 2 to 10 such pixels outside its edge
    double far;   ///< mean light from 10 to 30
};

std::vector<HaloRow> MeasureHalos(const Subject& subject);

/// The light of the glow alone by shape.
struct ShapeRow {
    std::string shape;
    std::vector<double> light;  ///< one a scene, 1 = the mean of all shapes
};

struct ShapeTable {
    std::vector<std::string> scenes;
    std::vector<ShapeRow> rows;
    /// The largest over the smallest light, less 1, one a scene.
    std::vector<double> spread;
};

/// In float, so that nothing is cut off, the scenes as displayed.
ShapeTable MeasureShapes(const Subject& subject);

/// How steady the glow's light is over the moving scene at a Quality.
struct FlickerRow {
    std::string quality;
    double mean = 0.0;  ///< change from a frame to the next over the mean light
    double most = 0.0;
};

std::vector<FlickerRow> MeasureFlicker(const Subject& subject);

/// A preview against the full render reduced to its size, 8 bits.
struct PreviewRow {
    std::string scene;
    int factor = 1;
    Difference difference;
    double brightness = 0.0;  ///< mean of the preview over that of the reduced render
};

std::vector<PreviewRow> MeasurePreviews(const Subject& subject);

/// A Quality against 1:1, 8 bits.
struct QualityRow {
    std::string scene;
    std::string quality;
    double milliseconds = 0.0;  ///< processor time of a frame, the least of three
    Difference difference;
    double light = 0.0;  ///< of the glow alone over that at 1:1
};

std::vector<QualityRow> MeasureQualities(const Subject& subject);

/// Everything.
struct Measures {
    std::vector<BrightnessRow> brightness;
    std::vector<HaloRow> halos;
    ShapeTable shapes;
    std::vector<FlickerRow> flicker;
    std::vector<PreviewRow> previews;
    std::vector<QualityRow> qualities;
};

}  // namespace vireon::look
