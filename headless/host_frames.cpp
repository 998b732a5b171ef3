#include <utility>

#include "headless/callbacks/tables.h"
#include "headless/error.h"
#include "headless/host.h"
#include "headless/host_state.h"
#include "headless/parameter_array.h"

namespace vireon::headless {
namespace {

bool Contains(const sdk::PF_LRect& outer, const sdk::PF_LRect& inner) {
    return outer.left <= inner.left && outer.top <= inner.top && outer.right >= inner.right &&
           outer.bottom >= inner.bottom;
}

sdk::PF_RenderRequest RecordOf(const RenderRequest& request) {
    sdk::PF_RenderRequest record{};
    record.rect = request.rect;
    record.field = request.field;
    record.channel_mask = request.channelMask;
    record.preserve_rgb_of_zero_alpha = request.preserveRgbOfZeroAlpha ? 1 : 0;
    return record;
}

std::int16_t BitDepth(Depth depth) {
    return static_cast<std::int16_t>(BitsPerChannel(depth));
}

void CheckRectangles(const PreRender& preRender, std::vector<std::string>& violations) {
    const sdk::PF_PreRenderOutput& output = preRender.output;
    const bool more = (output.flags & sdk::PF_RenderOutputFlag_RETURNS_EXTRA_PIXELS) != 0;
    if (IsEmpty(output.result_rect)) {
        return;
    }
    if (!more && !Contains(preRender.request.rect, output.result_rect)) {
        violations.push_back("result rectangle " + RectText(output.result_rect) +
                             " reaches outside the request " + RectText(preRender.request.rect));
    }
    if (!Contains(output.max_result_rect, output.result_rect)) {
        violations.push_back("result rectangle " + RectText(output.result_rect) +
                             " reaches outside the maximal one " +
                             RectText(output.max_result_rect));
    }
}

/// A fresh output world for a rectangle of layer space.
std::shared_ptr<World> MakeOutput(const HostState& host, const sdk::PF_LRect& rect, Depth depth) {
    std::shared_ptr<World> output =
        host.makeWorld(rect.right - rect.left, rect.bottom - rect.top, depth, false);
    output->setOrigin(rect.left, rect.top);
    return output;
}

CommandContext FrameContext(std::int32_t command, Depth depth) {
    CommandContext context;
    context.command = command;
    context.depth = depth;
    return context;
}

/// FRAME_SETUP or FRAME_SETDOWN.
CommandResult SendAroundFrame(HostState& host, std::int32_t command, Depth depth) {
    CommandContext running = FrameContext(command, depth);
    ParameterArray array(host);
    CommandResult result = host.run(running, {.params = array.pointers()});
    array.reportChanges(result);
    return result;
}

}  // namespace

RenderOutcome Host::renderPlain(Depth depth) {
    HostState& host = *state_;
    RenderOutcome outcome;

    CommandContext running = FrameContext(sdk::PF_Cmd_RENDER, depth);
    const std::shared_ptr<World> input = host.layerFor(running, 0, host.presentTime());
    sdk::PF_LRect rect{0, 0, host.presentWidth(), host.presentHeight()};
    if (input != nullptr) {
        rect = input->bounds();
    }

    outcome.commands.push_back(SendAroundFrame(host, sdk::PF_Cmd_FRAME_SETUP, depth));
    const sdk::PF_OutData& answer = outcome.commands.back().out;
    if (answer.width > 0 && answer.height > 0) {
        rect.left -= answer.origin.h;
        rect.top -= answer.origin.v;
        rect.right = rect.left + answer.width;
        rect.bottom = rect.top + answer.height;
    }
    if (outcome.commands.back().error != 0) {
        return outcome;
    }
    if (IsEmpty(rect)) {
        throw HeadlessError("a frame needs an input layer or a full size");
    }

    ParameterArray array(host);
    if (input != nullptr && !host.settings.nullInput) {
        array.setInput(host.lend(running, input));
    }
    const std::shared_ptr<World> output = MakeOutput(host, rect, depth);
    running.output = output.get();
    const bool withheld = host.settings.nullOutput;
    CommandResult result = host.run(
        running, {.params = array.pointers(), .output = withheld ? nullptr : &output->record()});
    array.reportChanges(result);
    outcome.commands.push_back(std::move(result));
    outcome.output = withheld ? nullptr : output;

    outcome.commands.push_back(SendAroundFrame(host, sdk::PF_Cmd_FRAME_SETDOWN, depth));
    return outcome;
}

PreRender Host::smartPreRender(const RenderRequest& request) {
    PreRender preRender;
    preRender.request = request;

    sdk::PF_PreRenderInput input{};
    input.output_request = RecordOf(request);
    input.bitdepth = BitDepth(request.depth);
    sdk::PF_PreRenderExtra extra{&input, &preRender.output, PreRenderTable()};

    CommandContext running = FrameContext(sdk::PF_Cmd_SMART_PRE_RENDER, request.depth);
    running.announcements = &preRender.layers;
    preRender.result = state_->run(running, {.extra = &extra});
    if (preRender.result.error == 0) {
        CheckRectangles(preRender, preRender.result.violations);
    }
    return preRender;
}

RenderOutcome Host::smartRender(PreRender& preRender) {
    HostState& host = *state_;
    sdk::PF_SmartRenderInput input{};
    input.output_request = RecordOf(preRender.request);
    input.bitdepth = BitDepth(preRender.request.depth);
    input.pre_render_data = preRender.output.pre_render_data;
    sdk::PF_SmartRenderExtra extra{&input, SmartRenderTable()};

    RenderOutcome outcome;
    const sdk::PF_LRect rect = preRender.output.result_rect;
    if (!IsEmpty(rect) && !host.settings.nullOutput) {
        outcome.output = MakeOutput(host, rect, preRender.request.depth);
    }
    CommandContext running = FrameContext(sdk::PF_Cmd_SMART_RENDER, preRender.request.depth);
    running.announcements = &preRender.layers;
    running.output = outcome.output.get();
    outcome.commands.push_back(host.run(running, {.extra = &extra}));
    return outcome;
}

RenderOutcome Host::renderSmart(const RenderRequest& request) {
    PreRender preRender = smartPreRender(request);
    RenderOutcome outcome;
    if (preRender.result.error == 0 && !IsEmpty(preRender.output.result_rect)) {
        outcome = smartRender(preRender);
    }
    outcome.commands.insert(outcome.commands.begin(), std::move(preRender.result));
    return outcome;
}

RenderRequest Host::fullRequest(Depth depth) const {
    RenderRequest request;
    request.rect = {0, 0, state_->presentWidth(), state_->presentHeight()};
    request.depth = depth;
    return request;
}

}  // namespace vireon::headless
