/// @file
/// Callbacks that the host hands out with every command. Slots are never null.
/// Pointers named ..._or_null may be null, all others must be valid.
#pragma once

#include <cstdint>

#include "sdk/layout.h"
#include "sdk/parameters.h"
#include "sdk/types.h"
#include "sdk/worlds.h"

namespace vireon::sdk {

struct PF_InData;

/// What the effect tells about its custom user interface.
struct PF_CustomUIInfo {
    std::int32_t reserved;
    std::int32_t events;
    std::int32_t comp_ui_width;
    std::int32_t comp_ui_height;
    std::int32_t comp_ui_alignment;
    std::int32_t layer_ui_width;
    std::int32_t layer_ui_height;
    std::int32_t layer_ui_alignment;
    std::int32_t preview_ui_width;
    std::int32_t preview_ui_height;
    std::int32_t preview_ui_alignment;
};
VIREON_SDK_RECORD(PF_CustomUIInfo, 44, 4);
VIREON_SDK_FIELD(PF_CustomUIInfo, reserved, 0);
VIREON_SDK_FIELD(PF_CustomUIInfo, events, 4);
VIREON_SDK_FIELD(PF_CustomUIInfo, comp_ui_width, 8);
VIREON_SDK_FIELD(PF_CustomUIInfo, comp_ui_height, 12);
VIREON_SDK_FIELD(PF_CustomUIInfo, comp_ui_alignment, 16);
VIREON_SDK_FIELD(PF_CustomUIInfo, layer_ui_width, 20);
VIREON_SDK_FIELD(PF_CustomUIInfo, layer_ui_height, 24);
VIREON_SDK_FIELD(PF_CustomUIInfo, layer_ui_alignment, 28);
VIREON_SDK_FIELD(PF_CustomUIInfo, preview_ui_width, 32);
VIREON_SDK_FIELD(PF_CustomUIInfo, preview_ui_height, 36);
VIREON_SDK_FIELD(PF_CustomUIInfo, preview_ui_alignment, 40);

/// Callbacks about parameters, progress and audio, embedded in PF_InData.
struct PF_InteractCallbacks {
    /// Writes the value at a time into the caller's zeroed record; pair with checkin_param.
    PF_Err (*checkout_param)(PF_ProgPtr effect_ref, std::int32_t index, std::int32_t time,
                             std::int32_t time_step, std::uint32_t time_scale,
                             PF_ParamDef* out_param);
    PF_Err (*checkin_param)(PF_ProgPtr effect_ref, PF_ParamDef* param);
    /// index -1 appends; record and texts are copied.
    PF_Err (*add_param)(PF_ProgPtr effect_ref, std::int32_t index, PF_ParamDef* def);
    /// Not 0: give up and return that code.
    PF_Err (*abort)(PF_ProgPtr effect_ref);
    /// As abort, and shows current / total.
    PF_Err (*progress)(PF_ProgPtr effect_ref, std::int32_t current, std::int32_t total);
    PF_Err (*register_ui)(PF_ProgPtr effect_ref, PF_CustomUIInfo* ui_info);
    PF_Err (*checkout_layer_audio)(PF_ProgPtr effect_ref, std::int32_t index,
                                   std::int32_t start_time, std::int32_t duration,
                                   std::uint32_t time_scale, std::uint32_t rate,
                                   std::int32_t bytes_per_sample, std::int32_t channels,
                                   std::int32_t signed_format, void** out_audio);
    PF_Err (*checkin_layer_audio)(PF_ProgPtr effect_ref, void* audio);
    PF_Err (*get_audio_data)(PF_ProgPtr effect_ref, void* audio, void** out_data,
                             std::int32_t* out_samples, std::uint32_t* out_rate,
                             std::int32_t* out_bytes_per_sample, std::int32_t* out_channels,
                             std::int32_t* out_signed);
    void* reserved_str[3];
    void* reserved[10];
};
VIREON_SDK_RECORD(PF_InteractCallbacks, 176, 8);
VIREON_SDK_FIELD(PF_InteractCallbacks, checkout_param, 0);
VIREON_SDK_FIELD(PF_InteractCallbacks, checkin_param, 8);
VIREON_SDK_FIELD(PF_InteractCallbacks, add_param, 16);
VIREON_SDK_FIELD(PF_InteractCallbacks, abort, 24);
VIREON_SDK_FIELD(PF_InteractCallbacks, progress, 32);
VIREON_SDK_FIELD(PF_InteractCallbacks, register_ui, 40);
VIREON_SDK_FIELD(PF_InteractCallbacks, checkout_layer_audio, 48);
VIREON_SDK_FIELD(PF_InteractCallbacks, checkin_layer_audio, 56);
VIREON_SDK_FIELD(PF_InteractCallbacks, get_audio_data, 64);
VIREON_SDK_FIELD(PF_InteractCallbacks, reserved_str, 72);
VIREON_SDK_FIELD(PF_InteractCallbacks, reserved, 96);

/// The host's C library, embedded in PF_UtilCallbacks.
struct PF_ANSICallbacks {
    double (*atan)(double x);
    double (*atan2)(double y, double x);
    double (*ceil)(double x);
    double (*cos)(double x);
    double (*exp)(double x);
    double (*fabs)(double x);
    double (*floor)(double x);
    double (*fmod)(double x, double y);
    double (*hypot)(double x, double y);
    double (*log)(double x);
    double (*log10)(double x);
    double (*pow)(double x, double y);
    double (*sin)(double x);
    double (*sqrt)(double x);
    double (*tan)(double x);
    std::int32_t (*sprintf)(char* out, const char* format, ...);
    char* (*strcpy)(char* out, const char* text);
    double (*asin)(double x);
    double (*acos)(double x);
    std::int32_t unused_longA[1];  ///< four bytes of padding follow
};
VIREON_SDK_RECORD(PF_ANSICallbacks, 160, 8);
VIREON_SDK_FIELD(PF_ANSICallbacks, atan, 0);
VIREON_SDK_FIELD(PF_ANSICallbacks, atan2, 8);
VIREON_SDK_FIELD(PF_ANSICallbacks, ceil, 16);
VIREON_SDK_FIELD(PF_ANSICallbacks, cos, 24);
VIREON_SDK_FIELD(PF_ANSICallbacks, exp, 32);
VIREON_SDK_FIELD(PF_ANSICallbacks, fabs, 40);
VIREON_SDK_FIELD(PF_ANSICallbacks, floor, 48);
VIREON_SDK_FIELD(PF_ANSICallbacks, fmod, 56);
VIREON_SDK_FIELD(PF_ANSICallbacks, hypot, 64);
VIREON_SDK_FIELD(PF_ANSICallbacks, log, 72);
VIREON_SDK_FIELD(PF_ANSICallbacks, log10, 80);
VIREON_SDK_FIELD(PF_ANSICallbacks, pow, 88);
VIREON_SDK_FIELD(PF_ANSICallbacks, sin, 96);
VIREON_SDK_FIELD(PF_ANSICallbacks, sqrt, 104);
VIREON_SDK_FIELD(PF_ANSICallbacks, tan, 112);
VIREON_SDK_FIELD(PF_ANSICallbacks, sprintf, 120);
VIREON_SDK_FIELD(PF_ANSICallbacks, strcpy, 128);
VIREON_SDK_FIELD(PF_ANSICallbacks, asin, 136);
VIREON_SDK_FIELD(PF_ANSICallbacks, acos, 144);
VIREON_SDK_FIELD(PF_ANSICallbacks, unused_longA, 152);

/// Colour conversions, embedded in PF_UtilCallbacks.
struct PF_ColorCallbacks {
    PF_Err (*RGBtoHLS)(PF_ProgPtr effect_ref, PF_Pixel* rgb, std::int32_t* out_hls);
    PF_Err (*HLStoRGB)(PF_ProgPtr effect_ref, std::int32_t* hls, PF_Pixel* out_rgb);
    PF_Err (*RGBtoYIQ)(PF_ProgPtr effect_ref, PF_Pixel* rgb, std::int32_t* out_yiq);
    PF_Err (*YIQtoRGB)(PF_ProgPtr effect_ref, std::int32_t* yiq, PF_Pixel* out_rgb);
    PF_Err (*Luminance)(PF_ProgPtr effect_ref, PF_Pixel* rgb, std::int32_t* out_value);
    PF_Err (*Hue)(PF_ProgPtr effect_ref, PF_Pixel* rgb, std::int32_t* out_value);
    PF_Err (*Lightness)(PF_ProgPtr effect_ref, PF_Pixel* rgb, std::int32_t* out_value);
    PF_Err (*Saturation)(PF_ProgPtr effect_ref, PF_Pixel* rgb, std::int32_t* out_value);
};
VIREON_SDK_RECORD(PF_ColorCallbacks, 64, 8);
VIREON_SDK_FIELD(PF_ColorCallbacks, RGBtoHLS, 0);
VIREON_SDK_FIELD(PF_ColorCallbacks, HLStoRGB, 8);
VIREON_SDK_FIELD(PF_ColorCallbacks, RGBtoYIQ, 16);
VIREON_SDK_FIELD(PF_ColorCallbacks, YIQtoRGB, 24);
VIREON_SDK_FIELD(PF_ColorCallbacks, Luminance, 32);
VIREON_SDK_FIELD(PF_ColorCallbacks, Hue, 40);
VIREON_SDK_FIELD(PF_ColorCallbacks, Lightness, 48);
VIREON_SDK_FIELD(PF_ColorCallbacks, Saturation, 56);

/// Utility callbacks. The handle functions and the pixel-data functions take no effect reference.
struct PF_UtilCallbacks {
    PF_Err (*begin_sampling)(PF_ProgPtr effect_ref, std::int32_t quality, std::int32_t mode_flags,
                             PF_SampPB* params);
    PF_Err (*subpixel_sample)(PF_ProgPtr effect_ref, std::int32_t x, std::int32_t y,
                              const PF_SampPB* params, PF_Pixel* out_pixel);
    PF_Err (*area_sample)(PF_ProgPtr effect_ref, std::int32_t x, std::int32_t y,
                          const PF_SampPB* params, PF_Pixel* out_pixel);
    void* get_batch_func_is_deprecated;  ///< dead slot
    PF_Err (*end_sampling)(PF_ProgPtr effect_ref, std::int32_t quality, std::int32_t mode_flags,
                           PF_SampPB* params);
    PF_Err (*composite_rect)(PF_ProgPtr effect_ref, PF_LRect* src_rect, std::int32_t opacity,
                             PF_EffectWorld* source, std::int32_t dst_x, std::int32_t dst_y,
                             std::int32_t field, std::int32_t transfer_mode, PF_EffectWorld* dst);
    PF_Err (*blend)(PF_ProgPtr effect_ref, const PF_EffectWorld* source1,
                    const PF_EffectWorld* source2, std::int32_t ratio, PF_EffectWorld* dst);
    PF_Err (*convolve)(PF_ProgPtr effect_ref, PF_EffectWorld* source, const PF_LRect* area,
                       std::uint32_t kernel_flags, std::int32_t kernel_size, void* a_kernel,
                       void* r_kernel, void* g_kernel, void* b_kernel, PF_EffectWorld* dst);
    /// Copies pixels between worlds of one depth; null rectangles mean the whole world.
    PF_Err (*copy)(PF_ProgPtr effect_ref, PF_EffectWorld* source, PF_EffectWorld* dst,
                   PF_LRect* source_rect, PF_LRect* dst_rect);
    /// A null colour clears all four channels, a null rectangle means the whole world.
    PF_Err (*fill)(PF_ProgPtr effect_ref, const PF_Pixel* colour, const PF_LRect* dst_rect,
                   PF_EffectWorld* world);
    PF_Err (*gaussian_kernel)(PF_ProgPtr effect_ref, double radius, std::uint32_t kernel_flags,
                              double multiplier, std::int32_t* out_diameter, void* out_kernel);
    PF_Err (*iterate)(PF_InData* in_data, std::int32_t progress_base, std::int32_t progress_final,
                      PF_EffectWorld* source, const PF_LRect* area, void* refcon,
                      PF_Err (*pixel_fn)(void*, std::int32_t, std::int32_t, PF_Pixel*, PF_Pixel*),
                      PF_EffectWorld* dst);
    PF_Err (*premultiply)(PF_ProgPtr effect_ref, std::int32_t forward, PF_EffectWorld* dst);
    PF_Err (*premultiply_color)(PF_ProgPtr effect_ref, PF_EffectWorld* source,
                                const PF_Pixel* colour, std::int32_t forward, PF_EffectWorld* dst);
    /// flags: PF_NewWorldFlag bits; cannot make float worlds.
    PF_Err (*new_world)(PF_ProgPtr effect_ref, std::int32_t width, std::int32_t height,
                        std::int32_t flags, PF_EffectWorld* out_world);
    PF_Err (*dispose_world)(PF_ProgPtr effect_ref, PF_EffectWorld* world);
    PF_Err (*iterate_origin)(PF_InData* in_data, std::int32_t progress_base,
                             std::int32_t progress_final, PF_EffectWorld* source,
                             const PF_LRect* area, const PF_Point* origin, void* refcon,
                             PF_Err (*pixel_fn)(void*, std::int32_t, std::int32_t, PF_Pixel*,
                                                PF_Pixel*),
                             PF_EffectWorld* dst);
    PF_Err (*iterate_lut)(PF_InData* in_data, std::int32_t progress_base,
                          std::int32_t progress_final, PF_EffectWorld* source, const PF_LRect* area,
                          std::uint8_t* a_table, std::uint8_t* r_table, std::uint8_t* g_table,
                          std::uint8_t* b_table, PF_EffectWorld* dst);
    PF_Err (*transfer_rect)(PF_ProgPtr effect_ref, std::int32_t quality, std::int32_t mode_flags,
                            std::int32_t field, const PF_LRect* source_rect,
                            const PF_EffectWorld* source, const PF_CompositeMode* comp_mode,
                            const PF_MaskWorld* mask_or_null, std::int32_t dst_x,
                            std::int32_t dst_y, PF_EffectWorld* dst);
    PF_Err (*transform_world)(PF_ProgPtr effect_ref, std::int32_t quality, std::int32_t mode_flags,
                              std::int32_t field, const PF_EffectWorld* source,
                              const PF_CompositeMode* comp_mode, const PF_MaskWorld* mask_or_null,
                              const PF_FloatMatrix* matrices, std::int32_t matrix_count,
                              PF_Boolean source_to_dst, const PF_LRect* dst_rect,
                              PF_EffectWorld* dst);
    PF_Handle (*host_new_handle)(std::uint64_t size);
    void* (*host_lock_handle)(PF_Handle handle);
    void (*host_unlock_handle)(PF_Handle handle);
    void (*host_dispose_handle)(PF_Handle handle);
    PF_Err (*get_callback_addr)(PF_ProgPtr effect_ref, std::int32_t quality,
                                std::int32_t mode_flags, std::int32_t which, void** out_function);
    PF_Err (*app)(PF_ProgPtr effect_ref, std::int32_t selector, ...);
    PF_ANSICallbacks ansi;      ///< embedded
    PF_ColorCallbacks colorCB;  ///< embedded
    /// out_data is what the PF_PlatData_* selector asks for.
    PF_Err (*get_platform_data)(PF_ProgPtr effect_ref, std::int32_t which, void* out_data);
    std::uint64_t (*host_get_handle_size)(PF_Handle handle);
    PF_Err (*iterate_origin_non_clip_src)(
        PF_InData* in_data, std::int32_t progress_base, std::int32_t progress_final,
        PF_EffectWorld* source, const PF_LRect* area, const PF_Point* origin, void* refcon,
        PF_Err (*pixel_fn)(void*, std::int32_t, std::int32_t, PF_Pixel*, PF_Pixel*),
        PF_EffectWorld* dst);
    PF_Err (*iterate_generic)(std::int32_t count, void* refcon,
                              PF_Err (*fn)(void*, std::int32_t, std::int32_t, std::int32_t));
    PF_Err (*host_resize_handle)(std::uint64_t new_size, PF_Handle* handle_address);
    PF_Err (*subpixel_sample16)(PF_ProgPtr effect_ref, std::int32_t x, std::int32_t y,
                                const PF_SampPB* params, PF_Pixel16* out_pixel);
    PF_Err (*area_sample16)(PF_ProgPtr effect_ref, std::int32_t x, std::int32_t y,
                            const PF_SampPB* params, PF_Pixel16* out_pixel);
    PF_Err (*fill16)(PF_ProgPtr effect_ref, const PF_Pixel16* colour, const PF_LRect* dst_rect,
                     PF_EffectWorld* world);
    PF_Err (*premultiply_color16)(PF_ProgPtr effect_ref, PF_EffectWorld* source,
                                  const PF_Pixel16* colour, std::int32_t forward,
                                  PF_EffectWorld* dst);
    PF_Err (*iterate16)(PF_InData* in_data, std::int32_t progress_base, std::int32_t progress_final,
                        PF_EffectWorld* source, const PF_LRect* area, void* refcon,
                        PF_Err (*pixel_fn)(void*, std::int32_t, std::int32_t, PF_Pixel16*,
                                           PF_Pixel16*),
                        PF_EffectWorld* dst);
    PF_Err (*iterate_origin16)(PF_InData* in_data, std::int32_t progress_base,
                               std::int32_t progress_final, PF_EffectWorld* source,
                               const PF_LRect* area, const PF_Point* origin, void* refcon,
                               PF_Err (*pixel_fn)(void*, std::int32_t, std::int32_t, PF_Pixel16*,
                                                  PF_Pixel16*),
                               PF_EffectWorld* dst);
    PF_Err (*iterate_origin_non_clip_src16)(
        PF_InData* in_data, std::int32_t progress_base, std::int32_t progress_final,
        PF_EffectWorld* source, const PF_LRect* area, const PF_Point* origin, void* refcon,
        PF_Err (*pixel_fn)(void*, std::int32_t, std::int32_t, PF_Pixel16*, PF_Pixel16*),
        PF_EffectWorld* dst);
    /// Writes null for a world of another depth; so does the 16-bit sibling.
    PF_Err (*get_pixel_data8)(PF_EffectWorld* world, void* pixel_or_null, PF_Pixel** out_pixels);
    PF_Err (*get_pixel_data16)(PF_EffectWorld* world, void* pixel_or_null, PF_Pixel16** out_pixels);
    std::int32_t reserved[1];  ///< four bytes of padding follow
};
VIREON_SDK_RECORD(PF_UtilCallbacks, 552, 8);
VIREON_SDK_FIELD(PF_UtilCallbacks, begin_sampling, 0);
VIREON_SDK_FIELD(PF_UtilCallbacks, subpixel_sample, 8);
VIREON_SDK_FIELD(PF_UtilCallbacks, area_sample, 16);
VIREON_SDK_FIELD(PF_UtilCallbacks, get_batch_func_is_deprecated, 24);
VIREON_SDK_FIELD(PF_UtilCallbacks, end_sampling, 32);
VIREON_SDK_FIELD(PF_UtilCallbacks, composite_rect, 40);
VIREON_SDK_FIELD(PF_UtilCallbacks, blend, 48);
VIREON_SDK_FIELD(PF_UtilCallbacks, convolve, 56);
VIREON_SDK_FIELD(PF_UtilCallbacks, copy, 64);
VIREON_SDK_FIELD(PF_UtilCallbacks, fill, 72);
VIREON_SDK_FIELD(PF_UtilCallbacks, gaussian_kernel, 80);
VIREON_SDK_FIELD(PF_UtilCallbacks, iterate, 88);
VIREON_SDK_FIELD(PF_UtilCallbacks, premultiply, 96);
VIREON_SDK_FIELD(PF_UtilCallbacks, premultiply_color, 104);
VIREON_SDK_FIELD(PF_UtilCallbacks, new_world, 112);
VIREON_SDK_FIELD(PF_UtilCallbacks, dispose_world, 120);
VIREON_SDK_FIELD(PF_UtilCallbacks, iterate_origin, 128);
VIREON_SDK_FIELD(PF_UtilCallbacks, iterate_lut, 136);
VIREON_SDK_FIELD(PF_UtilCallbacks, transfer_rect, 144);
VIREON_SDK_FIELD(PF_UtilCallbacks, transform_world, 152);
VIREON_SDK_FIELD(PF_UtilCallbacks, host_new_handle, 160);
VIREON_SDK_FIELD(PF_UtilCallbacks, host_lock_handle, 168);
VIREON_SDK_FIELD(PF_UtilCallbacks, host_unlock_handle, 176);
VIREON_SDK_FIELD(PF_UtilCallbacks, host_dispose_handle, 184);
VIREON_SDK_FIELD(PF_UtilCallbacks, get_callback_addr, 192);
VIREON_SDK_FIELD(PF_UtilCallbacks, app, 200);
VIREON_SDK_FIELD(PF_UtilCallbacks, ansi, 208);
VIREON_SDK_FIELD(PF_UtilCallbacks, colorCB, 368);
VIREON_SDK_FIELD(PF_UtilCallbacks, get_platform_data, 432);
VIREON_SDK_FIELD(PF_UtilCallbacks, host_get_handle_size, 440);
VIREON_SDK_FIELD(PF_UtilCallbacks, iterate_origin_non_clip_src, 448);
VIREON_SDK_FIELD(PF_UtilCallbacks, iterate_generic, 456);
VIREON_SDK_FIELD(PF_UtilCallbacks, host_resize_handle, 464);
VIREON_SDK_FIELD(PF_UtilCallbacks, subpixel_sample16, 472);
VIREON_SDK_FIELD(PF_UtilCallbacks, area_sample16, 480);
VIREON_SDK_FIELD(PF_UtilCallbacks, fill16, 488);
VIREON_SDK_FIELD(PF_UtilCallbacks, premultiply_color16, 496);
VIREON_SDK_FIELD(PF_UtilCallbacks, iterate16, 504);
VIREON_SDK_FIELD(PF_UtilCallbacks, iterate_origin16, 512);
VIREON_SDK_FIELD(PF_UtilCallbacks, iterate_origin_non_clip_src16, 520);
VIREON_SDK_FIELD(PF_UtilCallbacks, get_pixel_data8, 528);
VIREON_SDK_FIELD(PF_UtilCallbacks, get_pixel_data16, 536);
VIREON_SDK_FIELD(PF_UtilCallbacks, reserved, 544);

}  // namespace vireon::sdk
