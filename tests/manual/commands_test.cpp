// Every command that the manual prints is run here, page by page and in their order, in a folder
// that holds the manual's pictures.

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "tests/manual/pages.h"
#include "tests/tool/program.h"

namespace vireon::manual {
namespace {

namespace fs = std::filesystem;

std::string SearchPath() {
    const char* path = std::getenv("PATH");
    return std::string(VIREON_TEST_STAGE) + ':' + VIREON_TEST_SCENES + ':' + VIREON_TEST_LOOK +
           ':' + (Root() / "docs/site").string() + ':' + (path != nullptr ? path : "");
}

// Makes the pictures of the manual, small: what is tested are commands, not pictures.
class Desk {
  public:
    Desk() {
        std::string name = (fs::path(testing::TempDir()) / "vireon manual XXXXXX").string();
        EXPECT_NE(mkdtemp(name.data()), nullptr);
        folder_ = name;
        const tool::Outcome drawn = run("'" + (Root() / "docs/site/scenes").string() + "' 192 108");
        EXPECT_EQ(drawn.code(), 0) << drawn.errors;
    }
    ~Desk() { fs::remove_all(folder_); }
    Desk(const Desk&) = delete;
    Desk& operator=(const Desk&) = delete;

    tool::Outcome run(const std::string& command) const {
        // The tables of the look are measured anew, which takes a while.
        constexpr std::chrono::minutes kLimit(10);
        return tool::RunProgram("/bin/sh",
                                {"-c", "cd \"$0\" && set -eu\n" + command, folder_.string()},
                                {{"PATH", SearchPath()}}, {}, kLimit);
    }

    struct State {
        fs::file_time_type time;
        std::uintmax_t bytes;
        bool operator==(const State&) const = default;
    };
    std::map<std::string, State> files() const {
        std::map<std::string, State> found;
        for (const auto& entry : fs::recursive_directory_iterator(folder_)) {
            if (!entry.is_regular_file()) continue;
            found[entry.path().lexically_relative(folder_).string()] = {entry.last_write_time(),
                                                                        entry.file_size()};
        }
        return found;
    }

  private:
    fs::path folder_;
};

void ExpectRuns(const Desk& desk, const Command& command) {
    const auto before = desk.files();
    const tool::Outcome outcome = desk.run(command.text);
    const auto after = desk.files();
    ASSERT_EQ(outcome.code(), command.code) << outcome.errors << outcome.status.text();
    for (const std::string& message : command.messages) {
        EXPECT_NE(outcome.errors.find(message), std::string::npos)
            << "no \"" << message << "\" in: " << outcome.errors;
    }
    if (command.code != 0) {
        EXPECT_FALSE(command.messages.empty()) << "a command that fails should say what it says";
        EXPECT_EQ(before, after) << "a command that fails leaves the files as they were";
        return;
    }
    const std::vector<std::string> names = FilesOf(command.text);
    for (const std::string& name : names) {
        const auto file = after.find(name);
        ASSERT_NE(file, after.end()) << "there is no " << name << " afterwards";
        EXPECT_GT(file->second.bytes, 0u) << name;
    }
    if (names.size() >= 2) {
        EXPECT_NE(before, after) << "of the files that the command names it made none";
    }
}

std::vector<std::string> PageNames() {
    std::vector<std::string> names;
    for (const Page& page : ReadPages()) names.push_back(page.name);
    return names;
}

class ManualPage : public testing::TestWithParam<std::string> {
  protected:
    Page page() const { return ReadPage(Root() / "docs/manual" / (GetParam() + ".md")); }
};

TEST_P(ManualPage, PrintsCommandsThatDoWhatItSays) {
    const Desk desk;
    for (const Block& block : page().blocks) {
        if (block.name == "sh") {
            const std::vector<Command> commands = CommandsOf(block);
            EXPECT_FALSE(commands.empty());
            for (const Command& command : commands) {
                SCOPED_TRACE(command.text);
                ExpectRuns(desk, command);
            }
        } else if (block.name == "output" || block.name == "result") {
            std::string text;
            for (const std::string& line : block.lines) text += line + '\n';
            SCOPED_TRACE(text);
            const tool::Outcome outcome = desk.run(text);
            EXPECT_EQ(outcome.code(), 0) << outcome.errors;
            EXPECT_FALSE(outcome.output.empty());
        } else if (block.name == "presets") {
            for (const std::string& line : block.lines) {
                const std::size_t blank = line.find(' ');
                ASSERT_NE(blank, std::string::npos) << line;
                SCOPED_TRACE(line);
                ExpectRuns(desk, {"vireon render --quiet " + line.substr(blank + 1) +
                                      ".png shown.tif --preset " + line.substr(0, blank),
                                  0,
                                  {}});
            }
        } else {
            EXPECT_TRUE(block.name == "pictures" || block.name == "text")
                << "nothing tests a block of the kind \"" << block.name << '"';
        }
    }
}

TEST_P(ManualPage, ShowsPicturesOfOptionsThatTheEffectTakes) {
    const Desk desk;
    for (const Block& block : page().blocks) {
        if (block.name != "pictures" || block.keys.contains("command")) continue;
        for (const std::string& line : block.lines) {
            const std::vector<std::string> cells = CellsOf('|' + line + '|');
            if (cells.size() < 2 || cells[1] == "-") continue;
            std::map<std::string, std::string> keys = block.keys;
            if (cells.size() > 2) {
                for (const auto& [key, value] : KeysOf(cells[2])) keys[key] = value;
            }
            std::string scene = keys["scene"];
            if (scene.find('.') == std::string::npos) scene += ".png";
            SCOPED_TRACE(line);
            ExpectRuns(desk, {"vireon render --quiet " + scene + " shown.tif " + keys["options"] +
                                  ' ' + cells[1],
                              0,
                              {}});
        }
    }
}

std::string TestName(const testing::TestParamInfo<std::string>& page) {
    std::string name = page.param;
    std::replace(name.begin(), name.end(), '-', '_');
    return name;
}

INSTANTIATE_TEST_SUITE_P(Pages, ManualPage, testing::ValuesIn(PageNames()), TestName);

}  // namespace
}  // namespace vireon::manual
