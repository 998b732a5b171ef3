#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "sdk/sdk.h"

namespace vireon::headless {

/// What a failure of a function looks like to the effect.
enum class SlotKind {
    kCode,      ///< returns the code and does nothing; nothing is written
    kGiveBack,  ///< takes back what it is given, then returns the code
    kPointer,   ///< returns null
    kSilent,    ///< has no way to fail
};

/// Names every function that the host hands out, for counting calls and for making them fail.
/// Utility callbacks and suite functions of the same purpose have slots of their own.
enum class Slot : std::size_t {
#define VIREON_SLOT(identifier, name, kind) identifier,
#include "headless/slots.inc"
#undef VIREON_SLOT
    kCount
};

inline constexpr std::size_t kSlotCount = static_cast<std::size_t>(Slot::kCount);

/// Every slot, in declared order.
std::span<const Slot> AllSlots();
/// Name for messages, e.g. "checkout_param" or "World Suite: new_world".
const char* SlotName(Slot slot);
SlotKind KindOf(Slot slot);
inline bool CanFail(Slot slot) {
    return KindOf(slot) != SlotKind::kSilent;
}

/// How often each function was called.
class CallCounts {
  public:
    std::uint64_t operator[](Slot slot) const { return counts_[static_cast<std::size_t>(slot)]; }
    void add(Slot slot) { ++counts_[static_cast<std::size_t>(slot)]; }
    /// The slots that were called at least once, in declared order.
    std::vector<Slot> called() const;
    std::uint64_t total() const;

  private:
    std::array<std::uint64_t, kSlotCount> counts_{};
};

/// Which calls are to fail. Each rule counts the calls of its function from the moment at which the
/// rule is made.
class FaultPlan {
  public:
    /// Makes the `nth` call from now on (1 is the next one) fail with `code`, and with
    /// `fromThenOn` every later one too. Throws HeadlessError for an nth below 1, a code of 0, or a
    /// function that has no way to fail.
    void fail(Slot slot, std::uint64_t nth = 1, sdk::PF_Err code = sdk::PF_Err_OUT_OF_MEMORY,
              bool fromThenOn = false);
    void clear() { rules_.clear(); }
    /// How many calls were made to fail since the plan was last cleared of rules or made.
    std::uint64_t injected() const { return injected_; }
    void resetInjected() { injected_ = 0; }

    /// Used by the host: counts a call and answers the code it must fail with, 0 for none.
    sdk::PF_Err next(Slot slot);

  private:
    struct Rule {
        Slot slot;
        std::uint64_t remaining;
        sdk::PF_Err code;
        bool fromThenOn;
    };

    std::vector<Rule> rules_;
    std::uint64_t injected_ = 0;
};

}  // namespace vireon::headless
