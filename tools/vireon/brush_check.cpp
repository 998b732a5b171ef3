#include "tools/vireon/brush_check.h"

#include <cerrno>
#include <cstdlib>
#include <fstream>
#include <system_error>

namespace vireon::tool {
namespace {

constexpr long kBrushSize = 256;

}  // namespace

std::filesystem::path BrushFolder(const std::filesystem::path& plugin) {
    if (const char* const folder = std::getenv("ORVANTE_QUILLON_SVG_DIR"); folder != nullptr) {
        return folder;
    }
    return std::filesystem::absolute(plugin).lexically_normal().parent_path() / "Vireon" / "Brush";
}

std::string BrushFault(const std::filesystem::path& file) {
    std::error_code error;
    if (std::filesystem::is_directory(file, error)) {
        return "it is a folder";
    }
    errno = 0;
    std::ifstream stream(file);
    if (!stream) {
        return std::generic_category().message(errno);
    }
    std::string width;
    std::string height;
    std::string title;
    if (!std::getline(stream, width) || !std::getline(stream, height) ||
        !std::getline(stream, title)) {
        return "its header is incomplete";
    }
    const long columns = std::strtol(width.c_str(), nullptr, 10);
    const long rows = std::strtol(height.c_str(), nullptr, 10);
    if (columns != kBrushSize || rows != kBrushSize) {
        return "it is " + std::to_string(columns) + " x " + std::to_string(rows) +
               ", not 256 x 256";
    }
    long samples = 0;
    std::string line;
    while (samples < kBrushSize * kBrushSize && std::getline(stream, line)) {
        char* end = nullptr;
        std::strtod(line.c_str(), &end);
        if (end == line.c_str()) {
            return "line " + std::to_string(samples + 4) + " is no number";
        }
        ++samples;
    }
    return samples == kBrushSize * kBrushSize
               ? std::string()
               : "it ends after " + std::to_string(samples) + " of " +
                     std::to_string(kBrushSize * kBrushSize) + " samples";
}

}  // namespace vireon::tool
