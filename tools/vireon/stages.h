#pragma once

#include <string>
#include <vector>

#include "headless/remote/messages.h"
#include "tools/vireon/parameter_options.h"

namespace vireon::tool {

/// One step of the effect on the way to a frame, seen through the effect's own parameters.
struct Stage {
    std::string file;   ///< name without extension: number and title, "02-brightness-map"
    std::string title;  ///< "brightness map"
    std::string text;   ///< what it shows, one sentence without a full stop
    /// Whether a part of the light is in alpha, as it is in a glow on a layer that is not opaque.
    bool hasLightInAlpha = false;
    headless::RenderJob job;
};

/// The names that the files of stages can have, without extensions: the two of `render` itself,
/// source and output, and those of `StagesOf`.
inline constexpr char kSourceStage[] = "01-source";
inline constexpr char kOutputStage[] = "09-output";
std::vector<std::string> StageNames();

/// The renders that show what is between the source and the frame of `job`, in the effect's order.
/// Stages that the frame does not have, such as a mask that is not enabled, are left out. All are
/// float, whatever the frame is: the effect works in float, and the pictures of the job are
/// converted as the effect converts them, so that the stages have the very numbers of the frame.
/// Throws ToolError (kUnknownName) when the effect lacks a parameter or a choice that this takes.
std::vector<Stage> StagesOf(const headless::RenderJob& job,
                            const std::vector<ParameterOption>& options);

}  // namespace vireon::tool
