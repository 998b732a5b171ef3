#include "host/ae/plugin_raster_ae_impl.h"

#include "host/ae/plugin_host_ae_impl.h"
#include "image/pixel_format.h"

namespace vireon {

std::int32_t PluginRaster_AE_Impl::depth() const {
    std::int32_t error = 0;
    return DepthOfFormat(format(error));
}

std::int32_t PluginRaster_AE_Impl::format(std::int32_t& error) const {
    error = 0;
    if (format_) return *format_;
    if (world_ == nullptr) return kFormat8;
    const std::int32_t answer = host_->worldFormat(*world_, error);
    if (error == 0) format_ = answer;
    return answer;
}

void PluginRaster_AE_Impl::attach(PluginHost_API* host) {
    // Host worlds are served by their host's own object only.
    host_ = static_cast<PluginHost_AE_Impl*>(host);
}

}  // namespace vireon
