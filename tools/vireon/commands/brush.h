#pragma once

#include <CLI/CLI.hpp>

#include "tools/vireon/commands/brush_check.h"
#include "tools/vireon/commands/brush_make.h"
#include "tools/vireon/commands/brush_show.h"

namespace vireon::tool {

/// `vireon brush`: commands for the files that hold the glow shapes.
class BrushCommand {
  public:
    explicit BrushCommand(CLI::App& app);
    bool wasChosen() const { return command_->parsed(); }
    /// Runs the command below it that was chosen. Throws ToolError.
    void run();

  private:
    CLI::App* command_ = nullptr;
    BrushShowCommand show_;
    BrushMakeCommand make_;
    BrushCheckCommand check_;
};

}  // namespace vireon::tool
