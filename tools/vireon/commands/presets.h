#pragma once

#include <string>

#include <CLI/CLI.hpp>

#include "tools/vireon/plugin.h"

namespace vireon::tool {

/// `vireon presets`: the looks that `vireon render --preset` knows, or one of them, held against
/// the effect.
class PresetsCommand {
  public:
    explicit PresetsCommand(CLI::App& app);
    bool wasChosen() const { return command_->parsed(); }
    void run();

  private:
    void list() const;
    void show() const;

    CLI::App* command_ = nullptr;
    PluginOptions plugin_;
    std::string preset_;
    bool json_ = false;
};

}  // namespace vireon::tool
