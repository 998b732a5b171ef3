#include "tools/vireon/brush_findings.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cmath>
#include <fstream>
#include <string_view>
#include <system_error>

#include <sys/stat.h>
#include <unistd.h>

#include "shapes/brush_file.h"
#include "tools/brushes/rasterise.h"
#include "tools/brushes/shapes.h"
#include "tools/vireon/brush_figures.h"
#include "tools/vireon/format_text.h"

namespace vireon::tool {
namespace {

constexpr std::int32_t kSamples = kBrushSize * kBrushSize;

/// Offsets of the centre of mass beyond this many texels are told: an eighth of the radius. A shape
/// may well be lopsided, as a tree is.
constexpr double kLargestOffset = 16.0;

/// Energies beyond this factor of that of our brushes are told.
constexpr double kEnergyFactor = 2.0;

class Findings {
  public:
    explicit Findings(BrushReport& report) : report_(report) {}
    void fault(std::string text, std::int64_t line = 0) {
        report_.findings.push_back({true, line, std::move(text)});
    }
    void warning(std::string text, std::int64_t line = 0) {
        report_.findings.push_back({false, line, std::move(text)});
    }

  private:
    BrushReport& report_;
};

/// A line of somebody's file, fit to be shown: in quotes, without what is not printable.
std::string Quoted(std::string text) {
    text.erase(
        std::find_if(text.begin(), text.end(), [](char c) { return c == '\n' || c == '\r'; }),
        text.end());
    for (char& c : text) {
        if (std::isprint(static_cast<unsigned char>(c)) == 0) {
            c = '?';
        }
    }
    constexpr std::size_t kShown = 24;
    return '"' + (text.size() > kShown ? text.substr(0, kShown) + "..." : text) + '"';
}

std::string FirstBytes(const std::filesystem::path& path) {
    std::string bytes(4096, '\0');
    std::ifstream stream(path, std::ios::binary);
    stream.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    bytes.resize(static_cast<std::size_t>(stream.gcount()));
    return bytes;
}

bool IsControl(char c) {
    return static_cast<unsigned char>(c) < ' ' && (c < '\t' || c > '\r');
}

/// Why a file whose header makes no sense is perhaps no plain text; empty when it may well be.
std::string EncodingFault(const std::filesystem::path& path) {
    const std::string bytes = FirstBytes(path);
    const std::string_view start(bytes);
    const bool alternates = start.size() >= 4 && ((start[0] == '\0') != (start[1] == '\0')) &&
                            ((start[2] == '\0') == (start[0] == '\0')) &&
                            ((start[3] == '\0') == (start[1] == '\0'));
    if (start.substr(0, 2) == "\xFF\xFE" || start.substr(0, 2) == "\xFE\xFF" || alternates) {
        return "is text in UTF-16, which the effect does not read: save it as plain text (ASCII)";
    }
    if (start.substr(0, 3) == "\xEF\xBB\xBF") {
        return "begins with the byte order mark of UTF-8, which the effect takes for part of the "
               "width: save it without";
    }
    if (std::any_of(start.begin(), start.end(), IsControl)) {
        return "is no text: there are zero bytes or control characters in it";
    }
    return {};
}

/// What keeps the file from being read at all; empty when nothing does.
std::string AccessFault(const std::filesystem::path& path) {
    struct stat status {};
    if (stat(path.c_str(), &status) != 0) {
        return "cannot be read: " + std::generic_category().message(errno);
    }
    if (S_ISDIR(status.st_mode)) {
        return "is a folder";
    }
    if (!S_ISREG(status.st_mode)) {
        return "is a pipe or a device; the effect reads files only";
    }
    if (access(path.c_str(), R_OK) != 0) {
        return "cannot be read: " + std::generic_category().message(errno);
    }
    if (status.st_size == 0) {
        return "is empty";
    }
    if (static_cast<std::uintmax_t>(status.st_size) > kLargestBrushFile) {
        return FormatText("is %.0f MB large, while a brush has below 2 MB: it was not looked into",
                          static_cast<double>(status.st_size) / 1e6);
    }
    return {};
}

void JudgeHeader(const std::filesystem::path& path, const BrushFileNotes& notes,
                 const GlowKernel& kernel, Findings& findings) {
    const std::string encoding = EncodingFault(path);
    if (!encoding.empty()) {
        findings.fault(encoding, 1);
    } else if (notes.headerLines < 3) {
        findings.fault(
            "ends within its header: width, height and a title are wanted, each on a "
            "line",
            notes.headerLines);
    } else {
        findings.fault(FormatText("is %d x %d, not %d x %d", kernel.width, kernel.height,
                                  kBrushSize, kBrushSize),
                       kernel.width != kBrushSize ? 1 : 2);
    }
}

std::string AndMore(std::int64_t count) {
    return count < 2 ? std::string()
                     : FormatText(" (%lld such lines)", static_cast<long long>(count));
}

/// Whether a line begins with a number as countries with a decimal comma write it.
bool HasDecimalComma(std::string_view line) {
    const std::size_t end = line.find_first_not_of("+-0123456789", line.find_first_not_of(" \t"));
    return end != std::string_view::npos && line[end] == ',' && end + 1 < line.size() &&
           std::isdigit(static_cast<unsigned char>(line[end + 1])) != 0;
}

void JudgeLines(const BrushFileNotes& notes, Findings& findings) {
    const auto judge = [&](SampleReading reading, const char* what, bool isFault) {
        const BrushFileNotes::Lines& lines = notes.of(reading);
        if (lines.count > 0) {
            const std::string text =
                "has " + Quoted(lines.text) + ", which " + what + AndMore(lines.count);
            isFault ? findings.fault(text, lines.first) : findings.warning(text, lines.first);
        }
    };
    judge(SampleReading::kNoNumber, "is no number and reads as 0", true);
    judge(SampleReading::kNotFinite, "is not finite and reads as 0", true);
    judge(SampleReading::kTooLarge, "is too large a number and reads as 0", true);
    if (notes.samples < kSamples) {
        findings.fault(
            FormatText("ends after %d of %d samples; the others are 0", notes.samples, kSamples));
    }
    const BrushFileNotes::Lines& more = notes.of(SampleReading::kMore);
    const bool comma = HasDecimalComma(more.text);
    judge(SampleReading::kMore,
          comma ? "counts up to its comma only: write a decimal point"
                : "counts up to the end of its first number only",
          comma);
    if (notes.firstLongLine > 0) {
        findings.warning("has a line of more than 1022 characters, which counts as several",
                         notes.firstLongLine);
    }
    if (notes.firstLineBehind > 0) {
        findings.warning("goes on behind its last sample; nothing from there on is used",
                         notes.firstLineBehind);
    }
}

void JudgeLight(const GlowKernel& kernel, Findings& findings) {
    const BrushFigures figures = FiguresOf(kernel);
    if (figures.peak == 0.0 && figures.smallest == 0.0) {
        findings.fault("is zero throughout: it throws no light");
        return;
    }
    if (figures.smallest < 0.0) {
        const auto count = std::count_if(kernel.values.begin(), kernel.values.end(),
                                         [](float value) { return value < 0.0f; });
        findings.warning(FormatText("has %lld values below 0, down to %.4g: they take light away",
                                    static_cast<long long>(count), figures.smallest));
    }
    if (figures.rim > 0.0) {
        findings.warning(
            FormatText("is up to %.4g at its rim (distance %d from the centre and beyond), "
                       "which shows as an edge where it is not very small",
                       figures.rim, kBrushRim));
    }
    if (figures.sum > 0.0 &&
        std::max(std::abs(figures.offsetX), std::abs(figures.offsetY)) > kLargestOffset) {
        findings.warning(
            FormatText("has its centre of mass %+.1f texels across and %+.1f down from "
                       "(%d, %d): the glow lies beside its light",
                       figures.offsetX, figures.offsetY, kBrushCentre, kBrushCentre));
    }
    if (figures.sum <= 0.0) {
        findings.warning(FormatText("adds up to %.4g: it darkens", figures.sum));
    } else if (figures.sum > brushes::kBrushEnergy * kEnergyFactor ||
               figures.sum < brushes::kBrushEnergy / kEnergyFactor) {
        findings.warning(
            FormatText("adds up to %.4g, while the shapes that come with the effect have "
                       "%.4g: its glow is %s than theirs",
                       figures.sum, brushes::kBrushEnergy,
                       figures.sum > brushes::kBrushEnergy ? "brighter" : "fainter"));
    }
}

std::string Folded(std::string name) {
    for (char& c : name) {
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    }
    return name;
}

std::vector<std::string> NamesIn(const std::filesystem::path& folder) {
    std::vector<std::string> names;
    std::error_code error;
    for (auto entry = std::filesystem::directory_iterator(folder, error);
         !error && entry != std::filesystem::directory_iterator(); entry.increment(error)) {
        names.push_back(entry->path().filename().string());
    }
    std::sort(names.begin(), names.end());
    return names;
}

BrushReport Missing(const std::string& file, const std::vector<std::string>& present) {
    BrushReport report;
    const auto other = std::find_if(present.begin(), present.end(), [&](const std::string& name) {
        return Folded(name) == Folded(file);
    });
    Findings(report).fault(
        other == present.end() ? "is missing" : "is missing; there is " + *other + ": rename it");
    return report;
}

}  // namespace

int BrushReport::faults() const {
    return static_cast<int>(std::count_if(findings.begin(), findings.end(),
                                          [](const BrushFinding& f) { return f.isFault; }));
}

BrushReport InspectBrush(const std::filesystem::path& path) {
    BrushReport report;
    Findings findings(report);
    if (const std::string fault = AccessFault(path); !fault.empty()) {
        findings.fault(fault);
        return report;
    }
    BrushFileNotes notes;
    report.kernel = ReadBrushFile(path.native(), &notes);
    if (!notes.isOpen) {
        findings.fault("cannot be opened");
    } else if (!report.kernel.hasTexels()) {
        JudgeHeader(path, notes, report.kernel, findings);
    } else {
        JudgeLines(notes, findings);
        JudgeLight(report.kernel, findings);
    }
    std::stable_partition(report.findings.begin(), report.findings.end(),
                          [](const BrushFinding& finding) { return finding.isFault; });
    return report;
}

std::vector<BrushFileReport> InspectBrushFolder(const std::filesystem::path& folder) {
    const std::vector<std::string> present = NamesIn(folder);
    std::vector<BrushFileReport> reports;
    for (const brushes::Shape& shape : brushes::Shapes()) {
        std::error_code error;
        const auto status = std::filesystem::symlink_status(folder / shape.fileName, error);
        reports.push_back({shape.fileName, shape.name,
                           std::filesystem::exists(status) ? InspectBrush(folder / shape.fileName)
                                                           : Missing(shape.fileName, present)});
    }
    for (const std::string& name : present) {
        const auto shapes = brushes::Shapes();
        // A name with other capitals was spoken of above, unless the proper one is there too.
        const bool known = std::any_of(shapes.begin(), shapes.end(), [&](const auto& shape) {
            return name == shape.fileName || (Folded(name) == Folded(shape.fileName) &&
                                              !std::binary_search(present.begin(), present.end(),
                                                                  std::string(shape.fileName)));
        });
        if (!known && Folded(std::filesystem::path(name).extension().string()) == ".brush") {
            BrushFileReport extra{name, {}, {}};
            Findings(extra.report).warning("has none of the names that the effect looks for");
            reports.push_back(extra);
        }
    }
    return reports;
}

std::string FirstFault(const BrushReport& report) {
    if (report.faults() == 0) {
        return {};
    }
    const BrushFinding& fault = report.findings.front();
    return fault.line > 0 ? "line " + std::to_string(fault.line) + ": " + fault.text : fault.text;
}

}  // namespace vireon::tool
