#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "headless/remote/messages.h"

namespace vireon::tool {

/// One of the effect's parameters as an option of the command line.
struct ParameterOption {
    std::string option;  ///< without hyphens, e.g. "glow-radius"; key of --layer for layers
    headless::ParameterDescription parameter;
    std::string group;  ///< name of the effect's own group; empty outside of groups

    bool isLayer() const;
    /// What may be given: "0 to 5000", the choices, "on or off", "X,Y", "FILE".
    std::string valueHelp() const;
    /// "100", "Gaussian", "50%,50%"; "none" for layers.
    std::string defaultHelp() const;
};

/// An option for every parameter that has a value, in the effect's order. A name that is in
/// `taken`, or occurs twice, gets its group in front, then a number behind.
std::vector<ParameterOption> MakeParameterOptions(const headless::Description& description,
                                                  const std::vector<std::string>& taken);

/// Size of the frame that points refer to.
struct FrameSize {
    std::int32_t width = 0;  ///< pixels at full resolution
    std::int32_t height = 0;
    std::int32_t downsample = 1;
};

/// The value that a text gives to a parameter other than a layer. Throws ToolError: kUnknownName
/// for a choice that does not exist, kBadValue for what cannot be read or is out of range. The
/// messages begin with the option, or with `where` the text stands.
headless::ParameterValue ParseValue(const ParameterOption& option, const std::string& text,
                                    const FrameSize& frame);
headless::ParameterValue ParseValue(const ParameterOption& option, const std::string& text,
                                    const FrameSize& frame, const std::string& where);

}  // namespace vireon::tool
