/// @file
/// Records of the commands: what comes with every command, and the extra records.
#pragma once

#include <cstdint>

#include "sdk/callbacks.h"
#include "sdk/layout.h"
#include "sdk/parameters.h"
#include "sdk/types.h"
#include "sdk/worlds.h"

namespace vireon::sdk {

struct SPBasicSuite;

/// Format of a piece of audio.
struct PF_SoundFormatInfo {
    double rateF;
    std::int16_t num_channels;
    std::int16_t format;
    std::int16_t sample_size;
};
VIREON_SDK_RECORD(PF_SoundFormatInfo, 16, 8);
VIREON_SDK_FIELD(PF_SoundFormatInfo, rateF, 0);
VIREON_SDK_FIELD(PF_SoundFormatInfo, num_channels, 8);
VIREON_SDK_FIELD(PF_SoundFormatInfo, format, 10);
VIREON_SDK_FIELD(PF_SoundFormatInfo, sample_size, 12);

/// A piece of audio.
struct PF_SoundWorld {
    PF_SoundFormatInfo fi;
    std::int32_t num_samples;
    void* dataP;
};
VIREON_SDK_RECORD(PF_SoundWorld, 32, 8);
VIREON_SDK_FIELD(PF_SoundWorld, fi, 0);
VIREON_SDK_FIELD(PF_SoundWorld, num_samples, 16);
VIREON_SDK_FIELD(PF_SoundWorld, dataP, 24);

/// What the host tells the effect with every command.
struct PF_InData {
    PF_InteractCallbacks inter;  ///< embedded
    PF_UtilCallbacks* utils;
    PF_ProgPtr effect_ref;  ///< given back to the host in callbacks
    std::int32_t quality;   ///< PF_Quality_*
    PF_SpecVersion version;
    std::int32_t serial_num;
    std::int32_t appl_id;     ///< see HostCode
    std::int32_t num_params;  ///< parameters, the input layer included
    std::int32_t reserved;
    std::int32_t what_cpu;
    std::int32_t what_fpu;
    std::int32_t current_time;  ///< 1 / time_scale seconds; may be negative
    std::int32_t time_step;     ///< may be 0 or negative
    std::int32_t total_time;
    std::int32_t local_time_step;  ///< never 0, may be negative
    std::uint32_t time_scale;
    std::int32_t field;  ///< PF_Field_*
    PF_Fixed shutter_angle;
    std::int32_t width;  ///< of the source layer at full resolution
    std::int32_t height;
    PF_LRect extent_hint;  ///< in coordinates of the input layer
    std::int32_t output_origin_x;
    std::int32_t output_origin_y;
    PF_RationalScale downsample_x;  ///< present resolution; den may be 0
    PF_RationalScale downsample_y;
    PF_RationalScale pixel_aspect_ratio;  ///< width over height of a pixel
    std::int32_t in_flags;                ///< PF_InFlag bits
    PF_Handle global_data;                ///< what the effect left at PF_Cmd_GLOBAL_SETUP
    PF_Handle sequence_data;
    PF_Handle frame_data;
    std::int32_t start_sampL;
    std::int32_t dur_sampL;
    std::int32_t total_sampL;
    PF_SoundWorld src_snd;
    SPBasicSuite* pica_basicP;  ///< null in hosts without suites
    std::int32_t pre_effect_source_origin_x;
    std::int32_t pre_effect_source_origin_y;
    PF_Fixed shutter_phase;
};
VIREON_SDK_RECORD(PF_InData, 408, 8);
VIREON_SDK_FIELD(PF_InData, inter, 0);
VIREON_SDK_FIELD(PF_InData, utils, 176);
VIREON_SDK_FIELD(PF_InData, effect_ref, 184);
VIREON_SDK_FIELD(PF_InData, quality, 192);
VIREON_SDK_FIELD(PF_InData, version, 196);
VIREON_SDK_FIELD(PF_InData, serial_num, 200);
VIREON_SDK_FIELD(PF_InData, appl_id, 204);
VIREON_SDK_FIELD(PF_InData, num_params, 208);
VIREON_SDK_FIELD(PF_InData, reserved, 212);
VIREON_SDK_FIELD(PF_InData, what_cpu, 216);
VIREON_SDK_FIELD(PF_InData, what_fpu, 220);
VIREON_SDK_FIELD(PF_InData, current_time, 224);
VIREON_SDK_FIELD(PF_InData, time_step, 228);
VIREON_SDK_FIELD(PF_InData, total_time, 232);
VIREON_SDK_FIELD(PF_InData, local_time_step, 236);
VIREON_SDK_FIELD(PF_InData, time_scale, 240);
VIREON_SDK_FIELD(PF_InData, field, 244);
VIREON_SDK_FIELD(PF_InData, shutter_angle, 248);
VIREON_SDK_FIELD(PF_InData, width, 252);
VIREON_SDK_FIELD(PF_InData, height, 256);
VIREON_SDK_FIELD(PF_InData, extent_hint, 260);
VIREON_SDK_FIELD(PF_InData, output_origin_x, 276);
VIREON_SDK_FIELD(PF_InData, output_origin_y, 280);
VIREON_SDK_FIELD(PF_InData, downsample_x, 284);
VIREON_SDK_FIELD(PF_InData, downsample_y, 292);
VIREON_SDK_FIELD(PF_InData, pixel_aspect_ratio, 300);
VIREON_SDK_FIELD(PF_InData, in_flags, 308);
VIREON_SDK_FIELD(PF_InData, global_data, 312);
VIREON_SDK_FIELD(PF_InData, sequence_data, 320);
VIREON_SDK_FIELD(PF_InData, frame_data, 328);
VIREON_SDK_FIELD(PF_InData, start_sampL, 336);
VIREON_SDK_FIELD(PF_InData, dur_sampL, 340);
VIREON_SDK_FIELD(PF_InData, total_sampL, 344);
VIREON_SDK_FIELD(PF_InData, src_snd, 352);
VIREON_SDK_FIELD(PF_InData, pica_basicP, 384);
VIREON_SDK_FIELD(PF_InData, pre_effect_source_origin_x, 392);
VIREON_SDK_FIELD(PF_InData, pre_effect_source_origin_y, 396);
VIREON_SDK_FIELD(PF_InData, shutter_phase, 400);

/// What the effect answers. Looked at after every command.
struct PF_OutData {
    std::uint32_t my_version;  ///< packed version of the effect
    char name[32];
    PF_Handle global_data;
    std::int32_t num_params;  ///< PF_Cmd_PARAMS_SETUP: parameters, the input layer included
    PF_Handle sequence_data;
    std::int32_t flat_sdata_size;
    PF_Handle frame_data;
    std::int32_t width;  ///< PF_Cmd_FRAME_SETUP only, like height and origin
    std::int32_t height;
    PF_Point origin;
    std::int32_t out_flags;  ///< PF_OutFlag bits; OR into it
    char return_msg[256];    ///< shown to the user
    std::int32_t start_sampL;
    std::int32_t dur_sampL;
    PF_SoundWorld dest_snd;
    std::int32_t out_flags2;  ///< PF_OutFlag2 bits; last in the record
};
VIREON_SDK_RECORD(PF_OutData, 408, 8);
VIREON_SDK_FIELD(PF_OutData, my_version, 0);
VIREON_SDK_FIELD(PF_OutData, name, 4);
VIREON_SDK_FIELD(PF_OutData, global_data, 40);
VIREON_SDK_FIELD(PF_OutData, num_params, 48);
VIREON_SDK_FIELD(PF_OutData, sequence_data, 56);
VIREON_SDK_FIELD(PF_OutData, flat_sdata_size, 64);
VIREON_SDK_FIELD(PF_OutData, frame_data, 72);
VIREON_SDK_FIELD(PF_OutData, width, 80);
VIREON_SDK_FIELD(PF_OutData, height, 84);
VIREON_SDK_FIELD(PF_OutData, origin, 88);
VIREON_SDK_FIELD(PF_OutData, out_flags, 96);
VIREON_SDK_FIELD(PF_OutData, return_msg, 100);
VIREON_SDK_FIELD(PF_OutData, start_sampL, 356);
VIREON_SDK_FIELD(PF_OutData, dur_sampL, 360);
VIREON_SDK_FIELD(PF_OutData, dest_snd, 368);
VIREON_SDK_FIELD(PF_OutData, out_flags2, 400);

/// The function that an effect library exports as `EntryPointFunc`. What extra points to depends on
/// the command; params ends with a null pointer and is null where a command carries none.
using EntryPoint = PF_Err (*)(std::int32_t cmd, PF_InData* in_data, PF_OutData* out_data,
                              PF_ParamDef** params, PF_EffectWorld* output, void* extra);

/// Extra record of PF_Cmd_USER_CHANGED_PARAM.
struct PF_UserChangedParamExtra {
    std::int32_t param_index;
};
VIREON_SDK_RECORD(PF_UserChangedParamExtra, 4, 4);
VIREON_SDK_FIELD(PF_UserChangedParamExtra, param_index, 0);

/// Which part of a layer is wanted, in layer coordinates at the present resolution.
struct PF_RenderRequest {
    PF_LRect rect;  ///< may be empty or reach beyond the layer
    std::int32_t field;
    std::int32_t channel_mask;              ///< PF_ChannelMask bits
    PF_Boolean preserve_rgb_of_zero_alpha;  ///< keep colour under transparency
    char unused[3];
    std::int32_t reserved[4];
};
VIREON_SDK_RECORD(PF_RenderRequest, 44, 4);
VIREON_SDK_FIELD(PF_RenderRequest, rect, 0);
VIREON_SDK_FIELD(PF_RenderRequest, field, 16);
VIREON_SDK_FIELD(PF_RenderRequest, channel_mask, 20);
VIREON_SDK_FIELD(PF_RenderRequest, preserve_rgb_of_zero_alpha, 24);
VIREON_SDK_FIELD(PF_RenderRequest, unused, 25);
VIREON_SDK_FIELD(PF_RenderRequest, reserved, 28);

/// What the host asks for in a pre-render.
struct PF_PreRenderInput {
    PF_RenderRequest output_request;
    std::int16_t bitdepth;  ///< 8, 16 or 32
    const void* gpu_data;   ///< from here on only since interface 13.16
    std::int32_t what_gpu;
    std::uint32_t device_index;
};
VIREON_SDK_RECORD(PF_PreRenderInput, 64, 8);
VIREON_SDK_FIELD(PF_PreRenderInput, output_request, 0);
VIREON_SDK_FIELD(PF_PreRenderInput, bitdepth, 44);
VIREON_SDK_FIELD(PF_PreRenderInput, gpu_data, 48);
VIREON_SDK_FIELD(PF_PreRenderInput, what_gpu, 56);
VIREON_SDK_FIELD(PF_PreRenderInput, device_index, 60);

/// What the effect answers to a pre-render; zeroed by the host beforehand.
struct PF_PreRenderOutput {
    PF_LRect result_rect;      ///< what the render will give
    PF_LRect max_result_rect;  ///< all that a render could ever give
    PF_Boolean solid;          ///< result is opaque
    PF_Boolean reserved;
    std::int16_t flags;     ///< PF_RenderOutputFlag bits
    void* pre_render_data;  ///< owned by the host afterwards
    void (*delete_pre_render_data_func)(void*);
};
VIREON_SDK_RECORD(PF_PreRenderOutput, 56, 8);
VIREON_SDK_FIELD(PF_PreRenderOutput, result_rect, 0);
VIREON_SDK_FIELD(PF_PreRenderOutput, max_result_rect, 16);
VIREON_SDK_FIELD(PF_PreRenderOutput, solid, 32);
VIREON_SDK_FIELD(PF_PreRenderOutput, reserved, 33);
VIREON_SDK_FIELD(PF_PreRenderOutput, flags, 34);
VIREON_SDK_FIELD(PF_PreRenderOutput, pre_render_data, 40);
VIREON_SDK_FIELD(PF_PreRenderOutput, delete_pre_render_data_func, 48);

/// What a layer announced in a pre-render will bring.
struct PF_CheckoutResult {
    PF_LRect result_rect;  ///< may be empty
    PF_LRect max_result_rect;
    PF_RationalScale par;  ///< pixel aspect ratio
    PF_Boolean solid;
    std::int8_t reservedB[3];
    std::int32_t ref_width;  ///< layer width at full resolution
    std::int32_t ref_height;
    std::int32_t reserved[6];  ///< part of the record; leave room for it
};
VIREON_SDK_RECORD(PF_CheckoutResult, 76, 4);
VIREON_SDK_FIELD(PF_CheckoutResult, result_rect, 0);
VIREON_SDK_FIELD(PF_CheckoutResult, max_result_rect, 16);
VIREON_SDK_FIELD(PF_CheckoutResult, par, 32);
VIREON_SDK_FIELD(PF_CheckoutResult, solid, 40);
VIREON_SDK_FIELD(PF_CheckoutResult, reservedB, 41);
VIREON_SDK_FIELD(PF_CheckoutResult, ref_width, 44);
VIREON_SDK_FIELD(PF_CheckoutResult, ref_height, 48);
VIREON_SDK_FIELD(PF_CheckoutResult, reserved, 52);

/// Callbacks of the pre-render.
struct PF_PreRenderCallbacks {
    PF_Err (*checkout_layer)(PF_ProgPtr effect_ref, std::int32_t index, std::int32_t checkout_id,
                             const PF_RenderRequest* request, std::int32_t time,
                             std::int32_t time_step, std::uint32_t time_scale,
                             PF_CheckoutResult* out_result);
    /// only since interface 13.9
    PF_Err (*GuidMixInPtr)(PF_ProgPtr effect_ref, std::uint32_t byte_count, const void* bytes);
};
VIREON_SDK_RECORD(PF_PreRenderCallbacks, 16, 8);
VIREON_SDK_FIELD(PF_PreRenderCallbacks, checkout_layer, 0);
VIREON_SDK_FIELD(PF_PreRenderCallbacks, GuidMixInPtr, 8);

/// Extra record of PF_Cmd_SMART_PRE_RENDER.
struct PF_PreRenderExtra {
    PF_PreRenderInput* input;
    PF_PreRenderOutput* output;
    PF_PreRenderCallbacks* cb;
};
VIREON_SDK_RECORD(PF_PreRenderExtra, 24, 8);
VIREON_SDK_FIELD(PF_PreRenderExtra, input, 0);
VIREON_SDK_FIELD(PF_PreRenderExtra, output, 8);
VIREON_SDK_FIELD(PF_PreRenderExtra, cb, 16);

/// What the host asks for in a smart render: the request of the pre-render before it.
struct PF_SmartRenderInput {
    PF_RenderRequest output_request;
    std::int16_t bitdepth;  ///< 8, 16 or 32
    void* pre_render_data;  ///< as the pre-render left it
    const void* gpu_data;
    std::int32_t what_gpu;
    std::uint32_t device_index;
};
VIREON_SDK_RECORD(PF_SmartRenderInput, 72, 8);
VIREON_SDK_FIELD(PF_SmartRenderInput, output_request, 0);
VIREON_SDK_FIELD(PF_SmartRenderInput, bitdepth, 44);
VIREON_SDK_FIELD(PF_SmartRenderInput, pre_render_data, 48);
VIREON_SDK_FIELD(PF_SmartRenderInput, gpu_data, 56);
VIREON_SDK_FIELD(PF_SmartRenderInput, what_gpu, 64);
VIREON_SDK_FIELD(PF_SmartRenderInput, device_index, 68);

/// Callbacks of the smart render. Worlds come as pointers and may be null with success.
struct PF_SmartRenderCallbacks {
    PF_Err (*checkout_layer_pixels)(PF_ProgPtr effect_ref, std::int32_t checkout_id,
                                    PF_EffectWorld** out_world_pointer);
    /// Optional; the host cleans up after the command.
    PF_Err (*checkin_layer_pixels)(PF_ProgPtr effect_ref, std::int32_t checkout_id);
    PF_Err (*checkout_output)(PF_ProgPtr effect_ref, PF_EffectWorld** out_world_pointer);
};
VIREON_SDK_RECORD(PF_SmartRenderCallbacks, 24, 8);
VIREON_SDK_FIELD(PF_SmartRenderCallbacks, checkout_layer_pixels, 0);
VIREON_SDK_FIELD(PF_SmartRenderCallbacks, checkin_layer_pixels, 8);
VIREON_SDK_FIELD(PF_SmartRenderCallbacks, checkout_output, 16);

/// Extra record of PF_Cmd_SMART_RENDER.
struct PF_SmartRenderExtra {
    PF_SmartRenderInput* input;
    PF_SmartRenderCallbacks* cb;
};
VIREON_SDK_RECORD(PF_SmartRenderExtra, 16, 8);
VIREON_SDK_FIELD(PF_SmartRenderExtra, input, 0);
VIREON_SDK_FIELD(PF_SmartRenderExtra, cb, 8);

}  // namespace vireon::sdk
