#pragma once

#include <vector>

#include "headless/host_state.h"
#include "headless/results.h"
#include "sdk/sdk.h"

namespace vireon::headless {

/// The parameter records of one command as the effect gets them: pointers to copies of the present
/// values, ended by a null pointer. Layers are empty unless filled.
class ParameterArray {
  public:
    explicit ParameterArray(const HostState& host);
    ParameterArray(const ParameterArray&) = delete;
    ParameterArray& operator=(const ParameterArray&) = delete;

    sdk::PF_ParamDef** pointers() { return pointers_.data(); }
    /// Puts the input layer's world into record 0.
    void setInput(const sdk::PF_EffectWorld& record);
    /// Puts the chosen layers into all layer records.
    void fillLayers(const HostState& host, CommandContext& running);

    /// Adds a violation for every record that is not as it was handed out.
    void reportChanges(CommandResult& result) const;
    /// Takes over the values of the records that the effect marked as changed and adds a violation
    /// for every other change.
    void adoptChanges(HostState& host, CommandResult& result) const;

  private:
    bool changed(std::size_t index) const;

    std::vector<sdk::PF_ParamDef> records_;
    std::vector<sdk::PF_ParamDef> given_;
    std::vector<sdk::PF_ParamDef*> pointers_;
};

}  // namespace vireon::headless
