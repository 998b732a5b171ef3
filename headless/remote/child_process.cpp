#include "headless/remote/child_process.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <system_error>
#include <thread>
#include <utility>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace vireon::headless {
namespace {

struct Pipe {
    Descriptor reading;
    Descriptor writing;

    Pipe() {
        int ends[2];
        if (pipe2(ends, O_CLOEXEC) != 0) {
            throw std::system_error(errno, std::generic_category(), "cannot make a pipe");
        }
        reading = Descriptor(ends[0]);
        writing = Descriptor(ends[1]);
    }
};

void MakeNonBlocking(const Descriptor& descriptor) {
    const int flags = fcntl(descriptor.get(), F_GETFL);
    if (flags < 0 || fcntl(descriptor.get(), F_SETFL, flags | O_NONBLOCK) != 0) {
        throw std::system_error(errno, std::generic_category(), "cannot set up a pipe");
    }
}

std::vector<std::string> Environment(
    const std::map<std::string, std::optional<std::string>>& changes) {
    std::vector<std::string> entries;
    for (char** entry = environ; *entry != nullptr; ++entry) {
        const std::string text = *entry;
        if (!changes.contains(text.substr(0, text.find('=')))) {
            entries.push_back(text);
        }
    }
    for (const auto& [name, value] : changes) {
        if (value) {
            entries.push_back(name + "=" + *value);
        }
    }
    return entries;
}

std::vector<char*> Pointers(std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    for (std::string& text : texts) {
        pointers.push_back(text.data());
    }
    pointers.push_back(nullptr);
    return pointers;
}

/// The attributes and file actions of a start.
class SpawnSettings {
  public:
    SpawnSettings() {
        posix_spawn_file_actions_init(&actions);
        posix_spawnattr_init(&attributes);
    }
    ~SpawnSettings() {
        posix_spawn_file_actions_destroy(&actions);
        posix_spawnattr_destroy(&attributes);
    }
    SpawnSettings(const SpawnSettings&) = delete;
    SpawnSettings& operator=(const SpawnSettings&) = delete;

    posix_spawn_file_actions_t actions;
    posix_spawnattr_t attributes;
};

/// Keeps SIGPIPE away from this thread, also one that is raised meanwhile.
class PipeSignalGuard {
  public:
    PipeSignalGuard() {
        sigset_t pending;
        sigpending(&pending);
        wasPending_ = sigismember(&pending, SIGPIPE) == 1;
        sigemptyset(&pipeSignal_);
        sigaddset(&pipeSignal_, SIGPIPE);
        pthread_sigmask(SIG_BLOCK, &pipeSignal_, &previous_);
    }
    ~PipeSignalGuard() {
        if (!wasPending_) {
            const timespec now{};
            while (sigtimedwait(&pipeSignal_, nullptr, &now) < 0 && errno == EINTR) {
            }
        }
        pthread_sigmask(SIG_SETMASK, &previous_, nullptr);
    }
    PipeSignalGuard(const PipeSignalGuard&) = delete;
    PipeSignalGuard& operator=(const PipeSignalGuard&) = delete;

  private:
    sigset_t pipeSignal_;
    sigset_t previous_;
    bool wasPending_ = false;
};

ExitStatus StatusOf(int waitStatus) {
    return WIFSIGNALED(waitStatus) ? ExitStatus{true, WTERMSIG(waitStatus)}
                                   : ExitStatus{false, WEXITSTATUS(waitStatus)};
}

}  // namespace

Descriptor& Descriptor::operator=(Descriptor&& other) noexcept {
    if (this != &other) {
        close();
        descriptor_ = other.release();
    }
    return *this;
}

void Descriptor::close() {
    if (descriptor_ >= 0) {
        ::close(release());
    }
}

int Descriptor::release() {
    return std::exchange(descriptor_, -1);
}

std::string ExitStatus::text() const {
    if (!bySignal) {
        return "exit code " + std::to_string(code);
    }
    const char* const description = sigdescr_np(code);
    return "signal " + std::to_string(code) +
           (description == nullptr ? std::string() : std::string(", ") + description);
}

ChildProcess::ChildProcess(const ChildCommand& command) {
    Pipe toChild;
    Pipe fromChild;
    Pipe errorsOfChild;

    SpawnSettings settings;
    posix_spawn_file_actions_adddup2(&settings.actions, toChild.reading.get(), STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&settings.actions, fromChild.writing.get(), STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&settings.actions, errorsOfChild.writing.get(), STDERR_FILENO);
    posix_spawn_file_actions_addclosefrom_np(&settings.actions, STDERR_FILENO + 1);

    sigset_t none;
    sigemptyset(&none);
    sigset_t all;
    sigfillset(&all);
    posix_spawnattr_setsigmask(&settings.attributes, &none);
    posix_spawnattr_setsigdefault(&settings.attributes, &all);
    posix_spawnattr_setpgroup(&settings.attributes, 0);
    posix_spawnattr_setflags(&settings.attributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF |
                                                       POSIX_SPAWN_SETPGROUP);

    std::vector<std::string> arguments{command.program.string()};
    arguments.insert(arguments.end(), command.arguments.begin(), command.arguments.end());
    std::vector<std::string> environment = Environment(command.environment);
    const int error =
        posix_spawn(&pid_, command.program.c_str(), &settings.actions, &settings.attributes,
                    Pointers(arguments).data(), Pointers(environment).data());
    if (error != 0) {
        throw std::system_error(error, std::generic_category(),
                                "cannot start " + command.program.string());
    }
    input = std::move(toChild.writing);
    output = std::move(fromChild.reading);
    errors = std::move(errorsOfChild.reading);
    MakeNonBlocking(input);
    MakeNonBlocking(output);
    MakeNonBlocking(errors);
}

ChildProcess::~ChildProcess() {
    kill();
}

std::optional<ExitStatus> ChildProcess::exited() {
    if (!status_) {
        int waitStatus = 0;
        const pid_t ended = waitpid(pid_, &waitStatus, WNOHANG);
        if (ended == pid_) {
            status_ = StatusOf(waitStatus);
        }
    }
    return status_;
}

std::optional<ExitStatus> ChildProcess::waitFor(std::chrono::milliseconds limit) {
    using Clock = std::chrono::steady_clock;
    const Clock::time_point end = Clock::now() + limit;
    while (!exited() && Clock::now() < end) {
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    return status_;
}

void ChildProcess::kill() {
    if (exited()) {
        return;
    }
    ::kill(pid_, SIGKILL);
    int waitStatus = 0;
    while (waitpid(pid_, &waitStatus, 0) < 0 && errno == EINTR) {
    }
    status_ = StatusOf(waitStatus);
}

std::optional<std::size_t> ReadSome(const Descriptor& descriptor, std::span<std::uint8_t> room) {
    ssize_t count = -1;
    do {
        count = read(descriptor.get(), room.data(), room.size());
    } while (count < 0 && errno == EINTR);
    if (count > 0) {
        return static_cast<std::size_t>(count);
    }
    if (count < 0 && (errno == EAGAIN || errno == EWOULDBLOCK)) {
        return 0;
    }
    return std::nullopt;
}

std::optional<std::size_t> WriteSome(const Descriptor& descriptor,
                                     std::span<const std::uint8_t> bytes) {
    const PipeSignalGuard guard;
    ssize_t count = -1;
    do {
        count = write(descriptor.get(), bytes.data(), bytes.size());
    } while (count < 0 && errno == EINTR);
    if (count >= 0) {
        return static_cast<std::size_t>(count);
    }
    if (errno == EAGAIN || errno == EWOULDBLOCK) {
        return 0;
    }
    return std::nullopt;
}

}  // namespace vireon::headless
