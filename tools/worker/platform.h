#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

/// What differs between systems.
namespace vireon::worker {

/// The standard streams on which the worker was started, taken away from everything else in the
/// process: afterwards standard input is empty and standard output goes where standard error goes,
/// so that an effect that prints or reads cannot disturb the messages.
class PrivatePipes {
  public:
    /// Takes the streams. At most one object a process.
    PrivatePipes();
    ~PrivatePipes() = default;
    PrivatePipes(const PrivatePipes&) = delete;
    PrivatePipes& operator=(const PrivatePipes&) = delete;

    /// Waits for some bytes; answers their number, 0 when no more will come.
    std::size_t read(std::span<std::uint8_t> room);
    /// Writes all bytes; false when the other side is gone.
    bool write(std::span<const std::uint8_t> bytes);

  private:
    // A descriptor or a handle.
    std::intptr_t input_ = -1;
    std::intptr_t output_ = -1;
};

/// "linux" or "windows".
const char* SystemName();

/// Sees to it that a crash ends the process at once, without a dialog or a debugger, and can be
/// recognised from outside.
void InstallCrashExit();

/// Ends the process without running anything more in it.
[[noreturn]] void EndProcess(int code);

}  // namespace vireon::worker
