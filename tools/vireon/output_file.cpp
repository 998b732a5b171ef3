#include "tools/vireon/output_file.h"

#include <cerrno>
#include <string>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tools/vireon/tool_error.h"

namespace vireon::tool {
namespace {

[[noreturn]] void Fail(const std::filesystem::path& path, int error) {
    if (error == ENOSPC || error == EDQUOT) {
        throw ToolError(kDiskFull, "cannot write " + path.string() + ": the disk is full");
    }
    throw ToolError(kOutputFailed, "cannot write " + path.string() + ": " +
                                       std::generic_category().message(error));
}

/// The file that a path leads to in the end, whether it exists or not.
std::filesystem::path Target(const std::filesystem::path& path) {
    constexpr int kMaxLinks = 40;
    std::filesystem::path target = std::filesystem::absolute(path);
    std::error_code error;
    for (int i = 0; i < kMaxLinks && std::filesystem::is_symlink(target, error); ++i) {
        const std::filesystem::path next = std::filesystem::read_symlink(target, error);
        if (error) {
            break;
        }
        target = target.parent_path() / next;
    }
    const std::filesystem::path canonical = std::filesystem::weakly_canonical(target, error);
    return error ? target : canonical;
}

/// Writes everything and waits until it is on the disk; answers an error number or 0.
int WriteAll(int descriptor, std::span<const std::uint8_t> bytes) {
    while (!bytes.empty()) {
        const ssize_t count = write(descriptor, bytes.data(), bytes.size());
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count < 0) {
            return errno;
        }
        bytes = bytes.subspan(static_cast<std::size_t>(count));
    }
    // Devices and pipes have no disk to wait for.
    return fsync(descriptor) != 0 && errno != EINVAL && errno != EROFS ? errno : 0;
}

int WriteAndClose(int descriptor, std::span<const std::uint8_t> bytes) {
    const int written = WriteAll(descriptor, bytes);
    const int closed = close(descriptor) != 0 ? errno : 0;
    return written != 0 ? written : closed;
}

/// A file that goes away unless it is given its final name.
class TemporaryFile {
  public:
    explicit TemporaryFile(const std::filesystem::path& target) {
        const std::string extension = target.extension().string();
        name_ = (target.parent_path() / (".vireon-XXXXXX" + extension)).string();
        descriptor_ = mkostemps(name_.data(), static_cast<int>(extension.size()), O_CLOEXEC);
        if (descriptor_ < 0) {
            Fail(target, errno);
        }
    }
    ~TemporaryFile() {
        if (!renamed_) {
            unlink(name_.c_str());
        }
    }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    /// Takes over the permissions of the file that is replaced, or the ordinary ones.
    void adoptPermissions(const std::filesystem::path& target) const {
        struct stat old {};
        mode_t mode = 0;
        if (stat(target.c_str(), &old) == 0) {
            mode = old.st_mode & 07777;
        } else {
            const mode_t mask = umask(0);
            umask(mask);
            mode = 0666 & ~mask;
        }
        fchmod(descriptor_, mode);
    }
    int write(std::span<const std::uint8_t> bytes) const {
        return WriteAndClose(descriptor_, bytes);
    }
    int renameTo(const std::filesystem::path& target) {
        if (rename(name_.c_str(), target.c_str()) != 0) {
            return errno;
        }
        renamed_ = true;
        return 0;
    }

  private:
    std::string name_;
    int descriptor_ = -1;
    bool renamed_ = false;
};

}  // namespace

void CheckOutputPlace(const std::filesystem::path& path) {
    const std::filesystem::path target = Target(path);
    const std::filesystem::path folder = target.parent_path();
    std::error_code error;
    if (!std::filesystem::is_directory(folder, error)) {
        throw ToolError(kOutputFolderMissing, "cannot write " + path.string() + ": the folder " +
                                                  folder.string() +
                                                  " does not exist; make it first");
    }
    if (std::filesystem::is_directory(target, error)) {
        throw ToolError(kOutputFailed, "cannot write " + path.string() + ": it is a folder");
    }
    const bool special =
        std::filesystem::exists(target, error) && !std::filesystem::is_regular_file(target, error);
    if (access(special ? target.c_str() : folder.c_str(), W_OK) != 0) {
        Fail(path, errno);
    }
}

void WriteFileWhole(const std::filesystem::path& path, std::span<const std::uint8_t> bytes) {
    const std::filesystem::path target = Target(path);
    std::error_code ignored;
    if (std::filesystem::exists(target, ignored) &&
        !std::filesystem::is_regular_file(target, ignored)) {
        const int descriptor = open(target.c_str(), O_WRONLY | O_CLOEXEC);
        const int error = descriptor < 0 ? errno : WriteAndClose(descriptor, bytes);
        if (error != 0) {
            Fail(path, error);
        }
        return;
    }
    TemporaryFile file(target);
    file.adoptPermissions(target);
    if (const int error = file.write(bytes); error != 0) {
        Fail(path, error);
    }
    if (const int error = file.renameTo(target); error != 0) {
        Fail(path, error);
    }
}

}  // namespace vireon::tool
