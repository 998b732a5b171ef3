#include <gtest/gtest.h>

#include <memory>
#include <set>
#include <vector>

#include "tests/conformance/support.h"

namespace vireon::conformance {
namespace {

using headless::CommandResult;
using headless::Depth;
using headless::Host;
using headless::HostSettings;
using headless::RenderOutcome;
using headless::Slot;

constexpr Depth kDepths[] = {Depth::k8, Depth::k16, Depth::kFloat};

TEST(SmartRender, NoInputGivesAClearedOutput) {
    for (const Depth depth : kDepths) {
        HostSettings settings;
        settings.nullInput = true;
        const auto host = ReadyHost(settings);
        Apply(PlainScene(), *host, depth);
        host->resetCalls();
        const RenderOutcome outcome = Render(*host, depth);
        EXPECT_EQ(outcome.error(), 0) << outcome.report();
        EXPECT_TRUE(outcome.clean()) << outcome.report();
        ASSERT_NE(outcome.output, nullptr);
        EXPECT_TRUE(ReadRaw(*outcome.output) == Picture(48, 32));
        EXPECT_EQ(host->calls()[Slot::kCheckoutParam], 30u);
        EXPECT_EQ(host->calls()[Slot::kCheckinParam], 30u);
        EXPECT_GE(host->calls()[Slot::kFill], 1u);
        EXPECT_EQ(host->calls()[Slot::kProgress], 0u) << "nothing is rendered";
    }
}

TEST(SmartRender, NoOutputIsNothingToDo) {
    for (const bool nullInput : {false, true}) {
        HostSettings settings;
        settings.nullOutput = true;
        settings.nullInput = nullInput;
        const auto host = ReadyHost(settings);
        Apply(PlainScene(), *host, Depth::kFloat);
        const RenderOutcome outcome = Render(*host, Depth::kFloat);
        EXPECT_EQ(outcome.error(), 0) << outcome.report();
        EXPECT_TRUE(outcome.clean()) << outcome.report();
    }
}

TEST(SmartRender, ASmallInputIsCopiedToItsPlace) {
    for (const Depth depth : kDepths) {
        HostSettings settings;
        settings.fullWidth = 40;
        settings.fullHeight = 30;
        const auto host = ReadyHost(settings);
        Scene scene = PlainScene();
        scene.controls.glowOpacity = 0;
        Apply(scene, *host, depth);
        const auto input = MakeWorld(TransparentPicture(13, 9), depth, 11, 7);
        host->setInput(input);
        const RenderOutcome outcome = Render(*host, depth);
        ASSERT_EQ(outcome.error(), 0) << outcome.report();
        EXPECT_TRUE(outcome.clean()) << outcome.report();
        ASSERT_NE(outcome.output, nullptr);

        const Picture small = ReadRaw(*input);
        const Picture expected = MakePicture(40, 30, [&](int x, int y) {
            const bool inside = x >= 11 && y >= 7 && x < 24 && y < 16;
            return inside ? small.at(x - 11, y - 7) : PixelValues{};
        });
        EXPECT_TRUE(ReadRaw(*outcome.output) == expected)
            << Compare(expected, ReadRaw(*outcome.output)).text;
    }
}

TEST(SmartRender, ASmallInputGlowsOverTheWholeLayer) {
    for (const Depth depth : kDepths) {
        HostSettings settings;
        settings.fullWidth = 40;
        settings.fullHeight = 30;
        const auto host = ReadyHost(settings);
        Scene scene = PlainScene();
        scene.controls.transferMode = kModeNone;
        Apply(scene, *host, depth);
        host->setInput(MakeWorld(OpaquePicture(13, 9), depth, 11, 7));
        const RenderOutcome small = Render(*host, depth);
        ASSERT_EQ(small.error(), 0) << small.report();
        EXPECT_TRUE(small.clean()) << small.report();

        // The same layer as one world of the full size.
        const Picture part = ReadRaw(*MakeWorld(OpaquePicture(13, 9), Depth::kFloat));
        scene.input = MakePicture(40, 30, [&](int x, int y) {
            const bool inside = x >= 11 && y >= 7 && x < 24 && y < 16;
            return inside ? part.at(x - 11, y - 7) : PixelValues{};
        });
        const Picture whole = RenderScene(scene, depth);
        EXPECT_TRUE(ReadRaw(*small.output) == whole) << Compare(whole, ReadRaw(*small.output)).text;
        EXPECT_GT(ReadRaw(*small.output).at(9, 5)[kAlpha], 0.0f) << "outside the small input";
    }
}

TEST(SmartRender, ARequestInsideTheLayerGetsTheInputPlacedByItsOwnOrigin) {
    for (const Depth depth : kDepths) {
        for (const std::int32_t application : {sdk::kHostAfterEffects, sdk::kHostPremierePro}) {
            for (const bool crop : {false, true}) {
                SCOPED_TRACE(::testing::Message() << headless::BitsPerChannel(depth)
                                                  << (crop ? " bit, cropped" : " bit"));
                HostSettings settings;
                settings.applicationId = application;
                settings.cropCheckouts = crop;
                const auto host = ReadyHost(settings);
                Scene scene = PlainScene();
                scene.controls.glowOpacity = 0;
                Apply(scene, *host, depth);
                const auto input = MakeWorld(scene.input, depth);
                host->setInput(input);
                headless::RenderRequest request = host->fullRequest(depth);
                request.rect = {8, 8, 40, 30};
                headless::PreRender preRender = host->smartPreRender(request);
                const sdk::PF_LRect& rect = preRender.output.result_rect;
                ASSERT_EQ((std::vector<std::int32_t>{rect.left, rect.top, rect.right, rect.bottom}),
                          (std::vector<std::int32_t>{8, 8, 40, 30}));
                const RenderOutcome outcome = host->smartRender(preRender);
                EXPECT_EQ(outcome.error(), 0) << outcome.report();
                EXPECT_TRUE(outcome.clean()) << outcome.report();
                EXPECT_TRUE(host->balance().empty()) << host->balance().text();
                ASSERT_NE(outcome.output, nullptr);
                EXPECT_EQ(outcome.output->damage(), "");
                EXPECT_TRUE(ReadRaw(*input) == ReadRaw(*MakeWorld(scene.input, depth)));

                // An input of the output's size is taken as it is. One of another size is laid into
                // a world of the output's size with its first pixel at its own origin.
                const Picture whole = ReadRaw(*input);
                const int shift = crop ? 8 : 0;
                const Picture expected = MakePicture(
                    32, 22, [&](int x, int y) { return whole.at(x + shift, y + shift); });
                EXPECT_TRUE(ReadRaw(*outcome.output) == expected)
                    << Compare(expected, ReadRaw(*outcome.output)).text;
            }
        }
    }
}

TEST(SmartRender, ARequestInsideTheLayerGlowsWithBalancedBooksEverywhere) {
    for (const Depth depth : kDepths) {
        for (const std::int32_t application : {sdk::kHostAfterEffects, sdk::kHostPremierePro}) {
            for (const std::int32_t quality : {1, 3}) {
                HostSettings settings;
                settings.applicationId = application;
                const auto host = ReadyHost(settings);
                Scene scene = PlainScene();
                scene.input = TransparentPicture(48, 32);
                scene.maskLayer = AlphaPicture(48, 32);
                scene.glowLayer = OpaquePicture(48, 32);
                scene.controls.enableMask = true;
                scene.controls.quality = quality;
                Apply(scene, *host, depth);
                for (const sdk::PF_LRect& rect :
                     {sdk::PF_LRect{8, 8, 40, 30}, sdk::PF_LRect{47, 31, 48, 32},
                      sdk::PF_LRect{0, 8, 48, 32}, sdk::PF_LRect{20, 0, 21, 32}}) {
                    headless::RenderRequest request = host->fullRequest(depth);
                    request.rect = rect;
                    const RenderOutcome outcome = host->renderSmart(request);
                    EXPECT_EQ(outcome.error(), 0) << outcome.report();
                    EXPECT_TRUE(outcome.clean()) << outcome.report();
                    ASSERT_NE(outcome.output, nullptr);
                    EXPECT_EQ(outcome.output->width(), rect.right - rect.left);
                    EXPECT_EQ(outcome.output->damage(), "");
                    EXPECT_TRUE(AllFinite(ReadRaw(*outcome.output)));
                }
            }
        }
    }
}

TEST(SmartRender, TheTemporaryWorldIsOfTheOutputsDepthAndIsGivenBack) {
    HostSettings settings;
    settings.fullWidth = 40;
    settings.fullHeight = 30;
    settings.applicationId = sdk::HostCode("Unkn");
    const auto host = ReadyHost(settings);
    for (const Depth depth : kDepths) {
        Scene scene = PlainScene();
        scene.controls.glowOpacity = 0;
        Apply(scene, *host, depth);
        host->setInput(MakeWorld(OpaquePicture(13, 9), depth, 11, 7));
        host->resetCalls();
        const RenderOutcome outcome = Render(*host, depth);
        EXPECT_EQ(outcome.error(), 0) << outcome.report();
        EXPECT_TRUE(outcome.clean()) << outcome.report();
        const std::uint64_t suiteWorlds = host->calls()[Slot::kSuiteNewWorld];
        const std::uint64_t plainWorlds = host->calls()[Slot::kNewWorld];
        EXPECT_GE(depth == Depth::kFloat ? suiteWorlds : plainWorlds, 1u);
        EXPECT_EQ(suiteWorlds, host->calls()[Slot::kSuiteDisposeWorld]);
        EXPECT_EQ(plainWorlds, host->calls()[Slot::kDisposeWorld]);
    }
}

TEST(SmartRender, ChecksOutEveryParameterInOrderAtTheTimeOfTheFrame) {
    std::vector<std::int32_t> order;
    HostSettings settings;
    settings.time.current = 42;
    settings.time.step = 2;
    settings.time.scale = 600;
    settings.onCheckout = [&](std::int32_t index, const headless::LayerTime& time,
                              sdk::PF_ParamDef&) {
        order.push_back(index);
        EXPECT_EQ(time.value, 42);
        EXPECT_EQ(time.step, 2);
        EXPECT_EQ(time.scale, 600u);
    };
    const auto host = ReadyHost(settings);
    Apply(PlainScene(), *host, Depth::kFloat);
    headless::PreRender preRender = host->smartPreRender(host->fullRequest(Depth::kFloat));
    order.clear();
    const RenderOutcome outcome = host->smartRender(preRender);
    EXPECT_EQ(outcome.error(), 0) << outcome.report();
    ASSERT_GE(order.size(), 30u);
    for (std::size_t i = 0; i < 30; ++i) {
        EXPECT_EQ(order[i], static_cast<std::int32_t>(i + 1));
    }
    const std::set<std::int32_t> later(order.begin() + 30, order.end());
    for (const std::int32_t index : later) {
        EXPECT_TRUE(index == kShapeLayer || index == kGlowLayer || index == kMaskLayer) << index;
    }
    EXPECT_EQ(host->calls()[Slot::kCheckoutParam], host->calls()[Slot::kCheckinParam]);
}

TEST(SmartRender, AParameterThatCannotBeCheckedOutEndsTheCommandAtOnce) {
    for (std::uint64_t nth = 1; nth <= 30; ++nth) {
        SCOPED_TRACE(nth);
        const auto host = ReadyHost();
        Apply(PlainScene(), *host, Depth::kFloat);
        headless::PreRender preRender = host->smartPreRender(host->fullRequest(Depth::kFloat));
        host->resetCalls();
        const auto code = static_cast<sdk::PF_Err>(700 + nth);
        host->faults().fail(Slot::kCheckoutParam, nth, code);
        const RenderOutcome outcome = host->smartRender(preRender);
        EXPECT_EQ(outcome.error(), code);
        EXPECT_EQ(host->calls()[Slot::kCheckoutParam], nth);
        EXPECT_EQ(host->calls()[Slot::kCheckinParam], 0u);
        EXPECT_EQ(host->calls()[Slot::kCheckoutLayerPixels], 0u);
        EXPECT_EQ(host->calls()[Slot::kCheckoutOutput], 0u);
        for (const CommandResult& result : outcome.commands) {
            EXPECT_TRUE(result.violations.empty()) << result.report();
        }
    }
}

TEST(SmartRender, FailedPixelsAndOutputsEndItWithEverythingCheckedIn) {
    for (const Slot slot : {Slot::kCheckoutLayerPixels, Slot::kCheckoutOutput}) {
        for (const bool nullInput : {false, true}) {
            if (nullInput && slot == Slot::kCheckoutLayerPixels) {
                continue;
            }
            SCOPED_TRACE(headless::SlotName(slot));
            HostSettings settings;
            settings.nullInput = nullInput;
            const auto host = ReadyHost(settings);
            Apply(PlainScene(), *host, Depth::kFloat);
            headless::PreRender preRender = host->smartPreRender(host->fullRequest(Depth::kFloat));
            host->resetCalls();
            host->faults().fail(slot, 1, 519);
            const RenderOutcome outcome = host->smartRender(preRender);
            EXPECT_EQ(outcome.error(), 519);
            EXPECT_TRUE(outcome.clean()) << outcome.report();
            EXPECT_EQ(host->calls()[Slot::kCheckinParam], 30u);
        }
    }
}

TEST(SmartRender, ATemporaryWorldThatCannotBeMadeEndsIt) {
    for (const Depth depth : kDepths) {
        HostSettings settings;
        settings.fullWidth = 40;
        settings.fullHeight = 30;
        const auto host = ReadyHost(settings);
        Apply(PlainScene(), *host, depth);
        host->setInput(MakeWorld(OpaquePicture(13, 9), depth, 11, 7));
        host->faults().fail(depth == Depth::kFloat ? Slot::kSuiteNewWorld : Slot::kNewWorld, 1, 4);
        const RenderOutcome outcome = Render(*host, depth);
        EXPECT_EQ(outcome.error(), 4);
        EXPECT_TRUE(outcome.clean()) << outcome.report();
    }
}

TEST(SmartRender, AnOutputWhoseFormatTheHostDeniesEndsItWithTheHostsCode) {
    for (const Depth depth : kDepths) {
        HostSettings settings;
        settings.fullWidth = 40;
        settings.fullHeight = 30;
        const auto host = ReadyHost(settings);
        Apply(PlainScene(), *host, depth);
        host->setInput(MakeWorld(OpaquePicture(13, 9), depth, 11, 7));
        host->faults().fail(Slot::kGetPixelFormat, 1, 521);
        const RenderOutcome outcome = Render(*host, depth);
        EXPECT_EQ(outcome.error(), 521);
        EXPECT_TRUE(outcome.clean()) << outcome.report();
    }
}

TEST(SmartRender, ACopyIntoTheTemporaryWorldThatFailsEndsIt) {
    HostSettings settings;
    settings.fullWidth = 40;
    settings.fullHeight = 30;
    const auto host = ReadyHost(settings);
    Apply(PlainScene(), *host, Depth::k8);
    host->setInput(MakeWorld(OpaquePicture(13, 9), Depth::k8, 11, 7));
    host->faults().fail(Slot::kCopy, 1, 520);
    const RenderOutcome outcome = Render(*host, Depth::k8);
    EXPECT_EQ(outcome.error(), 520);
    EXPECT_TRUE(outcome.clean()) << outcome.report();
}

TEST(SmartRender, APreRenderWithoutRenderLeavesNothing) {
    const auto host = ReadyHost();
    Apply(PlainScene(), *host, Depth::k8);
    for (int i = 0; i < 3; ++i) {
        const headless::PreRender preRender = host->smartPreRender(host->fullRequest(Depth::k8));
        EXPECT_TRUE(preRender.result.clean());
    }
    EXPECT_TRUE(host->balance().empty()) << host->balance().text();
}

TEST(SmartRender, RendersForOnePreRenderAreAlike) {
    const auto host = ReadyHost();
    Apply(PlainScene(), *host, Depth::kFloat);
    headless::PreRender preRender = host->smartPreRender(host->fullRequest(Depth::kFloat));
    const RenderOutcome first = host->smartRender(preRender);
    const RenderOutcome second = host->smartRender(preRender);
    ASSERT_EQ(first.error(), 0);
    ASSERT_EQ(second.error(), 0);
    EXPECT_EQ(first.output->checksum(), second.output->checksum());
}

TEST(SmartRender, GivesThePictureOfThePlainRender) {
    for (const Depth depth : kDepths) {
        Scene scene = PlainScene();
        scene.input = TransparentPicture(48, 32);
        scene.controls.quality = 2;
        EXPECT_TRUE(RenderScene(scene, depth, Path::kSmart) ==
                    RenderScene(scene, depth, Path::kPlain));
    }
}

TEST(SmartRender, AnnouncedLayersThatCannotBeCheckedOutEndTheCommand) {
    HostSettings settings;
    settings.layersInSmartRender = headless::LayerAnswer::kError;
    const auto host = ReadyHost(settings);
    Scene scene = PlainScene();
    scene.maskLayer = AlphaPicture(48, 32);
    Apply(scene, *host, Depth::kFloat);
    const RenderOutcome outcome = Render(*host, Depth::kFloat);
    EXPECT_EQ(outcome.error(), 515);
}

}  // namespace
}  // namespace vireon::conformance
