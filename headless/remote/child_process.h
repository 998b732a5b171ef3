#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include <sys/types.h>

namespace vireon::headless {

/// Owns a file descriptor; -1 is none.
class Descriptor {
  public:
    Descriptor() = default;
    explicit Descriptor(int descriptor) : descriptor_(descriptor) {}
    ~Descriptor() { close(); }
    Descriptor(Descriptor&& other) noexcept : descriptor_(other.release()) {}
    Descriptor& operator=(Descriptor&& other) noexcept;

    int get() const { return descriptor_; }
    bool isOpen() const { return descriptor_ >= 0; }
    void close();

  private:
    int release();

    int descriptor_ = -1;
};

struct ChildCommand {
    std::filesystem::path program;
    std::vector<std::string> arguments;  ///< without the program itself
    /// Changes to the environment of this process; nothing unsets a name.
    std::map<std::string, std::optional<std::string>> environment;
};

/// How a process ended.
struct ExitStatus {
    bool bySignal = false;
    int code = 0;  ///< exit code or signal number

    /// E.g. "signal 11, Segmentation fault" or "exit code 3".
    std::string text() const;
};

/// A program of which this process holds the three standard streams. It gets nothing else: no other
/// descriptor, a process group of its own (so that a Ctrl-C at the terminal is not for it) and
/// ordinary signals.
class ChildProcess {
  public:
    /// Throws std::system_error when the program cannot be started.
    explicit ChildProcess(const ChildCommand& command);
    /// Kills the process if it still runs.
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    pid_t pid() const { return pid_; }
    // Ends of the pipes, non-blocking.
    Descriptor input;
    Descriptor output;
    Descriptor errors;

    /// The end of the process, once it has ended; does not wait.
    std::optional<ExitStatus> exited();
    /// Waits for the end up to a time.
    std::optional<ExitStatus> waitFor(std::chrono::milliseconds limit);
    /// Ends the process at once and waits for that.
    void kill();

  private:
    pid_t pid_ = -1;
    std::optional<ExitStatus> status_;
};

/// Writes as read(2) and write(2) do but never raises SIGPIPE and repeats after a signal. Answers
/// the number of bytes, 0 when nothing can be transferred now, nothing when the other end is
/// closed.
std::optional<std::size_t> ReadSome(const Descriptor& descriptor, std::span<std::uint8_t> room);
std::optional<std::size_t> WriteSome(const Descriptor& descriptor,
                                     std::span<const std::uint8_t> bytes);

}  // namespace vireon::headless
