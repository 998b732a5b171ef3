#pragma once

#include <optional>
#include <string>
#include <vector>

namespace vireon::bench {

/// One line of the table: a scene or a stage, by the plain definitions and by the fast forms.
struct SpeedRow {
    std::string name;
    double plainMs = 0.0;  ///< processor milliseconds of one run
    double oursMs = 0.0;
    std::optional<double> requiredRatio;  ///< how many times faster it has to be; none: no matter
    std::string form;                     ///< forms of the convolution by channel; empty: not known
    std::string level;                    ///< instruction set of the fast side
    std::size_t plainPeakBytes = 0;       ///< host memory in use at once; 0: not counted
    std::size_t oursPeakBytes = 0;
    std::string note;  ///< a remark that stands below the table

    double ratio() const { return oursMs > 0.0 ? plainMs / oursMs : 0.0; }
    bool met() const { return !requiredRatio || ratio() >= *requiredRatio; }
};

/// The time of another program on the same frame, for comparison.
struct Yardstick {
    std::string name;
    double milliseconds = 0.0;
    double oursMs = 0.0;
};

/// All that one run has to say.
struct SpeedReport {
    std::string system;  ///< "linux" or "windows"
    std::string clock;   ///< which time is given
    std::vector<SpeedRow> rows;
    std::vector<std::string> remarks;
    std::optional<Yardstick> yardstick;
};

/// The report as an aligned table with the remarks below it.
std::string TableText(const SpeedReport& report);

/// The report as JSON, for programs.
std::string JsonText(const SpeedReport& report);

}  // namespace vireon::bench
