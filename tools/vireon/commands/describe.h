#pragma once

#include <CLI/CLI.hpp>

#include "tools/vireon/plugin.h"

namespace vireon::tool {

/// `vireon describe`: what the effect tells a host about itself.
class DescribeCommand {
  public:
    explicit DescribeCommand(CLI::App& app);
    bool wasChosen() const { return command_->parsed(); }
    void run();

  private:
    CLI::App* command_ = nullptr;
    PluginOptions plugin_;
    bool json_ = false;
};

}  // namespace vireon::tool
