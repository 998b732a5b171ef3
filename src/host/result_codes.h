#pragma once

#include <cstdint>

namespace vireon {

/// Results that the image code itself gives; every other code comes from the host.
inline constexpr std::int32_t kSuccess = 0;
/// The render could not be done and the host named no reason of its own.
inline constexpr std::int32_t kRenderFailed = 1;
inline constexpr std::int32_t kOutOfMemory = 4;
inline constexpr std::int32_t kInternalError = 512;
inline constexpr std::int32_t kInvalidIndex = 513;
inline constexpr std::int32_t kBadCallbackParameter = 516;

}  // namespace vireon
