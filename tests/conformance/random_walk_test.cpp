#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <deque>
#include <iostream>
#include <limits>
#include <map>
#include <memory>
#include <random>
#include <set>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "tests/conformance/support.h"

namespace vireon::conformance {
namespace {

using headless::CommandResult;
using headless::Depth;
using headless::Host;
using headless::HostSettings;
using headless::PreRender;
using headless::RenderOutcome;
using headless::Slot;

constexpr sdk::PF_Err kInjected = 533;

#ifdef __SANITIZE_ADDRESS__
// Huge glow radii ask for gigabytes, which the sanitizer marks byte by byte.
constexpr std::uint64_t kWalks = 100;
constexpr std::uint64_t kFullWalks = 1000;
#else
constexpr std::uint64_t kWalks = 400;
constexpr std::uint64_t kFullWalks = 40000;
#endif

/// Codes that a command may end with: success, a render that cannot be, no memory, and the host's
/// own answers. 512 would be an exception that nothing foresaw.
bool Legal(sdk::PF_Err code) {
    static const std::set<sdk::PF_Err> codes{0,
                                             1,
                                             sdk::PF_Err_OUT_OF_MEMORY,
                                             sdk::PF_Err_INVALID_INDEX,
                                             sdk::PF_Err_INVALID_CALLBACK,
                                             sdk::PF_Err_BAD_CALLBACK_PARAM,
                                             sdk::PF_Interrupt_CANCEL,
                                             kInjected};
    return codes.contains(code);
}

/// Random choices that are the same on every system.
class Dice {
  public:
    explicit Dice(std::uint64_t seed) : engine_(seed) {}

    /// 0 to `count` - 1.
    std::int32_t below(std::int32_t count) {
        return static_cast<std::int32_t>(engine_() % static_cast<std::uint64_t>(count));
    }
    std::int32_t between(std::int32_t first, std::int32_t last) {
        return first + below(last - first + 1);
    }
    bool oneIn(std::int32_t count) { return below(count) == 0; }
    template <typename Value>
    const Value& of(const std::vector<Value>& values) {
        return values[static_cast<std::size_t>(below(static_cast<std::int32_t>(values.size())))];
    }

  private:
    std::mt19937_64 engine_;
};

/// A host that wanders through what a host may do, and through some of what none should.
class Walk {
  public:
    explicit Walk(std::uint64_t seed) : dice_(seed), host_(Effect(), randomSettings()) {
        if (!dice_.oneIn(6)) {
            host_.setUp();
        }
        setRandomLayer(0);
    }

    void step() {
        host_.faults().clear();
        host_.cancelFrom(0);
        switch (dice_.below(16)) {
            case 0: runSetUpCommand(); break;
            case 1: runPanelCommand(); break;
            case 2: runUnknownCommand(); break;
            case 3:
            case 4: setRandomLayer(dice_.of<std::int32_t>({0, 0, 2, 8, 15})); break;
            case 5: host_.settings() = randomSettings(); break;
            case 6:
            case 7: setRandomControls(); break;
            case 8: preRender(); break;
            case 9:
            case 10: renderPrepared(); break;
            case 11: prepareTrouble(); [[fallthrough]];
            case 12:
            case 13: renderSmart(); break;
            case 14: prepareTrouble(); [[fallthrough]];
            default: renderPlain(); break;
        }
    }

    const std::string& trail() const { return trail_; }
    std::uint64_t renders() const { return renders_; }
    /// Of them, those that came to a picture.
    std::uint64_t pictures() const { return pictures_; }

  private:
    bool knowsWorlds() const {
        const HostSettings& settings = host_.settings();
        return settings.versionMajor * 100 + settings.versionMinor >= 1212 && settings.basicSuite &&
               settings.withheldSuites.empty();
    }

    Depth randomDepth() {
        // A host that cannot tell the format of its worlds has no float ones.
        return knowsWorlds() ? dice_.of<Depth>({Depth::k8, Depth::k16, Depth::kFloat})
                             : dice_.of<Depth>({Depth::k8, Depth::k16});
    }

    HostSettings randomSettings() {
        trail_ += " settings";
        HostSettings settings;
        settings.applicationId = dice_.of<std::int32_t>(
            {sdk::kHostAfterEffects, sdk::kHostAfterEffects, sdk::kHostPremierePro,
             sdk::kHostFinalCutPro, sdk::kHostMotion, sdk::HostCode("Unkn")});
        const auto version = dice_.of<std::pair<std::int16_t, std::int16_t>>(
            {{13, 27}, {13, 27}, {12, 4}, {12, 11}, {12, 12}, {13, 0}, {13, 4}, {0, 0}});
        settings.versionMajor = version.first;
        settings.versionMinor = version.second;
        settings.quality = dice_.below(3);
        settings.time = {dice_.between(-100, 400), dice_.between(0, 3), dice_.between(0, 3),
                         dice_.between(0, 300), static_cast<std::uint32_t>(dice_.below(100))};
        settings.field = dice_.below(3);
        const std::vector<sdk::PF_RationalScale> scales{{1, 1}, {1, 1}, {1, 2}, {1, 3}, {2, 3},
                                                        {1, 0}, {0, 0}, {0, 1}, {-1, 2}};
        settings.downsampleX = dice_.of(scales);
        settings.downsampleY = dice_.of(scales);
        settings.pixelAspect =
            dice_.of<sdk::PF_RationalScale>({{1, 1}, {10, 11}, {2, 1}, {0, 0}, {1, 0}, {0, 1}});
        if (dice_.oneIn(3)) {
            settings.fullWidth = dice_.between(1, 60);
            settings.fullHeight = dice_.between(1, 60);
        }
        settings.basicSuite = !dice_.oneIn(12);
        if (dice_.oneIn(10)) {
            settings.withheldSuites.insert(
                {dice_.of<std::string>(
                     {"PF World Suite", "PF ColorParamSuite", "PF Param Utils Suite"}),
                 dice_.between(1, 2)});
        }
        settings.extraRowBytes = 4 * dice_.below(9);
        settings.negativeRowBytes = dice_.oneIn(3);
        settings.layersInUpdateUi = dice_.of<headless::LayerAnswer>(
            {headless::LayerAnswer::kPixels, headless::LayerAnswer::kZeroed});
        settings.layersInSmartRender = dice_.of<headless::LayerAnswer>(
            {headless::LayerAnswer::kPixels, headless::LayerAnswer::kPixels,
             headless::LayerAnswer::kZeroed, headless::LayerAnswer::kError});
        settings.cropCheckouts = dice_.oneIn(2);
        settings.nullInput = dice_.oneIn(10);
        settings.nullOutput = dice_.oneIn(10);
        settings.renderEngine = dice_.oneIn(2);
        return settings;
    }

    std::int32_t randomSide() {
        return dice_.oneIn(4) ? dice_.between(1, 2) : dice_.between(1, 28);
    }

    void setRandomLayer(std::int32_t index) {
        if (index >= host_.parameterCount()) {
            return;
        }
        trail_ += " layer" + std::to_string(index);
        if (dice_.oneIn(index == 0 ? 15 : 4)) {
            host_.setLayer(index, nullptr);
            return;
        }
        const std::int32_t width = randomSide();
        const std::int32_t height = randomSide();
        const Picture picture =
            dice_.oneIn(2) ? OpaquePicture(width, height) : TransparentPicture(width, height);
        const bool moved = dice_.oneIn(3);
        host_.setLayer(
            index, MakeWorld(picture, dice_.of<Depth>({Depth::k8, Depth::k16, Depth::kFloat}),
                             moved ? dice_.between(-9, 20) : 0, moved ? dice_.between(-9, 20) : 0));
    }

    void setRandomControls() {
        static const std::vector<double> numbers{std::numeric_limits<double>::quiet_NaN(),
                                                 std::numeric_limits<double>::infinity(),
                                                 -std::numeric_limits<double>::infinity(),
                                                 -1,
                                                 -1e30,
                                                 1e30,
                                                 1e300,
                                                 1e-300,
                                                 -0.0,
                                                 0,
                                                 0.1,
                                                 1,
                                                 2.5,
                                                 40,
                                                 100,
                                                 1000,
                                                 5000};
        static const std::vector<std::int32_t> choices{
            std::numeric_limits<std::int32_t>::min(), -1, 0, 24, 1000,
            std::numeric_limits<std::int32_t>::max()};
        trail_ += " controls";
        if (dice_.oneIn(3)) {
            host_.resetParameters();
        }
        for (std::int32_t count = dice_.between(1, 8); count > 0; --count) {
            const std::int32_t index = dice_.below(host_.parameterCount());
            switch (host_.parameter(index).kind()) {
                case sdk::PF_Param_FLOAT_SLIDER:
                    host_.setFloatSlider(index, dice_.of(numbers));
                    break;
                case sdk::PF_Param_FIX_SLIDER:
                    host_.setFixedSlider(index,
                                         dice_.of<double>({-32768, -1, 0, 0.5, 50, 100, 32767}));
                    break;
                case sdk::PF_Param_CHECKBOX: host_.setCheckbox(index, dice_.oneIn(2)); break;
                case sdk::PF_Param_POPUP:
                    host_.setPopup(index,
                                   dice_.oneIn(4) ? dice_.of(choices) : dice_.between(1, 23));
                    break;
                case sdk::PF_Param_POINT:
                    host_.setPoint(index, dice_.between(-30000, 30000), dice_.between(-9, 30));
                    break;
                default: break;
            }
        }
    }

    void runSetUpCommand() {
        trail_ += " set-up";
        switch (dice_.below(8)) {
            case 0: expect(host_.globalSetup()); break;
            case 1: expect(host_.paramsSetup()); break;
            case 2: expect(host_.sequenceSetup()); break;
            case 3: expect(host_.sequenceResetup()); break;
            case 4: expect(host_.sequenceFlatten()); break;
            case 5: expect(host_.sequenceSetdown()); break;
            case 6: expect(host_.globalSetdown()); break;
            default:
                for (const CommandResult& result : host_.setUp()) {
                    expect(result);
                }
                break;
        }
    }

    bool isSetUp() const { return host_.parameterCount() == kParameterCount; }

    void runPanelCommand() {
        trail_ += " panel";
        switch (dice_.below(4)) {
            case 0: expect(host_.about()); break;
            case 1: expect(host_.doDialog()); break;
            case 2: expect(host_.userChangedParam(dice_.below(host_.parameterCount()))); break;
            default:
                // Before the set-up there is no array of parameters to hand out.
                expect(isSetUp() ? host_.updateParamsUi()
                                 : host_.send(sdk::PF_Cmd_UPDATE_PARAMS_UI));
                break;
        }
    }

    void runUnknownCommand() {
        const std::int32_t command = dice_.of<std::int32_t>(
            {2, 10, 12, 15, 16, 17, 18, 19, 20, 21, 22, 25, 26, 30, 1000, -1,
             std::numeric_limits<std::int32_t>::max(), std::numeric_limits<std::int32_t>::min()});
        trail_ += " command" + std::to_string(command);
        const CommandResult result = host_.send(command);
        expect(result);
        EXPECT_EQ(result.error, 0);
    }

    /// One failure or a cancellation for the render that follows.
    void prepareTrouble() {
        if (dice_.oneIn(2)) {
            trail_ += " cancel";
            host_.cancelFrom(static_cast<std::uint64_t>(dice_.between(1, 12)));
            return;
        }
        trail_ += " fault";
        const std::span<const Slot> slots = headless::AllSlots();
        for (;;) {
            const Slot slot = slots[static_cast<std::size_t>(
                dice_.below(static_cast<std::int32_t>(slots.size())))];
            // Without the World Suite a float frame is taken for another; see randomDepth.
            if (headless::CanFail(slot) && slot != Slot::kAcquireSuite) {
                host_.faults().fail(slot, static_cast<std::uint64_t>(dice_.between(1, 12)),
                                    kInjected, dice_.oneIn(2));
                return;
            }
        }
    }

    headless::RenderRequest randomRequest() {
        headless::RenderRequest request = host_.fullRequest(randomDepth());
        request.field = dice_.below(3);
        request.channelMask = dice_.below(16);
        if (dice_.oneIn(2)) {
            const std::int32_t left = dice_.between(-10, 30);
            const std::int32_t top = dice_.between(-10, 30);
            request.rect = {left, top, left + dice_.between(-3, 40), top + dice_.between(-3, 40)};
        }
        return request;
    }

    void preRender() {
        trail_ += " pre-render";
        PreRender prepared = host_.smartPreRender(randomRequest());
        expect(prepared.result);
        if (prepared.result.error != 0) {
            return;
        }
        if (prepared_.size() == 4) {
            prepared_.pop_front();
        }
        prepared_.push_back(std::move(prepared));
    }

    void renderPrepared() {
        if (prepared_.empty()) {
            return;
        }
        PreRender& prepared = prepared_[static_cast<std::size_t>(
            dice_.below(static_cast<std::int32_t>(prepared_.size())))];
        // The settings may have changed to those of a host without float worlds.
        if (prepared.request.depth == Depth::kFloat && !knowsWorlds()) {
            return;
        }
        trail_ += " render-prepared";
        expect(host_.smartRender(prepared));
    }

    void renderSmart() {
        trail_ += " smart";
        expect(host_.renderSmart(randomRequest()));
    }

    void renderPlain() {
        const Depth depth = randomDepth();
        // A plain render always has its layer.
        if (host_.parameter(0).layer == nullptr || host_.settings().nullInput) {
            return;
        }
        trail_ += " plain";
        if (isSetUp()) {
            expect(host_.renderPlain(depth));
        } else {
            const auto output = MakeWorld(Picture(5, 4), depth);
            const CommandResult result =
                host_.send(sdk::PF_Cmd_RENDER, {nullptr, &output->record(), nullptr});
            expect(result);
            EXPECT_EQ(output->damage(), "");
        }
    }

    void expect(const RenderOutcome& outcome) {
        ++renders_;
        pictures_ += outcome.error() == 0 && outcome.output != nullptr ? 1u : 0u;
        for (const CommandResult& result : outcome.commands) {
            expect(result);
        }
    }

    void expect(const CommandResult& result) {
        EXPECT_TRUE(Legal(result.error)) << result.report();
        // The panel's suite is given back even when it could not be had.
        const bool attempted = result.command == sdk::PF_Cmd_UPDATE_PARAMS_UI &&
                               result.message() == "Failed to acquire suite." &&
                               result.violations.size() == 1 &&
                               result.violations.front().starts_with("release of ");
        EXPECT_TRUE(result.violations.empty() || attempted) << result.report();
        // A smart render whose parameters the host does not give leaves the ones before.
        const bool refused = result.command == sdk::PF_Cmd_SMART_RENDER && result.error != 0 &&
                             result.leaks.ends_with(" parameter check-out(s)") &&
                             result.leaks.find('\n') == std::string::npos;
        EXPECT_TRUE(result.leaks.empty() || refused) << result.report();
    }

    std::string trail_;
    Dice dice_;
    Host host_;
    std::deque<PreRender> prepared_;
    std::uint64_t renders_ = 0;
    std::uint64_t pictures_ = 0;
};

std::uint64_t FirstSeed() {
    const char* const value = std::getenv("VIREON_WALK_SEED");
    return value != nullptr && *value != '\0' ? std::strtoull(value, nullptr, 10) : 20261120;
}

TEST(RandomWalk, ThroughCommandsHostsAndValuesEndsInLegalCodesOnly) {
    constexpr int kSteps = 40;
    const std::uint64_t walks = FullCheck() ? kFullWalks : kWalks;
    const std::uint64_t first = FirstSeed();
    std::cout << "walks from seed " << first << " on\n";
    Scene scene = PlainScene();
    scene.input = TransparentPicture(20, 14);
    const Picture expected = RenderScene(scene, Depth::k16);
    std::uint64_t renders = 0;
    std::uint64_t pictures = 0;
    for (std::uint64_t seed = first; seed < first + walks; ++seed) {
        Walk walk(seed);
        for (int i = 0; i < kSteps && !::testing::Test::HasFailure(); ++i) {
            walk.step();
        }
        renders += walk.renders();
        pictures += walk.pictures();
        EXPECT_TRUE(RenderScene(scene, Depth::k16) == expected) << "the picture after the walk";
        ASSERT_FALSE(::testing::Test::HasFailure())
            << "VIREON_WALK_SEED=" << seed << " repeats this walk:" << walk.trail();
    }
    EXPECT_GT(pictures, walks);
    std::cout << walks << " walks of " << kSteps << " steps with " << renders << " renders, "
              << pictures << " pictures\n";
}

}  // namespace
}  // namespace vireon::conformance
