#pragma once

#include "host/ae/plugin_raster_ae_impl.h"
#include "sdk/sdk.h"

namespace vireon {

/// A 16.16 fixed-point number of the host.
inline double FromFixed(sdk::PF_Fixed value) {
    return static_cast<double>(value) * (1.0 / 65536.0);
}

/// The world that a raster views; null for a memory raster and for one without a world.
inline sdk::PF_EffectWorld* WorldOf(PluginRaster_API& raster) {
    PluginRaster_AE_Impl* view = raster.asHostWorld();
    return view != nullptr ? view->world() : nullptr;
}

}  // namespace vireon
