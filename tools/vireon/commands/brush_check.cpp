#include "tools/vireon/commands/brush_check.h"

#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "tools/vireon/brush_findings.h"
#include "tools/vireon/brush_folder.h"
#include "tools/vireon/tool_error.h"

namespace vireon::tool {
namespace {

struct Totals {
    int faults = 0;
    int warnings = 0;
};

std::string Counted(int count, const std::string& what) {
    return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

std::string Verdict(const BrushReport& report) {
    const int faults = report.faults();
    const int warnings = report.warnings();
    if (faults + warnings == 0) {
        return "ok";
    }
    return (faults > 0 ? Counted(faults, "fault") : "") + (faults > 0 && warnings > 0 ? ", " : "") +
           (warnings > 0 ? Counted(warnings, "warning") : "");
}

void PrintText(const std::filesystem::path& path, const std::vector<BrushFileReport>& files) {
    std::printf("brush files in %s\n", path.c_str());
    for (const BrushFileReport& file : files) {
        std::printf("  %-22s %-22s %s\n", file.file.c_str(),
                    file.shape.empty() ? "-" : file.shape.c_str(), Verdict(file.report).c_str());
    }
    for (const BrushFileReport& file : files) {
        for (const BrushFinding& finding : file.report.findings) {
            const std::string line = finding.line > 0 ? ":" + std::to_string(finding.line) : "";
            std::printf("%s%s: %s: it %s\n", file.file.c_str(), line.c_str(),
                        finding.isFault ? "fault" : "warning", finding.text.c_str());
        }
    }
}

template <typename Value>
nlohmann::ordered_json OrNull(bool isKnown, const Value& value) {
    return isKnown ? nlohmann::ordered_json(value) : nlohmann::ordered_json();
}

void PrintJson(const std::filesystem::path& path, const std::vector<BrushFileReport>& files,
               const Totals& totals) {
    nlohmann::ordered_json json;
    json["path"] = path.string();
    json["faults"] = totals.faults;
    json["warnings"] = totals.warnings;
    json["files"] = nlohmann::ordered_json::array();
    for (const BrushFileReport& file : files) {
        nlohmann::ordered_json entry;
        entry["file"] = file.file;
        entry["shape"] = OrNull(!file.shape.empty(), file.shape);
        entry["usable"] = file.report.kernel.hasTexels();
        entry["findings"] = nlohmann::ordered_json::array();
        for (const BrushFinding& finding : file.report.findings) {
            nlohmann::ordered_json item;
            item["kind"] = finding.isFault ? "fault" : "warning";
            item["line"] = OrNull(finding.line > 0, finding.line);
            item["text"] = finding.text;
            entry["findings"].push_back(item);
        }
        json["files"].push_back(entry);
    }
    std::puts(json.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace).c_str());
}

}  // namespace

BrushCheckCommand::BrushCheckCommand(CLI::App& brush)
    : command_(brush.add_subcommand("check", "Judge brush files as the effect reads them")) {
    command_
        ->add_option("FOLDER", path_,
                     "Folder of brush files, or a single one\n"
                     "(default: the folder that the effect reads: ORVANTE_QUILLON_SVG_DIR, or\n"
                     "Vireon/Brush beside the plug-in)")
        ->type_name("");
    command_->add_option("--plugin", plugin_.plugin, "Effect beside which the default folder lies")
        ->type_name("FILE");
    command_->add_flag("--json", json_, "Print the findings as JSON");
    command_->add_flag("--strict", strict_, "Count warnings as faults");
    command_->footer(
        "A fault is what the effect cannot use, or not as it is written: a file that is missing "
        "or\nnamed otherwise (capitals count), of another size, cut short, with lines that are "
        "no\nnumbers. A warning is what it uses, with a look that is perhaps not wanted: values "
        "below 0,\nlight at the rim, a glow beside its light, far more or less light than the "
        "shapes that\ncome with the effect. Faults end with exit code 17, warnings alone with 0.");
}

void BrushCheckCommand::run() {
    const std::filesystem::path path =
        path_.empty() ? BrushFolder(PluginPath(plugin_)) : std::filesystem::path(path_);
    std::error_code error;
    const auto status = std::filesystem::status(path, error);
    if (!std::filesystem::exists(status)) {
        throw ToolError(kShapesMissing, "there is no folder " + path.string() +
                                            ": name one, or set ORVANTE_QUILLON_SVG_DIR");
    }
    std::vector<BrushFileReport> files;
    if (std::filesystem::is_directory(status)) {
        // Opening it first: a folder that may not be read is not thirteen missing files.
        std::filesystem::directory_iterator(path, error);
        if (error) {
            throw ToolError(kShapesMissing,
                            "cannot read " + path.string() + ": " + error.message());
        }
        files = InspectBrushFolder(path);
    } else {
        files.push_back({path.filename().string(), {}, InspectBrush(path)});
    }
    Totals totals;
    for (const BrushFileReport& file : files) {
        totals.faults += file.report.faults();
        totals.warnings += file.report.warnings();
    }
    if (json_) {
        PrintJson(path, files, totals);
    } else {
        PrintText(path, files);
    }
    if (totals.faults > 0 || (strict_ && totals.warnings > 0)) {
        throw ToolError(kShapesMissing, Counted(totals.faults, "fault") + " and " +
                                            Counted(totals.warnings, "warning") + " in " +
                                            path.string() + ", listed above");
    }
}

}  // namespace vireon::tool
