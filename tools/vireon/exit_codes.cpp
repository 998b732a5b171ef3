#include "tools/vireon/exit_codes.h"

namespace vireon::tool {
namespace {

constexpr ExitCodeMeaning kMeanings[] = {
    {kSuccess, "done"},
    {kInternalError, "an error in this program, or out of memory"},
    {kBadCommandLine, "the command line is wrong"},
    {kUnknownName, "unknown parameter, layer or choice"},
    {kBadValue, "a value is malformed or out of range"},
    {kInputUnreadable, "an input cannot be read as a whole, or has no light for a brush"},
    {kOutputFolderMissing, "the folder of the output does not exist"},
    {kOutputFailed, "the output cannot be written"},
    {kDiskFull, "the disk is full"},
    {kWorkerMissing, "the worker program is missing or does not start"},
    {kWineMissing, "Wine is not installed"},
    {kNotAnEffect, "the plug-in is missing or no effect"},
    {kEffectFailed, "the effect ended with an error"},
    {kEffectCrashed, "the effect crashed"},
    {kEffectHung, "the effect hung and was ended"},
    {kEffectMisbehaved, "the effect wrote where it must not, or leaked; its frame is lost"},
    {kProtocolError, "tool and worker do not understand each other"},
    {kShapesMissing, "brush files are missing or damaged"},
    {kInterrupted, "interrupted (Ctrl-C)"},
    {kTerminated, "terminated"},
};

}  // namespace

std::span<const ExitCodeMeaning> ExitCodes() {
    return kMeanings;
}

}  // namespace vireon::tool
