/// @file
/// Suites: tables of functions acquired by name and version through the basic suite.
/// Pointers named ..._or_null may be null, all others must be valid.
#pragma once

#include <cstddef>
#include <cstdint>

#include "sdk/layout.h"
#include "sdk/parameters.h"
#include "sdk/types.h"
#include "sdk/worlds.h"

namespace vireon::sdk {

struct PF_Context;

/// Name and version under which a suite is acquired. The version to ask for is not always the
/// number in the name of the record.
struct SuiteId {
    const char* name;
    std::int32_t version;
};

inline constexpr SuiteId kWorldSuite1{"PF World Suite", 1};
inline constexpr SuiteId kWorldSuite2{"PF World Suite", 2};
inline constexpr SuiteId kColorParamSuite1{"PF ColorParamSuite", 1};
/// Layout PF_ParamUtilsSuite1.
inline constexpr SuiteId kParamUtilsSuite2{"PF Param Utils Suite", 2};
inline constexpr SuiteId kParamUtilsSuite3{"PF Param Utils Suite", 3};
/// Layout PF_HandleSuite1.
inline constexpr SuiteId kHandleSuite2{"PF Handle Suite", 2};
/// Layout PFAppSuite4.
inline constexpr SuiteId kAppSuite6{"PF AE App Suite", 6};
inline constexpr SuiteId kPathQuerySuite1{"PF Path Query Suite", 1};
inline constexpr SuiteId kPathDataSuite1{"PF Path Data Suite", 1};

/// The suite that all other suites are acquired through.
struct SPBasicSuite {
    /// 0 on success; pair with ReleaseSuite of the same name and version.
    std::int32_t (*AcquireSuite)(const char* name, std::int32_t version, const void** out_suite);
    std::int32_t (*ReleaseSuite)(const char* name, std::int32_t version);
    std::int32_t (*IsEqual)(const char* text1, const char* text2);
    std::int32_t (*AllocateBlock)(std::size_t size, void** out_block);
    std::int32_t (*FreeBlock)(void* block);
    std::int32_t (*ReallocateBlock)(void* block, std::size_t new_size, void** out_block);
    std::int32_t (*Undefined)();
};
VIREON_SDK_RECORD(SPBasicSuite, 56, 8);
VIREON_SDK_FIELD(SPBasicSuite, AcquireSuite, 0);
VIREON_SDK_FIELD(SPBasicSuite, ReleaseSuite, 8);
VIREON_SDK_FIELD(SPBasicSuite, IsEqual, 16);
VIREON_SDK_FIELD(SPBasicSuite, AllocateBlock, 24);
VIREON_SDK_FIELD(SPBasicSuite, FreeBlock, 32);
VIREON_SDK_FIELD(SPBasicSuite, ReallocateBlock, 40);
VIREON_SDK_FIELD(SPBasicSuite, Undefined, 48);

/// "PF World Suite", version 1.
struct PF_WorldSuite1 {
    PF_Err (*new_world)(PF_ProgPtr effect_ref, std::int32_t width, std::int32_t height,
                        std::int32_t flags, PF_EffectWorld* out_world);
    PF_Err (*dispose_world)(PF_ProgPtr effect_ref, PF_EffectWorld* world);
};
VIREON_SDK_RECORD(PF_WorldSuite1, 16, 8);
VIREON_SDK_FIELD(PF_WorldSuite1, new_world, 0);
VIREON_SDK_FIELD(PF_WorldSuite1, dispose_world, 8);

/// "PF World Suite", version 2: worlds of every depth, and their format.
struct PF_WorldSuite2 {
    /// pixel_format: PF_PixelFormat_*; clear is one byte.
    PF_Err (*PF_NewWorld)(PF_ProgPtr effect_ref, std::int32_t width, std::int32_t height,
                          PF_Boolean clear, std::int32_t pixel_format, PF_EffectWorld* out_world);
    PF_Err (*PF_DisposeWorld)(PF_ProgPtr effect_ref, PF_EffectWorld* world);
    PF_Err (*PF_GetPixelFormat)(const PF_EffectWorld* world, std::int32_t* out_format);
};
VIREON_SDK_RECORD(PF_WorldSuite2, 24, 8);
VIREON_SDK_FIELD(PF_WorldSuite2, PF_NewWorld, 0);
VIREON_SDK_FIELD(PF_WorldSuite2, PF_DisposeWorld, 8);
VIREON_SDK_FIELD(PF_WorldSuite2, PF_GetPixelFormat, 16);

/// "PF ColorParamSuite", version 1.
struct PF_ColorParamSuite1 {
    PF_Err (*PF_GetFloatingPointColorFromColorDef)(PF_ProgPtr effect_ref,
                                                   const PF_ParamDef* colour_param,
                                                   PF_PixelFloat* out_pixel);
};
VIREON_SDK_RECORD(PF_ColorParamSuite1, 8, 8);
VIREON_SDK_FIELD(PF_ColorParamSuite1, PF_GetFloatingPointColorFromColorDef, 0);

/// Receipt for the state of the inputs of an effect.
struct PF_State {
    std::int32_t reservedAL[4];
};
VIREON_SDK_RECORD(PF_State, 16, 4);
VIREON_SDK_FIELD(PF_State, reservedAL, 0);

/// "PF Param Utils Suite", version 2 (the first published layout).
struct PF_ParamUtilsSuite1 {
    /// Takes the appearance, never the value, from a copy of a parameter record.
    PF_Err (*PF_UpdateParamUI)(PF_ProgPtr effect_ref, std::int32_t index, const PF_ParamDef* def);
    PF_Err (*PF_GetCurrentStateObsolete)(PF_ProgPtr effect_ref, PF_State* out_state);
    PF_Err (*PF_HasParamChangedObsolete)(PF_ProgPtr effect_ref, const PF_State* state,
                                         std::int32_t index, PF_Boolean* out_changed);
    PF_Err (*PF_HaveInputsChangedOverTimeSpanObsolete)(PF_ProgPtr effect_ref, const PF_State* state,
                                                       const A_Time* start_or_null,
                                                       const A_Time* duration_or_null,
                                                       PF_Boolean* out_changed);
    PF_Err (*PF_IsIdenticalCheckout)(PF_ProgPtr effect_ref, std::int32_t index, std::int32_t time1,
                                     std::int32_t time_step1, std::uint32_t time_scale1,
                                     std::int32_t time2, std::int32_t time_step2,
                                     std::uint32_t time_scale2, PF_Boolean* out_same);
    PF_Err (*PF_FindKeyframeTime)(PF_ProgPtr effect_ref, std::int32_t index, std::int32_t time,
                                  std::uint32_t time_scale, std::int32_t direction,
                                  PF_Boolean* out_found, std::int32_t* out_key_index_or_null,
                                  std::int32_t* out_key_time_or_null,
                                  std::uint32_t* out_key_scale_or_null);
    PF_Err (*PF_GetKeyframeCount)(PF_ProgPtr effect_ref, std::int32_t index,
                                  std::int32_t* out_count);
    PF_Err (*PF_CheckoutKeyframe)(PF_ProgPtr effect_ref, std::int32_t index, std::int32_t key_index,
                                  std::int32_t* out_time_or_null, std::uint32_t* out_scale_or_null,
                                  PF_ParamDef* out_param_or_null);
    PF_Err (*PF_CheckinKeyframe)(PF_ProgPtr effect_ref, PF_ParamDef* param);
    PF_Err (*PF_KeyIndexToTime)(PF_ProgPtr effect_ref, std::int32_t index, std::int32_t key_index,
                                std::int32_t* out_time, std::uint32_t* out_scale);
};
VIREON_SDK_RECORD(PF_ParamUtilsSuite1, 80, 8);
VIREON_SDK_FIELD(PF_ParamUtilsSuite1, PF_UpdateParamUI, 0);
VIREON_SDK_FIELD(PF_ParamUtilsSuite1, PF_GetCurrentStateObsolete, 8);
VIREON_SDK_FIELD(PF_ParamUtilsSuite1, PF_HasParamChangedObsolete, 16);
VIREON_SDK_FIELD(PF_ParamUtilsSuite1, PF_HaveInputsChangedOverTimeSpanObsolete, 24);
VIREON_SDK_FIELD(PF_ParamUtilsSuite1, PF_IsIdenticalCheckout, 32);
VIREON_SDK_FIELD(PF_ParamUtilsSuite1, PF_FindKeyframeTime, 40);
VIREON_SDK_FIELD(PF_ParamUtilsSuite1, PF_GetKeyframeCount, 48);
VIREON_SDK_FIELD(PF_ParamUtilsSuite1, PF_CheckoutKeyframe, 56);
VIREON_SDK_FIELD(PF_ParamUtilsSuite1, PF_CheckinKeyframe, 64);
VIREON_SDK_FIELD(PF_ParamUtilsSuite1, PF_KeyIndexToTime, 72);

/// "PF Param Utils Suite", version 3.
struct PF_ParamUtilsSuite3 {
    PF_Err (*PF_UpdateParamUI)(PF_ProgPtr effect_ref, std::int32_t index, const PF_ParamDef* def);
    PF_Err (*PF_GetCurrentState)(PF_ProgPtr effect_ref, std::int32_t index,
                                 const A_Time* start_or_null, const A_Time* duration_or_null,
                                 PF_State* out_state);
    PF_Err (*PF_AreStatesIdentical)(PF_ProgPtr effect_ref, const PF_State* state1,
                                    const PF_State* state2, std::uint8_t* out_same);
    PF_Err (*PF_IsIdenticalCheckout)(PF_ProgPtr effect_ref, std::int32_t index, std::int32_t time1,
                                     std::int32_t time_step1, std::uint32_t time_scale1,
                                     std::int32_t time2, std::int32_t time_step2,
                                     std::uint32_t time_scale2, PF_Boolean* out_same);
    PF_Err (*PF_FindKeyframeTime)(PF_ProgPtr effect_ref, std::int32_t index, std::int32_t time,
                                  std::uint32_t time_scale, std::int32_t direction,
                                  PF_Boolean* out_found, std::int32_t* out_key_index_or_null,
                                  std::int32_t* out_key_time_or_null,
                                  std::uint32_t* out_key_scale_or_null);
    PF_Err (*PF_GetKeyframeCount)(PF_ProgPtr effect_ref, std::int32_t index,
                                  std::int32_t* out_count);
    PF_Err (*PF_CheckoutKeyframe)(PF_ProgPtr effect_ref, std::int32_t index, std::int32_t key_index,
                                  std::int32_t* out_time_or_null, std::uint32_t* out_scale_or_null,
                                  PF_ParamDef* out_param_or_null);
    PF_Err (*PF_CheckinKeyframe)(PF_ProgPtr effect_ref, PF_ParamDef* param);
    PF_Err (*PF_KeyIndexToTime)(PF_ProgPtr effect_ref, std::int32_t index, std::int32_t key_index,
                                std::int32_t* out_time, std::uint32_t* out_scale);
};
VIREON_SDK_RECORD(PF_ParamUtilsSuite3, 72, 8);
VIREON_SDK_FIELD(PF_ParamUtilsSuite3, PF_UpdateParamUI, 0);
VIREON_SDK_FIELD(PF_ParamUtilsSuite3, PF_GetCurrentState, 8);
VIREON_SDK_FIELD(PF_ParamUtilsSuite3, PF_AreStatesIdentical, 16);
VIREON_SDK_FIELD(PF_ParamUtilsSuite3, PF_IsIdenticalCheckout, 24);
VIREON_SDK_FIELD(PF_ParamUtilsSuite3, PF_FindKeyframeTime, 32);
VIREON_SDK_FIELD(PF_ParamUtilsSuite3, PF_GetKeyframeCount, 40);
VIREON_SDK_FIELD(PF_ParamUtilsSuite3, PF_CheckoutKeyframe, 48);
VIREON_SDK_FIELD(PF_ParamUtilsSuite3, PF_CheckinKeyframe, 56);
VIREON_SDK_FIELD(PF_ParamUtilsSuite3, PF_KeyIndexToTime, 64);

/// "PF Handle Suite", version 2 (the first published layout).
struct PF_HandleSuite1 {
    PF_Handle (*host_new_handle)(std::uint64_t size);
    void* (*host_lock_handle)(PF_Handle handle);
    void (*host_unlock_handle)(PF_Handle handle);
    void (*host_dispose_handle)(PF_Handle handle);
    std::uint64_t (*host_get_handle_size)(PF_Handle handle);
    PF_Err (*host_resize_handle)(std::uint64_t new_size, PF_Handle* handle_address);
};
VIREON_SDK_RECORD(PF_HandleSuite1, 48, 8);
VIREON_SDK_FIELD(PF_HandleSuite1, host_new_handle, 0);
VIREON_SDK_FIELD(PF_HandleSuite1, host_lock_handle, 8);
VIREON_SDK_FIELD(PF_HandleSuite1, host_unlock_handle, 16);
VIREON_SDK_FIELD(PF_HandleSuite1, host_dispose_handle, 24);
VIREON_SDK_FIELD(PF_HandleSuite1, host_get_handle_size, 32);
VIREON_SDK_FIELD(PF_HandleSuite1, host_resize_handle, 40);

/// Vertex of a path in layer coordinates. The point comes first, then the two tangents.
struct PF_PathVertex {
    double x;
    double y;
    double tan_in_x;
    double tan_in_y;
    double tan_out_x;
    double tan_out_y;
};
VIREON_SDK_RECORD(PF_PathVertex, 48, 8);
VIREON_SDK_FIELD(PF_PathVertex, x, 0);
VIREON_SDK_FIELD(PF_PathVertex, y, 8);
VIREON_SDK_FIELD(PF_PathVertex, tan_in_x, 16);
VIREON_SDK_FIELD(PF_PathVertex, tan_in_y, 24);
VIREON_SDK_FIELD(PF_PathVertex, tan_out_x, 32);
VIREON_SDK_FIELD(PF_PathVertex, tan_out_y, 40);

/// "PF Path Query Suite", version 1: the masks of the layer.
struct PF_PathQuerySuite1 {
    PF_Err (*PF_NumPaths)(PF_ProgPtr effect_ref, std::int32_t* out_count);
    PF_Err (*PF_PathInfo)(PF_ProgPtr effect_ref, std::int32_t index, std::uint32_t* out_path_id);
    PF_Err (*PF_CheckoutPath)(PF_ProgPtr effect_ref, std::uint32_t path_id, std::int32_t time,
                              std::int32_t time_step, std::uint32_t time_scale, void** out_path);
    PF_Err (*PF_CheckinPath)(PF_ProgPtr effect_ref, std::uint32_t path_id, PF_Boolean changed,
                             void* path);
};
VIREON_SDK_RECORD(PF_PathQuerySuite1, 32, 8);
VIREON_SDK_FIELD(PF_PathQuerySuite1, PF_NumPaths, 0);
VIREON_SDK_FIELD(PF_PathQuerySuite1, PF_PathInfo, 8);
VIREON_SDK_FIELD(PF_PathQuerySuite1, PF_CheckoutPath, 16);
VIREON_SDK_FIELD(PF_PathQuerySuite1, PF_CheckinPath, 24);

/// "PF Path Data Suite", version 1: the outline of one mask.
struct PF_PathDataSuite1 {
    PF_Err (*PF_PathIsOpen)(PF_ProgPtr effect_ref_or_null, void* path, PF_Boolean* out_open);
    PF_Err (*PF_PathNumSegments)(PF_ProgPtr effect_ref_or_null, void* path,
                                 std::int32_t* out_count);
    /// Vertices 0 to N of N segments; vertex N of a closed path is vertex 0.
    PF_Err (*PF_PathVertexInfo)(PF_ProgPtr effect_ref_or_null, void* path,
                                std::int32_t vertex_index, PF_PathVertex* out_vertex);
    PF_Err (*PF_PathPrepareSegLength)(PF_ProgPtr effect_ref_or_null, void* path,
                                      std::int32_t segment, std::int32_t samples, void** out_prep);
    PF_Err (*PF_PathGetSegLength)(PF_ProgPtr effect_ref_or_null, void* path, std::int32_t segment,
                                  void** prep_address_or_null, double* out_length);
    PF_Err (*PF_PathEvalSegLength)(PF_ProgPtr effect_ref_or_null, void* path,
                                   void** prep_address_or_null, std::int32_t segment, double length,
                                   double* out_x, double* out_y);
    PF_Err (*PF_PathEvalSegLengthDeriv1)(PF_ProgPtr effect_ref_or_null, void* path,
                                         void** prep_address_or_null, std::int32_t segment,
                                         double length, double* out_x, double* out_y,
                                         double* out_dx, double* out_dy);
    PF_Err (*PF_PathCleanupSegLength)(PF_ProgPtr effect_ref_or_null, void* path,
                                      std::int32_t segment, void** prep_address);
    PF_Err (*PF_PathIsInverted)(PF_ProgPtr effect_ref, std::uint32_t path_id,
                                PF_Boolean* out_inverted);
    PF_Err (*PF_PathGetMaskMode)(PF_ProgPtr effect_ref, std::uint32_t path_id,
                                 std::int32_t* out_mode);
    PF_Err (*PF_PathGetName)(PF_ProgPtr effect_ref, std::uint32_t path_id, char* out_name);
};
VIREON_SDK_RECORD(PF_PathDataSuite1, 88, 8);
VIREON_SDK_FIELD(PF_PathDataSuite1, PF_PathIsOpen, 0);
VIREON_SDK_FIELD(PF_PathDataSuite1, PF_PathNumSegments, 8);
VIREON_SDK_FIELD(PF_PathDataSuite1, PF_PathVertexInfo, 16);
VIREON_SDK_FIELD(PF_PathDataSuite1, PF_PathPrepareSegLength, 24);
VIREON_SDK_FIELD(PF_PathDataSuite1, PF_PathGetSegLength, 32);
VIREON_SDK_FIELD(PF_PathDataSuite1, PF_PathEvalSegLength, 40);
VIREON_SDK_FIELD(PF_PathDataSuite1, PF_PathEvalSegLengthDeriv1, 48);
VIREON_SDK_FIELD(PF_PathDataSuite1, PF_PathCleanupSegLength, 56);
VIREON_SDK_FIELD(PF_PathDataSuite1, PF_PathIsInverted, 64);
VIREON_SDK_FIELD(PF_PathDataSuite1, PF_PathGetMaskMode, 72);
VIREON_SDK_FIELD(PF_PathDataSuite1, PF_PathGetName, 80);

/// Colour of the host's user interface.
struct PF_App_Color {
    std::uint16_t red;
    std::uint16_t green;
    std::uint16_t blue;
};
VIREON_SDK_RECORD(PF_App_Color, 6, 2);
VIREON_SDK_FIELD(PF_App_Color, red, 0);
VIREON_SDK_FIELD(PF_App_Color, green, 2);
VIREON_SDK_FIELD(PF_App_Color, blue, 4);

/// Registration texts of the host.
struct PF_AppPersonalTextInfo {
    char name[64];
    char org[64];
    char serial_str[64];
};
VIREON_SDK_RECORD(PF_AppPersonalTextInfo, 192, 1);
VIREON_SDK_FIELD(PF_AppPersonalTextInfo, name, 0);
VIREON_SDK_FIELD(PF_AppPersonalTextInfo, org, 64);
VIREON_SDK_FIELD(PF_AppPersonalTextInfo, serial_str, 128);

/// Name of a user interface font.
struct PF_FontName {
    char font_nameAC[256];
};
VIREON_SDK_RECORD(PF_FontName, 256, 1);
VIREON_SDK_FIELD(PF_FontName, font_nameAC, 0);

/// "PF AE App Suite", version 6. No function takes an effect reference.
struct PFAppSuite4 {
    PF_Err (*PF_AppGetBgColor)(PF_App_Color* out_colour);
    PF_Err (*PF_AppGetColor)(std::int16_t colour_kind, PF_App_Color* out_colour);
    PF_Err (*PF_GetPersonalInfo)(PF_AppPersonalTextInfo* out_info);
    PF_Err (*PF_GetFontStyleSheet)(std::int32_t sheet, PF_FontName* out_font_name_or_null,
                                   std::int16_t* out_number_or_null, std::int16_t* out_size_or_null,
                                   std::int16_t* out_style_or_null);
    PF_Err (*PF_SetCursor)(std::int32_t cursor);
    PF_Err (*PF_IsRenderEngine)(PF_Boolean* out_flag);
    PF_Err (*PF_AppColorPickerDialog)(const char* title_or_null, const PF_PixelFloat* sample_colour,
                                      PF_Boolean use_monitor_conversion, PF_PixelFloat* out_colour);
    PF_Err (*PF_GetMouse)(PF_Point* out_point);
    PF_Err (*PF_InvalidateRect)(PF_Context** context, const PF_LRect* rect_or_null);
    PF_Err (*PF_ConvertLocalToGlobal)(const PF_Point* local, PF_Point* out_global);
    PF_Err (*PF_GetColorAtGlobalPoint)(const PF_Point* global, std::int16_t eye_size,
                                       std::int16_t mode, PF_PixelFloat* out_colour);
};
VIREON_SDK_RECORD(PFAppSuite4, 88, 8);
VIREON_SDK_FIELD(PFAppSuite4, PF_AppGetBgColor, 0);
VIREON_SDK_FIELD(PFAppSuite4, PF_AppGetColor, 8);
VIREON_SDK_FIELD(PFAppSuite4, PF_GetPersonalInfo, 16);
VIREON_SDK_FIELD(PFAppSuite4, PF_GetFontStyleSheet, 24);
VIREON_SDK_FIELD(PFAppSuite4, PF_SetCursor, 32);
VIREON_SDK_FIELD(PFAppSuite4, PF_IsRenderEngine, 40);
VIREON_SDK_FIELD(PFAppSuite4, PF_AppColorPickerDialog, 48);
VIREON_SDK_FIELD(PFAppSuite4, PF_GetMouse, 56);
VIREON_SDK_FIELD(PFAppSuite4, PF_InvalidateRect, 64);
VIREON_SDK_FIELD(PFAppSuite4, PF_ConvertLocalToGlobal, 72);
VIREON_SDK_FIELD(PFAppSuite4, PF_GetColorAtGlobalPoint, 80);

}  // namespace vireon::sdk
