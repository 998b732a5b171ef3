#pragma once

#include <filesystem>
#include <functional>
#include <string>

#include "headless/remote/worker_client.h"
#include "tools/vireon/tool_error.h"

namespace vireon::tool {

/// What every command that needs the effect takes from the command line.
struct PluginOptions {
    std::filesystem::path plugin;  ///< empty: DefaultPlugin()
    double timeoutSeconds = 300;   ///< 0: wait for ever
    bool verbose = false;          ///< pass on what the effect prints
};

/// Folder of this program.
std::filesystem::path ProgramFolder();

/// VireonGlow.so beside this program.
std::filesystem::path DefaultPlugin();

std::filesystem::path PluginPath(const PluginOptions& options);

/// The worker program for a plug-in: for Windows plug-ins VIREON_WORKER_EXE, else vireon-worker.exe
/// beside this program, beside the plug-in or in the folder "windows" or "linux" next to either's;
/// for others VIREON_WORKER, else vireon-worker beside this program. Throws ToolError
/// (kWorkerMissing).
std::filesystem::path FindWorker(const std::filesystem::path& plugin);

/// The error of a worker as an end of this program. `doing` completes "the effect ... while".
ToolError ToToolError(const headless::WorkerError& error, const std::string& doing);

/// Starts the worker for a plug-in and loads the plug-in there. Throws ToolError.
headless::WorkerClient StartWorker(const PluginOptions& options);

/// What the effect registered. Throws ToolError.
headless::Description Describe(headless::WorkerClient& worker);

/// Hooks that obey Ctrl-C: once to abort the render, twice to end the worker.
headless::RenderHooks InterruptibleHooks();

}  // namespace vireon::tool
