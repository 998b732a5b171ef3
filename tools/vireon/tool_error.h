#pragma once

#include <stdexcept>
#include <string>

#include "tools/vireon/exit_codes.h"

namespace vireon::tool {

/// Ends the program with a code and one line on standard error. The text says what was wrong and,
/// where the user can do something about it, what.
class ToolError : public std::runtime_error {
  public:
    ToolError(ExitCode code, const std::string& text) : std::runtime_error(text), code_(code) {}
    ExitCode code() const { return code_; }

  private:
    ExitCode code_;
};

}  // namespace vireon::tool
