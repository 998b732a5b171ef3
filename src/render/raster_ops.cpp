#include "render/raster_ops.h"

#include <algorithm>
#include <new>
#include <stdexcept>

#include "host/application_codes.h"
#include "host/plugin_host_api.h"
#include "host/plugin_raster_mem_impl.h"
#include "host/result_codes.h"
#include "image/convert_pixels.h"
#include "image/copy_pixels.h"
#include "image/pixel_format.h"
#include "simd/level.h"

namespace vireon {
namespace {

std::unique_ptr<PluginRaster_API> MakeMemoryRaster(PluginHost_API& host, std::int32_t width,
                                                   std::int32_t height, std::int32_t depth,
                                                   std::int32_t& error) {
    try {
        return std::make_unique<PluginRaster_MEM_Impl>(host, width, height, depth, error);
    } catch (const std::bad_alloc&) {
        error = kOutOfMemory;
    } catch (const std::invalid_argument&) {
        // A size or depth that no raster can have is no host's error.
    }
    return nullptr;
}

void ToFloat(const RasterLayout& source, const FloatImage& destination) {
    if (const simd::KernelTable* kernels = simd::ActiveKernels()) {
        ConvertPixelsToFloat(*kernels, source, destination);
    } else {
        ConvertPixelsToFloat(source, destination);
    }
}

void FromFloat(const FloatImage& source, const RasterLayout& destination) {
    if (const simd::KernelTable* kernels = simd::ActiveKernels()) {
        ConvertPixelsFromFloat(*kernels, source, destination);
    } else {
        ConvertPixelsFromFloat(source, destination);
    }
}

}  // namespace

ScopedRaster& ScopedRaster::operator=(ScopedRaster&& other) noexcept {
    if (this != &other) {
        reset();
        host_ = other.host_;
        raster_ = std::move(other.raster_);
    }
    return *this;
}

void ScopedRaster::reset() {
    if (raster_) ReleaseRaster(*host_, *raster_);
    raster_.reset();
}

ScopedRaster CreateWorkingRaster(PluginHost_API& host, std::int32_t width, std::int32_t height,
                                 std::int32_t depth, bool clear, std::int32_t& error) {
    error = 0;
    if (host.isApplication(kAfterEffects)) {
        ScopedRaster world(host, host.newWorld(width, height, depth, error, clear));
        if (error != 0) return {};
        if (world) {
            const RasterLayout layout = DescribeRaster(host, *world, error);
            if (error != 0) return {};
            const bool usable = DepthOfFormat(layout.formatCode) == depth &&
                                (depth != kDepthFloat || IsFloatView(layout));
            if (usable) return world;
        }
        // The host cannot make a world of this depth; writing floats into a shallower one would
        // run over its end.
    }
    ScopedRaster raster(host, MakeMemoryRaster(host, width, height, depth, error));
    if (raster && clear) ClearPixels(*raster->layoutRecord());
    return raster;
}

void ReleaseRaster(PluginHost_API& host, PluginRaster_API& raster) {
    if (raster.layoutRecord() == nullptr) host.disposeWorld(raster);
}

RasterLayout DescribeRaster(PluginHost_API& host, PluginRaster_API& raster, std::int32_t& error) {
    error = 0;
    if (const RasterLayout* record = raster.layoutRecord()) return *record;
    RasterLayout layout;
    error = host.rasterLayout(raster, layout);
    if (error != 0) layout.pixels = nullptr;
    return layout;
}

std::int32_t CopyRaster(PluginHost_API& host, PluginRaster_API& destination,
                        PluginRaster_API& source) {
    std::int32_t error = 0;
    const RasterLayout from = DescribeRaster(host, source, error);
    if (error != 0) return error;
    const RasterLayout to = DescribeRaster(host, destination, error);
    if (error != 0) return error;
    if (from.pixels == nullptr || to.pixels == nullptr) return kSuccess;

    const bool byHost = source.layoutRecord() == nullptr && destination.layoutRecord() == nullptr;
    if (byHost && from.formatCode == to.formatCode) {
        if (from.width == to.width && from.height == to.height) {
            return host.copyRaster(source, destination);
        }
        // Rectangles of equal size, or the host would scale one world to the other's size.
        ShortRect shared;
        shared.right = static_cast<std::int16_t>(std::min(from.width, to.width));
        shared.bottom = static_cast<std::int16_t>(std::min(from.height, to.height));
        return host.copyRectangle(source, destination, shared, shared);
    }
    CopyPixels(from, to);
    return kSuccess;
}

std::int32_t ClearRaster(PluginHost_API& host, PluginRaster_API& raster) {
    if (host.isApplication(kAfterEffects) && raster.layoutRecord() == nullptr) {
        host.clearRaster(raster);
        return kSuccess;
    }
    std::int32_t error = 0;
    const RasterLayout layout = DescribeRaster(host, raster, error);
    if (layout.pixels != nullptr) ClearPixels(layout);
    return kSuccess;
}

ScopedRaster ConvertToFloat(PluginHost_API& host, PluginRaster_API& source, std::int32_t& error) {
    const RasterLayout from = DescribeRaster(host, source, error);
    if (error != 0) return {};
    const bool hasPixels = from.pixels != nullptr;
    ScopedRaster converted = CreateWorkingRaster(host, source.width(), source.height(), kDepthFloat,
                                                 /*clear=*/!hasPixels, error);
    if (converted && hasPixels) ToFloat(from, ViewRaster(host, *converted));
    return converted;
}

std::int32_t ConvertFromFloat(PluginHost_API& host, PluginRaster_API& destination,
                              PluginRaster_API& source) {
    std::int32_t error = 0;
    const RasterLayout from = DescribeRaster(host, source, error);
    if (error != 0) return error;
    const RasterLayout to = DescribeRaster(host, destination, error);
    if (to.pixels != nullptr) FromFloat(FloatView(from), to);
    return error;
}

bool IsFloatRaster(PluginHost_API& host, PluginRaster_API& raster) {
    std::int32_t error = 0;
    return IsFloatView(DescribeRaster(host, raster, error));
}

FloatImage ViewRaster(PluginHost_API& host, PluginRaster_API& raster) {
    std::int32_t error = 0;
    return FloatView(DescribeRaster(host, raster, error));
}

}  // namespace vireon
