#include "tests/pictures/golden_cases.h"

#include <algorithm>
#include <fstream>
#include <initializer_list>
#include <iterator>
#include <set>
#include <stdexcept>

#include <nlohmann/json.hpp>

namespace vireon::pictures {
namespace {

// Parameters keep the order in which they are written, for commands that read like the list.
using Json = nlohmann::ordered_json;

void RejectOthers(const Json& object, std::initializer_list<const char*> known) {
    for (const auto& item : object.items()) {
        if (std::find(known.begin(), known.end(), item.key()) == known.end()) {
            throw std::runtime_error("there is no field \"" + item.key() + "\"");
        }
    }
}

SceneInput ParseInput(const Json& object) {
    SceneInput input;
    input.scene = object.at("scene").get<std::string>();
    const Json& size = object.at("size");
    if (!size.is_array() || size.size() != 2) {
        throw std::runtime_error("\"size\" is not [width, height]");
    }
    input.width = size[0].get<std::int32_t>();
    input.height = size[1].get<std::int32_t>();
    if (object.contains("frame")) input.frame = object["frame"].get<std::int32_t>();
    return input;
}

bool IsFileName(const std::string& name) {
    return !name.empty() &&
           name.find_first_not_of("abcdefghijklmnopqrstuvwxyz0123456789-") == std::string::npos;
}

GoldenCase ParseCase(const Json& object) {
    RejectOthers(object, {"name", "shows", "scene", "size", "frame", "depth", "downsample",
                          "parameters", "layers"});
    GoldenCase found;
    found.name = object.at("name").get<std::string>();
    if (!IsFileName(found.name)) {
        throw std::runtime_error("\"name\" may hold small letters, digits and hyphens");
    }
    found.shows = object.at("shows").get<std::string>();
    found.input = ParseInput(object);
    found.bits = object.value("depth", 8);
    if (found.bits != 8 && found.bits != 16 && found.bits != 32) {
        throw std::runtime_error("\"depth\" is not 8, 16 or 32");
    }
    found.downsample = object.value("downsample", 1);
    if (found.downsample < 1) throw std::runtime_error("\"downsample\" is below 1");
    if (object.contains("parameters")) {
        for (const auto& item : object["parameters"].items()) {
            found.parameters.emplace_back(item.key(), item.value().get<std::string>());
        }
    }
    if (object.contains("layers")) {
        for (const auto& item : object["layers"].items()) {
            RejectOthers(item.value(), {"scene", "size", "frame"});
            found.layers.emplace_back(item.key(), ParseInput(item.value()));
        }
    }
    return found;
}

}  // namespace

std::vector<GoldenCase> ParseGoldenCases(const std::string& text) {
    std::vector<GoldenCase> cases;
    std::set<std::string> names;
    const Json list = Json::parse(text);
    if (!list.is_array() || list.empty()) throw std::runtime_error("the list holds no cases");
    for (const Json& object : list) {
        const std::string name =
            object.is_object() && object.contains("name") ? object["name"].dump() : object.dump();
        try {
            cases.push_back(ParseCase(object));
            if (!names.insert(cases.back().name).second) {
                throw std::runtime_error("the name is used twice");
            }
        } catch (const std::exception& error) {
            throw std::runtime_error("case " + name + ": " + error.what());
        }
    }
    return cases;
}

std::vector<GoldenCase> ReadGoldenCases(const std::filesystem::path& file) {
    std::ifstream stream(file);
    if (!stream) throw std::runtime_error("cannot read " + file.string());
    return ParseGoldenCases({std::istreambuf_iterator<char>(stream), {}});
}

}  // namespace vireon::pictures
