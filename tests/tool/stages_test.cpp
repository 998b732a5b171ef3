// `vireon render --stages`: what it writes, and that it is what the stages of the effect make.

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <set>

#include <OpenImageIO/imageio.h>
#include <nlohmann/json.hpp>

#include "composite/brightness_extraction.h"
#include "composite/output_passes.h"
#include "composite/transfer_modes.h"
#include "glow/glow_pass.h"
#include "glow/glow_pipeline.h"
#include "render/glow_params.h"
#include "render/glow_settings.h"
#include "shapes/shape_library.h"
#include "tests/tool/program.h"
#include "tests/unit/support/fake_host.h"
#include "tests/unit/support/picture.h"

namespace vireon::tool {
namespace {

namespace fs = std::filesystem;
using test::Picture;

bool EffectIsThere() {
    return fs::exists(std::string(VIREON_TEST_STAGE) + "/VireonGlow.so");
}

nlohmann::json JsonOf(const std::string& file) {
    std::ifstream stream(file);
    return nlohmann::json::parse(stream);
}

std::string TextOf(const std::string& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

/// Names of a folder's files, one after the other.
std::string NamesIn(const std::string& folder) {
    std::set<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder)) {
        names.insert(entry.path().filename().string());
    }
    std::string joined;
    for (const std::string& name : names) {
        joined += name + ' ';
    }
    return joined;
}

/// A picture file of four channels as floats, its numbers as they stand.
Picture ReadPicture(const std::string& file) {
    OIIO::ImageSpec wishes;
    wishes.attribute("oiio:UnassociatedAlpha", 1);
    const auto input = OIIO::ImageInput::open(file, &wishes);
    if (input == nullptr) {
        ADD_FAILURE() << file << ": " << OIIO::geterror();
        return Picture(1, 1);
    }
    const OIIO::ImageSpec& spec = input->spec();
    EXPECT_EQ(spec.nchannels, 4) << file;
    Picture picture(spec.width, spec.height);
    std::vector<float> values(static_cast<std::size_t>(spec.width * spec.height * spec.nchannels));
    EXPECT_TRUE(input->read_image(0, 0, 0, spec.nchannels, OIIO::TypeDesc::FLOAT, values.data()));
    for (std::int32_t y = 0; y < spec.height; ++y) {
        for (std::int32_t x = 0; x < spec.width; ++x) {
            const float* const pixel = &values[static_cast<std::size_t>((y * spec.width + x) * 4)];
            picture.set(x, y, {pixel[3], pixel[0], pixel[1], pixel[2]});
        }
    }
    return picture;
}

constexpr std::int32_t kWidth = 72;
constexpr std::int32_t kHeight = 60;

/// Bright patches on a dark, coloured ground; `covered` leaves some of it transparent.
std::vector<std::uint8_t> Samples(bool covered) {
    std::vector<std::uint8_t> samples;
    test::Random random(77);
    for (std::int32_t y = 0; y < kHeight; ++y) {
        for (std::int32_t x = 0; x < kWidth; ++x) {
            const bool lit = (x - 20) * (x - 20) + (y - 30) * (y - 30) < 60 || x / 4 == 13;
            for (std::int32_t c = 0; c < 3; ++c) {
                samples.push_back(
                    static_cast<std::uint8_t>(lit ? random.whole(180, 255) : random.whole(0, 90)));
            }
            samples.push_back(static_cast<std::uint8_t>(covered ? random.whole(0, 255) : 255));
        }
    }
    return samples;
}

/// The frame's settings as the effect fills them in, for the options that `Options` gives.
GlowSettings Settings() {
    GlowParams params;
    params.shape = 0;
    params.glowRadius = 120;
    params.glowIntensity = 100;
    params.glowFalloff = 1.3;
    params.threshold = 10;
    params.blurInput = 0.1;
    params.quality = 1;
    params.inputChannels = 0;
    params.enableMask = true;
    params.maskCenterX = 0.5;
    params.maskCenterY = 0.5;
    params.maskRadius = 60;
    params.maskFalloff = 0.5;
    params.widthAspect = 1;
    params.heightAspect = 1;
    params.view = 0;
    params.preventOverbrights = true;
    params.overbrightClamp = 60;
    params.outputChannels = 1;
    params.sourceOpacity = 100;
    params.glowOpacity = 80;
    params.transferMode = 4;
    GlowSettings settings;
    settings.fill(params);
    return settings;
}

std::vector<std::string> Options() {
    return {"--glow-radius",      "120", "--glow-intensity", "100", "--glow-falloff", "1.3",
            "--threshold",        "10",  "--blur-input",     "0.1", "--quality",      "2:1",
            "--enable-mask",      "on",  "--radius",         "60",  "--falloff",      "0.5",
            "--overbright-clamp", "60",  "--glow-opacity",   "80"};
}

/// The stages, run here one after the other, by the names of their files.
std::map<std::string, Picture> NativeStages(const Picture& source) {
    test::FakeHost host;
    host.resourceFile = std::string(VIREON_TEST_STAGE) + "/VireonGlow.so";
    LoadShapesOnce(host);
    Picture input(source);
    GlowSettings whole = Settings();
    whole.driverFlag = false;  // as a standard render has it
    whole.blurInput *= whole.glowRadius;
    const bool opaque = whole.outputAlpha && IsOpaque(input.view());
    if (opaque) whole.outputAlpha = false;
    const GlowKernel* const shape = FindShape(host, whole);
    EXPECT_TRUE(shape != nullptr && shape->hasTexels());

    std::map<std::string, Picture> stages;
    const auto map = [&](double blur, bool mask, std::int32_t view) {
        GlowSettings settings = whole;
        settings.blurInput = blur;
        settings.enableMask = mask;
        settings.view = view;
        Picture light(input.width(), input.height());
        EXPECT_EQ(ExtractBrightness(host, settings, input, light, nullptr), 0);
        if (view == kViewBrightnessMap) FillAlpha(light.view());
        return light;
    };
    stages.emplace("02-brightness-map", map(0, false, kViewBrightnessMap));
    stages.emplace("03-blurred-map", map(whole.blurInput, false, kViewBrightnessMap));
    stages.emplace("04-mask", map(whole.blurInput, true, kViewMask));
    stages.emplace("05-masked-map", map(whole.blurInput, true, kViewBrightnessMap));

    {
        GlowSettings settings = whole;
        settings.view = kViewBrightnessMap;
        Picture light = map(whole.blurInput, true, kViewOutput);
        Picture sampled(input.width(), input.height());
        EXPECT_EQ(GlowPass(host, light, sampled, shape, settings), 0);
        FillAlpha(sampled.view());
        stages.emplace("06-sampled-map", sampled);
    }

    GlowSettings settings = whole;
    Picture light(input.width(), input.height());
    Picture glow(input.width(), input.height());
    EXPECT_EQ(ExtractBrightness(host, settings, input, light, nullptr), 0);
    EXPECT_EQ(GlowPass(host, light, glow, shape, settings), 0);
    ChannelMaskPass(glow.view(), input.view(), settings, 1.0f, opaque);
    const auto finish = [&](Picture& picture) {
        ClampAlpha(picture.view());
        if (settings.outputAlpha) IntensityToAlpha(picture.view());
    };
    Picture unlimited(glow);
    finish(unlimited);
    stages.emplace("07-glow-before-clip", unlimited);
    OverbrightSoftClip(glow.view(), settings);
    finish(glow);
    stages.emplace("08-glow", glow);
    const std::int32_t mode = PipelineTransferMode(settings.transferMode, true);
    EXPECT_EQ(TransferCompose(host, mode, 0.8f, 1.0f, glow, input, false, true), 0);
    stages.emplace("09-output", glow);
    return stages;
}

/// Renders the samples at a depth with --stages and compares every file with the stages run here.
void ExpectTheEffectsOwnStages(const std::string& depth, bool covered, double white) {
    unsetenv("ORVANTE_QUILLON_SVG_DIR");
    const Workplace place;
    const std::vector<std::uint8_t> samples = Samples(covered);
    WritePng8(place.input(), kWidth, 4, samples);
    const std::string folder = place.file("stages");
    std::vector<std::string> arguments{"render", place.input(), place.output(), "--stages",
                                       folder,   "--depth",     depth};
    const std::vector<std::string> options = Options();
    arguments.insert(arguments.end(), options.begin(), options.end());
    const Outcome outcome = Vireon(arguments);
    ASSERT_EQ(outcome.code(), 0) << outcome.errors;

    Picture source(kWidth, kHeight);
    for (std::int32_t y = 0; y < kHeight; ++y) {
        for (std::int32_t x = 0; x < kWidth; ++x) {
            const std::uint8_t* const pixel =
                &samples[static_cast<std::size_t>((y * kWidth + x) * 4)];
            // A frame of 8 bits is brought to float by the effect, others by the tool: to 16 bits
            // rounded to nearest of 32768 levels, to float as a quotient.
            const auto value = [&](std::uint8_t channel) {
                if (white == 255) return static_cast<float>(channel) * 0.003921569f;
                if (white == 32768) {
                    return static_cast<float>(std::floor(channel / 255.0 * 32768.0 + 0.5)) /
                           32768.0f;
                }
                return static_cast<float>(channel / 255.0);
            };
            source.set(x, y, {value(pixel[3]), value(pixel[0]), value(pixel[1]), value(pixel[2])});
        }
    }
    const std::map<std::string, Picture> native = NativeStages(source);
    for (const auto& [name, picture] : native) {
        if (name == "09-output") continue;
        EXPECT_TRUE(test::SamePixels(ReadPicture(folder + '/' + name + ".exr"), picture)) << name;
    }
    EXPECT_FALSE(test::SamePixels(native.at("07-glow-before-clip"), native.at("08-glow")))
        << "nothing was clipped";

    // The output is the glow over the source, rounded to the depth of the frame.
    if (white == 1) return;
    const Picture output = ReadPicture(folder + "/09-output.png");
    const double half = 0.5 / white + 0.5 / (white == 255 ? 255 : 65535) + 1e-6;
    test::ForEachFloat(output, [&](std::int32_t x, std::int32_t y, std::int32_t channel) {
        const double whole = native.at("09-output").at(x, y, channel);
        EXPECT_NEAR(output.at(x, y, channel), std::min(std::max(whole, 0.0), 1.0), half)
            << x << ',' << y << ' ' << channel;
    });
    if (white == 255) {
        EXPECT_EQ(Pixels8(folder + "/09-output.png"), Pixels8(place.output()));
        EXPECT_EQ(Pixels8(folder + "/01-source.png"), samples);
    }
}

TEST(Stages, AreThoseOfTheEffectAtEightBits) {
    if (!EffectIsThere()) GTEST_SKIP() << "the effect is not built";
    ExpectTheEffectsOwnStages("8", true, 255);
    ExpectTheEffectsOwnStages("8", false, 255);
}

TEST(Stages, AreThoseOfTheEffectAtSixteenBits) {
    if (!EffectIsThere()) GTEST_SKIP() << "the effect is not built";
    ExpectTheEffectsOwnStages("16", true, 32768);
}

TEST(Stages, AreThoseOfTheEffectInFloat) {
    if (!EffectIsThere()) GTEST_SKIP() << "the effect is not built";
    ExpectTheEffectsOwnStages("32", false, 1);
}

constexpr char kAllStages[] =
    "01-source.png 02-brightness-map.exr 03-blurred-map.exr 04-mask.exr 05-masked-map.exr "
    "06-sampled-map.exr 07-glow-before-clip.exr 08-glow.exr 09-output.png contact-sheet.png "
    "stages.json ";
constexpr char kPlainStages[] =
    "01-source.png 02-brightness-map.exr 07-glow-before-clip.exr 08-glow.exr 09-output.png "
    "contact-sheet.png stages.json ";

/// A place to render in with the real effect.
class StageFolder : public testing::Test {
  protected:
    void SetUp() override {
        if (!EffectIsThere()) GTEST_SKIP() << "the effect is not built";
        WritePng8(place_.input(), kWidth, 4, Samples(true));
    }
    Outcome render(const std::vector<std::string>& more) const {
        std::vector<std::string> arguments{"render", place_.input(), place_.output(), "--stages",
                                           folder_};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return Vireon(arguments);
    }

    Workplace place_;
    std::string folder_ = place_.file("stages");
};

TEST_F(StageFolder, HoldsTheStagesThatTheFrameHas) {
    Outcome outcome = render(Options());
    EXPECT_EQ(outcome.code(), 0) << outcome.errors;
    EXPECT_EQ(outcome.output, "");
    EXPECT_EQ(NamesIn(folder_), kAllStages);
    // What is gone from the frame goes from the folder; what is not of this program stays.
    std::ofstream(folder_ + "/notes.txt") << "mine";
    std::ofstream(folder_ + "/04-mask.png") << "mine";
    outcome = render({"--quality", "1:1"});
    EXPECT_EQ(outcome.code(), 0) << outcome.errors;
    fs::remove(folder_ + "/notes.txt");
    EXPECT_EQ(TextOf(folder_ + "/04-mask.png"), "mine");
    fs::remove(folder_ + "/04-mask.png");
    EXPECT_EQ(NamesIn(folder_), kPlainStages);
}

TEST_F(StageFolder, LeavesAForeignListAlone) {
    fs::create_directory(folder_);
    std::ofstream(folder_ + "/04-mask.exr") << "mine";
    std::ofstream(folder_ + "/stages.json") << "not ours";
    EXPECT_EQ(render({}).code(), 0);
    EXPECT_EQ(TextOf(folder_ + "/04-mask.exr"), "mine");
}

TEST_F(StageFolder, ListsWhatTheStagesHold) {
    ASSERT_EQ(render(Options()).code(), 0);
    const nlohmann::json list = JsonOf(folder_ + "/stages.json");
    ASSERT_EQ(list["stages"].size(), 9u);
    for (const nlohmann::json& stage : list["stages"]) {
        const std::string file = stage["file"];
        EXPECT_EQ(stage["width"], kWidth);
        EXPECT_EQ(stage["height"], kHeight);
        EXPECT_EQ(stage["bits"], file.ends_with(".exr") ? 32 : 8);
        const Picture picture = ReadPicture(folder_ + '/' + file);
        const char* const names[] = {"alpha", "red", "green", "blue"};
        for (std::int32_t channel = 0; channel < 4; ++channel) {
            double min = 1e9;
            double max = -1e9;
            double sum = 0;
            for (std::int32_t y = 0; y < kHeight; ++y) {
                for (std::int32_t x = 0; x < kWidth; ++x) {
                    const double value = picture.at(x, y, channel);
                    min = std::min(min, value);
                    max = std::max(max, value);
                    sum += value;
                }
            }
            const nlohmann::json& range = stage[names[channel]];
            EXPECT_NEAR(range["min"], min, 1e-6) << file;
            EXPECT_NEAR(range["max"], max, 1e-6) << file;
            EXPECT_NEAR(range["mean"], sum / (kWidth * kHeight), 1e-6) << file;
        }
    }
}

TEST_F(StageFolder, FollowsReducedResolution) {
    ASSERT_EQ(render({"--half"}).code(), 0);
    const nlohmann::json listed = JsonOf(folder_ + "/stages.json");
    ASSERT_FALSE(listed["stages"].empty());
    for (const nlohmann::json& stage : listed["stages"]) {
        EXPECT_EQ(stage["width"], kWidth / 2);
        EXPECT_EQ(stage["height"], kHeight / 2);
    }
    int width = 0;
    Pixels8(folder_ + "/09-output.png", &width);
    EXPECT_EQ(width, kWidth / 2);
}

TEST_F(StageFolder, FloatFramesAreEXRThroughout) {
    ASSERT_EQ(render({"--depth", "32"}).code(), 0);
    EXPECT_EQ(NamesIn(folder_),
              "01-source.exr 02-brightness-map.exr 06-sampled-map.exr 07-glow-before-clip.exr "
              "08-glow.exr 09-output.exr contact-sheet.png stages.json ");
}

TEST_F(StageFolder, NonsenseIsRefusedBeforeAnythingIsWritten) {
    place_.expectFailure(
        Vireon({"render", place_.input(), place_.output(), "--stages", place_.input()}), 7,
        "it is no folder");
    place_.expectFailure(Vireon({"render", place_.input(), place_.output(), "--stages", ""}), 4,
                         "wants a folder");
    place_.expectFailure(
        Vireon({"render", place_.input(), place_.output(), "--stages", place_.file("no/where")}), 6,
        "does not exist");
    fs::create_directory(folder_);
    const std::string source = folder_ + "/01-source.png";
    fs::copy(place_.input(), source);
    place_.expectFailure(Vireon({"render", source, place_.output(), "--stages", folder_ + "/"}), 2,
                         "has the name of a stage");
    place_.expectFailure(render({"--layer", "mask=" + source}), 2, "has the name of a stage");
    EXPECT_EQ(NamesIn(folder_), "01-source.png ");
}

TEST_F(StageFolder, AnEffectWithoutTheParametersIsRefused) {
    place_.expectFailure(place_.render({"--stages", folder_}), 3, "no parameter \"View\"");
    EXPECT_FALSE(fs::exists(folder_));
}

}  // namespace
}  // namespace vireon::tool
