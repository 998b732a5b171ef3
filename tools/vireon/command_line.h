#pragma once

#include <string>
#include <vector>

namespace vireon::tool {

/// The whole program: `arguments` without its own name. Answers its exit code.
int RunCommandLine(const std::vector<std::string>& arguments);

}  // namespace vireon::tool
