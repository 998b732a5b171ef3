#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "tests/conformance/support.h"

namespace vireon::conformance {
namespace {

using headless::Depth;
using headless::HostSettings;

struct Version {
    std::int16_t major;
    std::int16_t minor;
};

constexpr Version kVersions[] = {{12, 4}, {12, 11}, {12, 12}, {13, 0}, {13, 4}, {13, 27}};

std::vector<Scene> Scenes() {
    std::vector<Scene> scenes;
    Scene scene = PlainScene();
    scene.input = TransparentPicture(33, 21);
    scenes.push_back(scene);
    scene.controls.quality = 3;
    scene.controls.enableMask = true;
    scene.maskLayer = AlphaPicture(20, 30);
    scene.glowLayer = OpaquePicture(50, 15);
    scene.controls.transferMode = 9;
    scenes.push_back(scene);
    scene.controls.shape = kShapeCustom;
    scene.shapeLayer = AlphaPicture(9, 7);
    scenes.push_back(scene);
    return scenes;
}

class HostApplication : public ::testing::TestWithParam<std::int32_t> {};

TEST_P(HostApplication, RendersTheSamePictureInEveryVersion) {
    for (const Scene& scene : Scenes()) {
        const Picture expected = RenderScene(scene, Depth::k8);
        for (const Version& version : kVersions) {
            for (const Path path : {Path::kPlain, Path::kSmart}) {
                SCOPED_TRACE(::testing::Message() << version.major << "." << version.minor
                                                  << (path == Path::kSmart ? ", smart" : ""));
                HostSettings settings;
                settings.applicationId = GetParam();
                settings.versionMajor = version.major;
                settings.versionMinor = version.minor;
                const Picture actual = RenderScene(scene, Depth::k8, path, settings);
                EXPECT_TRUE(actual == expected) << Compare(expected, actual).text;
            }
        }
    }
}

TEST_P(HostApplication, RendersDeepAndFloatFramesAlike) {
    const Scene scene = Scenes()[1];
    for (const Version& version : kVersions) {
        for (const Depth depth : {Depth::k16, Depth::kFloat}) {
            if (depth == Depth::kFloat && (version.major == 12 && version.minor < 12)) {
                continue;
            }
            SCOPED_TRACE(::testing::Message() << version.major << "." << version.minor);
            HostSettings settings;
            settings.applicationId = GetParam();
            settings.versionMajor = version.major;
            settings.versionMinor = version.minor;
            EXPECT_TRUE(RenderScene(scene, depth, Path::kPlain, settings) ==
                        RenderScene(scene, depth));
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Applications, HostApplication,
                         ::testing::Values(sdk::kHostAfterEffects, sdk::kHostPremierePro,
                                           sdk::kHostMotion, sdk::HostCode("Unkn")));

TEST(HostWithFixedSliders, RendersTheSamePicture) {
    HostSettings settings;
    settings.applicationId = sdk::kHostFinalCutPro;
    Scene scene = Scenes()[1];
    // A value that fixed point holds exactly, like all others of the scene.
    scene.controls.glowFalloff = 1.25;
    EXPECT_TRUE(RenderScene(scene, Depth::k8, Path::kPlain, settings) ==
                RenderScene(scene, Depth::k8));
}

TEST(HostWithoutSuites, RendersWhenItIsTooOldToHaveThem) {
    HostSettings settings;
    settings.versionMajor = 12;
    settings.versionMinor = 4;
    settings.basicSuite = false;
    const Scene scene = Scenes()[0];
    EXPECT_TRUE(RenderScene(scene, Depth::k8, Path::kPlain, settings) ==
                RenderScene(scene, Depth::k8));
}

TEST(HostWithoutSuites, ReportsAMissingWorldSuite) {
    const std::pair<std::string, std::int32_t> worldSuite{"PF World Suite", 2};
    HostSettings settings;
    settings.withheldSuites.insert(worldSuite);
    headless::Host host(Effect(), settings);
    for (const headless::CommandResult& result : host.setUp()) {
        EXPECT_TRUE(result.leaks.empty()) << result.leaks;
    }
    Apply(Scenes()[0], host, Depth::k8);
    const headless::RenderOutcome outcome = Render(host, Depth::k8, Path::kPlain);
    bool reported = false;
    for (const headless::CommandResult& result : outcome.commands) {
        reported =
            reported || (result.message() == "Couldn't load kPFWorldSuite." &&
                         (result.out.out_flags & sdk::PF_OutFlag_DISPLAY_ERROR_MESSAGE) != 0);
        EXPECT_TRUE(result.leaks.empty()) << result.leaks;
    }
    EXPECT_TRUE(reported) << outcome.report();
}

TEST(HostWithoutSuites, PremiereIsNotAskedForTheColourSuite) {
    const std::pair<std::string, std::int32_t> colourSuite{"PF ColorParamSuite", 1};
    HostSettings settings;
    settings.withheldSuites.insert(colourSuite);
    settings.applicationId = sdk::kHostPremierePro;
    EXPECT_TRUE(RenderScene(Scenes()[0], Depth::k8, Path::kPlain, settings) ==
                RenderScene(Scenes()[0], Depth::k8));
    settings.applicationId = sdk::kHostAfterEffects;
    headless::Host host(Effect(), settings);
    host.setUp();
    Apply(Scenes()[0], host, Depth::k8);
    const headless::RenderOutcome outcome = Render(host, Depth::k8, Path::kPlain);
    bool reported = false;
    for (const headless::CommandResult& result : outcome.commands) {
        reported = reported || result.message() == "Couldn't load kPFColorParamSuite.";
    }
    EXPECT_TRUE(reported) << outcome.report();
}

TEST(HostChannels, BlueFirstFramesGiveTheSameColours) {
    Scene scene = Scenes()[0];
    scene.controls.inputChannels = 4;
    HostSettings settings;
    settings.applicationId = sdk::kHostPremierePro;
    const auto host = ReadyHost(settings);
    Apply(scene, *host, Depth::k8);
    headless::WorldOptions options;
    options.depth = Depth::k8;
    options.pixelFormat = sdk::PF_PixelFormat_BGRA32;
    host->setInput(MakeWorld(scene.input, options));
    const headless::RenderOutcome outcome = Render(*host, Depth::k8, Path::kPlain);
    ASSERT_EQ(outcome.error(), 0) << outcome.report();
    EXPECT_TRUE(outcome.clean()) << outcome.report();
    const Picture expected = RenderScene(scene, Depth::k8);
    for (int y = 0; y < expected.height(); ++y) {
        for (int x = 0; x < expected.width(); ++x) {
            const sdk::PF_PixelFloat have = outcome.output->color(x, y);
            const PixelValues& want = expected.at(x, y);
            ASSERT_NEAR(have.alpha * 255, want[kAlpha], 1e-3) << x << ", " << y;
            ASSERT_NEAR(have.red * 255, want[kRed], 1e-3) << x << ", " << y;
            ASSERT_NEAR(have.green * 255, want[kGreen], 1e-3) << x << ", " << y;
            ASSERT_NEAR(have.blue * 255, want[kBlue], 1e-3) << x << ", " << y;
        }
    }
}

}  // namespace
}  // namespace vireon::conformance
