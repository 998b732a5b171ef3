// docs/host-contract.md says for every operation of the host interfaces where it is written and
// which test proves it, and for every command what it promises. It holds as long as headers,
// sources and tests have what the tables name.

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <optional>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

fs::path Root() {
    const char* root = std::getenv("VIREON_SOURCE_DIR");
    return root != nullptr ? fs::path(root) : fs::path(".");
}

std::vector<std::string> LinesOf(const fs::path& file) {
    std::ifstream stream(file);
    EXPECT_TRUE(stream.is_open()) << file;
    std::vector<std::string> lines;
    for (std::string line; std::getline(stream, line);) {
        if (!line.empty() && line.back() == '\r') line.pop_back();
        lines.push_back(line);
    }
    return lines;
}

/// Text of a file; nothing when there is no such file.
std::optional<std::string> TextOf(const fs::path& file) {
    std::ifstream stream(file);
    if (!stream.is_open()) return std::nullopt;
    std::stringstream text;
    text << stream.rdbuf();
    return text.str();
}

/// The operations of an interface by their numbers.
using Operations = std::map<int, std::string>;

/// Where the numbers of an interface come from.
enum class Numbering {
    kComments,  ///< the comment before each: "/// 12: ...", "/// 32, 33", "/// 20 to 28: ..."
    kPlaces,    ///< the place of each in the class, the destructor's among them
};

/// Reads the virtual functions of the one class of a header.
Operations OperationsOf(const fs::path& header, Numbering numbering) {
    static const std::regex number(R"(^\s*/// (\d+)(?:(?: to |, )(\d+))?(?::.*)?$)");
    static const std::regex declaration(R"(^\s*virtual [^(]*?(~?\w+)\(.*)");
    Operations operations;
    int next = 0;
    int last = numbering == Numbering::kPlaces ? 1000 : -1;
    bool withinComment = false;
    for (const std::string& line : LinesOf(header)) {
        std::smatch match;
        const bool isComment = line.find("///") != std::string::npos &&
                               line.find_first_not_of(' ') == line.find("///");
        const bool opens = isComment && !withinComment;
        withinComment = isComment;
        if (opens && numbering == Numbering::kComments && std::regex_match(line, match, number)) {
            EXPECT_GT(next, last) << header
                                  << " numbers more operations than it declares: " << line;
            next = std::stoi(match[1]);
            last = match[2].matched ? std::stoi(match[2]) : next;
        } else if (std::regex_match(line, match, declaration)) {
            const std::string name = match[1];
            if (next > last) {
                // Only destructors stand outside the numbers.
                EXPECT_EQ(name.front(), '~') << header << ": " << name << " has no number";
                continue;
            }
            EXPECT_TRUE(operations.emplace(next, name).second) << header << " has two of " << next;
            ++next;
        }
    }
    return operations;
}

/// A row of a table, without the backquotes of its cells.
using Row = std::vector<std::string>;

Row CellsOf(const std::string& line) {
    Row cells;
    std::stringstream stream(line.substr(1));
    for (std::string cell; std::getline(stream, cell, '|');) {
        const std::size_t first = cell.find_first_not_of(" `");
        const std::size_t end = cell.find_last_not_of(" `");
        cells.push_back(first == std::string::npos ? "" : cell.substr(first, end - first + 1));
    }
    return cells;
}

/// The rows of the table below a heading, without its first two lines.
std::vector<Row> TableBelow(const std::string& heading) {
    std::vector<Row> rows;
    bool below = false;
    for (const std::string& line : LinesOf(Root() / "docs" / "host-contract.md")) {
        if (line.rfind("## ", 0) == 0) below = line == "## " + heading;
        if (below && line.rfind("|", 0) == 0) rows.push_back(CellsOf(line));
    }
    EXPECT_GT(rows.size(), 2u) << "no table below " << heading;
    if (rows.size() > 2) rows.erase(rows.begin(), rows.begin() + 2);
    return rows;
}

/// Whether a test file, below tests/, has a test "Suite.Name".
testing::AssertionResult HasTest(const std::string& file, const std::string& test) {
    static std::map<std::string, std::set<std::string>> known;
    if (known.count(file) == 0) {
        const std::optional<std::string> text = TextOf(Root() / "tests" / file);
        if (!text) return testing::AssertionFailure() << "no file tests/" << file;
        static const std::regex macro(R"((?:^|\n)TEST(?:_F|_P)?\(\s*(\w+),\s*(\w+)\s*\))");
        std::set<std::string>& tests = known[file];
        for (std::sregex_iterator it(text->begin(), text->end(), macro), end; it != end; ++it) {
            tests.insert((*it)[1].str() + "." + (*it)[2].str());
        }
    }
    if (known[file].count(test) != 0) return testing::AssertionSuccess();
    return testing::AssertionFailure() << "tests/" << file << " has no test " << test;
}

struct Interface {
    const char* name;
    const char* header;
    Numbering numbering;
    int count;
};

void PrintTo(const Interface& one, std::ostream* stream) {
    *stream << one.name;
}

class InterfaceTable : public testing::TestWithParam<Interface> {};

TEST_P(InterfaceTable, HasEveryOperationOfTheHeaderByItsNumberAndName) {
    const Interface& one = GetParam();
    const Operations declared = OperationsOf(Root() / "src" / one.header, one.numbering);
    ASSERT_EQ(static_cast<int>(declared.size()), one.count);
    EXPECT_EQ(declared.begin()->first, 0);
    EXPECT_EQ(declared.rbegin()->first, one.count - 1);
    Operations listed;
    for (const Row& row : TableBelow(std::string("`") + one.name + "`")) {
        ASSERT_EQ(row.size(), 5u) << row.front();
        EXPECT_TRUE(listed.emplace(std::stoi(row[0]), row[1]).second) << row[0] << " twice";
    }
    EXPECT_EQ(listed, declared);
}

TEST_P(InterfaceTable, NamesSourcesThatHoldTheOperations) {
    for (const Row& row : TableBelow(std::string("`") + GetParam().name + "`")) {
        ASSERT_EQ(row.size(), 5u) << row.front();
        const std::optional<std::string> text = TextOf(Root() / "src" / row[2]);
        ASSERT_TRUE(text.has_value()) << row[0] << ": no file src/" << row[2];
        // A whole word, called or defined: width, not maximalWidth.
        const std::regex name("(?:^|[^~\\w])" + row[1] + "\\(");
        EXPECT_TRUE(std::regex_search(*text, name))
            << row[0] << ": src/" << row[2] << " has no " << row[1];
    }
}

TEST_P(InterfaceTable, NamesTestsThatExist) {
    for (const Row& row : TableBelow(std::string("`") + GetParam().name + "`")) {
        ASSERT_EQ(row.size(), 5u) << row.front();
        EXPECT_TRUE(HasTest(row[3], row[4])) << row[0] << " " << row[1];
    }
}

INSTANTIATE_TEST_SUITE_P(
    Contract, InterfaceTable,
    testing::Values(
        Interface{"PluginHost_API", "host/plugin_host_api.h", Numbering::kComments, 128},
        Interface{"PluginPath_API", "host/plugin_path_api.h", Numbering::kComments, 9},
        Interface{"PluginRaster_API", "host/plugin_raster_api.h", Numbering::kPlaces, 21},
        Interface{"PluginUpdate_API", "host/plugin_update_api.h", Numbering::kComments, 13}),
    [](const testing::TestParamInfo<Interface>& one) { return std::string(one.param.name); });

TEST(CommandTable, HasEveryCommandThatTheEntryPointHandles) {
    std::set<std::string> listed;
    for (const Row& row : TableBelow("Commands")) listed.insert(row.front());
    const std::optional<std::string> source = TextOf(Root() / "src/shell/entry_point.cpp");
    ASSERT_TRUE(source.has_value());
    static const std::regex label(R"(case (?:sdk::)?(PF_Cmd_\w+):)");
    int handled = 0;
    for (std::sregex_iterator it(source->begin(), source->end(), label), end; it != end; ++it) {
        ++handled;
        EXPECT_EQ(listed.count((*it)[1]), 1u) << (*it)[1] << " is not in the table";
    }
    EXPECT_GE(handled, 9);
    const std::optional<std::string> commands = TextOf(Root() / "src/sdk/constants.h");
    ASSERT_TRUE(commands.has_value());
    for (const std::string& command : listed) {
        EXPECT_TRUE(command == "any" || commands->find(" " + command + " = ") != std::string::npos)
            << command << " is no command";
    }
}

TEST(CommandTable, NamesTestsThatExist) {
    for (const Row& row : TableBelow("Commands")) {
        ASSERT_EQ(row.size(), 4u) << row.front();
        EXPECT_FALSE(row[1].empty());
        EXPECT_TRUE(HasTest(row[2], row[3])) << row[0] << ": " << row[1];
    }
}

TEST(ContractReader, TellsAMissingTestFromOneThatIsThere) {
    const std::string file = "structure/contract_table_test.cpp";
    EXPECT_TRUE(HasTest(file, "ContractReader.TellsAMissingTestFromOneThatIsThere"));
    EXPECT_TRUE(HasTest(file, "InterfaceTable.NamesTestsThatExist"));
    EXPECT_FALSE(HasTest(file, "ContractReader.TellsAMissingTest"));
    EXPECT_FALSE(HasTest("structure/no_such_test.cpp", "A.B"));
}

}  // namespace
