#pragma once

#include <cstdint>

#include "host/host_time.h"

namespace vireon {

/// An outline's vertex with its tangents, in pixels of the layer.
struct PathVertex {
    double inTangentX;
    double inTangentY;
    double x;
    double y;
    double outTangentX;
    double outTangentY;
};

/// The outlines of the layer's masks. Every operation is given the host's suite that it forwards
/// to, as the suite set gives it, and returns that suite's code. Outlines are the host's; each that
/// is checked out is checked in again. The order of the operations is part of the interface.
class PluginPath_API {
  public:
    PluginPath_API() = default;
    PluginPath_API(const PluginPath_API&) = delete;
    PluginPath_API& operator=(const PluginPath_API&) = delete;
    virtual ~PluginPath_API() = default;

    /// 0: the vertex with a number from 0. \param dataSuite  "PF Path Data Suite"
    virtual std::int32_t pathVertex(const void* dataSuite, void* path, std::int32_t index,
                                    PathVertex& vertex) = 0;
    /// 1: whether the outline is open. \param dataSuite  "PF Path Data Suite"
    virtual std::int32_t pathIsOpen(const void* dataSuite, void* path, bool& open) = 0;
    /// 2: segments of the outline. \param dataSuite  "PF Path Data Suite"
    virtual std::int32_t pathSegments(const void* dataSuite, void* path, std::int32_t& count) = 0;
    /// 3: masks of the layer. \param querySuite  "PF Path Query Suite"
    virtual std::int32_t pathCount(const void* querySuite, std::int32_t& count) = 0;
    /// 4: checks an outline out at a time; it may be null with success.
    virtual std::int32_t checkoutPath(const void* querySuite, std::uint32_t id,
                                      const HostTime& time, void*& path) = 0;
    /// 5: checks an outline in. \param changed  whether its vertices were changed
    virtual std::int32_t checkinPath(const void* querySuite, std::uint32_t id, bool changed,
                                     void* path) = 0;
    /// 6: the id of the mask with a number from 0.
    virtual std::int32_t pathId(const void* querySuite, std::int32_t index, std::uint32_t& id) = 0;
    /// 7, 8: without a use so far.
    virtual void pathReserved7() {}
    virtual void pathReserved8() {}
};

}  // namespace vireon
