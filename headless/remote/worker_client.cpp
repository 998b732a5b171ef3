#include "headless/remote/worker_client.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include "headless/remote/wine.h"
#include "headless/remote/worker_exit.h"

namespace vireon::headless {
namespace {

using std::chrono::milliseconds;

/// How long one wait for the pipes lasts, and so how late an interrupt or a death is seen.
constexpr int kTick = 20;
/// Time for a worker to end after it was asked to.
constexpr milliseconds kFarewell{2000};
/// The last of the worker's own output that is kept for error messages.
constexpr std::size_t kMaxLog = 8192;
/// Wanted capacity of the pipes; frames are large.
constexpr int kPipeSize = 1 << 20;

WorkerError Missing(const std::filesystem::path& worker, const std::string& reason) {
    return {WorkerError::Kind::kWorkerMissing,
            "cannot start the worker program " + worker.string() + ": " + reason};
}

ChildCommand CommandFor(const WorkerOptions& options) {
    if (access(options.worker.c_str(), R_OK) != 0) {
        throw Missing(options.worker, std::generic_category().message(errno));
    }
    if (options.worker.extension() != ".exe") {
        return {options.worker, {}, {}};
    }
    const std::filesystem::path wine = options.wine.empty() ? FindWine() : options.wine;
    if (wine.empty()) {
        throw WorkerError(WorkerError::Kind::kWineMissing,
                          "Wine, which runs Windows plug-ins, is not installed: install the "
                          "package wine64");
    }
    const std::filesystem::path prefix =
        options.winePrefix.empty() ? DefaultWinePrefix() : options.winePrefix;
    try {
        return WineCommand(wine, prefix, options.worker);
    } catch (const std::filesystem::filesystem_error& error) {
        throw WorkerError(WorkerError::Kind::kWorkerMissing,
                          "cannot make the Wine prefix " + prefix.string() + ": " +
                              error.code().message() + " (VIREON_WINE_PREFIX names another place)");
    }
}

/// What Wine prints when a program meets a server that is on its way out.
constexpr const char* kWineServerGone = "wine client error";

/// What a worker may say in answer to anything but a render.
constexpr std::uint64_t kShortAnswer = std::uint64_t{32} << 20;

/// Bytes that the answer to a frame may have: an effect may enlarge its frame, but not without end.
std::uint64_t LargestFrame(const RenderJob& job) {
    const auto frame = [&job](std::int32_t width, std::int32_t height) {
        return static_cast<std::uint64_t>(std::max(width, 0)) *
               static_cast<std::uint64_t>(std::max(height, 0)) *
               static_cast<std::uint64_t>(job.bits / 2);
    };
    const std::uint64_t largest =
        std::max(frame(job.input.width, job.input.height), frame(job.fullWidth, job.fullHeight));
    return kShortAnswer + 16 * largest;
}

/// Lets a longer answer in for the length of a scope.
class AnswerRoom {
  public:
    AnswerRoom(MessageAssembler& assembler, std::uint64_t bytes) : assembler_(assembler) {
        assembler_.limitPayload(bytes);
    }
    AnswerRoom(const AnswerRoom&) = delete;
    AnswerRoom& operator=(const AnswerRoom&) = delete;
    ~AnswerRoom() { assembler_.limitPayload(kShortAnswer); }

  private:
    MessageAssembler& assembler_;
};

/// The last line of a text that says anything.
std::string LastLine(const std::string& text) {
    const std::size_t end = text.find_last_not_of(" \r\n");
    if (end == std::string::npos) {
        return {};
    }
    const std::size_t begin = text.find_last_of("\r\n", end);
    return text.substr(begin == std::string::npos ? 0 : begin + 1,
                       end - (begin == std::string::npos ? 0 : begin + 1) + 1);
}

/// The last line that the worker itself, not the effect, printed; empty when there is none.
std::string LastWords(const std::string& log) {
    const std::size_t begin = log.rfind(kWorkerLogPrefix);
    if (begin == std::string::npos) {
        return {};
    }
    const std::size_t text = begin + std::string_view(kWorkerLogPrefix).size();
    return log.substr(text, log.find_first_of("\r\n", text) - text);
}

WorkerError::Kind KindOf(Failure::Kind kind) {
    switch (kind) {
        case Failure::Kind::kNotAnEffect: return WorkerError::Kind::kNotAnEffect;
        case Failure::Kind::kEffect: return WorkerError::Kind::kEffect;
        case Failure::Kind::kRequest: return WorkerError::Kind::kRequest;
        case Failure::Kind::kProtocol: return WorkerError::Kind::kProtocol;
    }
    return WorkerError::Kind::kProtocol;
}

}  // namespace

WorkerClient::WorkerClient(WorkerOptions options) : options_(std::move(options)) {
    assembler_.limitPayload(kShortAnswer);
}
WorkerClient::WorkerClient(WorkerClient&&) noexcept = default;

WorkerClient& WorkerClient::operator=(WorkerClient&& other) noexcept = default;

WorkerClient WorkerClient::start(const WorkerOptions& options, const RenderHooks& hooks) {
    try {
        return startOnce(options, hooks);
    } catch (const WorkerError& error) {
        // A Wine server that is just ending refuses the program, mostly with these words but now
        // and then without any; the next start makes a new one. No effect has run yet.
        const bool underWine = options.worker.extension() == ".exe";
        const bool refused =
            std::string_view(error.what()).find(kWineServerGone) != std::string_view::npos;
        if (error.kind() != WorkerError::Kind::kCrashed || !(underWine || refused)) throw;
    }
    return startOnce(options, hooks);
}

WorkerClient WorkerClient::startOnce(const WorkerOptions& options, const RenderHooks& hooks) {
    WorkerClient client(options);
    const ChildCommand command = CommandFor(options);
    try {
        client.child_ = std::make_unique<ChildProcess>(command);
    } catch (const std::system_error& error) {
        throw Missing(options.worker, error.code().message());
    }
    // Only a matter of speed; a system that refuses works with smaller pipes.
    fcntl(client.child_->input.get(), F_SETPIPE_SZ, kPipeSize);
    fcntl(client.child_->output.get(), F_SETPIPE_SZ, kPipeSize);

    const Message message = client.receive(options.startLimit, hooks, 0);
    if (message.type != MessageType::kHello) {
        client.reportProtocolError("its first message is no greeting");
    }
    try {
        client.hello_ = DecodeHello(message.payload);
    } catch (const ProtocolError& error) {
        client.reportProtocolError(error.what());
    }
    return client;
}

WorkerClient::~WorkerClient() {
    if (child_ == nullptr || broken_ || child_->exited()) {
        return;
    }
    outgoing_.push_back(EncodeQuit());
    const Clock::time_point end = Clock::now() + kFarewell;
    while (!child_->exited() && Clock::now() < end) {
        waitForEvent();
        sendQueued();
        std::array<std::uint8_t, 4096> scratch;
        while (child_->output.isOpen()) {
            const auto count = ReadSome(child_->output, scratch);
            if (!count) {
                child_->output.close();
            }
            if (count.value_or(0) == 0) {
                break;
            }
        }
        while (readErrors()) {
        }
    }
}

void WorkerClient::load(const std::filesystem::path& library, const RenderHooks& hooks) {
    const bool windows = hello_.system == "windows";
    const std::string path = windows
                                 ? WindowsPath(library)
                                 : std::filesystem::absolute(library).lexically_normal().string();
    outgoing_.push_back(EncodeLoad({path}));
    expect(MessageType::kLoaded, hooks);
}

Description WorkerClient::describe(const HostIdentity& host, const RenderHooks& hooks) {
    outgoing_.push_back(EncodeDescribe(host));
    const Message message = expect(MessageType::kDescription, hooks);
    try {
        return DecodeDescription(message.payload);
    } catch (const ProtocolError& error) {
        reportProtocolError(error.what());
    }
}

RenderResult WorkerClient::render(const RenderJob& job, const RenderHooks& hooks) {
    const RenderId id = ++lastRender_;
    abortSent_ = false;
    const AnswerRoom room(assembler_, LargestFrame(job));
    outgoing_.push_back(EncodeRender(id, job));
    try {
        for (;;) {
            const Message message = receive(options_.silenceLimit, hooks, id);
            switch (message.type) {
                case MessageType::kProgress: {
                    const auto progress = DecodeProgress(message.payload);
                    if (hooks.progress && progress.id == id) {
                        hooks.progress(progress.content);
                    }
                    break;
                }
                case MessageType::kResult: {
                    auto result = DecodeResult(message.payload);
                    if (result.id != id) {
                        reportProtocolError("it answered another frame than was asked for");
                    }
                    return std::move(result.content);
                }
                case MessageType::kFailure: {
                    const Failure failure = DecodeFailure(message.payload);
                    broken_ = failure.kind == Failure::Kind::kProtocol;
                    throw WorkerError(KindOf(failure.kind), failure.text);
                }
                default: reportProtocolError("it sent an unexpected message while rendering");
            }
        }
    } catch (const ProtocolError& error) {
        reportProtocolError(error.what());
    }
}

Message WorkerClient::expect(MessageType expected, const RenderHooks& hooks, RenderId id) {
    Message message = receive(options_.silenceLimit, hooks, id);
    if (message.type == MessageType::kFailure) {
        Failure failure;
        try {
            failure = DecodeFailure(message.payload);
        } catch (const ProtocolError& error) {
            reportProtocolError(error.what());
        }
        broken_ = failure.kind == Failure::Kind::kProtocol;
        throw WorkerError(KindOf(failure.kind), failure.text);
    }
    if (message.type != expected) {
        reportProtocolError("it sent an unexpected message");
    }
    return message;
}

Message WorkerClient::receive(milliseconds limit, const RenderHooks& hooks, RenderId id) {
    lastHeard_ = Clock::now();
    for (;;) {
        // Taken before the pipes are read, so that the last words of a process that just ended are
        // not missed.
        const std::optional<ExitStatus> status = child_->exited();
        while (readErrors()) {
        }
        try {
            while (readOutput()) {
                if (std::optional<Message> message = assembler_.take()) {
                    return std::move(*message);
                }
            }
        } catch (const ProtocolError& error) {
            reportProtocolError(error.what());
        }
        if (status) {
            reportDeath(*status);
        }
        obey(hooks, id);
        sendQueued();
        if (limit.count() > 0 && Clock::now() - lastHeard_ > limit) {
            reportSilence(limit);
        }
        waitForEvent();
    }
}

void WorkerClient::obey(const RenderHooks& hooks, RenderId id) {
    switch (hooks.interrupt ? hooks.interrupt() : Interrupt::kNone) {
        case Interrupt::kNone: break;
        case Interrupt::kAbort:
            if (!abortSent_ && id != 0) {
                outgoing_.push_back(EncodeAbort(id));
                abortSent_ = true;
            }
            break;
        case Interrupt::kKill:
            broken_ = true;
            child_->kill();
            throw WorkerError(WorkerError::Kind::kKilled, "the worker was killed on request");
    }
}

void WorkerClient::waitForEvent() {
    std::array<pollfd, 3> events{
        pollfd{child_->output.get(), POLLIN, 0},
        pollfd{child_->errors.get(), POLLIN, 0},
        pollfd{outgoing_.empty() ? -1 : child_->input.get(), POLLOUT, 0},
    };
    poll(events.data(), events.size(), kTick);
}

void WorkerClient::sendQueued() {
    while (!outgoing_.empty() && child_->input.isOpen()) {
        const Bytes& message = outgoing_.front();
        const auto count = WriteSome(child_->input, std::span(message).subspan(outgoingSent_));
        if (!count) {
            child_->input.close();  // the process is ending; its status tells the rest
            return;
        }
        if (*count == 0) {
            return;
        }
        lastHeard_ = Clock::now();
        outgoingSent_ += *count;
        if (outgoingSent_ == message.size()) {
            outgoing_.pop_front();
            outgoingSent_ = 0;
        }
    }
}

bool WorkerClient::readOutput() {
    if (!child_->output.isOpen()) {
        return false;
    }
    const auto count = ReadSome(child_->output, assembler_.room());
    if (!count) {
        child_->output.close();
        return false;
    }
    if (*count == 0) {
        return false;
    }
    lastHeard_ = Clock::now();
    assembler_.filled(*count);
    return true;
}

bool WorkerClient::readErrors() {
    if (!child_->errors.isOpen()) {
        return false;
    }
    std::array<std::uint8_t, 4096> bytes;
    const auto count = ReadSome(child_->errors, bytes);
    if (!count) {
        child_->errors.close();
        return false;
    }
    const std::string_view text(reinterpret_cast<const char*>(bytes.data()), *count);
    if (!text.empty() && options_.onOutput) {
        options_.onOutput(text);
    }
    log_.append(text);
    if (log_.size() > kMaxLog) {
        log_.erase(0, log_.size() - kMaxLog);
    }
    return *count > 0;
}

void WorkerClient::reportDeath(const ExitStatus& status) {
    broken_ = true;
    std::string text = status.text();
    const std::string lastWords = LastWords(log_);
    if (!lastWords.empty()) {
        text = lastWords;
    } else if (log_.find(kWineServerGone) != std::string::npos) {
        text += std::string(": ") + kWineServerGone;
    } else if (const std::string line = LastLine(log_); !line.empty()) {
        text += ": " + line;
    }
    const bool crashed = status.bySignal || status.code == kWorkerCrashed;
    throw WorkerError(WorkerError::Kind::kCrashed,
                      std::string(crashed ? "the worker crashed" : "the worker ended by itself") +
                          (assembler_.midMessage() ? " in the middle of a message (" : " (") +
                          text + ")");
}

void WorkerClient::reportSilence(milliseconds limit) {
    broken_ = true;
    child_->kill();
    const double seconds = std::chrono::duration<double>(limit).count();
    std::string text = std::to_string(seconds);
    text.erase(text.find_last_not_of('0') + 1);
    if (text.back() == '.') {
        text.pop_back();
    }
    throw WorkerError(WorkerError::Kind::kHung,
                      "nothing was heard from the worker for " + text + " s; it was ended");
}

void WorkerClient::reportProtocolError(const std::string& text) {
    broken_ = true;
    child_->kill();
    throw WorkerError(WorkerError::Kind::kProtocol, "the worker sent garbage: " + text);
}

}  // namespace vireon::headless
