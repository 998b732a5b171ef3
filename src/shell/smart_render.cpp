#include "shell/smart_render.h"

#include <algorithm>
#include <limits>
#include <new>
#include <vector>

#include "host/ae/plugin_host_ae_impl.h"
#include "host/ae/plugin_raster_ae_impl.h"
#include "host/ae/ratio.h"
#include "host/result_codes.h"
#include "image/pixel_format.h"
#include "render/parameter_ids.h"
#include "render/raster_ops.h"
#include "render/render_entry.h"

namespace vireon {

using namespace sdk;

namespace {

// Name of the input layer's check-out between pre-render and render.
constexpr std::int32_t kInputCheckoutId = 0;

// A host's code on its way out of a smart render.
struct HostError {
    PF_Err code;
};

void ThrowOnError(PF_Err code) {
    if (code != PF_Err_NONE) throw HostError{code};
}

bool IsEmpty(const PF_LRect& r) {
    return r.left >= r.right || r.top >= r.bottom;
}

PF_LRect Union(const PF_LRect& rect, const PF_LRect& added) {
    if (IsEmpty(rect)) return added;
    if (IsEmpty(added)) return rect;
    return {std::min(rect.left, added.left), std::min(rect.top, added.top),
            std::max(rect.right, added.right), std::max(rect.bottom, added.bottom)};
}

PF_LRect Intersection(const PF_LRect& a, const PF_LRect& b) {
    return {std::max(a.left, b.left), std::max(a.top, b.top), std::min(a.right, b.right),
            std::min(a.bottom, b.bottom)};
}

// Truncated size at the render's resolution.
std::int32_t Downsampled(std::int32_t size, const PF_RationalScale& scale) {
    constexpr double kLargest = std::numeric_limits<std::int32_t>::max();
    return static_cast<std::int32_t>(std::clamp(RatioOr1(scale) * size, -kLargest, kLargest));
}

// The records of one smart render: what the host gives out for each parameter, in the form of the
// array that a plain render gets.
class CheckedOutParameters {
  public:
    explicit CheckedOutParameters(PF_InData& in)
        : in_(in), records_(kParamCount), array_(kParamCount + 1, nullptr) {
        for (std::size_t i = 0; i < records_.size(); ++i) array_[i] = &records_[i];
    }

    /// Stops at the first failure; what was checked out before it stays so.
    PF_Err checkOut() {
        for (std::int32_t index = 1; index < kParamCount; ++index) {
            const PF_Err error =
                in_.inter.checkout_param(in_.effect_ref, index, in_.current_time, in_.time_step,
                                         in_.time_scale, array_[static_cast<std::size_t>(index)]);
            if (error != PF_Err_NONE) return error;
        }
        return PF_Err_NONE;
    }

    /// Gives everything back, once.
    void checkIn() {
        if (checkedIn_) return;
        checkedIn_ = true;
        for (std::int32_t index = 1; index < kParamCount; ++index) {
            in_.inter.checkin_param(in_.effect_ref, array_[static_cast<std::size_t>(index)]);
        }
    }

    PF_EffectWorld& inputLayer() { return records_[kParamInput].u.ld; }
    PF_ParamDef** array() { return array_.data(); }

  private:
    PF_InData& in_;
    std::vector<PF_ParamDef> records_;
    std::vector<PF_ParamDef*> array_;
    bool checkedIn_ = false;
};

std::int16_t ToShort(std::int64_t value) {
    return static_cast<std::int16_t>(std::clamp<std::int64_t>(
        value, std::numeric_limits<std::int16_t>::min(), std::numeric_limits<std::int16_t>::max()));
}

ShortRect RectAt(std::int64_t x, std::int64_t y, std::int32_t width, std::int32_t height) {
    return {ToShort(y), ToShort(x), ToShort(y + height), ToShort(x + width)};
}

// An output that the input does not reach everywhere: a cleared world of the output's size with the
// input at its own place becomes the render's input.
ScopedRaster PlaceInput(PluginHost_AE_Impl& host, PF_EffectWorld& input, PF_EffectWorld& output) {
    PluginRaster_AE_Impl inputRaster(&input, &host);
    PluginRaster_AE_Impl outputRaster(&output, &host);
    std::int32_t error = 0;
    const std::int32_t depth = DepthOfFormat(outputRaster.format(error));
    ThrowOnError(error);
    ScopedRaster placed(host, host.newWorld(outputRaster.width(), outputRaster.height(), depth,
                                            error, /*clear=*/true));
    ThrowOnError(error);
    if (!placed) throw HostError{kOutOfMemory};
    ThrowOnError(
        host.copyRectangle(inputRaster, *placed, RectAt(0, 0, input.width, input.height),
                           RectAt(input.origin_x, input.origin_y, input.width, input.height)));
    return placed;
}

PF_Err RenderPixels(PF_InData& in, PF_OutData& out, PF_SmartRenderExtra& extra,
                    CheckedOutParameters& parameters, PF_EffectWorld& input) {
    parameters.inputLayer() = input;
    PF_EffectWorld* output = nullptr;
    ThrowOnError(extra.cb->checkout_output(in.effect_ref, &output));
    // The host needs nothing drawn after all.
    if (output == nullptr) return PF_Err_NONE;

    PluginHost_AE_Impl host(&in, &out, parameters.array(), output);
    ScopedRaster placed;
    if (input.width != output->width || input.height != output->height) {
        placed = PlaceInput(host, input, *output);
        parameters.inputLayer() = *placed->asHostWorld()->world();
    }
    return RenderEntry(host);
}

PF_Err ClearOutput(PF_InData& in, PF_OutData& out, PF_SmartRenderExtra& extra) {
    PF_EffectWorld* output = nullptr;
    const PF_Err error = extra.cb->checkout_output(in.effect_ref, &output);
    if (error != PF_Err_NONE || output == nullptr) return error;
    PluginHost_AE_Impl host(&in, &out, nullptr, output);
    host.clearOutput();
    return PF_Err_NONE;
}

}  // namespace

PF_Err SmartPreRender(PF_InData& in, PF_PreRenderExtra& extra) {
    PF_RenderRequest request = extra.input->output_request;
    request.field = PF_Field_FRAME;
    request.preserve_rgb_of_zero_alpha = 1;

    // A check-out that fails may leave the result alone: then it is empty.
    PF_CheckoutResult input{};
    const PF_Err error =
        extra.cb->checkout_layer(in.effect_ref, kParamInput, kInputCheckoutId, &request,
                                 in.current_time, in.time_step, in.time_scale, &input);

    const PF_LRect layer{0, 0, Downsampled(in.width, in.downsample_x),
                         Downsampled(in.height, in.downsample_y)};
    extra.output->result_rect = Intersection(Union(input.result_rect, layer), request.rect);
    extra.output->max_result_rect = Union(input.max_result_rect, layer);
    return error;
}

PF_Err SmartRender(PF_InData& in, PF_OutData& out, PF_SmartRenderExtra& extra) try {
    CheckedOutParameters parameters(in);
    const PF_Err checkedOut = parameters.checkOut();
    if (checkedOut != PF_Err_NONE) return checkedOut;

    PF_Err result = PF_Err_NONE;
    try {
        PF_EffectWorld* input = nullptr;
        ThrowOnError(extra.cb->checkout_layer_pixels(in.effect_ref, kInputCheckoutId, &input));
        if (input == nullptr) {
            parameters.checkIn();
            return ClearOutput(in, out, extra);
        }
        result = RenderPixels(in, out, extra, parameters, *input);
    } catch (const HostError& failure) {
        result = failure.code;
    } catch (const std::bad_alloc&) {
        result = PF_Err_OUT_OF_MEMORY;
    } catch (...) {
        result = PF_Err_INTERNAL_STRUCT_DAMAGED;
    }
    parameters.checkIn();
    return result;
} catch (const std::bad_alloc&) {
    return PF_Err_OUT_OF_MEMORY;
}

}  // namespace vireon
