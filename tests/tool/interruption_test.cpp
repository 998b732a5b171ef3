// Ctrl-C, seen from outside.

#include <csignal>

#include <gtest/gtest.h>

#include <fstream>
#include <utility>

#include "tests/tool/program.h"

namespace vireon::tool {
namespace {

/// Sends signals once the effect is at work, with pauses of about a tenth of a second.
class Signaller {
  public:
    Signaller(int signal, int count) : signal_(signal), left_(count) {}

    void operator()(pid_t pid, const std::string& errors) {
        if (errors.find("the effect begins") == std::string::npos || left_ == 0) {
            return;
        }
        const auto now = std::chrono::steady_clock::now();
        if (now >= next_) {
            kill(pid, signal_);
            --left_;
            next_ = now + std::chrono::milliseconds(100);
        }
    }

  private:
    int signal_;
    int left_;
    std::chrono::steady_clock::time_point next_{};
};

/// The line that the effect prints on request does not count.
Outcome WithoutChatter(Outcome outcome) {
    const std::string chatter = "the effect begins\n";
    const std::size_t at = outcome.errors.find(chatter);
    EXPECT_NE(at, std::string::npos);
    if (at != std::string::npos) {
        outcome.errors.erase(at, chatter.size());
    }
    return outcome;
}

TEST(Interruption, CtrlCIsTheHostsAbort) {
    const Workplace place;
    const auto start = std::chrono::steady_clock::now();
    const Outcome outcome =
        place.render({"--behaviour", "slow", "--verbose"}, {}, Signaller(SIGINT, 1));
    // Left alone, the effect takes ten seconds.
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(8));
    place.expectFailure(WithoutChatter(outcome), 130, "interrupted");
}

TEST(Interruption, TheSecondCtrlCEndsAnEffectThatDoesNotListen) {
    const Workplace place;
    const auto start = std::chrono::steady_clock::now();
    const Outcome outcome =
        place.render({"--behaviour", "stubborn", "--verbose"}, {}, Signaller(SIGINT, 2));
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(8));
    place.expectFailure(WithoutChatter(outcome), 130, "the effect was ended");
}

TEST(Interruption, TerminationIsOrderlyToo) {
    const Workplace place;
    const Outcome outcome =
        place.render({"--behaviour", "slow", "--verbose"}, {}, Signaller(SIGTERM, 1));
    place.expectFailure(WithoutChatter(outcome), 143, "terminated");
}

TEST(Interruption, AWorkerThatDoesNotGreetIsNotWaitedFor) {
    const Workplace place;
    const std::string script = place.file("worker");
    std::ofstream(script) << "#!/bin/sh\nexec sleep 60\n";
    std::filesystem::permissions(script, std::filesystem::perms::owner_all);
    const std::pair<int, int> codes[] = {{SIGINT, 130}, {SIGTERM, 143}, {SIGHUP, 143}};
    for (const auto& [signal, code] : codes) {
        const auto start = std::chrono::steady_clock::now();
        const auto afterASecond = [&](pid_t pid, const std::string&) {
            if (std::chrono::steady_clock::now() - start > std::chrono::seconds(1)) {
                kill(pid, signal);
            }
        };
        const Outcome outcome = place.render({}, {{"VIREON_WORKER", script}}, afterASecond);
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(8));
        place.expectFailure(outcome, code, "the effect was ended");
    }
}

}  // namespace
}  // namespace vireon::tool
