#pragma once

#include <cstddef>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace vireon::conformance {

/// Width and height of every valid brush, in texels.
inline constexpr int kBrushSize = 256;

/// A glow shape: width x height values in rows, top row first.
struct Kernel {
    int width = 0;
    int height = 0;
    std::vector<float> values;

    float at(int x, int y) const {
        return values[static_cast<std::size_t>(y) * static_cast<std::size_t>(width) +
                      static_cast<std::size_t>(x)];
    }
};

/// A brush of the valid size from a function of column and row.
Kernel MakeBrush(const std::function<double(int x, int y)>& value);
/// Round, 1 at the centre, fading smoothly to 0 at the rim.
Kernel RoundBrush();
/// Different in each quadrant, with rows that are wholly zero above and below.
Kernel LopsidedBrush();

/// The text of a brush file that holds a kernel, each value exactly.
std::string BrushText(const Kernel& kernel);

/// A folder of its own for brush files, removed with the object.
class BrushFolder {
  public:
    BrushFolder();
    ~BrushFolder();
    BrushFolder(const BrushFolder&) = delete;
    BrushFolder& operator=(const BrushFolder&) = delete;

    const std::filesystem::path& path() const { return path_; }
    void write(const std::string& fileName, const std::string& text) const;
    void write(const std::string& fileName, const Kernel& kernel) const;
    /// Makes the effect read its brushes here. Has to happen before the process's first render.
    void select() const;

  private:
    std::filesystem::path path_;
};

/// Makes the effect look for its brushes in a folder; null: where it finds them by itself.
void SelectBrushFolder(const char* folder);

}  // namespace vireon::conformance
