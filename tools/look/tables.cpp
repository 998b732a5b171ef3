#include "tools/look/tables.h"

#include <cmath>
#include <cstdio>
#include <initializer_list>

namespace vireon::look {

namespace {

// A ratio to a glow that is not there has no number.
constexpr const char* kNone = "none";

std::string Number(double value, int decimals) {
    if (!std::isfinite(value)) return kNone;
    char text[64];
    std::snprintf(text, sizeof text, "%.*f", decimals, value);
    return text;
}

std::string Percent(double value, int decimals = 2) {
    return std::isfinite(value) ? Number(100.0 * value, decimals) + " %" : kNone;
}

std::string Row(const std::vector<std::string>& cells) {
    std::string line = "|";
    for (const std::string& cell : cells) line += " " + cell + " |";
    return line + "\n";
}

std::string Head(const std::string& heading, const std::vector<std::string>& columns) {
    std::string text = "\n## " + heading + "\n\n" + Row(columns) + "|---|";
    for (std::size_t i = 1; i < columns.size(); ++i) text += "---:|";
    return text + "\n";
}

}  // namespace

std::string MarkdownOf(const Measures& measures, const Subject& subject) {
    const double scale = subject.height / 1080.0;
    std::string text = "Scenes of " + std::to_string(subject.width) + "x" +
                       std::to_string(subject.height) + " pixels, Glow Radius " +
                       Number(100.0 * scale, 1) + ", Glow Intensity " +
                       Number(10.0 / (scale * scale), 1) + " %.\n";

    text += Head("Brightness at the default settings",
                 {"scene", "mean before", "mean after", "ratio", "white before", "white after"});
    for (const BrightnessRow& row : measures.brightness) {
        text += Row({row.scene, Number(row.before.mean, 4), Number(row.after.mean, 4),
                     Number(row.after.mean / row.before.mean, 3), Percent(row.before.white),
                     Percent(row.after.white)});
    }
    text += Head("Halo of a white lamp at 1:1",
                 {"lamp radius", "light 2 to 10 px out", "10 to 30 px out"});
    for (const HaloRow& row : measures.halos) {
        text += Row({Number(row.lamp, 0) + " px", Number(row.near, 4), Number(row.far, 4)});
    }
    std::vector<std::string> columns{"shape"};
    columns.insert(columns.end(), measures.shapes.scenes.begin(), measures.shapes.scenes.end());
    text += Head("Light of the glow by shape (1 = mean of all shapes)", columns);
    for (const ShapeRow& row : measures.shapes.rows) {
        std::vector<std::string> cells{row.shape};
        for (const double light : row.light) cells.push_back(Number(light, 3));
        text += Row(cells);
    }
    std::vector<std::string> spread{"largest over smallest"};
    for (const double value : measures.shapes.spread) {
        spread.push_back(std::isfinite(value) ? "+" + Percent(value) : kNone);
    }
    text += Row(spread);

    text += Head("Flicker of the glow's light over the moving scene",
                 {"Quality", "mean change", "largest change"});
    for (const FlickerRow& row : measures.flicker) {
        text += Row({row.quality, Percent(row.mean), Percent(row.most)});
    }
    text += Head("Previews against the reduced full render",
                 {"scene", "resolution", "mean difference", "largest", "brightness ratio"});
    for (const PreviewRow& row : measures.previews) {
        text += Row({row.scene, "1/" + std::to_string(row.factor), Percent(row.difference.mean),
                     Percent(row.difference.most), Number(row.brightness, 4)});
    }
    text += Head("Quality against 1:1", {"scene", "Quality", "processor time", "mean difference",
                                         "largest", "light of the glow"});
    for (const QualityRow& row : measures.qualities) {
        text +=
            Row({row.scene, row.quality, Number(row.milliseconds, 1) + " ms",
                 Percent(row.difference.mean), Percent(row.difference.most), Number(row.light, 4)});
    }
    return text;
}

nlohmann::ordered_json JsonOf(const Measures& measures, const Subject& subject) {
    using Json = nlohmann::ordered_json;
    Json json;
    json["width"] = subject.width;
    json["height"] = subject.height;
    json["brightness"] = Json::array();
    for (const BrightnessRow& row : measures.brightness) {
        json["brightness"].push_back({{"scene", row.scene},
                                      {"meanBefore", row.before.mean},
                                      {"meanAfter", row.after.mean},
                                      {"whiteBefore", row.before.white},
                                      {"whiteAfter", row.after.white}});
    }
    json["halos"] = Json::array();
    for (const HaloRow& row : measures.halos) {
        json["halos"].push_back({{"lampRadius", row.lamp}, {"near", row.near}, {"far", row.far}});
    }
    json["shapes"] = Json::array();
    for (std::size_t i = 0; i < measures.shapes.scenes.size(); ++i) {
        Json light;
        for (const ShapeRow& row : measures.shapes.rows) light[row.shape] = row.light[i];
        json["shapes"].push_back({{"scene", measures.shapes.scenes[i]},
                                  {"light", light},
                                  {"spread", measures.shapes.spread[i]}});
    }
    json["flicker"] = Json::array();
    for (const FlickerRow& row : measures.flicker) {
        json["flicker"].push_back(
            {{"quality", row.quality}, {"meanChange", row.mean}, {"largestChange", row.most}});
    }
    json["previews"] = Json::array();
    for (const PreviewRow& row : measures.previews) {
        json["previews"].push_back({{"scene", row.scene},
                                    {"factor", row.factor},
                                    {"meanDifference", row.difference.mean},
                                    {"largestDifference", row.difference.most},
                                    {"brightness", row.brightness}});
    }
    json["qualities"] = Json::array();
    for (const QualityRow& row : measures.qualities) {
        json["qualities"].push_back({{"scene", row.scene},
                                     {"quality", row.quality},
                                     {"milliseconds", row.milliseconds},
                                     {"meanDifference", row.difference.mean},
                                     {"largestDifference", row.difference.most},
                                     {"light", row.light}});
    }
    return json;
}

}  // namespace vireon::look
