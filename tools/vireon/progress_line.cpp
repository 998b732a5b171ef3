#include "tools/vireon/progress_line.h"

#include <algorithm>
#include <cstdio>

#include <unistd.h>

namespace vireon::tool {

ProgressLine::ProgressLine(bool wanted) : visible_(wanted && isatty(STDERR_FILENO) != 0) {}

ProgressLine::~ProgressLine() {
    if (shownPercent_ >= 0) {
        std::fputs("\r\033[K", stderr);
    }
}

void ProgressLine::show(std::int32_t current, std::int32_t total) {
    if (!visible_ || total <= 0) {
        return;
    }
    const auto percent =
        static_cast<int>(std::clamp<std::int64_t>(std::int64_t{100} * current / total, 0, 100));
    if (percent != shownPercent_) {
        shownPercent_ = percent;
        std::fprintf(stderr, "\rrendering %3d %%", percent);
        std::fflush(stderr);
    }
}

}  // namespace vireon::tool
