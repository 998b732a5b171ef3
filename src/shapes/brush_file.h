#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

#include "platform/paths.h"
#include "shapes/brush_number.h"
#include "shapes/glow_kernel.h"

namespace vireon {

/// Size that every brush file must have.
inline constexpr std::int32_t kBrushSize = 256;

/// What was met while a brush file was read, for those who tell its author.
struct BrushFileNotes {
    /// Lines of samples that read in one way.
    struct Lines {
        std::int64_t count = 0;
        std::int64_t first = 0;  ///< number of the first, as an editor counts; 0: there is none
        std::string text;        ///< what it says, shortened
    };

    bool isOpen = false;               ///< the file could be opened
    std::int32_t headerLines = 0;      ///< of three
    std::int32_t samples = 0;          ///< sample lines that are there
    std::array<Lines, 5> readings;     ///< by `SampleReading`; the text of numbers is not kept
    std::int64_t firstLongLine = 0;    ///< first that counts as several; 0: there is none
    std::int64_t firstLineBehind = 0;  ///< first behind the samples that is not blank; 0: none

    Lines& of(SampleReading reading) { return readings[static_cast<std::size_t>(reading)]; }
    const Lines& of(SampleReading reading) const {
        return readings[static_cast<std::size_t>(reading)];
    }
};

/// Reads a brush file: a line with the width, one with the height, one with any text, then one
/// sample a line in rows.
///
/// Numbers are decimal prefixes of their lines in any locale: what follows them is ignored, a line
/// without one is 0. Lines longer than 1023 characters count as several. Samples that are missing
/// or not finite are 0, lines behind the last sample are not used.
/// \param notes  what was met is added to it; may be null
/// \return the kernel; empty when the file cannot be read, its header is short or its size is not
///         256 x 256 (the size it claims is kept then)
GlowKernel ReadBrushFile(const platform::Path& path, BrushFileNotes* notes = nullptr);

}  // namespace vireon
