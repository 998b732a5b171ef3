#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <filesystem>
#include <functional>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "headless/platform.h"
#include "tests/conformance/allocation_faults.h"
#include "tests/conformance/brush_folder.h"
#include "tests/conformance/model_brushes.h"
#include "tests/conformance/support.h"

namespace vireon::conformance {
namespace {

using headless::CommandResult;
using headless::Depth;
using headless::EffectLibrary;
using headless::Host;
using headless::HostSettings;
using headless::RenderOutcome;

constexpr sdk::PF_Err kOutOfMemory = 4;
/// The answer of a blur that has no working raster, and of a glow shape that was never loaded.
constexpr sdk::PF_Err kFailed = 1;

/// The shapes are loaded within this many of the first render's allocations.
constexpr std::uint64_t kLoading = 60;
/// Of the cases of an ordinary run.
constexpr std::uint64_t kEvery = 7;

AllocationFaults& FaultsOf(const EffectLibrary& library) {
    void* const symbol =
        headless::platform::FindSymbol(library.moduleHandle(), kAllocationFaultsFunction);
    if (symbol == nullptr) {
        throw headless::HeadlessError(library.path() + " cannot be made to run out of memory");
    }
    AllocationFaultsFunction function = nullptr;
    static_assert(sizeof symbol == sizeof function);
    std::memcpy(&function, &symbol, sizeof function);
    return *function();
}

/// What a command came to.
struct Attempt {
    sdk::PF_Err error = 0;
    bool clean = false;
    std::string report;
    Picture picture;
};

Attempt AttemptOf(const CommandResult& result) {
    return {result.error, result.clean(), result.report(), {}};
}

Attempt AttemptOf(const RenderOutcome& outcome) {
    return {outcome.error(), outcome.clean(), outcome.report(),
            outcome.output == nullptr ? Picture() : ReadRaw(*outcome.output)};
}

/// Runs a command with its first, second, third ... allocation failing until it has no more of
/// them, once with only that one failing and once with all later ones. `legal` judges a command
/// that had a failure.
void TryAll(const std::function<Attempt()>& command,
            const std::function<bool(const Attempt&)>& legal, CaseSampler& sampler) {
    static AllocationFaults& faults = FaultsOf(Effect());
    // The very first render loads the shapes as well.
    command();
    const std::uint64_t before = faults.asked;
    const Attempt good = command();
    const std::uint64_t calls = faults.asked - before;
    EXPECT_EQ(good.error, 0) << good.report;
    const auto expectGood = [&good](const Attempt& attempt) {
        EXPECT_EQ(attempt.error, 0) << attempt.report;
        EXPECT_TRUE(attempt.picture == good.picture);
        EXPECT_TRUE(attempt.clean) << attempt.report;
    };
    for (const bool fromThenOn : {false, true}) {
        for (std::uint64_t nth = 1; nth <= calls + 1; ++nth) {
            const bool reached = nth <= calls;
            if (reached && !sampler.take()) {
                continue;
            }
            SCOPED_TRACE("allocation " + std::to_string(nth) +
                         (fromThenOn ? " and all later ones" : ""));
            const std::int64_t live = faults.live;
            const std::uint64_t failed = faults.failed;
            faults.failAfter = nth;
            faults.fromThenOn = fromThenOn;
            const Attempt attempt = command();
            faults.failAfter = 0;
            EXPECT_EQ(faults.failed != failed, reached);
            EXPECT_EQ(faults.live, live) << "blocks of the effect";
            if (!reached) {
                expectGood(attempt);
                continue;
            }
            EXPECT_TRUE(attempt.clean) << attempt.report;
            EXPECT_TRUE(legal(attempt)) << attempt.report;
            expectGood(command());
            EXPECT_EQ(faults.live, live) << "blocks of the effect after the next command";
        }
    }
}

bool IsOutOfMemory(const Attempt& attempt) {
    return attempt.error == kOutOfMemory;
}

TEST(AllocationFailure, InSetUpAndPanelCommandsAnswersOutOfMemoryAndLeavesNothing) {
    CaseSampler sampler(1);
    for (const std::int32_t application : {sdk::kHostAfterEffects, sdk::kHostFinalCutPro}) {
        HostSettings settings;
        settings.applicationId = application;
        const auto tried = [&](const std::function<CommandResult(Host&)>& command, Host* host) {
            TryAll(
                [&] {
                    if (host != nullptr) {
                        return AttemptOf(command(*host));
                    }
                    Host fresh(Effect(), settings);
                    return AttemptOf(command(fresh));
                },
                IsOutOfMemory, sampler);
        };
        tried([](Host& host) { return host.globalSetup(); }, nullptr);
        tried([](Host& host) { return host.paramsSetup(); }, nullptr);
        const auto ready = ReadyHost(settings);
        Apply(PlainScene(), *ready, Depth::k8);
        tried([](Host& host) { return host.about(); }, ready.get());
        tried([](Host& host) { return host.updateParamsUi(); }, ready.get());
        tried([](Host& host) { return host.userChangedParam(kShape); }, ready.get());
        tried([](Host& host) { return host.doDialog(); }, ready.get());
        tried([](Host& host) { return host.smartPreRender(host.fullRequest(Depth::k8)).result; },
              ready.get());
    }
    std::cout << sampler.taken() << " of " << sampler.seen() << " failures tried\n";
}

struct Frame {
    Depth depth;
    Path path;
    bool custom;  ///< a custom shape at a quarter of the resolution, else a brush at the full one
    bool placed;  ///< an input smaller than the layer
};

std::string Name(const Frame& frame) {
    return std::to_string(headless::BitsPerChannel(frame.depth)) + " bit" +
           (frame.path == Path::kSmart ? ", smart" : ", plain") +
           (frame.custom ? ", custom shape" : ", brush") + (frame.placed ? ", small input" : "");
}

std::vector<Frame> Frames() {
    std::vector<Frame> frames;
    for (const Depth depth : {Depth::k8, Depth::k16, Depth::kFloat}) {
        for (const bool custom : {false, true}) {
            frames.push_back({depth, Path::kPlain, custom, false});
            frames.push_back({depth, Path::kSmart, custom, false});
            frames.push_back({depth, Path::kSmart, custom, true});
        }
    }
    return frames;
}

std::unique_ptr<Host> Prepared(const Frame& frame, std::int32_t application, double blurInput) {
    HostSettings settings;
    settings.applicationId = application;
    settings.fullWidth = frame.placed ? 24 : 0;
    settings.fullHeight = frame.placed ? 16 : 0;
    auto host = ReadyHost(settings);
    Scene scene = PlainScene();
    scene.input = TransparentPicture(24, 16);
    scene.maskLayer = AlphaPicture(24, 16);
    scene.glowLayer = OpaquePicture(20, 18);
    scene.shapeLayer = AlphaPicture(9, 7);
    scene.controls.shape = frame.custom ? kShapeCustom : 1;
    scene.controls.quality = frame.custom ? 3 : 1;
    scene.controls.glowRadius = 9;
    scene.controls.enableMask = true;
    scene.controls.blurInput = blurInput;
    Apply(scene, *host, frame.depth);
    if (frame.placed) {
        host->setInput(MakeWorld(OpaquePicture(11, 9), frame.depth, 5, 4));
    }
    return host;
}

class AllocationFailureInARender : public ::testing::TestWithParam<std::int32_t> {};

TEST_P(AllocationFailureInARender, AnswersOutOfMemoryAndTheNextRenderIsRight) {
    CaseSampler sampler(kEvery);
    for (const Frame& frame : Frames()) {
        SCOPED_TRACE(Name(frame));
        const Attempt unblurred =
            AttemptOf(Render(*Prepared(frame, GetParam(), 0), frame.depth, frame.path));
        ASSERT_EQ(unblurred.error, 0) << unblurred.report;
        const auto host = Prepared(frame, GetParam(), 1);
        EXPECT_FALSE(AttemptOf(Render(*host, frame.depth, frame.path)).picture ==
                     unblurred.picture);
        TryAll([&] { return AttemptOf(Render(*host, frame.depth, frame.path)); },
               [&](const Attempt& attempt) {
                   // A blur without working raster leaves its picture as it was. The one of Blur
                   // Input has its answer replaced by that of the mask; only reduced frames are
                   // smoothed.
                   return IsOutOfMemory(attempt) || (attempt.error == kFailed && frame.custom) ||
                          (attempt.error == 0 && attempt.picture == unblurred.picture);
               },
               sampler);
    }
    std::cout << sampler.taken() << " of " << sampler.seen() << " failures tried\n";
    EXPECT_GE(sampler.seen(), 1000u);
}

std::string ApplicationName(const ::testing::TestParamInfo<std::int32_t>& info) {
    return info.param == sdk::kHostAfterEffects ? "HostWorlds" : "MemoryRasters";
}

INSTANTIATE_TEST_SUITE_P(Applications, AllocationFailureInARender,
                         ::testing::Values(sdk::kHostAfterEffects, sdk::kHostPremierePro),
                         ApplicationName);

/// A library of its own, not the one that the process has loaded already.
class FreshLibrary {
  public:
    explicit FreshLibrary(std::uint64_t number) {
        const std::filesystem::path original(Effect().path());
        const std::string name =
            original.stem().string() + "_" + std::to_string(number) + original.extension().string();
        file_ = folder_.path() / name;
        std::filesystem::copy_file(original, file_);
        library_ = std::make_unique<EffectLibrary>(file_.string());
    }
    const EffectLibrary& library() const { return *library_; }

  private:
    BrushFolder folder_;
    std::filesystem::path file_;
    std::unique_ptr<EffectLibrary> library_;
};

TEST(AllocationFailure, WhileTheFirstRenderLoadsTheShapesLeavesAWorkingEffect) {
    const auto prepare = [](Host& host) {
        host.setUp();
        Scene scene = PlainScene();
        scene.input = TransparentPicture(24, 16);
        Apply(scene, host, Depth::k8);
    };
    Host reference(Effect());
    prepare(reference);
    const Picture expected = AttemptOf(reference.renderPlain(Depth::k8)).picture;
    std::uint64_t cases = 0;
    bool reached = true;
    for (std::uint64_t nth = 1; reached && (nth <= kLoading || FullCheck()); ++nth) {
        SCOPED_TRACE("allocation " + std::to_string(nth));
        const FreshLibrary fresh(nth);
        AllocationFaults& faults = FaultsOf(fresh.library());
        Host host(fresh.library());
        prepare(host);
        faults.failAfter = nth;
        const Attempt first = AttemptOf(host.renderPlain(Depth::k8));
        faults.failAfter = 0;
        reached = faults.failed != 0;
        EXPECT_TRUE(first.clean) << first.report;
        EXPECT_EQ(first.error, reached ? kOutOfMemory : 0) << first.report;
        cases += reached ? 1 : 0;
        // The shapes are loaded once, successfully or not; the others stay empty.
        const Attempt second = AttemptOf(host.renderPlain(Depth::k8));
        EXPECT_TRUE(second.clean) << second.report;
        EXPECT_TRUE(second.error == kFailed || (second.error == 0 && second.picture == expected))
            << second.report;
        const Attempt third = AttemptOf(host.renderPlain(Depth::k8));
        EXPECT_EQ(third.error, second.error);
        EXPECT_TRUE(third.picture == second.picture);
    }
    std::cout << cases << " failures tried\n";
    EXPECT_GE(cases, 10u);
}

}  // namespace
}  // namespace vireon::conformance
