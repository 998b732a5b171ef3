#include <gtest/gtest.h>

#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "tests/conformance/model_check.h"

namespace vireon::conformance {
namespace {

using headless::Depth;

/// A picture whose values are exactly those of an integer depth.
Picture Quantised(const Picture& picture, Depth depth) {
    return ReadWorld(*MakeWorld(picture, depth));
}

/// Scenes that pass through different parts of the work.
std::vector<Scene> Scenes(Depth depth) {
    std::vector<Scene> scenes;
    scenes.push_back(PlainScene());
    Scene scene = PlainScene();
    scene.input = TransparentPicture(48, 32);
    scene.controls.quality = 3;
    scenes.push_back(scene);
    for (const std::int32_t mode : {1, 2, 3, 6, 8, 12, 13, 17, 20, 23}) {
        scene.controls.transferMode = mode;
        scenes.push_back(scene);
    }
    scene.controls.transferMode = kModeAdd;
    scene.controls.view = kViewBrightness;
    scenes.push_back(scene);
    scene.controls.view = kViewMask;
    scene.controls.enableMask = true;
    scenes.push_back(scene);
    scene.controls.view = kViewOutput;
    scene.maskLayer = AlphaPicture(30, 40);
    scene.glowLayer = OpaquePicture(40, 30);
    scenes.push_back(scene);
    scene.controls.shape = kShapeCustom;
    scene.shapeLayer = AlphaPicture(9, 7);
    scenes.push_back(scene);
    for (Scene& each : scenes) {
        each.input = Quantised(each.input, depth);
        for (std::optional<Picture>* layer : {&each.glowLayer, &each.maskLayer, &each.shapeLayer}) {
            if (*layer) {
                *layer = Quantised(**layer, depth);
            }
        }
    }
    return scenes;
}

struct Frame {
    Depth depth;
    Path path;
};

std::string Name(const Frame& frame) {
    return std::to_string(headless::BitsPerChannel(frame.depth)) +
           (frame.path == Path::kSmart ? "BitSmart" : "BitPlain");
}

void PrintTo(const Frame& frame, std::ostream* stream) {
    *stream << Name(frame);
}

std::string FrameName(const ::testing::TestParamInfo<Frame>& info) {
    return Name(info.param);
}

class IntegerDepth : public ::testing::TestWithParam<Frame> {};

TEST_P(IntegerDepth, IsTheFloatResultStoredWithRounding) {
    const auto [depth, path] = GetParam();
    int number = 0;
    for (const Scene& scene : Scenes(depth)) {
        SCOPED_TRACE(number++);
        const Picture expected = Stored(RenderScene(scene), depth);
        const Picture actual = RenderScene(scene, depth, path);
        EXPECT_TRUE(actual == expected) << Compare(expected, actual).text;
    }
}

TEST_P(IntegerDepth, HoldsWhiteBlackAndWhatLiesBeyondThem) {
    const auto [depth, path] = GetParam();
    Scene scene = PlainScene();
    scene.input = Quantised(
        MakePicture(16, 12,
                    [](int x, int y) {
                        return PixelValues{1.0f, x < 8 ? 1.0f : 0.0f, y < 6 ? 1.0f : 0.0f, 1.0f};
                    }),
        depth);
    scene.controls.glowIntensity = 30;
    scene.controls.preventOverbrights = false;
    for (const std::int32_t mode : {kModeNone, kModeAdd, 12, 17, 20}) {
        scene.controls.transferMode = mode;
        const Picture expected = Stored(RenderScene(scene), depth);
        const Picture actual = RenderScene(scene, depth, path);
        EXPECT_TRUE(actual == expected) << mode << ": " << Compare(expected, actual).text;
        EXPECT_EQ(Peak(actual), depth == Depth::k8 ? 255.0 : 32768.0);
    }
}

INSTANTIATE_TEST_SUITE_P(Frames, IntegerDepth,
                         ::testing::Values(Frame{Depth::k8, Path::kSmart},
                                           Frame{Depth::k16, Path::kSmart},
                                           Frame{Depth::k8, Path::kPlain},
                                           Frame{Depth::k16, Path::kPlain}),
                         FrameName);

}  // namespace
}  // namespace vireon::conformance
