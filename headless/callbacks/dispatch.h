#pragma once

#include <exception>
#include <new>
#include <string>
#include <type_traits>

#include "headless/error.h"
#include "headless/host_state.h"
#include "headless/slots.h"
#include "sdk/sdk.h"

namespace vireon::headless {

/// The host whose command runs on this thread; null outside of commands. Functions that take no
/// effect reference find their host through it, the others check theirs against it.
HostState* CurrentHost();

/// Makes a host the current one of this thread for a scope. Scopes nest, because a hook of one host
/// may drive another.
class CurrentHostScope {
  public:
    explicit CurrentHostScope(HostState& host);
    ~CurrentHostScope();
    CurrentHostScope(const CurrentHostScope&) = delete;
    CurrentHostScope& operator=(const CurrentHostScope&) = delete;

  private:
    HostState* previous_;
};

/// Runs the body of a callback so that nothing is thrown into the effect.
template <typename Body>
sdk::PF_Err RunGuarded(HostState& host, Slot slot, Body&& body) {
    try {
        return body(host);
    } catch (const std::bad_alloc&) {
        return sdk::PF_Err_OUT_OF_MEMORY;
    } catch (...) {
        // A hook failed. The exception waits for the end of the command.
        if (host.context != nullptr && !host.context->hookFailure) {
            host.context->hookFailure = std::current_exception();
        } else {
            host.violate(std::string(SlotName(slot)) + " failed more than once");
        }
        return sdk::PF_Err_INTERNAL_STRUCT_DAMAGED;
    }
}

/// A callback without effect reference: counts the call, lets a planned fault happen, runs the body
/// (HostState&) -> PF_Err.
template <typename Body>
sdk::PF_Err ServeAnyone(Slot slot, Body&& body) {
    HostState* const host = CurrentHost();
    if (host == nullptr) {
        return sdk::PF_Err_INVALID_CALLBACK;
    }
    host->calls.add(slot);
    const sdk::PF_Err fault = host->faults.next(slot);
    if (fault != 0 && KindOf(slot) != SlotKind::kGiveBack) {
        return fault;
    }
    const sdk::PF_Err error = RunGuarded(*host, slot, body);
    return fault != 0 ? fault : error;
}

/// As ServeAnyone, with an effect reference that must be the current host's.
template <typename Body>
sdk::PF_Err Serve(Slot slot, sdk::PF_ProgPtr effectRef, Body&& body) {
    return ServeAnyone(slot, [&](HostState& host) -> sdk::PF_Err {
        if (effectRef != host.reference()) {
            host.violate(std::string(SlotName(slot)) + " was called with a wrong effect reference");
            return sdk::PF_Err_BAD_CALLBACK_PARAM;
        }
        return body(host);
    });
}

/// Answer of a function that this host does not offer: counted, 515 or the planned fault.
inline sdk::PF_Err Refuse(Slot slot) {
    return ServeAnyone(slot, [](HostState&) { return sdk::PF_Err_INVALID_CALLBACK; });
}

/// Fills a slot with a function of its shape that refuses.
template <Slot slot, typename Result, typename... Arguments>
void FillRefusing(Result (*&field)(Arguments...)) {
    field = [](Arguments...) -> Result {
        if constexpr (std::is_void_v<Result>) {
            Refuse(slot);
        } else if constexpr (std::is_pointer_v<Result>) {
            Refuse(slot);
            return nullptr;
        } else {
            return static_cast<Result>(Refuse(slot));
        }
    };
}

}  // namespace vireon::headless
