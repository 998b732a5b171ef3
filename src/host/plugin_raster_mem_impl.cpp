#include "host/plugin_raster_mem_impl.h"

#include <limits>
#include <new>
#include <stdexcept>

#include "host/plugin_host_api.h"
#include "image/pixel_format.h"

namespace vireon {

PluginRaster_MEM_Impl::PluginRaster_MEM_Impl(PluginHost_API& host, std::int32_t width,
                                             std::int32_t height, std::int32_t depth,
                                             std::int32_t& error)
    : host_(&host), depth_(depth) {
    error = 0;
    const std::int64_t bytesPerPixel = BytesPerPixel(depth);
    const std::int64_t rowBytes = bytesPerPixel * width;
    if (bytesPerPixel == 0) throw std::invalid_argument("memory raster of an unknown depth");
    if (width < 0 || height < 0 || rowBytes > std::numeric_limits<std::int32_t>::max()) {
        throw std::invalid_argument("memory raster of an impossible size");
    }

    // An empty raster does without memory where the host has none of 0 bytes.
    const bool empty = rowBytes * height == 0;
    handle_ = host.newHandle(rowBytes * height);
    if (handle_ != nullptr) layout_.pixels = host.lockHandle(handle_);
    if (layout_.pixels == nullptr && !empty) {
        if (handle_ != nullptr) host.disposeHandle(handle_);
        throw std::bad_alloc();
    }
    layout_.formatCode = MemoryFormatOfDepth(depth);
    layout_.width = width;
    layout_.height = height;
    layout_.rowBytes = static_cast<std::int32_t>(rowBytes);
    layout_.bytesPerPixel = static_cast<std::int32_t>(bytesPerPixel);
}

PluginRaster_MEM_Impl::~PluginRaster_MEM_Impl() {
    if (handle_ == nullptr) return;
    if (layout_.pixels != nullptr) host_->unlockHandle(handle_);
    host_->disposeHandle(handle_);
}

}  // namespace vireon
