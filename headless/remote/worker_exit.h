#pragma once

namespace vireon::headless {

/// Exit codes of the worker program. They fit into the eight bits that Wine passes on.
enum WorkerExit : int {
    kWorkerDone = 0,
    kWorkerUsage = 2,
    kWorkerProtocol = 3,  ///< what came in is no message, or the pipe was closed in the middle
    kWorkerOrphaned = 4,  ///< the other side went away without a farewell
    kWorkerCrashed = 86,  ///< an exception that nobody handles, on systems without signals
};

/// Begins every line that the worker itself prints, as opposed to the effect in it.
inline constexpr char kWorkerLogPrefix[] = "vireon-worker: ";

}  // namespace vireon::headless
