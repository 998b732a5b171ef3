// An effect that misbehaves on demand, to see what becomes of the programs that host it.

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <thread>

#include "sdk/sdk.h"

#if defined(_WIN32)
#define FAKE_EFFECT_EXPORT extern "C" __declspec(dllexport)
#else
#define FAKE_EFFECT_EXPORT extern "C" __attribute__((visibility("default")))
#endif

namespace {

using namespace vireon::sdk;

/// The choices of the Behaviour popup, in order.
enum Behaviour : std::int32_t {
    kCopy = 1,
    kInvert,
    kCrash,
    kAbortProcess,
    kExit,
    kHang,
    kWritePast,
    kLeak,
    kFail,
    kPrint,
    kReport,
    kSlow,
    kSeparator,
    kStubborn,
    kThrow,
    kFade,
    kBrief,
};
constexpr char kBehaviours[] =
    "Copy|Invert|Crash|Abort Process|Exit|Hang|Write Past|Leak|Fail|Print|Report|Slow|(-|Stubborn|"
    "Throw|Fade|Brief";

enum Index : std::int32_t {
    kBehaviourIndex = 1,
    kRadiusIndex,
    kGroupIndex,
    kOpacityIndex,
    kEnableIndex,
    kCenterIndex,
    kMaskIndex,
    kDepthIndex,
    kGroupEndIndex,
    kParameterCount,
};

PF_ParamDef Parameter(std::int32_t id, std::int32_t kind, const char* name) {
    PF_ParamDef def{};
    def.uu.id = id;
    def.param_type = kind;
    std::snprintf(def.name, sizeof def.name, "%s", name);
    return def;
}

PF_ParamDef FloatSlider(std::int32_t id, const char* name, float max, float dephault) {
    PF_ParamDef def = Parameter(id, PF_Param_FLOAT_SLIDER, name);
    def.u.fs_d.valid_max = max;
    def.u.fs_d.slider_max = max;
    def.u.fs_d.dephault = dephault;
    def.u.fs_d.value = static_cast<double>(dephault);
    def.u.fs_d.precision = 2;
    return def;
}

PF_Err AddParameters(PF_InData* in, PF_OutData* out) {
    PF_ParamDef behaviour = Parameter(1, PF_Param_POPUP, "Behaviour");
    behaviour.u.pd.num_choices = kBrief;
    behaviour.u.pd.dephault = kCopy;
    behaviour.u.pd.value = kCopy;
    behaviour.u.pd.u.namesptr = kBehaviours;
    PF_ParamDef opacity = Parameter(4, PF_Param_FIX_SLIDER, "Opacity");
    opacity.u.fd.valid_max = 100 << 16;
    opacity.u.fd.slider_max = 100 << 16;
    opacity.u.fd.dephault = 100 << 16;
    opacity.u.fd.value = 100 << 16;
    opacity.u.fd.precision = 1;
    PF_ParamDef enable = Parameter(5, PF_Param_CHECKBOX, "Enable");
    enable.u.bd.u.nameptr = "";
    PF_ParamDef center = Parameter(6, PF_Param_POINT, "Center");
    center.u.td.x_dephault = 50 << 16;
    center.u.td.y_dephault = 50 << 16;
    center.u.td.x_value = 50 << 16;
    center.u.td.y_value = 50 << 16;
    PF_ParamDef mask = Parameter(7, PF_Param_LAYER, "Mask Layer");

    PF_ParamDef definitions[] = {
        behaviour,
        FloatSlider(2, "Glow Radius", 5000, 100),
        Parameter(3, PF_Param_GROUP_START, "Extra"),
        opacity,
        enable,
        center,
        mask,
        FloatSlider(8, "Depth", 10, 1),
        Parameter(9, PF_Param_GROUP_END, ""),
    };
    for (PF_ParamDef& def : definitions) {
        const PF_Err error = in->inter.add_param(in->effect_ref, -1, &def);
        if (error != 0) {
            return error;
        }
    }
    out->num_params = kParameterCount;
    return PF_Err_NONE;
}

struct Settings {
    PF_ParamDef values[kParameterCount] = {};
};

PF_Err ReadSettings(PF_InData* in, Settings& settings) {
    for (std::int32_t i = 1; i < kParameterCount; ++i) {
        const PF_Err error =
            in->inter.checkout_param(in->effect_ref, i, in->current_time, in->time_step,
                                     in->time_scale, &settings.values[i]);
        if (error != 0) {
            return error;
        }
    }
    return PF_Err_NONE;
}

void GiveBack(PF_InData* in, Settings& settings) {
    for (std::int32_t i = 1; i < kParameterCount; ++i) {
        in->inter.checkin_param(in->effect_ref, &settings.values[i]);
    }
}

void Copy(const PF_EffectWorld& from, PF_EffectWorld& to, std::int32_t pixelSize, bool invert,
          bool fade) {
    for (std::int32_t y = 0; y < to.height; ++y) {
        const auto* const source =
            static_cast<const char*>(from.data) + static_cast<std::ptrdiff_t>(y) * from.rowbytes;
        auto* const target =
            static_cast<char*>(to.data) + static_cast<std::ptrdiff_t>(y) * to.rowbytes;
        std::memcpy(target, source,
                    static_cast<std::size_t>(to.width) * static_cast<std::size_t>(pixelSize));
        if (pixelSize == 4) {
            auto* const pixels = reinterpret_cast<PF_Pixel8*>(target);
            for (std::int32_t x = 0; x < to.width && invert; ++x) {
                pixels[x].red = static_cast<std::uint8_t>(255 - pixels[x].red);
            }
            for (std::int32_t x = 0; x < to.width && fade; ++x) {
                pixels[x].alpha = 128;
            }
        }
    }
}

/// Answers the first non-zero progress result, when it is obeyed. Says when it begins.
PF_Err TakeTime(PF_InData* in, bool obey, int steps) {
    std::fprintf(stderr, "the effect begins\n");
    for (int i = 0; i <= steps; ++i) {
        const PF_Err error = in->inter.progress(in->effect_ref, i, steps);
        if (error != 0 && obey) {
            return error;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return PF_Err_NONE;
}

void Report(const PF_InData& in, const Settings& settings, const PF_EffectWorld& input,
            PF_OutData& out) {
    const auto& values = settings.values;
    std::snprintf(out.return_msg, sizeof out.return_msg,
                  "radius=%g opacity=%g enable=%d center=%g,%g mask=%dx%d depth=%g input=%dx%d "
                  "full=%dx%d scale=%d/%u,%d/%u aspect=%d/%u quality=%d",
                  values[kRadiusIndex].u.fs_d.value, values[kOpacityIndex].u.fd.value / 65536.0,
                  values[kEnableIndex].u.bd.value, values[kCenterIndex].u.td.x_value / 65536.0,
                  values[kCenterIndex].u.td.y_value / 65536.0, values[kMaskIndex].u.ld.width,
                  values[kMaskIndex].u.ld.height, values[kDepthIndex].u.fs_d.value, input.width,
                  input.height, in.width, in.height, in.downsample_x.num, in.downsample_x.den,
                  in.downsample_y.num, in.downsample_y.den, in.pixel_aspect_ratio.num,
                  in.pixel_aspect_ratio.den, in.quality);
}

PF_Err Draw(PF_InData* in, PF_OutData* out, const Settings& settings, const PF_EffectWorld& input,
            PF_EffectWorld& output, std::int32_t pixelSize) {
    const std::int32_t behaviour = settings.values[kBehaviourIndex].u.pd.value;
    Copy(input, output, pixelSize, behaviour == kInvert, behaviour == kFade);
    switch (behaviour) {
        case kCrash: {
            volatile int* volatile nowhere = nullptr;
            *nowhere = 1;
            return PF_Err_NONE;
        }
        case kAbortProcess: std::abort();
        case kExit: std::_Exit(0);
        case kHang:
            for (;;) {
                std::this_thread::sleep_for(std::chrono::seconds(1));
            }
        case kWritePast:
            static_cast<char*>(output.data)[output.width * pixelSize] ^= 0x55;
            return PF_Err_NONE;
        case kLeak: in->utils->host_new_handle(64); return PF_Err_NONE;
        case kFail:
            std::snprintf(out->return_msg, sizeof out->return_msg, "No glow today.");
            out->out_flags |= PF_OutFlag_DISPLAY_ERROR_MESSAGE;
            return PF_Err_INTERNAL_STRUCT_DAMAGED;
        case kPrint:
            std::printf("chatter of the effect\n");
            std::fflush(stdout);
            return PF_Err_NONE;
        case kReport: Report(*in, settings, input, *out); return PF_Err_BAD_CALLBACK_PARAM;
        case kSlow: return TakeTime(in, true, 1000);
        case kBrief: return TakeTime(in, true, 20);
        case kStubborn: return TakeTime(in, false, 1000);
        case kThrow: throw std::runtime_error("thrown by the effect");
        default: return PF_Err_NONE;
    }
}

PF_Err PreRender(PF_InData* in, PF_PreRenderExtra* extra) {
    PF_RenderRequest request = extra->input->output_request;
    PF_CheckoutResult result{};
    const PF_Err error = extra->cb->checkout_layer(in->effect_ref, 0, 0, &request, in->current_time,
                                                   in->time_step, in->time_scale, &result);
    extra->output->result_rect = result.result_rect;
    extra->output->max_result_rect = result.max_result_rect;
    return error;
}

PF_Err SmartRender(PF_InData* in, PF_OutData* out, PF_SmartRenderExtra* extra) {
    Settings settings;
    PF_Err error = ReadSettings(in, settings);
    PF_EffectWorld* input = nullptr;
    PF_EffectWorld* output = nullptr;
    if (error == 0) {
        error = extra->cb->checkout_layer_pixels(in->effect_ref, 0, &input);
    }
    if (error == 0) {
        error = extra->cb->checkout_output(in->effect_ref, &output);
    }
    if (error == 0 && input != nullptr && output != nullptr) {
        error = Draw(in, out, settings, *input, *output, extra->input->bitdepth / 2);
    }
    GiveBack(in, settings);
    return error;
}

PF_Err Render(PF_InData* in, PF_OutData* out, PF_ParamDef** params, PF_EffectWorld* output) {
    Settings settings;
    const PF_Err error = ReadSettings(in, settings);
    const PF_Err drawn = error != 0 ? error
                                    : Draw(in, out, settings, params[0]->u.ld, *output,
                                           (output->world_flags & PF_WorldFlag_DEEP) != 0 ? 8 : 4);
    GiveBack(in, settings);
    return drawn;
}

}  // namespace

FAKE_EFFECT_EXPORT PF_Err EntryPointFunc(std::int32_t cmd, PF_InData* in_data, PF_OutData* out_data,
                                         PF_ParamDef** params, PF_EffectWorld* output,
                                         void* extra) {
    switch (cmd) {
        case PF_Cmd_ABOUT:
            std::snprintf(out_data->return_msg, sizeof out_data->return_msg,
                          "Fake Effect. Misbehaves on demand.");
            return PF_Err_NONE;
        case PF_Cmd_GLOBAL_SETUP:
            out_data->my_version = 2u << PF_Vers_VERS_SHIFT | 3u << PF_Vers_SUBVERS_SHIFT |
                                   4u << PF_Vers_BUGFIX_SHIFT | 1u << PF_Vers_STAGE_SHIFT | 7u;
            out_data->out_flags |= PF_OutFlag_DEEP_COLOR_AWARE;
            out_data->out_flags2 =
                PF_OutFlag2_SUPPORTS_SMART_RENDER | PF_OutFlag2_FLOAT_COLOR_AWARE;
            return PF_Err_NONE;
        case PF_Cmd_PARAMS_SETUP: return AddParameters(in_data, out_data);
        case PF_Cmd_RENDER: return Render(in_data, out_data, params, output);
        case PF_Cmd_SMART_PRE_RENDER:
            return PreRender(in_data, static_cast<PF_PreRenderExtra*>(extra));
        case PF_Cmd_SMART_RENDER:
            return SmartRender(in_data, out_data, static_cast<PF_SmartRenderExtra*>(extra));
        default: return PF_Err_NONE;
    }
}
