// The page that explains codes and messages has to know all of them.

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <regex>
#include <set>
#include <sstream>
#include <string>

namespace {

namespace fs = std::filesystem;

fs::path Root() {
    const char* root = std::getenv("VIREON_SOURCE_DIR");
    return root != nullptr ? root : ".";
}

std::string TextOf(const fs::path& file) {
    std::ifstream stream(file);
    std::stringstream text;
    text << stream.rdbuf();
    return text.str();
}

std::set<std::string> Matches(const std::string& text, const std::regex& pattern) {
    std::set<std::string> found;
    for (std::sregex_iterator match(text.begin(), text.end(), pattern), end; match != end;
         ++match) {
        found.insert((*match)[1]);
    }
    return found;
}

TEST(ErrorPage, KnowsEveryResultThatTheEffectGivesByItself) {
    const std::string page = TextOf(Root() / "docs/errors.md");
    const auto codes = Matches(TextOf(Root() / "src/host/result_codes.h"),
                               std::regex(R"(inline constexpr std::int32_t k\w+ = (\d+);)"));
    ASSERT_GE(codes.size(), 6u);
    for (const std::string& code : codes) {
        EXPECT_NE(page.find("\n| " + code + " |"), std::string::npos) << code;
    }
}

TEST(ErrorPage, KnowsEveryMessageThatTheEffectShows) {
    const std::string page = TextOf(Root() / "docs/errors.md");
    std::set<std::string> messages;
    for (const auto& entry : fs::recursive_directory_iterator(Root() / "src")) {
        if (entry.path().extension() != ".cpp") continue;
        messages.merge(Matches(
            TextOf(entry.path()),
            std::regex(R"rx("((?:Couldn't|Failed to|Not able to|Cannot) [^"%]*[^"% ]))rx")));
    }
    ASSERT_GE(messages.size(), 7u);
    for (const std::string& message : messages) {
        EXPECT_NE(page.find('`' + message), std::string::npos) << message;
    }
}

}  // namespace
