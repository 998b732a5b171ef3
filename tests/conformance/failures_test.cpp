#include <gtest/gtest.h>

#include <memory>
#include <ostream>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "tests/conformance/support.h"

namespace vireon::conformance {
namespace {

using headless::Depth;
using headless::Host;
using headless::HostSettings;
using headless::RenderOutcome;
using headless::Slot;

constexpr sdk::PF_Err kInjected = 533;

/// A frame that uses as much of the host as one frame can.
Scene BusyScene() {
    Scene scene = PlainScene();
    scene.input = TransparentPicture(24, 20);
    scene.maskLayer = AlphaPicture(24, 20);
    scene.glowLayer = OpaquePicture(24, 20);
    scene.shapeLayer = AlphaPicture(9, 7);
    scene.controls.shape = kShapeCustom;
    scene.controls.enableMask = true;
    scene.controls.blurInput = 0.3;
    scene.controls.quality = 2;
    return scene;
}

TEST(Abort, EndsTheRenderAtEveryRowWithEverythingGivenBack) {
    for (const Path path : {Path::kSmart, Path::kPlain}) {
        const auto host = ReadyHost();
        Scene scene = PlainScene();
        scene.input = OpaquePicture(24, 16);
        Apply(scene, *host, Depth::k8);
        const RenderOutcome whole = Render(*host, Depth::k8, path);
        ASSERT_EQ(whole.error(), 0) << whole.report();
        EXPECT_EQ(host->calls()[Slot::kProgress], 16u) << "once for each row";
        for (std::uint64_t row = 1; row <= 16; ++row) {
            SCOPED_TRACE(row);
            host->resetCalls();
            host->cancelFrom(row);
            const RenderOutcome outcome = Render(*host, Depth::k8, path);
            EXPECT_EQ(outcome.error(), sdk::PF_Interrupt_CANCEL);
            EXPECT_TRUE(outcome.clean()) << outcome.report();
            EXPECT_EQ(host->calls()[Slot::kProgress], row) << "no call after the answer";
            EXPECT_TRUE(host->balance().empty()) << host->balance().text();
        }
    }
}

TEST(Abort, AnswersOtherThanCancelComeBackToo) {
    HostSettings settings;
    settings.onProgress = [](std::int32_t current, std::int32_t) {
        return current == 5 ? sdk::PF_Err{4} : sdk::PF_Err{0};
    };
    const auto host = ReadyHost(settings);
    Apply(PlainScene(), *host, Depth::kFloat);
    const RenderOutcome outcome = Render(*host, Depth::kFloat);
    EXPECT_EQ(outcome.error(), 4);
    EXPECT_TRUE(outcome.clean()) << outcome.report();
}

TEST(Abort, ProgressCountsTheRowsOutOfTheFramesHeight) {
    for (const std::int32_t quality : {1, 2}) {
        std::vector<std::int32_t> rows;
        std::set<std::int32_t> totals;
        HostSettings settings;
        settings.onProgress = [&](std::int32_t current, std::int32_t total) {
            rows.push_back(current);
            totals.insert(total);
            return 0;
        };
        const auto host = ReadyHost(settings);
        Scene scene = PlainScene();
        scene.controls.quality = quality;
        Apply(scene, *host, Depth::kFloat);
        ASSERT_EQ(Render(*host, Depth::kFloat).error(), 0);
        std::vector<std::int32_t> expected(static_cast<std::size_t>(32 / quality));
        for (std::size_t i = 0; i < expected.size(); ++i) {
            expected[i] = static_cast<std::int32_t>(i);
        }
        EXPECT_EQ(rows, expected);
        EXPECT_EQ(totals, std::set<std::int32_t>{32});
    }
}

TEST(AfterAFailure, TheNextRenderIsAsIfNothingHadHappened) {
    const auto host = ReadyHost();
    Apply(BusyScene(), *host, Depth::k16);
    const RenderOutcome before = Render(*host, Depth::k16);
    ASSERT_EQ(before.error(), 0) << before.report();
    host->faults().fail(Slot::kNewHandle, 3);
    EXPECT_NE(Render(*host, Depth::k16).error(), 0);
    host->faults().clear();
    host->cancelFrom(2);
    EXPECT_EQ(Render(*host, Depth::k16).error(), sdk::PF_Interrupt_CANCEL);

    const auto other = ReadyHost();
    Apply(BusyScene(), *other, Depth::k16);
    const RenderOutcome after = Render(*other, Depth::k16);
    ASSERT_EQ(after.error(), 0) << after.report();
    EXPECT_EQ(before.output->checksum(), after.output->checksum());
}

TEST(LayerCheckouts, ThatFailGiveAbsentLayers) {
    Scene scene = PlainScene();
    scene.maskLayer = AlphaPicture(48, 32);
    scene.glowLayer = TransparentPicture(40, 30);
    scene.controls.enableMask = true;
    Scene withoutMask = scene;
    withoutMask.maskLayer.reset();
    Scene withoutGlow = scene;
    withoutGlow.glowLayer.reset();
    for (const Depth depth : {Depth::k8, Depth::kFloat}) {
        for (const bool mask : {true, false}) {
            std::vector<std::int32_t> order;
            HostSettings settings;
            settings.onCheckout = [&](std::int32_t index, const headless::LayerTime&,
                                      sdk::PF_ParamDef&) { order.push_back(index); };
            const auto host = ReadyHost(settings);
            Apply(scene, *host, depth);
            ASSERT_EQ(Render(*host, depth, Path::kPlain).error(), 0);
            // The mask layer is asked for first, then the glow layer.
            ASSERT_EQ(order, (std::vector<std::int32_t>{kMaskLayer, kGlowLayer}));
            host->faults().fail(Slot::kCheckoutParam, mask ? 1 : 2, kInjected);
            const RenderOutcome outcome = Render(*host, depth, Path::kPlain);
            ASSERT_EQ(outcome.error(), 0) << outcome.report();
            EXPECT_TRUE(outcome.clean()) << outcome.report();
            EXPECT_TRUE(ReadRaw(*outcome.output) ==
                        RenderScene(mask ? withoutMask : withoutGlow, depth));
        }
    }
}

TEST(LayerCheckouts, OfTheShapeLayerThatFailGiveATransparentFrame) {
    Scene scene = PlainScene();
    scene.controls.shape = kShapeCustom;
    scene.shapeLayer = AlphaPicture(9, 7);
    for (const Depth depth : {Depth::k8, Depth::k16, Depth::kFloat}) {
        const auto host = ReadyHost();
        Apply(scene, *host, depth);
        host->faults().fail(Slot::kCheckoutParam, 1, kInjected);
        const RenderOutcome outcome = Render(*host, depth, Path::kPlain);
        ASSERT_EQ(outcome.error(), 0) << outcome.report();
        EXPECT_TRUE(outcome.clean()) << outcome.report();
        EXPECT_TRUE(ReadRaw(*outcome.output) == Picture(48, 32));
    }
}

struct Frame {
    Depth depth;
    Path path;
    std::int32_t application;
};

std::string Name(const Frame& frame) {
    return std::to_string(headless::BitsPerChannel(frame.depth)) +
           (frame.path == Path::kSmart ? "BitSmart" : "BitPlain") +
           (frame.application == sdk::kHostAfterEffects ? "OwnWorlds" : "Memory");
}

void PrintTo(const Frame& frame, std::ostream* stream) {
    *stream << Name(frame);
}

std::string FrameName(const ::testing::TestParamInfo<Frame>& info) {
    return Name(info.param);
}

class EveryCallback : public ::testing::TestWithParam<Frame> {};

/// Functions whose code must come back from the render as it is.
const std::set<Slot>& Passed() {
    static const std::set<Slot> slots{Slot::kCheckoutLayerPixels, Slot::kCheckoutOutput,
                                      Slot::kProgress};
    return slots;
}

TEST_P(EveryCallback, MayFailWithoutALeakOrAnInventedCode) {
    const auto [depth, path, application] = GetParam();
    HostSettings settings;
    settings.applicationId = application;
    std::vector<std::pair<Slot, std::uint64_t>> used;
    {
        const auto host = ReadyHost(settings);
        Apply(BusyScene(), *host, depth);
        host->resetCalls();
        const RenderOutcome outcome = Render(*host, depth, path);
        ASSERT_EQ(outcome.error(), 0) << outcome.report();
        for (const Slot slot : host->calls().called()) {
            if (headless::CanFail(slot)) {
                used.emplace_back(slot, host->calls()[slot]);
            }
        }
    }
    ASSERT_FALSE(used.empty());
    const auto host = ReadyHost(settings);
    Apply(BusyScene(), *host, depth);
    for (const auto& [slot, count] : used) {
        for (const std::uint64_t nth : std::set<std::uint64_t>{1, (count + 1) / 2, count}) {
            SCOPED_TRACE(std::string(headless::SlotName(slot)) + ", call " + std::to_string(nth) +
                         " of " + std::to_string(count));
            host->faults().clear();
            host->faults().fail(slot, nth, kInjected);
            const RenderOutcome outcome = Render(*host, depth, path);
            const std::set<sdk::PF_Err> legal{0, 1, 4, sdk::PF_Err_BAD_CALLBACK_PARAM, kInjected};
            EXPECT_TRUE(legal.contains(outcome.error())) << outcome.report();
            if (Passed().contains(slot)) {
                EXPECT_EQ(outcome.error(), kInjected);
            }
            const bool refused = slot == Slot::kCheckoutParam && path == Path::kSmart && nth <= 30;
            if (refused) {
                EXPECT_EQ(outcome.error(), kInjected);
            } else {
                EXPECT_TRUE(outcome.clean()) << outcome.report();
            }
        }
    }
    host->faults().clear();
    const RenderOutcome last = Render(*host, depth, path);
    EXPECT_EQ(last.error(), 0) << last.report();
    EXPECT_TRUE(last.clean()) << last.report();
}

INSTANTIATE_TEST_SUITE_P(Frames, EveryCallback,
                         ::testing::Values(Frame{Depth::k8, Path::kSmart, sdk::kHostAfterEffects},
                                           Frame{Depth::kFloat, Path::kSmart,
                                                 sdk::kHostAfterEffects},
                                           Frame{Depth::k16, Path::kPlain, sdk::kHostAfterEffects},
                                           Frame{Depth::k8, Path::kPlain, sdk::kHostPremierePro},
                                           Frame{Depth::kFloat, Path::kSmart, sdk::kHostMotion}),
                         FrameName);

TEST(Memory, ARenderThatCannotHaveItsWorkingMemoryAnswersOutOfMemory) {
    HostSettings settings;
    settings.applicationId = sdk::kHostMotion;
    const auto host = ReadyHost(settings);
    Apply(PlainScene(), *host, Depth::kFloat);
    host->faults().fail(Slot::kNewHandle, 1, 4, true);
    const RenderOutcome outcome = Render(*host, Depth::kFloat);
    EXPECT_NE(outcome.error(), 0);
    EXPECT_TRUE(outcome.clean()) << outcome.report();
}

TEST(Memory, AWorkingWorldThatCannotBeMadePassesTheHostsCodeAndClearsTheOutput) {
    const auto host = ReadyHost();
    Apply(PlainScene(), *host, Depth::kFloat);
    host->faults().fail(Slot::kSuiteNewWorld, 1, kInjected);
    const RenderOutcome outcome = Render(*host, Depth::kFloat);
    EXPECT_EQ(outcome.error(), kInjected);
    EXPECT_TRUE(outcome.clean()) << outcome.report();
    ASSERT_NE(outcome.output, nullptr);
    EXPECT_TRUE(ReadRaw(*outcome.output) == Picture(48, 32));
}

}  // namespace
}  // namespace vireon::conformance
