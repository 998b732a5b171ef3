#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "headless/remote/picture.h"
#include "tests/pictures/comparison.h"

namespace vireon::pictures {

/// One picture that was not accepted.
struct ReportEntry {
    std::string name;   ///< fit for a file name
    std::string shows;  ///< what the case is there for
    std::string problem;
    std::optional<headless::Picture> now;        ///< none when nothing was rendered
    std::optional<headless::Picture> reference;  ///< none when there is none yet
    /// Set when both pictures are there.
    std::optional<Comparison> comparison;
    std::vector<std::string> repeat;  ///< shell lines that render the picture again
    std::string accept;               ///< shell line that makes the new picture the reference
};

/// The factor by which differences are multiplied to be seen: the largest power of two, up to 2^23,
/// that keeps `largestDifference` (white at 1) within white; 1 for what is larger or not finite.
int AmplificationFor(double largestDifference);

/// The differences of two pictures of one size and depth as an opaque 8-bit picture: in each colour
/// channel the larger of its own difference and alpha's, times `factor`. White where a sample is
/// not finite; any difference that is amplified shows at least as 1.
headless::Picture DifferencePicture(const headless::Picture& now,
                                    const headless::Picture& reference, int factor);

/// A page with pictures in a folder of its own. Everything in it is relative, so that the folder
/// can be sent to somebody.
class PictureReport {
  public:
    /// Nothing is written yet.
    PictureReport(std::filesystem::path folder, std::string title);

    void add(ReportEntry entry) { entries_.push_back(std::move(entry)); }
    bool empty() const { return entries_.empty(); }
    std::size_t size() const { return entries_.size(); }

    /// Writes the pictures and index.html and answers the page's path. The folder is made when it
    /// does not exist; other files in it stay. Throws tool::ToolError or std::runtime_error when
    /// something cannot be written.
    std::filesystem::path write() const;

  private:
    std::string section(const ReportEntry& entry) const;

    std::filesystem::path folder_;
    std::string title_;
    std::vector<ReportEntry> entries_;
};

}  // namespace vireon::pictures
