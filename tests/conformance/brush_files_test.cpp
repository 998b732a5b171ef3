#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>

#include "tests/conformance/brush_folder.h"
#include "tests/conformance/support.h"

namespace vireon::conformance {
namespace {

using headless::Depth;

std::string Repeat(const std::string& line, int count) {
    std::string text;
    text.reserve(line.size() * static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) {
        text += line;
    }
    return text;
}

constexpr int kSamples = kBrushSize * kBrushSize;

/// Brush files of every well and ill formed kind, one for each shape.
class OddBrushes : public ::testing::Environment {
  public:
    void SetUp() override {
        folder_ = std::make_unique<BrushFolder>();
        const BrushFolder& folder = *folder_;
        const std::string header = "256\n256\nsamples\n";
        // 1: all samples 0.25 in an unusual but legal spelling.
        folder.write("gaussian.brush",
                     "   256 texels\n\t256\n\n" + Repeat("  +2.5e-1 and more\n", kSamples));
        // 2: too few samples; the rest is zero.
        folder.write("hoop.brush", header + Repeat("0.5\n", 1000));
        // 3: half the size.
        folder.write("kuplah.brush", "128\n128\nsamples\n" + Repeat("1\n", 128 * 128));
        // 4: wrong height only.
        folder.write("mass.brush", "256\n255\nsamples\n" + Repeat("1\n", kSamples));
        // 5 to 8: a file that ends within its header.
        folder.write("sixFlare.brush", std::string());
        folder.write("sixSpikeHoriz.brush", std::string("256\n"));
        folder.write("sixSpikeVert.brush", std::string("256\n256\n"));
        folder.write("sixSpikeWhack.brush", std::string("hello\nworld\n!\n1\n2\n3\n"));
        // 9: a header without samples is a kernel of zeros.
        folder.write("spectacle.brush", header);
        // 10: lines that are no numbers count as zero; the first of each pair does.
        folder.write("Tent.brush", header + Repeat("none\n0.5\n", kSamples / 2));
        // 11: more samples than there is room for.
        folder.write("Tree.brush", header + Repeat("0.25\n", kSamples + 5000));
        // 12: a line longer than the reader's buffer is read as two: the second part begins after
        // 1023 characters and is a sample of its own.
        folder.write("Whoopy.brush",
                     header + std::string(1023, ' ') + "0.75\n" + Repeat("0.25\n", kSamples - 2));
        // 13: the wrong capital.
        folder.write("zIG.brush", header + Repeat("0.25\n", kSamples));
        folder.select();
    }
    void TearDown() override { folder_.reset(); }

  private:
    std::unique_ptr<BrushFolder> folder_;
};

[[maybe_unused]] ::testing::Environment* const kOddBrushes =
    ::testing::AddGlobalTestEnvironment(new OddBrushes);

/// One red pixel stamped with its weight 1 so that 4 texels meet each pixel of the picture.
Scene StampScene(std::int32_t shape) {
    Scene scene = PlainScene();
    scene.input = Picture(65, 65);
    for (PixelValues& pixel : scene.input.pixels()) {
        pixel[kAlpha] = 1;
    }
    scene.input.at(32, 32) = {1, 1, 0, 0};
    scene.controls.shape = shape;
    scene.controls.threshold = 0;
    scene.controls.glowFalloff = 1;
    scene.controls.glowRadius = 32;
    scene.controls.glowIntensity = 100;
    scene.controls.transferMode = kModeNone;
    scene.controls.preventOverbrights = false;
    return scene;
}

/// What the stamp is to show: the texels under the pixels, the outermost repeated.
Picture ExpectedStamp(const Kernel& kernel) {
    return MakePicture(65, 65, [&](int x, int y) {
        const auto texel = [](int place) { return std::min(255, 128 + 4 * (place - 32)); };
        return PixelValues{1, kernel.at(texel(x), texel(y)), 0, 0};
    });
}

Kernel Uniform(double value) {
    return MakeBrush([=](int, int) { return value; });
}

sdk::PF_Err RenderError(std::int32_t shape) {
    const auto host = ReadyHost();
    Apply(StampScene(shape), *host, Depth::kFloat);
    return Render(*host, Depth::kFloat).error();
}

TEST(BrushFile, NumbersArePrefixesOfTheirLines) {
    EXPECT_TRUE(RenderScene(StampScene(1)) == ExpectedStamp(Uniform(0.25)));
}

TEST(BrushFile, MissingSamplesAreZero) {
    const Kernel kernel = MakeBrush([](int x, int y) { return y * 256 + x < 1000 ? 0.5 : 0.0; });
    const Picture expected = ExpectedStamp(kernel);
    const Picture actual = RenderScene(StampScene(2));
    EXPECT_TRUE(actual == expected) << Compare(expected, actual).text;
    EXPECT_EQ(actual.at(32, 0)[kRed], 0.5f);
    EXPECT_EQ(actual.at(32, 1)[kRed], 0.0f);
}

TEST(BrushFile, OfAnotherSizeIsRejected) {
    EXPECT_EQ(RenderError(3), 1);
    EXPECT_EQ(RenderError(4), 1);
}

TEST(BrushFile, WithAShortOrWrongHeaderIsRejected) {
    for (std::int32_t shape = 5; shape <= 8; ++shape) {
        EXPECT_EQ(RenderError(shape), 1) << shape;
    }
}

TEST(BrushFile, WithoutSamplesIsDark) {
    EXPECT_TRUE(RenderScene(StampScene(9)) == ExpectedStamp(Uniform(0)));
}

TEST(BrushFile, LinesThatAreNoNumbersAreZero) {
    const Kernel kernel = MakeBrush([](int x, int) { return x % 2 == 0 ? 0.0 : 0.5; });
    Scene scene = StampScene(10);
    const Picture actual = RenderScene(scene);
    const Picture expected = ExpectedStamp(kernel);
    EXPECT_TRUE(actual == expected) << Compare(expected, actual).text;
    EXPECT_EQ(actual.at(64, 32)[kRed], 0.5f) << "the last column of texels";
}

TEST(BrushFile, SurplusSamplesAreIgnored) {
    EXPECT_TRUE(RenderScene(StampScene(11)) == ExpectedStamp(Uniform(0.25)));
}

TEST(BrushFile, LongLinesAreReadInPieces) {
    const Kernel kernel = MakeBrush([](int x, int y) {
        const int place = y * 256 + x;
        return place == 0 ? 0.0 : place == 1 ? 0.75 : 0.25;
    });
    const Picture actual = RenderScene(StampScene(12));
    const Picture expected = ExpectedStamp(kernel);
    EXPECT_TRUE(actual == expected) << Compare(expected, actual).text;
    EXPECT_EQ(actual.at(0, 0)[kRed], 0.0f) << "the first piece holds only blanks";
}

#ifndef _WIN32
TEST(BrushFile, NamesAreTakenAsTheyAreWritten) {
    EXPECT_EQ(RenderError(13), 1);
}
#endif

}  // namespace
}  // namespace vireon::conformance
