#include <gtest/gtest.h>

#include <cstring>

#include "command.h"

namespace vireon::test {
namespace {

using headless::Slot;

TEST(Handles, AreMadeLockedUnlockedAndDisposedOfByTheHost) {
    InRender([](Command& command) {
        PluginHost_AE_Impl host = command.makeHost();
        for (const std::int64_t bytes : {std::int64_t{24}, std::int64_t{-24}, std::int64_t{0}}) {
            command.host.resetCalls();
            void** const handle = host.newHandle(bytes);
            ASSERT_NE(handle, nullptr);
            EXPECT_EQ(command.calls(Slot::kNewHandle), 1u);
            EXPECT_EQ(command.utils.host_get_handle_size(handle), bytes == 0 ? 0u : 24u);
            void* const data = host.lockHandle(handle);
            EXPECT_EQ(command.calls(Slot::kLockHandle), 1u);
            EXPECT_EQ(data, *handle);
            if (bytes != 0) std::memset(data, 1, 24);
            host.unlockHandle(handle);
            EXPECT_EQ(command.calls(Slot::kUnlockHandle), 1u);
            host.disposeHandle(handle);
            EXPECT_EQ(command.calls(Slot::kDisposeHandle), 1u);
        }
    });
}

TEST(Handles, AreNullWhenMemoryIsShort) {
    InRender([](Command& command) {
        PluginHost_AE_Impl host = command.makeHost();
        command.failNext(Slot::kNewHandle);
        EXPECT_EQ(host.newHandle(24), nullptr);
    });
}

TEST(HandleSuite, TellsAndChangesTheSizeOfABlock) {
    InRender([](Command& command) {
        PluginHost_AE_Impl host = command.makeHost();
        void** handle = host.newHandle(24);
        EXPECT_EQ(host.handleSize(handle), 24u);
        EXPECT_EQ(command.calls(Slot::kSuiteGetHandleSize), 1u);
        EXPECT_EQ(host.resizeHandle(handle, 5000), 0);
        EXPECT_EQ(command.calls(Slot::kSuiteResizeHandle), 1u);
        EXPECT_EQ(host.handleSize(handle), 5000u);
        command.failNext(Slot::kSuiteResizeHandle);
        EXPECT_EQ(host.resizeHandle(handle, 6000), Command::kInjected);
        EXPECT_EQ(host.handleSize(handle), 5000u);
        host.disposeHandle(handle);
        EXPECT_EQ(command.calls(Slot::kGetHandleSize), 0u);
        EXPECT_EQ(command.calls(Slot::kResizeHandle), 0u);
        int acquired = 0;
        for (const Spy::Suite& suite : command.spy.acquired) {
            acquired += suite == Spy::Suite("PF Handle Suite", 2) ? 1 : 0;
        }
        EXPECT_EQ(acquired, 1);
    });
}

TEST(HandleSuite, MayBeMissing) {
    Scene scene;
    scene.settings.withheldSuites = {{"PF Handle Suite", 2}};
    InRender(scene, [](Command& command) {
        PluginHost_AE_Impl host = command.makeHost();
        void** handle = host.newHandle(24);
        void** const before = handle;
        EXPECT_EQ(host.handleSize(handle), 0u);
        EXPECT_EQ(host.resizeHandle(handle, 5000), sdk::PF_Err_BAD_CALLBACK_PARAM);
        EXPECT_EQ(handle, before);
        EXPECT_EQ(command.utils.host_get_handle_size(handle), 24u);
        host.disposeHandle(handle);
    });
}

}  // namespace
}  // namespace vireon::test
