#include "tools/brushes/brush_file.h"

#include <array>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <fstream>
#include <stdexcept>
#include <system_error>

#include "tools/brushes/rasterise.h"
#include "tools/brushes/shapes.h"

namespace vireon::brushes {

namespace {

// A thousand of these stamps upon each other stay below a tenth of an 8-bit step.
constexpr double kSmallestSample = 5e-8;

constexpr int kSignificantDigits = 6;

void AppendSample(std::string& text, double sample) {
    if (sample < kSmallestSample) {
        text += "0\n";
        return;
    }
    std::array<char, 32> digits;
    const auto [end, error] = std::to_chars(digits.data(), digits.data() + digits.size(), sample,
                                            std::chars_format::general, kSignificantDigits);
    if (error != std::errc{}) {
        throw std::runtime_error("a brush sample is too long to be written");
    }
    text.append(digits.data(), end);
    text += '\n';
}

[[noreturn]] void ThrowFileError(const char* action, const std::filesystem::path& path,
                                 const std::string& reason) {
    throw std::runtime_error(std::string(action) + " '" + path.string() + "': " + reason);
}

}  // namespace

std::string BrushFileText(std::string_view title, const std::vector<double>& samples) {
    std::string text;
    text.reserve(samples.size() * 12);
    text += std::to_string(kBrushSize) + '\n' + std::to_string(kBrushSize) + '\n';
    text.append(title);
    text += '\n';
    for (const double sample : samples) {
        AppendSample(text, sample);
    }
    return text;
}

void WriteFileWhole(const std::filesystem::path& path, std::string_view text) {
    std::filesystem::path temporary = path;
    temporary += ".part";
    std::error_code ignored;

    errno = 0;
    std::ofstream file(temporary, std::ios::binary | std::ios::trunc);
    if (!file) {
        ThrowFileError("cannot create", temporary, std::strerror(errno));
    }
    file.write(text.data(), static_cast<std::streamsize>(text.size()));
    file.close();
    if (!file) {
        const std::string reason = std::strerror(errno);
        std::filesystem::remove(temporary, ignored);
        ThrowFileError("cannot write", temporary, reason);
    }

    std::error_code error;
    std::filesystem::rename(temporary, path, error);
    if (error) {
        std::filesystem::remove(temporary, ignored);
        ThrowFileError("cannot replace", path, error.message());
    }
}

void WriteBrushes(const std::filesystem::path& directory) {
    std::error_code error;
    std::filesystem::create_directories(directory, error);
    if (error) {
        ThrowFileError("cannot make the folder", directory, error.message());
    }
    for (const Shape& shape : Shapes()) {
        WriteFileWhole(directory / shape.fileName,
                       BrushFileText(shape.name, RasteriseShape(shape)));
    }
}

}  // namespace vireon::brushes
