#pragma once

#include <cstdint>
#include <memory>

#include "host/plugin_raster_api.h"
#include "image/float_image.h"
#include "image/raster_layout.h"

namespace vireon {

class PluginHost_API;

/// A raster of the effect's own for the length of a scope: released, then deleted, at its end.
class ScopedRaster {
  public:
    ScopedRaster() = default;
    ScopedRaster(PluginHost_API& host, std::unique_ptr<PluginRaster_API> raster)
        : host_(&host), raster_(std::move(raster)) {}
    ScopedRaster(ScopedRaster&&) = default;
    ScopedRaster& operator=(ScopedRaster&& other) noexcept;
    ~ScopedRaster() { reset(); }

    PluginRaster_API* get() const { return raster_.get(); }
    PluginRaster_API& operator*() const { return *raster_; }
    PluginRaster_API* operator->() const { return raster_.get(); }
    explicit operator bool() const { return raster_ != nullptr; }

    void reset();

  private:
    PluginHost_API* host_ = nullptr;
    std::unique_ptr<PluginRaster_API> raster_;
};

/// Makes a working raster: a host world in After Effects, memory elsewhere, and memory wherever the
/// host gives no world of the depth asked for (float worlds in old hosts).
/// \param clear  asks for transparent black; otherwise the pixels are undefined
/// \param error  why there is none: the host's code, 4 when memory is short, 0 for a size or depth
///        that no raster can have
/// \return the raster, or none
ScopedRaster CreateWorkingRaster(PluginHost_API& host, std::int32_t width, std::int32_t height,
                                 std::int32_t depth, bool clear, std::int32_t& error);

/// Hands a raster without a layout record of its own back to the host; a memory raster frees itself
/// when it is deleted.
void ReleaseRaster(PluginHost_API& host, PluginRaster_API& raster);

/// Layout of a raster: its own when it has one, else the host's answer. After an error of the host,
/// in `error`, the layout has no pixels.
RasterLayout DescribeRaster(PluginHost_API& host, PluginRaster_API& raster, std::int32_t& error);

/// Copies the part that both rasters have, cropping, never scaling; pixels beyond it keep what they
/// held. Two host worlds are copied by the host, everything else row by row over whole pixels (row
/// padding is not touched). Rasters of different formats are converted channel by channel.
/// \return 0 or the host's code
std::int32_t CopyRaster(PluginHost_API& host, PluginRaster_API& destination,
                        PluginRaster_API& source);

/// Makes a raster transparent black: by the host in After Effects, row by row elsewhere.
/// \return 0
std::int32_t ClearRaster(PluginHost_API& host, PluginRaster_API& raster);

/// A new float raster with the pixels of `source`, alpha first, 1.0 at white.
/// \return the raster, or none with the reason in `error`
ScopedRaster ConvertToFloat(PluginHost_API& host, PluginRaster_API& source, std::int32_t& error);

/// Writes a float raster into one of any depth, rounded and limited to the depth's range.
/// \return 0 or the host's code
std::int32_t ConvertFromFloat(PluginHost_API& host, PluginRaster_API& destination,
                              PluginRaster_API& source);

/// Whether a raster has pixels that the image code can work on in place.
bool IsFloatRaster(PluginHost_API& host, PluginRaster_API& raster);
/// View of the pixels of such a raster.
FloatImage ViewRaster(PluginHost_API& host, PluginRaster_API& raster);

}  // namespace vireon
