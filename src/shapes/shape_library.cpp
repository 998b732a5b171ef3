#include "shapes/shape_library.h"

#include <array>
#include <cstddef>
#include <optional>

#include "host/plugin_host_api.h"
#include "platform/files.h"
#include "platform/paths.h"
#include "shapes/brush_file.h"

namespace vireon {
namespace {

// In the order of the Shape popup. The capitals of the last four are how the files are named.
constexpr std::array<const char*, kLibraryShapes> kBrushFiles = {
    "gaussian.brush",  "hoop.brush",          "kuplah.brush",       "mass.brush",
    "sixFlare.brush",  "sixSpikeHoriz.brush", "sixSpikeVert.brush", "sixSpikeWhack.brush",
    "spectacle.brush", "Tent.brush",          "Tree.brush",         "Whoopy.brush",
    "Zig.brush",
};

struct ShapeTable {
    bool notLoaded = true;
    std::array<GlowKernel, kLibraryShapes> slots;
};

// Never destroyed: a render may still run while the process ends.
ShapeTable& Table() {
    static auto* const table = new ShapeTable;  // NOLINT(*-avoid-non-const-global-variables)
    return *table;
}

std::optional<platform::Path> BrushFolder(PluginHost_API& host) {
    if (auto folder = platform::EnvironmentPath(kBrushFolderVariable)) return folder;
    const std::string file = host.resourceFilePath();
    if (file.empty()) return std::nullopt;
    const auto folder = platform::ParentFolder(platform::FromNarrow(file.c_str()));
    if (!folder) return std::nullopt;
    return platform::Join(platform::Join(*folder, "Vireon"), "Brush");
}

}  // namespace

const char* BrushFileName(std::int32_t slot) {
    return kBrushFiles.at(static_cast<std::size_t>(slot));
}

void LoadShapesOnce(PluginHost_API& host) {
    ShapeTable& table = Table();
    if (!table.notLoaded) return;
    table.notLoaded = false;
    const auto folder = BrushFolder(host);
    if (!folder) return;
    for (std::size_t slot = 0; slot < table.slots.size(); ++slot) {
        table.slots[slot] = ReadBrushFile(platform::Join(*folder, kBrushFiles[slot]));
    }
}

const GlowKernel* LibraryShape(std::int32_t slot) {
    if (slot < 0 || slot >= kLibraryShapes) return nullptr;
    return &Table().slots[static_cast<std::size_t>(slot)];
}

}  // namespace vireon
