// `vireon presets` and `vireon render --preset`, with the effect that reports what it was given and
// with the real one.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <set>

#include <sys/stat.h>
#include <nlohmann/json.hpp>

#include "tests/tool/program.h"

namespace vireon::tool {
namespace {

namespace fs = std::filesystem;

void ExpectIn(const std::string& text, const std::string& words) {
    EXPECT_NE(text.find(words), std::string::npos) << "no \"" << words << "\" in: " << text;
}

/// A place with a preset "look.json" for the effect that reports.
class Looks : public testing::Test {
  protected:
    std::string write(const std::string& text, const std::string& name = "look.json") const {
        std::ofstream(place_.file(name), std::ios::binary) << text;
        return place_.file(name);
    }
    std::string report(std::vector<std::string> more, const Environment& environment = {}) const {
        more.insert(more.end(), {"--behaviour", "report"});
        const Outcome outcome = place_.render(more, environment);
        EXPECT_EQ(outcome.code(), 12) << outcome.errors;
        return outcome.errors;
    }

    Workplace place_;
};

TEST_F(Looks, ReachTheEffect) {
    const std::string look = write(
        R"({"parameters": {"Glow Radius": 12.5, "Opacity": 40, "Enable": true, "Center": [50, 20],
            "Depth": 7}})");
    ExpectIn(report({"--preset", look}),
             "radius=12.5 opacity=40 enable=1 center=10,2 mask=0x0 depth=7 ");
}

TEST_F(Looks, OptionsBesideThemWin) {
    const std::string look =
        write(R"({"parameters": {"Behaviour": "Crash", "Glow Radius": 12.5, "Enable": true}})");
    ExpectIn(report({"--enable", "off", "--preset", look}), "radius=12.5 opacity=100 enable=0 ");
    ExpectIn(report({"--preset", look, "--glow-radius", "3", "--layer", "mask=" + place_.input()}),
             "radius=3 opacity=100 enable=1 center=10,5 mask=20x10 ");
}

TEST_F(Looks, FollowTheHeightOfThePictureAtFullResolution) {
    // The picture has 10 lines.
    const std::string look = write(R"({"height": 20, "parameters": {"Glow Radius": 60}})");
    ExpectIn(report({"--preset", look}), "radius=30 ");
    ExpectIn(report({"--preset", look, "--half"}), "radius=30 ");
    ExpectIn(report({"--preset", look, "--glow-radius", "60"}), "radius=60 ");
}

TEST_F(Looks, GoByNameInAFolderOfTheirOwn) {
    write(R"({"parameters": {"Glow Radius": 5}})", "mine.json");
    const Environment here{{"VIREON_PRESETS", fs::path(place_.file("x")).parent_path().string()}};
    ExpectIn(report({"--preset", "mine"}, here), "radius=5 ");
    place_.expectFailure(place_.render({"--preset", "mien"}, here), 3, "did you mean mine?");
    place_.expectFailure(place_.render({"--preset", "mine"}, {{"VIREON_PRESETS", "/nowhere"}}), 5,
                         "VIREON_PRESETS");
}

TEST_F(Looks, WrongFilesCostNothing) {
    struct {
        const char* text;
        int code;
        const char* words;
    } const cases[] = {
        {"", 5, "empty"},
        {"{\"parameters\":\n {\"Enable\": tru}}", 5, "line 2, column 16: this is not JSON"},
        {R"({"parameters": {"Opacity": 1, "Opacity": 2}})", 5, "stands there twice"},
        {R"({"parameters": {"Opacity": NaN}})", 5, "not JSON"},
        {R"({"parameters": {"Opacity": 1e999}})", 5, "not JSON"},
        {R"({"parameters": {"Opacty": 1}})", 3, "did you mean Opacity?"},
        {R"({"parameters": {"Opacity": 101}})", 4, "\"Opacity\": 101 is out of range; 0 to 100"},
        {R"({"parameters": {"Opacity": "1"}})", 4, "wants a number, not a text"},
        {R"({"parameters": {"Behaviour": "(-"}})", 3, "possible are Copy, Invert"},
        {R"({"parameters": {"Mask Layer": "a.png"}})", 4, "--layer mask=FILE"},
        {"\xFF\xFE{", 5, "UTF-16"},
    };
    for (const auto& entry : cases) {
        const Outcome outcome = place_.render({"--preset", write(entry.text)});
        place_.expectFailure(outcome, entry.code, entry.words);
        ExpectIn(outcome.errors, "look.json: ");
    }
    place_.expectFailure(place_.render({"--preset", place_.file("none.json")}), 5, "No such file");
    place_.expectFailure(place_.render({"--preset", place_.file("")}), 5, "it is a folder");
    ASSERT_EQ(mkfifo(place_.file("pipe.json").c_str(), 0600), 0);
    place_.expectFailure(place_.render({"--preset", place_.file("pipe.json")}), 5,
                         "no ordinary file");
    place_.expectFailure(place_.render({"--preset", write(std::string(1u << 20, ' ') + "{}")}), 5,
                         "more than 1 MiB");
    place_.expectFailure(place_.render({"--preset", write(std::string(900000, '['))}), 5,
                         "more than 8 deep");
}

TEST_F(Looks, ABrokenOneDoesNotHideTheOthers) {
    write(R"({"description": "Mine", "parameters": {}})", "mine.json");
    write("{", "broken.json");
    const Environment here{{"VIREON_PRESETS", fs::path(place_.file("x")).parent_path().string()}};
    const Outcome outcome = Vireon({"presets"}, here);
    EXPECT_EQ(outcome.code(), 5);
    EXPECT_EQ(outcome.errorLines(), 1) << outcome.errors;
    ExpectIn(outcome.errors, "broken.json: line 1");
    ExpectIn(outcome.output, "(cannot be read)");
    ExpectIn(outcome.output, "Mine\n");
}

TEST_F(Looks, ShowingOneHoldsItAgainstTheEffect) {
    const std::string look = write(R"({"parameters": {"Opacty": 1}})");
    const Outcome outcome = Vireon({"presets", look, "--plugin", VIREON_TEST_EFFECT});
    EXPECT_EQ(outcome.code(), 3);
    EXPECT_EQ(outcome.output, "");
    ExpectIn(outcome.errors, "did you mean Opacity?");
}

/// The presets that are shipped, as the program lists them.
nlohmann::json ShippedPresets() {
    const Outcome outcome = Vireon({"presets", "--json"}, {{"VIREON_PRESETS", std::nullopt}});
    EXPECT_EQ(outcome.code(), 0) << outcome.errors;
    EXPECT_EQ(outcome.errors, "");
    return nlohmann::json::parse(outcome.output);
}

TEST(ShippedPresets, AreThereAndTold) {
    const nlohmann::json presets = ShippedPresets();
    EXPECT_GE(presets.size(), 12u);
    std::set<std::string> names;
    const Outcome list = Vireon({"presets"}, {{"VIREON_PRESETS", std::nullopt}});
    for (const nlohmann::json& preset : presets) {
        const std::string id = preset["preset"];
        EXPECT_TRUE(names.insert(preset["name"]).second) << id;
        for (const char* const field : {"name", "description", "for"}) {
            EXPECT_NE(preset[field], "") << id << ' ' << field;
        }
        EXPECT_EQ(preset["height"], 1080) << id;
        EXPECT_EQ(preset["file"], std::string(VIREON_TEST_STAGE) + "/presets/" + id + ".json");
        EXPECT_FALSE(preset["parameters"].empty()) << id;
        ExpectIn(list.output, id + " ");
    }
}

/// A lamp on a dark wall, 320 x 540: half the height that the presets are made for.
void WriteLamp(const std::string& file) {
    std::vector<std::uint8_t> samples;
    for (int y = 0; y < 540; ++y) {
        for (int x = 0; x < 320; ++x) {
            const bool lit = x >= 150 && x < 170 && y >= 260 && y < 280;
            const auto level = static_cast<std::uint8_t>(lit ? 255 : 20);
            samples.insert(samples.end(), {level, level, level});
        }
    }
    WritePng8(file, 320, 3, samples);
}

TEST(ShippedPresets, SuitTheEffectAndGlow) {
    if (!fs::exists(std::string(VIREON_TEST_STAGE) + "/VireonGlow.so")) {
        GTEST_SKIP() << "the effect is not built";
    }
    const Workplace place;
    WriteLamp(place.input());
    const auto before = Pixels8(place.input());
    for (const nlohmann::json& preset : ShippedPresets()) {
        const std::string id = preset["preset"];
        const std::string output = place.file(id + ".png");
        const Outcome outcome = Vireon({"render", place.input(), output, "--preset", id},
                                       {{"VIREON_PRESETS", std::nullopt}});
        ASSERT_EQ(outcome.code(), 0) << id << ": " << outcome.errors;
        EXPECT_EQ(outcome.errors, "") << id;
        const auto after = Pixels8(output);
        ASSERT_EQ(after.size(), before.size()) << id;
        int brighter = 0;
        int darker = 0;
        for (std::size_t i = 0; i < before.size(); ++i) {
            brighter += after[i] > before[i] ? 1 : 0;
            darker += after[i] < before[i] ? 1 : 0;
        }
        // Well beyond what rounding could do next to the lamp.
        EXPECT_GT(brighter, 200) << id;
        EXPECT_EQ(darker, 0) << id;
    }
}

TEST(ShippedPresets, AreShownWithTheirValues) {
    if (!fs::exists(std::string(VIREON_TEST_STAGE) + "/VireonGlow.so")) {
        GTEST_SKIP() << "the effect is not built";
    }
    const Outcome shown = Vireon({"presets", "neon"}, {{"VIREON_PRESETS", std::nullopt}});
    EXPECT_EQ(shown.code(), 0) << shown.errors;
    ExpectIn(shown.output, "Neon (neon)\n");
    ExpectIn(shown.output, "made for 1080 lines");
    ExpectIn(shown.output, "Shape  ");
}

}  // namespace
}  // namespace vireon::tool
