#include "tools/vireon/interruption.h"

#include <atomic>
#include <csignal>

namespace vireon::tool {
namespace {

std::atomic<int> count{0};
std::atomic<int> lastSignal{0};

void OnSignal(int signal) {
    lastSignal = signal;
    ++count;
}

}  // namespace

void WatchForInterruption() {
    struct sigaction action {};
    action.sa_handler = OnSignal;
    sigemptyset(&action.sa_mask);
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
    // Under nohup the end of the terminal means nothing.
    struct sigaction inherited {};
    sigaction(SIGHUP, nullptr, &inherited);
    if (inherited.sa_handler != SIG_IGN) {
        sigaction(SIGHUP, &action, nullptr);
    }
}

int InterruptionCount() {
    return count;
}

bool WasTerminated() {
    return count > 0 && lastSignal != SIGINT;
}

ToolError InterruptionError(const std::string& consequence) {
    return WasTerminated() ? ToolError(kTerminated, "terminated; " + consequence)
                           : ToolError(kInterrupted, "interrupted; " + consequence);
}

void StopIfInterrupted() {
    if (count > 0) {
        throw InterruptionError("nothing was written");
    }
}

}  // namespace vireon::tool
