#include "shapes/brush_lines.h"

#include <algorithm>
#include <cstring>

#include "platform/files.h"

namespace vireon {
namespace {

constexpr std::size_t kLongestLine = 1023;
constexpr std::size_t kBufferSize = std::size_t{1} << 16;

}  // namespace

BrushLines::BrushLines(const platform::Path& path) : file_(platform::OpenText(path)) {
    if (file_ != nullptr) buffer_.resize(kBufferSize);
}

bool BrushLines::fill() {
    std::memmove(buffer_.data(), buffer_.data() + begin_, end_ - begin_);
    end_ -= begin_;
    begin_ = 0;
    const std::size_t count =
        std::fread(buffer_.data() + end_, 1, buffer_.size() - end_, file_.get());
    end_ += count;
    return count > 0;
}

std::optional<std::string_view> BrushLines::next() {
    if (file_ == nullptr) return std::nullopt;
    while (end_ - begin_ < kLongestLine && fill()) {
    }
    if (begin_ == end_) return std::nullopt;
    const char* const text = buffer_.data() + begin_;
    const std::size_t most = std::min(end_ - begin_, kLongestLine);
    const void* const lineEnd = std::memchr(text, '\n', most);
    const std::size_t length =
        lineEnd != nullptr ? static_cast<std::size_t>(static_cast<const char*>(lineEnd) - text) + 1
                           : most;
    begin_ += length;
    isContinued_ = !endedLine_;
    number_ += endedLine_ ? 1 : 0;
    endedLine_ = lineEnd != nullptr;
    const std::string_view line(text, length);
    return line.substr(0, line.find('\0'));
}

}  // namespace vireon
