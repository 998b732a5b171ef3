#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace vireon::tool {

// Names of the host interface's numbers, as its users know them.

/// Names of the bits of out_flags, ascending; bits without a name as "bit N".
std::vector<std::string> OutFlagNames(std::uint32_t bits);
std::vector<std::string> OutFlag2Names(std::uint32_t bits);
/// "development", "alpha", "beta" or "release".
std::string StageName(std::uint32_t stage);
/// Kind of a parameter in words, e.g. "float slider".
std::string KindName(std::int32_t kind);
/// What an error code of an effect means; empty for an unknown one.
std::string ErrorName(std::int32_t error);

}  // namespace vireon::tool
