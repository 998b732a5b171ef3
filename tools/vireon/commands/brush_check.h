#pragma once

#include <string>

#include <CLI/CLI.hpp>

#include "tools/vireon/plugin.h"

namespace vireon::tool {

/// `vireon brush check`: judges a folder of brush files, or single ones, as the effect reads them.
class BrushCheckCommand {
  public:
    explicit BrushCheckCommand(CLI::App& brush);
    bool wasChosen() const { return command_->parsed(); }
    /// Throws ToolError (kShapesMissing) when there are faults, or warnings with --strict.
    void run();

  private:
    CLI::App* command_ = nullptr;
    std::string path_;
    PluginOptions plugin_;
    bool json_ = false;
    bool strict_ = false;
};

}  // namespace vireon::tool
