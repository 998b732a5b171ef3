#include "tools/vireon/json_tree.h"

#include <string>

#include <gtest/gtest.h>

#include "tests/unit/tool/expect_error.h"

namespace vireon::tool {
namespace {

using Kind = JsonValue::Kind;

std::string Refusal(const std::string& text) {
    const std::string error =
        ExpectError(kInputUnreadable, [&] { ParseJson(text, "looks/a.json"); });
    EXPECT_TRUE(error.starts_with("looks/a.json: ")) << error;
    EXPECT_LT(error.size(), 300u) << error;
    return error;
}

void ExpectRefusal(const std::string& text, const std::string& words) {
    const std::string error = Refusal(text);
    EXPECT_NE(error.find(words), std::string::npos) << "no \"" << words << "\" in: " << error;
}

TEST(JsonTree, HoldsEveryKindWithItsLine) {
    const JsonValue root = ParseJson(
        "{\"a\": 1.5,\n \"b\": [true, null,\n -2],\n\n \"c\": {\"d\":\n \"x\\u00e4\"}, \"e\": "
        "18446744073709551616}",
        "a.json");
    ASSERT_EQ(root.kind, Kind::kObject);
    ASSERT_EQ(root.members.size(), 4u);
    EXPECT_EQ(root.member("a")->number, 1.5);
    EXPECT_EQ(root.member("a")->line, 1);
    const JsonValue& list = *root.member("b");
    ASSERT_EQ(list.kind, Kind::kList);
    ASSERT_EQ(list.items.size(), 3u);
    EXPECT_EQ(list.line, 2);
    EXPECT_TRUE(list.items[0].kind == Kind::kBool && list.items[0].boolean);
    EXPECT_EQ(list.items[1].kind, Kind::kNull);
    EXPECT_EQ(list.items[2].number, -2);
    EXPECT_EQ(list.items[2].line, 3);
    const JsonValue& inner = *root.member("c");
    EXPECT_EQ(inner.line, 5);
    EXPECT_EQ(inner.member("d")->text, "x\xC3\xA4");
    EXPECT_EQ(inner.member("d")->line, 5);  // where the name stands
    EXPECT_EQ(root.member("e")->number, 18446744073709551616.0);
    EXPECT_EQ(root.member("f"), nullptr);
}

TEST(JsonTree, ErrorsSayLineAndColumn) {
    ExpectRefusal("{\n  \"a\": nope}", "line 2, column 9: this is not JSON");
    ExpectRefusal("{\"a\": 1,}", "line 1, column 9");
    ExpectRefusal("{\"a\": 1}\n\n  x", "line 3, column 3");
    ExpectRefusal("{\"a\": \"unfinished", "missing closing quote");
    ExpectRefusal("{\"a\": 1", "line 1, column 7");
    ExpectRefusal("// comment\n{}", "line 1, column 1");
    ExpectRefusal("[\"\xFF\"]", "UTF-8");
    ExpectRefusal(std::string("{\0}", 3), "line 1, column 2");
    ExpectRefusal("\x01\x02\x80", "not JSON");
}

TEST(JsonTree, NothingIsNotJson) {
    ExpectRefusal("", "empty");
    ExpectRefusal(" \n\t\r\n", "empty");
}

TEST(JsonTree, NumbersAreFinite) {
    for (const char* const wrong : {"NaN", "nan", "Infinity", "-Infinity", "1e999", "-1e999"}) {
        ExpectRefusal(std::string("{\"a\": ") + wrong + "}", "line 1, column");
    }
    EXPECT_EQ(ParseJson("1e308", "a.json").number, 1e308);
}

TEST(JsonTree, ANameStandsOnce) {
    ExpectRefusal("{\"a\": 1,\n \"b\": {\"a\": 1},\n \"a\": 2}", "line 3, column 4: \"a\" stands");
    // The same name by another spelling.
    ExpectRefusal("{\"a\": 1, \"\\u0061\": 2}", "\"a\" stands there twice");
}

TEST(JsonTree, DepthAndWidthAreBounded) {
    const std::string eight(8, '[');
    EXPECT_EQ(ParseJson(eight + std::string(8, ']'), "a.json").kind, Kind::kList);
    ExpectRefusal(eight + "[" + std::string(9, ']'), "column 9: lists and objects are more than 8");
    ExpectRefusal(std::string(1000000, '['), "more than 8 deep");
    std::string wide = "{";
    for (int i = 0; i < 1001; ++i) {
        wide += '"' + std::to_string(i) + "\": 1, ";
    }
    ExpectRefusal(wide, "more than 1000 names");
}

TEST(JsonTree, LongGarbageIsShortened) {
    Refusal("{\"a\": \"" + std::string(500000, 'k'));
    Refusal("{\"" + std::string(500000, 'k') + "\": 1, \"" + std::string(500000, 'k') + "\": 1}");
}

}  // namespace
}  // namespace vireon::tool
