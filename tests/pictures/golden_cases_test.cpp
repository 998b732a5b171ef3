#include "tests/pictures/golden_cases.h"

#include <stdexcept>

#include <gtest/gtest.h>

#include "tests/pictures/golden_frame.h"
#include "tests/unit/tool/scratch_folder.h"
#include "tools/vireon/picture_file.h"

namespace vireon::pictures {
namespace {

constexpr char kFull[] = R"([{
    "name": "all-fields", "shows": "everything", "scene": "moving", "size": [64, 36], "frame": 7,
    "depth": 16, "downsample": 2,
    "parameters": {"threshold": "20", "shape": "Six Flare"},
    "layers": {"mask": {"scene": "noise", "size": [32, 18]}}
}])";

std::string ErrorOf(const std::string& text) {
    try {
        ParseGoldenCases(text);
    } catch (const std::exception& error) {
        return error.what();
    }
    return "no error";
}

void ExpectError(const std::string& text, const std::string& words) {
    EXPECT_NE(ErrorOf(text).find(words), std::string::npos) << ErrorOf(text);
}

TEST(GoldenCases, EveryFieldIsRead) {
    const std::vector<GoldenCase> cases = ParseGoldenCases(kFull);
    ASSERT_EQ(cases.size(), 1u);
    const GoldenCase& golden = cases.front();
    EXPECT_EQ(golden.name, "all-fields");
    EXPECT_EQ(golden.shows, "everything");
    EXPECT_EQ(golden.input.scene, "moving");
    EXPECT_EQ(golden.input.width, 64);
    EXPECT_EQ(golden.input.height, 36);
    EXPECT_EQ(golden.input.frame, 7);
    EXPECT_EQ(golden.bits, 16);
    EXPECT_EQ(golden.downsample, 2);
    const std::vector<std::pair<std::string, std::string>> parameters{{"threshold", "20"},
                                                                      {"shape", "Six Flare"}};
    EXPECT_EQ(golden.parameters, parameters);
    ASSERT_EQ(golden.layers.size(), 1u);
    EXPECT_EQ(golden.layers[0].first, "mask");
    EXPECT_EQ(golden.layers[0].second.scene, "noise");
    EXPECT_FALSE(golden.layers[0].second.frame.has_value());
}

TEST(GoldenCases, MistakesAreNamed) {
    ExpectError("", "parse error");
    ExpectError("[]", "no cases");
    ExpectError("{}", "no cases");
    ExpectError("[3]", "case 3");
    const std::string rest = R"("shows": "", "scene": "night", "size": [4, 4])";
    ExpectError(R"([{"name": "a", )" + rest + R"(, "quality": "1:1"}])", "no field \"quality\"");
    ExpectError(R"([{"name": "A b", )" + rest + "}]", "\"name\" may hold");
    ExpectError(R"([{"name": "../a", )" + rest + "}]", "\"name\" may hold");
    ExpectError(R"([{"name": "a", )" + rest + R"(, "depth": 12}])", "\"depth\" is not");
    ExpectError(R"([{"name": "a", )" + rest + R"(, "downsample": 0}])", "\"downsample\"");
    ExpectError(R"([{"name": "a", )" + rest + R"(, "parameters": {"threshold": 20}}])",
                "case \"a\"");
    ExpectError(R"([{"name": "a", )" + rest + R"(}, {"name": "a", )" + rest + "}]", "used twice");
    ExpectError(R"([{"name": "a", "shows": "", "scene": "night", "size": [4]}])", "\"size\"");
    ExpectError(R"([{"name": "a", "shows": "", "size": [4, 4]}])", "scene");
}

TEST(GoldenCases, CommandsSayWhatTheCaseSays) {
    const GoldenCase golden = ParseGoldenCases(kFull).front();
    const std::vector<std::string> expected{
        "cd '/a folder/x'",
        "/bin/vireon-scenes moving moving-64x36-frame-7-16-bits.png --width 64 --height 36 "
        "--frame 7 --bits 16",
        "/bin/vireon-scenes noise noise-32x18-16-bits.png --width 32 --height 18 --bits 16",
        "/bin/vireon render moving-64x36-frame-7-16-bits.png all-fields-again.png --depth 16 "
        "--downsample 2 --threshold 20 --shape 'Six Flare' "
        "--layer mask=noise-32x18-16-bits.png"};
    GoldenPrograms programs{"/bin/vireon-scenes", "/bin/vireon", {}, {}};
    EXPECT_EQ(CommandsFor(golden, programs, "/a folder/x"), expected);

    programs.plugin = "/the other/VireonGlow.aex";
    programs.level = "plain";
    EXPECT_EQ(
        CommandsFor(golden, programs, "/x").back(),
        "VIREON_GLOW_SIMD=plain " + expected.back() + " --plugin '/the other/VireonGlow.aex'");
}

TEST(GoldenCases, WordsReachAShellAsTheyAre) {
    EXPECT_EQ(ShellWord("40%,55%"), "40%,55%");
    EXPECT_EQ(ShellWord(""), "''");
    EXPECT_EQ(ShellWord("4:1 (moderate)"), "'4:1 (moderate)'");
    EXPECT_EQ(ShellWord("it's $HOME"), "'it'\\''s $HOME'");
}

TEST(SceneFolder, DrawsWhatThereIsAndNamesWhatThereIsNot) {
    const tool::ScratchFolder folder;
    SceneFolder scenes(folder / "scenes");
    for (const int bits : {8, 16, 32}) {
        const tool::PictureFile file =
            tool::ReadPictureFile(scenes.fileOf({"lights", 24, 16, {}}, bits));
        EXPECT_EQ(file.naturalBits(), bits);
        EXPECT_EQ(file.width, 24);
        EXPECT_EQ(file.height, 16);
    }
    EXPECT_THROW(scenes.fileOf({"lightz", 24, 16, {}}, 8), std::runtime_error);
    EXPECT_THROW(scenes.fileOf({"lights", 24, 16, 1}, 8), std::runtime_error);
    EXPECT_THROW(scenes.fileOf({"lights", 24, 16, -1}, 8), std::runtime_error);
    EXPECT_ANY_THROW(scenes.fileOf({"lights", 0, 16, {}}, 8));
}

TEST(RunToEnd, SaysWhyAProgramFailed) {
    EXPECT_NO_THROW(RunToEnd("/bin/sh", {"-c", "exit 0"}));
    try {
        RunToEnd("/bin/sh", {"-c", "echo no such scene >&2; exit 3"});
        FAIL() << "no error";
    } catch (const std::runtime_error& error) {
        const std::string text = error.what();
        EXPECT_NE(text.find("exit code 3"), std::string::npos) << text;
        EXPECT_NE(text.find("no such scene"), std::string::npos) << text;
    }
}

}  // namespace
}  // namespace vireon::pictures
