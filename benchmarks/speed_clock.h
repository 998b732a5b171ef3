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
    double plain;
    double ours;
};

/// Measures two sides in turns (plain, ours, plain, ours ...), so that a machine that is busy at
/// times disturbs both alike. Each side is run once before anything counts.
Pair MeasureInTurns(const std::function<void()>& plain, const std::function<void()>& ours,
                    const Repeats& repeats);

/// The same for one side alone.
double MeasureAlone(const std::function<void()>& side, const Repeats& repeats);

}  // namespace vireon::bench
