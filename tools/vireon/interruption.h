#pragma once

#include <string>

#include "tools/vireon/tool_error.h"

namespace vireon::tool {

/// Turns Ctrl-C, SIGTERM and the end of the terminal into something that the program notices by
/// itself, so that it can stop in an orderly way and leave nothing behind.
void WatchForInterruption();

/// How often the user or the system asked the program to stop.
int InterruptionCount();

/// Whether the last who asked was not at the keyboard: SIGTERM, or the end of the terminal.
bool WasTerminated();

/// The end of the program that was asked for: kInterrupted after a Ctrl-C, else kTerminated. The
/// text gets `consequence` behind it.
ToolError InterruptionError(const std::string& consequence);

/// Throws InterruptionError once somebody asked.
void StopIfInterrupted();

}  // namespace vireon::tool
