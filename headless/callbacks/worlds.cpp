#include <utility>

#include "headless/callbacks/dispatch.h"
#include "headless/callbacks/tables.h"

namespace vireon::headless {
namespace {

sdk::PF_Err MakeWorld(HostState& host, std::int32_t width, std::int32_t height, Depth depth,
                      bool clear, sdk::PF_EffectWorld* outWorld) {
    if (outWorld == nullptr) {
        host.violate("a new world needs a record to be written to");
        return sdk::PF_Err_BAD_CALLBACK_PARAM;
    }
    if (width < 1 || height < 1 || width > sdk::PF_MAX_WORLD_WIDTH ||
        height > sdk::PF_MAX_WORLD_HEIGHT) {
        host.violate("a new world of " + std::to_string(width) + " x " + std::to_string(height) +
                     " pixels is asked for");
        return sdk::PF_Err_BAD_CALLBACK_PARAM;
    }
    MadeWorld made{host.makeWorld(width, height, depth, clear)};
    const sdk::PF_EffectWorld record = made.world->record();
    const std::size_t bytes = made.world->bytes();
    host.worlds.emplace(record.reserved0, std::move(made));
    host.addBytes(bytes);
    *outWorld = record;
    return 0;
}

template <Slot slot>
sdk::PF_Err NewWorld(sdk::PF_ProgPtr effectRef, std::int32_t width, std::int32_t height,
                     std::int32_t flags, sdk::PF_EffectWorld* outWorld) {
    const sdk::PF_Err error = Serve(slot, effectRef, [&](HostState& host) {
        const Depth depth =
            (flags & sdk::PF_NewWorldFlag_DEEP_PIXELS) != 0 ? Depth::k16 : Depth::k8;
        return MakeWorld(host, width, height, depth,
                         (flags & sdk::PF_NewWorldFlag_CLEAR_PIXELS) != 0, outWorld);
    });
    if (error != 0 && outWorld != nullptr) {
        *outWorld = {};
    }
    return error;
}

sdk::PF_Err NewWorldOfFormat(sdk::PF_ProgPtr effectRef, std::int32_t width, std::int32_t height,
                             sdk::PF_Boolean clear, std::int32_t pixelFormat,
                             sdk::PF_EffectWorld* outWorld) {
    const sdk::PF_Err error =
        Serve(Slot::kSuiteNewWorld, effectRef, [&](HostState& host) -> sdk::PF_Err {
            for (const Depth depth : {Depth::k8, Depth::k16, Depth::kFloat}) {
                if (pixelFormat == PixelFormatOf(depth)) {
                    return MakeWorld(host, width, height, depth, clear != 0, outWorld);
                }
            }
            host.violate("a new world of an unknown pixel format is asked for");
            return sdk::PF_Err_BAD_CALLBACK_PARAM;
        });
    if (error != 0 && outWorld != nullptr) {
        *outWorld = {};
    }
    return error;
}

template <Slot slot>
sdk::PF_Err DisposeWorld(sdk::PF_ProgPtr effectRef, sdk::PF_EffectWorld* world) {
    return Serve(slot, effectRef, [&](HostState& host) -> sdk::PF_Err {
        if (world == nullptr) {
            host.violate("disposal of no world");
            return sdk::PF_Err_BAD_CALLBACK_PARAM;
        }
        const auto it = host.worlds.find(world->reserved0);
        if (it == host.worlds.end()) {
            host.violate(IdentifyWorld(*world)
                             ? "disposal of a world that the host owns"
                             : "disposal of a world that is not out (disposed of twice?)");
            return sdk::PF_Err_BAD_CALLBACK_PARAM;
        }
        const std::string damage = it->second.world->damage();
        if (!damage.empty()) {
            host.violate("world of the effect: " + damage);
        }
        host.removeBytes(it->second.world->bytes());
        host.worlds.erase(it);
        return 0;
    });
}

sdk::PF_Err GetPixelFormat(const sdk::PF_EffectWorld* world, std::int32_t* outFormat) {
    return ServeAnyone(Slot::kGetPixelFormat, [&](HostState& host) -> sdk::PF_Err {
        const auto identity = world == nullptr ? std::nullopt : IdentifyWorld(*world);
        if (!identity || outFormat == nullptr) {
            host.violate("the pixel format of something that is no world is asked for");
            return sdk::PF_Err_BAD_CALLBACK_PARAM;
        }
        *outFormat = identity->pixelFormat;
        return 0;
    });
}

template <Slot slot, Depth depth, typename Pixel>
sdk::PF_Err GetPixelData(sdk::PF_EffectWorld* world, void* pixelOrNull, Pixel** outPixels) {
    return ServeAnyone(slot, [&](HostState& host) -> sdk::PF_Err {
        const auto identity = world == nullptr ? std::nullopt : IdentifyWorld(*world);
        if (!identity || outPixels == nullptr) {
            host.violate("the pixels of something that is no world are asked for");
            return sdk::PF_Err_BAD_CALLBACK_PARAM;
        }
        void* const pixels = pixelOrNull != nullptr ? pixelOrNull : world->data;
        *outPixels = identity->depth == depth ? static_cast<Pixel*>(pixels) : nullptr;
        return 0;
    });
}

}  // namespace

void FillWorlds(sdk::PF_UtilCallbacks& table) {
    table.new_world = NewWorld<Slot::kNewWorld>;
    table.dispose_world = DisposeWorld<Slot::kDisposeWorld>;
    table.get_pixel_data8 = GetPixelData<Slot::kGetPixelData8, Depth::k8, sdk::PF_Pixel>;
    table.get_pixel_data16 = GetPixelData<Slot::kGetPixelData16, Depth::k16, sdk::PF_Pixel16>;
}

const sdk::PF_WorldSuite1* WorldSuite1Table() {
    static const sdk::PF_WorldSuite1 table = {NewWorld<Slot::kSuiteNewWorld>,
                                              DisposeWorld<Slot::kSuiteDisposeWorld>};
    return &table;
}

const sdk::PF_WorldSuite2* WorldSuite2Table() {
    static const sdk::PF_WorldSuite2 table = {
        NewWorldOfFormat, DisposeWorld<Slot::kSuiteDisposeWorld>, GetPixelFormat};
    return &table;
}

}  // namespace vireon::headless
