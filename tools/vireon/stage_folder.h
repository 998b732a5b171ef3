#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "headless/remote/picture.h"
#include "tools/vireon/picture_file.h"

namespace vireon::tool {

/// A picture of one stage, to be written.
struct StagePicture {
    std::string file;   ///< one of StageNames()
    std::string title;  ///< for the contact sheet
    std::string text;   ///< for stages.json
    headless::Picture picture;
    /// Whether these are the effect's own numbers, to be kept as they stand, and not a picture.
    bool isData = true;
    /// Whether the contact sheet shows colour multiplied by alpha.
    bool showsAlpha = true;
};

/// Throws ToolError when stages cannot be written into `folder`: it is no folder and cannot become
/// one, or one of `others`, the files that the render reads or writes, has the name of a stage in
/// it.
void CheckStageFolder(const std::filesystem::path& folder,
                      const std::vector<std::filesystem::path>& others);

/// Writes the pictures of a frame into a folder, which is made when it does not exist:
///  - pictures as PNG of 8 or 16 bits, or as EXR for float frames, like an output of `source`;
///  - data as EXR, float, red, green, blue and alpha, colour not multiplied by alpha;
///  - `stages.json` with size, smallest, largest and mean value of every channel;
///  - `contact-sheet.png` with all of them, what goes above 1 divided by its largest value.
/// Files of an earlier call whose stages are not there any more go away; other files stay. Notes
/// get what the user should know. Throws ToolError (kOutputFailed, kOutputFolderMissing,
/// kDiskFull).
void WriteStageFolder(const std::filesystem::path& folder, const std::vector<StagePicture>& stages,
                      const PictureFile& source, std::vector<std::string>& notes);

}  // namespace vireon::tool
