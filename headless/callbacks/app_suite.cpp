#include "headless/callbacks/dispatch.h"
#include "headless/callbacks/tables.h"

namespace vireon::headless {
namespace {

/// A middle grey, the same for every part of the interface that this host does not draw.
constexpr sdk::PF_App_Color kGrey{0x8000, 0x8000, 0x8000};

sdk::PF_Err GetBgColor(sdk::PF_App_Color* outColour) {
    return ServeAnyone(Slot::kAppGetBgColor, [&](HostState&) -> sdk::PF_Err {
        *outColour = kGrey;
        return 0;
    });
}

sdk::PF_Err GetColor(std::int16_t /*colourKind*/, sdk::PF_App_Color* outColour) {
    return ServeAnyone(Slot::kAppGetColor, [&](HostState&) -> sdk::PF_Err {
        *outColour = kGrey;
        return 0;
    });
}

sdk::PF_Err GetPersonalInfo(sdk::PF_AppPersonalTextInfo* outInfo) {
    return ServeAnyone(Slot::kGetPersonalInfo, [&](HostState&) -> sdk::PF_Err {
        *outInfo = {};
        return 0;
    });
}

sdk::PF_Err IsRenderEngine(sdk::PF_Boolean* outFlag) {
    return ServeAnyone(Slot::kIsRenderEngine, [&](HostState& host) -> sdk::PF_Err {
        *outFlag = host.settings.renderEngine ? 1 : 0;
        return 0;
    });
}

}  // namespace

const sdk::PFAppSuite4* AppSuiteTable() {
    static const sdk::PFAppSuite4 table = [] {
        sdk::PFAppSuite4 suite{};
        suite.PF_AppGetBgColor = GetBgColor;
        suite.PF_AppGetColor = GetColor;
        suite.PF_GetPersonalInfo = GetPersonalInfo;
        FillRefusing<Slot::kAppSuiteOther>(suite.PF_GetFontStyleSheet);
        FillRefusing<Slot::kAppSuiteOther>(suite.PF_SetCursor);
        suite.PF_IsRenderEngine = IsRenderEngine;
        FillRefusing<Slot::kAppSuiteOther>(suite.PF_AppColorPickerDialog);
        FillRefusing<Slot::kAppSuiteOther>(suite.PF_GetMouse);
        FillRefusing<Slot::kAppSuiteOther>(suite.PF_InvalidateRect);
        FillRefusing<Slot::kAppSuiteOther>(suite.PF_ConvertLocalToGlobal);
        FillRefusing<Slot::kAppSuiteOther>(suite.PF_GetColorAtGlobalPoint);
        return suite;
    }();
    return &table;
}

}  // namespace vireon::headless
