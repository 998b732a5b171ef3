#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

#include "tests/conformance/brush_folder.h"
#include "tests/conformance/support.h"

namespace vireon::conformance {
namespace {

using headless::Depth;
using headless::Host;
using headless::RenderOutcome;

/// No folder is named: the brushes lie beside the library.
class OwnBrushes : public ::testing::Environment {
  public:
    void SetUp() override { SelectBrushFolder(nullptr); }
};

[[maybe_unused]] ::testing::Environment* const kOwnBrushes =
    ::testing::AddGlobalTestEnvironment(new OwnBrushes);

/// A host that names the library's file the way its system writes paths.
headless::HostSettings NamingTheLibrary() {
    headless::HostSettings settings;
    settings.pluginPath =
        std::filesystem::absolute(std::getenv("VIREON_PLUGIN")).make_preferred().string();
    return settings;
}

TEST(StagedBrushes, AreFoundBesideTheLibraryForEveryShape) {
    Scene scene = PlainScene();
    scene.controls.transferMode = kModeNone;
    Picture first;
    for (std::int32_t shape = 1; shape <= 13; ++shape) {
        SCOPED_TRACE(shape);
        scene.controls.shape = shape;
        const Picture picture = RenderScene(scene, Depth::kFloat, Path::kSmart, NamingTheLibrary());
        EXPECT_TRUE(AllFinite(picture));
        double light = 0;
        for (const PixelValues& pixel : picture.pixels()) {
            light += static_cast<double>(pixel[kRed] + pixel[kGreen] + pixel[kBlue]);
        }
        EXPECT_GT(light, 0);
        if (shape == 1) {
            first = picture;
        } else {
            EXPECT_FALSE(picture == first) << "each shape has a glow of its own";
        }
    }
}

TEST(StagedBrushes, AreAskedForOnceInAProcess) {
    const auto host = ReadyHost(NamingTheLibrary());
    Apply(PlainScene(), *host, Depth::kFloat);
    ASSERT_EQ(Render(*host, Depth::kFloat).error(), 0);
    host->resetCalls();
    ASSERT_EQ(Render(*host, Depth::kFloat).error(), 0);
    EXPECT_EQ(host->calls()[headless::Slot::kGetPlatformData], 0u);
}

}  // namespace
}  // namespace vireon::conformance
