#include "samples/moving.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <set>
#include <stdexcept>
#include <vector>

#include "samples/scenes.h"

namespace vireon::scenes {
namespace {

constexpr double kWidth = 1920.0;

double Apart(Point a, Point b) {
    return std::sqrt((a.x - b.x) * (a.x - b.x) + (a.y - b.y) * (a.y - b.y));
}

double MeanDifference(const Canvas& a, const Canvas& b) {
    double sum = 0.0;
    for (std::size_t i = 0; i < a.samples().size(); ++i) {
        sum += std::abs(static_cast<double>(a.samples()[i]) - static_cast<double>(b.samples()[i]));
    }
    return sum / static_cast<double>(a.samples().size());
}

TEST(Moving, EveryLightMovesAndMostByLessThanTwoPixels) {
    const std::vector<MovingLight> first = MovingLightsAt(kWidth, 10);
    const std::vector<MovingLight> second = MovingLightsAt(kWidth, 11);
    ASSERT_EQ(first.size(), second.size());
    int slow = 0;
    int belowPixel = 0;
    std::set<int> speeds;
    for (std::size_t i = 0; i < first.size(); ++i) {
        const double step = Apart(first[i].from, second[i].from);
        EXPECT_GT(step, 0.02) << i;
        EXPECT_LT(step, 4.0) << i;
        slow += step < 2.0 ? 1 : 0;
        belowPixel += step < 1.0 ? 1 : 0;
        speeds.insert(static_cast<int>(step * 10.0));
    }
    EXPECT_GT(slow, static_cast<int>(first.size()) * 2 / 3);
    EXPECT_GT(belowPixel, 50);
    EXPECT_GE(speeds.size(), 12u);
}

TEST(Moving, StepsAreNoWholePixels) {
    // Lights that move evenly by whole pixels would never fall between them.
    for (const double scale : {1.0, 0.5, 2.0}) {
        int whole = 0;
        const std::vector<MovingLight> first = MovingLightsAt(kWidth, 0);
        const std::vector<MovingLight> second = MovingLightsAt(kWidth, 1);
        for (std::size_t i = 0; i < first.size(); ++i) {
            const double x = (second[i].from.x - first[i].from.x) * scale;
            const double y = (second[i].from.y - first[i].from.y) * scale;
            whole += std::abs(x - std::round(x)) < 0.01 && std::abs(y - std::round(y)) < 0.01;
        }
        EXPECT_LE(whole, static_cast<int>(first.size()) / 50) << scale;
    }
}

TEST(Moving, GoesInManyDirections) {
    const std::vector<MovingLight> first = MovingLightsAt(kWidth, 5);
    const std::vector<MovingLight> second = MovingLightsAt(kWidth, 6);
    std::set<int> octants;
    for (std::size_t i = 0; i < first.size(); ++i) {
        const double x = second[i].from.x - first[i].from.x;
        const double y = second[i].from.y - first[i].from.y;
        octants.insert((x > 0.0 ? 1 : 0) + (y > 0.0 ? 2 : 0) + (std::abs(x) > std::abs(y) ? 4 : 0));
    }
    EXPECT_EQ(octants.size(), 8u);
}

TEST(Moving, FramesFollowEachOtherRoundTheLoop) {
    constexpr int kFrames = kMovingFrames;
    std::vector<Canvas> frames;
    for (int frame = 0; frame < kFrames; ++frame) {
        frames.push_back(DrawMovingLights(480, 270, LightRange::kDisplay, frame));
    }
    std::vector<double> steps;
    for (int frame = 0; frame + 1 < kFrames; ++frame) {
        const auto i = static_cast<std::size_t>(frame);
        steps.push_back(MeanDifference(frames[i], frames[i + 1]));
        EXPECT_GT(steps.back(), 0.0) << frame;
    }
    const auto [least, most] = std::minmax_element(steps.begin(), steps.end());
    const double around = MeanDifference(frames.back(), frames.front());
    EXPECT_GE(around, 0.9 * *least);
    EXPECT_LE(around, 1.1 * *most);
    // No two frames are the same picture, so the loop is as long as it says.
    for (int frame = 1; frame < kFrames; ++frame) {
        EXPECT_GT(MeanDifference(frames[0], frames[static_cast<std::size_t>(frame)]), 0.5 * *least)
            << frame;
    }
}

TEST(Moving, RepeatsAfterItsLastFrame) {
    const std::vector<MovingLight> first = MovingLightsAt(kWidth, 0);
    const std::vector<MovingLight> again = MovingLightsAt(kWidth, kMovingFrames);
    ASSERT_EQ(first.size(), again.size());
    for (std::size_t i = 0; i < first.size(); ++i) {
        EXPECT_EQ(first[i].from.x, again[i].from.x);
        EXPECT_EQ(first[i].to.y, again[i].to.y);
    }
    EXPECT_THROW(DrawMovingLights(16, 9, LightRange::kDisplay, kMovingFrames), std::out_of_range);
    EXPECT_THROW(DrawMovingLights(16, 9, LightRange::kDisplay, -1), std::out_of_range);
}

}  // namespace
}  // namespace vireon::scenes
