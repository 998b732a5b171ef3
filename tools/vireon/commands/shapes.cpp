#include "tools/vireon/commands/shapes.h"

#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

#include "tools/vireon/brush_findings.h"
#include "tools/vireon/brush_folder.h"
#include "tools/vireon/commands/common.h"
#include "tools/vireon/tool_error.h"

namespace vireon::tool {

namespace {

/// The file of a shape; null for the shape that comes from a layer.
const BrushFileReport* FileOf(const std::string& shapeName,
                              const std::vector<BrushFileReport>& files) {
    const auto found = std::find_if(files.begin(), files.end(), [&](const BrushFileReport& file) {
        return shapeName == file.shape;
    });
    return found == files.end() ? nullptr : &*found;
}

}  // namespace

ShapesCommand::ShapesCommand(CLI::App& app)
    : command_(app.add_subcommand("shapes", "List the glow shapes and check their brush files")) {
    AddPluginOptions(*command_, plugin_);
    command_->add_flag("--names", namesOnly_,
                       "Print the names of the shapes that have a brush file, one a line");
}

void ShapesCommand::run() {
    headless::WorkerClient worker = StartWorker(plugin_);
    const headless::Description description = Describe(worker);
    const auto& parameters = description.parameters;
    const auto shape =
        std::find_if(parameters.begin(), parameters.end(), [](const auto& parameter) {
            return parameter.kind == sdk::PF_Param_POPUP && parameter.name == "Shape";
        });
    if (shape == parameters.end()) {
        throw ToolError(kNotAnEffect, PluginPath(plugin_).string() + " has no popup \"Shape\"");
    }
    const std::filesystem::path folder = BrushFolder(PluginPath(plugin_));
    const std::vector<BrushFileReport> files = InspectBrushFolder(folder);
    if (namesOnly_) {
        for (const std::string& choice : shape->choices()) {
            if (FileOf(choice, files) != nullptr) std::printf("%s\n", choice.c_str());
        }
        return;
    }
    std::printf("brush files in %s\n", folder.c_str());
    int faults = 0;
    for (const std::string& choice : shape->choices()) {
        const BrushFileReport* const file = FileOf(choice, files);
        if (file == nullptr) {
            std::printf("  %-22s (from a layer)\n", choice.c_str());
            continue;
        }
        const std::string fault = FirstFault(file->report);
        faults += fault.empty() ? 0 : 1;
        std::printf("  %-22s %-22s %s\n", choice.c_str(), file->file.c_str(),
                    fault.empty() ? "ok" : fault.c_str());
    }
    if (faults > 0) {
        throw ToolError(kShapesMissing, std::to_string(faults) + " brush files in " +
                                            folder.string() +
                                            " are missing or damaged: put them there or name "
                                            "another folder in ORVANTE_QUILLON_SVG_DIR (vireon "
                                            "brush check tells more)");
    }
}

}  // namespace vireon::tool
