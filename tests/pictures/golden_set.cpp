#include "tests/pictures/golden_set.h"

#include <algorithm>
#include <sstream>
#include <stdexcept>
#include <utility>

#include "tests/pictures/comparison.h"
#include "tests/pictures/reference_file.h"
#include "tools/vireon/tool_error.h"

namespace vireon::pictures {

using headless::Picture;

GoldenSet::GoldenSet(std::vector<GoldenCase> cases, std::filesystem::path folder)
    : cases_(std::move(cases)), folder_(std::move(folder)) {}

std::filesystem::path GoldenSet::fileOf(const GoldenCase& golden) const {
    return folder_ / ReferenceName(golden.name, golden.bits);
}

std::optional<ReportEntry> GoldenSet::check(const GoldenCase& golden, const Picture& now,
                                            const Tolerance& tolerance) const {
    ReportEntry entry;
    entry.name = golden.name;
    entry.shows = golden.shows;
    entry.now = now;
    const std::filesystem::path file = fileOf(golden);
    if (!std::filesystem::exists(file)) {
        entry.problem = "there is no reference " + file.filename().string();
        return entry;
    }
    try {
        entry.reference = ReadReference(file, golden.bits);
    } catch (const tool::ToolError& error) {
        entry.problem = error.what();
        return entry;
    }
    const Comparison found = Compare(now, *entry.reference, tolerance);
    if (found.agrees()) return std::nullopt;
    entry.problem = found.problem;
    entry.comparison = found;
    return entry;
}

bool GoldenSet::accept(const GoldenCase& golden, const Picture& now) const {
    // A picture agrees with itself unless something in it is not finite.
    const Comparison itself = Compare(now, now, kSameBits);
    if (!itself.agrees()) {
        throw std::runtime_error(golden.name + " is no reference: " + itself.problem);
    }
    if (!check(golden, now, kSameBits)) return false;
    WriteReference(fileOf(golden), now);
    return true;
}

std::vector<std::filesystem::path> GoldenSet::strays() const {
    std::set<std::string> known;
    for (const GoldenCase& golden : cases_) known.insert(fileOf(golden).filename().string());
    std::vector<std::filesystem::path> strays;
    if (!std::filesystem::exists(folder_)) return strays;
    for (const auto& entry : std::filesystem::directory_iterator(folder_)) {
        const std::string extension = entry.path().extension().string();
        const bool picture = extension == ".png" || extension == ".exr";
        if (picture && !known.contains(entry.path().filename().string())) {
            strays.push_back(entry.path());
        }
    }
    std::sort(strays.begin(), strays.end());
    return strays;
}

std::set<std::string> CasesToAccept(const std::string& text, const std::vector<GoldenCase>& cases) {
    std::set<std::string> known;
    for (const GoldenCase& golden : cases) known.insert(golden.name);
    if (text == "0") return {};
    if (text == "all" || text == "1") return known;
    std::string spaced = text;
    std::replace(spaced.begin(), spaced.end(), ',', ' ');
    std::istringstream words(spaced);
    std::set<std::string> chosen;
    for (std::string name; words >> name;) {
        if (!known.contains(name)) throw std::runtime_error("there is no picture \"" + name + "\"");
        chosen.insert(name);
    }
    return chosen;
}

}  // namespace vireon::pictures
