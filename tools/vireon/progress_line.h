#pragma once

#include <cstdint>

namespace vireon::tool {

/// One line on the terminal that says how far a frame is; nothing when standard error is no
/// terminal or nobody wants to see it. The line is gone when the object is.
class ProgressLine {
  public:
    explicit ProgressLine(bool wanted);
    ~ProgressLine();
    ProgressLine(const ProgressLine&) = delete;
    ProgressLine& operator=(const ProgressLine&) = delete;

    void show(std::int32_t current, std::int32_t total);

  private:
    bool visible_;
    int shownPercent_ = -1;
};

}  // namespace vireon::tool
