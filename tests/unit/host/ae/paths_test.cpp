#include <gtest/gtest.h>

#include "command.h"

namespace vireon::test {
namespace {

using headless::Slot;

Scene SceneWithMasks() {
    Scene scene;
    scene.prepare = [](headless::Host& host) {
        // Point, in tangent, out tangent, as the suite's record has them.
        host.setPaths(
            {{.id = 7,
              .vertices = {{1, 2, 3, 4, 5, 6}, {11, 12, 13, 14, 15, 16}, {21, 22, 23, 24, 25, 26}},
              .name = "Closed"},
             {.id = 9,
              .vertices = {{1, 1, 0, 0, 0, 0}, {2, 2, 0, 0, 0, 0}},
              .open = true,
              .name = "Open"}});
    };
    return scene;
}

TEST(PathPointer, IsTheHostObjectUntilItIsReplaced) {
    InRender([](Command& command) {
        PluginHost_AE_Impl host = command.makeHost();
        PluginHost_AE_Impl other = command.makeHost();
        EXPECT_EQ(host.path(), static_cast<PluginPath_API*>(&host));
        host.setPath(&other);
        EXPECT_EQ(host.path(), static_cast<PluginPath_API*>(&other));
        host.setPath(nullptr);
        EXPECT_EQ(host.path(), nullptr);
    });
}

TEST(Path, OutlinesAreReadThroughTheSuites) {
    InRender(SceneWithMasks(), [](Command& command) {
        PluginHost_AE_Impl host = command.makeHost();
        PluginPath_API& path = *host.path();
        const void* query = host.suites().get(sdk::kPathQuerySuite1);
        const void* data = host.suites().get(sdk::kPathDataSuite1);
        ASSERT_NE(query, nullptr);
        ASSERT_NE(data, nullptr);

        std::int32_t count = 99;
        EXPECT_EQ(path.pathCount(query, count), 0);
        EXPECT_EQ(count, 2);
        std::uint32_t id = 0;
        EXPECT_EQ(path.pathId(query, 1, id), 0);
        EXPECT_EQ(id, 9u);
        EXPECT_EQ(path.pathId(query, 0, id), 0);
        EXPECT_EQ(id, 7u);

        void* outline = nullptr;
        EXPECT_EQ(path.checkoutPath(query, 7, {.time = 3, .step = 1, .scale = 30}, outline), 0);
        ASSERT_NE(outline, nullptr);
        bool open = true;
        EXPECT_EQ(path.pathIsOpen(data, outline, open), 0);
        EXPECT_FALSE(open);
        EXPECT_EQ(path.pathSegments(data, outline, count), 0);
        EXPECT_EQ(count, 3);
        PathVertex vertex{};
        EXPECT_EQ(path.pathVertex(data, outline, 1, vertex), 0);
        EXPECT_EQ(vertex.inTangentX, 13);
        EXPECT_EQ(vertex.inTangentY, 14);
        EXPECT_EQ(vertex.x, 11);
        EXPECT_EQ(vertex.y, 12);
        EXPECT_EQ(vertex.outTangentX, 15);
        EXPECT_EQ(vertex.outTangentY, 16);
        EXPECT_EQ(path.checkinPath(query, 7, false, outline), 0);

        EXPECT_EQ(path.checkoutPath(query, 9, {}, outline), 0);
        EXPECT_EQ(path.pathIsOpen(data, outline, open), 0);
        EXPECT_TRUE(open);
        EXPECT_EQ(path.pathSegments(data, outline, count), 0);
        EXPECT_EQ(count, 1);
        EXPECT_EQ(path.checkinPath(query, 9, false, outline), 0);

        EXPECT_EQ(path.checkoutPath(query, 1000, {}, outline), 0);
        EXPECT_EQ(outline, nullptr);
        EXPECT_EQ(path.checkinPath(query, 1000, false, outline), 0);
    });
}

TEST(Path, CodesOfTheSuitesComeThrough) {
    InRender(SceneWithMasks(), [](Command& command) {
        PluginHost_AE_Impl host = command.makeHost();
        const void* query = host.suites().get(sdk::kPathQuerySuite1);
        const void* data = host.suites().get(sdk::kPathDataSuite1);
        void* outline = nullptr;
        ASSERT_EQ(host.checkoutPath(query, 7, {}, outline), 0);
        std::int32_t count = 0;
        std::uint32_t id = 0;
        bool open = false;
        PathVertex vertex{};
        void* other = nullptr;
        command.failNext(Slot::kNumPaths);
        EXPECT_EQ(host.pathCount(query, count), Command::kInjected);
        command.failNext(Slot::kPathInfo);
        EXPECT_EQ(host.pathId(query, 0, id), Command::kInjected);
        command.failNext(Slot::kCheckoutPath);
        EXPECT_EQ(host.checkoutPath(query, 7, {}, other), Command::kInjected);
        command.failNext(Slot::kPathIsOpen);
        EXPECT_EQ(host.pathIsOpen(data, outline, open), Command::kInjected);
        command.failNext(Slot::kPathNumSegments);
        EXPECT_EQ(host.pathSegments(data, outline, count), Command::kInjected);
        command.failNext(Slot::kPathVertexInfo);
        EXPECT_EQ(host.pathVertex(data, outline, 0, vertex), Command::kInjected);
        EXPECT_EQ(host.pathVertex(data, outline, 99, vertex), sdk::PF_Err_INVALID_INDEX);
        command.failNext(Slot::kCheckinPath);
        EXPECT_EQ(host.checkinPath(query, 7, false, outline), Command::kInjected);
    });
}

// A query suite that notes what it is asked.
struct PathCheckOut {
    sdk::PF_ProgPtr reference;
    std::uint32_t id;
    std::int32_t time;
    std::int32_t step;
    std::uint32_t scale;
};
struct PathCheckIn {
    sdk::PF_ProgPtr reference;
    std::uint32_t id;
    sdk::PF_Boolean changed;
    void* path;
};
thread_local PathCheckOut checkOut;
thread_local PathCheckIn checkIn;

TEST(Path, ArgumentsReachTheSuiteThatIsGiven) {
    InRender([](Command& command) {
        sdk::PF_PathQuerySuite1 suite{};
        suite.PF_CheckoutPath = [](sdk::PF_ProgPtr reference, std::uint32_t id, std::int32_t time,
                                   std::int32_t step, std::uint32_t scale,
                                   void** path) -> sdk::PF_Err {
            checkOut = {reference, id, time, step, scale};
            *path = &checkOut;
            return 0;
        };
        suite.PF_CheckinPath = [](sdk::PF_ProgPtr reference, std::uint32_t id,
                                  sdk::PF_Boolean changed, void* path) -> sdk::PF_Err {
            checkIn = {reference, id, changed, path};
            return 0;
        };
        PluginHost_AE_Impl host = command.makeHost();
        void* path = nullptr;
        EXPECT_EQ(
            host.checkoutPath(&suite, 0xFFFFFFF0u, {.time = -5, .step = 2, .scale = 24}, path), 0);
        EXPECT_EQ(path, &checkOut);
        EXPECT_EQ(checkOut.reference, command.in.effect_ref);
        EXPECT_EQ(checkOut.id, 0xFFFFFFF0u);
        EXPECT_EQ(checkOut.time, -5);
        EXPECT_EQ(checkOut.step, 2);
        EXPECT_EQ(checkOut.scale, 24u);
        for (const bool changed : {false, true}) {
            EXPECT_EQ(host.checkinPath(&suite, 12, changed, path), 0);
            EXPECT_EQ(checkIn.reference, command.in.effect_ref);
            EXPECT_EQ(checkIn.id, 12u);
            EXPECT_EQ(checkIn.changed != 0, changed);
            EXPECT_EQ(checkIn.path, path);
        }
    });
}

}  // namespace
}  // namespace vireon::test
