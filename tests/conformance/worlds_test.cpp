#include <gtest/gtest.h>

#include <memory>
#include <ostream>
#include <string>

#include "tests/conformance/support.h"

namespace vireon::conformance {
namespace {

using headless::Depth;
using headless::Host;
using headless::HostSettings;
using headless::RenderOutcome;

Scene LayeredScene() {
    Scene scene = PlainScene();
    scene.input = TransparentPicture(29, 23);
    scene.maskLayer = AlphaPicture(20, 30);
    scene.glowLayer = OpaquePicture(25, 23);
    scene.controls.enableMask = true;
    scene.controls.quality = 2;
    return scene;
}

struct Rows {
    std::int32_t extraBytes;
    bool negative;
};

std::string Name(const Rows& rows) {
    return "Extra" + std::to_string(rows.extraBytes) + (rows.negative ? "BottomUp" : "TopDown");
}

void PrintTo(const Rows& rows, std::ostream* stream) {
    *stream << Name(rows);
}

std::string RowsName(const ::testing::TestParamInfo<Rows>& info) {
    return Name(info.param);
}

class RowLayout : public ::testing::TestWithParam<Rows> {};

TEST_P(RowLayout, ChangesNoPixelAndIsRespected) {
    for (const std::int32_t application : {sdk::kHostAfterEffects, sdk::kHostMotion}) {
        for (const Depth depth : {Depth::k8, Depth::k16, Depth::kFloat}) {
            for (const Path path : {Path::kSmart, Path::kPlain}) {
                HostSettings settings;
                settings.applicationId = application;
                const Picture usual = RenderScene(LayeredScene(), depth, path, settings);
                settings.extraRowBytes = GetParam().extraBytes;
                settings.negativeRowBytes = GetParam().negative;
                const auto host = ReadyHost(settings);
                Apply(LayeredScene(), *host, depth);
                headless::WorldOptions options;
                options.depth = depth;
                options.extraRowBytes = GetParam().extraBytes;
                options.negativeRowBytes = GetParam().negative;
                host->setInput(MakeWorld(LayeredScene().input, options));
                host->setLayer(kMaskLayer, MakeWorld(*LayeredScene().maskLayer, options));
                host->setLayer(kGlowLayer, MakeWorld(*LayeredScene().glowLayer, options));
                const RenderOutcome outcome = Render(*host, depth, path);
                ASSERT_EQ(outcome.error(), 0) << outcome.report();
                EXPECT_TRUE(outcome.clean()) << outcome.report();
                EXPECT_EQ(outcome.output->damage(), "");
                EXPECT_TRUE(ReadRaw(*outcome.output) == usual)
                    << Compare(usual, ReadRaw(*outcome.output)).text;
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Layouts, RowLayout,
                         ::testing::Values(Rows{0, false}, Rows{0, true}, Rows{4, false},
                                           Rows{52, true}, Rows{1000, false}),
                         RowsName);

TEST(Worlds, EveryPixelOfTheOutputIsWritten) {
    // The host fills its outputs with a pattern; two patterns would show a pixel left as it was.
    for (const Depth depth : {Depth::k8, Depth::k16, Depth::kFloat}) {
        HostSettings clean;
        clean.scribble = false;
        EXPECT_TRUE(RenderScene(LayeredScene(), depth, Path::kSmart) ==
                    RenderScene(LayeredScene(), depth, Path::kSmart, clean));
    }
}

TEST(Worlds, InputsKeepTheirPixels) {
    const auto host = ReadyHost();
    const Scene scene = LayeredScene();
    Apply(scene, *host, Depth::kFloat);
    const auto input = MakeWorld(scene.input, Depth::kFloat);
    const auto mask = MakeWorld(*scene.maskLayer, Depth::kFloat);
    const auto source = MakeWorld(*scene.glowLayer, Depth::kFloat);
    host->setInput(input);
    host->setLayer(kMaskLayer, mask);
    host->setLayer(kGlowLayer, source);
    ASSERT_EQ(Render(*host, Depth::kFloat).error(), 0);
    EXPECT_TRUE(ReadRaw(*input) == scene.input);
    EXPECT_TRUE(ReadRaw(*mask) == *scene.maskLayer);
    EXPECT_TRUE(ReadRaw(*source) == *scene.glowLayer);
    EXPECT_EQ(input->damage() + mask->damage() + source->damage(), "");
}

}  // namespace
}  // namespace vireon::conformance
