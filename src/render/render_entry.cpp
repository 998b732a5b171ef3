#include "render/render_entry.h"

#include "render/render_driver.h"
#include "render/render_lock.h"
#include "shapes/shape_library.h"

namespace vireon {

std::int32_t RenderEntry(PluginHost_API& host) {
    const Glow_CSLock lock(platform::RenderSection());
    LoadShapesOnce(host);
    return DriveRender(host);
}

}  // namespace vireon
