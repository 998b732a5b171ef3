#include "host/ae/plugin_update_ae_impl.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "host/ae/plugin_host_ae_impl.h"
#include "host/application_codes.h"
#include "host/result_codes.h"

namespace vireon {

using namespace sdk;

namespace {

// 16.16 fixed point, halves away from zero; values beyond it become the nearest that it holds.
PF_Fixed RoundedFixed(double value) {
    constexpr double kLargest = std::numeric_limits<PF_Fixed>::max();
    if (std::isnan(value)) return 0;
    const double scaled = value * 65536.0 + (value >= 0.0 ? 0.5 : -0.5);
    return static_cast<PF_Fixed>(std::clamp(scaled, -kLargest, kLargest));
}

std::uint8_t ColourByte(double value) {
    if (!(value > 0.0)) return 0;
    return static_cast<std::uint8_t>(std::min(value * 255.0 + 0.5, 255.0));
}

std::int32_t UiFlags(bool enabled) {
    return enabled ? PF_PUI_NONE : PF_PUI_DISABLED;
}

}  // namespace

PF_ParamDef* PluginUpdate_AE_Impl::ValueWriter::changed(std::int32_t index) const {
    if (params == nullptr) return nullptr;
    params[index]->uu.change_flags = PF_ChangeFlag_CHANGED_VALUE;
    return params[index];
}

PluginUpdate_AE_Impl::PluginUpdate_AE_Impl(PluginHost_AE_Impl& host)
    : host_(host), values_{host.sdkRecords()->inData, host.params()} {
    const void* table = nullptr;
    host_.acquireSuite(kParamUtilsSuite2.name, kParamUtilsSuite2.version,
                       "Failed to acquire suite.", &table);
    suite_ = static_cast<const PF_ParamUtilsSuite1*>(table);
}

PluginUpdate_AE_Impl::~PluginUpdate_AE_Impl() {
    if (suite_ == nullptr) return;
    host_.releaseSuite(kParamUtilsSuite2.name, kParamUtilsSuite2.version,
                       "Failed to release suite.");
}

void PluginUpdate_AE_Impl::setSlider(std::int32_t index, std::int32_t kind, double value) {
    PF_ParamDef* const def = values_.changed(index);
    if (def == nullptr) return;
    if (kind < 1 || host_.isApplication(kFinalCutPro)) {
        def->u.fd.value = RoundedFixed(value);
    } else {
        def->u.fs_d.value = value;
    }
}

void PluginUpdate_AE_Impl::setFixed(std::int32_t index, std::int32_t, double value) {
    if (PF_ParamDef* const def = values_.changed(index)) def->u.fd.value = RoundedFixed(value);
}

void PluginUpdate_AE_Impl::setPopup(std::int32_t index, std::int32_t, std::int32_t choice) {
    values_.changed(index)->u.pd.value = choice;
}

void PluginUpdate_AE_Impl::setCheckbox(std::int32_t index, std::int32_t, bool on) {
    values_.changed(index)->u.bd.value = on ? 1 : 0;
}

void PluginUpdate_AE_Impl::setInteger(std::int32_t index, std::int32_t, std::int32_t value) {
    if (PF_ParamDef* const def = values_.changed(index)) def->u.sd.value = value;
}

void PluginUpdate_AE_Impl::setPoint(std::int32_t index, std::int32_t, double x, double y) {
    PF_ParamDef* const def = values_.changed(index);
    if (def == nullptr) return;
    def->u.td.x_value = RoundedFixed(x);
    def->u.td.y_value = RoundedFixed(y);
}

void PluginUpdate_AE_Impl::setColour(std::int32_t index, std::int32_t, double red, double green,
                                     double blue) {
    PF_ParamDef* const def = values_.changed(index);
    if (def == nullptr) return;
    def->u.cd.value.red = ColourByte(red);
    def->u.cd.value.green = ColourByte(green);
    def->u.cd.value.blue = ColourByte(blue);
}

PF_ParamDef* PluginUpdate_AE_Impl::copyForUpdate(std::int32_t index) {
    if (suite_ == nullptr || values_.params == nullptr) return nullptr;
    scratch_ = *values_.params[index];
    return &scratch_;
}

std::int32_t PluginUpdate_AE_Impl::sendUpdate(std::int32_t index) {
    return suite_->PF_UpdateParamUI(values_.inData->effect_ref, index, &scratch_);
}

std::int32_t PluginUpdate_AE_Impl::enable(std::int32_t index, bool enabled) {
    PF_ParamDef* const def = copyForUpdate(index);
    if (def == nullptr) return kBadCallbackParameter;
    def->ui_flags = UiFlags(enabled);
    return sendUpdate(index);
}

std::int32_t PluginUpdate_AE_Impl::collapse(std::int32_t index, bool collapsed) {
    PF_ParamDef* const def = copyForUpdate(index);
    if (def == nullptr) return kBadCallbackParameter;
    if (collapsed) {
        def->flags |= PF_ParamFlag_COLLAPSE_TWIRLY;
    } else {
        def->flags &= ~PF_ParamFlag_COLLAPSE_TWIRLY;
    }
    return sendUpdate(index);
}

std::int32_t PluginUpdate_AE_Impl::rename(std::int32_t index, const char* name) {
    PF_ParamDef* const def = copyForUpdate(index);
    if (def == nullptr) return kBadCallbackParameter;
    values_.inData->utils->ansi.sprintf(def->name, "%.31s", name);
    return sendUpdate(index);
}

std::int32_t PluginUpdate_AE_Impl::renameAndEnable(std::int32_t index, const char* name,
                                                   bool enabled) {
    PF_ParamDef* const def = copyForUpdate(index);
    if (def == nullptr) return kBadCallbackParameter;
    values_.inData->utils->ansi.sprintf(def->name, "%.31s", name);
    def->ui_flags = UiFlags(enabled);
    return sendUpdate(index);
}

}  // namespace vireon
