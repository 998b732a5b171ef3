#include <algorithm>
#include <cstring>
#include <utility>

#include "headless/callbacks/dispatch.h"
#include "headless/callbacks/tables.h"

namespace vireon::headless {
namespace {

bool MayCheckOut(std::int32_t command) {
    constexpr std::int32_t kAllowed[] = {sdk::PF_Cmd_RENDER,
                                         sdk::PF_Cmd_SMART_PRE_RENDER,
                                         sdk::PF_Cmd_SMART_RENDER,
                                         sdk::PF_Cmd_FRAME_SETUP,
                                         sdk::PF_Cmd_USER_CHANGED_PARAM,
                                         sdk::PF_Cmd_DO_DIALOG,
                                         sdk::PF_Cmd_QUERY_DYNAMIC_FLAGS};
    return std::find(std::begin(kAllowed), std::end(kAllowed), command) != std::end(kAllowed);
}

sdk::PF_Err CheckoutParam(sdk::PF_ProgPtr effectRef, std::int32_t index, std::int32_t time,
                          std::int32_t timeStep, std::uint32_t timeScale,
                          sdk::PF_ParamDef* outParam) {
    return Serve(Slot::kCheckoutParam, effectRef, [&](HostState& host) -> sdk::PF_Err {
        if (outParam == nullptr) {
            host.violate("a check-out needs a record to be written to");
            return sdk::PF_Err_BAD_CALLBACK_PARAM;
        }
        if (index < 0 || index >= static_cast<std::int32_t>(host.parameters.size())) {
            return sdk::PF_Err_INVALID_INDEX;
        }
        const std::int32_t command = host.context->command;
        if (!MayCheckOut(command)) {
            host.violate("parameter " + std::to_string(index) + " is checked out in " +
                         CommandName(command));
        }
        const LayerTime at{time, timeStep, timeScale};
        sdk::PF_ParamDef record = host.currentRecord(index);
        if (record.param_type == sdk::PF_Param_LAYER) {
            LayerAnswer answer = LayerAnswer::kPixels;
            if (command == sdk::PF_Cmd_SMART_RENDER) {
                answer = host.settings.layersInSmartRender;
            }
            if (index == 0 && host.settings.nullInput) {
                answer = LayerAnswer::kZeroed;
            }
            if (answer == LayerAnswer::kError) {
                return sdk::PF_Err_INVALID_CALLBACK;
            }
            record.u.ld = {};
            const auto world =
                answer == LayerAnswer::kPixels ? host.layerFor(*host.context, index, at) : nullptr;
            if (world != nullptr) {
                record.u.ld = host.lend(*host.context, world);
            }
        }
        if (host.settings.onCheckout) {
            host.settings.onCheckout(index, at, record);
        }
        host.parameterRecords.insert(outParam);
        *outParam = record;
        return 0;
    });
}

sdk::PF_Err CheckinParam(sdk::PF_ProgPtr effectRef, sdk::PF_ParamDef* param) {
    return Serve(Slot::kCheckinParam, effectRef, [&](HostState& host) -> sdk::PF_Err {
        const auto it = host.parameterRecords.find(param);
        if (it == host.parameterRecords.end()) {
            host.violate("check-in of a parameter record that is not checked out");
            return sdk::PF_Err_BAD_CALLBACK_PARAM;
        }
        host.parameterRecords.erase(it);
        return 0;
    });
}

/// Takes over the text of a parameter; hosts do not let go of a null pointer.
void AdoptText(HostState& host, Parameter& parameter, const char* text) {
    if (text == nullptr) {
        host.violate("parameter \"" + parameter.name() + "\" has no text, not even an empty one");
        return;
    }
    parameter.text = text;
}

sdk::PF_Err AddParam(sdk::PF_ProgPtr effectRef, std::int32_t index, sdk::PF_ParamDef* def) {
    return Serve(Slot::kAddParam, effectRef, [&](HostState& host) -> sdk::PF_Err {
        if (def == nullptr) {
            host.violate("add_param without a record");
            return sdk::PF_Err_BAD_CALLBACK_PARAM;
        }
        if (host.context->command != sdk::PF_Cmd_PARAMS_SETUP) {
            host.violate("add_param in " + CommandName(host.context->command));
            return sdk::PF_Err_INVALID_CALLBACK;
        }
        if (index != -1) {
            host.violate("add_param at a place of its own; only -1 is understood");
            return sdk::PF_Err_INVALID_INDEX;
        }
        Parameter parameter;
        parameter.registered = *def;
        sdk::PF_ParamDef& own = parameter.registered;
        if (std::memchr(own.name, '\0', sizeof own.name) == nullptr) {
            host.violate("the name of a parameter is not ended by a zero");
            own.name[sizeof own.name - 1] = '\0';
        }
        switch (own.param_type) {
            case sdk::PF_Param_CHECKBOX:
                AdoptText(host, parameter, own.u.bd.u.nameptr);
                own.u.bd.u.nameptr = nullptr;
                break;
            case sdk::PF_Param_POPUP:
                AdoptText(host, parameter, own.u.pd.u.namesptr);
                own.u.pd.u.namesptr = nullptr;
                if (own.u.pd.num_choices !=
                    1 + std::count(parameter.text.begin(), parameter.text.end(), '|')) {
                    host.violate("popup \"" + parameter.name() +
                                 "\" counts its choices otherwise than its text");
                }
                break;
            case sdk::PF_Param_BUTTON:
                AdoptText(host, parameter, own.u.button_d.u.namesptr);
                own.u.button_d.u.namesptr = nullptr;
                break;
            default:
                if (own.param_type < 0 || own.param_type > sdk::PF_Param_POINT_3D) {
                    return sdk::PF_Err_UNRECOGNIZED_PARAM_TYPE;
                }
                break;
        }
        for (std::size_t i = 1; i < host.parameters.size(); ++i) {
            if (host.parameters[i].id() == parameter.id()) {
                host.violate("two parameters have the identity " + std::to_string(parameter.id()));
            }
        }
        parameter.current = own;
        parameter.current.uu.change_flags = 0;
        host.parameters.push_back(std::move(parameter));
        return 0;
    });
}

/// Answer to progress and abort.
sdk::PF_Err AskUser(HostState& host, std::int32_t current, std::int32_t total) {
    sdk::PF_Err answer = 0;
    if (host.cancelCountdown) {
        if (*host.cancelCountdown > 1) {
            --*host.cancelCountdown;
        } else {
            answer = sdk::PF_Interrupt_CANCEL;
        }
    }
    if (answer == 0 && host.settings.onProgress) {
        answer = host.settings.onProgress(current, total);
    }
    if (host.context->cancelCode != 0) {
        host.violate("the effect goes on after it was told to stop");
    }
    if (answer != 0) {
        host.context->cancelCode = answer;
    }
    return answer;
}

sdk::PF_Err Abort(sdk::PF_ProgPtr effectRef) {
    return Serve(Slot::kAbort, effectRef, [](HostState& host) { return AskUser(host, 0, 0); });
}

sdk::PF_Err Progress(sdk::PF_ProgPtr effectRef, std::int32_t current, std::int32_t total) {
    return Serve(Slot::kProgress, effectRef,
                 [&](HostState& host) { return AskUser(host, current, total); });
}

sdk::PF_Err RegisterUi(sdk::PF_ProgPtr effectRef, sdk::PF_CustomUIInfo* /*uiInfo*/) {
    return Serve(Slot::kRegisterUi, effectRef, [](HostState& host) -> sdk::PF_Err {
        if (host.context->command != sdk::PF_Cmd_PARAMS_SETUP) {
            host.violate("register_ui in " + CommandName(host.context->command));
        }
        return 0;
    });
}

}  // namespace

sdk::PF_InteractCallbacks InteractTable() {
    sdk::PF_InteractCallbacks table{};
    table.checkout_param = CheckoutParam;
    table.checkin_param = CheckinParam;
    table.add_param = AddParam;
    table.abort = Abort;
    table.progress = Progress;
    table.register_ui = RegisterUi;
    FillRefusing<Slot::kCheckoutLayerAudio>(table.checkout_layer_audio);
    FillRefusing<Slot::kCheckinLayerAudio>(table.checkin_layer_audio);
    FillRefusing<Slot::kGetAudioData>(table.get_audio_data);
    return table;
}

}  // namespace vireon::headless
