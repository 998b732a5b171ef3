#pragma once

#include <array>
#include <cstdint>
#include <iterator>

#include "host/ae/sdk_records.h"

namespace vireon {

/// The host's suites by name and version, for operations that need more than every command does.
/// Each is acquired when it is first asked for and kept; all that were acquired are released, by
/// the same name and version, when the set ends. It lives within one command.
class SuiteSet {
  public:
    explicit SuiteSet(sdk::SPBasicSuite* basic) : basic_(basic) {}
    SuiteSet(const SuiteSet&) = delete;
    SuiteSet& operator=(const SuiteSet&) = delete;
    ~SuiteSet();

    /// The suite's table, owned by the host; null when the host lacks it, when there are no suites
    /// at all, and for a name and version that no host offers.
    const void* get(const sdk::SuiteId& id);

    /// `get` for a suite whose record is known.
    template <typename Suite>
    const Suite* get(const sdk::SuiteId& id) {
        return static_cast<const Suite*>(get(id));
    }

  private:
    sdk::SPBasicSuite* basic_;
    std::array<const void*, std::size(sdk::kAllSuites)> tables_{};
};

}  // namespace vireon
