#pragma once

#include <string>
#include <vector>

#include <CLI/CLI.hpp>

namespace vireon::tool {

/// `vireon brush show`: figures of brush files, and a picture of them with their profiles.
class BrushShowCommand {
  public:
    explicit BrushShowCommand(CLI::App& brush);
    bool wasChosen() const { return command_->parsed(); }
    /// Throws ToolError; kShapesMissing when the effect could not use one of the files.
    void run();

  private:
    CLI::App* command_ = nullptr;
    std::vector<std::string> files_;
    std::string picture_;
    bool json_ = false;
    bool quiet_ = false;
};

}  // namespace vireon::tool
