#include "host/ae/plugin_host_ae_impl.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "host/ae/host_helpers.h"
#include "host/result_codes.h"

namespace vireon {

using namespace sdk;

namespace {

// A popup's choice counted from 0 instead of 1.
std::int32_t FromFirst(std::int32_t choice) {
    return std::max(choice, std::numeric_limits<std::int32_t>::min() + 1) - 1;
}

}  // namespace

const PF_ParamDef* PluginHost_AE_Impl::parameter(std::int32_t index) const {
    return params_ != nullptr && index >= 0 ? params_[index] : nullptr;
}

template <typename Read>
std::int32_t PluginHost_AE_Impl::readAt(std::int32_t index, const HostTime& time, Read&& read) {
    PF_ParamDef record{};
    in_->inter.checkout_param(in_->effect_ref, index, time.time, time.step, time.scale, &record);
    read(record.u);
    return in_->inter.checkin_param(in_->effect_ref, &record);
}

std::int32_t PluginHost_AE_Impl::sliderAt(std::int32_t index, std::int32_t kind,
                                          const HostTime& time, double& value) {
    return readAt(index, time, [&](const PF_ParamDefUnion& u) {
        value = kind >= 0 ? FromFixed(u.fd.value) : u.fs_d.value;
    });
}

std::int32_t PluginHost_AE_Impl::fixedAt(std::int32_t index, std::int32_t, const HostTime& time,
                                         double& value) {
    return readAt(index, time, [&](const PF_ParamDefUnion& u) { value = FromFixed(u.fd.value); });
}

std::int32_t PluginHost_AE_Impl::integerAt(std::int32_t index, std::int32_t, const HostTime& time,
                                           std::int32_t& value) {
    return readAt(index, time, [&](const PF_ParamDefUnion& u) { value = u.sd.value; });
}

std::int32_t PluginHost_AE_Impl::popupAt(std::int32_t index, std::int32_t, const HostTime& time,
                                         std::int32_t& choice) {
    return readAt(index, time, [&](const PF_ParamDefUnion& u) { choice = FromFirst(u.pd.value); });
}

std::int32_t PluginHost_AE_Impl::pointAt(std::int32_t index, const HostTime& time, double& x,
                                         double& y) {
    return readAt(index, time, [&](const PF_ParamDefUnion& u) {
        x = FromFixed(u.td.x_value);
        y = FromFixed(u.td.y_value);
    });
}

std::int32_t PluginHost_AE_Impl::spacePointAt(std::int32_t index, const HostTime& time, double& x,
                                              double& y, double& z) {
    return readAt(index, time, [&](const PF_ParamDefUnion& u) {
        x = u.point3d_d.x_value;
        y = u.point3d_d.y_value;
        z = u.point3d_d.z_value;
    });
}

std::int32_t PluginHost_AE_Impl::sliderValue(std::int32_t index, std::int32_t kind, double& value) {
    value = 0.0;
    const PF_ParamDef* def = parameter(index);
    if (def == nullptr) return kInvalidIndex;
    value = kind >= 0 ? FromFixed(def->u.fd.value) : def->u.fs_d.value;
    if (!std::isfinite(value)) value = 0.0;
    return kSuccess;
}

std::int32_t PluginHost_AE_Impl::popupValue(std::int32_t index, std::int32_t& value) {
    value = 0;
    const PF_ParamDef* def = parameter(index);
    if (def == nullptr) return kInvalidIndex;
    value = FromFirst(def->u.pd.value);
    return kSuccess;
}

bool PluginHost_AE_Impl::checkboxValue(std::int32_t index) const {
    const PF_ParamDef* def = parameter(index);
    return def != nullptr && def->u.bd.value != 0;
}

std::int32_t PluginHost_AE_Impl::pointValue(std::int32_t index, double& x, double& y) {
    x = 0.0;
    y = 0.0;
    const PF_ParamDef* def = parameter(index);
    if (def == nullptr) return kInvalidIndex;
    x = FromFixed(def->u.td.x_value);
    y = FromFixed(def->u.td.y_value);
    return kSuccess;
}

std::unique_ptr<PluginRaster_API> PluginHost_AE_Impl::checkoutLayer(std::int32_t index,
                                                                    std::int32_t) {
    // Room for the books first: nothing may fail between a check-out and its entry.
    auto record = std::make_unique<PF_ParamDef>();
    auto raster = std::make_unique<PluginRaster_AE_Impl>(&record->u.ld, this);
    checkedOut_.reserve(checkedOut_.size() + 1);
    const std::int32_t error = in_->inter.checkout_param(
        in_->effect_ref, index, in_->current_time, in_->time_step, in_->time_scale, record.get());
    if (error != 0) return nullptr;
    const PF_EffectWorld& layer = record->u.ld;
    const bool absent = layer.data == nullptr || layer.width <= 0 || layer.height <= 0;
    checkedOut_.push_back({index, std::move(record)});
    if (absent) return nullptr;
    return raster;
}

void PluginHost_AE_Impl::checkinLayer(std::int32_t index) {
    const auto found = std::find_if(checkedOut_.begin(), checkedOut_.end(),
                                    [index](const CheckedOut& c) { return c.index == index; });
    if (found == checkedOut_.end()) return;
    in_->inter.checkin_param(in_->effect_ref, found->record.get());
    checkedOut_.erase(found);
}

}  // namespace vireon
