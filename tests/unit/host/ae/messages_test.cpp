#include <gtest/gtest.h>

#include <string>

#include "command.h"
#include "host/application_codes.h"

namespace vireon::test {
namespace {

using headless::CommandResult;
using headless::Slot;

#ifdef _WIN32
constexpr const char* kSystemLibrary = "kernel32.dll";
#else
constexpr const char* kSystemLibrary = "libc.so.6";
#endif

void ExpectReported(const CommandResult& result, const std::string& message) {
    EXPECT_EQ(result.message(), message);
    EXPECT_EQ(result.out.out_flags, sdk::PF_OutFlag_DISPLAY_ERROR_MESSAGE);
}

void ExpectNothingReported(const CommandResult& result) {
    EXPECT_EQ(result.message(), "");
    EXPECT_EQ(result.out.out_flags, 0);
}

TEST(ReportError, WritesTheMessageByTheHostsOwnFunctionAndMarksIt) {
    const CommandResult result = InRender([](Command& command) {
        command.out.out_flags = sdk::PF_OutFlag_REFRESH_UI;
        PluginHost_AE_Impl host = command.makeHost();
        host.reportError("No light");
        EXPECT_EQ(command.calls(Slot::kAnsiSprintf), 1u);
    });
    EXPECT_EQ(result.message(), "No light");
    EXPECT_EQ(result.out.out_flags,
              sdk::PF_OutFlag_REFRESH_UI | sdk::PF_OutFlag_DISPLAY_ERROR_MESSAGE);
}

TEST(ReportError, ShowsPercentSignsAsTheyAre) {
    ExpectReported(
        InRender([](Command& command) { command.makeHost().reportError("100% of %s and %d"); }),
        "100% of %s and %d");
}

TEST(ReportError, StaysWithinTheRoomForTheMessage) {
    const std::string longText(1000, 'x');
    ExpectReported(
        InRender([&](Command& command) { command.makeHost().reportError(longText.c_str()); }),
        longText.substr(0, 255));
}

TEST(LoadLibrary, GivesTheModuleOfALibraryThatIsThere) {
    ExpectNothingReported(InRender([](Command& command) {
        EXPECT_NE(command.makeHost().loadLibrary(kSystemLibrary), nullptr);
    }));
}

TEST(LoadLibrary, ReportsALibraryThatIsNot) {
    ExpectReported(InRender([](Command& command) {
                       EXPECT_EQ(command.makeHost().loadLibrary("no such library.lib"), nullptr);
                   }),
                   "Cannot load DLL no such library.lib");
}

TEST(LoadLibrary, ReportsAnEndlessNameWithinTheRoomForTheMessage) {
    const std::string name(600, 'n');
    const std::string text = "Cannot load DLL " + name;
    ExpectReported(InRender([&](Command& command) {
                       EXPECT_EQ(command.makeHost().loadLibrary(name.c_str()), nullptr);
                   }),
                   text.substr(0, 255));
}

TEST(SetReturnMessage, JoinsTwoLines) {
    const CommandResult result = InRender([](Command& command) {
        command.makeHost().setReturnMessage("First 50%", "second %s");
        EXPECT_EQ(command.calls(Slot::kAnsiSprintf), 1u);
    });
    EXPECT_EQ(result.message(), "First 50%\nsecond %s");
    EXPECT_EQ(result.out.out_flags, 0);
}

TEST(SetReturnMessage, StaysWithinTheRoomForTheMessage) {
    for (const std::size_t length : {10u, 127u, 200u, 253u, 254u, 255u, 400u}) {
        const std::string first(length, 'a');
        for (const std::string& second :
             {std::string("b"), std::string(54, 'b'), std::string(400, 'b')}) {
            const CommandResult result = InRender([&](Command& command) {
                command.makeHost().setReturnMessage(first.c_str(), second.c_str());
            });
            EXPECT_EQ(result.message(), (first.substr(0, 254) + "\n" + second).substr(0, 255));
        }
    }
}

TEST(AcquireSuite, GivesTheHostsTable) {
    ExpectNothingReported(InRender([](Command& command) {
        PluginHost_AE_Impl host = command.makeHost();
        const void* suite = nullptr;
        EXPECT_EQ(host.acquireSuite("PF Handle Suite", 2, "No blocks", &suite), 0);
        EXPECT_NE(suite, nullptr);
        EXPECT_EQ(command.spy.acquired.back(), Spy::Suite("PF Handle Suite", 2));
        EXPECT_EQ(host.releaseSuite("PF Handle Suite", 2, "No blocks"), 0);
        EXPECT_EQ(command.spy.released.back(), Spy::Suite("PF Handle Suite", 2));
    }));
}

TEST(AcquireSuite, ReportsASuiteThatIsMissing) {
    for (const char* message : {"No \"blocks\", 0%", static_cast<const char*>(nullptr)}) {
        const Body body = [&](Command& command) {
            PluginHost_AE_Impl host = command.makeHost();
            const void* suite = &command;
            EXPECT_EQ(host.acquireSuite("PF Handle Suite", 99, message, &suite),
                      sdk::PF_Err_BAD_CALLBACK_PARAM);
            EXPECT_EQ(suite, nullptr);
        };
        ExpectReported(InRender(body),
                       message != nullptr ? message : "Not able to acquire AEFX Suite.");
    }
}

TEST(AcquireSuite, ReportsAHostWithoutSuites) {
    Scene scene = SceneIn(kAfterEffects, 12, 11);
    scene.settings.basicSuite = false;
    for (const char* message : {"Nothing here", static_cast<const char*>(nullptr)}) {
        const Body acquire = [&](Command& command) {
            const void* suite = &command;
            EXPECT_EQ(command.makeHost().acquireSuite("PF Handle Suite", 2, message, &suite), 516);
            EXPECT_EQ(suite, nullptr);
        };
        ExpectReported(InRender(scene, acquire),
                       message != nullptr ? message : "Not able to acquire AEFX Suite.");
        const Body release = [&](Command& command) {
            EXPECT_EQ(command.makeHost().releaseSuite("PF Handle Suite", 2, message), 516);
        };
        ExpectReported(InRender(scene, release),
                       message != nullptr ? message : "Not able to release AEFX Suite.");
    }
}

TEST(ReleaseSuite, SucceedsWhateverTheHostAnswers) {
    ExpectNothingReported(InRender([](Command& command) {
        PluginHost_AE_Impl host = command.makeHost();
        const void* suite = nullptr;
        ASSERT_EQ(host.acquireSuite("PF Handle Suite", 2, nullptr, &suite), 0);
        command.failNext(Slot::kReleaseSuite);
        EXPECT_EQ(host.releaseSuite("PF Handle Suite", 2, nullptr), 0);
    }));
}

TEST(ResourceFilePath, IsTheHostsNarrowPath) {
    Scene scene;
    scene.settings.pluginPath = "/plug-ins/glow.aex";
    InRender(scene, [](Command& command) {
        EXPECT_EQ(command.makeHost().resourceFilePath(), "/plug-ins/glow.aex");
        command.failNext(Slot::kGetPlatformData);
        EXPECT_EQ(command.makeHost().resourceFilePath(), "");
    });
}

}  // namespace
}  // namespace vireon::test
