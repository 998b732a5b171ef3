// The same effect as a Windows library: nothing that it does under Wine may look different.

#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>

#include "tests/tool/program.h"

namespace vireon::tool {
namespace {

class UnderWine : public testing::Test {
  protected:
    void SetUp() override {
        const std::filesystem::path build = VIREON_TEST_WINDOWS_BUILD;
        effect_ = (build / "tests" / "tool" / "FakeEffect.aex").lexically_normal().string();
        worker_ = (build / "stage" / "vireon-worker.exe").lexically_normal().string();
        if (!std::filesystem::exists(effect_) || !std::filesystem::exists(worker_)) {
            if (std::getenv("VIREON_REQUIRE_WINDOWS") != nullptr) {
                FAIL() << "build the preset \"windows\" first: nothing at " << effect_;
            }
            GTEST_SKIP() << "build the preset \"windows\" first: nothing at " << effect_;
        }
    }

    Outcome render(const std::vector<std::string>& more,
                   const std::function<void(pid_t, const std::string&)>& watch = {},
                   Environment environment = {}) const {
        std::vector<std::string> arguments{"render", place_.input(), place_.output(), "--plugin",
                                           effect_};
        arguments.insert(arguments.end(), more.begin(), more.end());
        environment["VIREON_WORKER_EXE"] = worker_;
        environment["VIREON_WINE_PREFIX"] = std::getenv("VIREON_WINE_PREFIX") != nullptr
                                                ? std::getenv("VIREON_WINE_PREFIX")
                                                : VIREON_TEST_WINE_PREFIX;
        return Vireon(arguments, environment, watch);
    }

    Workplace place_;
    std::string effect_;
    std::string worker_;
};

TEST_F(UnderWine, FramesComeBack) {
    const Outcome outcome = render({"--behaviour", "invert"});
    EXPECT_EQ(outcome.code(), 0) << outcome.errors;
    EXPECT_EQ(outcome.errors, "");
    const auto windows = Pixels8(place_.output());
    EXPECT_EQ(place_.render({"--behaviour", "invert"}).code(), 0);
    EXPECT_EQ(windows, Pixels8(place_.output()));
}

TEST_F(UnderWine, TheLevelOfTheWindowsWorkerIsNamed) {
    const Outcome outcome = render({"--time"}, {}, {{"VIREON_GLOW_SIMD", "sse2"}});
    EXPECT_EQ(outcome.code(), 0) << outcome.errors;
    EXPECT_NE(outcome.output.find(" s (sse2), whole frame"), std::string::npos) << outcome.output;
}

TEST_F(UnderWine, PrintingDoesNotDisturb) {
    EXPECT_EQ(render({"--behaviour", "print"}).code(), 0);
    EXPECT_EQ(Pixels8(place_.output()), Pixels8(place_.input()));
}

TEST_F(UnderWine, TroubleCostsOneFrame) {
    place_.expectFailure(render({"--behaviour", "crash"}), 13, "access violation");
    place_.expectFailure(render({"--behaviour", "abort process"}), 13, "abort");
    place_.expectFailure(render({"--behaviour", "exit"}), 13, "exit code 0");
    place_.expectFailure(render({"--behaviour", "hang", "--timeout", "2"}), 14, "2 s");
    place_.expectFailure(render({"--behaviour", "write past"}), 15, "padding");
    place_.expectFailure(render({"--behaviour", "fail"}), 12, "No glow today.");
    place_.expectFailure(render({"--behaviour", "throw"}), 12, "exception");
    place_.expectFailure(
        Vireon({"render", place_.input(), place_.output(), "--plugin", place_.file("no.aex")}), 11,
        "there is no plug-in");
}

TEST_F(UnderWine, CtrlCIsTheHostsAbort) {
    int left = 1;
    Outcome outcome =
        render({"--behaviour", "slow", "--verbose"}, [&left](pid_t pid, const std::string& errors) {
            if (left > 0 && errors.find("begins") != std::string::npos) {
                kill(pid, SIGINT);
                --left;
            }
        });
    EXPECT_EQ(outcome.code(), 130) << outcome.errors;
    place_.expectUntouched();
}

}  // namespace
}  // namespace vireon::tool
