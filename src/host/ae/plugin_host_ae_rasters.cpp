#include "host/ae/plugin_host_ae_impl.h"

#include <algorithm>
#include <new>
#include <utility>

#include "host/ae/host_helpers.h"
#include "host/application_codes.h"
#include "host/result_codes.h"
#include "image/copy_pixels.h"
#include "image/pixel_format.h"

namespace vireon {

using namespace sdk;

namespace {

// What a 16-bit world's values are multiplied by, by who asks for its layout.
constexpr float kFrameValueScale = 2.0f;
constexpr float kRasterValueScale = 0.5f;

}  // namespace

std::unique_ptr<PluginRaster_API> PluginHost_AE_Impl::parameterRaster(std::int32_t index) {
    if (parameter(index) == nullptr) return nullptr;
    return std::make_unique<PluginRaster_AE_Impl>(&params_[index]->u.ld, this);
}

std::unique_ptr<PluginRaster_API> PluginHost_AE_Impl::outputRaster() {
    if (output_ == nullptr) return nullptr;
    return std::make_unique<PluginRaster_AE_Impl>(output_, this);
}

std::unique_ptr<PluginRaster_API> PluginHost_AE_Impl::worldFromLayout(
    std::unique_ptr<OwnedLayout>& record) {
    if (record == nullptr || LayoutClass(record->layout.formatCode) != 0) return nullptr;
    const std::unique_ptr<OwnedLayout> layout = std::move(record);
    std::int32_t error = kSuccess;
    auto raster =
        makeWorld(layout->layout.width, layout->layout.height, kDepth8, /*clear=*/false, error);
    if (layout->memory != nullptr) disposeHandle(layout->memory);
    return error == kSuccess ? std::move(raster) : nullptr;
}

std::unique_ptr<PluginRaster_AE_Impl> PluginHost_AE_Impl::makeWorld(std::int32_t width,
                                                                    std::int32_t height,
                                                                    std::int32_t depth, bool clear,
                                                                    std::int32_t& error) {
    auto world = std::make_unique<PF_EffectWorld>();
    auto raster = std::make_unique<PluginRaster_AE_Impl>(world.get(), this);
    if (depth == kDepthFloat && hasWorldSuite()) {
        error = worldSuite_->PF_NewWorld(in_->effect_ref, width, height, clear ? 1 : 0,
                                         PF_PixelFormat_ARGB128, world.get());
        raster->setMadeBySuite();
    } else {
        const std::int32_t flags = (depth == kDepth16 ? PF_NewWorldFlag_DEEP_PIXELS : 0) |
                                   (clear ? PF_NewWorldFlag_CLEAR_PIXELS : 0);
        error = in_->utils->new_world(in_->effect_ref, width, height, flags, world.get());
    }
    if (error != kSuccess) {
        raster->forgetWorld();
    } else {
        // From here on the record goes back with the world, by disposeWorld.
        static_cast<void>(world.release());
    }
    return raster;
}

std::unique_ptr<PluginRaster_API> PluginHost_AE_Impl::newWorld(std::int32_t width,
                                                               std::int32_t height,
                                                               std::int32_t depth,
                                                               std::int32_t& error,
                                                               bool clear) try {
    error = kSuccess;
    const bool plain = hostVersion() < kWorldSuiteVersion || depth == kDepth8 || depth == kDepth16;
    if (!plain && (depth != kDepthFloat || worldSuite_ == nullptr)) return nullptr;
    auto raster = makeWorld(width, height, depth, clear, error);
    if (plain && error == kSuccess) fill(raster->world());
    return raster;
} catch (const std::bad_alloc&) {
    error = kOutOfMemory;
    return nullptr;
}

std::int32_t PluginHost_AE_Impl::disposeWorld(PluginRaster_API& raster) {
    PF_EffectWorld* const world = WorldOf(raster);
    if (world == nullptr) return kSuccess;
    // Float worlds go back through the suite, without a result; one that came from it does so even
    // when the host no longer tells its depth.
    std::int32_t error = kSuccess;
    const bool bySuite =
        raster.asHostWorld()->madeBySuite() || (hasWorldSuite() && raster.depth() == kDepthFloat);
    if (bySuite) {
        worldSuite_->PF_DisposeWorld(in_->effect_ref, world);
    } else {
        error = in_->utils->dispose_world(in_->effect_ref, world);
    }
    raster.asHostWorld()->forgetWorld();
    delete world;
    return error;
}

std::int32_t PluginHost_AE_Impl::worldFormat(const PF_EffectWorld& world,
                                             std::int32_t& error) const {
    error = kSuccess;
    if (hasWorldSuite()) {
        std::int32_t format = 0;
        error = worldSuite_->PF_GetPixelFormat(&world, &format);
        if (error != kSuccess) return kFormat8;
        switch (format) {
            case PF_PixelFormat_ARGB128: return kFormatFloat;
            case PF_PixelFormat_ARGB64: return kFormatWorld16;
            case PF_PixelFormat_BGRA32: return kFormat8Bgra;
            default: return kFormat8;
        }
    }
    return (world.world_flags & PF_WorldFlag_DEEP) != 0 ? kFormatWorld16 : kFormat8;
}

std::int32_t PluginHost_AE_Impl::worldPixels(PF_EffectWorld& world, std::int32_t formatCode,
                                             void*& pixels) const {
    pixels = world.data;
    // Each part of the version is compared by itself, so that 13.0 counts as old too.
    const bool oldHost = in_->version.major < 12 || in_->version.minor < 5;
    if (isApplication(kPremierePro) || oldHost || formatCode == kFormatFloat) return kSuccess;
    if (world.data == nullptr) return kSuccess;

    std::int32_t error = kSuccess;
    if (formatCode == kFormatWorld16) {
        PF_Pixel16* typed = nullptr;
        error = in_->utils->get_pixel_data16(&world, nullptr, &typed);
        pixels = typed;
    } else {
        PF_Pixel* typed = nullptr;
        error = in_->utils->get_pixel_data8(&world, nullptr, &typed);
        pixels = typed;
    }
    // The host denies the world's depth: nothing may be read or written there.
    if (error == kSuccess && pixels == nullptr) error = kBadCallbackParameter;
    return error;
}

std::int32_t PluginHost_AE_Impl::worldLayout(const PluginRaster_AE_Impl& raster,
                                             float deepValueScale, RasterLayout& layout) const {
    layout = {};
    PF_EffectWorld& world = *raster.world();
    std::int32_t error = kSuccess;
    layout.formatCode = raster.format(error);
    if (error != kSuccess) return error;
    layout.width = world.width;
    layout.height = world.height;
    layout.rowBytes = world.rowbytes;
    layout.bytesPerPixel = BytesPerPixel(DepthOfFormat(layout.formatCode));
    layout.pixelAspectRatio = static_cast<float>(pixelAspectRatio());
    layout.valueScale = layout.formatCode == kFormatWorld16 ? deepValueScale : 1.0f;
    return worldPixels(world, layout.formatCode, layout.pixels);
}

std::int32_t PluginHost_AE_Impl::parameterLayout(std::int32_t index, RasterLayout& layout) {
    if (parameter(index) == nullptr) return kInvalidIndex;
    return worldLayout({&params_[index]->u.ld, this}, kFrameValueScale, layout);
}

std::int32_t PluginHost_AE_Impl::outputLayout(RasterLayout& layout) {
    if (output_ == nullptr) return kBadCallbackParameter;
    return worldLayout({output_, this}, kFrameValueScale, layout);
}

std::int32_t PluginHost_AE_Impl::rasterLayout(PluginRaster_API& raster, RasterLayout& layout) {
    if (const RasterLayout* record = raster.layoutRecord()) {
        layout = *record;
        return kSuccess;
    }
    if (WorldOf(raster) == nullptr) return kBadCallbackParameter;
    return worldLayout(*raster.asHostWorld(), kRasterValueScale, layout);
}

bool PluginHost_AE_Impl::isRasterDeep(PluginRaster_API& raster) const {
    const PF_EffectWorld* const world = WorldOf(raster);
    return isApplication(kCbst) && world != nullptr &&
           (world->world_flags & PF_WorldFlag_DEEP) != 0;
}

void PluginHost_AE_Impl::adoptOutput(PluginRaster_API& raster) {
    if (PF_EffectWorld* const world = WorldOf(raster)) output_ = world;
}

std::unique_ptr<PluginRaster_API> PluginHost_AE_Impl::inputLayerAt(std::int32_t time) {
    const std::int32_t limited = std::clamp(time, 0, std::max(in_->total_time, 0));
    PF_ParamDef record{};
    if (in_->inter.checkout_param(in_->effect_ref, 0, limited, in_->time_step, in_->time_scale,
                                  &record) != 0) {
        return nullptr;
    }
    auto copy = copyOfLayer(record.u.ld);
    in_->inter.checkin_param(in_->effect_ref, &record);
    return copy;
}

std::unique_ptr<PluginRaster_API> PluginHost_AE_Impl::copyOfLayer(PF_EffectWorld& layer) try {
    if (layer.data == nullptr) return nullptr;
    PluginRaster_AE_Impl source(&layer, this);
    RasterLayout from;
    if (rasterLayout(source, from) != kSuccess) return nullptr;

    std::int32_t error = kSuccess;
    auto copy = newWorld(source.width(), source.height(), source.depth(), error, /*clear=*/false);
    if (copy == nullptr || error != kSuccess) return nullptr;
    RasterLayout to;
    error = rasterLayout(*copy, to);
    if (error == kSuccess && from.formatCode == to.formatCode) {
        error = copyRaster(source, *copy);
    } else if (error == kSuccess) {
        CopyPixels(from, to);
    }
    if (error == kSuccess) return copy;
    disposeWorld(*copy);
    return nullptr;
} catch (const std::bad_alloc&) {
    return nullptr;
}

}  // namespace vireon
