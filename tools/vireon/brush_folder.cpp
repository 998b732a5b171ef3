#include "tools/vireon/brush_folder.h"

#include <cstdlib>

#include "shapes/shape_library.h"

namespace vireon::tool {

std::filesystem::path BrushFolder(const std::filesystem::path& plugin) {
    if (const char* const folder = std::getenv(kBrushFolderVariable); folder != nullptr) {
        return folder;
    }
    return std::filesystem::absolute(plugin).lexically_normal().parent_path() / "Vireon" / "Brush";
}

}  // namespace vireon::tool
