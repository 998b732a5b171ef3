#include "tools/vireon/json_tree.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <optional>

#include <nlohmann/json.hpp>

#include "tools/vireon/text_file.h"
#include "tools/vireon/tool_error.h"

namespace vireon::tool {
namespace {

constexpr std::size_t kMaxDepth = 8;
constexpr std::size_t kMaxMembers = 1000;  // each is compared with all before it

/// Where the parser is in the text.
struct Place {
    int line = 1;
    int column = 0;  ///< of the character read last, in bytes
};

/// Reads a text and keeps book on the place; copies share it.
class CountingIterator {
  public:
    using iterator_category = std::input_iterator_tag;
    using value_type = char;
    using difference_type = std::ptrdiff_t;
    using pointer = const char*;
    using reference = const char&;

    CountingIterator(const char* at, Place* place) : at_(at), place_(place) {}

    reference operator*() const { return *at_; }
    CountingIterator& operator++() {
        if (newLine_) {
            ++place_->line;
            place_->column = 0;
        }
        newLine_ = *at_ == '\n';
        ++place_->column;
        ++at_;
        return *this;
    }
    CountingIterator operator++(int) {
        CountingIterator before = *this;
        ++*this;
        return before;
    }
    bool operator==(const CountingIterator& other) const { return at_ == other.at_; }
    bool operator!=(const CountingIterator& other) const { return at_ != other.at_; }

  private:
    const char* at_;
    Place* place_;
    bool newLine_ = false;
};

/// Builds the tree from the parser's events. The parser keeps no stack of calls, nor does this.
class TreeBuilder {
  public:
    TreeBuilder(const std::filesystem::path& path, const Place& place)
        : path_(path), place_(place) {}

    JsonValue take() { return std::move(root_); }

    bool null() { return add({}); }
    bool boolean(bool value) {
        JsonValue added;
        added.kind = JsonValue::Kind::kBool;
        added.boolean = value;
        return add(std::move(added));
    }
    bool number_integer(std::int64_t value) { return addNumber(static_cast<double>(value)); }
    bool number_unsigned(std::uint64_t value) { return addNumber(static_cast<double>(value)); }
    bool number_float(double value, const std::string&) { return addNumber(value); }
    bool string(std::string& value) {
        JsonValue added;
        added.kind = JsonValue::Kind::kText;
        added.text = value;
        return add(std::move(added));
    }
    bool binary(const nlohmann::json::binary_t&) { return false; }  // JSON has no such thing

    bool start_object(std::size_t) { return open(JsonValue::Kind::kObject); }
    bool start_array(std::size_t) { return open(JsonValue::Kind::kList); }
    bool end_object() { return close(); }
    bool end_array() { return close(); }

    bool key(std::string& name) {
        JsonValue& object = *open_.back();
        if (object.member(name) != nullptr) {
            fail(Quoted(name) + " stands there twice");
        }
        if (object.members.size() == kMaxMembers) {
            fail("an object has more than " + std::to_string(kMaxMembers) + " names");
        }
        JsonValue value;
        value.line = place_.line;
        object.members.emplace_back(name, std::move(value));
        return true;
    }

    bool parse_error(std::size_t, const std::string&, const nlohmann::json::exception& error) {
        // "[json...] parse error at line 1, column 2: what was wrong"
        std::string why = error.what();
        if (const std::size_t at = why.find("] "); at != std::string::npos) {
            why.erase(0, at + 2);
        }
        if (why.starts_with("parse error")) {
            why.erase(0, std::min(why.find(": "), why.size() - 2) + 2);
        }
        constexpr std::size_t kMaxShown = 160;
        if (why.size() > kMaxShown) {
            why = why.substr(0, kMaxShown) + "...";
        }
        for (char& c : why) {
            const auto byte = static_cast<unsigned char>(c);
            if (byte < 0x20 || byte >= 0x7F) c = '?';
        }
        fail("this is not JSON: " + why);
    }

  private:
    [[noreturn]] void fail(const std::string& why) const {
        throw ToolError(kInputUnreadable,
                        path_.string() + ": line " + std::to_string(place_.line) + ", column " +
                            std::to_string(std::max(place_.column, 1)) + ": " + why);
    }

    bool addNumber(double value) {
        JsonValue added;
        added.kind = JsonValue::Kind::kNumber;
        added.number = value;
        return add(std::move(added));
    }

    bool add(JsonValue value) {
        place(std::move(value));
        return true;
    }

    JsonValue& place(JsonValue value) {
        value.line = place_.line;
        if (open_.empty()) {
            root_ = std::move(value);
            return root_;
        }
        JsonValue& parent = *open_.back();
        if (parent.kind == JsonValue::Kind::kList) {
            return parent.items.emplace_back(std::move(value));
        }
        JsonValue& member = parent.members.back().second;
        value.line = member.line;
        member = std::move(value);
        return member;
    }

    bool open(JsonValue::Kind kind) {
        if (open_.size() == kMaxDepth) {
            fail("lists and objects are more than " + std::to_string(kMaxDepth) + " deep");
        }
        JsonValue value;
        value.kind = kind;
        // Only the innermost open value grows, so that these addresses stay.
        open_.push_back(&place(std::move(value)));
        return true;
    }

    bool close() {
        open_.pop_back();
        return true;
    }

    const std::filesystem::path& path_;
    const Place& place_;
    JsonValue root_;
    std::vector<JsonValue*> open_;
};

}  // namespace

std::string JsonValue::kindName() const {
    switch (kind) {
        case Kind::kBool: return "true or false";
        case Kind::kNumber: return "a number";
        case Kind::kText: return "a text";
        case Kind::kList: return "a list";
        case Kind::kObject: return "an object";
        default: return "null";
    }
}

const JsonValue* JsonValue::member(const std::string& name) const {
    const auto found = std::find_if(members.begin(), members.end(),
                                    [&name](const auto& entry) { return entry.first == name; });
    return found == members.end() ? nullptr : &found->second;
}

JsonValue ParseJson(const std::string& text, const std::filesystem::path& path) {
    Place place;
    TreeBuilder builder(path, place);
    const CountingIterator begin(text.data(), &place);
    const CountingIterator end(text.data() + text.size(), &place);
    if (text.find_first_not_of(" \t\r\n") == std::string::npos) {
        throw ToolError(kInputUnreadable, path.string() + ": the file is empty");
    }
    nlohmann::json::sax_parse(begin, end, &builder);
    return builder.take();
}

}  // namespace vireon::tool
