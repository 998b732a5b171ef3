#include "shell/parameter_ui.h"

#include "host/ae/suite_access.h"
#include "host/application_codes.h"
#include "render/parameter_ids.h"

namespace vireon {

using namespace sdk;

namespace {

// Choices as the host counts them, from 1.
constexpr std::int32_t kTransferNoneChoice = 1;
constexpr std::int32_t kCustomShapeChoice = 14;

constexpr ParameterIndex kMaskControls[] = {
    kParamMaskLayer,       kParamMaskRadius, kParamMaskFalloff,
    kParamMaskWidthAspect, kParamMaskCenter, kParamMaskHeightAspect,
};

class Controls {
  public:
    Controls(PF_InData& in, const PF_ParamUtilsSuite1& suite, PF_ParamDef** params)
        : in_(in), suite_(suite), params_(params) {}

    void enable(ParameterIndex index, bool enabled, const char* name = nullptr) const {
        PF_ParamDef def = *params_[index];
        if (name != nullptr) in_.utils->ansi.strcpy(def.name, name);
        def.ui_flags = enabled ? PF_PUI_NONE : PF_PUI_DISABLED;
        suite_.PF_UpdateParamUI(in_.effect_ref, index, &def);
    }

    void applyRules() const {
        enable(kParamSourceOpacity, params_[kParamTransferMode]->u.pd.value != kTransferNoneChoice);
        enable(kParamOverbrightClamp, params_[kParamPreventOverbrights]->u.bd.value != 0);

        // A mask layer takes the place of the mask's shape, and greys its own control out with it.
        const bool maskOn = params_[kParamEnableMask]->u.bd.value != 0;
        const bool maskLayerSet = maskOn && params_[kParamMaskLayer]->u.ld.data != nullptr;
        for (const ParameterIndex index : kMaskControls) enable(index, maskOn && !maskLayerSet);

        const bool premiere = in_.appl_id == kPremierePro;
        enable(kParamShapeLayer, params_[kParamShape]->u.pd.value == kCustomShapeChoice,
               premiere ? "Shape Layer" : nullptr);
    }

  private:
    PF_InData& in_;
    const PF_ParamUtilsSuite1& suite_;
    PF_ParamDef** params_;
};

}  // namespace

PF_Err UpdateParameterUi(PF_InData& in, PF_OutData& out, PF_ParamDef** params) {
    const SdkRecords records{&in, &out};
    const void* table = nullptr;
    const bool acquired =
        AcquireSuite(records, kParamUtilsSuite2, "Failed to acquire suite.", &table) == 0;
    if (acquired && params != nullptr) {
        Controls(in, *static_cast<const PF_ParamUtilsSuite1*>(table), params).applyRules();
        out.out_flags |= PF_OutFlag_REFRESH_UI;
    }
    // Attempted after a failure too: a host without any suites says so a second time.
    ReleaseSuite(records, kParamUtilsSuite2, "Failed to release suite.");
    return PF_Err_NONE;
}

}  // namespace vireon
