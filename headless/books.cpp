#include "headless/books.h"

namespace vireon::headless {

std::string Balance::text() const {
    std::string lines;
    const auto add = [&lines](std::int64_t count, const std::string& what) {
        if (count != 0) {
            lines += (lines.empty() ? "" : "\n") + std::to_string(count) + " " + what;
        }
    };
    for (const auto& [suite, count] : suites) {
        add(count,
            "acquisition(s) of \"" + suite.first + "\" version " + std::to_string(suite.second));
    }
    add(parameters, "parameter check-out(s)");
    add(worlds, "world(s)");
    add(handles, "handle(s)");
    add(locks, "handle lock(s)");
    add(paths, "path check-out(s)");
    add(blocks, "block(s) of the basic suite");
    return lines;
}

}  // namespace vireon::headless
