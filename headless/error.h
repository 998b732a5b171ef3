#pragma once

#include <stdexcept>

namespace vireon::headless {

/// Misuse of the headless host by the program that drives it: a wrong parameter kind, a world of no
/// size, a library that cannot be loaded. What an effect does wrong is never an exception but a
/// violation in the report of its command.
class HeadlessError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

}  // namespace vireon::headless
