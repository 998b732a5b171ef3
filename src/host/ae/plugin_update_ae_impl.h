#pragma once

#include "host/plugin_update_api.h"
#include "sdk/sdk.h"

namespace vireon {

class PluginHost_AE_Impl;

/// Parameter changes through the records of one command and the host's suite for controls. Must not
/// outlive the host object that made it.
class PluginUpdate_AE_Impl final : public PluginUpdate_API {
  public:
    /// Acquires the suite; a failure is shown to the user, and values can still be set.
    explicit PluginUpdate_AE_Impl(PluginHost_AE_Impl& host);
    ~PluginUpdate_AE_Impl() override;

    bool isReady() const override { return suite_ != nullptr; }
    void setSlider(std::int32_t index, std::int32_t kind, double value) override;
    void setFixed(std::int32_t index, std::int32_t kind, double value) override;
    void setPopup(std::int32_t index, std::int32_t kind, std::int32_t choice) override;
    void setCheckbox(std::int32_t index, std::int32_t kind, bool on) override;
    void setInteger(std::int32_t index, std::int32_t kind, std::int32_t value) override;
    void setPoint(std::int32_t index, std::int32_t kind, double x, double y) override;
    void setColour(std::int32_t index, std::int32_t kind, double red, double green,
                   double blue) override;
    std::int32_t enable(std::int32_t index, bool enabled) override;
    std::int32_t collapse(std::int32_t index, bool collapsed) override;
    std::int32_t rename(std::int32_t index, const char* name) override;
    std::int32_t renameAndEnable(std::int32_t index, const char* name, bool enabled) override;

  private:
    /// What the value setters need of the command.
    struct ValueWriter {
        sdk::PF_InData* inData;
        sdk::PF_ParamDef** params;

        sdk::PF_ParamDef* changed(std::int32_t index) const;
    };

    /// A copy of the parameter's record, kept here for the update; null without parameters.
    sdk::PF_ParamDef* copyForUpdate(std::int32_t index);
    std::int32_t sendUpdate(std::int32_t index);

    PluginHost_AE_Impl& host_;
    ValueWriter values_;
    const sdk::PF_ParamUtilsSuite1* suite_ = nullptr;
    sdk::PF_ParamDef scratch_{};
};

}  // namespace vireon
