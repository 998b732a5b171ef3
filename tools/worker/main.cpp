#include <chrono>
#include <cstdio>
#include <exception>
#include <new>

#include "headless/error.h"
#include "headless/remote/messages.h"
#include "headless/remote/worker_exit.h"
#include "simd/level.h"
#include "tools/worker/link.h"
#include "tools/worker/platform.h"
#include "tools/worker/session.h"

namespace vireon::worker {
namespace {

using headless::Failure;
using headless::Message;
using headless::MessageType;

/// Passes an effect's progress calls on, as often as a person can follow, and answers them.
class ProgressRelay {
  public:
    ProgressRelay(Link& link, headless::RenderId id) : link_(link), id_(id) {}

    sdk::PF_Err operator()(std::int32_t current, std::int32_t total) {
        const Clock::time_point now = Clock::now();
        // An abort call carries no progress, but is a sign of life like any other.
        const bool changed = total > 0 && (current != last_.current || total != last_.total);
        const bool due = now - sent_ >= kInterval;
        if (due || (changed && (!any_ || current >= total))) {
            last_ = total > 0 ? headless::Progress{current, total} : last_;
            link_.send(headless::EncodeProgress(id_, last_));
            sent_ = now;
            any_ = true;
        }
        return link_.isAborted(id_) ? sdk::PF_Interrupt_CANCEL : sdk::PF_Err_NONE;
    }

  private:
    using Clock = std::chrono::steady_clock;
    static constexpr std::chrono::milliseconds kInterval{20};

    Link& link_;
    headless::RenderId id_;
    headless::Progress last_;
    Clock::time_point sent_ = Clock::now();
    bool any_ = false;
};

headless::Bytes Answer(Session& session, Link& link, const Message& message) {
    switch (message.type) {
        case MessageType::kLoad:
            session.load(headless::DecodeLoad(message.payload).path);
            return headless::EncodeLoaded();
        case MessageType::kDescribe:
            return headless::EncodeDescription(
                session.describe(headless::DecodeDescribe(message.payload)));
        case MessageType::kRender: {
            const auto job = headless::DecodeRender(message.payload);
            ProgressRelay relay(link, job.id);
            return headless::EncodeResult(job.id, session.render(job.content, std::ref(relay)));
        }
        default: throw headless::ProtocolError("a message that a worker does not take");
    }
}

headless::Bytes AnswerOrFailure(Session& session, Link& link, const Message& message) {
    try {
        return Answer(session, link, message);
    } catch (const headless::ProtocolError& error) {
        link.endOnGarbage(error.what());
    } catch (const SessionError& error) {
        return headless::EncodeFailure(error.failure());
    } catch (const headless::HeadlessError& error) {
        return headless::EncodeFailure({Failure::Kind::kRequest, 0, error.what()});
    } catch (const std::bad_alloc&) {
        return headless::EncodeFailure({Failure::Kind::kRequest, 0, "not enough memory"});
    }
}

int Run() {
    PrivatePipes pipes;
    InstallCrashExit();
    Link link(pipes, headless::EncodeHello({SystemName(), simd::LevelName(simd::ActiveLevel())}));
    Session session;
    for (;;) {
        Message message = link.next();
        if (message.type == MessageType::kQuit) {
            return headless::kWorkerDone;
        }
        const headless::Bytes answer = AnswerOrFailure(session, link, message);
        link.send(answer);
    }
}

}  // namespace
}  // namespace vireon::worker

int main(int argc, char** /*argv*/) {
    if (argc != 1) {
        std::fputs(
            "usage: vireon-worker\n"
            "Hosts one effect for the program vireon, which starts it and talks to it through its\n"
            "standard input and output. It takes no arguments.\n",
            stderr);
        return vireon::headless::kWorkerUsage;
    }
    return vireon::worker::Run();
}
