#pragma once

#include <CLI/CLI.hpp>

#include "tools/vireon/plugin.h"

namespace vireon::tool {

/// `vireon shapes`: the glow shapes that the effect offers and whether their brush files are there.
class ShapesCommand {
  public:
    explicit ShapesCommand(CLI::App& app);
    bool wasChosen() const { return command_->parsed(); }
    void run();

  private:
    CLI::App* command_ = nullptr;
    PluginOptions plugin_;
    bool namesOnly_ = false;
};

}  // namespace vireon::tool
