// The client against the real worker with an effect that misbehaves, and against programs that are
// no workers at all.

#include "headless/remote/worker_client.h"

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <thread>

#include <gtest/gtest.h>

namespace vireon::headless {
namespace {

using Kind = WorkerError::Kind;

/// Choices of the effect's Behaviour popup.
enum Behaviour {
    kCopy = 1,
    kInvert,
    kCrash,
    kAbortProcess,
    kExit,
    kHang,
    kWritePast,
    kLeak,
    kFail,
    kPrint,
    kReport,
    kSlow,
    kStubborn = 14,
    kThrow,
};

WorkerClient LoadedWorker(std::chrono::milliseconds silence = std::chrono::seconds(60)) {
    WorkerOptions options;
    options.worker = VIREON_TEST_WORKER;
    options.silenceLimit = silence;
    WorkerClient worker = WorkerClient::start(options);
    worker.load(VIREON_TEST_EFFECT);
    return worker;
}

RenderJob Job(Behaviour behaviour, std::int32_t bits = 8) {
    RenderJob job;
    job.bits = bits;
    job.input = Picture(33, 17, bits);
    for (std::size_t i = 0; i < job.input.pixels.size(); ++i) {
        job.input.pixels[i] = static_cast<std::uint8_t>(i * 31 + (i >> 5));
    }
    if (bits == 16) {
        // No value above white occurs in 16 bits.
        for (std::int32_t y = 0; y < job.input.height; ++y) {
            for (std::int32_t c = 0; c < job.input.width * 4; ++c) {
                job.input.row<std::uint16_t>(y)[c] &= 0x7FFF;
            }
        }
    }
    job.values[1] = {static_cast<double>(behaviour), 0};
    return job;
}

/// Forces a level in the workers that are started during a scope.
class ScopedLevel {
  public:
    explicit ScopedLevel(const char* level) {
        const char* const former = std::getenv(kVariable);
        if (former != nullptr) former_ = former;
        setenv(kVariable, level, 1);
    }
    ScopedLevel(const ScopedLevel&) = delete;
    ScopedLevel& operator=(const ScopedLevel&) = delete;
    ~ScopedLevel() {
        if (former_) {
            setenv(kVariable, former_->c_str(), 1);
        } else {
            unsetenv(kVariable);
        }
    }

  private:
    static constexpr const char* kVariable = "VIREON_GLOW_SIMD";
    std::optional<std::string> former_;
};

/// The kind of the error that a call ends with.
template <typename Call>
Kind KindOfError(Call call, std::string* text = nullptr) {
    try {
        call();
    } catch (const WorkerError& error) {
        if (text != nullptr) {
            *text = error.what();
        }
        return error.kind();
    }
    ADD_FAILURE() << "no error";
    return Kind::kRequest;
}

/// A program made of a shell script in place of a worker.
class Script {
  public:
    explicit Script(const std::string& body)
        : path_(std::filesystem::path(testing::TempDir()) /
                ("vireon-script-" + std::to_string(getpid()))) {
        std::ofstream(path_) << "#!/bin/sh\n" << body << "\n";
        std::filesystem::permissions(path_, std::filesystem::perms::owner_all);
    }
    ~Script() { std::filesystem::remove(path_); }
    Script(const Script&) = delete;
    Script& operator=(const Script&) = delete;

    WorkerOptions options() const {
        WorkerOptions options;
        options.worker = path_;
        options.startLimit = std::chrono::milliseconds(300);
        return options;
    }

  private:
    std::filesystem::path path_;
};

TEST(WorkerClient, DescribesTheEffect) {
    WorkerClient worker = LoadedWorker();
    EXPECT_EQ(worker.system(), "linux");
    const Description description = worker.describe();
    EXPECT_EQ(description.about, "Fake Effect. Misbehaves on demand.");
    EXPECT_EQ(description.version(), (EffectVersion{2, 3, 4, sdk::PF_Stage_ALPHA, 7}));
    ASSERT_EQ(description.parameters.size(), 10u);
    const ParameterDescription& radius = description.parameters[2];
    EXPECT_EQ(radius.name, "Glow Radius");
    EXPECT_EQ(radius.kind, sdk::PF_Param_FLOAT_SLIDER);
    EXPECT_EQ(radius.validMax, 5000);
    EXPECT_EQ(radius.defaultValue, 100);
    EXPECT_EQ(radius.precision, 2);
    EXPECT_EQ(description.parameters[4].validMax, 100);
    EXPECT_EQ(description.parameters[6].defaultY, 50);
    EXPECT_EQ(description.parameters[1].choices().at(12), "(-");
}

TEST(WorkerClient, TellsTheLevelOfTheGlow) {
    // Levels that every machine has, and a name that is passed over.
    for (const char* const level : {"plain", "scalar", "sse2"}) {
        const ScopedLevel forced(level);
        EXPECT_EQ(LoadedWorker().simd(), level);
    }
    const ScopedLevel unknown("mmx");
    const std::string highest = LoadedWorker().simd();
    EXPECT_TRUE(highest == "sse2" || highest == "avx2" || highest == "avx512") << highest;
}

TEST(WorkerClient, PixelsComeBackBitByBitAtEveryDepth) {
    WorkerClient worker = LoadedWorker();
    for (const std::int32_t bits : {8, 16, 32}) {
        for (const bool negative : {false, true}) {
            RenderJob job = Job(kCopy, bits);
            job.negativeRowBytes = negative;
            const RenderResult result = worker.render(job);
            EXPECT_TRUE(result.ok()) << result.violations;
            EXPECT_EQ(result.output, job.input) << bits;
        }
    }
}

TEST(WorkerClient, PlainRenderWorksToo) {
    WorkerClient worker = LoadedWorker();
    RenderJob job = Job(kInvert);
    job.smart = false;
    const RenderResult result = worker.render(job);
    EXPECT_TRUE(result.ok()) << result.violations;
    EXPECT_EQ(result.output.row<std::uint8_t>(3)[1], 255 - job.input.row<std::uint8_t>(3)[1]);
    EXPECT_EQ(result.output.row<std::uint8_t>(3)[0], job.input.row<std::uint8_t>(3)[0]);
}

TEST(WorkerClient, SettingsAndValuesArrive) {
    WorkerClient worker = LoadedWorker();
    RenderJob job = Job(kReport);
    job.quality = sdk::PF_Quality_LO;
    job.downsampleX = {1, 2};
    job.downsampleY = {1, 3};
    job.pixelAspect = {10, 11};
    job.fullWidth = 66;
    job.fullHeight = 50;
    job.values[2] = {12.5, 0};
    job.values[4] = {40.5, 0};
    job.values[5] = {1, 0};
    job.values[6] = {3.5, -2};
    job.values[8] = {7, 0};
    job.layers[7] = Picture(4, 5, 8);
    const RenderResult result = worker.render(job);
    EXPECT_EQ(result.error, sdk::PF_Err_BAD_CALLBACK_PARAM);
    EXPECT_EQ(result.message,
              "radius=12.5 opacity=40.5 enable=1 center=3.5,-2 mask=4x5 depth=7 input=33x17 "
              "full=66x50 scale=1/2,1/3 aspect=10/11 quality=0");
    // Values of one frame are not those of the next.
    EXPECT_NE(worker.render(Job(kReport)).message.find("radius=100 opacity=100 enable=0"),
              std::string::npos);
}

TEST(WorkerClient, EffectErrorsAreResults) {
    WorkerClient worker = LoadedWorker();
    const RenderResult result = worker.render(Job(kFail));
    EXPECT_EQ(result.error, sdk::PF_Err_INTERNAL_STRUCT_DAMAGED);
    EXPECT_EQ(result.message, "No glow today.");
    EXPECT_TRUE(result.displayError);
    EXPECT_TRUE(result.output.pixels.empty());
    EXPECT_TRUE(worker.render(Job(kCopy)).ok());
}

TEST(WorkerClient, DamageAndLeaksAreReported) {
    WorkerClient worker = LoadedWorker();
    EXPECT_NE(worker.render(Job(kWritePast)).violations.find("padding"), std::string::npos);
    EXPECT_NE(worker.render(Job(kLeak)).violations.find("handle"), std::string::npos);
    EXPECT_NE(worker.render(Job(kThrow)).violations.find("exception"), std::string::npos);
    EXPECT_TRUE(worker.render(Job(kCopy)).ok());
}

TEST(WorkerClient, PrintingEffectsDoNotDisturb) {
    std::string heard;
    WorkerOptions options;
    options.worker = VIREON_TEST_WORKER;
    options.onOutput = [&heard](std::string_view text) { heard += text; };
    WorkerClient worker = WorkerClient::start(options);
    worker.load(VIREON_TEST_EFFECT);
    for (int i = 0; i < 3; ++i) {
        EXPECT_TRUE(worker.render(Job(kPrint)).ok());
    }
    EXPECT_TRUE(worker.render(Job(kCopy)).ok());
    EXPECT_NE(heard.find("chatter of the effect"), std::string::npos);
}

TEST(WorkerClient, CrashCostsTheWorkerOnly) {
    std::string text;
    WorkerClient worker = LoadedWorker();
    EXPECT_EQ(KindOfError([&] { worker.render(Job(kCrash)); }, &text), Kind::kCrashed);
#if !defined(__SANITIZE_ADDRESS__)  // which turns the signal into an exit code
    EXPECT_NE(text.find("signal 11"), std::string::npos) << text;
#endif
    worker = LoadedWorker();
    EXPECT_EQ(KindOfError([&] { worker.render(Job(kAbortProcess)); }, &text), Kind::kCrashed);
    worker = LoadedWorker();
    EXPECT_EQ(KindOfError([&] { worker.render(Job(kExit)); }, &text), Kind::kCrashed);
    EXPECT_NE(text.find("exit code 0"), std::string::npos) << text;
    worker = LoadedWorker();
    EXPECT_TRUE(worker.render(Job(kCopy)).ok());
}

TEST(WorkerClient, SilenceIsEnded) {
    WorkerClient worker = LoadedWorker(std::chrono::milliseconds(200));
    const pid_t pid = worker.pid();
    EXPECT_EQ(KindOfError([&] { worker.render(Job(kHang)); }), Kind::kHung);
    EXPECT_NE(kill(pid, 0), 0) << "the worker still runs";
}

TEST(WorkerClient, ProgressIsASignOfLife) {
    WorkerClient worker = LoadedWorker(std::chrono::milliseconds(400));
    int abortAfter = 60;
    int calls = 0;
    RenderHooks hooks;
    hooks.progress = [&](const Progress& progress) {
        EXPECT_EQ(progress.total, 1000);
        EXPECT_GE(progress.current, 0);
        ++calls;
    };
    hooks.interrupt = [&] { return calls > abortAfter ? Interrupt::kAbort : Interrupt::kNone; };
    const auto start = std::chrono::steady_clock::now();
    const RenderResult result = worker.render(Job(kSlow), hooks);
    EXPECT_EQ(result.error, sdk::PF_Interrupt_CANCEL);
    EXPECT_GT(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(600));
    // An abort belongs to its frame.
    EXPECT_TRUE(worker.render(Job(kCopy)).ok());
}

TEST(WorkerClient, KillEndsAStubbornEffect) {
    WorkerClient worker = LoadedWorker();
    int calls = 0;
    RenderHooks hooks;
    hooks.progress = [&](const Progress&) { ++calls; };
    hooks.interrupt = [&] { return calls > 1 ? Interrupt::kKill : Interrupt::kNone; };
    EXPECT_EQ(KindOfError([&] { worker.render(Job(kStubborn), hooks); }), Kind::kKilled);
}

TEST(WorkerClient, LibrariesThatAreNoEffectsAreRefused) {
    WorkerClient worker = LoadedWorker();
    EXPECT_EQ(KindOfError([&] { worker.load("/nonexistent/Effect.so"); }), Kind::kNotAnEffect);
    EXPECT_EQ(KindOfError([&] { worker.load(VIREON_TEST_WORKER); }), Kind::kNotAnEffect);
    EXPECT_EQ(KindOfError([&] { worker.load("libm.so.6"); }), Kind::kNotAnEffect);
    worker.load(VIREON_TEST_EFFECT);
    EXPECT_TRUE(worker.render(Job(kCopy)).ok());
}

TEST(WorkerClient, SenselessJobsAreRefused) {
    WorkerClient worker = LoadedWorker();
    RenderJob job = Job(kCopy);
    job.input = Picture();
    EXPECT_EQ(KindOfError([&] { worker.render(job); }), Kind::kRequest);
    job = Job(kCopy);
    job.values[99] = {};
    EXPECT_EQ(KindOfError([&] { worker.render(job); }), Kind::kRequest);
    job = Job(kCopy);
    job.bits = 12;
    EXPECT_EQ(KindOfError([&] { worker.render(job); }), Kind::kRequest);
    EXPECT_TRUE(worker.render(Job(kCopy)).ok());
}

TEST(WorkerClient, DeathBetweenFramesIsSeen) {
    WorkerClient worker = LoadedWorker();
    kill(worker.pid(), SIGKILL);
    EXPECT_EQ(KindOfError([&] { worker.render(Job(kCopy)); }), Kind::kCrashed);
}

TEST(WorkerClient, AFarewellEndsTheWorker) {
    pid_t pid = 0;
    {
        WorkerClient worker = LoadedWorker();
        pid = worker.pid();
        EXPECT_EQ(kill(pid, 0), 0);
    }
    EXPECT_NE(kill(pid, 0), 0);
}

TEST(WorkerClient, MissingProgramsAreNamed) {
    std::string text;
    WorkerOptions options;
    options.worker = "/nonexistent/vireon-worker";
    EXPECT_EQ(KindOfError([&] { WorkerClient::start(options); }, &text), Kind::kWorkerMissing);
    EXPECT_NE(text.find("/nonexistent/vireon-worker"), std::string::npos);
    options.worker = testing::TempDir();
    EXPECT_EQ(KindOfError([&] { WorkerClient::start(options); }), Kind::kWorkerMissing);
}

TEST(WorkerClient, ProgramsThatAreNoWorkersAreFoundOut) {
    EXPECT_EQ(KindOfError([] { WorkerClient::start(Script("echo hello, this is dog").options()); }),
              Kind::kProtocol);
    EXPECT_EQ(KindOfError([] { WorkerClient::start(Script("exit 3").options()); }), Kind::kCrashed);
    EXPECT_EQ(KindOfError([] { WorkerClient::start(Script("exec sleep 60").options()); }),
              Kind::kHung);
    EXPECT_EQ(KindOfError([] { WorkerClient::start(Script("exec sleep 60 >&-").options()); }),
              Kind::kHung);
}

TEST(WorkerClient, AnotherProtocolVersionIsNamed) {
    std::string text;
    // "VRWK", version 9, hello without payload.
    const Script script(
        "printf 'VRWK\\011\\000\\144\\000\\000\\000\\000\\000\\000\\000\\000\\000'; "
        "exec sleep 60");
    EXPECT_EQ(KindOfError([&] { WorkerClient::start(script.options()); }, &text), Kind::kProtocol);
    EXPECT_NE(text.find("version 9"), std::string::npos) << text;
}

TEST(WorkerClient, AHalfMessageIsNotWaitedForWhenItsSenderIsGone) {
    std::string text;
    const Script script("printf 'VRWK\\002\\000\\144\\000\\020'; exit 5");
    EXPECT_EQ(KindOfError([&] { WorkerClient::start(script.options()); }, &text), Kind::kCrashed);
    EXPECT_NE(text.find("in the middle of a message"), std::string::npos) << text;
    EXPECT_NE(text.find("exit code 5"), std::string::npos) << text;
}

TEST(WorkerClient, AServerOnItsWayOutIsTriedOnceMore) {
    const std::filesystem::path mark =
        std::filesystem::path(testing::TempDir()) / ("vireon-mark-" + std::to_string(getpid()));
    std::filesystem::remove(mark);
    const Script script("if [ -e '" + mark.string() +
                        "' ]; then exec '" VIREON_TEST_WORKER "'; fi; touch '" + mark.string() +
                        "'; echo 'wine client error:0: gone' >&2; exit 1");
    WorkerOptions options = script.options();
    options.startLimit = std::chrono::seconds(20);
    EXPECT_EQ(WorkerClient::start(options).system(), "linux");
    std::filesystem::remove(mark);
}

TEST(WorkerClient, AWineThatEndsWithoutAWordIsTriedOnceMore) {
    const std::filesystem::path folder = testing::TempDir();
    const std::filesystem::path tries = folder / ("vireon-tries-" + std::to_string(getpid()));
    const std::filesystem::path program = folder / ("vireon-w" + std::to_string(getpid()) + ".exe");
    std::ofstream(program) << "MZ";
    const Script wine("echo x >>'" + tries.string() + "'; if [ -e '" + tries.string() +
                      ".go' ]; then exec '" VIREON_TEST_WORKER "'; fi; touch '" + tries.string() +
                      ".go'; exit 1");
    WorkerOptions options;
    options.worker = program;
    options.wine = wine.options().worker;
    options.winePrefix = folder / "vireon-prefix";
    options.startLimit = std::chrono::seconds(20);
    EXPECT_EQ(WorkerClient::start(options).system(), "linux");
    EXPECT_EQ(std::filesystem::file_size(tries), 4u);

    // Not more than once.
    std::filesystem::remove(tries);
    const Script never("echo x >>'" + tries.string() + "'; exit 1");
    options.wine = never.options().worker;
    std::string text;
    EXPECT_EQ(KindOfError([&] { WorkerClient::start(options); }, &text), Kind::kCrashed);
    EXPECT_NE(text.find("exit code 1"), std::string::npos) << text;
    EXPECT_EQ(std::filesystem::file_size(tries), 4u);
    std::filesystem::remove(tries);
    std::filesystem::remove(tries.string() + ".go");
    std::filesystem::remove(program);
}

}  // namespace
}  // namespace vireon::headless
