#include "tests/conformance/brush_folder.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <numbers>
#include <random>
#include <stdexcept>
#include <system_error>

namespace vireon::conformance {
namespace {

constexpr const char* kFolderVariable = "ORVANTE_QUILLON_SVG_DIR";

/// A bump over [from, to] that touches zero smoothly at both ends.
double Window(double position, double from, double to) {
    if (position <= from || position >= to) {
        return 0;
    }
    const double wave = std::sin(std::numbers::pi * (position - from) / (to - from));
    return wave * wave;
}

}  // namespace

Kernel MakeBrush(const std::function<double(int x, int y)>& value) {
    Kernel kernel{kBrushSize, kBrushSize, {}};
    kernel.values.reserve(std::size_t{kBrushSize} * kBrushSize);
    for (int y = 0; y < kBrushSize; ++y) {
        for (int x = 0; x < kBrushSize; ++x) {
            kernel.values.push_back(static_cast<float>(value(x, y)));
        }
    }
    return kernel;
}

Kernel RoundBrush() {
    return MakeBrush([](int x, int y) {
        const double dx = (x - 128) / 127.0;
        const double dy = (y - 128) / 127.0;
        const double rest = std::max(0.0, 1 - (dx * dx + dy * dy));
        return rest * rest;
    });
}

Kernel LopsidedBrush() {
    return MakeBrush([](int x, int y) {
        return Window(x, 0, 255) * Window(y, 30, 210) * (0.2 + 0.8 * x / 255.0) *
               (0.5 + 0.5 * y / 255.0);
    });
}

std::string BrushText(const Kernel& kernel) {
    std::string text =
        std::to_string(kernel.width) + "\n" + std::to_string(kernel.height) + "\nsamples\n";
    text.reserve(kernel.values.size() * 12);
    std::array<char, 32> line{};
    for (const float value : kernel.values) {
        std::snprintf(line.data(), line.size(), "%.9g\n", static_cast<double>(value));
        text += line.data();
    }
    return text;
}

BrushFolder::BrushFolder() {
    std::random_device random;
    for (int attempt = 0; attempt < 100; ++attempt) {
        path_ = std::filesystem::temp_directory_path() /
                ("vireon-brushes-" + std::to_string(random()) + "-" + std::to_string(random()));
        if (std::filesystem::create_directory(path_)) {
            return;
        }
    }
    throw std::runtime_error("no folder for brushes in " +
                             std::filesystem::temp_directory_path().string());
}

BrushFolder::~BrushFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

void BrushFolder::write(const std::string& fileName, const std::string& text) const {
    std::ofstream file(path_ / fileName, std::ios::binary);
    file << text;
    file.close();
    if (!file) {
        throw std::runtime_error("cannot write " + (path_ / fileName).string());
    }
}

void BrushFolder::write(const std::string& fileName, const Kernel& kernel) const {
    write(fileName, BrushText(kernel));
}

void BrushFolder::select() const {
    SelectBrushFolder(path_.string().c_str());
}

void SelectBrushFolder(const char* folder) {
#ifdef _WIN32
    const int failed = _putenv_s(kFolderVariable, folder != nullptr ? folder : "");
#else
    const int failed =
        folder != nullptr ? setenv(kFolderVariable, folder, 1) : unsetenv(kFolderVariable);
#endif
    if (failed != 0) {
        throw std::runtime_error("cannot set the brush folder");
    }
}

}  // namespace vireon::conformance
