#include "tools/vireon/text_file.h"

#include <algorithm>
#include <cerrno>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tools/vireon/tool_error.h"

namespace vireon::tool {
namespace {

[[noreturn]] void Fail(const std::filesystem::path& path, const std::string& why) {
    throw ToolError(kInputUnreadable, "cannot read " + path.string() + ": " + why);
}

/// A descriptor that is closed in any case.
class OpenFile {
  public:
    // Without waiting: a pipe that nobody writes to would hold the program for ever.
    explicit OpenFile(const std::filesystem::path& path)
        : descriptor_(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY)) {
        if (descriptor_ < 0) {
            Fail(path, std::generic_category().message(errno));
        }
    }
    ~OpenFile() { close(descriptor_); }
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;

    int get() const { return descriptor_; }

  private:
    int descriptor_;
};

std::string SizeText(std::size_t bytes) {
    return bytes % (1u << 20) == 0 ? std::to_string(bytes >> 20) + " MiB"
                                   : std::to_string(bytes) + " bytes";
}

void CheckEncoding(const std::filesystem::path& path, const std::string& text) {
    const bool marked = text.starts_with("\xFF\xFE") || text.starts_with("\xFE\xFF");
    const bool looksWide = text.size() >= 2 && (text[0] == '\0') != (text[1] == '\0');
    if (marked || looksWide) {
        Fail(path, "it is written in UTF-16; save it as UTF-8");
    }
}

}  // namespace

std::string ReadTextFile(const std::filesystem::path& path, std::size_t maxBytes) {
    const OpenFile file(path);
    struct stat status {};
    if (fstat(file.get(), &status) != 0) {
        Fail(path, std::generic_category().message(errno));
    }
    if (S_ISDIR(status.st_mode)) {
        Fail(path, "it is a folder");
    }
    if (!S_ISREG(status.st_mode)) {
        Fail(path, "it is no ordinary file");
    }
    // One byte more than allowed tells whether there are more, however the file grows meanwhile.
    std::string text(std::min(static_cast<std::size_t>(status.st_size), maxBytes) + 1, '\0');
    std::size_t size = 0;
    while (size < text.size()) {
        const ssize_t count = read(file.get(), text.data() + size, text.size() - size);
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count < 0) {
            Fail(path, std::generic_category().message(errno));
        }
        if (count == 0) {
            break;
        }
        size += static_cast<std::size_t>(count);
    }
    if (size > maxBytes || static_cast<std::size_t>(status.st_size) > maxBytes) {
        Fail(path, "it has more than " + SizeText(maxBytes));
    }
    text.resize(size);
    CheckEncoding(path, text);
    constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
    if (text.starts_with(kByteOrderMark)) {
        text.erase(0, kByteOrderMark.size());
    }
    return text;
}

std::string Quoted(std::string_view text) {
    constexpr std::size_t kMaxShown = 60;
    std::size_t end = std::min(text.size(), kMaxShown);
    // Not inside a character of several bytes.
    while (end < text.size() && end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) {
        --end;
    }
    std::string quoted = "\"";
    for (const char c : text.substr(0, end)) {
        const bool isControl = static_cast<unsigned char>(c) < 0x20 || c == 0x7F;
        quoted += isControl ? '?' : c;
    }
    return quoted + (end < text.size() ? "...\"" : "\"");
}

}  // namespace vireon::tool
