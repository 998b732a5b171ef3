#include "tools/vireon/preset_folder.h"

#include <cstdlib>
#include <fstream>

#include <gtest/gtest.h>

#include "tests/unit/tool/expect_error.h"
#include "tests/unit/tool/scratch_folder.h"

namespace vireon::tool {
namespace {

class PresetFolderTest : public testing::Test {
  protected:
    void write(const std::filesystem::path& path) const { std::ofstream(path) << "{}"; }
    std::string names() const {
        std::string names;
        for (const PresetFile& file : ListPresets(folders_)) {
            names += file.name + ' ';
        }
        return names;
    }

    ScratchFolder own_;
    ScratchFolder shipped_;
    std::vector<std::filesystem::path> folders_{own_.path(), shipped_.path()};
};

TEST_F(PresetFolderTest, ListsJsonFilesByName) {
    write(shipped_ / "neon.json");
    write(shipped_ / "fog.json");
    write(shipped_ / "readme.txt");
    write(shipped_ / ".hidden.json");
    EXPECT_EQ(names(), "fog neon ");
}

TEST_F(PresetFolderTest, TheFirstFolderWins) {
    write(shipped_ / "neon.json");
    write(shipped_ / "fog.json");
    write(own_ / "neon.json");
    EXPECT_EQ(names(), "fog neon ");
    EXPECT_EQ(FindPreset("neon", folders_), own_ / "neon.json");
    EXPECT_EQ(FindPreset("fog", folders_), shipped_ / "fog.json");
}

TEST_F(PresetFolderTest, AFolderThatIsMissingIsEmpty) {
    folders_ = {own_ / "nothing", shipped_.path()};
    write(shipped_ / "fog.json");
    EXPECT_EQ(names(), "fog ");
}

TEST_F(PresetFolderTest, PathsAreTakenAsTheyAre) {
    EXPECT_EQ(FindPreset("here.json", folders_), "here.json");
    EXPECT_EQ(FindPreset("looks/here", folders_), "looks/here");
    EXPECT_EQ(FindPreset("/abs/x.json", folders_), "/abs/x.json");
}

TEST_F(PresetFolderTest, UnknownNamesGetASuggestion) {
    write(shipped_ / "neon.json");
    const std::string text = ExpectError(kUnknownName, [&] { FindPreset("noen", folders_); });
    EXPECT_NE(text.find("there is no preset \"noen\" (did you mean neon?)"), std::string::npos)
        << text;
    ExpectError(kUnknownName, [&] { FindPreset("", folders_); });
}

TEST_F(PresetFolderTest, TheEnvironmentAddsAFolder) {
    unsetenv("VIREON_PRESETS");
    ASSERT_EQ(PresetFolders().size(), 1u);
    EXPECT_EQ(PresetFolders()[0].filename(), "presets");
    setenv("VIREON_PRESETS", own_.path().c_str(), 1);
    ASSERT_EQ(PresetFolders().size(), 2u);
    EXPECT_EQ(PresetFolders()[0], own_.path());
    setenv("VIREON_PRESETS", (own_ / "nothing").c_str(), 1);
    const std::string text = ExpectError(kInputUnreadable, [] { PresetFolders(); });
    EXPECT_NE(text.find("VIREON_PRESETS"), std::string::npos) << text;
    unsetenv("VIREON_PRESETS");
}

}  // namespace
}  // namespace vireon::tool
