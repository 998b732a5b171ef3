#include "shell/parameter_setup.h"

#include "host/ae/sdk_records.h"
#include "host/application_codes.h"
#include "host/plugin_host_api.h"
#include "host/result_codes.h"
#include "shell/parameter_table.h"

namespace vireon {

using namespace sdk;

namespace {

constexpr std::int16_t kSliderPrecision = PF_Precision_HUNDREDTHS;
constexpr std::int16_t kOpacityPrecision = PF_Precision_TENTHS;
constexpr float kCurveTolerance = 0.05f;

// Truncated, so that 0.1 becomes 6553.
PF_Fixed ToFixed(double value) {
    return static_cast<PF_Fixed>(value * 65536.0);
}

void FillFixedSlider(PF_ParamDef& def, const ParameterSpec& spec, std::int16_t precision) {
    def.param_type = PF_Param_FIX_SLIDER;
    PF_FixedSliderDef& slider = def.u.fd;
    slider.valid_min = ToFixed(spec.validMin);
    slider.valid_max = ToFixed(spec.validMax);
    slider.slider_min = ToFixed(spec.sliderMin);
    slider.slider_max = ToFixed(spec.sliderMax);
    slider.value = ToFixed(spec.initial);
    slider.dephault = ToFixed(spec.initial);
    slider.precision = precision;
    def.flags |= PF_ParamFlag_COLLAPSE_TWIRLY;
}

void FillFloatSlider(PF_ParamDef& def, const ParameterSpec& spec) {
    def.param_type = PF_Param_FLOAT_SLIDER;
    PF_FloatSliderDef& slider = def.u.fs_d;
    slider.valid_min = static_cast<float>(spec.validMin);
    slider.valid_max = static_cast<float>(spec.validMax);
    slider.slider_min = static_cast<float>(spec.sliderMin);
    slider.slider_max = static_cast<float>(spec.sliderMax);
    slider.value = spec.initial;
    slider.dephault = static_cast<float>(spec.initial);
    slider.precision = kSliderPrecision;
    slider.curve_tolerance = kCurveTolerance;
    def.flags |= PF_ParamFlag_COLLAPSE_TWIRLY;
}

void FillCheckbox(PF_ParamDef& def, const ParameterSpec& spec) {
    def.param_type = PF_Param_CHECKBOX;
    def.u.bd.value = static_cast<std::int32_t>(spec.initial);
    def.u.bd.dephault = static_cast<PF_Boolean>(spec.initial);
    def.u.bd.u.nameptr = "";
}

void FillPopup(PF_ParamDef& def, const ParameterSpec& spec) {
    def.param_type = PF_Param_POPUP;
    def.u.pd.value = static_cast<std::int32_t>(spec.initial);
    def.u.pd.dephault = static_cast<std::int16_t>(spec.initial);
    def.u.pd.num_choices = static_cast<std::int16_t>(CountChoices(spec.choices));
    def.u.pd.u.namesptr = spec.choices;
}

void FillPoint(PF_ParamDef& def, const ParameterSpec& spec) {
    def.param_type = PF_Param_POINT;
    def.u.td.x_value = ToFixed(spec.initial);
    def.u.td.y_value = ToFixed(spec.initial);
    def.u.td.x_dephault = ToFixed(spec.initial);
    def.u.td.y_dephault = ToFixed(spec.initial);
}

void FillKind(PF_ParamDef& def, const ParameterSpec& spec, bool floatSliders) {
    switch (spec.kind) {
        case ParameterKind::kLayer:
            def.param_type = PF_Param_LAYER;
            def.u.ld.dephault = PF_LayerDefault_NONE;
            break;
        case ParameterKind::kFloatSlider:
            if (floatSliders) {
                FillFloatSlider(def, spec);
            } else {
                FillFixedSlider(def, spec, kSliderPrecision);
            }
            break;
        case ParameterKind::kFixedSlider: FillFixedSlider(def, spec, kOpacityPrecision); break;
        case ParameterKind::kCheckbox: FillCheckbox(def, spec); break;
        case ParameterKind::kPopup: FillPopup(def, spec); break;
        case ParameterKind::kPoint: FillPoint(def, spec); break;
        case ParameterKind::kGroupStart: def.param_type = PF_Param_GROUP_START; break;
        case ParameterKind::kGroupEnd: def.param_type = PF_Param_GROUP_END; break;
    }
}

PF_ParamDef MakeDefinition(const PF_InData& in, const ParameterSpec& spec, bool floatSliders) {
    PF_ParamDef def{};
    def.uu.id = spec.id;
    in.utils->ansi.strcpy(def.name, spec.name);
    def.flags = (spec.traits.supervised ? PF_ParamFlag_SUPERVISE : 0) |
                (spec.traits.constant ? PF_ParamFlag_CANNOT_TIME_VARY : 0) |
                (spec.traits.startCollapsed ? PF_ParamFlag_START_COLLAPSED : 0);
    def.ui_flags = spec.traits.disabled ? PF_PUI_DISABLED : PF_PUI_NONE;
    FillKind(def, spec, floatSliders);
    return def;
}

}  // namespace

std::int32_t SetUpParameters(PluginHost_API& host) {
    constexpr std::int32_t kAppend = -1;
    const SdkRecords* records = host.sdkRecords();
    if (records == nullptr) return kRenderFailed;
    PF_InData& in = *records->inData;
    const bool floatSliders = !host.isApplication(kFinalCutPro);

    for (const ParameterSpec& spec : ParameterTable()) {
        PF_ParamDef def = MakeDefinition(in, spec, floatSliders);
        const PF_Err error = in.inter.add_param(in.effect_ref, kAppend, &def);
        if (error != PF_Err_NONE) return error;
    }
    records->outData->num_params = kParamCount;
    return kSuccess;
}

}  // namespace vireon
