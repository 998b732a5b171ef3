#pragma once

#include <filesystem>
#include <string>

#include "benchmarks/speed_table.h"

namespace vireon::bench {

/// Times what ffmpeg's own filters need for a glow of the plainest kind on the 1080p night city, 8
/// bits a channel, one thread: colorlevels (black point 0.5), gblur (sigma 25) and blend (screen)
/// with the original. The frame is read once and kept by ffmpeg, so that the filters alone count;
/// the time is the processor time that ffmpeg gives for itself, by the frame. Throws std::exception
/// when the program cannot be run.
/// \param program  path of ffmpeg
/// \param work     folder for the picture, made when it is missing
/// \param rounds   runs, the least of which counts
Yardstick MeasureFilterChain(const std::string& program, const std::filesystem::path& work,
                             int rounds);

}  // namespace vireon::bench
