/// @file
/// Pictures of the host interface and what its compositing and sampling callbacks take.
#pragma once

#include <cstdint>

#include "sdk/layout.h"
#include "sdk/types.h"

namespace vireon::sdk {

/// A picture: the record belongs to whoever holds it, the pixels to whoever made them.
/// Rows lie rowbytes apart, which may exceed the used bytes and may be negative.
struct PF_EffectWorld {
    void* reserved0;           ///< host private; copied along with the record
    void* reserved1;           ///< host private
    std::int32_t world_flags;  ///< PF_WorldFlag bits; float worlds do not set the deep bit
    void* data;                ///< first pixel of the top row; null when there is no picture
    std::int32_t rowbytes;     ///< signed distance in bytes from a row to the one below
    std::int32_t width;        ///< pixels
    std::int32_t height;       ///< rows
    PF_LRect extent_hint;      ///< part that holds anything but transparent pixels
    void* platform_ref;
    std::int32_t reserved_long1;
    void* reserved_long4;
    PF_RationalScale pix_aspect_ratio;  ///< of checked-out layers only
    void* reserved_long2;
    std::int32_t origin_x;  ///< layer column of the first pixel
    std::int32_t origin_y;  ///< layer row of the first pixel
    std::int32_t reserved_long3;
    std::int32_t dephault;  ///< default of a layer parameter, PF_LayerDefault_*
};
VIREON_SDK_RECORD(PF_EffectWorld, 120, 8);
VIREON_SDK_FIELD(PF_EffectWorld, reserved0, 0);
VIREON_SDK_FIELD(PF_EffectWorld, reserved1, 8);
VIREON_SDK_FIELD(PF_EffectWorld, world_flags, 16);
VIREON_SDK_FIELD(PF_EffectWorld, data, 24);
VIREON_SDK_FIELD(PF_EffectWorld, rowbytes, 32);
VIREON_SDK_FIELD(PF_EffectWorld, width, 36);
VIREON_SDK_FIELD(PF_EffectWorld, height, 40);
VIREON_SDK_FIELD(PF_EffectWorld, extent_hint, 44);
VIREON_SDK_FIELD(PF_EffectWorld, platform_ref, 64);
VIREON_SDK_FIELD(PF_EffectWorld, reserved_long1, 72);
VIREON_SDK_FIELD(PF_EffectWorld, reserved_long4, 80);
VIREON_SDK_FIELD(PF_EffectWorld, pix_aspect_ratio, 88);
VIREON_SDK_FIELD(PF_EffectWorld, reserved_long2, 96);
VIREON_SDK_FIELD(PF_EffectWorld, origin_x, 104);
VIREON_SDK_FIELD(PF_EffectWorld, origin_y, 108);
VIREON_SDK_FIELD(PF_EffectWorld, reserved_long3, 112);
VIREON_SDK_FIELD(PF_EffectWorld, dephault, 116);
/// The world of a layer parameter.
using PF_LayerDef = PF_EffectWorld;

/// How the compositing callbacks lay one world over another.
struct PF_CompositeMode {
    std::int32_t xfer;        ///< PF_Xfer_* number
    std::int32_t rand_seed;   ///< for the dissolve modes
    std::uint8_t opacity;     ///< 0 to 255, 8-bit worlds
    PF_Boolean rgb_only;      ///< not 0: leave alpha alone
    std::uint16_t opacitySu;  ///< 0 to 32768, deep worlds
};
VIREON_SDK_RECORD(PF_CompositeMode, 12, 4);
VIREON_SDK_FIELD(PF_CompositeMode, xfer, 0);
VIREON_SDK_FIELD(PF_CompositeMode, rand_seed, 4);
VIREON_SDK_FIELD(PF_CompositeMode, opacity, 8);
VIREON_SDK_FIELD(PF_CompositeMode, rgb_only, 9);
VIREON_SDK_FIELD(PF_CompositeMode, opacitySu, 10);

/// A world used as a mask by the compositing callbacks.
struct PF_MaskWorld {
    PF_EffectWorld mask;
    PF_Point offset;
    std::int32_t what_is_mask;  ///< PF_MaskFlag bits
};
VIREON_SDK_RECORD(PF_MaskWorld, 136, 8);
VIREON_SDK_FIELD(PF_MaskWorld, mask, 0);
VIREON_SDK_FIELD(PF_MaskWorld, offset, 120);
VIREON_SDK_FIELD(PF_MaskWorld, what_is_mask, 128);

/// State of the sampling callbacks.
struct PF_SampPB {
    PF_Fixed x_radius;
    PF_Fixed y_radius;
    PF_Fixed area;
    PF_EffectWorld* src;  ///< world that is sampled
    std::uint32_t samp_behave;
    std::int32_t allow_asynch;
    std::int32_t motion_blur;
    PF_CompositeMode comp_mode;
    void* mask0;
    std::uint8_t* fcm_table;
    std::uint8_t* fcd_table;
    std::int32_t reserved[8];
};
VIREON_SDK_RECORD(PF_SampPB, 104, 8);
VIREON_SDK_FIELD(PF_SampPB, x_radius, 0);
VIREON_SDK_FIELD(PF_SampPB, y_radius, 4);
VIREON_SDK_FIELD(PF_SampPB, area, 8);
VIREON_SDK_FIELD(PF_SampPB, src, 16);
VIREON_SDK_FIELD(PF_SampPB, samp_behave, 24);
VIREON_SDK_FIELD(PF_SampPB, allow_asynch, 28);
VIREON_SDK_FIELD(PF_SampPB, motion_blur, 32);
VIREON_SDK_FIELD(PF_SampPB, comp_mode, 36);
VIREON_SDK_FIELD(PF_SampPB, mask0, 48);
VIREON_SDK_FIELD(PF_SampPB, fcm_table, 56);
VIREON_SDK_FIELD(PF_SampPB, fcd_table, 64);
VIREON_SDK_FIELD(PF_SampPB, reserved, 72);

}  // namespace vireon::sdk
