#pragma once

#include <functional>

namespace vireon::bench {

/// Seconds of processor time that the calling thread has used. What other programs do to a shared
/// machine changes it far less than the time that passes.
double ThreadSeconds();

/// How often a measurement is repeated.
struct Repeats {
    int rounds;            ///< alternations between the two sides, at least 1
    double sampleSeconds;  ///< a sample runs its side as often as fills this time
};

/// Milliseconds of one run of each side, the least of all rounds.
struct Pair {
    double first;
    double second;
};

/// Something to be measured.
struct Work {
    std::function<void()> run;
    std::function<void()> prepare = {};  ///< before each run, and not counted; may be empty
};

/// Measures two sides in turns (first, second, first ...), so that a machine that is busy at
/// times disturbs both alike. Each side is run once before anything counts. A side that takes
/// seconds is run no more than twice after that: what disturbs a moment is small beside it.
Pair MeasureInTurns(const Work& first, const Work& second, const Repeats& repeats);

}  // namespace vireon::bench
