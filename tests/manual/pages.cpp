#include "tests/manual/pages.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <regex>

namespace vireon::manual {
namespace {

std::string Trimmed(const std::string& text) {
    const std::size_t first = text.find_first_not_of(' ');
    if (first == std::string::npos) return {};
    return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

// The info string of a fence, as the site's generator understands it.
Block OpenBlock(const std::string& info) {
    Block block;
    if (!info.starts_with('{')) {
        block.name = info;
        return block;
    }
    static const std::regex name(R"rx(\.([\w-]+))rx");
    std::smatch match;
    if (std::regex_search(info, match, name)) block.name = match[1];
    block.keys = KeysOf(info);
    return block;
}

}  // namespace

std::filesystem::path Root() {
    const char* root = std::getenv("VIREON_SOURCE_DIR");
    return root != nullptr ? root : ".";
}

Page ReadPage(const std::filesystem::path& file) {
    Page page;
    page.name = file.stem().string();
    std::ifstream stream(file);
    bool inBlock = false;
    for (std::string line; std::getline(stream, line);) {
        if (line.starts_with("```")) {
            if (!inBlock) page.blocks.push_back(OpenBlock(Trimmed(line.substr(3))));
            inBlock = !inBlock;
            continue;
        }
        if (inBlock) page.blocks.back().lines.push_back(line);
        if (!inBlock && (line.starts_with("## ") || line.starts_with("### "))) {
            page.sections.push_back({Trimmed(line.substr(line.find(' '))), {}});
        } else if (!page.sections.empty()) {
            page.sections.back().lines.push_back(line);
        }
    }
    return page;
}

std::vector<Page> ReadPages() {
    std::vector<std::filesystem::path> files;
    for (const auto& entry : std::filesystem::directory_iterator(Root() / "docs/manual")) {
        if (entry.path().extension() == ".md") files.push_back(entry.path());
    }
    std::sort(files.begin(), files.end());
    std::vector<Page> pages;
    for (const auto& file : files) pages.push_back(ReadPage(file));
    return pages;
}

std::vector<std::string> CellsOf(const std::string& line) {
    if (line.size() < 2 || !line.starts_with('|') || !line.ends_with('|')) return {};
    std::vector<std::string> cells;
    for (std::size_t begin = 1; begin < line.size();) {
        const std::size_t end = line.find('|', begin);
        cells.push_back(Trimmed(line.substr(begin, end - begin)));
        begin = end + 1;
    }
    return cells;
}

std::map<std::string, std::string> KeysOf(const std::string& text) {
    static const std::regex pair(R"rx(([\w-]+)=(?:"([^"]*)"|([^\s}"]+)))rx");
    std::map<std::string, std::string> keys;
    for (std::sregex_iterator match(text.begin(), text.end(), pair), end; match != end; ++match) {
        keys[(*match)[1]] = (*match)[2].matched ? (*match)[2] : (*match)[3];
    }
    return keys;
}

std::vector<Command> CommandsOf(const Block& block) {
    std::vector<Command> commands;
    bool goesOn = false;
    for (const std::string& line : block.lines) {
        if (line.starts_with("# ")) {
            if (commands.empty()) continue;
            const std::string words = line.substr(2);
            if (words.starts_with("vireon: ")) commands.back().messages.push_back(words);
            if (words.starts_with("exit code ")) commands.back().code = std::stoi(words.substr(10));
            continue;
        }
        if (Trimmed(line).empty()) continue;
        if (goesOn) {
            commands.back().text += '\n' + line;
        } else {
            commands.push_back({line, 0, {}});
        }
        goesOn = line.ends_with('\\');
    }
    return commands;
}

std::vector<std::string> FilesOf(const std::string& command) {
    static const std::regex word(R"rx("[^"]*"|'[^']*'|[^\s"'<>|;&]+)rx");
    static const std::regex file(
        R"rx((?:\w+=)?([\w./-]+\.(?:png|exr|jpg|tif|brush|json|txt|csv)))rx");
    std::vector<std::string> files;
    for (std::sregex_iterator match(command.begin(), command.end(), word), end; match != end;
         ++match) {
        std::string text = match->str();
        if (text.starts_with('"') || text.starts_with('\'')) text = text.substr(1, text.size() - 2);
        std::smatch parts;
        if (std::regex_match(text, parts, file)) files.push_back(parts[1]);
    }
    return files;
}

}  // namespace vireon::manual
