// The pictures that the effect is known to make. A change of any of them is either a mistake or
// meant, and then somebody has looked at it: the references change by scripts/accept-pictures and
// never by a test that merely runs.

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "headless/remote/worker_client.h"
#include "samples/catalogue.h"
#include "tests/pictures/comparison.h"
#include "tests/pictures/golden_frame.h"
#include "tests/pictures/golden_set.h"
#include "tests/pictures/picture_report.h"
#include "tests/pictures/reference_file.h"
#include "tests/pictures/tolerances.h"
#include "tools/vireon/picture_file.h"

namespace {

namespace fs = std::filesystem;
using namespace vireon::pictures;
using vireon::headless::Description;
using vireon::headless::Picture;
using vireon::headless::RenderJob;
using vireon::headless::RenderResult;
using vireon::headless::WorkerClient;

constexpr char kLevelVariable[] = "VIREON_GLOW_SIMD";

std::string FromEnvironment(const char* name) {
    const char* value = std::getenv(name);
    return value != nullptr ? value : "";
}

fs::path NativeStage() {
    return FromEnvironment("VIREON_NATIVE_STAGE");
}

GoldenPrograms Programs() {
    return {FromEnvironment("VIREON_SCENES"), NativeStage() / "vireon", {}, {}};
}

GoldenSet TheSet() {
    const fs::path folder = FromEnvironment("VIREON_PICTURE_REFERENCES");
    return {ReadGoldenCases(folder / "cases.json"), folder};
}

/// Folder for what a run leaves behind, without what an earlier one left.
fs::path FreshFolder(const std::string& run) {
    fs::path folder = fs::path(FromEnvironment("VIREON_PICTURE_REPORT")) / run;
    fs::remove_all(folder);
    return folder;
}

std::string AcceptCommand(const std::string& name) {
    return ShellWord(FromEnvironment("VIREON_ACCEPT_COMMAND")) + " " + name;
}

vireon::headless::WorkerOptions OptionsFor(const fs::path& worker) {
    vireon::headless::WorkerOptions options;
    options.worker = worker;
    return options;
}

/// A worker with the effect in it.
struct Renderer {
    explicit Renderer(const fs::path& stage, const char* worker, const char* library)
        : client(WorkerClient::start(OptionsFor(stage / worker))) {
        client.load(stage / library);
        description = client.describe();
    }

    WorkerClient client;
    Description description;
};

Renderer Native() {
    return Renderer(NativeStage(), "vireon-worker", "VireonGlow.so");
}

/// The picture of a case, or what is wrong with it.
struct Rendered {
    Picture picture;
    std::string problem;
};

Rendered Render(Renderer& renderer, const GoldenCase& golden, SceneFolder& scenes) {
    try {
        const RenderJob job = MakeJob(golden, renderer.description, scenes);
        RenderResult result = renderer.client.render(job);
        if (!result.ok() || result.output.pixels.empty()) {
            return {{},
                    "the effect failed with " + std::to_string(result.error) + ": " +
                        result.message + result.violations};
        }
        if (result.output == job.input) return {{}, "the effect did nothing"};
        return {std::move(result.output), {}};
    } catch (const std::exception& error) {
        return {{}, error.what()};
    }
}

/// Renders every case and holds it to its reference. What differs goes into a report.
/// \param run       folder of the report
/// \param programs  what renders a picture of this run again
/// \param accept    whether references are made by such a run
void CheckAll(Renderer& renderer, const std::string& run, const std::string& title,
              const GoldenPrograms& programs, bool accept) {
    const GoldenSet set = TheSet();
    const fs::path folder = FreshFolder(run);
    SceneFolder scenes(folder);
    PictureReport report(folder, title);
    const Tolerance& tolerance = ToleranceOf(renderer.client.simd());
    for (const GoldenCase& golden : set.cases()) {
        const Rendered rendered = Render(renderer, golden, scenes);
        std::optional<ReportEntry> entry;
        if (rendered.problem.empty()) {
            entry = set.check(golden, rendered.picture, tolerance);
            if (entry && accept) entry->accept = AcceptCommand(golden.name);
        } else {
            entry.emplace();
            entry->name = golden.name;
            entry->shows = golden.shows;
            entry->problem = rendered.problem;
        }
        if (!entry) continue;
        entry->repeat = CommandsFor(golden, programs, folder);
        ADD_FAILURE() << golden.name << ": " << entry->problem;
        report.add(std::move(*entry));
    }
    if (report.empty()) {
        fs::remove_all(folder);
        return;
    }
    const fs::path page = report.write();
    ADD_FAILURE() << report.size() << " of " << set.cases().size()
                  << " pictures are not as they were; see " << page.string();
}

/// Fails the test with a line that scripts/accept-pictures passes on.
void Refuse(const std::string& problem) {
    std::printf("refused %s\n", problem.c_str());
    ADD_FAILURE() << problem;
}

/// What of a case shows in the form of its commands.
std::set<std::string> FeaturesOf(const GoldenCase& golden) {
    std::set<std::string> features{std::to_string(golden.bits) + " bits"};
    if (golden.downsample != 1) features.insert("reduced");
    if (!golden.layers.empty()) features.insert("layers");
    if (golden.input.frame) features.insert("frame");
    const auto* const scene = vireon::scenes::FindScene(golden.input.scene);
    if (scene != nullptr && scene->hasAlpha) features.insert("alpha");
    return features;
}

class Golden : public testing::Test {
  protected:
    void TearDown() override {
        if (oldLevel_) setenv(kLevelVariable, oldLevel_->c_str(), 1);
    }

    /// Workers inherit this process's variables.
    void holdTo(const char* level) {
        oldLevel_ = FromEnvironment(kLevelVariable);
        setenv(kLevelVariable, level, 1);
    }

    /// Whether a run is there to change references, whatever becomes of that.
    static bool accepts() {
        const std::string wish = FromEnvironment("VIREON_ACCEPT_PICTURES");
        return wish.find_first_not_of(" ,") != std::string::npos && wish != "0";
    }

  private:
    std::optional<std::string> oldLevel_;
};

TEST_F(Golden, EveryPictureIsAsItWas) {
    if (accepts()) GTEST_SKIP() << "pictures are being accepted";
    Renderer renderer = Native();
    CheckAll(renderer, "native", "Pictures of the native library", Programs(), true);
}

TEST_F(Golden, PlainDefinitionsDrawThemToo) {
    if (accepts()) GTEST_SKIP() << "pictures are being accepted";
    holdTo("plain");
    Renderer renderer = Native();
    ASSERT_EQ(renderer.client.simd(), "plain");
    GoldenPrograms programs = Programs();
    programs.level = "plain";
    CheckAll(renderer, "plain", "Pictures of the plain definitions", programs, false);
}

TEST_F(Golden, TheWindowsLibraryDrawsThemToo) {
    if (accepts()) GTEST_SKIP() << "pictures are being accepted";
    const fs::path stage = FromEnvironment("VIREON_WINDOWS_STAGE");
    if (!fs::exists(stage / "VireonGlow.aex")) {
        if (!FromEnvironment("VIREON_REQUIRE_WINDOWS").empty()) {
            FAIL() << "build the preset \"windows\" first: nothing in " << stage;
        }
        GTEST_SKIP() << "build the preset \"windows\" first: nothing in " << stage;
    }
    Renderer renderer(stage, "vireon-worker.exe", "VireonGlow.aex");
    GoldenPrograms programs = Programs();
    programs.plugin = stage / "VireonGlow.aex";
    CheckAll(renderer, "windows", "Pictures of the Windows library", programs, false);
}

TEST_F(Golden, NoPictureIsLeftOver) {
    if (accepts()) GTEST_SKIP() << "pictures are being accepted";
    for (const fs::path& file : TheSet().strays()) {
        ADD_FAILURE() << file.filename() << " belongs to no case; " << AcceptCommand("all")
                      << " removes it";
    }
}

TEST_F(Golden, TheReferencesStaySmall) {
    if (accepts()) GTEST_SKIP() << "pictures are being accepted";
    constexpr std::uintmax_t kMostBytes = 1'500'000;
    const GoldenSet set = TheSet();
    std::uintmax_t bytes = 0;
    for (const GoldenCase& golden : set.cases()) bytes += fs::file_size(set.fileOf(golden));
    EXPECT_LE(bytes, kMostBytes);
}

TEST_F(Golden, NoTwoCasesShowTheSame) {
    if (accepts()) GTEST_SKIP() << "pictures are being accepted";
    const GoldenSet set = TheSet();
    std::map<std::string, Picture> seen;
    for (const GoldenCase& golden : set.cases()) {
        const Picture picture = ReadReference(set.fileOf(golden), golden.bits);
        for (const auto& [name, other] : seen) {
            EXPECT_FALSE(picture == other) << golden.name << " and " << name;
        }
        seen.emplace(golden.name, picture);
    }
}

// The command that a report gives must show what the report shows. Files of float pictures with
// alpha hold colour multiplied by alpha, which rounds; all others hold every bit.
TEST_F(Golden, CommandsOfTheReportRenderThePictures) {
    if (accepts()) GTEST_SKIP() << "pictures are being accepted";
    const GoldenSet set = TheSet();
    const fs::path folder = FreshFolder("commands");
    // As few cases as have between them everything that makes commands differ.
    std::set<std::string> seen;
    fs::create_directories(folder);
    for (const GoldenCase& golden : set.cases()) {
        const std::set<std::string> features = FeaturesOf(golden);
        const std::size_t before = seen.size();
        seen.insert(features.begin(), features.end());
        if (seen.size() == before) continue;
        SCOPED_TRACE(golden.name);
        std::string script = "set -e\n";
        for (const std::string& line : CommandsFor(golden, Programs(), folder)) {
            script += line + "\n";
        }
        ASSERT_NO_THROW(RunToEnd("/bin/sh", {"-c", script}));
        const vireon::tool::PictureFile file = vireon::tool::ReadPictureFile(
            folder / ReferenceName(golden.name + "-again", golden.bits));
        const bool rounds = file.isAssociated && golden.bits == 32;
        const Comparison found =
            Compare(vireon::tool::ToHostPicture(file, golden.bits),
                    ReadReference(set.fileOf(golden), golden.bits), rounds ? kRounding : kSameBits);
        EXPECT_TRUE(found.agrees()) << found.problem;
    }
    const std::set<std::string> all{"8 bits", "16 bits", "32 bits", "reduced",
                                    "layers", "frame",   "alpha"};
    EXPECT_EQ(seen, all);
    if (!HasFailure()) fs::remove_all(folder);
}

// Only runs when somebody asks for it by name.
TEST_F(Golden, AcceptsThePicturesThatWereNamed) {
    const GoldenSet set = TheSet();
    const std::string wish = FromEnvironment("VIREON_ACCEPT_PICTURES");
    std::set<std::string> chosen;
    try {
        chosen = CasesToAccept(wish, set.cases());
    } catch (const std::exception& error) {
        Refuse(error.what());
        return;
    }
    if (chosen.empty()) GTEST_SKIP() << "VIREON_ACCEPT_PICTURES names no pictures";
    // Set by ./check, which looks and changes nothing.
    ASSERT_EQ(FromEnvironment("VIREON_REQUIRE_WINDOWS"), "")
        << "a full check does not accept pictures; unset VIREON_ACCEPT_PICTURES";
    Renderer renderer = Native();
    ASSERT_NE(renderer.client.simd(), "plain") << "references are made by the fast forms";
    const fs::path folder = FreshFolder("accept");
    SceneFolder scenes(folder);
    int changed = 0;
    for (const GoldenCase& golden : set.cases()) {
        if (!chosen.contains(golden.name)) continue;
        const Rendered rendered = Render(renderer, golden, scenes);
        if (!rendered.problem.empty()) {
            Refuse(golden.name + ": " + rendered.problem);
            continue;
        }
        const auto before = set.check(golden, rendered.picture, kSameBits);
        try {
            if (!set.accept(golden, rendered.picture)) continue;
        } catch (const std::exception& error) {
            Refuse(error.what());
            continue;
        }
        ++changed;
        std::printf("accepted %s: %s\n", golden.name.c_str(),
                    before ? before->problem.c_str() : "");
    }
    if (chosen.size() == set.cases().size()) {
        for (const fs::path& file : set.strays()) {
            fs::remove(file);
            std::printf("removed %s\n", file.filename().c_str());
        }
    }
    std::printf("%d of %zu references changed\n", changed, chosen.size());
    fs::remove_all(folder);
}

}  // namespace
