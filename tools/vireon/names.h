#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace vireon::tool {

/// A name as an option: letters in lower case and digits, everything between them one hyphen.
/// "Glow Radius" gives "glow-radius"; a name without letters and digits gives nothing.
std::string KebabName(std::string_view name);

/// A text as people type it: lower case, with runs of blanks, hyphens and underscores as one blank.
std::string FoldedText(std::string_view text);

/// The candidate that takes the fewest insertions, deletions, replacements and swaps of neighbours
/// to become `word`; empty when even that one is no plausible slip of the keyboard.
std::string Nearest(std::string_view word, const std::vector<std::string>& candidates);

/// " (did you mean X?)", or nothing when there is no nearest candidate.
std::string Suggestion(std::string_view word, const std::vector<std::string>& candidates,
                       std::string_view prefix = {});

}  // namespace vireon::tool
