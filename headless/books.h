#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <utility>

namespace vireon::headless {

/// What the effect holds of the host's at a moment.
struct Balance {
    std::map<std::pair<std::string, std::int32_t>, std::int64_t> suites;  ///< by name and version
    std::int64_t parameters = 0;                                          ///< parameter check-outs
    std::int64_t worlds = 0;       ///< worlds made and not disposed of
    std::int64_t handles = 0;      ///< handles made and not disposed of
    std::int64_t locks = 0;        ///< locks of those handles
    std::int64_t paths = 0;        ///< path check-outs
    std::int64_t layerPixels = 0;  ///< layer pixel check-outs; the host takes them back itself
    std::int64_t blocks = 0;       ///< blocks of the basic suite
    std::size_t bytes = 0;         ///< in worlds, handles and blocks

    bool empty() const { return text().empty(); }
    /// What is out, layer pixels excepted, one item a line; empty when nothing is.
    std::string text() const;
};

}  // namespace vireon::headless
