#pragma once

#include <span>

namespace vireon::tool {

/// How the program ends. Scripts may rely on the numbers.
enum ExitCode : int {
    kSuccess = 0,
    kInternalError = 1,
    kBadCommandLine = 2,
    kUnknownName = 3,
    kBadValue = 4,
    kInputUnreadable = 5,
    kOutputFolderMissing = 6,
    kOutputFailed = 7,
    kDiskFull = 8,
    kWorkerMissing = 9,
    kWineMissing = 10,
    kNotAnEffect = 11,
    kEffectFailed = 12,
    kEffectCrashed = 13,
    kEffectHung = 14,
    kEffectMisbehaved = 15,
    kProtocolError = 16,
    kShapesMissing = 17,
    kInterrupted = 130,  ///< by Ctrl-C; 128 + SIGINT as shells have it
    kTerminated = 143,   ///< by SIGTERM
};

struct ExitCodeMeaning {
    ExitCode code;
    const char* meaning;
};

/// Every code with its meaning, ascending: the table of the help text.
std::span<const ExitCodeMeaning> ExitCodes();

}  // namespace vireon::tool
