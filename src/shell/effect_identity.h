#pragma once

#include <cstdint>

#include "sdk/sdk.h"

namespace vireon {

/// Who the effect is to the host. The resource declares the same values before any code runs.
inline constexpr const char* kEffectName = "Vireon Glow";
inline constexpr const char* kEffectDescription = "Vireon  High Quality Glow";
inline constexpr const char* kEffectNotice = "Made by Orvante Zephal.";

inline constexpr std::uint32_t kVersionMajor = 1;
inline constexpr std::uint32_t kVersionMinor = 1;
inline constexpr std::uint32_t kVersionBugfix = 2;

/// The version as the host packs it, a release build 0.
inline constexpr std::uint32_t kPackedVersion =
    kVersionMajor << sdk::PF_Vers_VERS_SHIFT | kVersionMinor << sdk::PF_Vers_SUBVERS_SHIFT |
    kVersionBugfix << sdk::PF_Vers_BUGFIX_SHIFT |
    static_cast<std::uint32_t>(sdk::PF_Stage_RELEASE) << sdk::PF_Vers_STAGE_SHIFT;
static_assert(kPackedVersion == 0x00089600, "the resource declares this version");

inline constexpr std::int32_t kOutFlags =
    sdk::PF_OutFlag_KEEP_RESOURCE_OPEN | sdk::PF_OutFlag_I_DO_DIALOG | sdk::PF_OutFlag_CUSTOM_UI |
    sdk::PF_OutFlag_DEEP_COLOR_AWARE | sdk::PF_OutFlag_SEND_UPDATE_PARAMS_UI;
static_assert(kOutFlags == 0x06008021, "the resource declares these flags");

inline constexpr std::int32_t kOutFlags2 = sdk::PF_OutFlag2_PARAM_GROUP_START_COLLAPSED_FLAG |
                                           sdk::PF_OutFlag2_SUPPORTS_SMART_RENDER |
                                           sdk::PF_OutFlag2_FLOAT_COLOR_AWARE;
static_assert(kOutFlags2 == 0x00001408, "the resource declares these flags");

}  // namespace vireon
