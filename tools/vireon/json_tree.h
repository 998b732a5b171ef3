#pragma once

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

namespace vireon::tool {

/// A value of a JSON file with the place where it stands, for messages that a person can act on.
struct JsonValue {
    enum class Kind { kNull, kBool, kNumber, kText, kList, kObject };

    Kind kind = Kind::kNull;
    bool boolean = false;
    double number = 0;
    std::string text;
    std::vector<JsonValue> items;
    std::vector<std::pair<std::string, JsonValue>> members;  ///< in the file's order
    int line = 1;  ///< where the value begins; the value of a member: where its name stands

    /// "a number", "true or false", "a text", "a list", "an object" or "null".
    std::string kindName() const;
    /// The member of an object; null when there is none.
    const JsonValue* member(const std::string& name) const;
};

/// Reads a text as JSON, strictly: UTF-8, no comments, no name twice and no more than 1000 names
/// in one object, lists and objects at most eight deep, numbers finite. `path` is only for the
/// messages, which name line and column. Throws ToolError (kInputUnreadable).
JsonValue ParseJson(const std::string& text, const std::filesystem::path& path);

}  // namespace vireon::tool
