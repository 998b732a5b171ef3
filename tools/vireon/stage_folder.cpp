#include "tools/vireon/stage_folder.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <set>
#include <span>
#include <string_view>
#include <system_error>

#include <OpenImageIO/filesystem.h>
#include <nlohmann/json.hpp>

#include "tools/vireon/contact_sheet.h"
#include "tools/vireon/json_tree.h"
#include "tools/vireon/output_file.h"
#include "tools/vireon/picture_writer.h"
#include "tools/vireon/samples.h"
#include "tools/vireon/stages.h"
#include "tools/vireon/text_file.h"
#include "tools/vireon/tool_error.h"

namespace vireon::tool {

namespace fs = std::filesystem;
using headless::Picture;
using Json = nlohmann::ordered_json;

namespace {

constexpr char kListName[] = "stages.json";
constexpr char kSheetName[] = "contact-sheet.png";
constexpr std::size_t kMaxListBytes = 1u << 20;

const char* PictureExtension(std::int32_t bits) {
    return bits == 32 ? ".exr" : ".png";
}

std::string FileName(const StagePicture& stage) {
    return stage.file + (stage.isData ? ".exr" : PictureExtension(stage.picture.bits));
}

/// Every name that a stage can have as a file.
std::set<std::string> PossibleNames() {
    std::set<std::string> names{kListName, kSheetName};
    for (const std::string& stage : StageNames()) {
        names.insert(stage + ".exr");
        names.insert(stage + ".png");
    }
    return names;
}

std::span<const std::uint8_t> BytesOf(std::string_view text) {
    return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

/// The number format of the render in place of the file's, everything else as the file has it.
PictureFile KindOf(const PictureFile& source, std::int32_t bits) {
    PictureFile kind;
    kind.width = source.width;
    kind.height = source.height;
    kind.format = bits == 8    ? SampleFormat::k8
                  : bits == 16 ? SampleFormat::k16
                               : SampleFormat::kFloat;
    kind.isGrey = source.isGrey;
    kind.hasAlpha = source.hasAlpha;
    kind.isAssociated = source.isAssociated;
    kind.pixelAspect = source.pixelAspect;
    kind.fileFormat = source.fileFormat;
    kind.metadata = source.metadata;
    return kind;
}

/// Red, green, blue and alpha of a float picture as they stand.
std::vector<float> Values(const Picture& picture) {
    std::vector<float> values(picture.pixels.size() / sizeof(float));
    std::memcpy(values.data(), picture.pixels.data(), picture.pixels.size());
    for (std::size_t i = 0; i + 3 < values.size(); i += 4) {
        std::rotate(values.begin() + static_cast<std::ptrdiff_t>(i),
                    values.begin() + static_cast<std::ptrdiff_t>(i + 1),
                    values.begin() + static_cast<std::ptrdiff_t>(i + 4));
    }
    return values;
}

void WriteData(const fs::path& path, const Picture& picture) {
    OIIO::ImageSpec spec(picture.width, picture.height, 4, OIIO::TypeDesc::FLOAT);
    spec.attribute("oiio:UnassociatedAlpha", 1);
    const auto writer = OIIO::ImageOutput::create(path.filename().string());
    OIIO::Filesystem::IOVecOutput buffer;
    const std::vector<float> values = Values(picture);
    if (writer == nullptr || !writer->set_ioproxy(&buffer) ||
        !writer->open(path.filename().string(), spec) ||
        !writer->write_image(OIIO::TypeDesc::FLOAT, values.data()) || !writer->close()) {
        const std::string reason = writer != nullptr ? writer->geterror() : OIIO::geterror();
        throw ToolError(kOutputFailed, "cannot write " + path.string() + ": " +
                                           reason.substr(0, reason.find('\n')));
    }
    WriteFileWhole(path, buffer.buffer());
}

/// What a channel holds; values that are not finite are only counted.
struct ChannelRange {
    double min = 0;
    double max = 0;
    double sum = 0;
    std::int64_t finite = 0;
    std::int64_t other = 0;

    void add(double value) {
        if (!std::isfinite(value)) {
            ++other;
            return;
        }
        min = finite == 0 ? value : std::min(min, value);
        max = finite == 0 ? value : std::max(max, value);
        sum += value;
        ++finite;
    }
    Json json() const {
        Json entry;
        entry["min"] = finite > 0 ? Json(min) : Json(nullptr);
        entry["max"] = finite > 0 ? Json(max) : Json(nullptr);
        entry["mean"] = finite > 0 ? Json(sum / static_cast<double>(finite)) : Json(nullptr);
        if (other > 0) entry["not_finite"] = other;
        return entry;
    }
};

Json StageJson(const StagePicture& stage) {
    std::array<ChannelRange, 4> ranges;
    for (std::int32_t y = 0; y < stage.picture.height; ++y) {
        for (std::int32_t x = 0; x < stage.picture.width; ++x) {
            const Color color = PixelAt(stage.picture, x, y);
            ranges[0].add(color.red);
            ranges[1].add(color.green);
            ranges[2].add(color.blue);
            ranges[3].add(color.alpha);
        }
    }
    Json json;
    json["file"] = FileName(stage);
    json["stage"] = stage.title;
    json["shows"] = stage.text;
    json["width"] = stage.picture.width;
    json["height"] = stage.picture.height;
    json["bits"] = stage.picture.bits;
    json["red"] = ranges[0].json();
    json["green"] = ranges[1].json();
    json["blue"] = ranges[2].json();
    json["alpha"] = ranges[3].json();
    return json;
}

/// The stages that an earlier call left in the folder, by its own list.
std::set<std::string> FormerFiles(const fs::path& folder) {
    std::set<std::string> files;
    std::error_code error;
    if (!fs::is_regular_file(folder / kListName, error)) {
        return files;
    }
    try {
        const fs::path path = folder / kListName;
        const JsonValue list = ParseJson(ReadTextFile(path, kMaxListBytes), path);
        const JsonValue* const stages = list.member("stages");
        const std::set<std::string> possible = PossibleNames();
        for (const JsonValue& stage : stages != nullptr ? stages->items : list.items) {
            const JsonValue* const file = stage.member("file");
            if (file != nullptr && possible.contains(file->text)) {
                files.insert(file->text);
            }
        }
    } catch (const ToolError&) {
        return {};  // not a list of ours: nothing of the folder is
    }
    return files;
}

}  // namespace

void CheckStageFolder(const fs::path& folder, const std::vector<fs::path>& others) {
    std::error_code error;
    if (fs::exists(folder, error) && !fs::is_directory(folder, error)) {
        throw ToolError(kOutputFailed,
                        "cannot write stages into " + folder.string() + ": it is no folder");
    }
    // For a folder that is to be made, the place beside it must allow it.
    const bool exists = fs::is_directory(folder, error);
    const fs::path absolute = fs::absolute(folder).lexically_normal();
    const fs::path trimmed = absolute.has_filename() ? absolute : absolute.parent_path();
    CheckOutputPlace(exists ? folder / kListName : trimmed);
    const std::set<std::string> names = PossibleNames();
    for (const fs::path& other : others) {
        const fs::path place = fs::absolute(other).lexically_normal();
        if (names.contains(place.filename().string()) &&
            fs::weakly_canonical(place.parent_path(), error) ==
                fs::weakly_canonical(trimmed, error)) {
            throw ToolError(kBadCommandLine, "--stages: " + other.string() +
                                                 " has the name of a stage; choose another folder");
        }
    }
}

void WriteStageFolder(const fs::path& folder, const std::vector<StagePicture>& stages,
                      const PictureFile& source, std::vector<std::string>& notes) {
    std::error_code error;
    fs::create_directory(folder, error);
    if (error) {
        throw ToolError(kOutputFailed,
                        "cannot make the folder " + folder.string() + ": " + error.message());
    }
    std::set<std::string> former = FormerFiles(folder);
    Json list;
    list["stages"] = Json::array();
    for (const StagePicture& stage : stages) {
        const std::string name = FileName(stage);
        if (stage.isData) {
            WriteData(folder / name, stage.picture);
        } else {
            WritePictureFile(folder / name, stage.picture, KindOf(source, stage.picture.bits),
                             notes);
        }
        list["stages"].push_back(StageJson(stage));
        former.erase(name);
    }
    WriteFileWhole(folder / kSheetName, ContactSheet(stages, notes));
    const std::string text = list.dump(2) + "\n";
    WriteFileWhole(folder / kListName, BytesOf(text));
    for (const std::string& name : former) {
        fs::remove(folder / name, error);
    }
}

}  // namespace vireon::tool
