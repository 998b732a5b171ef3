#include "tools/vireon/plugin.h"

#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string_view>
#include <system_error>
#include <vector>

#include "headless/remote/wine.h"
#include "tools/vireon/interruption.h"

namespace vireon::tool {

using headless::WorkerError;

std::filesystem::path ProgramFolder() {
    std::error_code error;
    const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe", error);
    return error ? std::filesystem::current_path() : program.parent_path();
}

std::filesystem::path DefaultPlugin() {
    return ProgramFolder() / "VireonGlow.so";
}

std::filesystem::path PluginPath(const PluginOptions& options) {
    return options.plugin.empty() ? DefaultPlugin() : options.plugin;
}

std::filesystem::path FindWorker(const std::filesystem::path& plugin) {
    const bool windows = headless::IsWindowsLibrary(plugin);
    const char* const variable = windows ? "VIREON_WORKER_EXE" : "VIREON_WORKER";
    if (const char* const chosen = std::getenv(variable); chosen != nullptr && *chosen != '\0') {
        return chosen;
    }
    const std::filesystem::path own = ProgramFolder();
    std::vector<std::filesystem::path> candidates;
    if (windows) {
        const std::string name = "vireon-worker.exe";
        const std::filesystem::path beside =
            std::filesystem::absolute(plugin).lexically_normal().parent_path();
        candidates = {own / name, beside / name, own.parent_path() / "windows" / name,
                      beside.parent_path() / "linux" / name,
                      // In a build tree the stages of the systems lie further apart.
                      own.parent_path().parent_path() / "windows" / own.filename() / name};
    } else {
        candidates = {own / "vireon-worker"};
    }
    for (const std::filesystem::path& candidate : candidates) {
        std::error_code error;
        if (std::filesystem::is_regular_file(candidate, error)) {
            return candidate;
        }
    }
    throw ToolError(kWorkerMissing, "the worker program " + candidates.front().string() +
                                        " is missing: install it there or name it in the "
                                        "environment variable " +
                                        variable);
}

ToolError ToToolError(const WorkerError& error, const std::string& doing) {
    const std::string text = error.what();
    switch (error.kind()) {
        case WorkerError::Kind::kWorkerMissing: return {kWorkerMissing, text};
        case WorkerError::Kind::kWineMissing: return {kWineMissing, text};
        case WorkerError::Kind::kNotAnEffect:
            return {kNotAnEffect, text + "; --plugin names the effect"};
        case WorkerError::Kind::kEffect: return {kEffectFailed, text};
        case WorkerError::Kind::kRequest:
            return {kInternalError, "the host refused while " + doing + ": " + text};
        case WorkerError::Kind::kCrashed:
            return {kEffectCrashed, "the effect was lost while " + doing + ": " + text};
        case WorkerError::Kind::kHung:
            return {kEffectHung, "the effect hung while " + doing + ": " + text +
                                     " (--timeout sets how long to wait)"};
        case WorkerError::Kind::kKilled:
            return InterruptionError("the effect was ended, nothing was written");
        case WorkerError::Kind::kProtocol:
            return {kProtocolError,
                    "no understanding with the worker while " + doing + ": " + text};
    }
    return {kInternalError, text};
}

headless::RenderHooks InterruptibleHooks() {
    headless::RenderHooks hooks;
    // Whoever presses Ctrl-C may do so again; whoever terminates the program only waits.
    static constexpr std::chrono::seconds kPatience{5};
    using Clock = std::chrono::steady_clock;
    hooks.interrupt = [asked = std::optional<Clock::time_point>()]() mutable {
        if (InterruptionCount() == 0) return headless::Interrupt::kNone;
        if (!asked) asked = Clock::now();
        const bool waitedLongEnough = WasTerminated() && Clock::now() - *asked > kPatience;
        return InterruptionCount() > 1 || waitedLongEnough ? headless::Interrupt::kKill
                                                           : headless::Interrupt::kAbort;
    };
    return hooks;
}

namespace {

/// Before a render there is nothing to abort: the first Ctrl-C ends the worker.
headless::RenderHooks ImpatientHooks() {
    headless::RenderHooks hooks;
    hooks.interrupt = [] {
        return InterruptionCount() > 0 ? headless::Interrupt::kKill : headless::Interrupt::kNone;
    };
    return hooks;
}

}  // namespace

headless::WorkerClient StartWorker(const PluginOptions& options) {
    const std::filesystem::path plugin = PluginPath(options);
    std::error_code ignored;
    if (!std::filesystem::exists(plugin, ignored)) {
        throw ToolError(
            kNotAnEffect,
            "there is no plug-in " + plugin.string() +
                (options.plugin.empty() ? ": install it there or name one with --plugin" : ""));
    }
    headless::WorkerOptions workerOptions;
    workerOptions.worker = FindWorker(plugin);
    // 0 means for ever, and only 0.
    workerOptions.silenceLimit = std::chrono::milliseconds(
        static_cast<std::int64_t>(std::ceil(options.timeoutSeconds * 1000.0)));
    if (options.verbose) {
        workerOptions.onOutput = [](std::string_view text) {
            std::fwrite(text.data(), 1, text.size(), stderr);
        };
    }
    try {
        headless::WorkerClient worker =
            headless::WorkerClient::start(workerOptions, ImpatientHooks());
        worker.load(plugin, ImpatientHooks());
        return worker;
    } catch (const WorkerError& error) {
        throw ToToolError(error, "it was being loaded");
    }
}

headless::Description Describe(headless::WorkerClient& worker) {
    try {
        return worker.describe({}, ImpatientHooks());
    } catch (const WorkerError& error) {
        throw ToToolError(error, "it was being set up");
    }
}

}  // namespace vireon::tool
