#include "benchmarks/speed_clock.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>

#if defined(_WIN32)
#include <windows.h>
#else
#include <ctime>
#endif

namespace vireon::bench {
namespace {

/// No sample needs more runs than this, however short they are.
constexpr double kMostRuns = 10000.0;
/// A run of so many seconds is not repeated for every round.
constexpr double kLongRun = 2.0;

class Side {
  public:
    Side(const Work& work, const Repeats& repeats) : work_(work) {
        seconds(1);
        const double once = seconds(1);
        runs_ = static_cast<int>(
            std::clamp(std::ceil(repeats.sampleSeconds / std::max(once, 1e-6)), 1.0, kMostRuns));
        // A run that fills a sample by itself has just given one.
        if (runs_ == 1) least_ = once;
        samplesLeft_ = once > kLongRun ? 1 : repeats.rounds;
    }
    void sample() {
        if (samplesLeft_ == 0) return;
        --samplesLeft_;
        least_ = std::min(least_, seconds(runs_) / runs_);
    }
    double milliseconds() const { return least_ * 1000.0; }

  private:
    double seconds(int runs) const {
        // The clock is coarse on some systems: many runs are timed as one where they can be.
        if (!work_.prepare) {
            const double start = ThreadSeconds();
            for (int i = 0; i < runs; ++i) work_.run();
            return ThreadSeconds() - start;
        }
        double sum = 0.0;
        for (int i = 0; i < runs; ++i) {
            work_.prepare();
            const double start = ThreadSeconds();
            work_.run();
            sum += ThreadSeconds() - start;
        }
        return sum;
    }

    const Work& work_;
    int runs_ = 1;
    int samplesLeft_ = 0;
    double least_ = std::numeric_limits<double>::infinity();
};

}  // namespace

double ThreadSeconds() {
#if defined(_WIN32)
    FILETIME created{};
    FILETIME ended{};
    FILETIME kernel{};
    FILETIME user{};
    GetThreadTimes(GetCurrentThread(), &created, &ended, &kernel, &user);
    const auto ticks = [](const FILETIME& time) {
        return static_cast<double>(static_cast<std::uint64_t>(time.dwHighDateTime) << 32 |
                                   time.dwLowDateTime);
    };
    return (ticks(kernel) + ticks(user)) * 1e-7;
#else
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
#endif
}

Pair MeasureInTurns(const Work& first, const Work& second, const Repeats& repeats) {
    Side firstSide(first, repeats);
    Side secondSide(second, repeats);
    for (int round = 0; round < repeats.rounds; ++round) {
        firstSide.sample();
        secondSide.sample();
    }
    return {firstSide.milliseconds(), secondSide.milliseconds()};
}

}  // namespace vireon::bench
