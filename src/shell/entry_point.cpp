#include <cstdint>
#include <new>

#include "host/ae/plugin_host_ae_impl.h"
#include "render/render_entry.h"
#include "sdk/sdk.h"
#include "shell/effect_identity.h"
#include "shell/parameter_setup.h"
#include "shell/parameter_ui.h"
#include "shell/smart_render.h"

#ifdef _WIN32
#define VIREON_EXPORT __declspec(dllexport)
#else
#define VIREON_EXPORT __attribute__((visibility("default")))
#endif

namespace vireon {

using namespace sdk;

namespace {

PF_Err About(PF_InData& in, PF_OutData& out) {
    char text[sizeof out.return_msg] = {};
    in.utils->ansi.sprintf(text, "%s. %s. v%d.%d.%d. %s ", kEffectName, kEffectDescription,
                           static_cast<int>(kVersionMajor), static_cast<int>(kVersionMinor),
                           static_cast<int>(kVersionBugfix), kEffectNotice);
    in.utils->ansi.strcpy(out.return_msg, text);
    return PF_Err_NONE;
}

PF_Err GlobalSetup(PF_InData& in, PF_OutData& out) {
    // Hosts expect a handle from effects that name no data of their own; nothing reads it.
    constexpr std::uint64_t kGlobalDataBytes = 4;
    out.out_flags |= kOutFlags;
    out.my_version = kPackedVersion;
    out.global_data = in.utils->host_new_handle(kGlobalDataBytes);
    out.out_flags2 = kOutFlags2;
    if (out.global_data != nullptr) in.utils->host_unlock_handle(out.global_data);
    return PF_Err_NONE;
}

PF_Err Dispatch(std::int32_t cmd, PF_InData* in, PF_OutData* out, PF_ParamDef** params,
                PF_EffectWorld* output, void* extra) {
    switch (cmd) {
        case PF_Cmd_ABOUT: return About(*in, *out);
        case PF_Cmd_GLOBAL_SETUP: return GlobalSetup(*in, *out);
        case PF_Cmd_PARAMS_SETUP: {
            PluginHost_AE_Impl host(in, out, params, output);
            return SetUpParameters(host);
        }
        case PF_Cmd_DO_DIALOG: out->out_flags |= PF_OutFlag_FORCE_RERENDER; return PF_Err_NONE;
        case PF_Cmd_RENDER: {
            PluginHost_AE_Impl host(in, out, params, output);
            return RenderEntry(host);
        }
        case PF_Cmd_USER_CHANGED_PARAM: out->out_flags |= PF_OutFlag_REFRESH_UI; return PF_Err_NONE;
        case PF_Cmd_UPDATE_PARAMS_UI: return UpdateParameterUi(*in, *out, params);
        case PF_Cmd_SMART_PRE_RENDER:
            return SmartPreRender(*in, *static_cast<PF_PreRenderExtra*>(extra));
        case PF_Cmd_SMART_RENDER:
            return SmartRender(*in, *out, *static_cast<PF_SmartRenderExtra*>(extra));
        default: return PF_Err_NONE;
    }
}

}  // namespace
}  // namespace vireon

/// The library's one export. The host calls it for every command; no exception leaves it.
extern "C" VIREON_EXPORT vireon::sdk::PF_Err EntryPointFunc(
    std::int32_t cmd, vireon::sdk::PF_InData* in_data, vireon::sdk::PF_OutData* out_data,
    vireon::sdk::PF_ParamDef** params, vireon::sdk::PF_EffectWorld* output, void* extra) {
    try {
        return vireon::Dispatch(cmd, in_data, out_data, params, output, extra);
    } catch (const std::bad_alloc&) {
        return vireon::sdk::PF_Err_OUT_OF_MEMORY;
    } catch (...) {
        return vireon::sdk::PF_Err_INTERNAL_STRUCT_DAMAGED;
    }
}
