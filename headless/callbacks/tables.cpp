#include "headless/callbacks/tables.h"

#include <cstring>
#include <vector>

#include "headless/callbacks/dispatch.h"
#include "headless/platform.h"

namespace vireon::headless {
namespace {

thread_local HostState* currentHost = nullptr;

sdk::PF_Err App(sdk::PF_ProgPtr /*effectRef*/, std::int32_t /*selector*/, ...) {
    return Refuse(Slot::kApp);
}

/// UTF-16 units of a text in UTF-8; bytes that are no UTF-8 become U+FFFD.
std::vector<std::uint16_t> Utf16(const std::string& text) {
    constexpr std::uint32_t kReplacement = 0xFFFD;
    std::vector<std::uint16_t> units;
    for (std::size_t at = 0; at < text.size();) {
        const auto byte = [&](std::size_t offset) {
            return static_cast<std::uint32_t>(static_cast<unsigned char>(text[at + offset]));
        };
        const std::uint32_t lead = byte(0);
        const std::size_t length = lead < 0x80           ? 1
                                   : (lead >> 5) == 0x06 ? 2
                                   : (lead >> 4) == 0x0E ? 3
                                   : (lead >> 3) == 0x1E ? 4
                                                         : 0;
        std::uint32_t code = length == 0 || at + length > text.size() ? kReplacement
                             : length == 1                            ? lead
                                                                      : lead & (0x7Fu >> length);
        std::size_t used = 1;
        if (code != kReplacement) {
            for (; used < length && (byte(used) >> 6) == 2; ++used) {
                code = code << 6 | (byte(used) & 0x3F);
            }
            if (used != length || code > 0x10FFFF) {
                code = kReplacement;
            }
        }
        at += used;
        if (code < 0x10000) {
            units.push_back(static_cast<std::uint16_t>(code));
        } else {
            units.push_back(static_cast<std::uint16_t>(0xD800 + ((code - 0x10000) >> 10)));
            units.push_back(static_cast<std::uint16_t>(0xDC00 + ((code - 0x10000) & 0x3FF)));
        }
    }
    return units;
}

/// Writes text with its zero into a buffer of kPlatformPathLength units.
template <typename Units>
sdk::PF_Err WritePath(const Units& path, void* out) {
    if (path.size() >= static_cast<std::size_t>(sdk::kPlatformPathLength)) {
        return sdk::PF_Err_BAD_CALLBACK_PARAM;
    }
    const typename Units::value_type zero{};
    auto* const bytes = static_cast<std::uint8_t*>(out);
    const std::size_t length = path.size() * sizeof zero;
    std::memcpy(bytes, path.data(), length);
    std::memcpy(bytes + length, &zero, sizeof zero);
    return 0;
}

sdk::PF_Err GetPlatformData(sdk::PF_ProgPtr effectRef, std::int32_t which, void* outData) {
    return Serve(Slot::kGetPlatformData, effectRef, [&](HostState& host) -> sdk::PF_Err {
        if (outData == nullptr) {
            host.violate("get_platform_data without a place for the result");
            return sdk::PF_Err_BAD_CALLBACK_PARAM;
        }
        const std::string& path =
            host.settings.pluginPath.empty() ? host.library.path() : host.settings.pluginPath;
        const auto writePointer = [&](void* pointer) -> sdk::PF_Err {
            std::memcpy(outData, &pointer, sizeof pointer);
            return 0;
        };
        switch (which) {
            case sdk::PF_PlatData_MAIN_WND: return writePointer(nullptr);
            case sdk::PF_PlatData_EXE_FILE_PATH_DEPRECATED:
            case sdk::PF_PlatData_RES_FILE_PATH_DEPRECATED:
                return WritePath(platform::NarrowPath(path), outData);
            case sdk::PF_PlatData_RES_DLLINSTANCE: return writePointer(host.library.moduleHandle());
            case sdk::PF_PlatData_EXE_FILE_PATH_W:
            case sdk::PF_PlatData_RES_FILE_PATH_W: return WritePath(Utf16(path), outData);
            default: return sdk::PF_Err_BAD_CALLBACK_PARAM;
        }
    });
}

void FillRefusingUtilities(sdk::PF_UtilCallbacks& table) {
    FillRefusing<Slot::kBeginSampling>(table.begin_sampling);
    FillRefusing<Slot::kSubpixelSample>(table.subpixel_sample);
    FillRefusing<Slot::kAreaSample>(table.area_sample);
    FillRefusing<Slot::kEndSampling>(table.end_sampling);
    FillRefusing<Slot::kCompositeRect>(table.composite_rect);
    FillRefusing<Slot::kBlend>(table.blend);
    FillRefusing<Slot::kConvolve>(table.convolve);
    FillRefusing<Slot::kGaussianKernel>(table.gaussian_kernel);
    FillRefusing<Slot::kIterate>(table.iterate);
    FillRefusing<Slot::kPremultiply>(table.premultiply);
    FillRefusing<Slot::kPremultiplyColor>(table.premultiply_color);
    FillRefusing<Slot::kIterateOrigin>(table.iterate_origin);
    FillRefusing<Slot::kIterateLut>(table.iterate_lut);
    FillRefusing<Slot::kTransferRect>(table.transfer_rect);
    FillRefusing<Slot::kTransformWorld>(table.transform_world);
    FillRefusing<Slot::kGetCallbackAddr>(table.get_callback_addr);
    FillRefusing<Slot::kIterateOriginNonClipSrc>(table.iterate_origin_non_clip_src);
    FillRefusing<Slot::kIterateGeneric>(table.iterate_generic);
    FillRefusing<Slot::kSubpixelSample16>(table.subpixel_sample16);
    FillRefusing<Slot::kAreaSample16>(table.area_sample16);
    FillRefusing<Slot::kPremultiplyColor16>(table.premultiply_color16);
    FillRefusing<Slot::kIterate16>(table.iterate16);
    FillRefusing<Slot::kIterateOrigin16>(table.iterate_origin16);
    FillRefusing<Slot::kIterateOriginNonClipSrc16>(table.iterate_origin_non_clip_src16);
    table.app = App;

    // The dead slot still holds the address of something that can be called.
    sdk::PF_Err (*dead)(sdk::PF_ProgPtr) = nullptr;
    FillRefusing<Slot::kGetBatchFunc>(dead);
    static_assert(sizeof dead == sizeof table.get_batch_func_is_deprecated);
    std::memcpy(&table.get_batch_func_is_deprecated, &dead, sizeof dead);
}

void FillColors(sdk::PF_ColorCallbacks& table) {
    FillRefusing<Slot::kRgbToHls>(table.RGBtoHLS);
    FillRefusing<Slot::kHlsToRgb>(table.HLStoRGB);
    FillRefusing<Slot::kRgbToYiq>(table.RGBtoYIQ);
    FillRefusing<Slot::kYiqToRgb>(table.YIQtoRGB);
    FillRefusing<Slot::kLuminance>(table.Luminance);
    FillRefusing<Slot::kHue>(table.Hue);
    FillRefusing<Slot::kLightness>(table.Lightness);
    FillRefusing<Slot::kSaturation>(table.Saturation);
}

}  // namespace

HostState* CurrentHost() {
    return currentHost;
}

CurrentHostScope::CurrentHostScope(HostState& host) : previous_(currentHost) {
    currentHost = &host;
}

CurrentHostScope::~CurrentHostScope() {
    currentHost = previous_;
}

sdk::PF_UtilCallbacks* UtilTable() {
    static sdk::PF_UtilCallbacks table = [] {
        sdk::PF_UtilCallbacks made{};
        FillRefusingUtilities(made);
        FillPixels(made);
        FillWorlds(made);
        FillHandles(made);
        FillAnsi(made.ansi);
        FillColors(made.colorCB);
        made.get_platform_data = GetPlatformData;
        return made;
    }();
    return &table;
}

const void* FindSuite(const std::string& name, std::int32_t version) {
    struct Offer {
        sdk::SuiteId id;
        const void* table;
    };
    static const Offer offers[] = {{sdk::kWorldSuite1, WorldSuite1Table()},
                                   {sdk::kWorldSuite2, WorldSuite2Table()},
                                   {sdk::kColorParamSuite1, ColorParamSuiteTable()},
                                   {sdk::kParamUtilsSuite2, ParamUtilsSuite2Table()},
                                   {sdk::kParamUtilsSuite3, ParamUtilsSuite3Table()},
                                   {sdk::kHandleSuite2, HandleSuiteTable()},
                                   {sdk::kAppSuite6, AppSuiteTable()},
                                   {sdk::kPathQuerySuite1, PathQuerySuiteTable()},
                                   {sdk::kPathDataSuite1, PathDataSuiteTable()}};
    for (const Offer& offer : offers) {
        if (name == offer.id.name && version == offer.id.version) {
            return offer.table;
        }
    }
    return nullptr;
}

}  // namespace vireon::headless
