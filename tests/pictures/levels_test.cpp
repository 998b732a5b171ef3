// The instructions that a processor has decide how fast a frame is, never what it looks like: all
// levels but the plain one give the same bits, on both systems. The plain definitions add in
// another order and differ by rounding alone.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "headless/remote/worker_client.h"
#include "simd/level.h"
#include "tests/pictures/parity_scenes.h"
#include "tests/pictures/tolerances.h"

namespace {

namespace fs = std::filesystem;
using vireon::headless::Picture;
using vireon::headless::RenderResult;
using vireon::headless::WorkerClient;
using vireon::pictures::kRounding;
using vireon::pictures::ParityScene;
using vireon::simd::Level;

/// Larger floats are no light that anybody works with; they must not hide the rest of a picture.
constexpr double kMostLight = 1e6;

fs::path FromEnvironment(const char* name) {
    const char* value = std::getenv(name);
    return value != nullptr ? value : "";
}

std::vector<Level> MachineLevels() {
    std::vector<Level> levels;
    for (const Level level : vireon::simd::kLevels) {
        if (vireon::simd::HasLevel(level)) levels.push_back(level);
    }
    return levels;
}

std::vector<ParityScene> AllScenes(std::int32_t bits) {
    std::vector<ParityScene> scenes = vireon::pictures::ParityScenes(bits);
    for (ParityScene& scene : vireon::pictures::LargeScenes(bits)) {
        scenes.push_back(std::move(scene));
    }
    return scenes;
}

/// The pictures of all scenes by a worker whose glow is held to a level.
std::vector<Picture> RenderAt(Level level, const fs::path& worker, const fs::path& library,
                              const std::vector<ParityScene>& scenes) {
    const char* const name = vireon::simd::LevelName(level);
    // Workers inherit this process's variables.
    setenv(vireon::simd::kLevelVariable, name, 1);
    vireon::headless::WorkerOptions options;
    options.worker = worker;
    WorkerClient client = WorkerClient::start(options);
    EXPECT_EQ(client.simd(), name);
    client.load(library);
    std::vector<Picture> pictures;
    for (const ParityScene& scene : scenes) {
        RenderResult result = client.render(scene.job);
        EXPECT_TRUE(result.ok()) << scene.name << " at " << name << ": " << result.message
                                 << result.violations;
        EXPECT_FALSE(result.output.pixels.empty()) << scene.name << " at " << name;
        pictures.push_back(std::move(result.output));
    }
    return pictures;
}

template <typename Channel>
std::vector<double> Values(const Picture& picture) {
    std::vector<double> values;
    for (std::int32_t y = 0; y < picture.height; ++y) {
        const Channel* const row = picture.row<Channel>(y);
        values.insert(values.end(), row, row + picture.width * 4);
    }
    return values;
}

std::vector<double> ValuesOf(const Picture& picture) {
    switch (picture.bits) {
        case 8: return Values<std::uint8_t>(picture);
        case 16: return Values<std::uint16_t>(picture);
        default: return Values<float>(picture);
    }
}

/// Largest difference between two pictures, in steps of 8 or 16 bits; of floats as a part of the
/// largest value of `a` up to `kMostLight`, for larger values of the value itself. Values that are
/// not finite must be the same, else it is infinite.
double Difference(const Picture& a, const Picture& b) {
    const std::vector<double> left = ValuesOf(a);
    const std::vector<double> right = ValuesOf(b);
    if (left.size() != right.size() || left.empty()) return HUGE_VAL;
    double peak = 0.0;
    for (const double value : left) {
        if (std::fabs(value) <= kMostLight) peak = std::max(peak, std::fabs(value));
    }
    double largest = 0.0;
    for (std::size_t i = 0; i < left.size(); ++i) {
        if (!std::isfinite(left[i]) || !std::isfinite(right[i])) {
            const bool same = left[i] == right[i] || (std::isnan(left[i]) && std::isnan(right[i]));
            if (!same) return HUGE_VAL;
            continue;
        }
        const double difference = std::fabs(left[i] - right[i]);
        if (difference == 0.0) continue;
        const double unit = a.bits == 32 ? std::max(peak, std::fabs(left[i])) : 1.0;
        largest = std::max(largest, unit > 0.0 ? difference / unit : HUGE_VAL);
    }
    return largest;
}

class Levels : public testing::TestWithParam<int> {
  protected:
    void TearDown() override { unsetenv(vireon::simd::kLevelVariable); }

    std::vector<Picture> native(Level level) const {
        const fs::path stage = FromEnvironment("VIREON_NATIVE_STAGE");
        return RenderAt(level, stage / "vireon-worker", stage / "VireonGlow.so", scenes_);
    }

    std::vector<ParityScene> scenes_ = AllScenes(GetParam());
};

TEST_P(Levels, AllFastFormsGiveTheSameBits) {
    const std::vector<Picture> reference = native(Level::kScalar);
    for (const Level level : MachineLevels()) {
        if (level <= Level::kScalar) continue;
        const std::vector<Picture> pictures = native(level);
        ASSERT_EQ(pictures.size(), reference.size());
        for (std::size_t i = 0; i < scenes_.size(); ++i) {
            EXPECT_TRUE(pictures[i] == reference[i])
                << scenes_[i].name << " at " << vireon::simd::LevelName(level) << " differs by "
                << Difference(reference[i], pictures[i]);
        }
    }
}

TEST_P(Levels, PlainDefinitionsDifferByRoundingAlone) {
    const std::vector<Picture> plain = native(Level::kPlain);
    const std::vector<Picture> fast = native(Level::kSse2);
    ASSERT_EQ(plain.size(), fast.size());
    const double most = GetParam() == 32 ? kRounding.ofPeak : kRounding.steps;
    double largest = 0.0;
    std::string where = "none";
    for (std::size_t i = 0; i < scenes_.size(); ++i) {
        const double difference = Difference(plain[i], fast[i]);
        EXPECT_LE(difference, most) << scenes_[i].name;
        if (difference > largest) {
            largest = difference;
            where = scenes_[i].name;
        }
    }
    std::printf("largest difference at %d bits: %g %s (%s)\n", GetParam(), largest,
                GetParam() == 32 ? "of the peak" : "steps", where.c_str());
}

TEST_P(Levels, TheWindowsLibraryGivesTheSameBitsAtEveryLevel) {
    const fs::path windows = FromEnvironment("VIREON_WINDOWS_STAGE");
    if (!fs::exists(windows / "VireonGlow.aex")) {
        if (!FromEnvironment("VIREON_REQUIRE_WINDOWS").empty()) {
            FAIL() << "build the preset \"windows\" first: nothing in " << windows;
        }
        GTEST_SKIP() << "build the preset \"windows\" first: nothing in " << windows;
    }
    const std::vector<Picture> fast = native(Level::kScalar);
    for (const Level level : MachineLevels()) {
        const std::vector<Picture> expected = level == Level::kPlain ? native(level) : fast;
        const std::vector<Picture> pictures =
            RenderAt(level, windows / "vireon-worker.exe", windows / "VireonGlow.aex", scenes_);
        ASSERT_EQ(pictures.size(), expected.size());
        for (std::size_t i = 0; i < scenes_.size(); ++i) {
            EXPECT_TRUE(pictures[i] == expected[i])
                << scenes_[i].name << " at " << vireon::simd::LevelName(level) << " differs by "
                << Difference(expected[i], pictures[i]);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Depths, Levels, testing::Values(8, 16, 32));

}  // namespace
