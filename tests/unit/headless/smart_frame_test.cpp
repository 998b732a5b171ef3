#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <optional>
#include <vector>

#include "fake_effect.h"
#include "headless/host.h"

namespace vireon::headless {
namespace {

using testing::AddSampleParameters;
using testing::Call;
using testing::FakeEffect;
using testing::HasViolation;

/// A small smart effect: announces the input, asks for the request, copies the input into the
/// cleared output.
class CopyEffect {
  public:
    sdk::PF_Err operator()(const Call& call) {
        switch (call.command) {
            case sdk::PF_Cmd_PARAMS_SETUP: return AddSampleParameters(call);
            case sdk::PF_Cmd_SMART_PRE_RENDER: return preRender(call);
            case sdk::PF_Cmd_SMART_RENDER: return render(call);
            case sdk::PF_Cmd_RENDER: return copy(call, call.params[0]->u.ld, *call.output);
            default: return 0;
        }
    }

    /// Overrides the answered result rectangle.
    std::optional<sdk::PF_LRect> result;
    sdk::PF_CheckoutResult checkout{};
    sdk::PF_EffectWorld input{};
    bool inputWasNull = false;
    bool outputWasNull = false;
    bool writeInput = false;
    bool overrunOutput = false;

  private:
    sdk::PF_Err preRender(const Call& call) {
        sdk::PF_PreRenderExtra& extra = call.preRender();
        const sdk::PF_RenderRequest request = extra.input->output_request;
        const sdk::PF_Err error =
            extra.cb->checkout_layer(call.in.effect_ref, 0, 0, &request, call.in.current_time,
                                     call.in.time_step, call.in.time_scale, &checkout);
        extra.output->result_rect = result.value_or(request.rect);
        extra.output->max_result_rect = {-1000, -1000, 1000, 1000};
        extra.output->pre_render_data = std::malloc(16);
        extra.output->delete_pre_render_data_func = [](void* data) { std::free(data); };
        return error;
    }

    sdk::PF_Err render(const Call& call) {
        sdk::PF_SmartRenderExtra& extra = call.smartRender();
        EXPECT_NE(extra.input->pre_render_data, nullptr);
        sdk::PF_EffectWorld* in = nullptr;
        sdk::PF_EffectWorld* out = nullptr;
        if (const auto error = extra.cb->checkout_layer_pixels(call.in.effect_ref, 0, &in)) {
            return error;
        }
        if (const auto error = extra.cb->checkout_output(call.in.effect_ref, &out)) {
            return error;
        }
        inputWasNull = in == nullptr;
        outputWasNull = out == nullptr;
        if (out == nullptr) {
            return 0;
        }
        if (in == nullptr) {
            return call.utils().fill(call.in.effect_ref, nullptr, nullptr, out);
        }
        input = *in;
        if (writeInput) {
            static_cast<sdk::PF_PixelFloat*>(in->data)->red += 1.0f;
        }
        const sdk::PF_Err error = copy(call, *in, *out);
        if (overrunOutput) {
            auto* row = static_cast<std::uint8_t*>(out->data);
            row[static_cast<std::ptrdiff_t>(out->width) * 16] ^= 1;
        }
        return error;
    }

    static sdk::PF_Err copy(const Call& call, sdk::PF_EffectWorld from, sdk::PF_EffectWorld& to) {
        if (const auto error = call.utils().fill(call.in.effect_ref, nullptr, nullptr, &to)) {
            return error;
        }
        if (from.data == nullptr) {
            return 0;
        }
        sdk::PF_LRect source{0, 0, from.width, from.height};
        const std::int32_t x = from.origin_x - to.origin_x;
        const std::int32_t y = from.origin_y - to.origin_y;
        sdk::PF_LRect target{x, y, x + from.width, y + from.height};
        return call.utils().copy(call.in.effect_ref, &from, &to, &source, &target);
    }
};

std::shared_ptr<World> Gradient(std::int32_t width, std::int32_t height, Depth depth) {
    auto world = std::make_shared<World>(width, height, depth);
    for (std::int32_t y = 0; y < height; ++y) {
        for (std::int32_t x = 0; x < width; ++x) {
            world->setColor(
                x, y, {1.0f, static_cast<float>(x) / 8.0f, static_cast<float>(y) / 8.0f, 0.5f});
        }
    }
    return world;
}

class SmartFrame : public ::testing::Test {
  protected:
    SmartFrame()
        : effect_([this](const Call& call) { return copy_(call); }), host_(effect_.library()) {
        EXPECT_EQ(host_.setUp().back().error, 0);
    }

    CopyEffect copy_;
    FakeEffect effect_;
    Host host_;
};

TEST_F(SmartFrame, WholeLayerAtEveryDepth) {
    for (const Depth depth : {Depth::k8, Depth::k16, Depth::kFloat}) {
        host_.setInput(Gradient(6, 4, depth));
        const RenderOutcome outcome = host_.renderSmart(host_.fullRequest(depth));
        ASSERT_TRUE(outcome.clean()) << outcome.report();
        ASSERT_EQ(outcome.error(), 0);
        ASSERT_NE(outcome.output, nullptr);
        EXPECT_EQ(outcome.output->depth(), depth);
        EXPECT_EQ(outcome.output->checksum(), Gradient(6, 4, depth)->checksum());
        EXPECT_EQ(copy_.checkout.ref_width, 6);
        EXPECT_EQ(copy_.input.world_flags & sdk::PF_WorldFlag_WRITEABLE, 0);
    }
}

TEST_F(SmartFrame, LayersAreConvertedToTheDepthOfTheFrame) {
    host_.setInput(Gradient(6, 4, Depth::kFloat));
    const RenderOutcome outcome = host_.renderSmart(host_.fullRequest(Depth::k8));
    ASSERT_TRUE(outcome.clean()) << outcome.report();
    EXPECT_EQ(outcome.output->checksum(), Gradient(6, 4, Depth::k8)->checksum());
}

TEST_F(SmartFrame, RequestPartlyOutsideTheLayer) {
    host_.setInput(Gradient(6, 4, Depth::kFloat));
    for (const bool crop : {false, true}) {
        host_.settings().cropCheckouts = crop;
        const RenderOutcome outcome = host_.renderSmart({.rect = {-2, 1, 3, 9}});
        ASSERT_TRUE(outcome.clean()) << outcome.report();
        EXPECT_EQ(outcome.output->bounds().left, -2);
        EXPECT_EQ(outcome.output->width(), 5);
        EXPECT_EQ(outcome.output->height(), 8);
        EXPECT_EQ(outcome.output->color(1, 0).alpha, 0.0f);
        EXPECT_EQ(outcome.output->color(2, 0).alpha, 1.0f);
        EXPECT_EQ(outcome.output->color(4, 0).red, 2.0f / 8.0f);
        EXPECT_EQ(outcome.output->color(4, 2).green, 3.0f / 8.0f);
        EXPECT_EQ(outcome.output->color(4, 3).alpha, 0.0f);
        EXPECT_EQ(copy_.checkout.max_result_rect.right, 6);
        EXPECT_EQ(copy_.checkout.result_rect.top, crop ? 1 : 0);
        EXPECT_EQ(copy_.input.width, crop ? 3 : 6);
        EXPECT_EQ(copy_.input.origin_y, crop ? 1 : 0);
    }
}

TEST_F(SmartFrame, InputWithAPlaceOfItsOwn) {
    auto input = Gradient(3, 2, Depth::k16);
    input->setOrigin(4, 5);
    host_.setInput(input);
    host_.settings().fullWidth = host_.settings().fullHeight = 10;
    const RenderOutcome outcome = host_.renderSmart(host_.fullRequest(Depth::k16));
    ASSERT_TRUE(outcome.clean()) << outcome.report();
    EXPECT_EQ(outcome.output->width(), 10);
    EXPECT_EQ(outcome.output->color(6, 6).red, 2.0f / 8.0f);
    EXPECT_EQ(outcome.output->color(3, 6).alpha, 0.0f);
}

TEST_F(SmartFrame, EmptyRequestEndsWithThePreRender) {
    host_.setInput(Gradient(6, 4, Depth::kFloat));
    const RenderOutcome outcome = host_.renderSmart({.rect = {2, 2, 2, 2}});
    EXPECT_TRUE(outcome.clean());
    EXPECT_EQ(outcome.commands.size(), 1u);
    EXPECT_EQ(outcome.output, nullptr);
}

TEST_F(SmartFrame, WrongRectanglesAreViolations) {
    host_.setInput(Gradient(6, 4, Depth::kFloat));
    copy_.result = sdk::PF_LRect{0, 0, 7, 4};
    PreRender preRender = host_.smartPreRender(host_.fullRequest(Depth::kFloat));
    EXPECT_TRUE(HasViolation(preRender.result, "outside the request"));
    copy_.result = sdk::PF_LRect{-2000, 0, 6, 4};
    preRender = host_.smartPreRender({.rect = {-3000, 0, 6, 4}});
    EXPECT_TRUE(HasViolation(preRender.result, "outside the maximal one"));
}

TEST_F(SmartFrame, NullInputAndNullOutput) {
    host_.setInput(Gradient(6, 4, Depth::kFloat));
    host_.settings().nullInput = true;
    RenderOutcome outcome = host_.renderSmart(host_.fullRequest(Depth::kFloat));
    EXPECT_TRUE(outcome.clean()) << outcome.report();
    EXPECT_TRUE(copy_.inputWasNull);
    EXPECT_EQ(outcome.output->color(3, 3).alpha, 0.0f);
    host_.settings().nullInput = false;
    host_.settings().nullOutput = true;
    outcome = host_.renderSmart(host_.fullRequest(Depth::kFloat));
    EXPECT_TRUE(outcome.clean()) << outcome.report();
    EXPECT_TRUE(copy_.outputWasNull);
    EXPECT_EQ(outcome.output, nullptr);
}

TEST_F(SmartFrame, OnePreRenderServesSeveralRenders) {
    host_.setInput(Gradient(6, 4, Depth::kFloat));
    PreRender preRender = host_.smartPreRender(host_.fullRequest(Depth::kFloat));
    const PreRender other = host_.smartPreRender({.rect = {1, 1, 2, 2}});
    EXPECT_EQ(preRender.layers.size(), 1u);
    const auto first = host_.smartRender(preRender).output->checksum();
    EXPECT_EQ(host_.smartRender(preRender).output->checksum(), first);
}

TEST_F(SmartFrame, WritingTheInputIsAViolation) {
    host_.setInput(Gradient(6, 4, Depth::kFloat));
    copy_.writeInput = true;
    RenderOutcome outcome = host_.renderSmart(host_.fullRequest(Depth::kFloat));
    EXPECT_TRUE(HasViolation(outcome.commands.back(), "may only read"));
    host_.settings().checkInputs = false;
    outcome = host_.renderSmart(host_.fullRequest(Depth::kFloat));
    EXPECT_TRUE(outcome.clean());
}

TEST_F(SmartFrame, WritingRowPaddingIsAViolation) {
    host_.setInput(Gradient(6, 4, Depth::kFloat));
    copy_.overrunOutput = true;
    const RenderOutcome outcome = host_.renderSmart(host_.fullRequest(Depth::kFloat));
    EXPECT_TRUE(HasViolation(outcome.commands.back(), "output world: written into the padding"));
}

TEST_F(SmartFrame, PlainRenderCopiesToo) {
    for (const bool negative : {false, true}) {
        host_.settings().negativeRowBytes = negative;
        host_.setInput(Gradient(5, 7, Depth::k16));
        const RenderOutcome outcome = host_.renderPlain(Depth::k16);
        ASSERT_TRUE(outcome.clean()) << outcome.report();
        EXPECT_EQ(outcome.commands.size(), 3u);
        EXPECT_EQ(outcome.output->record().rowbytes < 0, negative);
        EXPECT_EQ(outcome.output->checksum(), Gradient(5, 7, Depth::k16)->checksum());
    }
    host_.setInput(nullptr);
    EXPECT_THROW(host_.renderPlain(Depth::k8), HeadlessError);
}

/// Checks the layer parameter out inside SMART_RENDER and notes what came.
struct LayerProbe {
    sdk::PF_Err error = 0;
    sdk::PF_EffectWorld world{};

    sdk::PF_Err operator()(const Call& call) {
        if (call.command == sdk::PF_Cmd_PARAMS_SETUP) {
            return AddSampleParameters(call);
        }
        if (call.command == sdk::PF_Cmd_SMART_PRE_RENDER) {
            call.preRender().output->result_rect = call.preRender().input->output_request.rect;
            call.preRender().output->max_result_rect = call.preRender().input->output_request.rect;
        }
        if (call.command != sdk::PF_Cmd_SMART_RENDER) {
            return 0;
        }
        sdk::PF_ParamDef param{};
        error = call.in.inter.checkout_param(call.in.effect_ref, 6, 15, 1, 30, &param);
        world = param.u.ld;
        return error != 0 ? 0 : call.in.inter.checkin_param(call.in.effect_ref, &param);
    }
};

TEST(SmartLayers, CheckOutsOfLayersAnswerInThreeWays) {
    LayerProbe probe;
    const FakeEffect effect([&](const Call& call) { return probe(call); });
    Host host(effect.library());
    host.setUp();
    host.settings().fullWidth = host.settings().fullHeight = 4;
    const RenderRequest request = host.fullRequest(Depth::k16);
    EXPECT_TRUE(host.renderSmart(request).clean());
    EXPECT_EQ(probe.error, 0);
    EXPECT_EQ(probe.world.data, nullptr);
    host.setLayer(6, Gradient(8, 8, Depth::kFloat));
    EXPECT_TRUE(host.renderSmart(request).clean());
    EXPECT_EQ(probe.world.width, 8);
    EXPECT_EQ(probe.world.world_flags, sdk::PF_WorldFlag_DEEP);
    host.settings().layersInSmartRender = LayerAnswer::kZeroed;
    EXPECT_TRUE(host.renderSmart(request).clean());
    EXPECT_EQ(probe.world.width, 0);
    host.settings().layersInSmartRender = LayerAnswer::kError;
    EXPECT_TRUE(host.renderSmart(request).clean());
    EXPECT_EQ(probe.error, sdk::PF_Err_INVALID_CALLBACK);
}

TEST(SmartLayers, TheHookChoosesThePictureAtATime) {
    LayerProbe probe;
    const FakeEffect effect([&](const Call& call) { return probe(call); });
    Host host(effect.library());
    host.setUp();
    host.settings().fullWidth = host.settings().fullHeight = 4;
    std::vector<std::int32_t> times;
    host.settings().layerAt = [&](std::int32_t index, const LayerTime& time,
                                  std::shared_ptr<World> chosen) {
        if (index == 6) {
            times.push_back(time.value);
            return Gradient(time.value, 1, Depth::k8);
        }
        return chosen;
    };
    EXPECT_TRUE(host.renderSmart(host.fullRequest(Depth::k8)).clean());
    EXPECT_EQ(times, std::vector<std::int32_t>{15});
    EXPECT_EQ(probe.world.width, 15);
}

TEST(SmartLayers, UnannouncedPixelsAndEarlyOutputAreViolations) {
    const FakeEffect effect([](const Call& call) -> sdk::PF_Err {
        if (call.command == sdk::PF_Cmd_SMART_PRE_RENDER) {
            sdk::PF_PreRenderExtra& extra = call.preRender();
            sdk::PF_CheckoutResult result{};
            const auto& request = extra.input->output_request;
            EXPECT_EQ(
                extra.cb->checkout_layer(call.in.effect_ref, 0, 3, &request, 0, 1, 30, &result), 0);
            EXPECT_NE(
                extra.cb->checkout_layer(call.in.effect_ref, 0, 3, &request, 0, 1, 30, &result), 0);
            extra.output->result_rect = extra.output->max_result_rect = request.rect;
        } else if (call.command == sdk::PF_Cmd_SMART_RENDER) {
            sdk::PF_EffectWorld* world = nullptr;
            call.smartRender().cb->checkout_output(call.in.effect_ref, &world);
            EXPECT_EQ(call.smartRender().cb->checkout_layer_pixels(call.in.effect_ref, 1, &world),
                      sdk::PF_Err_BAD_CALLBACK_PARAM);
            call.smartRender().cb->checkin_layer_pixels(call.in.effect_ref, 3);
        }
        return 0;
    });
    Host host(effect.library());
    host.setInput(Gradient(2, 2, Depth::k8));
    const RenderOutcome outcome = host.renderSmart(host.fullRequest(Depth::k8));
    EXPECT_TRUE(HasViolation(outcome.commands[0], "two layers are announced under the id 3"));
    EXPECT_TRUE(HasViolation(outcome.commands[1], "before any input"));
    EXPECT_TRUE(HasViolation(outcome.commands[1], "which was not announced"));
    EXPECT_TRUE(HasViolation(outcome.commands[1], "check-in of layer pixels"));
}

TEST(SmartLayers, LayersInUpdateParamsUi) {
    void* data = nullptr;
    const FakeEffect effect([&](const Call& call) -> sdk::PF_Err {
        if (call.command == sdk::PF_Cmd_UPDATE_PARAMS_UI) {
            data = call.params[6]->u.ld.data;
        }
        return call.command == sdk::PF_Cmd_PARAMS_SETUP ? AddSampleParameters(call) : 0;
    });
    Host host(effect.library());
    host.setUp();
    EXPECT_TRUE(host.updateParamsUi().clean());
    EXPECT_EQ(data, nullptr);
    host.setLayer(6, Gradient(2, 2, Depth::k8));
    EXPECT_TRUE(host.updateParamsUi().clean());
    EXPECT_NE(data, nullptr);
    host.settings().layersInUpdateUi = LayerAnswer::kZeroed;
    EXPECT_TRUE(host.updateParamsUi().clean());
    EXPECT_EQ(data, nullptr);
}

}  // namespace
}  // namespace vireon::headless
