#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <iostream>
#include <map>
#include <memory>
#include <ostream>
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
using headless::RenderOutcome;
using headless::Slot;

/// A code that neither the host nor the effect gives by itself.
constexpr sdk::PF_Err kInjected = 533;
constexpr sdk::PF_Err kOutOfMemory = 4;
constexpr sdk::PF_Err kFailed = 1;
/// A smart render checks all its parameters out before its layers.
constexpr std::uint64_t kSmartParameters = 30;
/// Of the cases of an ordinary run; without a common factor with the usual numbers of calls.
constexpr std::uint64_t kEvery = 5;

/// What a failure of a function means for the render that called it. Of the working rasters, that
/// of a tent blur is the exception: a blur without one answers 1 and leaves its picture as it was.
enum class Answer {
    kEnds,     ///< the host's code comes back from the render
    kQuery,    ///< as kEnds, but what is asked for once more may be answered then
    kMemory,   ///< no memory: the render answers 4
    kIgnored,  ///< the picture does not depend on it, so it is rendered all the same
    kLayer,    ///< a parameter: its code comes back; a layer asked for by the render: absent
    kSuite,    ///< shown to the user, and the render does without the suite
};

const std::map<Slot, Answer>& Answers() {
    static const std::map<Slot, Answer> answers{
        {Slot::kCheckoutLayer, Answer::kEnds},
        {Slot::kCheckoutLayerPixels, Answer::kEnds},
        {Slot::kCheckoutOutput, Answer::kEnds},
        {Slot::kCheckoutParam, Answer::kLayer},
        {Slot::kCheckinParam, Answer::kIgnored},
        {Slot::kProgress, Answer::kEnds},
        {Slot::kCopy, Answer::kEnds},
        {Slot::kFill, Answer::kIgnored},
        {Slot::kNewWorld, Answer::kEnds},
        {Slot::kDisposeWorld, Answer::kIgnored},
        {Slot::kSuiteNewWorld, Answer::kEnds},
        {Slot::kSuiteDisposeWorld, Answer::kIgnored},
        {Slot::kGetPixelFormat, Answer::kQuery},
        {Slot::kGetPixelData8, Answer::kQuery},
        {Slot::kGetPixelData16, Answer::kQuery},
        {Slot::kNewHandle, Answer::kMemory},
        {Slot::kLockHandle, Answer::kMemory},
        {Slot::kAcquireSuite, Answer::kSuite},
        {Slot::kReleaseSuite, Answer::kIgnored},
    };
    return answers;
}

enum class Content {
    kLight,    ///< nothing but the input, at full resolution
    kReduced,  ///< the same at a quarter of the resolution
    kMasked,   ///< at full resolution in a mask, which takes working rasters of full size
    kLayers,   ///< mask, glow and shape layer, at a quarter of the resolution
    kPlaced,   ///< an input smaller than the layer
    kMapView,  ///< the brightness map instead of the picture, with a mask layer
    kMaskView,
    kInvisible,  ///< a glow of no opacity: the input is handed on
    kNoInput,    ///< nothing to read: the output is cleared
};
constexpr Content kContents[] = {
    Content::kLight,   Content::kReduced,  Content::kMasked,    Content::kLayers,  Content::kPlaced,
    Content::kMapView, Content::kMaskView, Content::kInvisible, Content::kNoInput,
};

Scene SceneOf(Content content) {
    Scene scene = PlainScene();
    scene.input = TransparentPicture(24, 16);
    scene.controls.glowRadius = 4;
    if (content == Content::kReduced) {
        scene.controls.quality = 3;
        scene.controls.glowRadius = 9;
    }
    scene.controls.enableMask = content == Content::kMasked;
    if (content == Content::kLayers) {
        scene.maskLayer = AlphaPicture(24, 16);
        scene.glowLayer = OpaquePicture(20, 18);
        scene.shapeLayer = AlphaPicture(9, 7);
        scene.controls.shape = kShapeCustom;
        scene.controls.enableMask = true;
        scene.controls.blurInput = 1;
        scene.controls.glowRadius = 9;
        scene.controls.quality = 3;
    }
    if (content == Content::kMapView || content == Content::kMaskView) {
        scene.maskLayer = AlphaPicture(20, 18);
        scene.controls.enableMask = true;
        scene.controls.view = content == Content::kMapView ? kViewBrightness : kViewMask;
    }
    if (content == Content::kInvisible) {
        scene.controls.glowOpacity = 0;
    }
    return scene;
}

HostSettings SettingsOf(Content content, std::int32_t application) {
    HostSettings settings;
    settings.applicationId = application;
    if (content == Content::kPlaced) {
        settings.fullWidth = 24;
        settings.fullHeight = 16;
    }
    settings.nullInput = content == Content::kNoInput;
    return settings;
}

/// A host that is ready to render a scene.
std::unique_ptr<Host> Prepared(const Scene& scene, Content content, Depth depth,
                               std::int32_t application) {
    auto host = ReadyHost(SettingsOf(content, application));
    Apply(scene, *host, depth);
    if (content == Content::kPlaced) {
        host->setInput(MakeWorld(OpaquePicture(11, 9), depth, 5, 4));
    }
    return host;
}

struct Frame {
    std::int32_t application;
    Path path;
};

std::string Name(const Frame& frame) {
    const char* application = frame.application == sdk::kHostAfterEffects  ? "HostWorlds"
                              : frame.application == sdk::kHostPremierePro ? "MemoryRasters"
                                                                           : "UnknownApplication";
    return std::string(application) + (frame.path == Path::kSmart ? "Smart" : "Plain");
}

void PrintTo(const Frame& frame, std::ostream* stream) {
    *stream << Name(frame);
}

std::string FrameName(const ::testing::TestParamInfo<Frame>& info) {
    return Name(info.param);
}

/// One frame, rendered with every failure that its host can be told to give.
class Loop {
  public:
    Loop(Content content, Depth depth, const Frame& frame, CaseSampler& sampler)
        : content_(content), depth_(depth), frame_(frame), sampler_(sampler) {}

    void run() {
        learn();
        if (::testing::Test::HasFatalFailure()) {
            return;
        }
        for (const Slot slot : headless::AllSlots()) {
            const std::uint64_t calls = calls_[slot];
            if (calls == 0 || !headless::CanFail(slot)) {
                continue;
            }
            const auto answer = Answers().find(slot);
            if (answer == Answers().end()) {
                ADD_FAILURE() << headless::SlotName(slot) << ": what its failure means is not said";
                continue;
            }
            for (const bool fromThenOn : {false, true}) {
                for (std::uint64_t nth = 1; nth <= calls; ++nth) {
                    if (sampler_.take()) {
                        fail({slot, answer->second, nth, fromThenOn});
                    }
                }
                expectNotReached(slot, calls + 1);
            }
        }
    }

  private:
    struct Fault {
        Slot slot;
        Answer answer;
        std::uint64_t nth;
        bool fromThenOn;
    };

    /// The render without failures: its picture, its calls, the layers that it asks for.
    void learn() {
        host_ = Prepared(SceneOf(content_), content_, depth_, frame_.application);
        host_->settings().onCheckout = [this](std::int32_t index, const headless::LayerTime&,
                                              sdk::PF_ParamDef&) { order_.push_back(index); };
        host_->resetCalls();
        const RenderOutcome outcome = Render(*host_, depth_, frame_.path);
        host_->settings().onCheckout = nullptr;
        ASSERT_EQ(outcome.error(), 0) << outcome.report();
        ASSERT_TRUE(outcome.clean()) << outcome.report();
        calls_ = host_->calls();
        picture_ = ReadRaw(*outcome.output);
        Scene scene = SceneOf(content_);
        scene.controls.blurInput = 0;
        withoutBlur_ = rendered(scene);
        EXPECT_EQ(picture_ == withoutBlur_, content_ != Content::kLayers);
    }

    void fail(const Fault& fault) {
        SCOPED_TRACE(std::string(headless::SlotName(fault.slot)) + ", call " +
                     std::to_string(fault.nth) + " of " + std::to_string(calls_[fault.slot]) +
                     (fault.fromThenOn ? " and all later ones" : ""));
        host_->faults().clear();
        host_->faults().resetInjected();
        host_->faults().fail(fault.slot, fault.nth, kInjected, fault.fromThenOn);
        const RenderOutcome outcome = Render(*host_, depth_, frame_.path);
        EXPECT_GE(host_->faults().injected(), 1u) << "the failure was never reached";
        host_->faults().clear();
        expectAnswer(fault, outcome);
        expectBooks(fault, outcome);
        expectGoodRender();
    }

    /// Whether the call is one of those with which a smart render fetches its parameters.
    bool isParameter(const Fault& fault) const {
        return fault.answer == Answer::kLayer && frame_.path == Path::kSmart &&
               fault.nth <= kSmartParameters;
    }

    void expectAnswer(const Fault& fault, const RenderOutcome& outcome) {
        switch (fault.answer) {
            case Answer::kEnds: expectEnd(fault, outcome, kInjected); return;
            case Answer::kQuery:
                if (outcome.error() == 0 && ReadRaw(*outcome.output) == picture_) {
                    EXPECT_TRUE(!fault.fromThenOn || isGivingBack(fault))
                        << "the answer was never given";
                } else {
                    expectEnd(fault, outcome, kInjected);
                }
                return;
            case Answer::kMemory: expectEnd(fault, outcome, kOutOfMemory); return;
            case Answer::kIgnored:
                // Where clearing is all there is to do, the picture is what the host left.
                expectPicture(outcome, content_ == Content::kNoInput && fault.slot == Slot::kFill
                                           ? ReadRaw(*outcome.output)
                                           : picture_);
                return;
            case Answer::kLayer:
                if (isParameter(fault)) {
                    EXPECT_EQ(outcome.error(), kInjected) << outcome.report();
                } else {
                    expectPicture(outcome, withoutLayers(fault));
                }
                return;
            case Answer::kSuite: expectSuiteMessage(fault, outcome); return;
        }
    }

    /// The last query of all may be for the way by which the placed input's world goes back, when
    /// the picture is done.
    bool isGivingBack(const Fault& fault) const {
        return content_ == Content::kPlaced && fault.nth == calls_[fault.slot];
    }

    /// The render ended with the code, unless what failed was the working raster of a tent blur:
    /// of Blur Input, whose result the mask's replaces, or of the smoothing, which comes last.
    void expectEnd(const Fault& fault, const RenderOutcome& outcome, sdk::PF_Err code) {
        if (content_ != Content::kLayers || outcome.error() == code) {
            EXPECT_EQ(outcome.error(), code) << outcome.report();
        } else if (outcome.error() == 0) {
            expectPicture(outcome, withoutBlur_);
        } else {
            EXPECT_EQ(outcome.error(), kFailed) << outcome.report();
            EXPECT_EQ(fault.nth, calls_[fault.slot]) << "not the last raster of the render";
        }
    }

    static void expectPicture(const RenderOutcome& outcome, const Picture& picture) {
        EXPECT_EQ(outcome.error(), 0) << outcome.report();
        ASSERT_NE(outcome.output, nullptr);
        EXPECT_TRUE(ReadRaw(*outcome.output) == picture)
            << Compare(picture, ReadRaw(*outcome.output)).text;
    }

    void expectSuiteMessage(const Fault& fault, const RenderOutcome& outcome) {
        const CommandResult* shown = nullptr;
        for (const CommandResult& result : outcome.commands) {
            if ((result.out.out_flags & sdk::PF_OutFlag_DISPLAY_ERROR_MESSAGE) != 0) {
                shown = &result;
            }
        }
        ASSERT_NE(shown, nullptr) << outcome.report();
        EXPECT_FALSE(shown->message().empty());
        if (!isBlind(fault)) {
            expectPicture(outcome, picture_);
        } else if (outcome.error() != 0) {
            EXPECT_EQ(outcome.error(), sdk::PF_Err_BAD_CALLBACK_PARAM) << outcome.report();
        }
    }

    /// Without the World Suite, the first that is asked for, nothing tells a float frame from one
    /// of 8 bits. The host may refuse what is asked of it then.
    bool isBlind(const Fault& fault) const {
        return fault.answer == Answer::kSuite && fault.nth == 1 && depth_ == Depth::kFloat;
    }

    /// The picture of the frame without the layers whose check-outs fail.
    Picture withoutLayers(const Fault& fault) {
        Scene scene = SceneOf(content_);
        const std::uint64_t last = fault.fromThenOn ? order_.size() : fault.nth;
        for (std::uint64_t call = fault.nth; call <= last; ++call) {
            switch (order_.at(static_cast<std::size_t>(call - 1))) {
                case kShapeLayer: scene.shapeLayer.reset(); break;
                case kMaskLayer: scene.maskLayer.reset(); break;
                case kGlowLayer: scene.glowLayer.reset(); break;
                default: ADD_FAILURE() << "a render asks for no other parameter"; break;
            }
        }
        const Picture picture = rendered(scene);
        if (content_ == Content::kLayers && !scene.shapeLayer) {
            EXPECT_TRUE(picture == Picture(24, 16)) << "a glow of no shape";
        }
        return picture;
    }

    /// The picture of a scene in a host like this one.
    Picture rendered(const Scene& scene) const {
        const auto host = Prepared(scene, content_, depth_, frame_.application);
        const RenderOutcome outcome = Render(*host, depth_, frame_.path);
        EXPECT_EQ(outcome.error(), 0) << outcome.report();
        return outcome.output == nullptr ? Picture() : ReadRaw(*outcome.output);
    }

    void expectBooks(const Fault& fault, const RenderOutcome& outcome) {
        if (!isParameter(fault) && !isBlind(fault)) {
            EXPECT_TRUE(outcome.clean()) << outcome.report();
            return;
        }
        // The parameters before the refused one stay checked out.
        headless::Balance left;
        left.parameters = isParameter(fault) ? static_cast<std::int64_t>(fault.nth) - 1 : 0;
        std::string leaks;
        for (const CommandResult& result : outcome.commands) {
            leaks += result.leaks;
            EXPECT_TRUE(isBlind(fault) || result.violations.empty()) << result.report();
            EXPECT_LE(result.violations.size(), 1u) << result.report();
        }
        EXPECT_EQ(leaks, left.text());
    }

    void expectGoodRender() {
        const RenderOutcome outcome = Render(*host_, depth_, frame_.path);
        expectPicture(outcome, picture_);
        EXPECT_TRUE(outcome.clean()) << outcome.report();
        EXPECT_TRUE(host_->balance().empty()) << host_->balance().text();
    }

    /// No render makes the call after the last, so that every failure was tried.
    void expectNotReached(Slot slot, std::uint64_t nth) {
        host_->faults().clear();
        host_->faults().resetInjected();
        host_->faults().fail(slot, nth, kInjected, true);
        const RenderOutcome outcome = Render(*host_, depth_, frame_.path);
        EXPECT_EQ(host_->faults().injected(), 0u) << headless::SlotName(slot);
        host_->faults().clear();
        expectPicture(outcome, picture_);
    }

    Content content_;
    Depth depth_;
    Frame frame_;
    CaseSampler& sampler_;
    std::unique_ptr<Host> host_;
    headless::CallCounts calls_;
    std::vector<std::int32_t> order_;
    Picture picture_;
    Picture withoutBlur_;
};

class FaultLoop : public ::testing::TestWithParam<Frame> {};

TEST_P(FaultLoop, EveryCallThatFailsIsAnsweredBalancedAndForgotten) {
    CaseSampler sampler(kEvery);
    for (const Depth depth : {Depth::k8, Depth::k16, Depth::kFloat}) {
        for (const Content content : kContents) {
            const bool smartOnly = content == Content::kPlaced || content == Content::kNoInput;
            if (smartOnly && GetParam().path == Path::kPlain) {
                continue;
            }
            SCOPED_TRACE(std::to_string(headless::BitsPerChannel(depth)) + " bit, content " +
                         std::to_string(static_cast<int>(content)));
            Loop(content, depth, GetParam(), sampler).run();
        }
    }
    EXPECT_GE(sampler.seen(), 1000u);
    EXPECT_GE(sampler.taken(), sampler.seen() / kEvery);
    std::cout << sampler.taken() << " of " << sampler.seen() << " failures tried\n";
}

INSTANTIATE_TEST_SUITE_P(Frames, FaultLoop,
                         ::testing::Values(Frame{sdk::kHostAfterEffects, Path::kSmart},
                                           Frame{sdk::kHostAfterEffects, Path::kPlain},
                                           Frame{sdk::kHostPremierePro, Path::kSmart},
                                           Frame{sdk::kHostPremierePro, Path::kPlain},
                                           Frame{sdk::HostCode("Unkn"), Path::kSmart},
                                           Frame{sdk::HostCode("Unkn"), Path::kPlain}),
                         FrameName);

}  // namespace
}  // namespace vireon::conformance
