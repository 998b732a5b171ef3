#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include "tests/conformance/support.h"

namespace vireon::conformance {
namespace {

using headless::CommandResult;
using headless::Host;
using headless::Slot;

constexpr std::uint32_t kEffectVersion = 0x00089600;
constexpr std::int32_t kOutFlags = 0x06008021;
constexpr std::int32_t kOutFlags2 = 0x00001408;

/// Whether every byte of the answer is as the host cleared it.
bool Untouched(const sdk::PF_OutData& out) {
    static const sdk::PF_OutData kCleared{};
    return std::memcmp(&out, &kCleared, sizeof(out)) == 0;
}

/// The commands that carry nothing for this effect.
const std::vector<std::int32_t>& IgnoredCommands() {
    static const std::vector<std::int32_t> commands{2,  5,  6,  7,  8,  10, 12, 15,
                                                    16, 17, 18, 19, 20, 21, 22};
    return commands;
}

const std::vector<std::int32_t>& UnknownCommands() {
    static const std::vector<std::int32_t> commands{25,
                                                    26,
                                                    27,
                                                    28,
                                                    29,
                                                    30,
                                                    31,
                                                    32,
                                                    33,
                                                    34,
                                                    100,
                                                    65536,
                                                    std::numeric_limits<std::int32_t>::max()};
    return commands;
}

TEST(About, TextIsNameDescriptionVersionAndNoticeWithATrailingBlank) {
    Host host(Effect());
    const CommandResult result = host.about();
    EXPECT_EQ(result.error, 0);
    EXPECT_TRUE(result.clean()) << result.report();

    const std::string start = "Vireon Glow. Vireon  High Quality Glow. v1.1.2. ";
    const std::string text(result.out.return_msg,
                           strnlen(result.out.return_msg, sizeof(result.out.return_msg)));
    ASSERT_LT(text.size(), sizeof(result.out.return_msg));
    EXPECT_EQ(text.substr(0, start.size()), start);
    ASSERT_GT(text.size(), start.size() + 1);
    const std::string notice = text.substr(start.size(), text.size() - start.size() - 1);
    EXPECT_EQ(text.back(), ' ');
    EXPECT_NE(notice.back(), ' ') << "one blank after the notice, not more";
    EXPECT_EQ(notice.find_first_of("\r\n"), std::string::npos) << "the notice is one line";
}

TEST(About, IsFormattedAndCopiedByTheHostsOwnFunctions) {
    Host host(Effect());
    host.about();
    EXPECT_EQ(host.calls()[Slot::kAnsiSprintf], 1u);
    EXPECT_EQ(host.calls()[Slot::kAnsiStrcpy], 1u);
    EXPECT_EQ(host.calls().total(), 2u);
}

TEST(About, ChangesNothingButTheMessage) {
    Host host(Effect());
    CommandResult result = host.about();
    std::memset(result.out.return_msg, 0, sizeof(result.out.return_msg));
    EXPECT_TRUE(Untouched(result.out));
}

TEST(GlobalSetup, ReportsVersionAndFlags) {
    Host host(Effect());
    const CommandResult result = host.globalSetup();
    EXPECT_EQ(result.error, 0);
    EXPECT_TRUE(result.clean()) << result.report();
    EXPECT_EQ(result.out.my_version, kEffectVersion);
    EXPECT_EQ(result.out.out_flags, kOutFlags);
    EXPECT_EQ(result.out.out_flags2, kOutFlags2);
    EXPECT_EQ(result.message(), "");
}

TEST(GlobalSetup, VersionDecodesToTheNumbersOfTheAboutText) {
    Host host(Effect());
    const std::uint32_t version = host.globalSetup().out.my_version;
    EXPECT_EQ(version >> 19 & 7, 1u);
    EXPECT_EQ(version >> 15 & 15, 1u);
    EXPECT_EQ(version >> 11 & 15, 2u);
    EXPECT_EQ(version >> 9 & 3, static_cast<std::uint32_t>(sdk::PF_Stage_RELEASE));
    EXPECT_EQ(version & 511, 0u);
}

/// A host reduced to the handle functions of global set-up.
struct HandleCalls {
    std::vector<std::uint64_t> made;
    int unlocked = 0;
};
HandleCalls handleCalls;
void* handleBytes = nullptr;

sdk::PF_Handle NewHandle(std::uint64_t size) {
    handleCalls.made.push_back(size);
    return &handleBytes;
}

void* LockHandle(sdk::PF_Handle handle) {
    return *handle;
}

void UnlockHandle(sdk::PF_Handle handle) {
    EXPECT_EQ(handle, &handleBytes);
    ++handleCalls.unlocked;
}

TEST(GlobalSetup, LeavesAnUnlockedHandleOfFourBytesAndKeepsFlagsThatWereThere) {
    handleCalls = {};
    sdk::PF_UtilCallbacks utils{};
    utils.host_new_handle = NewHandle;
    utils.host_lock_handle = LockHandle;
    utils.host_unlock_handle = UnlockHandle;
    sdk::PF_InData inData{};
    inData.utils = &utils;
    inData.version = {12, 4};
    sdk::PF_OutData out{};
    out.out_flags = 0x40000;
    out.out_flags2 = 0x7FFFFFFF;
    EXPECT_EQ(
        Effect().entryPoint()(sdk::PF_Cmd_GLOBAL_SETUP, &inData, &out, nullptr, nullptr, nullptr),
        0);
    EXPECT_EQ(out.out_flags, kOutFlags | 0x40000) << "the first word is added to";
    EXPECT_EQ(out.out_flags2, kOutFlags2) << "the second word is replaced";
    EXPECT_EQ(out.my_version, kEffectVersion);
    EXPECT_EQ(out.global_data, &handleBytes);
    EXPECT_EQ(handleCalls.made, std::vector<std::uint64_t>{4});
    EXPECT_EQ(handleCalls.unlocked, 1);
}

TEST(GlobalSetup, LeavesItsHandleWithTheHost) {
    Host host(Effect());
    const CommandResult result = host.globalSetup();
    EXPECT_NE(result.out.global_data, nullptr);
    EXPECT_EQ(host.calls()[Slot::kNewHandle], 1u);
    EXPECT_EQ(host.calls()[Slot::kUnlockHandle], 1u);
    EXPECT_EQ(host.calls()[Slot::kDisposeHandle], 0u);
    EXPECT_TRUE(result.clean()) << result.report();
}

TEST(GlobalSetdown, SucceedsAndKeepsNothing) {
    Host host(Effect());
    for (const CommandResult& result : host.setUp()) {
        ASSERT_EQ(result.error, 0) << result.report();
    }
    const CommandResult result = host.globalSetdown();
    EXPECT_EQ(result.error, 0);
    EXPECT_TRUE(result.clean()) << result.report();
    EXPECT_TRUE(host.balance().empty()) << host.balance().text();
}

TEST(DoDialog, AsksForARenderAndDoesNothingElse) {
    const auto host = ReadyHost();
    host->resetCalls();
    CommandResult result = host->doDialog();
    EXPECT_EQ(result.error, 0);
    EXPECT_TRUE(result.clean()) << result.report();
    EXPECT_EQ(result.out.out_flags, 0x400000);
    result.out.out_flags = 0;
    EXPECT_TRUE(Untouched(result.out));
    EXPECT_EQ(host->calls().total(), 0u);
}

TEST(UserChangedParam, AsksForAFreshPanelWhateverTheControl) {
    const auto host = ReadyHost();
    for (const std::int32_t index : {1, 8, 14, 24, 29}) {
        CommandResult result = host->userChangedParam(index);
        EXPECT_EQ(result.error, 0);
        EXPECT_TRUE(result.clean()) << result.report();
        EXPECT_EQ(result.out.out_flags, 0x20000);
        result.out.out_flags = 0;
        EXPECT_TRUE(Untouched(result.out));
    }
}

TEST(Books, AreBalancedAfterEveryCommandInEveryHost) {
    for (const std::int32_t application :
         {sdk::kHostAfterEffects, sdk::kHostPremierePro, sdk::kHostFinalCutPro}) {
        headless::HostSettings settings;
        settings.applicationId = application;
        Host host(Effect(), settings);
        const auto expect = [&host](const CommandResult& result) {
            EXPECT_EQ(result.error, 0) << result.report();
            EXPECT_TRUE(result.clean()) << result.report();
            EXPECT_TRUE(host.balance().empty()) << result.report() << host.balance().text();
        };
        expect(host.about());
        // Set-up may come twice.
        for (int i = 0; i < 2; ++i) {
            expect(host.globalSetup());
            expect(host.paramsSetup());
            expect(host.sequenceSetup());
        }
        Scene scene = PlainScene();
        scene.controls.shape = kShapeCustom;
        scene.shapeLayer = AlphaPicture(5, 5);
        Apply(scene, host, headless::Depth::k8);
        expect(host.sequenceResetup());
        expect(host.sequenceFlatten());
        expect(host.updateParamsUi());
        expect(host.userChangedParam(kShape));
        expect(host.doDialog());
        const headless::RenderRequest request = host.fullRequest(headless::Depth::k8);
        headless::PreRender preRender = host.smartPreRender(request);
        expect(preRender.result);
        for (int i = 0; i < 2; ++i) {
            for (const CommandResult& result : host.smartRender(preRender).commands) {
                expect(result);
            }
        }
        for (const CommandResult& result : host.renderPlain(headless::Depth::k8).commands) {
            expect(result);
        }
        for (const std::int32_t command : IgnoredCommands()) {
            expect(host.send(command));
        }
        for (const std::int32_t command : UnknownCommands()) {
            expect(host.send(command));
        }
        expect(host.sequenceSetdown());
        expect(host.globalSetdown());
    }
}

TEST(OtherCommands, UnhandledOnesSucceedAndTouchNothing) {
    const auto host = ReadyHost();
    for (const std::int32_t command : IgnoredCommands()) {
        SCOPED_TRACE(command);
        host->resetCalls();
        const CommandResult result = host->send(command);
        EXPECT_EQ(result.error, 0);
        EXPECT_TRUE(result.clean()) << result.report();
        EXPECT_TRUE(Untouched(result.out));
        EXPECT_EQ(host->calls().total(), 0u);
    }
}

TEST(OtherCommands, UnknownOnesSucceedAndTouchNothing) {
    const auto host = ReadyHost();
    for (const std::int32_t command : UnknownCommands()) {
        SCOPED_TRACE(command);
        host->resetCalls();
        const CommandResult result = host->send(command);
        EXPECT_EQ(result.error, 0);
        EXPECT_TRUE(result.clean()) << result.report();
        EXPECT_TRUE(Untouched(result.out));
        EXPECT_EQ(host->calls().total(), 0u);
    }
}

TEST(OtherCommands, IgnoredOnesNeedNoRecordsAtAll) {
    std::vector<std::int32_t> commands = IgnoredCommands();
    commands.insert(commands.end(), UnknownCommands().begin(), UnknownCommands().end());
    for (const std::int32_t command : commands) {
        EXPECT_EQ(Effect().entryPoint()(command, nullptr, nullptr, nullptr, nullptr, nullptr), 0)
            << command;
    }
}

TEST(OtherCommands, SequencesCarryNoData) {
    const auto host = ReadyHost();
    for (const CommandResult& result :
         {host->sequenceResetup(), host->sequenceFlatten(), host->sequenceSetdown()}) {
        EXPECT_EQ(result.error, 0);
        EXPECT_EQ(result.out.sequence_data, nullptr);
        EXPECT_TRUE(result.clean()) << result.report();
    }
}

}  // namespace
}  // namespace vireon::conformance
