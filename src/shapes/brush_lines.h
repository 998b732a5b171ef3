#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include "platform/paths.h"

namespace vireon {

/// A text file in the lines that brush files are made of: up to 1023 characters each, line end
/// included; what is left of a longer line is the next one.
class BrushLines {
  public:
    /// Opens the file; a path that is missing, unreadable or no file gives no lines.
    explicit BrushLines(const platform::Path& path);
    bool isOpen() const { return file_ != nullptr; }

    /// The next line without what follows a zero character in it; none at the end of the file. The
    /// text is good until the next call.
    std::optional<std::string_view> next();

    /// Number of the last line as an editor counts, from 1; 0 before the first.
    std::int64_t number() const { return number_; }
    /// Whether the last line is what was left of a longer one.
    bool isContinued() const { return isContinued_; }

  private:
    struct FileCloser {
        void operator()(std::FILE* file) const { std::fclose(file); }
    };
    bool fill();

    std::unique_ptr<std::FILE, FileCloser> file_;
    std::vector<char> buffer_;
    std::size_t begin_ = 0;
    std::size_t end_ = 0;
    std::int64_t number_ = 0;
    bool endedLine_ = true;
    bool isContinued_ = false;
};

}  // namespace vireon
