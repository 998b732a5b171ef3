// The promise that a project looks the same on every machine: the Windows library and the native
// one give the same bits, at every depth.

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>

#include "headless/remote/worker_client.h"
#include "tests/pictures/parity_scenes.h"

namespace {

namespace fs = std::filesystem;
using vireon::headless::RenderResult;
using vireon::headless::WorkerClient;

fs::path FromEnvironment(const char* name) {
    const char* value = std::getenv(name);
    return value != nullptr ? value : "";
}

std::unique_ptr<WorkerClient> StartWorker(const fs::path& worker, const fs::path& library) {
    vireon::headless::WorkerOptions options;
    options.worker = worker;
    auto client = std::make_unique<WorkerClient>(WorkerClient::start(options));
    client->load(library);
    return client;
}

/// One worker of each system for all scenes of a depth.
class Parity : public testing::TestWithParam<int> {
  protected:
    void SetUp() override {
        const fs::path native = FromEnvironment("VIREON_NATIVE_STAGE");
        const fs::path windows = FromEnvironment("VIREON_WINDOWS_STAGE");
        if (!fs::exists(windows / "VireonGlow.aex")) {
            if (!FromEnvironment("VIREON_REQUIRE_WINDOWS").empty()) {
                FAIL() << "build the preset \"windows\" first: nothing in " << windows;
            }
            GTEST_SKIP() << "build the preset \"windows\" first: nothing in " << windows;
        }
        native_ = StartWorker(native / "vireon-worker", native / "VireonGlow.so");
        windows_ = StartWorker(windows / "vireon-worker.exe", windows / "VireonGlow.aex");
    }
    std::unique_ptr<WorkerClient> native_;
    std::unique_ptr<WorkerClient> windows_;
};

TEST_P(Parity, BothLibrariesGiveTheSameBitsOnEveryScene) {
    for (const auto& scene : vireon::pictures::ParityScenes(GetParam())) {
        SCOPED_TRACE(scene.name);
        const RenderResult native = native_->render(scene.job);
        const RenderResult windows = windows_->render(scene.job);
        EXPECT_EQ(native.error, 0) << native.message;
        EXPECT_EQ(native.violations, "");
        EXPECT_EQ(windows.violations, "");
        EXPECT_EQ(windows.error, native.error);
        ASSERT_FALSE(native.output.pixels.empty());
        EXPECT_NE(native.output.pixels, scene.job.input.pixels) << "the effect did nothing";
        EXPECT_TRUE(native.output == windows.output);
    }
}

INSTANTIATE_TEST_SUITE_P(Depths, Parity, testing::Values(8, 16, 32));

}  // namespace
