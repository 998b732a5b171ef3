#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace vireon::manual {

/// A command of a page as a reader would type it, and what the page says of its end.
struct Command {
    std::string text;
    /// "# exit code N" in the lines after it; 0 without.
    int code = 0;
    /// "# vireon: ..." in the lines after it: what it says on standard error.
    std::vector<std::string> messages;
};

/// A fenced block: ```NAME or ```{.NAME KEY=VALUE ...}.
struct Block {
    std::string name;
    std::map<std::string, std::string> keys;
    std::vector<std::string> lines;
};

/// The part of a page under a heading of its second or third rank, to the next of these ranks.
struct Section {
    std::string heading;
    std::vector<std::string> lines;
};

struct Page {
    std::string name;  ///< its file without the extension
    std::vector<Block> blocks;
    std::vector<Section> sections;
};

/// The folder of the sources.
std::filesystem::path Root();

/// The pages of docs/manual, by name.
std::vector<Page> ReadPages();
Page ReadPage(const std::filesystem::path& file);

/// Cells of a table's row without the blanks around them; empty when the line is none.
std::vector<std::string> CellsOf(const std::string& line);

/// KEY=VALUE pairs of a text, the values quoted where they hold blanks.
std::map<std::string, std::string> KeysOf(const std::string& text);

/// The commands of an `sh` block: one a line, or several lines that end in backslashes.
std::vector<Command> CommandsOf(const Block& block);

/// Words of a command that look like a file that it reads or writes: those with the extension of a
/// picture, a brush, a text or a table. `layer=FILE` counts as its file.
std::vector<std::string> FilesOf(const std::string& command);

}  // namespace vireon::manual
