#pragma once

#include <cstdint>

namespace vireon {

class PluginHost_API;

/// Registers the effect's parameters with the host, in order, and sets their count.
/// \return 0; the host's code of the first registration that failed, the rest being left out; 1
/// when
///         the host object has no records of the host's contract
std::int32_t SetUpParameters(PluginHost_API& host);

}  // namespace vireon
