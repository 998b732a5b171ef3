#include "shapes/brush_file.h"

#include <charconv>
#include <cmath>
#include <cstdio>
#include <memory>
#include <optional>
#include <string_view>
#include <system_error>

#include "platform/files.h"

namespace vireon {
namespace {

struct FileCloser {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

class LineReader {
  public:
    explicit LineReader(const platform::Path& path) : file_(platform::OpenText(path)) {}
    bool isOpen() const { return file_ != nullptr; }

    /// The next line, or the next piece of a long one; none at the end of the file.
    std::optional<std::string_view> next() {
        if (std::fgets(buffer_, sizeof buffer_, file_.get()) == nullptr) return std::nullopt;
        return std::string_view(buffer_);
    }

  private:
    std::unique_ptr<std::FILE, FileCloser> file_;
    char buffer_[1024];
};

std::string_view SkipBlanks(std::string_view text) {
    const std::size_t start = text.find_first_not_of(" \t\n\v\f\r");
    return start == std::string_view::npos ? std::string_view() : text.substr(start);
}

// The converters know no plus sign; a sign that follows another one is no number.
std::string_view SkipPlus(std::string_view text) {
    const bool signedNumber = text.size() > 1 && text[0] == '+' && text[1] != '-';
    return signedNumber ? text.substr(1) : text;
}

std::int32_t ParseInteger(std::string_view line) {
    const std::string_view text = SkipPlus(SkipBlanks(line));
    std::int32_t value = 0;
    std::from_chars(text.data(), text.data() + text.size(), value);
    return value;
}

float ParseSample(std::string_view line) {
    const std::string_view text = SkipPlus(SkipBlanks(line));
    double value = 0.0;
    const auto parsed = std::from_chars(text.data(), text.data() + text.size(), value);
    // Out of a double's range means too small to matter or not finite.
    if (parsed.ec != std::errc()) return 0.0f;
    const auto sample = static_cast<float>(value);
    return std::isfinite(sample) ? sample : 0.0f;
}

}  // namespace

GlowKernel ReadBrushFile(const platform::Path& path) {
    GlowKernel kernel;
    LineReader lines(path);
    if (!lines.isOpen()) return kernel;

    auto line = lines.next();
    if (!line) return kernel;
    kernel.width = ParseInteger(*line);
    line = lines.next();
    if (!line) return kernel;
    const std::int32_t height = ParseInteger(*line);
    if (!lines.next()) return kernel;
    kernel.height = height;
    if (kernel.width != kBrushSize || kernel.height != kBrushSize) return kernel;

    kernel.allocate(kBrushSize, kBrushSize);
    for (float& sample : kernel.values) {
        line = lines.next();
        if (!line) break;
        sample = ParseSample(*line);
    }
    kernel.flagEmptyRows();
    return kernel;
}

}  // namespace vireon
