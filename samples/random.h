#pragma once

#include <cstdint>

namespace vireon::scenes {

/// A small source of even random numbers, the same on every system for the same seed (a 64-bit
/// counter put through a mixing function).
class Random {
  public:
    explicit Random(std::uint64_t seed) : state_(seed) {}

    /// The next 64 random bits.
    std::uint64_t bits() {
        state_ += 0x9E3779B97F4A7C15u;
        std::uint64_t mixed = state_;
        mixed = (mixed ^ (mixed >> 30)) * 0xBF58476D1CE4E5B9u;
        mixed = (mixed ^ (mixed >> 27)) * 0x94D049BB133111EBu;
        return mixed ^ (mixed >> 31);
    }

    /// A number from 0 inclusive to 1 exclusive.
    double unit() { return static_cast<double>(bits() >> 11) * (1.0 / 9007199254740992.0); }

    /// A number from `low` inclusive to `high` exclusive.
    double between(double low, double high) { return low + (high - low) * unit(); }

    /// True in the given share of all calls.
    bool chance(double share) { return unit() < share; }

    /// A whole number from 0 to count - 1; `count` > 0.
    int below(int count) { return static_cast<int>(unit() * count); }

  private:
    std::uint64_t state_;
};

}  // namespace vireon::scenes
