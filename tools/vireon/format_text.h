#pragma once

#include <string>

namespace vireon::tool {

/// A text by the rules of printf, of any length. Numbers have a decimal point in every locale that
/// this program runs in: it never leaves that of C.
[[gnu::format(printf, 1, 2)]] std::string FormatText(const char* format, ...);

}  // namespace vireon::tool
