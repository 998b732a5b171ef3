#include "shapes/brush_file.h"

#include <optional>
#include <string_view>

#include "shapes/brush_lines.h"

namespace vireon {
namespace {

constexpr std::size_t kTextKept = 40;

// A file that goes on for ever is not read for ever.
constexpr int kLinesLookedAtBehind = 1000;

void NoteSample(const BrushLines& lines, std::string_view line, SampleReading reading,
                BrushFileNotes& notes) {
    ++notes.samples;
    if (lines.isContinued() && notes.firstLongLine == 0) notes.firstLongLine = lines.number();
    BrushFileNotes::Lines& of = notes.of(reading);
    if (of.count++ > 0) return;
    of.first = lines.number();
    if (reading != SampleReading::kNumber) of.text = line.substr(0, kTextKept);
}

void NoteLinesBehind(BrushLines& lines, BrushFileNotes& notes) {
    for (int i = 0; i < kLinesLookedAtBehind; ++i) {
        const auto line = lines.next();
        if (!line) return;
        if (line->find_first_not_of(" \t\n\v\f\r") != std::string_view::npos) {
            notes.firstLineBehind = lines.number();
            return;
        }
    }
}

}  // namespace

GlowKernel ReadBrushFile(const platform::Path& path, BrushFileNotes* notes) {
    GlowKernel kernel;
    BrushLines lines(path);
    BrushFileNotes unwanted;
    BrushFileNotes& met = notes != nullptr ? *notes : unwanted;
    met.isOpen = lines.isOpen();

    const auto headerLine = [&lines, &met] {
        const auto line = lines.next();
        met.headerLines += line ? 1 : 0;
        if (line && lines.isContinued() && met.firstLongLine == 0) {
            met.firstLongLine = lines.number();
        }
        return line;
    };
    auto line = headerLine();
    if (!line) return kernel;
    kernel.width = ParseBrushSize(*line);
    line = headerLine();
    if (!line) return kernel;
    const std::int32_t height = ParseBrushSize(*line);
    if (!headerLine()) return kernel;
    kernel.height = height;
    if (kernel.width != kBrushSize || kernel.height != kBrushSize) return kernel;

    kernel.allocate(kBrushSize, kBrushSize);
    for (float& value : kernel.values) {
        line = lines.next();
        if (!line) break;
        const BrushSample sample = ParseBrushSample(*line);
        value = sample.value;
        if (notes != nullptr) NoteSample(lines, *line, sample.reading, met);
    }
    kernel.flagEmptyRows();
    if (notes != nullptr && line) NoteLinesBehind(lines, met);
    return kernel;
}

}  // namespace vireon
