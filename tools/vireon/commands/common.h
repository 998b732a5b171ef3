#pragma once

#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "tools/vireon/plugin.h"

namespace vireon::tool {

/// Adds the options that every command with a plug-in has.
void AddPluginOptions(CLI::App& command, PluginOptions& options);

/// Reads only those options out of a command line whose other options are not known yet. Mistakes
/// are left for the proper reading later.
PluginOptions ScanPluginOptions(const std::vector<std::string>& arguments);

}  // namespace vireon::tool
