#pragma once

#include <cstdint>

namespace vireon::conformance {

/// Failures of operator new inside the test build of the effect, and its books.
struct AllocationFaults {
    /// Allocations to come until one fails, 1 for the next one; 0: none fails.
    std::uint64_t failAfter = 0;
    /// Makes every later one fail too.
    bool fromThenOn = false;

    /// Since the library was loaded: allocations asked for, and those made to fail.
    std::uint64_t asked = 0;
    std::uint64_t failed = 0;
    /// Blocks that are out now.
    std::int64_t live = 0;
};

/// Name and type of the function that the test build exports besides its entry point. It answers
/// the library's one object, which belongs to the thread that runs its commands.
inline constexpr const char* kAllocationFaultsFunction = "VireonTestAllocationFaults";
using AllocationFaultsFunction = AllocationFaults* (*)();

}  // namespace vireon::conformance
