#include <gtest/gtest.h>

#include <memory>

#include "tests/conformance/brush_folder.h"
#include "tests/conformance/support.h"

namespace vireon::conformance {
namespace {

using headless::Depth;
using headless::RenderOutcome;

/// A folder without a single brush.
class NoBrushes : public ::testing::Environment {
  public:
    void SetUp() override {
        folder_ = std::make_unique<BrushFolder>();
        folder_->select();
    }
    void TearDown() override { folder_.reset(); }

  private:
    std::unique_ptr<BrushFolder> folder_;
};

[[maybe_unused]] ::testing::Environment* const kNoBrushes =
    ::testing::AddGlobalTestEnvironment(new NoBrushes);

constexpr Depth kDepths[] = {Depth::k8, Depth::k16, Depth::kFloat};

TEST(MissingBrushes, FailTheOutputViewOfEveryShape) {
    for (const Depth depth : kDepths) {
        for (std::int32_t shape = 1; shape <= 13; ++shape) {
            for (const std::int32_t quality : {1, 3}) {
                for (const Path path : {Path::kSmart, Path::kPlain}) {
                    const auto host = ReadyHost();
                    Scene scene = PlainScene();
                    scene.controls.shape = shape;
                    scene.controls.quality = quality;
                    Apply(scene, *host, depth);
                    const RenderOutcome outcome = Render(*host, depth, path);
                    EXPECT_EQ(outcome.error(), 1) << outcome.report();
                    EXPECT_TRUE(outcome.clean()) << outcome.report();
                    EXPECT_EQ(outcome.commands.back().message(), "") << "nothing is shown";
                }
            }
        }
    }
}

TEST(MissingBrushes, AreNotNeededForTheOtherViews) {
    for (const Depth depth : kDepths) {
        for (const std::int32_t view : {kViewBrightness, kViewMask}) {
            for (std::int32_t quality = 1; quality <= 5; ++quality) {
                Scene scene = PlainScene();
                scene.controls.view = view;
                scene.controls.quality = quality;
                const Picture picture = RenderScene(scene, depth);
                EXPECT_TRUE(AllFinite(picture));
                EXPECT_GT(Peak(picture), 0);
            }
        }
    }
}

TEST(MissingBrushes, AreNotNeededForACustomShape) {
    Scene scene = PlainScene();
    scene.controls.shape = kShapeCustom;
    scene.shapeLayer = AlphaPicture(9, 7);
    EXPECT_TRUE(AllFinite(RenderScene(scene)));
    scene.shapeLayer.reset();
    EXPECT_TRUE(RenderScene(scene) == Picture(48, 32));
}

TEST(MissingBrushes, AreNotNeededWithoutGlow) {
    Scene scene = PlainScene();
    scene.controls.glowOpacity = 0;
    EXPECT_TRUE(RenderScene(scene) == scene.input);
}

TEST(MissingBrushes, AreNotLookedForAgainInTheSameProcess) {
    const auto host = ReadyHost();
    Scene scene = PlainScene();
    Apply(scene, *host, Depth::kFloat);
    ASSERT_EQ(Render(*host, Depth::kFloat).error(), 1);
    const BrushFolder late;
    late.write("gaussian.brush", RoundBrush());
    late.select();
    EXPECT_EQ(Render(*host, Depth::kFloat).error(), 1);
}

}  // namespace
}  // namespace vireon::conformance
