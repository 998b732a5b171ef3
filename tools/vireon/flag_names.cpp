#include "tools/vireon/flag_names.h"

#include <span>

#include "sdk/constants.h"

namespace vireon::tool {
namespace {

struct FlagName {
    std::int32_t bit;
    const char* name;
};

constexpr FlagName kOutFlags[] = {
    {sdk::PF_OutFlag_KEEP_RESOURCE_OPEN, "KEEP_RESOURCE_OPEN"},
    {sdk::PF_OutFlag_WIDE_TIME_INPUT, "WIDE_TIME_INPUT"},
    {sdk::PF_OutFlag_NON_PARAM_VARY, "NON_PARAM_VARY"},
    {sdk::PF_OutFlag_RESERVED6, "RESERVED6"},
    {sdk::PF_OutFlag_SEQUENCE_DATA_NEEDS_FLATTENING, "SEQUENCE_DATA_NEEDS_FLATTENING"},
    {sdk::PF_OutFlag_I_DO_DIALOG, "I_DO_DIALOG"},
    {sdk::PF_OutFlag_USE_OUTPUT_EXTENT, "USE_OUTPUT_EXTENT"},
    {sdk::PF_OutFlag_SEND_DO_DIALOG, "SEND_DO_DIALOG"},
    {sdk::PF_OutFlag_DISPLAY_ERROR_MESSAGE, "DISPLAY_ERROR_MESSAGE"},
    {sdk::PF_OutFlag_I_EXPAND_BUFFER, "I_EXPAND_BUFFER"},
    {sdk::PF_OutFlag_PIX_INDEPENDENT, "PIX_INDEPENDENT"},
    {sdk::PF_OutFlag_I_WRITE_INPUT_BUFFER, "I_WRITE_INPUT_BUFFER"},
    {sdk::PF_OutFlag_I_SHRINK_BUFFER, "I_SHRINK_BUFFER"},
    {sdk::PF_OutFlag_WORKS_IN_PLACE, "WORKS_IN_PLACE"},
    {sdk::PF_OutFlag_RESERVED8, "RESERVED8"},
    {sdk::PF_OutFlag_CUSTOM_UI, "CUSTOM_UI"},
    {sdk::PF_OutFlag_RESERVED7, "RESERVED7"},
    {sdk::PF_OutFlag_REFRESH_UI, "REFRESH_UI"},
    {sdk::PF_OutFlag_NOP_RENDER, "NOP_RENDER"},
    {sdk::PF_OutFlag_I_USE_SHUTTER_ANGLE, "I_USE_SHUTTER_ANGLE"},
    {sdk::PF_OutFlag_I_USE_AUDIO, "I_USE_AUDIO"},
    {sdk::PF_OutFlag_I_AM_OBSOLETE, "I_AM_OBSOLETE"},
    {sdk::PF_OutFlag_FORCE_RERENDER, "FORCE_RERENDER"},
    {sdk::PF_OutFlag_PiPL_OVERRIDES_OUTDATA_OUTFLAGS, "PiPL_OVERRIDES_OUTDATA_OUTFLAGS"},
    {sdk::PF_OutFlag_I_HAVE_EXTERNAL_DEPENDENCIES, "I_HAVE_EXTERNAL_DEPENDENCIES"},
    {sdk::PF_OutFlag_DEEP_COLOR_AWARE, "DEEP_COLOR_AWARE"},
    {sdk::PF_OutFlag_SEND_UPDATE_PARAMS_UI, "SEND_UPDATE_PARAMS_UI"},
    {sdk::PF_OutFlag_AUDIO_FLOAT_ONLY, "AUDIO_FLOAT_ONLY"},
    {sdk::PF_OutFlag_AUDIO_IIR, "AUDIO_IIR"},
    {sdk::PF_OutFlag_I_SYNTHESIZE_AUDIO, "I_SYNTHESIZE_AUDIO"},
    {sdk::PF_OutFlag_AUDIO_EFFECT_TOO, "AUDIO_EFFECT_TOO"},
    {sdk::PF_OutFlag_AUDIO_EFFECT_ONLY, "AUDIO_EFFECT_ONLY"},
};

constexpr FlagName kOutFlags2[] = {
    {sdk::PF_OutFlag2_SUPPORTS_QUERY_DYNAMIC_FLAGS, "SUPPORTS_QUERY_DYNAMIC_FLAGS"},
    {sdk::PF_OutFlag2_I_USE_3D_CAMERA, "I_USE_3D_CAMERA"},
    {sdk::PF_OutFlag2_I_USE_3D_LIGHTS, "I_USE_3D_LIGHTS"},
    {sdk::PF_OutFlag2_PARAM_GROUP_START_COLLAPSED_FLAG, "PARAM_GROUP_START_COLLAPSED_FLAG"},
    {sdk::PF_OutFlag2_I_AM_THREADSAFE, "I_AM_THREADSAFE"},
    {sdk::PF_OutFlag2_CAN_COMBINE_WITH_DESTINATION, "CAN_COMBINE_WITH_DESTINATION"},
    {sdk::PF_OutFlag2_DOESNT_NEED_EMPTY_PIXELS, "DOESNT_NEED_EMPTY_PIXELS"},
    {sdk::PF_OutFlag2_REVEALS_ZERO_ALPHA, "REVEALS_ZERO_ALPHA"},
    {sdk::PF_OutFlag2_PRESERVES_FULLY_OPAQUE_PIXELS, "PRESERVES_FULLY_OPAQUE_PIXELS"},
    {sdk::PF_OutFlag2_SUPPORTS_SMART_RENDER, "SUPPORTS_SMART_RENDER"},
    {sdk::PF_OutFlag2_RESERVED9, "RESERVED9"},
    {sdk::PF_OutFlag2_FLOAT_COLOR_AWARE, "FLOAT_COLOR_AWARE"},
    {sdk::PF_OutFlag2_I_USE_COLORSPACE_ENUMERATION, "I_USE_COLORSPACE_ENUMERATION"},
    {sdk::PF_OutFlag2_I_AM_DEPRECATED, "I_AM_DEPRECATED"},
    {sdk::PF_OutFlag2_PPRO_DO_NOT_CLONE_SEQUENCE_DATA_FOR_RENDER,
     "PPRO_DO_NOT_CLONE_SEQUENCE_DATA_FOR_RENDER"},
    {sdk::PF_OutFlag2_RESERVED10, "RESERVED10"},
    {sdk::PF_OutFlag2_AUTOMATIC_WIDE_TIME_INPUT, "AUTOMATIC_WIDE_TIME_INPUT"},
    {sdk::PF_OutFlag2_I_USE_TIMECODE, "I_USE_TIMECODE"},
    {sdk::PF_OutFlag2_DEPENDS_ON_UNREFERENCED_MASKS, "DEPENDS_ON_UNREFERENCED_MASKS"},
    {sdk::PF_OutFlag2_OUTPUT_IS_WATERMARKED, "OUTPUT_IS_WATERMARKED"},
    {sdk::PF_OutFlag2_I_MIX_GUID_DEPENDENCIES, "I_MIX_GUID_DEPENDENCIES"},
    {sdk::PF_OutFlag2_AE13_5_THREADSAFE, "AE13_5_THREADSAFE"},
    {sdk::PF_OutFlag2_SUPPORTS_GET_FLATTENED_SEQUENCE_DATA, "SUPPORTS_GET_FLATTENED_SEQUENCE_DATA"},
    {sdk::PF_OutFlag2_CUSTOM_UI_ASYNC_MANAGER, "CUSTOM_UI_ASYNC_MANAGER"},
    {sdk::PF_OutFlag2_SUPPORTS_GPU_RENDER_F32, "SUPPORTS_GPU_RENDER_F32"},
    {sdk::PF_OutFlag2_RESERVED12, "RESERVED12"},
    {sdk::PF_OutFlag2_SUPPORTS_THREADED_RENDERING, "SUPPORTS_THREADED_RENDERING"},
    {sdk::PF_OutFlag2_MUTABLE_RENDER_SEQUENCE_DATA_SLOWER, "MUTABLE_RENDER_SEQUENCE_DATA_SLOWER"},
    {sdk::PF_OutFlag2_SUPPORTS_DIRECTX_RENDERING, "SUPPORTS_DIRECTX_RENDERING"},
};

std::vector<std::string> Names(std::uint32_t bits, std::span<const FlagName> table) {
    std::vector<std::string> names;
    for (const FlagName& entry : table) {
        const auto bit = static_cast<std::uint32_t>(entry.bit);
        if ((bits & bit) != 0) {
            names.emplace_back(entry.name);
            bits &= ~bit;
        }
    }
    for (std::uint32_t bit = 1; bit != 0; bit <<= 1) {
        if ((bits & bit) != 0) {
            names.push_back("bit " + std::to_string(bit));
        }
    }
    return names;
}

}  // namespace

std::vector<std::string> OutFlagNames(std::uint32_t bits) {
    return Names(bits, kOutFlags);
}

std::vector<std::string> OutFlag2Names(std::uint32_t bits) {
    return Names(bits, kOutFlags2);
}

std::string StageName(std::uint32_t stage) {
    switch (stage) {
        case sdk::PF_Stage_DEVELOP: return "development";
        case sdk::PF_Stage_ALPHA: return "alpha";
        case sdk::PF_Stage_BETA: return "beta";
        default: return "release";
    }
}

std::string KindName(std::int32_t kind) {
    switch (kind) {
        case sdk::PF_Param_LAYER: return "layer";
        case sdk::PF_Param_SLIDER: return "slider";
        case sdk::PF_Param_FIX_SLIDER: return "fixed slider";
        case sdk::PF_Param_FLOAT_SLIDER: return "float slider";
        case sdk::PF_Param_ANGLE: return "angle";
        case sdk::PF_Param_CHECKBOX: return "checkbox";
        case sdk::PF_Param_COLOR: return "color";
        case sdk::PF_Param_POINT: return "point";
        case sdk::PF_Param_POPUP: return "popup";
        case sdk::PF_Param_GROUP_START: return "group start";
        case sdk::PF_Param_GROUP_END: return "group end";
        default: return "kind " + std::to_string(kind);
    }
}

std::string ErrorName(std::int32_t error) {
    switch (error) {
        case sdk::A_Err_GENERIC: return "general failure";
        case sdk::PF_Err_OUT_OF_MEMORY: return "out of memory";
        case sdk::PF_Err_INTERNAL_STRUCT_DAMAGED: return "internal failure";
        case sdk::PF_Err_INVALID_INDEX: return "invalid index";
        case sdk::PF_Err_UNRECOGNIZED_PARAM_TYPE: return "unrecognised parameter kind";
        case sdk::PF_Err_INVALID_CALLBACK: return "invalid callback";
        case sdk::PF_Err_BAD_CALLBACK_PARAM: return "bad callback argument";
        case sdk::PF_Interrupt_CANCEL: return "cancelled";
        default: return {};
    }
}

}  // namespace vireon::tool
