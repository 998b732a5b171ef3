#include <gtest/gtest.h>

#include <limits>
#include <memory>
#include <ostream>
#include <string>

#include "tests/conformance/support.h"

namespace vireon::conformance {
namespace {

using headless::Depth;
using headless::Host;
using headless::RenderOutcome;

/// Colour under transparency, values beyond white, and at float depth everything a float can be.
Picture AwkwardPicture(Depth depth) {
    Picture picture = TransparentPicture(31, 17);
    picture.at(3, 4) = {0.0f, 0.7f, 0.2f, 0.9f};
    picture.at(30, 16) = {0.0f, 1.0f, 1.0f, 1.0f};
    if (depth == Depth::kFloat) {
        picture.at(5, 6) = {1.0f, -2.5f, 1e20f, 70000.0f};
        picture.at(6, 6) = {std::numeric_limits<float>::quiet_NaN(), 0.5f,
                            std::numeric_limits<float>::infinity(), -0.0f};
        picture.at(7, 6) = {2.0f, 1e-40f, 0.0f, 0.1f};
    }
    return picture;
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

class NoGlow : public ::testing::TestWithParam<Frame> {
  protected:
    RenderOutcome render(std::int32_t mode, double opacity, std::int32_t view = kViewOutput) {
        const auto [depth, path] = GetParam();
        host_ = ReadyHost();
        Scene scene = PlainScene();
        scene.input = AwkwardPicture(depth);
        scene.controls.glowOpacity = opacity;
        scene.controls.transferMode = mode;
        scene.controls.view = view;
        Apply(scene, *host_, depth);
        input_ = MakeWorld(scene.input, depth);
        return Render(*host_, depth, path);
    }
    Picture input() const { return ReadRaw(*input_); }

  private:
    std::unique_ptr<Host> host_;
    std::shared_ptr<headless::World> input_;
};

TEST_P(NoGlow, LeavesTheInputBitForBitInEveryTransferMode) {
    for (std::int32_t mode = 2; mode <= 23; ++mode) {
        SCOPED_TRACE(mode);
        const RenderOutcome outcome = render(mode, 0);
        ASSERT_EQ(outcome.error(), 0) << outcome.report();
        EXPECT_TRUE(outcome.clean()) << outcome.report();
        EXPECT_TRUE(ReadRaw(*outcome.output) == input())
            << Compare(input(), ReadRaw(*outcome.output)).text;
    }
}

TEST_P(NoGlow, IsTransparentBlackWhenOnlyTheGlowIsShown) {
    const RenderOutcome outcome = render(kModeNone, 0);
    ASSERT_EQ(outcome.error(), 0) << outcome.report();
    EXPECT_TRUE(outcome.clean()) << outcome.report();
    EXPECT_TRUE(ReadRaw(*outcome.output) == Picture(31, 17));
}

TEST_P(NoGlow, ComesBeforeTheViews) {
    for (const std::int32_t view : {kViewBrightness, kViewMask}) {
        const RenderOutcome outcome = render(kModeAdd, 0, view);
        ASSERT_EQ(outcome.error(), 0) << outcome.report();
        EXPECT_TRUE(ReadRaw(*outcome.output) == input());
    }
}

TEST_P(NoGlow, BeginsBelowAThousandthOfAPercent) {
    // One step of the fixed-point slider is 0.0015 percent, above the limit.
    const RenderOutcome outcome = render(kModeNone, 0.002);
    ASSERT_EQ(outcome.error(), 0) << outcome.report();
    if (GetParam().depth == Depth::kFloat) {
        EXPECT_FALSE(ReadRaw(*outcome.output) == Picture(31, 17));
    }
}

INSTANTIATE_TEST_SUITE_P(
    Frames, NoGlow,
    ::testing::Values(Frame{Depth::k8, Path::kSmart}, Frame{Depth::k16, Path::kSmart},
                      Frame{Depth::kFloat, Path::kSmart}, Frame{Depth::k8, Path::kPlain},
                      Frame{Depth::k16, Path::kPlain}, Frame{Depth::kFloat, Path::kPlain}),
    FrameName);

}  // namespace
}  // namespace vireon::conformance
