#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "headless/remote/picture.h"
#include "tools/vireon/picture_file.h"

namespace vireon::tool {

/// Throws ToolError (kOutputFailed) when no format belongs to the extension of `path`.
void CheckOutputFormat(const std::filesystem::path& path);

/// Writes a host's picture in the format that the extension of `path` names, with the metadata,
/// channels and number format of the file that it was made from as far as the format can hold them:
///  - colours are multiplied by alpha again where the format keeps them so;
///  - a source without alpha stays without when the result is opaque;
///  - a grey source stays grey when the result is grey;
///  - a format without alpha gets the colour over black, which is said in `notes`.
/// Throws ToolError (kOutputFailed, kDiskFull); no half-written file is left then.
void WritePictureFile(const std::filesystem::path& path, const headless::Picture& picture,
                      const PictureFile& source, std::vector<std::string>& notes);

}  // namespace vireon::tool
