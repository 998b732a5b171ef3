#include "headless/slots.h"

#include <algorithm>
#include <numeric>
#include <string>

#include "headless/error.h"

namespace vireon::headless {
namespace {

struct SlotInfo {
    const char* name;
    SlotKind kind;
};

constexpr SlotInfo kSlots[] = {
#define VIREON_SLOT(identifier, name, kind) {name, SlotKind::kind},
#include "headless/slots.inc"
#undef VIREON_SLOT
};
static_assert(std::size(kSlots) == kSlotCount);

constexpr auto MakeAllSlots() {
    std::array<Slot, kSlotCount> slots{};
    for (std::size_t i = 0; i < kSlotCount; ++i) {
        slots[i] = static_cast<Slot>(i);
    }
    return slots;
}

constexpr auto kAllSlots = MakeAllSlots();

}  // namespace

std::span<const Slot> AllSlots() {
    return kAllSlots;
}

const char* SlotName(Slot slot) {
    return kSlots[static_cast<std::size_t>(slot)].name;
}

SlotKind KindOf(Slot slot) {
    return kSlots[static_cast<std::size_t>(slot)].kind;
}

std::vector<Slot> CallCounts::called() const {
    std::vector<Slot> slots;
    std::copy_if(kAllSlots.begin(), kAllSlots.end(), std::back_inserter(slots),
                 [this](Slot slot) { return (*this)[slot] != 0; });
    return slots;
}

std::uint64_t CallCounts::total() const {
    return std::accumulate(counts_.begin(), counts_.end(), std::uint64_t{0});
}

void FaultPlan::fail(Slot slot, std::uint64_t nth, sdk::PF_Err code, bool fromThenOn) {
    if (nth == 0 || code == 0) {
        throw HeadlessError("a fault needs a call number and a code other than 0");
    }
    if (!CanFail(slot)) {
        throw HeadlessError(std::string(SlotName(slot)) + " has no way to fail");
    }
    rules_.push_back({slot, nth, code, fromThenOn});
}

sdk::PF_Err FaultPlan::next(Slot slot) {
    sdk::PF_Err code = 0;
    for (Rule& rule : rules_) {
        if (rule.slot != slot || rule.remaining == 0) {
            continue;
        }
        --rule.remaining;
        if (rule.remaining == 0) {
            if (code == 0) {
                code = rule.code;
            }
            if (rule.fromThenOn) {
                rule.remaining = 1;
            }
        }
    }
    if (code != 0) {
        ++injected_;
    }
    return code;
}

}  // namespace vireon::headless
