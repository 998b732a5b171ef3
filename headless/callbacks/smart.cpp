#include <algorithm>

#include "headless/callbacks/dispatch.h"
#include "headless/callbacks/tables.h"

namespace vireon::headless {
namespace {

LayerAnnouncement* FindAnnouncement(CommandContext& context, std::int32_t id) {
    if (context.announcements == nullptr) {
        return nullptr;
    }
    const auto it = std::find_if(context.announcements->begin(), context.announcements->end(),
                                 [id](const LayerAnnouncement& layer) { return layer.id == id; });
    return it == context.announcements->end() ? nullptr : &*it;
}

sdk::PF_CheckoutResult ResultFor(const HostState& host, const LayerAnnouncement& layer) {
    sdk::PF_CheckoutResult result{};
    result.result_rect = layer.resultRect;
    result.max_result_rect = layer.maxResultRect;
    result.par = host.settings.pixelAspect;
    if (layer.index == 0) {
        result.ref_width = host.fullWidth();
        result.ref_height = host.fullHeight();
    } else if (layer.world != nullptr) {
        const HostSettings& settings = host.settings;
        result.par = layer.world->options().pixelAspect;
        result.ref_width = static_cast<std::int32_t>(layer.world->width() /
                                                     HostState::factor(settings.downsampleX));
        result.ref_height = static_cast<std::int32_t>(layer.world->height() /
                                                      HostState::factor(settings.downsampleY));
    }
    return result;
}

sdk::PF_Err CheckoutLayer(sdk::PF_ProgPtr effectRef, std::int32_t index, std::int32_t checkoutId,
                          const sdk::PF_RenderRequest* request, std::int32_t time,
                          std::int32_t timeStep, std::uint32_t timeScale,
                          sdk::PF_CheckoutResult* outResult) {
    return Serve(Slot::kCheckoutLayer, effectRef, [&](HostState& host) -> sdk::PF_Err {
        CommandContext& context = *host.context;
        if (context.command != sdk::PF_Cmd_SMART_PRE_RENDER || context.announcements == nullptr) {
            host.violate("checkout_layer in " + CommandName(context.command));
            return sdk::PF_Err_INVALID_CALLBACK;
        }
        if (request == nullptr || outResult == nullptr) {
            host.violate("checkout_layer without request or result");
            return sdk::PF_Err_BAD_CALLBACK_PARAM;
        }
        if (index < 0 || index >= static_cast<std::int32_t>(host.parameters.size()) ||
            host.parameters[static_cast<std::size_t>(index)].kind() != sdk::PF_Param_LAYER) {
            return sdk::PF_Err_INVALID_INDEX;
        }
        if (FindAnnouncement(context, checkoutId) != nullptr) {
            host.violate("two layers are announced under the id " + std::to_string(checkoutId));
            return sdk::PF_Err_BAD_CALLBACK_PARAM;
        }
        LayerAnnouncement layer;
        layer.index = index;
        layer.id = checkoutId;
        layer.request = *request;
        layer.time = {time, timeStep, timeScale};
        layer.world = host.layerFor(context, index, layer.time);
        if (layer.world != nullptr) {
            layer.maxResultRect = layer.world->bounds();
            layer.resultRect = host.settings.cropCheckouts
                                   ? Intersection(layer.maxResultRect, request->rect)
                                   : layer.maxResultRect;
            if (IsEmpty(layer.resultRect)) {
                layer.resultRect = {};
            }
        }
        *outResult = ResultFor(host, layer);
        context.announcements->push_back(std::move(layer));
        return 0;
    });
}

/// The part of a lent record that lies in a rectangle of layer space.
sdk::PF_EffectWorld Cropped(sdk::PF_EffectWorld record, const sdk::PF_LRect& rect, Depth depth) {
    const std::int32_t x = rect.left - record.origin_x;
    const std::int32_t y = rect.top - record.origin_y;
    record.data = static_cast<std::uint8_t*>(record.data) +
                  static_cast<std::ptrdiff_t>(y) * record.rowbytes +
                  static_cast<std::ptrdiff_t>(x) * BytesPerPixel(depth);
    record.width = rect.right - rect.left;
    record.height = rect.bottom - rect.top;
    record.extent_hint = {0, 0, record.width, record.height};
    record.origin_x = rect.left;
    record.origin_y = rect.top;
    return record;
}

sdk::PF_Err CheckoutLayerPixels(sdk::PF_ProgPtr effectRef, std::int32_t checkoutId,
                                sdk::PF_EffectWorld** outWorld) {
    return Serve(Slot::kCheckoutLayerPixels, effectRef, [&](HostState& host) -> sdk::PF_Err {
        CommandContext& context = *host.context;
        if (outWorld == nullptr || context.command != sdk::PF_Cmd_SMART_RENDER) {
            host.violate("checkout_layer_pixels in " + CommandName(context.command) +
                         " or without a place for the result");
            return sdk::PF_Err_BAD_CALLBACK_PARAM;
        }
        const LayerAnnouncement* const layer = FindAnnouncement(context, checkoutId);
        if (layer == nullptr) {
            host.violate("pixels are checked out under the id " + std::to_string(checkoutId) +
                         ", which was not announced");
            return sdk::PF_Err_BAD_CALLBACK_PARAM;
        }
        if (!context.askedLayers.insert(checkoutId).second) {
            host.violate("the pixels of the id " + std::to_string(checkoutId) +
                         " are checked out twice");
        }
        const bool withheld = layer->index == 0 && host.settings.nullInput;
        if (withheld || layer->world == nullptr || IsEmpty(layer->resultRect)) {
            *outWorld = nullptr;
            return 0;
        }
        context.outLayers.insert(checkoutId);
        auto& record = context.layerRecords[checkoutId];
        record =
            Cropped(host.lend(context, layer->world), layer->resultRect, layer->world->depth());
        *outWorld = &record;
        return 0;
    });
}

sdk::PF_Err CheckinLayerPixels(sdk::PF_ProgPtr effectRef, std::int32_t checkoutId) {
    return Serve(Slot::kCheckinLayerPixels, effectRef, [&](HostState& host) -> sdk::PF_Err {
        CommandContext& context = *host.context;
        if (!context.askedLayers.contains(checkoutId)) {
            host.violate("check-in of layer pixels that are not checked out, id " +
                         std::to_string(checkoutId));
            return sdk::PF_Err_BAD_CALLBACK_PARAM;
        }
        context.outLayers.erase(checkoutId);
        return 0;
    });
}

sdk::PF_Err CheckoutOutput(sdk::PF_ProgPtr effectRef, sdk::PF_EffectWorld** outWorld) {
    return Serve(Slot::kCheckoutOutput, effectRef, [&](HostState& host) -> sdk::PF_Err {
        CommandContext& context = *host.context;
        if (outWorld == nullptr || context.command != sdk::PF_Cmd_SMART_RENDER) {
            host.violate("checkout_output in " + CommandName(context.command) +
                         " or without a place for the result");
            return sdk::PF_Err_BAD_CALLBACK_PARAM;
        }
        const bool announced = context.announcements != nullptr && !context.announcements->empty();
        if (announced && context.askedLayers.empty()) {
            host.violate("the output is checked out before any input");
        }
        *outWorld = context.output == nullptr ? nullptr : &context.output->record();
        return 0;
    });
}

sdk::PF_Err GuidMixIn(sdk::PF_ProgPtr effectRef, std::uint32_t /*byteCount*/,
                      const void* /*bytes*/) {
    return Serve(Slot::kGuidMixIn, effectRef, [](HostState&) -> sdk::PF_Err { return 0; });
}

}  // namespace

sdk::PF_PreRenderCallbacks* PreRenderTable() {
    static sdk::PF_PreRenderCallbacks table = {CheckoutLayer, GuidMixIn};
    return &table;
}

sdk::PF_SmartRenderCallbacks* SmartRenderTable() {
    static sdk::PF_SmartRenderCallbacks table = {CheckoutLayerPixels, CheckinLayerPixels,
                                                 CheckoutOutput};
    return &table;
}

}  // namespace vireon::headless
