#pragma once

#include <cstdint>

#include "shapes/glow_kernel.h"

namespace vireon {

class PluginHost_API;

/// Shapes that are read from brush files, in the order of the Shape popup.
inline constexpr std::int32_t kLibraryShapes = 13;

/// File name of the shape in slot 0 to 12; case counts.
const char* BrushFileName(std::int32_t slot);

/// Environment variable that names the folder of the brush files.
inline constexpr const char* kBrushFolderVariable = "ORVANTE_QUILLON_SVG_DIR";

/// Reads the thirteen shapes on the first call of the process, from the folder that the environment
/// names, or else from Vireon/Brush beside the effect's own file. A file that cannot be used leaves
/// its slot empty without a word. Later calls do nothing: what is read stays until the process
/// ends. Must be called under the render lock.
/// \param host  asked for the effect's path only
void LoadShapesOnce(PluginHost_API& host);

/// The shape in a slot, which may be empty; null for 13 and above and below 0. Needs no lock after
/// `LoadShapesOnce`.
const GlowKernel* LibraryShape(std::int32_t slot);

}  // namespace vireon
