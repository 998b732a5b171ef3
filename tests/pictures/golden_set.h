#pragma once

#include <filesystem>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "headless/remote/picture.h"
#include "tests/pictures/golden_cases.h"
#include "tests/pictures/picture_report.h"
#include "tests/pictures/tolerances.h"

namespace vireon::pictures {

/// The references of a list of cases in a folder.
class GoldenSet {
  public:
    /// Nothing is read yet. The folder holds the references and nothing else with their extensions.
    GoldenSet(std::vector<GoldenCase> cases, std::filesystem::path folder);

    const std::vector<GoldenCase>& cases() const { return cases_; }

    /// File of a case's reference, whether it is there or not.
    std::filesystem::path fileOf(const GoldenCase& golden) const;

    /// Holds a rendered picture to its reference. Answers what is wrong, without the commands;
    /// nothing when the picture is accepted. A reference that is missing or cannot be read is
    /// wrong.
    std::optional<ReportEntry> check(const GoldenCase& golden, const headless::Picture& now,
                                     const Tolerance& tolerance) const;

    /// Makes a picture the reference. Answers whether anything changed: a reference with the same
    /// bits is left as it is. Throws std::runtime_error for a picture with samples that are not
    /// finite, tool::ToolError when the file cannot be written.
    bool accept(const GoldenCase& golden, const headless::Picture& now) const;

    /// Pictures in the folder that belong to no case, in order.
    std::vector<std::filesystem::path> strays() const;

  private:
    std::vector<GoldenCase> cases_;
    std::filesystem::path folder_;
};

/// The cases whose new pictures become references: none for an empty text or "0", each for "all" or
/// "1", else those named, with blanks or commas between them. Throws std::runtime_error for a name
/// that no case has.
std::set<std::string> CasesToAccept(const std::string& text, const std::vector<GoldenCase>& cases);

}  // namespace vireon::pictures
