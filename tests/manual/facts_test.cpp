// The manual's pages hold a table of facts for every parameter. They are held to what the effect
// tells a host, so that a parameter, a range, a default or a choice that changes, or is forgotten,
// fails here.

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <map>
#include <nlohmann/json.hpp>
#include <regex>
#include <set>
#include <string>
#include <vector>

#include "tests/manual/pages.h"
#include "tests/tool/program.h"

namespace vireon::manual {
namespace {

using Json = nlohmann::json;

constexpr char kSeparator[] = "(-";
const std::vector<std::string> kFactColumns{"Range", "Slider", "Default", "Unit", "Command line"};

Json Described() {
    const tool::Outcome outcome = tool::Vireon({"describe", "--json"});
    EXPECT_EQ(outcome.code(), 0) << outcome.errors;
    return Json::parse(outcome.output);
}

std::vector<Json> Parameters() {
    const Json described = Described();
    std::vector<Json> parameters;
    for (const Json& parameter : described.at("parameters")) {
        const std::string kind = parameter.at("kind");
        const bool isGroup = kind == "group start" || kind == "group end";
        if (!isGroup && parameter.at("index") != 0) parameters.push_back(parameter);
    }
    EXPECT_EQ(parameters.size(), 24u);
    return parameters;
}

// As a person writes it: the records hold floats, 0.1 among them.
std::string Written(double number) {
    char text[32];
    std::snprintf(text, sizeof text, "%.6g", number);
    return text;
}

std::string RangeText(const Json& limits) {
    return Written(limits.at(0)) + " to " + Written(limits.at(1));
}

std::vector<std::string> ChoicesOf(const Json& parameter) {
    std::vector<std::string> choices;
    for (const std::string choice : parameter.at("choices")) {
        if (choice != kSeparator) choices.push_back(choice);
    }
    return choices;
}

// Range, slider and default as the manual should have them.
std::vector<std::string> FactsOf(const Json& parameter) {
    const std::string kind = parameter.at("kind");
    if (kind == "layer") return {"a layer", "", "none"};
    if (kind == "checkbox") {
        return {"on or off", "", parameter.at("default").get<bool>() ? "on" : "off"};
    }
    if (kind == "popup") {
        const Json& lines = parameter.at("choices");
        const auto place = static_cast<std::size_t>(parameter.at("default").get<double>());
        return {std::to_string(ChoicesOf(parameter).size()) + " choices", "", lines.at(place - 1)};
    }
    if (kind == "point") {
        const Json& percent = parameter.at("default_percent");
        return {"X, Y", "", Written(percent.at(0)) + "%, " + Written(percent.at(1)) + "%"};
    }
    return {RangeText(parameter.at("valid")), RangeText(parameter.at("slider")),
            Written(parameter.at("default"))};
}

std::string OptionOf(const Json& parameter) {
    const std::string name = parameter.at("name");
    if (parameter.at("kind") == "layer") {
        std::string first = name.substr(0, name.find(' '));
        std::transform(first.begin(), first.end(), first.begin(),
                       [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
        return "`--layer " + first + "=FILE`";
    }
    std::string option = "`--";
    for (const char c : name) {
        option += c == ' ' ? '-' : static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    }
    return option + '`';
}

// The row under the table head of facts; empty when the section has no such table.
std::vector<std::string> FactsIn(const Section& section) {
    for (std::size_t i = 0; i + 2 < section.lines.size(); ++i) {
        if (CellsOf(section.lines[i]) == kFactColumns) return CellsOf(section.lines[i + 2]);
    }
    return {};
}

std::multimap<std::string, Section> SectionsWithFacts() {
    std::multimap<std::string, Section> sections;
    for (const Page& page : ReadPages()) {
        for (const Section& section : page.sections) {
            if (!FactsIn(section).empty()) sections.emplace(section.heading, section);
        }
    }
    return sections;
}

// Whether the text names a choice as a whole: "Color" is not named by "Color Dodge".
bool Names(const Section& section, const std::string& choice,
           const std::vector<std::string>& choices) {
    std::string text;
    for (const std::string& line : section.lines) text += line + '\n';
    for (const std::string& other : choices) {
        if (other == choice || other.find(choice) == std::string::npos) continue;
        for (std::size_t at; (at = text.find(other)) != std::string::npos;) {
            text.erase(at, other.size());
        }
    }
    const auto isWord = [](char c) { return std::isalnum(static_cast<unsigned char>(c)) != 0; };
    for (std::size_t at = text.find(choice); at != std::string::npos;
         at = text.find(choice, at + 1)) {
        const bool begins = at == 0 || !isWord(text[at - 1]);
        const std::size_t end = at + choice.size();
        if (begins && (end == text.size() || !isWord(text[end]))) return true;
    }
    return false;
}

TEST(ManualFacts, EveryParameterHasItsSectionWithTheEffectsOwnNumbers) {
    const std::multimap<std::string, Section> sections = SectionsWithFacts();
    const std::vector<Json> parameters = Parameters();
    for (const Json& parameter : parameters) {
        const std::string name = parameter.at("name");
        ASSERT_EQ(sections.count(name), 1u) << "sections with facts about " << name;
        const Section& section = sections.find(name)->second;
        const std::vector<std::string> facts = FactsIn(section);
        ASSERT_EQ(facts.size(), kFactColumns.size()) << name;
        const std::vector<std::string> wanted = FactsOf(parameter);
        for (std::size_t i = 0; i < wanted.size(); ++i) {
            EXPECT_EQ(facts[i], wanted[i]) << name << ", " << kFactColumns[i];
        }
        EXPECT_EQ(facts[4], OptionOf(parameter)) << name;
    }
}

TEST(ManualFacts, EveryChoiceIsNamedWhereItsParameterIs) {
    const std::multimap<std::string, Section> sections = SectionsWithFacts();
    int choicesSeen = 0;
    for (const Json& parameter : Parameters()) {
        if (parameter.at("kind") != "popup") continue;
        const auto section = sections.find(parameter.at("name"));
        ASSERT_NE(section, sections.end()) << parameter.at("name");
        const std::vector<std::string> choices = ChoicesOf(parameter);
        for (const std::string& choice : choices) {
            EXPECT_TRUE(Names(section->second, choice, choices))
                << section->first << " does not name \"" << choice << '"';
            ++choicesSeen;
        }
    }
    EXPECT_EQ(choicesSeen, 14 + 5 + 7 + 3 + 6 + 19);
}

TEST(ManualFacts, NoSectionHasFactsAboutAParameterThatIsNone) {
    std::set<std::string> names;
    for (const Json& parameter : Parameters()) names.insert(parameter.at("name"));
    for (const auto& [heading, section] : SectionsWithFacts()) {
        EXPECT_TRUE(names.contains(heading)) << heading;
    }
}

TEST(ManualFacts, EveryParameterIsShownInPicturesOrByACommand) {
    std::map<std::string, Section> sections;
    for (const auto& [heading, section] : SectionsWithFacts()) sections.emplace(heading, section);
    for (const Json& parameter : Parameters()) {
        const std::string option = OptionOf(parameter);
        // Without the quotes of code, and a layer's option without its file.
        const std::string words = option.substr(1, option.find_first_of("=`", 1) - 1);
        const auto section = sections.find(parameter.at("name"));
        ASSERT_NE(section, sections.end()) << parameter.at("name");
        const auto shows = [&](const std::string& line) {
            return !line.starts_with("| ") && line.find(words) != std::string::npos;
        };
        EXPECT_TRUE(std::any_of(section->second.lines.begin(), section->second.lines.end(), shows))
            << section->first << " shows no use of " << words;
    }
}

}  // namespace
}  // namespace vireon::manual
