#include "host/ae/plugin_host_ae_impl.h"

namespace vireon {

using namespace sdk;

std::int32_t PluginHost_AE_Impl::pathVertex(const void* dataSuite, void* path, std::int32_t index,
                                            PathVertex& vertex) {
    PF_PathVertex record{};
    const std::int32_t error = static_cast<const PF_PathDataSuite1*>(dataSuite)->PF_PathVertexInfo(
        in_->effect_ref, path, index, &record);
    vertex = {record.tan_in_x, record.tan_in_y,  record.x,
              record.y,        record.tan_out_x, record.tan_out_y};
    return error;
}

std::int32_t PluginHost_AE_Impl::pathIsOpen(const void* dataSuite, void* path, bool& open) {
    PF_Boolean flag = 0;
    const std::int32_t error = static_cast<const PF_PathDataSuite1*>(dataSuite)->PF_PathIsOpen(
        in_->effect_ref, path, &flag);
    open = flag != 0;
    return error;
}

std::int32_t PluginHost_AE_Impl::pathSegments(const void* dataSuite, void* path,
                                              std::int32_t& count) {
    return static_cast<const PF_PathDataSuite1*>(dataSuite)->PF_PathNumSegments(in_->effect_ref,
                                                                                path, &count);
}

std::int32_t PluginHost_AE_Impl::pathCount(const void* querySuite, std::int32_t& count) {
    return static_cast<const PF_PathQuerySuite1*>(querySuite)->PF_NumPaths(in_->effect_ref, &count);
}

std::int32_t PluginHost_AE_Impl::checkoutPath(const void* querySuite, std::uint32_t id,
                                              const HostTime& time, void*& path) {
    return static_cast<const PF_PathQuerySuite1*>(querySuite)
        ->PF_CheckoutPath(in_->effect_ref, id, time.time, time.step, time.scale, &path);
}

std::int32_t PluginHost_AE_Impl::checkinPath(const void* querySuite, std::uint32_t id, bool changed,
                                             void* path) {
    return static_cast<const PF_PathQuerySuite1*>(querySuite)
        ->PF_CheckinPath(in_->effect_ref, id, changed ? 1 : 0, path);
}

std::int32_t PluginHost_AE_Impl::pathId(const void* querySuite, std::int32_t index,
                                        std::uint32_t& id) {
    return static_cast<const PF_PathQuerySuite1*>(querySuite)
        ->PF_PathInfo(in_->effect_ref, index, &id);
}

}  // namespace vireon
