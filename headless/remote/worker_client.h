#pragma once

#include <chrono>
#include <cstdint>
#include <deque>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

#include "headless/remote/child_process.h"
#include "headless/remote/envelope.h"
#include "headless/remote/messages.h"

namespace vireon::headless {

/// Something went wrong with a worker, or with the effect while it was set up. Effects that fail a
/// frame in an orderly way are no exception but a RenderResult.
class WorkerError : public std::runtime_error {
  public:
    enum class Kind {
        kWorkerMissing,  ///< the worker program is not there or cannot be started
        kWineMissing,    ///< a Windows worker is wanted and Wine is not installed
        kNotAnEffect,    ///< the library cannot be loaded or exports no entry point
        kEffect,         ///< the effect failed in its set-up commands
        kRequest,        ///< the host refused the request
        kCrashed,        ///< the worker ended in the middle of its work
        kHung,           ///< nothing was heard for too long; the worker was killed
        kKilled,         ///< killed because the caller wished it
        kProtocol,       ///< the worker sent something that is no message
    };

    WorkerError(Kind kind, const std::string& text) : std::runtime_error(text), kind_(kind) {}

    Kind kind() const { return kind_; }
    /// Whether the worker is still good for other requests.
    bool workerLives() const {
        return kind_ == Kind::kNotAnEffect || kind_ == Kind::kEffect || kind_ == Kind::kRequest;
    }

  private:
    Kind kind_;
};

struct WorkerOptions {
    /// The worker program; a name that ends in .exe is run under Wine.
    std::filesystem::path worker;
    /// Only for Windows workers; empty: FindWine() and DefaultWinePrefix().
    std::filesystem::path wine;
    std::filesystem::path winePrefix;
    /// How long a worker may be silent while it owes an answer; 0: for ever.
    std::chrono::milliseconds silenceLimit = std::chrono::seconds(300);
    /// How long a worker may take to say hello. A new Wine prefix takes some seconds.
    std::chrono::milliseconds startLimit = std::chrono::seconds(120);
    /// Gets what the worker's process, and so the effect in it, prints.
    std::function<void(std::string_view)> onOutput;
};

/// What the caller of a request wants of it meanwhile.
enum class Interrupt {
    kNone,
    kAbort,  ///< let the host answer the effect's next progress or abort call with 517
    kKill,   ///< end the worker now
};

struct RenderHooks {
    /// Called for progress messages, about 50 times a second at most.
    std::function<void(const Progress&)> progress;
    /// Asked at least 20 times a second.
    std::function<Interrupt()> interrupt;
};

/// A process that loads one effect and plays its host, seen from outside. An effect that crashes
/// takes its worker with it, never this process; start a new client then.
///
///     WorkerClient worker = WorkerClient::start({.worker = "vireon-worker"});
///     worker.load("Effect.so");
///     const RenderResult result = worker.render(job);
///
/// Not for several threads at once. Every member throws WorkerError; after one whose workerLives()
/// is false, only destruction makes sense.
class WorkerClient {
  public:
    /// Starts the program and waits for its first words; of the hooks, only kKill has a meaning
    /// yet.
    static WorkerClient start(const WorkerOptions& options, const RenderHooks& hooks = {});
    /// Asks the worker to quit, and kills it when it does not do so soon.
    ~WorkerClient();
    WorkerClient(WorkerClient&&) noexcept;
    WorkerClient& operator=(WorkerClient&&) noexcept;

    /// "linux" or "windows".
    const std::string& system() const { return hello_.system; }
    /// Instruction set that the glow takes in the worker, e.g. "avx2".
    const std::string& simd() const { return hello_.simd; }
    pid_t pid() const { return child_->pid(); }

    /// Loads an effect; `library` is a path of this system.
    void load(const std::filesystem::path& library, const RenderHooks& hooks = {});
    /// Sets the effect up in a host and answers what it registered.
    Description describe(const HostIdentity& host = {}, const RenderHooks& hooks = {});
    RenderResult render(const RenderJob& job, const RenderHooks& hooks = {});

  private:
    explicit WorkerClient(WorkerOptions options);

    using Clock = std::chrono::steady_clock;

    static WorkerClient startOnce(const WorkerOptions& options, const RenderHooks& hooks);
    /// Sends what is queued and waits for the next message. `id` names the render to abort.
    Message receive(std::chrono::milliseconds limit, const RenderHooks& hooks, RenderId id);
    /// As receive; a failure message becomes an exception, any type but `expected` too.
    Message expect(MessageType expected, const RenderHooks& hooks, RenderId id = 0);
    void obey(const RenderHooks& hooks, RenderId id);
    void waitForEvent();
    void sendQueued();
    bool readOutput();
    bool readErrors();
    [[noreturn]] void reportDeath(const ExitStatus& status);
    [[noreturn]] void reportSilence(std::chrono::milliseconds limit);
    [[noreturn]] void reportProtocolError(const std::string& text);

    WorkerOptions options_;
    std::unique_ptr<ChildProcess> child_;
    Hello hello_;
    MessageAssembler assembler_;
    std::deque<Bytes> outgoing_;
    std::size_t outgoingSent_ = 0;
    Clock::time_point lastHeard_;
    RenderId lastRender_ = 0;
    bool abortSent_ = false;
    bool broken_ = false;
    std::string log_;
};

}  // namespace vireon::headless
