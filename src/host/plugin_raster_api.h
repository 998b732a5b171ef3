#pragma once

#include <cstdint>

#include "image/raster_layout.h"

namespace vireon {

class PluginHost_API;
class PluginRaster_AE_Impl;

/// A rectangle of pixels as the image code sees it: a view of one of the host's worlds, or memory
/// of the effect's own. The order of the operations is part of the interface.
class PluginRaster_API {
  public:
    PluginRaster_API() = default;
    PluginRaster_API(const PluginRaster_API&) = delete;
    PluginRaster_API& operator=(const PluginRaster_API&) = delete;
    virtual ~PluginRaster_API() = default;

    /// Pixels in a row.
    virtual std::int32_t width() const = 0;
    /// Rows.
    virtual std::int32_t height() const = 0;
    /// Depth code: `kDepth8`, `kDepth16` or `kDepthFloat`.
    virtual std::int32_t depth() const = 0;
    /// Bytes from one row to the next; may be negative.
    virtual std::int32_t rowBytes() const = 0;
    /// The raster itself when it views a host world, else null. Not owned by the caller.
    virtual PluginRaster_AE_Impl* asHostWorld() = 0;

    /// Hooks around an implementation's own bookkeeping; none needs them so far.
    virtual void hook6() {}
    virtual void hook7() {}
    virtual void hook8() {}
    virtual void hook9() {}
    virtual void hook10() {}
    virtual void hook11() {}
    virtual void hook12() {}
    virtual void hook13() {}
    virtual void hook14() {}

    /// Binds the raster to the host object that serves it from now on; kept, not owned.
    virtual void attach(PluginHost_API* host) = 0;

    /// Rectangle of the pixels that matter. A host world answers with its hint, whose bottom and
    /// right are exclusive; the defaults here are the last row and column.
    virtual std::int32_t extentTop() const { return 0; }
    virtual std::int32_t extentLeft() const { return 0; }
    virtual std::int32_t extentBottom() const { return height() - 1; }
    virtual std::int32_t extentRight() const { return width() - 1; }

    /// The raster's own layout record, or null when only the host can tell it. Owned by the raster.
    virtual RasterLayout* layoutRecord() { return nullptr; }
};

}  // namespace vireon
