#include "tools/vireon/names.h"

#include <algorithm>
#include <cctype>
#include <cstddef>

namespace vireon::tool {
namespace {

bool IsAlphanumeric(char c) {
    return std::isalnum(static_cast<unsigned char>(c)) != 0;
}

char Lower(char c) {
    return static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
}

/// Edit distance with swaps of neighbours (optimal string alignment).
std::size_t EditDistance(std::string_view a, std::string_view b) {
    std::vector<std::size_t> beforePrevious(b.size() + 1);
    std::vector<std::size_t> previous(b.size() + 1);
    std::vector<std::size_t> current(b.size() + 1);
    for (std::size_t j = 0; j <= b.size(); ++j) {
        previous[j] = j;
    }
    for (std::size_t i = 1; i <= a.size(); ++i) {
        current[0] = i;
        for (std::size_t j = 1; j <= b.size(); ++j) {
            const std::size_t replaced = previous[j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1);
            current[j] = std::min({previous[j] + 1, current[j - 1] + 1, replaced});
            if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1]) {
                current[j] = std::min(current[j], beforePrevious[j - 2] + 1);
            }
        }
        std::swap(beforePrevious, previous);
        std::swap(previous, current);
    }
    return previous[b.size()];
}

}  // namespace

std::string KebabName(std::string_view name) {
    std::string kebab;
    for (const char c : name) {
        if (IsAlphanumeric(c)) {
            kebab += Lower(c);
        } else if (!kebab.empty() && kebab.back() != '-') {
            kebab += '-';
        }
    }
    if (!kebab.empty() && kebab.back() == '-') {
        kebab.pop_back();
    }
    return kebab;
}

std::string FoldedText(std::string_view text) {
    std::string folded;
    for (const char c : text) {
        const bool gap = c == ' ' || c == '-' || c == '_';
        if (!gap) {
            folded += Lower(c);
        } else if (!folded.empty() && folded.back() != ' ') {
            folded += ' ';
        }
    }
    if (!folded.empty() && folded.back() == ' ') {
        folded.pop_back();
    }
    return folded;
}

std::string Nearest(std::string_view word, const std::vector<std::string>& candidates) {
    const std::string folded = FoldedText(word);
    std::string best;
    std::size_t bestDistance = std::max<std::size_t>(2, folded.size() / 3) + 1;
    for (const std::string& candidate : candidates) {
        const std::string name = FoldedText(candidate);
        std::size_t distance = EditDistance(folded, name);
        // Half a name is closer than another name altogether.
        if (folded.size() >= 3 && name.find(folded) != std::string::npos) {
            distance = std::min<std::size_t>(distance, 2);
        }
        if (distance < bestDistance) {
            bestDistance = distance;
            best = candidate;
        }
    }
    return best;
}

std::string Suggestion(std::string_view word, const std::vector<std::string>& candidates,
                       std::string_view prefix) {
    const std::string nearest = Nearest(word, candidates);
    return nearest.empty() ? std::string()
                           : " (did you mean " + std::string(prefix) + nearest + "?)";
}

}  // namespace vireon::tool
