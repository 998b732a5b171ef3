/// @file
/// Parameters of an effect. A value lies in the union member of its kind.
#pragma once

#include <cstdint>

#include "sdk/layout.h"
#include "sdk/types.h"
#include "sdk/worlds.h"

namespace vireon::sdk {

/// Integer slider.
struct PF_SliderDef {
    std::int32_t value;
    char value_str[32];
    char value_desc[32];
    std::int32_t valid_min;
    std::int32_t valid_max;
    std::int32_t slider_min;
    std::int32_t slider_max;
    std::int32_t dephault;
};
VIREON_SDK_RECORD(PF_SliderDef, 88, 4);
VIREON_SDK_FIELD(PF_SliderDef, value, 0);
VIREON_SDK_FIELD(PF_SliderDef, value_str, 4);
VIREON_SDK_FIELD(PF_SliderDef, value_desc, 36);
VIREON_SDK_FIELD(PF_SliderDef, valid_min, 68);
VIREON_SDK_FIELD(PF_SliderDef, valid_max, 72);
VIREON_SDK_FIELD(PF_SliderDef, slider_min, 76);
VIREON_SDK_FIELD(PF_SliderDef, slider_max, 80);
VIREON_SDK_FIELD(PF_SliderDef, dephault, 84);

/// Fixed-point slider: value, bounds and default are 16.16.
struct PF_FixedSliderDef {
    PF_Fixed value;
    char value_str[32];
    char value_desc[32];
    PF_Fixed valid_min;
    PF_Fixed valid_max;
    PF_Fixed slider_min;
    PF_Fixed slider_max;
    PF_Fixed dephault;
    std::int16_t precision;      ///< digits after the point
    std::int16_t display_flags;  ///< PF_ValueDisplayFlag bits
};
VIREON_SDK_RECORD(PF_FixedSliderDef, 92, 4);
VIREON_SDK_FIELD(PF_FixedSliderDef, value, 0);
VIREON_SDK_FIELD(PF_FixedSliderDef, value_str, 4);
VIREON_SDK_FIELD(PF_FixedSliderDef, value_desc, 36);
VIREON_SDK_FIELD(PF_FixedSliderDef, valid_min, 68);
VIREON_SDK_FIELD(PF_FixedSliderDef, valid_max, 72);
VIREON_SDK_FIELD(PF_FixedSliderDef, slider_min, 76);
VIREON_SDK_FIELD(PF_FixedSliderDef, slider_max, 80);
VIREON_SDK_FIELD(PF_FixedSliderDef, dephault, 84);
VIREON_SDK_FIELD(PF_FixedSliderDef, precision, 88);
VIREON_SDK_FIELD(PF_FixedSliderDef, display_flags, 90);

/// Float slider: the value is a double, bounds and default are single floats.
struct PF_FloatSliderDef {
    double value;
    double phase;  ///< audio only
    char value_desc[32];
    float valid_min;
    float valid_max;
    float slider_min;
    float slider_max;
    float dephault;
    std::int16_t precision;      ///< digits after the point
    std::int16_t display_flags;  ///< PF_ValueDisplayFlag bits
    std::uint32_t fs_flags;      ///< PF_FSliderFlag bits
    float curve_tolerance;
    PF_Boolean useExponent;  ///< one byte
    float exponent;
};
VIREON_SDK_RECORD(PF_FloatSliderDef, 88, 8);
VIREON_SDK_FIELD(PF_FloatSliderDef, value, 0);
VIREON_SDK_FIELD(PF_FloatSliderDef, phase, 8);
VIREON_SDK_FIELD(PF_FloatSliderDef, value_desc, 16);
VIREON_SDK_FIELD(PF_FloatSliderDef, valid_min, 48);
VIREON_SDK_FIELD(PF_FloatSliderDef, valid_max, 52);
VIREON_SDK_FIELD(PF_FloatSliderDef, slider_min, 56);
VIREON_SDK_FIELD(PF_FloatSliderDef, slider_max, 60);
VIREON_SDK_FIELD(PF_FloatSliderDef, dephault, 64);
VIREON_SDK_FIELD(PF_FloatSliderDef, precision, 68);
VIREON_SDK_FIELD(PF_FloatSliderDef, display_flags, 70);
VIREON_SDK_FIELD(PF_FloatSliderDef, fs_flags, 72);
VIREON_SDK_FIELD(PF_FloatSliderDef, curve_tolerance, 76);
VIREON_SDK_FIELD(PF_FloatSliderDef, useExponent, 80);
VIREON_SDK_FIELD(PF_FloatSliderDef, exponent, 84);

/// Angle in degrees, 16.16.
struct PF_AngleDef {
    PF_Fixed value;
    PF_Fixed dephault;
    PF_Fixed valid_min;
    PF_Fixed valid_max;
};
VIREON_SDK_RECORD(PF_AngleDef, 16, 4);
VIREON_SDK_FIELD(PF_AngleDef, value, 0);
VIREON_SDK_FIELD(PF_AngleDef, dephault, 4);
VIREON_SDK_FIELD(PF_AngleDef, valid_min, 8);
VIREON_SDK_FIELD(PF_AngleDef, valid_max, 12);

/// Checkbox; the label must point to text, be it empty.
struct PF_CheckBoxDef {
    std::int32_t value;   ///< 0 or 1, 32 bits
    PF_Boolean dephault;  ///< one byte
    char reserved;
    std::int16_t reserved1;
    union {
        const char* nameptr;
    } u;
};
VIREON_SDK_RECORD(PF_CheckBoxDef, 16, 8);
VIREON_SDK_FIELD(PF_CheckBoxDef, value, 0);
VIREON_SDK_FIELD(PF_CheckBoxDef, dephault, 4);
VIREON_SDK_FIELD(PF_CheckBoxDef, reserved, 5);
VIREON_SDK_FIELD(PF_CheckBoxDef, reserved1, 6);
VIREON_SDK_FIELD(PF_CheckBoxDef, u, 8);

/// Colour control, 8 bits a channel.
struct PF_ColorDef {
    PF_Pixel value;
    PF_Pixel dephault;
};
VIREON_SDK_RECORD(PF_ColorDef, 8, 1);
VIREON_SDK_FIELD(PF_ColorDef, value, 0);
VIREON_SDK_FIELD(PF_ColorDef, dephault, 4);

/// Point control. Defaults are percent of the layer, values are pixels of the input buffer.
struct PF_PointDef {
    PF_Fixed x_value;  ///< pixels, 16.16
    PF_Fixed y_value;
    char reserved[3];
    PF_Boolean restrict_bounds;
    PF_Fixed x_dephault;  ///< percent, 16.16
    PF_Fixed y_dephault;
};
VIREON_SDK_RECORD(PF_PointDef, 20, 4);
VIREON_SDK_FIELD(PF_PointDef, x_value, 0);
VIREON_SDK_FIELD(PF_PointDef, y_value, 4);
VIREON_SDK_FIELD(PF_PointDef, reserved, 8);
VIREON_SDK_FIELD(PF_PointDef, restrict_bounds, 11);
VIREON_SDK_FIELD(PF_PointDef, x_dephault, 12);
VIREON_SDK_FIELD(PF_PointDef, y_dephault, 16);

/// Point in space; defaults are percent.
struct PF_Point3DDef {
    double x_value;
    double y_value;
    double z_value;
    double x_dephault;
    double y_dephault;
    double z_dephault;
    char reserved[16];
};
VIREON_SDK_RECORD(PF_Point3DDef, 64, 8);
VIREON_SDK_FIELD(PF_Point3DDef, x_value, 0);
VIREON_SDK_FIELD(PF_Point3DDef, y_value, 8);
VIREON_SDK_FIELD(PF_Point3DDef, z_value, 16);
VIREON_SDK_FIELD(PF_Point3DDef, x_dephault, 24);
VIREON_SDK_FIELD(PF_Point3DDef, y_dephault, 32);
VIREON_SDK_FIELD(PF_Point3DDef, z_dephault, 40);
VIREON_SDK_FIELD(PF_Point3DDef, reserved, 48);

/// Popup menu; the choices are one text with vertical bars between them.
struct PF_PopupDef {
    std::int32_t value;        ///< counted from 1
    std::int16_t num_choices;  ///< separators count
    std::int16_t dephault;     ///< counted from 1
    union {
        const char* namesptr;
    } u;
};
VIREON_SDK_RECORD(PF_PopupDef, 16, 8);
VIREON_SDK_FIELD(PF_PopupDef, value, 0);
VIREON_SDK_FIELD(PF_PopupDef, num_choices, 4);
VIREON_SDK_FIELD(PF_PopupDef, dephault, 6);
VIREON_SDK_FIELD(PF_PopupDef, u, 8);

/// Push button.
struct PF_ButtonDef {
    std::int32_t value;
    union {
        const char* namesptr;
    } u;
};
VIREON_SDK_RECORD(PF_ButtonDef, 16, 8);
VIREON_SDK_FIELD(PF_ButtonDef, value, 0);
VIREON_SDK_FIELD(PF_ButtonDef, u, 8);

/// Choice of a mask path of the layer.
struct PF_PathDef {
    PF_PathID path_id;  ///< 0 is none
    std::int32_t reserved0;
    std::int32_t dephault;
};
VIREON_SDK_RECORD(PF_PathDef, 12, 4);
VIREON_SDK_FIELD(PF_PathDef, path_id, 0);
VIREON_SDK_FIELD(PF_PathDef, reserved0, 4);
VIREON_SDK_FIELD(PF_PathDef, dephault, 8);

/// Data of the effect's own kind.
struct PF_ArbitraryDef {
    std::int16_t id;
    std::int16_t pad;
    PF_Handle dephault;
    PF_Handle value;
    void* refconPV;
};
VIREON_SDK_RECORD(PF_ArbitraryDef, 32, 8);
VIREON_SDK_FIELD(PF_ArbitraryDef, id, 0);
VIREON_SDK_FIELD(PF_ArbitraryDef, pad, 2);
VIREON_SDK_FIELD(PF_ArbitraryDef, dephault, 8);
VIREON_SDK_FIELD(PF_ArbitraryDef, value, 16);
VIREON_SDK_FIELD(PF_ArbitraryDef, refconPV, 24);

/// The part of a parameter that depends on its kind.
union PF_ParamDefUnion {
    PF_EffectWorld ld;        ///< layer
    PF_SliderDef sd;          ///< integer slider
    PF_FixedSliderDef fd;     ///< fixed slider
    PF_AngleDef ad;           ///< angle
    PF_CheckBoxDef bd;        ///< checkbox
    PF_ColorDef cd;           ///< colour
    PF_PointDef td;           ///< point
    PF_PopupDef pd;           ///< popup
    PF_FloatSliderDef fs_d;   ///< float slider
    PF_ArbitraryDef arb_d;    ///< arbitrary data
    PF_PathDef path_d;        ///< path
    PF_ButtonDef button_d;    ///< button
    PF_Point3DDef point3d_d;  ///< point in space
};
VIREON_SDK_RECORD(PF_ParamDefUnion, 120, 8);
VIREON_SDK_FIELD(PF_ParamDefUnion, ld, 0);
VIREON_SDK_FIELD(PF_ParamDefUnion, sd, 0);
VIREON_SDK_FIELD(PF_ParamDefUnion, fd, 0);
VIREON_SDK_FIELD(PF_ParamDefUnion, ad, 0);
VIREON_SDK_FIELD(PF_ParamDefUnion, bd, 0);
VIREON_SDK_FIELD(PF_ParamDefUnion, cd, 0);
VIREON_SDK_FIELD(PF_ParamDefUnion, td, 0);
VIREON_SDK_FIELD(PF_ParamDefUnion, pd, 0);
VIREON_SDK_FIELD(PF_ParamDefUnion, fs_d, 0);
VIREON_SDK_FIELD(PF_ParamDefUnion, arb_d, 0);
VIREON_SDK_FIELD(PF_ParamDefUnion, path_d, 0);
VIREON_SDK_FIELD(PF_ParamDefUnion, button_d, 0);
VIREON_SDK_FIELD(PF_ParamDefUnion, point3d_d, 0);

/// One parameter, as the effect registers it and as the host hands its value out.
struct PF_ParamDef {
    union {
        std::int32_t id;            ///< at add_param: the identity that saved projects refer to
        std::int32_t change_flags;  ///< later: PF_ChangeFlag bits set by the effect
    } uu;
    std::int32_t ui_flags;  ///< PF_PUI bits
    std::int16_t ui_width;
    std::int16_t ui_height;
    std::int32_t param_type;  ///< PF_Param_* kind; not reliable after a check-out
    char name[32];            ///< host code page, ended by a zero
    std::int32_t flags;       ///< PF_ParamFlag bits
    std::int32_t unused;
    PF_ParamDefUnion u;
};
VIREON_SDK_RECORD(PF_ParamDef, 176, 8);
VIREON_SDK_FIELD(PF_ParamDef, uu, 0);
VIREON_SDK_FIELD(PF_ParamDef, ui_flags, 4);
VIREON_SDK_FIELD(PF_ParamDef, ui_width, 8);
VIREON_SDK_FIELD(PF_ParamDef, ui_height, 10);
VIREON_SDK_FIELD(PF_ParamDef, param_type, 12);
VIREON_SDK_FIELD(PF_ParamDef, name, 16);
VIREON_SDK_FIELD(PF_ParamDef, flags, 48);
VIREON_SDK_FIELD(PF_ParamDef, unused, 52);
VIREON_SDK_FIELD(PF_ParamDef, u, 56);

}  // namespace vireon::sdk
