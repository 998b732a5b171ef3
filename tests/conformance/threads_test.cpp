#include <gtest/gtest.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <memory>
#include <thread>
#include <vector>

#include "tests/conformance/support.h"

namespace vireon::conformance {
namespace {

using headless::Depth;
using headless::HostSettings;
using headless::RenderOutcome;

/// Frames that differ in everything a render keeps while it works.
Scene NumberedScene(int number) {
    Scene scene = PlainScene();
    scene.input =
        number % 2 == 0 ? OpaquePicture(37 + number, 23) : TransparentPicture(30, 20 + number);
    scene.controls.shape = number % 3 == 2 ? kShapeCustom : 1 + number % 3;
    if (scene.controls.shape == kShapeCustom) {
        scene.shapeLayer = AlphaPicture(5 + number, 9);
    }
    scene.controls.quality = 1 + number % 3;
    scene.controls.transferMode = number % 4 == 0 ? kModeNone : kModeAdd;
    return scene;
}

/// RenderScene for threads, out of which no exception may come.
Picture TryRender(const Scene& scene, Depth depth = Depth::kFloat, Path path = Path::kSmart,
                  const HostSettings& settings = {}) {
    try {
        return RenderScene(scene, depth, path, settings);
    } catch (const std::exception& failure) {
        ADD_FAILURE() << failure.what();
        return {};
    }
}

constexpr Depth kDepths[] = {Depth::k8, Depth::k16, Depth::kFloat};

Depth DepthOf(int number) {
    return kDepths[number % 3];
}

TEST(Threads, RendersAtOnceGiveTheSerialResults) {
    constexpr int kScenes = 6;
    constexpr int kRounds = 3;
    std::vector<Picture> serial;
    for (int i = 0; i < kScenes; ++i) {
        serial.push_back(RenderScene(NumberedScene(i), DepthOf(i)));
    }
    std::vector<std::vector<Picture>> seen(2);
    std::vector<std::thread> threads;
    for (std::size_t t = 0; t < seen.size(); ++t) {
        threads.emplace_back([&, t] {
            for (int round = 0; round < kRounds; ++round) {
                for (int i = 0; i < kScenes; ++i) {
                    // One thread goes through the frames forwards, the other backwards.
                    const int scene = t == 0 ? i : kScenes - 1 - i;
                    seen[t].push_back(TryRender(NumberedScene(scene), DepthOf(scene)));
                }
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    for (std::size_t t = 0; t < seen.size(); ++t) {
        ASSERT_EQ(seen[t].size(), static_cast<std::size_t>(kScenes * kRounds));
        for (std::size_t n = 0; n < seen[t].size(); ++n) {
            const std::size_t i = n % kScenes;
            EXPECT_TRUE(seen[t][n] == serial[t == 0 ? i : kScenes - 1 - i])
                << "thread " << t << ", frame " << n;
        }
    }
}

TEST(Threads, EightAtOnceWithSetUpsPanelsAndRendersGiveTheSerialResults) {
    constexpr int kThreads = 8;
    const int rounds = FullCheck() ? 40 : 4;
    std::vector<Picture> serial;
    for (int i = 0; i < kThreads; ++i) {
        serial.push_back(RenderScene(NumberedScene(i), DepthOf(i)));
    }
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([&, t] {
            try {
                for (int round = 0; round < rounds; ++round) {
                    const int i = (t + round) % kThreads;
                    const Path path = round % 2 == 0 ? Path::kSmart : Path::kPlain;
                    const auto host = ReadyHost();
                    EXPECT_EQ(host->updateParamsUi().error, 0);
                    Apply(NumberedScene(i), *host, DepthOf(i));
                    const RenderOutcome outcome = Render(*host, DepthOf(i), path);
                    EXPECT_EQ(outcome.error(), 0) << outcome.report();
                    EXPECT_TRUE(outcome.clean()) << outcome.report();
                    EXPECT_TRUE(ReadRaw(*outcome.output) == serial[static_cast<std::size_t>(i)])
                        << "thread " << t << ", round " << round;
                    EXPECT_EQ(host->globalSetdown().error, 0);
                }
            } catch (const std::exception& failure) {
                ADD_FAILURE() << failure.what();
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

TEST(Threads, FirstRendersOfTheProcessMayCompete) {
    // Natively each test is a process of its own, so that these are its first renders.
    std::vector<Picture> pictures(4);
    std::vector<std::thread> threads;
    for (Picture& picture : pictures) {
        threads.emplace_back([&picture] { picture = TryRender(NumberedScene(0)); });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    for (const Picture& picture : pictures) {
        EXPECT_TRUE(picture == pictures.front());
    }
    EXPECT_TRUE(pictures.front() == RenderScene(NumberedScene(0)));
}

TEST(Threads, OnlyOneFrameIsRenderedAtATime) {
    constexpr int kThreads = 4;
    constexpr int kNobody = -1;
    std::atomic<int> inside{kNobody};
    std::atomic<int> meetings{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([&, t] {
            HostSettings settings;
            settings.onProgress = [&, t](std::int32_t current, std::int32_t total) {
                const int before = inside.exchange(current + 1 == total ? kNobody : t);
                if (before != (current == 0 ? kNobody : t)) {
                    ++meetings;
                }
                std::this_thread::yield();
                return sdk::PF_Err{0};
            };
            for (int round = 0; round < 5; ++round) {
                TryRender(PlainScene(), Depth::k8, Path::kSmart, settings);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(meetings, 0);
}

TEST(Threads, UserInterfaceCommandsMayOverlapARender) {
    const auto panel = ReadyHost();
    const Picture serial = RenderScene(NumberedScene(2));
    Picture picture;
    std::thread render([&] { picture = TryRender(NumberedScene(2)); });
    for (int i = 0; i < 50; ++i) {
        EXPECT_EQ(panel->updateParamsUi().error, 0);
        EXPECT_EQ(panel->about().error, 0);
    }
    render.join();
    EXPECT_TRUE(picture == serial);
}

/// Renders another instance, once, the first time it is called.
struct Nested {
    bool started = false;
    Picture picture;

    void render() {
        if (!started) {
            started = true;
            picture = TryRender(NumberedScene(2));
        }
    }
};

TEST(Reentrance, AnotherInstanceMayRenderFromWithinAParameterCheckout) {
    const Picture inner = RenderScene(NumberedScene(2));
    const Picture outer = RenderScene(NumberedScene(5));
    Nested nested;
    HostSettings settings;
    settings.onCheckout = [&](std::int32_t index, const headless::LayerTime&, sdk::PF_ParamDef&) {
        if (index == kMaskCenter) {
            nested.render();
        }
    };
    EXPECT_TRUE(RenderScene(NumberedScene(5), Depth::kFloat, Path::kSmart, settings) == outer);
    EXPECT_TRUE(nested.picture == inner);
}

TEST(Reentrance, AnotherInstanceMayRenderFromWithinALayerCheckout) {
    const Picture inner = RenderScene(NumberedScene(2));
    Scene scene = NumberedScene(5);
    scene.glowLayer = OpaquePicture(20, 20);
    const Picture outer = RenderScene(scene, Depth::kFloat, Path::kPlain);
    Nested nested;
    HostSettings settings;
    // A plain render checks its layers out in the middle of its work.
    settings.onCheckout = [&](std::int32_t index, const headless::LayerTime&, sdk::PF_ParamDef&) {
        if (index == kGlowLayer) {
            nested.render();
        }
    };
    EXPECT_TRUE(RenderScene(scene, Depth::kFloat, Path::kPlain, settings) == outer);
    EXPECT_TRUE(nested.picture == inner);
    EXPECT_TRUE(nested.started);
}

TEST(Reentrance, AnotherInstanceMayRenderFromWithinProgress) {
    const Picture inner = RenderScene(NumberedScene(2));
    const Picture outer = RenderScene(NumberedScene(5));
    Nested nested;
    HostSettings settings;
    settings.onProgress = [&](std::int32_t current, std::int32_t) {
        if (current == 4) {
            nested.render();
        }
        return sdk::PF_Err{0};
    };
    EXPECT_TRUE(RenderScene(NumberedScene(5), Depth::kFloat, Path::kSmart, settings) == outer);
    EXPECT_TRUE(nested.picture == inner);
    EXPECT_TRUE(nested.started);
}

TEST(Reentrance, FromWithinALayerCheckoutWhileOtherThreadsRender) {
    constexpr int kThreads = 4;
    const int rounds = FullCheck() ? 40 : 3;
    const Picture inner = RenderScene(NumberedScene(2));
    std::vector<Scene> scenes;
    std::vector<Picture> serial;
    for (int t = 0; t < kThreads; ++t) {
        scenes.push_back(NumberedScene(t));
        scenes.back().glowLayer = OpaquePicture(20, 20);
        serial.push_back(RenderScene(scenes.back(), DepthOf(t), Path::kPlain));
    }
    std::vector<std::thread> threads;
    for (std::size_t t = 0; t < kThreads; ++t) {
        threads.emplace_back([&, t] {
            for (int round = 0; round < rounds; ++round) {
                Nested nested;
                HostSettings settings;
                // Half of the threads render another instance in the middle of their own.
                settings.onCheckout = [&](std::int32_t index, const headless::LayerTime&,
                                          sdk::PF_ParamDef&) {
                    if (index == kGlowLayer && t % 2 == 0) {
                        nested.render();
                    }
                };
                const Picture picture =
                    TryRender(scenes[t], DepthOf(static_cast<int>(t)), Path::kPlain, settings);
                EXPECT_TRUE(picture == serial[t]) << "thread " << t << ", round " << round;
                EXPECT_EQ(nested.started, t % 2 == 0);
                EXPECT_TRUE(!nested.started || nested.picture == inner);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

TEST(Reentrance, AFailedRenderLeavesTheLockToTheNext) {
    const Picture expected = RenderScene(NumberedScene(2));
    const auto host = ReadyHost();
    Apply(NumberedScene(5), *host, Depth::kFloat);
    host->cancelFrom(1);
    EXPECT_EQ(Render(*host, Depth::kFloat).error(), sdk::PF_Interrupt_CANCEL);
    host->faults().fail(headless::Slot::kNewHandle, 1);
    Render(*host, Depth::kFloat);
    Picture picture;
    std::thread other([&] { picture = TryRender(NumberedScene(2)); });
    other.join();
    EXPECT_TRUE(picture == expected);
}

}  // namespace
}  // namespace vireon::conformance
