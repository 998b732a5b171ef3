#include "tools/vireon/commands/brush_show.h"

#include <cstdio>
#include <filesystem>

#include <nlohmann/json.hpp>

#include "tools/vireon/brush_figures.h"
#include "tools/vireon/brush_findings.h"
#include "tools/vireon/brush_picture.h"
#include "tools/vireon/output_file.h"
#include "tools/vireon/picture_writer.h"
#include "tools/vireon/tool_error.h"

namespace vireon::tool {
namespace {

void PrintText(const std::string& file, const BrushFigures& figures) {
    std::printf("%s\n", file.c_str());
    std::printf("  sum            %.6g\n", figures.sum);
    std::printf("  peak           %.6g at (%d, %d)\n", figures.peak, figures.peakX, figures.peakY);
    std::printf("  smallest       %.6g\n", figures.smallest);
    std::printf("  centre offset  %+.3f across, %+.3f down, in texels from (%d, %d)\n",
                figures.offsetX, figures.offsetY, kBrushCentre, kBrushCentre);
    std::printf("  zero rows      %d\n", figures.zeroRows);
    std::printf("  rim            %.6g at most, at distance %d and beyond\n", figures.rim,
                kBrushRim);
    for (std::size_t i = 0; i < kShareRadii.size(); ++i) {
        std::printf("  within %-3d     %.2f %% of the sum\n", kShareRadii[i],
                    100 * figures.share[i]);
    }
}

nlohmann::ordered_json Json(const std::string& file, const BrushFigures& figures) {
    nlohmann::ordered_json json;
    json["file"] = file;
    json["sum"] = figures.sum;
    json["peak"] = {{"value", figures.peak}, {"x", figures.peakX}, {"y", figures.peakY}};
    json["smallest"] = figures.smallest;
    json["centre_offset"] = {figures.offsetX, figures.offsetY};
    json["zero_rows"] = figures.zeroRows;
    json["rim"] = figures.rim;
    for (std::size_t i = 0; i < kShareRadii.size(); ++i) {
        json["share_within"][std::to_string(kShareRadii[i])] = figures.share[i];
    }
    return json;
}

}  // namespace

BrushShowCommand::BrushShowCommand(CLI::App& brush)
    : command_(brush.add_subcommand("show", "Print figures of brush files and draw them")) {
    command_->add_option("FILE", files_, "Brush files")->type_name("")->required();
    command_
        ->add_option("-o,--output", picture_, "Picture to write; its extension chooses the format")
        ->type_name("PICTURE");
    command_->add_flag("--json", json_, "Print the figures as JSON");
    command_->add_flag("--quiet", quiet_, "No notes");
    command_->footer(
        "The picture shows each brush three times: tone-mapped by the fourth root of a texel's "
        "share\nof the peak, so that faint tails show (a hundred thousandth of the peak is a "
        "twentieth of\nwhite; values below 0 are blue); as the share itself; and as profiles over "
        "the distance from\nthe centre, on a logarithmic scale. The sum is the light that a bright "
        "pixel throws.");
}

void BrushShowCommand::run() {
    if (!picture_.empty()) {
        CheckOutputFormat(picture_);
        CheckOutputPlace(picture_);
        if (files_.size() > kMostBrushesShown) {
            throw ToolError(kBadCommandLine, "a picture shows up to " +
                                                 std::to_string(kMostBrushesShown) +
                                                 " brushes; name fewer files");
        }
    }
    std::vector<NamedBrush> brushes;
    for (const std::string& file : files_) {
        std::error_code error;
        if (!picture_.empty() && std::filesystem::equivalent(file, picture_, error)) {
            throw ToolError(kBadCommandLine, file + " is brush and picture at once");
        }
        BrushReport report = InspectBrush(file);
        if (!report.kernel.hasTexels()) {
            throw ToolError(kShapesMissing, "cannot show " + file + ": it " + FirstFault(report));
        }
        if (!quiet_) {
            for (const BrushFinding& finding : report.findings) {
                const std::string line =
                    finding.line > 0 ? ":" + std::to_string(finding.line) : std::string();
                std::fprintf(stderr, "vireon: note: %s%s: it %s\n", file.c_str(), line.c_str(),
                             finding.text.c_str());
            }
        }
        brushes.push_back(
            {std::filesystem::path(file).filename().string(), std::move(report.kernel)});
    }
    if (!picture_.empty()) {
        PictureFile style;  // nothing to carry over: an ordinary picture of 8 bits
        std::vector<std::string> notes;
        WritePictureFile(picture_, DrawBrushes(brushes), style, notes);
    }
    auto json = nlohmann::ordered_json::array();
    for (std::size_t i = 0; i < brushes.size(); ++i) {
        const BrushFigures figures = FiguresOf(brushes[i].kernel);
        if (json_) {
            json.push_back(Json(files_[i], figures));
        } else {
            PrintText(files_[i], figures);
        }
    }
    if (json_) {
        std::puts(
            json.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace).c_str());
    }
}

}  // namespace vireon::tool
