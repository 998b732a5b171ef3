#include "fake_effect.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace vireon::headless::testing {
namespace {

thread_local Behaviour current;

sdk::PF_Err Entry(std::int32_t command, sdk::PF_InData* in, sdk::PF_OutData* out,
                  sdk::PF_ParamDef** params, sdk::PF_EffectWorld* output, void* extra) {
    return current({command, *in, *out, params, output, extra});
}

sdk::PF_ParamDef Def(const char* name, std::int32_t id, std::int32_t kind) {
    sdk::PF_ParamDef def{};
    std::strcpy(def.name, name);
    def.uu.id = id;
    def.param_type = kind;
    return def;
}

}  // namespace

FakeEffect::FakeEffect(Behaviour behaviour) : library_(Entry) {
    current = std::move(behaviour);
}

FakeEffect::~FakeEffect() {
    current = nullptr;
}

sdk::PF_Err AddSampleParameters(const Call& call) {
    const auto add = [&](sdk::PF_ParamDef def) {
        return call.in.inter.add_param(call.in.effect_ref, -1, &def);
    };
    sdk::PF_ParamDef amount = Def("Amount", 11, sdk::PF_Param_FLOAT_SLIDER);
    amount.u.fs_d.value = 2.5;
    sdk::PF_ParamDef opacity = Def("Opacity", 12, sdk::PF_Param_FIX_SLIDER);
    opacity.u.fd.value = 100 * sdk::kFixedOne;
    sdk::PF_ParamDef on = Def("On", 13, sdk::PF_Param_CHECKBOX);
    on.u.bd.u.nameptr = "";
    sdk::PF_ParamDef mode = Def("Mode", 14, sdk::PF_Param_POPUP);
    mode.u.pd.value = 1;
    mode.u.pd.num_choices = 3;
    mode.u.pd.u.namesptr = "One|Two|Three";
    sdk::PF_ParamDef center = Def("Center", 15, sdk::PF_Param_POINT);
    center.u.td.x_dephault = center.u.td.y_dephault = 50 * sdk::kFixedOne;
    const sdk::PF_ParamDef picture = Def("Picture", 16, sdk::PF_Param_LAYER);
    for (const sdk::PF_ParamDef& def : {amount, opacity, on, mode, center, picture}) {
        if (const sdk::PF_Err error = add(def); error != 0) {
            return error;
        }
    }
    call.out.num_params = 7;
    return 0;
}

bool HasViolation(const CommandResult& result, const std::string& text) {
    return std::any_of(
        result.violations.begin(), result.violations.end(),
        [&](const std::string& line) { return line.find(text) != std::string::npos; });
}

}  // namespace vireon::headless::testing
