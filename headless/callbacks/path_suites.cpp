#include <algorithm>

#include "headless/callbacks/dispatch.h"
#include "headless/callbacks/tables.h"

namespace vireon::headless {
namespace {

const MaskPath* FindPath(const HostState& host, std::uint32_t id) {
    const auto it = std::find_if(host.paths.begin(), host.paths.end(),
                                 [id](const MaskPath& path) { return path.id == id; });
    return it == host.paths.end() ? nullptr : &*it;
}

/// The path behind an outline pointer; null and a violation when it is not checked out.
const MaskPath* CheckedOut(HostState& host, const void* outline) {
    for (const MaskPath& path : host.paths) {
        if (&path == outline && host.pathsOut[path.id] > 0) {
            return &path;
        }
    }
    host.violate("a path is used that is not checked out");
    return nullptr;
}

sdk::PF_Err NumPaths(sdk::PF_ProgPtr effectRef, std::int32_t* outCount) {
    return Serve(Slot::kNumPaths, effectRef, [&](HostState& host) -> sdk::PF_Err {
        *outCount = static_cast<std::int32_t>(host.paths.size());
        return 0;
    });
}

sdk::PF_Err PathInfo(sdk::PF_ProgPtr effectRef, std::int32_t index, std::uint32_t* outId) {
    return Serve(Slot::kPathInfo, effectRef, [&](HostState& host) -> sdk::PF_Err {
        if (index < 0 || index >= static_cast<std::int32_t>(host.paths.size())) {
            return sdk::PF_Err_INVALID_INDEX;
        }
        *outId = host.paths[static_cast<std::size_t>(index)].id;
        return 0;
    });
}

sdk::PF_Err CheckoutPath(sdk::PF_ProgPtr effectRef, std::uint32_t pathId, std::int32_t /*time*/,
                         std::int32_t /*timeStep*/, std::uint32_t /*timeScale*/, void** outPath) {
    return Serve(Slot::kCheckoutPath, effectRef, [&](HostState& host) -> sdk::PF_Err {
        // The interface hands outlines out without const; nothing in it can change one.
        *outPath = const_cast<MaskPath*>(FindPath(host, pathId));
        ++host.pathsOut[pathId];
        return 0;
    });
}

sdk::PF_Err CheckinPath(sdk::PF_ProgPtr effectRef, std::uint32_t pathId,
                        sdk::PF_Boolean /*changed*/, void* path) {
    return Serve(Slot::kCheckinPath, effectRef, [&](HostState& host) -> sdk::PF_Err {
        const auto it = host.pathsOut.find(pathId);
        if (it == host.pathsOut.end() || it->second == 0 || path != FindPath(host, pathId)) {
            host.violate("check-in of a path that is not checked out");
            return sdk::PF_Err_BAD_CALLBACK_PARAM;
        }
        --it->second;
        return 0;
    });
}

std::int32_t SegmentCount(const MaskPath& path) {
    const auto vertices = static_cast<std::int32_t>(path.vertices.size());
    return path.open ? std::max(0, vertices - 1) : vertices;
}

/// A question about a checked-out outline. These functions take a null reference too.
template <typename Body>
sdk::PF_Err AskOutline(Slot slot, void* outline, Body&& body) {
    return ServeAnyone(slot, [&](HostState& host) -> sdk::PF_Err {
        const MaskPath* const path = CheckedOut(host, outline);
        return path == nullptr ? sdk::PF_Err_BAD_CALLBACK_PARAM : body(*path);
    });
}

sdk::PF_Err PathIsOpen(sdk::PF_ProgPtr /*effectRefOrNull*/, void* path, sdk::PF_Boolean* outOpen) {
    return AskOutline(Slot::kPathIsOpen, path, [&](const MaskPath& outline) -> sdk::PF_Err {
        *outOpen = outline.open ? 1 : 0;
        return 0;
    });
}

sdk::PF_Err PathNumSegments(sdk::PF_ProgPtr /*effectRefOrNull*/, void* path,
                            std::int32_t* outCount) {
    return AskOutline(Slot::kPathNumSegments, path, [&](const MaskPath& outline) -> sdk::PF_Err {
        *outCount = SegmentCount(outline);
        return 0;
    });
}

sdk::PF_Err PathVertexInfo(sdk::PF_ProgPtr /*effectRefOrNull*/, void* path, std::int32_t index,
                           sdk::PF_PathVertex* outVertex) {
    return AskOutline(Slot::kPathVertexInfo, path, [&](const MaskPath& outline) -> sdk::PF_Err {
        if (outline.vertices.empty() || index < 0 || index > SegmentCount(outline)) {
            return sdk::PF_Err_INVALID_INDEX;
        }
        *outVertex = outline.vertices[static_cast<std::size_t>(index) % outline.vertices.size()];
        return 0;
    });
}

/// A question about a mask by its identity.
template <typename Body>
sdk::PF_Err AskMask(Slot slot, sdk::PF_ProgPtr effectRef, std::uint32_t pathId, Body&& body) {
    return Serve(slot, effectRef, [&](HostState& host) -> sdk::PF_Err {
        const MaskPath* const path = FindPath(host, pathId);
        return path == nullptr ? sdk::PF_Err_INVALID_INDEX : body(*path);
    });
}

sdk::PF_Err PathIsInverted(sdk::PF_ProgPtr effectRef, std::uint32_t pathId,
                           sdk::PF_Boolean* outInverted) {
    return AskMask(Slot::kPathIsInverted, effectRef, pathId,
                   [&](const MaskPath& path) -> sdk::PF_Err {
                       *outInverted = path.inverted ? 1 : 0;
                       return 0;
                   });
}

sdk::PF_Err PathGetMaskMode(sdk::PF_ProgPtr effectRef, std::uint32_t pathId,
                            std::int32_t* outMode) {
    return AskMask(Slot::kPathGetMaskMode, effectRef, pathId,
                   [&](const MaskPath& path) -> sdk::PF_Err {
                       *outMode = path.mode;
                       return 0;
                   });
}

sdk::PF_Err PathGetName(sdk::PF_ProgPtr effectRef, std::uint32_t pathId, char* outName) {
    return AskMask(Slot::kPathGetName, effectRef, pathId, [&](const MaskPath& path) -> sdk::PF_Err {
        const std::size_t length =
            path.name.copy(outName, static_cast<std::size_t>(sdk::PF_MAX_PATH_NAME_LEN));
        outName[length] = '\0';
        return 0;
    });
}

}  // namespace

const sdk::PF_PathQuerySuite1* PathQuerySuiteTable() {
    static const sdk::PF_PathQuerySuite1 table = {NumPaths, PathInfo, CheckoutPath, CheckinPath};
    return &table;
}

const sdk::PF_PathDataSuite1* PathDataSuiteTable() {
    static const sdk::PF_PathDataSuite1 table = [] {
        sdk::PF_PathDataSuite1 suite{};
        suite.PF_PathIsOpen = PathIsOpen;
        suite.PF_PathNumSegments = PathNumSegments;
        suite.PF_PathVertexInfo = PathVertexInfo;
        FillRefusing<Slot::kPathSegLength>(suite.PF_PathPrepareSegLength);
        FillRefusing<Slot::kPathSegLength>(suite.PF_PathGetSegLength);
        FillRefusing<Slot::kPathSegLength>(suite.PF_PathEvalSegLength);
        FillRefusing<Slot::kPathSegLength>(suite.PF_PathEvalSegLengthDeriv1);
        FillRefusing<Slot::kPathSegLength>(suite.PF_PathCleanupSegLength);
        suite.PF_PathIsInverted = PathIsInverted;
        suite.PF_PathGetMaskMode = PathGetMaskMode;
        suite.PF_PathGetName = PathGetName;
        return suite;
    }();
    return &table;
}

}  // namespace vireon::headless
