#pragma once

#include <span>
#include <string_view>

#include "samples/canvas.h"
#include "samples/scenes.h"

namespace vireon::scenes {

/// What is asked of a scene.
struct SceneView {
    int width;         ///< pixels, as for Canvas
    int height;        ///< pixels, as for Canvas
    LightRange range;  ///< how far the lights go
    int frame = 0;     ///< from 0 to Scene::frames - 1
};

/// A scene under the name by which programs and tests find it.
struct Scene {
    std::string_view name;
    std::string_view description;  ///< one line
    int defaultWidth;
    int defaultHeight;
    bool hasAlpha;  ///< part of the picture is transparent; otherwise alpha is 1 everywhere
    int frames;     ///< 1 for a still; a moving scene goes on with frame 0 after its last
    Canvas (*draw)(const SceneView& view);
};

/// All scenes, in the order in which they are listed.
std::span<const Scene> Scenes();

/// The scene with this name; null when there is none.
const Scene* FindScene(std::string_view name);

}  // namespace vireon::scenes
