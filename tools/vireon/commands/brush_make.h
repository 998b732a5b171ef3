#pragma once

#include <string>

#include <CLI/CLI.hpp>

#include "tools/vireon/brush_maker.h"

namespace vireon::tool {

/// `vireon brush make`: any picture as a brush file.
class BrushMakeCommand {
  public:
    explicit BrushMakeCommand(CLI::App& brush);
    bool wasChosen() const { return command_->parsed(); }
    /// Throws ToolError.
    void run();

  private:
    BrushMaking readSettings() const;

    CLI::App* command_ = nullptr;
    std::string picture_;
    std::string output_;
    bool fit_ = false;
    bool crop_ = false;
    bool invert_ = false;
    bool quiet_ = false;
    std::string channel_ = "luminance";
    std::string centre_ = "mass";
    std::string title_;
    double window_ = BrushMaking().windowStart;
    double energy_ = BrushMaking().energy;
    double gamma_ = 1;
};

}  // namespace vireon::tool
