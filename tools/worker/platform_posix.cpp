#include <cerrno>
#include <csignal>
#include <cstdlib>

#include <fcntl.h>
#include <unistd.h>

#include "headless/remote/worker_exit.h"
#include "tools/worker/platform.h"

namespace vireon::worker {

PrivatePipes::PrivatePipes()
    : input_(fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1)),
      output_(fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1)) {
    const int nothing = open("/dev/null", O_RDONLY | O_CLOEXEC);
    if (input_ < 0 || output_ < 0 || nothing < 0 || dup2(nothing, STDIN_FILENO) < 0 ||
        dup2(STDERR_FILENO, STDOUT_FILENO) < 0) {
        EndProcess(headless::kWorkerUsage);
    }
    close(nothing);
    // A closed pipe is an answer of write, not the end of the process.
    std::signal(SIGPIPE, SIG_IGN);
}

std::size_t PrivatePipes::read(std::span<std::uint8_t> room) {
    ssize_t count = -1;
    do {
        count = ::read(static_cast<int>(input_), room.data(), room.size());
    } while (count < 0 && errno == EINTR);
    return count > 0 ? static_cast<std::size_t>(count) : 0;
}

bool PrivatePipes::write(std::span<const std::uint8_t> bytes) {
    while (!bytes.empty()) {
        const ssize_t count = ::write(static_cast<int>(output_), bytes.data(), bytes.size());
        if (count < 0 && errno != EINTR) {
            return false;
        }
        if (count > 0) {
            bytes = bytes.subspan(static_cast<std::size_t>(count));
        }
    }
    return true;
}

const char* SystemName() {
    return "linux";
}

// The signal that ends a crashing process says enough.
void InstallCrashExit() {}

void EndProcess(int code) {
    _exit(code);
}

}  // namespace vireon::worker
