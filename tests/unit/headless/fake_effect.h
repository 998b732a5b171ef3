#pragma once

#include <cstdint>
#include <functional>

#include "headless/host.h"
#include "sdk/sdk.h"

namespace vireon::headless::testing {

/// What the host passes to the entry point.
struct Call {
    std::int32_t command;
    sdk::PF_InData& in;
    sdk::PF_OutData& out;
    sdk::PF_ParamDef** params;
    sdk::PF_EffectWorld* output;
    void* extra;

    const sdk::PF_UtilCallbacks& utils() const { return *in.utils; }
    sdk::PF_PreRenderExtra& preRender() const {
        return *static_cast<sdk::PF_PreRenderExtra*>(extra);
    }
    sdk::PF_SmartRenderExtra& smartRender() const {
        return *static_cast<sdk::PF_SmartRenderExtra*>(extra);
    }
    /// A suite, or null.
    template <typename Suite>
    const Suite* acquire(const sdk::SuiteId& id) const {
        const void* table = nullptr;
        in.pica_basicP->AcquireSuite(id.name, id.version, &table);
        return static_cast<const Suite*>(table);
    }
};

/// The effect under the host: whatever a test wants it to be, on the thread of the test.
using Behaviour = std::function<sdk::PF_Err(const Call&)>;

/// An effect of this process that does what `behaviour` says.
class FakeEffect {
  public:
    explicit FakeEffect(Behaviour behaviour);
    ~FakeEffect();
    FakeEffect(const FakeEffect&) = delete;
    FakeEffect& operator=(const FakeEffect&) = delete;

    const EffectLibrary& library() const { return library_; }

  private:
    EffectLibrary library_;
};

/// A behaviour for PARAMS_SETUP: one parameter of each kind that takes values.
/// 1 float slider "Amount", 2 fixed slider "Opacity", 3 checkbox "On", 4 popup "Mode",
/// 5 point "Center", 6 layer "Picture".
sdk::PF_Err AddSampleParameters(const Call& call);

/// Whether any of the violations contains a text.
bool HasViolation(const CommandResult& result, const std::string& text);

}  // namespace vireon::headless::testing
