/// @file
/// Numbers of the host interface, under the names that its users know.
#pragma once

#include <cstdint>

#include "sdk/types.h"

namespace vireon::sdk {

// Commands of the entry point.
inline constexpr std::int32_t PF_Cmd_ABOUT = 0;
inline constexpr std::int32_t PF_Cmd_GLOBAL_SETUP = 1;
inline constexpr std::int32_t PF_Cmd_UNUSED_0 = 2;
inline constexpr std::int32_t PF_Cmd_GLOBAL_SETDOWN = 3;
inline constexpr std::int32_t PF_Cmd_PARAMS_SETUP = 4;
inline constexpr std::int32_t PF_Cmd_SEQUENCE_SETUP = 5;
inline constexpr std::int32_t PF_Cmd_SEQUENCE_RESETUP = 6;
inline constexpr std::int32_t PF_Cmd_SEQUENCE_FLATTEN = 7;
inline constexpr std::int32_t PF_Cmd_SEQUENCE_SETDOWN = 8;
inline constexpr std::int32_t PF_Cmd_DO_DIALOG = 9;
inline constexpr std::int32_t PF_Cmd_FRAME_SETUP = 10;
inline constexpr std::int32_t PF_Cmd_RENDER = 11;
inline constexpr std::int32_t PF_Cmd_FRAME_SETDOWN = 12;
inline constexpr std::int32_t PF_Cmd_USER_CHANGED_PARAM = 13;
inline constexpr std::int32_t PF_Cmd_UPDATE_PARAMS_UI = 14;
inline constexpr std::int32_t PF_Cmd_EVENT = 15;
inline constexpr std::int32_t PF_Cmd_GET_EXTERNAL_DEPENDENCIES = 16;
inline constexpr std::int32_t PF_Cmd_COMPLETELY_GENERAL = 17;
inline constexpr std::int32_t PF_Cmd_QUERY_DYNAMIC_FLAGS = 18;
inline constexpr std::int32_t PF_Cmd_AUDIO_RENDER = 19;
inline constexpr std::int32_t PF_Cmd_AUDIO_SETUP = 20;
inline constexpr std::int32_t PF_Cmd_AUDIO_SETDOWN = 21;
inline constexpr std::int32_t PF_Cmd_ARBITRARY_CALLBACK = 22;
inline constexpr std::int32_t PF_Cmd_SMART_PRE_RENDER = 23;
inline constexpr std::int32_t PF_Cmd_SMART_RENDER = 24;
inline constexpr std::int32_t PF_Cmd_RESERVED1 = 25;
inline constexpr std::int32_t PF_Cmd_RESERVED2 = 26;
inline constexpr std::int32_t PF_Cmd_RESERVED3 = 27;
inline constexpr std::int32_t PF_Cmd_GET_FLATTENED_SEQUENCE_DATA = 28;
inline constexpr std::int32_t PF_Cmd_TRANSLATE_PARAMS_TO_PREFS = 29;
inline constexpr std::int32_t PF_Cmd_RESERVED4 = 30;
inline constexpr std::int32_t PF_Cmd_SMART_RENDER_GPU = 31;
inline constexpr std::int32_t PF_Cmd_GPU_DEVICE_SETUP = 32;
inline constexpr std::int32_t PF_Cmd_GPU_DEVICE_SETDOWN = 33;
inline constexpr std::int32_t PF_Cmd_NUM_CMDS = 34;  // count, not a command

// Results.
inline constexpr std::int32_t PF_Err_NONE = 0;
inline constexpr std::int32_t PF_Err_OUT_OF_MEMORY = 4;  // ordinary during previews
inline constexpr std::int32_t PF_Err_INTERNAL_STRUCT_DAMAGED = 512;
inline constexpr std::int32_t PF_Err_INVALID_INDEX = 513;
inline constexpr std::int32_t PF_Err_UNRECOGNIZED_PARAM_TYPE = 514;
inline constexpr std::int32_t PF_Err_INVALID_CALLBACK = 515;
inline constexpr std::int32_t PF_Err_BAD_CALLBACK_PARAM = 516;
inline constexpr std::int32_t PF_Err_CANNOT_PARSE_KEYFRAME_TEXT = 518;
inline constexpr std::int32_t PF_Interrupt_CANCEL = 517;  // the user cancelled: pass on at once
inline constexpr std::int32_t PF_FIRST_ERR = 512;

// General results of the host that also occur.
inline constexpr std::int32_t A_Err_GENERIC = 1;
inline constexpr std::int32_t A_Err_STRUCT = 2;
inline constexpr std::int32_t A_Err_PARAMETER = 3;
inline constexpr std::int32_t A_Err_ALLOC = 4;  // same number as PF_Err_OUT_OF_MEMORY
inline constexpr std::int32_t A_Err_WRONG_THREAD = 5;
inline constexpr std::int32_t A_Err_MISSING_SUITE = 13;

// PF_OutData::out_flags.
inline constexpr std::int32_t PF_OutFlag_NONE = 0;
inline constexpr std::int32_t PF_OutFlag_KEEP_RESOURCE_OPEN = 0x1;
inline constexpr std::int32_t PF_OutFlag_WIDE_TIME_INPUT = 0x2;
inline constexpr std::int32_t PF_OutFlag_NON_PARAM_VARY = 0x4;
inline constexpr std::int32_t PF_OutFlag_RESERVED6 = 0x8;
inline constexpr std::int32_t PF_OutFlag_SEQUENCE_DATA_NEEDS_FLATTENING = 0x10;
inline constexpr std::int32_t PF_OutFlag_I_DO_DIALOG = 0x20;
inline constexpr std::int32_t PF_OutFlag_USE_OUTPUT_EXTENT = 0x40;
inline constexpr std::int32_t PF_OutFlag_SEND_DO_DIALOG = 0x80;
inline constexpr std::int32_t PF_OutFlag_DISPLAY_ERROR_MESSAGE = 0x100;  // return_msg is an error
inline constexpr std::int32_t PF_OutFlag_I_EXPAND_BUFFER = 0x200;
inline constexpr std::int32_t PF_OutFlag_PIX_INDEPENDENT = 0x400;
inline constexpr std::int32_t PF_OutFlag_I_WRITE_INPUT_BUFFER = 0x800;
inline constexpr std::int32_t PF_OutFlag_I_SHRINK_BUFFER = 0x1000;
inline constexpr std::int32_t PF_OutFlag_WORKS_IN_PLACE = 0x2000;
inline constexpr std::int32_t PF_OutFlag_RESERVED8 = 0x4000;
inline constexpr std::int32_t PF_OutFlag_CUSTOM_UI = 0x8000;
inline constexpr std::int32_t PF_OutFlag_RESERVED7 = 0x10000;
inline constexpr std::int32_t PF_OutFlag_REFRESH_UI = 0x20000;
inline constexpr std::int32_t PF_OutFlag_NOP_RENDER = 0x40000;
inline constexpr std::int32_t PF_OutFlag_I_USE_SHUTTER_ANGLE = 0x80000;
inline constexpr std::int32_t PF_OutFlag_I_USE_AUDIO = 0x100000;
inline constexpr std::int32_t PF_OutFlag_I_AM_OBSOLETE = 0x200000;
inline constexpr std::int32_t PF_OutFlag_FORCE_RERENDER = 0x400000;
inline constexpr std::int32_t PF_OutFlag_PiPL_OVERRIDES_OUTDATA_OUTFLAGS = 0x800000;
inline constexpr std::int32_t PF_OutFlag_I_HAVE_EXTERNAL_DEPENDENCIES = 0x1000000;
inline constexpr std::int32_t PF_OutFlag_DEEP_COLOR_AWARE = 0x2000000;  // renders 16 bits
inline constexpr std::int32_t PF_OutFlag_SEND_UPDATE_PARAMS_UI = 0x4000000;
inline constexpr std::int32_t PF_OutFlag_AUDIO_FLOAT_ONLY = 0x8000000;
inline constexpr std::int32_t PF_OutFlag_AUDIO_IIR = 0x10000000;
inline constexpr std::int32_t PF_OutFlag_I_SYNTHESIZE_AUDIO = 0x20000000;
inline constexpr std::int32_t PF_OutFlag_AUDIO_EFFECT_TOO = 0x40000000;
inline constexpr std::int32_t PF_OutFlag_AUDIO_EFFECT_ONLY = static_cast<std::int32_t>(0x80000000u);

// PF_OutData::out_flags2.
inline constexpr std::int32_t PF_OutFlag2_NONE = 0;
inline constexpr std::int32_t PF_OutFlag2_SUPPORTS_QUERY_DYNAMIC_FLAGS = 0x1;
inline constexpr std::int32_t PF_OutFlag2_I_USE_3D_CAMERA = 0x2;
inline constexpr std::int32_t PF_OutFlag2_I_USE_3D_LIGHTS = 0x4;
inline constexpr std::int32_t PF_OutFlag2_PARAM_GROUP_START_COLLAPSED_FLAG = 0x8;
inline constexpr std::int32_t PF_OutFlag2_I_AM_THREADSAFE = 0x10;
inline constexpr std::int32_t PF_OutFlag2_CAN_COMBINE_WITH_DESTINATION = 0x20;
inline constexpr std::int32_t PF_OutFlag2_DOESNT_NEED_EMPTY_PIXELS = 0x40;
inline constexpr std::int32_t PF_OutFlag2_REVEALS_ZERO_ALPHA = 0x80;
inline constexpr std::int32_t PF_OutFlag2_PRESERVES_FULLY_OPAQUE_PIXELS = 0x100;
inline constexpr std::int32_t PF_OutFlag2_SUPPORTS_SMART_RENDER = 0x400;
inline constexpr std::int32_t PF_OutFlag2_RESERVED9 = 0x800;
inline constexpr std::int32_t PF_OutFlag2_FLOAT_COLOR_AWARE = 0x1000;  // renders float
inline constexpr std::int32_t PF_OutFlag2_I_USE_COLORSPACE_ENUMERATION = 0x2000;
inline constexpr std::int32_t PF_OutFlag2_I_AM_DEPRECATED = 0x4000;
inline constexpr std::int32_t PF_OutFlag2_PPRO_DO_NOT_CLONE_SEQUENCE_DATA_FOR_RENDER = 0x8000;
inline constexpr std::int32_t PF_OutFlag2_RESERVED10 = 0x10000;
inline constexpr std::int32_t PF_OutFlag2_AUTOMATIC_WIDE_TIME_INPUT = 0x20000;
inline constexpr std::int32_t PF_OutFlag2_I_USE_TIMECODE = 0x40000;
inline constexpr std::int32_t PF_OutFlag2_DEPENDS_ON_UNREFERENCED_MASKS = 0x80000;
inline constexpr std::int32_t PF_OutFlag2_OUTPUT_IS_WATERMARKED = 0x100000;
inline constexpr std::int32_t PF_OutFlag2_I_MIX_GUID_DEPENDENCIES = 0x200000;
inline constexpr std::int32_t PF_OutFlag2_AE13_5_THREADSAFE = 0x400000;
inline constexpr std::int32_t PF_OutFlag2_SUPPORTS_GET_FLATTENED_SEQUENCE_DATA = 0x800000;
inline constexpr std::int32_t PF_OutFlag2_CUSTOM_UI_ASYNC_MANAGER = 0x1000000;
inline constexpr std::int32_t PF_OutFlag2_SUPPORTS_GPU_RENDER_F32 = 0x2000000;
inline constexpr std::int32_t PF_OutFlag2_RESERVED12 = 0x4000000;
inline constexpr std::int32_t PF_OutFlag2_SUPPORTS_THREADED_RENDERING = 0x8000000;
inline constexpr std::int32_t PF_OutFlag2_MUTABLE_RENDER_SEQUENCE_DATA_SLOWER = 0x10000000;
inline constexpr std::int32_t PF_OutFlag2_SUPPORTS_DIRECTX_RENDERING = 0x20000000;

// PF_InData::in_flags.
inline constexpr std::int32_t PF_InFlag_NONE = 0;
inline constexpr std::int32_t PF_InFlag_PROJECT_IS_RENDER_ONLY = 0x1;

// Kinds of parameter; the comment names the member of PF_ParamDefUnion.
inline constexpr std::int32_t PF_Param_RESERVED = -1;
inline constexpr std::int32_t PF_Param_LAYER = 0;       // ld
inline constexpr std::int32_t PF_Param_SLIDER = 1;      // sd
inline constexpr std::int32_t PF_Param_FIX_SLIDER = 2;  // fd
inline constexpr std::int32_t PF_Param_ANGLE = 3;       // ad
inline constexpr std::int32_t PF_Param_CHECKBOX = 4;    // bd
inline constexpr std::int32_t PF_Param_COLOR = 5;       // cd
inline constexpr std::int32_t PF_Param_POINT = 6;       // td
inline constexpr std::int32_t PF_Param_POPUP = 7;       // pd
inline constexpr std::int32_t PF_Param_CUSTOM = 8;
inline constexpr std::int32_t PF_Param_NO_DATA = 9;
inline constexpr std::int32_t PF_Param_FLOAT_SLIDER = 10;    // fs_d
inline constexpr std::int32_t PF_Param_ARBITRARY_DATA = 11;  // arb_d
inline constexpr std::int32_t PF_Param_PATH = 12;            // path_d
inline constexpr std::int32_t PF_Param_GROUP_START = 13;
inline constexpr std::int32_t PF_Param_GROUP_END = 14;
inline constexpr std::int32_t PF_Param_BUTTON = 15;  // button_d
inline constexpr std::int32_t PF_Param_RESERVED2 = 16;
inline constexpr std::int32_t PF_Param_RESERVED3 = 17;
inline constexpr std::int32_t PF_Param_POINT_3D = 18;  // point3d_d

// PF_ParamDef::flags.
inline constexpr std::int32_t PF_ParamFlag_NONE = 0;
inline constexpr std::int32_t PF_ParamFlag_RESERVED1 = 0x1;
inline constexpr std::int32_t PF_ParamFlag_CANNOT_TIME_VARY = 0x2;
inline constexpr std::int32_t PF_ParamFlag_CANNOT_INTERP = 0x4;
inline constexpr std::int32_t PF_ParamFlag_RESERVED2 = 0x8;
inline constexpr std::int32_t PF_ParamFlag_RESERVED3 = 0x10;
inline constexpr std::int32_t PF_ParamFlag_COLLAPSE_TWIRLY = 0x20;
inline constexpr std::int32_t PF_ParamFlag_SUPERVISE = 0x40;  // sends PF_Cmd_USER_CHANGED_PARAM
inline constexpr std::int32_t PF_ParamFlag_START_COLLAPSED =
    0x20;  // same bit as COLLAPSE_TWIRLY, on a group start
inline constexpr std::int32_t PF_ParamFlag_USE_VALUE_FOR_OLD_PROJECTS = 0x80;
inline constexpr std::int32_t PF_ParamFlag_LAYER_PARAM_IS_TRACKMATTE = 0x80;
inline constexpr std::int32_t PF_ParamFlag_EXCLUDE_FROM_HAVE_INPUTS_CHANGED = 0x100;
inline constexpr std::int32_t PF_ParamFlag_SKIP_REVEAL_WHEN_UNHIDDEN = 0x200;
inline constexpr std::int32_t PF_ParamFlag_unused1 = 0x400;
inline constexpr std::int32_t PF_ParamFlag_RESERVED4 = 0x800;

// PF_ParamDef::ui_flags.
inline constexpr std::int32_t PF_PUI_NONE = 0;
inline constexpr std::int32_t PF_PUI_TOPIC = 0x1;
inline constexpr std::int32_t PF_PUI_CONTROL = 0x2;
inline constexpr std::int32_t PF_PUI_STD_CONTROL_ONLY = 0x4;
inline constexpr std::int32_t PF_PUI_NO_ECW_UI = 0x8;
inline constexpr std::int32_t PF_PUI_ECW_SEPARATOR = 0x10;
inline constexpr std::int32_t PF_PUI_DISABLED = 0x20;  // greyed
inline constexpr std::int32_t PF_PUI_DONT_ERASE_TOPIC = 0x40;
inline constexpr std::int32_t PF_PUI_DONT_ERASE_CONTROL = 0x80;
inline constexpr std::int32_t PF_PUI_RADIO_BUTTON = 0x100;
inline constexpr std::int32_t PF_PUI_INVISIBLE = 0x200;
inline constexpr std::int32_t PF_PUI_RESERVED = 0x400;

// PF_ParamDef::uu.change_flags.
inline constexpr std::int32_t PF_ChangeFlag_NONE = 0;
inline constexpr std::int32_t PF_ChangeFlag_CHANGED_VALUE = 0x1;
inline constexpr std::int32_t PF_ChangeFlag_RESERVED = 0x2;
inline constexpr std::int32_t PF_ChangeFlag_SET_TO_VARY = 0x4;
inline constexpr std::int32_t PF_ChangeFlag_SET_TO_CONSTANT = 0x8;

// display_flags of sliders.
inline constexpr std::int32_t PF_ValueDisplayFlag_NONE = 0;
inline constexpr std::int32_t PF_ValueDisplayFlag_PERCENT = 0x1;
inline constexpr std::int32_t PF_ValueDisplayFlag_PIXEL = 0x2;
inline constexpr std::int32_t PF_ValueDisplayFlag_RESERVED1 = 0x4;
inline constexpr std::int32_t PF_ValueDisplayFlag_REVERSE = 0x8;

// precision of sliders.
inline constexpr std::int32_t PF_Precision_INTEGER = 0;
inline constexpr std::int32_t PF_Precision_TENTHS = 1;
inline constexpr std::int32_t PF_Precision_HUNDREDTHS = 2;
inline constexpr std::int32_t PF_Precision_THOUSANDTHS = 3;
inline constexpr std::int32_t PF_Precision_TEN_THOUSANDTHS = 4;

// PF_FloatSliderDef::fs_flags.
inline constexpr std::int32_t PF_FSliderFlag_NONE = 0;
inline constexpr std::int32_t PF_FSliderFlag_WANT_PHASE = 0x1;

// PF_EffectWorld::dephault of a layer parameter.
inline constexpr std::int32_t PF_LayerDefault_MYSELF = -1;  // the layer that carries the effect
inline constexpr std::int32_t PF_LayerDefault_NONE = 0;

// PF_InData::quality.
inline constexpr std::int32_t PF_Quality_DRAWING_AUDIO = -1;
inline constexpr std::int32_t PF_Quality_LO = 0;
inline constexpr std::int32_t PF_Quality_HI = 1;

// PF_InData::field.
inline constexpr std::int32_t PF_Field_FRAME = 0;
inline constexpr std::int32_t PF_Field_UPPER = 1;
inline constexpr std::int32_t PF_Field_LOWER = 2;

// Mode flags of the compositing callbacks.
inline constexpr std::int32_t PF_MF_Alpha_PREMUL = 0;
inline constexpr std::int32_t PF_MF_Alpha_STRAIGHT = 1;

// PF_EffectWorld::world_flags.
inline constexpr std::int32_t PF_WorldFlag_DEEP = 0x1;       // 16 bits a channel
inline constexpr std::int32_t PF_WorldFlag_WRITEABLE = 0x2;  // pixels may be written
inline constexpr std::int32_t PF_WorldFlag_RESERVED0 = 0x1000000;
inline constexpr std::int32_t PF_WorldFlag_RESERVED1 = 0x2000000;
inline constexpr std::int32_t PF_WorldFlag_RESERVED2 = 0x4000000;
inline constexpr std::int32_t PF_WorldFlag_RESERVED3 = 0x8000000;
inline constexpr std::int32_t PF_WorldFlag_RESERVED4 = 0x10000000;
inline constexpr std::int32_t PF_WorldFlag_RESERVED5 = 0x20000000;
inline constexpr std::int32_t PF_WorldFlag_RESERVED6 = 0x40000000;
inline constexpr std::int32_t PF_WorldFlag_RESERVED = static_cast<std::int32_t>(0x80000000u);

// Flags of the new_world callback.
inline constexpr std::int32_t PF_NewWorldFlag_NONE = 0;
inline constexpr std::int32_t PF_NewWorldFlag_CLEAR_PIXELS = 0x1;
inline constexpr std::int32_t PF_NewWorldFlag_DEEP_PIXELS = 0x2;
inline constexpr std::int32_t PF_NewWorldFlag_RESERVED0 = 0x4;
inline constexpr std::int32_t PF_NewWorldFlag_RESERVED1 = 0x8;

// Pixel formats of worlds; see PixelFormatCode.
inline constexpr std::int32_t PF_PixelFormat_ARGB32 = PixelFormatCode("argb");   // 8 bits
inline constexpr std::int32_t PF_PixelFormat_ARGB64 = PixelFormatCode("ae16");   // 16 bits
inline constexpr std::int32_t PF_PixelFormat_ARGB128 = PixelFormatCode("ae32");  // float
inline constexpr std::int32_t PF_PixelFormat_GPU_BGRA128 = PixelFormatCode("@CDA");
inline constexpr std::int32_t PF_PixelFormat_BGRA32 =
    PixelFormatCode("bgra");  // 8 bits, blue first
inline constexpr std::int32_t PF_PixelFormat_VUYA32 = PixelFormatCode("vuya");
inline constexpr std::int32_t PF_PixelFormat_NTSCDV25 = PixelFormatCode("dvn2");
inline constexpr std::int32_t PF_PixelFormat_PALDV25 = PixelFormatCode("dvp2");
inline constexpr std::int32_t PF_PixelFormat_INVALID = PixelFormatCode("badf");

// Transfer modes.
inline constexpr std::int32_t PF_Xfer_NONE = -1;
inline constexpr std::int32_t PF_Xfer_COPY = 0;
inline constexpr std::int32_t PF_Xfer_BEHIND = 1;
inline constexpr std::int32_t PF_Xfer_IN_FRONT = 2;
inline constexpr std::int32_t PF_Xfer_DISSOLVE = 3;
inline constexpr std::int32_t PF_Xfer_ADD = 4;
inline constexpr std::int32_t PF_Xfer_MULTIPLY = 5;
inline constexpr std::int32_t PF_Xfer_SCREEN = 6;
inline constexpr std::int32_t PF_Xfer_OVERLAY = 7;
inline constexpr std::int32_t PF_Xfer_SOFT_LIGHT = 8;
inline constexpr std::int32_t PF_Xfer_HARD_LIGHT = 9;
inline constexpr std::int32_t PF_Xfer_DARKEN = 10;
inline constexpr std::int32_t PF_Xfer_LIGHTEN = 11;
inline constexpr std::int32_t PF_Xfer_DIFFERENCE = 12;
inline constexpr std::int32_t PF_Xfer_HUE = 13;
inline constexpr std::int32_t PF_Xfer_SATURATION = 14;
inline constexpr std::int32_t PF_Xfer_COLOR = 15;
inline constexpr std::int32_t PF_Xfer_LUMINOSITY = 16;
inline constexpr std::int32_t PF_Xfer_MULTIPLY_ALPHA = 17;
inline constexpr std::int32_t PF_Xfer_MULTIPLY_ALPHA_LUMA = 18;
inline constexpr std::int32_t PF_Xfer_MULTIPLY_NOT_ALPHA = 19;
inline constexpr std::int32_t PF_Xfer_MULTIPLY_NOT_ALPHA_LUMA = 20;
inline constexpr std::int32_t PF_Xfer_ADDITIVE_PREMUL = 21;
inline constexpr std::int32_t PF_Xfer_ALPHA_ADD = 22;
inline constexpr std::int32_t PF_Xfer_COLOR_DODGE = 23;
inline constexpr std::int32_t PF_Xfer_COLOR_BURN = 24;
inline constexpr std::int32_t PF_Xfer_EXCLUSION = 25;
inline constexpr std::int32_t PF_Xfer_DIFFERENCE2 = 26;
inline constexpr std::int32_t PF_Xfer_COLOR_DODGE2 = 27;
inline constexpr std::int32_t PF_Xfer_COLOR_BURN2 = 28;
inline constexpr std::int32_t PF_Xfer_LINEAR_DODGE = 29;
inline constexpr std::int32_t PF_Xfer_LINEAR_BURN = 30;
inline constexpr std::int32_t PF_Xfer_LINEAR_LIGHT = 31;
inline constexpr std::int32_t PF_Xfer_VIVID_LIGHT = 32;
inline constexpr std::int32_t PF_Xfer_PIN_LIGHT = 33;
inline constexpr std::int32_t PF_Xfer_HARD_MIX = 34;
inline constexpr std::int32_t PF_Xfer_LIGHTER_COLOR = 35;
inline constexpr std::int32_t PF_Xfer_DARKER_COLOR = 36;
inline constexpr std::int32_t PF_Xfer_SUBTRACT = 37;
inline constexpr std::int32_t PF_Xfer_DIVIDE = 38;
inline constexpr std::int32_t PF_Xfer_RESERVED0 = 39;
inline constexpr std::int32_t PF_Xfer_RESERVED1 = 40;
inline constexpr std::int32_t PF_Xfer_NUM_MODES = 41;      // count
inline constexpr std::int32_t PF_Xfer_TINT = 29;           // other name of 29
inline constexpr std::int32_t PF_Xfer_SHADE = 30;          // other name of 30
inline constexpr std::int32_t PF_Xfer_INTENSE_LIGHT = 32;  // other name of 32

// PF_MaskWorld::what_is_mask.
inline constexpr std::int32_t PF_MaskFlag_NONE = 0;
inline constexpr std::int32_t PF_MaskFlag_INVERTED = 0x1;
inline constexpr std::int32_t PF_MaskFlag_LUMINANCE = 0x2;

// Selectors of the get_platform_data callback.
inline constexpr std::int32_t PF_PlatData_MAIN_WND = 0;                  // window handle
inline constexpr std::int32_t PF_PlatData_EXE_FILE_PATH_DEPRECATED = 1;  // char[260]
inline constexpr std::int32_t PF_PlatData_RES_FILE_PATH_DEPRECATED = 2;  // char[260]
inline constexpr std::int32_t PF_PlatData_RES_REFNUM = 3;
inline constexpr std::int32_t PF_PlatData_RES_DLLINSTANCE = 4;  // module handle
inline constexpr std::int32_t PF_PlatData_SP_PLUG_REF = 5;
inline constexpr std::int32_t PF_PlatData_BUNDLE_REF = 6;
inline constexpr std::int32_t PF_PlatData_EXE_FILE_PATH_W = 7;  // UTF-16, 260 units
inline constexpr std::int32_t PF_PlatData_RES_FILE_PATH_W = 8;  // UTF-16, 260 units

// PF_RenderRequest::channel_mask.
inline constexpr std::int32_t PF_ChannelMask_ALPHA = 0x1;
inline constexpr std::int32_t PF_ChannelMask_RED = 0x2;
inline constexpr std::int32_t PF_ChannelMask_GREEN = 0x4;
inline constexpr std::int32_t PF_ChannelMask_BLUE = 0x8;
inline constexpr std::int32_t PF_ChannelMask_ARGB = 0xF;

// PF_PreRenderOutput::flags.
inline constexpr std::int32_t PF_RenderOutputFlag_RETURNS_EXTRA_PIXELS = 0x1;
inline constexpr std::int32_t PF_RenderOutputFlag_GPU_RENDER_POSSIBLE = 0x2;
inline constexpr std::int32_t PF_RenderOutputFlag_RESERVED1 = 0x4;

// Where a frame is rendered.
inline constexpr std::int32_t PF_GPU_Framework_NONE = 0;
inline constexpr std::int32_t PF_GPU_Framework_OPENCL = 1;
inline constexpr std::int32_t PF_GPU_Framework_METAL = 2;
inline constexpr std::int32_t PF_GPU_Framework_CUDA = 3;
inline constexpr std::int32_t PF_GPU_Framework_DIRECTX = 4;

// Paths.
inline constexpr std::int32_t PF_PathID_NONE = 0;

// Results of PF_PathGetMaskMode.
inline constexpr std::int32_t PF_MaskMode_NONE = 0;
inline constexpr std::int32_t PF_MaskMode_ADD = 1;
inline constexpr std::int32_t PF_MaskMode_SUBTRACT = 2;
inline constexpr std::int32_t PF_MaskMode_INTERSECT = 3;
inline constexpr std::int32_t PF_MaskMode_LIGHTEN = 4;
inline constexpr std::int32_t PF_MaskMode_DARKEN = 5;
inline constexpr std::int32_t PF_MaskMode_DIFFERENCE = 6;
inline constexpr std::int32_t PF_MaskMode_ACCUM = 7;

// Directions of PF_FindKeyframeTime.
inline constexpr std::int32_t PF_TimeDir_GREATER_THAN = 0;
inline constexpr std::int32_t PF_TimeDir_LESS_THAN = 0x1;
inline constexpr std::int32_t PF_TimeDir_GREATER_THAN_OR_EQUAL = 0x1000;
inline constexpr std::int32_t PF_TimeDir_LESS_THAN_OR_EQUAL = 0x1001;

// Special parameter and keyframe indices.
inline constexpr std::int32_t PF_ParamIndex_NONE = -1;
inline constexpr std::int32_t PF_ParamIndex_CHECK_ALL = -2;
inline constexpr std::int32_t PF_ParamIndex_CHECK_ALL_EXCEPT_LAYER_PARAMS = -3;
inline constexpr std::int32_t PF_ParamIndex_CHECK_ALL_HONOR_EXCLUDE = -4;
inline constexpr std::int32_t PF_KeyIndex_NONE = -1;

// Fields of the packed effect version: bits and shift of each.
inline constexpr std::int32_t PF_Vers_BUILD_BITS = 511;
inline constexpr std::int32_t PF_Vers_BUILD_SHIFT = 0;
inline constexpr std::int32_t PF_Vers_STAGE_BITS = 3;
inline constexpr std::int32_t PF_Vers_STAGE_SHIFT = 9;
inline constexpr std::int32_t PF_Vers_BUGFIX_BITS = 15;
inline constexpr std::int32_t PF_Vers_BUGFIX_SHIFT = 11;
inline constexpr std::int32_t PF_Vers_SUBVERS_BITS = 15;
inline constexpr std::int32_t PF_Vers_SUBVERS_SHIFT = 15;
inline constexpr std::int32_t PF_Vers_VERS_BITS = 7;  // low part of the major version
inline constexpr std::int32_t PF_Vers_VERS_SHIFT = 19;
inline constexpr std::int32_t PF_Vers_VERS_HIGH_BITS = 15;
inline constexpr std::int32_t PF_Vers_VERS_HIGH_SHIFT = 26;
inline constexpr std::int32_t PF_Vers_VERS_LOW_SHIFT = 3;

// Stages of an effect version.
inline constexpr std::int32_t PF_Stage_DEVELOP = 0;
inline constexpr std::int32_t PF_Stage_ALPHA = 1;
inline constexpr std::int32_t PF_Stage_BETA = 2;
inline constexpr std::int32_t PF_Stage_RELEASE = 3;

// Limits. Text limits do not count the final zero.
inline constexpr std::int32_t PF_MAX_EFFECT_NAME_LEN = 31;
inline constexpr std::int32_t PF_MAX_EFFECT_CATEGORY_NAME_LEN = 31;
inline constexpr std::int32_t PF_MAX_EFFECT_PARAM_NAME_LEN = 31;
inline constexpr std::int32_t PF_MAX_PARAM_DESCRIPTION_LEN = 31;
inline constexpr std::int32_t PF_MAX_PARAM_VALUE_LEN = 31;
inline constexpr std::int32_t PF_MAX_EFFECT_MSG_LEN = 255;
inline constexpr std::int32_t PF_MAX_WORLD_WIDTH = 30000;
inline constexpr std::int32_t PF_MAX_WORLD_HEIGHT = 30000;
inline constexpr std::int32_t PF_MAX_CHAN8 = 255;  // white at 8 bits
inline constexpr std::int32_t PF_HALF_CHAN8 = 128;
inline constexpr std::int32_t PF_MAX_CHAN16 = 32768;  // white at 16 bits
inline constexpr std::int32_t PF_HALF_CHAN16 = 16384;
inline constexpr std::int32_t PF_MAX_PATH_NAME_LEN = 31;

// Fixed point.
inline constexpr PF_Fixed kFixedOne = 65536;

// Host applications, PF_InData::appl_id.
inline constexpr std::int32_t kHostAfterEffects = HostCode("FXTC");
inline constexpr std::int32_t kHostPremierePro = HostCode("PrMr");
inline constexpr std::int32_t kHostFinalCutPro = HostCode("KeyG");
inline constexpr std::int32_t kHostMotion = HostCode("MOTN");
inline constexpr std::int32_t kHostCbst = HostCode("Cbst");

/// Bytes (or 16-bit units, for the wide selectors) that get_platform_data may write for a path.
inline constexpr std::int32_t kPlatformPathLength = 260;

}  // namespace vireon::sdk
