#include "samples/catalogue.h"

#include <array>

namespace vireon::scenes {

namespace {

template <Canvas (*Draw)(int, int, LightRange)>
Canvas Still(const SceneView& view) {
    return Draw(view.width, view.height, view.range);
}

Canvas Lights(const SceneView& view) {
    return DrawLights(view.width, view.height, view.range);
}

Canvas Noise(const SceneView& view) {
    return DrawNoise(view.width, view.height);
}

Canvas Moving(const SceneView& view) {
    return DrawMovingLights(view.width, view.height, view.range, view.frame);
}

constexpr std::array<Scene, 10> kScenes{{
    {"night", "A city at dusk after rain", 1920, 1080, false, 1, Still<DrawNightCity>},
    {"neon", "A neon sign on a brick wall", 1920, 1080, false, 1, Still<DrawNeonSign>},
    {"stars", "Bright stars over dust and a nebula", 1920, 1080, false, 1, Still<DrawStarField>},
    {"title", "Title letters on a transparent ground", 1920, 1080, true, 1, Still<DrawTitle>},
    {"portrait", "A figure in soft light with a lit rim", 1920, 1080, false, 1,
     Still<DrawPortrait>},
    {"product", "A flask on white", 1920, 1080, false, 1, Still<DrawProduct>},
    {"sunlit", "White houses over a glittering sea", 1920, 1080, false, 1, Still<DrawSunlitCoast>},
    {"moving", "Small lights that move by parts of a pixel", 1920, 1080, false, kMovingFrames,
     Moving},
    {"lights", "A few small lights on black", 320, 320, false, 1, Lights},
    {"noise", "Random values in every pixel", 1920, 1080, false, 1, Noise},
}};

}  // namespace

std::span<const Scene> Scenes() {
    return kScenes;
}

const Scene* FindScene(std::string_view name) {
    for (const Scene& scene : kScenes) {
        if (scene.name == name) {
            return &scene;
        }
    }
    return nullptr;
}

}  // namespace vireon::scenes
