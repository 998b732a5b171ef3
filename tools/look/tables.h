#pragma once

#include <nlohmann/json.hpp>
#include <string>

#include "tools/look/measures.h"

namespace vireon::look {

/// The measures as Markdown tables under headings of the second level. Shares and differences are
/// in percent of white.
std::string MarkdownOf(const Measures& measures, const Subject& subject);

/// The same figures unrounded, shares and differences from 0 to 1.
nlohmann::ordered_json JsonOf(const Measures& measures, const Subject& subject);

}  // namespace vireon::look
