#pragma once

#include <cstdint>

#include "host/plugin_raster_api.h"

namespace vireon {

/// A raster in memory that the effect takes from the host. Rows are packed: row bytes are exactly
/// width times bytes per pixel. The pixels are not cleared.
class PluginRaster_MEM_Impl final : public PluginRaster_API {
  public:
    /// Takes the memory from `host`, which must outlive the raster.
    /// \param width, height  pixels; 0 asks the host for a block of 0 bytes
    /// \param depth  `kDepth8`, `kDepth16` or `kDepthFloat`
    /// \param error  set to 0; a failure is thrown instead
    /// \throws std::bad_alloc when the host has no memory, std::invalid_argument for other depths,
    ///         negative sizes or rows of more than 2^31 - 1 bytes
    PluginRaster_MEM_Impl(PluginHost_API& host, std::int32_t width, std::int32_t height,
                          std::int32_t depth, std::int32_t& error);
    ~PluginRaster_MEM_Impl() override;

    std::int32_t width() const override { return layout_.width; }
    std::int32_t height() const override { return layout_.height; }
    std::int32_t depth() const override { return depth_; }
    std::int32_t rowBytes() const override { return layout_.rowBytes; }
    PluginRaster_AE_Impl* asHostWorld() override { return nullptr; }
    void attach(PluginHost_API*) override {}
    RasterLayout* layoutRecord() override { return &layout_; }

  private:
    RasterLayout layout_;
    PluginHost_API* host_;
    void** handle_ = nullptr;
    std::int32_t depth_;
};

}  // namespace vireon
