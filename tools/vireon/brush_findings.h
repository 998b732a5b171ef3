#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "shapes/glow_kernel.h"

namespace vireon::tool {

/// Something that the author of a brush should know.
struct BrushFinding {
    bool isFault = false;   ///< the effect cannot use the file, or not as it stands; else a warning
    std::int64_t line = 0;  ///< in the file, from 1; 0: the file as a whole
    std::string text;       ///< completes "the file ...": "is empty"
};

/// A brush file as the effect reads it, and what is to be said about it.
struct BrushReport {
    GlowKernel kernel;                   ///< has no texels where the effect gets none
    std::vector<BrushFinding> findings;  ///< faults before warnings

    int faults() const;
    int warnings() const { return static_cast<int>(findings.size()) - faults(); }
};

/// Files beyond this many bytes are refused unread: the largest brush has about a tenth.
inline constexpr std::uintmax_t kLargestBrushFile = std::uintmax_t{16} << 20;

/// Reads a brush file with the effect's own reader and judges it. Whatever lies at `path`, nothing
/// is thrown and nothing waits: pipes and devices are not opened.
BrushReport InspectBrush(const std::filesystem::path& path);

/// One of the effect's brush files in a folder.
struct BrushFileReport {
    std::string file;   ///< its name
    std::string shape;  ///< the shape's name in the effect; empty for a file that is none of its
    BrushReport report;
};

/// Judges the thirteen files that the effect looks for in a folder, in the order of its menu, and
/// warns of other files there whose names end in .brush.
std::vector<BrushFileReport> InspectBrushFolder(const std::filesystem::path& folder);

/// First fault of a report as a sentence without its subject, with its line; empty without one.
std::string FirstFault(const BrushReport& report);

}  // namespace vireon::tool
