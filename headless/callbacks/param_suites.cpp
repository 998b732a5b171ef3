#include <cstring>

#include "headless/callbacks/dispatch.h"
#include "headless/callbacks/tables.h"

namespace vireon::headless {
namespace {

/// Replaces the given bits of a flag word.
void TakeBits(std::int32_t& word, std::int32_t from, std::int32_t bits) {
    word = (word & ~bits) | (from & bits);
}

/// Takes over what a host takes over: appearance and slider ranges, never a value.
void TakeAppearance(sdk::PF_ParamDef& own, const sdk::PF_ParamDef& def) {
    TakeBits(own.ui_flags, def.ui_flags,
             sdk::PF_PUI_DISABLED | sdk::PF_PUI_ECW_SEPARATOR | sdk::PF_PUI_INVISIBLE);
    TakeBits(own.flags, def.flags, sdk::PF_ParamFlag_COLLAPSE_TWIRLY);
    own.ui_width = def.ui_width;
    own.ui_height = def.ui_height;
    std::memcpy(own.name, def.name, sizeof own.name);
    own.name[sizeof own.name - 1] = '\0';
    switch (own.param_type) {
        case sdk::PF_Param_SLIDER:
            own.u.sd.slider_min = def.u.sd.slider_min;
            own.u.sd.slider_max = def.u.sd.slider_max;
            break;
        case sdk::PF_Param_FIX_SLIDER:
            own.u.fd.slider_min = def.u.fd.slider_min;
            own.u.fd.slider_max = def.u.fd.slider_max;
            own.u.fd.precision = def.u.fd.precision;
            own.u.fd.display_flags = def.u.fd.display_flags;
            break;
        case sdk::PF_Param_FLOAT_SLIDER:
            own.u.fs_d.slider_min = def.u.fs_d.slider_min;
            own.u.fs_d.slider_max = def.u.fs_d.slider_max;
            own.u.fs_d.precision = def.u.fs_d.precision;
            own.u.fs_d.display_flags = def.u.fs_d.display_flags;
            break;
        default: break;
    }
}

sdk::PF_Err UpdateParamUi(sdk::PF_ProgPtr effectRef, std::int32_t index,
                          const sdk::PF_ParamDef* def) {
    return Serve(Slot::kUpdateParamUi, effectRef, [&](HostState& host) -> sdk::PF_Err {
        if (def == nullptr || index < 1 ||
            index >= static_cast<std::int32_t>(host.parameters.size())) {
            host.violate("the appearance of parameter " + std::to_string(index) +
                         " cannot be changed");
            return sdk::PF_Err_INVALID_INDEX;
        }
        const std::int32_t command = host.context->command;
        if (command != sdk::PF_Cmd_UPDATE_PARAMS_UI && command != sdk::PF_Cmd_USER_CHANGED_PARAM) {
            host.violate("PF_UpdateParamUI in " + CommandName(command));
        }
        Parameter& parameter = host.parameters[static_cast<std::size_t>(index)];
        TakeAppearance(parameter.current, *def);
        host.context->uiUpdates.push_back({index, def->ui_flags, parameter.current.name});
        return 0;
    });
}

sdk::PF_Err IsIdenticalCheckout(sdk::PF_ProgPtr effectRef, std::int32_t index, std::int32_t time1,
                                std::int32_t /*timeStep1*/, std::uint32_t timeScale1,
                                std::int32_t time2, std::int32_t /*timeStep2*/,
                                std::uint32_t timeScale2, sdk::PF_Boolean* outSame) {
    return Serve(Slot::kParamUtilsOther, effectRef, [&](HostState& host) -> sdk::PF_Err {
        if (outSame == nullptr || index < 0 ||
            index >= static_cast<std::int32_t>(host.parameters.size())) {
            return sdk::PF_Err_INVALID_INDEX;
        }
        // Hooks may give any value at any time; without them nothing moves.
        const bool moves = host.settings.onCheckout || host.settings.layerAt;
        const bool sameTime = static_cast<std::int64_t>(time1) * timeScale2 ==
                              static_cast<std::int64_t>(time2) * timeScale1;
        *outSame = !moves || sameTime ? 1 : 0;
        return 0;
    });
}

sdk::PF_Err GetKeyframeCount(sdk::PF_ProgPtr effectRef, std::int32_t /*index*/,
                             std::int32_t* outCount) {
    return Serve(Slot::kParamUtilsOther, effectRef, [&](HostState&) -> sdk::PF_Err {
        *outCount = 0;
        return 0;
    });
}

/// The functions that both versions of the suite have in common.
template <typename Suite>
void FillCommon(Suite& table) {
    table.PF_UpdateParamUI = UpdateParamUi;
    table.PF_IsIdenticalCheckout = IsIdenticalCheckout;
    FillRefusing<Slot::kParamUtilsOther>(table.PF_FindKeyframeTime);
    table.PF_GetKeyframeCount = GetKeyframeCount;
    FillRefusing<Slot::kParamUtilsOther>(table.PF_CheckoutKeyframe);
    FillRefusing<Slot::kParamUtilsOther>(table.PF_CheckinKeyframe);
    FillRefusing<Slot::kParamUtilsOther>(table.PF_KeyIndexToTime);
}

sdk::PF_Err GetFloatingPointColor(sdk::PF_ProgPtr effectRef, const sdk::PF_ParamDef* colourParam,
                                  sdk::PF_PixelFloat* outPixel) {
    return Serve(Slot::kGetFloatingPointColor, effectRef, [&](HostState&) -> sdk::PF_Err {
        if (colourParam == nullptr || outPixel == nullptr) {
            return sdk::PF_Err_BAD_CALLBACK_PARAM;
        }
        const sdk::PF_Pixel& value = colourParam->u.cd.value;
        const auto channel = [](std::uint8_t level) {
            return static_cast<float>(level) / static_cast<float>(sdk::PF_MAX_CHAN8);
        };
        *outPixel = {channel(value.alpha), channel(value.red), channel(value.green),
                     channel(value.blue)};
        return 0;
    });
}

}  // namespace

const sdk::PF_ColorParamSuite1* ColorParamSuiteTable() {
    static const sdk::PF_ColorParamSuite1 table = {GetFloatingPointColor};
    return &table;
}

const sdk::PF_ParamUtilsSuite1* ParamUtilsSuite2Table() {
    static const sdk::PF_ParamUtilsSuite1 table = [] {
        sdk::PF_ParamUtilsSuite1 suite{};
        FillCommon(suite);
        FillRefusing<Slot::kParamUtilsOther>(suite.PF_GetCurrentStateObsolete);
        FillRefusing<Slot::kParamUtilsOther>(suite.PF_HasParamChangedObsolete);
        FillRefusing<Slot::kParamUtilsOther>(suite.PF_HaveInputsChangedOverTimeSpanObsolete);
        return suite;
    }();
    return &table;
}

const sdk::PF_ParamUtilsSuite3* ParamUtilsSuite3Table() {
    static const sdk::PF_ParamUtilsSuite3 table = [] {
        sdk::PF_ParamUtilsSuite3 suite{};
        FillCommon(suite);
        FillRefusing<Slot::kParamUtilsOther>(suite.PF_GetCurrentState);
        FillRefusing<Slot::kParamUtilsOther>(suite.PF_AreStatesIdentical);
        return suite;
    }();
    return &table;
}

}  // namespace vireon::headless
